#include "search/SearchQuery.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct RequiredCase
{
    const char* pattern;
    bool caseSensitive;
    const char* required;
};

class RequiredText : public ::testing::TestWithParam<RequiredCase> {};

// The piece must be in every match, or the prefilter drops matching lines.
TEST_P(RequiredText, IsAPieceEveryMatchHolds)
{
    const RequiredCase& c = GetParam();
    EXPECT_EQ(SearchQuery::RequiredText(QString::fromUtf8(c.pattern), c.caseSensitive), c.required)
        << "pattern " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, RequiredText,
    ::testing::Values(
        RequiredCase{"hello", true, "hello"},
        RequiredCase{"foo\\w+barbaz", true, "barbaz"},
        RequiredCase{"ab*cdef", true, "cdef"},      // "b" may be absent
        RequiredCase{"abcd?e", true, "abc"},        // "d" may be absent
        RequiredCase{"abc+", true, "ab"},
        RequiredCase{"ab{0,3}xyz", true, "xyz"},
        RequiredCase{"a.b", true, "a"},
        RequiredCase{"\\.cpp$", true, ".cpp"},     // escaped punctuation is text
        RequiredCase{"[abc]+def", true, "def"},
        RequiredCase{"[]x]qq", true, "qq"},
        RequiredCase{"(foo)bar", true, "bar"},
        RequiredCase{"(fo(o|x))barx", true, "barx"},
        RequiredCase{"foo|bar", true, ""},           // alternatives: nothing required
        RequiredCase{"(?i)foo", true, ""},           // inline options: give up
        RequiredCase{"\\x41BC", true, ""},           // escapes with meaning: give up
        RequiredCase{"\\bword\\b", true, "word"},
        RequiredCase{"caf\xC3\xA9s", true, "caf\xC3\xA9s"},
        RequiredCase{"caf\xC3\xA9s", false, "caf"},  // no byte folding beyond ASCII
        RequiredCase{"^\\s*$", true, ""}));

struct AlternativesCase
{
    const char* pattern;
    std::vector<std::string> required;
};

class RequiredTexts : public ::testing::TestWithParam<AlternativesCase> {};

// Every match holds one of the pieces: an alternative without a piece voids them all.
TEST_P(RequiredTexts, OnePiecePerAlternative)
{
    const AlternativesCase& c = GetParam();
    EXPECT_EQ(SearchQuery::RequiredTexts(QString::fromUtf8(c.pattern), true), c.required)
        << "pattern " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, RequiredTexts,
    ::testing::Values(
        AlternativesCase{"TODO|FIXME", {"TODO", "FIXME"}},
        AlternativesCase{"TODO\\b|TODO:", {"TODO", "TODO:"}},
        AlternativesCase{"abc|abc", {"abc"}},
        AlternativesCase{"(x|y)zz|ww", {"zz", "ww"}}, // "|" inside a group doesn't split
        AlternativesCase{"[|]qq|rr", {"qq", "rr"}},   // nor inside a class
        AlternativesCase{"a\\|b", {"a|b"}},           // nor escaped
        AlternativesCase{"foo|\\d+", {}},
        AlternativesCase{"foo|", {}}));

TEST(SearchQuery, PlainAsciiTextIsSearchedAsBytes)
{
    const SearchQuery query(QStringLiteral("needle"), false, false, false);
    ASSERT_TRUE(query.IsValid());
    EXPECT_FALSE(query.UsesExpression());
    EXPECT_EQ(query.Literal(), "needle");
    EXPECT_FALSE(query.LiteralCaseSensitive());
}

TEST(SearchQuery, NonAsciiTextWithoutCaseUsesTheExpressionEngine)
{
    const SearchQuery query(QStringLiteral("Stra\u00DFe"), false, false, false);
    ASSERT_TRUE(query.IsValid());
    EXPECT_TRUE(query.UsesExpression());
    EXPECT_EQ(query.RequiredLiterals(), std::vector<std::string>{"Stra"}); // escaped text yields its ASCII run
}

TEST(SearchQuery, BrokenExpressionIsReportedNotThrown)
{
    const SearchQuery query(QStringLiteral("foo(bar"), true, false, true);
    EXPECT_FALSE(query.IsValid());
    EXPECT_TRUE(query.ErrorString().contains(QStringLiteral("not valid")));
}

TEST(SearchQuery, EmptyTextIsRefused)
{
    EXPECT_FALSE(SearchQuery(QString(), true, false, false).IsValid());
}

} // namespace
