#include "fileexplorer/CFolderWatch.h"

#include "fileexplorer/CFileSysModel.h"

#include <QFileInfo>
#include <QPromise>
#include <QThreadPool>

CFolderWatch::CFolderWatch(CFileSysModel& model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(150);
    connect(&m_timer, &QTimer::timeout, this, &CFolderWatch::RefreshNow);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &CFolderWatch::OnDirectoryChanged);
    connect(&m_reading, &QFutureWatcher<Listing>::finished, this, &CFolderWatch::OnListingRead);
}

CFolderWatch::~CFolderWatch()
{
    m_reading.waitForFinished();
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
    if (m_reading.isRunning()) {
        m_reading.waitForFinished();
        OnListingRead();
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
    if (!m_watchItem.isValid() || m_watchedPath.isEmpty())
        return;
    if (m_reading.isRunning()) {
        m_again = true;
        return;
    }
    m_again = false;
    const QString path = m_watchedPath;
    const bool hidden = m_model.ShowHidden();
    auto promise = std::make_shared<QPromise<Listing>>();
    m_reading.setFuture(promise->future());
    promise->start();
    QThreadPool::globalInstance()->start([promise, path, hidden] {
        Listing listing;
        listing.path = path;
        listing.ok = CLocalDirectorySource().List(path, hidden, listing.entries, listing.reason);
        listing.gone = !listing.ok && !QFileInfo::exists(path);
        promise->addResult(std::move(listing));
        promise->finish();
    });
}

void CFolderWatch::OnListingRead()
{
    if (m_reading.future().resultCount() == 0)
        return;
    const Listing listing = m_reading.future().takeResult();
    m_reading.setFuture(QFuture<Listing>());
    // The watch may have moved on while the folder was read; then this is old news.
    if (listing.path == m_watchedPath && m_watchItem.isValid()) {
        m_refreshing = true;
        if (listing.ok) {
            m_model.Refresh(m_watchItem, listing.entries, false);
        } else if (listing.gone && m_watchItem.parent().isValid()) {
            // The folder itself went: its parent's listing takes it out of the tree.
            m_model.Refresh(m_watchItem.parent(), false);
        } else {
            m_model.ShowReadError(m_watchItem, listing.reason);
        }
        m_refreshing = false;
        // The watched folder itself may have gone (renamed or deleted from outside).
        if (!m_watchItem.isValid())
            Stop();
        Q_EMIT refreshed();
    }
    if (m_again && !m_timer.isActive())
        m_timer.start();
    m_again = false;
}
