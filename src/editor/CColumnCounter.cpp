#include "CColumnCounter.h"

#include <Qsci/qsciscintillabase.h>

#include <algorithm>
#include <cstring>

using Sci = QsciScintillaBase;

CColumnCounter::CColumnCounter(const QsciScintillaBase& editor, long stride)
    : m_editor(editor)
    , m_stride(std::max(16L, stride))
{
}

long CColumnCounter::SendLong(unsigned int message, long wParam, long lParam) const
{
    return m_editor.SendScintilla(message, static_cast<unsigned long>(wParam), lParam);
}

long CColumnCounter::Column(long position)
{
    const long line = SendLong(Sci::SCI_LINEFROMPOSITION, position);
    const long lineStart = SendLong(Sci::SCI_POSITIONFROMLINE, line);
    const long lineEnd = SendLong(Sci::SCI_GETLINEENDPOSITION, line);
    // The control stops counting at the line's end.
    position = std::clamp(position, lineStart, lineEnd);
    if (position - lineStart < m_stride)
        return SendLong(Sci::SCI_GETCOLUMN, position);

    const long tabWidth = std::max(1L, SendLong(Sci::SCI_GETTABWIDTH));
    auto known = std::find_if(m_lines.begin(), m_lines.end(), [line](const Line& l) { return l.line == line; });
    if (known != m_lines.end() && (known->start != lineStart || known->tabWidth != tabWidth))
        known->marks.clear();
    if (known == m_lines.end()) {
        constexpr size_t Remembered = 4;
        if (m_lines.size() == Remembered)
            m_lines.pop_back();
        m_lines.push_back(Line{line, lineStart, tabWidth, {}});
        known = m_lines.end() - 1;
    }
    std::rotate(m_lines.begin(), known, known + 1);
    Line& entry = m_lines.front();
    entry.start = lineStart;
    entry.tabWidth = tabWidth;
    if (entry.marks.empty())
        entry.marks.push_back(Mark{lineStart, 0});
    std::vector<Mark>& marks = entry.marks;

    const auto after = std::upper_bound(marks.begin(), marks.end(), position,
                                        [](long p, const Mark& mark) { return p < mark.position; });
    Mark from = *(after - 1);
    // Between two marks the lower one is at most a stride away; past the last, lay more.
    const bool pastLast = after == marks.end();
    while (pastLast && position - from.position > m_stride) {
        // The start of the character at the stride's end, so that counting from the mark
        // steps on the boundaries the control steps on.
        const long next = SendLong(Sci::SCI_POSITIONBEFORE, from.position + m_stride + 1);
        if (next <= from.position)
            break;
        from = Mark{next, CountOn(from, next, tabWidth)};
        marks.push_back(from);
    }
    // Inside a character the control counts that character whole.
    const long start = SendLong(Sci::SCI_POSITIONBEFORE, position + 1);
    if (start < position && start >= from.position)
        return CountOn(from, start, tabWidth) + 1;
    return CountOn(from, position, tabWidth);
}

long CColumnCounter::CountOn(Mark from, long to, long tabWidth) const
{
    const auto* text = reinterpret_cast<const char*>(
        SendLong(Sci::SCI_GETRANGEPOINTER, from.position, to - from.position));
    if (!text)
        return SendLong(Sci::SCI_GETCOLUMN, to);
    long column = from.column;
    long at = from.position;
    while (at < to) {
        const void* tab = std::memchr(text + (at - from.position), '\t', static_cast<size_t>(to - at));
        const long stop = tab ? from.position + long(static_cast<const char*>(tab) - text) : to;
        column += SendLong(Sci::SCI_COUNTCHARACTERS, at, stop);
        if (!tab)
            break;
        column = (column / tabWidth + 1) * tabWidth;
        at = stop + 1;
    }
    return column;
}

void CColumnCounter::Changed(long position)
{
    // A mark at the change itself still counts the same text in front of it. A change in
    // front of a line may have moved it: it is counted afresh.
    for (Line& entry : m_lines) {
        std::vector<Mark>& marks = entry.marks;
        if (position < entry.start)
            marks.clear();
        while (!marks.empty() && marks.back().position > position)
            marks.pop_back();
    }
}

void CColumnCounter::Forget()
{
    m_lines.clear();
}
