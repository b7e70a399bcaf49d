#include "settings/AppPaths.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <unistd.h>
#endif

namespace AppPaths {

namespace {

// A copy that is on the disk before it takes its name: a file left empty by a crash
// would stand in for the shipped one for good.
bool CopySynced(const QString& from, const QString& to)
{
    QFile in(from);
    QSaveFile out(to);
    if (!in.open(QIODevice::ReadOnly) || !out.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = in.readAll();
    if (in.error() != QFileDevice::NoError || out.write(bytes) != bytes.size() || !out.flush()) {
        out.cancelWriting();
        return false;
    }
#ifdef Q_OS_UNIX
    int synced;
    do {
        synced = ::fsync(out.handle());
    } while (synced != 0 && errno == EINTR);
    if (synced != 0 && errno != EINVAL && errno != ENOTSUP) {
        out.cancelWriting();
        return false;
    }
#endif
    return out.commit();
}

} // namespace

QString AppDataLocation()
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QDir(base).filePath(QStringLiteral("Brackwyn/Morvane"));
}

QString DefaultBackupFolder()
{
    return QDir(AppDataLocation()).filePath(QStringLiteral("backup"));
}

QString DefaultSyntaxFolder()
{
    return QDir(AppDataLocation()).filePath(QStringLiteral("syntax"));
}

QString DefaultTemplatesFolder()
{
    return QDir(AppDataLocation()).filePath(QStringLiteral("templates"));
}

QString ShippedDataFolder()
{
    QStringList candidates;
    const QString fromEnv = qEnvironmentVariable("MORVANE_DATA_DIR");
    if (!fromEnv.isEmpty())
        candidates << fromEnv;
    if (QCoreApplication::instance()) {
        const QString exeDir = QCoreApplication::applicationDirPath();
        candidates << QDir(exeDir).filePath(QStringLiteral("data"))
                   << QDir(exeDir).filePath(QStringLiteral("../share/morvane"));
    }
    candidates << QStringLiteral(MORVANE_DATA_DIR_INSTALLED)
               << QStringLiteral(MORVANE_DATA_DIR_SOURCE);
    for (const QString& candidate : std::as_const(candidates)) {
        if (QFileInfo(QDir(candidate).filePath(QStringLiteral("syntax"))).isDir())
            return QDir(candidate).absolutePath();
    }
    return {};
}

bool FillFromShipped(const QString& target, const QString& subfolder)
{
    QDir targetDir(target);
    const bool existed = targetDir.exists();
    if (!existed && !QDir().mkpath(target))
        return false;
    if (!targetDir.entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot).isEmpty())
        return true;
    const QString shipped = ShippedDataFolder();
    if (shipped.isEmpty())
        return true;
    const QDir source(QDir(shipped).filePath(subfolder));
    if (!source.exists())
        return true;
    QDirIterator it(source.absolutePath(), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString from = it.next();
        const QString to = targetDir.filePath(source.relativeFilePath(from));
        if (!it.fileInfo().isReadable())
            continue; // a broken install's file; the others still serve
        if (QDir().mkpath(QFileInfo(to).absolutePath()) && CopySynced(from, to))
            continue;
        // A folder left half filled would never be filled again: empty it so that the
        // next start tries anew. Everything in it is ours, it was empty when we began.
        QDirIterator made(target, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        QStringList folders;
        while (made.hasNext()) {
            const QString path = made.next();
            if (made.fileInfo().isDir())
                folders << path;
            else
                QFile::remove(path);
        }
        std::sort(folders.begin(), folders.end(),
                  [](const QString& a, const QString& b) { return a.size() > b.size(); });
        for (const QString& folder : folders)
            QDir().rmdir(folder);
        if (!existed)
            QDir().rmdir(target);
        return false;
    }
    return true;
}

} // namespace AppPaths
