#include "hex/CHexValuesPanel.h"
#include "hex/CPieceTable.h"

#include "HexTestFile.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Bytes
{
    const char* name;
    QByteArray data;
};

void PrintTo(const Bytes& b, std::ostream* out)
{
    *out << b.name;
}

class HexValuesPanelFit : public ::testing::TestWithParam<Bytes>
{
};

// Whatever the bytes, every reading shows whole, in a panel narrower than its columns.
TEST_P(HexValuesPanelFit, EveryReadingShowsWhole)
{
    const QString path = MakeFile(GetParam().data);
    CPieceTable bytes;
    ASSERT_TRUE(bytes.Open(path, nullptr));
    CHexValuesPanel panel;
    panel.resize(140, 400);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    panel.ShowAt(bytes, 0);
    QCoreApplication::processEvents();
    auto* table = panel.findChild<QTableWidget*>();
    ASSERT_NE(table, nullptr);
    const QAbstractItemView* view = table;
    for (int column = 0; column < table->columnCount(); ++column) {
        EXPECT_GE(table->columnWidth(column), view->sizeHintForColumn(column)) << "column " << column;
        EXPECT_GE(table->columnWidth(column), table->horizontalHeader()->sectionSizeHint(column))
            << "header " << column;
    }
    EXPECT_EQ(table->columnWidth(1), table->columnWidth(2)) << "both byte orders alike";
    EXPECT_NE(table->horizontalScrollBar()->maximum(), 0) << "a narrow panel scrolls sideways";
}

INSTANTIATE_TEST_SUITE_P(
    Extremes, HexValuesPanelFit,
    ::testing::Values(Bytes{"AllOnes", QByteArray(8, '\xFF')},
                      Bytes{"Int64Min", QByteArray("\x80\0\0\0\0\0\0\0", 8)},
                      Bytes{"UInt64Max", QByteArray("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F", 8)},
                      Bytes{"SmallestNegativeDouble", QByteArray("\x80\0\0\0\0\0\0\x01", 8)},
                      Bytes{"LongDoubleBothWays", QByteArray("\x80\x10\0\0\0\0\x10\x80", 8)},
                      Bytes{"NegativeFloatSubnormal", QByteArray("\x80\x00\x00\x01\x01\x00\x00\x80", 8)},
                      Bytes{"TooFewBytes", QByteArray("\x01", 1)}),
    [](const ::testing::TestParamInfo<Bytes>& info) { return std::string(info.param.name); });

} // namespace
