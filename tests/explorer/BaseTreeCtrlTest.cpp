// The base tree: label editing by F2 with Enter, Esc and focus loss; the drag's target
// test, where a dropped item lands, and the hover expansion; driven with real key and
// mouse events on a shown tree.
#include "explorer/CBaseTreeCtrl.h"
#include "TestSupport.h"
#include "TreeShape.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class TestTree : public CBaseTreeCtrl
{
public:
    int drops = 0;
    int copies = 0;
    void OnItemDropped(CTreeNode*, CTreeNode*) override { ++drops; }
    void OnItemCopied(CTreeNode* parent, CTreeNode* item, const TreeItemData& old) override
    {
        ++copies;
        CBaseTreeCtrl::OnItemCopied(parent, item, old);
    }
};

class BaseTreeCtrlTest : public ::testing::Test
{
public: // the drop cases name the items through member pointers
    void SetUp() override
    {
        // Root[f1[a,b],f2[c],empty,d]
        m_root = Folder(nullptr, "Root");
        m_f1 = Folder(m_root, "f1");
        m_a = File(m_f1, "a");
        m_b = File(m_f1, "b");
        m_f2 = Folder(m_root, "f2");
        m_c = File(m_f2, "c");
        m_empty = Folder(m_root, "empty");
        m_d = File(m_root, "d");
        m_tree.SetTreeModel(&m_model);
        m_tree.resize(300, 400);
        m_tree.show();
        m_tree.expandAll();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_tree));
        m_tree.setFocus();
    }

    CTreeNode* Folder(CTreeNode* parent, const char* name)
    {
        return m_model.Insert(parent, CTreeItemModel::Last, name, 0, 1, TreeItemData::Folder(name));
    }
    CTreeNode* File(CTreeNode* parent, const char* name)
    {
        return m_model.Insert(parent, CTreeItemModel::Last, name, 3, 3,
                              TreeItemData::File(name, QStringLiteral("/w/") + name, 0, 4));
    }
    QString TreeShape() const { return Shape(m_model.Root()); }
    QPoint Centre(CTreeNode* node) const { return m_tree.NodeRect(node).center(); }

    void Mouse(QEvent::Type type, const QPoint& pos, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, pos, m_tree.viewport()->mapToGlobal(pos), Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(m_tree.viewport(), &event);
    }
    // A real drag with the left button, from one item to another.
    void Drag(CTreeNode* from, CTreeNode* to)
    {
        const QPoint start = Centre(from);
        const QPoint end = Centre(to);
        Mouse(QEvent::MouseButtonPress, start, Qt::LeftButton);
        Mouse(QEvent::MouseMove, start + QPoint(0, QApplication::startDragDistance() + 2), Qt::LeftButton);
        Mouse(QEvent::MouseMove, end, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, end, Qt::NoButton);
    }

    QLineEdit* StartEdit(CTreeNode* node)
    {
        // The last edit's field goes first, so that the search finds only the new one.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_tree.SelectNode(node);
        QTest::keyRelease(&m_tree, Qt::Key_F2);
        return m_tree.findChild<QLineEdit*>();
    }

    CTreeItemModel m_model;
    TestTree m_tree;
    CTreeNode *m_root, *m_f1, *m_a, *m_b, *m_f2, *m_c, *m_empty, *m_d;
};

TEST_F(BaseTreeCtrlTest, F2EditsAFolderLabelAndEnterAppliesIt)
{
    QLineEdit* edit = StartEdit(m_f2);
    ASSERT_NE(edit, nullptr);
    edit->selectAll();
    QTest::keyClicks(edit, "sources");
    QTest::keyClick(edit, Qt::Key_Return);
    QApplication::processEvents(); // Enter commits through a queued call
    EXPECT_EQ(m_f2->text, "sources");
    EXPECT_EQ(m_f2->data.label, "sources");
    EXPECT_TRUE(m_tree.IsModified());
}

TEST_F(BaseTreeCtrlTest, EditThatEndsByEscEmptyOrUnchangedChangesNothing)
{
    const struct
    {
        const char* name;
        const char* typed;
        Qt::Key end;
    } cases[] = {{"Esc after typing", "typed", Qt::Key_Escape},
                 {"empty", "", Qt::Key_Return},
                 {"unchanged", "f2", Qt::Key_Return}};
    for (const auto& c : cases) {
        QLineEdit* edit = StartEdit(m_f2);
        ASSERT_NE(edit, nullptr) << c.name;
        edit->selectAll();
        edit->del();
        QTest::keyClicks(edit, c.typed);
        QTest::keyClick(edit, c.end);
        QApplication::processEvents();
        EXPECT_EQ(m_f2->text, "f2") << c.name;
        EXPECT_EQ(m_f2->data.label, "f2") << c.name;
        EXPECT_FALSE(m_tree.IsModified()) << c.name;
        EXPECT_FALSE(m_tree.IsEditingLabel()) << c.name;
    }
}

TEST_F(BaseTreeCtrlTest, LosingTheFocusAppliesTheEdit)
{
    QLineEdit other;
    other.show();
    QLineEdit* edit = StartEdit(m_empty);
    ASSERT_NE(edit, nullptr);
    edit->setText(QStringLiteral("kept"));
    other.activateWindow();
    other.setFocus();
    QApplication::processEvents();
    // Offscreen windows do not always pass the focus on; ask the editor to commit as a
    // focus loss does.
    if (m_tree.IsEditingLabel())
        QMetaObject::invokeMethod(m_tree.itemDelegate(), "commitData", Q_ARG(QWidget*, edit));
    EXPECT_EQ(m_empty->text, "kept");
}

TEST_F(BaseTreeCtrlTest, NoEditForAFileTheRootOrAnItemWithoutRecord)
{
    CTreeNode* bare = m_model.Insert(m_root, CTreeItemModel::Last, "bare", 0, 0, TreeItemData::Folder("bare"), false);
    for (CTreeNode* node : {m_a, m_root, bare}) {
        EXPECT_EQ(StartEdit(node), nullptr) << node->text.toStdString();
        EXPECT_FALSE(m_tree.EditLabel(node));
    }
}

TEST_F(BaseTreeCtrlTest, TargetTestRefusesSelfOwnParentAndAnyItemWithChildren)
{
    const struct
    {
        CTreeNode* dragged;
        CTreeNode* target;
        bool valid;
    } cases[] = {
        {m_a, m_f2, true},     {m_a, m_b, true},     {m_a, m_d, true},    {m_a, m_root, true},
        {m_a, m_a, false},     {m_a, m_f1, false},   {m_d, m_root, false}, {m_f1, m_f2, false},
        {m_f1, m_empty, false}, {m_empty, m_f2, true}, {m_empty, m_c, true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CBaseTreeCtrl::IsDropTarget(c.dragged, c.target), c.valid)
            << c.dragged->text.toStdString() << " onto " << c.target->text.toStdString();
    EXPECT_FALSE(m_tree.BeginDrag(m_root));
}

TEST_F(BaseTreeCtrlTest, DroppedItemLandsWhereTheCopyRulesPutIt)
{
    const struct
    {
        const char* name;
        CTreeNode* BaseTreeCtrlTest::*dragged;
        CTreeNode* BaseTreeCtrlTest::*target;
        const char* shape;
    } cases[] = {
        {"file onto a folder goes last in it", &BaseTreeCtrlTest::m_d, &BaseTreeCtrlTest::m_f2,
         "Root[f1[a,b],f2[c,d],empty]"},
        {"file onto a file of its folder goes in front of it", &BaseTreeCtrlTest::m_b, &BaseTreeCtrlTest::m_a,
         "Root[f1[b,a],f2[c],empty,d]"},
        {"file onto a file elsewhere stays in its folder, last", &BaseTreeCtrlTest::m_a, &BaseTreeCtrlTest::m_d,
         "Root[f1[b,a],f2[c],empty,d]"},
        {"file onto the first item of a level goes first", &BaseTreeCtrlTest::m_d, &BaseTreeCtrlTest::m_f1,
         "Root[f1[d,a,b],f2[c],empty]"},
        {"empty folder onto a folder goes last in it", &BaseTreeCtrlTest::m_empty, &BaseTreeCtrlTest::m_f1,
         "Root[f1[a,b,empty],f2[c],d]"},
    };
    for (const auto& c : cases) {
        m_model.Clear();
        SetUp(); // a fresh tree each time
        m_tree.SetModified(false);
        const TreeItemData record = (this->*c.dragged)->data;
        Drag(this->*c.dragged, this->*c.target);
        EXPECT_EQ(TreeShape(), c.shape) << c.name;
        EXPECT_EQ(m_tree.drops, 1) << c.name;
        // The copy keeps the record and is the item selected afterwards.
        EXPECT_EQ(m_tree.copies, 1) << c.name;
        ASSERT_NE(m_tree.SelectedNode(), nullptr) << c.name;
        EXPECT_EQ(m_tree.SelectedNode()->data, record) << c.name;
        EXPECT_TRUE(m_tree.IsModified()) << c.name;
        EXPECT_FALSE(m_tree.IsDragging());
        m_tree.drops = m_tree.copies = 0;
    }
}

TEST_F(BaseTreeCtrlTest, InvalidTargetsDropNothing)
{
    for (auto [from, to] : {std::pair{m_f1, m_f2}, std::pair{m_a, m_f1}, std::pair{m_root, m_empty}}) {
        Drag(from, to);
        EXPECT_EQ(TreeShape(), "Root[f1[a,b],f2[c],empty,d]");
    }
    EXPECT_EQ(m_tree.drops, 0);
    EXPECT_FALSE(m_tree.IsModified());
}

TEST_F(BaseTreeCtrlTest, RestingOnAFolderDuringADragExpandsIt)
{
    m_tree.collapse(m_model.IndexOf(m_f2));
    m_tree.collapse(m_model.IndexOf(m_f1));
    ASSERT_TRUE(m_tree.BeginDrag(m_f1)); // a folder with children: no target is valid
    m_tree.DragMove(Centre(m_f2));
    EXPECT_FALSE(m_tree.IsDropValid());
    EXPECT_EQ(m_tree.viewport()->cursor().shape(), Qt::ForbiddenCursor);
    QTest::qWait(CBaseTreeCtrl::HoverExpandMs / 2);
    EXPECT_FALSE(m_tree.IsNodeExpanded(m_f2));
    QTest::qWait(CBaseTreeCtrl::HoverExpandMs);
    EXPECT_TRUE(m_tree.IsNodeExpanded(m_f2));
    m_tree.EndDrag();
    EXPECT_EQ(TreeShape(), "Root[f1[a,b],f2[c],empty,d]");
}

TEST_F(BaseTreeCtrlTest, ReleaseOutsideTheItemsUsesTheLastValidTarget)
{
    ASSERT_TRUE(m_tree.BeginDrag(m_d));
    m_tree.DragMove(Centre(m_empty));
    EXPECT_TRUE(m_tree.IsDropValid());
    EXPECT_EQ(m_tree.viewport()->cursor().shape(), Qt::ArrowCursor);
    m_tree.DragMove(QPoint(5, m_tree.viewport()->height() - 2)); // below the last item
    m_tree.EndDrag();
    EXPECT_EQ(TreeShape(), "Root[f1[a,b],f2[c],empty[d]]");
}

} // namespace
