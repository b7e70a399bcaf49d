#pragma once

#include <QByteArray>
#include <QRegularExpression>
#include <QString>

class CMFCScintilla;

// Regular expression search over a text control, one line at a time as the control's own
// search goes: a match never spans a line end, "^" and "$" are line boundaries, and a
// search that begins inside a line doesn't see "^" there.
//
// It runs on PCRE2 (QRegularExpression) rather than the control's std::regex engine,
// which recurses per matched character and needs minutes on a line of a few thousand
// characters: long lines must neither crash the program nor hang it. PCRE2's own limits
// turn a runaway expression into "no match".
class ExpressionSearch
{
public:
    ExpressionSearch(CMFCScintilla* editor, const QString& pattern, bool matchCase, bool wholeWord);

    bool IsValid() const { return m_regex.isValid(); }

    // Searches [start, end) forward, or backward for the last match when end is below
    // start. Returns the match's start and sets `matchEnd`, or -1.
    long Find(long start, long end, long& matchEnd);

    // The replacement with \0..\9 taken from the last match, "\\" as a backslash and
    // \n, \r, \t as those characters. Without a match the text comes back unchanged.
    QByteArray Expand(const QByteArray& replacement) const;

private:
    struct Line
    {
        QString text;      // decoded line without its end
        QByteArray bytes;  // the same in the control's bytes
        bool latin1 = false;
    };
    static constexpr long InitialWindow = 4096;
    static constexpr long WindowContext = 16;
    static constexpr long WindowMargin = 256;

    Line ReadLine(long lineStart, long lineEnd) const;
    long CharStart(long position) const;
    long ByteOffset(const Line& line, qsizetype index) const;
    qsizetype CharIndex(const Line& line, long byteOffset) const;
    // The first (or, with `last`, the final) match in `line` starting at or after `from`
    // and ending at or before `to` (byte offsets within the line).
    bool MatchInLine(const Line& line, long from, long to, bool last, long& begin, long& end);

    CMFCScintilla* m_editor;
    QRegularExpression m_regex;
    bool m_utf8;
    QList<QByteArray> m_groups;
};
