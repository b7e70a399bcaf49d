#pragma once

#include <QFile>
#include <QString>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

// The owner and group of a file that a save replaces by renaming a new file over it. The
// new file is ours; giving it back to its owner keeps a file edited by an administrator
// (or shared through a group) as it was. Where the system refuses, the save goes on:
// the content matters more.
class FileOwner
{
public:
    // Remembers the owner of `path` when it is an existing file.
    void Remember(const QString& path)
    {
#ifdef Q_OS_UNIX
        struct stat info;
        m_known = ::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISREG(info.st_mode);
        if (m_known) {
            m_user = info.st_uid;
            m_group = info.st_gid;
        }
#else
        Q_UNUSED(path);
#endif
    }

    // Gives the file open at `handle` the remembered owner, where it differs.
    void Apply(int handle) const
    {
#ifdef Q_OS_UNIX
        struct stat info;
        if (!m_known || handle < 0 || ::fstat(handle, &info) != 0)
            return;
        if (info.st_uid != m_user || info.st_gid != m_group) {
            if (::fchown(handle, m_user, m_group) != 0)
                (void)::fchown(handle, uid_t(-1), m_group); // the group alone, if we may
        }
#else
        Q_UNUSED(handle);
#endif
    }

private:
    bool m_known = false;
#ifdef Q_OS_UNIX
    uid_t m_user = 0;
    gid_t m_group = 0;
#endif
};
