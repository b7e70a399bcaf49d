#include "KeyboardIndicators.h"

#include <QKeyEvent>
#include <QWidget>

KeyboardIndicators::KeyboardIndicators(QObject* parent)
    : QObject(parent)
{
}

bool KeyboardIndicators::Observe(const QKeyEvent& event)
{
    const bool caps = m_caps;
    const bool num = m_num;
    const bool scroll = m_scroll;
    const int key = event.key();
    const bool keypad = event.modifiers().testFlag(Qt::KeypadModifier);

    // A lock key held down repeats, but flips its lock once.
    switch (event.isAutoRepeat() ? 0 : key) {
    case Qt::Key_CapsLock:
        m_caps = !m_caps;
        break;
    case Qt::Key_NumLock:
        m_num = !m_num;
        break;
    case Qt::Key_ScrollLock:
        m_scroll = !m_scroll;
        break;
    default:
        break;
    }

    const QString text = event.text();
    if (keypad) {
        // A keypad key gives a digit with Num Lock on and moves the caret with it off.
        if (text.size() == 1 && text.at(0).isDigit())
            m_num = true;
        else if ((key >= Qt::Key_Home && key <= Qt::Key_PageDown) || key == Qt::Key_Insert
                 || key == Qt::Key_Delete || key == Qt::Key_Clear)
            m_num = false;
    } else if (text.size() == 1 && text.at(0).isLetter()
               && text.at(0).toUpper() != text.at(0).toLower()
               && !event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier
                                                  | Qt::MetaModifier)) {
        // Shift and Caps Lock cancel each other out.
        const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
        m_caps = text.at(0).isUpper() != shift;
    }
    return caps != m_caps || num != m_num || scroll != m_scroll;
}

bool KeyboardIndicators::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        // A key the target leaves alone is passed up to its parents as the same event;
        // only the first delivery counts.
        const bool passedUp = event == m_lastEvent && m_lastTarget && widget != m_lastTarget
                              && widget->isAncestorOf(m_lastTarget);
        if (!passedUp) {
            m_lastEvent = event;
            m_lastTarget = widget;
            auto* key = static_cast<QKeyEvent*>(event);
            if (Observe(*key))
                Q_EMIT changed();
            if (key->key() == Qt::Key_Insert && !key->modifiers())
                Q_EMIT insertPressed();
        }
    }
    return QObject::eventFilter(watched, event);
}
