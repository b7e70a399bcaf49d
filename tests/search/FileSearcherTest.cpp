#include "search/FileSearcher.h"

#include "editor/TextFileDetector.h"

#include <QByteArray>
#include <gtest/gtest.h>

namespace {

struct Sample
{
    const char* name;
    QByteArray bytes;
};

class QuickDetection : public ::testing::TestWithParam<Sample> {};

// The quick path for ASCII must never disagree with the editor's own detector.
TEST_P(QuickDetection, AgreesWithTheEditorsDetector)
{
    const QByteArray& bytes = GetParam().bytes;
    TextFileDetector detector;
    detector.ExamineBuffer(bytes.constData(), std::size_t(bytes.size()));
    const FileSearcher::Detection quick = FileSearcher::Detect(bytes.constData(), std::size_t(bytes.size()));
    EXPECT_EQ(quick.encoding, detector.Encoding());
    EXPECT_EQ(quick.bomLength, detector.BomLength());
    EXPECT_EQ(quick.binary, detector.IsBinary());
}

INSTANTIATE_TEST_SUITE_P(
    Samples, QuickDetection,
    ::testing::Values(
        Sample{"LongAscii", QByteArray("x").repeated(5000)},
        Sample{"AsciiThenUtf8PastTheSample", QByteArray("a").repeated(1100) + "\xC3\xA9"},
        Sample{"Utf7Mark", QByteArray("+/v8-hello world text")},
        Sample{"ZeroByte", QByteArray("abc\0def ghi jkl", 15)},
        Sample{"ZeroInLastWord", QByteArray("abcdefgh\0", 9)},
        Sample{"Utf16Ascii", QByteArray("h\0e\0l\0l\0o\0", 10)},
        Sample{"Utf8", QByteArray("caf\xC3\xA9 au lait")},
        Sample{"Latin1", QByteArray("caf\xE9 au lait")},
        Sample{"Empty", QByteArray()}),
    [](const ::testing::TestParamInfo<Sample>& info) { return std::string(info.param.name); });

TEST(FileSearcherExcerpt, LongLinesAreCutOnCharacterBoundaries)
{
    // Two-byte characters everywhere: a cut in the middle of one would show a broken one.
    const QByteArray line = QByteArray("\xC3\xA9").repeated(2000);
    const QString text = FileSearcher::LineExcerpt(line.constData(), std::size_t(line.size()), 1501);
    EXPECT_FALSE(text.contains(QChar(0xFFFD)));
    EXPECT_TRUE(text.startsWith(QChar(0x2026)));
    EXPECT_TRUE(text.endsWith(QChar(0x2026)));
    EXPECT_EQ(text.mid(1, text.size() - 2), QString(text.size() - 2, QChar(0xE9)));
}

} // namespace
