#include "LongOperation.h"

#include "framework/IStatusSink.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>

namespace {

// The status bar's Cancel button carries this name.
const char* const kCancelName = "ProgressCancel";

bool IsInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

LongOperation::LongOperation(IProgressSink* sink, qint64 total, int quietMs)
    : m_sink(sink)
    , m_total(total > 0 ? total : 1)
    , m_quietMs(quietMs)
    , m_nextBeat(quietMs)
{
    m_clock.start();
}

LongOperation::~LongOperation()
{
    if (m_shown) {
        QCoreApplication::instance()->removeEventFilter(this);
        m_sink->StopProgress();
    }
}

void LongOperation::Show()
{
    m_shown = true;
    m_sink->StartProgress(m_total);
    m_sink->OfferCancel();
    QCoreApplication::instance()->installEventFilter(this);
}

bool LongOperation::Step(qint64 done)
{
    if (m_cancelled)
        return false;
    if (!m_sink || m_clock.elapsed() < m_nextBeat)
        return true;
    if (!m_shown)
        Show();
    m_sink->SetProgress(done);
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    m_nextBeat = m_clock.elapsed() + 40;
    if (m_sink->CancelRequested())
        m_cancelled = true;
    return !m_cancelled;
}

bool LongOperation::eventFilter(QObject* watched, QEvent* event)
{
    if (!IsInput(event->type()))
        return false;
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        m_cancelled = true;
        return true;
    }
    // A window hands its input on to a widget: that is where it is judged.
    if (watched->isWindowType())
        return false;
    // Clicks on Cancel itself go through.
    const auto* button = qobject_cast<QAbstractButton*>(watched);
    if (button && button->objectName() == QLatin1String(kCancelName)
        && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease))
        return false;
    // Ignored as well as held back, so that a close asked for is refused.
    event->ignore();
    return true;
}
