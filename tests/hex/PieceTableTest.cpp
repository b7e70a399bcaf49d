#include "hex/CPieceTable.h"

#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>
#include <random>

namespace {

QByteArray Contents(const CPieceTable& table)
{
    return table.Read(0, table.Size());
}

QString MakeFile(const QByteArray& bytes)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("data.bin"));
    TestSupport::WriteFile(path, bytes);
    return path;
}

QByteArray RandomBytes(std::mt19937& rng, int length)
{
    QByteArray bytes(length, Qt::Uninitialized);
    for (char& c : bytes)
        c = char(rng() & 0xFF);
    return bytes;
}

TEST(PieceTable, OpensFileAndReadsAnyRange)
{
    const QByteArray original("0123456789abcdef");
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile(original), nullptr));
    EXPECT_EQ(table.Size(), 16);
    EXPECT_EQ(table.Read(3, 5), QByteArray("34567"));
    EXPECT_EQ(table.Read(16, 0), QByteArray());
    EXPECT_TRUE(table.Read(10, 7).isNull()) << "a read past the end must fail";
    EXPECT_FALSE(table.IsModified());
}

TEST(PieceTable, RefusesEditsOutsideTheContent)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("abc"), nullptr));
    EXPECT_FALSE(table.Insert(4, "x"));
    EXPECT_FALSE(table.Insert(-1, "x"));
    EXPECT_FALSE(table.Remove(2, 2));
    EXPECT_FALSE(table.Overwrite(4, "x"));
    EXPECT_EQ(Contents(table), QByteArray("abc"));
    EXPECT_FALSE(table.CanUndo());
}

TEST(PieceTable, OverwriteAtTheEndAppends)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("abc"), nullptr));
    ASSERT_TRUE(table.Overwrite(2, "XYZ"));
    EXPECT_EQ(Contents(table), QByteArray("abXYZ"));
    ASSERT_TRUE(table.Undo());
    EXPECT_EQ(Contents(table), QByteArray("abc"));
}

TEST(PieceTable, TypingRunsStayOnePiece)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile(QByteArray(100, 'a')), nullptr));
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(table.Insert(10 + i, "b"));
    EXPECT_EQ(table.PieceCount(), 3); // file, typed run, file
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(table.Overwrite(70 + i, "c"));
    EXPECT_EQ(table.PieceCount(), 5);
    EXPECT_EQ(Contents(table), QByteArray(10, 'a') + QByteArray(50, 'b') + QByteArray(10, 'a')
                                   + QByteArray(50, 'c') + QByteArray(30, 'a'));
}

TEST(PieceTable, MarksTypedBytesOnly)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("0123456789"), nullptr));
    ASSERT_TRUE(table.Overwrite(2, "ab"));
    ASSERT_TRUE(table.Insert(6, "X"));
    ASSERT_TRUE(table.Remove(0, 1));
    // Now "1ab45X6789": the typed bytes are at 1, 2 and 5.
    ASSERT_EQ(table.Read(0, table.Size()), QByteArray("1ab45X6789"));
    std::vector<uchar> flags(10, 7);
    ASSERT_TRUE(table.MarkChanged(0, 10, flags.data()));
    EXPECT_EQ(flags, (std::vector<uchar>{0, 1, 1, 0, 0, 1, 0, 0, 0, 0}));
    std::vector<uchar> part(3, 7);
    ASSERT_TRUE(table.MarkChanged(4, 3, part.data()));
    EXPECT_EQ(part, (std::vector<uchar>{0, 1, 0}));
    EXPECT_FALSE(table.MarkChanged(8, 3, part.data()));
}

TEST(PieceTable, MergedEditsUndoAsOneStep)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("0000"), nullptr));
    ASSERT_TRUE(table.Overwrite(1, "A"));
    ASSERT_TRUE(table.Overwrite(1, "B", true));
    ASSERT_TRUE(table.Overwrite(2, "C"));
    EXPECT_EQ(Contents(table), QByteArray("0BC0"));
    qint64 where = -1;
    ASSERT_TRUE(table.Undo(&where));
    EXPECT_EQ(where, 2);
    ASSERT_TRUE(table.Undo(&where));
    EXPECT_EQ(where, 1);
    EXPECT_EQ(Contents(table), QByteArray("0000"));
    EXPECT_FALSE(table.CanUndo());
    ASSERT_TRUE(table.Redo());
    EXPECT_EQ(Contents(table), QByteArray("0B00"));
}

TEST(PieceTable, ModifiedFlagFollowsTheSavePoint)
{
    CPieceTable table;
    ASSERT_TRUE(table.Open(MakeFile("abc"), nullptr));
    table.Insert(0, "x");
    EXPECT_TRUE(table.IsModified());
    table.Undo();
    EXPECT_FALSE(table.IsModified());
    table.Redo();
    table.SetSavePoint();
    EXPECT_FALSE(table.IsModified());
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
class PieceTableRandom : public ::testing::TestWithParam<unsigned>
{
};

TEST_P(PieceTableRandom, MatchesAByteArrayOracle)
{
    std::mt19937 rng(GetParam());
    const QByteArray original = RandomBytes(rng, int(rng() % 300));
    CPieceTable table;
    if (original.isEmpty()) {
        // An empty file is a valid start too.
        ASSERT_TRUE(table.Open(MakeFile(QByteArray()), nullptr));
    } else {
        ASSERT_TRUE(table.Open(MakeFile(original), nullptr));
    }

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
        } else if (op < 9) {
            const bool undo = op == 7;
            if (undo) {
                ASSERT_EQ(table.CanUndo(), position > 0);
                if (position == 0)
                    continue;
                ASSERT_TRUE(table.Undo());
                oracle = history[--position];
            } else {
                ASSERT_EQ(table.CanRedo(), position + 1 < history.size());
                if (position + 1 >= history.size())
                    continue;
                ASSERT_TRUE(table.Redo());
                oracle = history[++position];
            }
            ASSERT_EQ(Contents(table), oracle) << "step " << step;
            continue;
        } else {
            // Read a random range and compare.
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
    // Everything undone gives the file back; everything redone gives the last state.
    while (table.CanUndo())
        table.Undo();
    EXPECT_EQ(Contents(table), history.front());
    EXPECT_FALSE(table.IsModified());
    while (table.CanRedo())
        table.Redo();
    EXPECT_EQ(Contents(table), history.back());
}

INSTANTIATE_TEST_SUITE_P(Seeds, PieceTableRandom, ::testing::Values(1u, 7u, 42u, 2024u, 90210u));

} // namespace
