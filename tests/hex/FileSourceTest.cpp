#include "hex/CHexFileSource.h"
#include "hex/CPieceTable.h"
#include "hex/MappedMemoryGuard.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

QString MakeFile(const QByteArray& bytes, const QString& name = QStringLiteral("data.bin"))
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(name);
    TestSupport::WriteFile(path, bytes);
    return path;
}

TEST(FileSource, EmptyFileOpensEmpty)
{
    CPieceTable table;
    QString error;
    ASSERT_TRUE(table.Open(MakeFile(QByteArray()), &error)) << error.toStdString();
    EXPECT_EQ(table.Size(), 0);
    EXPECT_EQ(table.Read(0, 0), QByteArray());
    EXPECT_EQ(table.Find("x", 0, true, true).offset, -1);
    ASSERT_TRUE(table.Insert(0, "abc"));
    EXPECT_EQ(table.Read(0, 3), QByteArray("abc"));
}

TEST(FileSource, MissingFileGivesAReason)
{
    CHexFileSource source;
    QString error;
    EXPECT_FALSE(source.Open(QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("no")),
                             &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(source.IsOpen());
}

TEST(FileSource, FolderIsRefused)
{
    CHexFileSource source;
    QString error;
    EXPECT_FALSE(source.Open(TestSupport::MakeTempDir(), &error));
    EXPECT_FALSE(error.isEmpty());
}

#ifdef Q_OS_UNIX
TEST(FileSource, PipeAndDeviceAreRefusedWithAReason)
{
    const QString fifo = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    CHexFileSource source;
    QString error;
    // Must not block waiting for a writer, and must say why.
    EXPECT_FALSE(source.Open(fifo, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("regular"))) << error.toStdString();
    error.clear();
    EXPECT_FALSE(source.Open(QStringLiteral("/dev/zero"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("regular"))) << error.toStdString();
}

TEST(FileSource, UnreadableFileGivesTheSystemReason)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads everything";
    const QString path = MakeFile("secret");
    QFile::setPermissions(path, QFileDevice::WriteOwner);
    CHexFileSource source;
    QString error;
    EXPECT_FALSE(source.Open(path, &error));
    EXPECT_FALSE(error.isEmpty());
}

// Another program truncates the file under us: reads of the lost part must fail
// cleanly instead of touching mapped pages past the end (SIGBUS).
TEST(FileSource, ShrunkFileIsDetectedAndNeverReadPastItsEnd)
{
    const QByteArray bytes(1 << 20, 'q');
    const QString path = MakeFile(bytes);
    CPieceTable table;
    ASSERT_TRUE(table.Open(path, nullptr));
    ASSERT_TRUE(table.Source().IsMapped());
    ASSERT_TRUE(table.Insert(10, "typed"));
    ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 4096), 0);

    EXPECT_FALSE(table.IsSourceIntact());
    EXPECT_TRUE(table.Read(bytes.size() - 100, 100).isNull());
    EXPECT_TRUE(table.Read(0, 5).isNull()) << "no byte of a rewritten file is trusted";
    EXPECT_TRUE(table.Find("zz", 0, true, true).failed);
    EXPECT_TRUE(table.Find("zz", table.Size() - 1, false, true).failed);
    // Bytes typed by the user are still there.
    EXPECT_EQ(table.Read(10, 5), QByteArray("typed"));

    // Saving would write zeros or garbage for the lost bytes: refused, file left alone.
    QString error;
    EXPECT_FALSE(table.Save(path, true, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(QFileInfo(path).size(), 4096);

    // Growing the file back does not make it trusted again.
    QFile grow(path);
    ASSERT_TRUE(grow.open(QIODevice::Append));
    grow.write(QByteArray(2 << 20, 'r'));
    grow.close();
    EXPECT_FALSE(table.IsSourceIntact());
}

// The file shrinks after the size check but before the copy: the guard turns the
// SIGBUS into a failed read.
TEST(FileSource, GuardSurvivesAFaultOnATruncatedMapping)
{
    const QString path = MakeFile(QByteArray(64 * 1024, 'g'));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    uchar* map = file.map(0, file.size());
    ASSERT_NE(map, nullptr);
    ASSERT_EQ(::truncate(QFile::encodeName(path).constData(), 0), 0);
    uchar buffer[16] = {};
    EXPECT_FALSE(MappedMemoryGuard::Run([&] { std::memcpy(buffer, map + 32 * 1024, 16); }));
    // The guard is reusable and lets good work through.
    int value = 0;
    EXPECT_TRUE(MappedMemoryGuard::Run([&] { value = 42; }));
    EXPECT_EQ(value, 42);
    EXPECT_FALSE(MappedMemoryGuard::Run([&] { std::memcpy(buffer, map + 48 * 1024, 16); }));
    file.unmap(map);
}

// A file deleted while open stays readable through the handle we hold: nothing lost,
// and saving puts it back.
TEST(FileSource, DeletedFileStaysReadableAndCanBeSavedAgain)
{
    const QByteArray bytes = QByteArray("head") + QByteArray(100000, 'm') + "tail";
    const QString path = MakeFile(bytes);
    CPieceTable table;
    ASSERT_TRUE(table.Open(path, nullptr));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_TRUE(table.IsSourceIntact());
    EXPECT_EQ(table.Read(0, table.Size()), bytes);
    QString error;
    ASSERT_TRUE(table.Save(path, true, &error)) << error.toStdString();
    EXPECT_EQ(TestSupport::ReadFile(path), bytes);
}
#endif

} // namespace
