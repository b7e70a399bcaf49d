#include "CompareOpenProbe.h"

#ifdef MORVANE_HAS_COMPARE_VIEW

#include "compare/CCompareDoc.h"
#include "compare/CCompareView.h"
#include "compare/CComparePane.h"
#include "compare/CompareSource.h"
#include "settings/ViewSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMainWindow>
#include <QStatusBar>

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

namespace CompareOpenProbe {

bool Available()
{
    return true;
}

int Measure(int argc, char** argv, long long (*peakKb)())
{
    // Offscreen unless asked to show the window (for a look at it under a display).
    const bool show = std::getenv("MORVANE_BENCH_SHOW") != nullptr;
    if (!show)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QElapsedTimer timer;
    timer.start();
    CompareSource left = CompareSource::Read(QString::fromLocal8Bit(argv[2]));
    CompareSource right = CompareSource::Read(QString::fromLocal8Bit(argv[3]));
    CCompareDoc document;
    for (int side = 0; side < 2; ++side) {
        document.GetSide(side).path = side == 0 ? left.path : right.path;
        document.GetSide(side).encoding = side == 0 ? left.encoding : right.encoding;
    }
    document.UpdateTitle();
    QMainWindow window;
    auto cpuNow = [] {
        rusage u{};
        getrusage(RUSAGE_SELF, &u);
        return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
    };
    const double cpuRead = cpuNow();
    // Coloured as the program colours them when asked to show the window.
    CSyntaxParserList parsers(QStringLiteral(MORVANE_SYNTAX_DIR));
    CCompareView::Colourer colourer;
    if (show) {
        parsers.Load();
        colourer = [&parsers](QsciScintillaBase& pane, const QString& path) {
            SyntaxApplier::ApplyForExtension(pane, parsers, QLatin1Char('.') + QFileInfo(path).suffix(), ViewSettings());
            if (auto* comparePane = qobject_cast<CComparePane*>(&pane))
                comparePane->ApplyOwnStyles();
        };
    }
    auto* view = new CCompareView(&document, left, right, {}, colourer);
    const double cpuPanes = cpuNow();
    // The view's panes hold their own copies now.
    left = {};
    right = {};
    window.setCentralWidget(view);
    window.setWindowTitle(document.GetTitle());
    window.resize(1200, 800);
    window.show();
    view->WaitForCompare(600000);
    const double cpuDiff = cpuNow();
    window.grab(); // the first paint of both panes
    if (std::getenv("MORVANE_BENCH_PHASES"))
        std::fprintf(stderr, "cpu: read %.2f, panes %.2f, diff and marks %.2f, paint %.2f\n", cpuRead,
                     cpuPanes - cpuRead, cpuDiff - cpuPanes, cpuNow() - cpuDiff);
    const double seconds = timer.nsecsElapsed() / 1e9;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double cpu = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    std::printf("%.4f 0 0 %lld %d %.4f\n", seconds, peakKb(), view->DifferenceCount(), cpu);
    std::fflush(stdout);
    if (show) {
        window.statusBar()->showMessage(view->StatusText());
        QObject::connect(view, &CCompareView::statusTextChanged, window.statusBar(),
                         [&window](const QString& text) { window.statusBar()->showMessage(text); });
        return app.exec();
    }
    return 0;
}

} // namespace CompareOpenProbe

#else

namespace CompareOpenProbe {
bool Available()
{
    return false;
}
int Measure(int, char**, long long (*)())
{
    return 1;
}
} // namespace CompareOpenProbe

#endif
