// The explorer bar installed into a fake main window: pages arriving before and after
// it, the toggles and their order rule, the tool strips, and what a restart keeps.
#include "explorer/CExplorerBar.h"
#include "explorer/CSolutionBarList.h"
#include "explorer/ExplorerCommandIds.h"
#include "explorer/ExplorerInstall.h"
#include "explorer/ExplorerPageKind.h"
#include "CFakeShell.h"
#include "TestSupport.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QToolBar>
#include <gtest/gtest.h>
#include <memory>

namespace {

// Stands in for the pages other subsystems bring (file explorer, code library).
class StubPage : public IExplorerPage
{
public:
    StubPage(int kind, const QString& title)
        : m_kind(kind)
        , m_title(title)
        , m_widget(new QLabel(title))
    {
    }
    int PageKind() const override { return m_kind; }
    QString Title() const override { return m_title; }
    QWidget* Widget() override { return m_widget; }

private:
    int m_kind;
    QString m_title;
    QWidget* m_widget;
};

class ExplorerBarTest : public ::testing::Test
{
protected:
    void SetUp() override { TestSupport::ClearSettings(); }

    // Installs into a new fake window; the file explorer arrives before the bar, the
    // code library after it, as their subsystems may.
    void Install()
    {
        m_shell = std::make_unique<CFakeShell>();
        m_fileStub = std::make_unique<StubPage>(ExplorerPageKind::File, QStringLiteral("File Explorer"));
        m_libraryStub = std::make_unique<StubPage>(ExplorerPageKind::CodeLibrary, QStringLiteral("Code Library"));
        m_shell->AddExplorerPage(m_fileStub.get());
        InstallExplorer(*m_shell);
        m_shell->AddExplorerPage(m_libraryStub.get());
        m_bar = m_shell->Window()->findChild<CExplorerBar*>();
        ASSERT_NE(m_bar, nullptr);
    }
    void Restart()
    {
        Q_EMIT m_shell->Events().saveSettings();
        m_shell.reset();
        Install();
    }

    QStringList Tabs() const
    {
        auto* tabs = m_bar->findChild<QTabWidget*>();
        QStringList titles;
        for (int i = 0; i < tabs->count(); ++i)
            titles << tabs->tabText(i);
        return titles;
    }
    void Run(int id) { m_shell->Commands().Execute(id); }
    CCmdUI State(int id) { return m_shell->Commands().State(id); }

    std::unique_ptr<CFakeShell> m_shell;
    std::unique_ptr<StubPage> m_fileStub;
    std::unique_ptr<StubPage> m_libraryStub;
    CExplorerBar* m_bar = nullptr;
};

TEST_F(ExplorerBarTest, PagesFromBeforeAndAfterTheBarStandInTheUsualOrder)
{
    Install();
    EXPECT_EQ(Tabs(), (QStringList{"File Explorer", "Project Explorer", "Code Library", "List Explorer"}));
    ASSERT_EQ(m_shell->docks.size(), 1);
    EXPECT_EQ(m_shell->docks[0]->objectName(), "ExplorerBar");
    EXPECT_EQ(m_shell->docks[0]->windowTitle(), "File Explorer") << "the caption is the active page's title";
    QStringList toggles;
    for (QAction* action : m_bar->ContextMenu()->actions())
        toggles << action->text();
    EXPECT_EQ(toggles, Tabs()) << "the bar's context menu toggles each page";
}

TEST_F(ExplorerBarTest, TogglesRemoveAPageAndPutATurnedOnPageFirst)
{
    Install();
    Run(ExplorerCmd::ViewProjectExplorer);
    EXPECT_EQ(Tabs(), (QStringList{"File Explorer", "Code Library", "List Explorer"}));
    EXPECT_FALSE(State(ExplorerCmd::ViewProjectExplorer).checked);
    Run(ExplorerCmd::ViewProjectExplorer);
    EXPECT_EQ(Tabs(), (QStringList{"Project Explorer", "File Explorer", "Code Library", "List Explorer"}));
    EXPECT_EQ(m_bar->PageKind(), ExplorerPageKind::Project);
    EXPECT_EQ(m_bar->Dock()->windowTitle(), "Project Explorer");
    EXPECT_TRUE(State(ExplorerCmd::ViewProjectExplorer).checked);
}

TEST_F(ExplorerBarTest, AllPagesOffHidesTheBarAndOnePageBringsItBack)
{
    Install();
    for (int id : {ExplorerCmd::ViewFileExplorer, ExplorerCmd::ViewProjectExplorer, ExplorerCmd::ViewCodeLibrary,
                   ExplorerCmd::ViewListExplorer})
        Run(id);
    EXPECT_TRUE(Tabs().isEmpty());
    EXPECT_FALSE(m_bar->IsBarVisible());
    EXPECT_FALSE(State(ExplorerCmd::ViewExplorerBar).checked);
    Run(ExplorerCmd::ViewListExplorer);
    EXPECT_TRUE(m_bar->IsBarVisible());
    EXPECT_EQ(Tabs(), QStringList{"List Explorer"});

    Run(ExplorerCmd::ViewExplorerBar); // hides the whole bar
    EXPECT_FALSE(m_bar->IsBarVisible());
    EXPECT_FALSE(State(ExplorerCmd::ViewListExplorer).checked);
    Run(ExplorerCmd::ViewExplorerBar); // and brings every page back
    EXPECT_EQ(Tabs().size(), 4);
}

TEST_F(ExplorerBarTest, ToolStripFollowsTheActivePageKind)
{
    Install();
    const struct
    {
        int toggle;
        int kind;
        QList<int> actions;
        bool combo;
    } cases[] = {
        {ExplorerCmd::ViewProjectExplorer, ExplorerPageKind::Project,
         {ExplorerCmd::AddFolder, ExplorerCmd::DeleteFolder, ExplorerCmd::RenameFolder}, false},
        {ExplorerCmd::ViewListExplorer, ExplorerPageKind::List, {}, true},
        {ExplorerCmd::ViewCodeLibrary, ExplorerPageKind::CodeLibrary, {}, false},
    };
    for (const auto& c : cases) {
        Run(c.toggle); // off
        Run(c.toggle); // on again: first and active
        EXPECT_EQ(m_bar->PageKind(), c.kind);
        QToolBar* strip = m_bar->ToolStrip(c.kind);
        if (c.actions.isEmpty() && !c.combo) {
            EXPECT_EQ(strip, nullptr) << "no strip and no room for one";
            for (QToolBar* other : m_bar->findChildren<QToolBar*>())
                EXPECT_TRUE(other->isHidden());
            continue;
        }
        ASSERT_NE(strip, nullptr);
        EXPECT_FALSE(strip->isHidden());
        QList<int> ids;
        for (QAction* action : strip->actions())
            if (action->data().isValid() && !action->isSeparator() && m_shell->Commands().Contains(action->data().toInt()))
                ids << action->data().toInt();
        if (!c.actions.isEmpty()) {
            EXPECT_EQ(ids, c.actions);
        }
        EXPECT_EQ(strip->findChild<QComboBox*>() != nullptr, c.combo);
    }
    // The folder commands wait for an open workspace.
    EXPECT_FALSE(State(ExplorerCmd::AddFolder).enabled) << "the code library page is active";
    Run(ExplorerCmd::ViewProjectExplorer);
    Run(ExplorerCmd::ViewProjectExplorer);
    EXPECT_TRUE(State(ExplorerCmd::AddFolder).enabled);
    Run(ExplorerCmd::WorkspaceClose);
    EXPECT_FALSE(State(ExplorerCmd::AddFolder).enabled);
}

TEST_F(ExplorerBarTest, TogglesOfAbsentPagesAreGreyed)
{
    m_shell = std::make_unique<CFakeShell>();
    InstallExplorer(*m_shell);
    EXPECT_FALSE(State(ExplorerCmd::ViewFileExplorer).enabled);
    EXPECT_FALSE(State(ExplorerCmd::ViewCodeLibrary).enabled);
    EXPECT_TRUE(State(ExplorerCmd::ViewProjectExplorer).enabled);
    EXPECT_TRUE(State(ExplorerCmd::ViewListExplorer).enabled);
}

TEST_F(ExplorerBarTest, PagesOrderAndActivePageSurviveARestart)
{
    Install();
    Run(ExplorerCmd::ViewFileExplorer);  // off
    Run(ExplorerCmd::ViewListExplorer);  // off
    Run(ExplorerCmd::ViewListExplorer);  // on: first
    m_bar->ShowPage(ExplorerPageKind::CodeLibrary);
    Restart();
    EXPECT_EQ(Tabs(), (QStringList{"List Explorer", "Project Explorer", "Code Library"}));
    EXPECT_EQ(m_bar->PageKind(), ExplorerPageKind::CodeLibrary);
    EXPECT_FALSE(m_bar->IsPageOn(ExplorerPageKind::File));

    for (int id : {ExplorerCmd::ViewProjectExplorer, ExplorerCmd::ViewCodeLibrary, ExplorerCmd::ViewListExplorer})
        Run(id);
    Restart();
    EXPECT_FALSE(m_bar->IsBarVisible()) << "a bar with every page off stays hidden";
}

} // namespace
