#include "editor/TextEncoding.h"
#include "editor/TextFileDetector.h"
#include "TestSupport.h"

#include <QDir>
#include <gtest/gtest.h>

namespace {

struct DetectCase
{
    const char* name;
    QByteArray bytes;
    int encoding;
    int bomLength;
    bool binary;
};

std::ostream& operator<<(std::ostream& out, const DetectCase& c)
{
    return out << c.name;
}

QByteArray B(std::initializer_list<int> bytes)
{
    QByteArray out;
    for (int b : bytes)
        out += char(b);
    return out;
}

using DetectTest = ::testing::TestWithParam<DetectCase>;

TEST_P(DetectTest, ClassifiesSample)
{
    const DetectCase& c = GetParam();
    TextFileDetector detector;
    detector.ExamineBuffer(c.bytes.constData(), std::size_t(c.bytes.size()));
    EXPECT_EQ(detector.Encoding(), c.encoding);
    EXPECT_EQ(detector.BomLength(), c.bomLength);
    EXPECT_EQ(detector.IsBinary(), c.binary);
}

using namespace TextEncoding;

INSTANTIATE_TEST_SUITE_P(Marks, DetectTest, ::testing::Values(
    DetectCase{"utf16be", B({0xFE, 0xFF, 0, 'a'}), Utf16BE, 2, false},
    DetectCase{"utf32le_before_utf16le", B({0xFF, 0xFE, 0, 0, 'a', 0, 0, 0}), Utf32LE, 4, false},
    DetectCase{"utf16le", B({0xFF, 0xFE, 'a', 0}), Utf16LE, 2, false},
    DetectCase{"utf8", B({0xEF, 0xBB, 0xBF, 'a', 0}), Utf8, 3, false},
    DetectCase{"utf32be", B({0, 0, 0xFE, 0xFF, 0, 0, 0, 'a'}), Utf32BE, 4, false},
    DetectCase{"scsu", B({0x0E, 0xFE, 0xFF, 'a'}), Scsu, 3, false},
    DetectCase{"bocu1", B({0xFB, 0xEE, 0x28, 'a'}), Bocu1, 3, false},
    DetectCase{"utf7_five", B({0x2B, 0x2F, 0x76, 0x38, 0x2D, 'a'}), Utf7, 5, false},
    DetectCase{"utf7_four_38", B({0x2B, 0x2F, 0x76, 0x38, 'a'}), Utf7, 4, false},
    DetectCase{"utf7_four_39", B({0x2B, 0x2F, 0x76, 0x39}), Utf7, 4, false},
    DetectCase{"utf7_four_2B", B({0x2B, 0x2F, 0x76, 0x2B}), Utf7, 4, false},
    DetectCase{"utf7_four_2F", B({0x2B, 0x2F, 0x76, 0x2F}), Utf7, 4, false},
    DetectCase{"utf7_other_is_ansi", B({0x2B, 0x2F, 0x76, 0x41, 'x', 'y', 'z'}), Ansi, 0, false},
    DetectCase{"utfebcdic", B({0xDD, 0x73, 0x66, 0x73}), UtfEbcdic, 4, false},
    DetectCase{"truncated_utf8_mark", B({0xEF, 0xBB}), Ansi, 0, false}));

INSTANTIATE_TEST_SUITE_P(Unmarked16Bit, DetectTest, ::testing::Values(
    DetectCase{"le_ascii", QByteArray("a\0b\0c\0", 6), Utf16LE, 0, false},
    DetectCase{"be_ascii", QByteArray("\0a\0b\0c", 6), Utf16BE, 0, false},
    DetectCase{"odd_length_le", QByteArray("a\0b\0c", 5), Utf16LE, 0, false},
    DetectCase{"one_high_byte_breaks_le", QByteArray("a\0b\x01" "c\0", 6), Ansi, 0, true}));

INSTANTIATE_TEST_SUITE_P(TinyFiles, DetectTest, ::testing::Values(
    // Fewer than two bytes stay "Ansi", so that a one-byte file keeps its byte.
    DetectCase{"empty", QByteArray(), Ansi, 0, false},
    DetectCase{"one_byte", QByteArray("x"), Ansi, 0, false},
    DetectCase{"one_zero_byte", QByteArray("\0", 1), Ansi, 0, true}));

INSTANTIATE_TEST_SUITE_P(Utf8Walk, DetectTest, ::testing::Values(
    DetectCase{"two_byte_chars", QByteArray("h\xC3\xA9llo w\xC3\xB6rld"), Utf8, 0, false},
    DetectCase{"three_and_four_byte", QByteArray("\xE2\x82\xAC \xF0\x9F\x98\x80 abcdef"), Utf8, 0, false},
    DetectCase{"pure_ascii_is_not_utf8", QByteArray("plain ascii text"), Ansi, 0, false},
    DetectCase{"six_bytes_never_utf8", QByteArray("ab\xC3\xA9" "cd"), Ansi, 0, false},
    DetectCase{"seven_bytes_first_judged", QByteArray("\xC3\xA9" "abcde"), Utf8, 0, false},
    DetectCase{"illegal_lead_C0", QByteArray("ab\xC0\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"illegal_lead_F5", QByteArray("ab\xF5\x80\x80\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"stray_continuation", QByteArray("ab\x80 cdefghij"), Ansi, 0, false},
    DetectCase{"bad_continuation", QByteArray("ab\xC3(cdefghij"), Ansi, 0, false},
    DetectCase{"overlong_E0", QByteArray("ab\xE0\x80\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"surrogate_ED", QByteArray("ab\xED\xA0\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"overlong_F0", QByteArray("ab\xF0\x80\x80\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"beyond_unicode_F4", QByteArray("ab\xF4\x90\x80\x80 cdefgh"), Ansi, 0, false},
    DetectCase{"five_byte_form", QByteArray("ab\xF8\x88\x80\x80\x80 cdefgh"), Ansi, 0, false},
    // The last bytes are not judged, so a sample may end inside a character.
    DetectCase{"cut_at_end", QByteArray("h\xC3\xA9llo w\xC3\xB6rld \xE2\x82"), Utf8, 0, false},
    DetectCase{"latin1_text", QByteArray("caf\xE9 cr\xE8me br\xFBl\xE9" "e"), Ansi, 0, false}));

INSTANTIATE_TEST_SUITE_P(Binary, DetectTest, ::testing::Values(
    DetectCase{"zero_in_ansi", QByteArray("abc\0defghijk", 12), Ansi, 0, true},
    DetectCase{"zero_behind_mark_is_text", QByteArray("\xEF\xBB\xBF" "a\0bc", 6), Utf8, 3, false},
    DetectCase{"only_zeros", QByteArray(64, '\0'), Ansi, 0, true},
    DetectCase{"elf_header", B({0x7F, 'E', 'L', 'F', 2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0}), Ansi, 0, true}));

// Only the first 1024 bytes are judged: a zero just past them goes unnoticed.
TEST(DetectFile, ZeroByteMeansBinaryOnlyWithinTheSample)
{
    const QString path = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("zero.bin"));
    for (const auto& [length, binary] : {std::pair{1023, true}, std::pair{1024, false}}) {
        TestSupport::WriteFile(path, QByteArray(length, 'a') + '\0' + "tail");
        TextFileDetector detector;
        ASSERT_TRUE(detector.Examine(path));
        EXPECT_EQ(detector.IsBinary(), binary) << length;
        EXPECT_EQ(detector.Encoding(), TextEncoding::Ansi) << length;
    }
}

TEST(DetectFile, MissingFileLeavesResultsAlone)
{
    TextFileDetector detector;
    detector.ExamineBuffer("\xFF\xFE" "a", 4);
    ASSERT_EQ(detector.Encoding(), TextEncoding::Utf16LE);
    EXPECT_FALSE(detector.Examine(QStringLiteral("/nonexistent/for/sure.txt")));
    EXPECT_EQ(detector.Encoding(), TextEncoding::Utf16LE);
    EXPECT_EQ(detector.BomLength(), 2);
}

TEST(DetectFile, CrLfIsNotShrunkBeforeJudging)
{
    // CR LF pairs are kept in the sample; a UTF-16 LE text with CR LF is still 16-bit.
    const QString dir = TestSupport::MakeTempDir();
    const QString path = QDir(dir).filePath(QStringLiteral("crlf16.txt"));
    TestSupport::WriteFile(path, QByteArray("a\0\r\0\n\0b\0", 8));
    TextFileDetector detector;
    ASSERT_TRUE(detector.Examine(path));
    EXPECT_EQ(detector.Encoding(), TextEncoding::Utf16LE);
}

} // namespace
