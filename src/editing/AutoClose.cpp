#include "AutoClose.h"

#include "ControlAccess.h"

#include <Qsci/qsciscintillabase.h>

#include <QKeyEvent>

#include <algorithm>

namespace {

using ControlAccess::Send;

using Sci = QsciScintillaBase;

char Closer(char opener)
{
    switch (opener) {
    case '(': return ')';
    case '[': return ']';
    case '{': return '}';
    case '"': return '"';
    case '\'': return '\'';
    default: return 0;
    }
}

bool IsCloser(char ch) { return ch == ')' || ch == ']' || ch == '}' || ch == '"' || ch == '\''; }

char CharAt(QsciScintillaBase& c, long pos)
{
    if (pos < 0 || pos >= Send(c, Sci::SCI_GETLENGTH))
        return 0;
    return char(Send(c, Sci::SCI_GETCHARAT, pos));
}

// The lexer names what each style is for ("comment line", "literal string").
bool StyleIsTextOrComment(QsciScintillaBase& c, int style)
{
    const long size = Send(c, Sci::SCI_TAGSOFSTYLE, style, 0);
    if (size <= 0)
        return false;
    QByteArray tags(int(size) + 1, '\0');
    Send(c, Sci::SCI_TAGSOFSTYLE, style, reinterpret_cast<long>(tags.data()));
    return tags.contains("comment") || tags.contains("string");
}

// True when the caret sits inside a string or comment: the character before it is styled
// so and the string or comment goes on past the caret (or the line ends there).
bool InsideStringOrComment(QsciScintillaBase& c, long pos)
{
    if (pos == 0)
        return false;
    // Style only what the lexer has not reached yet, up to the caret.
    const long styleTo = std::min(pos + 1, Send(c, Sci::SCI_GETLENGTH));
    const long styled = Send(c, Sci::SCI_GETENDSTYLED);
    if (styled < styleTo)
        Send(c, Sci::SCI_COLOURISE, Send(c, Sci::SCI_POSITIONFROMLINE, Send(c, Sci::SCI_LINEFROMPOSITION, styled)), styleTo);
    const int before = int(Send(c, Sci::SCI_GETSTYLEAT, pos - 1));
    if (!StyleIsTextOrComment(c, before))
        return false;
    const int line = int(Send(c, Sci::SCI_LINEFROMPOSITION, pos));
    if (pos >= Send(c, Sci::SCI_GETLINEENDPOSITION, line)) {
        // At the line's end: a closed string ends with its quote, a comment runs on.
        const char last = CharAt(c, pos - 1);
        if (last != '"' && last != '\'')
            return true;
        // The quote closes a string when the string's style runs on before it.
        const long start = Send(c, Sci::SCI_POSITIONFROMLINE, line);
        return pos - 2 < start || Send(c, Sci::SCI_GETSTYLEAT, pos - 2) != before;
    }
    return StyleIsTextOrComment(c, int(Send(c, Sci::SCI_GETSTYLEAT, pos)));
}

bool IsWordChar(char ch) { return ch == '_' || (ch >= '0' && ch <= '9') || ((ch | 0x20) >= 'a' && (ch | 0x20) <= 'z') || (ch & 0x80); }

bool Simple(QsciScintillaBase& c)
{
    return Send(c, Sci::SCI_GETSELECTIONS) == 1 && Send(c, Sci::SCI_GETSELECTIONEMPTY)
           && !Send(c, Sci::SCI_GETREADONLY);
}

} // namespace

namespace AutoClose {

bool TypeChar(QsciScintillaBase& c, char typed)
{
    if (!Simple(c))
        return false;
    const long pos = Send(c, Sci::SCI_GETCURRENTPOS);
    const char next = CharAt(c, pos);
    if (IsCloser(typed) && next == typed && !InsideStringOrComment(c, pos)) {
        Send(c, Sci::SCI_GOTOPOS, pos + 1);
        return true;
    }
    // A quote typed inside the string it closes steps over the closing quote.
    if ((typed == '"' || typed == '\'') && next == typed) {
        Send(c, Sci::SCI_GOTOPOS, pos + 1);
        return true;
    }
    const char closer = Closer(typed);
    if (!closer || InsideStringOrComment(c, pos))
        return false;
    // Pair only where nothing would run on into the pair.
    if (next != 0 && next != ' ' && next != '\t' && next != '\r' && next != '\n' && !IsCloser(next)
        && next != ',' && next != ';')
        return false;
    // An apostrophe in a word ("don't") is not a quote.
    if ((typed == '"' || typed == '\'') && IsWordChar(CharAt(c, pos - 1)))
        return false;
    const char pair[3] = {typed, closer, 0};
    Send(c, Sci::SCI_BEGINUNDOACTION);
    Send(c, Sci::SCI_INSERTTEXT, pos, reinterpret_cast<long>(pair));
    Send(c, Sci::SCI_ENDUNDOACTION);
    Send(c, Sci::SCI_GOTOPOS, pos + 1);
    return true;
}

bool Backspace(QsciScintillaBase& c)
{
    if (!Simple(c))
        return false;
    const long pos = Send(c, Sci::SCI_GETCURRENTPOS);
    const char before = CharAt(c, pos - 1);
    if (pos == 0 || !Closer(before) || CharAt(c, pos) != Closer(before))
        return false;
    Send(c, Sci::SCI_BEGINUNDOACTION);
    Send(c, Sci::SCI_DELETERANGE, pos - 1, 2);
    Send(c, Sci::SCI_ENDUNDOACTION);
    return true;
}

} // namespace AutoClose

CAutoCloseFilter::CAutoCloseFilter(const bool* enabled, QObject* parent)
    : QObject(parent), m_enabled(enabled)
{
}

bool CAutoCloseFilter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !*m_enabled)
        return false;
    auto* control = qobject_cast<QsciScintillaBase*>(watched);
    if (!control)
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    const Qt::KeyboardModifiers mods = key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (mods != Qt::NoModifier)
        return false;
    if (key->key() == Qt::Key_Backspace)
        return AutoClose::Backspace(*control);
    const QString text = key->text();
    if (text.size() != 1 || text[0].unicode() > 0x7f)
        return false;
    return AutoClose::TypeChar(*control, char(text[0].unicode()));
}
