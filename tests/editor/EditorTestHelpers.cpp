#include "EditorTestHelpers.h"

#include <QApplication>
#include <QMessageBox>

namespace EditorTest {

MessageRecorder::MessageRecorder()
{
    m_timer.setInterval(10);
    QObject::connect(&m_timer, &QTimer::timeout, this, [this] { Poll(); });
    m_timer.start();
}

void MessageRecorder::Poll()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box)
        return;
    m_texts << box->text();
    m_icons << int(box->icon());
    box->done(QMessageBox::Ok);
}

} // namespace EditorTest
