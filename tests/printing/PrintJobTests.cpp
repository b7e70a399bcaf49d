#include "printing/CPrintJob.h"
#include "printing/PdfExport.h"

#include <Qsci/qsciscintillabase.h>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Runs a poppler tool on a PDF; the build machine has poppler-utils.
QString PdfToText(const QString& pdf, bool layout = false)
{
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    EXPECT_FALSE(tool.isEmpty()) << "pdftotext (poppler-utils) is needed";
    QProcess process;
    QStringList args;
    if (layout)
        args << QStringLiteral("-layout");
    args << pdf << QStringLiteral("-");
    process.start(tool, args);
    process.waitForFinished(60000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

QStringList Pages(const QString& text)
{
    QStringList pages = text.split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.back().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

QByteArray NumberedLines(int count)
{
    QByteArray text;
    for (int i = 1; i <= count; ++i)
        text += "row " + QByteArray::number(i).rightJustified(5, '0') + " of the text\n";
    return text;
}

class PrintJobTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETMARGINWIDTHN, 1UL, 7L);
    }
    void SetText(const QByteArray& text)
    {
        m_editor.SendScintilla(QsciScintillaBase::SCI_SETTEXT, text.constData());
    }
    QString Pdf(const QString& name) const { return m_dir.filePath(name); }
    // A printer writing the PDF `name` on paper without margins of its own.
    std::unique_ptr<QPrinter> PdfPrinter(const QString& name, int resolution = 0) const
    {
        auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
        printer->setOutputFormat(QPrinter::PdfFormat);
        if (resolution)
            printer->setResolution(resolution);
        printer->setOutputFileName(Pdf(name));
        printer->setPageMargins(QMarginsF(0, 0, 0, 0));
        return printer;
    }
    long LineStart(long position) const
    {
        const long line = m_editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, position);
        return m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, line);
    }

    QTemporaryDir m_dir;
    QsciScintillaBase m_editor;
};

TEST_F(PrintJobTest, EveryLineIsPrintedExactlyOnceInOrderWithHeaderAndFooterOnEveryPage)
{
    constexpr int lines = 400;
    SetText(NumberedLines(lines));
    PrintOptions options;
    options.header = options.footer = options.lineNumbers = true;
    options.margins = PrintLayout::DefaultMargins(true);
    const QString header = QStringLiteral("/tmp/some/source.c");
    ASSERT_TRUE(PdfExport::Write(m_editor, options, header, Pdf(QStringLiteral("all.pdf"))));

    const QStringList pages = Pages(PdfToText(Pdf(QStringLiteral("all.pdf"))));
    ASSERT_GT(pages.size(), 3);
    int expected = 1;
    static const QRegularExpression row(QStringLiteral("row (\\d{5}) of the text"));
    for (int p = 0; p < pages.size(); ++p) {
        EXPECT_TRUE(pages[p].contains(header)) << "page " << p + 1;
        EXPECT_TRUE(pages[p].contains(QStringLiteral("Page %1").arg(p + 1))) << "page " << p + 1;
        auto it = row.globalMatch(pages[p]);
        while (it.hasNext()) {
            const int number = it.next().captured(1).toInt();
            ASSERT_EQ(number, expected) << "on page " << p + 1;
            ++expected;
        }
    }
    EXPECT_EQ(expected, lines + 1);
}

TEST_F(PrintJobTest, PageStartsAreLineStartsAndTheirCountMatchesThePdf)
{
    SetText(NumberedLines(300));
    PrintOptions options;
    options.margins = PrintLayout::DefaultMargins(false);
    options.metric = false;
    CPrintJob job(m_editor, options, QStringLiteral("x"));
    ASSERT_TRUE(job.Print(*PdfPrinter(QStringLiteral("starts.pdf"))));
    // Print ends the run; lay it out again to look at the table.
    const auto again = PdfPrinter(QStringLiteral("again.pdf"));
    QPainter painter(again.get());
    ASSERT_TRUE(job.OnBeginPrinting(painter));
    const QList<long> starts = job.PageStarts();
    ASSERT_GT(starts.size(), 1);
    EXPECT_EQ(starts.front(), 0);
    for (int i = 1; i < starts.size(); ++i) {
        EXPECT_GT(starts[i], starts[i - 1]);
        EXPECT_EQ(LineStart(starts[i]), starts[i]) << "page " << i + 1 << " starts mid-line";
    }
    // Every page but the last holds the same number of lines.
    const long firstPageLines = m_editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, starts[1]);
    EXPECT_GE(firstPageLines, job.LinesPerPage() - 6);
    job.OnEndPrinting();
    painter.end();
    EXPECT_EQ(Pages(PdfToText(Pdf(QStringLiteral("starts.pdf")))).size(), starts.size());
}

TEST_F(PrintJobTest, HeaderAndFooterLeaveRoomForFewerLines)
{
    SetText(NumberedLines(600));
    // Lines on the first page, and the height left for text.
    auto firstPage = [&](bool bands) {
        PrintOptions options;
        options.header = options.footer = bands;
        const auto printer = PdfPrinter(QStringLiteral("bands.pdf"));
        QPainter painter(printer.get());
        CPrintJob job(m_editor, options, QStringLiteral("x"));
        job.OnBeginPrinting(painter);
        const long lines = m_editor.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, job.PageStarts().value(1));
        return std::make_pair(lines, job.Rects().text.height());
    };
    const auto [plainLines, plainHeight] = firstPage(false);
    const auto [bandLines, bandHeight] = firstPage(true);
    EXPECT_LT(bandHeight, plainHeight);
    // Four lines of the print font go to the bands; the text font is the same size.
    EXPECT_GE(plainLines - bandLines, 3);
    EXPECT_LE(plainLines - bandLines, 5);
}

TEST_F(PrintJobTest, AnEmptyDocumentPrintsOnePage)
{
    SetText(QByteArray());
    PrintOptions options;
    options.footer = true;
    ASSERT_TRUE(PdfExport::Write(m_editor, options, QStringLiteral("empty"), Pdf(QStringLiteral("empty.pdf"))));
    const QStringList pages = Pages(PdfToText(Pdf(QStringLiteral("empty.pdf"))));
    ASSERT_EQ(pages.size(), 1);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("Page 1")));
}

TEST_F(PrintJobTest, ASelectionPrintsOnlyItsLines)
{
    SetText(NumberedLines(100));
    const long from = m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 9UL);  // row 10
    const long to = m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 20UL);   // up to row 20
    ASSERT_TRUE(PdfExport::Write(m_editor, PrintOptions(), QStringLiteral("sel"), Pdf(QStringLiteral("sel.pdf")),
                                 {}, nullptr, from, to));
    const QString text = PdfToText(Pdf(QStringLiteral("sel.pdf")));
    static const QRegularExpression row(QStringLiteral("row (\\d{5})"));
    QList<int> seen;
    for (auto it = row.globalMatch(text); it.hasNext();)
        seen << it.next().captured(1).toInt();
    ASSERT_EQ(seen.size(), 11);
    EXPECT_EQ(seen.front(), 10);
    EXPECT_EQ(seen.back(), 20);
}

TEST_F(PrintJobTest, TheLineNumberMarginIsPrintedOnlyWhenAskedAndPutBackAfter)
{
    SetText(NumberedLines(30));
    for (const bool numbers : {true, false}) {
        PrintOptions options;
        options.lineNumbers = numbers;
        const QString path = Pdf(QStringLiteral("numbers%1.pdf").arg(numbers));
        ASSERT_TRUE(PdfExport::Write(m_editor, options, QStringLiteral("n"), path));
        EXPECT_EQ(m_editor.SendScintilla(QsciScintillaBase::SCI_GETMARGINWIDTHN, 1UL), 7);
        EXPECT_EQ(m_editor.SendScintilla(QsciScintillaBase::SCI_GETMARGINTYPEN, 1UL), QsciScintillaBase::SC_MARGIN_SYMBOL);
        // With numbers each line begins with its number before the text.
        const QString layout = PdfToText(path, true);
        static const QRegularExpression numbered(QStringLiteral("(?m)^\\s*17\\s+row 00017"));
        EXPECT_EQ(layout.contains(numbered), numbers) << layout.left(400).toStdString();
    }
}

TEST_F(PrintJobTest, AnExportThatCannotFinishSaysWhyAndLeavesTheOldFileAlone)
{
    SetText(NumberedLines(2000));
    const QString path = Pdf(QStringLiteral("keep.pdf"));
    {
        QFile old(path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old contents");
    }
    int calls = 0;
    QString error;
    EXPECT_FALSE(PdfExport::Write(m_editor, PrintOptions(), QStringLiteral("c"), path,
                                  [&](int, qint64, qint64) { return ++calls < 3; }, &error));
    EXPECT_FALSE(error.isEmpty()) << "cancelled";
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), QByteArray("old contents"));
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("keep.pdf")});

    error.clear();
    EXPECT_FALSE(PdfExport::Write(m_editor, PrintOptions(), QStringLiteral("m"),
                                  Pdf(QStringLiteral("no/such/folder/x.pdf")), {}, &error));
    EXPECT_FALSE(error.isEmpty()) << "a missing folder";
}

TEST_F(PrintJobTest, APageRangePrintsThoseLaidOutPagesOnly)
{
    SetText(NumberedLines(400));
    PrintOptions options;
    options.footer = true;
    // At the export's resolution, so that both break pages alike.
    const auto printer = PdfPrinter(QStringLiteral("range.pdf"), 300);
    printer->setPrintRange(QPrinter::PageRange);
    printer->setFromTo(2, 3);
    CPrintJob job(m_editor, options, QStringLiteral("r"));
    ASSERT_TRUE(job.Print(*printer));
    const QStringList pages = Pages(PdfToText(Pdf(QStringLiteral("range.pdf"))));
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("Page 2")));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("Page 3")));
    EXPECT_FALSE(pages[0].contains(QStringLiteral("row 00001 ")));
    // Page 2 begins where page 1 of a whole run ends.
    ASSERT_TRUE(PdfExport::Write(m_editor, options, QStringLiteral("r"), Pdf(QStringLiteral("whole.pdf"))));
    const QStringList whole = Pages(PdfToText(Pdf(QStringLiteral("whole.pdf"))));
    ASSERT_GE(whole.size(), 3);
    static const QRegularExpression row(QStringLiteral("row (\\d{5})"));
    EXPECT_EQ(row.match(pages[0]).captured(1), row.match(whole[1]).captured(1));
}

TEST_F(PrintJobTest, AnExportUsesTheChosenPaper)
{
    SetText(NumberedLines(10));
    struct Case { QPageSize paper; bool metric; const char* size; };
    for (const Case& c : {Case{QPageSize(), true, "595 x 842"}, Case{QPageSize(), false, "612 x 792"},
                          Case{QPageSize(QPageSize::A5), false, "420 x 595"}}) {
        PrintOptions options;
        options.paper = c.paper;
        options.metric = c.metric;
        const QString path = Pdf(QStringLiteral("paper.pdf"));
        ASSERT_TRUE(PdfExport::Write(m_editor, options, QStringLiteral("p"), path));
        QProcess info;
        info.start(QStandardPaths::findExecutable(QStringLiteral("pdfinfo")), {path});
        info.waitForFinished(30000);
        const QString text = QString::fromUtf8(info.readAllStandardOutput());
        EXPECT_TRUE(text.contains(QLatin1String(c.size))) << c.size << "\n" << text.toStdString();
    }
}

// Counting the lines of plain pages must give the very pages the control lays out:
// documents mixing lines that wrap, tabs, wider scripts and a last page ending exactly.
struct CountedPagesCase
{
    const char* name;
    QByteArray text;
    bool lineNumbers;
    bool selection; // from the middle of line 3 to the middle of the last line but two
};

class CountedPagesTest : public PrintJobTest, public ::testing::WithParamInterface<CountedPagesCase>
{
protected:
    QList<long> Starts(bool count)
    {
        PrintOptions options;
        options.header = options.footer = true;
        options.lineNumbers = GetParam().lineNumbers;
        options.margins = PrintLayout::DefaultMargins(true);
        const auto printer = PdfPrinter(QStringLiteral("counted%1.pdf").arg(count), 300);
        QPainter painter(printer.get());
        CPrintJob job(m_editor, options, QStringLiteral("c"));
        job.SetCountPlainPages(count);
        if (GetParam().selection) {
            const long lines = m_editor.SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT);
            job.SetRange(m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 2UL) + 3,
                         m_editor.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, lines - 3) + 2);
        }
        EXPECT_TRUE(job.OnBeginPrinting(painter));
        return job.PageStarts();
    }
};

TEST_P(CountedPagesTest, GiveTheControlsOwnPages)
{
    SetText(GetParam().text);
    const QList<long> laidOut = Starts(false);
    ASSERT_GT(laidOut.size(), 2);
    EXPECT_EQ(Starts(true), laidOut);
}

QByteArray Mixed(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i) {
        if (i % 97 == 13)
            text += QByteArray("word ").repeated(60) + "\n"; // wraps
        else if (i % 89 == 5)
            text += "\t\tif (x)\t{ y(); }\n";
        else if (i % 83 == 7)
            text += "caf\xc3\xa9 \xe6\xbc\xa2\xe5\xad\x97 na\xc3\xafve\n";
        else
            text += "line " + QByteArray::number(i) + " of a plain page\n";
    }
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Documents, CountedPagesTest,
    ::testing::Values(CountedPagesCase{"plain", NumberedLines(900), true, false},
                      CountedPagesCase{"mixed", Mixed(900), true, false},
                      CountedPagesCase{"mixedNoNumbers", Mixed(900), false, false},
                      CountedPagesCase{"mixedSelection", Mixed(900), true, true},
                      CountedPagesCase{"longLinesOnly", QByteArray("x").repeated(300).append('\n').repeated(200), false, false},
                      CountedPagesCase{"noFinalNewline", NumberedLines(700).chopped(1), true, false}),
    [](const auto& info) { return std::string(info.param.name); });

} // namespace
