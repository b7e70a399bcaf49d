#pragma once

#include <QString>
#include <QtGlobal>

// What a file on disk looked like when we last read or wrote it: enough to tell that
// another program has since written, replaced or removed it. Size and modification time
// to the nanosecond catch a rewrite; device and inode catch a file renamed over it (the
// way editors and this program save), even one of the same size written in the same
// instant.
class FileStamp
{
public:
    enum class Change { None, Modified, Deleted };

    // The file as it is now; an empty stamp when it does not exist.
    static FileStamp Of(const QString& path);

    bool IsValid() const { return m_valid; }
    // How the file at `path` differs from this stamp. An empty stamp reports no change
    // (there was no file to compare with).
    Change Compare(const QString& path) const;
    // The change still to be asked about: none when the file is as it was, or as it was
    // when the user last declined to reload it (`declined`). `now` gets the file's stamp.
    Change Unasked(const QString& path, const FileStamp& declined, FileStamp& now) const;

    bool operator==(const FileStamp&) const = default;

private:
    bool m_valid = false;
    qint64 m_size = 0;
    qint64 m_seconds = 0;
    qint64 m_nanoseconds = 0;
    quint64 m_device = 0;
    quint64 m_inode = 0;
};
