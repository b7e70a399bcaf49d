#include "CFakeShell.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <gtest/gtest.h>

namespace {

// What a menu shows, top to bottom: texts, "-" for a visible line.
QStringList Shown(const QList<QAction*>& actions)
{
    QStringList shown;
    for (const QAction* action : actions) {
        if (!action->isVisible())
            continue;
        shown << (action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return shown;
}

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
    EXPECT_EQ(Folded(Shown(menus.Menu(MenuId::File)->actions())),
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
    EXPECT_EQ(Folded(Shown(menus.Menu(MenuId::Edit)->actions())),
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
    EXPECT_EQ(Shown(menus.ToolBar(ToolBarId::Standard)->actions()), (QStringList{"New", "-", "Copy"}));
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
    EXPECT_EQ(Folded(Shown(menus.Menu(MenuId::File)->actions())),
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
