#pragma once

#include "fileexplorer/DirectorySource.h"

#include <QFileSystemWatcher>
#include <QFutureWatcher>
#include <QObject>
#include <QPersistentModelIndex>
#include <QTimer>

class CFileSysModel;

// Watches the folder of the selected item and refreshes it in the tree when names
// change there. Changes only start a short timer, so a burst of them costs one
// refresh per interval. The folder is read on a pool thread, which touches nothing
// but the disk; the tree changes on the interface thread.
class CFolderWatch : public QObject
{
    Q_OBJECT
public:
    explicit CFolderWatch(CFileSysModel& model, QObject* parent = nullptr);
    ~CFolderWatch() override;

    // The selection moved: watch the item's folder (the item itself when it is one).
    // A selection change made by the refresh itself does not move the watch.
    void OnSelectionChanged(const QModelIndex& current);
    // The folder being watched, empty when none.
    QString WatchedPath() const { return m_watchedPath; }
    QModelIndex WatchedItem() const { return m_watchItem; }
    bool IsRefreshing() const { return m_refreshing; }
    // A listing of the watched folder is being read.
    bool IsReading() const { return m_reading.isRunning(); }

    // Time from the first change of a burst to its refresh.
    void SetInterval(int milliseconds) { m_timer.setInterval(milliseconds); }
    // Refreshes the watched folder now if a change is waiting.
    void Flush();
    void Stop();

Q_SIGNALS:
    void refreshed();

private:
    void OnDirectoryChanged();
    void RefreshNow();
    void OnListingRead();
    void Watch(const QString& path);

    struct Listing
    {
        QString path;
        bool ok = false;
        bool gone = false; // the folder itself no longer exists
        QString reason;    // why it could not be read
        std::vector<DirEntry> entries;
    };

    CFileSysModel& m_model;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
    QPersistentModelIndex m_watchItem;
    QString m_watchedPath;
    bool m_refreshing = false;
    bool m_again = false; // changes came while a listing was read
    QFutureWatcher<Listing> m_reading;
};
