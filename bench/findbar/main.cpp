// The find bar on a large document: a word typed one key at a time while the bar counts
// its matches over the whole text. Prints how long the interface was held up at most
// (the longest gap between ticks of a 1 ms timer, in processor time and by the wall clock,
// and the longest key), the time until the count was complete, and the count.
//
//   morvane_bench_findbar [megabytes [word]]      (default 100 MB, "needle")
//
// The text holds one "needle" per line of about 100 bytes: a million matches in 100 MB.

#include "editor/CMFCScintilla.h"
#include "search/CFindBar.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "../common/StallProbe.h"

namespace {

QByteArray MakeText(qint64 megabytes)
{
    const QByteArray line = "    const auto value = needle + count; // some more words to fill the line up\n";
    const QByteArray other = "    return std::max(first, last) * index - buffer.size() + length + 42;\n";
    QByteArray text;
    text.reserve(megabytes << 20);
    for (int i = 0; text.size() < (megabytes << 20); ++i)
        text += i % 8 == 7 ? other : line;
    return text;
}


} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    const qint64 megabytes = argc > 1 ? std::max(1, atoi(argv[1])) : 100;
    const QString word = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("needle");

    QWidget view;
    auto* layout = new QVBoxLayout(&view);
    auto* editor = new CMFCScintilla(&view);
    editor->Setup();
    layout->addWidget(editor);
    view.resize(1000, 700);
    view.show();

    QElapsedTimer clock;
    clock.start();
    const QByteArray text = MakeText(megabytes);
    editor->SendScintilla(QsciScintillaBase::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()), text.constData());
    std::printf("document: %lld MB, %ld lines, loaded in %lld ms\n", megabytes,
                editor->SendScintilla(QsciScintillaBase::SCI_GETLINECOUNT), clock.elapsed());

    CFindBar* bar = CFindBar::ForEditor(editor);
    bar->Open(QString());
    QApplication::processEvents();

    // What the machine itself does to an idle event loop, to read the figures against.
    StallProbe probe;
    probe.Start();
    QTest::qWait(1000);
    probe.Stop();
    const qint64 idleStall = probe.LongestWall();

    qint64 longestKey = 0;
    probe.Start();
    QElapsedTimer total;
    total.start();
    // A key every 120 ms, about the pace of quick typing; each key restarts the count.
    for (const QChar c : word) {
        QElapsedTimer key;
        key.start();
        QTest::keyClick(bar->Edit(), c.toLatin1());
        longestKey = std::max(longestKey, key.elapsed());
        QTest::qWait(120);
    }
    const qint64 typed = total.elapsed();
    while (bar->Counting())
        QTest::qWait(1);
    probe.Stop();
    const qint64 afterLastKey = total.elapsed() - typed + 120;

    std::printf("typed \"%s\" (%lld keys, 120 ms apart)\n", qPrintable(word), qint64(word.size()));
    std::printf("count: %zu matches, label \"%s\"\n", bar->Scanner().Matches().size(),
                qPrintable(bar->CountLabel()->text()));
    std::printf("count complete %lld ms after the last key\n", afterLastKey);
    std::printf("longest key: %lld ms\n", longestKey);
    std::printf("longest hold of the event loop (target: under 50 ms): %lld ms of processor time, "
                "%lld ms by the wall clock\n", probe.LongestCpu(), probe.LongestWall());
    std::printf("for comparison, the longest wall-clock gap of an idle event loop over 1 s: %lld ms\n", idleStall);

    // Stepping through matches on the finished count.
    clock.restart();
    for (int i = 0; i < 1000; ++i)
        bar->FindNext();
    std::printf("1000 x Enter on the counted document: %lld ms\n", clock.elapsed());
    return probe.LongestCpu() < 50 ? 0 : 1;
}
