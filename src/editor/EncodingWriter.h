#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

class AnsiCodePage;

// Turns the control's text, given in pieces of any size, into the bytes of a file in
// one encoding, mark first when asked. A UTF-8 sequence split between pieces is
// carried over to the next one.
class EncodingWriter
{
public:
    // "Ansi" writes through `codePage`, windows-1252 when none is given.
    EncodingWriter(int encoding, bool writeMark, const AnsiCodePage* codePage = nullptr);

    // The bytes for the next piece; valid until the next call.
    std::string_view Encode(const char* data, std::size_t length);
    // Bytes of a sequence left open at the end of the text; call once.
    std::string_view Finish();

    // Characters the code page has no byte for; nothing is written for them, so a
    // caller must not keep the output when this is not zero.
    std::size_t Unencodable() const { return m_unencodable; }

private:
    enum class Form { Bytes, SingleByte, Utf16LE, Utf16BE, Utf32LE, Utf32BE };
    void Put(char32_t cp);
    // A byte that starts no sequence: one unit of its own, or for "Ansi" the byte itself.
    void PutStray(unsigned char byte);
    void PutUnit16(char16_t unit);
    std::size_t DecodeOne(const unsigned char* s, std::size_t available, bool atEnd);

    Form m_form;
    std::string m_mark;
    void Reserve(std::size_t bytes);
    std::string_view Output() const { return {m_buffer.get(), std::size_t(m_end - m_buffer.get())}; }

    // Output buffer, reused between pieces; m_end is where the next byte goes.
    std::unique_ptr<char[]> m_buffer;
    std::size_t m_capacity = 0;
    char* m_end = nullptr;
    std::string m_carry;
    const AnsiCodePage* m_codePage = nullptr;
    std::size_t m_unencodable = 0;
};
