// The view inside the running application: navigation records, the active view, and
// the main window's actions and settings.
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "editor/CEditorCommands.h"
#include "TestSupport.h"

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;
using Entry = NavigationHistory::Entry;

// A new text document, active in the running main window.
class EditorViewAppTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CMorvaneApp::Instance()->Shutdown();
        TestSupport::ClearSettings();
        ASSERT_TRUE(CMorvaneApp::Instance()->InitInstance({}));
        m_main = CMorvaneApp::MainFrame();
        ASSERT_NE(m_main, nullptr);
        auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::Instance()->NewDocument());
        ASSERT_NE(document, nullptr);
        m_frame = qobject_cast<CScrivelFrame*>(document->GetFrames().first());
        ASSERT_NE(m_frame, nullptr);
        m_main->MdiArea()->setActiveSubWindow(m_frame);
        QApplication::processEvents();
        m_view = m_frame->GetView();
        m_editor = m_view->GetEditor();
    }
    void TearDown() override
    {
        if (CMainFrame* frame = CMorvaneApp::MainFrame()) {
            for (CChildFrame* child : frame->ChildFrames()) {
                if (child->GetDocument())
                    child->GetDocument()->SetModifiedFlag(false);
            }
        }
        CMorvaneApp::Instance()->Shutdown();
    }
    void AddLines()
    {
        for (int i = 0; i < 500; ++i)
            m_editor->AddText("line\n", 5);
        m_editor->GotoPos(0);
        m_view->OnUpdateUi();
        History() = NavigationHistory();
    }
    static NavigationHistory& History() { return Host()->Navigation(); }
    static CEditorCommands* Host() { return CEditorCommands::Of(*CMorvaneApp::MainFrame()); }

    CMainFrame* m_main = nullptr;
    CScrivelFrame* m_frame = nullptr;
    CScrivelView* m_view = nullptr;
    CMFCScintilla* m_editor = nullptr;
};

TEST_F(EditorViewAppTest, GotoPositionRecordsBothEndsAndSteppingBackRecordsNothing)
{
    AddLines();
    const long first = m_editor->PositionFromLine(200);
    const long second = m_editor->PositionFromLine(400);
    m_view->GotoPosition(first);
    m_view->GotoPosition(second);
    ASSERT_EQ(History().Entries(), (QList<Entry>{{m_view, 0}, {m_view, first}, {m_view, second}}));

    // What the main window's Back does: take the entry, put the caret there.
    for (long expected : {first, 0L}) {
        Entry entry;
        ASSERT_TRUE(History().Back(entry));
        EXPECT_EQ(entry.position, expected);
        m_editor->GotoPos(entry.position);
        m_view->OnUpdateUi();
    }
    EXPECT_EQ(History().Cursor(), 0) << "the caret's moves did not pull the cursor forward";
    EXPECT_EQ(History().Count(), 3);
}

TEST_F(EditorViewAppTest, OnlyJumpsOfMoreThanAScreenAreRecordedSaveBookmarkJumps)
{
    AddLines();
    const long screen = m_editor->SendScintilla(Sci::SCI_LINESONSCREEN);
    ASSERT_GT(screen, 0);
    m_editor->GotoLine(screen); // exactly one screenful
    m_view->OnUpdateUi();
    EXPECT_EQ(History().Count(), 0);
    const long from = m_editor->GetCurrentPos();
    m_editor->GotoLine(2 * screen + 1);
    m_view->OnUpdateUi();
    EXPECT_EQ(History().Entries(), (QList<Entry>{{m_view, from}, {m_view, m_editor->GetCurrentPos()}}));

    m_editor->ToggleBookmark(2 * screen + 3);
    ASSERT_TRUE(m_editor->NextBookmark(true, false));
    ASSERT_EQ(History().Count(), 3);
    EXPECT_EQ(History().Entries().at(2), (Entry{m_view, m_editor->PositionFromLine(2 * screen + 3)}));
}

TEST_F(EditorViewAppTest, AClosedViewLeavesNoPositionsAndIsNoLongerActive)
{
    AddLines();
    m_view->GotoPosition(m_editor->PositionFromLine(400));
    CScrivelFrame* second = m_frame->OpenNewWindow();
    ASSERT_NE(second, nullptr);
    second->GetView()->GotoPosition(m_editor->PositionFromLine(100));
    ASSERT_EQ(History().Count(), 4);
    ASSERT_EQ(m_main->MdiArea()->activeSubWindow(), second) << "deleting m_frame moves no focus";
    Host()->SetActiveView(m_view);

    delete m_frame;
    m_frame = nullptr;
    for (const Entry& entry : History().Entries())
        EXPECT_NE(entry.view, static_cast<const void*>(m_view));
    EXPECT_EQ(History().Count(), 2);
    EXPECT_EQ(Host()->ActiveView(), nullptr);
}

TEST_F(EditorViewAppTest, ContextMenuSharesTheMainWindowsActions)
{
    m_editor->AddText("abc", 3);
    m_editor->SetSel(0, 3);
    std::unique_ptr<QMenu> menu(m_view->CreateContextMenu());
    QAction* upper = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->data().toInt() == Cmd::EditUpperCase && !action->menu())
            upper = action;
    }
    ASSERT_NE(upper, nullptr);
    EXPECT_EQ(upper, m_main->Action(Cmd::EditUpperCase)) << "the main window's own action";
    upper->trigger();
    QApplication::processEvents();
    EXPECT_EQ(m_editor->GetText(), "ABC");
}

TEST_F(EditorViewAppTest, BraceLightFollowsTheMainWindowsSetting)
{
    m_editor->AddText("  {\n  }", 7);
    m_editor->GotoPos(3);
    m_main->Settings().view.MatchBracket = 1;
    m_view->OnUpdateUi();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 2);
    // The toggle changes only the main window's setting; the light goes at the next update.
    m_main->Settings().view.MatchBracket = 0;
    m_view->OnUpdateUi();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 0);
}

TEST_F(EditorViewAppTest, TypingRefreshesTheUndoCommand)
{
    m_main->UpdateCommandUI();
    QAction* undo = m_main->Action(Cmd::EditUndo);
    ASSERT_NE(undo, nullptr);
    EXPECT_FALSE(undo->isEnabled());
    QTest::keyClicks(m_editor, QStringLiteral("x"));
    QApplication::processEvents();
    EXPECT_TRUE(undo->isEnabled()) << "no command ran, the edit alone asked for the refresh";
}

} // namespace
