#pragma once

#include <QFile>
#include <QString>

// The bytes of a file as they were when it was opened, read-only. Regular files are
// memory-mapped; a file the system refuses to map is read through its handle instead.
// Another program may truncate the file while we hold it: touching a mapped page past
// the new end raises SIGBUS, so every access first checks the file's current size
// (one fstat) and refuses once the file holds fewer bytes than it did at open.
class CHexFileSource
{
public:
    CHexFileSource() = default;
    ~CHexFileSource();
    CHexFileSource(const CHexFileSource&) = delete;
    CHexFileSource& operator=(const CHexFileSource&) = delete;

    // Opens `path`. On failure `error` holds the reason in the user's words.
    bool Open(const QString& path, QString* error);
    void Close();

    bool IsOpen() const { return m_file.isOpen(); }
    QString Path() const { return m_path; }
    qint64 Size() const { return m_size; }
    bool IsMapped() const { return m_map != nullptr; }

    // False once the file on disk has shrunk below the size it had at open; from then
    // on no byte of it is trusted (it may also have been rewritten).
    bool IsIntact() const;

    // Copies [offset, offset + length) into `dest`; false when out of range or the file
    // no longer holds these bytes.
    bool Read(qint64 offset, qint64 length, uchar* dest) const;

    // The mapped bytes of [offset, offset + length), or null when the file is not mapped,
    // the range is bad or the file has shrunk. Read them inside MappedMemoryGuard::Run
    // and call MarkBroken when that reports a fault.
    const uchar* Data(qint64 offset, qint64 length) const;
    void MarkBroken() const;

    // The open handle, for copying with the system's help; -1 when closed.
    int Handle() const { return m_file.isOpen() ? m_file.handle() : -1; }

private:
    qint64 CurrentSize() const;

    mutable QFile m_file;
    QString m_path;
    uchar* m_map = nullptr;
    qint64 m_size = 0;
    mutable bool m_broken = false;
};
