#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class CMFCScintilla;

// Copies a control's text a slice at a time between events, so that a large document
// never holds the interface up for the length of one big copy. An edit made meanwhile
// sends the copy back to where it happened: the text before an edit is still as copied,
// so what is delivered is always the text of one moment, never a mix of two.
class CTextSnapshot : public QObject
{
    Q_OBJECT
public:
    explicit CTextSnapshot(CMFCScintilla& editor, QObject* parent = nullptr);

    // Begins a copy; one under way goes on.
    void Start();
    void Cancel();
    bool IsRunning() const { return m_step.isActive(); }
    // The bytes from the start that are known to match the text as it stands now.
    qsizetype Copied() const { return m_copied; }
    // How many bytes one step copies; small values let tests watch the steps.
    void SetSliceBytes(qsizetype bytes) { m_slice = bytes > 0 ? bytes : 1; }

    // Past this much time, edits that keep sending the copy back cannot hold it off
    // longer: the rest is copied in one piece.
    static constexpr int LongestMs = 3000;
    // A step copies no longer than this, a piece at a time: fresh memory costs a fault
    // per page, which on a busy machine makes a few megabytes take tens of milliseconds.
    static constexpr int StepMs = 4;
    static constexpr qsizetype PieceBytes = qsizetype(256) << 10;

signals:
    // The whole text as it stands now.
    void finished(const QByteArray& text);

private:
    void Step();
    void OnModified(int position, int type);
    bool CopyRange(qsizetype from, qsizetype count);

    QPointer<CMFCScintilla> m_editor;
    QByteArray m_text;
    qsizetype m_copied = 0;
    // The length seen by the last step, and whether the control has spoken since.
    qsizetype m_length = -1;
    bool m_noticed = false;
    bool m_sentBack = false;
    qsizetype m_slice = qsizetype(4) << 20;
    QTimer m_step;
    QElapsedTimer m_started;
};
