#include "usertools/CToolRunner.h"

#include "usertools/ToolCommandLine.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>

#ifdef Q_OS_UNIX
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

// The errno whose text ends QProcess's reason ("execve: No such file or directory").
int ErrnoOf(const QString& reason)
{
    for (int code = 1; code < 256; ++code) {
        const QString text = QString::fromLocal8Bit(std::strerror(code));
        if (!text.isEmpty() && reason.endsWith(text))
            return code;
    }
    return 0;
}

QString SignalName(int signal)
{
#ifdef Q_OS_UNIX
    if (const char* name = strsignal(signal))
        return QString::fromLocal8Bit(name);
#endif
    return QString();
}

} // namespace

CToolRunner::CToolRunner(QObject* parent)
    : QObject(parent)
{
    m_batchTimer.setSingleShot(true);
    m_batchTimer.setInterval(40);
    connect(&m_batchTimer, &QTimer::timeout, this, &CToolRunner::FlushBatch);
    m_grace.setSingleShot(true);
    m_grace.setInterval(5000);
    connect(&m_grace, &QTimer::timeout, this, [this] {
        if (!m_running || !m_process)
            return;
        Q_EMIT message(tr("The redir thread is dead"));
#ifdef Q_OS_UNIX
        if (m_process->processId() > 0)
            ::kill(-pid_t(m_process->processId()), SIGKILL);
#endif
        m_process->kill();
    });
}

CToolRunner::~CToolRunner()
{
    if (m_process) {
        m_process->disconnect(this);
#ifdef Q_OS_UNIX
        if (m_running && m_process->processId() > 0)
            ::kill(-pid_t(m_process->processId()), SIGKILL);
#endif
        m_process->kill();
        m_process->waitForFinished(1000);
    }
}

QString CToolRunner::StartErrorText(int code, const QString& reason)
{
    return tr("Redirect console error: %1 (%2)").arg(QString::number(code, 16), reason);
}

QString CToolRunner::EndText(QProcess::ExitStatus status, int exitCode, qint64 elapsedMs)
{
    const QString seconds = QString::number(double(elapsedMs) / 1000.0, 'f', 2);
    if (status == QProcess::CrashExit) {
        const QString name = SignalName(exitCode);
        return name.isEmpty() ? tr("Ended by signal %1 after %2 s").arg(exitCode).arg(seconds)
                              : tr("Ended by signal %1 (%2) after %3 s").arg(exitCode).arg(name, seconds);
    }
    return tr("Exit code %1, %2 s").arg(exitCode).arg(seconds);
}

bool CToolRunner::Start(const QString& program, const QStringList& arguments,
                        const QString& workingDirectory)
{
    if (m_running)
        return false;
    m_running = true;
    m_killed = false;
    m_decoder.Reset();
    m_batch.clear();
    m_lastPartial.clear();
    m_workingDirectory = workingDirectory.isEmpty() ? QDir::currentPath() : workingDirectory;
    m_clock.start();

    // The last run's process may be the one whose signal brought us here.
    if (m_process) {
        m_process->disconnect(this);
        m_process->deleteLater();
    }
    m_process = new QProcess(this);
    m_process->setProcessChannelMode(QProcess::MergedChannels);
    // The tool reads nothing from us: a tool that waits for input sees its end at once.
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setWorkingDirectory(m_workingDirectory);
#ifdef Q_OS_UNIX
    // Its own process group, so that Stop reaches what the tool started (make's compilers).
    // A larger pipe lets a fast tool write on while the interface is busy painting.
    m_process->setChildProcessModifier([] {
        ::setpgid(0, 0);
#ifdef F_SETPIPE_SZ
        ::fcntl(STDOUT_FILENO, F_SETPIPE_SZ, 256 * 1024);
#endif
    });
#endif
    connect(m_process, &QProcess::readyReadStandardOutput, this, &CToolRunner::OnReadyRead);
    connect(m_process, &QProcess::finished, this, &CToolRunner::OnFinished);
    connect(m_process, &QProcess::errorOccurred, this, &CToolRunner::OnErrorOccurred);

    // A relative path with a folder in it means the tool's folder, not ours.
    QString resolved = program;
    if (program.contains(QLatin1Char('/')) && QFileInfo(program).isRelative())
        resolved = QDir(m_workingDirectory).absoluteFilePath(program);

    Q_EMIT started(ToolCommandLine::Describe(program, arguments));
    if (!QFileInfo(m_workingDirectory).isDir()) {
        Q_EMIT message(StartErrorText(ENOENT, QString::fromLocal8Bit(std::strerror(ENOENT)))
                       + QStringLiteral(": ") + m_workingDirectory);
        EndRun(-1, true);
        return true;
    }
    m_process->start(resolved, arguments, QIODevice::ReadOnly);
    return true;
}

void CToolRunner::Stop()
{
    if (!m_running || !m_process || m_killed)
        return;
    m_killed = true;
#ifdef Q_OS_UNIX
    if (m_process->processId() > 0)
        ::kill(-pid_t(m_process->processId()), SIGTERM);
#endif
    m_process->terminate();
    m_grace.start();
}

void CToolRunner::OnReadyRead()
{
    // One buffer for every read: fresh large allocations per read cost page faults.
    if (m_readBuffer.size() < ReadChunk)
        m_readBuffer.resize(ReadChunk);
    // QProcess hands over at most what the pipe held, so this loop is bounded by the
    // pipe's size.
    qint64 got = 0;
    while ((got = m_process->read(m_readBuffer.data(), m_readBuffer.size())) > 0)
        m_decoder.Feed(m_readBuffer.constData(), got, m_batch);
    // Bounded batches keep each update of the page short.
    if (m_batch.size() >= MaxBatchLines)
        FlushBatch();
    else if (!m_batchTimer.isActive())
        m_batchTimer.start();
}

void CToolRunner::FlushBatch()
{
    m_batchTimer.stop();
    if (!m_batch.isEmpty()) {
        const QStringList lines = std::exchange(m_batch, {});
        m_batch.reserve(MaxBatchLines);
        Q_EMIT linesReady(lines);
    }
    if (!m_running)
        return;
    const QString partial = m_decoder.CurrentLine();
    if (partial != m_lastPartial) {
        m_lastPartial = partial;
        Q_EMIT partialLine(partial);
    }
}

void CToolRunner::OnFinished(int exitCode, QProcess::ExitStatus status)
{
    if (!m_running)
        return;
    m_decoder.Feed(m_process->readAllStandardOutput(), m_batch);
    m_decoder.Finish(m_batch);
    Q_EMIT partialLine(QString());
    m_lastPartial.clear();
    FlushBatch();
    const qint64 elapsed = m_clock.elapsed();
    Q_EMIT summary(EndText(status, exitCode, elapsed));
    EndRun(status == QProcess::CrashExit ? -1 : exitCode, status == QProcess::CrashExit);
}

void CToolRunner::OnErrorOccurred(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart || !m_running)
        return;
    const QString reason = m_process->errorString();
    int code = ErrnoOf(reason);
    if (code == 0)
        code = int(error) + 1;
    Q_EMIT message(StartErrorText(code, reason));
    EndRun(-1, true);
}

void CToolRunner::EndRun(int exitCode, bool crashed)
{
    m_grace.stop();
    m_batchTimer.stop();
    m_running = false;
    m_killed = false;
    Q_EMIT finished(exitCode, crashed, m_clock.elapsed());
}
