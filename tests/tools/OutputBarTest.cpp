// The Output bar as a host: pages from before and after it was installed, showing a
// page on request, and View > Output Bar.
#include "CFakeShell.h"
#include "TestSupport.h"

#include "framework/CommandIds.h"
#include "tools/COutputBar.h"
#include "tools/COutputBarCommands.h"
#include "shell/IOutputPage.h"

#include <QAction>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class TestPage : public IOutputPage
{
public:
    explicit TestPage(const QString& title) : m_title(title), m_widget(new QLabel(title)) {}
    QString Title() const override { return m_title; }
    QWidget* Widget() override { return m_widget; }

private:
    QString m_title;
    QWidget* m_widget; // the bar's tab takes it over
};

TEST(OutputBarTest, HostsPagesAddedBeforeAndAfterItInTheOrderTheyCame)
{
    CFakeShell shell;
    TestPage early(QStringLiteral("Early"));
    TestPage late(QStringLiteral("Late"));
    shell.AddOutputPage(&early);
    COutputBarCommands* bar = InstallOutputBar(shell);
    EXPECT_EQ(InstallOutputBar(shell), bar) << "installed once";
    shell.AddOutputPage(&late);
    QStringList titles;
    for (IOutputPage* page : bar->Bar()->Pages())
        titles << page->Title();
    EXPECT_EQ(titles, (QStringList{"Early", "Late"}));
    EXPECT_EQ(bar->Dock()->objectName(), QStringLiteral("OutputBar")) << "the saved layout knows it by this name";
    EXPECT_EQ(shell.docks, QList<QDockWidget*>{bar->Dock()});
}

TEST(OutputBarTest, AskingForAPageShowsTheBarWithThatPageInFront)
{
    CFakeShell shell;
    COutputBarCommands* bar = InstallOutputBar(shell);
    shell.Window()->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(shell.Window()));
    EXPECT_FALSE(bar->Dock()->isVisible()) << "hidden until something is shown";
    TestPage page(QStringLiteral("Results"));
    shell.AddOutputPage(&page);
    shell.ShowOutputPage(&page);
    EXPECT_TRUE(bar->Dock()->isVisible());
    EXPECT_EQ(bar->Bar()->CurrentPage(), &page);
    TestPage other(QStringLiteral("Other"));
    shell.AddOutputPage(&other);
    shell.ShowOutputPage(&other);
    EXPECT_EQ(bar->Bar()->CurrentPage(), &other);
}

TEST(OutputBarTest, TheViewCommandTogglesTheBarAndShowsItsState)
{
    CFakeShell shell;
    COutputBarCommands* bar = InstallOutputBar(shell);
    shell.Window()->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(shell.Window()));
    QAction* toggle = shell.Commands().Action(Cmd::ViewOutputBar);
    ASSERT_NE(toggle, nullptr);
    EXPECT_TRUE(shell.Menus().Menu(MenuId::View)->actions().contains(toggle));
    for (const bool visible : {true, false}) {
        shell.Commands().Execute(Cmd::ViewOutputBar);
        EXPECT_EQ(bar->Dock()->isVisible(), visible);
        shell.Commands().UpdateAll();
        EXPECT_EQ(toggle->isChecked(), visible);
    }
}

} // namespace
