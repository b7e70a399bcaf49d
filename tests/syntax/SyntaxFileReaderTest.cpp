#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "syntax/CSyntaxParser.h"
#include "syntax/ColourUtil.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

using SyntaxTestFiles::Colour;

namespace {

QByteArray Def(const QByteArray& rest, const QByteArray& colours = Colour(0, "#000000", "Default"))
{
    return SyntaxTestFiles::Definition(rest + "<COLOURS>\n" + colours + "</COLOURS>");
}

// The pattern once for each of first..last, its %1 replaced by the number.
QByteArray Numbered(const char* pattern, int first, int last)
{
    QString text;
    for (int i = first; i <= last; ++i)
        text += QString::fromLatin1(pattern).arg(i);
    return text.toLatin1();
}

QByteArray Utf16(const QByteArray& utf8)
{
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    return encoder.encode(QString::fromUtf8(utf8).replace(QStringLiteral("UTF-8"), QStringLiteral("UTF-16")));
}

// Ten levels of ten references each: a billion "lol"s if anything expanded them.
QByteArray EntityBomb()
{
    QByteArray entities = "<!ENTITY e0 \"lol\">\n";
    for (int i = 1; i < 10; ++i)
        entities += "<!ENTITY e" + QByteArray::number(i) + " \""
                    + ("&e" + QByteArray::number(i - 1) + ";").repeated(10) + "\">\n";
    return "<?xml version=\"1.0\"?>\n<!DOCTYPE SYNTAX [\n" + entities + "]>\n<SYNTAX><PROPERTIES>"
           "<MENU>&e9;</MENU><COLOURS>" + Colour(0, "#000000", "Default") + "</COLOURS></PROPERTIES></SYNTAX>";
}

// Everything the reader took from a file, on one line.
std::string Summary(const CSyntaxParser& p)
{
    QStringList keywords, colours;
    for (int i = 0; i < p.keywordCount; ++i)
        keywords << p.GetKeywords(i);
    for (int i = 0; i < p.colourCount; ++i) {
        const SyntaxColour& c = p.colours[size_t(i)];
        colours << QStringLiteral("%1 %2/%3%4 %5").arg(c.style).arg(ColourUtil::ToHex(c.fore), ColourUtil::ToHex(c.back),
                                                      c.eolFilled ? QStringLiteral(" eol") : QString(), c.name);
    }
    return QStringLiteral("menu=%1 ext=%2 lexer=%3 nest=%4 kw=[%5] comment=[%6|%7|%8] colours=[%9]")
        .arg(p.menuName, p.extensions, p.lexer, QString::number(int(p.autoNest)), keywords.join(QLatin1Char('|')),
             p.groupStart, p.groupEnd, p.lineComment, colours.join(QStringLiteral("; ")))
        .toStdString();
}

struct ReadCase
{
    const char* label;
    QByteArray bytes;
    const char* expected; // a part of the summary; nullptr: the file is refused
};

class Reader : public ::testing::TestWithParam<ReadCase> {};

TEST_P(Reader, ReadsOrRefuses)
{
    const ReadCase& c = GetParam();
    bool ok = false;
    const CSyntaxParser parser = SyntaxTestFiles::Read(c.bytes, &ok);
    EXPECT_EQ(ok, c.expected != nullptr) << c.label;
    EXPECT_EQ(parser.fromFile, ok) << c.label;
    if (c.expected) {
        EXPECT_NE(Summary(parser).find(c.expected), std::string::npos) << c.label << ": " << Summary(parser);
    }
}

const QByteArray kDefault = Colour(0, "#000000", "Default");

INSTANTIATE_TEST_SUITE_P(Files, Reader, ::testing::Values(
    ReadCase{"every property", Def("<MENU>C++</MENU><EXTENSION>.cpp;.h</EXTENSION><LEXER>cpp</LEXER><AUTONEST>Y</AUTONEST>"
        "<KEYWORDS><KEYWORD>int char</KEYWORD><KEYWORD>std</KEYWORD></KEYWORDS><COMMENT><GROUPSTART>/*</GROUPSTART>"
        "<GROUPEND>*/</GROUPEND><LINE>//</LINE></COMMENT>", Colour(5, "#0000FF", "Key", " HEXBACK=\"#FFFFE0\" EOLFILLED=\"True\"")),
        "menu=C++ ext=.cpp;.h lexer=cpp nest=1 kw=[int char|std] comment=[/*|*/|//] colours=[5 #0000FF/#FFFFE0 eol Key]"},
    ReadCase{"missing MENU and the rest", Def("<menu>Lower</menu>"), "menu=Text ext=.* lexer= nest=0 kw=[] comment=[||]"},
    ReadCase{"EOLFILLED only True", Def("", Colour(1, "#000000", "A", " EOLFILLED=\"TRUE\"") + Colour(2, "#000000", "B",
        " EOLFILLED=\" True\"")), "[1 #000000/#FFFFFF A; 2 #000000/#FFFFFF B]"},
    ReadCase{"AUTONEST y", Def("<AUTONEST>y</AUTONEST>"), "nest=1"},
    ReadCase{"AUTONEST True", Def("<AUTONEST>True</AUTONEST>"), "nest=0"},
    ReadCase{"tenth keyword set", Def("<KEYWORDS>" + Numbered("<KEYWORD>s%1</KEYWORD>", 1, 11) + "</KEYWORDS>"), "kw=[s1|s2|s3|s4|s5|s6|s7|s8|s9]"},
    ReadCase{"empty keyword set keeps its place", Def("<KEYWORDS><KEYWORD></KEYWORD><KEYWORD> a\n b </KEYWORD>"
        "</KEYWORDS><KEYWORDS><KEYWORD>c</KEYWORD></KEYWORDS>"), "kw=[| a\n b |c]"},
    ReadCase{"COLOUR without STYLE or HEXFORE", Def("", kDefault + "<COLOUR HEXFORE=\"#FF0000\">A</COLOUR>"
        "<COLOUR STYLE=\"1\">B</COLOUR><COLOUR style=\"1\" hexfore=\"#FF0000\">C</COLOUR>" + Colour(2, "#00FF00", "D")),
        "colours=[0 #000000/#FFFFFF Default; 2 #00FF00/#FFFFFF D]"},
    ReadCase{"missing HEXBACK", Def("", Colour(1, "#102030", "A") + Colour(2, "#102030", "B", " HEXBACK=\"\"")),
        "[1 #102030/#FFFFFF A; 2 #102030/#FFFFFF B]"},
    ReadCase{"no valid colour", Def("<MENU>Empty</MENU>", "<COLOUR STYLE=\"1\">X</COLOUR>"), "menu=Empty ext=.* lexer= nest=0 kw=[] comment=[||] colours=[]"},
    ReadCase{"128th colour", Def("", Numbered("<COLOUR STYLE=\"%1\" HEXFORE=\"#000000\">c%1</COLOUR>", 0, 129)), "126 #000000/#FFFFFF c126]"},
    ReadCase{"free root, first PROPERTIES", "<?xml version=\"1.0\"?><a><b><PROPERTIES><MENU>First</MENU><COLOURS>" + kDefault
        + "</COLOURS></PROPERTIES></b><PROPERTIES><MENU>Second</MENU></PROPERTIES></a>", "menu=First"},
    ReadCase{"nested markup and CDATA", Def("<MENU> Obj<b>ective</b>-<![CDATA[C]]> </MENU>"), "menu=Objective-C "},
    ReadCase{"UTF-16 with its mark", Utf16(Def("<MENU>Ünïcødé</MENU>")), "menu=Ünïcødé"},
    ReadCase{"deep nesting", Def("<MENU>" + QByteArray("<b>").repeated(200000) + "deep" + QByteArray("</b>").repeated(200000) + "</MENU>"), "menu=deep "},
    ReadCase{"internal entities", EntityBomb(), "menu=&e9; "},
    ReadCase{"lower-case PROPERTIES", "<SYNTAX><properties><MENU>x</MENU></properties></SYNTAX>", nullptr},
    ReadCase{"unclosed", "<SYNTAX><PROPERTIES><MENU>x</MENU>", nullptr},
    ReadCase{"mismatched", "<SYNTAX><PROPERTIES></SYNTAX></PROPERTIES>", nullptr},
    ReadCase{"empty", "", nullptr},
    ReadCase{"binary", QByteArray("\x00\x01\xff\xfe<<>>", 8), nullptr},
    ReadCase{"no PROPERTIES", "<SYNTAX><MENU>x</MENU></SYNTAX>", nullptr},
    ReadCase{"over 16 MB", Def(QByteArray(17 << 20, ' ')), nullptr}));

TEST(SyntaxFileReader, ExternalEntitiesAreNeverResolved)
{
    const QString folder = TestSupport::MakeTempDir();
    const QByteArray secret = "file://" + SyntaxTestFiles::Write(folder, QStringLiteral("secret.txt"), "TOPSECRET").toUtf8();
    const QByteArray dtd = "file://" + SyntaxTestFiles::Write(folder, QStringLiteral("evil.dtd"),
        "<!ENTITY fromdtd SYSTEM \"" + secret + "\">").toUtf8();
    bool ok = false;
    const CSyntaxParser parser = SyntaxTestFiles::Read(
        "<?xml version=\"1.0\"?>\n<!DOCTYPE SYNTAX SYSTEM \"" + dtd + "\" [\n<!ENTITY xxe SYSTEM \"" + secret
        + "\">\n<!ENTITY % param SYSTEM \"" + dtd + "\">\n%param;\n]>\n<SYNTAX><PROPERTIES><MENU>&xxe;</MENU>"
        "<EXTENSION>&fromdtd;</EXTENSION><COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\">&xxe;</COLOUR></COLOURS>"
        "</PROPERTIES></SYNTAX>", &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(Summary(parser).find("TOPSECRET"), std::string::npos) << Summary(parser);
    EXPECT_EQ(parser.menuName, QStringLiteral("&xxe;")) << "the reference stays as written";
    CSyntaxParser missing;
    EXPECT_FALSE(CSyntaxParser::ReadFile(folder + QStringLiteral("/gone.config"), missing));
}

TEST(ColourUtil, ReadsRedFirstByPositionAndWritesItBack)
{
    EXPECT_EQ(ColourUtil::FromHex(u"#123456"), 0x563412u);
    EXPECT_EQ(ColourUtil::FromHex(u"#1G2Z3Q"), 0x302010u); // bad digits count as 0
    EXPECT_EQ(ColourUtil::FromHex(u"#12"), 0x000012u);     // so do missing ones
    EXPECT_EQ(ColourUtil::FromHex(u"123456"), 0x604523u);  // position 0 is never read
    EXPECT_EQ(ColourUtil::FromHex(u""), SyntaxColour::DefaultBack);
    EXPECT_EQ(ColourUtil::ToHex(0xFF0A0B0C), QStringLiteral("#0C0B0A"));
    for (quint32 v = 0; v < 256; ++v) {
        const quint32 colour = v | ((255 - v) << 8) | (((v * 7) & 0xFF) << 16);
        EXPECT_EQ(ColourUtil::FromHex(ColourUtil::ToHex(colour)), colour);
    }
}

TEST(SyntaxFileReader, ExtensionsMatchWholeTokensIgnoringCase)
{
    CSyntaxParser parser;
    parser.extensions = QStringLiteral(".c;.H;.ÄBC;.*");
    for (const char* yes : {".C", ".h", ".äbc", ".*"})
        EXPECT_TRUE(parser.MatchesExtension(QString::fromUtf8(yes))) << yes;
    for (const char* no : {".cp", "c", "", ".txt"})
        EXPECT_FALSE(parser.MatchesExtension(QString::fromUtf8(no))) << no;
}

} // namespace
