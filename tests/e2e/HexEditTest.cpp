#include "E2eFixture.h"

#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"

#include <QFile>

namespace {

// Every byte value, several times over, so that NUL and high bytes are everywhere.
QByteArray BinaryBytes(int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = char((i * 7 + i / 256) & 0xFF);
    return bytes;
}

// Resident memory of this process in kB, from the kernel's own account.
qint64 ResidentKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

class HexEditing : public E2eFixture
{
protected:
    CHexEditView* OpenHex(const QString& path, bool askForHex)
    {
        CDocument* document = askForHex ? App()->OpenAsHex(path) : App()->OpenDocumentFile(path);
        Settle();
        if (!document || !qobject_cast<CHexDocument*>(document) || !Frame()->ActiveChild()
            || Frame()->ActiveChild()->GetDocument() != document)
            return nullptr;
        return Frame()->ActiveChild()->findChild<CHexEditView*>();
    }
};

TEST_F(HexEditing, BinaryFileFromTheCommandLineOpensInHexAndKeyboardEditsAreSaved)
{
    const QByteArray original = BinaryBytes(5000);
    const QString path = MakeFile(QStringLiteral("image.bin"), original);
    ASSERT_TRUE(App()->InitInstance({path}));
    Settle();
    ASSERT_NE(Frame()->ActiveChild(), nullptr);
    ASSERT_NE(qobject_cast<CHexDocument*>(Frame()->ActiveChild()->GetDocument()), nullptr)
        << "a file with NUL bytes goes to the hex view";
    auto* view = Frame()->ActiveChild()->findChild<CHexEditView*>();
    ASSERT_NE(view, nullptr);
    view->setFocus();

    QByteArray expected = original;
    // Two hex digits overwrite the first byte.
    QTest::keyClick(view, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClicks(view, QStringLiteral("aB"));
    expected[0] = char(0xAB);
    // Tab to the character column; a letter overwrites the next byte.
    QTest::keyClick(view, Qt::Key_Tab);
    QTest::keyClicks(view, QStringLiteral("Z"));
    expected[1] = 'Z';
    // Down a row and Delete removes the byte under the caret.
    QTest::keyClick(view, Qt::Key_Down);
    QTest::keyClick(view, Qt::Key_Delete);
    expected.remove(2 + CHexEditView::kBytesPerRow, 1);
    // Insert mode at the end appends.
    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Insert);
    QTest::keyClicks(view, QStringLiteral("END!"));
    expected += "END!";
    EXPECT_TRUE(Frame()->ActiveChild()->GetDocument()->IsModified());

    PressSave();
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
    EXPECT_FALSE(Frame()->ActiveChild()->GetDocument()->IsModified());
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), expected));
}

TEST_F(HexEditing, SmallTextFileAskedForAsHexIsEditedByteForByte)
{
    const QByteArray original("abc\r\n");
    const QString path = MakeFile(QStringLiteral("small.txt"), original);
    ASSERT_TRUE(App()->InitInstance({}));
    CHexEditView* view = OpenHex(path, true);
    ASSERT_NE(view, nullptr) << "Open as Hex must give the hex view even for text";
    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Left);
    QTest::keyClicks(view, QStringLiteral("00"));
    PressSave();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(path), QByteArray("abc\r\0", 5)));
}

TEST_F(HexEditing, OneByteAndEmptyFilesRoutedToHexCanGrowFromTheKeyboard)
{
    ASSERT_TRUE(App()->InitInstance({}));
    const QString one = MakeFile(QStringLiteral("one.bin"), QByteArray(1, '\0'));
    CHexEditView* view = OpenHex(one, true);
    ASSERT_NE(view, nullptr);
    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(view, QStringLiteral("ff"));
    PressSave();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(one), QByteArray("\0\xFF", 2)));

    const QString empty = MakeFile(QStringLiteral("empty.bin"), QByteArray());
    view = OpenHex(empty, true);
    ASSERT_NE(view, nullptr);
    QTest::keyClicks(view, QStringLiteral("7f"));
    PressSave();
    EXPECT_TRUE(SameBytes(TestSupport::ReadFile(empty), QByteArray("\x7F", 1)));
    EXPECT_TRUE(Messages().isEmpty()) << Messages().join(QLatin1Char('|')).toStdString();
}

TEST_F(HexEditing, FourGigabyteFileOpensWithoutReadingItIntoMemory)
{
    const QString path = Path(QStringLiteral("disk.img"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        // Sparse: the size costs no disk, the bytes read as zeros.
        file.write(BinaryBytes(4096));
        ASSERT_TRUE(file.resize(qint64(4) << 30));
        file.seek((qint64(4) << 30) - 4);
        file.write("TAIL");
    }
    ASSERT_TRUE(App()->InitInstance({}));
    Settle();
    const qint64 before = ResidentKb();
    ASSERT_GT(before, 0);
    CHexEditView* view = OpenHex(path, false);
    ASSERT_NE(view, nullptr) << "binary bytes route to the hex view";
    auto* document = qobject_cast<CHexDocument*>(Frame()->ActiveChild()->GetDocument());
    EXPECT_EQ(document->Size(), qint64(4) << 30);
    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), qint64(4) << 30);
    view->repaint();
    Settle();
    const qint64 after = ResidentKb();
    EXPECT_LT(after - before, 64 * 1024) << "resident memory grew by " << (after - before) << " kB";
}

TEST_F(HexEditing, FileOfNothingButZerosRoutesToHex)
{
    // Zeros are no text in any encoding; read as UTF-16 a large one would fill memory.
    const QString path = MakeFile(QStringLiteral("zeros.img"), QByteArray(64 * 1024, '\0'));
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_NE(OpenHex(path, false), nullptr);
    EXPECT_EQ(App()->LastRouteMode(), 1);
}

} // namespace
