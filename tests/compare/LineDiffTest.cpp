#include "compare/CLineDiff.h"
#include "compare/LineTable.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

struct Diffed
{
    std::vector<DiffHunk> hunks;
    std::vector<std::string> left, right;
};

std::vector<std::string> LinesOf(const std::string& text)
{
    const auto starts = LineTable::SplitLines(text);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
        lines.emplace_back(text.substr(starts[i], starts[i + 1] - starts[i]));
    return lines;
}

Diffed Diff(const std::string& left, const std::string& right, CLineDiff::Method method,
            const DiffOptions& options = {})
{
    LineTable table;
    EXPECT_TRUE(table.Build(left, right, options));
    CLineDiff diff(table.LeftIds(), table.RightIds(), table.DistinctCount());
    diff.SetMethod(method);
    EXPECT_TRUE(diff.Run());
    return {diff.Hunks(), LinesOf(left), LinesOf(right)};
}

// The oracle: the hunks, applied to the left lines, give the right lines; and what they
// leave alone is equal on both sides.
void ExpectScriptTurnsLeftIntoRight(const Diffed& d)
{
    std::string rebuilt;
    int left = 0, right = 0;
    int previousEnd = -1;
    for (const DiffHunk& h : d.hunks) {
        ASSERT_GE(h.leftStart, left);
        ASSERT_GT(h.leftCount + h.rightCount, 0) << "empty hunk";
        ASSERT_GT(h.leftStart, previousEnd) << "hunks touch or overlap";
        ASSERT_EQ(h.leftStart - left, h.rightStart - right) << "unequal stretch between hunks";
        for (; left < h.leftStart; ++left, ++right) {
            ASSERT_EQ(d.left[std::size_t(left)], d.right[std::size_t(right)]);
            rebuilt += d.left[std::size_t(left)];
        }
        for (int k = 0; k < h.rightCount; ++k)
            rebuilt += d.right[std::size_t(h.rightStart + k)];
        left += h.leftCount;
        right += h.rightCount;
        previousEnd = left;
    }
    ASSERT_EQ(int(d.left.size()) - left, int(d.right.size()) - right);
    for (; left < int(d.left.size()); ++left, ++right) {
        ASSERT_EQ(d.left[std::size_t(left)], d.right[std::size_t(right)]);
        rebuilt += d.left[std::size_t(left)];
    }
    std::string expected;
    for (const auto& line : d.right)
        expected += line;
    EXPECT_EQ(rebuilt, expected);
}

int ChangedLines(const std::vector<DiffHunk>& hunks)
{
    int total = 0;
    for (const DiffHunk& h : hunks)
        total += h.leftCount + h.rightCount;
    return total;
}

// The fewest changed lines any script can have: left + right - 2 * LCS.
int MinimalChanged(const std::vector<std::string>& a, const std::vector<std::string>& b)
{
    std::vector<std::vector<int>> lcs(a.size() + 1, std::vector<int>(b.size() + 1, 0));
    for (std::size_t i = a.size(); i-- > 0;)
        for (std::size_t j = b.size(); j-- > 0;)
            lcs[i][j] = a[i] == b[j] ? lcs[i + 1][j + 1] + 1 : std::max(lcs[i + 1][j], lcs[i][j + 1]);
    return int(a.size() + b.size()) - 2 * lcs[0][0];
}

std::string Join(const std::vector<std::string>& lines)
{
    std::string text;
    for (const auto& l : lines)
        text += l;
    return text;
}

// A text of `lines` lines over an alphabet of `variety` distinct lines, and an edited copy.
std::pair<std::string, std::string> RandomPair(std::mt19937& rng, int lines, int variety, int edits)
{
    std::uniform_int_distribution<int> pick(0, variety - 1);
    std::vector<std::string> a;
    for (int i = 0; i < lines; ++i)
        a.push_back("line " + std::to_string(pick(rng)) + "\n");
    std::vector<std::string> b = a;
    for (int e = 0; e < edits; ++e) {
        const int kind = int(rng() % 3);
        const std::size_t at = b.empty() ? 0 : rng() % (b.size() + (kind == 0 ? 1 : 0));
        if (kind == 0 || b.empty())
            b.insert(b.begin() + std::ptrdiff_t(std::min(at, b.size())), "new " + std::to_string(pick(rng)) + "\n");
        else if (kind == 1)
            b.erase(b.begin() + std::ptrdiff_t(at));
        else
            b[at] = "changed " + std::to_string(pick(rng)) + "\n";
    }
    return {Join(a), Join(b)};
}

using LineDiffOracle = ::testing::TestWithParam<CLineDiff::Method>;

TEST_P(LineDiffOracle, AdversarialInputs)
{
    const std::string many(2000, 'x');
    std::string repeated, repeatedOther;
    for (int i = 0; i < 300; ++i) {
        repeated += "same\n";
        repeatedOther += i % 7 == 0 ? "other\n" : "same\n";
    }
    std::string allA, allB;
    for (int i = 0; i < 200; ++i) {
        allA += "a" + std::to_string(i) + "\n";
        allB += "b" + std::to_string(i) + "\n";
    }
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"", "a\nb\n"},
        {"a\nb\n", ""},
        {"a\nb", "a\nb\n"},           // no final line end on one side
        {"a\r\nb\r\n", "a\nb\n"},     // CRLF against LF
        {"a\rb\rc", "a\rx\rc"},       // old Mac line ends
        {"same\nsame\n", "same\nsame\n"},
        {allA, allB},                 // nothing in common
        {repeated, repeatedOther},    // long runs of one repeated line
        {repeated, ""},
        {"x\n" + repeated, repeated + "x\n"},
        {many + "\n" + many, many + "\n"},
        {"\n\n\n", "\n\n"},
        {"}\n", "}\n\nf() {\n}\n"},
    };
    for (const auto& [left, right] : cases) {
        SCOPED_TRACE(left.substr(0, 40) + " | " + right.substr(0, 40));
        ExpectScriptTurnsLeftIntoRight(Diff(left, right, GetParam()));
    }
}

TEST_P(LineDiffOracle, RandomEditsOfRepetitiveText)
{
    std::mt19937 rng(20261122);
    for (int round = 0; round < 300; ++round) {
        const int lines = int(rng() % 120);
        const int variety = 1 + int(rng() % 12);
        const auto [left, right] = RandomPair(rng, lines, variety, int(rng() % 30));
        SCOPED_TRACE("round " + std::to_string(round));
        ExpectScriptTurnsLeftIntoRight(Diff(left, right, GetParam()));
        if (HasFatalFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Methods, LineDiffOracle,
                         ::testing::Values(CLineDiff::Method::Patience, CLineDiff::Method::Histogram,
                                           CLineDiff::Method::Myers));

TEST(LineDiffTest, MyersIsMinimalBelowItsCostLimit)
{
    std::mt19937 rng(7);
    for (int round = 0; round < 200; ++round) {
        const auto [left, right] = RandomPair(rng, int(rng() % 60), 1 + int(rng() % 6), int(rng() % 20));
        const Diffed d = Diff(left, right, CLineDiff::Method::Myers);
        EXPECT_EQ(ChangedLines(d.hunks), MinimalChanged(d.left, d.right)) << "round " << round;
    }
}

using AnchoredMethods = ::testing::TestWithParam<CLineDiff::Method>;

TEST_P(AnchoredMethods, StayCloseToMinimal)
{
    std::mt19937 rng(11);
    long long found = 0, minimal = 0;
    for (int round = 0; round < 200; ++round) {
        const auto [left, right] = RandomPair(rng, 20 + int(rng() % 100), 30 + int(rng() % 200), int(rng() % 15));
        const Diffed d = Diff(left, right, GetParam());
        found += ChangedLines(d.hunks);
        minimal += MinimalChanged(d.left, d.right);
    }
    EXPECT_LE(found, minimal + minimal / 20);
}

INSTANTIATE_TEST_SUITE_P(Methods, AnchoredMethods,
                         ::testing::Values(CLineDiff::Method::Patience, CLineDiff::Method::Histogram));

TEST(LineDiffTest, ManyMovedBlocksStayNearMinimal)
{
    // Where the histogram method's greedy anchor goes wrong, patience keeps the
    // longest order of unique lines.
    std::mt19937 rng(5);
    std::vector<std::string> a;
    for (int i = 0; i < 400; ++i)
        a.push_back("line " + std::to_string(i) + "\n");
    std::vector<std::vector<std::string>> blocks;
    for (std::size_t i = 0; i < a.size(); i += 7)
        blocks.emplace_back(a.begin() + std::ptrdiff_t(i), a.begin() + std::ptrdiff_t(std::min(a.size(), i + 7)));
    std::shuffle(blocks.begin(), blocks.end(), rng);
    std::vector<std::string> b;
    for (const auto& block : blocks)
        b.insert(b.end(), block.begin(), block.end());
    const Diffed d = Diff(Join(a), Join(b), CLineDiff::Method::Patience);
    ExpectScriptTurnsLeftIntoRight(d);
    EXPECT_LE(ChangedLines(d.hunks), MinimalChanged(d.left, d.right) * 21 / 20);
}

TEST(LineDiffTest, MovedBlockIsOneDeletionAndOneInsertion)
{
    std::string a, b, moved;
    for (int i = 0; i < 10; ++i)
        moved += "moved " + std::to_string(i) + "\n";
    for (int i = 0; i < 50; ++i)
        a += "keep " + std::to_string(i) + "\n";
    b = moved + a;
    a = a + moved;
    const Diffed d = Diff(a, b, CLineDiff::Method::Patience);
    ASSERT_EQ(d.hunks.size(), 2u);
    EXPECT_EQ(d.hunks[0], (DiffHunk{0, 0, 0, 10}));
    EXPECT_EQ(d.hunks[1], (DiffHunk{50, 10, 60, 0}));
}

TEST(LineDiffTest, AddedBlockSlidesBelowTheLineItRepeats)
{
    const Diffed d = Diff("a\n}\n", "a\n}\nb\n}\n", CLineDiff::Method::Patience);
    ASSERT_EQ(d.hunks.size(), 1u);
    EXPECT_EQ(d.hunks[0], (DiffHunk{2, 0, 2, 2}));
}

TEST(LineDiffTest, OptionsDecideWhatCountsAsADifference)
{
    struct Row
    {
        const char* left;
        const char* right;
        DiffOptions options;
        std::size_t hunks;
    };
    const Row rows[] = {
        {"a  b\n", "a b\n", {}, 1},
        {"a  b\n", "a\tb\n", {true, false}, 0},
        {"a b\n", "ab\n", {true, false}, 1},
        {"a b  \r\n", "a b\n", {true, false}, 0},
        {"a b\r\n", "a b\n", {}, 1},
        {"  indented\n", "indented\n", {true, false}, 1},
        {"Hello\n", "hELLO\n", {false, true}, 0},
        {"\xc3\x84rger\n", "\xc3\xa4rger\n", {false, true}, 0},
        {"\xc3\x84rger\n", "\xc3\xa4rger\n", {}, 1},
        {"Hello  World\n", "hello world\n", {true, true}, 0},
    };
    for (const Row& row : rows) {
        const Diffed d = Diff(row.left, row.right, CLineDiff::Method::Patience, row.options);
        EXPECT_EQ(d.hunks.size(), row.hunks) << row.left << " | " << row.right;
    }
}

TEST(LineDiffTest, SplitLinesKeepsEveryLineEnd)
{
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\n", {"a\n"}},
        {"a\r\nb", {"a\r\n", "b"}},
        {"a\rb\r", {"a\r", "b\r"}},
        {"\n\n", {"\n", "\n"}},
        {"\r\n\r", {"\r\n", "\r"}},
    };
    for (const auto& [text, lines] : rows)
        EXPECT_EQ(LinesOf(text), lines) << text;
}

TEST(LineDiffTest, CancelStopsTheDiffAndProgressReachesTheEnd)
{
    std::mt19937 rng(3);
    const auto [left, right] = RandomPair(rng, 60000, 30000, 600);
    LineTable table;
    ASSERT_TRUE(table.Build(left, right, {}));

    std::atomic<bool> cancel{true};
    DiffControl stopped{&cancel, {}};
    CLineDiff cancelled(table.LeftIds(), table.RightIds(), table.DistinctCount());
    cancelled.SetControl(&stopped);
    EXPECT_FALSE(cancelled.Run());
    LineTable another;
    EXPECT_FALSE(another.Build(left, right, {}, &stopped));

    cancel = false;
    int last = -1;
    bool rising = true;
    DiffControl watched{&cancel, [&](int permille) {
                            rising = rising && permille >= last;
                            last = permille;
                        }};
    CLineDiff diff(table.LeftIds(), table.RightIds(), table.DistinctCount());
    diff.SetControl(&watched);
    EXPECT_TRUE(diff.Run());
    EXPECT_TRUE(rising);
    EXPECT_EQ(last, 1000);
    ExpectScriptTurnsLeftIntoRight({diff.Hunks(), LinesOf(left), LinesOf(right)});
}

} // namespace
