#pragma once

class IShell;

// Line commands (Edit > Lines), several carets, and typing help (bracket pairing, brace
// indent, word completion, occurrence highlighting) for every text view.
void InstallModernEditing(IShell& shell);
