#include "Windows1252.h"

namespace Windows1252 {

namespace {
// 0x80 to 0x9F; the rest of the code page is Latin-1. Zero marks an undefined byte.
constexpr char16_t High[32] = {
    0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0, 0x017D, 0,
    0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178,
};
} // namespace

QChar ToUnicode(unsigned char byte)
{
    if (byte >= 0x80 && byte <= 0x9F && High[byte - 0x80] != 0)
        return QChar(High[byte - 0x80]);
    return QChar(char16_t(byte));
}

QString Decode(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (char c : bytes)
        text.append(ToUnicode(static_cast<unsigned char>(c)));
    return text;
}

} // namespace Windows1252
