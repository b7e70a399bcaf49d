#pragma once

#include "FileOwner.h"

#include <QFile>
#include <QSaveFile>
#include <QString>
#include <memory>

class UncachedWriter;

// Reads a file in pieces cut after a blank or a line end, and writes one safely: the
// new content goes to a file beside the old one and replaces it only when complete.
class TextFile
{
public:
    static constexpr qint64 ChunkSize = 256000;
    // Files expected to reach this size are written around the system's file cache.
    static constexpr qint64 UncachedFrom = qint64(64) << 20;

    explicit TextFile(qint64 uncachedFrom = UncachedFrom);
    ~TextFile();
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    bool OpenRead(const QString& path);
    // Reads up to `maximum` bytes into `buffer`, which holds `maximum` + 1 bytes. The
    // piece ends before the last blank, CR or LF found at index 1 or later, and the next
    // read starts at that byte, so a piece never ends inside a line's multi-byte
    // character. A zero is stored behind the piece. Returns the piece's length, or 0 at
    // the end of the file or on an error.
    qint64 ReadChunk(char* buffer, qint64 maximum);
    bool IsReadOnly() const;
    qint64 Size() const;
    QString ErrorString() const;

    // `expectedSize` (when known) lets a large file bypass the file cache.
    bool OpenWrite(const QString& path, qint64 expectedSize = -1);
    bool Write(const char* data, qint64 length);
    // Completes the write: the new file takes the old one's place. False when anything
    // went wrong, and then the old file is as it was.
    bool Commit();
    void Close();

private:
    void FailUncached();

    QFile m_read;
    std::unique_ptr<QSaveFile> m_write;
    std::unique_ptr<UncachedWriter> m_uncached;
    qint64 m_uncachedFrom;
    // Devices and pipes can't be replaced by renaming: they are written in place.
    std::unique_ptr<QFile> m_direct;
    FileOwner m_owner;
    bool m_writeFailed = false;
    QString m_error;
};
