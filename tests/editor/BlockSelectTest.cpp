#include "editor/CMFCScintilla.h"
#include "TestSupport.h"

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

} // namespace
