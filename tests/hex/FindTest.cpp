#include "hex/CByteSearcher.h"
#include "hex/CPieceTable.h"

#include "HexTestFile.h"

#include <QFile>
#include <gtest/gtest.h>
#include <random>

namespace {

// The plain answer: first match at or after `from`, or last match starting at or before it.
qint64 Oracle(QByteArray hay, QByteArray needle, qint64 from, bool forward, bool matchCase)
{
    if (!matchCase) {
        hay = hay.toLower(); // ASCII letters only, like the searcher
        needle = needle.toLower();
    }
    if (forward)
        return hay.indexOf(needle, std::max<qint64>(from, 0));
    return from < 0 ? -1 : hay.lastIndexOf(needle, std::min<qint64>(from, hay.size()));
}

// A table whose content equals `content` but is cut into many pieces: the file holds
// every other chunk, the rest is typed in.
void BuildFragmented(CPieceTable& table, const QByteArray& content, int chunk)
{
    QByteArray fileBytes;
    QList<QPair<qint64, QByteArray>> typed;
    for (qint64 at = 0; at < content.size(); at += chunk) {
        if ((at / chunk) % 2 == 0)
            fileBytes += content.mid(at, chunk);
        else
            typed.append({at, content.mid(at, chunk)});
    }
    ASSERT_TRUE(table.Open(MakeFile(fileBytes), nullptr));
    for (const auto& [at, part] : typed)
        ASSERT_TRUE(table.Insert(at, part));
    ASSERT_EQ(table.Read(0, table.Size()), content);
}

struct FindCase
{
    QByteArray content, pattern;
    qint64 from;
    bool forward, matchCase;
    qint64 expected;
};

using FindCases = ::testing::TestWithParam<FindCase>;

TEST_P(FindCases, FindsWhereExpected)
{
    const FindCase& c = GetParam();
    CPieceTable table;
    BuildFragmented(table, c.content, 3);
    const auto result = table.Find(c.pattern, c.from, c.forward, c.matchCase);
    EXPECT_FALSE(result.failed);
    EXPECT_EQ(result.offset, c.expected) << c.content.constData() << " / " << c.pattern.constData();
}

// Pieces are three bytes long: matches at both ends and across the seams.
INSTANTIATE_TEST_SUITE_P(
    Edges, FindCases,
    ::testing::Values(FindCase{"ABCDEFGHIJ", "ABC", 0, true, true, 0},
                      FindCase{"ABCDEFGHIJ", "HIJ", 0, true, true, 7},
                      FindCase{"ABCDEFGHIJ", "CDEFG", 0, true, true, 2},
                      FindCase{"ABCABCABC", "ABC", 7, true, true, -1},
                      FindCase{"ABCABCABC", "ABC", 3, false, true, 3},
                      FindCase{"ABCABCABC", "ABC", 2, false, true, 0},
                      FindCase{"xxABCDEFGyy", "BCDEFG", 10, false, true, 3},
                      FindCase{"abc ABC aBc", "ABC", 10, false, false, 8},
                      FindCase{"AB", "ABC", 0, true, true, -1},
                      FindCase{"", "A", 0, true, true, -1},
                      FindCase{"ABC", "", 0, true, true, -1},
                      FindCase{QByteArray("\x01\x00\x00\x02\x00\x00", 6),
                               QByteArray("\x00\x00", 2), 2, true, true, 4}));

TEST(Find, ProgressCanStopALongSearch)
{
    const QString path = MakeFile(QByteArray(), QStringLiteral("zeros.bin"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(qint64(40) << 20));
    }
    CPieceTable table;
    ASSERT_TRUE(table.Open(path, nullptr));
    for (const bool forward : {true, false}) {
        QList<qint64> seen;
        const auto stopped = table.Find("xyz", forward ? 0 : table.Size() - 1, forward, true,
                                        [&](qint64 searched) {
                                            seen.append(searched);
                                            return seen.size() < 2;
                                        });
        EXPECT_TRUE(stopped.cancelled);
        EXPECT_EQ(stopped.offset, -1);
        ASSERT_EQ(seen.size(), 2);
        EXPECT_LT(seen[0], seen[1]);
    }
}

// Every match position over random content of a small alphabet, both ways, both cases.
TEST(Find, AgreesWithAPlainScanOverManyPieces)
{
    for (const unsigned seed : {3u, 11u, 500u}) {
        std::mt19937 rng(seed);
        const char alphabet[] = "abAB";
        QByteArray content(2000, Qt::Uninitialized);
        for (char& c : content)
            c = alphabet[rng() % 4];
        CPieceTable table;
        BuildFragmented(table, content, 1 + int(rng() % 7));
        for (int i = 0; i < 400; ++i) {
            QByteArray pattern(1 + int(rng() % 6), Qt::Uninitialized);
            for (char& c : pattern)
                c = alphabet[rng() % 4];
            const qint64 from = qint64(rng() % (content.size() + 4)) - 2;
            const bool forward = rng() % 2;
            const bool matchCase = rng() % 2;
            const auto result = table.Find(pattern, from, forward, matchCase);
            ASSERT_FALSE(result.failed);
            ASSERT_EQ(result.offset, Oracle(content, pattern, from, forward, matchCase))
                << pattern.constData() << " from " << from << " seed " << seed;
        }
    }
}

// Long buffers, so that the sixteen-at-a-time loops run, for both the fast and the
// portable way. The alphabet mixes letters of both cases, their ASCII neighbours
// (never folded) and bytes with the top bit set.
using ByteSearcherRandom = ::testing::TestWithParam<CByteSearcher::Method>;

TEST_P(ByteSearcherRandom, AgreesWithAPlainScan)
{
    std::mt19937 rng(77);
    const char alphabet[] = {'a', 'A', 'z', 'Z', '@', '[', '`', '{', char(0xC1), char(0xE1), 'b'};
    for (int round = 0; round < 300; ++round) {
        QByteArray hay(int(rng() % 3000), Qt::Uninitialized);
        for (char& c : hay)
            c = alphabet[rng() % sizeof alphabet];
        QByteArray needle(1 + int(rng() % (round % 3 == 0 ? 40 : 4)), Qt::Uninitialized);
        for (char& c : needle)
            c = alphabet[rng() % sizeof alphabet];
        const bool matchCase = rng() % 2;
        const CByteSearcher searcher(needle, matchCase, GetParam());
        const auto* data = reinterpret_cast<const uchar*>(hay.constData());
        ASSERT_EQ(searcher.FindFirst(data, hay.size()), Oracle(hay, needle, 0, true, matchCase))
            << "round " << round;
        ASSERT_EQ(searcher.FindLast(data, hay.size()),
                  hay.size() < needle.size() ? -1
                                             : Oracle(hay, needle, hay.size(), false, matchCase))
            << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Methods, ByteSearcherRandom,
                         ::testing::Values(CByteSearcher::Fastest, CByteSearcher::Portable));

} // namespace
