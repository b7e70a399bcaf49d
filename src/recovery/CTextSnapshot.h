#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class CMFCScintilla;

// Copies a control's text a slice at a time between events, so that a large document
// never holds the interface up for the length of one big copy. An edit made meanwhile
// sends the copy back to where it happened: the text before an edit is still as copied.
class CTextSnapshot : public QObject
{
    Q_OBJECT
public:
    explicit CTextSnapshot(CMFCScintilla& editor, QObject* parent = nullptr);

    // Begins a copy, or begins again from the start when one is under way.
    void Start();
    void Cancel();
    bool IsRunning() const { return m_step.isActive(); }
    // How many bytes one step copies; small values let tests watch the steps.
    void SetSliceBytes(qsizetype bytes) { m_slice = bytes > 0 ? bytes : 1; }

    // Past this much time, continual edits near the top cannot hold the copy off longer:
    // the rest is copied in one piece.
    static constexpr int LongestMs = 3000;

signals:
    // The whole text as it stands now.
    void finished(const QByteArray& text);

private:
    void Step();
    void OnModified(int position, int type);

    QPointer<CMFCScintilla> m_editor;
    QByteArray m_text;
    qsizetype m_copied = 0;
    qsizetype m_slice = qsizetype(4) << 20;
    QTimer m_step;
    QElapsedTimer m_started;
};
