#pragma once

#include <QFileIconProvider>
#include <QHash>
#include <QIcon>
#include <QMimeDatabase>

// The desktop's icons for the file tree. A file's icon goes by its name only (never by
// reading it), and is kept per extension, so a folder of many files costs a handful of
// look-ups, and those only for the rows on screen.
class CFileSysIcons
{
public:
    QIcon Folder();
    QIcon File(const QString& name);
    // A top-level item: the home folder, the root, or a volume.
    QIcon TopLevel(const QString& path);

private:
    QFileIconProvider m_provider;
    QMimeDatabase m_mimes;
    QHash<QString, QIcon> m_bySuffix;
    QIcon m_folder;
};
