#pragma once

#include <QString>

#include <cstddef>
#include <memory>

// Writes a large file's bytes straight to the disk instead of through the system's file
// cache. A gigabyte written through the cache first claims a gigabyte of memory for it,
// which can cost more than the disk write itself (in a virtual machine, often twice as
// much), and pushes the user's other files out of the cache; the save syncs anyway, so
// the cache buys nothing. Bytes are gathered in an aligned buffer and written in whole
// blocks; the unaligned rest goes the ordinary way. Where the file system refuses
// uncached writes, everything goes the ordinary way, to the same file.
class UncachedWriter
{
public:
    // Alignment of the buffer and of every uncached write: a whole page, which covers
    // disks of 512- and 4096-byte sectors.
    static constexpr std::size_t Block = 4096;

    // `handle` is an open file descriptor positioned at the start of an empty file;
    // `bufferSize` is rounded up to whole blocks.
    explicit UncachedWriter(int handle, std::size_t bufferSize = std::size_t(16) << 20);
    ~UncachedWriter();
    UncachedWriter(const UncachedWriter&) = delete;
    UncachedWriter& operator=(const UncachedWriter&) = delete;

    bool Write(const char* data, std::size_t length);
    // Writes whatever is still gathered. The caller syncs and closes the file.
    bool Finish();

    // Whether the file system took the writes uncached so far.
    bool IsUncached() const { return m_uncached; }
    // The system's reason for the first failure.
    QString ErrorString() const { return m_error; }

private:
    bool Flush(std::size_t length);
    bool WriteOut(const char* data, std::size_t length);
    void StopUncached();

    struct FreeBuffer
    {
        void operator()(char* p) const;
    };

    int m_handle;
    std::unique_ptr<char, FreeBuffer> m_buffer;
    std::size_t m_capacity = 0;
    std::size_t m_used = 0;
    bool m_uncached = false;
    bool m_failed = false;
    QString m_error;
};
