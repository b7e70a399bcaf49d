#pragma once

#include <QSaveFile>
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

// Finishes a QSaveFile: its bytes flushed and synced to the disk, then renamed over the
// old file. On any failure the old file is left as it was and `error` (when given) holds
// the reason.
inline bool CommitToDisk(QSaveFile& file, QString* error)
{
    if (!file.flush()) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    if (!SyncToDisk(file.handle(), error)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}
