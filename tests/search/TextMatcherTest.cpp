#include "search/TextMatcher.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Every hit as "line:matched", joined by ";", each checked to lie within its line.
std::string Scan(const std::string& text, const QString& find, bool matchCase, bool matchWord, bool regExp,
                 qint64 firstLine = 1)
{
    const SearchQuery query(find, matchCase, matchWord, regExp);
    EXPECT_TRUE(query.IsValid()) << query.ErrorString().toStdString();
    TextMatcher matcher(query);
    std::string found;
    matcher.Search(text, firstLine, [&](const LineHit& hit) {
        EXPECT_LE(hit.lineStart, hit.matchStart);
        EXPECT_LE(hit.matchStart + hit.matchLength, hit.lineEnd);
        EXPECT_TRUE(hit.lineEnd == text.size() || text[hit.lineEnd] == '\n');
        found += (found.empty() ? "" : ";") + std::to_string(hit.line) + ":" + text.substr(hit.matchStart, hit.matchLength);
        return true;
    });
    return found;
}

const std::string Code = "int main()\n{\n    int counter = 0;\r\n    counter++; // COUNTER\n"
                         "    return counter_max;\n}"; // six lines, the last without a line end

struct MatchCase
{
    const char* name;
    std::string text;
    const char* find;
    bool matchCase, matchWord, regExp;
    const char* expected;
};

using TextMatcherCases = ::testing::TestWithParam<MatchCase>;

TEST_P(TextMatcherCases, FindsEachMatchOnItsLine)
{
    const MatchCase& c = GetParam();
    EXPECT_EQ(Scan(c.text, QString::fromUtf8(c.find), c.matchCase, c.matchWord, c.regExp), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextMatcherCases,
    ::testing::Values(
        MatchCase{"Literal", Code, "counter", true, false, false, "3:counter;4:counter;5:counter"},
        MatchCase{"LiteralNoCase", Code, "CoUnTeR", false, false, false, "3:counter;4:counter;4:COUNTER;5:counter"},
        MatchCase{"WholeWord", Code, "counter", false, true, false, "3:counter;4:counter;4:COUNTER"},
        MatchCase{"WordOfPunctuation", "a++b\nc+++\n", "++", true, true, false, "1:++"},
        MatchCase{"LastLineWithoutEnd", Code, "}", true, false, false, "6:}"},
        MatchCase{"ExpressionWithPiece", Code, "count\\w*", true, false, true, "3:counter;4:counter;5:counter_max"},
        MatchCase{"ExpressionWithoutPiece", Code, "[0-9]+|\\+\\+", true, false, true, "3:0;4:++"},
        MatchCase{"NeverSpansLines", "ab  \n  cd\n", "b\\s+|\\s+c", true, false, true, "1:b  ;2:  c"},
        MatchCase{"AlternativesInTextOrder", "a FIXME\nplain\nTODO and FIXME\nTODOS\n", "TODO\\b|FIXME", true,
                  false, true, "1:FIXME;3:TODO;3:FIXME"},
        MatchCase{"AnchorsPerLine", "abc\nxabc\nabc", "^abc$", true, false, true, "1:abc;3:abc"},
        MatchCase{"DollarBeforeCr", "one x\r\ntwo\r\n", "x$", true, false, true, "1:x"},
        MatchCase{"EmptyMatchOncePerLine", "one\n\nthree\n", "^", true, false, true, "1:;2:;3:"},
        // Blocks end at a line end; the next block reports the line that follows.
        MatchCase{"NoEmptyMatchAfterTheFinalLineEnd", "ab\ncd\n", "$", true, false, true, "1:;2:"},
        MatchCase{"FoldsNonAscii", "Stra\xC3\x9F" "e\nSTRA\xC3\x9F" "E\n", "stra\xC3\x9F" "e", false, false, false,
                  "1:Stra\xC3\x9F" "e;2:STRA\xC3\x9F" "E"},
        MatchCase{"WholeWordExpression", "foo foobar barfoo foo\n", "fo+", true, true, true, "1:foo;1:foo"}),
    [](const ::testing::TestParamInfo<MatchCase>& info) { return std::string(info.param.name); });

TEST(TextMatcher, LineNumbersCarryOverFromEarlierBlocks)
{
    EXPECT_EQ(Scan("x\nneedle\n", QStringLiteral("needle"), true, false, false, 1000), "1001:needle");
}

TEST(TextMatcher, InvalidUtf8IsMatchedByteForByte)
{
    // A Latin-1 "é", an encoded surrogate, an overlong form, a cut sequence.
    for (const std::string bad : {"caf\xE9", "\xED\xA0\x80", "\xC0\xAF", "\xE2\x82"}) {
        const std::string text = "a\n" + bad + " = 1; " + bad + " = 22;\n";
        for (const QString& pattern : {QStringLiteral("= [0-9]+"), QStringLiteral("[=][ ][0-9]+")})
            EXPECT_EQ(Scan(text, pattern, true, false, true), "2:= 1;2:= 22") << pattern.toStdString();
    }
}

// Only the hits with text: where an expression also matches empty, those are what a
// user looks for.
std::string NonEmpty(const std::string& hits)
{
    std::string out;
    std::size_t at = 0;
    while (at <= hits.size()) {
        std::size_t end = hits.find(';', at);
        if (end == std::string::npos)
            end = hits.size();
        const std::string hit = hits.substr(at, end - at);
        if (!hit.empty() && hit.back() != ':')
            out += (out.empty() ? "" : ";") + hit;
        at = end + 1;
    }
    return out;
}

TEST(TextMatcher, EmptyAlternativeStillFindsTheLongerOne)
{
    // With and without a piece of text to pick lines by, at a line's start and inside it.
    const std::string text = "xxab\nab\nnone\nab cd\n";
    EXPECT_EQ(NonEmpty(Scan(text, QStringLiteral("|ab"), true, false, true)), "1:ab;2:ab;4:ab");
    EXPECT_EQ(NonEmpty(Scan(text, QStringLiteral("(?:|ab|cd)"), true, false, true)), "1:ab;2:ab;4:ab;4:cd");
    EXPECT_EQ(NonEmpty(Scan(text, QStringLiteral("x*|[a-d]+"), true, false, true)), "1:xx;1:ab;2:ab;4:ab;4:cd");
}

TEST(TextMatcher, LineIsMatchedTheSameWhateverItsNeighbours)
{
    // A line's bytes decide how it is read: a block holding a line that is not UTF-8
    // must not turn its valid lines into single bytes, whether or not the expression
    // has a piece of text to pick lines by.
    const std::vector<std::string> lines = {"caf\xC3\xA9 au lait", "caf\xE9 latin", "na\xC3\xAFve", "", "\xFF\xFE",
                                            "plain caf\xC3\xA9"};
    std::string block;
    for (const std::string& l : lines)
        block += l + "\n";
    for (const char* pattern : {"caf.", "caf\xC3\xA9", "\xC3\xA9", "\xC3\xA9|\xC3\xAF", ".\\s", "\\w+", "[^a-z ]", "^$"}) {
        const QString find = QString::fromUtf8(pattern);
        std::string alone;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string hits = Scan(lines[i], find, true, false, true, qint64(i) + 1);
            alone += (alone.empty() || hits.empty() ? "" : ";") + hits;
        }
        EXPECT_EQ(Scan(block, find, true, false, true), alone) << pattern;
    }
    // Read byte for byte, "\xE9" is the "é" of the pattern, whichever way lines are picked.
    EXPECT_EQ(Scan(block, QString::fromUtf8("caf\xC3\xA9"), true, false, true),
              "1:caf\xC3\xA9;2:caf\xE9;6:caf\xC3\xA9");
    EXPECT_EQ(Scan(block, QString::fromUtf8("caf\xC3\xA9|\\d{9}"), true, false, true),
              "1:caf\xC3\xA9;2:caf\xE9;6:caf\xC3\xA9");
}

struct ColumnCase
{
    const char* line;
    std::size_t offset;
    bool utf8;
    int tabWidth;
    int expected;
};

using EditorColumn = ::testing::TestWithParam<ColumnCase>;

TEST_P(EditorColumn, CountsAsTheEditorDoes)
{
    const ColumnCase& c = GetParam();
    EXPECT_EQ(TextMatcher::EditorColumn(c.line, c.offset, c.utf8, c.tabWidth), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Columns, EditorColumn,
    ::testing::Values(
        ColumnCase{"ab\tx", 3, true, 4, 4},    // tab to the next stop, not four more
        ColumnCase{"abcd\tx", 5, true, 4, 8},
        ColumnCase{"\t\tx", 2, true, 8, 16},
        ColumnCase{"\xF0\x9F\x98\x80x", 4, true, 4, 1},
        ColumnCase{"\xC3\xA9x", 2, false, 4, 2}, // "Ansi": bytes
        ColumnCase{"\xE9\tx", 2, false, 4, 4}));

} // namespace
