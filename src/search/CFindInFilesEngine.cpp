#include "CFindInFilesEngine.h"

#include "FilePatternList.h"
#include "FileSearcher.h"
#include "FileWalker.h"
#include "SearchQuery.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

struct CFindInFilesEngine::Job
{
    FindInFilesOptions options;
    SearchQuery query;
    AnsiCodePage codePage;

    std::atomic<bool> stop{false};
    std::atomic<bool> cancelled{false};
    std::atomic<bool> truncated{false};
    std::atomic<qint64> filesSearched{0};
    std::atomic<qint64> filesMatched{0};
    std::atomic<qint64> filesBinary{0};
    std::atomic<qint64> filesUnreadable{0};
    std::atomic<qint64> matches{0};

    // Paths from the walker to the searchers.
    std::mutex queueMutex;
    std::condition_variable queueReady;
    std::deque<QByteArray> queue;
    bool walkDone = false;

    // Matches waiting for the interface thread.
    std::mutex outboxMutex;
    QList<FindInFilesMatch> outbox;

    std::atomic<int> runningThreads{0};
    std::vector<std::thread> threads;

    void Join()
    {
        for (std::thread& thread : threads) {
            if (thread.joinable())
                thread.join();
        }
    }
};

CFindInFilesEngine::CFindInFilesEngine(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<FindInFilesMatch>();
    qRegisterMetaType<FindInFilesSummary>();
    m_deliveryTimer.setInterval(50);
    connect(&m_deliveryTimer, &QTimer::timeout, this, &CFindInFilesEngine::deliver);
}

CFindInFilesEngine::~CFindInFilesEngine()
{
    stopJob();
}

int CFindInFilesEngine::searchThreadCount()
{
    return std::max(1, QThread::idealThreadCount());
}

bool CFindInFilesEngine::isRunning() const
{
    return m_job != nullptr;
}

void CFindInFilesEngine::stopJob()
{
    if (!m_job)
        return;
    m_job->stop = true;
    {
        std::lock_guard<std::mutex> lock(m_job->queueMutex);
        m_job->queueReady.notify_all();
    }
    m_job->Join();
    m_job.reset();
    m_deliveryTimer.stop();
}

void CFindInFilesEngine::cancel()
{
    if (!m_job)
        return;
    m_job->cancelled = true;
    m_job->stop = true;
    std::lock_guard<std::mutex> lock(m_job->queueMutex);
    m_job->queueReady.notify_all();
}

bool CFindInFilesEngine::start(const FindInFilesOptions& options)
{
    stopJob();
    ++m_generation;
    m_error.clear();

    SearchQuery query(options.text, options.matchCase, options.matchWord, options.regExp);
    if (!query.IsValid()) {
        m_error = query.ErrorString();
        return false;
    }
    const QFileInfo folder(options.folder);
    if (options.folder.isEmpty() || !folder.isDir()) {
        m_error = tr("The folder \"%1\" does not exist.").arg(QDir::toNativeSeparators(options.folder));
        return false;
    }

    auto job = std::make_shared<Job>();
    job->options = options;
    job->query = std::move(query);
    job->codePage = AnsiCodePage(options.ansiCodePage);
    m_job = job;
    m_clock.start();

    const quint64 generation = m_generation;
    const int searchers = searchThreadCount();
    job->runningThreads = searchers + 1;

    // The last thread to end tells the interface thread.
    auto threadDone = [this, job, generation] {
        if (job->runningThreads.fetch_sub(1) == 1)
            QMetaObject::invokeMethod(this, [this, generation] { onJobDone(generation); },
                                      Qt::QueuedConnection);
    };

    job->threads.emplace_back([job, threadDone] {
        FileWalker walker(job->options.folder, job->options.subFolders,
                          FilePatternList(job->options.patterns));
        std::vector<QByteArray> batch;
        auto flush = [&] {
            std::lock_guard<std::mutex> lock(job->queueMutex);
            for (QByteArray& path : batch)
                job->queue.push_back(std::move(path));
            batch.clear();
            job->queueReady.notify_all();
        };
        walker.Walk([&](QByteArray path) {
            batch.push_back(std::move(path));
            if (batch.size() >= 64)
                flush();
            return true;
        }, job->stop);
        flush();
        {
            std::lock_guard<std::mutex> lock(job->queueMutex);
            job->walkDone = true;
            job->queueReady.notify_all();
        }
        threadDone();
    });

    for (int i = 0; i < searchers; ++i) {
        job->threads.emplace_back([job, threadDone] {
            FileSearcher searcher(job->query, job->options.tabWidth, job->codePage);
            QList<FindInFilesMatch> found;
            std::vector<QByteArray> paths;
            for (;;) {
                {
                    std::unique_lock<std::mutex> lock(job->queueMutex);
                    job->queueReady.wait(lock, [&] {
                        return job->stop || job->walkDone || !job->queue.empty();
                    });
                    if (job->stop || job->queue.empty())
                        break;
                    // A few at a time: less locking, still spread over the threads.
                    const std::size_t take = std::min<std::size_t>(8, job->queue.size());
                    for (std::size_t k = 0; k < take; ++k) {
                        paths.push_back(std::move(job->queue.front()));
                        job->queue.pop_front();
                    }
                }
                for (const QByteArray& path : paths) {
                    const qint64 left = job->options.maxMatches - job->matches.load();
                    if (left <= 0) {
                        job->truncated = true;
                        job->stop = true;
                        break;
                    }
                    found.clear();
                    const auto outcome = searcher.Search(path, found, job->stop, left);
                    switch (outcome) {
                    case FileSearcher::Outcome::Binary: ++job->filesBinary; break;
                    case FileSearcher::Outcome::Unreadable: ++job->filesUnreadable; break;
                    case FileSearcher::Outcome::Stopped: break;
                    case FileSearcher::Outcome::LimitReached:
                        job->truncated = true;
                        job->stop = true;
                        [[fallthrough]];
                    case FileSearcher::Outcome::Searched: ++job->filesSearched; break;
                    }
                    if (!found.isEmpty()) {
                        ++job->filesMatched;
                        job->matches += found.size();
                        std::lock_guard<std::mutex> lock(job->outboxMutex);
                        job->outbox.append(std::move(found));
                        found = QList<FindInFilesMatch>();
                    }
                    if (job->stop)
                        break;
                }
                paths.clear();
                if (job->stop)
                    break;
            }
            threadDone();
        });
    }
    m_deliveryTimer.start();
    return true;
}

void CFindInFilesEngine::deliver()
{
    if (!m_job)
        return;
    QList<FindInFilesMatch> batch;
    {
        std::lock_guard<std::mutex> lock(m_job->outboxMutex);
        batch.swap(m_job->outbox);
    }
    if (!batch.isEmpty())
        emit matchesFound(batch);
    if (m_job)
        emit progress(m_job->filesSearched.load(), m_job->filesMatched.load());
}

void CFindInFilesEngine::onJobDone(quint64 generation)
{
    if (generation != m_generation || !m_job)
        return;
    m_job->Join();
    deliver();
    if (generation != m_generation || !m_job)
        return; // a slot started another search
    FindInFilesSummary summary;
    summary.matches = m_job->matches.load();
    summary.filesSearched = m_job->filesSearched.load();
    summary.filesMatched = m_job->filesMatched.load();
    summary.filesBinary = m_job->filesBinary.load();
    summary.filesUnreadable = m_job->filesUnreadable.load();
    summary.cancelled = m_job->cancelled.load();
    summary.truncated = m_job->truncated.load();
    summary.elapsedMs = m_clock.elapsed();
    m_job.reset();
    m_deliveryTimer.stop();
    emit finished(summary);
}
