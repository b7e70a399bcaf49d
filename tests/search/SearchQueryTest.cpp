#include "search/SearchQuery.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct RequiredCase
{
    const char* pattern;
    bool caseSensitive;
    std::vector<std::string> required;
};

class RequiredTexts : public ::testing::TestWithParam<RequiredCase> {};

// The prefilter drops every line without one of these pieces, so a piece that some match
// lacks loses matches: each must be in every match of its alternative.
TEST_P(RequiredTexts, EveryMatchHoldsOneOfThem)
{
    const RequiredCase& c = GetParam();
    EXPECT_EQ(SearchQuery::RequiredTexts(QString::fromUtf8(c.pattern), c.caseSensitive), c.required)
        << "pattern " << c.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, RequiredTexts,
    ::testing::Values(
        RequiredCase{"foo\\w+barbaz", true, {"barbaz"}},
        RequiredCase{"ab*cdef", true, {"cdef"}},     // "b" may be absent
        RequiredCase{"ab{0,3}xyz", true, {"xyz"}},
        RequiredCase{"\\.cpp$", true, {".cpp"}},     // escaped punctuation is text
        RequiredCase{"(fo(o|x))barx", true, {"barx"}},
        RequiredCase{"(?i)foo", true, {}},           // inline options: give up
        RequiredCase{"\\x41BC", true, {}},           // escapes with meaning: give up
        RequiredCase{"caf\xC3\xA9s", false, {"caf"}}, // no byte folding beyond ASCII
        RequiredCase{"TODO|FIXME", true, {"TODO", "FIXME"}},
        RequiredCase{"(x|y)zz|ww", true, {"zz", "ww"}}, // "|" inside a group doesn't split
        RequiredCase{"[|]qq|rr", true, {"qq", "rr"}},   // nor inside a class
        RequiredCase{"a\\|b", true, {"a|b"}},           // nor escaped
        RequiredCase{"foo|\\d+", true, {}},             // one alternative without a piece voids all
        RequiredCase{"foo|", true, {}}));

} // namespace
