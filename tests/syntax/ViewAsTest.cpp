#include "app/CommandIds.h"
#include "syntax/CViewAsManagerDialog.h"
#include "syntax/ViewAsMenu.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

QStringList Names(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names << QStringLiteral("Lang%1").arg(i);
    return names;
}

int Id(const QAction* action)
{
    return action->data().toInt();
}

TEST(ViewAsMenu, WithoutParsersShowsColoringNotAvailable)
{
    QMenu menu;
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, QStringList());
    ASSERT_EQ(actions.size(), 2);
    EXPECT_EQ(actions[0]->text(), QStringLiteral("Coloring Not Available"));
    EXPECT_EQ(Id(actions[0]), int(Cmd::ViewAsFirst));
    EXPECT_FALSE(actions[0]->isEnabled());
    EXPECT_EQ(actions[1]->text(), QStringLiteral("More ..."));
    EXPECT_EQ(Id(actions[1]), int(Cmd::ViewAsMore));
}

TEST(ViewAsMenu, ShowsAtMostTwentyOneNamesThenMore)
{
    QMenu menu;
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, Names(25));
    ASSERT_EQ(actions.size(), 22);
    for (int i = 0; i < 21; ++i) {
        EXPECT_EQ(actions[i]->text(), QStringLiteral("Lang%1").arg(i));
        EXPECT_EQ(Id(actions[i]), int(Cmd::ViewAsFirst) + i);
        EXPECT_TRUE(actions[i]->isCheckable());
        EXPECT_TRUE(actions[i]->isEnabled());
    }
    EXPECT_EQ(Id(actions.last()), int(Cmd::ViewAsMore));
    // In the menu: 21 names, a separator, "More ...".
    const QList<QAction*> inMenu = menu.actions();
    ASSERT_EQ(inMenu.size(), 23);
    EXPECT_TRUE(inMenu[21]->isSeparator());
    EXPECT_EQ(inMenu[22], actions.last());
}

TEST(ViewAsMenu, FewNamesAllShow)
{
    QMenu menu;
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, Names(3));
    ASSERT_EQ(actions.size(), 4);
    EXPECT_EQ(Id(actions[2]), int(Cmd::ViewAsFirst) + 2);
}

TEST(ViewAsMenu, FillingAgainReplacesTheEntriesAndKeepsOthers)
{
    QMenu menu;
    QAction* other = menu.addAction(QStringLiteral("Something else"));
    ViewAsMenu::Fill(&menu, Names(5));
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, Names(2));
    ASSERT_EQ(actions.size(), 3);
    // "Something else", two names, the separator and "More ...".
    EXPECT_EQ(menu.actions().size(), 5);
    EXPECT_EQ(menu.actions().first(), other);
}

TEST(ViewAsMenu, AmpersandsInNamesStayVisible)
{
    QMenu menu;
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, QStringList{QStringLiteral("R&D")});
    EXPECT_EQ(actions[0]->text(), QStringLiteral("R&&D"));
}

TEST(ViewAsMenu, UsesTheFramesActionFactory)
{
    QMenu menu;
    QObject owner;
    QList<int> asked;
    const auto factory = [&](int id, const QString& text) {
        asked << id;
        return new QAction(text, &owner);
    };
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, Names(2), factory);
    EXPECT_EQ(asked, (QList<int>{Cmd::ViewAsFirst, Cmd::ViewAsFirst + 1, Cmd::ViewAsMore}));
    for (QAction* action : actions)
        EXPECT_EQ(action->parent(), &owner);
}

struct CheckCase
{
    int index;
    int count;
    int current;
    bool checked;
};

class ViewAsCheck : public ::testing::TestWithParam<CheckCase> {};

TEST_P(ViewAsCheck, MarksTheCurrentParserAmongTheFirstTwenty)
{
    const CheckCase& c = GetParam();
    EXPECT_EQ(ViewAsMenu::ShowsCheck(c.index, c.count, c.current), c.checked)
        << c.index << "/" << c.count << "/" << c.current;
}

INSTANTIATE_TEST_SUITE_P(Cases, ViewAsCheck, ::testing::Values(
    CheckCase{0, 5, 0, true}, CheckCase{1, 5, 0, false}, CheckCase{4, 5, 4, true},
    CheckCase{5, 5, 5, false},   // beyond the list
    CheckCase{19, 25, 19, true}, CheckCase{20, 25, 20, false}, // the 21st never shows a check
    CheckCase{0, 0, 0, false}, CheckCase{-1, 5, -1, false}));

TEST(ViewAsMenu, UpdateChecksMovesTheMark)
{
    QMenu menu;
    const QList<QAction*> actions = ViewAsMenu::Fill(&menu, Names(22));
    ViewAsMenu::UpdateChecks(actions, 22, 3);
    for (int i = 0; i < 21; ++i)
        EXPECT_EQ(actions[i]->isChecked(), i == 3) << i;
    ViewAsMenu::UpdateChecks(actions, 22, 20);
    for (int i = 0; i < 21; ++i)
        EXPECT_FALSE(actions[i]->isChecked()) << i;
    EXPECT_FALSE(actions.last()->isChecked());
}

TEST(ViewAsMenu, CommandIdsMapToParserIndexes)
{
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsFirst), 0);
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsLast), 25);
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsMore), -1);
    EXPECT_EQ(ViewAsMenu::ParserIndexOfCommand(Cmd::ViewAsFirst - 1), -1);
}

// --- Dialog --------------------------------------------------------------------------

QPushButton* OkButton(const CViewAsManagerDialog& dialog)
{
    return dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
}

TEST(ViewAsManagerDialog, ShowsEveryNameWithTheCurrentOneSelected)
{
    CViewAsManagerDialog dialog(Names(30), 24);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("View As ..."));
    bool labelFound = false;
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        labelFound = labelFound || label->text() == QStringLiteral("Select View As Parser");
    EXPECT_TRUE(labelFound);
    // Parsers past the menu's 21 are reachable here.
    ASSERT_EQ(dialog.ListBox()->count(), 30);
    EXPECT_EQ(dialog.ListBox()->item(29)->text(), QStringLiteral("Lang29"));
    EXPECT_EQ(dialog.ListBox()->currentRow(), 24);
    EXPECT_EQ(dialog.SelectedIndex(), 24);
    EXPECT_TRUE(OkButton(dialog)->isEnabled());
}

TEST(ViewAsManagerDialog, OkWaitsForASelection)
{
    CViewAsManagerDialog dialog(Names(4), -1);
    EXPECT_FALSE(OkButton(dialog)->isEnabled());
    dialog.ListBox()->setCurrentRow(2);
    EXPECT_TRUE(OkButton(dialog)->isEnabled());
    EXPECT_EQ(dialog.SelectedIndex(), 2);
}

TEST(ViewAsManagerDialog, OkAcceptsTheSelection)
{
    CViewAsManagerDialog dialog(Names(4), 0);
    dialog.ListBox()->setCurrentRow(3);
    QTimer::singleShot(0, &dialog, [&dialog] { OkButton(dialog)->click(); });
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
    EXPECT_EQ(dialog.SelectedIndex(), 3);
}

TEST(ViewAsManagerDialog, CancelRejects)
{
    CViewAsManagerDialog dialog(Names(4), 1);
    QTimer::singleShot(0, &dialog, [&dialog] {
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
    });
    EXPECT_EQ(dialog.exec(), QDialog::Rejected);
}

TEST(ViewAsManagerDialog, DoubleClickChoosesAndCloses)
{
    CViewAsManagerDialog dialog(Names(6), 0);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QListWidget* list = dialog.ListBox();
    const QRect rect = list->visualItemRect(list->item(4));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    EXPECT_EQ(dialog.result(), int(QDialog::Accepted));
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.SelectedIndex(), 4);
}

} // namespace
