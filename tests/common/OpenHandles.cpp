#include "OpenHandles.h"

#include <QDir>
#include <QFile>
#include <QThread>

#ifdef Q_OS_LINUX
#include <unistd.h>
#endif

namespace TestSupport {

int OpenHandlesTo(const QString& path, Handles which)
{
    int count = 0;
#ifdef Q_OS_LINUX
    const QByteArray name = QFile::encodeName(path);
    const QByteArray replaced = name + " (deleted)";
    const auto entries = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System);
    for (const QString& entry : entries) {
        char target[4096];
        const QByteArray link = QFile::encodeName(QStringLiteral("/proc/self/fd/") + entry);
        const ssize_t n = ::readlink(link.constData(), target, sizeof target - 1);
        if (n <= 0)
            continue;
        const QByteArray points(target, int(n));
        if (points == replaced || (which == Handles::Any && points == name))
            ++count;
    }
#else
    Q_UNUSED(path);
    Q_UNUSED(which);
#endif
    return count;
}

bool HandlesGoneWithin(const QString& path, Handles which, int milliseconds)
{
    for (int waited = 0; waited <= milliseconds; waited += 10) {
        if (OpenHandlesTo(path, which) == 0)
            return true;
        QThread::msleep(10);
    }
    return false;
}

} // namespace TestSupport
