#include "LineOperations.h"

#include "ControlAccess.h"

#include <Qsci/qsciscintillabase.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <algorithm>

namespace {

using ControlAccess::Send;

using Sci = QsciScintillaBase;

struct LineRange
{
    int first = 0;
    int last = 0;
};

// The lines the selection covers; a selection ending at a line's start leaves that line out.
LineRange SelectedLines(QsciScintillaBase& c)
{
    const long start = Send(c, Sci::SCI_GETSELECTIONSTART);
    const long end = Send(c, Sci::SCI_GETSELECTIONEND);
    LineRange range{int(Send(c, Sci::SCI_LINEFROMPOSITION, start)),
                    int(Send(c, Sci::SCI_LINEFROMPOSITION, end))};
    if (range.last > range.first && Send(c, Sci::SCI_POSITIONFROMLINE, range.last) == end)
        --range.last;
    return range;
}

QByteArray Range(QsciScintillaBase& c, long start, long end)
{
    if (end <= start)
        return {};
    Send(c, Sci::SCI_SETTARGETRANGE, start, end);
    QByteArray text(int(end - start), '\0');
    Send(c, Sci::SCI_GETTARGETTEXT, 0, reinterpret_cast<long>(text.data()));
    return text;
}

long LineStart(QsciScintillaBase& c, int line) { return Send(c, Sci::SCI_POSITIONFROMLINE, line); }
long LineEnd(QsciScintillaBase& c, int line) { return Send(c, Sci::SCI_GETLINEENDPOSITION, line); }

QList<QByteArray> Lines(QsciScintillaBase& c, int first, int last)
{
    QList<QByteArray> lines;
    for (int line = first; line <= last; ++line)
        lines << Range(c, LineStart(c, line), LineEnd(c, line));
    return lines;
}

// The line end the text itself uses after `line`, else the document's setting.
QByteArray Eol(QsciScintillaBase& c, int line)
{
    const QByteArray own = Range(c, LineEnd(c, line), LineStart(c, line + 1));
    if (!own.isEmpty())
        return own;
    switch (Send(c, Sci::SCI_GETEOLMODE)) {
    case Sci::SC_EOL_CRLF: return QByteArrayLiteral("\r\n");
    case Sci::SC_EOL_CR: return QByteArrayLiteral("\r");
    default: return QByteArrayLiteral("\n");
    }
}

// Replaces lines first..last (their text, not the last line's end) in one undo step
// and returns where the new text starts.
long ReplaceLines(QsciScintillaBase& c, int first, int last, const QByteArray& text)
{
    const long start = LineStart(c, first);
    Send(c, Sci::SCI_SETTARGETRANGE, start, LineEnd(c, last));
    Send(c, Sci::SCI_REPLACETARGET, text.size(), reinterpret_cast<long>(text.constData()));
    return start;
}

// The last line of the block that starts at `line`: the line itself unless it heads a fold
// that is closed.
int BlockEnd(QsciScintillaBase& c, int line)
{
    const long level = Send(c, Sci::SCI_GETFOLDLEVEL, line);
    if ((level & Sci::SC_FOLDLEVELHEADERFLAG) && !Send(c, Sci::SCI_GETFOLDEXPANDED, line))
        return std::max(line, int(Send(c, Sci::SCI_GETLASTCHILD, line, -1)));
    return line;
}

// The first line of the block ending at `line`: the closed fold's header when `line` is hidden.
int BlockStart(QsciScintillaBase& c, int line)
{
    while (line > 0 && !Send(c, Sci::SCI_GETLINEVISIBLE, line)) {
        const int parent = int(Send(c, Sci::SCI_GETFOLDPARENT, line));
        if (parent < 0)
            break;
        line = parent;
    }
    return line;
}

QString Decode(QsciScintillaBase& c, const QByteArray& bytes)
{
    return Send(c, Sci::SCI_GETCODEPAGE) == Sci::SC_CP_UTF8 ? QString::fromUtf8(bytes)
                                                             : QString::fromLatin1(bytes);
}

class UndoStep
{
public:
    explicit UndoStep(QsciScintillaBase& c) : m_c(c) { Send(m_c, Sci::SCI_BEGINUNDOACTION); }
    ~UndoStep() { Send(m_c, Sci::SCI_ENDUNDOACTION); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

private:
    QsciScintillaBase& m_c;
};

bool ReadOnly(QsciScintillaBase& c) { return Send(c, Sci::SCI_GETREADONLY) != 0; }

} // namespace

namespace LineOperations {

bool MoveLines(QsciScintillaBase& c, int direction)
{
    if (ReadOnly(c) || direction == 0)
        return false;
    LineRange block = SelectedLines(c);
    block.last = BlockEnd(c, block.last);
    const int lineCount = int(Send(c, Sci::SCI_GETLINECOUNT));
    int first = 0, last = 0, neighbourLines = 0;
    if (direction < 0) {
        if (block.first == 0)
            return false;
        first = BlockStart(c, block.first - 1);
        last = block.last;
        neighbourLines = block.first - first;
    } else {
        if (block.last + 1 >= lineCount)
            return false;
        first = block.first;
        last = BlockEnd(c, block.last + 1);
        neighbourLines = last - block.last;
    }
    QList<QByteArray> lines = Lines(c, first, last);
    const int blockLines = block.last - block.first + 1;
    if (direction < 0)
        std::rotate(lines.begin(), lines.begin() + neighbourLines, lines.end());
    else
        std::rotate(lines.begin(), lines.begin() + blockLines, lines.end());

    // Keep the selection on the moved text, measured from its first line.
    const long anchor = Send(c, Sci::SCI_GETANCHOR) - LineStart(c, block.first);
    const long caret = Send(c, Sci::SCI_GETCURRENTPOS) - LineStart(c, block.first);
    const int newFirst = direction < 0 ? first : first + neighbourLines;
    {
        UndoStep step(c);
        ReplaceLines(c, first, last, lines.join(Eol(c, first)));
    }
    for (int line = first; line <= last; ++line)
        Send(c, Sci::SCI_ENSUREVISIBLE, line);
    const long base = LineStart(c, newFirst);
    Send(c, Sci::SCI_SETSEL, base + anchor, base + caret);
    return true;
}

void Duplicate(QsciScintillaBase& c)
{
    if (ReadOnly(c))
        return;
    UndoStep step(c);
    Send(c, Sci::SCI_SELECTIONDUPLICATE);
}

bool JoinLines(QsciScintillaBase& c)
{
    if (ReadOnly(c))
        return false;
    LineRange range = SelectedLines(c);
    if (range.last == range.first)
        ++range.last;
    if (range.last >= Send(c, Sci::SCI_GETLINECOUNT))
        return false;
    const QList<QByteArray> lines = Lines(c, range.first, range.last);
    QByteArray joined = lines.first();
    for (int i = 1; i < lines.size(); ++i) {
        const QByteArray next = lines[i].trimmed().isEmpty() ? QByteArray() : [&] {
            QByteArray text = lines[i];
            int lead = 0;
            while (lead < text.size() && (text[lead] == ' ' || text[lead] == '\t'))
                ++lead;
            return text.mid(lead);
        }();
        while (!joined.isEmpty() && (joined.back() == ' ' || joined.back() == '\t'))
            joined.chop(1);
        if (!joined.isEmpty() && !next.isEmpty())
            joined += ' ';
        joined += next;
    }
    UndoStep step(c);
    const long start = ReplaceLines(c, range.first, range.last, joined);
    Send(c, Sci::SCI_SETSEL, start + joined.size(), start + joined.size());
    return true;
}

bool SortLines(QsciScintillaBase& c, SortOrder order)
{
    if (ReadOnly(c))
        return false;
    LineRange range = SelectedLines(c);
    if (range.first == range.last) {
        range.first = 0;
        range.last = int(Send(c, Sci::SCI_GETLINECOUNT)) - 1;
        // A document ending with a line end has an empty last line that is not sorted.
        if (range.last > 0 && LineStart(c, range.last) == LineEnd(c, range.last))
            --range.last;
    }
    const QList<QByteArray> lines = Lines(c, range.first, range.last);
    QList<QPair<QString, int>> keys;
    keys.reserve(lines.size());
    for (int i = 0; i < lines.size(); ++i)
        keys.append({Decode(c, lines[i]), i});
    const auto sensitivity = order == SortOrder::CaseInsensitive ? Qt::CaseInsensitive : Qt::CaseSensitive;
    std::stable_sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
        const int cmp = a.first.compare(b.first, sensitivity);
        return order == SortOrder::Descending ? cmp > 0 : cmp < 0;
    });
    QList<QByteArray> sorted;
    for (int i = 0; i < keys.size(); ++i) {
        if (order == SortOrder::Unique && i > 0 && keys[i].first == keys[i - 1].first)
            continue;
        sorted << lines[keys[i].second];
    }
    const QByteArray text = sorted.join(Eol(c, range.first));
    UndoStep step(c);
    const long start = ReplaceLines(c, range.first, range.last, text);
    Send(c, Sci::SCI_SETSEL, start, start + text.size());
    return true;
}

QPair<QByteArray, QByteArray> BlockCommentMarkers(const QByteArray& lexer)
{
    static const struct { const char* lexer; const char* open; const char* close; } kMarkers[] = {
        {"cpp", "/*", "*/"}, {"cppnocase", "/*", "*/"}, {"css", "/*", "*/"}, {"sql", "/*", "*/"},
        {"hypertext", "<!--", "-->"}, {"xml", "<!--", "-->"}, {"html", "<!--", "-->"},
        {"pascal", "{", "}"}, {"lua", "--[[", "]]"}, {"rust", "/*", "*/"}, {"d", "/*", "*/"}};
    for (const auto& m : kMarkers) {
        if (lexer == m.lexer)
            return {m.open, m.close};
    }
    return {};
}

bool ToggleBlockComment(QsciScintillaBase& c, const QByteArray& open, const QByteArray& close)
{
    if (ReadOnly(c) || open.isEmpty() || close.isEmpty())
        return false;
    long start = Send(c, Sci::SCI_GETSELECTIONSTART);
    long end = Send(c, Sci::SCI_GETSELECTIONEND);
    if (start == end) {
        const int line = int(Send(c, Sci::SCI_LINEFROMPOSITION, start));
        start = Send(c, Sci::SCI_GETLINEINDENTPOSITION, line);
        end = LineEnd(c, line);
        if (start == end)
            return false;
    }
    const QByteArray text = Range(c, start, end);
    const QByteArray inner = text.trimmed();
    QByteArray result;
    if (inner.size() >= open.size() + close.size() && inner.startsWith(open) && inner.endsWith(close)) {
        const int lead = int(text.indexOf(open));
        QByteArray body = inner.mid(open.size(), inner.size() - open.size() - close.size());
        // Take off the spaces a wrap put inside the markers.
        if (body.startsWith(' ') && body.endsWith(' ') && body.size() >= 2)
            body = body.mid(1, body.size() - 2);
        result = text.left(lead) + body + text.mid(lead + inner.size());
    } else {
        result = open + ' ' + text + ' ' + close;
    }
    UndoStep step(c);
    Send(c, Sci::SCI_SETTARGETRANGE, start, end);
    Send(c, Sci::SCI_REPLACETARGET, result.size(), reinterpret_cast<long>(result.constData()));
    Send(c, Sci::SCI_SETSEL, start, start + result.size());
    return true;
}

} // namespace LineOperations
