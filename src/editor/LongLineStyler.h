#pragma once

#include <QObject>
#include <QVector>
#include <limits>

class CMFCScintilla;

// Keeps the text of a document with very long lines cut into short pieces of two
// look-alike styles (LongLinePieces), so that the control lays such a line out from the
// widths it remembers instead of measuring megabytes of text again at every keystroke.
// While active it is the control's lexer: all the text is in pieces but for what changed
// since, which it styles when the control asks.
class LongLineStyler : public QObject
{
    Q_OBJECT
public:
    explicit LongLineStyler(CMFCScintilla* editor);

    // On: takes the lexer's place and styles from the start. Off: leaves the lexer to
    // whoever sets the next one.
    void SetActive(bool active);
    bool IsActive() const { return m_active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Range
    {
        qint64 start;
        qint64 end;
    };

    void OnStyleNeeded(int position);
    void OnModified(int position, int type, const char* text, int length);
    void Fill(qint64 start, qint64 end);
    // Fills every stretch between start and end that is not in pieces.
    void FillWhereNeeded(qint64 start, qint64 end);
    // The two piece styles look like plain text, whatever fonts and colours came since.
    void MirrorPlainStyle();

    CMFCScintilla* m_editor;
    bool m_active = false;
    // Text typed, pasted or brought back by undo since the last styling: the control gives
    // it style 0.
    QVector<Range> m_fresh;
    // Text changed where no notice said: from here on every style byte is looked at
    // before it is trusted.
    qint64 m_unsureFrom = std::numeric_limits<qint64>::max();
    // The text's length as the notices tell it.
    qint64 m_toldLength = 0;
};
