// The view inside the running application: navigation records, the active view, and
// the context menu made of the main window's actions.
#include "app/CDocTemplate.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "app/CommandIds.h"
#include "app/OpenOptions.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
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

// A document with its frame, outside the main window.
class EditorViewAppTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_NE(CMorvaneApp::Instance(), nullptr);
        CMorvaneApp::Instance()->GetNavigation() = NavigationHistory();
        m_template = std::make_unique<CDocTemplate>(
            QStringLiteral("Untitled"), [] { return new CScrivelDoc(); },
            [](CDocument* d) { return new CScrivelFrame(static_cast<CScrivelDoc*>(d)); });
        m_template->SetOpenOptions(&m_options);
        m_document = static_cast<CScrivelDoc*>(m_template->OpenDocumentFile(QString(), false));
        ASSERT_NE(m_document, nullptr);
        m_frame = qobject_cast<CScrivelFrame*>(m_document->GetFrames().first());
        m_view = m_frame->GetView();
        m_editor = m_view->GetEditor();
        m_frame->resize(400, 300);
        m_frame->show();
        QByteArray text;
        for (int i = 0; i < 500; ++i)
            text += "line " + QByteArray::number(i) + '\n';
        m_editor->AddText(text.constData(), text.size());
        m_editor->GotoPos(0);
        m_view->OnUpdateUi();
    }

    void TearDown() override
    {
        for (CDocument* document : m_template->GetDocuments()) {
            document->SetModifiedFlag(false);
            const auto frames = document->GetFrames();
            for (CChildFrame* frame : frames)
                delete frame;
            delete document;
        }
    }

    static NavigationHistory& History() { return CMorvaneApp::Instance()->GetNavigation(); }

    OpenOptions m_options;
    std::unique_ptr<CDocTemplate> m_template;
    CScrivelDoc* m_document = nullptr;
    CScrivelFrame* m_frame = nullptr;
    CScrivelView* m_view = nullptr;
    CMFCScintilla* m_editor = nullptr;
};

TEST_F(EditorViewAppTest, GotoPositionRecordsWhereTheCaretCameFromAndWent)
{
    const long target = m_editor->PositionFromLine(300);
    m_view->GotoPosition(target);
    ASSERT_EQ(History().Count(), 2);
    EXPECT_EQ(History().Entries().at(0), (Entry{m_view, 0}));
    EXPECT_EQ(History().Entries().at(1), (Entry{m_view, target}));
    Entry back;
    ASSERT_TRUE(History().Back(back));
    EXPECT_EQ(back.position, 0);
}

TEST_F(EditorViewAppTest, SteppingBackThroughTheHistoryIsNotRecordedAgain)
{
    const long first = m_editor->PositionFromLine(200);
    const long second = m_editor->PositionFromLine(400);
    m_view->GotoPosition(first);
    m_view->GotoPosition(second);
    ASSERT_EQ(History().Count(), 3); // 0, first, second

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

TEST_F(EditorViewAppTest, OnlyJumpsOfMoreThanAScreenAreRecorded)
{
    const long screen = m_editor->SendScintilla(Sci::SCI_LINESONSCREEN);
    ASSERT_GT(screen, 0);
    m_editor->GotoLine(screen); // exactly one screenful
    m_view->OnUpdateUi();
    EXPECT_EQ(History().Count(), 0);

    const long from = m_editor->GetCurrentPos();
    m_editor->GotoLine(2 * screen + 1);
    m_view->OnUpdateUi();
    ASSERT_EQ(History().Count(), 2);
    EXPECT_EQ(History().Entries().at(0), (Entry{m_view, from}));
    EXPECT_EQ(History().Entries().at(1), (Entry{m_view, m_editor->GetCurrentPos()}));
}

TEST_F(EditorViewAppTest, BookmarkJumpsAreRecordedWhateverTheirLength)
{
    m_editor->ToggleBookmark(3);
    ASSERT_TRUE(m_editor->NextBookmark(true, false));
    ASSERT_EQ(History().Count(), 2);
    EXPECT_EQ(History().Entries().at(1), (Entry{m_view, m_editor->PositionFromLine(3)}));
}

TEST_F(EditorViewAppTest, AClosedViewLeavesNoPositionsAndIsNoLongerActive)
{
    m_view->GotoPosition(m_editor->PositionFromLine(400));
    CMorvaneApp::Instance()->SetActiveView(nullptr);
    m_editor->setFocus();
    QApplication::processEvents();
    if (QApplication::focusWidget() == m_editor) {
        EXPECT_EQ(CMorvaneApp::Instance()->GetActiveView(), m_view);
    }
    CMorvaneApp::Instance()->SetActiveView(m_view);

    CScrivelFrame* second = m_frame->OpenNewWindow();
    ASSERT_NE(second, nullptr);
    second->GetView()->GotoPosition(m_editor->PositionFromLine(100));
    ASSERT_EQ(History().Count(), 4);

    delete m_frame;
    m_frame = nullptr;
    for (const Entry& entry : History().Entries())
        EXPECT_NE(entry.view, static_cast<const void*>(m_view));
    EXPECT_EQ(History().Count(), 2);
    EXPECT_EQ(CMorvaneApp::Instance()->GetActiveView(), nullptr);
}

// With the whole program running ----------------------------------------------------------

class EditorViewInMainFrameTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CMorvaneApp::Instance()->Shutdown();
        TestSupport::ClearSettings();
        ASSERT_TRUE(CMorvaneApp::Instance()->InitInstance({}));
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
};

TEST_F(EditorViewInMainFrameTest, ContextMenuSharesTheMainWindowsActions)
{
    CMainFrame* mainFrame = CMorvaneApp::MainFrame();
    ASSERT_NE(mainFrame, nullptr);
    auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::Instance()->NewDocument());
    ASSERT_NE(document, nullptr);
    auto* frame = qobject_cast<CScrivelFrame*>(document->GetFrames().first());
    ASSERT_NE(frame, nullptr);
    mainFrame->MdiArea()->setActiveSubWindow(frame);
    QApplication::processEvents();
    CMFCScintilla* editor = frame->GetView()->GetEditor();
    editor->AddText("abc", 3);
    editor->SetSel(0, 3);

    std::unique_ptr<QMenu> menu(frame->GetView()->CreateContextMenu());
    int shared = 0;
    QAction* upper = nullptr;
    for (QAction* action : menu->actions()) {
        if (action->isSeparator() || action->menu())
            continue;
        const int id = action->data().toInt();
        if (mainFrame->Action(id) == action)
            ++shared;
        if (id == Cmd::EditUpperCase)
            upper = action;
    }
    EXPECT_GT(shared, 0) << "the main window's actions are used where it has them";
    ASSERT_NE(upper, nullptr);
    upper->trigger();
    QApplication::processEvents();
    EXPECT_EQ(editor->GetText(), "ABC");
}

TEST_F(EditorViewInMainFrameTest, ViewsFollowTheMainWindowsBraceSetting)
{
    CMainFrame* mainFrame = CMorvaneApp::MainFrame();
    auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::Instance()->NewDocument());
    ASSERT_NE(document, nullptr);
    CScrivelView* view = qobject_cast<CScrivelFrame*>(document->GetFrames().first())->GetView();
    CMFCScintilla* editor = view->GetEditor();
    editor->AddText("  {\n  }", 7);
    editor->GotoPos(3);

    mainFrame->Settings().view.MatchBracket = 1;
    view->OnUpdateUi();
    EXPECT_EQ(editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 2);
    // The toggle changes only the main window's setting; the light goes at the next update.
    mainFrame->Settings().view.MatchBracket = 0;
    view->OnUpdateUi();
    EXPECT_EQ(editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), 0);
}

TEST_F(EditorViewInMainFrameTest, TypingRefreshesTheUndoCommand)
{
    CMainFrame* mainFrame = CMorvaneApp::MainFrame();
    auto* document = qobject_cast<CScrivelDoc*>(CMorvaneApp::Instance()->NewDocument());
    ASSERT_NE(document, nullptr);
    auto* frame = qobject_cast<CScrivelFrame*>(document->GetFrames().first());
    mainFrame->MdiArea()->setActiveSubWindow(frame);
    mainFrame->UpdateCommandUI();
    QAction* undo = mainFrame->Action(Cmd::EditUndo);
    ASSERT_NE(undo, nullptr);
    EXPECT_FALSE(undo->isEnabled());

    QTest::keyClicks(frame->GetView()->GetEditor(), QStringLiteral("x"));
    QApplication::processEvents();
    EXPECT_TRUE(undo->isEnabled()) << "no command ran, the edit alone asked for the refresh";
}

} // namespace
