#include "CTextSnapshot.h"

#include "editor/CMFCScintilla.h"

#include <Qsci/qsciscintillabase.h>
#include <cstring>

namespace {

using Sci = QsciScintillaBase;

// The notices that say the text changed. The "before" ones still arrive while the control
// holds its other notices back (large documents), and arrive before the change itself.
constexpr int TextNotices =
    Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT | Sci::SC_MOD_BEFOREINSERT | Sci::SC_MOD_BEFOREDELETE;

} // namespace

CTextSnapshot::CTextSnapshot(CMFCScintilla& editor, QObject* parent)
    : QObject(parent), m_editor(&editor)
{
    // A zero interval runs one step per turn of the event loop, after pending input.
    m_step.setInterval(0);
    connect(&m_step, &QTimer::timeout, this, &CTextSnapshot::Step);
    connect(&editor, &Sci::SCN_MODIFIED, this, [this](int position, int type) { OnModified(position, type); });
}

void CTextSnapshot::Start()
{
    // A copy under way stays exact through edits: it goes on rather than starting over,
    // which for a large document would never finish while the user pauses now and then.
    if (IsRunning())
        return;
    m_copied = 0;
    m_length = -1;
    m_noticed = false;
    m_sentBack = false;
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
    if (!IsRunning() || !(type & TextNotices))
        return;
    m_noticed = true;
    // A position past what an int holds arrives negative: copy again from the start.
    const qsizetype from = std::max(position, 0);
    if (from < m_copied) {
        m_copied = from;
        m_sentBack = true;
    }
}

bool CTextSnapshot::CopyRange(qsizetype from, qsizetype count)
{
    // Asking for a range across the gap would make the control close it, moving up to a
    // slice of text: take the two sides of the gap apart instead.
    const auto gap = static_cast<qsizetype>(m_editor->SendScintilla(Sci::SCI_GETGAPPOSITION));
    const qsizetype end = from + count;
    qsizetype at = from;
    while (at < end) {
        const qsizetype pieceEnd = (at < gap && gap < end) ? gap : end;
        const auto* data = reinterpret_cast<const char*>(m_editor->SendScintilla(
            Sci::SCI_GETRANGEPOINTER, static_cast<unsigned long>(at), static_cast<long>(pieceEnd - at)));
        if (!data)
            return false;
        std::memcpy(m_text.data() + at, data, std::size_t(pieceEnd - at));
        at = pieceEnd;
    }
    return true;
}

void CTextSnapshot::Step()
{
    if (!m_editor) {
        Cancel();
        return;
    }
    // Someone is changing the text with the notices switched off (a Replace All, an undo
    // of many changes): what was copied may no longer hold. Wait for them to finish.
    if (!(m_editor->SendScintilla(Sci::SCI_GETMODEVENTMASK) & TextNotices)) {
        m_copied = 0;
        m_length = -1;
        return;
    }
    const auto length = static_cast<qsizetype>(m_editor->SendScintilla(Sci::SCI_GETLENGTH));
    // A length that changed without a word from the control means a change nobody
    // announced: nothing copied can be trusted.
    if (m_length >= 0 && length != m_length && !m_noticed) {
        m_copied = 0;
        m_sentBack = true;
    }
    m_length = length;
    m_noticed = false;

    if (m_text.size() != length) {
        // Room for typing to come, so that each keystroke does not move the whole copy.
        if (m_text.capacity() < length)
            m_text.reserve(length + length / 64 + 4096);
        m_text.resize(length);
    }
    // When edits have kept sending the copy back past the longest wait, the rest goes in
    // one piece; otherwise pieces are copied until the slice is done or the step has
    // taken its share of the turn, whichever comes first.
    const bool lastPiece = m_sentBack && m_started.elapsed() > LongestMs;
    const qsizetype stepEnd = lastPiece ? length : std::min(length, m_copied + m_slice);
    QElapsedTimer clock;
    clock.start();
    while (m_copied < stepEnd) {
        const qsizetype count = lastPiece ? stepEnd - m_copied : std::min(PieceBytes, stepEnd - m_copied);
        if (!CopyRange(m_copied, count)) {
            Cancel();
            return;
        }
        m_copied += count;
        if (clock.elapsed() >= StepMs)
            break;
    }
    if (m_copied < length)
        return;
    m_step.stop();
    QByteArray text = std::move(m_text);
    m_text = QByteArray();
    m_copied = 0;
    emit finished(text);
}
