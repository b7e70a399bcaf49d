#pragma once

#include "PrintLayout.h"

#include <QFont>
#include <QList>
#include <QPageSize>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class CPageControl;
class QPainter;
class QPrinter;
class QsciScintillaBase;

// What a print run takes from the settings.
struct PrintOptions
{
    bool header = false;
    bool footer = false;
    bool lineNumbers = false;
    bool metric = true;
    PrintLayout::Margins margins;
    QString fontFace = QStringLiteral("Courier New");
    int fontSize = 10;
    // The paper of an export; invalid: A4, or Letter where the locale measures in inches.
    QPageSize paper;
};

// One print run of an editing control: lays out every page with the control's own
// formatter, then draws pages with an optional header (the document's name and a
// rule) and footer (the page number and a rule). Pages are made by a hidden control
// sharing the document, so the control printed is left exactly as it was.
class CPrintJob
{
public:
    // Reports progress in bytes of the text: `phase` 0 while laying out, 1 while
    // drawing. Returning false cancels.
    using Progress = std::function<bool(int phase, qint64 done, qint64 total)>;

    CPrintJob(QsciScintillaBase& editor, const PrintOptions& options, const QString& headerName);
    ~CPrintJob();

    // Prints only this range of the text (a selection) instead of all of it.
    void SetRange(long start, long end);

    // On a painter that is active on the target device: sets up the page control, measures the
    // font and lays out all pages (or, without `layOutAll`, only knows the first page's
    // start). False when cancelled.
    bool OnBeginPrinting(QPainter& painter, const Progress& progress = {}, bool layOutAll = true);
    int PageCount() const { return int(m_pageStarts.size()); }
    const QList<long>& PageStarts() const { return m_pageStarts; }
    int LineHeight() const { return m_lineHeight; }
    int LinesPerPage() const { return m_linesPerPage; }
    const PrintLayout::PageRects& Rects() const { return m_rects; }
    // Draws page `page` (from 1) onto the painter; returns where the next page starts.
    long PrintPage(QPainter& painter, int page);
    // Lets go of the page control.
    void OnEndPrinting();

    // The whole run onto a printer: the printer's page range (or all pages), a new
    // sheet between pages. False when cancelled or when the printer can't start.
    bool Print(QPrinter& printer, const Progress& progress = {});

    // The footer text of a page.
    static QString PageText(int page);

    // Off: every page is laid out by the control, however plain its lines (for checking
    // that counting lines gives the same pages).
    void SetCountPlainPages(bool on) { m_countPlainPages = on; }

private:
    long FormatPage(QPainter& painter, long start, bool draw) const;
    long NextPageStart(QPainter& painter, long start);
    void FindPlainLines(QPainter& painter);
    bool AllPlain(long first, long last) const;
    void ComputeRects(QPainter& painter);

    QsciScintillaBase& m_editor;
    PrintOptions m_options;
    QString m_headerName;
    QFont m_font;
    long m_rangeStart = 0;
    long m_rangeEnd = -1;
    int m_lineHeight = 0;
    int m_linesPerPage = 0;
    PrintLayout::PageRects m_rects;
    QList<long> m_pageStarts;
    std::unique_ptr<CPageControl> m_page;

    // Pages whose lines all surely fit the width on one printed line each hold the
    // same number of lines; those are counted instead of laid out.
    bool m_countPlainPages = true;
    long m_firstLine = 0;
    long m_lastLine = -1;
    long m_plainPageLines = 0;
    std::vector<int> m_wideBefore; // per line from m_firstLine: lines before it that may wrap
};
