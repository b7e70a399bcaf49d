// The line commands on a bare control: result text, what stays selected, and that one undo
// brings the text back.
#include "BareControl.h"

#include "editing/LineOperations.h"

#include <gtest/gtest.h>
#include <functional>

using namespace LineOperations;

namespace {

struct LineCase
{
    const char* name;
    const char* before; // "|" caret, "[...]" selection
    std::function<bool(QsciScintillaBase&)> run;
    const char* after;
    const char* selected; // nullptr: not checked
};

using LineOperationTest = ::testing::TestWithParam<LineCase>;

TEST_P(LineOperationTest, ChangesTheTextAsOneUndoStep)
{
    const LineCase& c = GetParam();
    BareControl bare{QByteArray(c.before)};
    const QByteArray original = bare.Text();
    c.run(bare.control);
    EXPECT_EQ(bare.Text(), QByteArray(c.after));
    if (c.selected) {
        EXPECT_EQ(bare.Selected(), QByteArray(c.selected));
    }
    bare.Undo();
    EXPECT_EQ(bare.Text(), original);
}

bool Up(QsciScintillaBase& c) { return MoveLines(c, -1); }
bool Down(QsciScintillaBase& c) { return MoveLines(c, 1); }
bool Dup(QsciScintillaBase& c) { Duplicate(c); return true; }
bool Join(QsciScintillaBase& c) { return JoinLines(c); }
bool Asc(QsciScintillaBase& c) { return SortLines(c, SortOrder::Ascending); }
bool Desc(QsciScintillaBase& c) { return SortLines(c, SortOrder::Descending); }
bool NoCase(QsciScintillaBase& c) { return SortLines(c, SortOrder::CaseInsensitive); }
bool Unique(QsciScintillaBase& c) { return SortLines(c, SortOrder::Unique); }

INSTANTIATE_TEST_SUITE_P(
    Move, LineOperationTest,
    ::testing::Values(
        LineCase{"UpMiddle", "a\nb|b\nc\n", Up, "bb\na\nc\n", nullptr},
        LineCase{"DownMiddle", "a\nb|b\nc\n", Down, "a\nc\nbb\n", nullptr},
        LineCase{"DownOntoLastLineWithoutEnd", "a\n|b\nc", Down, "a\nc\nb", nullptr},
        LineCase{"UpTheLastLineWithoutEnd", "a\nb\n|c", Up, "a\nc\nb", nullptr},
        LineCase{"SelectedBlockUp", "a\n[b\nc]\nd", Up, "b\nc\na\nd", "b\nc"},
        LineCase{"SelectionEndingAtLineStartLeavesThatLine", "a\n[b\n]c\nd", Down, "a\nc\nb\nd", "b\n"},
        LineCase{"CrLfLinesKeepTheirEnds", "a\r\n|b\r\n", Up, "b\r\na\r\n", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    DuplicateAndJoin, LineOperationTest,
    ::testing::Values(
        LineCase{"DuplicateCaretLine", "a\nb|b\nc", Dup, "a\nbb\nbb\nc", nullptr},
        LineCase{"DuplicateLastLineWithoutEnd", "a\n|b", Dup, "a\nb\nb", nullptr},
        LineCase{"DuplicateSelection", "a[bc]d", Dup, "abcbcd", nullptr},
        LineCase{"JoinCaretLineWithNext", "one|\n   two\nthree", Join, "one two\nthree", nullptr},
        LineCase{"JoinSelectedLines", "[a  \n\tb\nc]\nd", Join, "a b c\nd", nullptr},
        LineCase{"JoinOverAnEmptyLine", "[a\n\nb]", Join, "a b", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Sort, LineOperationTest,
    ::testing::Values(
        LineCase{"WholeDocumentWhenNothingSelected", "c\na\nb\n", Asc, "a\nb\nc\n", nullptr},
        LineCase{"FinalLineWithoutEndGetsOneOthersDoNot", "b\nc\na", Asc, "a\nb\nc", nullptr},
        LineCase{"OnlyTheSelectedLines", "z\n[c\nb\n]a", Asc, "z\nb\nc\na", nullptr},
        LineCase{"Descending", "b\nc\na\n", Desc, "c\nb\na\n", nullptr},
        LineCase{"CaseSensitivePutsCapitalsFirst", "b\nB\na\nA", Asc, "A\nB\na\nb", nullptr},
        LineCase{"CaseInsensitiveIsStable", "b\nB\na\nA", NoCase, "a\nA\nb\nB", nullptr},
        LineCase{"UniqueDropsRepeats", "b\na\nb\na\nc\n", Unique, "a\nb\nc\n", nullptr},
        LineCase{"UniqueKeepsCaseVariants", "a\nA\na", Unique, "A\na", nullptr},
        LineCase{"MultiByteLines", "\xc3\xa9t\xc3\xa9\nabc\n\xc3\xa0", Asc, "abc\n\xc3\xa0\n\xc3\xa9t\xc3\xa9", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

bool Block(QsciScintillaBase& c) { return ToggleBlockComment(c, "/*", "*/"); }
bool Markup(QsciScintillaBase& c) { return ToggleBlockComment(c, "<!--", "-->"); }

INSTANTIATE_TEST_SUITE_P(
    BlockComment, LineOperationTest,
    ::testing::Values(
        LineCase{"WrapsTheCaretLinesTextPastItsIndent", "  a = |b;\nc", Block, "  /* a = b; */\nc", "/* a = b; */"},
        LineCase{"UnwrapsTheCaretLine", "  /* a| */\nc", Block, "  a\nc", "a"},
        LineCase{"WrapsASelectionOverLines", "x[a\nb]y", Block, "x/* a\nb */y", nullptr},
        LineCase{"UnwrapsASelectionWrappedWithoutSpaces", "[/*a*/]", Block, "a", "a"},
        LineCase{"MarkupMarkers", "[<p>]", Markup, "<!-- <p> -->", nullptr}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(LineOperations, BlockCommentMarkersComeFromTheLexer)
{
    EXPECT_EQ(BlockCommentMarkers("cpp"), qMakePair(QByteArray("/*"), QByteArray("*/")));
    EXPECT_EQ(BlockCommentMarkers("hypertext").first, QByteArray("<!--"));
    EXPECT_TRUE(BlockCommentMarkers("python").first.isEmpty());
    BareControl bare{"a|"};
    EXPECT_FALSE(ToggleBlockComment(bare.control, "", ""));
    EXPECT_EQ(bare.Text(), QByteArray("a"));
}

struct EdgeCase
{
    const char* name;
    const char* before;
    std::function<bool(QsciScintillaBase&)> run;
};

using LineOperationAtTheEdge = ::testing::TestWithParam<EdgeCase>;

TEST_P(LineOperationAtTheEdge, RefusesAndLeavesTheTextAndUndoAlone)
{
    BareControl bare{QByteArray(GetParam().before)};
    const QByteArray original = bare.Text();
    EXPECT_FALSE(GetParam().run(bare.control));
    EXPECT_EQ(bare.Text(), original);
    EXPECT_FALSE(bare.Send(QsciScintillaBase::SCI_CANUNDO));
}

INSTANTIATE_TEST_SUITE_P(Edges, LineOperationAtTheEdge,
                         ::testing::Values(EdgeCase{"UpAtFirstLine", "a|a\nb", Up},
                                           EdgeCase{"DownAtLastLine", "a\nb|b", Down},
                                           EdgeCase{"DownWithSelectionReachingLastLine", "[a\nb]", Down},
                                           EdgeCase{"JoinAtLastLine", "a\n|b", Join},
                                           EdgeCase{"BlockCommentOnAnEmptyLine", "a\n  |\nb", Block}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(LineOperations, ReadOnlyTextIsNotChanged)
{
    BareControl bare{"b\n|a\nc"};
    bare.Send(QsciScintillaBase::SCI_SETREADONLY, 1);
    EXPECT_FALSE(MoveLines(bare.control, -1));
    EXPECT_FALSE(SortLines(bare.control, SortOrder::Ascending));
    Duplicate(bare.control);
    EXPECT_EQ(bare.Text(), QByteArray("b\na\nc"));
}

TEST(LineOperations, MovingKeepsTheCaretInItsColumnOnTheMovedLine)
{
    BareControl bare{"first\nsec|ond\nthird"};
    ASSERT_TRUE(MoveLines(bare.control, 1));
    EXPECT_EQ(bare.TextWithCaret(), QByteArray("first\nthird\nsec|ond"));
    ASSERT_TRUE(MoveLines(bare.control, -1));
    ASSERT_TRUE(MoveLines(bare.control, -1));
    EXPECT_EQ(bare.TextWithCaret(), QByteArray("sec|ond\nfirst\nthird"));
}

// A closed fold moves as one block, and a line next to it steps over the whole fold.
struct FoldCase
{
    const char* name;
    const char* caretLine;
    int direction;
    const char* after;
};

class FoldedMoveTest : public ::testing::TestWithParam<FoldCase>
{
protected:
    void SetUp() override
    {
        // Fold levels set by hand: "head" heads a fold of its two children.
        const int base = QsciScintillaBase::SC_FOLDLEVELBASE;
        const int levels[] = {base, base | QsciScintillaBase::SC_FOLDLEVELHEADERFLAG, base + 1, base + 1, base};
        for (int line = 0; line < 5; ++line)
            bare.Send(QsciScintillaBase::SCI_SETFOLDLEVEL, line, levels[line]);
        bare.Send(QsciScintillaBase::SCI_FOLDLINE, 1, QsciScintillaBase::SC_FOLDACTION_CONTRACT);
        ASSERT_FALSE(bare.Send(QsciScintillaBase::SCI_GETLINEVISIBLE, 2));
    }
    const QByteArray before{"top\nhead\n  x\n  y\nend"};
    BareControl bare{before};
};

TEST_P(FoldedMoveTest, MovesAsOneBlock)
{
    bare.Send(QsciScintillaBase::SCI_GOTOPOS, bare.Text().indexOf(GetParam().caretLine));
    ASSERT_TRUE(MoveLines(bare.control, GetParam().direction));
    EXPECT_EQ(bare.Text(), QByteArray(GetParam().after));
    bare.Undo();
    EXPECT_EQ(bare.Text(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Folds, FoldedMoveTest,
    ::testing::Values(FoldCase{"HeaderCarriesItsChildren", "head", -1, "head\n  x\n  y\ntop\nend"},
                      FoldCase{"LineUpStepsOverTheFold", "end", -1, "top\nend\nhead\n  x\n  y"},
                      FoldCase{"LineDownStepsOverTheFold", "top", 1, "head\n  x\n  y\ntop\nend"}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
