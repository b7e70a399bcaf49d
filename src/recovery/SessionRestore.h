#pragma once

class IShell;

// The files open at the last exit, with their caret positions, kept under "EditSettings"
// and reopened at the next start when "RestoreSession" is on (off unless the user sets it).
namespace SessionRestore {

bool Enabled();
// Records the named text documents now open; does nothing while the setting is off.
void Save(IShell& shell);
// Reopens what Save recorded, files that no longer exist left out. Returns how many opened.
int Restore(IShell& shell);

} // namespace SessionRestore
