#pragma once

#include <QBitArray>
#include <QByteArray>
#include <QColor>
#include <QList>
#include <QObject>
#include <QTimer>
#include <QWidget>

class QsciScintillaBase;
class COccurrenceStrip;

// Marks every occurrence of the word under the caret (or of a short one-line selection):
// in the text with an indicator, and as ticks in a strip beside the scroll bar. The visible
// lines are marked at once; the strip's document-wide scan runs in bounded steps from the
// event loop, so a huge document never holds up typing.
class COccurrenceHighlighter : public QObject
{
    Q_OBJECT
public:
    static constexpr int Indicator = 12;
    static constexpr int StripWidth = 8;
    static constexpr int TickRows = 2048;

    explicit COccurrenceHighlighter(QsciScintillaBase& control);
    ~COccurrenceHighlighter() override;

    void SetEnabled(bool on);
    bool Enabled() const { return m_enabled; }
    // The colour of the marks; the window's highlight colour unless set.
    static QColor MarkColour(const QWidget& widget);

    // Looks at the caret now and marks the visible lines (normally after a short pause).
    void Refresh();
    // One bounded step of the document-wide scan; false when it is done.
    bool Step();
    const QByteArray& Needle() const { return m_needle; }
    // Start offsets of the occurrences the scan has found so far.
    const QList<long>& Occurrences() const { return m_found; }
    // Which of the strip's rows (shares of the document's lines) hold an occurrence.
    const QBitArray& Ticks() const { return m_ticks; }
    bool ScanDone() const { return m_scanPos < 0; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    long Send(unsigned int msg, unsigned long w = 0, long l = 0) const;
    QByteArray CurrentNeedle(bool& wholeWord) const;
    void MarkVisible();
    void Clear();
    void PlaceStrip();

    QsciScintillaBase& m_control;
    COccurrenceStrip* m_strip;
    // Only compared with what the filter sees: asking the control for it while the
    // control is being destroyed would call into a half-gone object.
    QObject* m_viewport = nullptr;
    QTimer m_pause;
    QTimer m_stepper;
    bool m_enabled = false;
    QByteArray m_needle;
    bool m_wholeWord = false;
    bool m_textChanged = false;
    QList<long> m_found;
    QBitArray m_ticks;
    long m_scanPos = -1;
    long m_markedFrom = 0;
    long m_markedTo = 0;
};
