#include "fileexplorer/CFileSysModel.h"
#include "fileexplorer/CFolderWatch.h"

#include "TestSupport.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QSignalSpy>
#include <QTest>
#include <cerrno>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

// The local file system, counting what the tree asks of it.
class CountingSource : public IDirectorySource
{
public:
    bool List(const QString& path, bool hidden, std::vector<DirEntry>& entries, QString& reason) override
    {
        listed << path;
        if (refused.contains(path)) {
            entries.clear();
            reason = refused.value(path);
            return false;
        }
        return m_local.List(path, hidden, entries, reason);
    }
    bool HasContent(const QString& path, bool hidden) override
    {
        looked << path;
        return m_local.HasContent(path, hidden);
    }
    QStringList listed;
    QStringList looked;
    QHash<QString, QString> refused; // path -> the reason its listing fails with

private:
    CLocalDirectorySource m_local;
};

class FileSysModelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_root = TestSupport::MakeTempDir();
        m_model = std::make_unique<CFileSysModel>(&m_source, nullptr);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            m_model.get(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    }

    QString At(const QString& relative) const { return m_root + QLatin1Char('/') + relative; }
    void Touch(const QString& relative) { TestSupport::WriteFile(At(relative), "x"); }
    void MakeDir(const QString& relative) { ASSERT_TRUE(QDir().mkpath(At(relative))); }
    void Remove(const QString& relative) { ASSERT_TRUE(QFile::remove(At(relative))); }

    QModelIndex Top() { return m_model->index(0, 0); }
    QModelIndex Item(const QString& relative) { return m_model->FindPath(At(relative)); }
    QStringList Names(const QModelIndex& parent)
    {
        QStringList names;
        for (int row = 0; row < m_model->rowCount(parent); ++row)
            names << m_model->index(row, 0, parent).data().toString();
        return names;
    }
    void ShowRoot()
    {
        m_model->SetTopLevel({m_root});
        m_model->Expand(Top());
    }

    QString m_root;
    CountingSource m_source;
    std::unique_ptr<CFileSysModel> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

TEST_F(FileSysModelTest, ExpandReadsTheFolderOnceAndLooksIntoEachSubfolderOnce)
{
    for (int i = 0; i < 50; ++i)
        Touch(QStringLiteral("file%1.txt").arg(i));
    MakeDir(QStringLiteral("full/deep"));
    Touch(QStringLiteral("full/deep/a"));
    Touch(QStringLiteral("full/b"));
    MakeDir(QStringLiteral("empty"));
    m_model->SetTopLevel({m_root});
    m_source.listed.clear();
    m_source.looked.clear();

    m_model->Expand(Top());

    EXPECT_EQ(m_source.listed, QStringList{m_root});
    EXPECT_EQ(m_source.looked.size(), 2) << "one look into each of the two folders, none into files";
    EXPECT_EQ(m_model->rowCount(Top()), 52);
    m_model->Collapse(Top());
    m_model->Expand(Top());
    EXPECT_EQ(m_source.listed.size(), 1) << "a second expand reads nothing";
    EXPECT_FALSE(m_model->IsFilled(Item(QStringLiteral("full")))) << "children are read one level at a time";
}

TEST_F(FileSysModelTest, ButtonsFollowWhatAFolderHolds)
{
    MakeDir(QStringLiteral("onlyfiles"));
    Touch(QStringLiteral("onlyfiles/a.txt"));
    MakeDir(QStringLiteral("onlyfolders/sub"));
    MakeDir(QStringLiteral("empty"));
    MakeDir(QStringLiteral("onlyhidden"));
    Touch(QStringLiteral("onlyhidden/.config"));
    Touch(QStringLiteral("plain.txt"));
    ShowRoot();

    const struct
    {
        const char* name;
        bool button;
    } cases[] = {{"onlyfiles", true}, {"onlyfolders", true}, {"empty", false}, {"onlyhidden", false},
                 {"plain.txt", false}};
    for (const auto& c : cases)
        EXPECT_EQ(m_model->hasChildren(Item(QString::fromLatin1(c.name))), c.button) << c.name;

    m_model->Expand(Item(QStringLiteral("onlyfiles")));
    EXPECT_EQ(Names(Item(QStringLiteral("onlyfiles"))), QStringList{QStringLiteral("a.txt")});
}

TEST_F(FileSysModelTest, ChildrenAreSortedFoldersFirstAndHiddenNamesOnlyOnRequest)
{
    for (const char* name : {"b10.txt", "B2.txt", "a.txt", ".hidden"})
        Touch(QString::fromLatin1(name));
    MakeDir(QStringLiteral("zdir"));
    MakeDir(QStringLiteral(".git"));
    ShowRoot();
    EXPECT_EQ(Names(Top()), (QStringList{QStringLiteral("zdir"), QStringLiteral("a.txt"),
                                         QStringLiteral("B2.txt"), QStringLiteral("b10.txt")}));

    m_model->SetShowHidden(true);
    EXPECT_EQ(Names(Top()), (QStringList{QStringLiteral(".git"), QStringLiteral("zdir"), QStringLiteral(".hidden"),
                                         QStringLiteral("a.txt"), QStringLiteral("B2.txt"),
                                         QStringLiteral("b10.txt")}));
    m_model->SetShowHidden(false);
    EXPECT_EQ(Names(Top()).size(), 4);
}

TEST_F(FileSysModelTest, LinksShowWhatTheyPointToAndDanglingOnesShowAsFiles)
{
    MakeDir(QStringLiteral("real"));
    Touch(QStringLiteral("real/inside.txt"));
    ASSERT_EQ(symlink(qPrintable(At(QStringLiteral("real"))), qPrintable(At(QStringLiteral("alias")))), 0);
    ASSERT_EQ(symlink(qPrintable(At(QStringLiteral("nowhere"))), qPrintable(At(QStringLiteral("dangling")))), 0);
    // A link to its own folder: expanding it goes one level deeper each time, never loops.
    ASSERT_EQ(symlink(".", qPrintable(At(QStringLiteral("loop")))), 0);
    ShowRoot();

    const QModelIndex alias = Item(QStringLiteral("alias"));
    ASSERT_TRUE(alias.isValid());
    EXPECT_TRUE(m_model->IsFolder(alias));
    EXPECT_TRUE(m_model->IsLink(alias));
    m_model->Expand(alias);
    EXPECT_EQ(Names(alias), QStringList{QStringLiteral("inside.txt")});
    EXPECT_EQ(m_model->Path(m_model->index(0, 0, alias)), At(QStringLiteral("alias/inside.txt")));

    const QModelIndex dangling = Item(QStringLiteral("dangling"));
    ASSERT_TRUE(dangling.isValid());
    EXPECT_FALSE(m_model->IsFolder(dangling));

    const QModelIndex loop = Item(QStringLiteral("loop"));
    m_model->Expand(loop);
    EXPECT_EQ(m_model->rowCount(loop), m_model->rowCount(Top()));
}

// What a folder whose listing failed shows in place of its children.
QString ReadErrorLine(const QString& path, const QString& reason)
{
    return QStringLiteral("Cannot read \"%1\": %2").arg(QDir::toNativeSeparators(path), reason);
}

TEST_F(FileSysModelTest, AFolderThatCannotBeReadSaysWhyAndTheRestOfTheTreeWorks)
{
    MakeDir(QStringLiteral("locked/sub"));
    MakeDir(QStringLiteral("open/inner"));
    ShowRoot();
    const QString reason = QStringLiteral("Input/output error");
    m_source.refused.insert(At(QStringLiteral("locked")), reason);
    const QModelIndex locked = Item(QStringLiteral("locked"));
    m_model->Expand(locked);

    ASSERT_EQ(m_model->rowCount(locked), 1);
    const QModelIndex line = m_model->index(0, 0, locked);
    EXPECT_EQ(line.data().toString(), ReadErrorLine(At(QStringLiteral("locked")), reason));
    EXPECT_EQ(line.data(Qt::ToolTipRole), line.data());
    EXPECT_TRUE(m_model->IsMessage(line));
    EXPECT_FALSE(m_model->IsFolder(line));
    EXPECT_TRUE(m_model->Path(line).isEmpty()) << "no command may act on the line";
    EXPECT_FALSE(m_model->flags(line) & Qt::ItemIsSelectable);

    const QModelIndex open = Item(QStringLiteral("open"));
    m_model->Expand(open);
    EXPECT_EQ(Names(open), QStringList{QStringLiteral("inner")});
}

TEST_F(FileSysModelTest, AFolderThatVanishesBetweenItsButtonAndItsExpandSaysSo)
{
    MakeDir(QStringLiteral("gone/sub"));
    Touch(QStringLiteral("kept.txt"));
    ShowRoot();
    const QModelIndex gone = Item(QStringLiteral("gone"));
    ASSERT_TRUE(m_model->hasChildren(gone));
    ASSERT_TRUE(QDir(At(QStringLiteral("gone"))).removeRecursively());

    m_model->Expand(gone);

    EXPECT_EQ(Names(gone), QStringList{ReadErrorLine(At(QStringLiteral("gone")), qt_error_string(ENOENT))});
    EXPECT_EQ(Names(Top()), (QStringList{QStringLiteral("gone"), QStringLiteral("kept.txt")}));
    m_model->Refresh(Top(), true);
    EXPECT_EQ(Names(Top()), QStringList{QStringLiteral("kept.txt")}) << "the next refresh of its parent drops it";
}

TEST_F(FileSysModelTest, RefreshTradesChildrenAndTheReadErrorBothWays)
{
    MakeDir(QStringLiteral("dir"));
    Touch(QStringLiteral("dir/a"));
    ShowRoot();
    const QModelIndex dir = Item(QStringLiteral("dir"));
    m_model->Expand(dir);
    const QString denied = QStringLiteral("Permission denied");

    m_source.refused.insert(At(QStringLiteral("dir")), denied);
    m_model->Refresh(Top(), true);
    EXPECT_EQ(Names(dir), QStringList{ReadErrorLine(At(QStringLiteral("dir")), denied)});
    m_model->Refresh(Top(), true);
    EXPECT_EQ(m_model->rowCount(dir), 1) << "a second failure does not add a second line";

    m_source.refused.clear();
    Touch(QStringLiteral("dir/b"));
    m_model->Refresh(Top(), true);
    EXPECT_EQ(Names(dir), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));

    m_source.refused.insert(At(QStringLiteral("dir")), denied);
    m_model->Refresh(dir, false);
    m_source.refused.clear();
    Remove(QStringLiteral("dir/a"));
    Remove(QStringLiteral("dir/b"));
    m_model->Refresh(dir, false);
    EXPECT_EQ(m_model->rowCount(dir), 0);
    EXPECT_FALSE(m_model->hasChildren(dir)) << "readable again and empty: no button";
}

TEST_F(FileSysModelTest, TheLocalSourceRefusesAFolderItMayNotRead)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions do not stop root";
    MakeDir(QStringLiteral("locked/sub"));
    ASSERT_TRUE(QFile::setPermissions(At(QStringLiteral("locked")), QFileDevice::Permissions()));
    std::vector<DirEntry> entries;
    QString reason;
    EXPECT_FALSE(CLocalDirectorySource().List(At(QStringLiteral("locked")), false, entries, reason));
    EXPECT_EQ(reason, qt_error_string(EACCES));
    EXPECT_TRUE(CLocalDirectorySource().HasContent(At(QStringLiteral("locked")), false))
        << "its button stays, so that its expand can say why it shows nothing";
    QFile::setPermissions(At(QStringLiteral("locked")), QFileDevice::ReadOwner | QFileDevice::WriteOwner
                                                            | QFileDevice::ExeOwner);
}

TEST_F(FileSysModelTest, RefreshRemovesNeighboursThatWentTogetherAndAddsNewNamesInOrder)
{
    for (const char* name : {"a", "b", "c", "d", "e"})
        Touch(QString::fromLatin1(name));
    ShowRoot();
    Remove(QStringLiteral("b"));
    Remove(QStringLiteral("c"));
    Remove(QStringLiteral("e"));
    Touch(QStringLiteral("bb"));
    MakeDir(QStringLiteral("newdir"));

    m_model->Refresh(Top(), false);

    EXPECT_EQ(Names(Top()), (QStringList{QStringLiteral("newdir"), QStringLiteral("a"), QStringLiteral("bb"),
                                         QStringLiteral("d")}));
}

TEST_F(FileSysModelTest, InterleavedArrivalsKeepTheOrderOfAFreshRead)
{
    for (int i = 0; i < 40; i += 4)
        Touch(QStringLiteral("item%1").arg(i));
    ShowRoot();
    const int rounds[][3] = {{1, 40, 4}, {2, 40, 8}, {3, 60, 5}, {0, 2, 1}};
    for (const auto& round : rounds) {
        for (int i = round[0]; i < round[1]; i += round[2])
            Touch(QStringLiteral("item%1").arg(i));
        MakeDir(QStringLiteral("dir%1").arg(round[0]));
        m_model->Refresh(Top(), false);

        CFileSysModel fresh(&m_source, nullptr);
        fresh.SetTopLevel({m_root});
        fresh.Expand(fresh.index(0, 0));
        ASSERT_EQ(Names(Top()), [&] {
            QStringList names;
            for (int row = 0; row < fresh.rowCount(fresh.index(0, 0)); ++row)
                names << fresh.index(row, 0, fresh.index(0, 0)).data().toString();
            return names;
        }()) << "after round " << round[0];
    }
}

TEST_F(FileSysModelTest, RefreshOfAnItemNeverExpandedReadsNothing)
{
    MakeDir(QStringLiteral("closed"));
    Touch(QStringLiteral("closed/a"));
    ShowRoot();
    m_source.listed.clear();
    m_model->Refresh(Item(QStringLiteral("closed")), true);
    EXPECT_TRUE(m_source.listed.isEmpty());
}

TEST_F(FileSysModelTest, RefreshFromAboveCollapsesAFolderWhoseLastFileWent)
{
    MakeDir(QStringLiteral("dir"));
    Touch(QStringLiteral("dir/last.txt"));
    ShowRoot();
    const QPersistentModelIndex dir = Item(QStringLiteral("dir"));
    m_model->Expand(dir);
    QSignalSpy collapse(m_model.get(), &CFileSysModel::collapseRequested);
    Remove(QStringLiteral("dir/last.txt"));

    m_model->Refresh(Top(), false);

    EXPECT_FALSE(m_model->hasChildren(dir));
    EXPECT_EQ(m_model->rowCount(dir), 0);
    ASSERT_EQ(collapse.count(), 1);
    EXPECT_EQ(collapse.at(0).at(0).toModelIndex(), QModelIndex(dir));
    EXPECT_FALSE(m_model->IsExpanded(dir));
}

TEST_F(FileSysModelTest, RefreshGivesAButtonToAFolderThatGotContent)
{
    MakeDir(QStringLiteral("dir"));
    ShowRoot();
    const QModelIndex dir = Item(QStringLiteral("dir"));
    ASSERT_FALSE(m_model->hasChildren(dir));
    Touch(QStringLiteral("dir/new.txt"));
    m_model->Refresh(Top(), false);
    EXPECT_TRUE(m_model->hasChildren(dir));
    m_model->Expand(dir);
    EXPECT_EQ(Names(dir), QStringList{QStringLiteral("new.txt")});
}

TEST_F(FileSysModelTest, RefreshKeepsOpenFoldersAndRereadsClosedOnesLater)
{
    MakeDir(QStringLiteral("open"));
    MakeDir(QStringLiteral("closed"));
    Touch(QStringLiteral("open/a"));
    Touch(QStringLiteral("closed/a"));
    ShowRoot();
    const QPersistentModelIndex open = Item(QStringLiteral("open"));
    const QPersistentModelIndex closed = Item(QStringLiteral("closed"));
    m_model->Expand(open);
    m_model->Expand(closed);
    m_model->Collapse(closed);
    Touch(QStringLiteral("open/b"));
    Touch(QStringLiteral("closed/b"));

    m_model->Refresh(Top(), false);
    EXPECT_EQ(Names(open), QStringList{QStringLiteral("a")}) << "not recursive: an open folder is left as it is";
    EXPECT_TRUE(m_model->IsExpanded(open));
    EXPECT_FALSE(m_model->IsFilled(closed)) << "a closed folder is read again at its next expand";
    m_model->Expand(closed);
    EXPECT_EQ(Names(closed), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));

    m_model->Refresh(Top(), true);
    EXPECT_EQ(Names(open), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST_F(FileSysModelTest, RefreshOfTheFirstTopLevelItemLeavesItsSiblingsAlone)
{
    const QString other = TestSupport::MakeTempDir();
    m_model->SetTopLevel({m_root, other});
    m_model->Expand(m_model->index(0, 0));
    m_model->Expand(m_model->index(1, 0));
    Touch(QStringLiteral("new"));
    TestSupport::WriteFile(other + QStringLiteral("/new"), "x");

    m_model->Refresh(m_model->index(0, 0), true);

    EXPECT_EQ(Names(m_model->index(0, 0)), QStringList{QStringLiteral("new")});
    EXPECT_TRUE(Names(m_model->index(1, 0)).isEmpty());
}

TEST_F(FileSysModelTest, AVanishedFolderGoesAndItsWatchStops)
{
    MakeDir(QStringLiteral("dir"));
    Touch(QStringLiteral("dir/file"));
    Touch(QStringLiteral("other"));
    ShowRoot();
    CFolderWatch watch(*m_model);
    watch.SetInterval(10);
    m_model->Expand(Item(QStringLiteral("dir")));
    watch.OnSelectionChanged(Item(QStringLiteral("dir/file")));
    ASSERT_EQ(watch.WatchedPath(), At(QStringLiteral("dir")));

    ASSERT_TRUE(QDir(At(QStringLiteral("dir"))).removeRecursively());
    m_model->Refresh(Top(), false);

    EXPECT_EQ(Names(Top()), QStringList{QStringLiteral("other")});
    EXPECT_FALSE(watch.WatchedItem().isValid());
    watch.Flush(); // nothing to refresh: must not touch the removed item
}

class FolderWatchTest : public FileSysModelTest
{
protected:
    void SetUp() override
    {
        FileSysModelTest::SetUp();
        MakeDir(QStringLiteral("dir"));
        MakeDir(QStringLiteral("elsewhere"));
        Touch(QStringLiteral("dir/first.txt"));
        Touch(QStringLiteral("elsewhere/x"));
        ShowRoot();
        m_model->Expand(Item(QStringLiteral("dir")));
        m_watch = std::make_unique<CFolderWatch>(*m_model);
        m_watch->SetInterval(20);
    }
    std::unique_ptr<CFolderWatch> m_watch;
};

TEST_F(FolderWatchTest, SelectingAFileWatchesItsFolderAndAFolderWatchesItself)
{
    m_watch->OnSelectionChanged(Item(QStringLiteral("dir/first.txt")));
    EXPECT_EQ(m_watch->WatchedPath(), At(QStringLiteral("dir")));
    EXPECT_EQ(m_watch->WatchedItem(), Item(QStringLiteral("dir")));
    m_watch->OnSelectionChanged(Item(QStringLiteral("elsewhere")));
    EXPECT_EQ(m_watch->WatchedPath(), At(QStringLiteral("elsewhere")));
    m_watch->OnSelectionChanged(QModelIndex());
    EXPECT_TRUE(m_watch->WatchedPath().isEmpty());
}

TEST_F(FolderWatchTest, TheTreeFollowsCreatesDeletesAndRenamesInTheWatchedFolder)
{
    m_watch->OnSelectionChanged(Item(QStringLiteral("dir/first.txt")));
    const QModelIndex dir = Item(QStringLiteral("dir"));
    Touch(QStringLiteral("dir/second.txt"));
    QTRY_COMPARE_WITH_TIMEOUT(Names(dir), (QStringList{QStringLiteral("first.txt"), QStringLiteral("second.txt")}),
                              1000);
    ASSERT_TRUE(QFile::rename(At(QStringLiteral("dir/first.txt")), At(QStringLiteral("dir/renamed.txt"))));
    QTRY_COMPARE_WITH_TIMEOUT(Names(dir), (QStringList{QStringLiteral("renamed.txt"), QStringLiteral("second.txt")}),
                              1000);
    Remove(QStringLiteral("dir/second.txt"));
    QTRY_COMPARE_WITH_TIMEOUT(Names(dir), QStringList{QStringLiteral("renamed.txt")}, 1000);
}

TEST_F(FolderWatchTest, ABurstOfChangesIsRefreshedInAFewBatches)
{
    m_watch->SetInterval(100);
    m_watch->OnSelectionChanged(Item(QStringLiteral("dir")));
    QSignalSpy refreshed(m_watch.get(), &CFolderWatch::refreshed);
    for (int i = 0; i < 300; ++i)
        Touch(QStringLiteral("dir/burst%1").arg(i));
    const QModelIndex dir = Item(QStringLiteral("dir"));
    QTRY_COMPARE_WITH_TIMEOUT(m_model->rowCount(dir), 301, 3000);
    EXPECT_LT(refreshed.count(), 30) << "changes are batched, not refreshed one by one";
}

TEST_F(FolderWatchTest, ASelectionChangeMadeByTheRefreshDoesNotMoveTheWatch)
{
    m_watch->OnSelectionChanged(Item(QStringLiteral("dir/first.txt")));
    // The view moves its selection when the selected row goes; here it jumps elsewhere.
    const QPersistentModelIndex elsewhere = Item(QStringLiteral("elsewhere/x"));
    bool sawRefreshing = false;
    QObject::connect(m_model.get(), &QAbstractItemModel::rowsRemoved, m_watch.get(), [&] {
        sawRefreshing = m_watch->IsRefreshing();
        m_watch->OnSelectionChanged(elsewhere);
    });
    Remove(QStringLiteral("dir/first.txt"));
    QTRY_VERIFY_WITH_TIMEOUT(Names(Item(QStringLiteral("dir"))).isEmpty(), 1000);
    EXPECT_TRUE(sawRefreshing);
    EXPECT_EQ(m_watch->WatchedPath(), At(QStringLiteral("dir")));
    // Later changes in the watched folder are still followed.
    Touch(QStringLiteral("dir/again"));
    QTRY_COMPARE_WITH_TIMEOUT(Names(Item(QStringLiteral("dir"))), QStringList{QStringLiteral("again")}, 1000);
}

TEST_F(FolderWatchTest, AWatchedFolderThatVanishesLeavesTheTree)
{
    m_watch->OnSelectionChanged(Item(QStringLiteral("dir/first.txt")));
    ASSERT_TRUE(QDir(At(QStringLiteral("dir"))).removeRecursively());
    QTRY_COMPARE_WITH_TIMEOUT(Names(Top()), QStringList{QStringLiteral("elsewhere")}, 1000);
    EXPECT_TRUE(m_watch->WatchedPath().isEmpty());
}

} // namespace
