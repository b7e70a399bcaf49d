#pragma once

#include <QString>
#include <QtGlobal>

// One kept version of a file.
struct BackupEntry
{
    qint64 m_time = 0; // when the version was made, seconds since 1970 (UTC)
    QString m_path;    // full path of the version file
};
