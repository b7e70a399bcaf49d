#include "hex/ByteInterpreter.h"

#include <gtest/gtest.h>

namespace {

QString Value(const uchar* bytes, int size, const char* type, bool little)
{
    for (const auto& row : ByteInterpreter::Inspect(bytes, size)) {
        if (row.type == QLatin1String(type))
            return little ? row.littleEndian : row.bigEndian;
    }
    ADD_FAILURE() << "no row " << type;
    return {};
}

TEST(ByteInterpreter, ReadsBothByteOrdersAndLeavesWiderTypesEmptyNearTheEnd)
{
    const uchar b[8] = {0xFE, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80};
    EXPECT_EQ(Value(b, 8, "Int8", true), QStringLiteral("-2"));
    EXPECT_EQ(Value(b, 8, "Int16", false), QStringLiteral("-257"));
    EXPECT_EQ(Value(b, 8, "UInt32", false), QStringLiteral("4278124544"));
    EXPECT_EQ(Value(b, 8, "Int64", true), QStringLiteral("-9223372036854710274"));
    EXPECT_EQ(Value(b, 8, "UInt64", false), QStringLiteral("18374405004694913152"));
    const uchar one[8] = {0x00, 0x00, 0x80, 0x3F, 0, 0, 0, 0};
    EXPECT_EQ(Value(one, 8, "Float", true), QStringLiteral("1"));
    const uchar half[8] = {0x3F, 0xE0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(Value(half, 8, "Double", false), QStringLiteral("0.5"));
    EXPECT_EQ(Value(half, 3, "UInt16", true), QStringLiteral("57407"));
    EXPECT_TRUE(Value(half, 3, "Int32", true).isEmpty());
    EXPECT_TRUE(Value(half, 0, "UInt8", true).isEmpty());
}

} // namespace
