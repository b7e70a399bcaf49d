#pragma once

#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

// Helpers shared by the editor view tests.
namespace EditorTest {

// Closes every message box that opens while it lives, keeping its text and its icon
// (TestSupport::ModalAnswerer keeps the text only).
class MessageRecorder : public QObject
{
public:
    MessageRecorder();
    const QStringList& Texts() const { return m_texts; }
    const QList<int>& Icons() const { return m_icons; }

private:
    void Poll();
    QTimer m_timer;
    QStringList m_texts;
    QList<int> m_icons;
};

} // namespace EditorTest
