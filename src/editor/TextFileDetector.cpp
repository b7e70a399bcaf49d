#include "TextFileDetector.h"

#include "ReadableFile.h"
#include "TextEncoding.h"

#include <QFile>
#include <algorithm>
#include <cstring>

void TextFileDetector::DetectMark(const unsigned char* data, std::size_t length, int& code,
                                  int& bomLength)
{
    // Unread positions hold a byte no mark uses, so short files compare safely.
    unsigned char b[5];
    std::memset(b, 0xA5, sizeof b);
    std::memcpy(b, data, length < 5 ? length : 5);

    code = TextEncoding::Ansi;
    bomLength = 0;
    if (length == 0)
        return;
    if (b[0] == 0xFE && b[1] == 0xFF) { code = TextEncoding::Utf16BE; bomLength = 2; }
    else if (b[0] == 0xFF && b[1] == 0xFE && b[2] == 0 && b[3] == 0 && length >= 4) { code = TextEncoding::Utf32LE; bomLength = 4; }
    else if (b[0] == 0xFF && b[1] == 0xFE) { code = TextEncoding::Utf16LE; bomLength = 2; }
    else if (b[0] == 0xEF && b[1] == 0xBB && b[2] == 0xBF) { code = TextEncoding::Utf8; bomLength = 3; }
    else if (b[0] == 0 && b[1] == 0 && b[2] == 0xFE && b[3] == 0xFF) { code = TextEncoding::Utf32BE; bomLength = 4; }
    else if (b[0] == 0x0E && b[1] == 0xFE && b[2] == 0xFF) { code = TextEncoding::Scsu; bomLength = 3; }
    else if (b[0] == 0xFB && b[1] == 0xEE && b[2] == 0x28) { code = TextEncoding::Bocu1; bomLength = 3; }
    else if (b[0] == 0x2B && b[1] == 0x2F && b[2] == 0x76 && b[3] == 0x38 && b[4] == 0x2D) { code = TextEncoding::Utf7; bomLength = 5; }
    else if (b[0] == 0x2B && b[1] == 0x2F && b[2] == 0x76
             && (b[3] == 0x38 || b[3] == 0x39 || b[3] == 0x2B || b[3] == 0x2F)) { code = TextEncoding::Utf7; bomLength = 4; }
    else if (b[0] == 0xDD && b[1] == 0x73 && b[2] == 0x66 && b[3] == 0x73) { code = TextEncoding::UtfEbcdic; bomLength = 4; }
}

namespace {

int SequenceLength(unsigned char lead)
{
    if (lead < 0xC0) return 1;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    if (lead < 0xF8) return 4;
    if (lead < 0xFC) return 5;
    return 6;
}

bool LegalSequence(const unsigned char* s, int length)
{
    if (length > 4)
        return false;
    const unsigned char lead = s[0];
    if ((lead >= 0x80 && lead <= 0xC1) || lead >= 0xF5)
        return false;
    for (int i = 1; i < length; ++i) {
        if (s[i] < 0x80 || s[i] > 0xBF)
            return false;
    }
    if (length >= 2) {
        if (lead == 0xE0 && s[1] < 0xA0) return false;
        if (lead == 0xED && s[1] > 0x9F) return false;
        if (lead == 0xF0 && s[1] < 0x90) return false;
        if (lead == 0xF4 && s[1] > 0x8F) return false;
    }
    return true;
}

} // namespace

bool TextFileDetector::LooksLikeUtf8(const unsigned char* data, std::size_t length)
{
    if (length < 7)
        return false;
    const std::size_t span = length - 1;
    // The counter starts five ahead of the walk, so the last bytes are left unjudged.
    std::size_t counter = 5;
    std::size_t pos = 0;
    bool multiByte = false;
    while (counter < span) {
        const int seq = SequenceLength(data[pos]);
        if (pos + std::size_t(seq) > length)
            return false;
        if (seq > 1)
            multiByte = true;
        if (!LegalSequence(data + pos, seq))
            return false;
        pos += std::size_t(seq);
        counter += std::size_t(seq);
    }
    return multiByte;
}

void TextFileDetector::ExamineBuffer(const char* data, std::size_t length)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    if (length > std::size_t(SampleSize))
        length = SampleSize;
    DetectMark(bytes, length, m_encoding, m_bomLength);

    // Nothing but zero bytes is no text in any encoding: a disk image, a sparse file.
    const bool allZero = length > 0
        && std::find_if(bytes, bytes + length, [](unsigned char b) { return b != 0; }) == bytes + length;
    if (m_encoding == TextEncoding::Ansi && length >= 2 && !allZero) {
        // 16-bit text without a mark: every high (or low) byte zero.
        const std::size_t half = length / 2;
        std::size_t oddZeros = 0;
        std::size_t evenZeros = 0;
        for (std::size_t i = 0; i < length; ++i) {
            if (bytes[i] == 0)
                (i & 1 ? oddZeros : evenZeros) += 1;
        }
        if (oddZeros == half)
            m_encoding = TextEncoding::Utf16LE;
        else if (evenZeros == half)
            m_encoding = TextEncoding::Utf16BE;
    }
    // A file of fewer than two bytes stays "Ansi", so that it keeps its byte.
    if (m_encoding == TextEncoding::Ansi && LooksLikeUtf8(bytes, length))
        m_encoding = TextEncoding::Utf8;

    m_isBinary = m_encoding == TextEncoding::Ansi
        && std::memchr(bytes, 0, length) != nullptr;
}

bool TextFileDetector::Examine(const QString& path)
{
    QFile file;
    if (!ReadableFile::Open(file, path, nullptr))
        return false;
    char sample[SampleSize];
    const qint64 got = file.read(sample, SampleSize);
    if (got < 0)
        return false;
    ExamineBuffer(sample, std::size_t(got));
    return true;
}
