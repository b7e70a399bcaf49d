#include "fileexplorer/CFileSysTreeCtrl.h"

#include "fileexplorer/CFolderWatch.h"
#include "fileexplorer/TopLevelFolders.h"
#include "framework/CChildFrame.h"
#include "framework/OpenOptions.h"
#include "shell/IShell.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFont>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPalette>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QUrl>

namespace {

// The local model with the desktop's icons.
class CIconModel : public CFileSysModel
{
public:
    explicit CIconModel(QObject* parent)
        : CFileSysModel(parent)
    {
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (IsMessage(index)) {
            // Set apart from the names around it: it is about the folder, not in it.
            if (role == Qt::DecorationRole)
                return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
            if (role == Qt::ForegroundRole)
                return QApplication::palette().brush(QPalette::Disabled, QPalette::Text);
            if (role == Qt::FontRole) {
                QFont font;
                font.setItalic(true);
                return font;
            }
        }
        if (role != Qt::DecorationRole || !index.isValid())
            return CFileSysModel::data(index, role);
        if (!index.parent().isValid())
            return m_icons.TopLevel(Path(index));
        if (IsFolder(index))
            return m_icons.Folder();
        return m_icons.File(index.data().toString());
    }

private:
    mutable CFileSysIcons m_icons;
};

// Only to reach the style option of an item, to find where its text is drawn.
class CLabelDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    using QStyledItemDelegate::initStyleOption;
};

class CWaitCursor
{
public:
    CWaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~CWaitCursor() { QApplication::restoreOverrideCursor(); }
};

} // namespace

CFileSysTreeCtrl::CFileSysTreeCtrl(IShell* shell, QWidget* parent)
    : QTreeView(parent)
    , m_shell(shell)
    , m_model(new CIconModel(this))
    , m_watch(new CFolderWatch(*m_model, this))
{
    setObjectName(QStringLiteral("FileExplorerTree"));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setItemDelegate(new CLabelDelegate(this));
    setModel(m_model);
    connect(this, &QTreeView::expanded, this, &CFileSysTreeCtrl::OnExpanded);
    connect(this, &QTreeView::collapsed, m_model, &CFileSysModel::Collapse);
    connect(m_model, &CFileSysModel::collapseRequested, this, &QTreeView::collapse);
}

CFileSysTreeCtrl::~CFileSysTreeCtrl() = default;

void CFileSysTreeCtrl::FirstFill()
{
    FirstFill(TopLevelFolders::ForThisMachine());
}

void CFileSysTreeCtrl::FirstFill(const QStringList& topLevel)
{
    CWaitCursor wait;
    m_model->SetTopLevel(topLevel);
    m_filled = true;
    const QModelIndex first = m_model->index(0, 0);
    if (!first.isValid())
        return;
    expand(first);
    setCurrentIndex(first);
}

void CFileSysTreeCtrl::OnExpanded(const QModelIndex& index)
{
    if (m_model->IsFilled(index)) {
        m_model->Expand(index);
        return;
    }
    CWaitCursor wait;
    m_model->Expand(index);
}

void CFileSysTreeCtrl::SetShowHidden(bool show)
{
    if (show == m_model->ShowHidden())
        return;
    CWaitCursor wait;
    m_model->SetShowHidden(show);
}

void CFileSysTreeCtrl::RefreshFromTop()
{
    const QModelIndex first = m_model->index(0, 0);
    if (!first.isValid())
        return;
    CWaitCursor wait;
    m_model->Refresh(first, true);
}

QString CFileSysTreeCtrl::GetItemPath(const QModelIndex& index, bool toFolder, bool allowFolder) const
{
    if (!index.isValid())
        return {};
    if (toFolder && !m_model->IsFolder(index))
        return GetItemPath(index.parent(), toFolder, allowFolder);
    if (m_model->IsFolder(index) && !allowFolder)
        return {};
    return m_model->Path(index);
}

QModelIndex CFileSysTreeCtrl::SelectedIndex() const
{
    return currentIndex();
}

void CFileSysTreeCtrl::SelectPath(const QString& path)
{
    const QModelIndex index = m_model->FindPath(path);
    if (index.isValid())
        setCurrentIndex(index);
}

void CFileSysTreeCtrl::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    m_watch->OnSelectionChanged(current);
}

void CFileSysTreeCtrl::OpenFile(const QString& path, bool hex)
{
    if (path.isEmpty() || !m_shell)
        return;
    OpenOptions options = OpenOptions::defaults();
    if (hex) {
        options.mode = OpenOptions::Hex;
    } else {
        // Routed as any open: binary files go to the hex view. A file we may not
        // write opens read-only.
        options.mode = OpenOptions::Detect;
        options.encoding = 4;
        options.bomLength = 0;
        const QFileInfo info(path);
        options.readOnly = info.exists() && !info.isWritable();
    }
    m_shell->OpenPath(path, options);
    if (CChildFrame* child = m_shell->ActiveChild()) {
        if (QWidget* view = child->widget())
            view->setFocus();
        else
            child->setFocus();
    }
}

void CFileSysTreeCtrl::OnOpen()
{
    OpenFile(GetItemPath(SelectedIndex(), false, false), false);
}

void CFileSysTreeCtrl::OnOpenAsHex()
{
    OpenFile(GetItemPath(SelectedIndex(), false, false), true);
}

void CFileSysTreeCtrl::OnCopyPath()
{
    const QString path = GetItemPath(SelectedIndex(), false, false);
    if (!path.isEmpty())
        QApplication::clipboard()->setText(QDir::toNativeSeparators(path));
}

void CFileSysTreeCtrl::OnOpenContainingFolder()
{
    const QString path = GetItemPath(SelectedIndex(), false, false);
    if (!path.isEmpty())
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

void CFileSysTreeCtrl::OnProperties()
{
    const QString path = GetItemPath(SelectedIndex(), false, true);
    if (!path.isEmpty() && m_properties)
        m_properties(path, window());
}

QMenu* CFileSysTreeCtrl::CreateItemMenu()
{
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("FileExplorerItemMenu"));
    const QModelIndex index = SelectedIndex();
    const bool file = index.isValid() && !m_model->IsFolder(index) && !m_model->IsMessage(index);
    auto add = [&](MenuCommand id, const QString& text, bool enabled, void (CFileSysTreeCtrl::*slot)()) {
        QAction* action = menu->addAction(text, this, slot);
        action->setData(int(id));
        action->setEnabled(enabled);
        return action;
    };
    // The commands that act on a file do nothing on a folder, so they are greyed there.
    QAction* open = add(CmdOpen, tr("Open"), file, &CFileSysTreeCtrl::OnOpen);
    menu->setDefaultAction(open);
    add(CmdOpenAsHex, tr("Open As Hex"), file, &CFileSysTreeCtrl::OnOpenAsHex);
    menu->addSeparator();
    add(CmdCopyPath, tr("Copy Filepath to Clipboard"), file, &CFileSysTreeCtrl::OnCopyPath);
    add(CmdOpenContainingFolder, tr("Open Containing Folder"), file, &CFileSysTreeCtrl::OnOpenContainingFolder);
    menu->addSeparator();
    add(CmdProperties, tr("Properties"), index.isValid() && !m_model->IsMessage(index) && bool(m_properties),
        &CFileSysTreeCtrl::OnProperties);
    return menu;
}

QRect CFileSysTreeCtrl::LabelRect(const QModelIndex& index) const
{
    if (!index.isValid())
        return {};
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    static_cast<CLabelDelegate*>(itemDelegate())->initStyleOption(&option, index);
    return style()->subElementRect(QStyle::SE_ItemViewItemText, &option, this);
}

void CFileSysTreeCtrl::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = indexAt(pos);
    // Only the label counts; a folder's label opens and closes it as usual.
    if (event->button() == Qt::LeftButton && index.isValid() && !m_model->IsFolder(index)) {
        if (LabelRect(index).contains(pos)) {
            setCurrentIndex(index);
            OpenFile(GetItemPath(index, false, false), false);
        }
        event->accept();
        return;
    }
    QTreeView::mouseDoubleClickEvent(event);
}

void CFileSysTreeCtrl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::RightButton) {
        QTreeView::mousePressEvent(event);
        return;
    }
    // A right press selects, on the label only; the menu follows as the context menu.
    const QPoint pos = event->position().toPoint();
    const QModelIndex index = indexAt(pos);
    if (index.isValid() && LabelRect(index).contains(pos))
        setCurrentIndex(index);
    event->accept();
}

void CFileSysTreeCtrl::contextMenuEvent(QContextMenuEvent* event)
{
    // Taken here in every case, so the bar around the tree shows no menu of its own.
    event->accept();
    QModelIndex index;
    QPoint at;
    if (event->reason() == QContextMenuEvent::Mouse) {
        index = indexAt(event->pos());
        if (!index.isValid() || m_model->IsMessage(index) || !LabelRect(index).contains(event->pos()))
            return;
        setCurrentIndex(index);
        at = event->globalPos();
    } else {
        index = currentIndex();
        if (!index.isValid())
            return;
        at = viewport()->mapToGlobal(LabelRect(index).bottomLeft());
    }
    QMenu* menu = CreateItemMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(at);
}

void CFileSysTreeCtrl::keyPressEvent(QKeyEvent* event)
{
    const QModelIndex index = currentIndex();
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && index.isValid()
        && !m_model->IsFolder(index)) {
        OnOpen();
        return;
    }
    QTreeView::keyPressEvent(event);
}
