#include "TestSupport.h"

#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "app/CommandIds.h"
#include "editor/CMFCScintilla.h"
#include "editor/CScrivelDoc.h"
#include "editor/CScrivelFrame.h"
#include "editor/CScrivelView.h"
#include "search/CFindDialog.h"
#include "search/CHistoryComboBox.h"
#include "search/CSearchCommands.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QMdiArea>

#include <gtest/gtest.h>

namespace {

// The search commands installed into the program's real main window.
class SearchCommandsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App()->Shutdown();
        TestSupport::ClearSettings();
        ASSERT_TRUE(App()->InitInstance({}));
        // The start may open its empty document once idle: close until none is left.
        for (int i = 0; i < 5 && !Frame()->ChildFrames().isEmpty(); ++i) {
            Frame()->MdiArea()->closeAllSubWindows();
            QApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        ASSERT_TRUE(Frame()->ChildFrames().isEmpty());
        m_commands = CSearchCommands::Install(Frame());
        ASSERT_NE(m_commands, nullptr);
    }
    void TearDown() override { App()->Shutdown(); }

    static CMorvaneApp* App() { return CMorvaneApp::Instance(); }
    static CMainFrame* Frame() { return CMorvaneApp::MainFrame(); }

    CMFCScintilla* OpenText(const QByteArray& bytes)
    {
        const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("t.txt"));
        TestSupport::WriteFile(path, bytes);
        App()->GetOpenOptions() = OpenOptions::defaults();
        App()->GetOpenOptions().mode = OpenOptions::Text;
        if (!App()->RouteOpenFile(path))
            return nullptr;
        auto* frame = qobject_cast<CScrivelFrame*>(Frame()->ActiveChild());
        return frame ? frame->GetView()->GetEditor() : nullptr;
    }
    static QComboBox* FindBox() { return Frame()->findChild<QComboBox*>(QStringLiteral("FindBox")); }
    static void Run(int id)
    {
        Frame()->OnCommand(id);
        QApplication::processEvents();
    }
    static std::pair<long, long> Selection(const CMFCScintilla* editor)
    {
        return {editor->GetSelectionStart(), editor->GetSelectionEnd()};
    }

    CSearchCommands* m_commands = nullptr;
};

TEST_F(SearchCommandsTest, InstallingTwiceKeepsOneObject)
{
    EXPECT_EQ(CSearchCommands::Install(Frame()), m_commands);
    EXPECT_EQ(CSearchCommands::Of(Frame()), m_commands);
    EXPECT_EQ(Frame()->findChildren<CSearchCommands*>().size(), 1);
}

TEST_F(SearchCommandsTest, FindNextAndPreviousUseTheToolbarBox)
{
    CMFCScintilla* editor = OpenText("abc ABC abc");
    ASSERT_NE(editor, nullptr);
    ASSERT_NE(FindBox(), nullptr);
    editor->SetSel(0, 0);
    FindBox()->setEditText(QStringLiteral("abc"));
    TestSupport::ModalAnswerer answerer;
    Run(Cmd::EditFindNext);
    EXPECT_EQ(Selection(editor), std::make_pair(0L, 3L));
    Run(Cmd::EditFindNext);
    EXPECT_EQ(Selection(editor), std::make_pair(4L, 7L)) << "without regard to case";
    Run(Cmd::EditFindPrevious);
    EXPECT_EQ(Selection(editor), std::make_pair(0L, 3L));
    Run(Cmd::EditFindPrevious);
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("The search text was not found")}));
}

TEST_F(SearchCommandsTest, FindNextWithoutDocumentHasNothingToDo)
{
    FindBox()->setEditText(QStringLiteral("abc"));
    TestSupport::ModalAnswerer answerer;
    Run(Cmd::EditFindNext);
    EXPECT_EQ(answerer.Texts(), QStringList({QStringLiteral("Find has nothing to do")}));
}

TEST_F(SearchCommandsTest, FindCommandOpensTheDialogAndClosingTheWindowDestroysIt)
{
    CMFCScintilla* editor = OpenText("hello world");
    ASSERT_NE(editor, nullptr);
    editor->SetSel(6, 11);
    Run(Cmd::EditFind);
    QPointer<CFindDialog> dialog = m_commands->FindDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->FindCombo()->currentText(), QStringLiteral("world"));

    Run(Cmd::EditReplace);
    EXPECT_EQ(m_commands->FindDialog(), nullptr);
    ASSERT_NE(m_commands->ReplaceDialog(), nullptr);
    QPointer<CReplaceDialog> replace = m_commands->ReplaceDialog();

    Frame()->close();
    QApplication::processEvents();
    EXPECT_FALSE(replace);
}

} // namespace
