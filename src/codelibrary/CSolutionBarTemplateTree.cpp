#include "codelibrary/CSolutionBarTemplateTree.h"

#include "codelibrary/CTemplateManager.h"
#include "codelibrary/TemplateFiles.h"
#include "editor/CMFCScintilla.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDir>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>

namespace {

QString JoinPath(const QString& folder, const QString& name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

// A name that would place the file elsewhere than in its folder.
bool NamesAnotherPlace(const QString& name)
{
    return name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QChar(0))
           || name == QLatin1String(".") || name == QLatin1String("..");
}

QString WithLineEnds(QString text, bool crlf)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (crlf)
        text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return text;
}

void AddLevel(CSolutionBarTemplateTree* tree, CTreeNode* parent, const QList<TemplateFiles::Entry>& entries,
              const std::function<CTreeNode*(CTreeNode*, const TemplateFiles::Entry&)>& add)
{
    for (const TemplateFiles::Entry& entry : entries) {
        CTreeNode* item = add(parent, entry);
        if (entry.folder)
            AddLevel(tree, item, entry.children, add);
    }
}

} // namespace

CSolutionBarTemplateTree::CSolutionBarTemplateTree(QWidget* parent)
    : CBaseTreeCtrl(parent)
{
    setObjectName(QStringLiteral("CodeLibraryTree"));
    QFileIconProvider icons;
    const QIcon folder = icons.icon(QAbstractFileIconProvider::Folder);
    const QIcon file = QIcon::fromTheme(QStringLiteral("text-x-generic"), icons.icon(QAbstractFileIconProvider::File));
    SetImageList({QIcon::fromTheme(QStringLiteral("folder-open"), folder), folder, file, file});
    SetTreeModel(&m_treeModel);
}

CSolutionBarTemplateTree::~CSolutionBarTemplateTree()
{
    SetTreeModel(nullptr);
}

CTreeNode* CSolutionBarTemplateTree::AddItem(CTreeNode* parent, const QString& name, const QString& path,
                                             bool folder)
{
    TreeItemData record;
    record.label = name;
    record.pathname = path;
    record.folder = folder ? 1 : 0;
    return m_treeModel.Insert(parent, CTreeItemModel::Last, name, folder ? FolderImage : TemplateImage,
                              folder ? FolderOpenImage : TemplateSelectedImage, record);
}

bool CSolutionBarTemplateTree::BuildTree(CTreeNode* parent, const QString& directory, bool insertOnDoubleClick)
{
    if (!parent) {
        m_insertOnDoubleClick = insertOnDoubleClick;
        m_directory = directory;
        m_treeModel.Clear();
        parent = AddItem(nullptr, tr("Templates"), directory, true);
        TreeItemData record = parent->data;
        record.label = QStringLiteral("Templates");
        m_treeModel.SetData(parent, record);
    }
    QList<TemplateFiles::Entry> entries;
    if (!TemplateFiles::ReadTree(directory, entries))
        return false;
    AddLevel(this, parent, entries, [this](CTreeNode* under, const TemplateFiles::Entry& entry) {
        return AddItem(under, entry.name, entry.path, entry.folder);
    });
    return true;
}

void CSolutionBarTemplateTree::Rebuild()
{
    BuildTree(nullptr, m_directory, m_insertOnDoubleClick);
    if (Root())
        ExpandNode(Root());
}

QString CSolutionBarTemplateTree::GetItemPath(const CTreeNode* item) const
{
    return item && item->hasData ? item->data.pathname : QString();
}

CTreeNode* CSolutionBarTemplateTree::FindPath(const QString& path) const
{
    std::function<CTreeNode*(CTreeNode*)> find = [&](CTreeNode* node) -> CTreeNode* {
        if (node->hasData && node->data.pathname == path)
            return node;
        for (const auto& child : node->children) {
            if (CTreeNode* found = find(child.get()))
                return found;
        }
        return nullptr;
    };
    for (const auto& top : m_treeModel.TopLevel()) {
        if (CTreeNode* found = find(top.get()))
            return found;
    }
    return nullptr;
}

CTreeNode* CSolutionBarTemplateTree::FolderForNew() const
{
    CTreeNode* item = SelectedNode();
    if (!item)
        return Root();
    if (!item->IsFolder())
        item = item->Parent() ? item->Parent() : Root();
    return item;
}

CTreeNode* CSolutionBarTemplateTree::SelectedTemplate() const
{
    CTreeNode* item = SelectedNode();
    return item && item->hasData && !item->IsFolder() ? item : nullptr;
}

bool CSolutionBarTemplateTree::AskTemplate(QString& name, QString& code)
{
    if (m_asker)
        return m_asker(name, code);
    CTemplateManager dialog(name, code, window());
    if (dialog.exec() != QDialog::Accepted)
        return false;
    name = dialog.Name();
    code = dialog.Code();
    return true;
}

void CSolutionBarTemplateTree::EditTemplate(const QString& name, const QString& code, CTreeNode* existing)
{
    CTreeNode* folder = FolderForNew();
    QString newName = name;
    QString newCode = code;
    if (!AskTemplate(newName, newCode))
        return;
    if (!existing) {
        if (!folder || NamesAnotherPlace(newName))
            return;
        const QString path = JoinPath(GetItemPath(folder), newName);
        if (!TemplateFiles::WriteTemplate(path, TemplateFiles::Encode({newCode, true})))
            return;
        // Writing over a template of that name replaces it; the tree keeps one item.
        CTreeNode* item = nullptr;
        for (const auto& child : folder->children) {
            if (child->hasData && child->data.pathname == path)
                item = child.get();
        }
        if (!item)
            item = AddItem(folder, newName, path, false);
        ExpandNode(folder);
        SelectNode(item);
        SetModified(true);
        return;
    }

    // Editing: the name renames the file and the code is written to it. The file is
    // written only when the code changed, so a template larger than what was read is
    // never cut short by a rename; if the rename fails the code still goes to the file
    // under its old name, so nothing typed is lost.
    const QString oldPath = GetItemPath(existing);
    const QByteArray bytes = TemplateFiles::ReadTemplate(oldPath);
    const TemplateFiles::Text before = TemplateFiles::Decode(bytes);
    const bool crlf = before.text.contains(QStringLiteral("\r\n"));
    if (newName != existing->data.label)
        RenameItem(existing, newName);
    if (WithLineEnds(newCode, false) != WithLineEnds(code, false)) {
        const bool whole = QFileInfo(oldPath).size() <= TemplateFiles::MaxTemplateBytes;
        if (!whole || !TemplateFiles::WriteTemplate(GetItemPath(existing),
                                                    TemplateFiles::Encode({WithLineEnds(newCode, crlf), before.utf8})))
            QApplication::beep();
    }
    SetModified(true);
}

bool CSolutionBarTemplateTree::RenameItem(CTreeNode* item, const QString& newName)
{
    if (!item || !item->hasData || item == Root() || !item->Parent()) {
        QApplication::beep();
        return false;
    }
    if (newName.isEmpty()) {
        EditLabel(item);
        return true;
    }
    if (newName == item->data.label)
        return true;
    const QString oldPath = GetItemPath(item);
    const QString newPath = JoinPath(GetItemPath(item->Parent()), newName);
    if (NamesAnotherPlace(newName) || !TemplateFiles::RenameNoReplace(oldPath, newPath)) {
        m_treeModel.SetText(item, item->data.label);
        QApplication::beep();
        return false;
    }
    TreeItemData record = item->data;
    record.label = newName;
    record.pathname = newPath;
    m_treeModel.SetData(item, record);
    m_treeModel.SetText(item, newName);
    // What the folder holds moved with it.
    std::function<void(CTreeNode*)> follow = [&](CTreeNode* node) {
        for (const auto& child : node->children) {
            TreeItemData moved = child->data;
            moved.pathname = newPath + moved.pathname.mid(oldPath.size());
            m_treeModel.SetData(child.get(), moved);
            follow(child.get());
        }
    };
    follow(item);
    SetModified(true);
    return true;
}

void CSolutionBarTemplateTree::SetItemLabel(CTreeNode* item, const QString& text, bool)
{
    RenameItem(item, text);
}

bool CSolutionBarTemplateTree::CanEditLabel(const CTreeNode* node) const
{
    // Where the tree only chooses (the new file dialog), nothing is renamed.
    return m_insertOnDoubleClick && node && node->hasData && node != Root() && node->Parent();
}

void CSolutionBarTemplateTree::OnItemDropped(CTreeNode* dragged, CTreeNode* target)
{
    if (!dragged || !target || !dragged->hasData || !target->hasData)
        return;
    const QString to = JoinPath(GetItemPath(target), dragged->data.label);
    const bool moved = TemplateFiles::RenameNoReplace(GetItemPath(dragged), to);
    // Onto a template nothing moves, and the item stays in its folder. A move into a
    // folder that fails (a name taken there) would leave the tree wrong: read it again.
    if (!moved && target->IsFolder())
        QMetaObject::invokeMethod(this, &CSolutionBarTemplateTree::Rebuild, Qt::QueuedConnection);
}

void CSolutionBarTemplateTree::OnItemCopied(CTreeNode* parent, CTreeNode* newItem, const TreeItemData& oldData)
{
    TreeItemData record = oldData;
    record.pathname = JoinPath(GetItemPath(parent), oldData.label);
    m_treeModel.SetData(newItem, record);
}

QString CSolutionBarTemplateTree::SelectedTemplateText() const
{
    const CTreeNode* item = SelectedTemplate();
    if (!item)
        return {};
    return TemplateFiles::Decode(TemplateFiles::ReadTemplate(GetItemPath(item))).text;
}

void CSolutionBarTemplateTree::OnAddToDocument()
{
    CMFCScintilla* editor = m_editor ? m_editor() : nullptr;
    if (!editor || !SelectedTemplate())
        return;
    editor->InsertWithSelection(SelectedTemplateText());
    editor->setFocus();
}

void CSolutionBarTemplateTree::OnCopyToClipboard()
{
    if (SelectedTemplate())
        QApplication::clipboard()->setText(SelectedTemplateText());
}

void CSolutionBarTemplateTree::OnCreateTemplate()
{
    EditTemplate(QString(), QString(), nullptr);
}

void CSolutionBarTemplateTree::OnEditTemplate()
{
    CTreeNode* item = SelectedTemplate();
    if (!item)
        return;
    EditTemplate(item->data.label, SelectedTemplateText(), item);
}

void CSolutionBarTemplateTree::OnDeleteTemplate()
{
    CTreeNode* item = SelectedNode();
    if (!item)
        return;
    const auto answer = QMessageBox::question(window(), QApplication::applicationDisplayName(),
                                              tr("Are you sure you want to delete '%1'?").arg(item->text),
                                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    if (!item->hasData || item == Root()) {
        QApplication::beep();
        return;
    }
    if (TemplateFiles::DeleteFromDisk(GetItemPath(item))) {
        m_treeModel.Remove(item);
        SetModified(true);
    }
}

void CSolutionBarTemplateTree::OnCreateFolder()
{
    CTreeNode* folder = FolderForNew();
    if (!folder)
        return;
    // "New Folder", or the first free "New Folder (n)" when that is taken.
    const QString base = tr("New Folder");
    QString name = base;
    QString path = JoinPath(GetItemPath(folder), name);
    for (int n = 2; QFileInfo::exists(path) || QFileInfo(path).isSymLink(); ++n) {
        name = QStringLiteral("%1 (%2)").arg(base).arg(n);
        path = JoinPath(GetItemPath(folder), name);
    }
    if (!QDir().mkdir(path))
        return;
    CTreeNode* item = AddItem(folder, name, path, true);
    ExpandNode(folder);
    SelectNode(item);
    SetModified(true);
    RenameItem(item, QString());
}

void CSolutionBarTemplateTree::OnRenameFolder()
{
    CTreeNode* item = SelectedNode();
    if (!item || !item->IsFolder() || !EditLabel(item))
        QApplication::beep();
}

void CSolutionBarTemplateTree::OnDeleteFolder()
{
    CTreeNode* item = SelectedNode();
    if (!item || !item->IsFolder())
        return;
    if (item == Root()) {
        QMessageBox::information(window(), QApplication::applicationDisplayName(),
                                 tr("The template folder cannot be deleted."));
        return;
    }
    const QString path = GetItemPath(item);
    // Ask also when the disk holds what the tree doesn't show yet.
    const bool holds = !item->children.empty()
                       || !QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    if (holds) {
        QMessageBox box(QMessageBox::Question, QApplication::applicationDisplayName(),
                        tr("Delete this folder and all its sub items?"), QMessageBox::Ok | QMessageBox::Cancel,
                        window());
        box.setDefaultButton(QMessageBox::Cancel);
        if (box.exec() != QMessageBox::Ok)
            return;
    }
    if (TemplateFiles::DeleteFromDisk(path)) {
        m_treeModel.Remove(item);
        SetModified(true);
    }
}

QMenu* CSolutionBarTemplateTree::CreateItemMenu()
{
    CTreeNode* item = SelectedNode();
    if (!item || !item->hasData)
        return nullptr;
    auto* menu = new QMenu(this);
    auto add = [&](MenuCommand id, const QString& text, void (CSolutionBarTemplateTree::*slot)()) {
        QAction* action = menu->addAction(text, this, slot);
        action->setData(int(id));
        return action;
    };
    if (item->IsFolder()) {
        menu->setObjectName(QStringLiteral("CodeLibraryFolderMenu"));
        add(CmdCreateFolder, tr("Create Folder"), &CSolutionBarTemplateTree::OnCreateFolder);
        add(CmdRenameFolder, tr("Rename Folder"), &CSolutionBarTemplateTree::OnRenameFolder)->setEnabled(item != Root());
        add(CmdDeleteFolder, tr("Delete Folder"), &CSolutionBarTemplateTree::OnDeleteFolder);
        menu->addSeparator();
        add(CmdCreateTemplate, tr("Create Template"), &CSolutionBarTemplateTree::OnCreateTemplate);
    } else {
        menu->setObjectName(QStringLiteral("CodeLibraryTemplateMenu"));
        QAction* insert = add(CmdAddToDocument, tr("Add To Document"), &CSolutionBarTemplateTree::OnAddToDocument);
        insert->setEnabled(m_editor && m_editor());
        menu->setDefaultAction(insert);
        add(CmdCopyToClipboard, tr("Copy To Clipboard"), &CSolutionBarTemplateTree::OnCopyToClipboard);
        menu->addSeparator();
        add(CmdCreateTemplate, tr("Create Template"), &CSolutionBarTemplateTree::OnCreateTemplate);
        add(CmdEditTemplate, tr("Edit Template"), &CSolutionBarTemplateTree::OnEditTemplate);
        add(CmdDeleteTemplate, tr("Delete Template"), &CSolutionBarTemplateTree::OnDeleteTemplate);
    }
    return menu;
}

void CSolutionBarTemplateTree::mouseDoubleClickEvent(QMouseEvent* event)
{
    CTreeNode* item = NodeAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && item && item->hasData && !item->IsFolder()) {
        SelectNode(item);
        if (m_insertOnDoubleClick)
            OnAddToDocument();
        else
            Q_EMIT templateActivated(GetItemPath(item));
        event->accept();
        return;
    }
    CBaseTreeCtrl::mouseDoubleClickEvent(event);
}

void CSolutionBarTemplateTree::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::RightButton) {
        CBaseTreeCtrl::mousePressEvent(event);
        return;
    }
    // A right press selects the item; its menu follows as the context menu.
    if (CTreeNode* item = NodeAt(event->position().toPoint()))
        SelectNode(item);
    event->accept();
}

void CSolutionBarTemplateTree::contextMenuEvent(QContextMenuEvent* event)
{
    // Taken here in every case, so the bar around the tree shows no menu of its own.
    event->accept();
    if (!m_insertOnDoubleClick)
        return;
    QPoint at;
    if (event->reason() == QContextMenuEvent::Mouse) {
        CTreeNode* item = NodeAt(event->pos());
        if (!item)
            return;
        SelectNode(item);
        at = event->globalPos();
    } else {
        if (!SelectedNode())
            return;
        at = viewport()->mapToGlobal(NodeRect(SelectedNode()).bottomLeft());
    }
    if (QMenu* menu = CreateItemMenu()) {
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->popup(at);
    }
}

void CSolutionBarTemplateTree::mouseMoveEvent(QMouseEvent* event)
{
    // Where the tree only chooses, nothing is dragged.
    if (!m_insertOnDoubleClick) {
        QTreeView::mouseMoveEvent(event);
        return;
    }
    CBaseTreeCtrl::mouseMoveEvent(event);
}
