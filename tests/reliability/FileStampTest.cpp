// Telling that another program changed a file since we read it.
#include "editor/FileStamp.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <gtest/gtest.h>

namespace {

using Change = FileStamp::Change;

// Gives `path` the modification time of `like`, so that only content or identity differ.
void CopyTime(const QString& like, const QString& path)
{
    struct stat info;
    ASSERT_EQ(::stat(QFile::encodeName(like).constData(), &info), 0);
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

struct ChangeCase
{
    const char* name;
    std::function<void(const QString& path, const QString& folder)> act;
    Change expected;
};

std::ostream& operator<<(std::ostream& out, const ChangeCase& c)
{
    return out << c.name;
}

class FileStampChanges : public ::testing::TestWithParam<ChangeCase> {};

TEST_P(FileStampChanges, SeesWhatAnotherProgramDid)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString path = QDir(folder).filePath(QStringLiteral("watched.txt"));
    TestSupport::WriteFile(path, "original text\n");
    const FileStamp stamp = FileStamp::Of(path);
    ASSERT_TRUE(stamp.IsValid());
    GetParam().act(path, folder);
    EXPECT_EQ(stamp.Compare(path), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FileStampChanges,
    ::testing::Values(
        ChangeCase{"Untouched", [](const QString&, const QString&) {}, Change::None},
        ChangeCase{"ReadOnly", [](const QString& p, const QString&) { TestSupport::ReadFile(p); }, Change::None},
        ChangeCase{"Appended",
                   [](const QString& p, const QString&) {
                       QFile f(p);
                       ASSERT_TRUE(f.open(QIODevice::Append));
                       f.write("more\n");
                   },
                   Change::Modified},
        ChangeCase{"Deleted", [](const QString& p, const QString&) { QFile::remove(p); }, Change::Deleted},
        // Same size and time, another file renamed over it: only its identity tells.
        ChangeCase{"ReplacedBySameSizeSameTime",
                   [](const QString& p, const QString& folder) {
                       const QString other = QDir(folder).filePath(QStringLiteral("other"));
                       TestSupport::WriteFile(other, "ORIGINAL TEXT\n");
                       CopyTime(p, other);
                       ASSERT_EQ(::rename(QFile::encodeName(other).constData(), QFile::encodeName(p).constData()), 0);
                   },
                   Change::Modified},
        ChangeCase{"RewrittenInPlaceSameSize",
                   [](const QString& p, const QString&) {
                       struct stat before;
                       ::stat(QFile::encodeName(p).constData(), &before);
                       QFile f(p);
                       ASSERT_TRUE(f.open(QIODevice::ReadWrite));
                       f.write("ORIGINAL");
                       f.close();
                       // A clock that did not move between the two writes would hide it.
                       const timespec times[2] = {before.st_atim,
                                                  {before.st_mtim.tv_sec + 1, before.st_mtim.tv_nsec}};
                       ::utimensat(AT_FDCWD, QFile::encodeName(p).constData(), times, 0);
                   },
                   Change::Modified}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FileStamp, NoFileGivesAnEmptyStampThatNeverReportsAChange)
{
    const QString missing = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("none"));
    const FileStamp stamp = FileStamp::Of(missing);
    EXPECT_FALSE(stamp.IsValid());
    TestSupport::WriteFile(missing, "now it exists");
    EXPECT_EQ(stamp.Compare(missing), Change::None);
}

TEST(FileStamp, ADeclinedChangeIsNotAskedAgainUntilTheFileChangesOnceMore)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("f.txt"));
    TestSupport::WriteFile(path, "read");
    const FileStamp read = FileStamp::Of(path);
    FileStamp now;
    EXPECT_EQ(read.Unasked(path, FileStamp(), now), Change::None);

    TestSupport::WriteFile(path, "changed by another program");
    EXPECT_EQ(read.Unasked(path, FileStamp(), now), Change::Modified);
    const FileStamp declined = now; // the user kept our text

    EXPECT_EQ(read.Unasked(path, declined, now), Change::None);
    TestSupport::WriteFile(path, "and changed again, longer than before");
    EXPECT_EQ(read.Unasked(path, declined, now), Change::Modified);
    QFile::remove(path);
    EXPECT_EQ(read.Unasked(path, declined, now), Change::Deleted);
}

} // namespace
