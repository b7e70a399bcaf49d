#pragma once

#include <QString>

// Default locations, all below the user's data folder so that a temporary HOME and
// XDG_DATA_HOME isolate a run completely.
namespace AppPaths {

// <data>/Brackwyn/Morvane
QString AppDataLocation();
QString DefaultBackupFolder();
QString DefaultSyntaxFolder();
QString DefaultTemplatesFolder();

// The folder holding what the program ships (syntax/, templates/). Looked for in
// $MORVANE_DATA_DIR, beside the executable, in the installed share folder and in the
// source tree, in that order. Empty when none is found.
QString ShippedDataFolder();

// Copies the shipped `subfolder` into `target` when `target` holds no file yet.
// Existing files are never overwritten. Returns false when the target can't be made or
// a copy failed; then the target is left empty (or not there, as before).
bool FillFromShipped(const QString& target, const QString& subfolder);

} // namespace AppPaths
