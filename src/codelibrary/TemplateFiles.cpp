#include "codelibrary/TemplateFiles.h"

#include "editor/DiskSync.h"
#include "settings/AppPaths.h"
#include "settings/CRegistryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>
#include <QStringDecoder>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#ifdef Q_OS_LINUX
#include <fcntl.h>
#endif

namespace TemplateFiles {

QByteArray ReadTemplate(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.read(MaxTemplateBytes);
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0)
        bytes.truncate(nul);
    return bytes;
}

bool WriteTemplate(const QString& path, const QByteArray& bytes)
{
    if (QFileInfo(path).isDir())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return CommitToDisk(file, nullptr);
}

Text Decode(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (!decoder.hasError())
        return {text, true};
    return {QString::fromLatin1(bytes), false};
}

QByteArray Encode(const Text& text)
{
    if (text.utf8)
        return text.text.toUtf8();
    // Characters typed beyond Latin-1 can't be held in that file's form: UTF-8 then.
    for (const QChar c : text.text) {
        if (c.unicode() > 0xFF)
            return text.text.toUtf8();
    }
    return text.text.toLatin1();
}

bool DeleteFromDisk(const QString& path)
{
    if (path.isEmpty())
        return false;
    std::error_code error;
    const std::filesystem::path target(QFile::encodeName(path).toStdString());
    if (!std::filesystem::exists(std::filesystem::symlink_status(target, error)))
        return false;
    std::filesystem::remove_all(target, error);
    return !error;
}

bool RenameNoReplace(const QString& from, const QString& to)
{
    if (from.isEmpty() || to.isEmpty())
        return false;
    if (QDir::cleanPath(from) == QDir::cleanPath(to))
        return QFileInfo::exists(from);
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
#ifdef Q_OS_LINUX
    // The kernel refuses to replace an existing target, with no gap between a check
    // and the rename.
    if (renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
#endif
    if (QFileInfo(to).exists() || QFileInfo(to).isSymLink())
        return false;
    return std::rename(source.constData(), target.constData()) == 0;
}

QString LibraryFolder()
{
    const QString section = QStringLiteral("TemplateSettings");
    const QString name = QStringLiteral("Directory");
    QString folder = CRegistryStore(CRegistryStore::CurrentUser).GetProfileString(section, name);
    if (folder.isEmpty())
        folder = CRegistryStore(CRegistryStore::LocalMachine).GetProfileString(section, name);
    if (folder.isEmpty())
        folder = AppPaths::DefaultTemplatesFolder();
    return folder;
}

namespace {

void ReadLevel(const QString& directory, QList<Entry>& entries, QSet<QString>& entered)
{
    const QDir dir(directory);
    const QFileInfoList infos = dir.entryInfoList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& info : infos) {
        Entry entry;
        entry.name = info.fileName();
        entry.path = dir.filePath(entry.name);
        entry.folder = info.isDir();
        if (entry.folder) {
            const QString canonical = info.canonicalFilePath();
            if (!entered.contains(canonical)) {
                entered.insert(canonical);
                ReadLevel(entry.path, entry.children, entered);
                entered.remove(canonical);
            }
        }
        entries.append(std::move(entry));
    }
}

} // namespace

bool ReadTree(const QString& directory, QList<Entry>& entries)
{
    entries.clear();
    if (directory.isEmpty())
        return false;
    QSet<QString> entered{QFileInfo(directory).canonicalFilePath()};
    ReadLevel(directory, entries, entered);
    return true;
}

} // namespace TemplateFiles
