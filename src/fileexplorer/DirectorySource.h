#pragma once

#include <QString>
#include <vector>

// One entry of a folder as the tree needs it: a name, whether it is a folder, whether
// it is a symbolic link. The kind comes from the directory entry itself where the file
// system records it, so listing a folder of many files reads no file's metadata.
struct DirEntry
{
    QString name;
    bool folder = false;
    bool link = false;
};

// Where the file tree reads folders from. The tree asks for one listing per expansion
// and at most one look into each child folder (does it hold anything?).
class IDirectorySource
{
public:
    virtual ~IDirectorySource() = default;
    // The visible entries of `path` ("." and ".." never; names starting with a dot only
    // with `hidden`). False, with `entries` empty and the system's reason in `reason`,
    // when the folder can't be read, or can't be read to its end.
    virtual bool List(const QString& path, bool hidden, std::vector<DirEntry>& entries, QString& reason) = 0;
    // Whether `path` holds at least one visible entry; stops at the first. A folder that
    // exists but can't be opened counts as holding something: its expand button lets the
    // user open it and read why it shows nothing.
    virtual bool HasContent(const QString& path, bool hidden) = 0;
};

// The local file system.
class CLocalDirectorySource : public IDirectorySource
{
public:
    bool List(const QString& path, bool hidden, std::vector<DirEntry>& entries, QString& reason) override;
    bool HasContent(const QString& path, bool hidden) override;
};
