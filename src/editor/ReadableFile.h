#pragma once

#include <QFile>
#include <QString>

// Opening a file for reading without ever waiting. A named pipe opened the ordinary way
// waits for a writer, a socket can't be opened at all and a device may never end, so
// only regular files are taken (including the size-less ones under /proc, which are read
// to their end); anything else is refused with a reason the user can read.
namespace ReadableFile {

// Opens `path` into `file` for reading. On failure `error` (when given) holds the
// system's reason, or why the kind of file is refused.
bool Open(QFile& file, const QString& path, QString* error);

// Why a file of this kind can't be read as a document, or an empty string for a regular
// file. Follows symbolic links; a missing file gives the system's reason.
QString RefusalReason(const QString& path);

} // namespace ReadableFile
