#include "settings/ViewSettings.h"
#include "syntax/CSyntaxParser.h"
#include "syntax/SyntaxApplier.h"

#include <Qsci/qsciscintillabase.h>

#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

long Send(Sci& control, unsigned int message, unsigned long wParam = 0, long lParam = 0)
{
    return control.SendScintilla(message, wParam, lParam);
}

// The style of the first byte of "foo baz" once coloured.
long FirstStyle(Sci& control)
{
    control.SendScintilla(Sci::SCI_SETTEXT, uintptr_t(0), "foo baz");
    Send(control, Sci::SCI_COLOURISE, 0, -1);
    return Send(control, Sci::SCI_GETSTYLEAT, 0);
}

CSyntaxParser CLike()
{
    CSyntaxParser parser;
    parser.lexer = QStringLiteral("cpp");
    parser.keywords[0] = QStringLiteral("foo bar");
    parser.keywordCount = 1;
    for (const SyntaxColour& colour : {SyntaxColour{0x000000, 0xFFFFFF, 0, QStringLiteral("Default"), false},
                                       SyntaxColour{0x0000FF, 0xF0F0F0, 5, QStringLiteral("Keyword"), true},
                                       SyntaxColour{0x00FF00, 0xFFFFFF, 11, QStringLiteral("Identifier"), false},
                                       // Later colours of a style win; impossible styles are skipped,
                                       // else the control would allocate billions of them.
                                       SyntaxColour{0x777777, 0xFFFFFF, 11, QStringLiteral("Again"), false},
                                       SyntaxColour{0x777777, 0xFFFFFF, 2000000000, QStringLiteral("Huge"), false},
                                       SyntaxColour{0x777777, 0xFFFFFF, -5, QStringLiteral("Negative"), false},
                                       SyntaxColour{0x0A0B0C, 0xFFFFFF, 255, QStringLiteral("Last"), false}})
        parser.colours[size_t(parser.colourCount++)] = colour;
    return parser;
}

TEST(SyntaxApplier, SendsSettingsLexerKeywordsAndColoursAndClearsTheEarlierParser)
{
    Sci control;
    const long defaultFore = Send(control, Sci::SCI_STYLEGETFORE, 32);
    Send(control, Sci::SCI_STYLESETFORE, 7, 0x00ABCD);
    ViewSettings settings;
    settings.TabWidth = 3;
    SyntaxApplier::Apply(control, CLike(), settings);
    EXPECT_EQ(Send(control, Sci::SCI_GETLEXER), 3); // SCLEX_CPP
    EXPECT_EQ(Send(control, Sci::SCI_GETINDENT), 3);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 7), defaultFore);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETBACK, 5), 0xF0F0F0);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETEOLFILLED, 5), 1);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 11), 0x777777);
    EXPECT_EQ(Send(control, Sci::SCI_STYLEGETFORE, 255), 0x0A0B0C);
    EXPECT_EQ(FirstStyle(control), 5); // "foo" is a keyword

    // The next parser's empty keyword set and unknown lexer leave nothing behind.
    CSyntaxParser plain = CLike();
    plain.keywordCount = 0;
    plain.keywords[0].clear();
    SyntaxApplier::Apply(control, plain, settings);
    EXPECT_EQ(FirstStyle(control), 11);
    plain.lexer = QStringLiteral("no-such-lexer");
    SyntaxApplier::Apply(control, plain, settings);
    EXPECT_EQ(Send(control, Sci::SCI_GETLEXER), 1); // SCLEX_NULL
    EXPECT_EQ(FirstStyle(control), 0);
    SyntaxApplier::Apply(static_cast<Sci*>(nullptr), CLike(), settings);
}

} // namespace
