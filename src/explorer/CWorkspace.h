#pragma once

#include "CTreeItemModel.h"
#include "WorkspaceFile.h"

#include <QMultiHash>
#include <QObject>
#include <QSet>
#include <QString>

// The questions and messages of the workspace, answered by the window (or by a test).
class IWorkspacePrompts
{
public:
    virtual ~IWorkspacePrompts() = default;
    // "Save workspace before closing?", Yes or No.
    virtual bool AskSaveBeforeClose() = 0;
    // The save dialog for a workspace file; empty when cancelled.
    virtual QString AskSavePath() = 0;
    // "Delete this folder and all its sub items?", OK or Cancel.
    virtual bool ConfirmDeleteFolder() = 0;
    virtual void ShowInformation(const QString& text) = 0;
    virtual void ShowError(const QString& text) = 0;
};

// The workspace: a tree of virtual folders and file references kept in a CTreeItemModel,
// its file, its title and modified state, and the operations the project tree offers.
// Widget-free; the Project Explorer page shows the model and forwards its commands here.
// An index by path beside the tree keeps AddFile fast in large workspaces.
class CWorkspace : public QObject, private ITreeNodeObserver, private WorkspaceFile::IReadSink
{
    Q_OBJECT
public:
    // Images of the project tree's strip.
    enum Image { FolderImage = 0, OpenFolderImage = 1, BinaryFileImage = 2, TextFileImage = 3 };

    explicit CWorkspace(QObject* parent = nullptr);
    ~CWorkspace() override;

    CTreeItemModel& Model() { return m_model; }
    const CTreeItemModel& Model() const { return m_model; }
    void SetPrompts(IWorkspacePrompts* prompts) { m_prompts = prompts; }

    void NewWorkspace(const QString& path = {});
    // Reads the file first: one that is missing, unreadable or malformed is reported and
    // leaves the open workspace as it was.
    bool OpenWorkspace(const QString& path);
    // Writes beside the file and renames over it; an empty path uses the workspace's own
    // or asks for one.
    bool SaveWorkspace(const QString& path = {});
    void CloseWorkspace();
    bool IsWorkspaceOpen() const { return m_open; }
    QString GetWorkspacePath() const { return m_path; }
    // "Project" or "Project [name]", without the modified mark.
    QString Title() const { return m_title; }
    bool IsModified() const { return m_modified; }
    void SetModified(bool modified);

    CTreeNode* AddFile(const QString& path, CTreeNode* parent, int type, int encoding) override;
    CTreeNode* AddFolder(CTreeNode* parent, const QString& name) override;
    // The "Add Folder" command: a "New Folder" under the selected folder, whose label the
    // view then edits.
    CTreeNode* AddNewFolder();
    void DeleteFolder();
    // Asks the view to edit the selected folder's label.
    void RenameFolder();
    // Removes the selected item and its subtree (the "Remove" command).
    void RemoveSelected();

    CTreeNode* FindItemByPath(const QString& path, CTreeNode* start = nullptr) const;
    // The record's path; empty for a folder or null.
    static QString GetItemPath(const CTreeNode* item);
    void SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord);

    CTreeNode* Root() const { return m_model.Root(); }
    CTreeNode* Selected() const { return m_selected; }
    // Selects and tells the view to show it.
    void Select(CTreeNode* node);
    // The view's own selection changes come back here without an echo.
    void SetSelectedFromView(CTreeNode* node) { m_selected = node; }

    static QString NewFolderText();

Q_SIGNALS:
    void selectRequested(CTreeNode* node);
    void expandRequested(CTreeNode* node);
    void editRequested(CTreeNode* node);
    // Open state, title or modified flag changed.
    void stateChanged();

private:
    void NodeAdded(CTreeNode* node) override;
    void NodeRemoving(CTreeNode* node) override;
    void NodeDataChanging(CTreeNode* node, const TreeItemData& newData) override;
    static QString Key(const QString& path) { return path.toCaseFolded(); }
    CTreeNode* FolderFor(CTreeNode* item) const;
    CTreeNode* SearchFrom(const QString& key, CTreeNode* start) const;

    void RequestSelect(CTreeNode* node);
    void RequestExpand(CTreeNode* node);

    CTreeItemModel m_model;
    IWorkspacePrompts* m_prompts = nullptr;
    // While a file is read the view hears of selection and expansion once, at the end.
    bool m_reading = false;
    QList<CTreeNode*> m_expandAfterRead;
    QSet<CTreeNode*> m_expandedWhileReading;
    QString m_path;
    QString m_title;
    bool m_open = false;
    bool m_modified = false;
    CTreeNode* m_selected = nullptr;
    // Case-folded path to the file items with that path.
    QMultiHash<QString, CTreeNode*> m_byPath;
};
