#include "compare/ByteCompare.h"
#include "compare/CharDiff.h"
#include "compare/CompareArguments.h"
#include "compare/CompareModel.h"
#include "compare/CompareSource.h"
#include "compare/LinePairing.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Span = CharDiff::Span;
using Kind = CompareModel::LineKind;

TEST(CharDiffTest, MarksOnlyTheCharactersThatDiffer)
{
    struct Row
    {
        std::string left, right;
        std::vector<Span> leftSpans, rightSpans;
    };
    const Row rows[] = {
        {"int count = 1;", "int count = 2;", {{12, 1}}, {{12, 1}}},
        {"abc", "abc", {}, {}},
        {"", "new", {}, {{0, 3}}},
        {"foo(a, b)", "foo(a, b, c)", {}, {{8, 3}}},
        // Two changes one character apart read as one mark.
        {"x = a+b;", "x = c-d;", {{4, 3}}, {{4, 3}}},
        // A changed accented letter is marked whole: two bytes, one character.
        {"caf\xc3\xa9!", "caf\xc3\xa8!", {{3, 2}}, {{3, 2}}},
    };
    for (const Row& row : rows) {
        const CharDiff::Result r = CharDiff::Compute(row.left, row.right);
        EXPECT_EQ(r.left, row.leftSpans) << row.left;
        EXPECT_EQ(r.right, row.rightSpans) << row.right;
    }
}

TEST(CharDiffTest, VeryLongLinesAreMarkedWhole)
{
    const std::string a(CharDiff::MaxLineLength + 1, 'a');
    std::string b = a;
    b[10] = 'b';
    const CharDiff::Result r = CharDiff::Compute(a, b);
    ASSERT_EQ(r.left.size(), 1u);
    EXPECT_EQ(r.left[0].length, int(a.size()));
}

// Left: a b c d e        right: a X c d Y Z e   (b changed, Y Z inserted)
CompareModel SampleModel()
{
    CompareModel model;
    model.Build({{1, 1, 1, 1}, {4, 0, 4, 2}}, 5, 7);
    return model;
}

TEST(CompareModelTest, EverySideFillsTheSameNumberOfRows)
{
    const CompareModel model = SampleModel();
    EXPECT_EQ(model.RowCount(), 7);
    EXPECT_EQ(model.DifferenceCount(), 2);
    for (int side : {0, 1}) {
        const auto s = CompareModel::Side(side);
        int rows = model.FillerAfter(s, -1);
        for (int line = 0; line < model.LineCount(s); ++line)
            rows += 1 + model.FillerAfter(s, line);
        EXPECT_EQ(rows, model.RowCount()) << "side " << side;
    }
    EXPECT_EQ(model.FillerAfter(CompareModel::Left, 3), 2);
    EXPECT_EQ(model.RowOfLine(CompareModel::Left, 4), model.RowOfLine(CompareModel::Right, 6));
}

TEST(CompareModelTest, KindsOfLines)
{
    const CompareModel model = SampleModel();
    EXPECT_EQ(model.KindOf(CompareModel::Left, 0), Kind::Equal);
    EXPECT_EQ(model.KindOf(CompareModel::Left, 1), Kind::Changed);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 1), Kind::Changed);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 4), Kind::Inserted);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 5), Kind::Inserted);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 6), Kind::Equal);

    CompareModel deleted;
    deleted.Build({{0, 3, 0, 1}}, 4, 2);
    EXPECT_EQ(deleted.KindOf(CompareModel::Left, 0), Kind::Changed);
    EXPECT_EQ(deleted.KindOf(CompareModel::Left, 2), Kind::Deleted);
    EXPECT_EQ(deleted.FillerAfter(CompareModel::Right, 0), 2);
}

TEST(CompareModelTest, InsertionAtTheTopPutsFillerAboveTheFirstLine)
{
    CompareModel model;
    model.Build({{0, 0, 0, 3}}, 2, 5);
    EXPECT_EQ(model.FillerAfter(CompareModel::Left, -1), 3);
    EXPECT_EQ(model.RowOfLine(CompareModel::Left, 0), 3);
}

TEST(CompareModelTest, StepsBetweenDifferences)
{
    const CompareModel model = SampleModel();
    EXPECT_EQ(model.NextDifference(0), 0);
    EXPECT_EQ(model.NextDifference(1), 1);
    EXPECT_EQ(model.NextDifference(4), -1);
    EXPECT_EQ(model.PreviousDifference(6), 1);
    EXPECT_EQ(model.PreviousDifference(4), 0);
    EXPECT_EQ(model.PreviousDifference(1), -1);
    EXPECT_EQ(model.DifferenceOfRow(5), 1);
    EXPECT_EQ(model.DifferenceOfRow(0), -1);
}

TEST(CompareModelTest, AdjoiningPartsMakeOneDifference)
{
    // Left: a X b       right: a P Q X' b   (X paired with X' after two added lines)
    CompareModel model;
    model.Build({{1, 0, 1, 2}, {1, 1, 3, 1}}, 3, 5);
    EXPECT_EQ(model.DifferenceCount(), 1);
    int start = 0, count = 0;
    model.DifferenceLines(0, CompareModel::Right, start, count);
    EXPECT_EQ(start, 1);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 1), Kind::Inserted);
    EXPECT_EQ(model.KindOf(CompareModel::Right, 3), Kind::Changed);
    EXPECT_EQ(model.FillerAfter(CompareModel::Left, 0), 2);
    EXPECT_EQ(model.RowOfLine(CompareModel::Left, 1), model.RowOfLine(CompareModel::Right, 3));
    EXPECT_EQ(model.DifferenceOfRow(2), 0);
    EXPECT_EQ(model.NextDifference(0), 0);
    EXPECT_EQ(model.NextDifference(1), -1);
}

TEST(LinePairingTest, ChangedLinesStandBesideTheirLikeliestCounterparts)
{
    const std::vector<std::string> left = {"    printf(\"%d\\n\", sum(argc - 1, argv + 1));"};
    const std::vector<std::string> right = {"    if (argc < 2) {", "        fprintf(stderr, \"usage\");", "    }",
                                            "    printf(\"%ld\\n\", sum(argc - 1, argv + 1));"};
    // The lines are numbered from 10 on the left and from 20 on the right.
    auto line = [&](int side, int n) -> std::string_view {
        return side == 0 ? left[std::size_t(n - 10)] : right[std::size_t(n - 20)];
    };
    const std::vector<DiffHunk> parts = LinePairing::Pair({10, 1, 20, 4}, line);
    EXPECT_EQ(parts, (std::vector<DiffHunk>{{10, 0, 20, 3}, {10, 1, 23, 1}}));

    // Nothing alike: the difference stays whole.
    const std::vector<std::string> other = {"alpha", "beta", "gamma"};
    auto unrelated = [&](int side, int n) -> std::string_view {
        return side == 0 ? std::string_view("zzzz qqqq") : std::string_view(other[std::size_t(n)]);
    };
    EXPECT_EQ(LinePairing::Pair({0, 1, 0, 3}, unrelated), (std::vector<DiffHunk>{{0, 1, 0, 3}}));
    EXPECT_GT(LinePairing::Similarity("return 0;", "return 1;"), 0.5);
    EXPECT_LT(LinePairing::Similarity("return 0;", "}"), 0.5);
}

TEST(LinePairingTest, PartsCoverTheDifferenceExactlyAndInOrder)
{
    std::mt19937 rng(9);
    const char* const words[] = {"return x;", "return y;", "}", "if (a) {", "call(a, b);", "call(a, c);", ""};
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> sides[2];
        // A difference always has a line on at least one side.
        for (int side = 0; side < 2; ++side)
            for (int k = int(rng() % 9) + (side == 0 ? 1 : 0); k > 0; --k)
                sides[side].push_back(words[rng() % 7]);
        const DiffHunk hunk{5, int(sides[0].size()), 7, int(sides[1].size())};
        auto line = [&](int side, int n) -> std::string_view {
            return sides[side][std::size_t(n - (side == 0 ? 5 : 7))];
        };
        int left = hunk.leftStart, right = hunk.rightStart;
        for (const DiffHunk& part : LinePairing::Pair(hunk, line)) {
            EXPECT_EQ(part.leftStart, left);
            EXPECT_EQ(part.rightStart, right);
            EXPECT_GT(part.leftCount + part.rightCount, 0);
            left += part.leftCount;
            right += part.rightCount;
        }
        EXPECT_EQ(left, hunk.leftStart + hunk.leftCount);
        EXPECT_EQ(right, hunk.rightStart + hunk.rightCount);
    }
}

TEST(CompareSourceTest, ReadsEachEncodingAsTheControlHoldsIt)
{
    const QString dir = TestSupport::MakeTempDir();
    struct Row
    {
        const char* name;
        QByteArray bytes;
        QByteArray text;
        bool mark;
    };
    const Row rows[] = {
        {"utf8.txt", QByteArray("caf\xc3\xa9 au lait\n"), QByteArray("caf\xc3\xa9 au lait\n"), false},
        {"utf8bom.txt", QByteArray("\xef\xbb\xbfhi\n"), QByteArray("hi\n"), true},
        {"utf16le.txt", QByteArray("\xff\xfeh\0i\0\n\0", 8), QByteArray("hi\n"), true},
        // "Ansi" reaches the pane decoded, as the editor shows it: windows-1252 unless set.
        {"ansi.txt", QByteArray("caf\xe9 \x80\n"), QByteArray("caf\xc3\xa9 \xe2\x82\xac\n"), false},
    };
    for (const Row& row : rows) {
        const QString path = dir + QLatin1Char('/') + QLatin1String(row.name);
        TestSupport::WriteFile(path, row.bytes);
        const CompareSource source = CompareSource::Read(path);
        EXPECT_TRUE(source.ok()) << row.name;
        EXPECT_FALSE(source.binary) << row.name;
        EXPECT_EQ(source.text, row.text) << row.name;
        EXPECT_EQ(source.writeMark, row.mark) << row.name;
    }
    const QString binary = dir + QStringLiteral("/bin.dat");
    TestSupport::WriteFile(binary, QByteArray("\x7f" "ELF\0\0\0\x01\x02", 9));
    EXPECT_TRUE(CompareSource::Read(binary).binary);
    EXPECT_FALSE(CompareSource::Read(dir + QStringLiteral("/missing")).ok());
}

TEST(ByteCompareTest, FindsTheFirstDifferingByte)
{
    const QString dir = TestSupport::MakeTempDir();
    QByteArray big(3 << 20, 'x');
    QByteArray bigChanged = big;
    bigChanged[(2 << 20) + 5] = 'y';
    struct Row
    {
        QByteArray a, b;
        qint64 offset;
    };
    const Row rows[] = {
        {"abc", "abc", -1},
        {"", "", -1},
        {"abc", "abd", 2},
        {"abc", "abcdef", 3},
        {"abcdef", "", 0},
        {big, bigChanged, (2 << 20) + 5},
        {big, big + "z", 3 << 20},
    };
    for (const Row& row : rows) {
        TestSupport::WriteFile(dir + QStringLiteral("/a"), row.a);
        TestSupport::WriteFile(dir + QStringLiteral("/b"), row.b);
        const ByteCompare::Result r = ByteCompare::FirstDifference(dir + QStringLiteral("/a"), dir + QStringLiteral("/b"));
        EXPECT_TRUE(r.ok);
        EXPECT_EQ(r.offset, row.offset) << row.a.left(10).constData() << " " << row.b.left(10).constData();
    }
    EXPECT_FALSE(ByteCompare::FirstDifference(dir + QStringLiteral("/a"), dir + QStringLiteral("/none")).ok);
}

TEST(CompareArgumentsTest, TakesTheFirstCompareRequest)
{
    struct Row
    {
        QStringList arguments;
        QString left, right;
        QStringList rest;
    };
    const Row rows[] = {
        {{"--compare", "a", "b"}, "a", "b", {}},
        {{"-d", "a", "b", "c.txt"}, "a", "b", {"c.txt"}},
        {{"x.txt", "--compare", "a b", "c"}, "a b", "c", {"x.txt"}},
        {{"--compare", "a"}, "", "", {"--compare", "a"}},
        {{"a.txt", "b.txt"}, "", "", {"a.txt", "b.txt"}},
    };
    for (const Row& row : rows) {
        QStringList arguments = row.arguments;
        const CompareArguments found = CompareArguments::Take(arguments);
        EXPECT_EQ(found.left, row.left);
        EXPECT_EQ(found.right, row.right);
        EXPECT_EQ(arguments, row.rest);
    }
}

} // namespace
