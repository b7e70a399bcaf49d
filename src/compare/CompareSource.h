#pragma once

#include <QByteArray>
#include <QString>

class AnsiCodePage;

// One side of a compare read from disk: the text as the editing control holds it
// (UTF-8, "Ansi" decoded through its code page), with what is needed to write it back
// in the same form.
struct CompareSource
{
    QString path;
    QByteArray text;
    int encoding = 3;
    int bomLength = 0;
    bool writeMark = false;
    bool binary = false;
    // Bytes that could not become text: such a side can't be saved without loss.
    qint64 lostBytes = 0;
    QString error; // the system's reason when the file could not be read

    bool ok() const { return error.isEmpty(); }

    // Reads `path`, finding its encoding the way the text document does; "Ansi" text goes
    // through `codePage` (windows-1252 when none is given). A binary file is read as it
    // is, for a byte compare.
    static CompareSource Read(const QString& path, const AnsiCodePage* codePage = nullptr);
};
