#include "CFakeShell.h"
#include "TestSupport.h"
#include "settings/CRegistryStore.h"

#include <QAction>
#include <QMenu>
#include <gtest/gtest.h>

namespace {

// A child frame that speaks for one command, as a text or hex frame does.
class AnsweringFrame : public CChildFrame
{
public:
    explicit AnsweringFrame(int id) : CChildFrame(nullptr), m_id(id) {}
    bool OnCmdMsg(int id) override
    {
        if (id != m_id)
            return false;
        ++handled;
        return true;
    }
    void OnUpdateCmdUI(int id, CCmdUI& ui) const override
    {
        if (id == m_id) {
            ui.handled = true;
            ui.checked = true;
        }
    }
    int handled = 0;

private:
    int m_id;
};

class CommandRegistryTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }
    CFakeShell shell;
    CCommandRegistry& commands = shell.Commands();
};

TEST_F(CommandRegistryTest, SecondRegistrationOfAnIdIsRefusedAndTheFirstHandlerStays)
{
    int first = 0, second = 0;
    ASSERT_NE(commands.Register({.id = 100, .text = QStringLiteral("&One"), .run = [&] { ++first; }}),
              nullptr);
    EXPECT_EQ(commands.Register({.id = 100, .text = QStringLiteral("&Two"), .run = [&] { ++second; }}),
              nullptr);
    commands.Action(100)->trigger();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(commands.PlainText(100), QStringLiteral("One"));
}

TEST_F(CommandRegistryTest, ActiveChildAnswersFirstThenTheHandler)
{
    int ran = 0;
    commands.Register({.id = 200, .text = QStringLiteral("A"), .run = [&] { ++ran; }});
    AnsweringFrame frame(200);
    shell.ActivateChild(&frame);
    commands.Execute(200);
    EXPECT_EQ(frame.handled, 1);
    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(commands.State(200).checked);
    shell.ActivateChild(nullptr);
    commands.Execute(200);
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(commands.State(200).checked);
}

TEST_F(CommandRegistryTest, StatesFollowUpdateHandlersAndCommandsNobodyCarriesOutAreGrey)
{
    bool enabled = false;
    commands.Register({.id = 1, .text = QStringLiteral("Updated"), .run = [] {},
                       .update = [&](CCmdUI& ui) { ui.enabled = enabled; }});
    commands.Register({.id = 2, .text = QStringLiteral("Orphan")});
    commands.Register({.id = 3, .text = QStringLiteral("Plain"), .run = [] {}});
    commands.UpdateAll();
    EXPECT_FALSE(commands.Action(1)->isEnabled());
    EXPECT_FALSE(commands.Action(2)->isEnabled());
    EXPECT_TRUE(commands.Action(3)->isEnabled());
    enabled = true;
    commands.UpdateAll();
    EXPECT_TRUE(commands.Action(1)->isEnabled());
}

TEST_F(CommandRegistryTest, UserShortcutsOverrideDefaultsAndOnlyDifferencesAreStored)
{
    commands.Register({.id = 10, .text = QStringLiteral("Ten"), .shortcut = QKeySequence(QStringLiteral("Ctrl+1")), .run = [] {}});
    commands.Register({.id = 11, .text = QStringLiteral("Eleven"), .shortcut = QKeySequence(QStringLiteral("Ctrl+2")), .run = [] {}});
    commands.SetShortcut(10, QKeySequence(QStringLiteral("Ctrl+Alt+9")));
    EXPECT_EQ(commands.CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+Alt+9"))), 10);
    EXPECT_EQ(commands.CommandForShortcut(QKeySequence(QStringLiteral("Ctrl+1"))), 0);
    commands.SaveShortcuts();

    CRegistryStore store;
    EXPECT_EQ(store.GetProfileString(QStringLiteral("Shortcuts"), QStringLiteral("10")),
              QStringLiteral("Ctrl+Alt+9"));
    EXPECT_FALSE(store.HasValue(QStringLiteral("Shortcuts"), QStringLiteral("11")));

    CFakeShell restarted;
    restarted.Commands().Register({.id = 10, .text = QStringLiteral("Ten"), .shortcut = QKeySequence(QStringLiteral("Ctrl+1")), .run = [] {}});
    restarted.Commands().LoadShortcuts();
    EXPECT_EQ(restarted.Commands().Shortcut(10), QKeySequence(QStringLiteral("Ctrl+Alt+9")));
    restarted.Commands().ResetShortcut(10);
    EXPECT_EQ(restarted.Commands().Shortcut(10), QKeySequence(QStringLiteral("Ctrl+1")));
}

TEST_F(CommandRegistryTest, UnregisteredCommandLeavesMenusAndListing)
{
    commands.Register({.id = 53000, .text = QStringLiteral("Tool"), .run = [] {}});
    shell.Menus().AddCommand(MenuId::Tools, MenuGroup::ToolsUser, 53000);
    commands.Unregister(53000);
    EXPECT_FALSE(commands.Contains(53000));
    EXPECT_FALSE(commands.Ids().contains(53000));
    EXPECT_TRUE(shell.Menus().Menu(MenuId::Tools)->actions().size() > 0); // only its lines
    for (QAction* action : shell.Menus().Menu(MenuId::Tools)->actions())
        EXPECT_TRUE(action->isSeparator());
}

} // namespace
