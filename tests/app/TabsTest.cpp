#include "MainFrameFixture.h"

#include "settings/CRegistryStore.h"

#include <QClipboard>
#include <QMenu>
#include <QTabBar>
#include <QTest>

#include <functional>

namespace {

class TabsTest : public MainFrameFixture
{
protected:
    static QMdiArea* Area() { return Frame()->MdiArea(); }
    static int Flag() { return Frame()->Settings().MDITabInActive; }
    static bool Tabbed() { return Area()->viewMode() == QMdiArea::TabbedView; }
    static void Start(int savedFlag)
    {
        CRegistryStore().WriteProfileInt(QStringLiteral("Settings"), QStringLiteral("MDITabInActive"), savedFlag);
        ASSERT_TRUE(App()->InitInstance({}));
    }
};

// With the flag clear, Hide Tabs first installs the tabs again (setting the flag) and
// only the next one hides them; with the flag saved set, the first one hides.
TEST_F(TabsTest, HideTabsHidesOnTheFirstOrSecondTimeByTheSavedFlag)
{
    for (const int saved : {0, 1}) {
        App()->Shutdown();
        Start(saved);
        ASSERT_TRUE(OpenText("a.txt"));
        EXPECT_TRUE(Tabbed());
        EXPECT_EQ(Area()->tabPosition(), QTabWidget::North);
        EXPECT_EQ(Checked(Cmd::TabsToggle), saved == 0);
        if (saved == 0) {
            Run(Cmd::TabsToggle);
            EXPECT_TRUE(Tabbed());
            EXPECT_EQ(Flag(), 1);
            EXPECT_FALSE(Checked(Cmd::TabsToggle));
        }
        Run(Cmd::TabsToggle);
        EXPECT_FALSE(Tabbed()) << saved;
        EXPECT_EQ(Flag(), 0);
        EXPECT_TRUE(Checked(Cmd::TabsToggle));
    }
    // Without tabs every document, old or new, still fills the area.
    CScrivelFrame* b = OpenText("b.txt");
    ASSERT_TRUE(b);
    EXPECT_TRUE(b->isMaximized());
    for (CChildFrame* child : Frame()->ChildFrames()) {
        Area()->setActiveSubWindow(child);
        EXPECT_TRUE(child->isMaximized()) << child->windowTitle().toStdString();
    }
    // Hidden tabs do not survive a restart.
    ASSERT_TRUE(Frame()->close());
    App()->Shutdown();
    ASSERT_TRUE(App()->InitInstance({}));
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Flag(), 0);
    ASSERT_EQ(Frame()->ChildFrames().size(), 1);
    EXPECT_TRUE(Frame()->ChildFrames().first()->isMaximized()) << "the first document came before the window showed";
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

TEST_P(TabAlignmentTest, MovesTheTabsAndInstallsThemWithTheFlagSet)
{
    const AlignCase& c = GetParam();
    Start(0);
    Run(c.id);
    EXPECT_TRUE(Tabbed());
    EXPECT_EQ(Area()->tabPosition(), c.position);
    EXPECT_EQ(Frame()->TabAlignment(), c.index);
    EXPECT_EQ(Flag(), c.id == Cmd::TabsTop ? 0 : 1) << "the current alignment does nothing";
    for (const int id : {int(Cmd::TabsLeft), int(Cmd::TabsTop), int(Cmd::TabsRight), int(Cmd::TabsBottom)})
        EXPECT_EQ(Checked(id), id == c.id) << id;

    // From hidden tabs another alignment brings them back; the current one leaves them hidden.
    Run(Cmd::TabsToggle);
    if (c.id == Cmd::TabsTop)
        Run(Cmd::TabsToggle);
    ASSERT_FALSE(Tabbed());
    Run(Cmd::TabsTop);
    EXPECT_EQ(Tabbed(), c.id != Cmd::TabsTop);
    EXPECT_EQ(Area()->tabPosition(), QTabWidget::North);
    EXPECT_EQ(Flag(), c.id == Cmd::TabsTop ? 0 : 1);
}

INSTANTIATE_TEST_SUITE_P(Sides, TabAlignmentTest,
                         ::testing::Values(AlignCase{"Left", Cmd::TabsLeft, 0, QTabWidget::West},
                                           AlignCase{"Top", Cmd::TabsTop, 1, QTabWidget::North},
                                           AlignCase{"Right", Cmd::TabsRight, 2, QTabWidget::East},
                                           AlignCase{"Bottom", Cmd::TabsBottom, 3, QTabWidget::South}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TabsTest, ContextMenuActsOnTheTabUnderTheMouseAndSurvivesANewTabStrip)
{
    StartEmpty();
    CScrivelFrame* a = OpenText("a.txt");
    ASSERT_TRUE(a && OpenText("b.txt"));
    auto* tabs = Area()->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_TRUE(tabs && tabs->count() == 2);
    Q_EMIT tabs->customContextMenuRequested(tabs->tabRect(0).center());
    EXPECT_EQ(Frame()->ActiveChild(), a);
    auto* menu = Frame()->findChild<QMenu*>(QStringLiteral("TabContextMenu"));
    ASSERT_TRUE(menu);
    QList<int> ids;
    for (QAction* action : menu->actions())
        ids << action->data().toInt();
    EXPECT_EQ(ids, (QList<int>{Cmd::FileSave, Cmd::FileClose, Cmd::CloseAllButSelected, Cmd::CopyFilePath,
                               Cmd::OpenContainingFolder}));
    menu->close();

    Run(Cmd::TabsToggle);
    Run(Cmd::TabsToggle);
    Run(Cmd::TabsRight);
    tabs = Area()->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_TRUE(tabs);
    EXPECT_EQ(tabs->contextMenuPolicy(), Qt::CustomContextMenu);
}

// However a tab is closed, the others stay tabbed and filling the area, and the tab
// beside the closed one comes forward (the one before it when the last one closes).
TEST_F(TabsTest, ClosingATabKeepsTheRestTabbedAndActivatesItsNeighbour)
{
    struct Way
    {
        const char* name;
        std::function<void(int index)> close;
    };
    const Way ways[] = {
        {"File > Close", [](int) { Run(Cmd::FileClose); }},
        {"Ctrl+W", [](int) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_W, Qt::ControlModifier); }},
        {"Ctrl+F4", [](int) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_F4, Qt::ControlModifier); }},
        {"tab button", [](int index) {
             Q_EMIT Area()->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly)->tabCloseRequested(index);
         }},
    };
    for (const Way& way : ways) {
        App()->Shutdown();
        StartEmpty();
        QList<CChildFrame*> frames;
        for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt"})
            frames << OpenText(name);
        ASSERT_FALSE(frames.contains(nullptr));
        Frame()->activateWindow();
        // Close the second tab, then the last one.
        for (const auto& [closed, next] : {std::pair{1, 2}, std::pair{3, 2}}) {
            Area()->setActiveSubWindow(frames.at(closed));
            Editor(static_cast<CScrivelFrame*>(frames.at(closed)))->setFocus();
            Settle();
            const int index = int(Frame()->ChildFrames().indexOf(frames.at(closed)));
            way.close(index);
            Settle();
            EXPECT_FALSE(Frame()->ChildFrames().contains(frames.at(closed))) << way.name;
            EXPECT_EQ(Frame()->ActiveChild(), frames.at(next)) << way.name << " closing " << closed;
        }
        EXPECT_TRUE(Tabbed());
        auto* tabs = Area()->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
        ASSERT_TRUE(tabs);
        EXPECT_EQ(tabs->count(), 2) << way.name;
        // Whichever tab the user picks next fills the area.
        for (int index = 0; index < tabs->count(); ++index) {
            tabs->setCurrentIndex(index);
            Settle();
            QMdiSubWindow* shown = Area()->activeSubWindow();
            ASSERT_TRUE(shown) << way.name;
            EXPECT_TRUE(shown->isMaximized()) << way.name << " " << index;
            EXPECT_EQ(shown->size(), Area()->viewport()->size()) << way.name << " " << index;
        }
    }
}

TEST_F(TabsTest, CopyFilePathWorksForEveryKindOfDocumentWithAPath)
{
    StartEmpty();
    CChildFrame* hex = OpenHex("data.bin");
    ASSERT_TRUE(hex && Enabled(Cmd::CopyFilePath));
    Run(Cmd::CopyFilePath);
    EXPECT_EQ(QApplication::clipboard()->text(), QDir::toNativeSeparators(hex->GetDocument()->GetPathName()));
    Run(Cmd::FileNew);
    EXPECT_FALSE(Enabled(Cmd::CopyFilePath)) << "an untitled document has no path";
    EXPECT_FALSE(Enabled(Cmd::OpenContainingFolder));
}

} // namespace
