#pragma once

#include <QString>
#include <QStringList>

// What the program was asked on its command line: the files to open (with
// "--compare LEFT RIGHT" left in place for the compare to take), or help, or a mistake.
struct CommandLine
{
    QStringList arguments;
    bool help = false;
    QString error;

    static CommandLine Parse(const QStringList& args);
    static QString Usage();
};
