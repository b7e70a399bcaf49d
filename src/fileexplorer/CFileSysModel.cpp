#include "fileexplorer/CFileSysModel.h"

#include "fileexplorer/FileSysOrder.h"

#include <QDir>
#include <QHash>
#include <QSet>
#include <algorithm>

struct CFileSysModel::Node
{
    QString name; // a top-level item holds its full path here
    Node* parent = nullptr;
    int row = 0;
    bool folder = false;
    bool link = false;
    bool button = false;   // shows an expand button
    bool filled = false;   // children have been read
    bool expanded = false; // the view shows it open
    bool message = false;  // says why the parent's children could not be read
    std::vector<std::unique_ptr<Node>> children;
};

namespace {

// Sorts nodes folders first, then by name, computing each name's key once.
template <typename NodePtr>
void SortNodes(std::vector<NodePtr>& nodes)
{
    struct Keyed
    {
        QString key;
        NodePtr node;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(nodes.size());
    for (auto& node : nodes)
        keyed.push_back({FileSysOrder::SortKey(node->name), std::move(node)});
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        if (a.node->folder != b.node->folder)
            return a.node->folder;
        const int c = QString::compare(a.key, b.key, Qt::CaseSensitive);
        if (c != 0)
            return c < 0;
        return QString::compare(a.node->name, b.node->name, Qt::CaseSensitive) < 0;
    });
    for (size_t i = 0; i < nodes.size(); ++i)
        nodes[i] = std::move(keyed[i].node);
}

} // namespace

CFileSysModel::CFileSysModel(QObject* parent)
    : QAbstractItemModel(parent)
    , m_ownSource(std::make_unique<CLocalDirectorySource>())
    , m_source(m_ownSource.get())
    , m_root(std::make_unique<Node>())
{
}

CFileSysModel::CFileSysModel(IDirectorySource* source, QObject* parent)
    : QAbstractItemModel(parent)
    , m_source(source)
    , m_root(std::make_unique<Node>())
{
}

CFileSysModel::~CFileSysModel() = default;

void CFileSysModel::SetTopLevel(const QStringList& paths)
{
    beginResetModel();
    m_root->children.clear();
    for (const QString& path : paths) {
        auto node = std::make_unique<Node>();
        node->name = QDir::cleanPath(path);
        node->parent = m_root.get();
        node->folder = true;
        node->button = m_source->HasContent(node->name, m_showHidden);
        m_root->children.push_back(std::move(node));
    }
    Renumber(m_root.get());
    endResetModel();
}

void CFileSysModel::SetShowHidden(bool show)
{
    if (m_showHidden == show)
        return;
    m_showHidden = show;
    for (const auto& top : m_root->children) {
        Node* node = top.get();
        const bool had = node->button;
        node->button = m_source->HasContent(node->name, m_showHidden);
        if (had != node->button) {
            const QModelIndex index = IndexOf(node);
            Q_EMIT dataChanged(index, index);
        }
        if (node->filled && node->expanded)
            RefreshNode(node, true);
        else if (node->filled)
            Reset(node);
    }
}

CFileSysModel::Node* CFileSysModel::NodeOf(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : m_root.get();
}

QModelIndex CFileSysModel::IndexOf(const Node* node) const
{
    if (!node || node == m_root.get())
        return {};
    return createIndex(node->row, 0, const_cast<Node*>(node));
}

QString CFileSysModel::PathOf(const Node* node) const
{
    if (!node || node == m_root.get() || node->message)
        return {};
    if (node->parent == m_root.get())
        return node->name;
    const QString parentPath = PathOf(node->parent);
    if (parentPath.endsWith(QLatin1Char('/')))
        return parentPath + node->name;
    return parentPath + QLatin1Char('/') + node->name;
}

void CFileSysModel::Renumber(Node* node, size_t from)
{
    for (size_t i = from; i < node->children.size(); ++i)
        node->children[i]->row = int(i);
}

std::unique_ptr<CFileSysModel::Node> CFileSysModel::MakeChild(Node* parent, const DirEntry& entry,
                                                              bool askContent)
{
    auto node = std::make_unique<Node>();
    node->name = entry.name;
    node->parent = parent;
    node->folder = entry.folder;
    node->link = entry.link;
    if (entry.folder && askContent)
        node->button = m_source->HasContent(PathOf(parent) + QLatin1Char('/') + entry.name, m_showHidden);
    return node;
}

void CFileSysModel::Expand(const QModelIndex& index)
{
    Node* node = NodeOf(index);
    if (node == m_root.get())
        return;
    node->expanded = true;
    if (!node->filled)
        Fill(node);
}

void CFileSysModel::Collapse(const QModelIndex& index)
{
    if (index.isValid())
        NodeOf(index)->expanded = false;
}

bool CFileSysModel::IsExpanded(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->expanded;
}

bool CFileSysModel::IsFilled(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->filled;
}

void CFileSysModel::Fill(Node* node)
{
    node->filled = true;
    if (!node->folder)
        return;
    std::vector<DirEntry> entries;
    QString reason;
    if (!m_source->List(PathOf(node), m_showHidden, entries, reason)) {
        SetReadError(node, reason);
        return;
    }
    if (entries.empty())
        return;
    std::vector<std::unique_ptr<Node>> children;
    children.reserve(entries.size());
    for (const DirEntry& entry : entries)
        children.push_back(MakeChild(node, entry, true));
    SortNodes(children);
    beginInsertRows(IndexOf(node), 0, int(children.size()) - 1);
    node->children = std::move(children);
    Renumber(node);
    endInsertRows();
}

void CFileSysModel::SetReadError(Node* node, const QString& reason)
{
    const QString text = tr("Cannot read \"%1\": %2").arg(QDir::toNativeSeparators(PathOf(node)), reason);
    if (node->children.size() == 1 && node->children.front()->message && node->children.front()->name == text)
        return;
    const QModelIndex index = IndexOf(node);
    if (!node->children.empty()) {
        beginRemoveRows(index, 0, int(node->children.size()) - 1);
        node->children.clear();
        endRemoveRows();
    }
    auto line = std::make_unique<Node>();
    line->name = text;
    line->parent = node;
    line->message = true;
    beginInsertRows(index, 0, 0);
    node->children.push_back(std::move(line));
    endInsertRows();
    node->filled = true;
    if (!node->button) {
        node->button = true;
        Q_EMIT dataChanged(index, index);
    }
}

void CFileSysModel::ShowReadError(const QModelIndex& index, const QString& reason)
{
    Node* node = NodeOf(index);
    if (index.isValid() && node->folder && node->filled)
        SetReadError(node, reason);
}

void CFileSysModel::SortChildren(Node* node)
{
    const QModelIndex parentIndex = IndexOf(node);
    Q_EMIT layoutAboutToBeChanged({QPersistentModelIndex(parentIndex)},
                                  QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::pair<QModelIndex, Node*>> moved;
    for (const QModelIndex& index : before) {
        if (index.internalPointer() && NodeOf(index)->parent == node)
            moved.emplace_back(index, NodeOf(index));
    }
    SortNodes(node->children);
    Renumber(node);
    for (const auto& [from, child] : moved)
        changePersistentIndex(from, createIndex(child->row, from.column(), child));
    Q_EMIT layoutChanged({QPersistentModelIndex(parentIndex)}, QAbstractItemModel::VerticalSortHint);
}

void CFileSysModel::Reset(Node* node)
{
    const QModelIndex index = IndexOf(node);
    if (node->expanded) {
        Q_EMIT collapseRequested(index);
        node->expanded = false;
    }
    if (!node->children.empty()) {
        beginRemoveRows(index, 0, int(node->children.size()) - 1);
        node->children.clear();
        endRemoveRows();
    }
    node->filled = false;
}

void CFileSysModel::Refresh(const QModelIndex& index, bool recursive)
{
    if (!index.isValid())
        return;
    RefreshNode(NodeOf(index), recursive);
}

void CFileSysModel::Refresh(const QModelIndex& index, const std::vector<DirEntry>& entries, bool recursive)
{
    if (index.isValid())
        RefreshNode(NodeOf(index), entries, recursive);
}

void CFileSysModel::RefreshNode(Node* node, bool recursive)
{
    if (!node->filled || !node->folder)
        return;
    std::vector<DirEntry> entries;
    QString reason;
    if (m_source->List(PathOf(node), m_showHidden, entries, reason))
        RefreshNode(node, entries, recursive);
    else
        SetReadError(node, reason);
}

void CFileSysModel::RefreshNode(Node* node, const std::vector<DirEntry>& entries, bool recursive)
{
    if (!node->filled || !node->folder)
        return;
    // A folder that has never shown children gets its button from what is there now.
    if (node->children.empty()) {
        const bool button = !entries.empty();
        if (button && !node->expanded) {
            node->button = true;
            Reset(node);
            const QModelIndex index = IndexOf(node);
            Q_EMIT dataChanged(index, index);
            return;
        }
        if (entries.empty())
            return;
    }

    QHash<QString, const DirEntry*> onDisk;
    onDisk.reserve(qsizetype(entries.size()));
    for (const DirEntry& entry : entries)
        onDisk.insert(entry.name, &entry);

    // Remove what is gone, walking from the end so that each removal leaves the rows
    // still to be visited where they were; neighbours that went together go in one step.
    // A line saying the folder could not be read never matches a name (it holds a path
    // separator), so a listing that succeeds takes it away here.
    const QModelIndex parentIndex = IndexOf(node);
    for (int last = int(node->children.size()) - 1; last >= 0;) {
        if (onDisk.contains(node->children[size_t(last)]->name)) {
            --last;
            continue;
        }
        int first = last;
        while (first > 0 && !onDisk.contains(node->children[size_t(first - 1)]->name))
            --first;
        beginRemoveRows(parentIndex, first, last);
        node->children.erase(node->children.begin() + first, node->children.begin() + last + 1);
        Renumber(node, size_t(first));
        endRemoveRows();
        last = first - 1;
    }

    // What stays: its kind and button follow the disk; open folders are refreshed
    // in turn when asked, closed ones read again at their next expand.
    QSet<QString> present;
    present.reserve(qsizetype(node->children.size()));
    bool reorder = false;
    for (const auto& childPtr : node->children) {
        Node* child = childPtr.get();
        present.insert(child->name);
        const DirEntry& entry = *onDisk.value(child->name);
        bool changed = false;
        if (child->folder != entry.folder || child->link != entry.link) {
            if (child->filled)
                Reset(child);
            reorder = reorder || child->folder != entry.folder;
            child->folder = entry.folder;
            child->link = entry.link;
            changed = true;
        }
        const bool content = child->folder && m_source->HasContent(PathOf(child), m_showHidden);
        if (content != child->button) {
            if (!content && child->filled)
                Reset(child);
            child->button = content;
            changed = true;
        }
        if (child->filled) {
            if (child->expanded) {
                if (recursive)
                    RefreshNode(child, true);
            } else {
                Reset(child);
            }
        }
        if (changed) {
            const QModelIndex index = IndexOf(child);
            Q_EMIT dataChanged(index, index);
        }
    }

    // Add what is new where it belongs, in runs: names arriving together mostly sort
    // together, so a burst of new files costs a few insertions, not a re-sort.
    std::vector<std::unique_ptr<Node>> added;
    for (const DirEntry& entry : entries) {
        if (!present.contains(entry.name))
            added.push_back(MakeChild(node, entry, true));
    }
    if (reorder) {
        // A child changed between file and folder: put everything in order again.
        for (auto& child : added)
            node->children.push_back(std::move(child));
        added.clear();
        SortChildren(node);
    }
    if (!added.empty()) {
        SortNodes(added);
        auto& children = node->children;
        // Where each new item goes among the children as they stand now.
        std::vector<size_t> positions(added.size());
        size_t from = 0;
        for (size_t i = 0; i < added.size(); ++i) {
            const Node* item = added[i].get();
            const auto at = std::upper_bound(children.begin() + qsizetype(from), children.end(), item,
                                             [](const Node* a, const std::unique_ptr<Node>& b) {
                                                 return FileSysOrder::Less(a->folder, a->name, b->folder, b->name);
                                             });
            positions[i] = size_t(at - children.begin());
            from = positions[i];
        }
        // Insert the runs from the last, so the positions before them still hold.
        for (size_t end = added.size(); end > 0;) {
            size_t begin = end - 1;
            while (begin > 0 && positions[begin - 1] == positions[end - 1])
                --begin;
            const size_t at = positions[begin];
            beginInsertRows(parentIndex, int(at), int(at + (end - begin)) - 1);
            children.insert(children.begin() + qsizetype(at), std::make_move_iterator(added.begin() + qsizetype(begin)),
                            std::make_move_iterator(added.begin() + qsizetype(end)));
            Renumber(node, at);
            endInsertRows();
            end = begin;
        }
    }

    // The last child gone: the folder has nothing left to open.
    if (node->children.empty() && node->button) {
        node->button = false;
        if (node->expanded) {
            Q_EMIT collapseRequested(parentIndex);
            node->expanded = false;
        }
        Q_EMIT dataChanged(parentIndex, parentIndex);
    }
}

QString CFileSysModel::Path(const QModelIndex& index) const
{
    return index.isValid() ? PathOf(NodeOf(index)) : QString();
}

bool CFileSysModel::IsFolder(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->folder;
}

bool CFileSysModel::IsLink(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->link;
}

bool CFileSysModel::IsMessage(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->message;
}

QModelIndex CFileSysModel::FolderOf(const QModelIndex& index) const
{
    if (!index.isValid() || IsFolder(index))
        return index;
    return index.parent();
}

QModelIndex CFileSysModel::FindPath(const QString& path) const
{
    const QString wanted = QDir::cleanPath(path);
    // The deepest top-level item that holds the path, then down name by name.
    const Node* best = nullptr;
    for (const auto& top : m_root->children) {
        const QString& base = top->name;
        const bool holds = wanted == base
            || wanted.startsWith(base.endsWith(QLatin1Char('/')) ? base : base + QLatin1Char('/'));
        if (holds && (!best || base.size() > best->name.size()))
            best = top.get();
    }
    if (!best)
        return {};
    QString rest = wanted.mid(best->name.size());
    const QStringList parts = rest.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const Node* node = best;
    for (const QString& part : parts) {
        const Node* next = nullptr;
        for (const auto& child : node->children) {
            if (child->name == part) {
                next = child.get();
                break;
            }
        }
        if (!next)
            return {};
        node = next;
    }
    return IndexOf(node);
}

QModelIndex CFileSysModel::index(int row, int column, const QModelIndex& parent) const
{
    const Node* node = NodeOf(parent);
    if (column != 0 || row < 0 || size_t(row) >= node->children.size())
        return {};
    return createIndex(row, 0, node->children[size_t(row)].get());
}

QModelIndex CFileSysModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    return IndexOf(NodeOf(child)->parent);
}

int CFileSysModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    return int(NodeOf(parent)->children.size());
}

int CFileSysModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool CFileSysModel::hasChildren(const QModelIndex& parent) const
{
    const Node* node = NodeOf(parent);
    if (node == m_root.get())
        return !node->children.empty();
    return node->filled ? !node->children.empty() || (node->button && !node->expanded) : node->button;
}

Qt::ItemFlags CFileSysModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (NodeOf(index)->message)
        return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

QVariant CFileSysModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Node* node = NodeOf(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return node->name;
    case Qt::ToolTipRole:
        return node->message ? node->name : PathOf(node);
    case PathRole:
        return PathOf(node);
    case FolderRole:
        return node->folder;
    case LinkRole:
        return node->link;
    default:
        return {};
    }
}
