#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>

class QsciScintillaBase;

// Several carets built on the control's own multiple selections: each occurrence of the
// main selection's text becomes one more selection, so typing, deleting, pasting and moving
// act on all of them.
namespace MultiCaret {

// The control's work for adding a selection, and for each key typed, grows with the square
// of the number of carets: at this many, selecting takes about half a second and a key
// about as long on a 100 MB text. Beyond it Select All Occurrences selects this many.
inline constexpr long MaxCarets = 10000;

// Lets the control keep several selections, typing and pasting into each of them.
void Enable(QsciScintillaBase& control);

// Byte offsets of `needle` in `text`, stopping after `limit`; whole words only when
// `wholeWord` (a word is letters, digits, '_' and any non-ASCII byte).
QList<long> FindAll(const char* text, long length, const QByteArray& needle, bool wholeWord,
                    long limit = -1);

// Adds the next occurrence (after the main selection, wrapping round) of the main
// selection's text as a new selection. With nothing selected it selects the word at the
// caret first. False when there is nothing more to add.
bool SelectNextOccurrence(QsciScintillaBase& control);

struct AllResult
{
    long found = 0;
    long selected = 0; // fewer than `found` when the limit cut the selection short
};
// Selects every occurrence of the main selection's text (or of the word at the caret), at
// most `max` of them: then a run of consecutive ones that starts at the caret's.
AllResult SelectAllOccurrences(QsciScintillaBase& control, long max = MaxCarets);

} // namespace MultiCaret

// Mouse gestures on a control's viewport: Ctrl+click adds a caret (Ctrl+drag a selection)
// and Alt+drag makes a rectangle. The control itself reads Ctrl as the rectangle key and
// never sees Alt, which window managers often keep for themselves.
class CCaretMouseFilter : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_adding = false;
    bool m_swallowing = false; // the rest of a double click, up to its release
    bool m_forwarding = false;
};
