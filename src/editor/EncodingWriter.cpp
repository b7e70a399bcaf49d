#include "EncodingWriter.h"

#include "AnsiCodePage.h"
#include "AsciiRun.h"
#include "TextEncoding.h"

#include <cstring>

EncodingWriter::EncodingWriter(int encoding, bool writeMark, const AnsiCodePage* codePage)
    : m_codePage(codePage ? codePage : &AnsiCodePage::Default())
{
    switch (encoding) {
    case TextEncoding::Utf8: m_form = Form::Bytes; break;
    case TextEncoding::Utf16LE: m_form = Form::Utf16LE; break;
    case TextEncoding::Utf16BE: m_form = Form::Utf16BE; break;
    case TextEncoding::Utf32LE: m_form = Form::Utf32LE; break;
    case TextEncoding::Utf32BE: m_form = Form::Utf32BE; break;
    case TextEncoding::Ansi:
        m_form = Form::SingleByte;
        writeMark = false;
        break;
    default:
        // A document never saved with an encoding, and forms we don't write: the bytes
        // as they are.
        m_form = Form::Bytes;
        writeMark = false;
        break;
    }
    if (writeMark) {
        const QByteArray mark = TextEncoding::Mark(encoding);
        m_mark.assign(mark.constData(), std::size_t(mark.size()));
    }
}

void EncodingWriter::Reserve(std::size_t bytes)
{
    if (bytes > m_capacity) {
        m_capacity = bytes;
        m_buffer = std::make_unique_for_overwrite<char[]>(m_capacity);
    }
    m_end = m_buffer.get();
    // The mark goes before the first bytes of text.
    if (!m_mark.empty()) {
        std::memcpy(m_end, m_mark.data(), m_mark.size());
        m_end += m_mark.size();
        m_mark.clear();
    }
}

void EncodingWriter::PutUnit16(char16_t unit)
{
    if (m_form == Form::Utf16LE) {
        *m_end++ = char(unit & 0xFF);
        *m_end++ = char(unit >> 8);
    } else {
        *m_end++ = char(unit >> 8);
        *m_end++ = char(unit & 0xFF);
    }
}

void EncodingWriter::Put(char32_t cp)
{
    switch (m_form) {
    case Form::Utf16LE:
    case Form::Utf16BE:
        if (cp >= 0x10000) {
            cp -= 0x10000;
            PutUnit16(char16_t(0xD800 + (cp >> 10)));
            PutUnit16(char16_t(0xDC00 + (cp & 0x3FF)));
        } else {
            PutUnit16(char16_t(cp));
        }
        break;
    case Form::Utf32LE:
        for (int shift = 0; shift < 32; shift += 8)
            *m_end++ = char((cp >> shift) & 0xFF);
        break;
    case Form::Utf32BE:
        for (int shift = 24; shift >= 0; shift -= 8)
            *m_end++ = char((cp >> shift) & 0xFF);
        break;
    case Form::SingleByte: {
        const int byte = m_codePage->Encode(cp);
        if (byte < 0)
            ++m_unencodable;
        else
            *m_end++ = char(byte);
        break;
    }
    case Form::Bytes:
        break;
    }
}

void EncodingWriter::PutStray(unsigned char byte)
{
    if (m_form == Form::SingleByte)
        *m_end++ = char(byte);
    else
        Put(byte);
}

// Decodes one character at `s`; returns how many bytes it took, or 0 when the
// sequence is cut off by the end of the piece and more may follow.
std::size_t EncodingWriter::DecodeOne(const unsigned char* s, std::size_t available, bool atEnd)
{
    const unsigned char lead = s[0];
    std::size_t need = 1;
    char32_t cp = lead;
    if (lead >= 0xF0 && lead <= 0xF4) { need = 4; cp = lead & 0x07; }
    else if (lead >= 0xE0 && lead <= 0xEF) { need = 3; cp = lead & 0x0F; }
    else if (lead >= 0xC2 && lead <= 0xDF) { need = 2; cp = lead & 0x1F; }

    if (need > 1) {
        std::size_t have = 1;
        while (have < need && have < available && (s[have] & 0xC0) == 0x80)
            ++have;
        if (have < need && have == available && !atEnd)
            return 0;
        if (have == need) {
            for (std::size_t k = 1; k < need; ++k)
                cp = (cp << 6) | (s[k] & 0x3F);
            Put(cp);
            return need;
        }
    }
    // A byte that starts no complete sequence (text that isn't UTF-8) is a unit by itself.
    PutStray(lead);
    return 1;
}

std::string_view EncodingWriter::Encode(const char* data, std::size_t length)
{
    if (m_form == Form::Bytes) {
        if (m_mark.empty())
            return std::string_view(data, length);
        Reserve(m_mark.size() + length);
        std::memcpy(m_end, data, length);
        m_end += length;
        return Output();
    }

    // ASCII text is the same bytes in a single-byte code page: passed on as it is.
    if (m_form == Form::SingleByte && m_carry.empty() && AsciiRun(data, length) == length)
        return std::string_view(data, length);

    // A UTF-8 byte gives at most one 16-bit unit (a four-byte sequence gives two units
    // for four bytes) or one 32-bit unit per byte; carried bytes and the mark on top.
    const std::size_t unitSize = (m_form == Form::Utf32LE || m_form == Form::Utf32BE) ? 4 : 2;
    Reserve(unitSize * (length + m_carry.size() + 4) + 8);
    std::size_t i = 0;
    if (!m_carry.empty()) {
        // Finish the sequence begun at the end of the last piece: no sequence is longer
        // than four bytes, so four more bytes always settle it.
        const std::size_t carried = m_carry.size();
        const std::size_t taken = length < 4 ? length : 4;
        std::string head = m_carry;
        head.append(data, taken);
        m_carry.clear();
        const auto* h = reinterpret_cast<const unsigned char*>(head.data());
        std::size_t pos = 0;
        while (pos < carried) {
            const std::size_t used = DecodeOne(h + pos, head.size() - pos, false);
            if (used == 0) {
                m_carry = head.substr(pos);
                return Output();
            }
            pos += used;
        }
        i = pos - carried;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    const bool little = m_form == Form::Utf16LE;
    const bool wide16 = m_form == Form::Utf16LE || m_form == Form::Utf16BE;
    while (i < length) {
        // Plain ASCII is most of most text: a run at a time.
        if (const std::size_t run = AsciiRun(data + i, length - i)) {
            if (m_form == Form::SingleByte) {
                std::memcpy(m_end, data + i, run);
                m_end += run;
            } else if (wide16) {
                for (std::size_t k = i; k < i + run; ++k) {
                    *m_end++ = char(little ? bytes[k] : 0);
                    *m_end++ = char(little ? 0 : bytes[k]);
                }
            } else {
                for (std::size_t k = i; k < i + run; ++k)
                    Put(bytes[k]);
            }
            i += run;
            continue;
        }
        const std::size_t used = DecodeOne(bytes + i, length - i, false);
        if (used == 0) {
            m_carry.assign(data + i, length - i);
            break;
        }
        i += used;
    }
    return Output();
}

std::string_view EncodingWriter::Finish()
{
    Reserve(4 * (m_carry.size() + 1) + 8);
    const std::string rest = std::move(m_carry);
    m_carry.clear();
    std::size_t i = 0;
    const auto* bytes = reinterpret_cast<const unsigned char*>(rest.data());
    while (i < rest.size())
        i += DecodeOne(bytes + i, rest.size() - i, true);
    return Output();
}
