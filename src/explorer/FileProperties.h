#pragma once

#include <QDateTime>
#include <QString>

// What the file properties dialog shows, gathered and formatted without widgets.
struct FileProperties
{
    bool exists = false;
    QString name;      // file name with extension
    QString location;  // the folder that holds it
    QString size;      // "N (bytes)"
    QString created;
    QString modified;
    QString accessed;
    bool readOnly = false; // the owner may not write
    bool hidden = false;   // the name begins with a dot

    // Every text is "Unknown" for a file that cannot be read.
    static FileProperties Read(const QString& path);
    static QString Unknown();
    // "05 March 2024, 09:04:02", in local time, month names in English always.
    static QString FormatDate(const QDateTime& when);
    static QString FormatSize(qint64 bytes);
    static QString MonthName(int month);
    // Sets or clears the owner's write permission; false when that fails.
    static bool SetReadOnly(const QString& path, bool readOnly);
};
