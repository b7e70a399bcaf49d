#include "SyntaxTestFiles.h"
#include "TestSupport.h"
#include "app/ViewSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <Qsci/qsciscintillabase.h>

#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

long Send(Sci& control, unsigned int message, unsigned long wParam = 0, long lParam = 0)
{
    return control.SendScintilla(message, wParam, lParam);
}

QByteArray LexerName(Sci& control)
{
    QByteArray buffer(64, '\0');
    control.SendScintilla(Sci::SCI_GETLEXERLANGUAGE, 0UL, static_cast<void*>(buffer.data()));
    return QByteArray(buffer.constData());
}

void SetText(Sci& control, const QByteArray& text)
{
    control.SendScintilla(Sci::SCI_SETTEXT, uintptr_t(0), text.constData());
    Send(control, Sci::SCI_COLOURISE, 0, -1);
}

CSyntaxParser CLike()
{
    CSyntaxParser parser;
    parser.lexer = QStringLiteral("cpp");
    parser.keywords[0] = QStringLiteral("foo bar");
    parser.keywordCount = 1;
    const SyntaxColour colours[] = {
        {0x000000, 0xFFFFFF, 0, QStringLiteral("Default"), false},
        {0x0000FF, 0xF0F0F0, 5, QStringLiteral("Keyword"), true},
        {0x00FF00, 0xFFFFFF, 11, QStringLiteral("Identifier"), false},
    };
    for (const SyntaxColour& colour : colours)
        parser.colours[size_t(parser.colourCount++)] = colour;
    return parser;
}

TEST(SyntaxApplier, SendsSettingsLexerAndColours)
{
    Sci control;
    ViewSettings settings;
    settings.BraceBadColour = 0x112233;
    settings.BraceHighlight = 0x445566;
    settings.TabAsSpaces = 1;
    settings.TabGuides = 1;
    settings.TabWidth = 3;
    SyntaxApplier::Apply(control, CLike(), settings);

    EXPECT_EQ(LexerName(control), QByteArray("cpp"));
    EXPECT_EQ(Send(control, Sci::SCI_GETLEXER), 3); // SCLEX_CPP
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 35), 0x112233);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 34), 0x445566);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETBOLD, 34), 1);
    EXPECT_EQ(Send(control, Sci::SCI_GETUSETABS), 0);
    EXPECT_NE(Send(control, Sci::SCI_GETINDENTATIONGUIDES), 0);
    EXPECT_EQ(Send(control, Sci::SCI_GETTABWIDTH), 3);
    EXPECT_EQ(Send(control, Sci::SCI_GETINDENT), 3);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 5), 0x0000FF);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETBACK, 5), 0xF0F0F0);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETEOLFILLED, 5), 1);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 11), 0x00FF00);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETEOLFILLED, 11), 0);

    settings.TabAsSpaces = 0;
    settings.TabGuides = 0;
    SyntaxApplier::Apply(control, CLike(), settings);
    EXPECT_EQ(Send(control, Sci::SCI_GETUSETABS), 1);
    EXPECT_EQ(Send(control, Sci::SCI_GETINDENTATIONGUIDES), 0);
}

TEST(SyntaxApplier, ClearsStylesOfTheEarlierParser)
{
    Sci control;
    const long defaultFore = Send(control, Sci::SCI_STYLEGETFORE, 32);
    Send(control, Sci::SCI_STYLESETFORE, 7, 0x00ABCD);
    SyntaxApplier::Apply(control, CLike(), ViewSettings());
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 7), defaultFore);
}

TEST(SyntaxApplier, KeywordSetsReachTheLexerAndAreClearedByTheNextParser)
{
    Sci control;
    SyntaxApplier::Apply(control, CLike(), ViewSettings());
    SetText(control, "foo baz");
    EXPECT_EQ(Send(control, Sci::SCI_GETSTYLEAT, 0), 5);  // keyword
    EXPECT_EQ(Send(control, Sci::SCI_GETSTYLEAT, 4), 11); // identifier

    CSyntaxParser noKeywords = CLike();
    noKeywords.keywords[0].clear();
    noKeywords.keywordCount = 0;
    SyntaxApplier::Apply(control, noKeywords, ViewSettings());
    Send(control, Sci::SCI_COLOURISE, 0, -1);
    EXPECT_EQ(Send(control, Sci::SCI_GETSTYLEAT, 0), 11);
}

TEST(SyntaxApplier, LaterColoursOfTheSameStyleWin)
{
    Sci control;
    CSyntaxParser parser = CLike();
    parser.colours[size_t(parser.colourCount++)] = {0x777777, 0xFFFFFF, 5, QStringLiteral("Again"), false};
    SyntaxApplier::Apply(control, parser, ViewSettings());
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 5), 0x777777);
}

TEST(SyntaxApplier, IgnoresStyleNumbersTheControlDoesNotHave)
{
    Sci control;
    CSyntaxParser parser = CLike();
    // A style number like this would make the control allocate billions of styles.
    parser.colours[size_t(parser.colourCount++)] = {0x777777, 0xFFFFFF, 2000000000, QStringLiteral("Huge"), false};
    parser.colours[size_t(parser.colourCount++)] = {0x777777, 0xFFFFFF, -5, QStringLiteral("Negative"), false};
    parser.colours[size_t(parser.colourCount++)] = {0x0A0B0C, 0xFFFFFF, 255, QStringLiteral("Last"), false};
    SyntaxApplier::Apply(control, parser, ViewSettings());
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 255), 0x0A0B0C);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 5), 0x0000FF);
}

TEST(SyntaxApplier, AnUnknownOrEmptyLexerLeavesTheControlPlain)
{
    Sci control;
    for (const char* name : {"", "no-such-lexer"}) {
        CSyntaxParser parser = CLike();
        parser.lexer = QString::fromLatin1(name);
        SyntaxApplier::Apply(control, parser, ViewSettings());
        EXPECT_EQ(Send(control, Sci::SCI_GETLEXER), 1) << name; // SCLEX_NULL
        SetText(control, "foo baz");
        EXPECT_EQ(Send(control, Sci::SCI_GETSTYLEAT, 0), 0) << name;
    }
}

TEST(SyntaxApplier, ANullControlIsLeftAlone)
{
    SyntaxApplier::Apply(static_cast<Sci*>(nullptr), CLike(), ViewSettings());
    Sci control;
    SyntaxApplier::Apply(&control, CLike(), ViewSettings());
    EXPECT_EQ(LexerName(control), QByteArray("cpp"));
}

TEST(SyntaxApplier, TheStandByRecordAppliesCleanly)
{
    Sci control;
    SyntaxApplier::Apply(control, CSyntaxParser::StandBy(), ViewSettings());
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 0), 0x000000);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETBACK, 0), 0xFFFFFF);
}

TEST(SyntaxApplier, ApplyForExtensionAppliesTheFirstMatchOnly)
{
    const QString folder = TestSupport::MakeTempDir();
    SyntaxTestFiles::Write(folder, QStringLiteral("a.config"), SyntaxTestFiles::Simple("C", ".c;.h", "cpp"));
    SyntaxTestFiles::Write(folder, QStringLiteral("b.config"), SyntaxTestFiles::Simple("Py", ".py;.H", "python"));
    CSyntaxParserList list(folder);
    list.Load();
    Sci control;
    EXPECT_EQ(SyntaxApplier::ApplyForExtension(control, list, QStringLiteral(".H"), ViewSettings()), 0);
    EXPECT_EQ(LexerName(control), QByteArray("cpp"));
    EXPECT_EQ(SyntaxApplier::ApplyForExtension(control, list, QStringLiteral(".PY"), ViewSettings()), 1);
    EXPECT_EQ(LexerName(control), QByteArray("python"));
    // No match: the control keeps what it had.
    EXPECT_EQ(SyntaxApplier::ApplyForExtension(control, list, QStringLiteral(".rs"), ViewSettings()), -1);
    EXPECT_EQ(LexerName(control), QByteArray("python"));
}

} // namespace
