#pragma once

class CSyntaxParserList;
class IShell;

// Brings every open text view up to date after the sheet changed what it shows.
namespace ViewRefresh {

// The shell's view settings on every text view, brace colours included.
void ApplySettings(IShell& shell);
// Each text view's parser taken again from `parsers`, which was read from the same
// folder as the program's own list, so that indexes agree.
void ApplyParsers(IShell& shell, const CSyntaxParserList& parsers);

} // namespace ViewRefresh
