#include "ExpressionSearch.h"

#include "editor/CMFCScintilla.h"

#include <algorithm>

ExpressionSearch::ExpressionSearch(CMFCScintilla* editor, const QString& pattern, bool matchCase,
                                   bool wholeWord)
    : m_editor(editor)
{
    m_utf8 = editor->SendScintilla(QsciScintillaBase::SCI_GETCODEPAGE)
             == QsciScintillaBase::SC_CP_UTF8;
    QString source = pattern;
    if (wholeWord)
        source = QStringLiteral("(?<!\\w)(?:%1)(?!\\w)").arg(pattern);
    QRegularExpression::PatternOptions options = QRegularExpression::NoPatternOption;
    if (!matchCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    if (m_utf8)
        options |= QRegularExpression::UseUnicodePropertiesOption;
    m_regex.setPattern(source);
    m_regex.setPatternOptions(options);
    if (!pattern.isEmpty() && m_regex.isValid())
        m_regex.optimize();
}

ExpressionSearch::Line ExpressionSearch::ReadLine(long lineStart, long lineEnd) const
{
    Line line;
    line.bytes = m_editor->GetTextRange(lineStart, lineEnd);
    if (m_utf8) {
        line.text = QString::fromUtf8(line.bytes);
        // Bytes that aren't UTF-8 would shift every offset behind them: such a line is
        // searched byte for character.
        if (line.text.toUtf8() == line.bytes)
            return line;
    }
    line.text = QString::fromLatin1(line.bytes);
    line.latin1 = true;
    return line;
}

long ExpressionSearch::ByteOffset(const Line& line, qsizetype index) const
{
    if (line.latin1)
        return static_cast<long>(index);
    return static_cast<long>(QStringView(line.text).left(index).toUtf8().size());
}

qsizetype ExpressionSearch::CharIndex(const Line& line, long byteOffset) const
{
    if (line.latin1)
        return byteOffset;
    // Offsets that fall inside a character count from that character's start.
    while (byteOffset > 0 && byteOffset < line.bytes.size()
           && (static_cast<unsigned char>(line.bytes.at(byteOffset)) & 0xC0) == 0x80)
        --byteOffset;
    return QString::fromUtf8(line.bytes.left(byteOffset)).size();
}

bool ExpressionSearch::MatchInLine(const Line& line, long from, long to, bool last, long& begin,
                                   long& end)
{
    // The subject ends at `to`, so that nothing behind the range is matched; it begins
    // at the line start, so that look-behind and \b see what stands before `from`.
    const QString subject = line.text.left(CharIndex(line, to));
    bool found = false;
    QRegularExpressionMatchIterator it = m_regex.globalMatch(subject, CharIndex(line, from));
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        if (!match.hasMatch())
            break;
        begin = ByteOffset(line, match.capturedStart());
        end = ByteOffset(line, match.capturedEnd());
        found = true;
        m_groups.clear();
        for (int group = 0; group <= m_regex.captureCount() && group <= 9; ++group)
            m_groups << (m_utf8 && !line.latin1 ? match.captured(group).toUtf8()
                                                : match.captured(group).toLatin1());
        if (!last)
            break;
    }
    return found;
}

long ExpressionSearch::CharStart(long position) const
{
    // Back to the first byte of the character that holds `position`.
    while (m_utf8 && position > 0
           && (m_editor->SendScintilla(QsciScintillaBase::SCI_GETCHARAT,
                                       static_cast<unsigned long>(position)) & 0xC0) == 0x80)
        --position;
    return position;
}

long ExpressionSearch::Find(long start, long end, long& matchEnd)
{
    if (!IsValid() || m_regex.pattern().isEmpty())
        return -1;
    const bool backward = end < start;
    const long low = backward ? end : start;
    const long high = backward ? start : end;
    const long firstLine = m_editor->LineFromPosition(low);
    const long lastLine = m_editor->LineFromPosition(high);
    for (long i = 0; i <= lastLine - firstLine; ++i) {
        const long lineNo = backward ? lastLine - i : firstLine + i;
        const long lineStart = m_editor->PositionFromLine(lineNo);
        const long lineEnd = m_editor->GetLineEndPosition(lineNo);
        const long from = std::max(low, lineStart);
        const long to = std::min(high, lineEnd);
        if (from > to)
            continue;
        long begin = 0;
        long finish = 0;
        if (backward) {
            // The last match needs the whole stretch; it is one search per key press.
            const Line line = ReadLine(lineStart, to);
            if (MatchInLine(line, from - lineStart, to - lineStart, true, begin, finish)) {
                matchEnd = lineStart + finish;
                return lineStart + begin;
            }
            continue;
        }
        // Forward, a window behind `from` is read, not the whole line: Replace All walks
        // a long line match by match, and reading the line each time would make that
        // quadratic. A few bytes before `from` let look-behind and \b see their
        // context (and keep "^" from matching inside the line). A match counts only well
        // inside the window, or when the window reaches `to`; otherwise it grows.
        const long windowStart = from > lineStart ? CharStart(std::max(lineStart, from - WindowContext))
                                                  : lineStart;
        for (long size = InitialWindow;; size *= 4) {
            const long windowEnd = from + size >= to ? to : CharStart(from + size);
            const Line line = ReadLine(windowStart, windowEnd);
            const bool whole = windowEnd == to;
            if (MatchInLine(line, from - windowStart, windowEnd - windowStart, false, begin, finish)
                && (whole || windowStart + finish <= windowEnd - WindowMargin)) {
                matchEnd = windowStart + finish;
                return windowStart + begin;
            }
            if (whole)
                break;
        }
    }
    return -1;
}

QByteArray ExpressionSearch::Expand(const QByteArray& replacement) const
{
    QByteArray out;
    out.reserve(replacement.size());
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        const char ch = replacement.at(i);
        if (ch != '\\' || i + 1 == replacement.size()) {
            out += ch;
            continue;
        }
        const char next = replacement.at(++i);
        if (next >= '0' && next <= '9') {
            out += m_groups.value(next - '0');
        } else if (next == 'n') {
            out += '\n';
        } else if (next == 'r') {
            out += '\r';
        } else if (next == 't') {
            out += '\t';
        } else if (next == '\\') {
            out += '\\';
        } else {
            out += '\\';
            out += next;
        }
    }
    return out;
}
