#include "settings/AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace AppPaths {

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
    if (!targetDir.exists() && !QDir().mkpath(target))
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
    bool ok = true;
    while (it.hasNext()) {
        const QString from = it.next();
        const QString relative = source.relativeFilePath(from);
        const QString to = targetDir.filePath(relative);
        QDir().mkpath(QFileInfo(to).absolutePath());
        if (!QFile::exists(to) && !QFile::copy(from, to))
            ok = false;
    }
    return ok;
}

} // namespace AppPaths
