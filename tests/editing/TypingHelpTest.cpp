// Word completion from the open documents and the indent after an opening brace.
#include "BareControl.h"

#include "editing/TypingHelp.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

// The entry the open list has chosen, or "(closed)".
QByteArray ShownEntry(BareControl& bare)
{
    if (!bare.Send(Sci::SCI_AUTOCACTIVE))
        return "(closed)";
    QByteArray current(256, '\0');
    const long size = bare.Send(Sci::SCI_AUTOCGETCURRENTTEXT, 0, reinterpret_cast<long>(current.data()));
    return current.left(int(size));
}

TEST(WordCompletion, CollectsLongerWordsWithThePrefixIncludingMultiByteOnes)
{
    const QByteArray text("Straße straßenbahn Strand str größe_1 straße\nstraßen");
    QSet<QByteArray> words;
    WordCompletion::CollectWords(text.constData(), text.size(), "stra", words);
    EXPECT_EQ(words, (QSet<QByteArray>{"straßenbahn", "straße", "straßen"}));
    words.clear();
    WordCompletion::CollectWords(text.constData(), text.size(), "grö", words);
    EXPECT_EQ(words, (QSet<QByteArray>{"größe_1"}));
}

TEST(WordCompletion, OffersWordsOfEveryOpenDocumentAndAcceptsOne)
{
    BareControl other{"größenordnung value"};
    BareControl bare{"int grö|"};
    bare.control.resize(400, 200);
    bare.control.show();
    ASSERT_TRUE(WordCompletion::Show(bare.control, {&bare.control, &other.control}));
    EXPECT_EQ(ShownEntry(bare), "größenordnung");
    bare.Send(Sci::SCI_AUTOCCOMPLETE);
    EXPECT_EQ(bare.TextWithCaret(), "int größenordnung|");
}

TEST(WordCompletion, NothingToOfferKeepsTheListClosed)
{
    BareControl bare{"alpha beta zz|"};
    EXPECT_FALSE(WordCompletion::Show(bare.control, {&bare.control}));
    BareControl number{"12345 12|"};
    EXPECT_FALSE(WordCompletion::Show(number.control, {&number.control}));
}

TEST(WordCompletion, OpensByItselfAtTheThirdCharacterOfAWordEnd)
{
    const struct { const char* text; bool opens; } cases[] = {
        {"ab|", false}, {"abc|", true}, {"größ|", false}, {"grö|", true}, {"abc|d", false}, {"abcd|", false}};
    for (const auto& c : cases) {
        BareControl bare{c.text};
        EXPECT_EQ(WordCompletion::ShouldOpenAutomatically(bare.control), c.opens) << c.text;
    }
}

struct IndentCase
{
    const char* name;
    const char* before; // the caret where Enter is pressed
    const char* after;
};

using BraceIndentTyping = ::testing::TestWithParam<IndentCase>;

TEST_P(BraceIndentTyping, AfterEnter)
{
    const IndentCase& c = GetParam();
    BareControl bare{QByteArray(c.before)};
    bare.Send(Sci::SCI_SETINDENT, 4);
    bare.Send(Sci::SCI_SETUSETABS, 0);
    bare.Send(Sci::SCI_NEWLINE);
    BraceIndent::AfterNewLine(bare.control);
    EXPECT_EQ(bare.TextWithCaret(), QByteArray(c.after));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BraceIndentTyping,
    ::testing::Values(IndentCase{"AfterOpener", "if (x) {|", "if (x) {\n    |"},
                      IndentCase{"NestedOpener", "  f {|", "  f {\n      |"},
                      IndentCase{"BetweenPair", "f {|}", "f {\n    |\n}"},
                      IndentCase{"OpenerThenSpaces", "f {  |", "f {  \n    |"},
                      IndentCase{"NoOpener", "f();|", "f();\n|"},
                      IndentCase{"ClosedOnTheLine", "f {}|", "f {}\n|"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(BraceIndent, IsOneUndoStepAfterTheLineEnd)
{
    BareControl bare{"f {|}"};
    bare.Send(Sci::SCI_NEWLINE);
    BraceIndent::AfterNewLine(bare.control);
    bare.Undo();
    EXPECT_EQ(bare.Text(), "f {\n}");
}

} // namespace
