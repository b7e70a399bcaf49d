#include "ReadableFile.h"

#include <QCoreApplication>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ReadableFile {

namespace {

#ifdef Q_OS_UNIX
QString SystemReason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

QString KindReason(mode_t mode)
{
    if (S_ISDIR(mode))
        return QCoreApplication::translate("ReadableFile", "Is a directory");
    if (S_ISFIFO(mode))
        return QCoreApplication::translate("ReadableFile", "Is a named pipe, not a file");
    if (S_ISSOCK(mode))
        return QCoreApplication::translate("ReadableFile", "Is a socket, not a file");
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return QCoreApplication::translate("ReadableFile", "Is a device, not a file");
    if (!S_ISREG(mode))
        return QCoreApplication::translate("ReadableFile", "Is not a regular file");
    return QString();
}
#endif

} // namespace

QString RefusalReason(const QString& path)
{
#ifdef Q_OS_UNIX
    struct stat info;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return SystemReason(errno);
    return KindReason(info.st_mode);
#else
    const QFileInfo info(path);
    if (!info.exists())
        return QCoreApplication::translate("ReadableFile", "No such file or directory");
    if (info.isDir())
        return QCoreApplication::translate("ReadableFile", "Is a directory");
    return QString();
#endif
}

bool Open(QFile& file, const QString& path, QString* error)
{
    file.close();
#ifdef Q_OS_UNIX
    // The kind is read through a non-blocking handle, which a pipe can't hold up; the
    // file is then opened by name so that it keeps its name for later questions.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        if (error)
            *error = SystemReason(errno);
        return false;
    }
    struct stat info;
    const QString refusal = ::fstat(fd, &info) != 0 ? SystemReason(errno) : KindReason(info.st_mode);
    ::close(fd);
    if (!refusal.isEmpty()) {
        if (error)
            *error = refusal;
        return false;
    }
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
#else
    file.setFileName(path);
    if (QFileInfo(path).isDir()) {
        if (error)
            *error = QCoreApplication::translate("ReadableFile", "Is a directory");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
#endif
}

} // namespace ReadableFile
