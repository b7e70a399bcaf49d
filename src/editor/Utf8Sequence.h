#pragma once

#include <cstddef>

// One character read from UTF-8 held by the control.
namespace Utf8Sequence {

struct Decoded
{
    char32_t character = 0;
    std::size_t length = 1;
    // False for a byte that starts no complete sequence; `character` is then the byte.
    bool valid = false;
};

inline Decoded Decode(const unsigned char* s, std::size_t available)
{
    Decoded d;
    const unsigned char lead = s[0];
    d.character = lead;
    if (lead < 0x80) {
        d.valid = true;
        return d;
    }
    std::size_t need = 1;
    char32_t cp = 0;
    if (lead >= 0xF0 && lead <= 0xF4) { need = 4; cp = lead & 0x07; }
    else if (lead >= 0xE0 && lead <= 0xEF) { need = 3; cp = lead & 0x0F; }
    else if (lead >= 0xC2 && lead <= 0xDF) { need = 2; cp = lead & 0x1F; }
    if (need == 1 || available < need)
        return d;
    for (std::size_t k = 1; k < need; ++k) {
        if ((s[k] & 0xC0) != 0x80)
            return d;
        cp = (cp << 6) | (s[k] & 0x3F);
    }
    d.character = cp;
    d.length = need;
    d.valid = true;
    return d;
}

} // namespace Utf8Sequence
