#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// The length of the run of ASCII bytes (below 0x80) at the start of `s`. Most text is
// ASCII, and where every encoding agrees with it, a run is copied or passed on whole
// rather than looked at byte by byte; eight bytes are tested at a time.
inline std::size_t AsciiRun(const char* s, std::size_t length)
{
    constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
    std::size_t i = 0;
    for (; i + 32 <= length; i += 32) {
        std::uint64_t w[4];
        std::memcpy(w, s + i, sizeof w);
        if (((w[0] | w[1] | w[2] | w[3]) & kHighBits) != 0)
            break;
    }
    for (; i + 8 <= length; i += 8) {
        std::uint64_t w;
        std::memcpy(&w, s + i, sizeof w);
        if ((w & kHighBits) != 0)
            break;
    }
    while (i < length && static_cast<unsigned char>(s[i]) < 0x80)
        ++i;
    return i;
}
