#pragma once

#include <QString>

// "Open with Morvane" for the current user: a desktop entry offering Morvane for text
// files and workspaces, and the workspace file type, under the user's own data folder
// ($XDG_DATA_HOME), so that no administrator rights are needed.
namespace DesktopIntegration {

inline constexpr char EntryName[] = "com.brackwyn.Morvane.desktop";
inline constexpr char WorkspaceMimeType[] = "application/x-morvane-workspace";

// <data>/applications/com.brackwyn.Morvane.desktop
QString EntryPath();
// <data>/mime/packages/morvane.xml
QString MimePackagePath();

// A desktop entry starting `executable` with --reuse, so that files go to the running
// program.
QString EntryText(const QString& executable);
// The shared-mime-info description of ".spf".
QString MimePackageText();

bool IsInstalled();
// Writes both files (beside and renamed over) and asks the desktop to re-read its
// caches where the tools are present. `error` says why not.
bool Install(const QString& executable, QString* error = nullptr);
// Removes both files; a missing file is no failure.
bool Remove(QString* error = nullptr);

} // namespace DesktopIntegration
