#include "fileexplorer/CFolderWatch.h"

#include "fileexplorer/CFileSysModel.h"

CFolderWatch::CFolderWatch(CFileSysModel& model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(150);
    connect(&m_timer, &QTimer::timeout, this, &CFolderWatch::RefreshNow);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &CFolderWatch::OnDirectoryChanged);
}

void CFolderWatch::OnSelectionChanged(const QModelIndex& current)
{
    const QModelIndex folder = m_model.FolderOf(current);
    if (m_refreshing)
        return;
    m_watchItem = folder;
    Watch(m_model.Path(folder));
}

void CFolderWatch::Watch(const QString& path)
{
    if (path == m_watchedPath && !path.isEmpty() && m_watcher.directories().contains(path))
        return;
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    m_timer.stop();
    m_watchedPath.clear();
    if (!path.isEmpty() && m_watcher.addPath(path))
        m_watchedPath = path;
}

void CFolderWatch::OnDirectoryChanged()
{
    // The first change of a burst starts the timer; the rest wait for the same refresh.
    if (!m_timer.isActive())
        m_timer.start();
}

void CFolderWatch::Flush()
{
    if (m_timer.isActive()) {
        m_timer.stop();
        RefreshNow();
    }
}

void CFolderWatch::Stop()
{
    m_timer.stop();
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    m_watchedPath.clear();
    m_watchItem = QPersistentModelIndex();
}

void CFolderWatch::RefreshNow()
{
    if (!m_watchItem.isValid())
        return;
    m_refreshing = true;
    m_model.Refresh(m_watchItem, false);
    m_refreshing = false;
    // The watched folder itself may have gone (renamed or deleted from outside).
    if (!m_watchItem.isValid())
        Stop();
    Q_EMIT refreshed();
}
