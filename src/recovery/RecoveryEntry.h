#pragma once

#include <QDateTime>
#include <QString>

// What is kept beside a modified document's text so it can be reopened as it was.
struct RecoveryEntry
{
    QString id;          // the document's key inside its instance folder
    QString path;        // empty for an Untitled document
    QString title;       // the tab's name when there is no path
    int encoding = 0;
    bool writeMark = false;
    int lineEnding = 0;
    int parser = -1;
    QDateTime time;
    qint64 bytes = 0;    // size of the UTF-8 text
    QString textFile;    // absolute path of the text, filled in when listed
    QString folder;      // the instance folder the entry was found in
};
