// Times find in files against `grep -rn` and `rg -n` over the same generated tree, warm.
//
//   morvane_bench_fif [megabytes [files]]
//
// The tree (default 500 MB in 20,000 files, a few thousand planted matches) is made in a
// temporary folder (MORVANE_BENCH_DIR or the system's) and removed at the end.

#include "search/CFindInFilesEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

namespace {

const char* const Words[] = {
    "int", "return", "const", "auto", "void", "value", "count", "index", "buffer", "length",
    "static", "struct", "class", "public", "private", "if", "else", "for", "while", "switch",
    "case", "break", "std::string", "QString", "result", "error", "file", "path", "line",
    "column", "text", "data", "size", "begin", "end", "next", "first", "last", "item", "node",
    "=", "==", "+=", "(", ")", "{", "}", ";", "->", "::", "<<", "0", "1", "42", "nullptr",
    "true", "false", "// comment", "the", "of", "and", "to", "in", "is", "that", "with",
};

// Planted in the tree: the literal is found as is, the expression matches each plant.
constexpr const char* Planted = "marker_Zq17";
constexpr const char* LiteralQuery = "marker_Zq17";
constexpr const char* ExpressionQuery = "marker_[A-Z]q[0-9]+";
// No literal inside: every line reaches the expression engine.
constexpr const char* OpenExpressionQuery = "[a-z]{6}[_][A-Z][a-z][0-9]{2}";

struct Tree
{
    qint64 bytes = 0;
    int files = 0;
    int planted = 0;
};

Tree MakeTree(const QString& root, qint64 totalBytes, int files)
{
    std::mt19937_64 random(20261121);
    const qint64 perFile = std::max<qint64>(1, totalBytes / files);
    // About one line in 4,000 holds a match, so 500 MB holds a few thousand.
    std::uniform_int_distribution<int> plantChance(0, 1 << 30);
    const double plantPerLine = 1.0 / 4000.0;
    const int plantThreshold = int(plantPerLine * double(1 << 30));
    std::uniform_int_distribution<int> wordPick(0, int(std::size(Words)) - 1);
    std::uniform_int_distribution<int> wordsPerLine(1, 12);
    std::uniform_int_distribution<int> indentPick(0, 4);

    Tree tree;
    std::string body;
    for (int i = 0; i < files; ++i) {
        const QString folder = QStringLiteral("%1/d%2/s%3").arg(root).arg(i % 20).arg((i / 20) % 10);
        if (i < 200)
            QDir().mkpath(folder);
        body.clear();
        // File sizes vary around the mean.
        const qint64 target = perFile / 2 + qint64(random() % std::uint64_t(perFile));
        while (qint64(body.size()) < target) {
            body.append(std::size_t(indentPick(random)) * 4, ' ');
            const int count = wordsPerLine(random);
            const bool plant = plantChance(random) < plantThreshold;
            const int plantAt = plant ? int(random() % std::uint64_t(count)) : -1;
            for (int w = 0; w < count; ++w) {
                if (w)
                    body += ' ';
                if (w == plantAt) {
                    body += Planted;
                    body += ' ';
                    ++tree.planted;
                }
                body += Words[wordPick(random)];
            }
            body += '\n';
        }
        QFile file(QStringLiteral("%1/f%2.cpp").arg(folder).arg(i));
        if (!file.open(QIODevice::WriteOnly) || file.write(body.data(), qint64(body.size())) != qint64(body.size())) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
            std::exit(2);
        }
        tree.bytes += qint64(body.size());
        ++tree.files;
    }
    return tree;
}

struct Timing
{
    double seconds = 0;
    qint64 count = 0;
};

Timing RunEngine(const QString& root, const QString& text, bool regExp)
{
    FindInFilesOptions options;
    options.folder = root;
    options.text = text;
    options.subFolders = true;
    options.matchCase = true;
    options.regExp = regExp;
    CFindInFilesEngine engine;
    Timing timing;
    QObject::connect(&engine, &CFindInFilesEngine::matchesFound,
                     [&](const QList<FindInFilesMatch>& batch) { timing.count += batch.size(); });
    bool done = false;
    QObject::connect(&engine, &CFindInFilesEngine::finished, [&] { done = true; });
    QElapsedTimer clock;
    clock.start();
    if (!engine.start(options)) {
        std::fprintf(stderr, "engine: %s\n", qPrintable(engine.errorString()));
        std::exit(2);
    }
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    timing.seconds = double(clock.nsecsElapsed()) / 1e9;
    return timing;
}

Timing RunTool(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    QElapsedTimer clock;
    clock.start();
    process.start();
    process.waitForStarted();
    // Read as it comes so the tool never blocks on a full pipe; counting lines is cheap.
    Timing timing;
    while (process.state() != QProcess::NotRunning || process.bytesAvailable() > 0) {
        process.waitForReadyRead(100);
        const QByteArray out = process.readAllStandardOutput();
        timing.count += out.count('\n');
    }
    timing.seconds = double(clock.nsecsElapsed()) / 1e9;
    return timing;
}

void Report(const char* what, const Timing& ours, const Timing& grep, const Timing& rg)
{
    std::printf("%-22s morvane %7.3f s (%lld)   grep %7.3f s (%lld)   rg %7.3f s (%lld)\n", what,
                ours.seconds, static_cast<long long>(ours.count), grep.seconds,
                static_cast<long long>(grep.count), rg.seconds, static_cast<long long>(rg.count));
    std::printf("%-22s grep/morvane %.2f (above 1: faster than grep)   morvane/rg %.2f (target at most 1.5)\n",
                "", grep.seconds / ours.seconds, ours.seconds / rg.seconds);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const qint64 megabytes = argc > 1 ? QByteArray(argv[1]).toLongLong() : 500;
    const int files = argc > 2 ? QByteArray(argv[2]).toInt()
                               : int(std::max<qint64>(10, 20000 * megabytes / 500));
    if (megabytes <= 0 || files <= 0) {
        std::fprintf(stderr, "usage: %s [megabytes [files]]\n", argv[0]);
        return 1;
    }
    const QString grep = QStandardPaths::findExecutable(QStringLiteral("grep"));
    const QString rg = QStandardPaths::findExecutable(QStringLiteral("rg"));
    if (grep.isEmpty() || rg.isEmpty()) {
        std::fprintf(stderr, "grep and rg (ripgrep) must be installed\n");
        return 1;
    }

    QString base = qEnvironmentVariable("MORVANE_BENCH_DIR");
    if (base.isEmpty())
        base = QDir::tempPath();
    const QStorageInfo storage(base);
    const qint64 needed = megabytes * 1024 * 1024 * 12 / 10 + 64 * 1024 * 1024;
    if (storage.bytesAvailable() < needed) {
        std::fprintf(stderr, "not enough space in %s: %lld MB free, %lld MB needed\n", qPrintable(base),
                     static_cast<long long>(storage.bytesAvailable() >> 20), static_cast<long long>(needed >> 20));
        return 1;
    }
    QTemporaryDir dir(base + QStringLiteral("/morvane-bench-fif-XXXXXX"));
    if (!dir.isValid()) {
        std::fprintf(stderr, "cannot make a folder in %s\n", qPrintable(base));
        return 1;
    }
    const QString root = dir.path();

    QElapsedTimer clock;
    clock.start();
    const Tree tree = MakeTree(root, megabytes * 1024 * 1024, files);
    std::printf("tree: %d files, %.1f MB, %d planted matches, made in %.1f s; %d search threads\n",
                tree.files, double(tree.bytes) / (1024.0 * 1024.0), tree.planted,
                double(clock.elapsed()) / 1000.0, CFindInFilesEngine::searchThreadCount());

    const QString literal = QString::fromLatin1(LiteralQuery);
    const QString expression = QString::fromLatin1(ExpressionQuery);
    const QString open = QString::fromLatin1(OpenExpressionQuery);
    const QStringList grepLiteral{QStringLiteral("-rnF"), literal, root};
    const QStringList grepExpression{QStringLiteral("-rnE"), expression, root};
    const QStringList grepOpen{QStringLiteral("-rnP"), open, root};
    const QStringList rgLiteral{QStringLiteral("-nF"), literal, root};
    const QStringList rgExpression{QStringLiteral("-n"), expression, root};
    const QStringList rgOpen{QStringLiteral("-n"), open, root};

    // Warm the page cache and every program once.
    RunTool(grep, grepLiteral);
    RunTool(rg, rgLiteral);
    RunEngine(root, literal, false);

    // Rounds take turns, so that a busy moment of the machine hits all three alike; the
    // best time of each counts.
    constexpr int Rounds = 5;
    auto compare = [&](const char* what, const QString& text, const QStringList& grepArgs,
                       const QStringList& rgArgs) {
        Timing ours, grepTime, rgTime;
        ours.seconds = grepTime.seconds = rgTime.seconds = 1e30;
        for (int round = 0; round < Rounds; ++round) {
            const Timing a = RunEngine(root, text, text != literal);
            const Timing b = RunTool(grep, grepArgs);
            const Timing c = RunTool(rg, rgArgs);
            if (a.seconds < ours.seconds) ours = a;
            if (b.seconds < grepTime.seconds) grepTime = b;
            if (c.seconds < rgTime.seconds) rgTime = c;
        }
        Report(what, ours, grepTime, rgTime);
    };
    compare("literal", literal, grepLiteral, rgLiteral);
    compare("regular expression", expression, grepExpression, rgExpression);
    compare("expression, no literal", open, grepOpen, rgOpen);
    std::printf("(grep runs -F, -E and -P; counts are matches for morvane, lines for grep and rg)\n");
    return 0;
}
