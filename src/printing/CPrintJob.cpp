#include "CPrintJob.h"

#include "CBlankPaperFilter.h"
#include "CPageControl.h"

#include <Qsci/qsciscintillabase.h>
#include <QFontMetrics>
#include <QPainter>
#include <QPaintDevice>
#include <QPrinter>

#include <QSet>

#include <algorithm>
#include <array>
#include <climits>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

// The printer's engine builds each page in a buffer of a few hundred kilobytes and
// compresses it through chunks as large. With the allocator's defaults every such block
// goes back to the system when freed and is faulted in afresh for the next page, which
// costs a quarter of a long run. For the run, freed memory stays in the process; after
// it the usual limits return and what is left over is given back.
class CKeepPageBuffers
{
public:
    CKeepPageBuffers()
    {
#if defined(__GLIBC__)
        mallopt(M_MMAP_THRESHOLD, 32 << 20);
        mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
    }
    ~CKeepPageBuffers()
    {
#if defined(__GLIBC__)
        mallopt(M_MMAP_THRESHOLD, 128 << 10);
        mallopt(M_TRIM_THRESHOLD, 128 << 10);
        malloc_trim(0);
#endif
    }
    CKeepPageBuffers(const CKeepPageBuffers&) = delete;
    CKeepPageBuffers& operator=(const CKeepPageBuffers&) = delete;
};

} // namespace

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
    if (!m_page)
        m_page = std::make_unique<CPageControl>(m_editor);
    m_page->SetLineNumbers(m_options.lineNumbers);
    // The document's own colours on paper, at the size it is shown.
    m_page->SendScintilla(QsciScintillaBase::SCI_SETPRINTCOLOURMODE, QsciScintillaBase::SC_PRINT_NORMAL);
    m_page->SendScintilla(QsciScintillaBase::SCI_SETPRINTMAGNIFICATION, 0UL);

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
    FindPlainLines(painter);
    bool cancelled = false;
    m_pageStarts = PrintLayout::Paginate(
        start, end, [&](long position) { return NextPageStart(painter, position); },
        [&](long reached) {
            if (progress && !progress(0, reached - start, end - start))
                cancelled = true;
            return !cancelled;
        });
    return !cancelled;
}

long CPrintJob::FormatPage(QPainter& painter, long start, bool draw) const
{
    return m_page->SendScintilla(QsciScintillaBase::SCI_FORMATRANGE, draw ? 1UL : 0UL, &painter,
                                  m_rects.text, start, m_rangeEnd);
}

void CPrintJob::FindPlainLines(QPainter& painter)
{
    using Sci = QsciScintillaBase;
    m_plainPageLines = 0;
    m_wideBefore.clear();
    if (!m_countPlainPages)
        return;
    m_firstLine = m_editor.SendScintilla(Sci::SCI_LINEFROMPOSITION, qMin(m_rangeStart, m_rangeEnd));
    m_lastLine = m_editor.SendScintilla(Sci::SCI_LINEFROMPOSITION, m_rangeEnd);
    const long lines = m_lastLine - m_firstLine + 1;
    m_wideBefore.assign(size_t(lines + 1), 0);
    if (m_editor.SendScintilla(Sci::SCI_GETPRINTWRAPMODE) == Sci::SC_WRAP_NONE)
        return;

    // The widest each printable ASCII character can be in any style's font, bold or
    // not, upright or italic, on this device: a line whose sum stays well inside the
    // width cannot wrap, whatever its styles.
    std::array<double, 128> widest{};
    QSet<QString> measured;
    QByteArray face;
    for (int style = 0; style <= Sci::STYLE_MAX; ++style) {
        const long faceLength = m_editor.SendScintilla(Sci::SCI_STYLEGETFONT, ulong(style), static_cast<void*>(nullptr));
        face.resize(int(qMax(0L, faceLength)) + 1);
        m_editor.SendScintilla(Sci::SCI_STYLEGETFONT, ulong(style), static_cast<void*>(face.data()));
        face.truncate(int(qMax(0L, faceLength)));
        const double size = qMax(2.0, m_editor.SendScintilla(Sci::SCI_STYLEGETSIZEFRACTIONAL, ulong(style)) / 100.0);
        const int weight = int(m_editor.SendScintilla(Sci::SCI_STYLEGETWEIGHT, ulong(style)));
        const QString key = QStringLiteral("%1|%2|%3").arg(QString::fromUtf8(face)).arg(size).arg(weight);
        if (measured.contains(key))
            continue;
        measured.insert(key);
        for (const int w : {qBound(100, weight, 900), qBound(700, weight, 900)}) {
            for (const bool italic : {false, true}) {
                QFont font(QString::fromUtf8(face));
                font.setPointSizeF(size);
                font.setWeight(QFont::Weight(w));
                font.setItalic(italic);
                const QFontMetricsF metrics(font, painter.device());
                for (int c = 0x20; c < 0x7f; ++c)
                    widest[c] = qMax(widest[c], metrics.horizontalAdvance(QChar(c)));
            }
        }
    }
    const double widestChar = *std::max_element(widest.begin(), widest.end());
    const long tabChars = qMax(1L, m_editor.SendScintilla(Sci::SCI_GETTABWIDTH));
    const double tab = 2.0 * (tabChars + 1) * widestChar;
    const double room = m_rects.text.width() - (m_options.lineNumbers ? 8 * widestChar : 0.0)
                        - m_editor.SendScintilla(Sci::SCI_GETMARGINLEFT)
                        - m_editor.SendScintilla(Sci::SCI_GETMARGINRIGHT) - 2 * widestChar;

    const auto* text = reinterpret_cast<const unsigned char*>(
        m_editor.SendScintillaPtrResult(Sci::SCI_GETCHARACTERPOINTER));
    for (long i = 0; i < lines; ++i) {
        const long from = m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, m_firstLine + i);
        const long to = m_editor.SendScintilla(Sci::SCI_GETLINEENDPOSITION, m_firstLine + i);
        double width = 0;
        bool plain = text != nullptr;
        for (long p = from; plain && p < to; ++p) {
            const unsigned char c = text[p];
            if (c == '\t')
                width += tab;
            else if (c >= 0x20 && c < 0x7f)
                width += widest[c];
            else
                plain = false; // control characters and wider scripts: let the control measure
        }
        plain = plain && width * 1.1 < room;
        m_wideBefore[size_t(i + 1)] = m_wideBefore[size_t(i)] + (plain ? 0 : 1);
    }
}

bool CPrintJob::AllPlain(long first, long last) const
{
    if (m_wideBefore.empty() || first < m_firstLine || last > m_lastLine || first > last)
        return false;
    return m_wideBefore[size_t(last - m_firstLine + 1)] == m_wideBefore[size_t(first - m_firstLine)];
}

long CPrintJob::NextPageStart(QPainter& painter, long start)
{
    using Sci = QsciScintillaBase;
    const long line = m_editor.SendScintilla(Sci::SCI_LINEFROMPOSITION, start);
    const bool atLineStart = m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, line) == start;
    if (atLineStart && m_plainPageLines > 0) {
        const long last = qMin(line + m_plainPageLines - 1, m_lastLine);
        if (AllPlain(line, last)) {
            const long lineCount = m_editor.SendScintilla(Sci::SCI_GETLINECOUNT);
            return last + 1 < lineCount ? m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, last + 1)
                                        : m_editor.SendScintilla(Sci::SCI_GETLENGTH);
        }
    }
    const long next = FormatPage(painter, start, false);
    // A page of lines that each take one printed line, ended at a line start before the
    // last line, is full: it tells how many lines every such page holds.
    if (atLineStart && m_plainPageLines == 0 && next > start && next < m_rangeEnd) {
        const long nextLine = m_editor.SendScintilla(Sci::SCI_LINEFROMPOSITION, next);
        if (nextLine <= m_lastLine && m_editor.SendScintilla(Sci::SCI_POSITIONFROMLINE, nextLine) == next
            && AllPlain(line, nextLine - 1))
            m_plainPageLines = nextLine - line;
    }
    return next;
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
    if (!m_page)
        return;
    m_page.reset();
    m_pageStarts.clear();
}

bool CPrintJob::Print(QPrinter& printer, const Progress& progress)
{
    const CKeepPageBuffers buffers;
    QPainter out;
    if (!out.begin(&printer))
        return false;
    CBlankPaperFilter paper(out);
    QPainter painter(&paper);
    // Only a page range needs the pages counted first; a whole run lays out each page
    // once, as it draws it.
    const bool ranged = printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0;
    if (!OnBeginPrinting(painter, progress, ranged)) {
        painter.end();
        out.end();
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
        if (page > first) {
            printer.newPage();
            paper.NewPage();
        }
        const long next = PrintPage(painter, page);
        if (!ranged) {
            if (next <= m_pageStarts.at(page - 1) || next >= m_rangeEnd)
                break;
            m_pageStarts << next;
        }
    }
    painter.end();
    out.end();
    OnEndPrinting();
    return ok;
}
