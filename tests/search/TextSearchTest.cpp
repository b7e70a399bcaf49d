#include "TestSupport.h"

#include "app/CRegistryStore.h"
#include "editor/CMFCScintilla.h"
#include "search/CTextSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <memory>
#include <vector>

namespace {

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
    std::pair<long, long> Selection() const
    {
        return {m_editor->GetSelectionStart(), m_editor->GetSelectionEnd()};
    }
    bool Marked(long line) const
    {
        return m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERGET,
                                       static_cast<unsigned long>(line))
               & (1 << CMFCScintilla::BookmarkMarker);
    }
    std::vector<long> MarkedLines() const
    {
        std::vector<long> lines;
        for (long line = 0; line < m_editor->GetLineCount(); ++line)
            if (Marked(line))
                lines.push_back(line);
        return lines;
    }
    CTextSearch Search() { return CTextSearch(m_editor.get()); }

    std::unique_ptr<CMFCScintilla> m_editor;
};

TEST_F(TextSearchTest, FlagsMapToScintillaAndExpressionsUseTheCxx11Engine)
{
    EXPECT_EQ(CTextSearch::SearchFlags(false, false, false), 0);
    EXPECT_EQ(CTextSearch::SearchFlags(true, false, false), QsciScintillaBase::SCFIND_MATCHCASE);
    EXPECT_EQ(CTextSearch::SearchFlags(false, true, false), QsciScintillaBase::SCFIND_WHOLEWORD);
    EXPECT_EQ(CTextSearch::SearchFlags(false, false, true),
              QsciScintillaBase::SCFIND_REGEXP | QsciScintillaBase::SCFIND_CXX11REGEX);
    Search().SetSearchFlags(true, true, true);
    EXPECT_EQ(m_editor->SendScintilla(QsciScintillaBase::SCI_GETSEARCHFLAGS),
              QsciScintillaBase::SCFIND_MATCHCASE | QsciScintillaBase::SCFIND_WHOLEWORD
                  | QsciScintillaBase::SCFIND_REGEXP | QsciScintillaBase::SCFIND_CXX11REGEX);
    // The trim command asks for SCFIND_REGEXP alone and still gets the C++11 engine.
    Search().SetSearchFlags(QsciScintillaBase::SCFIND_REGEXP);
    EXPECT_TRUE(m_editor->SendScintilla(QsciScintillaBase::SCI_GETSEARCHFLAGS)
                & QsciScintillaBase::SCFIND_CXX11REGEX);
}

// ---------------------------------------------------------------------------------------
// FindText: direction, wrap and where the search starts.

struct FindCase
{
    const char* name;
    const char* text;
    long selStart, selEnd;
    const char* find;
    bool matchCase, wholeWord, regExp;
    bool up, wrap;
    long expected;
    long expectedSelStart, expectedSelEnd; // the selection afterwards
};

class FindTextTest : public TextSearchTest, public ::testing::WithParamInterface<FindCase>
{
};

TEST_P(FindTextTest, FindsAndSelects)
{
    const FindCase& c = GetParam();
    SetText(c.text, c.selStart, c.selEnd);
    CTextSearch search = Search();
    search.SetSearchFlags(c.matchCase, c.wholeWord, c.regExp);
    EXPECT_EQ(search.FindText(QString::fromUtf8(c.find), c.up, c.wrap), c.expected);
    EXPECT_EQ(Selection(), std::make_pair(c.expectedSelStart, c.expectedSelEnd));
    EXPECT_EQ(Text(), QByteArray(c.text)) << "a search never changes the text";
}

const FindCase findCases[] = {
    {"DownFromStart", "abc abc abc", 0, 0, "abc", false, false, false, false, false, 0, 0, 3},
    {"SelectedMatchNotFoundAgain", "abc abc abc", 0, 3, "abc", false, false, false, false, false, 4, 4, 7},
    {"DownMissWithoutWrapKeepsSelection", "abc abc abc", 8, 11, "abc", false, false, false, false, false, -1, 8, 11},
    {"DownMissWraps", "abc abc abc", 8, 11, "abc", false, false, false, false, true, 0, 0, 3},
    {"OnlyMatchFoundAgainByWrap", "xx abc yy", 3, 6, "abc", false, false, false, false, true, 3, 3, 6},
    {"SearchBeginsBehindSelection", "abc abc", 1, 2, "abc", false, false, false, false, false, 4, 4, 7},
    {"UpFindsBeforeSelection", "abc abc abc", 4, 7, "abc", false, false, false, true, false, 0, 0, 3},
    {"UpFindsNearestAbove", "abc abc abc", 11, 11, "abc", false, false, false, true, false, 8, 8, 11},
    {"UpStopsAtTheTop", "abc abc abc", 0, 3, "abc", false, false, false, true, false, -1, 0, 3},
    {"UpWrapsToTheEnd", "abc abc abc", 0, 3, "abc", false, false, false, true, true, 8, 8, 11},
    {"NotFoundAnywhere", "abc", 0, 0, "xyz", false, false, false, false, true, -1, 0, 0},
    {"IgnoresCaseByDefault", "ABC abc", 0, 0, "abc", false, false, false, false, false, 0, 0, 3},
    {"MatchCase", "ABC abc", 0, 0, "abc", true, false, false, false, false, 4, 4, 7},
    {"WholeWord", "abcd abc", 0, 0, "abc", false, true, false, false, false, 5, 5, 8},
    {"WholeWordMiss", "abcd xabc", 0, 0, "abc", false, true, false, false, true, -1, 0, 0},
    {"RegExpDigits", "a1 b22", 0, 0, "\\d\\d", false, false, true, false, false, 4, 4, 6},
    {"RegExpWordClass", "  foo_1 bar", 0, 0, "\\w+", false, false, true, false, false, 2, 2, 7},
    {"RegExpSpaceClass", "ab\tcd", 0, 0, "\\s", false, false, true, false, false, 2, 2, 3},
    {"RegExpWordBoundary", "concat cat", 0, 0, "\\bcat\\b", false, false, true, false, false, 7, 7, 10},
    {"RegExpAlternationAndGroups", "the dog and cat", 0, 0, "(cat|dog)s?", false, false, true, false, false, 4, 4, 7},
    {"RegExpBracketClassAndQuantifier", "x12 y345", 0, 0, "[a-z][0-9]{3}", false, false, true, false, false, 4, 4, 8},
    {"RegExpUpFindsLastBefore", "a1 a2 a3", 8, 8, "a\\d", false, false, true, true, false, 6, 6, 8},
    {"RegExpOffMeansLiteral", "a.c abc", 0, 0, "a.c", false, false, false, false, false, 0, 0, 3},
    {"RegExpDotMatchesAny", "abc a.c", 0, 0, "a.c", false, false, true, false, false, 0, 0, 3},
    {"InvalidOpenGroup", "a(b", 0, 0, "(", false, false, true, false, true, -1, 0, 0},
    {"InvalidOpenClass", "a[b", 0, 0, "[a-", false, false, true, false, true, -1, 0, 0},
    {"InvalidRepeatRange", "aa", 0, 0, "a{2,1}", false, false, true, false, true, -1, 0, 0},
    {"InvalidNothingToRepeat", "a*b", 0, 0, "*b", false, false, true, true, true, -1, 0, 0},
    {"Utf8Text", "gr\xc3\xbc\xc3\x9f gr\xc3\xbc\xc3\x9f", 0, 6, "gr\xc3\xbc\xc3\x9f", true, false, false, false, false, 7, 7, 13},
};

INSTANTIATE_TEST_SUITE_P(Cases, FindTextTest, ::testing::ValuesIn(findCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TextSearchTest, RepeatedFindsWalkThroughTheMatchesAndWrap)
{
    SetText("one x two x three x");
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, false);
    std::vector<long> found;
    for (int i = 0; i < 5; ++i)
        found.push_back(search.FindText(QStringLiteral("x"), false, true));
    EXPECT_EQ(found, (std::vector<long>{4, 10, 18, 4, 10}));
}

TEST_F(TextSearchTest, RepeatedFindPreviousStopsAtTheTop)
{
    SetText("x x x", 5);
    CTextSearch search = Search();
    search.SetSearchFlags(0);
    std::vector<long> found;
    for (int i = 0; i < 4; ++i)
        found.push_back(search.FindText(QStringLiteral("x"), true, false));
    EXPECT_EQ(found, (std::vector<long>{4, 2, 0, -1}));
    EXPECT_EQ(Selection(), std::make_pair(0L, 1L));
}

TEST_F(TextSearchTest, EmptyTextFindsNothing)
{
    SetText("abc");
    EXPECT_EQ(Search().FindText(QString(), false, true), -1);
}

// ---------------------------------------------------------------------------------------
// MarkAll: toggles the bookmark of each match's line.

TEST_F(TextSearchTest, MarkAllTogglesEachMatchLine)
{
    // Line 1 has two matches, so it is toggled twice and stays unmarked.
    SetText("foo\nbar foo foo\nbaz\nfoo", 9);
    Search().SetSearchFlags(0);
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("foo")));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{0, 3}));
    EXPECT_EQ(Selection(), std::make_pair(9L, 9L)) << "the caret goes back where it was";

    // A second run removes the marks again.
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("foo")));
    EXPECT_TRUE(MarkedLines().empty());
}

TEST_F(TextSearchTest, MarkAllRemovesAnExistingBookmark)
{
    SetText("a\nfoo\nb\nfoo");
    m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERADD, 1UL, long(CMFCScintilla::BookmarkMarker));
    m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERADD, 2UL, long(CMFCScintilla::BookmarkMarker));
    Search().SetSearchFlags(0);
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("foo")));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{2, 3}));
}

TEST_F(TextSearchTest, MarkAllWithoutMatchMarksNothing)
{
    SetText("abc\ndef", 2);
    Search().SetSearchFlags(0);
    EXPECT_FALSE(Search().MarkAll(QStringLiteral("xyz")));
    EXPECT_FALSE(Search().MarkAll(QString()));
    EXPECT_TRUE(MarkedLines().empty());
    EXPECT_EQ(Selection(), std::make_pair(2L, 2L));
}

TEST_F(TextSearchTest, MarkAllHonoursTheOptions)
{
    SetText("Foo\nfoo\nfood\nx foo");
    Search().SetSearchFlags(true, true, false);
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("foo")));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{1, 3}));
}

TEST_F(TextSearchTest, MarkAllEndsWhenMatchesDependOnTheStart)
{
    // Searched from the caret "b" is found at 1; from the top "ab" is found at 0, so the
    // search never comes back to its first match. It must still end.
    SetText("ab\n", 1);
    Search().SetSearchFlags(false, false, true);
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("ab|b")));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{})) << "line 0 was toggled twice";
}

TEST_F(TextSearchTest, MarkAllWithZeroLengthMatchEnds)
{
    SetText("a\nb\nc", 0);
    Search().SetSearchFlags(false, false, true);
    EXPECT_TRUE(Search().MarkAll(QStringLiteral("x*")));
    EXPECT_EQ(Text(), QByteArray("a\nb\nc"));
}

// ---------------------------------------------------------------------------------------
// ReplaceAll.

struct ReplaceAllCase
{
    const char* name;
    const char* text;
    long selStart, selEnd;
    bool selectionOnly;
    const char* find;
    const char* replace;
    bool regExp;
    bool tags;
    const char* expected;
    long count;
    long expectedSelStart, expectedSelEnd;
};

class ReplaceAllTest : public TextSearchTest, public ::testing::WithParamInterface<ReplaceAllCase>
{
};

TEST_P(ReplaceAllTest, ReplacesAndCounts)
{
    const ReplaceAllCase& c = GetParam();
    SetText(c.text, c.selStart, c.selEnd);
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, c.regExp);
    EXPECT_EQ(search.ReplaceAll(QString::fromUtf8(c.find), QString::fromUtf8(c.replace),
                                c.selectionOnly, c.tags),
              c.count);
    EXPECT_EQ(Text(), QByteArray(c.expected));
    EXPECT_EQ(Selection(), std::make_pair(c.expectedSelStart, c.expectedSelEnd));
}

const ReplaceAllCase replaceAllCases[] = {
    {"Document", "a b a", 2, 2, false, "a", "xx", false, false, "xx b xx", 2, 7, 7},
    {"IgnoresSelectionForDocumentScope", "a b a", 2, 3, false, "a", "c", false, false, "c b c", 2, 5, 5},
    {"GrowingReplacementNotSearchedAgain", "aaa", 0, 0, false, "a", "aa", false, false, "aaaaaa", 3, 6, 6},
    {"ReplacementHoldingTheSearchText", "ab ab", 0, 0, false, "ab", "abab", false, false, "abab abab", 2, 9, 9},
    {"Shrinking", "a,b,,c", 0, 0, false, ",", "", false, false, "abc", 3, 2, 2},
    {"NoMatchIsZeroAndLeavesAlone", "abc", 1, 2, false, "x", "y", false, false, "abc", 0, 1, 2},
    {"HalfSelectedLineReplacesWholeLine", "foo foo\nfoo foo\nfoo", 5, 6, true, "foo", "bar", false, false,
     "bar bar\nfoo foo\nfoo", 2, 0, 8},
    {"SelectionAcrossTwoLines", "foo\nfoo foo\nfoo\nfoo", 5, 13, true, "foo", "x", false, false,
     "foo\nx x\nx\nfoo", 3, 4, 10},
    {"SelectionOnLastLine", "foo\nfoo foo", 5, 6, true, "foo", "ab", false, false, "foo\nab ab", 2, 4, 9},
    {"EmptySelectionInSelectionScope", "foo", 1, 1, true, "foo", "bar", false, false, "foo", CTextSearch::ScopeEmpty, 1, 1},
    {"SelectionScopeWithoutMatchKeepsSelection", "foo\nbar", 1, 2, true, "bar", "x", false, false, "foo\nbar", 0, 1, 2},
    {"LineStarts", "a\nb\n\nc", 0, 0, false, "^", "> ", true, false, "> a\n> b\n> \n> c", 4, 14, 14},
    {"LineStartsInSelection", "a\nb\nc", 2, 3, true, "^", "> ", true, false, "a\n> b\nc", 1, 2, 6},
    {"LineEnds", "a\nb\n\nc", 0, 0, false, "$", ";", true, false, "a;\nb;\n;\nc;", 4, 10, 10},
    {"LineEndsCrLf", "a\r\n\r\nb", 0, 0, false, "$", ";", true, false, "a;\r\n;\r\nb;", 3, 9, 9},
    {"LineStartsCrLf", "a\r\n\r\nb", 0, 0, false, "^", "#", true, false, "#a\r\n#\r\n#b", 3, 9, 9},
    {"CaretIsLiteralWithoutExpressions", "a^b^", 0, 0, false, "^", "-", false, false, "a-b-", 2, 4, 4},
    {"ZeroLengthMatchesStepOn", "ab", 0, 0, false, "x*", "-", true, false, "-a-b", 2, 4, 4},
    {"TrimTrailingBlanks", "a  \nb\t\nc \t", 0, 0, false, "[ \\t]+$", "", true, true, "a\nb\nc", 3, 5, 5},
    {"TabsToSpaces", "\tx\n\t\ty", 0, 0, false, "\t", "    ", false, false, "    x\n        y", 3, 14, 14},
    {"SpacesToTabs", "        x\n    y", 0, 0, false, "    ", "\t", false, false, "\t\tx\n\ty", 3, 5, 5},
    {"ExpressionTagsExpanded", "k=v a=b", 0, 0, false, "(\\w)=(\\w)", "\\2=\\1", true, true, "v=k b=a", 2, 7, 7},
    {"ExpressionTagsLiteralFromTheDialog", "k=v", 0, 0, false, "(\\w)=(\\w)", "\\2=\\1", true, false, "\\2=\\1", 1, 5, 5},
    {"InvalidExpressionReplacesNothing", "a(b", 0, 0, false, "(", "x", true, false, "a(b", 0, 0, 0},
    {"DigitClass", "a1b22", 0, 0, false, "\\d+", "#", true, false, "a#b#", 2, 4, 4},
};

INSTANTIATE_TEST_SUITE_P(Cases, ReplaceAllTest, ::testing::ValuesIn(replaceAllCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(TextSearchTest, ReplaceAllOverManyLinesIsQuickAndKeepsBookmarks)
{
    QByteArray text;
    for (int i = 0; i < 50000; ++i)
        text += "\tx\n";
    SetText(text);
    m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERADD, 40000UL, long(CMFCScintilla::BookmarkMarker));
    const long mask = m_editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK);
    ASSERT_NE(mask, 0);
    Search().SetSearchFlags(0);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("\t"), QStringLiteral("    "), false, false), 50000);
    EXPECT_LT(timer.elapsed(), 20000);
    EXPECT_EQ(Text().left(12), QByteArray("    x\n    x\n"));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{40000}));
    // Change notifications are back on afterwards.
    EXPECT_EQ(m_editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK), mask);
}

TEST_F(TextSearchTest, ReplaceAllWideningTheLineCountWidensTheLineNumbers)
{
    SetText(QByteArray(5000, ','));
    m_editor->SetLineNumberMargin(true);
    const long before = m_editor->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL);
    Search().SetSearchFlags(0);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral(","), QStringLiteral(",\n\n\n"), false, false), 5000);
    EXPECT_EQ(m_editor->GetLineCount(), 15001);
    EXPECT_GT(m_editor->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL), before);
}

TEST_F(TextSearchTest, ReplaceAllIsOneUndoStep)
{
    SetText("x1 x2 x3 x4");
    Search().SetSearchFlags(0);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("x"), QStringLiteral("yy"), false, false), 4);
    EXPECT_EQ(Text(), QByteArray("yy1 yy2 yy3 yy4"));
    m_editor->Undo();
    EXPECT_EQ(Text(), QByteArray("x1 x2 x3 x4"));
    EXPECT_FALSE(m_editor->CanUndo());
}

TEST_F(TextSearchTest, ReplaceAllOnReadOnlyTextChangesNothing)
{
    SetText("aaa");
    m_editor->SetReadOnly(true);
    Search().SetSearchFlags(0);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("a"), QStringLiteral("b"), false, false), 0);
    EXPECT_EQ(Text(), QByteArray("aaa"));
    // An empty replacement that the control refuses must not keep finding the same match.
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("a"), QString(), false, false), 0);
    EXPECT_EQ(Text(), QByteArray("aaa"));
}

// ---------------------------------------------------------------------------------------
// ReplaceNext: the first press finds, each further press replaces and finds.

TEST_F(TextSearchTest, ReplaceNextFindsFirstThenReplacesAndFinds)
{
    SetText("cat dog cat");
    CTextSearch search = Search();
    search.SetSearchFlags(0);
    long last = -1;
    last = search.ReplaceNext(QStringLiteral("cat"), QStringLiteral("cow"), false, last);
    EXPECT_EQ(last, 0);
    EXPECT_EQ(Text(), QByteArray("cat dog cat")) << "the first press only finds";
    EXPECT_EQ(Selection(), std::make_pair(0L, 3L));

    last = search.ReplaceNext(QStringLiteral("cat"), QStringLiteral("cow"), false, last);
    EXPECT_EQ(Text(), QByteArray("cow dog cat"));
    EXPECT_EQ(last, 8);
    EXPECT_EQ(Selection(), std::make_pair(8L, 11L));

    last = search.ReplaceNext(QStringLiteral("cat"), QStringLiteral("cow"), false, last);
    EXPECT_EQ(Text(), QByteArray("cow dog cow"));
    EXPECT_EQ(last, -1);
}

TEST_F(TextSearchTest, ReplaceNextReplacesWhateverIsSelected)
{
    SetText("cat dog cat", 4, 7);
    Search().SetSearchFlags(0);
    EXPECT_EQ(Search().ReplaceNext(QStringLiteral("cat"), QStringLiteral("emu"), false, 0), 8);
    EXPECT_EQ(Text(), QByteArray("cat emu cat"));
}

TEST_F(TextSearchTest, ReplaceNextWrapsDownward)
{
    SetText("cat dog cat", 8, 11);
    Search().SetSearchFlags(0);
    EXPECT_EQ(Search().ReplaceNext(QStringLiteral("cat"), QStringLiteral("ox"), false, 8), 0);
    EXPECT_EQ(Text(), QByteArray("cat dog ox"));
    EXPECT_EQ(Selection(), std::make_pair(0L, 3L));
}

// ---------------------------------------------------------------------------------------
// The search seed.

TEST_F(TextSearchTest, SeedIsTheSelectionAndIsRemembered)
{
    TestSupport::ClearSettings();
    SetText("alpha beta", 6, 10);
    EXPECT_EQ(Search().GetSearchSeed(), QStringLiteral("beta"));
    SetText("alpha beta", 3);
    EXPECT_EQ(Search().GetSearchSeed(), QStringLiteral("beta")) << "no selection: the remembered one";
    EXPECT_EQ(CRegistryStore().GetProfileString(QStringLiteral("FindReplace"),
                                                QStringLiteral("LastSelectedValue")),
              QStringLiteral("beta"));
}

TEST_F(TextSearchTest, SeedIsCutWhenLongerThanAHundredBytes)
{
    TestSupport::ClearSettings();
    const QByteArray hundred(100, 'h');
    SetText(hundred, 0, 100);
    EXPECT_EQ(Search().GetSearchSeed().size(), 100);
    const QByteArray longer(101, 'l');
    SetText(longer, 0, 101);
    EXPECT_EQ(Search().GetSearchSeed(), QString(99, QLatin1Char('l')));
    // A character that would be split at the cut is left out whole.
    const QByteArray wide = QByteArray(98, 'w') + "\xc3\xa9" + "tail";
    SetText(wide, 0, wide.size());
    EXPECT_EQ(Search().GetSearchSeed(), QString(98, QLatin1Char('w')));
}

TEST_F(TextSearchTest, SeedIsEmptyWithNothingRemembered)
{
    TestSupport::ClearSettings();
    SetText("abc", 1);
    EXPECT_TRUE(Search().GetSearchSeed().isEmpty());
}

} // namespace

namespace {

// The expression engine recurses per character: long lines must neither crash nor hang.
TEST_F(TextSearchTest, ExpressionSearchOverLongLinesDoesNotCrash)
{
    const QByteArray line = "x" + QByteArray(200000, 'a') + "b";
    SetText("short\n" + line + "\ntail");
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, true);
    EXPECT_EQ(search.FindText(QStringLiteral("x.*b"), false, true), 6);
    EXPECT_EQ(Selection(), std::make_pair(6L, long(6 + line.size())));
    m_editor->SetSel(0, 0);
    EXPECT_EQ(search.FindText(QStringLiteral("[ac]+b"), false, false), 7);
    // A group repeated 200000 times may exceed the engine's limits: then it is not found.
    m_editor->SetSel(0, 0);
    EXPECT_THAT(search.FindText(QStringLiteral("(a|c)+b"), false, false), ::testing::AnyOf(7, -1));
    m_editor->SetSel(0, 0);
    EXPECT_TRUE(search.MarkAll(QStringLiteral("x[a-z]*b")));
    EXPECT_EQ(MarkedLines(), (std::vector<long>{1}));
}

TEST_F(TextSearchTest, TrimOverALongLine)
{
    SetText(QByteArray(100000, 'a') + "  \t\nb \n");
    Search().SetSearchFlags(QsciScintillaBase::SCFIND_REGEXP);
    EXPECT_EQ(Search().ReplaceAll(QStringLiteral("[ \\t]+$"), QString(), false, true), 2);
    EXPECT_EQ(Text(), QByteArray(100000, 'a') + "\nb\n");
}

TEST_F(TextSearchTest, ExpressionWithoutMatchOnALongLineEndsQuickly)
{
    // A backtracking engine that retries every start needs minutes here.
    SetText(QByteArray(50000, 'a') + "\n" + QByteArray(50000, 'b'));
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, true);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(search.FindText(QStringLiteral("a+c"), false, true), -1);
    EXPECT_EQ(search.FindText(QStringLiteral("(a|b)+\\d"), false, true), -1);
    EXPECT_EQ(search.FindText(QStringLiteral("(a+)+c"), false, true), -1) << "runaway: no match";
    EXPECT_LT(timer.elapsed(), 20000);
}

TEST_F(TextSearchTest, ReplaceAllWalksALongLineInLinearTime)
{
    QByteArray line;
    for (int i = 0; i < 100000; ++i)
        line += "ab,";
    SetText(line + "\nc,");
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, true);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(search.ReplaceAll(QStringLiteral("b,|c,"), QStringLiteral("(\\0)"), false, true), 100001);
    EXPECT_LT(timer.elapsed(), 20000);
    EXPECT_EQ(Text().left(12), QByteArray("a(b,)a(b,)a("));
    EXPECT_TRUE(Text().endsWith("a(b,)\n(c,)"));
}

TEST_F(TextSearchTest, MatchesLongerThanTheReadWindowAreWhole)
{
    // The greedy run, the "$" and the look-ahead all reach far past the first window.
    SetText("x" + QByteArray(20000, 'a') + "b " + QByteArray(9000, 'y') + "\n");
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, true);
    EXPECT_EQ(search.FindText(QStringLiteral("a+b"), false, false), 1);
    EXPECT_EQ(Selection(), std::make_pair(1L, 20002L));
    EXPECT_EQ(search.FindText(QStringLiteral("y$"), false, false), 29002);
    m_editor->SetSel(0, 0);
    EXPECT_EQ(search.FindText(QStringLiteral("a(?=a*b)"), false, false), 1);
    m_editor->SetSel(19000, 19000);
    EXPECT_EQ(search.FindText(QStringLiteral("\\ba"), false, false), -1) << "no word start inside the run";
    EXPECT_EQ(search.FindText(QStringLiteral("^x"), false, true), 0) << "only at the line start";
}

TEST_F(TextSearchTest, ExpressionsSeeUtf8AsCharacters)
{
    SetText("na\xc3\xafve caf\xc3\xa9 x");
    CTextSearch search = Search();
    search.SetSearchFlags(false, false, true);
    EXPECT_EQ(search.FindText(QStringLiteral("caf."), false, false), 7);
    EXPECT_EQ(Selection(), std::make_pair(7L, 12L));
    EXPECT_EQ(search.FindText(QStringLiteral("\\bx"), false, false), 13);
    // Bytes that aren't UTF-8 don't throw the offsets off.
    SetText("\xff\xfe ab");
    EXPECT_EQ(search.FindText(QStringLiteral("a(b)"), false, false), 3);
    EXPECT_EQ(Selection(), std::make_pair(3L, 5L));
}

TEST_F(TextSearchTest, WholeWordAppliesToExpressions)
{
    SetText("cats cat");
    Search().SetSearchFlags(false, true, true);
    EXPECT_EQ(Search().FindText(QStringLiteral("cat|dog"), false, false), 5);
}

} // namespace
