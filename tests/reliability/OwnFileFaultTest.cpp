// The files the program writes for itself, with each file system call failing in turn:
// the desktop entry, the settings store (which holds the file filters and the backup
// numbering) and the first start's copy of what we ship.
#include "FaultSweep.h"

#include "properties/DesktopIntegration.h"
#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"

#include "TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

namespace {

// Points an environment variable at a fresh folder for the life of the object.
class FolderVariable
{
public:
    explicit FolderVariable(const char* name) : m_name(name), m_old(qgetenv(name)), m_path(TestSupport::MakeTempDir())
    {
        qputenv(m_name, QFile::encodeName(m_path));
    }
    ~FolderVariable() { qputenv(m_name, m_old); }
    const QString& Path() const { return m_path; }

private:
    const char* m_name;
    QByteArray m_old;
    QString m_path;
};

class DesktopEntryFaults : public ::testing::TestWithParam<bool>
{
};

// Both files or neither: an entry without its workspace type, or the reverse, is a
// half-done install the user did not ask for.
TEST_P(DesktopEntryFaults, InstallLeavesBothFilesAsTheyWereOrBothNew)
{
    const bool reinstall = GetParam();
    const FolderVariable data("XDG_DATA_HOME");
    const QString newProgram = QStringLiteral("/opt/morvane 2/bin/morvane");
    const auto both = [](const QString& entry, const QString& package) {
        return "entry: " + entry.toUtf8() + "\npackage: " + package.toUtf8();
    };
    SweepWriter writer;
    writer.folder = data.Path();
    const QString oldEntry = DesktopIntegration::EntryText(QStringLiteral("/usr/bin/morvane"));
    writer.before = reinstall ? both(oldEntry, QStringLiteral("old")) : both({}, {});
    writer.after = both(DesktopIntegration::EntryText(newProgram), DesktopIntegration::MimePackageText());
    QString error;
    writer.prepare = [&] {
        QDir(data.Path()).removeRecursively();
        QDir().mkpath(data.Path());
        if (reinstall) {
            TestSupport::WriteFile(DesktopIntegration::EntryPath(), oldEntry.toUtf8());
            TestSupport::WriteFile(DesktopIntegration::MimePackagePath(), "old");
        }
        error.clear();
    };
    writer.save = [&] { return DesktopIntegration::Install(newProgram, &error); };
    writer.observe = [&] {
        return both(QString::fromUtf8(TestSupport::ReadFile(DesktopIntegration::EntryPath())),
                    QString::fromUtf8(TestSupport::ReadFile(DesktopIntegration::MimePackagePath())));
    };
    writer.check = [&](bool ok) -> std::string {
        return !ok && error.isEmpty() ? "a failed install gave no reason" : std::string();
    };
    ExpectSweep(reinstall ? "desktop entry, again" : "desktop entry", Sweep(writer));
}

INSTANTIATE_TEST_SUITE_P(OwnFiles, DesktopEntryFaults, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Reinstall" : "FirstInstall"; });

TEST(SettingsFaults, AFailedWriteKeepsTheSettingsFileAndSaysSo)
{
    const QString file = CRegistryStore().FileName();
    TestSupport::ClearSettings();
    CRegistryStore store;
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(store.WriteProfileString(QStringLiteral("Filters"), QStringLiteral("Filter%1").arg(i),
                                             QStringLiteral("*.c;*.h;*.cpp;*.hpp;*.cxx (%1)").arg(i)));
    const QByteArray before = TestSupport::ReadFile(file);
    ASSERT_TRUE(store.WriteProfileInt(QStringLiteral("BackupFolders"), QStringLiteral("7"), 12));
    const QByteArray after = TestSupport::ReadFile(file);
    ASSERT_NE(before, after);

    SweepWriter writer = FileWriter(QFileInfo(file).absolutePath(), QFileInfo(file).fileName(), before, after);
    // The toolkit writes the store; what it reports is looser than our own writers (a
    // failed read of the old file counts as a failed write, a failed sync is ignored).
    writer.judgeReport = false;
    writer.save = [] {
        return CRegistryStore().WriteProfileInt(QStringLiteral("BackupFolders"), QStringLiteral("7"), 12);
    };
    ExpectSweep("settings", Sweep(writer));
}

// A first start that fails halfway leaves the folder empty, so that the next start
// fills it again: a folder with some files is taken as the user's and never refilled.
TEST(FirstStartFaults, ShippedFilesAreCopiedWholeOrNotAtAll)
{
    const FolderVariable shipped("MORVANE_DATA_DIR");
    FileTree files;
    for (int i = 0; i < 4; ++i)
        files[QStringLiteral("Lang%1.config").arg(i)] = QByteArray(30000 + i, char('a' + i));
    files[QStringLiteral("extra/Notes.config")] = "<SYNTAX/>";
    for (const auto& [name, bytes] : files)
        TestSupport::WriteFile(QDir(shipped.Path()).filePath(QStringLiteral("syntax/") + name), bytes);

    const QString folder = TestSupport::MakeTempDir();
    const QString target = QDir(folder).filePath(QStringLiteral("syntax"));
    SweepWriter writer;
    writer.folder = folder;
    writer.after = Flatten(files);
    writer.prepare = [&] { QDir(target).removeRecursively(); };
    writer.save = [&] { return AppPaths::FillFromShipped(target, QStringLiteral("syntax")); };
    writer.observe = [&] { return Flatten(ReadTree(target)); };
    ExpectSweep("shipped files", Sweep(writer));
}

} // namespace
