#pragma once

#include <QStringList>

// The most recently opened files, newest first, kept in the settings section
// "Recent File List" as "File1", "File2", ...
class RecentFileList
{
public:
    explicit RecentFileList(int size = 4);

    void Load();
    void Save() const;
    // Puts `path` first; the same file named twice stays once.
    void Add(const QString& path);
    void Remove(const QString& path);
    const QStringList& Files() const { return m_files; }

private:
    int m_size;
    QStringList m_files;
};
