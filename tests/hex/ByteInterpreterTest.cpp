#include "hex/ByteInterpreter.h"

#include <gtest/gtest.h>

namespace {

const ByteInterpreter::Row& Find(const QList<ByteInterpreter::Row>& rows, const char* type)
{
    for (const auto& row : rows) {
        if (row.type == QLatin1String(type))
            return row;
    }
    ADD_FAILURE() << "no row " << type;
    static const ByteInterpreter::Row none;
    return none;
}

TEST(ByteInterpreter, ReadsBothByteOrders)
{
    const uchar bytes[8] = {0xFE, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80};
    const auto rows = ByteInterpreter::Inspect(bytes, 8);
    EXPECT_EQ(Find(rows, "Int8").littleEndian, QStringLiteral("-2"));
    EXPECT_EQ(Find(rows, "UInt8").bigEndian, QStringLiteral("254"));
    EXPECT_EQ(Find(rows, "Int16").littleEndian, QStringLiteral("-2"));
    EXPECT_EQ(Find(rows, "Int16").bigEndian, QStringLiteral("-257"));
    EXPECT_EQ(Find(rows, "UInt16").littleEndian, QStringLiteral("65534"));
    EXPECT_EQ(Find(rows, "UInt32").littleEndian, QStringLiteral("65534"));
    EXPECT_EQ(Find(rows, "UInt32").bigEndian, QStringLiteral("4278124544"));
    EXPECT_EQ(Find(rows, "Int64").littleEndian, QStringLiteral("-9223372036854710274"));
    EXPECT_EQ(Find(rows, "UInt64").bigEndian, QStringLiteral("18374405004694913152"));
}

TEST(ByteInterpreter, ReadsFloats)
{
    const uchar one[8] = {0x00, 0x00, 0x80, 0x3F, 0, 0, 0, 0};
    EXPECT_EQ(Find(ByteInterpreter::Inspect(one, 8), "Float").littleEndian, QStringLiteral("1"));
    const uchar half[8] = {0x3F, 0xE0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(Find(ByteInterpreter::Inspect(half, 8), "Double").bigEndian, QStringLiteral("0.5"));
}

TEST(ByteInterpreter, LeavesWiderTypesEmptyNearTheEnd)
{
    const uchar bytes[3] = {1, 2, 3};
    const auto rows = ByteInterpreter::Inspect(bytes, 3);
    EXPECT_EQ(Find(rows, "Int16").littleEndian, QStringLiteral("513"));
    EXPECT_TRUE(Find(rows, "Int32").littleEndian.isEmpty());
    EXPECT_TRUE(Find(rows, "Double").bigEndian.isEmpty());
    EXPECT_TRUE(Find(ByteInterpreter::Inspect(bytes, 0), "UInt8").littleEndian.isEmpty());
}

} // namespace
