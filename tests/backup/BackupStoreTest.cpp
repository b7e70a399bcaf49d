#include "backup/BackupTimeText.h"
#include "backup/CBackupStore.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"

#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>

using TestSupport::ReadFile;
using TestSupport::WriteFile;

namespace {

class BackupStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestSupport::ClearSettings();
        m_dir = TestSupport::MakeTempDir();
        settings.BackupFolder = m_dir + QStringLiteral("/backup");
        settings.Enabled = 1;
        settings.Versions = 1;
        settings.DeleteOnExit = 0;
        // The Backup Manager makes the root when it applies; a store never does.
        QDir().mkpath(settings.BackupFolder);
    }

    QString Source(const QString& name) const { return m_dir + QLatin1Char('/') + name; }
    QString Root() const { return settings.BackupFolder; }
    // A source file with its first text, opened in the store.
    QString Opened(CBackupStore& store, const QString& name, const QByteArray& text) const
    {
        const QString path = Source(name);
        WriteFile(path, text);
        store.Attach(path);
        return path;
    }
    QStringList FilesIn(const QString& folder) const
    {
        QStringList names = QDir(folder).entryList(QDir::Files, QDir::Name);
        std::sort(names.begin(), names.end(),
                  [](const QString& a, const QString& b) { return a.toInt() < b.toInt(); });
        return names;
    }
    // Saves `content` over the file the way a document does: version first, then write.
    void Save(CBackupStore& store, const QString& path, const QByteArray& content)
    {
        if (store.IsActive() && store.GetSourcePath() == path)
            store.SaveVersion();
        else
            store.Attach(path);
        WriteFile(path, content);
    }
    QStringList EntryNames(const CBackupStore& store) const
    {
        QStringList names;
        for (int i = 0; i < store.GetCount(); ++i)
            names << QFileInfo(store.GetEntry(i).m_path).fileName();
        return names;
    }

    // Collects the store's failure messages in `messages`.
    void CollectFailures(CBackupStore& store)
    {
        store.SetFailureHandler([this](const QString& text) { messages << text; });
    }

    MainFrameSettings settings;
    QString m_dir;
    QStringList messages;
};

TEST_F(BackupStoreTest, FirstFolderIsZeroAndEachFileGetsItsOwn)
{
    const QString a = Source(QStringLiteral("a.txt"));
    const QString b = Source(QStringLiteral("b.txt"));
    WriteFile(a, "a0");
    WriteFile(b, "b0");
    CBackupStore storeA(settings), storeB(settings);
    storeA.Attach(a);
    storeB.Attach(b);
    EXPECT_EQ(storeA.GetFolder(), QDir::toNativeSeparators(Root() + QStringLiteral("/0")));
    EXPECT_EQ(storeB.GetFolderId(), 1);

    Save(storeA, a, "a1");
    EXPECT_EQ(FilesIn(Root() + QStringLiteral("/0")), QStringList{QStringLiteral("0")});
    EXPECT_EQ(ReadFile(Root() + QStringLiteral("/0/0")), QByteArray("a0"));

    CRegistryStore registry;
    EXPECT_EQ(registry.GetProfileInt(CBackupStore::FoldersSection, a, -1), 0);
    EXPECT_EQ(registry.GetProfileInt(CBackupStore::FoldersSection, b, -1), 1);
    EXPECT_EQ(registry.GetProfileInt(CBackupStore::FoldersSection, QStringLiteral("0"), -1), 1);
    EXPECT_EQ(registry.GetProfileInt(CBackupStore::SettingsSection, QStringLiteral("NextFolderId"), -1), 2);

    // A later document of the same file finds the same folder.
    CBackupStore again(settings);
    again.Attach(a);
    EXPECT_EQ(again.GetFolderId(), 0);
    EXPECT_EQ(again.GetCount(), 1);
}

// Each row: the limit, the number of saves after the first, the files left and their contents.
struct LimitCase
{
    int versions;
    int saves;
    QStringList names;
};

class BackupLimitTest : public BackupStoreTest, public ::testing::WithParamInterface<LimitCase>
{
};

TEST_P(BackupLimitTest, KeepsTheNewestVersionsAndNeverReusesNumbers)
{
    const LimitCase& c = GetParam();
    settings.Versions = c.versions;
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CBackupStore store(settings);
    store.Attach(path);
    for (int i = 1; i <= c.saves; ++i)
        Save(store, path, QByteArray("v") + QByteArray::number(i));
    const QString folder = Root() + QStringLiteral("/0");
    EXPECT_EQ(FilesIn(folder), c.names);
    EXPECT_EQ(EntryNames(store), c.names);
    // Version n holds what was on disk before save n+1.
    for (const QString& name : c.names)
        EXPECT_EQ(ReadFile(folder + QLatin1Char('/') + name), QByteArray("v") + name.toUtf8());
}

INSTANTIATE_TEST_SUITE_P(Limits, BackupLimitTest,
                         ::testing::Values(LimitCase{1, 1, {QStringLiteral("0")}},
                                           LimitCase{1, 2, {QStringLiteral("1")}},
                                           LimitCase{1, 12, {QStringLiteral("11")}},
                                           LimitCase{3, 2, {QStringLiteral("0"), QStringLiteral("1")}},
                                           LimitCase{3, 5, {QStringLiteral("2"), QStringLiteral("3"),
                                                            QStringLiteral("4")}}));

TEST_F(BackupStoreTest, FirstSaveOfANewNameOnlyAttaches)
{
    const QString path = Source(QStringLiteral("new.txt"));
    CBackupStore store(settings);
    Save(store, path, "first");
    EXPECT_TRUE(store.IsActive());
    EXPECT_EQ(store.GetCount(), 0);
    Save(store, path, "second");
    ASSERT_EQ(store.GetCount(), 1);
    EXPECT_EQ(ReadFile(store.GetEntry(0).m_path), QByteArray("first"));
}

TEST_F(BackupStoreTest, LoweringTheLimitDropsTheOldestAtApply)
{
    settings.Versions = 5;
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CBackupStore store(settings);
    store.Attach(path);
    for (int i = 1; i <= 5; ++i)
        Save(store, path, QByteArray("v") + QByteArray::number(i));
    ASSERT_EQ(store.GetCount(), 5);
    settings.Versions = 2;
    store.ApplySettings();
    EXPECT_EQ(EntryNames(store), (QStringList{QStringLiteral("3"), QStringLiteral("4")}));
    EXPECT_EQ(FilesIn(Root() + QStringLiteral("/0")), (QStringList{QStringLiteral("3"), QStringLiteral("4")}));
}

TEST_F(BackupStoreTest, MoreEntriesThanTheLimitAreNotShortenedBySave)
{
    // Only the equality test runs in a save; apply is what trims a longer list.
    settings.Versions = 3;
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CBackupStore store(settings);
    store.Attach(path);
    for (int i = 1; i <= 3; ++i)
        Save(store, path, "x");
    settings.Versions = 2;
    Save(store, path, "y");
    EXPECT_EQ(store.GetCount(), 4);
}

TEST_F(BackupStoreTest, HistoryIsOrderedByTimeNotByName)
{
    const QString folder = Root() + QStringLiteral("/0");
    WriteFile(folder + QStringLiteral("/10"), "older");
    // Times are kept in whole seconds.
    QThread::msleep(1100);
    WriteFile(folder + QStringLiteral("/2"), "newer");
    settings.Versions = 5;
    const QString path = Source(QStringLiteral("f.txt"));
    CRegistryStore().WriteProfileInt(CBackupStore::FoldersSection, path, 0);
    CRegistryStore().WriteProfileInt(CBackupStore::SettingsSection, QStringLiteral("NextFolderId"), 1);
    CBackupStore store(settings);
    store.Attach(path);
    EXPECT_EQ(EntryNames(store), (QStringList{QStringLiteral("10"), QStringLiteral("2")}));
    EXPECT_LT(store.GetEntry(0).m_time, store.GetEntry(1).m_time);
}

TEST_F(BackupStoreTest, VersionTimeIsWhenTheCopyWasMade)
{
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "old");
    // A source last written long ago: the version still carries today's time.
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000), QFileDevice::FileModificationTime);
    file.close();
    CBackupStore store(settings);
    store.Attach(path);
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    ASSERT_TRUE(store.SaveVersion());
    EXPECT_GE(store.GetEntry(0).m_time, before);
    EXPECT_GE(CBackupStore::VersionTime(store.GetEntry(0).m_path), before);
}

TEST_F(BackupStoreTest, DeleteAllStartsTheNumberingAgainAndReattachesOnTheNextSave)
{
    const QString a = Source(QStringLiteral("a.txt"));
    const QString b = Source(QStringLiteral("b.txt"));
    WriteFile(a, "a");
    WriteFile(b, "b");
    CBackupStore storeA(settings), storeB(settings);
    storeA.Attach(a);
    storeB.Attach(b);
    Save(storeB, b, "b1");
    Save(storeB, b, "b2");
    ASSERT_EQ(storeB.GetFolderId(), 1);
    // The user's own file in the root is not ours to delete.
    WriteFile(Root() + QStringLiteral("/notes.txt"), "mine");

    // What "Delete Files..." does: every open store detaches, then everything goes.
    storeA.Reset();
    storeB.Reset();
    CBackupStore(settings).DeleteAll();
    EXPECT_FALSE(QFileInfo::exists(Root() + QStringLiteral("/1")));
    EXPECT_TRUE(QFileInfo::exists(Root() + QStringLiteral("/notes.txt")));
    EXPECT_FALSE(CRegistryStore().HasValue(CBackupStore::FoldersSection, b));

    Save(storeB, b, "b3"); // only re-attaches
    EXPECT_EQ(storeB.GetFolderId(), 0);
    EXPECT_EQ(storeB.GetCount(), 0);
    Save(storeB, b, "b4");
    EXPECT_EQ(EntryNames(storeB), QStringList{QStringLiteral("0")});
    EXPECT_EQ(ReadFile(Root() + QStringLiteral("/0/0")), QByteArray("b3"));
}

TEST_F(BackupStoreTest, DeleteOnExitActsPerDocumentAndOnlyWhenSet)
{
    const QString a = Source(QStringLiteral("a.txt"));
    const QString b = Source(QStringLiteral("b.txt"));
    WriteFile(a, "a");
    WriteFile(b, "b");
    CBackupStore storeA(settings), storeB(settings);
    storeA.Attach(a);
    storeB.Attach(b);
    Save(storeA, a, "a1");
    Save(storeB, b, "b1");

    storeA.OnDocumentClose(); // not asked for
    EXPECT_TRUE(QFileInfo::exists(Root() + QStringLiteral("/0/0")));

    settings.DeleteOnExit = 1;
    storeA.OnDocumentClose();
    EXPECT_FALSE(QFileInfo::exists(Root() + QStringLiteral("/0")));
    EXPECT_TRUE(QFileInfo::exists(Root() + QStringLiteral("/1/0")));
    CRegistryStore registry;
    EXPECT_FALSE(registry.HasValue(CBackupStore::FoldersSection, a));
    EXPECT_FALSE(registry.HasValue(CBackupStore::FoldersSection, QStringLiteral("0")));
    EXPECT_TRUE(registry.HasValue(CBackupStore::FoldersSection, b));
    // Ids of deleted folders are not handed out again.
    EXPECT_EQ(registry.GetProfileInt(CBackupStore::SettingsSection, QStringLiteral("NextFolderId"), 0), 2);
}

TEST_F(BackupStoreTest, FailedCopyIsReportedAndTheNumberIsStillTaken)
{
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CBackupStore store(settings);
    CollectFailures(store);
    store.Attach(path);

    // The root is a file, so the version's folder can't be made under it.
    QDir(Root()).removeRecursively();
    WriteFile(Root(), "in the way");
    EXPECT_FALSE(store.SaveVersion());
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^failed with error \\d+: \\S.*$"))
                    .match(messages.first()).hasMatch()) << messages.first().toStdString();
    EXPECT_EQ(store.GetCount(), 0);

    QFile::remove(Root());
    QDir().mkpath(Root());
    ASSERT_TRUE(store.SaveVersion());
    EXPECT_EQ(EntryNames(store), QStringList{QStringLiteral("1")});
}

TEST_F(BackupStoreTest, MissingRootFailsTheCopyInsteadOfMakingIt)
{
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    CBackupStore store(settings);
    CollectFailures(store);
    store.Attach(path);
    QDir(Root()).removeRecursively();
    EXPECT_FALSE(store.SaveVersion());
    EXPECT_EQ(messages.size(), 1);
    EXPECT_FALSE(QFileInfo::exists(Root()));
}

TEST_F(BackupStoreTest, VanishedSourceReportsTheSystemReason)
{
    const QString path = Source(QStringLiteral("gone.txt"));
    WriteFile(path, "x");
    CBackupStore store(settings);
    CollectFailures(store);
    store.Attach(path);
    QFile::remove(path);
    EXPECT_FALSE(store.SaveVersion());
    ASSERT_EQ(messages.size(), 1);
    EXPECT_EQ(messages.first(), CBackupStore::FailureMessage(ENOENT, QString::fromLocal8Bit(strerror(ENOENT))));
    EXPECT_TRUE(FilesIn(Root() + QStringLiteral("/0")).isEmpty());
}

TEST_F(BackupStoreTest, SwitchedOffStoreNeitherAttachesNorKeepsItsList)
{
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "v0");
    settings.Enabled = 0;
    CBackupStore store(settings);
    store.Attach(path);
    EXPECT_FALSE(store.IsActive());
    EXPECT_FALSE(CRegistryStore().HasValue(CBackupStore::FoldersSection, path));

    settings.Enabled = 1;
    store.Attach(path);
    Save(store, path, "v1");
    ASSERT_EQ(store.GetCount(), 1);
    settings.Enabled = 0;
    store.ApplySettings();
    EXPECT_FALSE(store.IsActive());
    EXPECT_EQ(store.GetCount(), 0);
    EXPECT_EQ(store.GetSourcePath(), path);
    // Switching off alone deletes nothing on disk.
    EXPECT_EQ(FilesIn(Root() + QStringLiteral("/0")), QStringList{QStringLiteral("0")});
}

TEST_F(BackupStoreTest, SaveUnderANewNameKeepsTheOldVersionsInTheCount)
{
    settings.Versions = 2;
    CBackupStore store(settings);
    const QString a = Opened(store, QStringLiteral("a.txt"), "a0");
    const QString b = Source(QStringLiteral("b.txt"));
    Save(store, a, "a1");
    Save(store, a, "a2");
    Save(store, b, "b0"); // Save As: attach to the new name, no version
    EXPECT_EQ(store.GetCount(), 2);
    Save(store, b, "b1");
    // The limit dropped the oldest, which lived in the old file's folder.
    EXPECT_EQ(store.GetCount(), 2);
    EXPECT_FALSE(QFileInfo::exists(Root() + QStringLiteral("/0/0")));
    EXPECT_EQ(ReadFile(store.GetEntry(1).m_path), QByteArray("b0"));
}

TEST_F(BackupStoreTest, ReloadDoesNotListAVersionTwice)
{
    settings.Versions = 5;
    CBackupStore store(settings);
    const QString path = Opened(store, QStringLiteral("f.txt"), "v0");
    Save(store, path, "v1");
    store.Attach(path);
    EXPECT_EQ(store.GetCount(), 1);
}

// Settings that lost their writes (or were put back from an older copy) must not make
// a new file share a folder, nor a new version replace an old one.
TEST_F(BackupStoreTest, NumbersInUseOnDiskAreNotHandedOutAgain)
{
    settings.Versions = 1;
    CBackupStore storeA(settings);
    const QString a = Opened(storeA, QStringLiteral("a.txt"), "a0");
    Save(storeA, a, "a1");
    Save(storeA, a, "a2");
    TestSupport::ClearSettings();

    CBackupStore storeB(settings);
    const QString b = Opened(storeB, QStringLiteral("b.txt"), "b0");
    Save(storeB, b, "b1");
    EXPECT_EQ(storeB.GetFolderId(), 1);
    EXPECT_EQ(EntryNames(storeB), QStringList{QStringLiteral("0")});
    EXPECT_EQ(ReadFile(Root() + QStringLiteral("/0/1")), QByteArray("a1"));
    // The folder's counter is gone as well: the next version goes past what is there.
    storeA.ApplySettings();
    ASSERT_TRUE(storeA.SaveVersion());
    EXPECT_EQ(FilesIn(Root() + QStringLiteral("/0")), QStringList{QStringLiteral("2")});
}

// A crash in the middle of a copy leaves "<n>.part": it is no version, it doesn't stop
// the folder from going, and the versions of a private file stay private.
TEST_F(BackupStoreTest, CopyCutShortIsNeitherListedNorLeftBehind)
{
    settings.Versions = 5;
    settings.DeleteOnExit = 1;
    const QString path = Source(QStringLiteral("f.txt"));
    WriteFile(path, "secret");
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QString folder = Root() + QStringLiteral("/0");
    WriteFile(folder + QStringLiteral("/0"), "v0");
    WriteFile(folder + QStringLiteral("/1.part"), "half");
    CRegistryStore().WriteProfileInt(CBackupStore::FoldersSection, path, 0);
    CBackupStore store(settings);
    store.Attach(path);
    EXPECT_EQ(EntryNames(store), QStringList{QStringLiteral("0")});
    ASSERT_TRUE(store.SaveVersion());
    EXPECT_EQ(EntryNames(store), (QStringList{QStringLiteral("0"), QStringLiteral("1")}));
    EXPECT_EQ(ReadFile(folder + QStringLiteral("/1")), QByteArray("secret"));
    const auto others = QFileDevice::ReadOther | QFileDevice::ReadGroup;
    EXPECT_EQ(QFileInfo(folder + QStringLiteral("/1")).permissions() & others, QFileDevice::Permissions());
    store.OnDocumentClose();
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST(BackupTimeTextTest, MonthNamesAreEnglishAndOutOfRangeIsEmpty)
{
    EXPECT_EQ(BackupTimeText::MonthName(1), QStringLiteral("January"));
    EXPECT_EQ(BackupTimeText::MonthName(12), QStringLiteral("December"));
    EXPECT_TRUE(BackupTimeText::MonthName(0).isEmpty());
    EXPECT_TRUE(BackupTimeText::MonthName(13).isEmpty());
}

TEST(BackupTimeTextTest, RowShowsLocalDayMonthYearAndTime)
{
    const QDateTime local(QDate(2026, 3, 7), QTime(9, 5, 41));
    EXPECT_EQ(BackupTimeText::RowText(local.toSecsSinceEpoch()), QStringLiteral("07 March 2026  09:05"));
}

} // namespace
