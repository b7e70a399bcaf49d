#include "Subsystems.h"

#include "backup/CBackupManager.h"
#include "codelibrary/CCodeLibraryPage.h"
#include "compare/CCompareCommands.h"
#include "editing/EditingInstall.h"
#include "editor/CEditorCommands.h"
#include "editor/DocumentFormat.h"
#include "editor/ZoomCommands.h"
#include "fileexplorer/CFileExplorerPage.h"
#include "explorer/ExplorerInstall.h"
#include "help/HelpCommands.h"
#include "hex/HexInstall.h"
#include "printing/PrintCommands.h"
#include "properties/PropertiesCommands.h"
#include "recovery/RecoveryInstall.h"
#include "search/SearchInstall.h"
#include "shell/IShell.h"
#include "syntax/CSyntaxCommands.h"
#include "theme/CThemeManager.h"
#include "tools/COutputBarCommands.h"
#include "usertools/InstallTools.h"

void InstallSubsystems(IShell& shell)
{
    const CSyntaxParserList& parsers = InstallSyntax(shell);
    InstallEditor(shell, parsers);
    InstallModernEditing(shell);
    InstallDocumentFormat(shell);
    InstallZoom(shell);
    InstallSearch(shell);
    InstallHex(shell);
    InstallOutputBar(shell);
    InstallCompare(shell);
    InstallVersions(shell);
    InstallExplorer(shell);
    InstallFileExplorer(shell);
    InstallCodeLibrary(shell);
    InstallPrinting(shell);
    InstallProperties(shell);
    InstallHelp(shell);
    InstallTools(shell);
    InstallRecovery(shell);
    InstallTheme(shell);
}
