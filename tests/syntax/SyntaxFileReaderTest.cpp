#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "syntax/CSyntaxParser.h"

#include <QDir>
#include <QElapsedTimer>
#include <QStringEncoder>

#include <gtest/gtest.h>

using SyntaxTestFiles::Colour;
using SyntaxTestFiles::Definition;
using SyntaxTestFiles::Read;
using SyntaxTestFiles::Simple;

namespace {

QByteArray WithColours(const QByteArray& colours, const QByteArray& rest = {})
{
    return Definition(rest + "<COLOURS>\n" + colours + "</COLOURS>");
}

// --- Flags ---------------------------------------------------------------------------

struct FlagCase
{
    const char* text; // nullptr: attribute or element absent
    bool expected;
};

class EolFilled : public ::testing::TestWithParam<FlagCase> {};

TEST_P(EolFilled, OnlyExactTrueSetsIt)
{
    const FlagCase& c = GetParam();
    const QByteArray extra = c.text ? QByteArray(" EOLFILLED=\"") + c.text + "\"" : QByteArray();
    bool ok = false;
    const CSyntaxParser parser = Read(WithColours(Colour(1, "#000000", "One", extra)), &ok);
    ASSERT_TRUE(ok);
    ASSERT_EQ(parser.colourCount, 1);
    EXPECT_EQ(parser.colours[0].eolFilled, c.expected) << (c.text ? c.text : "(absent)");
}

INSTANTIATE_TEST_SUITE_P(Values, EolFilled, ::testing::Values(
    FlagCase{"True", true}, FlagCase{"true", false}, FlagCase{"TRUE", false}, FlagCase{"False", false},
    FlagCase{"1", false}, FlagCase{"", false}, FlagCase{" True", false}, FlagCase{nullptr, false}));

class AutoNest : public ::testing::TestWithParam<FlagCase> {};

TEST_P(AutoNest, YInEitherCaseSetsIt)
{
    const FlagCase& c = GetParam();
    const QByteArray element = c.text ? QByteArray("<AUTONEST>") + c.text + "</AUTONEST>" : QByteArray();
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"), element));
    EXPECT_EQ(parser.autoNest, c.expected) << (c.text ? c.text : "(absent)");
}

INSTANTIATE_TEST_SUITE_P(Values, AutoNest, ::testing::Values(
    FlagCase{"Y", true}, FlagCase{"y", true}, FlagCase{"N", false}, FlagCase{"yes", false},
    FlagCase{"", false}, FlagCase{"True", false}, FlagCase{nullptr, false}));

// --- Properties ----------------------------------------------------------------------

TEST(SyntaxFileReader, ReadsEveryProperty)
{
    bool ok = false;
    const CSyntaxParser parser = Read(WithColours(
        Colour(5, "#0000FF", "Keyword", " HEXBACK=\"#FFFFE0\" EOLFILLED=\"True\""),
        "<MENU>C++</MENU><EXTENSION>.cpp;.h</EXTENSION><LEXER>cpp</LEXER><AUTONEST>Y</AUTONEST>"
        "<KEYWORDS><KEYWORD>int char</KEYWORD><KEYWORD>std</KEYWORD></KEYWORDS>"
        "<COMMENT><GROUPSTART>/*</GROUPSTART><GROUPEND>*/</GROUPEND><LINE>//</LINE></COMMENT>"), &ok);
    ASSERT_TRUE(ok);
    EXPECT_TRUE(parser.fromFile);
    EXPECT_FALSE(parser.modified);
    EXPECT_EQ(parser.menuName, QStringLiteral("C++"));
    EXPECT_EQ(parser.extensions, QStringLiteral(".cpp;.h"));
    EXPECT_EQ(parser.lexer, QStringLiteral("cpp"));
    EXPECT_TRUE(parser.autoNest);
    EXPECT_EQ(parser.keywordCount, 2);
    EXPECT_EQ(parser.GetKeywords(0), QStringLiteral("int char"));
    EXPECT_EQ(parser.GetKeywords(1), QStringLiteral("std"));
    EXPECT_EQ(parser.groupStart, QStringLiteral("/*"));
    EXPECT_EQ(parser.groupEnd, QStringLiteral("*/"));
    EXPECT_EQ(parser.lineComment, QStringLiteral("//"));
    ASSERT_EQ(parser.colourCount, 1);
    const SyntaxColour colour = parser.GetColour(0);
    EXPECT_EQ(colour.style, 5);
    EXPECT_EQ(colour.fore, 0xFF0000u);
    EXPECT_EQ(colour.back, 0xE0FFFFu);
    EXPECT_TRUE(colour.eolFilled);
    EXPECT_EQ(colour.name, QStringLiteral("Keyword"));
    EXPECT_TRUE(parser.filePath.endsWith(QStringLiteral("test.config")));
}

TEST(SyntaxFileReader, MissingElementsKeepTheirDefaultsButCommentsBecomeEmpty)
{
    bool ok = false;
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default")), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(parser.menuName, QStringLiteral("Text"));
    EXPECT_EQ(parser.extensions, QStringLiteral(".*"));
    EXPECT_EQ(parser.lexer, QString());
    EXPECT_FALSE(parser.autoNest);
    EXPECT_EQ(parser.keywordCount, 0);
    // Only the stand-by record keeps "/", "/" and "//".
    EXPECT_EQ(parser.groupStart, QString());
    EXPECT_EQ(parser.groupEnd, QString());
    EXPECT_EQ(parser.lineComment, QString());
    EXPECT_EQ(CSyntaxParser::StandBy().lineComment, QStringLiteral("//"));
}

TEST(SyntaxFileReader, CommentTokensKeepTheirBlanks)
{
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"),
                                                  "<COMMENT><LINE>REM </LINE></COMMENT>"));
    EXPECT_EQ(parser.lineComment, QStringLiteral("REM "));
    EXPECT_EQ(parser.groupStart, QString());
}

TEST(SyntaxFileReader, TheRootIsFreeAndTheFirstPropertiesWins)
{
    const QByteArray bytes =
        "<?xml version=\"1.0\"?><anything><deeper><PROPERTIES><MENU>First</MENU><COLOURS>"
        + Colour(0, "#000000", "Default") + "</COLOURS></PROPERTIES></deeper>"
        "<PROPERTIES><MENU>Second</MENU></PROPERTIES></anything>";
    bool ok = false;
    const CSyntaxParser parser = Read(bytes, &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(parser.menuName, QStringLiteral("First"));
}

TEST(SyntaxFileReader, ElementNamesAreCaseSensitive)
{
    bool ok = true;
    Read("<?xml version=\"1.0\"?><SYNTAX><properties><MENU>x</MENU></properties></SYNTAX>", &ok);
    EXPECT_FALSE(ok);
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"), "<menu>Lower</menu>"));
    EXPECT_EQ(parser.menuName, QStringLiteral("Text"));
}

TEST(SyntaxFileReader, TextOfNestedMarkupAndCdataIsJoined)
{
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"),
        "<MENU>  Obj<b>ective</b>-<![CDATA[C]]>  </MENU><KEYWORDS><KEYWORD> a\n b </KEYWORD></KEYWORDS>"));
    EXPECT_EQ(parser.menuName, QStringLiteral("Objective-C"));
    // Keyword lists go to the control whole, blanks included.
    EXPECT_EQ(parser.GetKeywords(0), QStringLiteral(" a\n b "));
}

// --- Keyword sets --------------------------------------------------------------------

TEST(SyntaxFileReader, TheTenthKeywordSetIsDropped)
{
    QByteArray sets;
    for (int i = 1; i <= 11; ++i)
        sets += "<KEYWORD>set" + QByteArray::number(i) + "</KEYWORD>";
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"), "<KEYWORDS>" + sets + "</KEYWORDS>"));
    EXPECT_EQ(parser.keywordCount, 9);
    EXPECT_EQ(parser.GetKeywords(0), QStringLiteral("set1"));
    EXPECT_EQ(parser.GetKeywords(8), QStringLiteral("set9"));
    EXPECT_EQ(parser.GetKeywords(9), QString());
    EXPECT_EQ(parser.GetKeywords(-1), QString());
}

TEST(SyntaxFileReader, KeywordSetsKeepTheirPositionIncludingEmptyOnes)
{
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"),
        "<KEYWORDS><KEYWORD></KEYWORD><KEYWORD>two</KEYWORD></KEYWORDS><KEYWORDS><KEYWORD>three</KEYWORD></KEYWORDS>"));
    EXPECT_EQ(parser.keywordCount, 3);
    EXPECT_EQ(parser.GetKeywords(0), QString());
    EXPECT_EQ(parser.GetKeywords(1), QStringLiteral("two"));
    EXPECT_EQ(parser.GetKeywords(2), QStringLiteral("three"));
}

// --- Colours -------------------------------------------------------------------------

struct ColourElementCase
{
    const char* element;
    bool kept;
};

class ColourElement : public ::testing::TestWithParam<ColourElementCase> {};

TEST_P(ColourElement, NeedsStyleAndForeground)
{
    const ColourElementCase& c = GetParam();
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default") + c.element));
    EXPECT_EQ(parser.colourCount, c.kept ? 2 : 1) << c.element;
}

INSTANTIATE_TEST_SUITE_P(Elements, ColourElement, ::testing::Values(
    ColourElementCase{"<COLOUR STYLE=\"1\" HEXFORE=\"#FF0000\">A</COLOUR>", true},
    ColourElementCase{"<COLOUR HEXFORE=\"#FF0000\">No style</COLOUR>", false},
    ColourElementCase{"<COLOUR STYLE=\"1\">No fore</COLOUR>", false},
    ColourElementCase{"<COLOUR STYLE=\"\" HEXFORE=\"#FF0000\">Empty style</COLOUR>", false},
    ColourElementCase{"<COLOUR STYLE=\"1\" HEXFORE=\"\">Empty fore</COLOUR>", false},
    ColourElementCase{"<COLOUR style=\"1\" hexfore=\"#FF0000\">Lower case</COLOUR>", false},
    ColourElementCase{"<COLOUR STYLE=\"1\" HEXFORE=\"#FF0000\" HEXBACK=\"\"/>", true}));

TEST(SyntaxFileReader, SkippedColoursLeaveNoGap)
{
    const CSyntaxParser parser = Read(WithColours(
        Colour(0, "#000000", "Default") + "<COLOUR STYLE=\"1\">Skipped</COLOUR>" + Colour(2, "#00FF00", "Next")));
    ASSERT_EQ(parser.colourCount, 2);
    EXPECT_EQ(parser.colours[1].name, QStringLiteral("Next"));
    EXPECT_EQ(parser.colours[1].style, 2);
}

TEST(SyntaxFileReader, MissingOrEmptyBackgroundTakesTheDefault)
{
    const CSyntaxParser parser = Read(WithColours(
        Colour(1, "#102030", "Absent") + Colour(2, "#102030", "Empty", " HEXBACK=\"\"")
        + Colour(3, "#102030", "Given", " HEXBACK=\"#000000\"")));
    ASSERT_EQ(parser.colourCount, 3);
    EXPECT_EQ(parser.colours[0].back, SyntaxColour::DefaultBack);
    EXPECT_EQ(parser.colours[1].back, SyntaxColour::DefaultBack);
    EXPECT_EQ(parser.colours[2].back, 0u);
}

TEST(SyntaxFileReader, StyleNumbersReadLikeDecimalPrefixes)
{
    const CSyntaxParser parser = Read(WithColours(
        Colour(0, "#000000", "A") + "<COLOUR STYLE=\" 12\" HEXFORE=\"#000000\">B</COLOUR>"
        "<COLOUR STYLE=\"7x\" HEXFORE=\"#000000\">C</COLOUR><COLOUR STYLE=\"abc\" HEXFORE=\"#000000\">D</COLOUR>"));
    ASSERT_EQ(parser.colourCount, 4);
    EXPECT_EQ(parser.colours[1].style, 12);
    EXPECT_EQ(parser.colours[2].style, 7);
    EXPECT_EQ(parser.colours[3].style, 0);
}

TEST(SyntaxFileReader, The128thColourIsIgnored)
{
    QByteArray colours;
    for (int i = 0; i < 130; ++i)
        colours += Colour(i, "#000000", "c" + QByteArray::number(i));
    const CSyntaxParser parser = Read(WithColours(colours));
    EXPECT_EQ(parser.colourCount, CSyntaxParser::MaxColours);
    EXPECT_EQ(parser.colours[126].name, QStringLiteral("c126"));
}

TEST(SyntaxFileReader, AFileWithoutValidColoursReadsWithNone)
{
    bool ok = false;
    const CSyntaxParser parser = Read(WithColours("<COLOUR STYLE=\"1\">Nothing</COLOUR>", "<MENU>Empty</MENU>"), &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(parser.colourCount, 0);
}

TEST(SyntaxFileReader, GetColourOutOfRangeGivesADefaultColour)
{
    const CSyntaxParser parser = Read(WithColours(Colour(4, "#FF0000", "Only")));
    EXPECT_EQ(parser.GetColour(-1), SyntaxColour());
    EXPECT_EQ(parser.GetColour(CSyntaxParser::MaxColours), SyntaxColour());
    EXPECT_EQ(SyntaxColour().style, 32);
    EXPECT_EQ(SyntaxColour().name, QStringLiteral("Default"));
    // Unused slots inside the record are "Default" for style 0.
    EXPECT_EQ(parser.GetColour(1).name, QStringLiteral("Default"));
    EXPECT_EQ(parser.GetColour(1).style, 0);
}

// --- Bad input -----------------------------------------------------------------------

struct BadFileCase
{
    const char* label;
    QByteArray bytes;
};

class BadFile : public ::testing::TestWithParam<BadFileCase> {};

TEST_P(BadFile, IsRefusedWithoutCrashing)
{
    bool ok = true;
    const CSyntaxParser parser = Read(GetParam().bytes, &ok);
    EXPECT_FALSE(ok) << GetParam().label;
    EXPECT_FALSE(parser.fromFile);
}

INSTANTIATE_TEST_SUITE_P(Files, BadFile, ::testing::Values(
    BadFileCase{"unclosed", "<SYNTAX><PROPERTIES><MENU>x</MENU>"},
    BadFileCase{"mismatched", "<SYNTAX><PROPERTIES></SYNTAX></PROPERTIES>"},
    BadFileCase{"empty", ""},
    BadFileCase{"binary", QByteArray("\x00\x01\x02\xff\xfe\x7f<<>>", 10)},
    BadFileCase{"no properties", "<?xml version=\"1.0\"?><SYNTAX><MENU>x</MENU></SYNTAX>"},
    BadFileCase{"text only", "just some words"}));

TEST(SyntaxFileReader, MissingFileIsRefused)
{
    CSyntaxParser parser;
    EXPECT_FALSE(CSyntaxParser::ReadFile(QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("gone.config")), parser));
}

TEST(SyntaxFileReader, HugeFilesAreRefused)
{
    QByteArray bytes = Simple("Huge", ".huge");
    bytes.insert(bytes.indexOf("<SYNTAX>"), QByteArray(17 * 1024 * 1024, ' '));
    bool ok = true;
    Read(bytes, &ok);
    EXPECT_FALSE(ok);
}

TEST(SyntaxFileReader, ExternalEntitiesAreNeverResolved)
{
    const QString folder = TestSupport::MakeTempDir();
    const QString secret = SyntaxTestFiles::Write(folder, QStringLiteral("secret.txt"), "TOPSECRET-4711");
    const QString dtd = SyntaxTestFiles::Write(folder, QStringLiteral("evil.dtd"),
        "<!ENTITY fromdtd SYSTEM \"file://" + secret.toUtf8() + "\">");
    const QByteArray bytes =
        "<?xml version=\"1.0\"?>\n"
        "<!DOCTYPE SYNTAX SYSTEM \"file://" + dtd.toUtf8() + "\" [\n"
        "  <!ENTITY xxe SYSTEM \"file://" + secret.toUtf8() + "\">\n"
        "  <!ENTITY % param SYSTEM \"file://" + dtd.toUtf8() + "\">\n"
        "  %param;\n"
        "]>\n"
        "<SYNTAX><PROPERTIES><MENU>&xxe;</MENU><EXTENSION>&fromdtd;</EXTENSION>"
        "<COLOURS><COLOUR STYLE=\"0\" HEXFORE=\"#000000\">&xxe;</COLOUR></COLOURS></PROPERTIES></SYNTAX>";
    const QString path = SyntaxTestFiles::Write(folder, QStringLiteral("xxe.config"), bytes);
    CSyntaxParser parser;
    ASSERT_TRUE(CSyntaxParser::ReadFile(path, parser));
    EXPECT_FALSE(parser.menuName.contains(QStringLiteral("TOPSECRET")));
    EXPECT_FALSE(parser.extensions.contains(QStringLiteral("TOPSECRET")));
    EXPECT_FALSE(parser.colours[0].name.contains(QStringLiteral("TOPSECRET")));
    // The reference stays as it was written.
    EXPECT_EQ(parser.menuName, QStringLiteral("&xxe;"));
    EXPECT_EQ(parser.extensions, QStringLiteral("&fromdtd;"));
}

TEST(SyntaxFileReader, InternalEntityExpansionDoesNotExplode)
{
    QByteArray entities = "<!ENTITY e0 \"lollollollollol\">\n";
    for (int i = 1; i < 10; ++i) {
        QByteArray refs;
        for (int j = 0; j < 10; ++j)
            refs += "&e" + QByteArray::number(i - 1) + ";";
        entities += "<!ENTITY e" + QByteArray::number(i) + " \"" + refs + "\">\n";
    }
    const QByteArray bytes = "<?xml version=\"1.0\"?>\n<!DOCTYPE SYNTAX [\n" + entities + "]>\n"
        "<SYNTAX><PROPERTIES><MENU>&e9;</MENU><COLOURS>" + Colour(0, "#000000", "Default")
        + "</COLOURS></PROPERTIES></SYNTAX>";
    QElapsedTimer timer;
    timer.start();
    const CSyntaxParser parser = Read(bytes);
    EXPECT_LT(parser.menuName.size(), 100);
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST(SyntaxFileReader, DeepNestingDoesNotExhaustTheStack)
{
    const int depth = 200000;
    QByteArray menu = "<MENU>";
    for (int i = 0; i < depth; ++i)
        menu += "<b>";
    menu += "deep";
    for (int i = 0; i < depth; ++i)
        menu += "</b>";
    menu += "</MENU>";
    const CSyntaxParser parser = Read(WithColours(Colour(0, "#000000", "Default"), menu));
    EXPECT_EQ(parser.menuName, QStringLiteral("deep"));
}

TEST(SyntaxFileReader, ReadsUtf16WithItsMark)
{
    const QString text = QString::fromUtf8(WithColours(Colour(0, "#000000", "Default"), "<MENU>Ünïcødé</MENU>"))
                             .replace(QStringLiteral("UTF-8"), QStringLiteral("UTF-16"));
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    bool ok = false;
    const CSyntaxParser parser = Read(encoder.encode(text), &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(parser.menuName, QStringLiteral("Ünïcødé"));
    EXPECT_EQ(parser.colourCount, 1);
}

// --- Extensions ----------------------------------------------------------------------

struct ExtensionCase
{
    const char* list;
    const char* asked;
    bool matches;
};

class MatchesExtension : public ::testing::TestWithParam<ExtensionCase> {};

TEST_P(MatchesExtension, ComparesWholeTokensIgnoringCase)
{
    const ExtensionCase& c = GetParam();
    CSyntaxParser parser;
    parser.extensions = QString::fromUtf8(c.list);
    EXPECT_EQ(parser.MatchesExtension(QString::fromUtf8(c.asked)), c.matches) << c.list << " / " << c.asked;
}

INSTANTIATE_TEST_SUITE_P(Lists, MatchesExtension, ::testing::Values(
    ExtensionCase{".c;.H;.Cpp", ".c", true},
    ExtensionCase{".c;.H;.Cpp", ".C", true},
    ExtensionCase{".c;.H;.Cpp", ".h", true},
    ExtensionCase{".c;.H;.Cpp", ".CPP", true},
    ExtensionCase{".c;.H;.Cpp", ".cp", false},      // whole tokens only
    ExtensionCase{".c;.H;.Cpp", "c", false},        // the dot is part of it
    ExtensionCase{".c;.H;.Cpp", "", false},
    ExtensionCase{".c;.H;.Cpp", ".*", false},
    ExtensionCase{".*;.txt", ".*", true},           // what new documents ask for
    ExtensionCase{".*;.txt", ".TXT", true},
    ExtensionCase{".*;.txt", ".c", false},          // ".*" is no wildcard
    ExtensionCase{".*", ".log", false},
    ExtensionCase{".ÄBC", ".äbc", true}));

} // namespace
