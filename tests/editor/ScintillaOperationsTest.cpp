// The wrapper's composite operations against a real control.
#include "editor/CMFCScintilla.h"
#include "app/CRegistryStore.h"
#include "EditorTestHelpers.h"
#include "TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <gtest/gtest.h>
#include <memory>

namespace {

using Sci = QsciScintillaBase;
using EditorTest::MessageRecorder;

class ScintillaOperationsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_editor = std::make_unique<CMFCScintilla>();
        m_editor->Setup();
        m_editor->SetCodePage(Sci::SC_CP_UTF8);
        m_editor->SetTabWidth(4);
        m_editor->SetUseTabs(false);
        m_editor->resize(600, 400);
    }

    void SetText(const QByteArray& text)
    {
        m_editor->ClearAll();
        m_editor->AddText(text.constData(), text.size());
        m_editor->EmptyUndoBuffer();
    }
    QByteArray Text() const { return m_editor->GetText(); }

    std::unique_ptr<CMFCScintilla> m_editor;
};

// Line-number margin -------------------------------------------------------------------

int ExpectedMarginWidth(CMFCScintilla& editor, int digits)
{
    const long nine = editor.SendScintilla(Sci::SCI_TEXTWIDTH, static_cast<unsigned long>(Sci::STYLE_LINENUMBER), "9");
    const int width = int(nine * digits + 4);
    return width < 37 ? 36 : width;
}

TEST_F(ScintillaOperationsTest, LineNumberMarginKeepsFourDigitsUpTo9999LinesAndGrowsAt10000)
{
    // A wide font so that five digits clear the 36-pixel floor.
    m_editor->SetFont(QStringLiteral("Monospace"), 16, false, false);
    SetText(QByteArray(9998, '\n'));
    ASSERT_EQ(m_editor->GetLineCount(), 9999);
    m_editor->SetLineNumberMargin(true);
    const long four = m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL);
    EXPECT_EQ(four, ExpectedMarginWidth(*m_editor, 4));

    m_editor->AddText("\n", 1);
    ASSERT_EQ(m_editor->GetLineCount(), 10000);
    m_editor->SetLineNumberMargin(true);
    const long five = m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL);
    EXPECT_EQ(five, ExpectedMarginWidth(*m_editor, 5));
    EXPECT_GT(five, four);

    m_editor->SetLineNumberMargin(false);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), 0);
}

TEST_F(ScintillaOperationsTest, ShortDocumentsStillGetTheMinimumMarginWidth)
{
    m_editor->SetFont(QStringLiteral("Monospace"), 6, false, false);
    SetText("one line");
    m_editor->SetLineNumberMargin(true);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), ExpectedMarginWidth(*m_editor, 4));
    EXPECT_GE(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 1UL), 36);
}

// Comment and uncomment ----------------------------------------------------------------

struct CommentCase
{
    const char* name;
    QByteArray text;
    QByteArray token;
    long selStart;
    long selEnd;
    bool comment;
    QByteArray expected;
};

std::ostream& operator<<(std::ostream& out, const CommentCase& c)
{
    return out << c.name;
}

class CommentLinesTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<CommentCase>
{
};

TEST_P(CommentLinesTest, ChangesTheSelectedLinesAsOneUndoStep)
{
    const CommentCase& c = GetParam();
    SetText(c.text);
    m_editor->SetSel(c.selStart, c.selEnd);
    m_editor->CommentLines(c.comment, c.token);
    EXPECT_EQ(Text(), c.expected);
    if (c.expected != c.text) {
        m_editor->Undo();
        EXPECT_EQ(Text(), c.text) << "one undo step restores the text";
        EXPECT_FALSE(m_editor->CanUndo());
    }
}

const QByteArray LongLine = QByteArray(1000, 'a');

INSTANTIATE_TEST_SUITE_P(
    Cases, CommentLinesTest,
    ::testing::Values(
        CommentCase{"caret_line_long_token", "abc\ndef", "//", 1, 1, true, "// abc\ndef"},
        CommentCase{"one_char_token_two_lines", "a\nb\nc", "#", 0, 3, true, "# a\n# b\nc"},
        CommentCase{"empty_token_inserts_a_blank", "abc\ndef", "", 0, 7, true, " abc\n def"},
        CommentCase{"selection_ending_at_column_0_leaves_that_line", "a\nb\nc", "//", 0, 4, true,
                    "// a\n// b\nc"},
        CommentCase{"selection_ending_inside_last_line_takes_it", "a\nbc\nd", "//", 0, 4, true,
                    "// a\n// bc\nd"},
        CommentCase{"single_line_selection_at_column_0_counts", "a\nb", "//", 0, 0, true, "// a\nb"},
        CommentCase{"uncomment_token_and_blank", "// abc\n// def", "//", 0, 13, false, "abc\ndef"},
        CommentCase{"uncomment_token_without_blank", "//abc", "//", 0, 0, false, "abc"},
        CommentCase{"uncomment_xx_removes_one_x", "xx", "x", 0, 0, false, "x"},
        CommentCase{"uncomment_skips_lines_without_token", "a\n# b\nc", "#", 0, 7, false, "a\nb\nc"},
        CommentCase{"uncomment_empty_token_removes_the_blank", " abc\ndef", "", 0, 8, false, "abc\ndef"},
        CommentCase{"uncomment_token_only_in_the_middle_is_kept", "a // b", "//", 0, 0, false, "a // b"},
        CommentCase{"lines_of_1000_characters_are_skipped", LongLine + "\nb", "//", 0, 1002, true,
                    LongLine + "\n// b"},
        CommentCase{"uncomment_column_0_rule", "// a\n// b\n// c", "//", 0, 10, false, "a\nb\n// c"}));

TEST_F(ScintillaOperationsTest, CommentThenUncommentWithTheKeptSelectionRoundTrips)
{
    SetText("alpha\nbeta\ngamma\n");
    m_editor->SetSel(0, 11); // to column 0 of "gamma"
    m_editor->CommentLines(true, "//");
    EXPECT_EQ(Text(), "// alpha\n// beta\ngamma\n");
    EXPECT_EQ(m_editor->GetSelectionStart(), 0);
    EXPECT_EQ(m_editor->GetSelectionEnd(), 17) << "still ends at the start of \"gamma\"";
    m_editor->CommentLines(false, "//");
    EXPECT_EQ(Text(), "alpha\nbeta\ngamma\n");
    EXPECT_EQ(m_editor->GetSelectionEnd(), 11);
}

TEST_F(ScintillaOperationsTest, CommentKeepsAPlainCaretBesideItsCharacter)
{
    SetText("    value");
    m_editor->GotoPos(6);
    m_editor->CommentLines(true, "#");
    EXPECT_EQ(Text(), "#     value");
    EXPECT_EQ(m_editor->GetCurrentPos(), 8);
    EXPECT_FALSE(m_editor->HasSelection());
    m_editor->CommentLines(false, "#");
    EXPECT_EQ(m_editor->GetCurrentPos(), 6);
}

TEST_F(ScintillaOperationsTest, BackwardSelectionKeepsTheCaretAtItsStart)
{
    SetText("a\nb\nc");
    m_editor->SetSel(3, 0); // anchor after "b", caret at the start
    m_editor->CommentLines(true, "//");
    EXPECT_EQ(Text(), "// a\n// b\nc");
    EXPECT_EQ(m_editor->GetCurrentPos(), 0);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETANCHOR), 9);
}

// Insertion ----------------------------------------------------------------------------

struct InsertCase
{
    const char* name;
    QByteArray text;
    long selStart;
    long selEnd;
    QByteArray insert;
    QByteArray expected;
    long caret;
};

std::ostream& operator<<(std::ostream& out, const InsertCase& c)
{
    return out << c.name;
}

class InsertWithSelectionTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<InsertCase>
{
};

TEST_P(InsertWithSelectionTest, PutsTheSelectionIntoTheMarker)
{
    const InsertCase& c = GetParam();
    SetText(c.text);
    m_editor->SetSel(c.selStart, c.selEnd);
    m_editor->InsertWithSelection(c.insert);
    EXPECT_EQ(Text(), c.expected);
    EXPECT_EQ(m_editor->GetCurrentPos(), c.caret);
    EXPECT_FALSE(m_editor->HasSelection());
}

INSTANTIATE_TEST_SUITE_P(
    Cases, InsertWithSelectionTest,
    ::testing::Values(
        InsertCase{"wraps_the_selection", "aXYb", 1, 3, "<b><%REPLACE%></b>", "a<b>XY</b>b", 10},
        InsertCase{"no_selection_caret_stays_before", "abcdef", 3, 3, "<b><%REPLACE%></b>", "abc<b></b>def", 3},
        InsertCase{"marker_twice", "x", 0, 1, "[<%REPLACE%>|<%REPLACE%>]", "[x|x]", 5},
        InsertCase{"marker_twice_no_selection", "ab", 1, 1, "[<%REPLACE%>|<%REPLACE%>]", "a[|]b", 1},
        InsertCase{"no_marker_replaces_the_selection", "a123b", 1, 4, "<BR/>", "a<BR/>b", 6},
        InsertCase{"replacement_is_not_scanned_again", "<%REPLACE%>", 0, 11, "(<%REPLACE%>)", "(<%REPLACE%>)", 13},
        InsertCase{"marker_case_matters", "s", 0, 1, "<%replace%>", "<%replace%>", 11},
        InsertCase{"line_ends_of_the_selection_stay", "l1\r\nl2", 0, 6, "<p><%REPLACE%></p>", "<p>l1\r\nl2</p>",
                   13}));

TEST_F(ScintillaOperationsTest, DateAndTimeGoInInTheLocaleFormsWithTheCaretBefore)
{
    SetText("[]");
    m_editor->GotoPos(1);
    const QDateTime before = QDateTime::currentDateTime();
    m_editor->InsertDate();
    const QDateTime after = QDateTime::currentDateTime();
    const QByteArray text = Text();
    const QByteArray date = CMFCScintilla::DateText(before).toUtf8();
    ASSERT_FALSE(date.isEmpty());
    EXPECT_TRUE(text == "[" + date + "]" || text == "[" + CMFCScintilla::DateText(after).toUtf8() + "]") << text.constData();
    EXPECT_EQ(m_editor->GetCurrentPos(), 1);

    SetText("");
    m_editor->InsertTime();
    const QByteArray time = Text();
    EXPECT_FALSE(time.isEmpty());
    EXPECT_FALSE(time.contains("UTC")) << "no time zone in the inserted time";
}

TEST(ScintillaTimeText, HasSecondsAndNoZone)
{
    const QDateTime when(QDate(2024, 3, 9), QTime(14, 5, 7));
    const QString text = CMFCScintilla::TimeText(when);
    EXPECT_TRUE(text.contains(QStringLiteral("07"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("05"))) << text.toStdString();
}

// Caret and selection operations --------------------------------------------------------

TEST_F(ScintillaOperationsTest, IndentWithoutSelectionMovesTheWholeLine)
{
    SetText("first\nabc");
    m_editor->GotoPos(8); // between "b" and "c"
    m_editor->Indent();
    EXPECT_EQ(Text(), "first\n    abc");
    EXPECT_EQ(m_editor->GetCurrentPos(), 10) << "the caret went to column 0 before the tab";
}

TEST_F(ScintillaOperationsTest, IndentWithSelectionIndentsEveryLine)
{
    SetText("a\nb\nc");
    m_editor->SetSel(0, 3);
    m_editor->Indent();
    EXPECT_EQ(Text(), "    a\n    b\nc");
}

struct SelectLineCase
{
    const char* name;
    QByteArray text;
    long line;
    QByteArray selected;
};

std::ostream& operator<<(std::ostream& out, const SelectLineCase& c)
{
    return out << c.name;
}

class SelectLineTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<SelectLineCase>
{
};

TEST_P(SelectLineTest, SelectsTheLineWithoutItsEnd)
{
    const SelectLineCase& c = GetParam();
    SetText(c.text);
    m_editor->SelectLine(c.line);
    EXPECT_EQ(m_editor->GetSelText(), c.selected);
}

INSTANTIATE_TEST_SUITE_P(Cases, SelectLineTest,
                         ::testing::Values(SelectLineCase{"first_lf", "ab\ncd", 0, "ab"},
                                           SelectLineCase{"last_line_to_end_of_text", "ab\ncd", 1, "cd"},
                                           SelectLineCase{"crlf", "ab\r\ncd\r\n", 0, "ab"},
                                           SelectLineCase{"empty_last_line", "ab\n", 1, ""},
                                           SelectLineCase{"cr_only", "ab\rcd", 1, "cd"}));

TEST_F(ScintillaOperationsTest, SelectWordAndDeleteWordWorkOnTheWordAtTheCaret)
{
    SetText("hello brave world");
    m_editor->SelectWord(8);
    EXPECT_EQ(m_editor->GetSelText(), "brave");

    m_editor->GotoPos(8);
    m_editor->DeleteWord();
    EXPECT_EQ(Text(), "hello  world");
}

TEST_F(ScintillaOperationsTest, GetCharAtReadsTheTargetEndByDefault)
{
    SetText("abc\xC3\xA9");
    m_editor->SetTargetStart(0);
    m_editor->SetTargetEnd(1);
    EXPECT_EQ(m_editor->GetCharAt(), 'b');
    EXPECT_EQ(m_editor->GetCharAt(0), 'a');
    EXPECT_EQ(m_editor->GetCharAt(3), 0xC3) << "bytes read unsigned";
}

// Braces and auto indent -----------------------------------------------------------------

struct BraceCase
{
    const char* name;
    QByteArray text;
    long caret;
    bool sloppy;
    long brace;
    long partner;
};

std::ostream& operator<<(std::ostream& out, const BraceCase& c)
{
    return out << c.name;
}

class BraceTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<BraceCase>
{
};

TEST_P(BraceTest, FindsTheBraceBesideTheCaretAndItsPartner)
{
    const BraceCase& c = GetParam();
    SetText(c.text);
    m_editor->GotoPos(c.caret);
    const CMFCScintilla::BraceMatch match = m_editor->FindMatchingBrace(c.sloppy);
    EXPECT_EQ(match.brace, c.brace);
    EXPECT_EQ(match.partner, c.partner);
    EXPECT_FALSE(match.colon);
}

INSTANTIATE_TEST_SUITE_P(Cases, BraceTest,
                         ::testing::Values(BraceCase{"before_caret", "f(a[b]c)", 2, false, 1, 7},
                                           BraceCase{"closing_before_caret", "f(a[b]c)", 8, false, 7, 1},
                                           BraceCase{"square", "f(a[b]c)", 6, false, 5, 3},
                                           BraceCase{"after_caret_needs_sloppy", "f(a)", 1, false, -1, -1},
                                           BraceCase{"after_caret_sloppy", "f(a)", 1, true, 1, 3},
                                           BraceCase{"before_wins_over_after", "()", 1, true, 0, 1},
                                           BraceCase{"unmatched", "{ a", 1, false, 0, -1},
                                           BraceCase{"across_lines", "{\n  x\n}", 1, false, 0, 6},
                                           BraceCase{"no_brace", "abc", 2, true, -1, -1},
                                           BraceCase{"caret_at_start", "(a)", 0, false, -1, -1}));

struct GuideCase
{
    const char* name;
    QByteArray text;
    long caret;
    long guide;
};

std::ostream& operator<<(std::ostream& out, const GuideCase& c)
{
    return out << c.name;
}

class HighlightGuideTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<GuideCase>
{
};

TEST_P(HighlightGuideTest, GuideStandsOnTheSmallerColumnOfThePair)
{
    const GuideCase& c = GetParam();
    SetText(c.text);
    m_editor->SendScintilla(Sci::SCI_SETHIGHLIGHTGUIDE, 9UL);
    m_editor->GotoPos(c.caret);
    m_editor->HighlightBrace();
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETHIGHLIGHTGUIDE), c.guide);
}

INSTANTIATE_TEST_SUITE_P(Cases, HighlightGuideTest,
                         ::testing::Values(GuideCase{"indented_block", "    {\n        x;\n    }", 23, 4},
                                           GuideCase{"opening_brace", "  {\n  }", 3, 2},
                                           GuideCase{"pair_on_one_line", "ab(cd)", 6, 2},
                                           GuideCase{"lone_brace_clears_the_guide", "    {\n", 5, 0},
                                           GuideCase{"no_brace_clears_the_guide", "    x", 5, 0}));

TEST_F(ScintillaOperationsTest, PythonColonOpensABlockUpToItsLastChild)
{
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "python");
    m_editor->SetFolding(true);
    SetText("if x:\n    y = 1\n    z = 2\nw = 3\n");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    ASSERT_EQ(m_editor->GetStyleAt(4) & 31, 10) << "the lexer styles the colon as an operator";
    m_editor->GotoPos(5);
    const CMFCScintilla::BraceMatch match = m_editor->FindMatchingBrace(false);
    EXPECT_TRUE(match.colon);
    EXPECT_EQ(match.brace, 4);
    EXPECT_EQ(match.partner, m_editor->GetLineEndPosition(2));

    // The same colon in plain text is no brace.
    m_editor->SendScintilla(Sci::SCI_SETLEXERLANGUAGE, 0UL, "null");
    m_editor->SendScintilla(Sci::SCI_COLOURISE, 0UL, -1L);
    EXPECT_EQ(m_editor->FindMatchingBrace(false).brace, -1);
}

TEST_F(ScintillaOperationsTest, OnlyTheSixBracketsAreBraces)
{
    for (char c : QByteArray("[](){}"))
        EXPECT_TRUE(CMFCScintilla::IsBrace(c)) << c;
    for (char c : QByteArray("<>:\"'a \0", 8))
        EXPECT_FALSE(CMFCScintilla::IsBrace(c)) << int(c);
}

struct AutoIndentCase
{
    const char* name;
    QByteArray before; // the caret stands at its end
    int eolMode;
    int typed;
    bool indentAfterBrace;
    QByteArray expected;
    long caret; // -1: at the end
};

std::ostream& operator<<(std::ostream& out, const AutoIndentCase& c)
{
    return out << c.name;
}

class AutoIndentTest : public ScintillaOperationsTest, public ::testing::WithParamInterface<AutoIndentCase>
{
};

// The control has already inserted the typed character when it reports it; the test
// does the same and then calls the handler.
TEST_P(AutoIndentTest, IndentsTheNewLine)
{
    const AutoIndentCase& c = GetParam();
    SetText(c.before);
    m_editor->SetEOLMode(c.eolMode);
    m_editor->GotoPos(m_editor->GetLength());
    const char typed = char(c.typed);
    m_editor->AddText(&typed, 1);
    m_editor->AutoIndent(c.typed, c.indentAfterBrace);
    EXPECT_EQ(Text(), c.expected);
    EXPECT_EQ(m_editor->GetCurrentPos(), c.caret < 0 ? m_editor->GetLength() : c.caret);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, AutoIndentTest,
    ::testing::Values(
        AutoIndentCase{"keeps_the_indent_lf", "    foo", 2, '\n', false, "    foo\n    ", -1},
        AutoIndentCase{"keeps_the_indent_crlf", "  foo\r", 0, '\n', false, "  foo\r\n  ", -1},
        AutoIndentCase{"cr_mode_triggers_on_cr", "  foo", 1, '\r', false, "  foo\r  ", -1},
        AutoIndentCase{"lf_does_nothing_in_cr_mode", "  foo", 1, '\n', false, "  foo\n", -1},
        AutoIndentCase{"unmatched_brace_adds_a_step", "if (x) {", 2, '\n', true, "if (x) {\n    ", -1},
        AutoIndentCase{"unmatched_brace_ignored_without_the_flag", "if (x) {", 2, '\n', false, "if (x) {\n", -1},
        AutoIndentCase{"matched_brace_adds_nothing", "  { }", 2, '\n', true, "  { }\n  ", -1},
        AutoIndentCase{"last_open_brace_counts", "} {", 2, '\n', true, "} {\n    ", -1},
        AutoIndentCase{"empty_lines_are_passed", "  a\n", 2, '\n', false, "  a\n\n  ", -1},
        AutoIndentCase{"closing_brace_takes_the_partner_indent", "    {\n        x;\n        ", 2, '}', true,
                       "    {\n        x;\n    }", -1},
        AutoIndentCase{"closing_brace_on_the_same_line_changes_nothing", "  {", 2, '}', true, "  {}", -1},
        AutoIndentCase{"other_characters_do_nothing", "    a", 2, 'b', true, "    ab", -1}));

// Bookmarks -----------------------------------------------------------------------------

class BookmarkTest : public ScintillaOperationsTest
{
protected:
    void SetUp() override
    {
        ScintillaOperationsTest::SetUp();
        SetText("0\n1\n2\n3\n4\n5\n6\n7\n8\n9");
    }
    long Line() const { return m_editor->GetCurrentLine(); }
};

TEST_F(BookmarkTest, ToggleSetsAndClearsOnlyTheBookmarkMarker)
{
    m_editor->GotoLine(4);
    m_editor->ToggleBookmark();
    EXPECT_TRUE(m_editor->HasBookmark(4));
    m_editor->SendScintilla(Sci::SCI_MARKERADD, 6UL, 15L);
    m_editor->ToggleBookmark(6);
    m_editor->MarkerDeleteAll();
    EXPECT_FALSE(m_editor->HasBookmark(4));
    EXPECT_FALSE(m_editor->HasBookmark(6));
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_MARKERGET, 6UL), 1 << 15) << "other markers stay";
    m_editor->ToggleBookmark(4);
    m_editor->ToggleBookmark(4);
    EXPECT_FALSE(m_editor->HasBookmark(4));
}

TEST_F(BookmarkTest, NextAndPreviousWrapAroundTheEnds)
{
    m_editor->ToggleBookmark(2);
    m_editor->ToggleBookmark(7);
    m_editor->GotoLine(3);
    TestSupport::ModalAnswerer messages;
    EXPECT_TRUE(m_editor->NextBookmark(true, false));
    EXPECT_EQ(Line(), 7);
    EXPECT_TRUE(m_editor->NextBookmark(true, false));
    EXPECT_EQ(Line(), 2) << "forward wraps to the top";
    EXPECT_TRUE(m_editor->NextBookmark(false, false));
    EXPECT_EQ(Line(), 7) << "backward wraps to the bottom";
    EXPECT_TRUE(m_editor->NextBookmark(false, false));
    EXPECT_EQ(Line(), 2);
    EXPECT_TRUE(messages.Texts().isEmpty());
}

TEST_F(BookmarkTest, BookmarkOnTheLastLineIsFoundFromTheFirst)
{
    m_editor->ToggleBookmark(9);
    m_editor->GotoLine(0);
    EXPECT_TRUE(m_editor->NextBookmark(false, false));
    EXPECT_EQ(Line(), 9);
}

TEST_F(BookmarkTest, NoOtherBookmarkSaysSoWithTheExclamationIcon)
{
    for (bool withOwnLine : {false, true}) {
        m_editor->MarkerDeleteAll();
        m_editor->GotoLine(5);
        if (withOwnLine)
            m_editor->ToggleBookmark(5);
        for (bool forward : {true, false}) {
            MessageRecorder messages;
            EXPECT_FALSE(m_editor->NextBookmark(forward, false));
            ASSERT_EQ(messages.Texts(), QStringList{QStringLiteral("No more bookmarks have been found")});
            EXPECT_EQ(messages.Icons().value(0), int(QMessageBox::Warning));
            EXPECT_EQ(Line(), 5);
        }
    }
}

TEST_F(BookmarkTest, AnchorExtendsTheSelection)
{
    m_editor->ToggleBookmark(6);
    m_editor->GotoLine(1);
    const long anchor = m_editor->GetCurrentPos();
    EXPECT_TRUE(m_editor->NextBookmark(true, true));
    EXPECT_EQ(m_editor->GetSelectionStart(), anchor);
    EXPECT_EQ(m_editor->GetSelectionEnd(), m_editor->PositionFromLine(6));
}

TEST_F(BookmarkTest, JumpsAreReported)
{
    m_editor->ToggleBookmark(8);
    m_editor->GotoLine(1);
    QList<QPair<long, long>> jumps;
    QObject::connect(m_editor.get(), &CMFCScintilla::caretJumped,
                     [&](long from, long to) { jumps.append({from, to}); });
    m_editor->NextBookmark(true, false);
    m_editor->JumpToLine(3);
    ASSERT_EQ(jumps.size(), 2);
    EXPECT_EQ(jumps[0], qMakePair(m_editor->PositionFromLine(1), m_editor->PositionFromLine(8)));
    EXPECT_EQ(jumps[1], qMakePair(m_editor->PositionFromLine(8), m_editor->PositionFromLine(3)));
}

// Clipboard and search seed ---------------------------------------------------------------

TEST_F(ScintillaOperationsTest, CopyAppendAddsTheSelectionToTheClipboardText)
{
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("old "));
    SetText("keep \xC3\xA9t\xC3\xA9 here");
    m_editor->SetSel(5, 10);
    EXPECT_TRUE(m_editor->CopyAppend());
    EXPECT_EQ(clipboard->text(), QStringLiteral("old \u00E9t\u00E9"));
    EXPECT_EQ(Text(), "keep \xC3\xA9t\xC3\xA9 here");

    m_editor->SetSel(0, 5);
    m_editor->CutAppend();
    EXPECT_EQ(clipboard->text(), QStringLiteral("old \u00E9t\u00E9keep "));
    EXPECT_EQ(Text(), "\xC3\xA9t\xC3\xA9 here");
}

TEST_F(ScintillaOperationsTest, CopyAppendWithoutSelectionChangesNothing)
{
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->setText(QStringLiteral("old"));
    SetText("text");
    m_editor->GotoPos(2);
    EXPECT_FALSE(m_editor->CopyAppend());
    m_editor->CutAppend();
    EXPECT_EQ(clipboard->text(), QStringLiteral("old"));
    EXPECT_EQ(Text(), "text");
}

TEST_F(ScintillaOperationsTest, CutAppendToAnEmptyClipboardKeepsTheCutText)
{
    QClipboard* clipboard = QApplication::clipboard();
    clipboard->clear();
    SetText("abc");
    m_editor->SetSel(0, 2);
    m_editor->CutAppend();
    EXPECT_EQ(clipboard->text(), QStringLiteral("ab"));
    EXPECT_EQ(Text(), "c");
}

TEST_F(ScintillaOperationsTest, SearchSeedKeepsTheSelectionAndFallsBackToTheKeptOne)
{
    TestSupport::ClearSettings();
    SetText("find me");
    m_editor->GotoPos(0);
    EXPECT_EQ(m_editor->GetSearchSeed(), QString());

    m_editor->SetSel(0, 4);
    EXPECT_EQ(m_editor->GetSearchSeed(), QStringLiteral("find"));
    EXPECT_EQ(CRegistryStore().GetProfileString(QStringLiteral("FindReplace"), QStringLiteral("LastSelectedValue")),
              QStringLiteral("find"));
    m_editor->GotoPos(6);
    EXPECT_EQ(m_editor->GetSearchSeed(), QStringLiteral("find"));
}

TEST_F(ScintillaOperationsTest, SearchSeedCutsLongSelectionsTo99Bytes)
{
    struct Case
    {
        int length;
        int expected;
    };
    for (const Case c : {Case{100, 100}, Case{101, 99}, Case{500, 99}}) {
        SetText(QByteArray(c.length, 'q'));
        m_editor->SelectAll();
        EXPECT_EQ(m_editor->GetSearchSeed().size(), c.expected) << c.length;
    }
    // A two-byte character across the cut is left out whole.
    SetText(QByteArray(98, 'q') + "\xC3\xA9" + QByteArray(10, 'q'));
    m_editor->SelectAll();
    EXPECT_EQ(m_editor->GetSearchSeed(), QString(98, QLatin1Char('q')));
}

// Folding ------------------------------------------------------------------------------

TEST_F(ScintillaOperationsTest, FoldingSetsMarkersAndMarginState)
{
    m_editor->SetFolding(true);
    EXPECT_EQ(quint32(m_editor->SendScintilla(Sci::SCI_GETMARGINMASKN, 2UL)), quint32(Sci::SC_MASK_FOLDERS));
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINSENSITIVEN, 2UL), 1);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETPROPERTYINT, "fold", 0L), 1);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETPROPERTYINT, "fold.compact", 0L), 1);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_MARKERSYMBOLDEFINED, 31UL), long(Sci::SC_MARK_BOXMINUS));
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_MARKERSYMBOLDEFINED, 27UL), long(Sci::SC_MARK_TCORNER));

    const long width = m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 2UL);
    m_editor->SetFolding(false);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINMASKN, 2UL), 15);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINSENSITIVEN, 2UL), 0);
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETPROPERTYINT, "fold", 0L), 1) << "never set back";
    EXPECT_EQ(m_editor->SendScintilla(Sci::SCI_GETMARGINWIDTHN, 2UL), width);
}

TEST_F(ScintillaOperationsTest, EnsureRangeVisibleUnfoldsEveryLineBetween)
{
    SetText("a\nb\nc\nd\ne");
    // Line 0 heads a block of lines 1 to 3.
    const long base = Sci::SC_FOLDLEVELBASE;
    m_editor->SendScintilla(Sci::SCI_SETFOLDLEVEL, 0UL, base | Sci::SC_FOLDLEVELHEADERFLAG);
    for (unsigned long line = 1; line <= 3; ++line)
        m_editor->SendScintilla(Sci::SCI_SETFOLDLEVEL, line, base + 1);
    m_editor->SendScintilla(Sci::SCI_SETFOLDLEVEL, 4UL, base);
    EXPECT_FALSE(m_editor->ToggleFold(0));
    ASSERT_FALSE(m_editor->GetLineVisible(2));
    m_editor->EnsureRangeVisible(m_editor->PositionFromLine(3), m_editor->PositionFromLine(1));
    for (long line = 1; line <= 3; ++line)
        EXPECT_TRUE(m_editor->GetLineVisible(line)) << line;
    EXPECT_TRUE(m_editor->GetFoldExpanded(0));
}

} // namespace
