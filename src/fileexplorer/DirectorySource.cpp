#include "fileexplorer/DirectorySource.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cerrno>

#ifdef Q_OS_UNIX
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#endif

namespace {

bool IsDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

} // namespace

#ifdef Q_OS_UNIX

// readdir gives the entry's type without a stat for most file systems; only links and
// file systems that leave the type unknown cost a stat, to tell folders from files.
bool CLocalDirectorySource::List(const QString& path, bool hidden, std::vector<DirEntry>& entries, QString& reason)
{
    entries.clear();
    reason.clear();
    const QByteArray native = QFile::encodeName(path);
    DIR* dir = opendir(native.constData());
    if (!dir) {
        reason = qt_error_string(errno);
        return false;
    }
    const int fd = dirfd(dir);
    entries.reserve(256);
    // readdir tells its end from an error (a failing disk, a folder removed under us on
    // some file systems) only through errno.
    errno = 0;
    while (const dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (IsDotOrDotDot(name) || (!hidden && name[0] == '.'))
            continue;
        DirEntry out;
        // File names are UTF-8 here; this is much quicker than the locale's decoder.
        out.name = QString::fromUtf8(name);
        unsigned char type = entry->d_type;
        if (type == DT_LNK || type == DT_UNKNOWN) {
            out.link = type == DT_LNK;
            struct stat st;
            // A link shows what it points to; a dangling one shows as a file.
            if (fstatat(fd, name, &st, 0) == 0)
                out.folder = S_ISDIR(st.st_mode);
            if (type == DT_UNKNOWN) {
                struct stat lst;
                if (fstatat(fd, name, &lst, AT_SYMLINK_NOFOLLOW) == 0)
                    out.link = S_ISLNK(lst.st_mode);
            }
        } else {
            out.folder = type == DT_DIR;
        }
        entries.push_back(std::move(out));
        errno = 0;
    }
    const int error = errno;
    closedir(dir);
    if (error != 0) {
        entries.clear();
        reason = qt_error_string(error);
        return false;
    }
    return true;
}

bool CLocalDirectorySource::HasContent(const QString& path, bool hidden)
{
    const QByteArray native = QFile::encodeName(path);
    DIR* dir = opendir(native.constData());
    if (!dir)
        return errno != ENOENT && errno != ENOTDIR;
    bool found = false;
    while (const dirent* entry = readdir(dir)) {
        const char* name = entry->d_name;
        if (IsDotOrDotDot(name) || (!hidden && name[0] == '.'))
            continue;
        found = true;
        break;
    }
    closedir(dir);
    return found;
}

#else

bool CLocalDirectorySource::List(const QString& path, bool hidden, std::vector<DirEntry>& entries, QString& reason)
{
    entries.clear();
    reason.clear();
    const QFileInfo folder(path);
    if (!folder.isDir() || !folder.isReadable()) {
        reason = !folder.exists() ? qt_error_string(ENOENT) : qt_error_string(EACCES);
        return false;
    }
    QDir::Filters filters = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System;
    if (hidden)
        filters |= QDir::Hidden;
    QDirIterator it(path, filters);
    while (it.hasNext()) {
        it.next();
        const QFileInfo info = it.fileInfo();
        entries.push_back({info.fileName(), info.isDir(), info.isSymLink()});
    }
    return true;
}

bool CLocalDirectorySource::HasContent(const QString& path, bool hidden)
{
    const QFileInfo folder(path);
    if (folder.isDir() && !folder.isReadable())
        return true;
    QDir::Filters filters = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System;
    if (hidden)
        filters |= QDir::Hidden;
    return QDirIterator(path, filters).hasNext();
}

#endif
