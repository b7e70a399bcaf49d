#include "CTreeItemModel.h"

#include <algorithm>

int CTreeNode::Row() const
{
    if (!owner)
        return 0;
    const auto& siblings = owner->children;
    const auto it = std::find_if(siblings.begin(), siblings.end(),
                                 [this](const std::unique_ptr<CTreeNode>& n) { return n.get() == this; });
    return int(it - siblings.begin());
}

CTreeNode* CTreeNode::NextSibling() const
{
    if (!owner)
        return nullptr;
    const int row = Row() + 1;
    return row < int(owner->children.size()) ? owner->children[size_t(row)].get() : nullptr;
}

CTreeNode* CTreeNode::PreviousSibling() const
{
    if (!owner)
        return nullptr;
    const int row = Row();
    return row > 0 ? owner->children[size_t(row - 1)].get() : nullptr;
}

bool CTreeNode::IsWithin(const CTreeNode* ancestor) const
{
    for (const CTreeNode* n = this; n; n = n->owner)
        if (n == ancestor)
            return true;
    return false;
}

CTreeItemModel::CTreeItemModel(QObject* parent)
    : QAbstractItemModel(parent)
{
    m_top.isTop = true;
}

CTreeItemModel::~CTreeItemModel() = default;

CTreeNode* CTreeItemModel::Insert(CTreeNode* parent, int row, const QString& text, int image,
                                  int selectedImage, const TreeItemData& data, bool hasData)
{
    CTreeNode* holder = ParentNode(parent);
    const int count = int(holder->children.size());
    if (row < 0 || row > count)
        row = count;
    auto node = std::make_unique<CTreeNode>();
    node->text = text;
    node->image = image;
    node->selectedImage = selectedImage;
    node->hasData = hasData;
    node->data = data;
    node->owner = holder;
    CTreeNode* raw = node.get();
    if (m_batch) {
        holder->children.insert(holder->children.begin() + row, std::move(node));
    } else {
        beginInsertRows(parent ? IndexOf(parent) : QModelIndex(), row, row);
        holder->children.insert(holder->children.begin() + row, std::move(node));
        endInsertRows();
    }
    ++m_count;
    if (m_observer)
        m_observer->NodeAdded(raw);
    return raw;
}

void CTreeItemModel::NotifyRemoving(CTreeNode* node)
{
    for (auto& child : node->children)
        NotifyRemoving(child.get());
    --m_count;
    if (m_observer)
        m_observer->NodeRemoving(node);
}

void CTreeItemModel::Remove(CTreeNode* node)
{
    if (!node)
        return;
    NotifyRemoving(node);
    CTreeNode* holder = node->owner;
    const int row = node->Row();
    beginRemoveRows(IndexOf(holder), row, row);
    holder->children.erase(holder->children.begin() + row);
    endRemoveRows();
}

void CTreeItemModel::Clear()
{
    beginResetModel();
    for (auto& child : m_top.children)
        NotifyRemoving(child.get());
    m_top.children.clear();
    m_count = 0;
    endResetModel();
}

void CTreeItemModel::BeginBatch()
{
    if (m_batch)
        return;
    m_batch = true;
    beginResetModel();
}

void CTreeItemModel::EndBatch()
{
    if (!m_batch)
        return;
    m_batch = false;
    endResetModel();
}

void CTreeItemModel::SetText(CTreeNode* node, const QString& text)
{
    if (!node || node->text == text)
        return;
    node->text = text;
    if (m_batch)
        return;
    const QModelIndex index = IndexOf(node);
    Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
}

void CTreeItemModel::SetData(CTreeNode* node, const TreeItemData& data)
{
    if (!node)
        return;
    if (m_observer)
        m_observer->NodeDataChanging(node, data);
    node->data = data;
    node->hasData = true;
}

void CTreeItemModel::SetImages(CTreeNode* node, int image, int selectedImage)
{
    if (!node)
        return;
    node->image = image;
    node->selectedImage = selectedImage;
    const QModelIndex index = IndexOf(node);
    Q_EMIT dataChanged(index, index, {ImageRole, SelectedImageRole, Qt::DecorationRole});
}

QModelIndex CTreeItemModel::IndexOf(const CTreeNode* node, int column) const
{
    if (!node || node == &m_top)
        return {};
    return createIndex(node->Row(), column, const_cast<CTreeNode*>(node));
}

CTreeNode* CTreeItemModel::NodeOf(const QModelIndex& index)
{
    return index.isValid() ? static_cast<CTreeNode*>(index.internalPointer()) : nullptr;
}

QModelIndex CTreeItemModel::index(int row, int column, const QModelIndex& parent) const
{
    const CTreeNode* holder = parent.isValid() ? NodeOf(parent) : &m_top;
    if (row < 0 || column != 0 || row >= int(holder->children.size()))
        return {};
    return createIndex(row, column, holder->children[size_t(row)].get());
}

QModelIndex CTreeItemModel::parent(const QModelIndex& child) const
{
    const CTreeNode* node = NodeOf(child);
    if (!node)
        return {};
    return IndexOf(node->Parent());
}

int CTreeItemModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    const CTreeNode* holder = parent.isValid() ? NodeOf(parent) : &m_top;
    return int(holder->children.size());
}

int CTreeItemModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant CTreeItemModel::data(const QModelIndex& index, int role) const
{
    const CTreeNode* node = NodeOf(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return node->text;
    case Qt::ToolTipRole:
        return node->hasData && !node->data.pathname.isEmpty() ? QVariant(node->data.pathname) : QVariant();
    case ImageRole:
        return node->image;
    case SelectedImageRole:
        return node->selectedImage;
    default:
        return {};
    }
}

Qt::ItemFlags CTreeItemModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    // Whether a label may be edited is the tree's decision; the model only allows it.
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}
