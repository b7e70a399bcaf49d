#pragma once

#include <cstddef>
#include <string>

// Finds a run of bytes in a buffer. It looks for the needle's rarest byte with memchr,
// which scans at memory speed, and checks the whole needle only where that byte occurs.
// Without case, ASCII letters match either case; other bytes match themselves, which is
// right for UTF-8 text when the needle is ASCII.
class ByteSearcher
{
public:
    static constexpr std::size_t npos = std::size_t(-1);

    ByteSearcher() = default;
    ByteSearcher(std::string needle, bool caseSensitive);

    // Offset of the first occurrence starting at or after `from`, or npos.
    std::size_t Find(const char* data, std::size_t length, std::size_t from) const;

    std::size_t Length() const { return m_needle.size(); }
    bool IsEmpty() const { return m_needle.empty(); }

private:
    bool Verify(const char* at) const;

    std::string m_needle; // folded to lower case when searching without case
    bool m_caseSensitive = true;
    std::size_t m_rareIndex = 0;
    unsigned char m_rareLower = 0;
    unsigned char m_rareUpper = 0;
};
