#include "editor/ReplacedFileHold.h"
#include "OpenHandles.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using TestSupport::Handles;
using TestSupport::HandlesGoneWithin;
using TestSupport::OpenHandlesTo;

enum class Kind { File, Missing, Folder, Pipe };

struct HoldCase
{
    const char* name;
    Kind kind;
    qint64 size;
    qint64 minimum;
    bool held;
};

void PrintTo(const HoldCase& c, std::ostream* out)
{
    *out << c.name;
}

class HoldWhat : public ::testing::TestWithParam<HoldCase>
{
};

// Only a regular file big enough is held; a pipe must not hang the save waiting for a
// writer, and a missing old file is the ordinary first save.
TEST_P(HoldWhat, HoldsOnlyLargeRegularFiles)
{
    const HoldCase c = GetParam();
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("old"));
    switch (c.kind) {
    case Kind::File:
        TestSupport::WriteFile(path, QByteArray(c.size, 'x'));
        break;
    case Kind::Missing:
        break;
    case Kind::Folder:
        ASSERT_TRUE(QDir().mkpath(path));
        break;
    case Kind::Pipe:
        ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        break;
    }
    {
        const ReplacedFileHold hold(path, c.minimum);
        EXPECT_EQ(hold.IsHolding(), c.held);
        EXPECT_EQ(OpenHandlesTo(path), c.held ? 1 : 0);
    }
    EXPECT_TRUE(HandlesGoneWithin(path, Handles::Any, 5000));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, HoldWhat,
    ::testing::Values(HoldCase{"AtTheMinimum", Kind::File, 4096, 4096, true},
                      HoldCase{"OverTheMinimum", Kind::File, 5000, 4096, true},
                      HoldCase{"UnderTheMinimum", Kind::File, 4095, 4096, false},
                      HoldCase{"EmptyWithNoMinimum", Kind::File, 0, 0, true},
                      HoldCase{"Missing", Kind::Missing, 0, 0, false},
                      HoldCase{"Folder", Kind::Folder, 0, 0, false},
                      HoldCase{"Pipe", Kind::Pipe, 0, 0, false}),
    [](const ::testing::TestParamInfo<HoldCase>& info) { return std::string(info.param.name); });

// The point of the hold: the rename over the old file leaves it open, still whole, and
// it is closed once the hold ends.
TEST(ReplacedFileHold, OldFileOutlivesTheRenameUntilReleased)
{
    const QDir dir(TestSupport::MakeTempDir());
    const QString path = dir.filePath(QStringLiteral("doc.txt"));
    const QString fresh = dir.filePath(QStringLiteral("doc.txt.new"));
    TestSupport::WriteFile(path, QByteArray(100000, 'o'));
    TestSupport::WriteFile(fresh, QByteArray(10, 'n'));
    {
        const ReplacedFileHold hold(path, 1);
        ASSERT_TRUE(hold.IsHolding());
        ASSERT_EQ(std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path).constData()), 0);
        EXPECT_EQ(TestSupport::ReadFile(path), QByteArray(10, 'n'));
        EXPECT_EQ(OpenHandlesTo(path), 1) << "the replaced file is still open";
    }
    EXPECT_TRUE(HandlesGoneWithin(path, Handles::Any, 5000));
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray(10, 'n'));
}

TEST(ReplacedFileHold, UnreadableFileIsNotHeld)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads every file";
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("secret"));
    TestSupport::WriteFile(path, QByteArray(100, 's'));
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0), 0);
    const ReplacedFileHold hold(path, 0);
    EXPECT_FALSE(hold.IsHolding());
}

} // namespace
