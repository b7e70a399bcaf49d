#include "settings/RecentFileList.h"

#include "settings/CRegistryStore.h"

#include <QDir>
#include <QFileInfo>

namespace {
const QString kSection = QStringLiteral("Recent File List");

QString Canonical(const QString& path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : canonical;
}
} // namespace

RecentFileList::RecentFileList(int size)
    : m_size(size)
{
}

void RecentFileList::Load()
{
    m_files.clear();
    CRegistryStore store;
    for (int i = 1; i <= m_size; ++i) {
        const QString path = store.GetProfileString(kSection, QStringLiteral("File%1").arg(i));
        if (!path.isEmpty())
            m_files << path;
    }
}

void RecentFileList::Save() const
{
    CRegistryStore store;
    for (int i = 1; i <= m_size; ++i) {
        const QString name = QStringLiteral("File%1").arg(i);
        if (i <= m_files.size())
            store.WriteProfileString(kSection, name, m_files.at(i - 1));
        else
            store.DeleteValue(kSection, name);
    }
}

void RecentFileList::Add(const QString& path)
{
    if (path.isEmpty())
        return;
    const QString full = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    Remove(full);
    m_files.prepend(full);
    while (m_files.size() > m_size)
        m_files.removeLast();
}

void RecentFileList::Remove(const QString& path)
{
    const QString key = Canonical(path);
    m_files.removeIf([&key](const QString& f) { return Canonical(f) == key; });
}
