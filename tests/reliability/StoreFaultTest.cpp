// The program's own copies of the user's text, with each file system call failing in
// turn: the versions kept beside a saved file and the recovery copies of modified ones.
#include "FaultSweep.h"

#include "backup/CBackupStore.h"
#include "recovery/CRecoveryStore.h"
#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"

#include "TestSupport.h"

#include <QDir>
#include <QRegularExpression>

#include <memory>

#include <gtest/gtest.h>

namespace {

using FaultInjector::Call;

// One row: how many versions to keep, the folder's next number as the settings hold it,
// the versions there after a good save, and whether the kernel may copy the bytes.
struct BackupCase
{
    const char* name;
    int versions;
    int nextNumber;
    QStringList kept;
    bool kernelCopy = true;
};

void PrintTo(const BackupCase& c, std::ostream* out)
{
    *out << c.name;
}

class BackupFaults : public ::testing::TestWithParam<BackupCase>
{
};

TEST_P(BackupFaults, FailedVersionLeavesTheFileAndEveryVersionAndSaysSo)
{
    const BackupCase& c = GetParam();
    const QString folder = TestSupport::MakeTempDir();
    const QString document = QDir(folder).filePath(QStringLiteral("chapter.txt"));
    const QByteArray current = Lines(40000, "saved"); // more than one write
    const QByteArray older = Lines(500, "older");
    MainFrameSettings settings;
    settings.BackupFolder = QDir(folder).filePath(QStringLiteral("backup"));
    settings.Versions = c.versions;

    const FileTree before = {{QStringLiteral("chapter.txt"), current}, {QStringLiteral("backup/0/0"), older}};
    FileTree after = {{QStringLiteral("chapter.txt"), current}};
    for (const QString& name : c.kept)
        after[QStringLiteral("backup/0/") + name] = name == QLatin1String("0") ? older : current;

    SweepWriter writer;
    writer.folder = folder;
    writer.before = Flatten(before);
    writer.after = Flatten(after);
    std::unique_ptr<CBackupStore> store;
    QStringList messages;
    TestSupport::ClearSettings();
    CRegistryStore().WriteProfileInt(CBackupStore::SettingsSection, QStringLiteral("NextFolderId"), 1);
    CRegistryStore().WriteProfileInt(CBackupStore::FoldersSection, document, 0);
    writer.prepare = [&] {
        QDir(settings.BackupFolder).removeRecursively();
        for (const auto& [name, bytes] : before)
            TestSupport::WriteFile(QDir(folder).filePath(name), bytes);
        CRegistryStore().WriteProfileInt(CBackupStore::FoldersSection, QStringLiteral("0"), c.nextNumber);
        store = std::make_unique<CBackupStore>(settings);
        messages.clear();
        store->SetFailureHandler([&](const QString& text) { messages << text; });
        store->Attach(document);
        ASSERT_EQ(store->GetCount(), 1);
    };
    writer.save = [&] { return store->SaveVersion(); };
    if (!c.kernelCopy) {
        writer.refuse = Call::Copy;
        writer.refuseError = EXDEV;
    }
    writer.observe = [&] { return Flatten(ReadTree(folder)); };
    writer.check = [&](bool ok) -> std::string {
        static const QRegularExpression reason(QStringLiteral("^failed with error [1-9][0-9]*: \\S"));
        if (ok != messages.isEmpty())
            return ok ? "a message for a version that was made" : "a failed version said nothing";
        if (!ok && !reason.match(messages.first()).hasMatch())
            return "unexpected message: " + messages.first().toStdString();
        const int listed = ok ? int(c.kept.size()) : 1;
        if (store->GetCount() != listed)
            return "the history lists " + std::to_string(store->GetCount()) + " versions";
        for (int i = 0; i < store->GetCount(); ++i) {
            if (!QFileInfo::exists(store->GetEntry(i).m_path))
                return "the history lists a version that is not there";
        }
        return {};
    };
    ExpectSweep(c.name, Sweep(writer), c.kernelCopy ? Call::Copy : Call::Write);
}

INSTANTIATE_TEST_SUITE_P(
    Stores, BackupFaults,
    ::testing::Values(BackupCase{"backup version", 5, 1, {QStringLiteral("0"), QStringLiteral("1")}},
                      // The only version is dropped only once the new one is whole.
                      BackupCase{"backup, keep one", 1, 1, {QStringLiteral("1")}},
                      // Settings that lost a write (or were restored from an older copy)
                      // must not make the new version overwrite an old one.
                      BackupCase{"backup, stale number", 5, 0,
                                 {QStringLiteral("0"), QStringLiteral("1")}},
                      // A file system the kernel can't copy within: through memory.
                      BackupCase{"backup, no kernel copy", 5, 1,
                                 {QStringLiteral("0"), QStringLiteral("1")}, false}),
    [](const auto& info) {
        return QString::fromLatin1(info.param.name).replace(QRegularExpression(QStringLiteral("\\W+")),
                                                            QStringLiteral("_")).toStdString();
    });

RecoveryEntry Described(const QString& id)
{
    RecoveryEntry entry;
    entry.id = id;
    entry.path = QStringLiteral("/home/user/novel.txt");
    entry.time = QDateTime::currentDateTimeUtc();
    return entry;
}

// What the next start would offer from the folder: the text of its one entry, nothing
// when there is none, and a complaint when an entry was skipped as torn.
QByteArray Offered(const QString& folder)
{
    QStringList notes;
    const QList<RecoveryEntry> entries = CRecoveryStore::ReadFolder(folder, &notes);
    if (!notes.isEmpty() || entries.size() > 1)
        return "torn: " + notes.join(QLatin1Char(' ')).toUtf8() + " (" + QByteArray::number(entries.size())
            + " entries)";
    return entries.isEmpty() ? QByteArray() : TestSupport::ReadFile(entries.first().textFile);
}

class RecoveryFaults : public ::testing::TestWithParam<bool>
{
};

TEST_P(RecoveryFaults, CopyIsKeptOrReplacedWholeAndNeverOfferedTorn)
{
    const bool hadCopy = GetParam();
    const QString folder = QDir(TestSupport::MakeTempDir()).filePath(QStringLiteral("instance"));
    const RecoveryEntry entry = Described(QStringLiteral("doc7"));
    SweepWriter writer;
    writer.folder = folder;
    writer.before = hadCopy ? Lines(2000, "typed") : QByteArray();
    writer.after = Lines(3000, "retyped");
    QString error;
    writer.prepare = [&] {
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        if (hadCopy) {
            ASSERT_TRUE(CRecoveryStore::WriteNow(folder, entry, writer.before));
        }
        error.clear();
    };
    writer.save = [&] { return CRecoveryStore::WriteNow(folder, entry, writer.after, &error); };
    writer.observe = [&] { return Offered(folder); };
    writer.check = [&](bool ok) -> std::string {
        return !ok && error.isEmpty() ? "a failed write gave no reason" : std::string();
    };
    ExpectSweep(hadCopy ? "recovery copy" : "recovery copy, first", Sweep(writer));
}

INSTANTIATE_TEST_SUITE_P(Stores, RecoveryFaults, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "OverAnOlderCopy" : "First"; });

} // namespace
