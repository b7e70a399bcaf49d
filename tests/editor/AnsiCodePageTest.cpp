#include "editor/AnsiCodePage.h"
#include "editor/EncodingReader.h"
#include "editor/EncodingWriter.h"
#include "editor/TextEncoding.h"

#include <QString>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace TextEncoding;

std::string Read(const QByteArray& bytes, const AnsiCodePage& codePage, std::size_t piece)
{
    EncodingReader reader(Ansi, 0, &codePage);
    std::string out;
    for (qsizetype pos = 0; pos < bytes.size(); pos += qsizetype(piece))
        out.append(reader.Feed(bytes.constData() + pos, std::min<std::size_t>(piece, std::size_t(bytes.size() - pos))));
    out.append(reader.Finish());
    return out;
}

QByteArray Write(const std::string& text, int encoding, const AnsiCodePage& codePage, std::size_t piece,
                 std::size_t* unencodable = nullptr)
{
    EncodingWriter writer(encoding, encoding != Ansi, &codePage);
    QByteArray out;
    for (std::size_t pos = 0; pos < text.size(); pos += piece) {
        const std::string_view bytes = writer.Encode(text.data() + pos, std::min(piece, text.size() - pos));
        out.append(bytes.data(), qsizetype(bytes.size()));
    }
    const std::string_view rest = writer.Finish();
    out.append(rest.data(), qsizetype(rest.size()));
    if (unencodable)
        *unencodable = writer.Unencodable();
    return out;
}

QByteArray EveryByte()
{
    QByteArray bytes;
    for (int b = 0; b < 256; ++b)
        bytes.append(char(b));
    return bytes;
}

struct CodePageCase
{
    const char* name;
    // The name the code page goes by once made (a fallback shows here).
    const char* resolved;
    unsigned char byte;
    char32_t character;
};

std::ostream& operator<<(std::ostream& out, const CodePageCase& c)
{
    return out << c.name << "_" << int(c.byte);
}

using CodePages = ::testing::TestWithParam<CodePageCase>;

TEST_P(CodePages, EveryByteValueComesBackAndTheTextIsValidUtf8)
{
    const AnsiCodePage codePage(QString::fromLatin1(GetParam().name));
    EXPECT_EQ(codePage.Name(), QString::fromLatin1(GetParam().resolved));
    const QByteArray bytes = EveryByte() + EveryByte();
    for (std::size_t piece : {std::size_t(1), std::size_t(7), std::size_t(4096)}) {
        const std::string text = Read(bytes, codePage, piece);
        EXPECT_TRUE(QUtf8StringView(text).isValidUtf8()) << "piece " << piece;
        std::size_t unencodable = 99;
        EXPECT_EQ(Write(text, Ansi, codePage, piece, &unencodable), bytes) << "piece " << piece;
        EXPECT_EQ(unencodable, 0u);
    }
}

TEST_P(CodePages, ByteStandsForItsCharacter)
{
    const CodePageCase& c = GetParam();
    const AnsiCodePage codePage(QString::fromLatin1(c.name));
    EXPECT_EQ(codePage.Decode(c.byte), c.character);
    EXPECT_EQ(codePage.Encode(c.character), int(c.byte));
}

INSTANTIATE_TEST_SUITE_P(Table, CodePages, ::testing::Values(
    CodePageCase{"windows-1252", "windows-1252", 0xE9, U'\u00E9'},
    CodePageCase{"windows-1252", "windows-1252", 0x80, U'\u20AC'},
    CodePageCase{"windows-1252", "windows-1252", 0x9F, U'\u0178'},
    // The five bytes windows-1252 leaves undefined stand for themselves.
    CodePageCase{"windows-1252", "windows-1252", 0x81, U'\u0081'},
    CodePageCase{"windows-1252", "windows-1252", 0x8D, U'\u008D'},
    CodePageCase{"windows-1252", "windows-1252", 0x8F, U'\u008F'},
    CodePageCase{"windows-1252", "windows-1252", 0x90, U'\u0090'},
    CodePageCase{"windows-1252", "windows-1252", 0x9D, U'\u009D'},
    CodePageCase{"cp1252", "windows-1252", 0x41, U'A'},
    CodePageCase{"windows-1251", "windows-1251", 0xC0, U'\u0410'},
    CodePageCase{"ISO-8859-7", "ISO-8859-7", 0xE1, U'\u03B1'},
    CodePageCase{"KOI8-R", "KOI8-R", 0xC1, U'\u0430'},
    CodePageCase{"no-such-code-page", "windows-1252", 0x80, U'\u20AC'},
    CodePageCase{"", "windows-1252", 0x80, U'\u20AC'}));

TEST(AnsiText, ReadsAsItsLettersAndConvertsToUtf8WithItsMarkOrKeepsAStrayByte)
{
    EXPECT_EQ(Read("Caf\xE9 \x80" "5\r\n", AnsiCodePage::Default(), 3), "Caf\xC3\xA9 \xE2\x82\xAC" "5\r\n");
    EXPECT_EQ(Write("Caf\xC3\xA9\n", Utf8, AnsiCodePage::Default(), 2), QByteArray("\xEF\xBB\xBF" "Caf\xC3\xA9\n"));
    EXPECT_EQ(Write("x\xFFy", Ansi, AnsiCodePage::Default(), 1), QByteArray("x\xFFy"));
}

struct UnencodableCase
{
    const char* name;
    std::string text;
    std::size_t expected;
};

using Unencodable = ::testing::TestWithParam<UnencodableCase>;

TEST_P(Unencodable, IsCountedAndNeverReplaced)
{
    const UnencodableCase& c = GetParam();
    std::size_t count = 0;
    const QByteArray written = Write(c.text, Ansi, AnsiCodePage::Default(), 3, &count);
    EXPECT_EQ(count, c.expected);
    EXPECT_FALSE(written.contains('?'));
    EXPECT_EQ(AnsiCodePage::Default().CanHold(c.text.data(), c.text.size()), c.expected == 0);
}

INSTANTIATE_TEST_SUITE_P(Texts, Unencodable, ::testing::Values(
    UnencodableCase{"latin", "caf\xC3\xA9 \xE2\x82\xAC", 0},
    UnencodableCase{"cjk", "a\xE4\xB8\xAD" "b", 1},
    // Past long runs of ASCII, which are skipped many bytes at a time.
    UnencodableCase{"cjk_after_long_ascii", std::string(77, 'x') + "\xE4\xB8\xAD" + std::string(40, 'y'), 1},
    UnencodableCase{"emoji_and_greek", "\xF0\x9F\x98\x80 \xCE\xB1", 2},
    // A stray byte that is no UTF-8 is held as it is: written back unchanged.
    UnencodableCase{"stray_byte", "x\xFFy", 0}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
