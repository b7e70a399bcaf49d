#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>

class QsciScintillaBase;

// Several carets built on the control's own multiple selections: each occurrence of the
// main selection's text becomes one more selection, so typing, deleting, pasting and moving
// act on all of them.
namespace MultiCaret {

// Each caret costs the control about a millisecond per typed key, so beyond this many
// Select All Occurrences refuses (and says so) rather than make typing crawl.
inline constexpr long MaxCarets = 1000;

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
    bool selected = false; // false when there were more than `max`
};
// Selects every occurrence of the main selection's text (or of the word at the caret).
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
    bool m_forwarding = false;
};
