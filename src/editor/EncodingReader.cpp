#include "EncodingReader.h"

#include "AnsiCodePage.h"
#include "AsciiRun.h"
#include "TextEncoding.h"

#include <cstring>

namespace {

char* AppendUtf8(char* out, char32_t cp)
{
    if (cp < 0x80) {
        *out++ = char(cp);
    } else if (cp < 0x800) {
        *out++ = char(0xC0 | (cp >> 6));
        *out++ = char(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        // Lone surrogates take this form too, so that they survive a round trip.
        *out++ = char(0xE0 | (cp >> 12));
        *out++ = char(0x80 | ((cp >> 6) & 0x3F));
        *out++ = char(0x80 | (cp & 0x3F));
    } else {
        *out++ = char(0xF0 | (cp >> 18));
        *out++ = char(0x80 | ((cp >> 12) & 0x3F));
        *out++ = char(0x80 | ((cp >> 6) & 0x3F));
        *out++ = char(0x80 | (cp & 0x3F));
    }
    return out;
}

} // namespace

EncodingReader::EncodingReader(int encoding, int bomLength, const AnsiCodePage* codePage)
    : m_skip(bomLength > 0 ? std::size_t(bomLength) : 0)
    , m_codePage(codePage ? codePage : &AnsiCodePage::Default())
{
    switch (encoding) {
    case TextEncoding::Utf16LE: m_form = Form::Utf16LE; break;
    case TextEncoding::Utf32LE: m_form = Form::Utf32LE; break;
    case TextEncoding::Utf32BE: m_form = Form::Utf32BE; break;
    case TextEncoding::Utf16BE:
    case TextEncoding::Scsu:
    case TextEncoding::Bocu1:
    case TextEncoding::Utf7:
    case TextEncoding::UtfEbcdic:
        // Forms we don't decode are read as big-endian 16-bit units behind their mark.
        m_form = Form::Utf16BE;
        break;
    case TextEncoding::Ansi:
        m_form = Form::SingleByte;
        m_skip = 0; // "Ansi" keeps every byte
        break;
    default:
        m_form = Form::Bytes;
        break;
    }
}

void EncodingReader::Reserve(std::size_t bytes)
{
    if (bytes > m_capacity) {
        m_capacity = bytes;
        m_buffer = std::make_unique_for_overwrite<char[]>(m_capacity);
    }
    m_end = m_buffer.get();
}

void EncodingReader::Emit(char32_t cp)
{
    m_end = AppendUtf8(m_end, cp);
}

void EncodingReader::EmitUnit16(char16_t unit)
{
    if (m_highSurrogate) {
        if (unit >= 0xDC00 && unit <= 0xDFFF) {
            Emit(0x10000 + ((char32_t(m_highSurrogate) - 0xD800) << 10) + (unit - 0xDC00));
            m_highSurrogate = 0;
            return;
        }
        Emit(m_highSurrogate);
        m_highSurrogate = 0;
    }
    if (unit >= 0xD800 && unit <= 0xDBFF) {
        m_highSurrogate = unit;
        return;
    }
    Emit(unit);
}

std::string_view EncodingReader::Feed(const char* data, std::size_t length)
{
    if (m_skip) {
        const std::size_t skip = m_skip < length ? m_skip : length;
        data += skip;
        length -= skip;
        m_skip -= skip;
    }
    if (m_form == Form::Bytes)
        return std::string_view(data, length);
    if (m_form == Form::SingleByte) {
        // ASCII is the same bytes in UTF-8: passed on as it is.
        std::size_t i = AsciiRun(data, length);
        if (i == length)
            return std::string_view(data, length);
        // A character of the code page takes at most three bytes of UTF-8.
        Reserve(3 * length + 16);
        std::memcpy(m_end, data, i);
        m_end += i;
        while (i < length) {
            Emit(m_codePage->Decode(static_cast<unsigned char>(data[i++])));
            const std::size_t run = AsciiRun(data + i, length - i);
            std::memcpy(m_end, data + i, run);
            m_end += run;
            i += run;
        }
        return std::string_view(m_buffer.get(), std::size_t(m_end - m_buffer.get()));
    }

    // Every unit gives at most three bytes per two, a pending surrogate three more.
    Reserve(length + length / 2 + 16);
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    const std::size_t unitSize = (m_form == Form::Utf16LE || m_form == Form::Utf16BE) ? 2 : 4;
    std::size_t i = 0;

    auto decode = [this](const unsigned char* u) {
        switch (m_form) {
        case Form::Utf16LE: EmitUnit16(char16_t(u[0] | (u[1] << 8))); break;
        case Form::Utf16BE: EmitUnit16(char16_t((u[0] << 8) | u[1])); break;
        case Form::Utf32LE:
        case Form::Utf32BE: {
            const char32_t cp = m_form == Form::Utf32LE
                ? char32_t(u[0]) | char32_t(u[1]) << 8 | char32_t(u[2]) << 16 | char32_t(u[3]) << 24
                : char32_t(u[3]) | char32_t(u[2]) << 8 | char32_t(u[1]) << 16 | char32_t(u[0]) << 24;
            if (cp > 0x10FFFF) {
                m_lost += 4;
                Emit(0xFFFD);
            } else {
                Emit(cp);
            }
            break;
        }
        case Form::Bytes:
        case Form::SingleByte: break;
        }
    };

    // Finish a unit begun in the last piece.
    while (m_carryLength > 0 && i < length) {
        m_carry[m_carryLength++] = bytes[i++];
        if (m_carryLength == unitSize) {
            decode(m_carry);
            m_carryLength = 0;
        }
    }
    if (m_form == Form::Utf16LE || m_form == Form::Utf16BE) {
        const int hi = m_form == Form::Utf16LE ? 1 : 0;
        for (; i + 2 <= length; i += 2) {
            const unsigned char high = bytes[i + hi];
            const unsigned char low = bytes[i + 1 - hi];
            // Plain ASCII is most of most text.
            if (high == 0 && low < 0x80 && !m_highSurrogate)
                *m_end++ = char(low);
            else
                EmitUnit16(char16_t((high << 8) | low));
        }
    }
    for (; i + unitSize <= length; i += unitSize)
        decode(bytes + i);
    for (; i < length; ++i)
        m_carry[m_carryLength++] = bytes[i];
    return std::string_view(m_buffer.get(), std::size_t(m_end - m_buffer.get()));
}

std::string_view EncodingReader::Finish()
{
    Reserve(16);
    if (m_highSurrogate) {
        Emit(m_highSurrogate);
        m_highSurrogate = 0;
    }
    m_lost += m_carryLength;
    m_carryLength = 0;
    return std::string_view(m_buffer.get(), std::size_t(m_end - m_buffer.get()));
}
