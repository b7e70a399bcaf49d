#include "search/FileReplacer.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

QByteArray Utf16(const QString& text, bool bigEndian, bool mark)
{
    QByteArray out;
    if (mark)
        out += bigEndian ? QByteArray("\xFE\xFF", 2) : QByteArray("\xFF\xFE", 2);
    for (const QChar c : text) {
        const char hi = char(c.unicode() >> 8), lo = char(c.unicode() & 0xFF);
        out.append(bigEndian ? hi : lo).append(bigEndian ? lo : hi);
    }
    return out;
}

QByteArray Write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return bytes;
}

QByteArray Read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct EncodingCase
{
    const char* name;
    QByteArray before;
    QByteArray after;
};

class FileReplacerEncodings : public ::testing::TestWithParam<EncodingCase> {};

// The file comes back in its own encoding, mark and line ends, changed only where it matched.
TEST_P(FileReplacerEncodings, KeepsEncodingMarkAndLineEnds)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("f.txt"));
    Write(path, GetParam().before);
    const FileReplacer replacer(SearchQuery(QStringLiteral("caf\u00e9"), true, false, false), QStringLiteral("bar \u00e0"));
    const FileReplacer::Result result = replacer.Replace(path, FileStamp::Of(path));
    EXPECT_EQ(result.status, FileReplacer::Status::Replaced);
    EXPECT_EQ(result.count, 2);
    EXPECT_EQ(Read(path).toHex(' '), GetParam().after.toHex(' '));
}

const QString Before = QStringLiteral("caf\u00e9 one\r\nx caf\u00e9\r\n");
const QString After = QStringLiteral("bar \u00e0 one\r\nx bar \u00e0\r\n");

INSTANTIATE_TEST_SUITE_P(
    Cases, FileReplacerEncodings,
    ::testing::Values(
        EncodingCase{"Utf8", Before.toUtf8(), After.toUtf8()},
        EncodingCase{"Utf8Mark", "\xEF\xBB\xBF" + Before.toUtf8(), "\xEF\xBB\xBF" + After.toUtf8()},
        EncodingCase{"Ansi", Before.toLatin1(), After.toLatin1()},
        EncodingCase{"Utf16LE", Utf16(Before, false, true), Utf16(After, false, true)},
        EncodingCase{"Utf16BE", Utf16(Before, true, true), Utf16(After, true, true)},
        EncodingCase{"Utf16LENoMark", Utf16(Before, false, false), Utf16(After, false, false)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FileReplacer, ExpressionTagsExpandOnlyWithExpressions)
{
    qint64 count = 0;
    const FileReplacer tags(SearchQuery(QStringLiteral("(\\w+)=(\\d+)"), true, false, true), QStringLiteral("\\2:\\1\\t\\\\\\q"));
    EXPECT_EQ(tags.ReplaceText("a=1 b=22\nc=3", count), QByteArray("1:a\t\\\\q 22:b\t\\\\q\n3:c\t\\\\q"));
    EXPECT_EQ(count, 3);
    const FileReplacer literal(SearchQuery(QStringLiteral("a"), true, false, false), QStringLiteral("\\1"));
    EXPECT_EQ(literal.ReplaceText("aXa", count), QByteArray("\\1X\\1"));
    EXPECT_EQ(count, 2);
}

TEST(FileReplacer, FilesLeftAloneAreNotTouched)
{
    QTemporaryDir dir;
    const FileReplacer replacer(SearchQuery(QStringLiteral("old"), true, false, false), QStringLiteral("\u03a9"));
    const struct { const char* name; QByteArray bytes; FileReplacer::Status status; } cases[] = {
        // "Ansi" cannot hold the omega: the file stays, the user is told.
        {"ansi.txt", QByteArray("old \xE9\n"), FileReplacer::Status::Unencodable},
        {"none.txt", QByteArray("nothing here\n"), FileReplacer::Status::NoMatch},
        {"binary.bin", QByteArray("old\0\0\0\x01\x02old", 11), FileReplacer::Status::Binary},
    };
    for (const auto& c : cases) {
        const QString path = dir.filePath(QString::fromLatin1(c.name));
        Write(path, c.bytes);
        EXPECT_EQ(replacer.Replace(path, FileStamp::Of(path)).status, c.status) << c.name;
        EXPECT_EQ(Read(path), c.bytes) << c.name;
    }
}

TEST(FileReplacer, ReadOnlyAndChangedFilesAreSkipped)
{
    QTemporaryDir dir;
    const FileReplacer replacer(SearchQuery(QStringLiteral("old"), true, false, false), QStringLiteral("new"));
    const QString locked = dir.filePath(QStringLiteral("locked.txt"));
    Write(locked, "old\n");
    QFile::setPermissions(locked, QFileDevice::ReadOwner);
    EXPECT_EQ(replacer.Replace(locked, FileStamp::Of(locked)).status, FileReplacer::Status::ReadOnly);
    EXPECT_EQ(Read(locked), QByteArray("old\n"));

    const QString changed = dir.filePath(QStringLiteral("changed.txt"));
    Write(changed, "old\n");
    const FileStamp preview = FileStamp::Of(changed);
    QThread::msleep(5);
    Write(changed, "old old\n");
    EXPECT_EQ(replacer.Replace(changed, preview).status, FileReplacer::Status::Changed);
    EXPECT_EQ(Read(changed), QByteArray("old old\n"));

    EXPECT_EQ(replacer.Replace(dir.filePath(QStringLiteral("gone.txt")), FileStamp()).status,
              FileReplacer::Status::Unreadable);
}

} // namespace
