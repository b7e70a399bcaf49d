#include "SearchInstall.h"

#include "CFindInFilesCommands.h"
#include "CSearchCommands.h"

void InstallSearch(IShell& shell)
{
    // Find in Files comes after the other finds, in the menu and on the toolbar.
    CSearchCommands::Install(shell);
    if (!CFindInFilesCommands::Of(shell))
        new CFindInFilesCommands(shell);
}
