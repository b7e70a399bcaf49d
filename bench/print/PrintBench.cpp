// Laying out and writing a large coloured C file as printed pages:
//   morvane_bench_print [megabytes [kept.pdf]]     (default 10 MB, about 200,000 lines)
#include "printing/CPrintJob.h"
#include "printing/PdfExport.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"
#include "settings/ViewSettings.h"

#include <Qsci/qsciscintillabase.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>

#include <cstdio>
#include <ctime>

namespace {

QByteArray MakeC(qint64 bytes, int& lines)
{
    static const char* body[] = {
        "/* Copy the buffer, counting what was moved. */\n",
        "static int copy_block(char *dst, const char *src, size_t n)\n",
        "{\n",
        "    int moved = 0; /* bytes moved so far, for the caller */\n",
        "    for (size_t i = 0; i < n; ++i) { dst[i] = src[i]; moved += 1; }\n",
        "    if (moved != (int)n) return -1; // short copy\n",
        "    printf(\"%d bytes\\n\", moved);\n",
        "    return moved; /* the caller checks this against n */\n",
        "}\n",
        "/* ---------------------------------------------------------- */\n",
    };
    QByteArray text;
    text.reserve(bytes + 100);
    lines = 0;
    while (text.size() < bytes) {
        text += body[lines % 10];
        ++lines;
    }
    return text;
}

// Processor time of this process: on a busy machine the wall clock says more about the
// neighbours than about the work.
double CpuMs()
{
    return std::clock() * 1000.0 / CLOCKS_PER_SEC;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const double megabytes = argc > 1 ? QByteArray(argv[1]).toDouble() : 10;
    int lines = 0;
    const QByteArray text = MakeC(qint64(megabytes * 1024 * 1024), lines);

    QsciScintillaBase control;
    CSyntaxParserList parsers(QStringLiteral(MORVANE_SHIPPED_SYNTAX));
    parsers.Load();
    const int c = parsers.FindByExtension(QStringLiteral(".c"));
    if (c >= 0)
        SyntaxApplier::Apply(control, parsers.GetParser(c), ViewSettings());
    control.SendScintilla(QsciScintillaBase::SCI_SETTEXT, text.constData());
    QElapsedTimer timer;
    timer.start();
    control.SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    const double colourMs = timer.elapsed();

    PrintOptions options;
    options.header = options.footer = options.lineNumbers = true;
    options.margins = PrintLayout::DefaultMargins(true);
    std::printf("Text: %.1f MB, %d lines, coloured as %s in %.0f ms\n", text.size() / 1048576.0, lines,
                c >= 0 ? "C" : "plain text (no C definition found)", colourMs);

    QTemporaryDir dir;
    QList<long> counted;
    // Preview lays out every page before the first is shown: that is this run, at the
    // printer's full resolution and at the 300 dots an inch of the PDF export.
    for (const int dpi : {0, 300}) {
        QPrinter printer(QPrinter::HighResolution);
        if (dpi)
            printer.setResolution(dpi);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("layout.pdf")));
        printer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QPainter painter(&printer);
        CPrintJob job(control, options, QStringLiteral("/tmp/big.c"));
        int reports = 0;
        timer.restart();
        const double cpu = CpuMs();
        job.OnBeginPrinting(painter, [&](int, qint64, qint64) { ++reports; return true; });
        const double ms = timer.elapsed();
        std::printf("Pagination at %4d dpi: %6d pages in %8.0f ms, %8.0f ms processor  (%.3f ms a page, %d progress reports; target 5000 ms)\n",
                    printer.resolution(), job.PageCount(), ms, CpuMs() - cpu, ms / qMax(1, job.PageCount()), reports);
        counted = job.PageStarts();
        job.OnEndPrinting();
        painter.end();
    }
    {
        // The same pages laid out wholly by the control, to show counting changed nothing.
        QPrinter printer(QPrinter::HighResolution);
        printer.setResolution(300);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(QStringLiteral("check.pdf")));
        printer.setPageMargins(QMarginsF(0, 0, 0, 0));
        QPainter painter(&printer);
        CPrintJob job(control, options, QStringLiteral("/tmp/big.c"));
        job.SetCountPlainPages(false);
        timer.restart();
        const double cpu = CpuMs();
        job.OnBeginPrinting(painter);
        const double ms = timer.elapsed();
        std::printf("Pagination by the control alone: %6d pages in %8.0f ms, %8.0f ms processor; page starts %s\n",
                    job.PageCount(), ms, CpuMs() - cpu, job.PageStarts() == counted ? "identical" : "DIFFER");
        job.OnEndPrinting();
        painter.end();
    }
    {
        const QString path = argc > 2 ? QString::fromLocal8Bit(argv[2]) : dir.filePath(QStringLiteral("big.pdf"));
        int reports = 0;
        timer.restart();
        const double cpu = CpuMs();
        const bool ok = PdfExport::Write(control, options, QStringLiteral("/tmp/big.c"), path,
                                         [&](int, qint64, qint64) { ++reports; return true; });
        const double ms = timer.elapsed();
        std::printf("PDF written: %s, %.1f MB in %8.0f ms, %8.0f ms processor  (%d progress reports; target 15000 ms)\n",
                    ok ? "ok" : "FAILED", QFileInfo(path).size() / 1048576.0, ms, CpuMs() - cpu, reports);
    }
    return 0;
}
