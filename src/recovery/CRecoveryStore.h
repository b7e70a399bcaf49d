#pragma once

#include "RecoveryEntry.h"

#include <QByteArray>
#include <QList>
#include <QLockFile>
#include <QMutex>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <memory>

// The recovery folder of one running instance. Each instance writes into a folder of its
// own, held by a lock file, so a second instance never takes the files of a live one;
// folders whose owner has died are what the next start offers to recover.
//
// Writes go through one worker thread in the order they were asked for; the caller hands
// over a copy of the text and never waits.
class CRecoveryStore
{
public:
    // `root` is the recovery folder (`<AppDataLocation>/recovery`).
    explicit CRecoveryStore(const QString& root);
    ~CRecoveryStore();
    CRecoveryStore(const CRecoveryStore&) = delete;
    CRecoveryStore& operator=(const CRecoveryStore&) = delete;

    // Makes and locks this instance's folder; false when the folder cannot be made.
    bool Claim();
    QString InstanceFolder() const { return m_folder; }
    QString Root() const { return m_root; }

    // Queues a write of `utf8` with its description; returns at once.
    void Write(const RecoveryEntry& entry, QByteArray utf8);
    // Queues the removal of a document's files.
    void Remove(const QString& id);
    // Waits for every queued write and removal.
    void Flush();
    // A clean end: waits, then removes this instance's folder and its lock.
    void ReleaseClean();

    // Entries left by instances that are no longer running. Entries that cannot be read
    // are left out and described in `notes`.
    QList<RecoveryEntry> ListOrphans(QStringList* notes = nullptr) const;
    // Removes an orphaned entry's files, and its folder once nothing is left in it.
    static void Discard(const RecoveryEntry& entry);

    // The synchronous write used by the worker: text first under a fresh name, then the
    // description that names it, then the old text. A crash at any point leaves a
    // consistent pair. Returns false on a write error.
    static bool WriteNow(const QString& folder, const RecoveryEntry& entry, const QByteArray& utf8,
                         QString* error = nullptr);
    static void RemoveNow(const QString& folder, const QString& id);
    // Reads the entries of one folder; see ListOrphans for `notes`.
    static QList<RecoveryEntry> ReadFolder(const QString& folder, QStringList* notes);

private:
    QString m_root;
    QString m_folder;
    std::unique_ptr<QLockFile> m_lock;
    QThreadPool m_pool;
};
