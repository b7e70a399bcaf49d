// Several carets: occurrences added one by one or all at once, and editing at every caret.
#include "BareControl.h"

#include "editing/MultiCaret.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

namespace {

using Sci = QsciScintillaBase;

// The text with every selection shown as [..] and every empty one as |.
QByteArray Marked(BareControl& bare)
{
    QByteArray text = bare.Text();
    const long count = bare.Send(Sci::SCI_GETSELECTIONS);
    QList<QPair<long, long>> ranges;
    for (long i = 0; i < count; ++i)
        ranges.append({bare.Send(Sci::SCI_GETSELECTIONNSTART, i), bare.Send(Sci::SCI_GETSELECTIONNEND, i)});
    std::sort(ranges.begin(), ranges.end(), [](auto a, auto b) { return a.first > b.first; });
    for (const auto& [start, end] : ranges) {
        if (start == end) {
            text.insert(int(start), '|');
        } else {
            text.insert(int(end), ']');
            text.insert(int(start), '[');
        }
    }
    return text;
}

struct FindCase
{
    const char* text;
    const char* needle;
    bool wholeWord;
    QList<long> expected;
};

TEST(MultiCaretFind, WholeWordsSubstringsAndMultiByteWords)
{
    const FindCase cases[] = {
        {"ab abc ab_ ab", "ab", true, {0, 11}},
        {"ab abc ab_ ab", "ab", false, {0, 3, 7, 11}},
        {"größe größer größe", "größe", true, {0, 17}},
        {"aaaa", "aa", false, {0, 2}},
        {"", "a", false, {}},
    };
    for (const FindCase& c : cases) {
        const QByteArray text(c.text);
        EXPECT_EQ(MultiCaret::FindAll(text.constData(), text.size(), c.needle, c.wholeWord), c.expected)
            << c.text << " / " << c.needle;
    }
    const QByteArray many("x x x x");
    EXPECT_EQ(MultiCaret::FindAll(many.constData(), many.size(), "x", true, 2).size(), 2);
}

TEST(MultiCaretSelect, NextOccurrenceSelectsTheWordThenAddsWholeWordsAndWraps)
{
    BareControl bare{"alpha alphabet al|pha\nalpha"};
    ASSERT_TRUE(MultiCaret::SelectNextOccurrence(bare.control));
    EXPECT_EQ(Marked(bare), "alpha alphabet [alpha]\nalpha");
    ASSERT_TRUE(MultiCaret::SelectNextOccurrence(bare.control));
    EXPECT_EQ(Marked(bare), "alpha alphabet [alpha]\n[alpha]");
    ASSERT_TRUE(MultiCaret::SelectNextOccurrence(bare.control));
    EXPECT_EQ(Marked(bare), "[alpha] alphabet [alpha]\n[alpha]");
    EXPECT_FALSE(MultiCaret::SelectNextOccurrence(bare.control));
}

TEST(MultiCaretSelect, ASelectionInsideAWordMatchesInsideWordsToo)
{
    BareControl bare{"[al]pha alphabet"};
    ASSERT_TRUE(MultiCaret::SelectNextOccurrence(bare.control));
    EXPECT_EQ(Marked(bare), "[al]pha [al]phabet");
}

struct LimitCase
{
    const char* text;
    long max;
    long found;
    long selected;
    const char* marked;
    long mainStart; // where the main selection starts: the caret's own occurrence
};

TEST(MultiCaretSelect, AllOccurrencesUpToTheLimitRunFromTheCaretsOwn)
{
    const LimitCase cases[] = {
        {"id = id + f(id|);\nidle", 1000, 3, 3, "[id] = [id] + f([id]);\nidle", 12},
        {"x x |x x x", 2, 5, 2, "x x [x] [x] x", 4},
        // Near the end the run reaches back, so the limit is used in full.
        {"x x x x |x", 2, 5, 2, "x x x [x] [x]", 8},
        {"x |x x", 1, 3, 1, "x [x] x", 2},
        {"|x x x", 5, 3, 3, "[x] [x] [x]", 0},
    };
    for (const LimitCase& c : cases) {
        BareControl bare{c.text};
        const MultiCaret::AllResult result = MultiCaret::SelectAllOccurrences(bare.control, c.max);
        EXPECT_EQ(result.found, c.found) << c.text;
        EXPECT_EQ(result.selected, c.selected) << c.text;
        EXPECT_EQ(Marked(bare), c.marked) << c.text;
        EXPECT_EQ(bare.Send(Sci::SCI_GETSELECTIONNSTART, bare.Send(Sci::SCI_GETMAINSELECTION)), c.mainStart) << c.text;
    }
}

TEST(MultiCaretSelect, NothingToFindOnBlankSpace)
{
    BareControl bare{"a  |  b"};
    EXPECT_FALSE(MultiCaret::SelectNextOccurrence(bare.control));
    EXPECT_EQ(MultiCaret::SelectAllOccurrences(bare.control).found, 0);
}

// Editing through real key presses, with carets at line ends and on empty lines.
class MultiCaretEditing : public ::testing::Test
{
protected:
    void SetUp() override
    {
        MultiCaret::Enable(bare.control);
        bare.control.resize(500, 300);
        bare.control.show();
        bare.control.viewport()->installEventFilter(&mouse);
    }
    void Carets(const char* text, std::initializer_list<long> carets)
    {
        bare.Send(Sci::SCI_SETTEXT, 0, reinterpret_cast<long>(text));
        bare.Send(Sci::SCI_EMPTYUNDOBUFFER);
        bool first = true;
        for (const long caret : carets) {
            bare.Send(first ? Sci::SCI_SETSELECTION : Sci::SCI_ADDSELECTION, caret, caret);
            first = false;
        }
    }
    QPoint Point(long pos)
    {
        return QPoint(int(bare.Send(Sci::SCI_POINTXFROMPOSITION, 0, pos)) + 1,
                      int(bare.Send(Sci::SCI_POINTYFROMPOSITION, 0, pos)) + 2);
    }
    BareControl bare{""};
    CCaretMouseFilter mouse;
};

TEST_F(MultiCaretEditing, TypingGoesToEveryCaretAndUndoesInOneStep)
{
    Carets("one\n\ntwo\n", {3, 4, 8});
    QTest::keyClick(&bare.control, 'x');
    EXPECT_EQ(bare.Text(), "onex\nx\ntwox\n");
    bare.Undo();
    EXPECT_EQ(bare.Text(), "one\n\ntwo\n");
}

TEST_F(MultiCaretEditing, BackspaceMovingAndPastingActAtEveryCaret)
{
    Carets("one\n  \ntwo\n", {3, 6, 10});
    QTest::keyClick(&bare.control, Qt::Key_Left);
    QTest::keyClick(&bare.control, Qt::Key_Backspace);
    EXPECT_EQ(bare.Text(), "oe\n \nto\n");
    QApplication::clipboard()->setText(QStringLiteral("-"));
    QTest::keyClick(&bare.control, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(bare.Text(), "o-e\n- \nt-o\n");
    // Esc leaves the main caret alone.
    QTest::keyClick(&bare.control, Qt::Key_Escape);
    EXPECT_EQ(bare.Send(Sci::SCI_GETSELECTIONS), 1);
}

struct DoubleClickCase
{
    const char* text;
    std::initializer_list<long> carets;
    long at;
    const char* marked;
};

// Two quick Ctrl+clicks through the window system, which makes the second one a double
// click: the word there joins the selections and the other carets stay.
TEST_F(MultiCaretEditing, CtrlDoubleClickAddsTheWordAndKeepsTheCarets)
{
    const DoubleClickCase cases[] = {
        {"alpha beta gamma", {0}, 7, "|alpha [beta] gamma"},
        {"one two\nthree four", {3, 16}, 10, "one| two\n[three] fo|ur"},
        // A caret already inside the word is taken into it, not left doubled.
        {"one two\nthree", {3, 9}, 11, "one| two\n[three]"},
        {"solo", {2}, 1, "[solo]"},
    };
    QWindow* window = bare.control.window()->windowHandle();
    ASSERT_NE(window, nullptr);
    for (const DoubleClickCase& c : cases) {
        Carets(c.text, c.carets);
        const QPoint at = bare.control.viewport()->mapTo(bare.control.window(), Point(c.at));
        QTest::mouseDClick(window, Qt::LeftButton, Qt::ControlModifier, at);
        EXPECT_EQ(Marked(bare), c.marked) << c.text;
    }
    // And typing reaches each of them once.
    Carets("alpha beta", {0});
    QTest::mouseDClick(window, Qt::LeftButton, Qt::ControlModifier,
                       bare.control.viewport()->mapTo(bare.control.window(), Point(8)));
    QTest::keyClick(&bare.control, 'z');
    EXPECT_EQ(bare.Text(), "zalpha z");
}

TEST_F(MultiCaretEditing, CtrlClickAddsACaretAndAltDragMakesARectangle)
{
    Carets("abcd\nefgh\nijkl\n", {0});
    // Quick clicks arrive as double and triple clicks.
    QTest::mouseClick(bare.control.viewport(), Qt::LeftButton, Qt::NoModifier, Point(2));
    QTest::mouseClick(bare.control.viewport(), Qt::LeftButton, Qt::ControlModifier, Point(7));
    QTest::mouseClick(bare.control.viewport(), Qt::LeftButton, Qt::ControlModifier, Point(11));
    EXPECT_EQ(Marked(bare), "ab|cd\nef|gh\ni|jkl\n");
    QTest::keyClick(&bare.control, '_');
    EXPECT_EQ(bare.Text(), "ab_cd\nef_gh\ni_jkl\n");

    Carets("abcd\nefgh\nijkl\n", {0});
    QTest::mousePress(bare.control.viewport(), Qt::LeftButton, Qt::AltModifier, Point(1));
    QMouseEvent move(QEvent::MouseMove, Point(13), bare.control.viewport()->mapToGlobal(Point(13)), Qt::NoButton,
                     Qt::LeftButton, Qt::AltModifier);
    QApplication::sendEvent(bare.control.viewport(), &move);
    QTest::mouseRelease(bare.control.viewport(), Qt::LeftButton, Qt::AltModifier, Point(13));
    EXPECT_EQ(bare.Send(Sci::SCI_SELECTIONISRECTANGLE), 1);
    EXPECT_EQ(bare.Send(Sci::SCI_GETSELECTIONS), 3);
    // One column of each line is replaced (where the column falls depends on the font).
    QTest::keyClick(&bare.control, 'Z');
    for (const QByteArray& line : bare.Text().split('\n').mid(0, 3))
        EXPECT_TRUE(line.size() == 4 && line.count('Z') == 1) << line.constData();
}

} // namespace
