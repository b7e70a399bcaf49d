#include "Subsystems.h"

#include "backup/CBackupManager.h"
#include "compare/CCompareCommands.h"
#include "editing/EditingInstall.h"
#include "editor/CEditorCommands.h"
#include "fileexplorer/CFileExplorerPage.h"
#include "framework/CommandIds.h"
#include "help/HelpCommands.h"
#include "hex/HexInstall.h"
#include "printing/PrintCommands.h"
#include "properties/PropertiesCommands.h"
#include "recovery/RecoveryInstall.h"
#include "search/SearchInstall.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"
#include "syntax/CSyntaxCommands.h"
#include "tools/COutputBarCommands.h"
#include "usertools/InstallTools.h"

#include <QCoreApplication>

#ifdef MORVANE_CODE_LIBRARY_PAGE
#include "codelibrary/CCodeLibraryPage.h"
#endif

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("Subsystems", text);
}

// Commands the menus have always shown, greyed, whose subsystems are still to come.
// Each one's subsystem registers it for real and takes its place over.
void ReservePlaces(IShell& shell)
{
    CCommandRegistry& commands = shell.Commands();
    CMenuPlaces& menus = shell.Menus();
    commands.Register({.id = Cmd::FileNewFromTemplate, .text = Tr("F&rom Template"),
                       .category = Tr("File"), .placeholder = true});
    menus.AddCommand(MenuId::FileNew, MenuGroup::Default, Cmd::FileNewFromTemplate);
}

} // namespace

void InstallSubsystems(IShell& shell)
{
    const CSyntaxParserList& parsers = InstallSyntax(shell);
    InstallEditor(shell, parsers);
    InstallModernEditing(shell);
    InstallSearch(shell);
    InstallHex(shell);
    InstallOutputBar(shell);
    InstallCompare(shell);
    InstallVersions(shell);
    InstallFileExplorer(shell);
#ifdef MORVANE_CODE_LIBRARY_PAGE
    InstallCodeLibrary(shell);
#endif
    InstallPrinting(shell);
    InstallProperties(shell);
    InstallHelp(shell);
    InstallTools(shell);
    InstallRecovery(shell);
    ReservePlaces(shell);
}
