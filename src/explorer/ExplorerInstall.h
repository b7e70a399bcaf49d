#pragma once

class IShell;
class CExplorerBar;

// Installs the explorer bar, the Project Explorer with the workspace commands, and the
// List Explorer into the main window. Other explorer pages (file explorer, code library)
// register themselves through IShell::AddExplorerPage, before or after this runs.
void InstallExplorer(IShell& shell);
