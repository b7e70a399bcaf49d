#include "OccurrenceHighlighter.h"

#include "ControlAccess.h"

#include "MultiCaret.h"

#include <Qsci/qsciscintillabase.h>

#include <QElapsedTimer>
#include <QEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

using Sci = QsciScintillaBase;

namespace {

using ControlAccess::IsWordByte;

// Bytes per scan step: a few milliseconds of searching.
constexpr long StepBytes = 256 * 1024;
constexpr int LongestNeedle = 256;

} // namespace

// The ticks beside the scroll bar: one per occurrence, at its line's share of the document.
class COccurrenceStrip : public QWidget
{
public:
    COccurrenceStrip(QsciScintillaBase& control, const COccurrenceHighlighter& owner)
        : QWidget(&control), m_control(control), m_owner(owner)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        const QBitArray& ticks = m_owner.Ticks();
        painter.setPen(Qt::NoPen);
        painter.setBrush(COccurrenceHighlighter::MarkColour(*this));
        const int h = height() - 3;
        int lastRow = -1;
        for (qsizetype i = 0; i < ticks.size(); ++i) {
            if (!ticks.testBit(i))
                continue;
            const int row = int(i * h / ticks.size());
            if (row == lastRow)
                continue;
            lastRow = row;
            painter.drawRect(1, row, width() - 2, 3);
        }
    }

private:
    QsciScintillaBase& m_control;
    const COccurrenceHighlighter& m_owner;
};

COccurrenceHighlighter::COccurrenceHighlighter(QsciScintillaBase& control)
    : QObject(&control), m_control(control), m_strip(new COccurrenceStrip(control, *this)), m_ticks(TickRows)
{
    m_strip->hide();
    m_pause.setSingleShot(true);
    m_pause.setInterval(150);
    connect(&m_pause, &QTimer::timeout, this, &COccurrenceHighlighter::Refresh);
    m_stepper.setInterval(0);
    connect(&m_stepper, &QTimer::timeout, this, [this] {
        if (!Step())
            m_stepper.stop();
    });
    connect(&control, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
        if (!m_enabled)
            return;
        // Not on every content update: the marks themselves make one, and a restarted
        // scan of a large text would never finish.
        if (updated & Sci::SC_UPDATE_SELECTION)
            m_pause.start();
        else if (updated & Sci::SC_UPDATE_V_SCROLL)
            MarkVisible();
    });
    connect(&control, &QsciScintillaBase::SCN_MODIFIED, this, [this](int, int type) {
        if (m_enabled && (type & (Sci::SC_MOD_INSERTTEXT | Sci::SC_MOD_DELETETEXT | Sci::SC_MOD_BEFOREINSERT | Sci::SC_MOD_BEFOREDELETE))) {
            m_textChanged = true;
            m_pause.start();
        }
    });
    // The strip follows the text area, which changes size as scroll bars come and go.
    m_viewport = control.viewport();
    m_viewport->installEventFilter(this);
    Send(Sci::SCI_INDICSETSTYLE, Indicator, Sci::INDIC_ROUNDBOX);
    Send(Sci::SCI_INDICSETUNDER, Indicator, 1);
    Send(Sci::SCI_INDICSETALPHA, Indicator, 70);
}

COccurrenceHighlighter::~COccurrenceHighlighter() = default;

QColor COccurrenceHighlighter::MarkColour(const QWidget& widget)
{
    return widget.palette().color(QPalette::Highlight);
}

long COccurrenceHighlighter::Send(unsigned int msg, unsigned long w, long l) const
{
    return m_control.SendScintilla(msg, w, l);
}

void COccurrenceHighlighter::SetEnabled(bool on)
{
    if (on == m_enabled)
        return;
    m_enabled = on;
    PlaceStrip();
    if (on) {
        Refresh();
    } else {
        m_pause.stop();
        m_stepper.stop();
        Clear();
    }
}

void COccurrenceHighlighter::PlaceStrip()
{
    const int margin = m_enabled ? StripWidth : 0;
    Send(Sci::SCI_SETMARGINRIGHT, 0, margin);
    m_strip->setVisible(m_enabled);
    const QRect view = m_control.viewport()->geometry();
    m_strip->setGeometry(view.right() + 1 - StripWidth, view.top(), StripWidth, view.height());
    m_strip->raise();
}

bool COccurrenceHighlighter::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_viewport && m_enabled && (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        PlaceStrip();
    return false;
}

QByteArray COccurrenceHighlighter::CurrentNeedle(bool& wholeWord) const
{
    wholeWord = false;
    const long main = Send(Sci::SCI_GETMAINSELECTION);
    long start = Send(Sci::SCI_GETSELECTIONNSTART, main);
    long end = Send(Sci::SCI_GETSELECTIONNEND, main);
    if (start == end) {
        start = Send(Sci::SCI_WORDSTARTPOSITION, start, 1);
        end = Send(Sci::SCI_WORDENDPOSITION, end, 1);
        wholeWord = true;
    }
    if (end <= start || end - start > LongestNeedle)
        return {};
    const auto* text = reinterpret_cast<const char*>(Send(Sci::SCI_GETRANGEPOINTER, start, end - start));
    QByteArray needle(text, int(end - start));
    if (needle.contains('\n') || needle.contains('\r') || needle.trimmed().isEmpty())
        return {};
    if (wholeWord && !IsWordByte(needle.front()))
        return {};
    return needle;
}

void COccurrenceHighlighter::Clear()
{
    Send(Sci::SCI_SETINDICATORCURRENT, Indicator);
    Send(Sci::SCI_INDICATORCLEARRANGE, m_markedFrom, m_markedTo - m_markedFrom);
    m_markedFrom = m_markedTo = 0;
    m_needle.clear();
    m_found.clear();
    m_ticks.fill(false);
    m_scanPos = -1;
    m_strip->update();
}

void COccurrenceHighlighter::Refresh()
{
    if (!m_enabled)
        return;
    bool wholeWord = false;
    const QByteArray needle = CurrentNeedle(wholeWord);
    // The caret moved within the same word, or on to another of its occurrences: the scan
    // goes on as it was.
    if (!m_textChanged && !needle.isEmpty() && needle == m_needle && wholeWord == m_wholeWord) {
        MarkVisible();
        return;
    }
    m_textChanged = false;
    // The text changed or the word did: both mean the scan starts over.
    Clear();
    m_needle = needle;
    m_wholeWord = wholeWord;
    if (m_needle.isEmpty())
        return;
    const QColor colour = MarkColour(m_control);
    Send(Sci::SCI_INDICSETFORE, Indicator, colour.red() | colour.green() << 8 | colour.blue() << 16);
    MarkVisible();
    m_scanPos = 0;
    m_stepper.start();
}

void COccurrenceHighlighter::MarkVisible()
{
    if (m_needle.isEmpty())
        return;
    Send(Sci::SCI_SETINDICATORCURRENT, Indicator);
    Send(Sci::SCI_INDICATORCLEARRANGE, m_markedFrom, m_markedTo - m_markedFrom);
    const long firstVisible = Send(Sci::SCI_GETFIRSTVISIBLELINE);
    const long first = Send(Sci::SCI_DOCLINEFROMVISIBLE, firstVisible);
    const long last = Send(Sci::SCI_DOCLINEFROMVISIBLE, firstVisible + Send(Sci::SCI_LINESONSCREEN) + 1);
    const long from = Send(Sci::SCI_POSITIONFROMLINE, first);
    const long to = Send(Sci::SCI_GETLINEENDPOSITION, last);
    const auto* text = reinterpret_cast<const char*>(Send(Sci::SCI_GETRANGEPOINTER, from, to - from));
    // Word boundaries need the bytes either side of the range.
    const long length = Send(Sci::SCI_GETLENGTH);
    const QList<long> found = MultiCaret::FindAll(text, to - from, m_needle, false);
    for (const long offset : found) {
        const long start = from + offset;
        const long end = start + m_needle.size();
        if (m_wholeWord) {
            const bool before = start > 0 && IsWordByte(char(Send(Sci::SCI_GETCHARAT, start - 1)));
            const bool after = end < length && IsWordByte(char(Send(Sci::SCI_GETCHARAT, end)));
            if (before || after)
                continue;
        }
        Send(Sci::SCI_INDICATORFILLRANGE, start, m_needle.size());
    }
    m_markedFrom = from;
    m_markedTo = to;
}

bool COccurrenceHighlighter::Step()
{
    if (m_scanPos < 0 || m_needle.isEmpty())
        return false;
    QElapsedTimer clock;
    clock.start();
    const long length = Send(Sci::SCI_GETLENGTH);
    const long overlap = m_needle.size() - 1;
    const long lines = std::max(1L, Send(Sci::SCI_GETLINECOUNT));
    // Whole steps while time allows, but never much past a few milliseconds.
    while (m_scanPos < length && clock.elapsed() < 5) {
        const long from = m_scanPos;
        const long to = std::min(length, from + StepBytes);
        // One byte either side for the word test.
        const long lead = from > 0 ? 1 : 0;
        const long reach = std::min(length, to + overlap + 1);
        const auto* text = reinterpret_cast<const char*>(Send(Sci::SCI_GETRANGEPOINTER, from - lead, reach - from + lead));
        const QList<long> found = MultiCaret::FindAll(text + lead, std::min(to + overlap, length) - from, m_needle, false);
        for (const long offset : found) {
            const long start = from + offset;
            const long end = start + m_needle.size();
            if (m_wholeWord) {
                const char before = start > 0 ? text[start - from + lead - 1] : ' ';
                const char after = end < length ? text[end - from + lead] : ' ';
                if (IsWordByte(before) || IsWordByte(after))
                    continue;
            }
            m_found.append(start);
            m_ticks.setBit(qsizetype(Send(Sci::SCI_LINEFROMPOSITION, start) * m_ticks.size() / lines));
        }
        m_scanPos = to;
    }
    m_strip->update();
    if (m_scanPos >= length) {
        m_scanPos = -1;
        return false;
    }
    return true;
}
