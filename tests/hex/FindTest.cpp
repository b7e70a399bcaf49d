#include "hex/CByteSearcher.h"
#include "hex/CPieceTable.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <random>

namespace {

QString MakeFile(const QByteArray& bytes)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("data.bin"));
    TestSupport::WriteFile(path, bytes);
    return path;
}

QByteArray Lower(QByteArray bytes)
{
    for (char& c : bytes) {
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    }
    return bytes;
}

// The plain answer: first match at or after `from`, or last match starting at or before it.
qint64 Oracle(const QByteArray& hay, const QByteArray& needle, qint64 from, bool forward,
              bool matchCase)
{
    const QByteArray h = matchCase ? hay : Lower(hay);
    const QByteArray n = matchCase ? needle : Lower(needle);
    if (forward)
        return h.indexOf(n, std::max<qint64>(from, 0));
    if (from < 0)
        return -1;
    return h.lastIndexOf(n, std::min<qint64>(from, h.size()));
}

// A table whose content equals `content` but is cut into many pieces: the file holds
// every other chunk, the rest is typed in.
void BuildFragmented(CPieceTable& table, const QByteArray& content, int chunk)
{
    QByteArray fileBytes;
    QList<QPair<qint64, QByteArray>> typed;
    for (qint64 at = 0; at < content.size(); at += chunk) {
        const QByteArray part = content.mid(at, chunk);
        if ((at / chunk) % 2 == 0)
            fileBytes += part;
        else
            typed.append({at, part});
    }
    ASSERT_TRUE(table.Open(MakeFile(fileBytes), nullptr));
    for (const auto& [at, part] : typed)
        ASSERT_TRUE(table.Insert(at, part));
    ASSERT_EQ(table.Read(0, table.Size()), content);
    if (content.size() > chunk) {
        ASSERT_GE(table.PieceCount(), 2);
    }
}

struct FindCase
{
    const char* name;
    QByteArray content;
    QByteArray pattern;
    qint64 from;
    bool forward;
    bool matchCase;
    qint64 expected;
};

class FindCases : public ::testing::TestWithParam<FindCase>
{
};

TEST_P(FindCases, FindsWhereExpected)
{
    const FindCase& c = GetParam();
    CPieceTable table;
    BuildFragmented(table, c.content, 3);
    const auto result = table.Find(c.pattern, c.from, c.forward, c.matchCase);
    EXPECT_FALSE(result.failed);
    EXPECT_EQ(result.offset, c.expected) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Edges, FindCases,
    ::testing::Values(
        FindCase{"at the very start", "ABCDEFGHIJ", "ABC", 0, true, true, 0},
        FindCase{"at the very end", "ABCDEFGHIJ", "HIJ", 0, true, true, 7},
        FindCase{"across a piece seam", "ABCDEFGHIJ", "CDEFG", 0, true, true, 2},
        FindCase{"after the start point", "ABCABCABC", "ABC", 1, true, true, 3},
        FindCase{"none after the last", "ABCABCABC", "ABC", 7, true, true, -1},
        FindCase{"backward from the end", "ABCABCABC", "ABC", 8, false, true, 6},
        FindCase{"backward start is inclusive", "ABCABCABC", "ABC", 3, false, true, 3},
        FindCase{"backward to the very start", "ABCABCABC", "ABC", 2, false, true, 0},
        FindCase{"backward across seams", "xxABCDEFGyy", "BCDEFG", 10, false, true, 3},
        FindCase{"backward finds nothing before", "xxABCyy", "ABC", 1, false, true, -1},
        FindCase{"text ignoring case", "Hello World", "wORLD", 0, true, false, 6},
        FindCase{"case matters when asked", "Hello World", "wORLD", 0, true, true, -1},
        FindCase{"backward ignoring case", "abc ABC aBc", "ABC", 10, false, false, 8},
        FindCase{"pattern longer than content", "AB", "ABC", 0, true, true, -1},
        FindCase{"whole content", "ABC", "ABC", 0, true, true, 0},
        FindCase{"start beyond the end", "ABC", "C", 5, true, true, -1},
        FindCase{"backward start beyond the end", "ABCABC", "BC", 99, false, true, 4},
        FindCase{"zero bytes", QByteArray("\x01\x00\x00\x02\x00\x00", 6),
                 QByteArray("\x00\x00", 2), 2, true, true, 4}),
    [](const auto& info) {
        std::string name = info.param.name;
        for (char& ch : name)
            ch = std::isalnum(uchar(ch)) ? ch : '_';
        return name;
    });

TEST(Find, EmptyPatternOrEmptyContentFindsNothing)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile(QByteArray()), nullptr));
    EXPECT_EQ(table.Find("a", 0, true, true).offset, -1);
    EXPECT_EQ(table.Find("a", 0, false, true).offset, -1);
    ASSERT_TRUE(table.Open(MakeFile("abc"), nullptr));
    EXPECT_EQ(table.Find(QByteArray(), 0, true, true).offset, -1);
}

TEST(Find, ProgressCanStopALongSearch)
{
    // 40 MB of zeros: three runs of the search, the pattern nowhere.
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("zeros.bin"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(qint64(40) << 20));
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
        seen.clear();
        const auto full = table.Find("xyz", forward ? 0 : table.Size() - 1, forward, true,
                                     [&](qint64 searched) {
                                         seen.append(searched);
                                         return true;
                                     });
        EXPECT_FALSE(full.cancelled);
        EXPECT_EQ(full.offset, -1);
        ASSERT_FALSE(seen.isEmpty());
        EXPECT_EQ(seen.last(), table.Size());
    }
}

// Every match position over random content of a small alphabet, both ways, both cases.
class FindRandom : public ::testing::TestWithParam<unsigned>
{
};

TEST_P(FindRandom, AgreesWithAPlainScan)
{
    std::mt19937 rng(GetParam());
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
            << pattern.constData() << " from " << from << (forward ? " down" : " up")
            << (matchCase ? " case" : " nocase");
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, FindRandom, ::testing::Values(3u, 11u, 500u));

// Long buffers, so that the sixteen-at-a-time loops run, checked against a plain scan
// for both the fast and the portable way. The alphabet mixes letters of both cases,
// their ASCII neighbours and bytes with the top bit set.
class ByteSearcherRandom : public ::testing::TestWithParam<CByteSearcher::Method>
{
};

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

TEST(ByteSearcher, SkipsCorrectlyOverBytesOutsideThePattern)
{
    const QByteArray hay = QByteArray(1000, 'z') + "needle" + QByteArray(1000, 'z') + "NEEDLE";
    const auto* data = reinterpret_cast<const uchar*>(hay.constData());
    EXPECT_EQ(CByteSearcher("needle", true).FindFirst(data, hay.size()), 1000);
    EXPECT_EQ(CByteSearcher("needle", true).FindLast(data, hay.size()), 1000);
    EXPECT_EQ(CByteSearcher("needle", false).FindLast(data, hay.size()), 2006);
    EXPECT_EQ(CByteSearcher("NeEdLe", false).FindFirst(data, hay.size()), 1000);
    // Non-letters are never folded: '@' and '`' sit next to the letters in ASCII.
    const QByteArray odd("@[`{");
    const auto* o = reinterpret_cast<const uchar*>(odd.constData());
    EXPECT_EQ(CByteSearcher("`{", false).FindFirst(o, odd.size()), 2);
    EXPECT_EQ(CByteSearcher("@[", false).FindLast(o, odd.size()), 0);
}

} // namespace
