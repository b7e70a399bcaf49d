#include "editor/UncachedWriter.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

QByteArray Pattern(qint64 size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qint64 i = 0; i < size; ++i)
        bytes[i] = char('0' + (i * 31 + i / 4096) % 75);
    return bytes;
}

struct WriteCase
{
    const char* name;
    std::size_t bufferBlocks;
    qint64 pieceSize;
    qint64 total;
};

class UncachedWrite : public ::testing::TestWithParam<WriteCase>
{
};

// The file holds exactly what was written, however the pieces fall on the buffer's and
// the blocks' edges.
TEST_P(UncachedWrite, FileHoldsEveryByteInOrder)
{
    const WriteCase c = GetParam();
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("out.bin"));
    const QByteArray content = Pattern(c.total);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    {
        UncachedWriter writer(file.handle(), c.bufferBlocks * UncachedWriter::Block);
        for (qint64 at = 0; at < c.total; at += c.pieceSize)
            ASSERT_TRUE(writer.Write(content.constData() + at, std::size_t(std::min(c.pieceSize, c.total - at))));
        ASSERT_TRUE(writer.Finish());
    }
    file.close();
    const QByteArray written = TestSupport::ReadFile(path);
    ASSERT_EQ(written.size(), content.size());
    EXPECT_TRUE(written == content);
}

INSTANTIATE_TEST_SUITE_P(
    Pieces, UncachedWrite,
    ::testing::Values(WriteCase{"Empty", 2, 100, 0}, WriteCase{"OneByte", 2, 100, 1},
                      WriteCase{"JustUnderABlock", 1, 1000, 4095}, WriteCase{"OneBlock", 1, 1000, 4096},
                      WriteCase{"JustOverABlock", 1, 1000, 4097},
                      WriteCase{"SeveralBuffersAndARest", 3, 5000, 3 * 3 * 4096 + 100},
                      WriteCase{"PiecesLargerThanTheBuffer", 2, 50000, 200001},
                      WriteCase{"WholeBuffersOnly", 2, 8192, 8 * 8192}),
    [](const auto& info) { return std::string(info.param.name); });

// Pages of the file that the system holds in its cache.
qint64 CachedPages(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd < 0)
        return -1;
    const off_t size = ::lseek(fd, 0, SEEK_END);
    void* map = ::mmap(nullptr, std::size_t(size), PROT_READ, MAP_SHARED, fd, 0);
    ::close(fd);
    if (map == MAP_FAILED)
        return -1;
    const long page = ::sysconf(_SC_PAGESIZE);
    std::vector<unsigned char> resident(std::size_t((size + page - 1) / page));
    qint64 cached = -1;
    if (::mincore(map, std::size_t(size), resident.data()) == 0) {
        cached = 0;
        for (unsigned char r : resident)
            cached += r & 1;
    }
    ::munmap(map, std::size_t(size));
    return cached;
}

// What the writer is for: a large save leaves the cache as it found it.
TEST(UncachedWriter, LeavesTheFileOutOfTheCache)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("large.bin"));
    const QByteArray content = Pattern(4 << 20);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    UncachedWriter writer(file.handle(), 64 * UncachedWriter::Block);
    if (!writer.IsUncached())
        GTEST_SKIP() << "the file system of the temporary folder takes no uncached writes";
    ASSERT_TRUE(writer.Write(content.constData(), std::size_t(content.size())));
    ASSERT_TRUE(writer.Finish());
    EXPECT_TRUE(writer.IsUncached());
    file.close();
    EXPECT_EQ(CachedPages(path), 0) << "every page was written around the cache";

    // The same bytes written the ordinary way fill the cache, so the check above means
    // something here.
    const QString cachedPath = QDir(QFileInfo(path).absolutePath()).filePath(QStringLiteral("cached.bin"));
    TestSupport::WriteFile(cachedPath, content);
    EXPECT_GT(CachedPages(cachedPath), 0);
    EXPECT_TRUE(TestSupport::ReadFile(path) == content);
}

} // namespace
