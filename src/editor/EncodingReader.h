#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

// Turns the bytes of a file, fed in pieces of any size, into the text the control
// holds: the bytes themselves for "Ansi" and UTF-8, UTF-8 for the 16- and 32-bit forms.
// A unit split between two pieces is carried over, so pieces may be cut anywhere.
class EncodingReader
{
public:
    EncodingReader(int encoding, int bomLength);

    // The text of the next piece; valid until the next call.
    std::string_view Feed(const char* data, std::size_t length);
    // What is left over at the end of the file (a lone high surrogate); call once.
    std::string_view Finish();

    // Bytes that could not be turned into text: an odd last byte of a 16-bit file, a
    // partial 32-bit unit, a code point beyond Unicode.
    std::size_t LostBytes() const { return m_lost; }

private:
    enum class Form { Bytes, Utf16LE, Utf16BE, Utf32LE, Utf32BE };
    void Emit(char32_t cp);
    void EmitUnit16(char16_t unit);
    void Reserve(std::size_t bytes);

    Form m_form;
    std::size_t m_skip;
    // Output buffer, reused between pieces; m_end is where the next byte goes.
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    char* m_end = nullptr;
    unsigned char m_carry[4] = {};
    std::size_t m_carryLength = 0;
    char16_t m_highSurrogate = 0;
    std::size_t m_lost = 0;
};
