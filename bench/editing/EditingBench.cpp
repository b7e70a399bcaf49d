// Select All Occurrences and occurrence highlighting on a 100 MB document of about a million
// lines: how long selecting takes, and the longest single stretch the highlighter holds the
// event loop while the caret moves and text is typed.
#include "editing/MultiCaret.h"
#include "editing/OccurrenceHighlighter.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

using Sci = QsciScintillaBase;

namespace {

constexpr long Lines = 1000000;
constexpr double TargetSelectMs = 2000;
constexpr double TargetBlockMs = 50;

double Ms(const QElapsedTimer& clock) { return double(clock.nsecsElapsed()) / 1e6; }

// 105-byte lines: every line holds "beta" once; every 1000th line also holds "rare".
QByteArray Document()
{
    const QByteArray plain = "alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu nu xi omicron pi rho sigma tau upsilo\n";
    QByteArray rare = plain;
    rare.replace("gamma", "rare!");
    QByteArray text;
    text.reserve(plain.size() * Lines);
    for (long i = 0; i < Lines; ++i)
        text += (i % 1000 == 0) ? rare : plain;
    return text;
}

void Report(const char* what, double ms, double target)
{
    std::printf("%-62s %9.1f ms  (target %.0f ms, %.2fx of target)\n", what, ms, target, ms / target);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    Sci control;
    control.resize(1000, 800);
    control.show();
    auto send = [&](unsigned int m, unsigned long w = 0, long l = 0) { return control.SendScintilla(m, w, l); };
    send(Sci::SCI_SETCODEPAGE, Sci::SC_CP_UTF8);
    MultiCaret::Enable(control);
    {
        const QByteArray text = Document();
        send(Sci::SCI_SETTEXT, 0, reinterpret_cast<long>(text.constData()));
    }
    std::printf("document: %.1f MB, %ld lines\n", double(send(Sci::SCI_GETLENGTH)) / (1024 * 1024),
                send(Sci::SCI_GETLINECOUNT));
    QApplication::processEvents();

    // Select All Occurrences of a word with a million matches.
    send(Sci::SCI_GOTOPOS, 8);
    QElapsedTimer clock;
    clock.start();
    MultiCaret::AllResult all = MultiCaret::SelectAllOccurrences(control);
    const double allMs = Ms(clock);
    std::printf("\"beta\": %ld occurrences found, %s\n", all.found,
                all.selected ? "all selected" : "refused: more than the control can edit at once");
    Report("Select All Occurrences, 1,000,000 matches (find and decide)", allMs, TargetSelectMs);

    // Select All Occurrences of a word the control can take as carets.
    send(Sci::SCI_GOTOPOS, 13);
    clock.restart();
    all = MultiCaret::SelectAllOccurrences(control);
    const double rareMs = Ms(clock);
    std::printf("\"rare\": %ld occurrences, %s, %ld selections\n", all.found, all.selected ? "selected" : "refused",
                send(Sci::SCI_GETSELECTIONS));
    Report("Select All Occurrences, 1,000 matches (selected)", rareMs, TargetSelectMs);
    send(Sci::SCI_SETEMPTYSELECTION, 13);

    // Occurrence highlighting while the caret moves and text is typed: every piece of work
    // the highlighter does runs in one event loop turn, so the longest is what typing waits.
    COccurrenceHighlighter highlighter(control);
    highlighter.SetEnabled(true);
    double longest = 0, refreshLongest = 0, scanTotal = 0;
    std::vector<double> stepTimes;
    long steps = 0, found = 0;
    const char* words[] = {"alpha", "beta", "sigma", "rare", "kappa"};
    for (int move = 0; move < 10; ++move) {
        const long line = (move * 97331L) % Lines;
        const long lineStart = send(Sci::SCI_POSITIONFROMLINE, line);
        send(Sci::SCI_GOTOLINE, line);
        send(Sci::SCI_GOTOPOS, lineStart + (move % 2 ? 0 : 7));
        if (move % 3 == 2) {
            // A typed word: an edit, as typing makes.
            QTest::keyClicks(&control, QString::fromLatin1(words[move % 5]) + QLatin1Char(' '));
        }
        clock.restart();
        highlighter.Refresh();
        refreshLongest = std::max(refreshLongest, Ms(clock));
        QElapsedTimer scan;
        scan.start();
        for (;;) {
            clock.restart();
            const bool more = highlighter.Step();
            stepTimes.push_back(Ms(clock));
            longest = std::max(longest, stepTimes.back());
            ++steps;
            if (!more)
                break;
        }
        scanTotal += Ms(scan);
        found += highlighter.Occurrences().size();
    }
    std::printf("highlighting: 10 caret moves, %ld occurrences marked in the strip, %ld steps, %.0f ms scanning in all\n",
                found, steps, scanTotal);
    Report("Longest refresh of the visible lines", refreshLongest, TargetBlockMs);
    std::sort(stepTimes.begin(), stepTimes.end());
    std::printf("scan steps: median %.1f ms, 99th percentile %.1f ms\n", stepTimes[stepTimes.size() / 2],
                stepTimes[stepTimes.size() * 99 / 100]);
    Report("Longest single scan step (the event loop is free between steps)", longest, TargetBlockMs);
    return 0;
}
