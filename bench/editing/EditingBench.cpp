// Select All Occurrences and occurrence highlighting on a 100 MB document of about a million
// lines, in the editor's own control set up as the program sets it up for so large a text:
// how long selecting takes at each limit of carets, how long the keys that follow take
// (a letter, Backspace, Esc, and undoing the edit), and the longest stretch the highlighter
// holds the event loop while the caret moves and text is typed.
//
//   editing_bench [limit...]      (default 1000 5000 10000 20000; 0 skips the selecting)
#include "editing/MultiCaret.h"
#include "editing/OccurrenceHighlighter.h"
#include "editor/CMFCScintilla.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

#include "../common/StallProbe.h"

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
    std::vector<long> limits;
    for (int i = 1; i < argc; ++i)
        limits.push_back(std::max(0L, atol(argv[i])));
    if (limits.empty())
        limits = {1000, 5000, 10000, 20000};

    CMFCScintilla control;
    control.Setup();
    control.resize(1000, 800);
    control.show();
    auto send = [&](unsigned int m, unsigned long w = 0, long l = 0) { return control.SendScintilla(m, w, l); };
    MultiCaret::Enable(control);
    {
        const QByteArray text = Document();
        send(Sci::SCI_SETTEXT, 0, reinterpret_cast<long>(text.constData()));
    }
    send(Sci::SCI_EMPTYUNDOBUFFER);
    // What a document this large gets when it is opened: change notices once per turn, and
    // room to grow.
    control.SetDeferredChangeNotices(true);
    send(Sci::SCI_ALLOCATE, send(Sci::SCI_GETLENGTH) + (16L << 20));
    const long length = send(Sci::SCI_GETLENGTH);
    std::printf("document: %.1f MB, %ld lines\n", double(length) / (1024 * 1024), send(Sci::SCI_GETLINECOUNT));
    QApplication::processEvents();

    // Select All Occurrences of "beta" (a million matches) under each limit, then the keys
    // a user presses next. Each key's time includes the repaint that follows it.
    std::printf("\nSelect All Occurrences of a word with 1,000,000 matches, and the keys after it:\n");
    std::printf("%8s %10s %10s %10s %10s %10s %10s\n", "carets", "select", "letter", "Backspace", "Esc", "undo", "paint");
    double lastSelectMs = 0, defaultSelectMs = -1;
    long lastCount = 0;
    for (const long limit : limits) {
        if (limit == 0)
            continue;
        send(Sci::SCI_SETEMPTYSELECTION, 8);
        QElapsedTimer clock;
        clock.start();
        const MultiCaret::AllResult all = MultiCaret::SelectAllOccurrences(control, limit);
        const double selectMs = Ms(clock);
        clock.restart();
        QApplication::processEvents();
        const double paintMs = Ms(clock);
        const long carets = send(Sci::SCI_GETSELECTIONS);
        auto key = [&](auto press) {
            QElapsedTimer keyClock;
            keyClock.start();
            press();
            QApplication::processEvents();
            return Ms(keyClock);
        };
        const double letterMs = key([&] { QTest::keyClick(&control, 'x'); });
        const double backspaceMs = key([&] { QTest::keyClick(&control, Qt::Key_Backspace); });
        const double escMs = key([&] { QTest::keyClick(&control, Qt::Key_Escape); });
        const double undoMs = key([&] {
            control.Undo();
            control.Undo();
        });
        const bool restored = send(Sci::SCI_GETLENGTH) == length;
        std::printf("%8ld %8.0f ms %7.0f ms %7.0f ms %7.0f ms %7.0f ms %7.0f ms  (%ld found%s)\n", carets, selectMs,
                    letterMs, backspaceMs, escMs, undoMs, paintMs, all.found, restored ? "" : ", UNDO DID NOT RESTORE");
        lastSelectMs = selectMs;
        if (limit == MultiCaret::MaxCarets)
            defaultSelectMs = selectMs;
        lastCount = carets;
    }
    // Finding is linear; adding selections costs the control time in the square of their number.
    QElapsedTimer findClock;
    findClock.start();
    const auto* bytes = reinterpret_cast<const char*>(send(Sci::SCI_GETCHARACTERPOINTER));
    const qsizetype matches = MultiCaret::FindAll(bytes, length, "beta", true).size();
    const double findMs = Ms(findClock);
    std::printf("of which finding all %lld matches: %.0f ms\n", qint64(matches), findMs);
    const double projected = std::max(0.0, lastSelectMs - findMs) * std::pow(1e6 / double(std::max(1L, lastCount)), 2) / 1000;
    if (lastCount > 0)
        std::printf("projected for all 1,000,000 at the control's rate: about %.0f s to select\n", projected);
    if (defaultSelectMs >= 0)
        Report("Select All Occurrences at the default limit", defaultSelectMs, TargetSelectMs);

    // Occurrence highlighting while the caret moves and text is typed, driven by its own
    // timers as in the program; the probe sees every stretch the event loop is held.
    send(Sci::SCI_SETEMPTYSELECTION, 13);
    COccurrenceHighlighter highlighter(control);
    highlighter.SetEnabled(true);
    StallProbe probe;
    const char* words[] = {"alpha", "beta", "sigma", "rare", "kappa"};
    double refreshLongest = 0, stepLongest = 0;
    probe.Start();
    QElapsedTimer total;
    total.start();
    double keyLongest = 0, moveLongest = 0;
    for (int move = 0; move < 10; ++move) {
        const long line = (move * 97331L) % Lines;
        QElapsedTimer moveClock;
        moveClock.start();
        send(Sci::SCI_GOTOPOS, send(Sci::SCI_POSITIONFROMLINE, line) + (move % 2 ? 0 : 7));
        QApplication::processEvents();
        moveLongest = std::max(moveLongest, Ms(moveClock));
        if (move % 3 == 2) {
            for (const char c : QByteArray(words[move % 5]) + ' ') {
                QElapsedTimer keyClock;
                keyClock.start();
                QTest::keyClick(&control, c);
                keyLongest = std::max(keyLongest, Ms(keyClock));
                QTest::qWait(120);
            }
        }
        QElapsedTimer clock;
        clock.start();
        highlighter.Refresh();
        refreshLongest = std::max(refreshLongest, Ms(clock));
        while (!highlighter.ScanDone()) {
            clock.restart();
            highlighter.Step();
            stepLongest = std::max(stepLongest, Ms(clock));
            QApplication::processEvents();
        }
    }
    probe.Stop();
    std::printf("\nhighlighting: 10 caret moves and 4 typed words over %.0f ms\n", double(total.elapsed()));
    Report("Longest caret move (with its repaint)", moveLongest, TargetBlockMs);
    Report("Longest typed key", keyLongest, TargetBlockMs);
    Report("Longest refresh of the visible lines", refreshLongest, TargetBlockMs);
    Report("Longest single step of the document-wide scan", stepLongest, TargetBlockMs);
    Report("Longest hold of the event loop, processor time", double(probe.LongestCpu()), TargetBlockMs);
    std::printf("(by the wall clock %lld ms: on a busy machine that also counts time other processes took)\n",
                probe.LongestWall());
    return 0;
}
