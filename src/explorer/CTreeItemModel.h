#pragma once

#include "TreeItemData.h"

#include <QAbstractItemModel>
#include <memory>
#include <vector>

// One item of a tree of records. Nodes are owned by their parent; a pointer stays valid
// until the node is removed from the model.
struct CTreeNode
{
    QString text;      // what the tree shows
    int image = 0;     // index into the tree's image strip
    int selectedImage = 0;
    bool hasData = true;
    TreeItemData data;

    // The node that holds this one: the parent, or the model's hidden top for top-level
    // items. Parent() hides that top.
    CTreeNode* owner = nullptr;
    bool isTop = false;
    std::vector<std::unique_ptr<CTreeNode>> children;

    CTreeNode* Parent() const { return owner && !owner->isTop ? owner : nullptr; }

    bool IsFolder() const { return hasData && data.IsFolder(); }
    int Row() const;
    CTreeNode* NextSibling() const;
    CTreeNode* PreviousSibling() const;
    CTreeNode* FirstChild() const { return children.empty() ? nullptr : children.front().get(); }
    // True when `ancestor` is this node or one of its parents.
    bool IsWithin(const CTreeNode* ancestor) const;
};

// Told of every node that enters or leaves a model, so that an index beside the tree
// (by path, say) can follow it without a walk.
class ITreeNodeObserver
{
public:
    virtual ~ITreeNodeObserver() = default;
    virtual void NodeAdded(CTreeNode* node) = 0;
    // Called for each node of a subtree, children first, before it goes.
    virtual void NodeRemoving(CTreeNode* node) = 0;
    virtual void NodeDataChanging(CTreeNode* node, const TreeItemData& newData) = 0;
};

// A tree of TreeItemData records for the explorer trees. Widget-free: views show it, the
// workspace and the code library edit it through these operations.
class CTreeItemModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    // The image index for the decoration (the view maps it to an icon).
    static constexpr int ImageRole = Qt::UserRole + 1;
    static constexpr int SelectedImageRole = Qt::UserRole + 2;
    // Where Insert puts a node: these, or a row number.
    static constexpr int First = 0;
    static constexpr int Last = -1;

    explicit CTreeItemModel(QObject* parent = nullptr);
    ~CTreeItemModel() override;

    void SetObserver(ITreeNodeObserver* observer) { m_observer = observer; }

    // Top-level items; the first is what the trees call their root.
    const std::vector<std::unique_ptr<CTreeNode>>& TopLevel() const { return m_top.children; }
    CTreeNode* Root() const { return m_top.FirstChild(); }
    bool IsEmpty() const { return m_top.children.empty(); }

    // Inserts under `parent` (null: top level) at `row` (First, Last or a row number).
    CTreeNode* Insert(CTreeNode* parent, int row, const QString& text, int image, int selectedImage,
                      const TreeItemData& data, bool hasData = true);
    // Removes the node and its subtree.
    void Remove(CTreeNode* node);
    void Clear();
    // Many inserts as one reset: views lay the tree out once at the end.
    void BeginBatch();
    void EndBatch();
    void SetText(CTreeNode* node, const QString& text);
    void SetData(CTreeNode* node, const TreeItemData& data);
    void SetImages(CTreeNode* node, int image, int selectedImage);

    // Parent of a node as the model sees it (null for top level).
    static CTreeNode* ParentOf(const CTreeNode* node) { return node ? node->Parent() : nullptr; }
    QModelIndex IndexOf(const CTreeNode* node, int column = 0) const;
    static CTreeNode* NodeOf(const QModelIndex& index);
    int NodeCount() const { return m_count; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    CTreeNode* ParentNode(CTreeNode* parent) { return parent ? parent : &m_top; }
    void NotifyAdded(CTreeNode* node);
    void NotifyRemoving(CTreeNode* node);

    CTreeNode m_top; // holds the top-level items; never shown
    ITreeNodeObserver* m_observer = nullptr;
    int m_count = 0;
    bool m_batch = false;
};
