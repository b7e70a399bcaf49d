#include "backup/CBackupStore.h"

#include "settings/CRegistryStore.h"
#include "settings/MainFrameSettings.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <vector>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <filesystem>
#include <system_error>
#endif

namespace {

const QString kNextFolderId = QStringLiteral("NextFolderId");

const QString kPartSuffix = QStringLiteral(".part");

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

// A copy that a crash cut short, "<n>.part".
bool IsPartName(const QString& name)
{
    return name.endsWith(kPartSuffix) && IsNumberName(name.chopped(kPartSuffix.size()));
}

// The highest version number in a folder, -1 when there is none.
int HighestNumber(const QString& folder)
{
    int highest = -1;
    const auto names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        bool ok = false;
        const int number = name.toInt(&ok);
        // Numbers near the top of the range are no versions of ours; counting past
        // them would overflow.
        if (IsNumberName(name) && ok && number < std::numeric_limits<int>::max() / 2)
            highest = std::max(highest, number);
    }
    return highest;
}

#ifdef Q_OS_UNIX
int WriteAll(int fd, const char* data, ssize_t size)
{
    while (size > 0) {
        const ssize_t put = ::write(fd, data, size_t(size));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return put < 0 ? errno : EIO;
        data += put;
        size -= put;
    }
    return 0;
}

// Lets the kernel copy the whole file, without the bytes passing through us (and
// sharing blocks where the file system can). 0 when done, -1 when it can't between these
// two files and nothing was copied, else the system's error.
int KernelCopy(int in, int out)
{
#ifdef Q_OS_LINUX
    bool copied = false;
    for (;;) {
        const ssize_t n = ::copy_file_range(in, nullptr, out, nullptr, size_t(1) << 30, 0);
        if (n == 0)
            return 0;
        if (n > 0) {
            copied = true;
            continue;
        }
        if (errno == EINTR)
            continue;
        if (!copied && (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP))
            return -1;
        return errno;
    }
#else
    Q_UNUSED(in);
    Q_UNUSED(out);
    return -1;
#endif
}

// 0, or the system's error.
int CopyThroughMemory(int in, int out)
{
    std::vector<char> buffer(1 << 20);
    for (;;) {
        const ssize_t got = ::read(in, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got < 0 ? errno : 0;
        if (const int error = WriteAll(out, buffer.data(), got))
            return error;
    }
}

// Copies `from` into `partial`, synced to the disk, with the source's permissions so that
// a private file's versions stay private. 0, or the system's error.
int CopyBytes(const QByteArray& from, const QByteArray& partial)
{
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return errno;
    struct stat info;
    if (::fstat(in, &info) != 0) {
        const int error = errno;
        ::close(in);
        return error;
    }
    ::unlink(partial.constData());
    const int out = ::open(partial.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 0777);
    if (out < 0) {
        const int error = errno;
        ::close(in);
        return error;
    }
    int error = KernelCopy(in, out);
    if (error < 0)
        error = CopyThroughMemory(in, out);
    // Bytes the disk never took must not become a version.
    if (!error && ::fsync(out) != 0 && errno != EINVAL && errno != ENOTSUP)
        error = errno;
    if (::close(out) != 0 && !error)
        error = errno;
    ::close(in);
    return error;
}
#endif

// Copies the source into "<target>.part" and only then gives it the version's name: a
// copy cut short by a full disk or a lost mount never turns up as a version, and never
// touches one that is there. 0, or the system's error.
int CopyAside(const QString& from, const QString& target)
{
    const QString partial = target + kPartSuffix;
#ifdef Q_OS_UNIX
    const QByteArray partialName = QFile::encodeName(partial);
    int error = CopyBytes(QFile::encodeName(from), partialName);
    if (!error && ::rename(partialName.constData(), QFile::encodeName(target).constData()) != 0)
        error = errno;
    if (error)
        ::unlink(partialName.constData());
    return error;
#else
    std::error_code error;
    const std::filesystem::path part(partial.toStdWString());
    std::filesystem::copy_file(std::filesystem::path(from.toStdWString()), part,
                               std::filesystem::copy_options::overwrite_existing, error);
    if (!error)
        std::filesystem::rename(part, std::filesystem::path(target.toStdWString()), error);
    if (error) {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
    }
    return error.value();
#endif
}

QString SystemText(int error)
{
#ifdef Q_OS_UNIX
    return QString::fromLocal8Bit(std::strerror(error));
#else
    return QString::fromStdString(std::system_category().message(error));
#endif
}

// Removes the version files of one folder, then the folder if nothing else is left.
// Only names of the store's own form are touched: a root pointed at a folder that also
// holds the user's files loses none of them.
void RemoveVersionFolder(const QString& folder)
{
    QDir dir(folder);
    const auto files = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& file : files) {
        if (IsNumberName(file.fileName()) || IsPartName(file.fileName()))
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
        // A folder that is there belongs to another file, whatever settings that lost a
        // write say: sharing it would list that file's versions here and trim them.
        while (id >= 0 && id < std::numeric_limits<int>::max()
               && QFileInfo::exists(NumberedPath(m_settings.BackupFolder, id)))
            ++id;
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
    for (const QFileInfo& file : files) {
        if (IsNumberName(file.fileName())) // not a copy cut short, nor anything else
            found.emplace_back(file.fileName().toLongLong(), QDir::toNativeSeparators(file.absoluteFilePath()));
    }
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
    // Never a number that is in the folder already: settings that lost a write, or were
    // put back from an older copy, must not make this version replace an earlier one.
    const int number = std::max(store.GetProfileInt(FoldersSection, folderValue, 0), HighestNumber(m_folder) + 1);
    store.WriteProfileInt(FoldersSection, folderValue, number + 1);
    const QString target = NumberedPath(m_folder, number);
    const QDateTime now = QDateTime::currentDateTimeUtc();

    QDir().mkdir(m_folder); // one level: a missing root makes the copy fail and say so
    if (const int error = CopyAside(m_source, target)) {
        if (m_onFailure)
            m_onFailure(FailureMessage(error, SystemText(error)));
        return false;
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
