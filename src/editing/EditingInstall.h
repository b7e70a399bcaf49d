#pragma once

class IShell;

// Line commands (Edit > Lines) and bracket and quote pairing for every text view.
void InstallModernEditing(IShell& shell);
