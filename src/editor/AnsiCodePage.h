#pragma once

#include <QString>
#include <array>
#include <cstdint>

// The single-byte code page that "Ansi" text is read and written in. Each of the 256
// byte values stands for one character; a byte the code page leaves undefined stands for
// the character of the same number, so that any file comes back byte for byte.
class AnsiCodePage
{
public:
    static constexpr const char* DefaultName = "windows-1252";

    // A name the system does not know, or a code page that does not keep ASCII as it
    // is, gives windows-1252.
    explicit AnsiCodePage(const QString& name = QString::fromLatin1(DefaultName));

    // The name in use (after any fallback).
    const QString& Name() const { return m_name; }
    char32_t Decode(unsigned char byte) const { return m_toUnicode[byte]; }
    // The byte of a character, or -1 when the code page has none.
    int Encode(char32_t character) const;

    // Whether every character of UTF-8 `text` has a byte here. Bytes that start no valid
    // sequence count as holdable: they are written back as they are.
    bool CanHold(const char* text, std::size_t length) const;

    // Shared windows-1252 table, for code that is given no code page.
    static const AnsiCodePage& Default();

private:
    void Index();

    QString m_name;
    std::array<char32_t, 256> m_toUnicode{};
    // (character, byte) sorted by character, for encoding.
    std::array<std::pair<char32_t, std::uint8_t>, 256> m_fromUnicode{};
};
