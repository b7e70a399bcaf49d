#pragma once

#include "FilePatternList.h"

#include <QByteArray>
#include <QString>
#include <atomic>
#include <functional>

// Lists the files of a folder whose names fit the patterns, optionally in all its
// subfolders. Links to folders are not followed (no loops); links to files are. The
// folders of version control systems (.git, .hg, .svn) are passed over: their contents
// are the tool's, not the user's. Folders that can't be read are passed over silently.
class FileWalker
{
public:
    // Paths come in the file system's own encoding. Return false to stop the walk.
    using Visitor = std::function<bool(QByteArray path)>;

    FileWalker(const QString& folder, bool subFolders, FilePatternList patterns);

    // Returns false when stopped by the visitor or by `stop`.
    bool Walk(const Visitor& visit, const std::atomic<bool>& stop) const;

private:
    QByteArray m_root;
    bool m_subFolders;
    FilePatternList m_patterns;
};
