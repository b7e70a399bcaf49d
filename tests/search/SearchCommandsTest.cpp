#include "TestSupport.h"

#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "search/CHistoryComboBox.h"
#include "search/CSearchCommands.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>

#include <gtest/gtest.h>

namespace {

CMainFrame* Frame() { return CMorvaneApp::MainFrame(); }

// The search commands installed into the program's real main window.
class SearchCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        CMorvaneApp::Instance()->Shutdown();
        TestSupport::ClearSettings();
        ASSERT_TRUE(CMorvaneApp::Instance()->InitInstance({}));
        m_commands = CSearchCommands::Install(*Frame());
        ASSERT_NE(m_commands, nullptr);
    }
    void TearDown() override { CMorvaneApp::Instance()->Shutdown(); }

    static void Run(int id)
    {
        Frame()->OnCommand(id);
        QApplication::processEvents();
    }

    CSearchCommands* m_commands = nullptr;
};

// The commands through the frame's own routing to a text view opened from a file: the
// toolbar box, the dialogs they open, and the dialogs going with the window.
TEST_F(SearchCommandsTest, CommandsReachTheActiveTextView)
{
    EXPECT_EQ(CSearchCommands::Install(*Frame()), m_commands) << "installed once";
    auto* box = Frame()->findChild<QComboBox*>(QStringLiteral("FindBox"));
    ASSERT_NE(box, nullptr);
    box->setEditText(QStringLiteral("abc"));
    TestSupport::ModalAnswerer answerer;

    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("t.txt"));
    TestSupport::WriteFile(path, "abc ABC abc");
    CMorvaneApp::Instance()->GetOpenOptions() = OpenOptions::defaults();
    CMorvaneApp::Instance()->GetOpenOptions().mode = OpenOptions::Text;
    ASSERT_TRUE(CMorvaneApp::Instance()->RouteOpenFile(path));
    auto* frame = qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
    ASSERT_NE(frame, nullptr);
    CMFCScintilla* editor = frame->GetView()->GetEditor();
    const auto selection = [editor] { return std::make_pair(editor->GetSelectionStart(), editor->GetSelectionEnd()); };
    editor->SetSel(4, 7);
    Run(Cmd::EditFindNext);
    EXPECT_EQ(selection(), std::make_pair(8L, 11L));
    Run(Cmd::EditFindNext);
    EXPECT_EQ(selection(), std::make_pair(0L, 3L)) << "Find Next wraps";
    Run(Cmd::EditFindPrevious);
    EXPECT_EQ(selection(), std::make_pair(0L, 3L)) << "Find Previous stops at the top";
    EXPECT_EQ(answerer.Texts().value(0), QStringLiteral("The search text was not found"));

    editor->SetSel(4, 7);
    Run(Cmd::EditFind);
    ASSERT_NE(m_commands->FindDialog(), nullptr);
    EXPECT_EQ(m_commands->FindDialog()->FindCombo()->currentText(), QStringLiteral("ABC")) << "seeded";
    Run(Cmd::EditReplace);
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
    QPointer<CReplaceDialog> replace = m_commands->ReplaceDialog();
    ASSERT_TRUE(replace);
    Frame()->close();
    QApplication::processEvents();
    EXPECT_FALSE(replace);
}

} // namespace
