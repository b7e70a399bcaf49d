#include "CTextSearch.h"

#include "settings/CRegistryStore.h"
#include "editor/CMFCScintilla.h"

#include "ExpressionSearch.h"
#include "LongOperation.h"

#include <QScopeGuard>
#include <QSet>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <functional>

namespace {

const QString FindReplaceSection = QStringLiteral("FindReplace");
const QString LastSelectedValue = QStringLiteral("LastSelectedValue");

// The seed is cut to this many bytes when the selection is longer than SeedLimit.
constexpr int SeedLimit = 100;
constexpr int SeedCut = 99;

// Cuts UTF-8 bytes to at most `length` without splitting a character.
QByteArray CutUtf8(const QByteArray& bytes, int length)
{
    if (bytes.size() <= length)
        return bytes;
    int cut = length;
    while (cut > 0 && (static_cast<unsigned char>(bytes.at(cut)) & 0xC0) == 0x80)
        --cut;
    return bytes.left(cut);
}

} // namespace

CTextSearch::CTextSearch(CMFCScintilla* editor)
    : m_editor(editor)
{
}

CTextSearch::~CTextSearch() = default;
CTextSearch::CTextSearch(CTextSearch&&) noexcept = default;

int CTextSearch::SearchFlags(bool matchCase, bool wholeWord, bool regExp)
{
    int flags = 0;
    if (matchCase)
        flags |= QsciScintillaBase::SCFIND_MATCHCASE;
    if (wholeWord)
        flags |= QsciScintillaBase::SCFIND_WHOLEWORD;
    if (regExp)
        flags |= QsciScintillaBase::SCFIND_REGEXP | QsciScintillaBase::SCFIND_CXX11REGEX;
    return flags;
}

void CTextSearch::SetSearchFlags(bool matchCase, bool wholeWord, bool regExp)
{
    SetSearchFlags(SearchFlags(matchCase, wholeWord, regExp));
}

void CTextSearch::SetSearchFlags(int scintillaFlags)
{
    // Our own searches match expressions with PCRE2; anything that still asks the
    // control itself gets its C++11 engine rather than the old one, which knows neither
    // alternation nor \d.
    if (scintillaFlags & QsciScintillaBase::SCFIND_REGEXP)
        scintillaFlags |= QsciScintillaBase::SCFIND_CXX11REGEX;
    m_editor->SetSearchFlags(scintillaFlags);
}

QByteArray CTextSearch::Encode(const QString& text) const
{
    const long codePage = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCODEPAGE);
    return codePage == QsciScintillaBase::SC_CP_UTF8 ? text.toUtf8() : text.toLocal8Bit();
}

QString CTextSearch::Decode(const QByteArray& bytes) const
{
    const long codePage = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCODEPAGE);
    return codePage == QsciScintillaBase::SC_CP_UTF8 ? QString::fromUtf8(bytes)
                                                    : QString::fromLocal8Bit(bytes);
}

bool CTextSearch::ExpressionsOn() const
{
    return m_editor->SendScintilla(QsciScintillaBase::SCI_GETSEARCHFLAGS)
           & QsciScintillaBase::SCFIND_REGEXP;
}

long CTextSearch::SearchRange(long start, long end, const QByteArray& text)
{
    if (text.isEmpty())
        return -1;
    const int flags = static_cast<int>(m_editor->SendScintilla(QsciScintillaBase::SCI_GETSEARCHFLAGS));
    if (!(flags & QsciScintillaBase::SCFIND_REGEXP)) {
        if (start <= end) {
            const long found = FindPlainForward(start, end, text, flags);
            if (found != -2)
                return found;
        }
        m_editor->SetTargetStart(start);
        m_editor->SetTargetEnd(end);
        const long found = m_editor->SearchInTarget(text);
        return found < 0 ? -1 : found;
    }
    if (!m_expression || m_expressionText != text || m_expressionFlags != flags) {
        m_expression = std::make_unique<ExpressionSearch>(
            m_editor, Decode(text), flags & QsciScintillaBase::SCFIND_MATCHCASE,
            flags & QsciScintillaBase::SCFIND_WHOLEWORD);
        m_expressionText = text;
        m_expressionFlags = flags;
    }
    long matchEnd = -1;
    const long found = m_expression->Find(start, end, matchEnd);
    if (found < 0)
        return -1;
    m_editor->SetTargetStart(found);
    m_editor->SetTargetEnd(matchEnd);
    return found;
}

namespace {

enum class CharClass { Space, Word, Punctuation };

// The control's default classes, by byte: bytes of multi-byte characters count as word.
CharClass ClassOf(int byte)
{
    if (byte >= 0x80 || std::isalnum(byte) || byte == '_')
        return CharClass::Word;
    if (byte <= ' ')
        return CharClass::Space;
    return CharClass::Punctuation;
}

unsigned char Fold(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + 32) : c;
}

struct FoldedHash
{
    std::size_t operator()(char c) const { return Fold(static_cast<unsigned char>(c)); }
};
struct FoldedEqual
{
    bool operator()(char a, char b) const
    {
        return Fold(static_cast<unsigned char>(a)) == Fold(static_cast<unsigned char>(b));
    }
};

// Searches start with a small window, so that a match near the start (every match of a
// Replace All) costs little, and grow to large ones for long runs.
constexpr long kFirstWindow = 64 * 1024;
constexpr long kLargestWindow = 64L * 1024 * 1024;

} // namespace

bool CTextSearch::IsWordAt(long start, long end) const
{
    // As the control judges whole words: a class change at both edges.
    const long length = m_editor->GetLength();
    if (start >= length || end <= 0)
        return false;
    if (start > 0) {
        const CharClass here = ClassOf(m_editor->GetCharAt(start));
        if (here == CharClass::Space || here == ClassOf(m_editor->GetCharAt(start - 1)))
            return false;
    }
    if (end < length) {
        const CharClass before = ClassOf(m_editor->GetCharAt(end - 1));
        if (before == CharClass::Space || before == ClassOf(m_editor->GetCharAt(end)))
            return false;
    }
    return true;
}

long CTextSearch::FindPlainForward(long start, long end, const QByteArray& text, int flags)
{
    const bool matchCase = flags & QsciScintillaBase::SCFIND_MATCHCASE;
    const bool wholeWord = flags & QsciScintillaBase::SCFIND_WHOLEWORD;
    constexpr int handled = QsciScintillaBase::SCFIND_MATCHCASE | QsciScintillaBase::SCFIND_WHOLEWORD;
    if (flags & ~handled)
        return -2;
    // Folding case byte by byte is right for ASCII only.
    if (!matchCase && std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }))
        return -2;

    const long n = text.size();
    const std::boyer_moore_horspool_searcher<const char*, FoldedHash, FoldedEqual> folded(
        text.constData(), text.constData() + n);
    long window = kFirstWindow;
    long pos = start;
    while (end - pos >= n) {
        const long span = std::min(end - pos, window);
        // The control moves its gap out of the way only where it lies inside the window.
        const char* base = reinterpret_cast<const char*>(m_editor->SendScintilla(
            QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(pos), span));
        if (!base)
            return -1;
        const char* const last = base + span;
        for (const char* at = base;;) {
            const char* hit;
            if (matchCase) {
                hit = static_cast<const char*>(memmem(at, std::size_t(last - at), text.constData(), std::size_t(n)));
            } else {
                hit = std::search(at, last, folded);
                if (hit == last)
                    hit = nullptr;
            }
            if (!hit)
                break;
            const long found = pos + long(hit - base);
            if (!wholeWord || IsWordAt(found, found + n)) {
                m_editor->SetTargetStart(found);
                m_editor->SetTargetEnd(found + n);
                return found;
            }
            at = hit + 1;
        }
        if (pos + span >= end)
            break;
        // The next window overlaps by all but one byte of the text, for a match across.
        pos += span - (n - 1);
        window = std::min(window * 2, kLargestWindow);
        if (!Step(pos))
            return -1;
    }
    return -1;
}

bool CTextSearch::Step(long done)
{
    return !m_operation || m_operation->Step(done - m_operationStart);
}

long CTextSearch::ReplaceTarget(const QByteArray& replacement, bool useExpressionTags)
{
    if (!useExpressionTags)
        return m_editor->ReplaceTarget(replacement);
    if (m_expression && ExpressionsOn())
        return m_editor->ReplaceTarget(m_expression->Expand(replacement));
    return m_editor->ReplaceTargetRE(replacement);
}

void CTextSearch::SelectTarget()
{
    const long start = m_editor->GetTargetStart();
    const long end = m_editor->GetTargetEnd();
    const long first = m_editor->LineFromPosition(start);
    const long last = m_editor->LineFromPosition(end);
    for (long line = first; line <= last; ++line)
        m_editor->SendScintilla(QsciScintillaBase::SCI_ENSUREVISIBLEENFORCEPOLICY,
                                static_cast<unsigned long>(line));
    m_editor->SetSel(start, end);
}

long CTextSearch::FindText(const QString& text, bool searchUp, bool wrapAround)
{
    const QByteArray bytes = Encode(text);
    const long length = m_editor->GetLength();
    m_cancelled = false;
    LongOperation operation(m_progressSink, length, m_quietMs);
    m_operation = &operation;
    m_operationStart = 0;
    const auto done = qScopeGuard([this, &operation] {
        m_cancelled = operation.Cancelled();
        m_operation = nullptr;
    });
    long found = searchUp ? SearchRange(m_editor->GetSelectionStart(), 0, bytes)
                          : SearchRange(m_editor->GetSelectionEnd(), length, bytes);
    if (found == -1) {
        if (!wrapAround || operation.Cancelled())
            return -1;
        found = searchUp ? SearchRange(length, 0, bytes) : SearchRange(0, length, bytes);
        if (found == -1)
            return -1;
    }
    SelectTarget();
    return found;
}

bool CTextSearch::SelectMatchAtCaret(const QString& text)
{
    if (text.isEmpty())
        return false;
    const long caret = m_editor->GetCurrentPos();
    const long lineEnd = m_editor->GetLineEndPosition(m_editor->LineFromPosition(caret));
    if (SearchRange(caret, lineEnd, Encode(text)) != caret)
        return false;
    SelectTarget();
    return true;
}

bool CTextSearch::MarkAll(const QString& text)
{
    if (text.isEmpty())
        return false;
    const long caret = m_editor->GetCurrentPos();
    const long first = FindText(text, false, true);
    if (first == -1)
        return false;

    const QByteArray bytes = Encode(text);
    // Each match toggles its line's bookmark, until the search comes round to the first
    // match again. A position seen before also ends it: an expression whose matches
    // depend on where the search starts might otherwise never come back to `first`.
    QSet<long> seen;
    long pos = first;
    do {
        seen.insert(pos);
        // Set, never toggled: a line with two matches would otherwise lose its mark.
        const long line = m_editor->LineFromPosition(pos);
        if (!m_editor->HasBookmark(line))
            m_editor->SendScintilla(QsciScintillaBase::SCI_MARKERADD,
                                    static_cast<unsigned long>(line),
                                    static_cast<long>(CMFCScintilla::BookmarkMarker));

        const long length = m_editor->GetLength();
        pos = SearchRange(m_editor->GetSelectionEnd(), length, bytes);
        if (pos == -1)
            pos = SearchRange(0, length, bytes);
        if (pos == -1)
            break;
        SelectTarget();
    } while (pos != first && !seen.contains(pos));

    m_editor->SetCurrentPos(caret);
    m_editor->SetSel(caret, caret);
    return true;
}

long CTextSearch::ReplaceAll(const QString& find, const QString& replace, bool selectionOnly,
                             bool useExpressionTags)
{
    const QByteArray findBytes = Encode(find);
    const QByteArray replaceBytes = Encode(replace);
    const long selStart = m_editor->GetSelectionStart();
    const long selEnd = m_editor->GetSelectionEnd();
    long count = 0;

    long rangeStart = 0;
    long rangeEnd = m_editor->GetLength();
    if (selectionOnly) {
        if (selStart == selEnd)
            return ScopeEmpty;
        // Whole lines: from the start of the first line to the start of the line after
        // the last one (the document's end when that is the last line).
        rangeStart = m_editor->PositionFromLine(m_editor->LineFromPosition(selStart));
        const long lastLine = m_editor->LineFromPosition(selEnd);
        rangeEnd = lastLine + 1 < m_editor->GetLineCount()
                       ? m_editor->PositionFromLine(lastLine + 1)
                       : m_editor->GetLength();
    }

    // The control refuses changes to read-only text; a loop that counted on them would
    // never move on (an empty replacement leaves the next search where it was).
    if (m_editor->GetReadOnly())
        return 0;

    long pos = SearchRange(rangeStart, rangeEnd, findBytes);
    const bool regExp = m_editor->SendScintilla(QsciScintillaBase::SCI_GETSEARCHFLAGS)
                        & QsciScintillaBase::SCFIND_REGEXP;
    if (regExp && find == QLatin1String("^")) {
        // The start of the range is always a line start: take it as the first match.
        pos = rangeStart;
        m_editor->SetTargetStart(rangeStart);
        m_editor->SetTargetEnd(rangeStart);
    }
    if (pos == -1 || pos > rangeEnd)
        return 0;

    // The control's change notifications cost time in proportion to the document for
    // every change: with thousands of replacements that is minutes. They are held back
    // while the loop runs; what listeners do with them (the line-number margin's width)
    // is done once behind it.
    const long eventMask = m_editor->SendScintilla(QsciScintillaBase::SCI_GETMODEVENTMASK);
    const long linesBefore = m_editor->GetLineCount();
    m_editor->SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK, 0UL);

    m_cancelled = false;
    LongOperation operation(m_progressSink, rangeEnd - rangeStart, m_quietMs);
    m_operation = &operation;
    m_operationStart = rangeStart;
    m_editor->BeginUndoAction();
    long next = pos;
    while (true) {
        const long length = m_editor->GetTargetEnd() - m_editor->GetTargetStart();
        long replacedLength = replaceBytes.size();
        const bool zeroLength = length < 1;
        if (useExpressionTags)
            replacedLength = ReplaceTarget(replaceBytes, true);
        else
            ReplaceTarget(replaceBytes, false);
        rangeEnd += replacedLength - length;

        // Behind the inserted text; a zero-length match (such as "$" or "^") steps one
        // character further, a whole line end ("\r\n" too) when it stood at one, so
        // that the same place is not matched again.
        next = pos + replacedLength;
        if (zeroLength)
            next = m_editor->PositionAfter(next);
        ++count;
        if (next >= rangeEnd)
            break;
        // Cancel keeps what was replaced so far, as one undo step like the rest.
        if (!Step(next))
            break;
        const long found = SearchRange(next, rangeEnd, findBytes);
        // A match before `next` cannot come from a forward search; stop rather than loop.
        if (found == -1 || found < next)
            break;
        // An empty match at the end of a selection's lines (a "^") is on the next line.
        if (selectionOnly && found >= rangeEnd)
            break;
        pos = found;
    }
    if (selectionOnly)
        m_editor->SetSel(rangeStart, rangeEnd);
    else
        m_editor->SetSel(next, next);
    m_editor->EndUndoAction();
    m_cancelled = operation.Cancelled();
    m_operation = nullptr;

    m_editor->SendScintilla(QsciScintillaBase::SCI_SETMODEVENTMASK,
                            static_cast<unsigned long>(eventMask));
    // Listeners (a recovery copy under way, the find bar's count) hear of the changes
    // once, as if they were one edit from the start of the range.
    if (count > 0)
        Q_EMIT m_editor->SCN_MODIFIED(int(std::min<long>(rangeStart, INT_MAX)),
                                      QsciScintillaBase::SC_MOD_INSERTTEXT | QsciScintillaBase::SC_MOD_DELETETEXT
                                          | QsciScintillaBase::SC_PERFORMED_USER,
                                      nullptr, 0, int(m_editor->GetLineCount() - linesBefore), 0, 0, 0, 0, 0);
    const bool lineNumbersShown =
        m_editor->SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN,
                                static_cast<unsigned long>(CMFCScintilla::LineNumberMargin)) > 0;
    if (m_editor->GetLineCount() != linesBefore && lineNumbersShown)
        m_editor->SetLineNumberMargin(true);
    return count;
}

long CTextSearch::ReplaceNext(const QString& find, const QString& replace,
                              bool useExpressionTags, long lastFound)
{
    if (lastFound != -1) {
        const long start = m_editor->GetSelectionStart();
        const long end = m_editor->GetSelectionEnd();
        // The tags come from matching the selection again.
        if (useExpressionTags && ExpressionsOn())
            SearchRange(start, end, Encode(find));
        m_editor->SetTargetStart(start);
        m_editor->SetTargetEnd(end);
        const long length = ReplaceTarget(Encode(replace), useExpressionTags);
        m_editor->SetSel(start, start + length);
    }
    return FindText(find, false, true);
}

QString CTextSearch::GetSearchSeed() const
{
    CRegistryStore store;
    if (m_editor->HasSelection()) {
        QByteArray bytes = m_editor->GetSelText();
        if (bytes.size() > SeedLimit)
            bytes = CutUtf8(bytes, SeedCut);
        const QString seed = Decode(bytes);
        store.WriteProfileString(FindReplaceSection, LastSelectedValue, seed);
        return seed;
    }
    return store.GetProfileString(FindReplaceSection, LastSelectedValue);
}
