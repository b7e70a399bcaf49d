#include "search/CFindResultsPage.h"

#include <QDir>
#include <QListView>
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

class FindResultsPageTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_bar.resize(300, 200);
        m_bar.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_bar));
        QObject::connect(&m_bar, &CFindResultsPage::showRequested, [this] { ++m_shown; });
        m_bar.beginSearch(QStringLiteral("Find"));
    }
    int m_shown = 0;
    CFindResultsPage m_bar;
};

TEST_F(FindResultsPageTest, ListsPathLineColumnTextAndDoubleClickOrEnterOpensIt)
{
    const QString one = QStringLiteral("/a/one.txt"), two = QStringLiteral("/a/two.txt");
    m_bar.addMatches({Match(one, 3, 7, QStringLiteral("first"))});
    m_bar.addMatches({Match(two, 41, 2, QStringLiteral("  second"))}); // batches append
    QListView* view = m_bar.findResultsView();
    ASSERT_EQ(view->model()->rowCount(), 2);
    EXPECT_EQ(view->model()->index(1, 0).data().toString(), QDir::toNativeSeparators(two) + QStringLiteral("(41,2):   second"));

    QSignalSpy spy(&m_bar, &CFindResultsPage::openLocation);
    const QPoint where = view->visualRect(view->model()->index(1, 0)).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, where);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, where);
    view->setCurrentIndex(view->model()->index(0, 0));
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);
    ASSERT_EQ(spy.size(), 2);
    EXPECT_EQ(spy[0], (QVariantList{two, 41, 2}));
    EXPECT_EQ(spy[1], (QVariantList{one, 3, 7}));

    m_bar.beginSearch(QStringLiteral("Again"));
    EXPECT_EQ(view->model()->rowCount(), 0);
}

TEST_F(FindResultsPageTest, ListScrollsSidewaysToTheLongestLineWhereverItIs)
{
    m_bar.addMatches({Match(QStringLiteral("/a"), 1, 0, QStringLiteral("short"))});
    QCoreApplication::processEvents();
    QListView* view = m_bar.findResultsView();
    const int before = view->horizontalScrollBar()->maximum();
    // The long line in the middle of a batch, not at its end.
    m_bar.addMatches({Match(QStringLiteral("/a"), 2, 0, QStringLiteral("short")),
                      Match(QStringLiteral("/a"), 3, 0, QString(400, QLatin1Char('w'))),
                      Match(QStringLiteral("/a"), 4, 0, QStringLiteral("short"))});
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->horizontalScrollBar()->maximum() > before + 1000; }, 5000))
        << view->horizontalScrollBar()->maximum() << " against " << before;
}

TEST_F(FindResultsPageTest, StopAsksToStopAndTheSummaryTellsWhatWasSkipped)
{
    QSignalSpy stop(&m_bar, &CFindResultsPage::stopRequested);
    EXPECT_TRUE(m_bar.isStopVisible());
    EXPECT_EQ(m_shown, 1) << "a search that begins asks for its page to be shown";
    m_bar.findChild<QPushButton*>()->click();
    EXPECT_EQ(stop.size(), 1);

    FindInFilesSummary summary;
    summary.filesUnreadable = 1;
    m_bar.endSearch(summary);
    EXPECT_FALSE(m_bar.isStopVisible());
    EXPECT_TRUE(m_bar.findStatusText().contains(QStringLiteral("1 unreadable"))) << m_bar.findStatusText().toStdString();
    summary.cancelled = true;
    EXPECT_TRUE(CFindResultsPage::summaryText(summary).contains(QStringLiteral("stopped")));
}

} // namespace
