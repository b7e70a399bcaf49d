#include "editor/EncodingReader.h"
#include "editor/EncodingWriter.h"
#include "editor/TextEncoding.h"

#include <QStringEncoder>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using namespace TextEncoding;

// Text that exercises every width of UTF-8, a pair of surrogates in UTF-16, and all
// three kinds of line end.
const QString kSample = QString::fromUtf8(
    "plain ASCII\r\n"
    "Latin: caf\xC3\xA9 \xC3\xBC\xC3\x9F\n"
    "Greek \xCE\xB1\xCE\xB2\xCE\xB3, CJK \xE4\xB8\xAD\xE6\x96\x87\r"
    "emoji \xF0\x9F\x98\x80 and \xF0\x9D\x84\x9E at the end of the line\r\n"
    "tab\there\n");

QByteArray EncodeWithQt(const QString& text, int code, bool mark)
{
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    switch (code) {
    case Utf8: encoding = QStringConverter::Utf8; break;
    case Utf16LE: encoding = QStringConverter::Utf16LE; break;
    case Utf16BE: encoding = QStringConverter::Utf16BE; break;
    case Utf32LE: encoding = QStringConverter::Utf32LE; break;
    case Utf32BE: encoding = QStringConverter::Utf32BE; break;
    default: break;
    }
    QStringEncoder encoder(encoding, mark ? QStringConverter::Flag::WriteBom
                                          : QStringConverter::Flag::Default);
    return encoder.encode(text);
}

// Feeds `bytes` to a reader in pieces of random size, as a file read may cut anywhere.
std::string ReadInPieces(const QByteArray& bytes, int code, int bomLength, unsigned seed,
                         std::size_t* lost = nullptr)
{
    EncodingReader reader(code, bomLength);
    std::mt19937 random(seed);
    std::string out;
    qsizetype pos = 0;
    while (pos < bytes.size()) {
        const qsizetype piece = std::min<qsizetype>(bytes.size() - pos, 1 + random() % 7);
        const std::string_view text = reader.Feed(bytes.constData() + pos, std::size_t(piece));
        out.append(text);
        pos += piece;
    }
    out.append(reader.Finish());
    if (lost)
        *lost = reader.LostBytes();
    return out;
}

QByteArray WriteInPieces(const std::string& text, int code, bool mark, unsigned seed)
{
    EncodingWriter writer(code, mark);
    std::mt19937 random(seed);
    QByteArray out;
    std::size_t pos = 0;
    do {
        const std::size_t piece = std::min<std::size_t>(text.size() - pos, 1 + random() % 5);
        const std::string_view bytes = writer.Encode(text.data() + pos, piece);
        out.append(bytes.data(), qsizetype(bytes.size()));
        pos += piece;
    } while (pos < text.size());
    const std::string_view rest = writer.Finish();
    out.append(rest.data(), qsizetype(rest.size()));
    return out;
}

struct RoundTripCase
{
    const char* name;
    int code;
    bool mark;
};

using RoundTrip = ::testing::TestWithParam<RoundTripCase>;

TEST_P(RoundTrip, FileBytesComeBackUnchanged)
{
    const RoundTripCase& c = GetParam();
    const QByteArray file = EncodeWithQt(kSample, c.code, c.mark);
    const int bomLength = c.mark ? MarkLength(c.code) : 0;
    for (unsigned seed : {1u, 2u, 3u}) {
        const std::string text = ReadInPieces(file, c.code, bomLength, seed);
        EXPECT_EQ(QString::fromUtf8(text.data(), qsizetype(text.size())), kSample) << "seed " << seed;
        EXPECT_EQ(WriteInPieces(text, c.code, c.mark, seed + 10), file) << "seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, RoundTrip, ::testing::Values(
    RoundTripCase{"utf8_mark", Utf8, true},
    RoundTripCase{"utf8_plain", Utf8, false},
    RoundTripCase{"utf16le_mark", Utf16LE, true},
    RoundTripCase{"utf16le_plain", Utf16LE, false},
    RoundTripCase{"utf16be_mark", Utf16BE, true},
    RoundTripCase{"utf16be_plain", Utf16BE, false},
    RoundTripCase{"utf32le_mark", Utf32LE, true},
    RoundTripCase{"utf32be_mark", Utf32BE, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(EncodingReader, AnsiKeepsEveryByteAndIgnoresMarkLength)
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes += char(i);
    EXPECT_EQ(WriteInPieces(ReadInPieces(bytes, Ansi, 3, 7), Ansi, false, 5), bytes);
}

// Reader and writer take ASCII a run at a time, eight and thirty-two bytes at once: a
// character outside ASCII at any place of a long line, in pieces of any length, must
// come out where it went in.
struct AsciiRunCase
{
    const char* name;
    int code;
    QByteArray stray;  // one character outside ASCII, in the encoding
};

using AsciiRuns = ::testing::TestWithParam<AsciiRunCase>;

TEST_P(AsciiRuns, StrayCharacterAnywhereInALongLineSurvives)
{
    const AsciiRunCase& c = GetParam();
    const QByteArray ascii("The quick brown fox jumps over the lazy dog; 0123456789 and more text here.\r\n");
    const QByteArray asciiInForm = c.code == Ansi ? ascii : EncodeWithQt(QString::fromLatin1(ascii), c.code, false);
    const qsizetype unit = c.code == Ansi ? 1 : asciiInForm.size() / ascii.size();
    for (qsizetype at = 0; at <= ascii.size(); ++at) {
        const QByteArray file = asciiInForm.left(at * unit) + c.stray + asciiInForm.mid(at * unit) + asciiInForm;
        for (unsigned seed : {1u, 2u}) {
            std::string text;
            EncodingReader reader(c.code, 0);
            std::mt19937 random(seed);
            for (qsizetype pos = 0; pos < file.size();) {
                const qsizetype piece = std::min<qsizetype>(file.size() - pos, 1 + qsizetype(random() % 90));
                text.append(reader.Feed(file.constData() + pos, std::size_t(piece)));
                pos += piece;
            }
            text.append(reader.Finish());
            ASSERT_EQ(QString::fromUtf8(text.data(), qsizetype(text.size())),
                      QString::fromLatin1(ascii.left(at)) + QStringLiteral("\u00E9") + QString::fromLatin1(ascii.mid(at))
                          + QString::fromLatin1(ascii))
                << "read, stray at " << at << ", seed " << seed;

            EncodingWriter writer(c.code, false);
            QByteArray back;
            for (std::size_t pos = 0; pos < text.size();) {
                const std::size_t piece = std::min<std::size_t>(text.size() - pos, 1 + random() % 90);
                const std::string_view bytes = writer.Encode(text.data() + pos, piece);
                back.append(bytes.data(), qsizetype(bytes.size()));
                pos += piece;
            }
            const std::string_view rest = writer.Finish();
            back.append(rest.data(), qsizetype(rest.size()));
            ASSERT_EQ(back, file) << "written, stray at " << at << ", seed " << seed;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, AsciiRuns, ::testing::Values(
    AsciiRunCase{"Ansi", Ansi, QByteArray("\xE9")},
    AsciiRunCase{"Utf8", Utf8, QByteArray("\xC3\xA9")},
    AsciiRunCase{"Utf16LE", Utf16LE, QByteArray("\xE9\x00", 2)},
    AsciiRunCase{"Utf16BE", Utf16BE, QByteArray("\x00\xE9", 2)},
    AsciiRunCase{"Utf32LE", Utf32LE, QByteArray("\xE9\x00\x00\x00", 4)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(EncodingReader, SurrogatePairBecomesOneFourByteCharacter)
{
    const QByteArray file("\xFF\xFE\x3D\xD8\x00\xDE", 6); // U+1F600 in UTF-16 LE
    EXPECT_EQ(ReadInPieces(file, Utf16LE, 2, 1), std::string("\xF0\x9F\x98\x80"));
}

struct LoneSurrogateCase
{
    const char* name;
    QByteArray file;
    int code;
};

using LoneSurrogate = ::testing::TestWithParam<LoneSurrogateCase>;

TEST_P(LoneSurrogate, SurvivesTheRoundTrip)
{
    const LoneSurrogateCase& c = GetParam();
    const std::string text = ReadInPieces(c.file, c.code, 2, 5);
    EXPECT_EQ(WriteInPieces(text, c.code, true, 6), c.file);
}

INSTANTIATE_TEST_SUITE_P(Forms, LoneSurrogate, ::testing::Values(
    LoneSurrogateCase{"high_then_letter", QByteArray("\xFF\xFE\x00\xD8" "a\0", 6), Utf16LE},
    LoneSurrogateCase{"low_alone", QByteArray("\xFF\xFE" "a\0\x00\xDC" "b\0", 8), Utf16LE},
    LoneSurrogateCase{"high_at_end", QByteArray("\xFF\xFE" "a\0\x3D\xD8", 6), Utf16LE},
    LoneSurrogateCase{"two_highs_be", QByteArray("\xFE\xFF\xD8\x00\xD8\x01\x00" "c", 8), Utf16BE}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(EncodingReader, OddLastByteOfSixteenBitTextIsCountedAsLost)
{
    std::size_t lost = 0;
    const std::string text = ReadInPieces(QByteArray("\xFF\xFE" "a\0b", 5), Utf16LE, 2, 3, &lost);
    EXPECT_EQ(text, "a");
    EXPECT_EQ(lost, 1u);
}

TEST(EncodingReader, UnknownMarkedFormsReadAsBigEndianUnits)
{
    // SCSU and the other forms we don't decode are taken as 16-bit big-endian units.
    const std::string text = ReadInPieces(QByteArray("\x0E\xFE\xFF\x00" "A", 5), Scsu, 3, 2);
    EXPECT_EQ(text, "A");
}

TEST(EncodingWriter, MarkWrittenOnceEvenForEmptyTextAndNeverForAnsi)
{
    EXPECT_EQ(WriteInPieces(std::string(), Utf8, true, 1), QByteArray("\xEF\xBB\xBF"));
    EXPECT_EQ(WriteInPieces(std::string(), Utf16LE, true, 1), QByteArray("\xFF\xFE"));
    EXPECT_EQ(WriteInPieces(std::string(), Utf8, false, 1), QByteArray());
    EXPECT_EQ(WriteInPieces("abc", Ansi, true, 1), QByteArray("abc"));
}

TEST(EncodingWriter, BytesThatAreNotUtf8BecomeUnitsOfTheirOwn)
{
    // "Ansi" text saved as UTF-16: each byte that starts no sequence is one unit.
    EXPECT_EQ(WriteInPieces("\xE9t\xE9", Utf16LE, false, 1), QByteArray("\xE9\0t\0\xE9\0", 6));
    // A sequence cut off at the very end of the text is not lost either.
    EXPECT_EQ(WriteInPieces("a\xE2\x82", Utf16BE, false, 1), QByteArray("\0a\0\xE2\0\x82", 6));
}

} // namespace
