#include "FileWalker.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cstring>
#include <vector>

#ifdef Q_OS_UNIX
#include <dirent.h>
#include <sys/stat.h>
#endif

namespace {

bool IsToolFolder(const char* name)
{
    return std::strcmp(name, ".git") == 0 || std::strcmp(name, ".hg") == 0
        || std::strcmp(name, ".svn") == 0;
}

} // namespace

FileWalker::FileWalker(const QString& folder, bool subFolders, FilePatternList patterns)
    : m_root(QFile::encodeName(QDir::cleanPath(folder)))
    , m_subFolders(subFolders)
    , m_patterns(std::move(patterns))
{
}

bool FileWalker::Walk(const Visitor& visit, const std::atomic<bool>& stop) const
{
#ifdef Q_OS_UNIX
    // readdir with the entry's type saves a stat per file over QDirIterator.
    std::vector<QByteArray> pending{m_root};
    while (!pending.empty()) {
        if (stop.load(std::memory_order_relaxed))
            return false;
        const QByteArray folder = pending.back();
        pending.pop_back();
        DIR* dir = ::opendir(folder.constData());
        if (!dir)
            continue;
        std::vector<QByteArray> subFolders;
        QByteArray prefix = folder;
        if (!prefix.endsWith('/'))
            prefix += '/';
        while (const dirent* entry = ::readdir(dir)) {
            const char* name = entry->d_name;
            if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
                continue;
            bool isFile = entry->d_type == DT_REG;
            bool isFolder = entry->d_type == DT_DIR;
            if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
                const QByteArray path = prefix + name;
                struct stat info;
                if (entry->d_type == DT_LNK) {
                    isFile = ::stat(path.constData(), &info) == 0 && S_ISREG(info.st_mode);
                } else if (::lstat(path.constData(), &info) == 0) {
                    isFile = S_ISREG(info.st_mode);
                    isFolder = S_ISDIR(info.st_mode);
                }
            }
            if (isFolder) {
                if (m_subFolders && !IsToolFolder(name))
                    subFolders.push_back(prefix + name);
            } else if (isFile && m_patterns.Matches(name, std::strlen(name))) {
                if (!visit(prefix + name)) {
                    ::closedir(dir);
                    return false;
                }
            }
        }
        ::closedir(dir);
        // Depth first, in the order the folders were listed.
        pending.insert(pending.end(), subFolders.rbegin(), subFolders.rend());
    }
    return true;
#else
    QDirIterator::IteratorFlags flags = QDirIterator::NoIteratorFlags;
    if (m_subFolders)
        flags |= QDirIterator::Subdirectories;
    QDirIterator it(QFile::decodeName(m_root), QDir::Files | QDir::Hidden | QDir::System, flags);
    while (it.hasNext()) {
        if (stop.load(std::memory_order_relaxed))
            return false;
        const QString path = it.next();
        const QString relative = path.mid(QFile::decodeName(m_root).size());
        if (relative.contains(QLatin1String("/.git/")) || relative.contains(QLatin1String("/.hg/"))
            || relative.contains(QLatin1String("/.svn/")))
            continue;
        if (m_patterns.Matches(it.fileName()) && !visit(QFile::encodeName(path)))
            return false;
    }
    return true;
#endif
}
