#pragma once

#include "usertools/COutputDecoder.h"

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTimer>

// Runs one tool at a time with its standard output and error merged, no shell in
// between, and hands its output on as decoded lines in batches, so that a tool
// printing a million lines costs the interface one update per batch, not per line.
class CToolRunner : public QObject
{
    Q_OBJECT
public:
    explicit CToolRunner(QObject* parent = nullptr);
    ~CToolRunner() override;

    // Starts `program`; false (and nothing started) while another tool runs. A start
    // that fails reports "Redirect console error: ..." through `message` and `finished`.
    bool Start(const QString& program, const QStringList& arguments, const QString& workingDirectory);
    bool IsRunning() const { return m_running; }
    // Asks the tool to end; one still running after the grace period is killed and
    // "The redir thread is dead" is written.
    void Stop();
    void SetStopGracePeriod(int milliseconds) { m_grace.setInterval(milliseconds); }
    // How long lines may wait before they are handed on.
    void SetBatchInterval(int milliseconds) { m_batchTimer.setInterval(milliseconds); }
    QString WorkingDirectory() const { return m_workingDirectory; }
    qint64 ProcessId() const { return m_process ? m_process->processId() : 0; }

    // The status text of an ending ("Exit code 0, 1.25 s").
    static QString EndText(QProcess::ExitStatus status, int exitCode, qint64 elapsedMs);
    // "Redirect console error: 2 (No such file or directory)"
    static QString StartErrorText(int code, const QString& reason);

Q_SIGNALS:
    void started(const QString& commandLine);
    void linesReady(const QStringList& lines);
    // The unfinished last line as it shows now (a progress counter); empty when none.
    void partialLine(const QString& text);
    // An error line of our own, not the tool's (a start that failed, a forced stop).
    void message(const QString& text);
    // How the run ended ("Exit code 0, 1.25 s"), just before `finished`.
    void summary(const QString& text);
    // `crashed` when the tool died by a signal or could not start; exitCode is then -1.
    void finished(int exitCode, bool crashed, qint64 elapsedMs);

private:
    void OnReadyRead();
    void OnFinished(int exitCode, QProcess::ExitStatus status);
    void OnErrorOccurred(QProcess::ProcessError error);
    void FlushBatch();
    void EndRun(int exitCode, bool crashed);

    static constexpr qsizetype ReadChunk = 256 * 1024;
    static constexpr qsizetype MaxBatchLines = 10000;
    QProcess* m_process = nullptr;
    QByteArray m_readBuffer;
    COutputDecoder m_decoder;
    QStringList m_batch;
    QString m_lastPartial;
    QTimer m_batchTimer;
    QTimer m_grace;
    QElapsedTimer m_clock;
    QString m_workingDirectory;
    bool m_running = false;
    bool m_killed = false;
};
