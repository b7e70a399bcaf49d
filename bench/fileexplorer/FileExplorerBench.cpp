// The file tree with large folders:
//   morvane_bench_fileexplorer [files]     (default 100000)
// Prints the time of the first fill, of expanding and painting a folder of that many
// files, and how the interface keeps answering while a watched folder receives 10,000
// new files at once (run with QT_QPA_PLATFORM=offscreen where there is no display).
#include "fileexplorer/CFileSysModel.h"
#include "fileexplorer/CFileSysTreeCtrl.h"
#include "fileexplorer/CFolderWatch.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace {

void MakeFiles(const QString& folder, const QString& prefix, int count)
{
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        const QByteArray path = QFile::encodeName(folder + QStringLiteral("/%1%2.txt").arg(prefix).arg(i));
        const int fd = ::open(path.constData(), O_CREAT | O_WRONLY, 0644);
        if (fd >= 0)
            ::close(fd);
    }
}

// CPU time of the calling thread: on a shared, loaded machine the wall clock mostly
// measures the other programs.
double ThreadCpuMs()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return double(ts.tv_sec) * 1e3 + double(ts.tv_nsec) / 1e6;
}

double Ms(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// Runs the event loop until `done` holds, measuring the longest gap between the ticks
// of a 5 ms timer: how long input would have waited.
double LongestStall(const std::function<bool()>& done, int timeoutMs, double& totalMs)
{
    QElapsedTimer clock;
    clock.start();
    qint64 last = clock.nsecsElapsed();
    double worst = 0;
    QTimer tick;
    tick.setInterval(5);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        worst = std::max(worst, double(now - last) / 1e6);
        last = now;
    });
    tick.start();
    while (!done() && clock.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    // The work that completed the tree ran after the last tick: count it too.
    worst = std::max(worst, double(clock.nsecsElapsed() - last) / 1e6);
    totalMs = Ms(clock);
    return worst;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const int count = argc > 1 ? std::max(1, atoi(argv[1])) : 100000;
    QTemporaryDir temp;
    const QString root = temp.path();
    const QString big = root + QStringLiteral("/big");
    const QString watched = root + QStringLiteral("/watched");
    std::printf("Preparing %d files...\n", count);
    MakeFiles(big, QStringLiteral("file"), count);
    MakeFiles(watched, QStringLiteral("old"), 1000);
    for (int i = 0; i < 20; ++i)
        QDir().mkpath(root + QStringLiteral("/folder%1/sub").arg(i));

    CFileSysTreeCtrl tree(nullptr);
    tree.resize(400, 900);
    tree.show();
    QCoreApplication::processEvents();

    QFile load(QStringLiteral("/proc/loadavg"));
    if (load.open(QIODevice::ReadOnly))
        std::printf("Load average: %s", load.readLine().constData());

    QElapsedTimer timer;
    timer.start();
    tree.FirstFill();
    tree.repaint();
    std::printf("First fill (home, /, volumes; home opened) and paint: %.1f ms\n", Ms(timer));

    tree.FirstFill({root});
    const QModelIndex bigIndex = tree.Model()->FindPath(big);
    timer.restart();
    double cpu = ThreadCpuMs();
    tree.expand(bigIndex);
    tree.scrollTo(tree.Model()->index(0, 0, bigIndex));
    tree.repaint();
    const double expandMs = Ms(timer);
    std::printf("Expand and paint a folder of %d files: %.1f ms wall, %.1f ms CPU (target under 1000 ms, %s)\n",
                count, expandMs, ThreadCpuMs() - cpu, expandMs < 1000 ? "met" : "MISSED");
    timer.restart();
    tree.collapse(bigIndex);
    tree.expand(bigIndex);
    tree.repaint();
    std::printf("Expand it again (already read): %.1f ms\n", Ms(timer));

    auto burst = [&](const QString& folder, const QString& prefix, int files) {
        const QModelIndex index = tree.Model()->FindPath(folder);
        tree.expand(index);
        tree.setCurrentIndex(index);
        const int before = tree.Model()->rowCount(index);
        int refreshes = 0;
        QMetaObject::Connection c =
            QObject::connect(tree.Watch(), &CFolderWatch::refreshed, [&] { ++refreshes; });
        std::atomic<bool> written{false};
        std::thread writer([&] {
            MakeFiles(folder, prefix, files);
            written = true;
        });
        double totalMs = 0;
        const double cpuBefore = ThreadCpuMs();
        const double stall = LongestStall(
            [&] { return written && tree.Model()->rowCount(tree.Model()->FindPath(folder)) == before + files; },
            30000, totalMs);
        writer.join();
        const double cpuMs = ThreadCpuMs() - cpuBefore;
        QObject::disconnect(c);
        const int after = tree.Model()->rowCount(tree.Model()->FindPath(folder));
        std::printf("  %d new files in a watched folder of %d: tree shows all after %.0f ms, %d refreshes, "
                    "%.1f ms interface CPU per refresh, longest wait for input %.1f ms (target under 100 ms, %s)%s\n",
                    files, before, totalMs, refreshes, refreshes ? cpuMs / refreshes : 0.0, stall,
                    stall < 100 ? "met" : "MISSED",
                    after == before + files ? "" : " [tree incomplete]");
    };
    std::printf("Watched folder receiving files at once:\n");
    tree.collapse(tree.Model()->FindPath(big));
    burst(watched, QStringLiteral("new"), 10000);
    burst(big, QStringLiteral("more"), 10000);
    return 0;
}
