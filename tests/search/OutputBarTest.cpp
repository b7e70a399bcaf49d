#include "tools/CFindResultsModel.h"
#include "tools/COutputBar.h"

#include <QDir>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

FindInFilesMatch Match(const QString& path, int line, int column, const QString& text)
{
    FindInFilesMatch match;
    match.path = path;
    match.line = line;
    match.column = column;
    match.text = text;
    return match;
}

TEST(OutputBar, IsTheDockNamedOutputWithTwoPages)
{
    COutputBar bar;
    EXPECT_EQ(bar.windowTitle(), QStringLiteral("Output"));
    EXPECT_FALSE(bar.objectName().isEmpty()); // needed by saveState
    auto* tabs = bar.findChild<QTabWidget*>();
    ASSERT_NE(tabs, nullptr);
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(0), QStringLiteral("Find Results"));
    EXPECT_EQ(tabs->tabText(1), QStringLiteral("Tool Results"));
}

TEST(OutputBar, ListsEachMatchAsPathLineColumnText)
{
    const QString path = QStringLiteral("/work/src/main.cpp");
    EXPECT_EQ(CFindResultsModel::formatMatch(Match(path, 12, 4, QStringLiteral("    int x;"))),
              QDir::toNativeSeparators(path) + QStringLiteral("(12,4):     int x;"));

    COutputBar bar;
    bar.beginSearch(QStringLiteral("Find"));
    bar.addMatches({Match(path, 1, 0, QStringLiteral("a")), Match(path, 2, 3, QStringLiteral("b"))});
    bar.addMatches({Match(path, 9, 1, QStringLiteral("c"))});
    CFindResultsModel* model = bar.findResultsModel();
    ASSERT_EQ(model->rowCount(), 3);
    EXPECT_EQ(model->index(2).data().toString(), QDir::toNativeSeparators(path) + QStringLiteral("(9,1): c"));
}

TEST(OutputBar, DoubleClickAndEnterOpenTheLocation)
{
    COutputBar bar;
    bar.resize(600, 300);
    bar.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
    bar.beginSearch(QStringLiteral("Find"));
    bar.addMatches({Match(QStringLiteral("/a/one.txt"), 3, 7, QStringLiteral("first")),
                    Match(QStringLiteral("/a/two.txt"), 41, 2, QStringLiteral("second"))});
    QSignalSpy spy(&bar, &COutputBar::openLocation);
    QListView* view = bar.findResultsView();
    const QModelIndex second = view->model()->index(1, 0);
    const QPoint where = view->visualRect(second).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, where);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, where);
    ASSERT_EQ(spy.size(), 1);
    EXPECT_EQ(spy[0][0].toString(), QStringLiteral("/a/two.txt"));
    EXPECT_EQ(spy[0][1].toInt(), 41);
    EXPECT_EQ(spy[0][2].toInt(), 2);

    view->setCurrentIndex(view->model()->index(0, 0));
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);
    ASSERT_EQ(spy.size(), 2);
    EXPECT_EQ(spy[1][0].toString(), QStringLiteral("/a/one.txt"));
    EXPECT_EQ(spy[1][1].toInt(), 3);
    EXPECT_EQ(spy[1][2].toInt(), 7);
}

TEST(OutputBar, ListScrollsSidewaysToTheLongestLineWhereverItIs)
{
    COutputBar bar;
    bar.resize(300, 200);
    bar.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar));
    bar.beginSearch(QStringLiteral("Find"));
    bar.addMatches({Match(QStringLiteral("/a"), 1, 0, QStringLiteral("short"))});
    QCoreApplication::processEvents();
    QListView* view = bar.findResultsView();
    const int before = view->horizontalScrollBar()->maximum();
    bar.addMatches({Match(QStringLiteral("/a"), 2, 0, QStringLiteral("short")),
                    Match(QStringLiteral("/a"), 3, 0, QString(400, QLatin1Char('w'))),
                    Match(QStringLiteral("/a"), 4, 0, QStringLiteral("short"))});
    QTest::qWait(50);
    EXPECT_GT(view->horizontalScrollBar()->maximum(), before + 1000);
}

TEST(OutputBar, ShowsStopWhileSearchingAndASummaryAfter)
{
    COutputBar bar;
    QSignalSpy stop(&bar, &COutputBar::stopRequested);
    bar.beginSearch(QStringLiteral("Find \"x\""));
    EXPECT_TRUE(bar.isStopVisible());
    EXPECT_EQ(bar.currentPage(), COutputBar::FindResultsPage);
    bar.findChild<QPushButton*>()->click();
    EXPECT_EQ(stop.size(), 1);

    bar.setSearchProgress(120, 3);
    EXPECT_TRUE(bar.findStatusText().contains(QStringLiteral("120 files searched")));

    FindInFilesSummary summary;
    summary.matches = 7;
    summary.filesMatched = 3;
    summary.filesSearched = 120;
    summary.filesBinary = 2;
    summary.filesUnreadable = 1;
    bar.endSearch(summary);
    EXPECT_FALSE(bar.isStopVisible());
    const QString status = bar.findStatusText();
    EXPECT_TRUE(status.contains(QStringLiteral("7 matches in 3 of 120 files searched"))) << status.toStdString();
    EXPECT_TRUE(status.contains(QStringLiteral("2 binary"))) << status.toStdString();
    EXPECT_TRUE(status.contains(QStringLiteral("1 unreadable"))) << status.toStdString();

    summary.cancelled = true;
    EXPECT_TRUE(COutputBar::summaryText(summary).contains(QStringLiteral("stopped")));
}

TEST(OutputBar, HoldsManyResultsInOneModel)
{
    COutputBar bar;
    bar.beginSearch(QStringLiteral("Find"));
    QList<FindInFilesMatch> batch;
    for (int i = 0; i < 1000; ++i)
        batch.append(Match(QStringLiteral("/f.txt"), i + 1, 0, QStringLiteral("line")));
    for (int b = 0; b < 100; ++b)
        bar.addMatches(batch);
    EXPECT_EQ(bar.findResultsModel()->rowCount(), 100000);
    bar.beginSearch(QStringLiteral("Again"));
    EXPECT_EQ(bar.findResultsModel()->rowCount(), 0);
}

TEST(OutputBar, ToolResultsAppendReadOnlyAndClear)
{
    COutputBar bar;
    bar.appendText(QStringLiteral("building...\n"));
    bar.appendText(QStringLiteral("done"));
    QPlainTextEdit* text = bar.toolResultsView();
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_EQ(text->toPlainText(), QStringLiteral("building...\ndone"));
    bar.clear();
    EXPECT_TRUE(text->toPlainText().isEmpty());
}

} // namespace
