#include "CSolutionBarProjTree.h"

#include "CFileInfoDialog.h"
#include "ExplorerCommandIds.h"
#include "ExplorerPageKind.h"
#include "shell/IShell.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QStyle>

namespace {
QString WorkspaceFilter()
{
    return QCoreApplication::translate("CSolutionBarProjTree", "Morvane Project File (*.spf)");
}
} // namespace

CSolutionBarProjTree::CSolutionBarProjTree(IShell& shell, QWidget* parent)
    : CBaseTreeCtrl(parent)
    , m_shell(shell)
{
    setObjectName(QStringLiteral("ProjectExplorer"));
    const QStyle* s = style();
    SetImageList({
        QIcon::fromTheme(QStringLiteral("folder"), s->standardIcon(QStyle::SP_DirClosedIcon)),
        QIcon::fromTheme(QStringLiteral("folder-open"), s->standardIcon(QStyle::SP_DirOpenIcon)),
        QIcon::fromTheme(QStringLiteral("application-octet-stream"), s->standardIcon(QStyle::SP_DriveHDIcon)),
        QIcon::fromTheme(QStringLiteral("text-x-generic"), s->standardIcon(QStyle::SP_FileIcon)),
    });
    m_workspace.SetPrompts(this);
    SetTreeModel(&m_workspace.Model());
    connect(&m_workspace, &CWorkspace::selectRequested, this, &CBaseTreeCtrl::SelectNode);
    connect(&m_workspace, &CWorkspace::expandRequested, this, &CBaseTreeCtrl::ExpandNode);
    connect(&m_workspace, &CWorkspace::editRequested, this, [this](CTreeNode* node) { EditLabel(node); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { m_workspace.SetSelectedFromView(CTreeItemModel::NodeOf(current)); });
    connect(&m_workspace, &CWorkspace::stateChanged, this, [this] { m_shell.RequestCommandUpdate(); });
}

CSolutionBarProjTree::~CSolutionBarProjTree()
{
    m_workspace.SetPrompts(nullptr);
    SetTreeModel(nullptr);
}

int CSolutionBarProjTree::PageKind() const
{
    return ExplorerPageKind::Project;
}

QString CSolutionBarProjTree::Title() const
{
    return tr("Project Explorer");
}

QIcon CSolutionBarProjTree::Icon() const
{
    return Image(CWorkspace::FolderImage);
}

QList<int> CSolutionBarProjTree::ToolStrip() const
{
    return {ExplorerCmd::AddFolder, ExplorerCmd::DeleteFolder, ExplorerCmd::RenameFolder};
}

void CSolutionBarProjTree::SetModified(bool modified)
{
    CBaseTreeCtrl::SetModified(modified);
    m_workspace.SetModified(modified);
}

void CSolutionBarProjTree::SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord)
{
    m_workspace.SetItemLabel(item, text, updateRecord);
}

QString CSolutionBarProjTree::ItemPathAt(const QPoint& viewportPos)
{
    CTreeNode* node = NodeAt(viewportPos);
    // Only the icon and the label count, not the empty row beside them.
    if (!node || !NodeRect(node).contains(viewportPos))
        return {};
    SelectNode(node);
    return CWorkspace::GetItemPath(node);
}

void CSolutionBarProjTree::ActivateItem(const QString& path)
{
    if (!path.isEmpty())
        m_shell.ActivateOpenDocument(path);
}

void CSolutionBarProjTree::OpenItem(const QString& path)
{
    if (path.isEmpty() || m_shell.ActivateOpenDocument(path))
        return;
    OpenOptions options;
    options.mode = OpenOptions::Detect;
    m_shell.OpenPath(path, options);
}

void CSolutionBarProjTree::mouseReleaseEvent(QMouseEvent* event)
{
    const bool wasDragging = IsDragging();
    CBaseTreeCtrl::mouseReleaseEvent(event);
    if (!wasDragging && event->button() == Qt::LeftButton)
        ActivateItem(ItemPathAt(event->position().toPoint()));
}

void CSolutionBarProjTree::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        const QString path = ItemPathAt(event->position().toPoint());
        if (!path.isEmpty()) {
            OpenItem(path);
            event->accept();
            return;
        }
    }
    CBaseTreeCtrl::mouseDoubleClickEvent(event);
}

QMenu* CSolutionBarProjTree::ItemMenu()
{
    if (!m_itemMenu) {
        // The item menu's own actions: the file explorer's menu answers the same ids.
        m_itemMenu = new QMenu(this);
        QAction* open = m_itemMenu->addAction(tr("&Open"), this, &CSolutionBarProjTree::OpenSelected);
        open->setData(int(ExplorerCmd::ItemOpen));
        QAction* remove = m_itemMenu->addAction(tr("&Remove"), &m_workspace, &CWorkspace::RemoveSelected);
        remove->setData(int(ExplorerCmd::ItemRemove));
        m_itemMenu->addSeparator();
        QAction* properties = m_itemMenu->addAction(tr("&Properties"), this,
                                                    &CSolutionBarProjTree::ShowSelectedProperties);
        properties->setData(int(ExplorerCmd::ItemProperties));
    }
    return m_itemMenu;
}

void CSolutionBarProjTree::contextMenuEvent(QContextMenuEvent* event)
{
    const QPoint pos = viewport()->mapFromGlobal(event->globalPos());
    CTreeNode* node = NodeAt(pos);
    if (node) {
        SelectNode(node);
        if (!node->IsFolder())
            ItemMenu()->popup(event->globalPos());
    }
    event->accept();
}

void CSolutionBarProjTree::OpenSelected()
{
    OpenItem(CWorkspace::GetItemPath(SelectedNode()));
}

void CSolutionBarProjTree::ShowSelectedProperties()
{
    const QString path = CWorkspace::GetItemPath(SelectedNode());
    if (path.isEmpty())
        return;
    if (showProperties) {
        showProperties(path);
        return;
    }
    CFileInfoDialog dialog(path, m_shell.Window());
    dialog.exec();
}

void CSolutionBarProjTree::CommandNewWorkspace()
{
    Q_EMIT showRequested();
    m_workspace.NewWorkspace();
}

void CSolutionBarProjTree::CommandOpenWorkspace()
{
    const QString path = askOpenPath ? askOpenPath()
                                     : QFileDialog::getOpenFileName(m_shell.Window(), tr("Open Workspace"), {},
                                                                    WorkspaceFilter());
    if (path.isEmpty())
        return;
    OpenWorkspaceFile(path);
}

bool CSolutionBarProjTree::OpenWorkspaceFile(const QString& path)
{
    Q_EMIT showRequested();
    return m_workspace.OpenWorkspace(path);
}

void CSolutionBarProjTree::CommandSaveWorkspace()
{
    if (m_workspace.IsWorkspaceOpen())
        m_workspace.SaveWorkspace(m_workspace.GetWorkspacePath());
}

bool CSolutionBarProjTree::AskSaveBeforeClose()
{
    if (askSaveBeforeClose)
        return askSaveBeforeClose();
    return QMessageBox::question(m_shell.Window(), QApplication::applicationName(),
                                 tr("Save workspace before closing?"), QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::Yes)
           == QMessageBox::Yes;
}

QString CSolutionBarProjTree::AskSavePath()
{
    if (askSavePath)
        return askSavePath();
    QFileDialog dialog(m_shell.Window(), tr("Save Workspace"), {}, WorkspaceFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("spf"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().constFirst();
}

bool CSolutionBarProjTree::ConfirmDeleteFolder()
{
    if (confirmDeleteFolder)
        return confirmDeleteFolder();
    QMessageBox box(QMessageBox::Question, QApplication::applicationName(),
                    tr("Delete this folder and all its sub items?"), QMessageBox::Ok | QMessageBox::Cancel,
                    m_shell.Window());
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Ok;
}

void CSolutionBarProjTree::ShowInformation(const QString& text)
{
    if (showMessage) {
        showMessage(text);
        return;
    }
    QMessageBox::information(m_shell.Window(), QApplication::applicationName(), text);
}

void CSolutionBarProjTree::ShowError(const QString& text)
{
    if (showMessage) {
        showMessage(text);
        return;
    }
    QMessageBox::warning(m_shell.Window(), QApplication::applicationName(), text);
}
