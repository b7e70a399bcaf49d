#include "search/CReplacePreviewDialog.h"

#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

// The preview groups the matches by file; only the files left checked are replaced.
TEST(ReplacePreviewDialog, GroupsByFileAndReturnsTheCheckedOnes)
{
    const QList<FindInFilesMatch> matches = {
        {QStringLiteral("/a/one.txt"), 1, 0, QStringLiteral("old")},
        {QStringLiteral("/a/two.txt"), 3, 2, QStringLiteral("x old")},
        {QStringLiteral("/a/one.txt"), 7, 0, QStringLiteral("old again")},
    };
    CReplacePreviewDialog dialog(QStringLiteral("old"), QStringLiteral("new"), matches);
    QTreeWidget* tree = dialog.tree();
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    EXPECT_EQ(tree->topLevelItem(0)->childCount(), 2);
    EXPECT_EQ(tree->topLevelItem(0)->child(1)->text(0), QStringLiteral("7: old again"));
    EXPECT_EQ(dialog.chosenFiles(), (QStringList{QStringLiteral("/a/one.txt"), QStringLiteral("/a/two.txt")}));
    tree->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(dialog.chosenFiles(), QStringList{QStringLiteral("/a/two.txt")});
}

} // namespace
