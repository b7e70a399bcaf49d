#include "search/TextMatcher.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Found
{
    qint64 line;
    std::string lineText;
    std::string matched;
    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Found& f)
{
    return os << "{" << f.line << ", \"" << f.lineText << "\", \"" << f.matched << "\"}";
}

std::vector<Found> Scan(const std::string& text, const QString& find, bool matchCase, bool matchWord,
                       bool regExp, qint64 firstLine = 1)
{
    const SearchQuery query(find, matchCase, matchWord, regExp);
    EXPECT_TRUE(query.IsValid()) << query.ErrorString().toStdString();
    TextMatcher matcher(query);
    std::vector<Found> found;
    matcher.Search(text, firstLine, [&](const LineHit& hit) {
        std::string line = text.substr(hit.lineStart, hit.lineEnd - hit.lineStart);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        found.push_back({hit.line, line, text.substr(hit.matchStart, hit.matchLength)});
        return true;
    });
    return found;
}

const std::string Sample =
    "int main()\n"               // 1
    "{\n"                        // 2
    "    int counter = 0;\r\n"   // 3
    "    counter++; // COUNTER\n" // 4
    "    return counter_max;\n"  // 5
    "}";                         // 6, no line end

TEST(TextMatcher, LiteralFindsEveryOccurrenceWithItsLine)
{
    const auto found = Scan(Sample, QStringLiteral("counter"), true, false, false);
    const std::vector<Found> expected = {
        {3, "    int counter = 0;", "counter"},
        {4, "    counter++; // COUNTER", "counter"},
        {5, "    return counter_max;", "counter"},
    };
    EXPECT_EQ(found, expected);
}

TEST(TextMatcher, LiteralWithoutCaseTakesBothCases)
{
    const auto found = Scan(Sample, QStringLiteral("CoUnTeR"), false, false, false);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_EQ(found[2].matched, "COUNTER");
    EXPECT_EQ(found[2].line, 4);
}

TEST(TextMatcher, WholeWordRejectsPartsOfLongerWords)
{
    const auto found = Scan(Sample, QStringLiteral("counter"), false, true, false);
    ASSERT_EQ(found.size(), 3u); // not counter_max
    EXPECT_EQ(found[0].line, 3);
    EXPECT_EQ(found[2].matched, "COUNTER");
}

TEST(TextMatcher, WholeWordAcceptsPunctuationNextToWords)
{
    // "++" sits between a word and punctuation of another kind: a boundary on each side.
    const auto found = Scan("a++b\nc+++\n", QStringLiteral("++"), true, true, false);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].line, 1);
}

TEST(TextMatcher, LastLineWithoutLineEndIsSearched)
{
    const auto found = Scan(Sample, QStringLiteral("}"), true, false, false);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].line, 6);
}

TEST(TextMatcher, FirstLineNumberCarriesOverFromEarlierBlocks)
{
    const auto found = Scan("x\nneedle\n", QStringLiteral("needle"), true, false, false, 1000);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].line, 1001);
}

TEST(TextMatcher, ExpressionWithRequiredTextMatchesOnlyWithinLines)
{
    const auto found = Scan(Sample, QStringLiteral("count\\w*"), true, false, true);
    const std::vector<Found> expected = {
        {3, "    int counter = 0;", "counter"},
        {4, "    counter++; // COUNTER", "counter"},
        {5, "    return counter_max;", "counter_max"},
    };
    EXPECT_EQ(found, expected);
}

TEST(TextMatcher, ExpressionWithoutRequiredTextRunsOverTheWholeBlock)
{
    const auto found = Scan(Sample, QStringLiteral("[0-9]+|\\+\\+"), true, false, true);
    const std::vector<Found> expected = {
        {3, "    int counter = 0;", "0"},
        {4, "    counter++; // COUNTER", "++"},
    };
    EXPECT_EQ(found, expected);
}

TEST(TextMatcher, ExpressionNeverSpansLines)
{
    // In the whole block "\s+" would run from the end of line 1 into line 2.
    const auto found = Scan("ab  \n  cd\n", QStringLiteral("b\\s+|\\s+c"), true, false, true);
    const std::vector<Found> expected = {
        {1, "ab  ", "b  "},
        {2, "  cd", "  c"},
    };
    EXPECT_EQ(found, expected);
}

TEST(TextMatcher, AlternativesAreFoundInTextOrder)
{
    const std::string text = "a FIXME\nplain\nTODO and FIXME\nTODOS\n";
    const auto found = Scan(text, QStringLiteral("TODO\\b|FIXME"), true, false, true);
    const std::vector<Found> expected = {
        {1, "a FIXME", "FIXME"},
        {3, "TODO and FIXME", "TODO"},
        {3, "TODO and FIXME", "FIXME"},
    };
    EXPECT_EQ(found, expected);
}

TEST(TextMatcher, AnchorsWorkPerLine)
{
    const auto found = Scan("abc\nxabc\nabc", QStringLiteral("^abc$"), true, false, true);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].line, 1);
    EXPECT_EQ(found[1].line, 3);
}

TEST(TextMatcher, EmptyMatchesCountOncePerLine)
{
    const auto found = Scan("one\n\nthree\n", QStringLiteral("^"), true, false, true);
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[2].line, 3);
}

TEST(TextMatcher, ExpressionWithoutCaseFoldsNonAsciiLetters)
{
    const auto found = Scan("Stra\xC3\x9F" "e\nSTRA\xC3\x9F" "E\n", QStringLiteral("stra\u00DFe"), false, false, false);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[1].matched, "STRA\xC3\x9F" "E");
}

TEST(TextMatcher, WholeWordAppliesToExpressions)
{
    const auto found = Scan("foo foobar barfoo foo\n", QStringLiteral("fo+"), true, true, true);
    ASSERT_EQ(found.size(), 2u);
}

TEST(TextMatcher, InvalidUtf8IsMatchedByteForByte)
{
    // A Latin-1 "é", an encoded surrogate, an overlong form, a cut sequence: the
    // expression still finds the ASCII around them, at the right bytes.
    for (const std::string bad : {"caf\xE9", "\xED\xA0\x80", "\xC0\xAF", "\xE2\x82"}) {
        const std::string text = "a\n" + bad + " = 1; " + bad + " = 22;\n";
        for (const QString& pattern : {QStringLiteral("= [0-9]+"), QStringLiteral("[=][ ][0-9]+")}) {
            const auto found = Scan(text, pattern, true, false, true);
            ASSERT_EQ(found.size(), 2u) << pattern.toStdString();
            EXPECT_EQ(found[0].matched, "= 1");
            EXPECT_EQ(found[1].matched, "= 22");
            EXPECT_EQ(found[1].line, 2);
        }
    }
}

struct ColumnCase
{
    const char* line;
    std::size_t offset;
    bool utf8;
    int tabWidth;
    int expected;
};

class EditorColumn : public ::testing::TestWithParam<ColumnCase> {};

TEST_P(EditorColumn, CountsAsTheEditorDoes)
{
    const ColumnCase& c = GetParam();
    EXPECT_EQ(TextMatcher::EditorColumn(c.line, c.offset, c.utf8, c.tabWidth), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Columns, EditorColumn,
    ::testing::Values(
        ColumnCase{"abc", 0, true, 4, 0},
        ColumnCase{"abc", 2, true, 4, 2},
        ColumnCase{"\tx", 1, true, 4, 4},
        ColumnCase{"ab\tx", 3, true, 4, 4},    // tab to the next stop, not four more
        ColumnCase{"abcd\tx", 5, true, 4, 8},
        ColumnCase{"\t\tx", 2, true, 8, 16},
        ColumnCase{"\xC3\xA9x", 2, true, 4, 1},   // é is one character
        ColumnCase{"\xF0\x9F\x98\x80x", 4, true, 4, 1},
        ColumnCase{"\xC3\xA9x", 2, false, 4, 2}, // "Ansi": bytes
        ColumnCase{"\xE9\tx", 2, false, 4, 4}));

} // namespace
