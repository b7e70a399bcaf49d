#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QKeyEvent;

// Follows Caps Lock, Num Lock and Scroll Lock for the status bar. Qt doesn't report
// lock states, so they are read from the keys themselves: a lock key flips its state,
// and typed letters and keypad keys reveal the real state of Caps and Num Lock.
// Installed on the application, it sees every key before the widgets do.
class KeyboardIndicators : public QObject
{
    Q_OBJECT
public:
    explicit KeyboardIndicators(QObject* parent = nullptr);

    bool CapsLock() const { return m_caps; }
    bool NumLock() const { return m_num; }
    bool ScrollLock() const { return m_scroll; }

    // Updates the states from one key press; true when any of them changed.
    bool Observe(const QKeyEvent& event);

Q_SIGNALS:
    void changed();
    // The Insert key went down; the focused editor flips its overtype mode.
    void insertPressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const QEvent* m_lastEvent = nullptr;
    QPointer<QWidget> m_lastTarget;
    bool m_caps = false;
    bool m_num = false;
    bool m_scroll = false;
};
