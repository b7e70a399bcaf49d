#include "CFakeShell.h"
#include "TestSupport.h"
#include "app/CMainFrame.h"
#include "app/CMorvaneApp.h"
#include "framework/CommandIds.h"
#include "help/CHelpWindow.h"
#include "help/HelpCommands.h"
#include "help/HelpLocator.h"
#include "printing/PrintCommands.h"
#include "properties/PropertiesCommands.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QHelpEngine>
#include <QHelpEngineCore>
#include <QHelpSearchResult>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace {

class HelpTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_engine = new QHelpEngineCore(HelpLocator::UserCollection());
        s_engine->setReadOnly(true);
        ASSERT_TRUE(s_engine->setupData()) << s_engine->error().toStdString();
    }
    static void TearDownTestSuite()
    {
        delete s_engine;
        s_engine = nullptr;
    }

    static QByteArray Page(const QUrl& url)
    {
        QUrl file = url;
        file.setFragment(QString());
        return s_engine->fileData(file);
    }

    static void CollectMenuIds(const QMenu* menu, QSet<int>& ids)
    {
        for (const QAction* action : menu->actions()) {
            if (action->menu())
                CollectMenuIds(action->menu(), ids);
            else if (!action->isSeparator() && action->data().toInt() > 0)
                ids.insert(action->data().toInt());
        }
    }

    static QHelpEngineCore* s_engine;
};

QHelpEngineCore* HelpTest::s_engine = nullptr;

TEST_F(HelpTest, TheCollectionIsBuiltWithItsManual)
{
    EXPECT_TRUE(s_engine->registeredDocumentations().contains(QLatin1String(HelpLocator::Namespace)));
    const QList<QUrl> files = s_engine->files(QLatin1String(HelpLocator::Namespace), QString(), QStringLiteral("html"));
    EXPECT_GE(files.size(), 10);
    EXPECT_TRUE(Page(QUrl(HelpLocator::PageUrl(QStringLiteral("index.html")))).contains("Morvane"));
}

TEST_F(HelpTest, EveryCommandInTheMenusAndTheRegistryHasAPage)
{
    QSet<int> ids;
    // The program's own menus.
    CMorvaneApp* app = CMorvaneApp::Instance();
    ASSERT_TRUE(app->InitInstance({}));
    for (const QAction* action : CMorvaneApp::MainFrame()->menuBar()->actions()) {
        if (action->menu())
            CollectMenuIds(action->menu(), ids);
    }
    const int fromMenus = int(ids.size());
    app->Shutdown();
    // And what the printing, properties and help subsystems register.
    CFakeShell shell;
    InstallPrinting(shell);
    InstallProperties(shell);
    InstallHelp(shell);
    for (const int id : shell.Commands().Ids())
        ids.insert(id);
    ASSERT_GT(fromMenus, 40);
    ASSERT_GE(int(ids.size()), fromMenus);

    QStringList missing;
    for (const int id : std::as_const(ids)) {
        const QList<QHelpLink> links = s_engine->documentsForIdentifier(QStringLiteral("cmd.%1").arg(id));
        if (links.isEmpty() || Page(links.front().url).isEmpty())
            missing << QString::number(id);
    }
    EXPECT_TRUE(missing.isEmpty()) << "commands without a help page: " << missing.join(QStringLiteral(", ")).toStdString();
}

TEST_F(HelpTest, EveryLinkBetweenPagesLeadsToAPageAndAnchorThatExist)
{
    static const QRegularExpression href(QStringLiteral("href=\"([^\"#:]*)(?:#([^\"]*))?\""));
    int links = 0;
    for (const QUrl& url : s_engine->files(QLatin1String(HelpLocator::Namespace), QString(), QStringLiteral("html"))) {
        const QString text = QString::fromUtf8(s_engine->fileData(url));
        for (auto it = href.globalMatch(text); it.hasNext();) {
            const auto match = it.next();
            const QUrl target = match.captured(1).isEmpty() ? url : url.resolved(QUrl(match.captured(1)));
            const QByteArray page = Page(target);
            ASSERT_FALSE(page.isEmpty()) << url.toString().toStdString() << " -> " << match.captured(0).toStdString();
            if (!match.captured(2).isEmpty()) {
                EXPECT_TRUE(page.contains("id=\"" + match.captured(2).toUtf8() + "\""))
                    << url.toString().toStdString() << " -> " << match.captured(0).toStdString();
            }
            ++links;
        }
    }
    EXPECT_GT(links, 20);
}

TEST_F(HelpTest, TheWindowInFrontChoosesThePage)
{
    QDialog dialog;
    dialog.setProperty("helpPage", QStringLiteral("printing.html#setup"));
    auto* group = new QWidget(&dialog);
    group->setProperty("helpPage", QStringLiteral("properties.html#filters"));
    auto* inGroup = new QLineEdit(group);
    auto* outside = new QLineEdit(&dialog);
    QWidget bare;
    struct Case { const QWidget* window; const QWidget* focus; const char* page; };
    for (const Case c : {Case{&dialog, inGroup, "properties.html#filters"},
                         Case{&dialog, outside, "printing.html#setup"},
                         Case{&dialog, nullptr, "printing.html#setup"},
                         Case{&bare, nullptr, "index.html"},
                         Case{nullptr, nullptr, "index.html"}})
        EXPECT_EQ(HelpLocator::PageFor(c.window, c.focus), QString::fromLatin1(c.page)) << c.page;
}

TEST_F(HelpTest, F1InAModalDialogOpensItsPageAndSearchFindsWords)
{
    CFakeShell shell;
    InstallHelp(shell);
    shell.Window()->show();
    QDialog dialog(shell.Window());
    dialog.setProperty("helpPage", QStringLiteral("printing.html#setup"));
    auto* edit = new QLineEdit(&dialog);
    (new QVBoxLayout(&dialog))->addWidget(edit);
    dialog.setModal(true);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_F1);

    // The dialog blocks every other window: help shows as the dialog's own window.
    auto* window = dialog.findChild<CHelpWindow*>();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(window->IsValid());
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->isWindow());
    EXPECT_EQ(window->Browser()->source().toString(), HelpLocator::PageUrl(QStringLiteral("printing.html#setup")));
    EXPECT_TRUE(window->Browser()->toPlainText().contains(QStringLiteral("Page Setup")));

    // The window indexes the pages in the background when it opens; searching gives
    // nothing until that is done.
    QHelpSearchEngine* search = window->Engine()->searchEngine();
    QStringList pages;
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 30000 && !pages.contains(QStringLiteral("search.html"))) {
        QSignalSpy found(search, &QHelpSearchEngine::searchingFinished);
        search->search(QStringLiteral("bookmark"));
        found.wait(5000);
        pages.clear();
        for (const QHelpSearchResult& result : search->searchResults(0, search->searchResultCount()))
            pages << result.url().fileName();
        if (!pages.contains(QStringLiteral("search.html")))
            QTest::qWait(200);
    }
    EXPECT_TRUE(pages.contains(QStringLiteral("search.html"))) << pages.join(QStringLiteral(", ")).toStdString();
    EXPECT_FALSE(pages.contains(QStringLiteral("printing.html")));

    // Closing the dialog hands help back to the main window, still open; a dialog
    // deleted later takes nothing with it.
    dialog.hide();
    EXPECT_EQ(window->parentWidget(), shell.Window());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(shell.Window()->findChild<CHelpWindow*>(), window);
    window->close();
}

} // namespace
