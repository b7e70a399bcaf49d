#include "fileexplorer/CFileSysIcons.h"

#include <QDir>
#include <QFileInfo>

QIcon CFileSysIcons::Folder()
{
    if (m_folder.isNull())
        m_folder = m_provider.icon(QAbstractFileIconProvider::Folder);
    return m_folder;
}

QIcon CFileSysIcons::File(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    const QString suffix = dot > 0 ? name.mid(dot + 1).toLower() : QString();
    auto it = m_bySuffix.constFind(suffix);
    if (it != m_bySuffix.constEnd())
        return *it;
    QIcon icon;
    if (!suffix.isEmpty()) {
        const QMimeType mime = m_mimes.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
        if (mime.isValid() && !mime.isDefault()) {
            icon = QIcon::fromTheme(mime.iconName());
            if (icon.isNull())
                icon = QIcon::fromTheme(mime.genericIconName());
        }
    }
    if (icon.isNull())
        icon = m_provider.icon(QAbstractFileIconProvider::File);
    m_bySuffix.insert(suffix, icon);
    return icon;
}

QIcon CFileSysIcons::TopLevel(const QString& path)
{
    QIcon icon;
    if (QDir::cleanPath(path) == QDir::cleanPath(QDir::homePath()))
        icon = QIcon::fromTheme(QStringLiteral("user-home"));
    else if (QDir(path).isRoot())
        icon = QIcon::fromTheme(QStringLiteral("drive-harddisk"), m_provider.icon(QAbstractFileIconProvider::Drive));
    else
        icon = QIcon::fromTheme(QStringLiteral("drive-removable-media"),
                                m_provider.icon(QAbstractFileIconProvider::Drive));
    return icon.isNull() ? Folder() : icon;
}
