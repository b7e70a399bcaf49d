#pragma once

#include "CTreeItemModel.h"

#include <QIcon>
#include <QList>
#include <QPoint>
#include <QTimer>
#include <QTreeView>

// The tree under the Project Explorer and the Code Library: a view of a CTreeItemModel
// with label editing and drag and drop inside the one tree.
//
// Label editing: F2 (on key release) or EditLabel() edits the selected item's label when
// CanEditLabel() allows it (by default: an item with a record that is a folder and not
// the root). Enter or leaving the field applies the text; Esc cancels; an edit that ends
// empty or unchanged changes nothing. An applied edit calls SetItemLabel(item, text, true)
// and then SetModified(true).
//
// Drag and drop: a left-button drag of any item but the root. Over each item the target
// test runs (IsDropTarget); the cursor shows an arrow or no-entry. Resting 800 ms on an
// item expands it. On release over a valid target, OnItemDropped(dragged, target) runs,
// the branch is copied to its new place (OnItemCopied for each copied item), the
// dragged item is deleted, the copy selected and expanded, and SetModified(true) called.
//
// Trees derive from this and override the virtual operations. The model is not owned.
class CBaseTreeCtrl : public QTreeView
{
    Q_OBJECT
public:
    static constexpr int HoverExpandMs = 800;

    explicit CBaseTreeCtrl(QWidget* parent = nullptr);
    ~CBaseTreeCtrl() override;

    void SetTreeModel(CTreeItemModel* model);
    CTreeItemModel* TreeModel() const { return m_model; }
    // Icons by the image index each item carries.
    void SetImageList(const QList<QIcon>& images) { m_images = images; viewport()->update(); }
    QIcon Image(int index) const { return m_images.value(index); }

    CTreeNode* Root() const { return m_model ? m_model->Root() : nullptr; }
    CTreeNode* SelectedNode() const;
    void SelectNode(CTreeNode* node);
    void ExpandNode(CTreeNode* node);
    bool IsNodeExpanded(const CTreeNode* node) const;
    // The item under a point of the viewport, or null.
    CTreeNode* NodeAt(const QPoint& viewportPos) const;
    QRect NodeRect(const CTreeNode* node) const;

    // Starts a label edit on `node` when CanEditLabel allows it.
    bool EditLabel(CTreeNode* node);
    bool IsEditingLabel() const { return state() == QAbstractItemView::EditingState; }
    virtual bool CanEditLabel(const CTreeNode* node) const;

    virtual void OnItemCopied(CTreeNode* parent, CTreeNode* newItem, const TreeItemData& oldData);
    virtual void OnItemDropped(CTreeNode* dragged, CTreeNode* target);
    virtual void SetModified(bool modified) { m_modified = modified; }
    bool IsModified() const { return m_modified; }
    virtual void SetItemLabel(CTreeNode* item, const QString& text, bool updateRecord);

    // The drag, as the mouse drives it; public so that tests can drive it step by step.
    bool BeginDrag(CTreeNode* item);
    void DragMove(const QPoint& viewportPos);
    void EndDrag();
    bool IsDragging() const { return m_dragging; }
    bool IsDropValid() const { return m_dropValid; }
    CTreeNode* DropTarget() const { return m_dropTarget; }
    CTreeNode* DropHighlight() const { return m_dropHighlight; }
    // A target takes the dragged item when it is another item, not the dragged item's
    // parent, and the dragged item has no children: only files and empty folders move.
    static bool IsDropTarget(const CTreeNode* dragged, const CTreeNode* target);
    // Copies `source` with its subtree to where a drop on `target` puts it; returns the copy.
    CTreeNode* CopyBranch(CTreeNode* source, CTreeNode* target);

    // Called by the label editor when an edit is applied.
    void FinishLabelEdit(CTreeNode* node, const QString& text);

protected:
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    CTreeNode* CopyInto(CTreeNode* source, CTreeNode* parent, int row);
    void ForgetNodesWithin(CTreeNode* removed);
    void ResetDrag();
    void OnHoverTimer();

    CTreeItemModel* m_model = nullptr;
    QList<QIcon> m_images;
    bool m_modified = false;

    bool m_dragging = false;
    bool m_dropValid = false;
    CTreeNode* m_dragItem = nullptr;
    CTreeNode* m_hoverItem = nullptr;
    CTreeNode* m_dropTarget = nullptr;
    CTreeNode* m_dropHighlight = nullptr;
    QTimer m_hoverTimer;
    // The dragged item's picture, following the pointer.
    class QLabel* m_dragImage = nullptr;
    CTreeNode* m_pressItem = nullptr;
    QPoint m_pressPos;
};
