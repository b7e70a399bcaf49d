#include "editor/TextFile.h"
#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>
#include <vector>

namespace {

QByteArray ReadAllChunks(const QString& path, qint64 maximum, std::vector<QByteArray>* chunks = nullptr)
{
    TextFile file;
    EXPECT_TRUE(file.OpenRead(path));
    std::vector<char> buffer(std::size_t(maximum) + 1);
    QByteArray all;
    for (int guard = 0; guard < 100000; ++guard) {
        const qint64 n = file.ReadChunk(buffer.data(), maximum);
        if (n <= 0)
            break;
        EXPECT_EQ(buffer[std::size_t(n)], '\0') << "a zero follows every piece";
        all.append(buffer.data(), n);
        if (chunks)
            chunks->emplace_back(buffer.data(), n);
    }
    return all;
}

TEST(TextFileRead, PiecesEndBeforeTheLastBlankOrLineEnd)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("words.txt"));
    TestSupport::WriteFile(path, "alpha beta\ngamma\rdelta epsilon");
    std::vector<QByteArray> chunks;
    const QByteArray all = ReadAllChunks(path, 12, &chunks);
    EXPECT_EQ(all, QByteArray("alpha beta\ngamma\rdelta epsilon"));
    ASSERT_GE(chunks.size(), 3u);
    // The first full read "alpha beta\ng" is cut before its last line end.
    EXPECT_EQ(chunks[0], QByteArray("alpha beta"));
    // The next piece starts with the byte where the cut was made.
    EXPECT_TRUE(chunks[1].startsWith('\n'));
}

TEST(TextFileRead, MultiByteCharactersAreNeverSplitAtALineEnd)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("utf8.txt"));
    QByteArray text;
    for (int i = 0; i < 5000; ++i)
        text += "\xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x98\x80\n";
    TestSupport::WriteFile(path, text);
    std::vector<QByteArray> chunks;
    EXPECT_EQ(ReadAllChunks(path, 1000, &chunks), text);
    for (const QByteArray& chunk : chunks) {
        // Every piece ends on a whole character: the next byte is a blank or a line end.
        const char last = chunk.back();
        EXPECT_TRUE((last & 0xC0) != 0xC0) << "piece ends inside a character";
    }
}

TEST(TextFileRead, TextWithoutBlanksIsTakenWhole)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("solid.txt"));
    const QByteArray text(100, 'x');
    TestSupport::WriteFile(path, text);
    std::vector<QByteArray> chunks;
    EXPECT_EQ(ReadAllChunks(path, 30, &chunks), text);
    EXPECT_EQ(chunks.size(), 4u);
}

TEST(TextFileRead, LeadingBlankStillMakesProgress)
{
    // A blank at index 0 is not a place to cut, or the reader would never move on.
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("lead.txt"));
    const QByteArray text = " abcdefghij klmnopqrstuvwxyz";
    TestSupport::WriteFile(path, text);
    EXPECT_EQ(ReadAllChunks(path, 5), text);
}

TEST(TextFile, MissingFileOrFolderGivesTheSystemsReason)
{
    TextFile reader;
    EXPECT_FALSE(reader.OpenRead(QStringLiteral("/nonexistent/missing.txt")));
    EXPECT_FALSE(reader.ErrorString().isEmpty());
    TextFile writer;
    EXPECT_FALSE(writer.OpenWrite(QStringLiteral("/nonexistent-folder/sub/out.txt")));
    EXPECT_FALSE(writer.ErrorString().isEmpty());
}

// Small files go through the file cache; large ones around it. Both must keep the old
// file until the commit.
class TextFileWrite : public ::testing::TestWithParam<qint64>
{
protected:
    // Several blocks of an uncached write and an unaligned rest.
    static QByteArray Content(char seed)
    {
        QByteArray bytes(3 * 4096 + 1234, Qt::Uninitialized);
        for (int i = 0; i < bytes.size(); ++i)
            bytes[i] = char(seed + i % 23);
        return bytes;
    }
};

TEST_P(TextFileWrite, ReplacesTheOldFileOnlyWhenComplete)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("out.txt"));
    TestSupport::WriteFile(path, "old content");
    const QByteArray content = Content('a');
    TextFile file(GetParam());
    ASSERT_TRUE(file.OpenWrite(path, content.size()));
    ASSERT_TRUE(file.Write(content.constData(), 5000));
    // Until the commit the old file is what anyone else reads.
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("old content"));
    ASSERT_TRUE(file.Write(content.constData() + 5000, content.size() - 5000));
    ASSERT_TRUE(file.Commit());
    EXPECT_EQ(TestSupport::ReadFile(path), content);
}

TEST_P(TextFileWrite, ClosingWithoutCommitLeavesTheOldFile)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("keep.txt"));
    TestSupport::WriteFile(path, "precious");
    {
        const QByteArray content = Content('A');
        TextFile file(GetParam());
        ASSERT_TRUE(file.OpenWrite(path, content.size()));
        ASSERT_TRUE(file.Write(content.constData(), content.size()));
    }
    EXPECT_EQ(TestSupport::ReadFile(path), QByteArray("precious"));
    EXPECT_EQ(QDir(QFileInfo(path).absolutePath()).entryList(QDir::Files).size(), 1)
        << "no temporary file is left behind";
}

INSTANTIATE_TEST_SUITE_P(CachedAndUncached, TextFileWrite, ::testing::Values(TextFile::UncachedFrom, qint64(0)),
                         [](const auto& info) { return std::string(info.param == 0 ? "Uncached" : "Cached"); });

TEST(TextFileDevice, FullDiskFailsTheCommit)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no /dev/full on this system";
    TextFile file;
    ASSERT_TRUE(file.OpenWrite(QStringLiteral("/dev/full")));
    const QByteArray block(1 << 16, 'x');
    bool ok = file.Write(block.constData(), block.size());
    ok = ok && file.Commit();
    EXPECT_FALSE(ok);
    EXPECT_TRUE(QFileInfo(QStringLiteral("/dev/full")).exists());
    EXPECT_FALSE(QFileInfo(QStringLiteral("/dev/full")).isFile()) << "the device is still a device";
}

} // namespace
