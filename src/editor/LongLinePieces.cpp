#include "LongLinePieces.h"

namespace LongLinePieces {

namespace {

bool IsAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

// The end of the piece that starts at `i`.
qint64 PieceEnd(const char* text, qint64 length, qint64 i)
{
    auto runEnd = [&](qint64 from) {
        while (from < length && !IsAscii(text[from]))
            ++from;
        return from;
    };
    if (!IsAscii(text[i]))
        return runEnd(i);
    if (i + 1 >= length)
        return i + 1;
    if (!IsAscii(text[i + 1]))
        return runEnd(i + 1);
    // Leave the second character to the run behind it, if one follows.
    if (i + 2 < length && !IsAscii(text[i + 2]))
        return i + 1;
    return i + 2;
}

} // namespace

void Fill(const char* text, qint64 length, unsigned char* styles, unsigned char before)
{
    unsigned char style = before == StyleA ? StyleB : StyleA;
    for (qint64 i = 0; i < length;) {
        const qint64 end = PieceEnd(text, length, i);
        for (; i < end; ++i)
            styles[i] = style;
        style = style == StyleA ? StyleB : StyleA;
    }
}

} // namespace LongLinePieces
