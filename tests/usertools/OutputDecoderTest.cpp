#include "TestSupport.h"
#include "usertools/COutputDecoder.h"

#include <gtest/gtest.h>

namespace {

struct DecodeCase
{
    const char* name;
    QByteArray bytes;
    QStringList lines; // after Finish
};

QStringList DecodeWhole(const QByteArray& bytes)
{
    COutputDecoder decoder;
    QStringList lines;
    decoder.Feed(bytes, lines);
    decoder.Finish(lines);
    return lines;
}

// The same bytes fed one at a time must give the same lines: pipes cut anywhere.
QStringList DecodeBytewise(const QByteArray& bytes)
{
    COutputDecoder decoder;
    QStringList lines;
    for (const char byte : bytes)
        decoder.Feed(&byte, 1, lines);
    decoder.Finish(lines);
    return lines;
}

using OutputDecoderTest = ::testing::TestWithParam<DecodeCase>;

TEST_P(OutputDecoderTest, DecodesWholeAndSplitAtEveryByte)
{
    const DecodeCase& c = GetParam();
    EXPECT_EQ(DecodeWhole(c.bytes), c.lines);
    EXPECT_EQ(DecodeBytewise(c.bytes), c.lines);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, OutputDecoderTest,
    ::testing::Values(
        DecodeCase{"LineEnds", "one\ntwo\r\nthree", {"one", "two", "three"}},
        DecodeCase{"EmptyLinesKept", "a\n\n\nb\n", {"a", "", "", "b"}},
        DecodeCase{"Utf8Characters", "gr\xC3\xBC\xC3\x9F " "\xE2\x82\xAC " "\xF0\x9F\x98\x80\n",
                   {QStringLiteral(u"grüß € \U0001F600")}},
        DecodeCase{"InvalidBytesStayVisible", "a\xFF" "b\xC3(\xE2\x82\n",
                   {QStringLiteral("a\\xFFb\\xC3(\\xE2\\x82")}},
        DecodeCase{"OverlongAndSurrogateFormsAreInvalid", "\xC0\xAF|\xED\xA0\x80\n",
                   {QStringLiteral("\\xC0\\xAF|\\xED\\xA0\\x80")}},
        DecodeCase{"CutCharacterAtTheEndIsShownAsBytes", "ok\xE2\x82", {QStringLiteral("ok\\xE2\\x82")}},
        DecodeCase{"ColourCodesRemoved",
                   "\x1B[1;31merror\x1B[0m: \x1B[01m\x1B[Kbad\x1B[m\x1B[K\n", {"error: bad"}},
        DecodeCase{"TitleAndCharsetSequencesRemoved", "\x1B]0;title\x07x\x1B]2;t\x1B\\y\x1B(Bz\n", {"xyz"}},
        DecodeCase{"ProgressLineEndsAsItsLastState", "10%\r50%\r100%\ndone\n", {"100%", "done"}},
        DecodeCase{"CarriageReturnOverwritesLikeATerminal", "abcdef\rXY\n", {"XYcdef"}},
        DecodeCase{"EraseInLineAfterReturnClearsTheRest", "Downloading big.iso\r\x1B[KDone\n", {"Done"}},
        DecodeCase{"BackspaceStepsBack", "ab\bc\n", {"ac"}},
        DecodeCase{"ControlBytesShowNothingButTabsStay", QByteArray("a\x07\tb\0c\n", 7), {QStringLiteral("a\tbc")}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OutputDecoder, CurrentLineShowsTheProgressBeforeItsLineEnds)
{
    COutputDecoder decoder;
    QStringList lines;
    decoder.Feed(QByteArrayLiteral("build: 10%\rbuild: 42%\xE2\x82"), lines);
    EXPECT_TRUE(lines.isEmpty());
    // The half character is not shown until the rest of it arrives.
    EXPECT_EQ(decoder.CurrentLine(), QStringLiteral("build: 42%"));
    decoder.Feed(QByteArrayLiteral("\xAC\n"), lines);
    EXPECT_EQ(lines, QStringList{QStringLiteral(u"build: 42%€")});
    EXPECT_TRUE(decoder.CurrentLine().isEmpty());
}

TEST(OutputDecoder, OutputWithoutLineEndsIsBrokenIntoBoundedLines)
{
    COutputDecoder decoder;
    QStringList lines;
    const QByteArray chunk(10000, 'x');
    for (int i = 0; i < 20; ++i)
        decoder.Feed(chunk, lines);
    decoder.Finish(lines);
    qsizetype total = 0;
    for (const QString& line : lines) {
        EXPECT_LE(line.size(), COutputDecoder::MaxLineLength + chunk.size());
        total += line.size();
    }
    EXPECT_GT(lines.size(), 1);
    EXPECT_EQ(total, 200000);
}

} // namespace
