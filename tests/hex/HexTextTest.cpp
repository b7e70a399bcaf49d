#include "hex/HexText.h"

#include <gtest/gtest.h>

namespace {

struct HexCase
{
    const char* text;
    bool ok;
    QByteArray bytes;
};

class ParseHexCases : public ::testing::TestWithParam<HexCase>
{
};

TEST_P(ParseHexCases, ReadsBytes)
{
    const HexCase& c = GetParam();
    QByteArray out("untouched");
    EXPECT_EQ(HexText::ParseHex(QString::fromLatin1(c.text), &out), c.ok) << c.text;
    EXPECT_EQ(out, c.ok ? c.bytes : QByteArray("untouched")) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, ParseHexCases,
    ::testing::Values(HexCase{"4D5A", true, "MZ"},
                      HexCase{"4d 5a 90", true, "MZ\x90"},
                      HexCase{"0x4D, 0x5A", true, "MZ"},
                      HexCase{"de-ad-be-ef", true, "\xDE\xAD\xBE\xEF"},
                      HexCase{"A", true, "\x0A"},
                      HexCase{"ABC", true, "\x0A\xBC"},
                      HexCase{"00 00", true, QByteArray(2, '\0')},
                      HexCase{"  \t", false, {}},
                      HexCase{"", false, {}},
                      HexCase{"4G", false, {}},
                      HexCase{"0x", false, {}},
                      HexCase{"12 hello", false, {}}));

TEST(HexText, ToHexWritesUpperCasePairs)
{
    EXPECT_EQ(HexText::ToHex(QByteArray("\x00\x7F\xAB", 3)), QStringLiteral("00 7F AB"));
    EXPECT_EQ(HexText::ToHex(QByteArray()), QString());
}

TEST(HexText, ToHexAndParseHexRoundTrip)
{
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    QByteArray back;
    ASSERT_TRUE(HexText::ParseHex(HexText::ToHex(all), &back));
    EXPECT_EQ(back, all);
}

struct OffsetCase
{
    const char* text;
    bool hex;
    qint64 current;
    qint64 size;
    bool ok;
    qint64 expected;
};

class ParseOffsetCases : public ::testing::TestWithParam<OffsetCase>
{
};

TEST_P(ParseOffsetCases, ParsesOrRefuses)
{
    const OffsetCase& c = GetParam();
    qint64 out = -7;
    QString error;
    EXPECT_EQ(HexText::ParseOffset(QString::fromLatin1(c.text), c.hex, c.current, c.size, &out,
                                   &error),
              c.ok)
        << c.text;
    if (c.ok) {
        EXPECT_EQ(out, c.expected) << c.text;
    } else {
        EXPECT_EQ(out, -7) << "a refused offset must not be stored";
        EXPECT_FALSE(error.isEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Inputs, ParseOffsetCases,
    ::testing::Values(OffsetCase{"ff", true, 0, 1000, true, 255},
                      OffsetCase{"FF", true, 0, 1000, true, 255},
                      OffsetCase{"100", false, 0, 1000, true, 100},
                      OffsetCase{"0x10", false, 0, 1000, true, 16},
                      OffsetCase{" 20 ", false, 0, 1000, true, 20},
                      OffsetCase{"999", false, 0, 1000, true, 999},
                      OffsetCase{"1000", false, 0, 1000, false, 0},
                      OffsetCase{"3e8", true, 0, 1000, false, 0},
                      OffsetCase{"+10", false, 50, 1000, true, 60},
                      OffsetCase{"-a", true, 50, 1000, true, 40},
                      OffsetCase{"-51", false, 50, 1000, false, 0},
                      OffsetCase{"ff", false, 0, 1000, false, 0},
                      OffsetCase{"", true, 0, 1000, false, 0},
                      OffsetCase{"12x", false, 0, 1000, false, 0},
                      OffsetCase{"0", false, 0, 0, true, 0},
                      OffsetCase{"1", false, 0, 0, false, 0},
                      OffsetCase{"FFFFFFFFFFFFFFFFFFFF", true, 0, 1000, false, 0},
                      OffsetCase{"ffffffff", true, 0, qint64(1) << 33, true, 0xffffffffLL}));

TEST(HexText, OutOfRangeMessageNamesTheLastOffset)
{
    qint64 out = 0;
    QString error;
    ASSERT_FALSE(HexText::ParseOffset(QStringLiteral("5000"), false, 0, 256, &out, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("255"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("0xFF"))) << error.toStdString();
}

} // namespace
