#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// Takes a fuzzer's bytes apart into small decisions and runs of data, the way a
// structured input would, so that every input means something to the target.
class FuzzInput
{
public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    bool Empty() const { return m_pos >= m_size; }
    std::size_t Remaining() const { return m_size - m_pos; }

    std::uint8_t Byte()
    {
        return m_pos < m_size ? m_data[m_pos++] : 0;
    }
    bool Flag() { return Byte() & 1; }
    // A number in [0, limit]; two bytes, so that large offsets are reachable.
    std::size_t Below(std::size_t limit)
    {
        const std::size_t value = std::size_t(Byte()) << 8 | Byte();
        return limit == 0 ? 0 : value % (limit + 1);
    }
    // A run of at most `maximum` bytes whose length comes first.
    std::string Bytes(std::size_t maximum)
    {
        const std::size_t n = std::min<std::size_t>(Below(maximum), Remaining());
        std::string out(reinterpret_cast<const char*>(m_data + m_pos), n);
        m_pos += n;
        return out;
    }
    std::string Rest()
    {
        std::string out(reinterpret_cast<const char*>(m_data + m_pos), m_size - m_pos);
        m_pos = m_size;
        return out;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_pos = 0;
};

// A failed property: prints what differs and aborts, so that the fuzzer keeps the input
// and the replay test fails.
[[noreturn]] void FuzzFail(const char* what);
#define FUZZ_CHECK(condition) \
    do { if (!(condition)) FuzzFail(#condition " at " __FILE__ ":" FUZZ_STR(__LINE__)); } while (0)
#define FUZZ_STR(x) FUZZ_STR2(x)
#define FUZZ_STR2(x) #x
