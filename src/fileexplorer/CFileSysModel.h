#pragma once

#include "fileexplorer/DirectorySource.h"

#include <QAbstractItemModel>
#include <QStringList>
#include <memory>
#include <vector>

// The file tree's items: a few top-level folders (home, "/", mounted volumes) and
// below them folders and files read one level at a time, when a folder is first
// expanded. A folder shows an expand button when it holds anything visible; finding
// that out costs one look into the folder, never a listing of it.
class CFileSysModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Role { PathRole = Qt::UserRole + 1, FolderRole, LinkRole };

    explicit CFileSysModel(QObject* parent = nullptr);
    // A source other than the local file system (for tests). Not owned.
    CFileSysModel(IDirectorySource* source, QObject* parent);
    ~CFileSysModel() override;

    // Replaces the whole tree by these top-level folders, in the order given; each
    // shows its full path. Their children are read when they are expanded.
    void SetTopLevel(const QStringList& paths);

    // Names starting with a dot are left out unless this is on. Changing it refreshes
    // every expanded folder.
    bool ShowHidden() const { return m_showHidden; }
    void SetShowHidden(bool show);

    // An expand of the view: reads the folder's children on the first expand and
    // sorts them. Later expands only mark the item expanded.
    void Expand(const QModelIndex& index);
    void Collapse(const QModelIndex& index);
    bool IsExpanded(const QModelIndex& index) const;
    // Whether the item's children have been read (and not since thrown away).
    bool IsFilled(const QModelIndex& index) const;

    // Brings a filled folder's children up to date with the disk: children that are
    // gone are removed, new ones added in order, buttons follow the folders' content.
    // Expanded child folders are refreshed too when `recursive`, and kept as they are
    // otherwise; filled but collapsed child folders are emptied, to be read anew at
    // their next expand. An item that was never expanded or has no children is left.
    void Refresh(const QModelIndex& index, bool recursive);
    // The same with the folder's entries already read (on another thread, say).
    void Refresh(const QModelIndex& index, const std::vector<DirEntry>& entries, bool recursive);
    // The folder could not be read: its children give way to one line saying why
    // ("Cannot read ...: <reason>"), so that it never passes for an empty folder. The
    // line goes at the next listing that succeeds.
    void ShowReadError(const QModelIndex& index, const QString& reason);

    QString Path(const QModelIndex& index) const;
    bool IsFolder(const QModelIndex& index) const;
    bool IsLink(const QModelIndex& index) const;
    // The line that stands for a folder's children when they could not be read. It has
    // no path and takes no command.
    bool IsMessage(const QModelIndex& index) const;
    // The item itself when it is a folder, else its parent.
    QModelIndex FolderOf(const QModelIndex& index) const;
    // The item of `path` among the items read so far; invalid when there is none.
    QModelIndex FindPath(const QString& path) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    // The model emptied an item the view shows expanded; the view collapses it.
    void collapseRequested(const QModelIndex& index);

private:
    struct Node;
    Node* NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const Node* node) const;
    QString PathOf(const Node* node) const;
    std::unique_ptr<Node> MakeChild(Node* parent, const DirEntry& entry, bool askContent);
    void Fill(Node* node);
    void SetReadError(Node* node, const QString& reason);
    void SortChildren(Node* node);
    void Reset(Node* node);
    void RefreshNode(Node* node, bool recursive);
    void RefreshNode(Node* node, const std::vector<DirEntry>& entries, bool recursive);
    static void Renumber(Node* node, size_t from = 0);

    std::unique_ptr<IDirectorySource> m_ownSource;
    IDirectorySource* m_source;
    std::unique_ptr<Node> m_root;
    bool m_showHidden = false;
};
