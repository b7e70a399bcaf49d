// Every subsystem installed into one shell, as the program does: every command
// reachable from a menu, a toolbar or a frame, placeholders taken over.
#include "CFakeShell.h"
#include "MenuTexts.h"
#include "shell/IExplorerPage.h"
#include "TestSupport.h"

#include "app/Subsystems.h"
#include "framework/CommandIds.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <gtest/gtest.h>

namespace {

class AllSubsystemsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        InstallSubsystems(m_shell);
    }
    // Every action of every declared menu, submenus included.
    QList<QAction*> MenuActions() const
    {
        QList<QAction*> all;
        for (const QString& id : const_cast<CFakeShell&>(m_shell).Menus().MenuIds())
            all << const_cast<CFakeShell&>(m_shell).Menus().Menu(id)->actions();
        return all;
    }
    CFakeShell m_shell;
};

TEST_F(AllSubsystemsTest, EveryRegisteredCommandHasAPlaceInAMenu)
{
    const QList<QAction*> shown = MenuActions();
    // An explorer page's tool strip is its commands' place; the bar shows it.
    QList<int> onToolStrips;
    for (IExplorerPage* page : m_shell.ExplorerPages())
        onToolStrips << page->ToolStrip();
    for (const int id : m_shell.Commands().Ids()) {
        if (onToolStrips.contains(id))
            continue;
        // The frame's own commands (Open, Save ...) are placed by the main window.
        EXPECT_TRUE(shown.contains(m_shell.Commands().Action(id))) << id;
    }
}

TEST_F(AllSubsystemsTest, TheViewMenuListsViewAsTheTogglesTheFontAndTheOutputBar)
{
    EXPECT_EQ(MenuTexts(m_shell.Menus().Menu(MenuId::View)->actions()), (QStringList{"View &As", "-", "&Word Wrap", "W&hitespace", "Line &Endings", "&Caret Line",
                                  "Line &Numbers", "Code Foldin&g", "&Block Select", "&Match Bracket", "Highlight Occurrences", "-",
                                  "Zoom &In", "Zoom &Out", "Reset &Zoom", "-", "&Font...", "&Theme", "-",
                                  "O&utput Bar", "File Explorer", "Project Explorer", "Code Library", "List Explorer", "E&xplorer Bar", "-", "Next &Difference", "Pre&vious Difference",
                                  "Copy to &Left", "Cop&y to Right", "Swa&p Sides", "&Recompare",
                                  "Ignore Whitespace Changes", "Ignore Case"}));
    QMenu* viewAs = m_shell.Menus().Menu(MenuId::ViewAs);
    ASSERT_FALSE(viewAs->actions().isEmpty());
    EXPECT_EQ(viewAs->actions().last()->data().toInt(), int(Cmd::ViewAsMore));
    EXPECT_EQ(viewAs->actions().last(), m_shell.Commands().Action(Cmd::ViewAsMore));
}

TEST_F(AllSubsystemsTest, APlaceholdersSubsystemTakesItsPlaceOverWithTheSameAction)
{
    // A command whose subsystem is still to come holds its place greyed.
    constexpr int kLater = 36999;
    CCommandRegistry& commands = m_shell.Commands();
    QAction* before = commands.Register({.id = kLater, .text = QStringLiteral("&Later"), .placeholder = true});
    ASSERT_NE(before, nullptr);
    m_shell.Menus().AddCommand(MenuId::File, MenuGroup::FilePrint, kLater);
    EXPECT_FALSE(commands.State(kLater).enabled) << "greyed while nobody carries it out";
    int ran = 0;
    QAction* after = commands.Register({.id = kLater, .text = QStringLiteral("&Later"),
                                        .shortcut = QKeySequence(QStringLiteral("Ctrl+Alt+Shift+F12")),
                                        .run = [&ran] { ++ran; }});
    EXPECT_EQ(after, before);
    m_shell.Menus().AddCommand(MenuId::File, MenuGroup::FilePrint, kLater);
    EXPECT_EQ(m_shell.Menus().Menu(MenuId::File)->actions().count(before), 1) << "added once";
    EXPECT_TRUE(commands.State(kLater).enabled);
    commands.Execute(kLater);
    EXPECT_EQ(ran, 1);
    // A real command is not taken over a second time.
    EXPECT_EQ(commands.Register({.id = kLater, .text = QStringLiteral("Other")}), nullptr);
    EXPECT_EQ(commands.Action(kLater)->text(), QStringLiteral("&Later"));
}

} // namespace
