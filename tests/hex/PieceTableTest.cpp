#include "hex/CPieceTable.h"

#include "HexTestFile.h"

#include <gtest/gtest.h>
#include <random>

namespace {

QByteArray Contents(const CPieceTable& table)
{
    return table.Read(0, table.Size());
}

QByteArray RandomBytes(std::mt19937& rng, int length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    for (char& c : bytes)
        c = char(rng() & 0xFF);
    return bytes;
}

TEST(PieceTable, RefusesEditsAndReadsOutsideTheContent)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("abc"), nullptr));
    EXPECT_TRUE(table.Read(1, 3).isNull());
    EXPECT_FALSE(table.Insert(4, "x"));
    EXPECT_FALSE(table.Insert(-1, "x"));
    EXPECT_FALSE(table.Remove(2, 2));
    EXPECT_FALSE(table.Overwrite(4, "x"));
    EXPECT_EQ(Contents(table), QByteArray("abc"));
    EXPECT_FALSE(table.CanUndo());
}

TEST(PieceTable, MergedEditsUndoAsOneStepAndTheSavePointHolds)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("0000"), nullptr));
    ASSERT_TRUE(table.Overwrite(1, "A"));
    ASSERT_TRUE(table.Overwrite(1, "B", true));
    ASSERT_TRUE(table.Overwrite(2, "C"));
    qint64 where = -1;
    ASSERT_TRUE(table.Undo(&where));
    EXPECT_EQ(where, 2);
    ASSERT_TRUE(table.Undo(&where));
    EXPECT_EQ(Contents(table), QByteArray("0000"));
    EXPECT_FALSE(table.IsModified());
    ASSERT_TRUE(table.Redo());
    EXPECT_EQ(Contents(table), QByteArray("0B00"));
    table.SetSavePoint();
    // A merge must not hide a change behind the save point.
    table.Insert(0, "y", true);
    EXPECT_TRUE(table.IsModified());
    table.Undo();
    EXPECT_FALSE(table.IsModified());
    table.Undo();
    EXPECT_TRUE(table.IsModified());
    // Branching off below the save point makes it unreachable.
    table.Insert(0, "z");
    table.Undo();
    EXPECT_TRUE(table.IsModified());
}

// Random edits against a plain byte array doing the same, with undo and redo checked
// against snapshots of the array.
using PieceTableRandom = ::testing::TestWithParam<unsigned>;

TEST_P(PieceTableRandom, MatchesAByteArrayOracle)
{
    std::mt19937 rng(GetParam());
    // Seed 0 starts from an empty file.
    const QByteArray original = RandomBytes(rng, GetParam() == 0 ? 0 : int(rng() % 300));
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile(original), nullptr));
    QByteArray oracle = original;
    std::vector<QByteArray> history{oracle}; // states reachable by undo/redo
    size_t position = 0;

    for (int step = 0; step < 1500; ++step) {
        const unsigned op = rng() % 10;
        const qint64 size = oracle.size();
        if (op < 3) {
            const qint64 at = rng() % (size + 1);
            const QByteArray bytes = RandomBytes(rng, 1 + int(rng() % 8));
            ASSERT_TRUE(table.Insert(at, bytes));
            oracle.insert(at, bytes);
        } else if (op < 5) {
            const qint64 at = rng() % (size + 1);
            const QByteArray bytes = RandomBytes(rng, 1 + int(rng() % 8));
            ASSERT_TRUE(table.Overwrite(at, bytes));
            oracle = oracle.left(at) + bytes + oracle.mid(at + bytes.size());
        } else if (op < 7) {
            if (size == 0)
                continue;
            const qint64 at = rng() % size;
            const qint64 length = 1 + rng() % std::min<qint64>(size - at, 12);
            ASSERT_TRUE(table.Remove(at, length));
            oracle.remove(at, length);
        } else if (op == 7) {
            ASSERT_EQ(table.CanUndo(), position > 0);
            if (position == 0)
                continue;
            ASSERT_TRUE(table.Undo());
            oracle = history[--position];
            ASSERT_EQ(Contents(table), oracle) << "step " << step;
            continue;
        } else if (op == 8) {
            ASSERT_EQ(table.CanRedo(), position + 1 < history.size());
            if (position + 1 >= history.size())
                continue;
            ASSERT_TRUE(table.Redo());
            oracle = history[++position];
            ASSERT_EQ(Contents(table), oracle) << "step " << step;
            continue;
        } else {
            if (size == 0)
                continue;
            const qint64 at = rng() % size;
            const qint64 length = rng() % (size - at + 1);
            ASSERT_EQ(table.Read(at, length), oracle.mid(at, length)) << "step " << step;
            continue;
        }
        history.resize(position + 1);
        history.push_back(oracle);
        ++position;
        ASSERT_EQ(table.Size(), oracle.size()) << "step " << step;
        ASSERT_EQ(Contents(table), oracle) << "step " << step;
    }
    while (table.CanUndo())
        table.Undo();
    EXPECT_EQ(Contents(table), history.front());
    EXPECT_FALSE(table.IsModified());
    while (table.CanRedo())
        table.Redo();
    EXPECT_EQ(Contents(table), history.back());
}

INSTANTIATE_TEST_SUITE_P(Seeds, PieceTableRandom, ::testing::Values(0u, 7u, 42u, 2024u));

} // namespace
