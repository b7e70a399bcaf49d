#include "TestSupport.h"
#include "usertools/CToolResultsModel.h"

#include <QAbstractItemModelTester>
#include <gtest/gtest.h>

namespace {

QStringList Numbered(int from, int count)
{
    QStringList lines;
    for (int i = from; i < from + count; ++i)
        lines << QStringLiteral("line %1").arg(i);
    return lines;
}

struct LimitCase
{
    const char* name;
    QList<int> batches; // sizes of the batches appended in turn
    int limit;
};

using ScrollbackTest = ::testing::TestWithParam<LimitCase>;

TEST_P(ScrollbackTest, KeepsTheLastLinesAndAnnouncesTheCut)
{
    const LimitCase& c = GetParam();
    CToolResultsModel model;
    // Checks every insert and remove the model announces against what it then shows.
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.SetLimit(c.limit);
    int total = 0;
    for (const int size : c.batches) {
        model.AppendLines(Numbered(total, size));
        total += size;
    }
    const int kept = qMin(total, c.limit);
    const qint64 dropped = total - kept;
    EXPECT_EQ(model.DroppedLines(), dropped);
    ASSERT_EQ(model.rowCount(), kept + (dropped > 0 ? 1 : 0));
    EXPECT_EQ(model.RowText(model.rowCount() - 1), QStringLiteral("line %1").arg(total - 1));
    if (dropped > 0) {
        EXPECT_TRUE(model.RowText(0).contains(QString::number(dropped))) << model.RowText(0).toStdString();
        EXPECT_EQ(model.RowText(1), QStringLiteral("line %1").arg(dropped));
    } else {
        EXPECT_EQ(model.RowText(0), QStringLiteral("line 0"));
    }
}

INSTANTIATE_TEST_SUITE_P(Batches, ScrollbackTest,
                         ::testing::Values(LimitCase{"UnderTheLimit", {3, 4}, 10},
                                           LimitCase{"ExactlyTheLimit", {5, 5}, 10},
                                           LimitCase{"OneOver", {10, 1}, 10},
                                           LimitCase{"ManySmallBatches", {7, 7, 7, 7, 7}, 10},
                                           LimitCase{"OneBatchLargerThanThePage", {2, 25}, 10},
                                           LimitCase{"LargeThenSmall", {40, 1, 1}, 10}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ToolResultsModel, PartialLineStaysLastAndGoesWhenTheLineEnds)
{
    CToolResultsModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.AppendLines({QStringLiteral("a")});
    model.SetPartialLine(QStringLiteral("50%"));
    model.AppendLines({QStringLiteral("b")});
    ASSERT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.RowText(1), QStringLiteral("b"));
    EXPECT_EQ(model.RowText(2), QStringLiteral("50%"));
    model.SetPartialLine(QStringLiteral("90%"));
    EXPECT_EQ(model.RowText(2), QStringLiteral("90%"));
    model.SetPartialLine(QString());
    EXPECT_EQ(model.rowCount(), 2);
}

TEST(ToolResultsModel, LinksResolveAgainstTheFolderOfTheRunThatPrintedThem)
{
    CToolResultsModel model;
    model.SetExistsFunction([](const QString&) { return false; });
    model.SetBaseDirectory(QStringLiteral("/first"));
    model.AppendLines({QStringLiteral("a.c:1:2: error")});
    model.AppendLine(QStringLiteral("Exit code 1, 0.10 s"), CToolResultsModel::Status);
    model.SetBaseDirectory(QStringLiteral("/second"));
    model.AppendLines({QStringLiteral("a.c:5: warning"), QStringLiteral("plain")});
    OutputLink link;
    ASSERT_TRUE(model.LinkAt(0, link));
    EXPECT_EQ(link, (OutputLink{QStringLiteral("/first/a.c"), 1, 2}));
    // Our own status lines are never links, whatever they hold.
    EXPECT_FALSE(model.LinkAt(1, link));
    ASSERT_TRUE(model.LinkAt(2, link));
    EXPECT_EQ(link, (OutputLink{QStringLiteral("/second/a.c"), 5, 0}));
    EXPECT_FALSE(model.LinkAt(3, link));
    EXPECT_TRUE(model.data(model.index(2), CToolResultsModel::LinkRole).toBool());
    EXPECT_FALSE(model.data(model.index(3), CToolResultsModel::LinkRole).toBool());
}

} // namespace
