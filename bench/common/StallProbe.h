#pragma once

// How long the interface thread's event loop is held, for the benchmarks that type and
// move the caret while work goes on in steps.

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <algorithm>
#include <ctime>

// The interface thread's processor time in ms; the wall clock also counts the time other
// processes of a busy machine take from us.
inline qint64 ThreadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// The longest wait between ticks of a 1 ms timer: how long the event loop was held, by the
// wall clock and by the thread's own processor time.
class StallProbe : public QObject
{
public:
    StallProbe()
    {
        m_timer.setInterval(1);
        connect(&m_timer, &QTimer::timeout, this, [this] { Tick(); });
    }
    void Start()
    {
        m_longestWall = m_longestCpu = 0;
        m_clock.start();
        m_cpu = ThreadCpuMs();
        m_timer.start();
    }
    void Stop()
    {
        Tick();
        m_timer.stop();
    }
    qint64 LongestWall() const { return m_longestWall; }
    qint64 LongestCpu() const { return m_longestCpu; }

private:
    void Tick()
    {
        const qint64 cpu = ThreadCpuMs();
        m_longestWall = std::max(m_longestWall, m_clock.restart());
        m_longestCpu = std::max(m_longestCpu, cpu - m_cpu);
        m_cpu = cpu;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_cpu = 0;
    qint64 m_longestWall = 0;
    qint64 m_longestCpu = 0;
};
