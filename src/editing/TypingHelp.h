#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>

class QsciScintillaBase;

// Word completion from the words of the open documents.
namespace WordCompletion {

// The bytes of the word that ends at the caret ("" when the caret is not after a word).
QByteArray PrefixAtCaret(QsciScintillaBase& control);
// Adds to `words` every word of `text` that starts with `prefix` and is longer than it.
// Words are letters, digits, '_' and whole UTF-8 sequences, so "größe" is one word.
void CollectWords(const char* text, long length, const QByteArray& prefix, QSet<QByteArray>& words);
// Opens the control's completion list for the word before the caret, with the words of
// `sources` (the open documents, the control's own among them). False when there is no
// word there or nothing to offer.
bool Show(QsciScintillaBase& control, const QList<QsciScintillaBase*>& sources);
// Characters (not bytes) a word must have before the list opens by itself.
inline constexpr int AutoPrefix = 3;
// Whether the character just typed should open the list by itself.
bool ShouldOpenAutomatically(QsciScintillaBase& control);

} // namespace WordCompletion

// One indent more after a line that opens a brace, and the closing brace of "{}" moved to
// a line of its own when Enter is pressed between them.
namespace BraceIndent {
// Call after a line end was typed; true when it changed anything.
bool AfterNewLine(QsciScintillaBase& control);
} // namespace BraceIndent
