#include "hex/CPieceTable.h"

#include "HexTestFile.h"
#include "OpenHandles.h"
#include "editor/ReplacedFileHold.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <random>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

class SaveTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::mt19937 rng(5);
        original.resize(3 << 20);
        for (char& c : original)
            c = char(rng() & 0xFF);
        path = MakeFile(original, QStringLiteral("image.bin"));
        dir = QFileInfo(path).absolutePath();
        ASSERT_TRUE(table.Open(path, nullptr));
    }

    // The same edits on the table and on a plain copy, from the first to the last byte.
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
        return expected + "appended";
    }

    bool Save(const QString& target, bool adopt, const std::function<void(qint64)>& progress = {})
    {
        error.clear();
        return table.Save(target, adopt, &error, progress);
    }

    QStringList Files() const { return QDir(dir).entryList(QDir::Files); }

    QString dir, path, error;
    QByteArray original;
    CPieceTable table;
};

TEST_F(SaveTest, SaveOverTheOriginalWritesEveryByteAndKeepsPermissions)
{
    const auto permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner
        | QFileDevice::ReadGroup | QFileDevice::ExeOwner;
    ASSERT_TRUE(QFile::setPermissions(path, permissions));
    const QByteArray expected = EditBoth();
    QList<qint64> seen;
    ASSERT_TRUE(Save(path, true, [&](qint64 written) { seen.append(written); })) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), expected);
    ASSERT_FALSE(seen.isEmpty());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.last(), expected.size());
    // Owner, group and others; the "user" flags only restate the owner's for us.
    EXPECT_EQ(int(QFile::permissions(path)) & 0xF0FF, int(permissions) & 0xF0FF);
    // The table now reads the new file, as one piece, with a fresh history.
    EXPECT_FALSE(table.IsModified());
    EXPECT_FALSE(table.CanUndo());
    EXPECT_EQ(table.PieceCount(), 1);
    EXPECT_EQ(table.Read(0, table.Size()), expected);
    // A second round, down to nothing, saves as well and leaves no temporary file.
    ASSERT_TRUE(table.Remove(0, table.Size()));
    ASSERT_TRUE(Save(path, true)) << error.toStdString();
    EXPECT_EQ(QFileInfo(path).size(), 0);
    EXPECT_EQ(Files(), QStringList{QStringLiteral("image.bin")});
}

TEST_F(SaveTest, SaveAsCopyKeepsHistorySaveAsAdoptsAndALinkStaysALink)
{
    const QString link = QDir(dir).filePath(QStringLiteral("link.bin"));
    ASSERT_TRUE(QFile::link(path, link));
    const QByteArray expected = EditBoth();
    const QString copy = QDir(dir).filePath(QStringLiteral("copy.bin"));
    ASSERT_TRUE(Save(copy, false)) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(copy), expected);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    EXPECT_FALSE(table.IsModified());
    EXPECT_TRUE(table.CanUndo());

    const QString other = QDir(dir).filePath(QStringLiteral("other.bin"));
    ASSERT_TRUE(Save(other, true)) << error.toStdString();
    EXPECT_EQ(table.Source().Path(), other);
    EXPECT_EQ(TestSupport::ReadFile(other), expected);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    // Saving through a link replaces the file it points to.
    ASSERT_TRUE(Save(link, true)) << error.toStdString();
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(TestSupport::ReadFile(path), expected);
}

TEST_F(SaveTest, FailureLeavesTheOldFileAndTheEditsAlone)
{
    const QByteArray expected = EditBoth();
    EXPECT_FALSE(Save(QDir(dir).filePath(QStringLiteral("missing/folder/x.bin")), true));
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
    const bool saved = Save(path, true);
    const bool savedOther = Save(other, false);
    LockFolder(dir, false);
    EXPECT_FALSE(saved);
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    // Writing in place is Qt's fallback for a folder we lack permission for; the
    // immutable attribute is a different refusal that it does not fall back from.
    const bool root = ::geteuid() == 0;
    EXPECT_EQ(savedOther, !root) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(other), root ? QByteArray("old") : expected);
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
    const bool saved = Save(path, true);
    ::setrlimit(RLIMIT_FSIZE, &old);
    ::signal(SIGXFSZ, oldHandler);

    EXPECT_FALSE(saved);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(table.IsModified());
    EXPECT_EQ(TestSupport::ReadFile(path), original);
    EXPECT_EQ(table.Read(0, table.Size()), expected);
    EXPECT_EQ(Files(), QStringList{QStringLiteral("image.bin")});
}

// Saving onto something that is not a file (here a pipe) must not replace it.
TEST_F(SaveTest, TargetThatIsNotAFileIsRefused)
{
    const QString fifo = QDir(dir).filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    EXPECT_FALSE(Save(fifo, false));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(QFileInfo(fifo).isFile());
}
#endif

#ifdef Q_OS_LINUX
// The file a save replaces stays open while its pieces are read and is then let go, at
// any size: a handle left to it would keep its bytes on the disk, unseen, until exit.
TEST(SaveOverItself, LeavesNoHandleToTheReplacedFile)
{
    for (const qint64 size : {qint64(4096), ReplacedFileHold::WorthHoldingFrom}) {
        SCOPED_TRACE(size);
        const QString path = MakeFile(QByteArray(), QStringLiteral("image.bin"));
        {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(size));
        }
        CPieceTable table;
        ASSERT_TRUE(table.Open(path, nullptr));
        ASSERT_TRUE(table.Overwrite(size / 2, "X"));
        QString error;
        ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
        EXPECT_TRUE(TestSupport::HandlesGoneWithin(path, TestSupport::Handles::Replaced, 5000));
        EXPECT_EQ(TestSupport::OpenHandlesTo(path), 1) << "the table reads the new file";
        EXPECT_EQ(table.Read(size / 2 - 1, 3), QByteArray("\0X\0", 3));
        QFile saved(path);
        ASSERT_TRUE(saved.open(QIODevice::ReadOnly) && saved.seek(size / 2));
        EXPECT_EQ(saved.read(1), "X");
        EXPECT_EQ(saved.size(), size);
    }
}
#endif

} // namespace
