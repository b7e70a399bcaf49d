#include "FileProperties.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString FileProperties::Unknown()
{
    return QStringLiteral("Unknown");
}

QString FileProperties::MonthName(int month)
{
    static const char* const names[] = {"January", "February", "March", "April", "May", "June", "July",
                                        "August", "September", "October", "November", "December"};
    return month >= 1 && month <= 12 ? QString::fromLatin1(names[month - 1]) : QString();
}

QString FileProperties::FormatDate(const QDateTime& when)
{
    if (!when.isValid())
        return Unknown();
    const QDateTime local = when.toLocalTime();
    const QDate date = local.date();
    const QTime time = local.time();
    return QStringLiteral("%1 %2 %3, %4:%5:%6")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(MonthName(date.month()))
        .arg(date.year())
        .arg(time.hour(), 2, 10, QLatin1Char('0'))
        .arg(time.minute(), 2, 10, QLatin1Char('0'))
        .arg(time.second(), 2, 10, QLatin1Char('0'));
}

QString FileProperties::FormatSize(qint64 bytes)
{
    return QStringLiteral("%1 (bytes)").arg(bytes, 2, 10, QLatin1Char('0'));
}

FileProperties FileProperties::Read(const QString& path)
{
    FileProperties p;
    p.name = p.location = p.size = p.created = p.modified = p.accessed = Unknown();
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return p;
    p.exists = true;
    p.name = info.fileName();
    p.location = QDir::toNativeSeparators(info.absolutePath());
    p.size = FormatSize(info.size());
    // Not every file system keeps a birth time.
    p.created = FormatDate(info.birthTime());
    p.modified = FormatDate(info.lastModified());
    p.accessed = FormatDate(info.lastRead());
    p.readOnly = !(info.permissions() & QFileDevice::WriteOwner);
    p.hidden = info.fileName().startsWith(QLatin1Char('.'));
    return p;
}

bool FileProperties::SetReadOnly(const QString& path, bool readOnly)
{
    QFile::Permissions permissions = QFile::permissions(path);
    if (readOnly)
        permissions &= ~QFileDevice::Permissions(QFileDevice::WriteOwner | QFileDevice::WriteUser);
    else
        permissions |= QFileDevice::WriteOwner | QFileDevice::WriteUser;
    return QFile::setPermissions(path, permissions);
}
