#include "syntax/ColourUtil.h"
#include "syntax/SyntaxColour.h"

#include <gtest/gtest.h>

namespace {

struct HexCase
{
    const char* text;
    quint32 colour;
};

class ColourFromHex : public ::testing::TestWithParam<HexCase> {};

TEST_P(ColourFromHex, ParsesByPosition)
{
    const HexCase& c = GetParam();
    EXPECT_EQ(ColourUtil::FromHex(QString::fromLatin1(c.text)), c.colour) << c.text;
}

INSTANTIATE_TEST_SUITE_P(Texts, ColourFromHex, ::testing::Values(
    HexCase{"#FF0000", 0x0000FF},           // red is the low byte
    HexCase{"#00ff00", 0x00FF00},           // either case
    HexCase{"#0000FF", 0xFF0000},
    HexCase{"#123456", 0x563412},
    HexCase{"#aBcDeF", 0xEFCDAB},
    HexCase{"#GG0000", 0x000000},           // non-hexadecimal digits count as 0
    HexCase{"#1G2Z3Q", 0x302010},
    HexCase{"#12", 0x000012},               // missing digits count as 0
    HexCase{"#", 0x000000},
    HexCase{"123456", 0x604523},            // position 0 is never read
    HexCase{"#12345678", 0x563412},         // extra digits are ignored
    HexCase{"", SyntaxColour::DefaultBack}  // empty means the default background
));

TEST(ColourToHex, WritesCapitalsRedFirst)
{
    EXPECT_EQ(ColourUtil::ToHex(0x563412), QStringLiteral("#123456"));
    EXPECT_EQ(ColourUtil::ToHex(0x0000FF), QStringLiteral("#FF0000"));
    EXPECT_EQ(ColourUtil::ToHex(0xEFCDAB), QStringLiteral("#ABCDEF"));
    EXPECT_EQ(ColourUtil::ToHex(0), QStringLiteral("#000000"));
    // Only the three colour bytes are written.
    EXPECT_EQ(ColourUtil::ToHex(0xFF0A0B0C), QStringLiteral("#0C0B0A"));
}

TEST(ColourToHex, RoundTripsEveryChannelValue)
{
    for (quint32 v = 0; v < 256; ++v) {
        const quint32 colour = v | ((255 - v) << 8) | (((v * 7) & 0xFF) << 16);
        EXPECT_EQ(ColourUtil::FromHex(ColourUtil::ToHex(colour)), colour);
    }
}

} // namespace
