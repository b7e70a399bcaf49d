#pragma once

#include <QString>

class IShell;
class CSolutionBarProjTree;

// Installs the explorer bar, the Project Explorer with the workspace commands, and the
// List Explorer into the main window. Other explorer pages (file explorer, code library)
// register themselves through IShell::AddExplorerPage, before or after this runs.
void InstallExplorer(IShell& shell);

// The installed Project Explorer, found among the shell's pages; null before installation.
CSolutionBarProjTree* ProjectTree(IShell& shell);

// The open routine's hook: a path ending in ".spf" (any case) opens as the workspace and
// brings the Project Explorer forward. True when the path was taken.
bool OpenWorkspaceIfProjectFile(IShell& shell, const QString& path);
