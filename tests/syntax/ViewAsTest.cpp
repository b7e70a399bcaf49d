#include "framework/CommandIds.h"
#include "syntax/CViewAsManagerDialog.h"
#include "syntax/ViewAsMenu.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>

#include <gtest/gtest.h>

namespace {

QStringList Names(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names << QStringLiteral("Lang%1").arg(i);
    return names;
}

TEST(ViewAsMenu, ShowsAtMostTwentyOneNamesThenMoreAndRefillsInPlace)
{
    QMenu menu;
    QAction* other = menu.addAction(QStringLiteral("Something else"));
    QList<QAction*> actions = ViewAsMenu::Fill(&menu, QStringList());
    ASSERT_EQ(actions.size(), 2);
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Coloring Not Available"));
    EXPECT_FALSE(actions[0]->isEnabled());
    EXPECT_EQ(actions[1]->data().toInt(), int(Cmd::ViewAsMore));

    actions = ViewAsMenu::Fill(&menu, Names(24) << QStringLiteral("R&D"));
    ASSERT_EQ(actions.size(), 22);
    EXPECT_EQ(actions[20]->text(), QStringLiteral("Lang20"));
    EXPECT_EQ(actions[20]->data().toInt(), int(Cmd::ViewAsFirst) + 20);
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsFirst + 20), 20);
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsMore), -1);
    // The other entry, 21 names, a separator, "More ...".
    ASSERT_EQ(menu.actions().size(), 24);
    EXPECT_EQ(menu.actions().first(), other);
    EXPECT_TRUE(menu.actions()[22]->isSeparator());

    actions = ViewAsMenu::Fill(&menu, QStringList{QStringLiteral("R&D")});
    EXPECT_EQ(actions[0]->text(), QStringLiteral("R&&D")) << "ampersands stay visible";
    EXPECT_EQ(menu.actions().size(), 4);

    actions = ViewAsMenu::Fill(&menu, Names(22));
    ViewAsMenu::UpdateChecks(actions, 22, 3);
    for (int i = 0; i < 21; ++i)
        EXPECT_EQ(actions[i]->isChecked(), i == 3) << i;
    // The 21st entry never shows a check; parsers past it are reached through the dialog.
    ViewAsMenu::UpdateChecks(actions, 22, 20);
    for (QAction* action : actions)
        EXPECT_FALSE(action->isChecked()) << action->text().toStdString();
}

TEST(ViewAsManagerDialog, ReachesParsersPastTheMenuOnceOneIsSelected)
{
    CViewAsManagerDialog dialog(Names(30), -1);
    QPushButton* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
    EXPECT_FALSE(ok->isEnabled());
    dialog.ListBox()->setCurrentRow(24);
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_EQ(dialog.SelectedIndex(), 24);
}

} // namespace
