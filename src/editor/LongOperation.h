#pragma once

#include <QElapsedTimer>
#include <QObject>

class IProgressSink;

// A long piece of work on the interface thread (a load, a search, a replace) that keeps
// the window painting and the status bar's progress moving. Only the progress's Cancel
// and Esc get through to the program while it runs: nothing else may change the text
// or close a window under the work. Shows nothing at all when the work ends quickly.
class LongOperation : public QObject
{
public:
    // `sink` may be null: the work then simply runs. The progress appears once the work
    // has taken `quietMs`.
    LongOperation(IProgressSink* sink, qint64 total, int quietMs = 200);
    ~LongOperation() override;

    // Reports the work done; lets the window catch up every few dozen milliseconds.
    // False once the user has cancelled.
    bool Step(qint64 done);
    bool Cancelled() const { return m_cancelled; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Show();

    IProgressSink* m_sink;
    qint64 m_total;
    int m_quietMs;
    QElapsedTimer m_clock;
    qint64 m_nextBeat;
    bool m_shown = false;
    bool m_cancelled = false;
};
