#include "CommandLine.h"

#include <QCoreApplication>

CommandLine CommandLine::Parse(const QStringList& args)
{
    CommandLine line;
    bool options = true;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (!options || !a.startsWith(QLatin1Char('-')) || a == QLatin1String("-")) {
            // A file whose name looks like an option stays a file once options ended.
            line.arguments << (!options && a.startsWith(QLatin1Char('-')) ? QStringLiteral("./") + a : a);
        } else if (a == QLatin1String("--")) {
            options = false;
        } else if (a == QLatin1String("--help") || a == QLatin1String("-h")) {
            line.help = true;
        } else if (a == QLatin1String("--compare") || a == QLatin1String("-d")) {
            if (i + 2 >= args.size()) {
                line.error = QCoreApplication::translate("CommandLine", "%1 needs two files").arg(a);
                return line;
            }
            line.arguments << a << args[i + 1] << args[i + 2];
            i += 2;
        } else {
            line.error = QCoreApplication::translate("CommandLine", "unknown option %1").arg(a);
            return line;
        }
    }
    return line;
}

QString CommandLine::Usage()
{
    return QCoreApplication::translate("CommandLine",
                                       "Usage: morvane [FILE...]\n"
                                       "       morvane --compare LEFT RIGHT   (or -d LEFT RIGHT)\n"
                                       "  --     the names after it are files, even when they start with -\n"
                                       "  -h, --help   show this text\n");
}
