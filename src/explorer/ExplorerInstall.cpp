#include "ExplorerInstall.h"

#include "CExplorerBar.h"
#include "CSolutionBarList.h"
#include "CSolutionBarProjTree.h"
#include "WorkspaceDocumentHook.h"
#include "ExplorerCommandIds.h"
#include "ExplorerPageKind.h"
#include "shell/CCommandRegistry.h"
#include "shell/CMenuPlaces.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"
#include "shell/MenuPlaces.h"

#include <QApplication>
#include <QStyle>
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
        CommandInfo cmd;
        cmd.id = toggle.id;
        cmd.text = Tr(toggle.text);
        cmd.category = Tr("View");
        cmd.checkable = true;
        const int kind = toggle.kind;
        cmd.run = [bar, kind] { bar->TogglePage(kind); };
        // A page whose subsystem is not installed cannot be shown.
        cmd.update = [bar, kind](CCmdUI& ui) {
            ui.enabled = bar->Page(kind) != nullptr;
            ui.checked = bar->IsPageOn(kind) && bar->IsBarVisible();
        };
        shell.Commands().Register(cmd);
        shell.Menus().AddCommand(MenuId::View, MenuGroup::ViewBars, toggle.id);
    }

    CommandInfo all;
    all.id = ExplorerCmd::ViewExplorerBar;
    all.text = Tr("E&xplorer Bar");
    all.category = Tr("View");
    all.checkable = true;
    all.run = [bar] { bar->SetBarVisible(!bar->IsBarVisible()); };
    all.update = [bar](CCmdUI& ui) { ui.checked = bar->IsBarVisible(); };
    shell.Commands().Register(all);
    shell.Menus().AddCommand(MenuId::View, MenuGroup::ViewBars, all.id);
}

void RegisterWorkspaceCommands(IShell& shell, CExplorerBar* bar, CSolutionBarProjTree* tree)
{
    CWorkspace* workspace = &tree->Workspace();
    auto add = [&shell](int id, const char* text, std::function<void()> run,
                        std::function<void(CCmdUI&)> update, const char* iconName = nullptr,
                        QStyle::StandardPixmap fallback = QStyle::SP_CustomBase) {
        CommandInfo cmd;
        cmd.id = id;
        cmd.text = Tr(text);
        cmd.category = Tr("File");
        cmd.run = std::move(run);
        cmd.update = std::move(update);
        if (iconName)
            cmd.iconName = QString::fromLatin1(iconName);
        if (fallback != QStyle::SP_CustomBase)
            // The theme's icon where the desktop has one, else the style's.
            cmd.icon = QIcon::fromTheme(cmd.iconName, QApplication::style()->standardIcon(fallback));
        shell.Commands().Register(cmd);
    };
    auto whenOpen = [workspace](CCmdUI& ui) { ui.enabled = workspace->IsWorkspaceOpen(); };
    // On the bar's strip they also wait for a page of the kinds that has tools.
    auto onStrip = [workspace, bar](CCmdUI& ui) {
        ui.enabled = workspace->IsWorkspaceOpen() && bar->PageKind() != ExplorerPageKind::CodeLibrary;
    };
    add(ExplorerCmd::AddFolder, QT_TRANSLATE_NOOP("Explorer", "Add Folder"),
        [workspace] { workspace->AddNewFolder(); }, onStrip, "folder-new", QStyle::SP_FileDialogNewFolder);
    add(ExplorerCmd::DeleteFolder, QT_TRANSLATE_NOOP("Explorer", "Delete Folder"),
        [workspace] { workspace->DeleteFolder(); }, onStrip, "edit-delete", QStyle::SP_TrashIcon);
    add(ExplorerCmd::RenameFolder, QT_TRANSLATE_NOOP("Explorer", "Rename Folder"),
        [workspace] { workspace->RenameFolder(); }, onStrip, "edit-rename",
        QStyle::SP_FileDialogDetailedView);

    add(ExplorerCmd::WorkspaceNew, QT_TRANSLATE_NOOP("Explorer", "&Workspace"),
        [tree] { tree->CommandNewWorkspace(); }, nullptr);
    add(ExplorerCmd::WorkspaceOpen, QT_TRANSLATE_NOOP("Explorer", "Open Wor&kspace"),
        [tree] { tree->CommandOpenWorkspace(); }, nullptr);
    add(ExplorerCmd::WorkspaceSave, QT_TRANSLATE_NOOP("Explorer", "Sa&ve Workspace"),
        [tree] { tree->CommandSaveWorkspace(); }, whenOpen);
    add(ExplorerCmd::WorkspaceClose, QT_TRANSLATE_NOOP("Explorer", "Close &Workspace"),
        [workspace] { workspace->CloseWorkspace(); }, whenOpen);

    // "Workspace" belongs with File > New where the window has that submenu.
    if (shell.Menus().Menu(QString::fromLatin1(MenuId::FileNew)))
        shell.Menus().AddCommand(MenuId::FileNew, MenuGroup::Default, ExplorerCmd::WorkspaceNew);
    else
        shell.Menus().AddCommand(MenuId::File, MenuGroup::FileWorkspace, ExplorerCmd::WorkspaceNew);
    for (int id : {ExplorerCmd::WorkspaceOpen, ExplorerCmd::WorkspaceSave, ExplorerCmd::WorkspaceClose})
        shell.Menus().AddCommand(MenuId::File, MenuGroup::FileWorkspace, id);
}

} // namespace

void InstallExplorer(IShell& shell)
{
    // The project tree exists from the start: documents add their files to it at once.
    auto* tree = new CSolutionBarProjTree(shell);
    auto* list = new CSolutionBarList(shell);
    auto* bar = new CExplorerBar(shell);
    RegisterToggles(shell, bar);
    RegisterWorkspaceCommands(shell, bar, tree);
    QObject::connect(tree, &CSolutionBarProjTree::showRequested, bar,
                     [bar] { bar->ShowPage(ExplorerPageKind::Project); });
    shell.AddExplorerPage(tree);
    shell.AddExplorerPage(list);
    // Pages the bar never showed have no parent yet; they go with the bar.
    for (QWidget* page : {static_cast<QWidget*>(tree), static_cast<QWidget*>(list)}) {
        if (!page->parent()) {
            page->setParent(bar);
            page->hide();
        }
    }

    tree->Workspace().NewWorkspace();
    QObject::connect(&shell.Events(), &CShellEvents::documentCreated, tree,
                     [tree](CDocument* document) { WorkspaceDocumentHook::Watch(document, tree->Workspace()); });
    // Leaving the program with an unsaved workspace of the user's own (one saved or
    // opened under a name) asks as closing the workspace does. The unnamed workspace that
    // only collects what was opened is not worth a question at every exit.
    QObject::connect(&shell.Events(), &CShellEvents::closing, tree, [tree] {
        CWorkspace& workspace = tree->Workspace();
        if (workspace.IsWorkspaceOpen() && workspace.IsModified()
            && !workspace.GetWorkspacePath().isEmpty() && tree->AskSaveBeforeClose())
            workspace.SaveWorkspace();
    });
}

CSolutionBarProjTree* ProjectTree(IShell& shell)
{
    for (IExplorerPage* page : shell.ExplorerPages())
        if (page->PageKind() == ExplorerPageKind::Project)
            if (auto* tree = dynamic_cast<CSolutionBarProjTree*>(page))
                return tree;
    return nullptr;
}

bool OpenWorkspaceIfProjectFile(IShell& shell, const QString& path)
{
    if (!path.endsWith(QStringLiteral(".spf"), Qt::CaseInsensitive))
        return false;
    if (CSolutionBarProjTree* tree = ProjectTree(shell)) {
        tree->OpenWorkspaceFile(path);
        return true;
    }
    return false;
}
