#include "CPrintJob.h"

#include <Qsci/qsciscintillabase.h>
#include <QFontMetrics>
#include <QPainter>
#include <QPaintDevice>
#include <QPrinter>

#include <climits>

CPrintJob::CPrintJob(QsciScintillaBase& editor, const PrintOptions& options,
                     const QString& headerName)
    : m_editor(editor), m_options(options), m_headerName(headerName)
{
}

CPrintJob::~CPrintJob()
{
    OnEndPrinting();
}

void CPrintJob::SetRange(long start, long end)
{
    m_rangeStart = qMax(0L, start);
    m_rangeEnd = end;
}

QString CPrintJob::PageText(int page)
{
    return QStringLiteral("Page %1").arg(page);
}

void CPrintJob::ComputeRects(QPainter& painter)
{
    const QPaintDevice* device = painter.device();
    const QMargins margins = PrintLayout::MarginsToDevice(
        m_options.margins, device->logicalDpiX(), device->logicalDpiY(), m_options.metric);
    m_rects = PrintLayout::ComputeRects(QRect(0, 0, device->width(), device->height()), margins,
                                        2 * m_lineHeight, m_options.header, m_options.footer);
}

bool CPrintJob::OnBeginPrinting(QPainter& painter, const Progress& progress, bool layOutAll)
{
    if (m_savedMarginWidth < 0) {
        m_savedMarginWidth = int(m_editor.SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL));
        m_savedMarginType = int(m_editor.SendScintilla(QsciScintillaBase::SCI_GETMARGINTYPEN, 1UL));
        int width = 0;
        if (m_options.lineNumbers) {
            // Only a number margin prints; margin 1 is the view's, but a bare control
            // has symbols there.
            m_editor.SendScintilla(QsciScintillaBase::SCI_SETMARGINTYPEN, 1UL,
                                   long(QsciScintillaBase::SC_MARGIN_NUMBER));
            const long lines = m_editor.SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT);
            const QByteArray sample = "_" + QByteArray(QByteArray::number(qlonglong(lines)).size(), '9');
            width = int(m_editor.SendScintilla(QsciScintillaBase::SCI_TEXTWIDTH,
                                               QsciScintillaBase::STYLE_LINENUMBER, sample.constData()));
        }
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETMARGINWIDTHN, 1UL, long(width));
    }
    // The document's own colours on paper, at the size it is shown.
    m_editor.SendScintilla(QsciScintillaBase::SCI_SETPRINTCOLOURMODE, QsciScintillaBase::SC_PRINT_NORMAL);
    m_editor.SendScintilla(QsciScintillaBase::SCI_SETPRINTMAGNIFICATION, 0UL);

    m_font = QFont(m_options.fontFace);
    m_font.setPointSize(qMax(1, m_options.fontSize));
    const QFontMetrics metrics(m_font, painter.device());
    m_lineHeight = metrics.height() + metrics.leading();
    m_linesPerPage = PrintLayout::LinesPerPage(painter.device()->height(), m_lineHeight,
                                               m_options.header, m_options.footer);
    ComputeRects(painter);

    const long length = m_editor.SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    long end = m_rangeEnd < 0 ? length : qMin(m_rangeEnd, length);
    // The formatter prints whole lines: a selection ending at the start of a line
    // must not bring that line along.
    if (m_rangeEnd >= 0 && end > m_rangeStart && end < length) {
        const long line = m_editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, end);
        if (m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, line) == end)
            --end;
    }
    m_rangeEnd = end;
    const long start = qMin(m_rangeStart, end);
    if (!layOutAll) {
        m_pageStarts = {start};
        return true;
    }
    bool cancelled = false;
    m_pageStarts = PrintLayout::Paginate(
        start, end, [&](long position) { return FormatPage(painter, position, false); },
        [&](long reached) {
            if (progress && !progress(0, reached - start, end - start))
                cancelled = true;
            return !cancelled;
        });
    return !cancelled;
}

long CPrintJob::FormatPage(QPainter& painter, long start, bool draw) const
{
    return m_editor.SendScintilla(QsciScintillaBase::SCI_FORMATRANGE, draw ? 1UL : 0UL, &painter,
                                  m_rects.text, start, m_rangeEnd);
}

long CPrintJob::PrintPage(QPainter& painter, int page)
{
    if (page < 1 || page > m_pageStarts.size())
        return -1;
    ComputeRects(painter);
    painter.save();
    painter.setFont(m_font);
    painter.setPen(Qt::black);
    const int quarter = m_lineHeight / 4;
    if (m_options.header) {
        const QRect line(m_rects.header.left(), m_rects.header.top(), m_rects.header.width(),
                         m_lineHeight);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, m_headerName);
        const int y = line.bottom() + quarter;
        painter.drawLine(m_rects.header.left(), y, m_rects.header.right(), y);
    }
    if (m_options.footer) {
        const QRect line(m_rects.footer.left(), m_rects.footer.bottom() + 1 - m_lineHeight,
                         m_rects.footer.width(), m_lineHeight);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, PageText(page));
        const int y = line.top() - quarter;
        painter.drawLine(m_rects.footer.left(), y, m_rects.footer.right(), y);
    }
    painter.restore();
    return FormatPage(painter, m_pageStarts.at(page - 1), true);
}

void CPrintJob::OnEndPrinting()
{
    if (m_savedMarginWidth < 0)
        return;
    m_editor.SendScintilla(QsciScintillaBase::SCI_FORMATRANGE, 0UL, 0L);
    m_editor.SendScintilla(QsciScintillaBase::SCI_SETMARGINTYPEN, 1UL, long(m_savedMarginType));
    m_editor.SendScintilla(QsciScintillaBase::SCI_SETMARGINWIDTHN, 1UL, long(m_savedMarginWidth));
    m_savedMarginWidth = -1;
    m_pageStarts.clear();
}

bool CPrintJob::Print(QPrinter& printer, const Progress& progress)
{
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    // Only a page range needs the pages counted first; a whole run lays out each page
    // once, as it draws it.
    const bool ranged = printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0;
    if (!OnBeginPrinting(painter, progress, ranged)) {
        painter.end();
        OnEndPrinting();
        return false;
    }
    const long start = m_pageStarts.front();
    const long total = m_rangeEnd - start;
    int first = 1;
    int last = ranged ? PageCount() : INT_MAX;
    if (ranged) {
        first = qBound(1, printer.fromPage(), last);
        last = printer.toPage() > 0 ? qBound(first, printer.toPage(), last) : last;
    }
    bool ok = true;
    for (int page = first; page <= last; ++page) {
        if (progress && !progress(1, m_pageStarts.at(page - 1) - start, total)) {
            ok = false;
            break;
        }
        if (page > first)
            printer.newPage();
        const long next = PrintPage(painter, page);
        if (!ranged) {
            if (next <= m_pageStarts.at(page - 1) || next >= m_rangeEnd)
                break;
            m_pageStarts << next;
        }
    }
    painter.end();
    OnEndPrinting();
    return ok;
}
