#pragma once

class CScrivelDoc;
class IShell;
class QString;

// The text document's format for the window: Edit > "Convert Line Endings" with its
// three modes, and two status bar panes that show the active document's encoding and
// line-end mode.
void InstallDocumentFormat(IShell& shell);

namespace DocumentFormat {
// What the status bar shows for a document ("UTF-8", "Ansi" ...; "CRLF", "LF", "CR").
QString EncodingText(const CScrivelDoc& document);
QString LineEndingText(int lineEnding);
} // namespace DocumentFormat
