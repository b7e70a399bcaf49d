// The three built-in lists: sizes, order, the rows that break each table's rule, and
// the Windows-1252 decoding of what they insert.
#include "explorer/ReferenceTables.h"
#include "explorer/Windows1252.h"
#include "TestSupport.h"

#include <QSet>
#include <gtest/gtest.h>

namespace {

using namespace ReferenceTables;

QByteArray Insert(Table table, const QByteArray& display)
{
    for (const Row& row : Rows(table))
        if (row.display == display)
            return row.insert;
    return "<missing>";
}

TEST(ReferenceTables, SizesNamesAndFirstAndLastRows)
{
    const struct
    {
        Table table;
        const char* name;
        int rows;
        QByteArray first;
        QByteArray last;
    } cases[] = {
        {HtmlTags, "HTML Tags", 91, "A", "VAR"},
        {HtmlEntities, "HTML Entities", 252, "&aacute\t\t'\xE1'", "&zwnj\t\t'&zwnj;'"},
        {AsciiCodes, "Ascii Codes", 215, "33\t!", "255\t\xFF"},
    };
    for (const auto& c : cases) {
        const QList<Row> rows = Rows(c.table);
        EXPECT_EQ(TableName(c.table), c.name);
        ASSERT_EQ(rows.size(), c.rows) << c.name;
        EXPECT_EQ(rows.first().display, c.first) << c.name;
        EXPECT_EQ(rows.last().display, c.last) << c.name;
        QSet<QByteArray> seen;
        for (const Row& row : rows)
            seen.insert(row.display);
        EXPECT_EQ(seen.size(), c.rows) << "no row twice in " << c.name;
    }
}

TEST(ReferenceTables, TagsFollowTheElementRuleExceptTheGivenRows)
{
    const struct
    {
        const char* tag;
        const char* insert;
    } cases[] = {
        {"B", "<B><%REPLACE%></B>"},
        {"H6", "<H6><%REPLACE%></H6>"},
        {"VAR", "<VAR><%REPLACE%></VAR>"},
        {"A", "<A HREF><%REPLACE%></A>"},
        {"ABBR", "<ABBR ><%REPLACE%></ABBR>"},
        {"AREA", "<AREA ALT=\"\" ><%REPLACE%></AREA>"},
        {"BR", "<BR/>"},
        {"HR", "<HR ALIGN=\"\" SIZE=\"\" WIDTH=\"\"/>"},
        {"IMG", "<IMG SRC=\"\" ALT=\"\"/>"},
        {"OPTION", "<OPTION ><%REPLACE%></OPTION>"},
        {"APPLET", "<APPLET CODEBASE=\"\" CODE=\"\" NAME=\"\" ARCHIVE=\"\" OBJECT=\"\" WIDTH=\"\" HEIGHT=\"\"><%REPLACE%></APPLET>"},
        {"TABLE", "<TABLE WIDTH=\"\" BORDER=\"\" CELLSPACING=\"\" CELLPADDING=\"\"><%REPLACE%></TABLE>"},
        {"TH", "<TH WIDTH=\"\" ROWSPAN=\"\" COLSPAN=\"\"><%REPLACE%></TH>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Insert(HtmlTags, c.tag), c.insert) << c.tag;

    int exceptions = 0;
    for (const Row& row : Rows(HtmlTags))
        if (row.insert != "<" + row.display + "><%REPLACE%></" + row.display + ">")
            ++exceptions;
    EXPECT_EQ(exceptions, 32);
}

TEST(ReferenceTables, EntitiesShowTheCharacterTheEntityOrTheSettledLookAlike)
{
    const struct
    {
        const char* name;
        QByteArray shown;
    } cases[] = {
        // The character itself, as a code page byte.
        {"amp", "&"}, {"copy", "\xA9"}, {"euro", "\x80"}, {"Yuml", "\x9F"}, {"hellip", "\x85"},
        // The code page has no such character.
        {"zwnj", "&zwnj;"}, {"Alpha", "&Alpha;"}, {"hearts", "&hearts;"},
        // Settled look-alikes.
        {"alpha", "a"}, {"asymp", "\x98"}, {"beta", "\xDF"}, {"empty", "\xD8"}, {"frasl", "/"},
        {"image", "I"}, {"lang", "<"}, {"lowast", "*"}, {"lsaquo", "{"}, {"minus", "-"},
        {"nbsp", " "}, {"prime", "'"}, {"radic", "v"}, {"rang", ">"}, {"real", "R"},
        {"rsaquo", "}"}, {"sdot", "\xB7"}, {"sim", "~"}, {"weierp", "P"}, {"mu", "\xB5"},
    };
    for (const auto& c : cases) {
        const QByteArray name(c.name);
        EXPECT_EQ(Insert(HtmlEntities, "&" + name + "\t\t'" + c.shown + "'"), "&" + name + ";") << c.name;
    }
    int own = 0;
    int named = 0;
    for (const Row& row : Rows(HtmlEntities)) {
        ASSERT_TRUE(row.insert.startsWith('&') && row.insert.endsWith(';'));
        const QByteArray shown = row.display.mid(row.display.indexOf("\t\t'") + 3).chopped(1);
        if (shown == row.insert)
            ++named;
        else if (shown.size() == 1)
            ++own;
    }
    EXPECT_EQ(named, 110);
    EXPECT_EQ(own, 142) << "122 characters of the code page and 20 look-alikes";
}

TEST(ReferenceTables, AsciiCodesSkipTheEightAndInsertOneByte)
{
    QSet<int> codes;
    for (const Row& row : Rows(AsciiCodes)) {
        ASSERT_EQ(row.insert.size(), 1);
        const int code = static_cast<unsigned char>(row.insert[0]);
        EXPECT_EQ(row.display, QByteArray::number(code) + "\t" + row.insert);
        codes.insert(code);
    }
    for (int skipped : {127, 129, 130, 141, 143, 144, 157, 160})
        EXPECT_FALSE(codes.contains(skipped)) << skipped;
    EXPECT_TRUE(codes.contains(128));
    EXPECT_EQ(Insert(AsciiCodes, "33\t!"), "!");
}

TEST(Windows1252, DecodesTheHighRangeAndKeepsUndefinedBytes)
{
    const struct
    {
        unsigned char byte;
        char16_t unicode;
    } cases[] = {{0x41, u'A'}, {0x80, 0x20AC}, {0x85, 0x2026}, {0x98, 0x02DC}, {0x9F, 0x0178},
                 {0x81, 0x81}, {0x9D, 0x9D}, {0xA9, 0xA9}, {0xFF, 0xFF}};
    for (const auto& c : cases)
        EXPECT_EQ(Windows1252::ToUnicode(c.byte).unicode(), c.unicode) << int(c.byte);
    EXPECT_EQ(Windows1252::Decode("&euro\t\t'\x80'"), QString::fromUtf8("&euro\t\t'€'"));
}

} // namespace
