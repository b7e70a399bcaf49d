#include "CMorvaneApp.h"
#include "CommandLine.h"

#include <cstdio>

int main(int argc, char** argv)
{
    // Read before the window system is reached, so that --help works without a display.
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    const CommandLine line = CommandLine::Parse(args);
    if (line.help || !line.error.isEmpty()) {
        // An unknown option is not a file to create.
        if (!line.error.isEmpty())
            std::fprintf(stderr, "morvane: %s\n", qPrintable(line.error));
        std::fputs(qPrintable(CommandLine::Usage()), line.help ? stdout : stderr);
        return line.help ? 0 : 2;
    }
    CMorvaneApp app(argc, argv);
    if (!app.InitInstance(line.arguments))
        return 1;
    const int code = app.exec();
    app.Shutdown();
    return code;
}
