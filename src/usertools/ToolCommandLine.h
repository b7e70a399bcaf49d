#pragma once

#include <QString>
#include <QStringList>

// What a tool's variables stand for at the moment it runs.
struct ToolContext
{
    QString filePath;  // the active document's path; empty when none or never saved
    int line = 0;      // caret line from 1; 0 when no document
    int column = 0;    // caret column from 1
    QString selection;
    QString appDir;    // the current directory
};

// A tool's command, arguments and folder with the variables put in. Nothing passes
// through a shell: arguments are split as a shell splits quoted words, then each
// variable's value goes into its word whole, so a path with spaces or quotes in it
// (or a selection holding "$FileName") stays exactly one argument.
namespace ToolCommandLine {

// Replaces $FileName, $FileDir, $FileTitle, $Line, $Column, $Selection and $AppDir
// (names matched without regard to case); an unknown "$word" stays as it is.
QString ExpandText(const QString& text, const ToolContext& context);

// Splits `arguments` into words: blanks separate; '...' is literal; "..." groups and
// takes \" and \\ as escapes; outside quotes a backslash escapes only a quote or a
// blank, so Windows paths (even \\server\share) keep theirs. Variables expand everywhere but
// inside single quotes. An unquoted word that ends up empty through expansion (an empty
// selection) is dropped; "" stays as an empty argument.
QStringList SplitArguments(const QString& arguments, const ToolContext& context);

// The command line as the user would read it, for the output's first line.
QString Describe(const QString& program, const QStringList& arguments);

} // namespace ToolCommandLine
