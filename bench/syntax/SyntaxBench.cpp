// Prints how long the syntax definitions take to load, copy, apply and colour with.
#include "settings/ViewSettings.h"
#include "syntax/CSyntaxParserList.h"
#include "syntax/SyntaxApplier.h"

#include <Qsci/qsciscintillabase.h>

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>

namespace {

template <typename F>
double MicrosecondsPer(int rounds, F&& work)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < rounds; ++i)
        work();
    return double(timer.nsecsElapsed()) / 1000.0 / rounds;
}

QByteArray CSource(qsizetype bytes)
{
    const QByteArray unit =
        "/* A block comment over\n   two lines. */\n#include <stdio.h>\n"
        "static int counter = 0x1F; // a line comment\n"
        "int add(int a, int b) { return a + b + 'x'; }\n"
        "const char* text = \"a string with \\\"escapes\\\"\";\n";
    QByteArray source;
    source.reserve(bytes + unit.size());
    while (source.size() < bytes)
        source += unit;
    return source;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int megabytes = argc > 1 ? std::max(1, atoi(argv[1])) : 8;

    CSyntaxParserList list(QStringLiteral(MORVANE_SHIPPED_SYNTAX));
    const double loadUs = MicrosecondsPer(20, [&] { list.Load(); });
    std::printf("Load %d definitions:            %9.1f us\n", list.GetCount(), loadUs);

    const int cIndex = list.FindByExtension(QStringLiteral(".c"));
    volatile int sink = 0;
    const double copyUs = MicrosecondsPer(20000, [&] { sink = sink + list.GetParser(cIndex).colourCount; });
    std::printf("GetParser copy:                 %9.3f us\n", copyUs);
    const double findUs = MicrosecondsPer(20000, [&] { sink = sink + list.FindByExtension(QStringLiteral(".yaml")); });
    std::printf("FindByExtension (late entry):   %9.3f us\n", findUs);

    QsciScintillaBase control;
    const CSyntaxParser c = list.GetParser(cIndex);
    const CSyntaxParser html = list.GetParser(list.FindByExtension(QStringLiteral(".html")));
    const ViewSettings settings;
    std::printf("Apply C (%3d colours):          %9.1f us\n", c.colourCount,
                MicrosecondsPer(500, [&] { SyntaxApplier::Apply(control, c, settings); }));
    std::printf("Apply HTML (%3d colours):       %9.1f us\n", html.colourCount,
                MicrosecondsPer(500, [&] { SyntaxApplier::Apply(control, html, settings); }));

    const QByteArray source = CSource(qsizetype(megabytes) * 1024 * 1024);
    SyntaxApplier::Apply(control, c, settings);
    control.SendScintilla(QsciScintillaBase::SCI_SETTEXT, uintptr_t(0), source.constData());
    QElapsedTimer timer;
    timer.start();
    control.SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0UL, -1L);
    const double colourMs = double(timer.nsecsElapsed()) / 1e6;
    std::printf("Colour %d MB of C:               %9.1f ms  (%.1f MB/s)\n", megabytes, colourMs,
                megabytes / (colourMs / 1000.0));
    return sink == -1 ? 1 : 0;
}
