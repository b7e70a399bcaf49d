#pragma once

#include <vector>

class QsciScintillaBase;

// The column of a position, as the control counts it (characters, tabs to the next tab
// stop), without counting from the start of the line at every ask. The control does
// exactly that, so on a line of megabytes every caret move paused to count them all.
// Along a few long lines (the caret's, a brace's partner's) this remembers a column every
// `stride` bytes; a change of the text forgets what lies after it.
class CColumnCounter
{
public:
    explicit CColumnCounter(const QsciScintillaBase& editor, long stride = 1 << 18);

    long Column(long position);
    // The text changed at `position`: columns after it are no longer known.
    void Changed(long position);
    // The whole text may have changed (read again, another document shown).
    void Forget();

private:
    struct Mark
    {
        long position;
        long column;
    };
    struct Line
    {
        long line;
        long start;
        long tabWidth;
        // Increasing positions, the first at the line's start.
        std::vector<Mark> marks;
    };

    long SendLong(unsigned int message, long wParam = 0, long lParam = 0) const;
    // Counts on from a known column to `to`, both character boundaries on one line.
    long CountOn(Mark from, long to, long tabWidth) const;

    const QsciScintillaBase& m_editor;
    const long m_stride;
    // The lines asked about last, the latest first.
    std::vector<Line> m_lines;
};
