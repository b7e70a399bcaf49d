#include "UncachedWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

void UncachedWriter::FreeBuffer::operator()(char* p) const
{
    std::free(p);
}

UncachedWriter::UncachedWriter(int handle, std::size_t bufferSize)
    : m_handle(handle)
{
    m_capacity = std::max(Block, (bufferSize + Block - 1) / Block * Block);
    m_buffer.reset(static_cast<char*>(std::aligned_alloc(Block, m_capacity)));
    if (!m_buffer) {
        // Without the buffer every write goes straight through, cached.
        m_capacity = 0;
        return;
    }
#ifdef O_DIRECT
    const int flags = ::fcntl(m_handle, F_GETFL);
    // File systems without uncached writes refuse the flag here.
    m_uncached = flags != -1 && ::fcntl(m_handle, F_SETFL, flags | O_DIRECT) == 0;
#endif
}

UncachedWriter::~UncachedWriter() = default;

bool UncachedWriter::Write(const char* data, std::size_t length)
{
    if (m_failed)
        return false;
    if (m_capacity == 0)
        return WriteOut(data, length);
    while (length > 0) {
        const std::size_t n = std::min(length, m_capacity - m_used);
        std::memcpy(m_buffer.get() + m_used, data, n);
        m_used += n;
        data += n;
        length -= n;
        if (m_used == m_capacity && !Flush(m_capacity))
            return false;
    }
    return true;
}

bool UncachedWriter::Finish()
{
    if (m_failed)
        return false;
    if (m_used == 0)
        return true;
    // Whole blocks uncached; then the rest, which no uncached write can take, cached.
    const std::size_t whole = m_used / Block * Block;
    if (whole > 0 && !Flush(whole))
        return false;
    if (m_used > 0) {
        StopUncached();
        if (!WriteOut(m_buffer.get(), m_used))
            return false;
        m_used = 0;
    }
    return true;
}

// Writes the first `length` bytes gathered (a whole number of blocks) and keeps the rest
// at the start of the buffer.
bool UncachedWriter::Flush(std::size_t length)
{
    if (!WriteOut(m_buffer.get(), length))
        return false;
    m_used -= length;
    if (m_used > 0)
        std::memmove(m_buffer.get(), m_buffer.get() + length, m_used);
    return true;
}

bool UncachedWriter::WriteOut(const char* data, std::size_t length)
{
    while (length > 0) {
        const ssize_t n = ::write(m_handle, data, length);
        if (n > 0) {
            data += n;
            length -= std::size_t(n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        // An uncached write the file system or disk will not take as given (a stricter
        // alignment, a short write that left the rest unaligned): the same bytes cached.
        if (n < 0 && errno == EINVAL && m_uncached) {
            StopUncached();
            continue;
        }
        m_failed = true;
        m_error = n < 0 ? QString::fromLocal8Bit(std::strerror(errno))
                        : QString::fromLocal8Bit(std::strerror(ENOSPC));
        return false;
    }
    return true;
}

void UncachedWriter::StopUncached()
{
#ifdef O_DIRECT
    if (m_uncached) {
        const int flags = ::fcntl(m_handle, F_GETFL);
        if (flags != -1)
            ::fcntl(m_handle, F_SETFL, flags & ~O_DIRECT);
        m_uncached = false;
    }
#endif
}
