#include "MainFrameFixture.h"

#include "app/CRegistryStore.h"
#include "app/CommandIds.h"

#include <QClipboard>
#include <QMenu>
#include <QMessageBox>
#include <QTabBar>
#include <QTest>

namespace {

class TabsTest : public MainFrameFixture
{
protected:
    static QMdiArea* Area() { return Frame()->MdiArea(); }
    static int Flag() { return Frame()->Settings().MDITabInActive; }
    static QTabBar* Tabs() { return Area()->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly); }
    static bool Tabbed() { return Area()->viewMode() == QMdiArea::TabbedView; }
};

TEST_F(TabsTest, StartShowsTabsAtTheTopWithTheFlagClear)
{
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Area()->tabPosition(), QTabWidget::North);
    EXPECT_EQ(Frame()->TabAlignment(), 1);
    EXPECT_EQ(Flag(), 0);
    EXPECT_TRUE(Checked(Cmd::TabsToggle));
    EXPECT_TRUE(Checked(Cmd::TabsTop));
    // The first document came while the window was still hidden and fills the area.
    ASSERT_EQ(Frame()->ChildFrames().size(), 1);
    EXPECT_TRUE(Frame()->ChildFrames().first()->isMaximized());
}

TEST_F(TabsTest, TheFirstHideInstallsAgainAndOnlyTheSecondHides)
{
    ASSERT_TRUE(App()->InitInstance({}));
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    ASSERT_TRUE(OpenText(QStringLiteral("b.txt")));

    Run(Cmd::TabsToggle);
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Flag(), 1);
    EXPECT_FALSE(Checked(Cmd::TabsToggle));

    Run(Cmd::TabsToggle);
    EXPECT_FALSE(Tabbed());
    EXPECT_EQ(Flag(), 0);
    EXPECT_TRUE(Checked(Cmd::TabsToggle));
    // Without tabs the documents still fill the area, whichever is brought forward.
    for (CChildFrame* child : Frame()->ChildFrames()) {
        Area()->setActiveSubWindow(child);
        EXPECT_TRUE(child->isMaximized()) << child->windowTitle().toStdString();
    }

    // A document opened now fills the area too.
    CScrivelFrame* c = OpenText(QStringLiteral("c.txt"));
    ASSERT_TRUE(c);
    EXPECT_TRUE(c->isMaximized());

    Run(Cmd::TabsToggle);
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Flag(), 1);
}

TEST_F(TabsTest, ASavedFlagIsTakenWithoutInstallingAgain)
{
    CRegistryStore().WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("MDITabInActive"), 1);
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Flag(), 1);
    EXPECT_FALSE(Checked(Cmd::TabsToggle));
    Run(Cmd::TabsToggle);
    EXPECT_FALSE(Tabbed()) << "with the flag set the first Hide Tabs hides";
}

TEST_F(TabsTest, HiddenTabsDoNotSurviveARestart)
{
    ASSERT_TRUE(App()->InitInstance({}));
    Run(Cmd::TabsToggle);
    Run(Cmd::TabsToggle);
    ASSERT_FALSE(Tabbed());
    ASSERT_TRUE(Frame()->close());
    App()->Shutdown();

    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Flag(), 0);
}

struct AlignCase
{
    const char* name;
    int id;
    int index;
    QTabWidget::TabPosition position;
};

class TabAlignmentTest : public TabsTest, public ::testing::WithParamInterface<AlignCase>
{
};

const AlignCase kAlignCases[] = {
    {"Left", Cmd::TabsLeft, 0, QTabWidget::West},
    {"Right", Cmd::TabsRight, 2, QTabWidget::East},
    {"Bottom", Cmd::TabsBottom, 3, QTabWidget::South},
};

TEST_P(TabAlignmentTest, MovesTheTabsAndInstallsThemWithTheFlagSet)
{
    const AlignCase& c = GetParam();
    ASSERT_TRUE(App()->InitInstance({}));
    ASSERT_TRUE(OpenText(QStringLiteral("a.txt")));
    Run(c.id);
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Area()->tabPosition(), c.position);
    EXPECT_EQ(Frame()->TabAlignment(), c.index);
    EXPECT_EQ(Flag(), 1);
    for (const int id : {int(Cmd::TabsLeft), int(Cmd::TabsTop), int(Cmd::TabsRight), int(Cmd::TabsBottom)})
        EXPECT_EQ(Checked(id), id == c.id) << id;

    // Back to the top, from hidden tabs: the alignment brings them back.
    Run(Cmd::TabsToggle);
    ASSERT_FALSE(Tabbed());
    Run(Cmd::TabsTop);
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Area()->tabPosition(), QTabWidget::North);
    EXPECT_EQ(Flag(), 1);
}

INSTANTIATE_TEST_SUITE_P(Sides, TabAlignmentTest, ::testing::ValuesIn(kAlignCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TabsTest, TheCurrentAlignmentDoesNothing)
{
    ASSERT_TRUE(App()->InitInstance({}));
    ASSERT_EQ(Flag(), 0);
    Run(Cmd::TabsTop);
    EXPECT_EQ(Flag(), 0) << "the toggle did not run";
    Run(Cmd::TabsToggle);
    Run(Cmd::TabsToggle);
    ASSERT_FALSE(Tabbed());
    Run(Cmd::TabsTop);
    EXPECT_FALSE(Tabbed()) << "hidden tabs stay hidden";
}

TEST_F(TabsTest, ContextMenuActsOnTheTabUnderTheMouse)
{
    StartEmpty();
    CScrivelFrame* a = OpenText(QStringLiteral("a.txt"));
    ASSERT_TRUE(OpenText(QStringLiteral("b.txt")));
    ASSERT_TRUE(a);
    QTabBar* tabs = Tabs();
    ASSERT_TRUE(tabs);
    ASSERT_EQ(tabs->count(), 2);
    ASSERT_NE(Frame()->ActiveChild(), a);

    Q_EMIT tabs->customContextMenuRequested(tabs->tabRect(0).center());
    EXPECT_EQ(Frame()->ActiveChild(), a);
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("TabContextMenu"));
    ASSERT_TRUE(menu);
    QList<int> ids;
    for (QAction* action : menu->actions())
        ids << action->data().toInt();
    EXPECT_EQ(ids, (QList<int>{Cmd::FileSave, Cmd::FileClose, Cmd::CloseAllButSelected,
                               Cmd::CopyFilePath, Cmd::OpenContainingFolder}));
    menu->close();

    // The tab strip made after hiding and showing again has the menu too.
    Run(Cmd::TabsRight);
    QTabBar* again = Tabs();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->contextMenuPolicy(), Qt::CustomContextMenu);
}

TEST_F(TabsTest, CopyFilepathWorksForEveryKindOfDocument)
{
    StartEmpty();
    CChildFrame* hex = OpenHex(QStringLiteral("data.bin"));
    ASSERT_TRUE(hex);
    ASSERT_TRUE(Enabled(Cmd::CopyFilePath));
    Run(Cmd::CopyFilePath);
    EXPECT_EQ(QApplication::clipboard()->text(),
              QDir::toNativeSeparators(hex->GetDocument()->GetPathName()));

    Run(Cmd::FileNew);
    EXPECT_FALSE(Enabled(Cmd::CopyFilePath)) << "an untitled document has no path";
    EXPECT_FALSE(Enabled(Cmd::OpenContainingFolder));
}

} // namespace
