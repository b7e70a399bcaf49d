#include "CTextSnapshot.h"

#include "editor/CMFCScintilla.h"

#include <Qsci/qsciscintillabase.h>
#include <cstring>

CTextSnapshot::CTextSnapshot(CMFCScintilla& editor, QObject* parent)
    : QObject(parent), m_editor(&editor)
{
    // A zero interval runs one step per turn of the event loop, after pending input.
    m_step.setInterval(0);
    connect(&m_step, &QTimer::timeout, this, &CTextSnapshot::Step);
    connect(&editor, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int type) { OnModified(position, type); });
}

void CTextSnapshot::Start()
{
    m_copied = 0;
    m_started.start();
    m_step.start();
}

void CTextSnapshot::Cancel()
{
    m_step.stop();
    m_text = QByteArray();
    m_copied = 0;
}

void CTextSnapshot::OnModified(int position, int type)
{
    if (!IsRunning()
        || !(type & (QsciScintillaBase::SC_MOD_INSERTTEXT | QsciScintillaBase::SC_MOD_DELETETEXT)))
        return;
    // A position past what an int holds arrives negative: copy again from the start.
    m_copied = std::min<qsizetype>(m_copied, std::max(position, 0));
}

void CTextSnapshot::Step()
{
    if (!m_editor) {
        Cancel();
        return;
    }
    const auto length = static_cast<qsizetype>(m_editor->SendScintilla(QsciScintillaBase::SCI_GETLENGTH));
    const bool lastPiece = m_started.elapsed() > LongestMs;
    const qsizetype count = lastPiece ? length - m_copied : std::min(m_slice, length - m_copied);
    if (m_text.size() != length)
        m_text.resize(length);
    if (count > 0) {
        // Only a slice that spans the gap moves it, and then by less than the slice.
        const auto* data = reinterpret_cast<const char*>(m_editor->SendScintilla(
            QsciScintillaBase::SCI_GETRANGEPOINTER, static_cast<unsigned long>(m_copied), static_cast<long>(count)));
        if (!data) {
            Cancel();
            return;
        }
        std::memcpy(m_text.data() + m_copied, data, std::size_t(count));
        m_copied += count;
    }
    if (m_copied < length)
        return;
    m_step.stop();
    const QByteArray text = std::move(m_text);
    m_text = QByteArray();
    m_copied = 0;
    emit finished(text);
}
