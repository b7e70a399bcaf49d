#include "hex/CHexDocument.h"
#include "hex/CHexEditView.h"

#include "TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <memory>

namespace {

class HexEditViewTest : public ::testing::Test
{
protected:
    void Open(const QByteArray& bytes, bool readOnly = false)
    {
        path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("view.bin"));
        TestSupport::WriteFile(path, bytes);
        document = std::make_unique<CHexDocument>();
        document->SetReadOnly(readOnly);
        ASSERT_TRUE(document->OnOpenDocument(path));
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

    QString path;
    std::unique_ptr<CHexDocument> document;
    std::unique_ptr<CHexEditView> view;
};

TEST_F(HexEditViewTest, HexDigitsOverwriteBytesAndAdvance)
{
    Open("ABCDEF");
    Type("3132");
    EXPECT_EQ(Contents(), QByteArray("12CDEF"));
    EXPECT_EQ(view->CaretOffset(), 2);
    EXPECT_EQ(document->Size(), 6);
    EXPECT_TRUE(document->IsModified());
    // One digit changes the high half only and leaves the caret on the low digit.
    Type("7");
    EXPECT_EQ(Contents(), QByteArray("12sDEF")); // 0x43 -> 0x73
    EXPECT_EQ(view->CaretNibble(), 1);
    Type("z"); // not a hex digit: ignored
    EXPECT_EQ(Contents(), QByteArray("12sDEF"));
}

TEST_F(HexEditViewTest, UndoTakesBackAWholeByteAndRedoRestoresIt)
{
    Open("ABCDEF");
    Type("3132");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("1BCDEF"));
    EXPECT_EQ(view->CaretOffset(), 1);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("ABCDEF"));
    EXPECT_FALSE(document->IsModified());
    Key(Qt::Key_Y, Qt::ControlModifier);
    Key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("12CDEF"));
    EXPECT_TRUE(document->IsModified());
}

TEST_F(HexEditViewTest, InsertModeInsertsAndDeleteKeysRemove)
{
    Open("ABCDEF");
    QSignalSpy spy(view.get(), &CHexEditView::caretChanged);
    Key(Qt::Key_Insert);
    EXPECT_TRUE(view->IsInsertMode());
    EXPECT_GE(spy.count(), 1);
    Key(Qt::Key_Right);
    Type("3");
    EXPECT_EQ(Contents(), QByteArray("A0BCDEF")) << "the first digit inserts a byte";
    Type("0");
    EXPECT_EQ(Contents(), QByteArray("A0BCDEF"));
    Type("31");
    EXPECT_EQ(Contents(), QByteArray("A01BCDEF"));
    EXPECT_EQ(view->CaretOffset(), 3);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Contents(), QByteArray("A01CDEF"));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Contents(), QByteArray("A0CDEF"));
    EXPECT_EQ(view->CaretOffset(), 2);
    // Each inserted byte and each deletion is one undo step.
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("A01BCDEF"));
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("ABCDEF"));
    Key(Qt::Key_Insert);
    EXPECT_FALSE(view->IsInsertMode());
}

TEST_F(HexEditViewTest, TypingAtTheEndAppends)
{
    Open("AB");
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), 2);
    Type("43");
    EXPECT_EQ(Contents(), QByteArray("ABC"));
}

TEST_F(HexEditViewTest, TabSwitchesToCharactersWhichTypeTheirBytes)
{
    Open("ABCDEF");
    Key(Qt::Key_Tab);
    EXPECT_EQ(view->ActiveColumn(), CHexEditView::TextColumn);
    Type("xy");
    EXPECT_EQ(Contents(), QByteArray("xyCDEF"));
    Key(Qt::Key_Insert);
    Type("!");
    EXPECT_EQ(Contents(), QByteArray("xy!CDEF"));
    Key(Qt::Key_Tab);
    EXPECT_EQ(view->ActiveColumn(), CHexEditView::HexColumn);
}

TEST_F(HexEditViewTest, KeyboardMovesTheCaret)
{
    Open(QByteArray(1000, 'x'));
    Key(Qt::Key_Right);
    Key(Qt::Key_Down);
    EXPECT_EQ(view->CaretOffset(), 17);
    Key(Qt::Key_End);
    EXPECT_EQ(view->CaretOffset(), 31);
    Key(Qt::Key_Home);
    EXPECT_EQ(view->CaretOffset(), 16);
    Key(Qt::Key_Up);
    Key(Qt::Key_Up);
    EXPECT_EQ(view->CaretOffset(), 0);
    Key(Qt::Key_Left);
    EXPECT_EQ(view->CaretOffset(), 0);
    Key(Qt::Key_PageDown);
    EXPECT_EQ(view->CaretOffset(), qint64(view->VisibleRows()) * 16);
    EXPECT_GT(view->TopRow(), 0);
    Key(Qt::Key_PageUp);
    EXPECT_EQ(view->CaretOffset(), 0);
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), 1000);
    // The last row is on screen.
    EXPECT_LE(view->TopRow(), 1000 / 16);
    EXPECT_GT(view->TopRow() + view->VisibleRows(), 1000 / 16);
    Key(Qt::Key_Down);
    EXPECT_EQ(view->CaretOffset(), 1000);
    Key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), 0);
    EXPECT_EQ(view->TopRow(), 0);
}

TEST_F(HexEditViewTest, ShiftSelectsAndTypingOverwritesFromTheSelection)
{
    Open("ABCDEF");
    Key(Qt::Key_Right);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectionStart(), 1);
    EXPECT_EQ(view->SelectionLength(), 2);
    Key(Qt::Key_Left);
    EXPECT_FALSE(view->HasSelection());
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Delete);
    EXPECT_EQ(Contents(), QByteArray("ABEF"));
    EXPECT_EQ(view->CaretOffset(), 2);
}

TEST_F(HexEditViewTest, CopyGivesHexTextAndRawBytes)
{
    Open(QByteArray("\x00\x41\x42\xFF", 4));
    Key(Qt::Key_Right);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_C, Qt::ControlModifier);
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    ASSERT_NE(mime, nullptr);
    EXPECT_EQ(mime->text(), QStringLiteral("41 42"));
    EXPECT_EQ(mime->data(QStringLiteral("application/octet-stream")), QByteArray("AB"));
    // From the character column the text is the characters.
    Key(Qt::Key_Tab);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("AB"));
}

TEST_F(HexEditViewTest, PasteTakesRawBytesHexTextOrCharacters)
{
    Open("........");
    auto* raw = new QMimeData;
    raw->setData(QStringLiteral("application/octet-stream"), QByteArray("\x01\x02", 2));
    raw->setText(QStringLiteral("ignored"));
    QApplication::clipboard()->setMimeData(raw);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02......", 8));
    EXPECT_EQ(view->CaretOffset(), 2);

    QApplication::clipboard()->setText(QStringLiteral("4D 5A"));
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02MZ....", 8)) << "hex text in the hex column";

    Key(Qt::Key_Tab);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("\x01\x02MZ4D 5A", 9))
        << "text in the character column, running on past the end";

    // Insert mode pastes in between.
    Key(Qt::Key_Home, Qt::ControlModifier);
    Key(Qt::Key_Insert);
    QApplication::clipboard()->setText(QStringLiteral("ab"));
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("ab\x01\x02MZ4D 5A", 11));
}

TEST_F(HexEditViewTest, ReadOnlyDocumentRefusesEveryChange)
{
    Open("ABCDEF", true);
    Type("00");
    Key(Qt::Key_Insert);
    Type("11");
    Key(Qt::Key_Delete);
    Key(Qt::Key_Backspace);
    QApplication::clipboard()->setText(QStringLiteral("FF"));
    Key(Qt::Key_V, Qt::ControlModifier);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(Contents(), QByteArray("ABCDEF"));
    EXPECT_FALSE(document->IsModified());
    EXPECT_FALSE(view->CanPaste());
    // Moving and selecting still work.
    EXPECT_EQ(view->SelectionLength(), 6);
}

TEST_F(HexEditViewTest, MouseClickPlacesTheCaretAndDragSelects)
{
    Open(QByteArray(256, 'm'));
    const QRect byte18 = view->ByteRect(18, CHexEditView::HexColumn);
    ASSERT_TRUE(byte18.isValid());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, byte18.center() + QPoint(-2, 0));
    EXPECT_EQ(view->CaretOffset(), 18);
    EXPECT_EQ(view->ActiveColumn(), CHexEditView::HexColumn);

    const QRect text5 = view->ByteRect(5, CHexEditView::TextColumn);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, text5.center());
    EXPECT_EQ(view->CaretOffset(), 5);
    EXPECT_EQ(view->ActiveColumn(), CHexEditView::TextColumn);

    const QRect byte40 = view->ByteRect(40, CHexEditView::HexColumn);
    QTest::mousePress(view->viewport(), Qt::LeftButton, {}, byte18.center());
    QMouseEvent move(QEvent::MouseMove, byte40.center(), view->viewport()->mapToGlobal(byte40.center()),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &move);
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, byte40.center());
    EXPECT_EQ(view->SelectionStart(), 18);
    EXPECT_EQ(view->SelectionLength(), 23) << "both end bytes are selected";
}

TEST_F(HexEditViewTest, WheelScrollsThreeRowsANotch)
{
    Open(QByteArray(16 * 1000, 'w'));
    QWheelEvent down(QPointF(10, 10), view->viewport()->mapToGlobal(QPointF(10, 10)), QPoint(),
                     QPoint(0, -240), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view->viewport(), &down);
    EXPECT_EQ(view->TopRow(), 6);
    QWheelEvent up(QPointF(10, 10), view->viewport()->mapToGlobal(QPointF(10, 10)), QPoint(),
                   QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view->viewport(), &up);
    EXPECT_EQ(view->TopRow(), 3);
    EXPECT_EQ(view->verticalScrollBar()->value(), 3);
    EXPECT_EQ(view->CaretOffset(), 0) << "scrolling leaves the caret";
}

TEST_F(HexEditViewTest, PaintsWithoutTouchingBytesOffScreen)
{
    Open(QByteArray(100, 'p'));
    QImage image(view->viewport()->size(), QImage::Format_ARGB32);
    image.fill(Qt::white);
    view->viewport()->render(&image);
    // Something besides the background was drawn.
    bool drawn = false;
    const QRgb background = image.pixel(image.width() - 1, image.height() - 1);
    for (int y = 0; y < 20 && !drawn; ++y) {
        for (int x = 0; x < image.width() && !drawn; ++x)
            drawn = image.pixel(x, y) != background;
    }
    EXPECT_TRUE(drawn);
}

// A file with more rows than a scroll bar can count: the bar is scaled, its ends are
// the file's ends, and offsets beyond 4 GB are reached.
TEST_F(HexEditViewTest, HugeSparseFileScrollsToItsLastByte)
{
    const QString bigPath = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("big.img"));
    const qint64 size = qint64(64) << 30;
    {
        QFile file(bigPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        if (!file.resize(size))
            GTEST_SKIP() << "no sparse files here";
        ASSERT_TRUE(file.seek(size - 4));
        file.write("LAST");
    }
    document = std::make_unique<CHexDocument>();
    ASSERT_TRUE(document->OnOpenDocument(bigPath));
    view = std::make_unique<CHexEditView>(document.get());
    view->resize(800, 300);
    view->show();
    QScrollBar* bar = view->verticalScrollBar();
    EXPECT_GT(qint64(size / 16), qint64(bar->maximum()));
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view->CaretOffset(), size);
    EXPECT_EQ(bar->value(), bar->maximum());
    bar->setValue(bar->maximum() / 2);
    EXPECT_NEAR(double(view->TopRow()), double(size / 16 / 2), double(size / 16) / 1000);
    bar->setValue(bar->maximum());
    EXPECT_EQ(view->TopRow() + view->VisibleRows(), size / 16 + 1);
    // Typing beyond 4 GB lands where it should.
    view->SetCaret(size - 4);
    Type("6C");
    EXPECT_EQ(document->Bytes().Read(size - 4, 4), QByteArray("lAST"));
    QImage image(view->viewport()->size(), QImage::Format_ARGB32);
    view->viewport()->render(&image);
    document.reset();
    view.reset();
    QFile::remove(bigPath);
}

} // namespace
