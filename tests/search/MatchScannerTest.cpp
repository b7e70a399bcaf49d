#include "search/MatchScanner.h"

#include <gtest/gtest.h>
#include <string>

namespace {

// Scans `text` in steps of `step` bytes; returns the matches as "start+length" joined by
// ";" and counts the steps.
std::string ScanInSteps(const std::string& text, const SearchQuery& query, qint64 step, int* steps = nullptr)
{
    MatchScanner scanner;
    scanner.Start(query, qint64(text.size()));
    const auto read = [&text](qint64 from, qint64 to) {
        return std::string_view(text).substr(std::size_t(from), std::size_t(to - from));
    };
    int count = 0;
    while (!scanner.Done()) {
        const qint64 before = scanner.ScannedTo();
        scanner.Step(read, step);
        EXPECT_GT(scanner.ScannedTo(), before);
        // A step ends at a line end, never inside a line.
        if (!scanner.Done()) {
            EXPECT_EQ(text[std::size_t(scanner.ScannedTo() - 1)], '\n');
        }
        ++count;
    }
    if (steps)
        *steps = count;
    std::string found;
    for (const MatchScanner::Match& m : scanner.Matches())
        found += (found.empty() ? "" : ";") + std::to_string(m.start) + "+" + std::to_string(m.length);
    return found;
}

struct StepCase
{
    const char* name;
    std::string text;
    QString find;
    bool matchCase;
    bool matchWord;
    bool regExp;
    std::string expected;
};

class MatchScannerSteps : public ::testing::TestWithParam<StepCase> {};

// Whatever the step, every match is found once: a step boundary neither splits nor
// repeats one.
TEST_P(MatchScannerSteps, SameMatchesWhateverTheStep)
{
    const StepCase& c = GetParam();
    const SearchQuery query(c.find, c.matchCase, c.matchWord, c.regExp);
    for (const qint64 step : {1, 3, 7, 64, 1 << 20})
        EXPECT_EQ(ScanInSteps(c.text, query, step), c.expected) << "step " << step;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MatchScannerSteps,
    ::testing::Values(
        StepCase{"Literal", "abc abc\nxabc\n\nabc", QStringLiteral("abc"), true, false, false, "0+3;4+3;9+3;14+3"},
        StepCase{"IgnoreCase", "ABC\naBc\n", QStringLiteral("abc"), false, false, false, "0+3;4+3"},
        StepCase{"MatchCase", "ABC\naBc\nabc", QStringLiteral("abc"), true, false, false, "8+3"},
        StepCase{"WholeWord", "word words\nword", QStringLiteral("word"), true, true, false, "0+4;11+4"},
        StepCase{"Expression", "a1 b22\nc333\r\n", QStringLiteral("[a-z]\\d+"), true, false, true, "0+2;3+3;7+4"},
        StepCase{"LineAnchors", "ab\nab\nb", QStringLiteral("^a"), true, false, true, "0+1;3+1"},
        // Empty matches cannot be shown or selected: they are left out.
        StepCase{"EmptyMatchesLeftOut", "aa\n\nb", QStringLiteral("a*"), true, false, true, "0+2"},
        StepCase{"MultiByte", "\xC3\xA9t\xC3\xA9\n\xC3\xA9", QStringLiteral("\u00e9"), true, false, false, "0+2;3+2;6+2"},
        StepCase{"NoLineEndAtAll", std::string(50, 'x') + "needle", QStringLiteral("needle"), true, false, false, "50+6"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(MatchScanner, LongLineWidensTheStepInsteadOfCuttingIt)
{
    const std::string text = std::string(100, 'x') + "needle" + std::string(100, 'x') + "\nneedle";
    int steps = 0;
    EXPECT_EQ(ScanInSteps(text, SearchQuery(QStringLiteral("needle"), true, false, false), 4, &steps), "100+6;207+6");
    EXPECT_LE(steps, 3);
}

TEST(MatchScanner, InvalidQueryAndEmptyTextAreDoneAtOnce)
{
    MatchScanner scanner;
    scanner.Start(SearchQuery(QStringLiteral("(unclosed"), true, false, true), 100);
    EXPECT_TRUE(scanner.Done());
    EXPECT_TRUE(scanner.Matches().empty());
    scanner.Start(SearchQuery(QStringLiteral("x"), true, false, false), 0);
    EXPECT_TRUE(scanner.Done());
}

TEST(MatchScanner, TextShorterThanAnnouncedStopsWithoutReadingPastIt)
{
    const std::string text = "ab\nab\n";
    MatchScanner scanner;
    scanner.Start(SearchQuery(QStringLiteral("ab"), true, false, false), 1000);
    const auto read = [&text](qint64 from, qint64 to) {
        const std::size_t end = std::min(text.size(), std::size_t(to));
        return std::string_view(text).substr(std::size_t(from), end - std::size_t(from));
    };
    while (!scanner.Step(read, 4)) {
    }
    EXPECT_EQ(scanner.ScannedTo(), 3);
    EXPECT_EQ(scanner.Matches().size(), 1u);
}

TEST(MatchScanner, IndexLookupsAroundMatches)
{
    MatchScanner scanner;
    const std::string text = "ab ab\nab";
    scanner.Start(SearchQuery(QStringLiteral("ab"), true, false, false), qint64(text.size()));
    scanner.Step([&text](qint64 f, qint64 t) { return std::string_view(text).substr(f, t - f); }, 100);
    // Matches at 0, 3, 6.
    const struct { qint64 position; qint64 first; qint64 lastBefore; } cases[] = {
        {0, 0, -1}, {1, 1, 0}, {3, 1, 0}, {4, 2, 1}, {6, 2, 1}, {7, -1, 2}, {100, -1, 2}};
    for (const auto& c : cases) {
        EXPECT_EQ(scanner.FirstFrom(c.position), c.first) << c.position;
        EXPECT_EQ(scanner.LastBefore(c.position), c.lastBefore) << c.position;
    }
}

} // namespace
