#pragma once

#include "FindInFilesTypes.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <memory>

// Runs find in files off the interface thread: one thread lists the files, one per core
// searches them. Matches are gathered and handed to the owner's thread in batches a few
// times a second, so a search with many results doesn't flood the event loop. Make it on
// a thread with an event loop (the interface thread); its signals arrive there.
class CFindInFilesEngine : public QObject
{
    Q_OBJECT
public:
    explicit CFindInFilesEngine(QObject* parent = nullptr);
    ~CFindInFilesEngine() override;

    // Starts a search, stopping any running one first. Returns false, with no signal,
    // when the options can't be searched (no text, no such folder, a broken regular
    // expression); errorString() then says why.
    bool start(const FindInFilesOptions& options);
    // Asks the running search to stop; finished() follows with `cancelled` set.
    void cancel();
    bool isRunning() const;
    QString errorString() const { return m_error; }

    // Threads that search files; at least one.
    static int searchThreadCount();

signals:
    void matchesFound(const QList<FindInFilesMatch>& batch);
    void progress(qint64 filesSearched, qint64 filesMatched);
    void finished(const FindInFilesSummary& summary);

private:
    struct Job;
    void deliver();
    void onJobDone(quint64 generation);
    void stopJob();

    std::shared_ptr<Job> m_job;
    quint64 m_generation = 0;
    QTimer m_deliveryTimer;
    QElapsedTimer m_clock;
    QString m_error;
};
