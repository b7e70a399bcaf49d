#include "fileexplorer/CFileExplorerPage.h"

#include "fileexplorer/CFileSysTreeCtrl.h"
#include "framework/CommandIds.h"
#include "settings/CRegistryStore.h"
#include "shell/CCommandRegistry.h"
#include "shell/CShellEvents.h"
#include "shell/IShell.h"

#include <QFileIconProvider>

#include "explorer/CFileInfoDialog.h"
#include <QMainWindow>

namespace {
const QString SettingsSection = QStringLiteral("FileExplorer");
const QString ShowHiddenValue = QStringLiteral("ShowHiddenFiles");
} // namespace

CFileExplorerPage::CFileExplorerPage(IShell& shell)
    : QObject(shell.Window())
    , m_shell(shell)
{
}

CFileExplorerPage::~CFileExplorerPage()
{
    // The bar owns the tree once it shows it; a tree never shown is ours.
    if (m_tree && !m_tree->parent())
        delete m_tree.data();
}

QIcon CFileExplorerPage::Icon() const
{
    return QIcon::fromTheme(QStringLiteral("system-file-manager"),
                            QFileIconProvider().icon(QAbstractFileIconProvider::Folder));
}

QWidget* CFileExplorerPage::Widget()
{
    return Tree();
}

QList<int> CFileExplorerPage::ToolStrip() const
{
    return {Cmd::RefreshFileSystemView, Cmd::FileExplorerShowHidden};
}

CFileSysTreeCtrl* CFileExplorerPage::Tree()
{
    if (!m_tree) {
        m_tree = new CFileSysTreeCtrl(&m_shell);
        m_tree->SetShowHidden(m_showHidden);
        m_tree->SetPropertiesHandler([](const QString& path, QWidget* parent) {
            CFileInfoDialog dialog(path, parent);
            dialog.exec();
        });
    }
    return m_tree;
}

void CFileExplorerPage::SetShowHidden(bool show)
{
    m_showHidden = show;
    if (m_tree)
        m_tree->SetShowHidden(show);
}

CFileExplorerPage* InstallFileExplorer(IShell& shell)
{
    auto* page = new CFileExplorerPage(shell);
    page->SetShowHidden(CRegistryStore().GetProfileInt(SettingsSection, ShowHiddenValue, 0) != 0);

    CommandInfo refresh;
    refresh.id = Cmd::RefreshFileSystemView;
    refresh.text = QObject::tr("Refresh File System View");
    refresh.category = QObject::tr("View");
    refresh.iconName = QStringLiteral("view-refresh");
    refresh.run = [page] {
        if (page->Tree()->IsFilled())
            page->Tree()->RefreshFromTop();
    };
    shell.Commands().Register(refresh);

    CommandInfo hidden;
    hidden.id = Cmd::FileExplorerShowHidden;
    hidden.text = QObject::tr("Show &Hidden Files");
    hidden.category = QObject::tr("View");
    hidden.iconName = QStringLiteral("view-hidden");
    hidden.checkable = true;
    hidden.run = [page] { page->SetShowHidden(!page->ShowHidden()); };
    hidden.update = [page](CCmdUI& ui) { ui.checked = page->ShowHidden(); };
    shell.Commands().Register(hidden);

    QObject::connect(&shell.Events(), &CShellEvents::firstIdle, page, [page] {
        if (!page->Tree()->IsFilled())
            page->Tree()->FirstFill();
    });
    QObject::connect(&shell.Events(), &CShellEvents::saveSettings, page, [page] {
        CRegistryStore().WriteProfileInt(SettingsSection, ShowHiddenValue, page->ShowHidden() ? 1 : 0);
    });
    shell.AddExplorerPage(page);
    return page;
}
