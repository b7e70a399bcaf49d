#pragma once

#include "explorer/CBaseTreeCtrl.h"

#include <functional>

class CMFCScintilla;
class QMenu;

// The code library as a tree: the template folder's folders and templates, as they were
// when the tree was built, plus what its commands do. Every change goes to the disk at
// once: the file system is the library's only store.
class CSolutionBarTemplateTree : public CBaseTreeCtrl
{
    Q_OBJECT
public:
    // The commands of the item menus, by their ids.
    enum MenuCommand : int {
        CmdAddToDocument = 32600,
        CmdCopyToClipboard = 32601,
        CmdCreateTemplate = 32782,
        CmdEditTemplate = 32783,
        CmdDeleteTemplate = 32784,
        CmdCreateFolder = 40000,
        CmdRenameFolder = 32786,
        CmdDeleteFolder = 40001,
    };
    // Image indices: folders, the root included, and templates.
    enum Image { FolderOpenImage = 0, FolderImage = 1, TemplateImage = 2, TemplateSelectedImage = 3 };

    explicit CSolutionBarTemplateTree(QWidget* parent = nullptr);
    ~CSolutionBarTemplateTree() override;

    // With a null parent: empties the tree and inserts the root "Templates" for
    // `directory`, then its content. False when `directory` is empty (the root alone).
    bool BuildTree(CTreeNode* parent, const QString& directory, bool insertOnDoubleClick);
    QString Directory() const { return m_directory; }
    bool InsertOnDoubleClick() const { return m_insertOnDoubleClick; }

    QString GetItemPath(const CTreeNode* item) const;
    CTreeNode* FindPath(const QString& path) const;

    // Shows the template dialog with `name` and `code`; on OK, creates a template in the
    // selected folder (or the selected template's folder), or, with `existing`, renames
    // that template and writes the code.
    void EditTemplate(const QString& name, const QString& code, CTreeNode* existing);
    // Renames the item on disk and in the tree; an empty name starts a label edit.
    // On failure the old text stays and the program beeps.
    bool RenameItem(CTreeNode* item, const QString& newName);

    // What the template dialog is, for tests: fills in name and code, true on OK.
    using TemplateAsker = std::function<bool(QString& name, QString& code)>;
    void SetTemplateAsker(TemplateAsker asker) { m_asker = std::move(asker); }
    // The editor templates go into: the active text view's, or null.
    void SetEditorProvider(std::function<CMFCScintilla*()> provider) { m_editor = std::move(provider); }

    // The commands on the selected item.
    void OnAddToDocument();
    void OnCopyToClipboard();
    void OnCreateTemplate();
    void OnEditTemplate();
    void OnDeleteTemplate();
    void OnCreateFolder();
    void OnRenameFolder();
    void OnDeleteFolder();

    // The menu for the selected item: one for templates, one for folders; null for an
    // item without a record. The caller owns it.
    QMenu* CreateItemMenu();

    // The selected template's text; empty for a folder or nothing selected.
    QString SelectedTemplateText() const;

    bool CanEditLabel(const CTreeNode* node) const override;
    void OnItemCopied(CTreeNode* parent, CTreeNode* newItem, const TreeItemData& oldData) override;
    void OnItemDropped(CTreeNode* dragged, CTreeNode* target) override;
    void SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord) override;

Q_SIGNALS:
    // A template was chosen by a double click where the tree does not insert.
    void templateActivated(const QString& path);

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    CTreeNode* AddItem(CTreeNode* parent, const QString& name, const QString& path, bool folder);
    CTreeNode* FolderForNew() const;
    CTreeNode* SelectedTemplate() const;
    bool AskTemplate(QString& name, QString& code);
    void Rebuild();

    CTreeItemModel m_treeModel;
    QString m_directory;
    bool m_insertOnDoubleClick = true;
    TemplateAsker m_asker;
    std::function<CMFCScintilla*()> m_editor;
};
