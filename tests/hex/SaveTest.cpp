#include "hex/CPieceTable.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>
#include <algorithm>
#include <random>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

QByteArray Pattern(int length, unsigned seed)
{
    std::mt19937 rng(seed);
    QByteArray bytes(length, Qt::Uninitialized);
    for (char& c : bytes)
        c = char(rng() & 0xFF);
    return bytes;
}

class SaveTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        dir = TestSupport::MakeTempDir();
        path = QDir(dir).filePath(QStringLiteral("image.bin"));
        original = Pattern(3 << 20, 5);
        TestSupport::WriteFile(path, original);
        ASSERT_TRUE(table.Open(path, nullptr));
    }

    // The same edits on the table and on a plain copy.
    QByteArray EditBoth()
    {
        QByteArray expected = original;
        table.Overwrite(0, "\x7F" "ELF");
        expected.replace(0, 4, "\x7F" "ELF");
        table.Insert(1000000, "inserted");
        expected.insert(1000000, "inserted");
        table.Remove(2000000, 4096);
        expected.remove(2000000, 4096);
        table.Overwrite(table.Size(), "appended");
        expected.append("appended");
        return expected;
    }

    QString dir;
    QString path;
    QByteArray original;
    CPieceTable table;
};

TEST_F(SaveTest, SaveOverTheOriginalWritesEveryByte)
{
    const QByteArray expected = EditBoth();
    QString error;
    ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), expected);
    // The table now reads the new file, as one piece, with a fresh history.
    EXPECT_FALSE(table.IsModified());
    EXPECT_FALSE(table.CanUndo());
    EXPECT_EQ(table.PieceCount(), 1);
    EXPECT_EQ(table.Read(0, table.Size()), expected);
    // And a second round of edits saves as well.
    ASSERT_TRUE(table.Remove(0, 4));
    ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), expected.mid(4));
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList{QStringLiteral("image.bin")})
        << "no temporary file may be left behind";
}

TEST_F(SaveTest, ProgressCountsUpToTheSize)
{
    EditBoth();
    const qint64 size = table.Size();
    QList<qint64> seen;
    QString error;
    ASSERT_TRUE(table.Save(path, true, &error, [&](qint64 written) { seen.append(written); }))
        << error.toStdString();
    ASSERT_FALSE(seen.isEmpty());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.last(), size);
}

TEST_F(SaveTest, SaveKeepsThePermissionsOfTheFile)
{
    const auto permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner
        | QFileDevice::ReadGroup | QFileDevice::ExeOwner;
    ASSERT_TRUE(QFile::setPermissions(path, permissions));
    EditBoth();
    QString error;
    ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
    // Owner, group and others; the "user" flags only restate the owner's for us.
    const int mask = 0xF000 | 0x00FF;
    EXPECT_EQ(int(QFile::permissions(path)) & mask, int(permissions) & mask);
    EXPECT_FALSE(QFile::permissions(path).testFlag(QFileDevice::ReadOther));
}

TEST_F(SaveTest, SaveThroughALinkReplacesTheFileItPointsTo)
{
    const QString link = QDir(dir).filePath(QStringLiteral("link.bin"));
    ASSERT_TRUE(QFile::link(path, link));
    const QByteArray expected = EditBoth();
    QString error;
    ASSERT_TRUE(table.Save(link, true, &error)) << error.toStdString();
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(TestSupport::ReadFile(path), expected);
}

TEST_F(SaveTest, SaveAsCopyKeepsHistoryAndOriginal)
{
    const QByteArray expected = EditBoth();
    const QString copy = QDir(dir).filePath(QStringLiteral("copy.bin"));
    QString error;
    ASSERT_TRUE(table.Save(copy, false, &error)) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(copy), expected);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    EXPECT_FALSE(table.IsModified());
    EXPECT_TRUE(table.CanUndo());
    table.Undo();
    EXPECT_TRUE(table.IsModified());
}

TEST_F(SaveTest, SaveAsAdoptsTheNewFile)
{
    const QByteArray expected = EditBoth();
    const QString other = QDir(dir).filePath(QStringLiteral("other.bin"));
    QString error;
    ASSERT_TRUE(table.Save(other, true, &error)) << error.toStdString();
    EXPECT_EQ(table.Source().Path(), other);
    EXPECT_EQ(TestSupport::ReadFile(other), expected);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
}

TEST_F(SaveTest, EmptyResultSavesAnEmptyFile)
{
    ASSERT_TRUE(table.Remove(0, table.Size()));
    QString error;
    ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
    EXPECT_EQ(QFileInfo(path).size(), 0);
    EXPECT_EQ(table.Size(), 0);
}

TEST_F(SaveTest, FailureLeavesTheOldFileAndTheEditsAlone)
{
    const QByteArray expected = EditBoth();
    QString error;
    EXPECT_FALSE(table.Save(QDir(dir).filePath(QStringLiteral("missing/folder/x.bin")), true,
                            &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(table.IsModified());
    EXPECT_EQ(table.Read(0, table.Size()), expected);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
}

#ifdef Q_OS_UNIX
// Locks a folder against new entries: by its mode, or for root (whom modes do not
// stop) by the immutable attribute. False when neither is possible here.
bool LockFolder(const QString& dir, bool lock)
{
    if (::geteuid() != 0) {
        return QFile::setPermissions(dir, QFileDevice::ReadOwner | QFileDevice::ExeOwner
                                              | (lock ? QFileDevice::Permissions()
                                                      : QFileDevice::WriteOwner));
    }
    QProcess chattr;
    chattr.start(QStringLiteral("chattr"), {lock ? QStringLiteral("+i") : QStringLiteral("-i"), dir});
    return chattr.waitForFinished() && chattr.exitStatus() == QProcess::NormalExit
        && chattr.exitCode() == 0;
}

// In a folder where no file can be made beside it, the file we read from is never
// rewritten in place (we would be reading the bytes we overwrite); another file is.
TEST_F(SaveTest, LockedFolderRefusesInsteadOfWritingOverTheSource)
{
    const QString other = QDir(dir).filePath(QStringLiteral("other.bin"));
    TestSupport::WriteFile(other, "old");
    const QByteArray expected = EditBoth();
    if (!LockFolder(dir, true))
        GTEST_SKIP() << "cannot lock a folder here";
    QString error;
    const bool saved = table.Save(path, true, &error);
    const bool savedOther = table.Save(other, false, &error);
    LockFolder(dir, false);
    EXPECT_FALSE(saved);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    // Writing in place is Qt's fallback for a folder we lack permission for; the
    // immutable attribute is a different refusal that it does not fall back from.
    if (::geteuid() != 0) {
        EXPECT_TRUE(savedOther) << error.toStdString();
        EXPECT_EQ(TestSupport::ReadFile(other), expected);
    } else {
        EXPECT_FALSE(savedOther);
        EXPECT_EQ(TestSupport::ReadFile(other), QByteArray("old"));
    }
}

// A write that fails halfway (the disk full, a quota) leaves no trace: the file size
// limit makes the kernel refuse writes past 1 MB, as a full disk would.
TEST_F(SaveTest, WriteFailureHalfwayLeavesTheOldFileIntact)
{
    const QByteArray expected = EditBoth();
    struct rlimit old;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old;
    small.rlim_cur = 1 << 20;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    QString error;
    const bool saved = table.Save(path, true, &error);
    ::setrlimit(RLIMIT_FSIZE, &old);
    ::signal(SIGXFSZ, oldHandler);

    EXPECT_FALSE(saved);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(table.IsModified());
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    EXPECT_EQ(table.Read(0, table.Size()), expected);
    EXPECT_EQ(QDir(dir).entryList(QDir::Files), QStringList{QStringLiteral("image.bin")});
}

// Saving onto something that is not a file (here a pipe) must not replace it.
TEST_F(SaveTest, TargetThatIsNotAFileIsRefused)
{
    const QString fifo = QDir(dir).filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QString error;
    EXPECT_FALSE(table.Save(fifo, false, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(QFileInfo(fifo).isFile());
}
#endif

} // namespace
