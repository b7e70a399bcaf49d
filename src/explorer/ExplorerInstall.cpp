#include "ExplorerInstall.h"

#include "CExplorerBar.h"
#include "ExplorerCommandIds.h"
#include "ExplorerPageKind.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/IShell.h"
#include "shell/MenuPlaces.h"

#include <QCoreApplication>
#include <QMainWindow>

namespace {

QString Tr(const char* text)
{
    return QCoreApplication::translate("Explorer", text);
}

void RegisterToggles(IShell& shell, CExplorerBar* bar)
{
    struct Toggle
    {
        int id;
        const char* text;
        int kind;
    };
    const Toggle toggles[] = {
        {ExplorerCmd::ViewFileExplorer, QT_TRANSLATE_NOOP("Explorer", "File Explorer"), ExplorerPageKind::File},
        {ExplorerCmd::ViewProjectExplorer, QT_TRANSLATE_NOOP("Explorer", "Project Explorer"), ExplorerPageKind::Project},
        {ExplorerCmd::ViewCodeLibrary, QT_TRANSLATE_NOOP("Explorer", "Code Library"), ExplorerPageKind::CodeLibrary},
        {ExplorerCmd::ViewListExplorer, QT_TRANSLATE_NOOP("Explorer", "List Explorer"), ExplorerPageKind::List},
    };
    for (const Toggle& toggle : toggles) {
        CommandSpec spec;
        spec.id = toggle.id;
        spec.text = Tr(toggle.text);
        spec.category = Tr("View");
        spec.checkable = true;
        const int kind = toggle.kind;
        spec.run = [bar, kind] { bar->TogglePage(kind); };
        // A page whose subsystem is not installed cannot be shown.
        spec.update = [bar, kind](CCmdUI& ui) {
            ui.enabled = bar->Page(kind) != nullptr;
            ui.checked = bar->IsPageOn(kind) && bar->IsBarVisible();
        };
        shell.Commands().Register(spec);
        shell.Menus().AddCommand(MenuId::View, MenuGroup::ViewBars, toggle.id);
    }

    CommandSpec all;
    all.id = ExplorerCmd::ViewExplorerBar;
    all.text = Tr("&Explorer Bar");
    all.category = Tr("View");
    all.checkable = true;
    all.run = [bar] { bar->SetBarVisible(!bar->IsBarVisible()); };
    all.update = [bar](CCmdUI& ui) { ui.checked = bar->IsBarVisible(); };
    shell.Commands().Register(all);
    shell.Menus().AddCommand(MenuId::View, MenuGroup::ViewBars, all.id);
}

} // namespace

void InstallExplorer(IShell& shell)
{
    auto* bar = new CExplorerBar(shell);
    RegisterToggles(shell, bar);
}
