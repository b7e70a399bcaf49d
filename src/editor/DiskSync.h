#pragma once

#include <QString>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <unistd.h>
#endif

// Puts a written file's bytes on the disk before it replaces the old one. QSaveFile syncs
// too but ignores a failure, and a failed sync means the bytes may never arrive: renaming
// such a file over the old one would lose both. False, with the system's reason, when
// the disk refused.
inline bool SyncToDisk(int handle, QString* error)
{
#ifdef Q_OS_UNIX
    if (handle < 0)
        return true;
    int result;
    do {
        result = ::fsync(handle);
    } while (result != 0 && errno == EINTR);
    // Pipes and some devices can't be synced; there is nothing to lose there.
    if (result != 0 && errno != EINVAL && errno != EROFS && errno != ENOTSUP) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
#else
    Q_UNUSED(handle);
    Q_UNUSED(error);
#endif
    return true;
}
