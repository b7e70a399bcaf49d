// Bracket and quote pairing on a bare control, through the key filter as typing goes.
#include "BareControl.h"

#include "editing/AutoClose.h"

#include <QKeyEvent>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct TypingCase
{
    const char* name;
    const char* before; // "|" marks the caret
    const char* keys;   // "\b" is Backspace
    const char* after;  // "|" marks the caret
    const char* lexer = nullptr;
};

using AutoCloseTyping = ::testing::TestWithParam<TypingCase>;

void Type(QsciScintillaBase& control, const char* keys)
{
    for (const char* k = keys; *k; ++k) {
        if (*k == '\b')
            QTest::keyClick(&control, Qt::Key_Backspace);
        else
            QTest::keyClicks(&control, QString(QChar::fromLatin1(*k)));
    }
}

TEST_P(AutoCloseTyping, ProducesTheExpectedText)
{
    const TypingCase& c = GetParam();
    BareControl bare{QByteArray(c.before)};
    if (c.lexer)
        bare.control.SendScintilla(QsciScintillaBase::SCI_SETLEXERLANGUAGE, 0UL, c.lexer);
    bool enabled = true;
    CAutoCloseFilter filter(&enabled);
    bare.control.installEventFilter(&filter);
    Type(bare.control, c.keys);
    EXPECT_EQ(bare.TextWithCaret(), QByteArray(c.after));
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, AutoCloseTyping,
    ::testing::Values(
        TypingCase{"OpenerInsertsCloser", "f|", "(", "f(|)"},
        TypingCase{"EveryBracketKind", "|", "[{(", "[{(|)}]"},
        TypingCase{"CloserIsTypedOver", "f|", "(x)", "f(x)|"},
        TypingCase{"NestedClosersTypedOver", "|", "{[]}", "{[]}|"},
        TypingCase{"QuotePairAndTypeOver", "x = |", "\"ab\"", "x = \"ab\"|"},
        TypingCase{"BackspaceRemovesEmptyPair", "f|", "(\b", "f|"},
        TypingCase{"BackspaceLeavesFilledPairAlone", "(|x)", "\b", "|x)"},
        TypingCase{"BackspaceAfterEmptyingAPair", "f|", "(a\b\b", "f|"},
        TypingCase{"NoPairBeforeAWord", "|word", "(", "(|word"},
        TypingCase{"ApostropheInAWord", "don|", "'t", "don't|"},
        TypingCase{"PairBeforeACloser", "(|)", "[", "([|])"}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Lexed, AutoCloseTyping,
    ::testing::Values(
        TypingCase{"InsideAString", "s = \"ab| cd\";", "(", "s = \"ab(| cd\";", "cpp"},
        TypingCase{"InsideALineComment", "x; // note|", "(", "x; // note(|", "cpp"},
        TypingCase{"InsideABlockComment", "/* a| b */", "[", "/* a[| b */", "cpp"},
        TypingCase{"AfterAClosedString", "s = \"ab\"|", "(", "s = \"ab\"(|)", "cpp"},
        TypingCase{"InCode", "int f|", "(", "int f(|)", "cpp"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(AutoClose, OffMeansPlainTyping)
{
    BareControl bare{"f|"};
    bool enabled = false;
    CAutoCloseFilter filter(&enabled);
    bare.control.installEventFilter(&filter);
    Type(bare.control, "(");
    EXPECT_EQ(bare.TextWithCaret(), QByteArray("f(|"));
}

TEST(AutoClose, ThePairIsOneUndoStep)
{
    BareControl bare{"f|"};
    ASSERT_TRUE(AutoClose::TypeChar(bare.control, '('));
    EXPECT_EQ(bare.Text(), QByteArray("f()"));
    bare.Undo();
    EXPECT_EQ(bare.Text(), QByteArray("f"));
}

TEST(AutoClose, ASelectionOrSeveralCaretsAreLeftToTheControl)
{
    BareControl bare{"[ab]"};
    EXPECT_FALSE(AutoClose::TypeChar(bare.control, '('));
    EXPECT_FALSE(AutoClose::Backspace(bare.control));
    EXPECT_EQ(bare.Text(), QByteArray("ab"));
}

} // namespace
