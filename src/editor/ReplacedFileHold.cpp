#include "ReplacedFileHold.h"

#include <QFile>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>
#include <thread>
#endif

ReplacedFileHold::ReplacedFileHold(const QString& path, qint64 minimumSize)
{
#ifdef Q_OS_UNIX
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0)
        return;
    struct stat info;
    if (::fstat(handle, &info) == 0 && S_ISREG(info.st_mode) && info.st_size >= minimumSize)
        m_handle = handle;
    else
        ::close(handle);
#else
    // Elsewhere an open file can't be replaced by a rename: nothing is held.
    Q_UNUSED(path);
    Q_UNUSED(minimumSize);
#endif
}

ReplacedFileHold::~ReplacedFileHold()
{
#ifdef Q_OS_UNIX
    if (m_handle < 0)
        return;
    const int handle = m_handle;
    try {
        std::thread([handle] { ::close(handle); }).detach();
    } catch (const std::system_error&) {
        // No thread to be had: the save pays for the freeing after all.
        ::close(handle);
    }
#endif
}
