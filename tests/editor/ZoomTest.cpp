#include "CFakeShell.h"
#include "TestSupport.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/ZoomCommands.h"
#include "framework/CDocTemplate.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "DocumentCleanup.h"
#include "TextDocuments.h"

#include <QAction>
#include <QApplication>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <memory>

namespace {

// One zoom level for every text view, from the commands or Ctrl with the wheel.
class ZoomTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_template = TextDocuments::MakeTemplate(nullptr);
    }
    void TearDown() override
    {
        DocumentCleanup::DeleteAll(*m_template);
    }
    CMFCScintilla* NewView(CFakeShell& shell)
    {
        CScrivelFrame* frame = TextDocuments::NewFrame(*m_template);
        shell.AddChildFrame(frame);
        return frame->GetView()->GetEditor();
    }
    static int Zoom(const CMFCScintilla* editor)
    {
        return int(editor->SendScintilla(QsciScintillaBase::SCI_GETZOOM));
    }
    static void CtrlWheel(CMFCScintilla* editor, int delta)
    {
        const QPointF at(10, 10);
        QWheelEvent wheel(at, editor->viewport()->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(editor->viewport(), &wheel);
    }

    std::unique_ptr<CDocTemplate> m_template;
};

TEST_F(ZoomTest, CommandsAndTheWheelZoomEveryTextViewAndTheLevelIsKept)
{
    {
        CFakeShell shell;
        InstallZoom(shell);
        CMFCScintilla* first = NewView(shell);
        CMFCScintilla* second = NewView(shell);
        shell.Commands().Execute(Cmd::ViewZoomIn);
        shell.Commands().Execute(Cmd::ViewZoomIn);
        EXPECT_EQ(Zoom(first), 2);
        EXPECT_EQ(Zoom(second), 2);
        shell.Commands().Execute(Cmd::ViewZoomOut);
        EXPECT_EQ(Zoom(first), 1);

        CtrlWheel(second, -120);
        EXPECT_EQ(Zoom(second), 0);
        EXPECT_EQ(Zoom(first), 0) << "the wheel in one view zooms the others";
        CtrlWheel(first, 120);
        CtrlWheel(first, 120);
        EXPECT_EQ(Zoom(second), 2);
        EXPECT_EQ(first->GetText(), QByteArray()) << "the wheel types nothing";

        const QList<QKeySequence> keys = shell.Commands().Action(Cmd::ViewZoomIn)->shortcuts();
        EXPECT_TRUE(keys.contains(QKeySequence(QStringLiteral("Ctrl++"))));
        EXPECT_TRUE(keys.contains(QKeySequence(QStringLiteral("Ctrl+="))));
        EXPECT_EQ(shell.Commands().Shortcut(Cmd::ViewZoomReset), QKeySequence(QStringLiteral("Ctrl+0")));
        Q_EMIT shell.Events().saveSettings();
    }
    EXPECT_EQ(CRegistryStore().GetProfileInt(QStringLiteral("Zoom"), QStringLiteral("Level"), -99), 2);

    CFakeShell next;
    InstallZoom(next);
    CMFCScintilla* reopened = NewView(next);
    EXPECT_EQ(Zoom(reopened), 2) << "the level comes back on the next run";
    next.Commands().Execute(Cmd::ViewZoomReset);
    EXPECT_EQ(Zoom(reopened), 0);
}

} // namespace
