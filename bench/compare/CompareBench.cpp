// The compare against GNU diff and git on generated files.
//
//   bench_compare [--lines N]
//
// Two pairs: N lines (default 1,000,000, about 60 MB) with 1% of the lines changed in
// scattered blocks, and N/10 lines where half the lines moved in blocks. Each of our
// measurements runs in a child process of its own, so that its peak memory is its own.
// Figures: seconds, peak memory, changed lines, and ratios against the faster tool.

#include "compare/CLineDiff.h"
#include "compare/CompareSource.h"
#include "compare/LineTable.h"
#include "CompareOpenProbe.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

long long PeakKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

double CpuSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

std::string RandomLine(std::mt19937& rng, int serial)
{
    static const char* const words[] = {"alpha", "beta", "gamma", "delta", "value", "count",
                                        "return", "if", "for", "while", "index", "buffer"};
    std::string line = "    " + std::to_string(serial) + ":";
    while (line.size() < 56)
        line += std::string(" ") + words[rng() % 12];
    return line + "\n";
}

void WriteLines(const QString& path, const std::vector<std::string>& lines)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    std::string block;
    for (const std::string& line : lines) {
        block += line;
        if (block.size() > (1 << 20)) {
            file.write(block.data(), qint64(block.size()));
            block.clear();
        }
    }
    file.write(block.data(), qint64(block.size()));
}

// 1% of the lines changed, inserted or deleted in blocks of 1 to 10 lines.
void MakeScattered(const QString& left, const QString& right, int lines)
{
    std::mt19937 rng(1);
    std::vector<std::string> a;
    a.reserve(std::size_t(lines));
    for (int i = 0; i < lines; ++i)
        a.push_back(RandomLine(rng, i));
    std::vector<std::string> b;
    b.reserve(a.size() + a.size() / 50);
    int budget = lines / 100;
    const double rate = double(lines / 100) / lines / 5.5; // blocks average 5.5 lines
    std::uniform_real_distribution<double> chance(0, 1);
    for (int i = 0; i < lines; ++i) {
        if (budget > 0 && chance(rng) < rate) {
            const int size = 1 + int(rng() % 10);
            const int kind = int(rng() % 3);
            for (int k = 0; k < size && i < lines; ++k, --budget) {
                if (kind == 0)
                    b.push_back(RandomLine(rng, -i));        // changed
                else if (kind == 1)
                    b.push_back(RandomLine(rng, -i)), b.push_back(a[std::size_t(i)]); // inserted
                if (kind != 1)
                    ++i;                                      // changed or deleted
            }
        }
        if (i < lines)
            b.push_back(a[std::size_t(i)]);
    }
    WriteLines(left, a);
    WriteLines(right, b);
}

// Half the lines moved elsewhere in blocks of 1 to 50 lines.
void MakeMoved(const QString& left, const QString& right, int lines)
{
    std::mt19937 rng(2);
    std::vector<std::string> a;
    for (int i = 0; i < lines; ++i)
        a.push_back(RandomLine(rng, i));
    std::vector<std::vector<std::string>> blocks;
    for (int i = 0; i < lines;) {
        const int size = 1 + int(rng() % 50);
        blocks.emplace_back(a.begin() + i, a.begin() + std::min(lines, i + size));
        i += size;
    }
    // Every other block moves to a random place among the others.
    std::vector<std::vector<std::string>> staying, moving;
    for (std::size_t k = 0; k < blocks.size(); ++k)
        (k % 2 ? moving : staying).push_back(std::move(blocks[k]));
    for (auto& block : moving) {
        const std::size_t at = rng() % (staying.size() + 1);
        staying.insert(staying.begin() + std::ptrdiff_t(at), std::move(block));
    }
    std::vector<std::string> b;
    for (const auto& block : staying)
        b.insert(b.end(), block.begin(), block.end());
    WriteLines(left, a);
    WriteLines(right, b);
}

struct Figures
{
    double seconds = -1;
    double cpu = -1; // processor time, the fairer figure on a busy machine
    double readSeconds = 0;
    double diffSeconds = 0;
    qint64 peakKb = 0;
    long long changed = -1;
};

// Runs in the child: read both, number the lines, diff.
int MeasureDiff(const QString& left, const QString& right)
{
    QElapsedTimer timer;
    timer.start();
    const CompareSource a = CompareSource::Read(left);
    const CompareSource b = CompareSource::Read(right);
    const double read = timer.nsecsElapsed() / 1e9;
    LineTable table;
    table.Build(std::string_view(a.text.constData(), std::size_t(a.text.size())),
                std::string_view(b.text.constData(), std::size_t(b.text.size())), {});
    CLineDiff diff(table.LeftIds(), table.RightIds(), table.DistinctCount());
    diff.Run();
    const double total = timer.nsecsElapsed() / 1e9;
    long long changed = 0;
    for (const DiffHunk& h : diff.Hunks())
        changed += h.leftCount + h.rightCount;
    std::printf("%.4f %.4f %.4f %lld %lld %.4f\n", total, read, total - read, PeakKb(), changed,
                CpuSeconds(RUSAGE_SELF));
    return 0;
}

Figures RunChild(const QStringList& arguments)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), arguments);
    child.waitForFinished(-1);
    const QList<QByteArray> parts = child.readAllStandardOutput().trimmed().split('\n').last().split(' ');
    Figures f;
    if (parts.size() >= 5) {
        f.seconds = parts[0].toDouble();
        f.readSeconds = parts[1].toDouble();
        f.diffSeconds = parts[2].toDouble();
        f.peakKb = parts[3].toLongLong();
        f.changed = parts[4].toLongLong();
        if (parts.size() >= 6)
            f.cpu = parts[5].toDouble();
    }
    return f;
}

// A tool's time and the number of changed lines in its output.
Figures RunTool(const QString& program, const QStringList& arguments, bool unified)
{
    Figures f;
    if (QStandardPaths::findExecutable(program).isEmpty())
        return f;
    QProcess tool;
    QElapsedTimer timer;
    const double cpuBefore = CpuSeconds(RUSAGE_CHILDREN);
    timer.start();
    tool.start(program, arguments);
    tool.waitForFinished(-1);
    f.seconds = timer.nsecsElapsed() / 1e9;
    f.cpu = CpuSeconds(RUSAGE_CHILDREN) - cpuBefore;
    const QByteArray out = tool.readAllStandardOutput();
    f.changed = 0;
    for (const QByteArray& line : out.split('\n')) {
        if (unified) {
            if ((line.startsWith('+') && !line.startsWith("+++")) || (line.startsWith('-') && !line.startsWith("---")))
                ++f.changed;
        } else if (line.startsWith('<') || line.startsWith('>')) {
            ++f.changed;
        }
    }
    return f;
}

void Pair(const char* title, const QString& left, const QString& right, bool withOpen)
{
    const double sizeMb = (QFileInfo(left).size() + QFileInfo(right).size()) / 1e6;
    std::printf("\n%s: %.1f MB together\n", title, sizeMb);
    const Figures ours = RunChild({QStringLiteral("--measure-diff"), left, right});
    const Figures diff = RunTool(QStringLiteral("diff"), {left, right}, false);
    const Figures git = RunTool(QStringLiteral("git"),
                                {QStringLiteral("diff"), QStringLiteral("--no-index"), QStringLiteral("--histogram"),
                                 QStringLiteral("--no-color"), QStringLiteral("--no-ext-diff"), left, right},
                                true);
    std::printf("  %-34s %8.3f s wall %7.3f s cpu  (read %.3f, number and diff %.3f)  peak %6.0f MB  %lld changed lines\n",
                "Morvane read + diff", ours.seconds, ours.cpu, ours.readSeconds, ours.diffSeconds,
                ours.peakKb / 1024.0, ours.changed);
    std::printf("  %-34s %8.3f s wall %7.3f s cpu  %lld changed lines\n", "GNU diff", diff.seconds, diff.cpu, diff.changed);
    std::printf("  %-34s %8.3f s wall %7.3f s cpu  %lld changed lines\n", "git diff --no-index --histogram",
                git.seconds, git.cpu, git.changed);
    double faster = -1, fasterCpu = -1;
    for (const Figures* f : {&diff, &git}) {
        if (f->seconds > 0 && (faster < 0 || f->seconds < faster))
            faster = f->seconds;
        if (f->cpu > 0 && (fasterCpu < 0 || f->cpu < fasterCpu))
            fasterCpu = f->cpu;
    }
    if (faster > 0)
        std::printf("  ratio to the faster tool: %.2f wall, %.2f cpu (target 1.5 or less)\n", ours.seconds / faster,
                    fasterCpu > 0 ? ours.cpu / fasterCpu : 0.0);
    if (diff.changed > 0)
        std::printf("  changed lines against GNU diff: %.3f (target 1.05 or less)\n", double(ours.changed) / diff.changed);
    if (withOpen && CompareOpenProbe::Available()) {
        const Figures open = RunChild({QStringLiteral("--measure-open"), left, right});
        std::printf("  %-34s %8.3f s wall %7.3f s cpu  peak %6.0f MB  (target under 3 s)\n",
                    "whole compare open, first paint", open.seconds, open.cpu, open.peakKb / 1024.0);
        std::printf("  peak memory against the two files: %.2f (target under 4)\n",
                    (open.peakKb * 1024.0) / (sizeMb * 1e6));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::string(argv[1]) == "--measure-diff") {
        QCoreApplication app(argc, argv);
        return MeasureDiff(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    }
    if (argc == 4 && std::string(argv[1]) == "--measure-open")
        return CompareOpenProbe::Measure(argc, argv, PeakKb);

    QCoreApplication app(argc, argv);
    int lines = 1000000;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string(argv[i]) == "--lines")
            lines = std::max(100, std::atoi(argv[i + 1]));
    QTemporaryDir dir;
    const QString a = dir.filePath(QStringLiteral("scattered-left.txt"));
    const QString b = dir.filePath(QStringLiteral("scattered-right.txt"));
    const QString c = dir.filePath(QStringLiteral("moved-left.txt"));
    const QString d = dir.filePath(QStringLiteral("moved-right.txt"));
    std::printf("Generating %d and %d lines...\n", lines, lines / 10);
    std::fflush(stdout);
    MakeScattered(a, b, lines);
    MakeMoved(c, d, lines / 10);
    Pair("1% of the lines changed in scattered blocks", a, b, true);
    Pair("half the lines moved", c, d, true);
    return 0;
}
