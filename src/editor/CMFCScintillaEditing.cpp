// Editing helpers built on the messages: braces, folding, comments, bookmarks,
// date and time, appending copies, indentation.
#include "CMFCScintilla.h"
#include "LongLinePieces.h"

#include "framework/ThemeColours.h"

#include "settings/CRegistryStore.h"

#include <QApplication>
#include <cstring>
#include <QClipboard>
#include <QDateTime>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <algorithm>

void CMFCScintilla::SelectWord(long position)
{
    const long start = SendScintilla(SCI_WORDSTARTPOSITION, static_cast<unsigned long>(position), 1L);
    const long end = SendScintilla(SCI_WORDENDPOSITION, static_cast<unsigned long>(position), 1L);
    SetSel(start, end);
}

void CMFCScintilla::SelectLine(long line)
{
    SetSel(PositionFromLine(line), GetLineEndPosition(line));
}

void CMFCScintilla::DeleteWord()
{
    const long end = SendScintilla(SCI_WORDENDPOSITION, static_cast<unsigned long>(GetCurrentPos()), 1L);
    // A selection is dropped first: the word at the caret goes, nothing else.
    GotoPos(end);
    SendScintilla(SCI_DELWORDLEFT);
}

void CMFCScintilla::Indent()
{
    if (!HasSelection())
        GotoPos(PositionFromLine(GetCurrentLine()));
    SendScintilla(SCI_TAB);
}

bool CMFCScintilla::IsBrace(int c)
{
    switch (c) {
    case '[': case ']': case '(': case ')': case '{': case '}':
        return true;
    default:
        return false;
    }
}

bool CMFCScintilla::ToggleFold(long line)
{
    SendScintilla(SCI_TOGGLEFOLD, static_cast<unsigned long>(line));
    return GetFoldExpanded(line);
}

void CMFCScintilla::SetFolding(bool on)
{
    struct FoldMarker
    {
        int number;
        int symbol;
    };
    const ThemeColours theme = ThemeColours::Current();
    static constexpr FoldMarker markers[] = {
        {SC_MARKNUM_FOLDEROPEN, SC_MARK_BOXMINUS},
        {SC_MARKNUM_FOLDER, SC_MARK_BOXPLUS},
        {SC_MARKNUM_FOLDERSUB, SC_MARK_VLINE},
        {SC_MARKNUM_FOLDERTAIL, SC_MARK_LCORNER},
        {SC_MARKNUM_FOLDEREND, SC_MARK_BOXPLUSCONNECTED},
        {SC_MARKNUM_FOLDEROPENMID, SC_MARK_BOXMINUSCONNECTED},
        {SC_MARKNUM_FOLDERMIDTAIL, SC_MARK_TCORNER},
    };
    for (const FoldMarker& marker : markers) {
        SendScintilla(SCI_MARKERDEFINE, static_cast<unsigned long>(marker.number), static_cast<long>(marker.symbol));
        SendScintilla(SCI_MARKERSETFORE, static_cast<unsigned long>(marker.number), static_cast<long>(theme.FoldMarkerFore()));
        SendScintilla(SCI_MARKERSETBACK, static_cast<unsigned long>(marker.number), static_cast<long>(theme.FoldMarkerBack()));
    }
    SendScintilla(SCI_SETPROPERTY, "fold.compact", "1");
    if (on) {
        SendScintilla(SCI_SETPROPERTY, "fold", "1");
        SendScintilla(SCI_SETMARGINMASKN, FoldMargin, static_cast<long>(SC_MASK_FOLDERS));
        SendScintilla(SCI_SETMARGINSENSITIVEN, FoldMargin, 1L);
        SendScintilla(SCI_SETPROPERTY, "fold.html", "1");
        SendScintilla(SCI_SETPROPERTY, "fold.html.preprocessor", "1");
    } else {
        // "fold" stays on: the levels are still needed to unfold what was folded. The
        // bookmark margin alone shows bookmarks, or each would be drawn twice.
        SendScintilla(SCI_SETMARGINMASKN, FoldMargin, 15L & ~(1L << BookmarkMarker));
        SendScintilla(SCI_SETMARGINSENSITIVEN, FoldMargin, 0L);
    }
}

CMFCScintilla::BraceMatch CMFCScintilla::FindMatchingBrace(bool sloppy) const
{
    BraceMatch match;
    const long caret = GetCurrentPos();
    const bool python = GetLexer() == SCLEX_PYTHON;
    constexpr int StyleMask = 31;
    constexpr int PythonOperatorStyle = 10;

    if (caret > 0 && SendScintilla(SCI_POSITIONBEFORE, static_cast<unsigned long>(caret)) == caret - 1) {
        const int ch = GetCharAt(caret - 1);
        const int style = GetStyleAt(caret - 1) & StyleMask;
        if (ch != 0 && IsBrace(ch)) {
            match.brace = caret - 1;
        } else if (python && ch == ':' && style == PythonOperatorStyle) {
            match.brace = caret - 1;
            match.colon = true;
        }
    }
    if (match.brace < 0 && sloppy && caret < GetLength()) {
        const int ch = GetCharAt(caret);
        const int style = GetStyleAt(caret) & StyleMask;
        if (ch != 0 && IsBrace(ch) && style == 0) {
            match.brace = caret;
        } else if (python && ch == ':' && style == PythonOperatorStyle) {
            match.brace = caret;
            match.colon = true;
        }
    }
    if (match.brace < 0)
        return match;
    if (match.colon) {
        const long line = LineFromPosition(match.brace);
        match.partner = GetLineEndPosition(GetLastChild(line, -1));
    } else if (GetLexer() == SCLEX_NULL || LongLinePieces::IsPieceStyle(GetStyleAt(match.brace))) {
        match.partner = MatchPlainBrace(match.brace);
        if (match.partner == UnknownPartner)
            match = BraceMatch();
    } else {
        match.partner = SendScintilla(SCI_BRACEMATCH, static_cast<unsigned long>(match.brace), 0L);
    }
    return match;
}

long CMFCScintilla::MatchPlainBrace(long brace) const
{
    // Far enough for any brace a person looks for; a gigabyte's worth would be a pause.
    constexpr long Reach = 16L << 20;
    constexpr long Chunk = 1L << 20;
    const char open = static_cast<char>(GetCharAt(brace));
    const char* pairs = "()[]{}";
    const char* found = std::strchr(pairs, open);
    if (!found || open == 0)
        return -1;
    const long index = found - pairs;
    const bool forward = index % 2 == 0;
    const char close = pairs[forward ? index + 1 : index - 1];
    const long length = GetLength();
    const long limit = forward ? std::min(length, brace + 1 + Reach) : std::max(0L, brace - Reach);
    long depth = 1;
    if (forward) {
        for (long at = brace + 1; at < limit; at += Chunk) {
            const long size = std::min(Chunk, limit - at);
            const auto* text = reinterpret_cast<const char*>(
                SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(at), size));
            for (long i = 0; text && i < size; ++i) {
                if (text[i] == open)
                    ++depth;
                else if (text[i] == close && --depth == 0)
                    return at + i;
            }
        }
        return limit == length ? -1 : UnknownPartner;
    }
    for (long end = brace; end > limit; end -= Chunk) {
        const long at = std::max(limit, end - Chunk);
        const auto* text = reinterpret_cast<const char*>(
            SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(at), end - at));
        for (long i = end - at - 1; text && i >= 0; --i) {
            if (text[i] == open)
                ++depth;
            else if (text[i] == close && --depth == 0)
                return at + i;
        }
    }
    return limit == 0 ? -1 : UnknownPartner;
}

void CMFCScintilla::HighlightBrace()
{
    const BraceMatch match = FindMatchingBrace(false);
    if (match.brace >= 0 && match.partner < 0) {
        SendScintilla(SCI_BRACEBADLIGHT, static_cast<unsigned long>(match.brace));
        SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
        return;
    }
    SendScintilla(SCI_BRACEHIGHLIGHT, static_cast<unsigned long>(match.brace), match.partner);
    if (match.brace < 0) {
        SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
        return;
    }
    long first = GetColumn(match.brace);
    long second = GetColumn(match.partner);
    long guide = std::min(first, second);
    if (match.colon) {
        const long line = LineFromPosition(match.brace);
        first = GetColumn(SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line)));
        second = GetColumn(SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line + 1)));
        const long indent = SendScintilla(SCI_GETINDENT);
        if (second - indent > 1)
            second -= indent;
        guide = first == 0 ? second : std::min(first, second);
    }
    SendScintilla(SCI_SETHIGHLIGHTGUIDE, static_cast<unsigned long>(std::max(0L, guide)));
}

void CMFCScintilla::ClearBraceHighlight()
{
    SendScintilla(SCI_BRACEHIGHLIGHT, static_cast<unsigned long>(-1), -1L);
    SendScintilla(SCI_SETHIGHLIGHTGUIDE, 0UL);
}

void CMFCScintilla::CommentLines(bool comment, const QByteArray& token)
{
    const QByteArray full = token + ' ';
    long selStart = GetSelectionStart();
    long selEnd = GetSelectionEnd();
    const long caret = GetCurrentPos();
    const bool empty = selStart == selEnd;
    const bool caretBeforeEnd = !empty && caret < selEnd;

    const long first = LineFromPosition(selStart);
    long last = LineFromPosition(selEnd);
    // A selection that ends at the start of a line does not take that line in.
    if (last > first && selEnd == PositionFromLine(last))
        --last;
    const long firstLineStart = PositionFromLine(first);

    constexpr long MaxLineLength = 1000;
    BeginUndoAction();
    for (long line = first; line <= last; ++line) {
        const long start = PositionFromLine(line);
        const long end = GetLineEndPosition(line);
        if (end - start >= MaxLineLength)
            continue;
        if (comment) {
            SendScintilla(SCI_INSERTTEXT, static_cast<unsigned long>(start), full.constData());
            selEnd += full.size();
            // A start inside the first line moves with its text; one at column 0 takes
            // the new token in.
            if (line == first && selStart > start)
                selStart += full.size();
            continue;
        }
        const QByteArray head = GetTextRange(start, std::min(end, start + long(full.size())));
        if (!head.startsWith(token))
            continue;
        const long amount = head.startsWith(full) ? long(full.size()) : long(token.size());
        if (amount == 0)
            continue;
        SetSel(start, start + amount);
        SendScintilla(SCI_REPLACESEL, 0UL, "");
        selEnd -= amount;
        if (line == first)
            selStart -= amount;
    }
    // Never before the first line's start, and an end never before the start.
    selStart = std::max(selStart, firstLineStart);
    selEnd = std::max(selEnd, selStart);
    if (empty) {
        // A plain caret stays with the character it stood before.
        GotoPos(selEnd);
    } else if (caretBeforeEnd) {
        GotoPos(selEnd);
        SetCurrentPos(selStart);
    } else {
        SetSel(selStart, selEnd);
    }
    EndUndoAction();
}

void CMFCScintilla::InsertWithSelection(const QString& text)
{
    InsertWithSelection(ToControlText(text));
}

void CMFCScintilla::InsertWithSelection(const QByteArray& text)
{
    const QByteArray selected = GetSelText();
    QByteArray result = text;
    result.replace(ReplaceMarker, selected);
    if (selected.isEmpty())
        SendScintilla(SCI_INSERTTEXT, static_cast<unsigned long>(GetCurrentPos()), result.constData());
    else
        SendScintilla(SCI_REPLACESEL, 0UL, result.constData());
}

QString CMFCScintilla::DateText(const QDateTime& when)
{
    return QLocale::system().toString(when.date(), QLocale::ShortFormat);
}

QString CMFCScintilla::TimeText(const QDateTime& when)
{
    // The locale's long time form with seconds, but no time zone.
    QString format = QLocale::system().timeFormat(QLocale::LongFormat);
    static const QRegularExpression zone(QStringLiteral("\\s*\\(?t+\\)?"));
    format.remove(zone);
    return QLocale::system().toString(when.time(), format.trimmed());
}

void CMFCScintilla::InsertDate()
{
    const QString text = DateText(QDateTime::currentDateTime());
    if (!text.isEmpty())
        InsertText(text);
}

void CMFCScintilla::InsertTime()
{
    const QString text = TimeText(QDateTime::currentDateTime());
    if (!text.isEmpty())
        InsertText(text);
}

bool CMFCScintilla::CopyAppend()
{
    if (!HasSelection())
        return false;
    QClipboard* clipboard = QApplication::clipboard();
    if (!clipboard)
        return false;
    clipboard->setText(clipboard->text() + FromControlText(GetSelText()));
    return true;
}

void CMFCScintilla::CutAppend()
{
    if (CopyAppend())
        SendScintilla(SCI_REPLACESEL, 0UL, "");
}

void CMFCScintilla::ToggleBookmark(long line)
{
    if (line == -1)
        line = GetCurrentLine();
    if (HasBookmark(line))
        SendScintilla(SCI_MARKERDELETE, static_cast<unsigned long>(line), static_cast<long>(BookmarkMarker));
    else
        SendScintilla(SCI_MARKERADD, static_cast<unsigned long>(line), static_cast<long>(BookmarkMarker));
}

bool CMFCScintilla::HasBookmark(long line) const
{
    return (SendScintilla(SCI_MARKERGET, static_cast<unsigned long>(line)) & BookmarkMask) != 0;
}

bool CMFCScintilla::NextBookmark(bool forward, bool anchor)
{
    const long line = GetCurrentLine();
    long next;
    if (forward) {
        next = SendScintilla(SCI_MARKERNEXT, static_cast<unsigned long>(line + 1), static_cast<long>(BookmarkMask));
        if (next < 0)
            next = SendScintilla(SCI_MARKERNEXT, 0UL, static_cast<long>(BookmarkMask));
    } else {
        next = line > 0 ? SendScintilla(SCI_MARKERPREVIOUS, static_cast<unsigned long>(line - 1),
                                        static_cast<long>(BookmarkMask))
                        : -1;
        if (next < 0)
            next = SendScintilla(SCI_MARKERPREVIOUS, static_cast<unsigned long>(GetLineCount()),
                                 static_cast<long>(BookmarkMask));
    }
    if (next < 0 || next == line) {
        QMessageBox::warning(window(), QApplication::applicationDisplayName(),
                             tr("No more bookmarks have been found"));
        return false;
    }
    const long oldAnchor = SendScintilla(SCI_GETANCHOR);
    const long from = GetCurrentPos();
    SendScintilla(SCI_ENSUREVISIBLEENFORCEPOLICY, static_cast<unsigned long>(next));
    SendScintilla(SCI_GOTOLINE, static_cast<unsigned long>(next));
    if (anchor)
        SendScintilla(SCI_SETANCHOR, static_cast<unsigned long>(oldAnchor));
    Q_EMIT caretJumped(from, GetCurrentPos());
    return true;
}

QString CMFCScintilla::GetSearchSeed()
{
    const QString section = QStringLiteral("FindReplace");
    const QString name = QStringLiteral("LastSelectedValue");
    CRegistryStore store;
    if (!HasSelection())
        return store.GetProfileString(section, name, QString());

    constexpr int MaxSeed = 100;
    QByteArray bytes = GetSelText();
    if (bytes.size() > MaxSeed) {
        int cut = MaxSeed - 1;
        // Never split a UTF-8 sequence.
        if (SendScintilla(SCI_GETCODEPAGE) == SC_CP_UTF8) {
            while (cut > 0 && (static_cast<unsigned char>(bytes.at(cut)) & 0xC0) == 0x80)
                --cut;
        }
        bytes.truncate(cut);
    }
    const QString seed = FromControlText(bytes);
    store.WriteProfileString(section, name, seed);
    return seed;
}

void CMFCScintilla::AutoIndent(int ch, bool indentAfterBrace)
{
    const int eolMode = GetEOLMode();
    const bool trigger = (ch == '\n' && (eolMode == SC_EOL_CRLF || eolMode == SC_EOL_LF))
                         || (ch == '\r' && eolMode == SC_EOL_CR);
    const long line = GetCurrentLine();

    if (ch == '}') {
        const BraceMatch match = FindMatchingBrace(false);
        if (match.brace >= 0 && match.partner >= 0) {
            const long partnerLine = LineFromPosition(match.partner);
            if (partnerLine < line)
                SetLineIndentation(line, GetLineIndentation(partnerLine));
        }
        return;
    }
    if (!trigger || line == 0)
        return;

    // The nearest line above that holds anything sets the indent.
    long above = line - 1;
    while (above > 0 && GetLineEndPosition(above) == PositionFromLine(above))
        --above;
    int indent = GetLineIndentation(above);
    if (indentAfterBrace) {
        const long start = PositionFromLine(above);
        const QByteArray text = GetTextRange(start, GetLineEndPosition(above));
        bool closed = false;
        for (qsizetype i = text.size() - 1; i >= 0; --i) {
            if (text.at(i) == '}') {
                closed = true;
            } else if (text.at(i) == '{') {
                if (!closed)
                    indent += static_cast<int>(SendScintilla(SCI_GETINDENT));
                break;
            }
        }
    }
    if (indent > 0) {
        SetLineIndentation(line, indent);
        const long position = SendScintilla(SCI_GETLINEINDENTPOSITION, static_cast<unsigned long>(line));
        SetSel(position, position);
    }
}

void CMFCScintilla::JumpToLine(long line)
{
    const long from = GetCurrentPos();
    GotoLine(line, true);
    Q_EMIT caretJumped(from, GetCurrentPos());
}

