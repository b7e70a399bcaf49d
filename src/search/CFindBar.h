#pragma once

#include "MatchScanner.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class CMFCScintilla;
class QCheckBox;
class QLabel;
class QLineEdit;
class QToolButton;

// The incremental find bar under a text view: finds as one types, tells "3 of 17",
// colours every match and steps with Enter and Shift+Enter. The matches are counted in
// short steps between events, so that a huge document never holds up the typing.
class CFindBar : public QWidget
{
    Q_OBJECT
public:
    explicit CFindBar(CMFCScintilla* editor, QWidget* parent = nullptr);

    // The bar of the view holding `editor`, made and put under it on first use.
    static CFindBar* ForEditor(CMFCScintilla* editor);

    // Shows the bar with `seed` (if not empty) selected in the box and the focus there.
    void Open(const QString& seed);
    // Hides the bar, takes the colours off and gives the focus back to the text.
    void Close();

    // Selects the next match after the selection (or the previous one), wrapping round.
    void FindNext();
    void FindPrevious();

    QLineEdit* Edit() const { return m_edit; }
    QLabel* CountLabel() const { return m_count; }
    QCheckBox* MatchCaseBox() const { return m_matchCase; }
    QCheckBox* WholeWordBox() const { return m_wholeWord; }
    QCheckBox* RegExpBox() const { return m_regExp; }
    const MatchScanner& Scanner() const { return m_scanner; }
    bool Counting() const { return m_scanner.IsStarted() && !m_scanner.Done(); }

    // The indicator that marks the matches in the text.
    static constexpr int MatchIndicator = 18;
    // Bytes searched per step, and how long a run of steps may hold the thread.
    static constexpr qint64 StepBytes = 128 << 10;
    static constexpr int SliceMs = 12;

Q_SIGNALS:
    // The count is complete (also when the text or options changed it).
    void countFinished(qint64 count);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Pending { None, Type, Next, Previous };

    void Restart(Pending pending);
    void RunSlice();
    void ResolvePending();
    bool Select(qint64 index);
    void UpdateLabel();
    void PaintVisible(bool force);
    void ClearPainted();
    qint64 CurrentIndex() const;

    QPointer<CMFCScintilla> m_editor;
    QLineEdit* m_edit = nullptr;
    QCheckBox* m_matchCase = nullptr;
    QCheckBox* m_wholeWord = nullptr;
    QCheckBox* m_regExp = nullptr;
    QLabel* m_count = nullptr;
    QToolButton* m_previous = nullptr;
    QToolButton* m_next = nullptr;
    QToolButton* m_close = nullptr;

    MatchScanner m_scanner;
    QString m_error;
    QTimer m_slice;   // runs the next steps of the count
    QTimer m_recount; // gathers a burst of edits into one new count
    Pending m_pending = Pending::None;
    // Typing searches from here: the selection's start when the bar opened.
    qint64 m_anchor = 0;
    qint64 m_pendingFrom = 0;
    bool m_selecting = false;
    qint64 m_paintedFrom = 0;
    qint64 m_paintedTo = 0;
};
