#include "printing/PrintLayout.h"

#include <gtest/gtest.h>

using namespace PrintLayout;

namespace {

struct HeaderCase
{
    int pathLength;
    bool expectPath;
};

using HeaderNameTest = ::testing::TestWithParam<HeaderCase>;

TEST_P(HeaderNameTest, LongPathsGiveWayToTheTitle)
{
    const HeaderCase c = GetParam();
    QString path = QStringLiteral("/h/");
    path += QString(c.pathLength - path.size(), QLatin1Char('a'));
    ASSERT_EQ(path.size(), c.pathLength);
    EXPECT_EQ(HeaderName(path, QStringLiteral("title.c")), c.expectPath ? path : QStringLiteral("title.c"));
}

INSTANTIATE_TEST_SUITE_P(Lengths, HeaderNameTest,
                         ::testing::Values(HeaderCase{10, true}, HeaderCase{68, true},
                                           HeaderCase{69, false}, HeaderCase{70, false},
                                           HeaderCase{300, false}));

TEST(HeaderName, AnUnsavedDocumentShowsItsTitle)
{
    EXPECT_EQ(HeaderName(QString(), QStringLiteral("Untitled1")), QStringLiteral("Untitled1"));
}

struct LinesCase
{
    int height, lineHeight;
    bool header, footer;
    int expected;
};

using LinesPerPageTest = ::testing::TestWithParam<LinesCase>;

TEST_P(LinesPerPageTest, HeaderAndFooterTakeTwoLinesWhileMoreThanThreeAreLeft)
{
    const LinesCase c = GetParam();
    EXPECT_EQ(LinesPerPage(c.height, c.lineHeight, c.header, c.footer), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, LinesPerPageTest,
    ::testing::Values(LinesCase{600, 10, false, false, 60}, LinesCase{600, 10, true, false, 58},
                      LinesCase{600, 10, false, true, 58}, LinesCase{600, 10, true, true, 56},
                      LinesCase{605, 10, true, true, 56},  // a partial line doesn't count
                      LinesCase{50, 10, true, true, 3},    // 5 -> 3, then only 3 are left
                      LinesCase{40, 10, true, true, 2},    // 4 -> 2 -> kept
                      LinesCase{30, 10, true, true, 3},    // 3 lines: no room for either
                      LinesCase{5, 10, true, true, 0},     // less than a line
                      LinesCase{600, 0, true, true, 0}));  // no font metrics

struct MarginCase
{
    Margins margins;
    int dpiX, dpiY;
    bool metric;
    QMargins expected;
};

using MarginsTest = ::testing::TestWithParam<MarginCase>;

TEST_P(MarginsTest, ConvertToDeviceUnitsInEitherMeasure)
{
    const MarginCase c = GetParam();
    EXPECT_EQ(MarginsToDevice(c.margins, c.dpiX, c.dpiY, c.metric), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, MarginsTest,
    ::testing::Values(
        // 25.4 mm and 1 inch are the device's resolution.
        MarginCase{{2540, 2540, 2540, 2540}, 600, 600, true, QMargins(600, 600, 600, 600)},
        MarginCase{{1000, 1000, 1000, 1000}, 600, 600, false, QMargins(600, 600, 600, 600)},
        // 15 mm at 1200 dpi is 708.66 dots; 0.6 inch is 720.
        MarginCase{{1500, 1500, 1500, 1500}, 1200, 1200, true, QMargins(709, 709, 709, 709)},
        MarginCase{{600, 600, 600, 600}, 1200, 1200, false, QMargins(720, 720, 720, 720)},
        // Across uses the horizontal resolution, down the vertical one.
        MarginCase{{1000, 500, 250, 0}, 300, 600, false, QMargins(300, 300, 75, 0)},
        MarginCase{{0, 0, 0, 0}, 600, 600, true, QMargins()},
        MarginCase{{0, 0, 0, 0}, 600, 600, false, QMargins()}));

TEST(Margins, TheLocaleChoosesTheMeasureAndTheStartingMargins)
{
    EXPECT_TRUE(IsMetric(QLocale(QLocale::German, QLocale::Germany)));
    EXPECT_FALSE(IsMetric(QLocale(QLocale::English, QLocale::UnitedStates)));
    EXPECT_EQ(DefaultMargins(true), (Margins{1500, 1500, 1500, 1500}));
    EXPECT_EQ(DefaultMargins(false), (Margins{600, 600, 600, 600}));
}

TEST(Margins, RoundTripThroughPageLayoutUnits)
{
    for (const bool metric : {true, false}) {
        const Margins margins{1500, 700, 0, 2540};
        EXPECT_EQ(FromUnits(ToUnits(margins, metric), metric), margins) << metric;
    }
    EXPECT_DOUBLE_EQ(ToUnits({1500, 0, 0, 0}, true).left(), 15.0);
    EXPECT_DOUBLE_EQ(ToUnits({600, 0, 0, 0}, false).left(), 0.6);
}

TEST(Rects, HeaderAndFooterBandsComeOffTheTextArea)
{
    const QRect device(0, 0, 1000, 2000);
    const QMargins margins(10, 20, 30, 40);
    const PageRects plain = ComputeRects(device, margins, 100, false, false);
    EXPECT_EQ(plain.page, device);
    EXPECT_EQ(plain.text, QRect(QPoint(10, 20), QPoint(969, 1959)));
    EXPECT_TRUE(plain.header.isNull());
    EXPECT_TRUE(plain.footer.isNull());

    const PageRects both = ComputeRects(device, margins, 100, true, true);
    EXPECT_EQ(both.header, QRect(10, 20, 960, 100));
    EXPECT_EQ(both.text.top(), both.header.bottom() + 1);
    EXPECT_EQ(both.footer.bottom(), 1959);
    EXPECT_EQ(both.text.bottom() + 1, both.footer.top());
    EXPECT_EQ(both.text.height(), plain.text.height() - 200);
}

// A formatter over fixed-length lines: each page holds `perPage` lines.
std::function<long(long)> FixedLines(long lineLength, long perPage, long end, int* calls = nullptr)
{
    return [=](long start) {
        if (calls)
            ++*calls;
        return qMin(end, start + lineLength * perPage);
    };
}

TEST(Paginate, PageStartsCoverTheTextOnceInOrder)
{
    struct Case { long length, perPage; int pages; };
    for (const Case c : {Case{0, 10, 1}, Case{10, 10, 1}, Case{100, 10, 1}, Case{101 * 10, 10, 11},
                         Case{100 * 10, 10, 10}}) {
        const QList<long> starts = Paginate(0, c.length, FixedLines(10, 10, c.length));
        ASSERT_EQ(starts.size(), c.pages) << c.length;
        EXPECT_EQ(starts.front(), 0);
        for (int i = 1; i < starts.size(); ++i)
            EXPECT_EQ(starts[i] - starts[i - 1], 100) << "page " << i;
        EXPECT_LT(starts.back(), qMax(1L, c.length));
    }
}

TEST(Paginate, ARangeStartsAtItsOwnStart)
{
    const QList<long> starts = Paginate(250, 650, FixedLines(10, 10, 650));
    EXPECT_EQ(starts, (QList<long>{250, 350, 450, 550}));
}

TEST(Paginate, APageThatFitsNothingEndsTheRunInsteadOfLooping)
{
    int calls = 0;
    const QList<long> starts = Paginate(0, 1000, [&](long start) { ++calls; return start; });
    EXPECT_EQ(starts, QList<long>{0});
    EXPECT_EQ(calls, 1);
}

TEST(Paginate, CancelStopsAfterThePageThatSaidSo)
{
    int calls = 0;
    const QList<long> starts =
        Paginate(0, 100000, FixedLines(10, 10, 100000, &calls), [](long reached) { return reached < 500; });
    EXPECT_EQ(starts.size(), 6);
    EXPECT_EQ(calls, 5);
}

} // namespace
