// A tool that prints 1,000,000 lines (about 30 MB) as fast as it can, run into the Tool
// Results page shown in a window, beside the same command writing to /dev/null.
// Prints the time until the last line is shown, the peak memory and the longest delay
// of a 10 ms timer on the interface thread while the output streams.
#include "usertools/CToolResultsModel.h"
#include "usertools/CToolOutputPage.h"
#include "usertools/CToolRunner.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListView>
#include <QProcess>
#include <QTimer>

#include <sys/resource.h>

#include <cstdio>

namespace {

const QString kProgram = QStringLiteral("/usr/bin/awk");
const QStringList kArguments{QStringLiteral(
    "BEGIN { for (i = 1; i <= 1000000; i++) printf \"src/mod%06d.c:%d:7: note: x\\n\", i, i % 9999 }")};

long PeakKb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

double DevNullSeconds()
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    process.start(kProgram, kArguments);
    process.waitForFinished(-1);
    return double(clock.nsecsElapsed()) / 1e9;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const double devNull = DevNullSeconds();
    // Warm caches the same way for the real run.
    const double devNull2 = DevNullSeconds();
    const double baseline = qMin(devNull, devNull2);

    CToolOutputPage page;
    QWidget* widget = page.Widget();
    widget->resize(900, 500);
    widget->show();
    QCoreApplication::processEvents();
    const long rssBeforeKb = PeakKb();

    CToolRunner runner;
    // MORVANE_BENCH_NOPAGE=1 measures the runner and decoder alone.
    if (qEnvironmentVariableIntValue("MORVANE_BENCH_NOPAGE") == 0)
        QObject::connect(&runner, &CToolRunner::linesReady, page.Model(),
                         [&](const QStringList& lines) { page.Model()->AppendLines(lines); });

    // The interface thread's responsiveness: how late does a 10 ms timer fire?
    QElapsedTimer tick;
    qint64 worstDelayMs = 0;
    QTimer probe;
    probe.setInterval(10);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const qint64 gap = tick.restart();
        worstDelayMs = qMax(worstDelayMs, gap - 10);
    });

    bool ended = false;
    QObject::connect(&runner, &CToolRunner::finished, [&] { ended = true; });
    QElapsedTimer clock;
    clock.start();
    tick.start();
    probe.start();
    runner.Start(kProgram, kArguments, QString());
    while (!ended)
        app.processEvents(QEventLoop::WaitForMoreEvents);
    // Shown: the view has scrolled to the last row and painted it.
    app.processEvents();
    page.View()->scrollToBottom();
    page.View()->viewport()->repaint();
    const double shown = double(clock.nsecsElapsed()) / 1e9;
    probe.stop();

    const CToolResultsModel* model = page.Model();
    const QString last = model->RowText(model->rowCount() - 1);
    std::printf("lines kept %d, dropped %lld, last \"%s\"\n", model->rowCount(),
                static_cast<long long>(model->DroppedLines()), qPrintable(last));
    std::printf("to /dev/null            %8.3f s\n", baseline);
    std::printf("into Tool Results page  %8.3f s   ratio %.2f (target <= 3)\n", shown, shown / baseline);
    std::printf("peak memory             %8.1f MB  (%.1f MB before the run; scrollback %d lines)\n",
                double(PeakKb()) / 1024.0, double(rssBeforeKb) / 1024.0, model->Limit());
    std::printf("longest timer delay     %8lld ms  (target <= 100)\n", static_cast<long long>(worstDelayMs));
    return last.startsWith(QStringLiteral("src/mod1000000.c")) ? 0 : 1;
}
