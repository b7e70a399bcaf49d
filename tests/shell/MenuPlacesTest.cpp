#include "CFakeShell.h"
#include "MenuTexts.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

// Menus fold lines at their ends and in runs when shown; the test folds them the same way.
QStringList Folded(QStringList shown)
{
    QStringList folded;
    for (const QString& item : shown) {
        if (item == QStringLiteral("-") && (folded.isEmpty() || folded.last() == QStringLiteral("-")))
            continue;
        folded << item;
    }
    while (!folded.isEmpty() && folded.last() == QStringLiteral("-"))
        folded.removeLast();
    return folded;
}

class MenuPlacesTest : public ::testing::Test
{
protected:
    void Register(int id, const char* text)
    {
        shell.Commands().Register({.id = id, .text = QString::fromLatin1(text), .run = [] {}});
    }
    CFakeShell shell;
};

TEST_F(MenuPlacesTest, CommandsLandInTheirGroupsInDeclaredOrderWhateverTheOrderOfAdding)
{
    Register(1, "Exit");
    Register(2, "Open");
    Register(3, "Save");
    Register(4, "Open as Hex");
    CMenuPlaces& menus = shell.Menus();
    menus.AddCommand(MenuId::File, MenuGroup::FileExit, 1);
    menus.AddCommand(MenuId::File, MenuGroup::FileSave, 3);
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 2);
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 4);
    EXPECT_EQ(Folded(MenuTexts(menus.Menu(MenuId::File)->actions())),
              (QStringList{"Open", "Open as Hex", "-", "Save", "-", "Exit"}));
}

TEST_F(MenuPlacesTest, SubmenusTakeAPlaceInTheirParentsGroup)
{
    Register(1, "Date");
    Register(2, "Undo");
    CMenuPlaces& menus = shell.Menus();
    QMenu* insert = menus.DeclareMenu(MenuId::EditInsert, QStringLiteral("&Insert"),
                                      {MenuGroup::Default}, MenuId::Edit, MenuGroup::EditSubMenus);
    menus.AddCommand(MenuId::EditInsert, MenuGroup::Default, 1);
    menus.AddCommand(MenuId::Edit, MenuGroup::EditUndo, 2);
    EXPECT_EQ(Folded(MenuTexts(menus.Menu(MenuId::Edit)->actions())),
              (QStringList{"Undo", "-", "&Insert"}));
    EXPECT_EQ(menus.Menu(MenuId::EditInsert), insert);
    EXPECT_EQ(menus.DeclareMenu(MenuId::EditInsert, QStringLiteral("Other"), {}), insert);
}

TEST_F(MenuPlacesTest, ToolbarLinesShowOnlyBetweenFilledGroupsAndCommandsAreListed)
{
    Register(57600, "New");
    Register(57634, "Copy");
    CMenuPlaces& menus = shell.Menus();
    menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Clipboard, 57634);
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{57634}));
    menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, 57600);
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{57600, 0, 57634}));
    EXPECT_EQ(MenuTexts(menus.ToolBar(ToolBarId::Standard)->actions()), (QStringList{"New", "-", "Copy"}));
}

TEST_F(MenuPlacesTest, AGroupOrderPlacesCommandsWhicheverSubsystemAddsThemFirst)
{
    Register(10, "Open");
    Register(11, "Open as Hex");
    Register(12, "Close");
    Register(13, "Extra");
    CMenuPlaces& menus = shell.Menus();
    menus.SetGroupOrder(MenuId::File, MenuGroup::FileOpen, {10, 11, 12});
    // The main window adds its two, another subsystem its one in between, later.
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 12);
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 13);
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 10);
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 11);
    EXPECT_EQ(Folded(MenuTexts(menus.Menu(MenuId::File)->actions())),
              (QStringList{"Open", "Open as Hex", "Close", "Extra"}));
}

TEST_F(MenuPlacesTest, EmptySubmenusAndToolsStayHiddenUntilSomethingIsAdded)
{
    CMenuPlaces& menus = shell.Menus();
    QMenu* tools = menus.Menu(MenuId::Tools);
    QMenu* lines = menus.Menu(MenuId::EditLines);
    ASSERT_TRUE(tools && lines);
    EXPECT_FALSE(tools->menuAction()->isVisible());
    EXPECT_FALSE(lines->menuAction()->isVisible());
    Register(20, "Run Tool");
    menus.AddCommand(MenuId::Tools, MenuGroup::ToolsRun, 20);
    EXPECT_TRUE(tools->menuAction()->isVisible());
    EXPECT_FALSE(lines->menuAction()->isVisible());
}

} // namespace

namespace {

class ToolBarLayoutTest : public MenuPlacesTest
{
protected:
    void SetUp() override
    {
        Register(10, "New");
        Register(11, "Open");
        Register(12, "Cut");
        Register(13, "Print");
        CMenuPlaces& menus = shell.Menus();
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, 10);
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::File, 11);
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Clipboard, 12);
        menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Print, 13);
        findBox = new QWidget;
        menus.AddToolBarWidget(ToolBarId::Standard, ToolBarGroup::Find, findBox);
    }
    QWidget* findBox = nullptr;
};

TEST_F(ToolBarLayoutTest, UserLayoutReplacesTheButtonsKeepsWidgetsAndResetRestoresTheDefault)
{
    CMenuPlaces& menus = shell.Menus();
    // The line before the find box shows as a trailing 0; the default lists commands only.
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{10, 11, 0, 12, 0, 13, 0}));
    EXPECT_EQ(menus.DefaultToolBarCommands(ToolBarId::Standard), (QList<int>{10, 11, 0, 12, 0, 13}));

    // Leading, doubled and trailing lines fold away; an id nobody registered is skipped.
    menus.SetToolBarCommands(ToolBarId::Standard, {0, 13, 0, 0, 999, 10, 0});
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{13, 0, 10}));
    EXPECT_TRUE(menus.IsToolBarCustomised(ToolBarId::Standard));
    QToolBar* bar = menus.ToolBar(ToolBarId::Standard);
    auto holdsFindBox = [bar, this] {
        const auto actions = bar->actions();
        return std::any_of(actions.cbegin(), actions.cend(),
                           [bar, this](QAction* a) { return bar->widgetForAction(a) == findBox; });
    };
    EXPECT_TRUE(holdsFindBox());
    // The menus keep their commands whatever the toolbar shows.
    menus.AddCommand(MenuId::File, MenuGroup::FileOpen, 11);
    EXPECT_TRUE(menus.Menu(MenuId::File)->actions().contains(shell.Commands().Action(11)));

    // A command a subsystem adds later joins the default, not the user's layout.
    Register(14, "Find");
    menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Find, 14);
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{13, 0, 10}));

    menus.ResetToolBar(ToolBarId::Standard);
    EXPECT_FALSE(menus.IsToolBarCustomised(ToolBarId::Standard));
    EXPECT_EQ(menus.ToolBarCommands(ToolBarId::Standard), (QList<int>{10, 11, 0, 12, 0, 13, 0, 14}));
    EXPECT_TRUE(holdsFindBox());
}

TEST_F(ToolBarLayoutTest, AToolBarCanBeRemovedAndItsCommandsLive)
{
    CMenuPlaces& menus = shell.Menus();
    menus.DeclareToolBar(QStringLiteral("User1"), QStringLiteral("Mine"), {MenuGroup::Default});
    menus.SetToolBarCommands(QStringLiteral("User1"), {12, 13});
    EXPECT_EQ(menus.ToolBarCommands(QStringLiteral("User1")), (QList<int>{12, 13}));
    EXPECT_TRUE(menus.RemoveToolBar(QStringLiteral("User1")));
    EXPECT_FALSE(menus.ToolBarIds().contains(QStringLiteral("User1")));
    EXPECT_EQ(menus.ToolBar(QStringLiteral("User1")), nullptr);
    ASSERT_NE(shell.Commands().Action(12), nullptr);
    EXPECT_FALSE(menus.RemoveToolBar(QStringLiteral("User1")));
}

} // namespace
