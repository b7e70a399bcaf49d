#include "LargeFileMode.h"

#include "AnsiCodePage.h"
#include "AsciiRun.h"
#include "TextEncoding.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace LargeFileMode {

qint64 ThresholdBytes(qint64 megabytes)
{
    if (megabytes <= 0)
        return 0;
    // A silly figure must not overflow into a small one.
    constexpr qint64 maximum = std::numeric_limits<qint64>::max() >> 20;
    return megabytes >= maximum ? std::numeric_limits<qint64>::max() : megabytes << 20;
}

bool IsLarge(qint64 fileSize, qint64 thresholdBytes)
{
    return thresholdBytes > 0 && fileSize > thresholdBytes;
}

qint64 MaxTextBytes(qint64 fileSize, int encoding)
{
    switch (encoding) {
    case TextEncoding::Utf8:
    case TextEncoding::Auto:
    case TextEncoding::Utf32LE:
    case TextEncoding::Utf32BE:
        return fileSize;
    case TextEncoding::Utf16LE:
    case TextEncoding::Utf16BE:
        return fileSize / 2 * 3 + 3;
    default:
        // A code page's byte, or a compressed form's, may stand for up to three bytes.
        return fileSize * 3;
    }
}

qint64 Utf8SizeOfAnsiFile(const QString& path, const AnsiCodePage& codePage)
{
    // What each byte adds to the file's size once it is UTF-8.
    std::array<int, 256> extra{};
    for (int byte = 0x80; byte < 256; ++byte)
        extra[std::size_t(byte)] = codePage.Decode(static_cast<unsigned char>(byte)) < 0x800 ? 1 : 2;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    constexpr qint64 kPiece = 4 << 20;
    std::vector<char> buffer(static_cast<std::size_t>(kPiece));
    qint64 total = 0;
    for (;;) {
        const qint64 n = file.read(buffer.data(), kPiece);
        if (n < 0)
            return -1;
        if (n == 0)
            break;
        total += n;
        for (qint64 i = AsciiRun(buffer.data(), std::size_t(n)); i < n;) {
            total += extra[static_cast<unsigned char>(buffer[std::size_t(i)])];
            ++i;
            i += qint64(AsciiRun(buffer.data() + i, std::size_t(n - i)));
        }
    }
    return total;
}

qint64 TextBytesOfFile(const QString& path, qint64 fileSize, int encoding, const AnsiCodePage& codePage)
{
    const qint64 bound = MaxTextBytes(fileSize, encoding);
    if (encoding != TextEncoding::Ansi || (DocumentOptions(bound, true) & TextLarge) == 0
        || (DocumentOptions(fileSize, true) & TextLarge) != 0)
        return bound;
    const qint64 exact = Utf8SizeOfAnsiFile(path, codePage);
    return exact >= 0 ? exact : bound;
}

int DocumentOptions(qint64 textBytes, bool coloured)
{
    int options = 0;
    // Room for what is typed after the load: a file just below 2 GB grows past it.
    constexpr qint64 smallLimit = std::numeric_limits<qint32>::max() - (64 << 20);
    if (textBytes > smallLimit)
        options |= TextLarge;
    if (!coloured)
        options |= StylesNone;
    return options;
}

qint64 StorageFor(qint64 textBytes)
{
    constexpr qint64 roomyFrom = 8LL << 20;
    constexpr qint64 mostRoom = 64LL << 20;
    const qint64 bytes = std::max<qint64>(textBytes, 0);
    return bytes + (bytes > roomyFrom ? std::min(bytes / 6, mostRoom) : 1000);
}

bool HasLineLongerThan(const char* text, qint64 length, qint64 limit)
{
    if (limit <= 0 || length <= limit)
        return false;
    qint64 run = 0;
    for (qint64 i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == '\n' || c == '\r') {
            run = 0;
        } else if (++run > limit) {
            return true;
        }
    }
    return false;
}

} // namespace LargeFileMode
