#include "backup/CBackupStore.h"

#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace {

const QString kNextFolderId = QStringLiteral("NextFolderId");

std::filesystem::path FsPath(const QString& path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

bool IsNumberName(const QString& name)
{
    if (name.isEmpty() || name.size() > 10)
        return false;
    for (const QChar c : name) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return true;
}

// Removes the version files of one folder, then the folder if nothing else is left.
// Only names of the store's own form are touched: a root pointed at a folder that also
// holds the user's files loses none of them.
void RemoveVersionFolder(const QString& folder)
{
    QDir dir(folder);
    const auto files = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& file : files) {
        if (IsNumberName(file.fileName()))
            QFile::remove(file.absoluteFilePath());
    }
    dir.rmdir(folder);
}

} // namespace

const QString CBackupStore::FoldersSection = QStringLiteral("BackupFolders");
const QString CBackupStore::SettingsSection = QStringLiteral("BackupSettings");

CBackupStore::CBackupStore(const MainFrameSettings& settings)
    : m_settings(settings)
{
}

QString CBackupStore::NumberedPath(const QString& parent, int number)
{
    return QDir::toNativeSeparators(QDir::cleanPath(parent) + QLatin1Char('/') + QString::number(number));
}

QString CBackupStore::FailureMessage(int error, const QString& systemText)
{
    return QStringLiteral("failed with error %1: %2").arg(error).arg(systemText);
}

qint64 CBackupStore::VersionTime(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return -1;
    QDateTime when = info.birthTime();
    if (!when.isValid())
        when = info.lastModified();
    return when.isValid() ? when.toSecsSinceEpoch() : -1;
}

bool CBackupStore::IsActive() const
{
    return m_settings.Enabled && !m_folder.isEmpty();
}

BackupEntry CBackupStore::GetEntry(int index) const
{
    auto it = m_entries.begin();
    std::advance(it, index);
    return *it;
}

void CBackupStore::Attach(const QString& path)
{
    if (!m_settings.Enabled)
        return;
    m_source = path;
    CRegistryStore store;
    int id = store.GetProfileInt(FoldersSection, path, -1);
    if (id == -1) {
        id = store.GetProfileInt(SettingsSection, kNextFolderId, 0);
        store.WriteProfileInt(SettingsSection, kNextFolderId, id + 1);
        store.WriteProfileInt(FoldersSection, path, id);
    }
    m_folderId = id;
    m_folder = NumberedPath(m_settings.BackupFolder, id);
    Load();
    ApplySettings();
}

void CBackupStore::Load()
{
    QDir dir(m_folder);
    const auto files = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::NoSort);
    // Numeric name order first, so that versions made within one second keep the order
    // they were made in after the stable sort by time.
    std::vector<std::pair<qint64, QString>> found;
    for (const QFileInfo& file : files)
        found.emplace_back(file.fileName().toLongLong(), QDir::toNativeSeparators(file.absoluteFilePath()));
    std::sort(found.begin(), found.end());
    for (const auto& [number, path] : found) {
        Q_UNUSED(number);
        // A second attach to the same folder (a reload) doesn't list a version twice.
        const bool known = std::any_of(m_entries.begin(), m_entries.end(),
                                       [&path](const BackupEntry& e) { return e.m_path == path; });
        if (!known)
            m_entries.push_back({VersionTime(path), path});
    }
    m_entries.sort([](const BackupEntry& a, const BackupEntry& b) { return a.m_time < b.m_time; });
}

bool CBackupStore::SaveVersion()
{
    CRegistryStore store;
    const QString folderValue = QString::number(m_folderId);
    const int number = store.GetProfileInt(FoldersSection, folderValue, 0);
    store.WriteProfileInt(FoldersSection, folderValue, number + 1);
    const QString target = NumberedPath(m_folder, number);
    const QDateTime now = QDateTime::currentDateTimeUtc();

    QDir().mkdir(m_folder); // one level: a missing root makes the copy fail and say so
    std::error_code error;
    std::filesystem::copy_file(FsPath(m_source), FsPath(target),
                               std::filesystem::copy_options::overwrite_existing, error);
    if (error) {
        // A half-written copy must not turn up as a version on the next load.
        std::error_code ignored;
        if (std::filesystem::is_regular_file(FsPath(target), ignored))
            std::filesystem::remove(FsPath(target), ignored);
        if (m_onFailure)
            m_onFailure(FailureMessage(error.value(), QString::fromStdString(error.message())));
        return false;
    }
    // The copy's own time is when it was made, whatever the file system keeps.
    {
        QFile copy(target);
        if (copy.open(QIODevice::ReadWrite))
            copy.setFileTime(now, QFileDevice::FileModificationTime);
    }

    if (int(m_entries.size()) == m_settings.Versions) {
        QFile::remove(m_entries.front().m_path);
        m_entries.pop_front();
    }
    m_entries.push_back({now.toSecsSinceEpoch(), target});
    return true;
}

void CBackupStore::ApplySettings()
{
    if (!m_settings.Enabled) {
        Reset();
        return;
    }
    const int excess = int(m_entries.size()) - m_settings.Versions;
    for (int i = 0; i < excess; ++i) {
        // A file that can't be deleted stays at the front, and the next pass tries it again.
        const QString& path = m_entries.front().m_path;
        if (QFile::remove(path) || !QFileInfo::exists(path))
            m_entries.pop_front();
    }
}

void CBackupStore::Reset()
{
    m_entries.clear();
    m_folder.clear();
    m_folderId = -1;
}

void CBackupStore::OnDocumentClose()
{
    if (!m_settings.Enabled || m_folder.isEmpty() || !m_settings.DeleteOnExit)
        return;
    CRegistryStore store;
    store.DeleteValue(FoldersSection, QString::number(m_folderId));
    store.DeleteValue(FoldersSection, m_source);
    RemoveVersionFolder(m_folder);
}

void CBackupStore::DeleteAll()
{
    CRegistryStore store;
    store.DeleteKey(FoldersSection, QString());
    store.WriteProfileInt(SettingsSection, kNextFolderId, 0);
    const QString root = m_settings.BackupFolder;
    if (root.isEmpty())
        return;
    QDir dir(root);
    const auto folders = dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QFileInfo& folder : folders) {
        if (IsNumberName(folder.fileName()))
            RemoveVersionFolder(folder.absoluteFilePath());
    }
    dir.rmdir(root);
}
