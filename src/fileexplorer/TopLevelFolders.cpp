#include "fileexplorer/TopLevelFolders.h"

#include <QDir>
#include <QStorageInfo>

namespace TopLevelFolders {

QStringList Choose(const QString& home, const QList<Volume>& volumes)
{
    QStringList result;
    if (!home.isEmpty())
        result << QDir::cleanPath(home);
#ifdef Q_OS_WIN
    Q_UNUSED(volumes);
    for (const QFileInfo& drive : QDir::drives())
        result << QDir::cleanPath(drive.absoluteFilePath());
#else
    result << QStringLiteral("/");
    static const QStringList userMounts = {QStringLiteral("/media/"), QStringLiteral("/mnt/"),
                                           QStringLiteral("/run/media/"), QStringLiteral("/Volumes/")};
    for (const Volume& volume : volumes) {
        const QString root = QDir::cleanPath(volume.rootPath);
        const bool userMount = std::any_of(userMounts.begin(), userMounts.end(), [&](const QString& prefix) {
            return root.startsWith(prefix) && root.size() > prefix.size();
        });
        if (userMount && !result.contains(root))
            result << root;
    }
#endif
    return result;
}

QStringList ForThisMachine()
{
    QList<Volume> volumes;
    for (const QStorageInfo& storage : QStorageInfo::mountedVolumes()) {
        if (storage.isValid() && storage.isReady())
            volumes.append({storage.rootPath(), QString::fromLocal8Bit(storage.device())});
    }
    return Choose(QDir::homePath(), volumes);
}

} // namespace TopLevelFolders
