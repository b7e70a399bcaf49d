#pragma once

#include <QtGlobal>

class CMFCScintilla;
class CScrivelDoc;
class IShell;
class QString;

// The text document's format for the window: Edit > "Convert Line Endings" with its
// three modes, and status bar panes for the active document: the size of the selection,
// and its encoding, line-end mode and language, each of which opens a menu to change it
// when clicked.
void InstallDocumentFormat(IShell& shell);

namespace DocumentFormat {
// What the status bar shows for a document ("UTF-8", "Ansi" ...; "CRLF", "LF", "CR").
QString EncodingText(const CScrivelDoc& document);
QString LineEndingText(int lineEnding);
// "Sel: 12 | 2": characters and lines of the selection.
QString SelectionText(qint64 characters, qint64 lines);
// Characters in [start, end); a selection longer than MaxCountedSelection bytes is
// counted in bytes.
constexpr long MaxCountedSelection = 8 * 1024 * 1024;
qint64 CountCharacters(CMFCScintilla* editor, long start, long end);
} // namespace DocumentFormat
