#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"

#include "HexTestFile.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

class HexEditViewTest : public ::testing::Test
{
protected:
    void Open(const QByteArray& bytes, const QString& file = {})
    {
        document = std::make_unique<CHexDocument>();
        ASSERT_TRUE(document->OnOpenDocument(file.isEmpty() ? MakeFile(bytes) : file));
        view = std::make_unique<CHexEditView>(document.get());
        view->resize(800, 300);
        view->show();
        view->setFocus();
    }

    QByteArray Contents() const { return document->Bytes().Read(0, document->Size()); }
    void Type(const char* keys) { QTest::keyClicks(view.get(), QString::fromLatin1(keys)); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(view.get(), key, modifiers);
    }
    void Undo() { Key(Qt::Key_Z, Qt::ControlModifier); }

    std::unique_ptr<CHexDocument> document;
    std::unique_ptr<CHexEditView> view;
};

TEST_F(HexEditViewTest, HexDigitsOverwriteOrInsertAndUndoTakesBackWholeBytes)
{
    Open("ABCDEF");
    Type("3132");
    EXPECT_EQ(Contents(), QByteArray("12CDEF"));
    EXPECT_EQ(view->CaretOffset(), 2);
    // One digit changes the high half only and leaves the caret on the low digit.
    Type("7z"); // 'z' is no hex digit: ignored
    EXPECT_EQ(Contents(), QByteArray("12sDEF"));
    EXPECT_EQ(view->CaretNibble(), 1);
    Undo();
    Undo();
    EXPECT_EQ(Contents(), QByteArray("1BCDEF"));
    EXPECT_EQ(view->CaretOffset(), 1);
    Undo();
    EXPECT_FALSE(document->IsModified());
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("1BCDEF"));

    view->SetCaret(1);
    Key(Qt::Key_Insert);
    ASSERT_TRUE(view->IsInsertMode());
    Type("3");
    EXPECT_EQ(Contents(), QByteArray("1\x30" "BCDEF")) << "the first digit inserts a byte";
    Type("031");
    EXPECT_EQ(Contents(), QByteArray("101BCDEF"));
    Key(Qt::Key_Delete);
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Contents(), QByteArray("10CDEF"));
    EXPECT_EQ(view->CaretOffset(), 2);
    // Each inserted byte and each deletion is one undo step.
    Undo();
    Undo();
    EXPECT_EQ(Contents(), QByteArray("101BCDEF"));
    Undo();
    Undo();
    EXPECT_EQ(Contents(), QByteArray("1BCDEF"));

    // The character column types the bytes themselves; at the end it appends.
    Key(Qt::Key_Tab);
    EXPECT_EQ(view->ActiveColumn(), CHexEditView::TextColumn);
    Key(Qt::Key_End, Qt::ControlModifier);
    Type("!");
    EXPECT_EQ(Contents(), QByteArray("1BCDEF!"));
}

TEST_F(HexEditViewTest, KeyboardMovesAndSelects)
{
    Open(QByteArray(1000, 'x'));
    Key(Qt::Key_Right);
    Key(Qt::Key_Down);
    EXPECT_EQ(view->CaretOffset(), 17);
    Key(Qt::Key_End);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(view->CaretOffset(), 31 + qint64(view->VisibleRows()) * 16);
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), 1000);
    EXPECT_GT(view->TopRow() + view->VisibleRows(), 1000 / 16) << "the last row is on screen";
    Key(Qt::Key_Down);
    EXPECT_EQ(view->CaretOffset(), 1000);
    Key(Qt::Key_Home, Qt::ControlModifier);
    Key(Qt::Key_Left);
    EXPECT_EQ(view->TopRow(), 0);
    Key(Qt::Key_Right);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectionStart(), 1);
    EXPECT_EQ(view->SelectionLength(), 2);
    Key(Qt::Key_Delete);
    EXPECT_EQ(document->Size(), 998);
    EXPECT_EQ(view->CaretOffset(), 1);
}

TEST_F(HexEditViewTest, CopyAndPasteTakeRawBytesHexTextOrCharacters)
{
    Open(QByteArray("\x00\x41\x42\xFF....", 8));
    Key(Qt::Key_Right);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_C, Qt::ControlModifier);
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    ASSERT_NE(mime, nullptr);
    EXPECT_EQ(mime->text(), QStringLiteral("41 42"));
    EXPECT_EQ(mime->data(QStringLiteral("application/octet-stream")), QByteArray("AB"));

    auto* raw = new QMimeData;
    raw->setData(QStringLiteral("application/octet-stream"), QByteArray("\x01\x02", 2));
    raw->setText(QStringLiteral("ignored"));
    QApplication::clipboard()->setMimeData(raw);
    Key(Qt::Key_Home, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02\x42\xFF....", 8));
    QApplication::clipboard()->setText(QStringLiteral("4D 5A"));
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02MZ....", 8)) << "hex text in the hex column";
    Key(Qt::Key_Tab);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02MZ4D 5A", 9)) << "text runs on past the end";
}

// A file with more rows than a scroll bar can count: the bar is scaled, its ends are
// the file's ends, and offsets beyond 4 GB are reached.
TEST_F(HexEditViewTest, HugeSparseFileScrollsToItsLastByte)
{
    const QString big = MakeFile(QByteArray(), QStringLiteral("big.img"));
    const qint64 size = qint64(64) << 30;
    {
        QFile file(big);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        if (!file.resize(size))
            GTEST_SKIP() << "no sparse files here";
        ASSERT_TRUE(file.seek(size - 4));
        file.write("LAST");
    }
    Open({}, big);
    QScrollBar* bar = view->verticalScrollBar();
    EXPECT_GT(qint64(size / 16), qint64(bar->maximum()));
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), size);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(bar->maximum() / 2);
    EXPECT_NEAR(double(view->TopRow()), double(size / 16 / 2), double(size / 16) / 1000);
    bar->setValue(bar->maximum());
    EXPECT_EQ(view->TopRow() + view->VisibleRows(), size / 16 + 1);
    view->SetCaret(size - 4);
    Type("6C");
    EXPECT_EQ(document->Bytes().Read(size - 4, 4), QByteArray("lAST"));
    view.reset();
    document.reset();
    QFile::remove(big);
}

} // namespace
