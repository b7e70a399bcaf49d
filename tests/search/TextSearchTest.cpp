#include "TestSupport.h"

#include "editor/CMFCScintilla.h"
#include "editor/CTextSearch.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Range = std::pair<long, long>;
using Lines = std::vector<long>;

// A real control in UTF-8 with the editor's own setup.
class TextSearchTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_editor = std::make_unique<CMFCScintilla>();
        m_editor->Setup();
        m_editor->SetCodePage(QsciScintillaBase::SC_CP_UTF8);
    }
    void SetText(const QByteArray& text, long selStart = 0, long selEnd = -1)
    {
        m_editor->SendScintilla(QsciScintillaBase::SCI_SETTEXT, 0UL, text.constData());
        m_editor->EmptyUndoBuffer();
        m_editor->SetSel(selStart, selEnd < 0 ? selStart : selEnd);
    }
    QByteArray Text() const { return m_editor->GetText(); }
    Range Selection() const { return {m_editor->GetSelectionStart(), m_editor->GetSelectionEnd()}; }
    void Mark(long line)
    {
        m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERADD, static_cast<unsigned long>(line),
                                long(CMFCScintilla::BookmarkMarker));
    }
    Lines MarkedLines() const
    {
        Lines lines;
        for (long line = 0; line < m_editor->GetLineCount(); ++line)
            if (m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERGET, static_cast<unsigned long>(line))
                & (1 << CMFCScintilla::BookmarkMarker))
                lines.push_back(line);
        return lines;
    }
    CTextSearch Search(bool matchCase = false, bool wholeWord = false, bool regExp = false)
    {
        CTextSearch search(m_editor.get());
        search.SetSearchFlags(matchCase, wholeWord, regExp);
        return search;
    }

    std::unique_ptr<CMFCScintilla> m_editor;
};

// FindText: where the search starts, direction, wrap, options and expressions.
struct FindCase
{
    const char* name;
    const char* text;
    long selStart, selEnd;
    const char* find;
    bool matchCase, wholeWord, regExp, up, wrap;
    long expected, expectedSelStart, expectedSelEnd;
};

class FindTextTest : public TextSearchTest, public ::testing::WithParamInterface<FindCase>
{
};

TEST_P(FindTextTest, FindsAndSelects)
{
    const FindCase& c = GetParam();
    SetText(c.text, c.selStart, c.selEnd);
    EXPECT_EQ(Search(c.matchCase, c.wholeWord, c.regExp).FindText(QString::fromUtf8(c.find), c.up, c.wrap),
              c.expected);
    EXPECT_EQ(Selection(), Range(c.expectedSelStart, c.expectedSelEnd));
    EXPECT_EQ(Text(), QByteArray(c.text)) << "a search never changes the text";
}

const FindCase findCases[] = {
    {"SelectedMatchNotFoundAgain", "abc abc abc", 0, 3, "abc", false, false, false, false, false, 4, 4, 7},
    {"DownMissWithoutWrapKeepsSelection", "abc abc abc", 8, 11, "abc", false, false, false, false, false, -1, 8, 11},
    {"DownMissWraps", "abc abc abc", 8, 11, "abc", false, false, false, false, true, 0, 0, 3},
    {"OnlyMatchFoundAgainByWrap", "xx abc yy", 3, 6, "abc", false, false, false, false, true, 3, 3, 6},
    {"UpFindsBeforeSelection", "abc abc abc", 4, 7, "abc", false, false, false, true, false, 0, 0, 3},
    {"UpStopsAtTheTop", "abc abc abc", 0, 3, "abc", false, false, false, true, false, -1, 0, 3},
    {"UpWrapsToTheEnd", "abc abc abc", 0, 3, "abc", false, false, false, true, true, 8, 8, 11},
    {"EmptyTextFindsNothing", "abc", 0, 0, "", false, false, false, false, true, -1, 0, 0},
    {"MatchCase", "ABC abc", 0, 0, "abc", true, false, false, false, false, 4, 4, 7},
    {"WholeWord", "abcd xabc abc", 0, 0, "abc", false, true, false, false, false, 10, 10, 13},
    {"RegExpDigits", "a1 b22", 0, 0, "\\d\\d", false, false, true, false, false, 4, 4, 6},
    {"RegExpWordClass", "  foo_1 bar", 0, 0, "\\w+", false, false, true, false, false, 2, 2, 7},
    {"RegExpSpaceClass", "ab\tcd", 0, 0, "\\s", false, false, true, false, false, 2, 2, 3},
    {"RegExpWordBoundary", "concat cat", 0, 0, "\\bcat\\b", false, false, true, false, false, 7, 7, 10},
    {"RegExpUpFindsLastBefore", "a1 a2 a3", 8, 8, "a\\d", false, false, true, true, false, 6, 6, 8},
    {"RegExpWholeWord", "cats cat", 0, 0, "cat|dog", false, true, true, false, false, 5, 5, 8},
    {"InvalidOpenGroup", "a(b", 0, 0, "(", false, false, true, false, true, -1, 0, 0},
    {"InvalidRepeatRange", "aa", 0, 0, "a{2,1}", false, false, true, true, true, -1, 0, 0},
    {"RegExpDotIsOneUtf8Character", "na\xc3\xafve caf\xc3\xa9 x", 0, 0, "caf.", false, false, true, false, false, 7, 7, 12},
    {"RegExpOffsetsPastBytesThatAreNotUtf8", "\xff\xfe ab", 0, 0, "a(b)", false, false, true, false, false, 3, 3, 5},
};

INSTANTIATE_TEST_SUITE_P(Cases, FindTextTest, ::testing::ValuesIn(findCases),
                         [](const auto& info) { return std::string(info.param.name); });

// MarkAll sets the bookmark of each match's line, however many matches the line holds.
TEST_F(TextSearchTest, MarkAllSetsEachMatchLineAndEnds)
{
    // Line 1 has two matches; line 4 doesn't match the case; line 5 was marked already
    // and stays marked.
    SetText("foo\nbar foo foo\nbaz\nfoo\nFOO\nfoo", 9);
    Mark(5);
    EXPECT_TRUE(Search(true).MarkAll(QStringLiteral("foo")));
    EXPECT_EQ(MarkedLines(), (Lines{0, 1, 3, 5}));
    EXPECT_EQ(Selection(), Range(9, 9)) << "the caret goes back where it was";
    EXPECT_TRUE(Search(true).MarkAll(QStringLiteral("foo")));
    EXPECT_EQ(MarkedLines(), (Lines{0, 1, 3, 5})) << "a second Mark All keeps the marks";

    EXPECT_FALSE(Search().MarkAll(QStringLiteral("xyz")));
    EXPECT_FALSE(Search().MarkAll(QString()));
    EXPECT_EQ(MarkedLines(), (Lines{0, 1, 3, 5}));

    // From the caret "b" is found at 1, from the top "ab" at 0: the first match never
    // comes round again, yet the loop must end.
    SetText("ab\n", 1);
    EXPECT_TRUE(Search(false, false, true).MarkAll(QStringLiteral("ab|b")));
    EXPECT_EQ(MarkedLines(), Lines{0});
    SetText("a\nb\nc");
    EXPECT_TRUE(Search(false, false, true).MarkAll(QStringLiteral("x*")));
    EXPECT_EQ(Text(), QByteArray("a\nb\nc"));
}

// ReplaceAll over the document or the whole lines the selection touches.
struct ReplaceAllCase
{
    const char* name;
    const char* text;
    long selStart, selEnd;
    bool selectionOnly;
    const char* find;
    const char* replace;
    bool regExp, tags;
    const char* expected;
    long count, expectedSelStart, expectedSelEnd;
};

class ReplaceAllTest : public TextSearchTest, public ::testing::WithParamInterface<ReplaceAllCase>
{
};

TEST_P(ReplaceAllTest, ReplacesAndCounts)
{
    const ReplaceAllCase& c = GetParam();
    SetText(c.text, c.selStart, c.selEnd);
    EXPECT_EQ(Search(false, false, c.regExp)
                  .ReplaceAll(QString::fromUtf8(c.find), QString::fromUtf8(c.replace), c.selectionOnly, c.tags),
              c.count);
    EXPECT_EQ(Text(), QByteArray(c.expected));
    EXPECT_EQ(Selection(), Range(c.expectedSelStart, c.expectedSelEnd));
}

const ReplaceAllCase replaceAllCases[] = {
    {"DocumentIgnoresSelection", "a b a", 2, 3, false, "a", "c", false, false, "c b c", 2, 5, 5},
    {"GrowingReplacementNotSearchedAgain", "aaa", 0, 0, false, "a", "aa", false, false, "aaaaaa", 3, 6, 6},
    {"Shrinking", "a,b,,c", 0, 0, false, ",", "", false, false, "abc", 3, 2, 2},
    {"NoMatchIsZeroAndLeavesAlone", "abc", 1, 2, false, "x", "y", false, false, "abc", 0, 1, 2},
    {"HalfSelectedLineReplacesWholeLine", "foo foo\nfoo foo\nfoo", 5, 6, true, "foo", "bar", false, false, "bar bar\nfoo foo\nfoo", 2, 0, 8},
    {"SelectionAcrossTwoLines", "foo\nfoo foo\nfoo\nfoo", 5, 13, true, "foo", "x", false, false, "foo\nx x\nx\nfoo", 3, 4, 10},
    {"SelectionOnLastLine", "foo\nfoo foo", 5, 6, true, "foo", "ab", false, false, "foo\nab ab", 2, 4, 9},
    {"EmptySelectionInSelectionScope", "foo", 1, 1, true, "foo", "bar", false, false, "foo", CTextSearch::ScopeEmpty, 1, 1},
    {"LineStarts", "a\nb\n\nc", 0, 0, false, "^", "> ", true, false, "> a\n> b\n> \n> c", 4, 14, 14},
    {"LineStartsInSelection", "a\nb\nc", 2, 3, true, "^", "> ", true, false, "a\n> b\nc", 1, 2, 6},
    {"LineEnds", "a\nb\n\nc", 0, 0, false, "$", ";", true, false, "a;\nb;\n;\nc;", 4, 10, 10},
    {"LineEndsCrLf", "a\r\n\r\nb", 0, 0, false, "$", ";", true, false, "a;\r\n;\r\nb;", 3, 9, 9},
    {"LineStartsCrLf", "a\r\n\r\nb", 0, 0, false, "^", "#", true, false, "#a\r\n#\r\n#b", 3, 9, 9},
    {"CaretIsLiteralWithoutExpressions", "a^b^", 0, 0, false, "^", "-", false, false, "a-b-", 2, 4, 4},
    {"ZeroLengthMatchesStepOn", "ab", 0, 0, false, "x*", "-", true, false, "-a-b", 2, 4, 4},
    {"TrimTrailingBlanks", "a  \nb\t\nc \t", 0, 0, false, "[ \\t]+$", "", true, true, "a\nb\nc", 3, 5, 5},
    {"ExpressionTagsExpanded", "k=v a=b", 0, 0, false, "(\\w)=(\\w)", "\\2=\\1", true, true, "v=k b=a", 2, 7, 7},
    {"ExpressionTagsLiteralFromTheDialog", "k=v", 0, 0, false, "(\\w)=(\\w)", "\\2=\\1", true, false, "\\2=\\1", 1, 5, 5},
    {"InvalidExpressionReplacesNothing", "a(b", 0, 0, false, "(", "x", true, false, "a(b", 0, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Cases, ReplaceAllTest, ::testing::ValuesIn(replaceAllCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TextSearchTest, ReplaceAllIsOneUndoStepAndKeepsBookmarks)
{
    SetText("x1\nx2\nx3\nx4");
    Mark(2);
    const long mask = m_editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("x"), QStringLiteral("yy"), false, false), 4);
    EXPECT_EQ(Text(), QByteArray("yy1\nyy2\nyy3\nyy4"));
    EXPECT_EQ(MarkedLines(), Lines{2});
    EXPECT_EQ(m_editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK), mask)
        << "change notifications are back on";
    m_editor->Undo();
    EXPECT_EQ(Text(), QByteArray("x1\nx2\nx3\nx4"));
    EXPECT_FALSE(m_editor->CanUndo());
}

// Notifications are held back during the loop: the line number margin must still widen.
TEST_F(TextSearchTest, ReplaceAllAddingLinesWidensTheLineNumbers)
{
    SetText(QByteArray(5000, ','));
    m_editor->SetLineNumberMargin(true);
    const long before = m_editor->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral(","), QStringLiteral(",\n\n\n"), false, false), 5000);
    EXPECT_EQ(m_editor->GetLineCount(), 15001);
    EXPECT_GT(m_editor->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL), before);
}

TEST_F(TextSearchTest, ReplaceAllOnReadOnlyTextChangesNothingAndEnds)
{
    SetText("aaa");
    m_editor->SetReadOnly(true);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("a"), QStringLiteral("b"), false, false), 0);
    // An empty replacement the control refuses must not keep finding the same match.
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("a"), QString(), false, false), 0);
    EXPECT_EQ(Text(), QByteArray("aaa"));
}

TEST_F(TextSearchTest, SeedIsTheSelectionCutToWholeCharactersAndRemembered)
{
    TestSupport::ClearSettings();
    SetText("alpha beta", 6, 10);
    EXPECT_EQ(Search().GetSearchSeed(), QStringLiteral("beta"));
    SetText("alpha beta", 3);
    EXPECT_EQ(Search().GetSearchSeed(), QStringLiteral("beta")) << "no selection: the remembered one";
    const QByteArray wide = QByteArray(98, 'w') + "\xc3\xa9" + "tail";
    SetText(wide, 0, wide.size());
    EXPECT_EQ(Search().GetSearchSeed(), QString(98, QLatin1Char('w'))) << "99 bytes, the split character left out";
}

// Expressions are read through a growing window; a long line must neither crash, hang nor
// cut a match short.
TEST_F(TextSearchTest, LongLinesNeitherCrashNorHangAndMatchesStayWhole)
{
    const QByteArray run = "x" + QByteArray(60000, 'a') + "b";
    SetText("short\n" + run + " " + QByteArray(9000, 'y') + "  \t\nb \n");
    CTextSearch search = Search(false, false, true);
    EXPECT_EQ(search.FindText(QStringLiteral("x.*b"), false, true), 6);
    EXPECT_EQ(Selection(), Range(6, 6 + run.size()));
    m_editor->SetSel(0, 0);
    EXPECT_EQ(search.FindText(QStringLiteral("a(?=a*b)"), false, false), 7);
    m_editor->SetSel(50000, 50000);
    EXPECT_EQ(search.FindText(QStringLiteral("\\ba"), false, false), -1) << "no word start inside the run";
    EXPECT_EQ(search.FindText(QStringLiteral("(a+)+c"), false, true), -1) << "runaway: no match";
    EXPECT_TRUE(search.MarkAll(QStringLiteral("x[a-z]*b")));
    EXPECT_EQ(MarkedLines(), Lines{1});
    EXPECT_EQ(search.ReplaceAll(QStringLiteral("[ \\t]+$"), QString(), false, true), 2);
    EXPECT_TRUE(Text().endsWith(QByteArray(9000, 'y') + "\nb\n"));
    EXPECT_EQ(search.ReplaceAll(QStringLiteral("a{1000}"), QStringLiteral("\\0,"), false, true), 60);
    EXPECT_TRUE(Text().startsWith("short\nx" + QByteArray(1000, 'a') + ",a"));
}

// A find in files result opens with the caret at the match's start: the match is selected.
struct MatchAtCaretCase
{
    const char* name;
    const char* text;
    long caret;
    const char* find;
    bool matchCase;
    bool regExp;
    long selStart;
    long selEnd;
};

class SelectMatchAtCaret : public TextSearchTest, public ::testing::WithParamInterface<MatchAtCaretCase>
{
};

TEST_P(SelectMatchAtCaret, SelectsOnlyAMatchThatStartsThere)
{
    const MatchAtCaretCase& c = GetParam();
    SetText(c.text, c.caret);
    const bool found = Search(c.matchCase, false, c.regExp).SelectMatchAtCaret(QString::fromUtf8(c.find));
    EXPECT_EQ(found, c.selStart != c.selEnd);
    EXPECT_EQ(Selection(), Range(c.selStart, c.selEnd));
}

INSTANTIATE_TEST_SUITE_P(Cases, SelectMatchAtCaret, ::testing::Values(
    MatchAtCaretCase{"plain", "one Caf\xC3\xA9 two", 4, "caf\xC3\xA9", false, false, 4, 9},
    MatchAtCaretCase{"expression", "x = foo(12);", 4, "foo\\(\\d+\\)", false, true, 4, 11},
    MatchAtCaretCase{"case_differs", "abc ABC", 4, "abc", true, false, 4, 4},
    MatchAtCaretCase{"match_later_on_the_line", "abc abc", 1, "abc", false, false, 1, 1},
    MatchAtCaretCase{"not_on_the_next_line", "x\nabc", 0, "abc", false, false, 0, 0}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
