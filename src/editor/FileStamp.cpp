#include "FileStamp.h"

#include <QFile>
#include <QDateTime>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

FileStamp FileStamp::Of(const QString& path)
{
    FileStamp stamp;
#ifdef Q_OS_UNIX
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return stamp;
    stamp.m_size = qint64(info.st_size);
    stamp.m_seconds = qint64(info.st_mtim.tv_sec);
    stamp.m_nanoseconds = qint64(info.st_mtim.tv_nsec);
    stamp.m_device = quint64(info.st_dev);
    stamp.m_inode = quint64(info.st_ino);
#else
    const QFileInfo info(path);
    if (!info.exists())
        return stamp;
    stamp.m_size = info.size();
    const qint64 ms = info.lastModified().toMSecsSinceEpoch();
    stamp.m_seconds = ms / 1000;
    stamp.m_nanoseconds = (ms % 1000) * 1000000;
#endif
    stamp.m_valid = true;
    return stamp;
}

FileStamp::Change FileStamp::Compare(const QString& path) const
{
    if (!m_valid)
        return Change::None;
    const FileStamp now = Of(path);
    if (!now.m_valid)
        return Change::Deleted;
    return now == *this ? Change::None : Change::Modified;
}

FileStamp::Change FileStamp::Unasked(const QString& path, const FileStamp& declined, FileStamp& now) const
{
    const Change change = Compare(path);
    now = Of(path);
    if (change == Change::None || (declined.IsValid() && now == declined))
        return Change::None;
    return change;
}
