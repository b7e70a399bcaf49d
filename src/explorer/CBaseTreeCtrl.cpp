#include "CBaseTreeCtrl.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyledItemDelegate>

namespace {

// Draws each item with its icon from the tree's image list and the drop highlight, and
// hands a finished label edit back to the tree instead of writing into the model.
class CTreeLabelDelegate : public QStyledItemDelegate
{
public:
    explicit CTreeLabelDelegate(CBaseTreeCtrl* tree)
        : QStyledItemDelegate(tree)
        , m_tree(tree)
    {
    }

    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        CTreeNode* node = CTreeItemModel::NodeOf(index);
        if (!node)
            return;
        const bool selected = option->state & QStyle::State_Selected;
        const QIcon icon = m_tree->Image(selected ? node->selectedImage : node->image);
        if (!icon.isNull()) {
            option->icon = icon;
            option->features |= QStyleOptionViewItem::HasDecoration;
        }
        if (node == m_tree->DropHighlight())
            option->state |= QStyle::State_Selected;
    }

    void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override
    {
        if (auto* line = qobject_cast<QLineEdit*>(editor))
            m_tree->FinishLabelEdit(CTreeItemModel::NodeOf(index), line->text());
    }

private:
    CBaseTreeCtrl* m_tree;
};

} // namespace

CBaseTreeCtrl::CBaseTreeCtrl(QWidget* parent)
    : QTreeView(parent)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setRootIsDecorated(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // Labels are edited by F2 or a command only; a double click opens.
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(false);
    setItemDelegate(new CTreeLabelDelegate(this));
    m_hoverTimer.setInterval(HoverExpandMs);
    connect(&m_hoverTimer, &QTimer::timeout, this, &CBaseTreeCtrl::OnHoverTimer);
}

CBaseTreeCtrl::~CBaseTreeCtrl() = default;

void CBaseTreeCtrl::SetTreeModel(CTreeItemModel* model)
{
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    ResetDrag();
    m_model = model;
    setModel(model);
    if (!model)
        return;
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
            [this](const QModelIndex& parent, int first, int last) {
                for (int row = first; row <= last; ++row)
                    ForgetNodesWithin(CTreeItemModel::NodeOf(m_model->index(row, 0, parent)));
            });
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        ResetDrag();
        m_pressItem = nullptr;
    });
}

CTreeNode* CBaseTreeCtrl::SelectedNode() const
{
    return CTreeItemModel::NodeOf(currentIndex());
}

void CBaseTreeCtrl::SelectNode(CTreeNode* node)
{
    if (!m_model)
        return;
    const QModelIndex index = m_model->IndexOf(node);
    if (!index.isValid()) {
        clearSelection();
        setCurrentIndex({});
        return;
    }
    setCurrentIndex(index);
}

void CBaseTreeCtrl::ExpandNode(CTreeNode* node)
{
    if (m_model && node)
        expand(m_model->IndexOf(node));
}

bool CBaseTreeCtrl::IsNodeExpanded(const CTreeNode* node) const
{
    return m_model && node && isExpanded(m_model->IndexOf(node));
}

CTreeNode* CBaseTreeCtrl::NodeAt(const QPoint& viewportPos) const
{
    return CTreeItemModel::NodeOf(indexAt(viewportPos));
}

QRect CBaseTreeCtrl::NodeRect(const CTreeNode* node) const
{
    return m_model ? visualRect(m_model->IndexOf(node)) : QRect();
}

bool CBaseTreeCtrl::CanEditLabel(const CTreeNode* node) const
{
    return node && node->hasData && node->IsFolder() && node != Root();
}

bool CBaseTreeCtrl::EditLabel(CTreeNode* node)
{
    if (!m_model || !CanEditLabel(node))
        return false;
    const QModelIndex index = m_model->IndexOf(node);
    scrollTo(index);
    return edit(index, QAbstractItemView::AllEditTriggers, nullptr);
}

void CBaseTreeCtrl::FinishLabelEdit(CTreeNode* node, const QString& text)
{
    // An edit that ends empty or unchanged is no edit.
    if (!node || text.isEmpty() || text == node->text)
        return;
    SetItemLabel(node, text, true);
    SetModified(true);
}

void CBaseTreeCtrl::SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord)
{
    if (!item || !m_model)
        return;
    m_model->SetText(item, text);
    if (updateRecord) {
        TreeItemData record = item->data;
        record.label = text;
        m_model->SetData(item, record);
    }
}

void CBaseTreeCtrl::OnItemCopied(CTreeNode*, CTreeNode* newItem, const TreeItemData& oldData)
{
    if (m_model)
        m_model->SetData(newItem, oldData);
}

void CBaseTreeCtrl::OnItemDropped(CTreeNode*, CTreeNode*)
{
}

void CBaseTreeCtrl::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F2 && !event->isAutoRepeat() && state() != EditingState) {
        EditLabel(SelectedNode());
        event->accept();
        return;
    }
    QTreeView::keyReleaseEvent(event);
}

bool CBaseTreeCtrl::IsDropTarget(const CTreeNode* dragged, const CTreeNode* target)
{
    return dragged && target && target != dragged && target != dragged->Parent()
           && dragged->children.empty();
}

bool CBaseTreeCtrl::BeginDrag(CTreeNode* item)
{
    // The root has no parent and stays where it is.
    if (!item || !item->Parent() || m_dragging)
        return false;
    m_dragItem = item;
    m_dragging = true;
    m_dropValid = false;
    m_dropTarget = nullptr;
    m_hoverItem = nullptr;
    if (!m_dragImage) {
        m_dragImage = new QLabel(viewport());
        m_dragImage->setAttribute(Qt::WA_TransparentForMouseEvents);
        m_dragImage->setAutoFillBackground(true);
        m_dragImage->setFrameShape(QFrame::Box);
    }
    m_dragImage->setTextFormat(Qt::PlainText);
    m_dragImage->setText(item->text);
    m_dragImage->adjustSize();
    m_dragImage->move(viewport()->mapFromGlobal(QCursor::pos()) - QPoint(20, 10));
    m_dragImage->show();
    return true;
}

void CBaseTreeCtrl::DragMove(const QPoint& viewportPos)
{
    if (!m_dragging)
        return;
    if (m_dragImage)
        m_dragImage->move(viewportPos - QPoint(20, 10));
    CTreeNode* item = NodeAt(viewportPos);
    if (item != m_hoverItem) {
        m_hoverTimer.stop();
        m_hoverItem = nullptr;
    }
    if (!item)
        return; // the last target stands, as it was when the pointer left the items
    if (IsDropTarget(m_dragItem, item)) {
        viewport()->setCursor(Qt::ArrowCursor);
        m_dropValid = true;
        m_dropTarget = item;
    } else {
        viewport()->setCursor(Qt::ForbiddenCursor);
        m_dropValid = false;
    }
    m_dropHighlight = item;
    viewport()->update();
    m_hoverItem = item;
    m_hoverTimer.start();
}

void CBaseTreeCtrl::OnHoverTimer()
{
    // Keeps running: a folder opens once the pointer has rested on it.
    if (m_dragging && m_hoverItem)
        ExpandNode(m_hoverItem);
}

void CBaseTreeCtrl::EndDrag()
{
    m_hoverTimer.stop();
    if (m_dragging && m_dragItem != m_dropTarget && m_dropValid && m_dropTarget) {
        CTreeNode* dragged = m_dragItem;
        CTreeNode* target = m_dropTarget;
        ResetDrag();
        OnItemDropped(dragged, target);
        CopyBranch(dragged, target);
        m_model->Remove(dragged);
        return;
    }
    ResetDrag();
}

void CBaseTreeCtrl::ResetDrag()
{
    m_hoverTimer.stop();
    if (m_dragging)
        viewport()->unsetCursor();
    if (m_dragImage)
        m_dragImage->hide();
    m_dragging = false;
    m_dropValid = false;
    m_dragItem = nullptr;
    m_hoverItem = nullptr;
    m_dropTarget = nullptr;
    if (m_dropHighlight) {
        m_dropHighlight = nullptr;
        viewport()->update();
    }
}

void CBaseTreeCtrl::ForgetNodesWithin(CTreeNode* removed)
{
    if (!removed)
        return;
    if ((m_dragItem && m_dragItem->IsWithin(removed)) || (m_dropTarget && m_dropTarget->IsWithin(removed)))
        ResetDrag();
    if (m_hoverItem && m_hoverItem->IsWithin(removed)) {
        m_hoverItem = nullptr;
        m_hoverTimer.stop();
    }
    if (m_dropHighlight && m_dropHighlight->IsWithin(removed))
        m_dropHighlight = nullptr;
    if (m_pressItem && m_pressItem->IsWithin(removed))
        m_pressItem = nullptr;
}

CTreeNode* CBaseTreeCtrl::CopyBranch(CTreeNode* source, CTreeNode* target)
{
    if (!m_model || !source || !target)
        return nullptr;
    CTreeNode* parent = target->IsFolder() ? target : source->Parent();
    int row = CTreeItemModel::Last;
    if (!source->IsFolder()) {
        // A file goes after the item before the target: in front of the target when both
        // share the new parent, first when the target has nothing before it, else last.
        CTreeNode* before = target->PreviousSibling();
        if (!before)
            row = CTreeItemModel::First;
        else if (before->Parent() == parent)
            row = before->Row() + 1;
    }
    return CopyInto(source, parent, row);
}

CTreeNode* CBaseTreeCtrl::CopyInto(CTreeNode* source, CTreeNode* parent, int row)
{
    CTreeNode* copy = m_model->Insert(parent, row, source->text, source->image, source->selectedImage,
                                      TreeItemData(), false);
    if (source->hasData)
        OnItemCopied(parent, copy, source->data);
    // Index loop: the children vector does not change while it is copied elsewhere.
    for (size_t i = 0; i < source->children.size(); ++i)
        CopyInto(source->children[i].get(), copy, CTreeItemModel::Last);
    SelectNode(copy);
    ExpandNode(copy);
    SetModified(true);
    return copy;
}

void CBaseTreeCtrl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_pressItem = NodeAt(event->position().toPoint());
        m_pressPos = event->position().toPoint();
    }
    QTreeView::mousePressEvent(event);
}

void CBaseTreeCtrl::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (!m_dragging && (event->buttons() & Qt::LeftButton) && m_pressItem && state() != EditingState
        && (pos - m_pressPos).manhattanLength() >= QApplication::startDragDistance()) {
        BeginDrag(m_pressItem);
        m_pressItem = nullptr;
    }
    if (m_dragging) {
        DragMove(pos);
        event->accept();
        return;
    }
    QTreeView::mouseMoveEvent(event);
}

void CBaseTreeCtrl::mouseReleaseEvent(QMouseEvent* event)
{
    m_pressItem = nullptr;
    if (m_dragging && event->button() == Qt::LeftButton) {
        EndDrag();
        event->accept();
        return;
    }
    QTreeView::mouseReleaseEvent(event);
}
