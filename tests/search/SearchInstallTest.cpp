// Search installed into the small test shell: its places, its states without a text
// view, its Find Results page and the dialogs the window closes first.
#include "CFakeShell.h"
#include "TestSupport.h"

#include "framework/CommandIds.h"
#include "search/CFindInFilesCommands.h"
#include "search/CFindResultsPage.h"
#include "search/CSearchCommands.h"
#include "search/SearchInstall.h"

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QSignalSpy>
#include <QToolBar>
#include <gtest/gtest.h>

namespace {

class SearchInstallTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        InstallSearch(m_shell);
    }
    QList<int> MenuIds(const QString& menuId)
    {
        QList<int> ids;
        for (QAction* action : m_shell.Menus().Menu(menuId)->actions()) {
            if (!action->isSeparator())
                ids << action->data().toInt();
        }
        return ids;
    }
    CFakeShell m_shell;
};

TEST_F(SearchInstallTest, TheFindsShareOneGroupOfTheMenuAndFollowTheFindBoxOnTheToolbar)
{
    using namespace Cmd;
    EXPECT_EQ(MenuIds(MenuId::Search), (QList<int>{EditFind, EditIncrementalFind, EditReplace, EditFindNext, EditFindPrevious, FindInFiles}));
    EXPECT_EQ(m_shell.Menus().ToolBarCommands(ToolBarId::Standard),
              (QList<int>{EditFindNext, EditFindPrevious, EditFind, EditReplace, FindInFiles}));
    // The box stands right before the buttons that search for its text.
    QToolBar* bar = m_shell.Menus().ToolBar(ToolBarId::Standard);
    CSearchCommands* commands = CSearchCommands::Of(m_shell);
    ASSERT_NE(commands, nullptr);
    const QList<QAction*> actions = bar->actions();
    const qsizetype next = actions.indexOf(m_shell.Commands().Action(EditFindNext));
    ASSERT_GT(next, 0);
    EXPECT_EQ(bar->widgetForAction(actions.at(next - 1)), commands->FindBox());
    EXPECT_EQ(CSearchCommands::Install(m_shell), commands) << "installed once";
}

TEST_F(SearchInstallTest, WithoutATextViewFindAndReplaceAreGreyedButTheBoxSearchesStillAnswer)
{
    EXPECT_FALSE(m_shell.Commands().State(Cmd::EditFind).enabled);
    EXPECT_FALSE(m_shell.Commands().State(Cmd::EditReplace).enabled);
    EXPECT_TRUE(m_shell.Commands().State(Cmd::EditFindNext).enabled);
    EXPECT_TRUE(m_shell.Commands().State(Cmd::FindInFiles).enabled);
    TestSupport::ModalAnswerer answerer;
    m_shell.Commands().Execute(Cmd::EditFindNext);
    EXPECT_EQ(answerer.Texts(), QStringList{QStringLiteral("Find has nothing to do")});
}

TEST_F(SearchInstallTest, FindResultsIsAnOutputPageThatAsksToBeShownWhenASearchBegins)
{
    CFindInFilesCommands* files = CFindInFilesCommands::Of(m_shell);
    ASSERT_NE(files, nullptr);
    ASSERT_EQ(m_shell.OutputPages().size(), 1);
    EXPECT_EQ(m_shell.OutputPages().first(), files->ResultsPage());
    EXPECT_EQ(m_shell.OutputPages().first()->Title(), QStringLiteral("Find Results"));
    QList<IOutputPage*> shown;
    QObject::connect(&m_shell.Events(), &CShellEvents::showOutputPage,
                     [&shown](IOutputPage* page) { shown << page; });
    files->ResultsPage()->beginSearch(QStringLiteral("Find"));
    EXPECT_EQ(shown, QList<IOutputPage*>{files->ResultsPage()});
}

TEST_F(SearchInstallTest, TheDialogsAreModelessWindowsOfTheShell)
{
    CSearchCommands* commands = CSearchCommands::Of(m_shell);
    commands->ShowFindDialog(QStringLiteral("x"));
    ASSERT_NE(commands->FindDialog(), nullptr);
    EXPECT_TRUE(m_shell.ModelessWindows().contains(commands->FindDialog()));
    commands->ShowReplaceDialog(QStringLiteral("x"));
    EXPECT_TRUE(m_shell.ModelessWindows().contains(commands->ReplaceDialog()));
}

} // namespace
