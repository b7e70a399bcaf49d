#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

// What one find in files run looks for, and where.
struct FindInFilesOptions
{
    QString folder;
    // File name patterns separated by ";" or spaces; empty, "*" or "*.*" takes every file.
    QString patterns;
    QString text;
    bool subFolders = false;
    bool matchCase = false;
    bool matchWord = false;
    bool regExp = false;
    // Tab stops of the editor, so that columns are the ones it shows.
    int tabWidth = 4;
    // The code page "Ansi" files are read in, as the editor reads them.
    QString ansiCodePage = QStringLiteral("windows-1252");
    // A run stops quietly after this many matches; the summary says so.
    qint64 maxMatches = 1000000;
};

// One match. `line` counts from 1; `column` counts from 0 in the editor's columns
// (characters, a tab reaching the next tab stop), which is what the status bar shows and
// what SCI_FINDCOLUMN takes.
struct FindInFilesMatch
{
    QString path;
    int line = 0;
    int column = 0;
    // The matched line, without its line end; very long lines are cut around the match.
    QString text;
};

struct FindInFilesSummary
{
    qint64 matches = 0;
    qint64 filesSearched = 0;
    qint64 filesMatched = 0;
    qint64 filesBinary = 0;
    qint64 filesUnreadable = 0;
    qint64 elapsedMs = 0;
    bool cancelled = false;
    // Stopped at FindInFilesOptions::maxMatches.
    bool truncated = false;
    QString error;
};

Q_DECLARE_METATYPE(FindInFilesMatch)
Q_DECLARE_METATYPE(FindInFilesSummary)
