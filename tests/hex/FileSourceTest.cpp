#include "hex/CHexFileSource.h"
#include "hex/CPieceTable.h"
#include "hex/MappedMemoryGuard.h"

#include "HexTestFile.h"

#include <QFile>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Each refusal must come with a reason, and a pipe must not block waiting for a writer.
TEST(FileSource, RefusesWhatItCannotMapWithAReason)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString fifo = QDir(folder).filePath(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString unreadable = MakeFile("secret");
    QFile::setPermissions(unreadable, QFileDevice::WriteOwner);
    QStringList paths{QDir(folder).filePath(QStringLiteral("missing")), folder, fifo,
                      QStringLiteral("/dev/zero")};
    if (::geteuid() != 0)
        paths << unreadable;
    for (const QString& path : paths) {
        CHexFileSource source;
        QString error;
        EXPECT_FALSE(source.Open(path, &error)) << path.toStdString();
        EXPECT_FALSE(error.isEmpty()) << path.toStdString();
        EXPECT_FALSE(source.IsOpen());
    }
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
// SIGBUS into a failed read, and stays usable.
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

} // namespace
#endif
