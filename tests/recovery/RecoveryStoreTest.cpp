#include "recovery/CRecoveryStore.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTimeZone>
#include <gtest/gtest.h>

namespace {

RecoveryEntry MakeEntry(const QString& id, const QString& path = {}, int encoding = 0)
{
    RecoveryEntry entry;
    entry.id = id;
    entry.path = path;
    entry.title = QStringLiteral("Untitled3");
    entry.encoding = encoding;
    entry.writeMark = true;
    entry.lineEnding = 2;
    entry.parser = 4;
    entry.time = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7, 89), Qt::UTC);
    return entry;
}

int CountFiles(const QString& folder, const QString& pattern)
{
    return QDir(folder).entryList({pattern}, QDir::Files).size();
}

// A folder with entries but no lock: what a killed instance leaves once its lock is stale.
QString OrphanFolder(const QString& root)
{
    const QString folder = QDir(root).filePath(QStringLiteral("dead"));
    EXPECT_TRUE(QDir().mkpath(folder));
    return folder;
}

} // namespace

struct RoundTripCase
{
    const char* name;
    QString path;
    int encoding;
    QByteArray text;
};

class RecoveryRoundTrip : public ::testing::TestWithParam<RoundTripCase>
{
};

TEST_P(RecoveryRoundTrip, AnOrphanedEntryComesBackWithItsDescription)
{
    const RoundTripCase& c = GetParam();
    const QString root = TestSupport::MakeTempDir();
    const QString folder = OrphanFolder(root);
    ASSERT_TRUE(CRecoveryStore::WriteNow(folder, MakeEntry(QStringLiteral("doc1"), c.path, c.encoding), c.text));

    CRecoveryStore store(root);
    ASSERT_TRUE(store.Claim());
    QStringList notes;
    const QList<RecoveryEntry> entries = store.ListOrphans(&notes);
    ASSERT_EQ(entries.size(), 1) << notes.join(QLatin1Char('\n')).toStdString();
    const RecoveryEntry& e = entries.first();
    EXPECT_TRUE(notes.isEmpty());
    EXPECT_EQ(e.id, QStringLiteral("doc1"));
    EXPECT_EQ(e.path, c.path);
    EXPECT_EQ(e.title, QStringLiteral("Untitled3"));
    EXPECT_EQ(e.encoding, c.encoding);
    EXPECT_TRUE(e.writeMark);
    EXPECT_EQ(e.lineEnding, 2);
    EXPECT_EQ(e.parser, 4);
    EXPECT_EQ(e.time, MakeEntry({}).time);
    EXPECT_EQ(e.bytes, c.text.size());
    EXPECT_EQ(TestSupport::ReadFile(e.textFile), c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, RecoveryRoundTrip,
    ::testing::Values(
        RoundTripCase{"Named", QStringLiteral("/home/u/notes.txt"), 0, "hello\nworld\n"},
        RoundTripCase{"Untitled", QString(), 0, "typed but never saved"},
        // The control holds UTF-8 whatever the file's encoding; the code says how to save.
        RoundTripCase{"Utf16", QStringLiteral("/tmp/wide.txt"), 5, "gr\xC3\xBC\xC3\x9F" "e \xE2\x82\xAC\r\n"},
        RoundTripCase{"Empty", QStringLiteral("/tmp/empty.txt"), 0, QByteArray()},
        RoundTripCase{"WithNul", QStringLiteral("/tmp/nul.bin"), 0, QByteArray("a\0b\0c", 5)},
        RoundTripCase{"PathWithSpaces", QStringLiteral("/tmp/a b/ü.txt"), 0, "x"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RecoveryStore, RewritingKeepsOneTextFilePerDocument)
{
    const QString root = TestSupport::MakeTempDir();
    CRecoveryStore store(root);
    ASSERT_TRUE(store.Claim());
    for (const char* text : {"one", "two two", "three three three"})
        store.Write(MakeEntry(QStringLiteral("doc7")), text);
    store.Flush();
    EXPECT_EQ(CountFiles(store.InstanceFolder(), QStringLiteral("doc7.*.txt")), 1);
    const QList<RecoveryEntry> entries = CRecoveryStore::ReadFolder(store.InstanceFolder(), nullptr);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(TestSupport::ReadFile(entries.first().textFile), QByteArray("three three three"));

    store.Remove(QStringLiteral("doc7"));
    store.Flush();
    EXPECT_EQ(CountFiles(store.InstanceFolder(), QStringLiteral("doc7*")), 0);
}

TEST(RecoveryStore, ACleanEndLeavesNothing)
{
    const QString root = TestSupport::MakeTempDir();
    {
        CRecoveryStore store(root);
        ASSERT_TRUE(store.Claim());
        store.Write(MakeEntry(QStringLiteral("doc1")), "unsaved");
        store.Write(MakeEntry(QStringLiteral("doc2")), "also unsaved");
        store.ReleaseClean();
    }
    EXPECT_TRUE(QDir(root).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty());
    CRecoveryStore next(root);
    ASSERT_TRUE(next.Claim());
    EXPECT_TRUE(next.ListOrphans().isEmpty());
}

TEST(RecoveryStore, ARunningInstanceKeepsItsEntries)
{
    const QString root = TestSupport::MakeTempDir();
    CRecoveryStore first(root);
    ASSERT_TRUE(first.Claim());
    first.Write(MakeEntry(QStringLiteral("doc1")), "first's work");
    first.Flush();

    CRecoveryStore second(root);
    ASSERT_TRUE(second.Claim());
    EXPECT_NE(first.InstanceFolder(), second.InstanceFolder());
    EXPECT_TRUE(second.ListOrphans().isEmpty());
    EXPECT_TRUE(first.ListOrphans().isEmpty());
    // Looking must not have taken the lock away from the first.
    EXPECT_TRUE(QFile::exists(QDir(first.InstanceFolder()).filePath(QStringLiteral("instance.lock"))));
    EXPECT_EQ(CRecoveryStore::ReadFolder(first.InstanceFolder(), nullptr).size(), 1);
}

TEST(RecoveryStore, AKilledInstanceLeavesWhatItHadWritten)
{
    const QString root = TestSupport::MakeTempDir();
    QProcess child;
    child.start(QStringLiteral(RECOVERY_CRASH_HELPER),
                {root, QStringLiteral("doc3"), QString(), QStringLiteral("5"), QStringLiteral("wide text")});
    ASSERT_TRUE(child.waitForStarted(10000));
    ASSERT_TRUE(child.waitForReadyRead(20000));
    const QByteArray line = child.readLine().trimmed();
    ASSERT_TRUE(line.startsWith("ready ")) << line.toStdString();
    const QString childFolder = QString::fromUtf8(line.mid(6));

    // While it runs its entry is not offered to anyone.
    CRecoveryStore watcher(root);
    ASSERT_TRUE(watcher.Claim());
    EXPECT_TRUE(watcher.ListOrphans().isEmpty());

    child.kill(); // SIGKILL: no destructor, no clean-up
    ASSERT_TRUE(child.waitForFinished(10000));
    EXPECT_TRUE(QFile::exists(QDir(childFolder).filePath(QStringLiteral("instance.lock"))));

    const QList<RecoveryEntry> entries = watcher.ListOrphans();
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries.first().folder, childFolder);
    EXPECT_TRUE(entries.first().path.isEmpty());
    EXPECT_EQ(entries.first().encoding, 5);
    EXPECT_EQ(TestSupport::ReadFile(entries.first().textFile), QByteArray("wide text"));

    CRecoveryStore::Discard(entries.first());
    EXPECT_FALSE(QDir(childFolder).exists());
    EXPECT_TRUE(watcher.ListOrphans().isEmpty());
}

struct CorruptCase
{
    const char* name;
    QByteArray meta;      // written as bad.meta
    QByteArray textName;  // a text file written beside it, when not empty
    QByteArray text;
};

class RecoveryCorruptEntry : public ::testing::TestWithParam<CorruptCase>
{
};

TEST_P(RecoveryCorruptEntry, IsSkippedWithANoteAndTheGoodOnesStay)
{
    const CorruptCase& c = GetParam();
    const QString root = TestSupport::MakeTempDir();
    const QString folder = OrphanFolder(root);
    ASSERT_TRUE(CRecoveryStore::WriteNow(folder, MakeEntry(QStringLiteral("good"), QStringLiteral("/x.txt")), "fine"));
    TestSupport::WriteFile(QDir(folder).filePath(QStringLiteral("bad.meta")), c.meta);
    if (!c.textName.isEmpty())
        TestSupport::WriteFile(QDir(folder).filePath(QString::fromUtf8(c.textName)), c.text);

    CRecoveryStore store(root);
    ASSERT_TRUE(store.Claim());
    QStringList notes;
    const QList<RecoveryEntry> entries = store.ListOrphans(&notes);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries.first().id, QStringLiteral("good"));
    ASSERT_EQ(notes.size(), 1);
    EXPECT_TRUE(notes.first().contains(QStringLiteral("bad.meta"))) << notes.first().toStdString();
}

#define META(text, bytes) \
    "{\"path\":\"/p.txt\",\"time\":\"2026-01-01T00:00:00.000Z\",\"bytes\":\"" bytes "\",\"text\":\"" text "\"}"

INSTANTIATE_TEST_SUITE_P(
    Entries, RecoveryCorruptEntry,
    ::testing::Values(
        CorruptCase{"Garbage", "\x01\x02not json at all", "", ""},
        CorruptCase{"TruncatedJson", "{\"path\":\"/p.txt\",\"ti", "", ""},
        CorruptCase{"EmptyDescription", "", "", ""},
        CorruptCase{"TextMissing", META("bad.1-0.txt", "4"), "", ""},
        CorruptCase{"TextHalfWritten", META("bad.1-0.txt", "400"), "bad.1-0.txt", "only part"},
        CorruptCase{"NoTextName", META("", "0"), "", ""},
        CorruptCase{"TextOutsideTheFolder", META("../../etc/passwd", "4"), "", ""},
        CorruptCase{"NegativeSize", META("bad.1-0.txt", "-1"), "bad.1-0.txt", ""},
        CorruptCase{"NoTime", "{\"bytes\":\"1\",\"text\":\"bad.1-0.txt\"}", "bad.1-0.txt", "x"}),
    [](const auto& info) { return std::string(info.param.name); });
