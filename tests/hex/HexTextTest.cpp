#include "hex/HexText.h"

#include <gtest/gtest.h>

namespace {

struct HexCase
{
    const char* text;
    bool ok;
    QByteArray bytes;
};

using ParseHexCases = ::testing::TestWithParam<HexCase>;

TEST_P(ParseHexCases, ReadsBytes)
{
    const HexCase& c = GetParam();
    QByteArray out("untouched");
    EXPECT_EQ(HexText::ParseHex(QString::fromLatin1(c.text), &out), c.ok) << c.text;
    EXPECT_EQ(out, c.ok ? c.bytes : QByteArray("untouched")) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, ParseHexCases,
    ::testing::Values(HexCase{"4d 5a 90", true, "MZ\x90"}, HexCase{"0x4D, 0x5A", true, "MZ"},
                      HexCase{"de-ad-be-ef", true, "\xDE\xAD\xBE\xEF"},
                      HexCase{"ABC", true, "\x0A\xBC"}, HexCase{"00 00", true, QByteArray(2, '\0')},
                      HexCase{"  \t", false, {}}, HexCase{"4G", false, {}},
                      HexCase{"0x", false, {}}, HexCase{"12 hello", false, {}}));

TEST(HexText, ToHexAndParseHexRoundTripEveryByte)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    EXPECT_TRUE(HexText::ToHex(all).startsWith(QStringLiteral("00 01 02")));
    QByteArray back;
    ASSERT_TRUE(HexText::ParseHex(HexText::ToHex(all), &back));
    EXPECT_EQ(back, all);
}

struct OffsetCase
{
    const char* text;
    bool hex;
    qint64 current, size;
    bool ok;
    qint64 expected;
};

using ParseOffsetCases = ::testing::TestWithParam<OffsetCase>;

TEST_P(ParseOffsetCases, ParsesOrRefuses)
{
    const OffsetCase& c = GetParam();
    qint64 out = -7;
    QString error;
    EXPECT_EQ(HexText::ParseOffset(QString::fromLatin1(c.text), c.hex, c.current, c.size, &out,
                                   &error),
              c.ok)
        << c.text;
    EXPECT_EQ(out, c.ok ? c.expected : -7) << c.text;
    EXPECT_EQ(error.isEmpty(), c.ok) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, ParseOffsetCases,
    ::testing::Values(OffsetCase{"FF", true, 0, 1000, true, 255},
                      OffsetCase{" 999 ", false, 0, 1000, true, 999},
                      OffsetCase{"1000", false, 0, 1000, false, 0},
                      OffsetCase{"+10", false, 50, 1000, true, 60},
                      OffsetCase{"-a", true, 50, 1000, true, 40},
                      OffsetCase{"-51", false, 50, 1000, false, 0},
                      OffsetCase{"ff", false, 0, 1000, false, 0},
                      OffsetCase{"0", false, 0, 0, true, 0},
                      OffsetCase{"FFFFFFFFFFFFFFFFFFFF", true, 0, 1000, false, 0},
                      OffsetCase{"ffffffff", true, 0, qint64(1) << 33, true, 0xffffffffLL}));

} // namespace
