#include "editor/CMFCScintilla.h"
#include "TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// Presses, drags and releases the mouse from line 0 to line 2.
void Drag(CMFCScintilla& editor)
{
    QWidget* viewport = editor.viewport();
    const auto pointOf = [&editor](long position) {
        return QPoint(int(editor.SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, position)),
                      int(editor.SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, position)) + 2);
    };
    const QPoint from = pointOf(editor.PositionFromLine(0) + 1);
    const QPoint to = pointOf(editor.PositionFromLine(2) + 4);
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, QPointF(to), viewport->mapToGlobal(QPointF(to)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, to);
}

bool IsRectangular(const CMFCScintilla& editor)
{
    return editor.SendScintilla(QsciScintillaBase::SCI_SELECTIONISRECTANGLE) != 0;
}

TEST(BlockSelect, MouseDragsStayRectangularAfterTheCaretJumps)
{
    CMFCScintilla editor;
    editor.Setup();
    editor.resize(400, 200);
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));
    editor.AddText("abcdefgh\nabcdefgh\nabcdefgh\n");

    Drag(editor);
    EXPECT_FALSE(IsRectangular(editor)) << "a plain drag selects a stream";

    editor.SetBlockSelect(true);
    editor.GotoPos(editor.GetLength()); // a jump that makes the control forget its mode
    Drag(editor);
    // (Offscreen there is no mouse grab, so the drag itself can't be followed here.)
    EXPECT_TRUE(IsRectangular(editor)) << "a click starts a rectangle while Block Select is on";

    editor.SetBlockSelect(false);
    Drag(editor);
    EXPECT_FALSE(IsRectangular(editor));
}

// A rectangle made from the keyboard: what is typed, deleted or pasted goes to every line.
class KeyboardRectangle : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_editor.Setup();
        m_editor.resize(400, 200);
        m_editor.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_editor));
        m_editor.AddText("abcd\nabcd\nabcd\n");
        m_editor.GotoPos(0);
        // Moved there by key, so that the control knows the column to keep.
        Key(Qt::Key_Right);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&m_editor, key, modifiers);
    }
    QByteArray Text() const { return m_editor.GetText(); }

    CMFCScintilla m_editor;
};

TEST_F(KeyboardRectangle, TypingDeletingAndPastingReachEveryLine)
{
    Key(Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
    ASSERT_TRUE(IsRectangular(m_editor));
    QTest::keyClicks(&m_editor, QStringLiteral("XY"));
    EXPECT_EQ(Text(), QByteArray("aXYbcd\naXYbcd\naXYbcd\n"));
    Key(Qt::Key_Backspace);
    EXPECT_EQ(Text(), QByteArray("aXbcd\naXbcd\naXbcd\n"));
    QApplication::clipboard()->setText(QStringLiteral("-"));
    m_editor.Paste();
    EXPECT_EQ(Text(), QByteArray("aX-bcd\naX-bcd\naX-bcd\n"));
    m_editor.Undo();
    EXPECT_EQ(Text(), QByteArray("aXbcd\naXbcd\naXbcd\n")) << "a paste is one undo step";
}

TEST_F(KeyboardRectangle, ShiftArrowsExtendARectangleWhileBlockSelectIsOn)
{
    m_editor.SetBlockSelect(true);
    m_editor.GotoPos(0); // a jump makes the control forget its mode
    Key(Qt::Key_Right);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_TRUE(IsRectangular(m_editor));
    QTest::keyClicks(&m_editor, QStringLiteral("#"));
    EXPECT_EQ(Text(), QByteArray("a#cd\na#cd\nabcd\n"));

    m_editor.SetBlockSelect(false);
    m_editor.GotoPos(0);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_FALSE(IsRectangular(m_editor)) << "Shift+arrows select a stream with Block Select off";
}

// No Ctrl or Alt combination types its character; the control's own commands still run.
TEST_F(KeyboardRectangle, CtrlAndAltCombinationsInsertNothing)
{
    const QByteArray before = Text();
    struct Combo
    {
        Qt::Key key;
        char text;
        Qt::KeyboardModifiers modifiers;
    };
    for (const Combo& c : {Combo{Qt::Key_Equal, '=', Qt::ControlModifier}, Combo{Qt::Key_Minus, '-', Qt::ControlModifier},
                           Combo{Qt::Key_0, '0', Qt::ControlModifier}, Combo{Qt::Key_Period, '.', Qt::ControlModifier},
                           Combo{Qt::Key_Semicolon, ';', Qt::ControlModifier}, Combo{Qt::Key_Plus, '+', Qt::ControlModifier},
                           Combo{Qt::Key_X, 'x', Qt::AltModifier}, Combo{Qt::Key_Q, 'q', Qt::ControlModifier | Qt::AltModifier}}) {
        QTest::keyClick(&m_editor, c.key, c.modifiers);
        QKeyEvent press(QEvent::KeyPress, c.key, c.modifiers, QString(QLatin1Char(c.text)));
        QApplication::sendEvent(&m_editor, &press);
        EXPECT_EQ(Text(), before) << "key " << c.text;
    }
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(m_editor.GetCurrentPos(), m_editor.GetLength()) << "Ctrl+End still moves";
    QTest::keyClicks(&m_editor, QStringLiteral("z"));
    EXPECT_EQ(Text(), before + "z") << "plain typing still types";
}

} // namespace
