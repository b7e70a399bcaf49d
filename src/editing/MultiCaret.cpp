#include "MultiCaret.h"

#include "ControlAccess.h"

#include <Qsci/qsciscintillabase.h>

#include <QList>
#include <QCoreApplication>
#include <QMouseEvent>

#include <algorithm>
#include <functional>
#include <string_view>

namespace {

using ControlAccess::Send;
using ControlAccess::IsWordByte;

using Sci = QsciScintillaBase;

bool WholeWordAt(const char* text, long length, long start, long end)
{
    return (start == 0 || !IsWordByte(text[start - 1])) && (end >= length || !IsWordByte(text[end]));
}

struct Needle
{
    QByteArray text;
    bool wholeWord = false;
};

// The text to look for: the main selection, or the word at the caret, which is selected so
// that it counts as the first occurrence. A selection that is exactly one word matches
// whole words only, as the word at the caret does.
Needle TakeNeedle(QsciScintillaBase& c)
{
    const long main = Send(c, Sci::SCI_GETMAINSELECTION);
    long start = Send(c, Sci::SCI_GETSELECTIONNSTART, main);
    long end = Send(c, Sci::SCI_GETSELECTIONNEND, main);
    if (start == end) {
        start = Send(c, Sci::SCI_WORDSTARTPOSITION, start, 1);
        end = Send(c, Sci::SCI_WORDENDPOSITION, end, 1);
        if (start == end)
            return {};
        Send(c, Sci::SCI_SETSELECTION, end, start);
    }
    const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETCHARACTERPOINTER));
    const long length = Send(c, Sci::SCI_GETLENGTH);
    Needle needle{QByteArray(text + start, int(end - start)), false};
    needle.wholeWord = IsWordByte(text[start]) && IsWordByte(text[end - 1]) && WholeWordAt(text, length, start, end)
                       && Send(c, Sci::SCI_WORDENDPOSITION, start, 1) == end;
    return needle;
}

bool IsSelected(QsciScintillaBase& c, long start, long end)
{
    const long count = Send(c, Sci::SCI_GETSELECTIONS);
    for (long i = 0; i < count; ++i) {
        if (Send(c, Sci::SCI_GETSELECTIONNSTART, i) == start && Send(c, Sci::SCI_GETSELECTIONNEND, i) == end)
            return true;
    }
    return false;
}

} // namespace

namespace MultiCaret {

void Enable(QsciScintillaBase& c)
{
    Send(c, Sci::SCI_SETMULTIPLESELECTION, 1);
    Send(c, Sci::SCI_SETADDITIONALSELECTIONTYPING, 1);
    Send(c, Sci::SCI_SETMULTIPASTE, Sci::SC_MULTIPASTE_EACH);
}

QList<long> FindAll(const char* text, long length, const QByteArray& needle, bool wholeWord, long limit)
{
    QList<long> found;
    if (needle.isEmpty() || length <= 0)
        return found;
    const std::string_view haystack(text, size_t(length));
    const std::boyer_moore_horspool_searcher searcher(needle.begin(), needle.end());
    auto at = haystack.begin();
    while (limit < 0 || found.size() < limit) {
        const auto hit = std::search(at, haystack.end(), searcher);
        if (hit == haystack.end())
            break;
        const long start = long(hit - haystack.begin());
        if (!wholeWord || WholeWordAt(text, length, start, start + needle.size())) {
            found.append(start);
            at = hit + needle.size();
        } else {
            at = hit + 1;
        }
    }
    return found;
}

bool SelectNextOccurrence(QsciScintillaBase& c)
{
    const bool hadSelection = !Send(c, Sci::SCI_GETSELECTIONEMPTY);
    const long selections = Send(c, Sci::SCI_GETSELECTIONS);
    const Needle needle = TakeNeedle(c);
    if (needle.text.isEmpty())
        return false;
    // The first press on a bare caret only selects its word.
    if (!hadSelection && selections == 1)
        return true;
    const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETCHARACTERPOINTER));
    const long length = Send(c, Sci::SCI_GETLENGTH);
    const long from = Send(c, Sci::SCI_GETSELECTIONNEND, Send(c, Sci::SCI_GETMAINSELECTION));
    // After the main selection first, then from the top.
    for (const long begin : {from, 0L}) {
        const long span = begin == 0 ? std::min(length, from + long(needle.text.size())) : length;
        long offset = begin;
        while (offset < span) {
            const QList<long> hit = FindAll(text + offset, span - offset, needle.text, false, 1);
            if (hit.isEmpty())
                break;
            const long start = offset + hit.first();
            const long end = start + needle.text.size();
            offset = start + 1;
            if ((needle.wholeWord && !WholeWordAt(text, length, start, end)) || IsSelected(c, start, end))
                continue;
            Send(c, Sci::SCI_ADDSELECTION, end, start);
            Send(c, Sci::SCI_SCROLLRANGE, start, end);
            return true;
        }
    }
    return false;
}

AllResult SelectAllOccurrences(QsciScintillaBase& c, long max)
{
    const Needle needle = TakeNeedle(c);
    if (needle.text.isEmpty() || max < 1)
        return {};
    const auto* text = reinterpret_cast<const char*>(Send(c, Sci::SCI_GETCHARACTERPOINTER));
    const QList<long> found = FindAll(text, Send(c, Sci::SCI_GETLENGTH), needle.text, needle.wholeWord);
    if (found.isEmpty())
        return {};
    // The occurrence the user started from stays the main one, so the view does not jump;
    // under the limit, the run starts there and reaches back only when the end is near.
    const long mainStart = Send(c, Sci::SCI_GETSELECTIONNSTART, Send(c, Sci::SCI_GETMAINSELECTION));
    const qsizetype at = std::lower_bound(found.begin(), found.end(), mainStart) - found.begin();
    const qsizetype count = std::min<qsizetype>(found.size(), max);
    const qsizetype first = std::max<qsizetype>(0, std::min(at, found.size() - count));
    const long size = needle.text.size();
    Send(c, Sci::SCI_SETSELECTION, found[first] + size, found[first]);
    for (qsizetype i = first + 1; i < first + count; ++i)
        Send(c, Sci::SCI_ADDSELECTION, found[i] + size, found[i]);
    if (at < found.size() && found[at] == mainStart && at >= first && at < first + count)
        Send(c, Sci::SCI_SETMAINSELECTION, long(at - first));
    return {long(found.size()), long(count)};
}

} // namespace MultiCaret

namespace {

// Drops the empty selections (carets) from `from` to `to`, unless one is all there is.
void DropEmptyAt(QsciScintillaBase& c, long from, long to)
{
    for (long i = Send(c, Sci::SCI_GETSELECTIONS) - 1; i >= 0 && Send(c, Sci::SCI_GETSELECTIONS) > 1; --i) {
        const long start = Send(c, Sci::SCI_GETSELECTIONNSTART, i);
        if (start == Send(c, Sci::SCI_GETSELECTIONNEND, i) && start >= from && start <= to) {
            Send(c, Sci::SCI_DROPSELECTIONN, i);
        }
    }
}

bool OnlyCaretWithin(QsciScintillaBase& c, long from, long to)
{
    const long at = Send(c, Sci::SCI_GETSELECTIONNSTART, 0);
    return Send(c, Sci::SCI_GETSELECTIONS) == 1 && Send(c, Sci::SCI_GETSELECTIONEMPTY) && at >= from && at <= to;
}

// Adds the word at `pos` as a selection (a caret where there is no word).
void AddWordAt(QsciScintillaBase& c, long pos)
{
    const long start = Send(c, Sci::SCI_WORDSTARTPOSITION, pos, 1);
    const long end = Send(c, Sci::SCI_WORDENDPOSITION, pos, 1);
    DropEmptyAt(c, start, end);
    // A lone caret in the word is the first click's own: the word replaces it.
    if (OnlyCaretWithin(c, start, end))
        Send(c, Sci::SCI_SETSELECTION, end, start);
    else
        Send(c, Sci::SCI_ADDSELECTION, end, start);
}

bool OnlyModifier(const QMouseEvent* event, Qt::KeyboardModifier wanted)
{
    const Qt::KeyboardModifiers mods = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier | Qt::MetaModifier);
    return mods == wanted;
}

} // namespace

bool CCaretMouseFilter::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (m_forwarding || (type != QEvent::MouseButtonPress && type != QEvent::MouseButtonDblClick && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease))
        return false;
    auto* viewport = qobject_cast<QWidget*>(watched);
    auto* control = viewport ? qobject_cast<QsciScintillaBase*>(viewport->parentWidget()) : nullptr;
    if (!control)
        return false;
    auto* mouse = static_cast<QMouseEvent*>(event);
    const QPoint point = mouse->position().toPoint();
    auto positionAt = [control, point] {
        return control->SendScintilla(Sci::SCI_POSITIONFROMPOINT, static_cast<unsigned long>(point.x()), long(point.y()));
    };
    const bool ctrlLeft = mouse->button() == Qt::LeftButton && OnlyModifier(mouse, Qt::ControlModifier);
    // A quick second Ctrl+click arrives as a double click: the word there becomes one more
    // selection, in place of the caret the first click of the pair added.
    if (type == QEvent::MouseButtonDblClick && ctrlLeft) {
        AddWordAt(*control, positionAt());
        m_adding = false;
        m_swallowing = true;
        control->setFocus();
        return true;
    }
    if (m_swallowing || m_adding) {
        // The selection being added follows the drag until the button comes up.
        if (m_adding && type == QEvent::MouseMove)
            Send(*control, Sci::SCI_SETSELECTIONNCARET, Send(*control, Sci::SCI_GETMAINSELECTION), positionAt());
        else if (type == QEvent::MouseButtonRelease)
            m_adding = m_swallowing = false;
        return true;
    }
    if (type == QEvent::MouseButtonPress && ctrlLeft) {
        const long pos = positionAt();
        // Two carets at one place would type every character twice.
        DropEmptyAt(*control, pos, pos);
        if (!OnlyCaretWithin(*control, pos, pos))
            Send(*control, Sci::SCI_ADDSELECTION, pos, pos);
        m_adding = true;
        control->setFocus();
        return true;
    }
    if (OnlyModifier(mouse, Qt::AltModifier) && (mouse->button() == Qt::LeftButton || (mouse->buttons() & Qt::LeftButton))) {
        QMouseEvent rectangle(type, mouse->position(), mouse->scenePosition(), mouse->globalPosition(), mouse->button(),
                              mouse->buttons(), Qt::ControlModifier, mouse->pointingDevice());
        m_forwarding = true;
        QCoreApplication::sendEvent(viewport, &rectangle);
        m_forwarding = false;
        return true;
    }
    return false;
}
