#include "editor/CColumnCounter.h"
#include "editor/CMFCScintilla.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <vector>

namespace {

using Sci = QsciScintillaBase;

// A line that crosses every way of counting: tabs, characters of two to four bytes,
// bytes that are no UTF-8 at all, and a sequence cut short.
QByteArray MixedLine(int repeats)
{
    QByteArray line;
    for (int i = 0; i < repeats; ++i) {
        line += "ab\tc\xC3\xA9" "d\t\t\xE4\xB8\xAD" "x\xF0\x9F\x98\x80";
        line += i % 3 == 0 ? QByteArray("\xFF\xFE" "y") : QByteArray("\xE2\x82" "z");
        line += "\tend ";
    }
    return line;
}

std::vector<long> Boundaries(CMFCScintilla& editor, long from, long to)
{
    std::vector<long> positions;
    for (long p = from; p <= to; p = editor.SendScintilla(Sci::SCI_POSITIONAFTER, static_cast<unsigned long>(p))) {
        positions.push_back(p);
        if (p == to)
            break;
    }
    return positions;
}

struct ColumnCase
{
    long stride;
    int tabWidth;
};

class ColumnCounterTest : public ::testing::TestWithParam<ColumnCase>
{
protected:
    void SetUp() override
    {
        m_editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
        m_editor.SendScintilla(Sci::SCI_SETTABWIDTH, static_cast<unsigned long>(GetParam().tabWidth));
    }
    // Every character boundary of every line, in an order that jumps back and forth, is
    // counted as the control counts it.
    void ExpectControlsColumns(CColumnCounter& counter)
    {
        const long lines = m_editor.SendScintilla(Sci::SCI_GETLINECOUNT);
        for (long line = 0; line < lines; ++line) {
            const long start = m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
            const long end = m_editor.SendScintilla(Sci::SCI_GETLINEENDPOSITION, static_cast<unsigned long>(line));
            std::vector<long> positions = Boundaries(m_editor, start, end);
            std::vector<long> order(positions.rbegin(), positions.rend());
            order.insert(order.end(), positions.begin(), positions.end());
            for (const long p : order)
                ASSERT_EQ(counter.Column(p), m_editor.SendScintilla(Sci::SCI_GETCOLUMN, static_cast<unsigned long>(p)))
                    << "line " << line << " position " << p;
        }
    }
    CMFCScintilla m_editor;
};

TEST_P(ColumnCounterTest, CountsAsTheControlDoesThroughEdits)
{
    // One long line, and last, so that the columns it remembers are the ones used after
    // a change; the short lines are counted by the control itself.
    const QByteArray text = "short\t\xC3\xA9\ntab\tonly\r\n\xE4\xB8\xAD\tz\n" + MixedLine(12);
    m_editor.AddText(text.constData(), text.size());
    CColumnCounter counter(m_editor, GetParam().stride);
    ExpectControlsColumns(counter);

    // Changes in the middle of the long line, told to the counter as the control tells
    // them: a tab inserted moves every column after it, a deletion takes characters away.
    const long middle = m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, 3UL) + 60;
    for (const QByteArray& typed : {QByteArray("\t"), QByteArray("\xE4\xB8\xAD\xE4\xB8\xAD"), QByteArray("q")}) {
        counter.Changed(middle);
        m_editor.SendScintilla(Sci::SCI_INSERTTEXT, static_cast<unsigned long>(middle), typed.constData());
        ExpectControlsColumns(counter);
    }
    counter.Changed(middle - 7);
    m_editor.SendScintilla(Sci::SCI_DELETERANGE, static_cast<unsigned long>(middle - 7), 9L);
    ExpectControlsColumns(counter);

    // A line inserted in front moves the long line: what was remembered is not used.
    counter.Changed(0);
    m_editor.SendScintilla(Sci::SCI_INSERTTEXT, 0UL, "new\tline\n");
    ExpectControlsColumns(counter);
}

INSTANTIATE_TEST_SUITE_P(StridesAndTabs, ColumnCounterTest,
                         ::testing::Values(ColumnCase{16, 4}, ColumnCase{17, 8}, ColumnCase{33, 3},
                                           ColumnCase{64, 1}));

// Through the control's own notices: typing, deleting and undo in the long line keep the
// editor's column right without anyone telling the counter.
TEST(ColumnCounterEditor, FollowsTheControlsNotices)
{
    CMFCScintilla editor;
    editor.SetCodePage(int(CMFCScintilla::SC_CP_UTF8));
    QByteArray text;
    while (text.size() < (1 << 19) + 1000)
        text += MixedLine(50);
    editor.AddText(text.constData(), text.size());
    const long end = editor.GetLength();
    const auto expectColumnAt = [&editor](long position) {
        EXPECT_EQ(editor.GetColumn(position), editor.SendScintilla(Sci::SCI_GETCOLUMN, static_cast<unsigned long>(position)))
            << position;
    };
    expectColumnAt(end);
    editor.GotoPos(1000);
    editor.AddText("\t\xC3\xA9\t", 4);
    expectColumnAt(editor.GetLength());
    expectColumnAt(editor.GetCurrentPos());
    editor.SendScintilla(Sci::SCI_DELETEBACK);
    editor.SendScintilla(Sci::SCI_DELETEBACK);
    expectColumnAt(editor.GetLength());
    editor.Undo();
    expectColumnAt(editor.GetLength());
    // Two long lines asked in turn (a caret and its brace's partner), and a new tab width.
    const QByteArray second = "\n" + text;
    editor.SendScintilla(Sci::SCI_APPENDTEXT, static_cast<unsigned long>(second.size()), second.constData());
    for (const int tabWidth : {4, 8, 3}) {
        editor.SendScintilla(Sci::SCI_SETTABWIDTH, static_cast<unsigned long>(tabWidth));
        for (const long position : {end - 5, editor.GetLength() - 5, end - 400000, editor.GetLength() - 300000})
            expectColumnAt(position);
    }
    // A text put in without notices, as a load does, is counted afresh once forgotten.
    editor.SendScintilla(Sci::SCI_SETMODEVENTMASK, 0UL);
    editor.SendScintilla(Sci::SCI_INSERTTEXT, 5UL, "\t\t");
    editor.SendScintilla(Sci::SCI_SETMODEVENTMASK, static_cast<unsigned long>(Sci::SC_MODEVENTMASKALL));
    editor.ForgetColumns();
    expectColumnAt(editor.GetLength());
}

} // namespace
