#include "Subsystems.h"

#include "backup/CBackupManager.h"
#include "compare/CCompareCommands.h"
#include "editor/CEditorCommands.h"
#include "editor/DocumentFormat.h"
#include "editor/ZoomCommands.h"
#include "fileexplorer/CFileExplorerPage.h"
#include "framework/CommandIds.h"
#include "hex/HexInstall.h"
#include "search/SearchInstall.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"
#include "syntax/CSyntaxCommands.h"
#include "tools/COutputBarCommands.h"

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

    commands.Register({.id = Cmd::FilePrint, .text = Tr("&Print..."), .category = Tr("File"),
                       .shortcut = QKeySequence(QKeySequence::Print),
                       .iconName = QStringLiteral("document-print"), .placeholder = true});
    commands.Register({.id = Cmd::FilePrintPreview, .text = Tr("Print Pre&view"),
                       .category = Tr("File"), .iconName = QStringLiteral("document-print-preview"),
                       .placeholder = true});
    commands.Register({.id = Cmd::FilePrintDirect, .text = Tr("Print &Direct"),
                       .category = Tr("File"), .placeholder = true});
    for (const int id : {int(Cmd::FilePrint), int(Cmd::FilePrintPreview), int(Cmd::FilePrintDirect)})
        menus.AddCommand(MenuId::File, MenuGroup::FilePrint, id);
    menus.AddToolBarCommand(ToolBarId::Standard, ToolBarGroup::Print, Cmd::FilePrint);
}

} // namespace

void InstallSubsystems(IShell& shell)
{
    const CSyntaxParserList& parsers = InstallSyntax(shell);
    InstallEditor(shell, parsers);
    InstallDocumentFormat(shell);
    InstallZoom(shell);
    InstallSearch(shell);
    InstallHex(shell);
    InstallOutputBar(shell);
    InstallCompare(shell);
    InstallVersions(shell);
    InstallFileExplorer(shell);
#ifdef MORVANE_CODE_LIBRARY_PAGE
    InstallCodeLibrary(shell);
#endif
    ReservePlaces(shell);
}
