#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

class AnsiCodePage;

// Turns the bytes of a file, fed in pieces of any size, into the UTF-8 text the control
// holds: UTF-8 as it is, "Ansi" through its code page, the 16- and 32-bit forms decoded.
// A unit split between two pieces is carried over, so pieces may be cut anywhere.
class EncodingReader
{
public:
    // "Ansi" reads through `codePage`, windows-1252 when none is given.
    EncodingReader(int encoding, int bomLength, const AnsiCodePage* codePage = nullptr);

    // The text of the next piece; valid until the next call.
    std::string_view Feed(const char* data, std::size_t length);
    // What is left over at the end of the file (a lone high surrogate); call once.
    std::string_view Finish();

    // Bytes that could not be turned into text: an odd last byte of a 16-bit file, a
    // partial 32-bit unit, a code point beyond Unicode.
    std::size_t LostBytes() const { return m_lost; }

private:
    enum class Form { Bytes, SingleByte, Utf16LE, Utf16BE, Utf32LE, Utf32BE };
    void Emit(char32_t cp);
    void EmitUnit16(char16_t unit);
    void Reserve(std::size_t bytes);

    Form m_form;
    std::size_t m_skip;
    const AnsiCodePage* m_codePage = nullptr;
    // Output buffer, reused between pieces; m_end is where the next byte goes.
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    char* m_end = nullptr;
    unsigned char m_carry[4] = {};
    std::size_t m_carryLength = 0;
    char16_t m_highSurrogate = 0;
    std::size_t m_lost = 0;
};
