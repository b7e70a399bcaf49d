#include "TypingHelp.h"

#include "ControlAccess.h"

#include <Qsci/qsciscintillabase.h>

#include <algorithm>

namespace {

using ControlAccess::Send;
using ControlAccess::IsWordByte;

using Sci = QsciScintillaBase;

// How much of each document is read for words: around the caret in the document being
// typed in, from the top in the others, so that a huge file cannot stall typing.
constexpr long ScanBytes = 2 * 1024 * 1024;
constexpr int MostWords = 500;

void CollectFrom(QsciScintillaBase& c, long from, long to, const QByteArray& prefix, QSet<QByteArray>& words)
{
    const long length = Send(c, Sci::SCI_GETLENGTH);
    from = std::max(0L, from);
    to = std::min(length, to);
    if (to <= from)
        return;
    // Start and end on word boundaries so no word is cut in two.
    from = Send(c, Sci::SCI_WORDSTARTPOSITION, from, 1);
    to = Send(c, Sci::SCI_WORDENDPOSITION, to, 1);
    const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETRANGEPOINTER, from, to - from));
    WordCompletion::CollectWords(text, to - from, prefix, words);
}

} // namespace

namespace WordCompletion {

QByteArray PrefixAtCaret(QsciScintillaBase& c)
{
    const long caret = Send(c, Sci::SCI_GETCURRENTPOS);
    const long start = Send(c, Sci::SCI_WORDSTARTPOSITION, caret, 1);
    if (start >= caret)
        return {};
    const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETRANGEPOINTER, start, caret - start));
    return QByteArray(text, int(caret - start));
}

void CollectWords(const char* text, long length, const QByteArray& prefix, QSet<QByteArray>& words)
{
    long i = 0;
    while (i < length) {
        while (i < length && !IsWordByte(text[i]))
            ++i;
        const long start = i;
        while (i < length && IsWordByte(text[i]))
            ++i;
        const long size = i - start;
        if (size > prefix.size() && std::equal(prefix.begin(), prefix.end(), text + start))
            words.insert(QByteArray(text + start, int(size)));
    }
}

bool Show(QsciScintillaBase& c, const QList<QsciScintillaBase*>& sources)
{
    const QByteArray prefix = PrefixAtCaret(c);
    // A prefix that starts with a digit is a number, not a word.
    if (prefix.isEmpty() || (prefix.front() >= '0' && prefix.front() <= '9'))
        return false;
    QSet<QByteArray> words;
    QSet<long> seen;
    const long caret = Send(c, Sci::SCI_GETCURRENTPOS);
    CollectFrom(c, caret - ScanBytes / 2, caret + ScanBytes / 2, prefix, words);
    seen.insert(Send(c, Sci::SCI_GETDOCPOINTER));
    for (QsciScintillaBase* other : sources) {
        // Two views of one document share their text: read it once.
        if (!other || seen.contains(Send(*other, Sci::SCI_GETDOCPOINTER)))
            continue;
        seen.insert(Send(*other, Sci::SCI_GETDOCPOINTER));
        CollectFrom(*other, 0, ScanBytes, prefix, words);
    }
    // The word being typed is not a completion of itself.
    const long wordEnd = Send(c, Sci::SCI_WORDENDPOSITION, caret, 1);
    if (wordEnd > caret) {
        const long start = caret - prefix.size();
        const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETRANGEPOINTER, start, wordEnd - start));
        words.remove(QByteArray(text, int(wordEnd - start)));
    }
    if (words.isEmpty())
        return false;
    QList<QByteArray> sorted(words.begin(), words.end());
    std::sort(sorted.begin(), sorted.end());
    if (sorted.size() > MostWords)
        sorted.resize(MostWords);
    const QByteArray list = sorted.join(' ');
    Send(c, Sci::SCI_AUTOCSETIGNORECASE, 0);
    Send(c, Sci::SCI_AUTOCSETSEPARATOR, ' ');
    Send(c, Sci::SCI_AUTOCSETAUTOHIDE, 1);
    Send(c, Sci::SCI_AUTOCSHOW, prefix.size(), reinterpret_cast<long>(list.constData()));
    return true;
}

bool ShouldOpenAutomatically(QsciScintillaBase& c)
{
    if (Send(c, Sci::SCI_AUTOCACTIVE) || Send(c, Sci::SCI_GETSELECTIONS) != 1)
        return false;
    const QByteArray prefix = PrefixAtCaret(c);
    // Count characters, not bytes: continuation bytes of UTF-8 do not start one.
    const auto characters = std::count_if(prefix.begin(), prefix.end(),
                                          [](char b) { return (static_cast<unsigned char>(b) & 0xC0) != 0x80; });
    if (characters != AutoPrefix)
        return false;
    // Only at a word's end, not while typing into the middle of one.
    const long caret = Send(c, Sci::SCI_GETCURRENTPOS);
    return caret >= Send(c, Sci::SCI_GETLENGTH) || !IsWordByte(char(Send(c, Sci::SCI_GETCHARAT, caret)));
}

} // namespace WordCompletion

namespace BraceIndent {

bool AfterNewLine(QsciScintillaBase& c)
{
    if (Send(c, Sci::SCI_GETSELECTIONS) != 1 || Send(c, Sci::SCI_GETREADONLY))
        return false;
    const long caret = Send(c, Sci::SCI_GETCURRENTPOS);
    const long line = Send(c, Sci::SCI_LINEFROMPOSITION, caret);
    if (line == 0)
        return false;
    const long above = line - 1;
    const long aboveStart = Send(c, Sci::SCI_POSITIONFROMLINE, above);
    const long aboveEnd = Send(c, Sci::SCI_GETLINEENDPOSITION, above);
    QByteArray text(reinterpret_cast<const char*>(Send(c, Sci::SCI_GETRANGEPOINTER, aboveStart, aboveEnd - aboveStart)),
                    int(aboveEnd - aboveStart));
    if (!text.trimmed().endsWith('{'))
        return false;
    const int base = int(Send(c, Sci::SCI_GETLINEINDENTATION, above));
    const int wanted = base + int(Send(c, Sci::SCI_GETINDENT) ? Send(c, Sci::SCI_GETINDENT) : Send(c, Sci::SCI_GETTABWIDTH));
    const long lineEnd = Send(c, Sci::SCI_GETLINEENDPOSITION, line);
    QByteArray rest(reinterpret_cast<const char*>(Send(c, Sci::SCI_GETRANGEPOINTER, caret, lineEnd - caret)),
                    int(lineEnd - caret));
    const bool closerFollows = rest.trimmed().startsWith('}');
    Send(c, Sci::SCI_BEGINUNDOACTION);
    bool changed = false;
    if (Send(c, Sci::SCI_GETLINEINDENTATION, line) < wanted) {
        Send(c, Sci::SCI_SETLINEINDENTATION, line, wanted);
        changed = true;
    }
    long position = Send(c, Sci::SCI_GETLINEINDENTPOSITION, line);
    if (closerFollows) {
        // Put the closer on the next line at the opener's indent, the caret stays between.
        const int eol = int(Send(c, Sci::SCI_GETEOLMODE));
        const QByteArray lineEnd = eol == Sci::SC_EOL_CRLF ? "\r\n" : eol == Sci::SC_EOL_CR ? "\r" : "\n";
        Send(c, Sci::SCI_INSERTTEXT, position, reinterpret_cast<long>(lineEnd.constData()));
        Send(c, Sci::SCI_SETLINEINDENTATION, line + 1, base);
        position = Send(c, Sci::SCI_GETLINEENDPOSITION, line);
        changed = true;
    }
    Send(c, Sci::SCI_ENDUNDOACTION);
    if (changed)
        Send(c, Sci::SCI_SETSEL, position, position);
    return changed;
}

} // namespace BraceIndent
