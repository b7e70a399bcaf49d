#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QPersistentModelIndex>
#include <QTimer>

class CFileSysModel;

// Watches the folder of the selected item and refreshes it in the tree when names
// change there. Everything runs on the interface thread: changes only start a short
// timer, so a burst of them costs one refresh per interval.
class CFolderWatch : public QObject
{
    Q_OBJECT
public:
    explicit CFolderWatch(CFileSysModel& model, QObject* parent = nullptr);

    // The selection moved: watch the item's folder (the item itself when it is one).
    // A selection change made by the refresh itself does not move the watch.
    void OnSelectionChanged(const QModelIndex& current);
    // The folder being watched, empty when none.
    QString WatchedPath() const { return m_watchedPath; }
    QModelIndex WatchedItem() const { return m_watchItem; }
    bool IsRefreshing() const { return m_refreshing; }

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
    void Watch(const QString& path);

    CFileSysModel& m_model;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
    QPersistentModelIndex m_watchItem;
    QString m_watchedPath;
    bool m_refreshing = false;
};
