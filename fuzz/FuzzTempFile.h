#pragma once

#include <QString>
#include <string>

// One scratch file per target for readers that take a path. It lives in memory-backed
// /dev/shm where there is one, so that a million runs don't wear a disk.
class FuzzTempFile
{
public:
    explicit FuzzTempFile(const char* name);
    ~FuzzTempFile();
    const QString& Path() const { return m_path; }
    void Write(const std::string& bytes) const;
    std::string Read() const;

private:
    std::string m_folder;
    QString m_path;
};
