#include "ColourUtil.h"

#include "SyntaxColour.h"

namespace ColourUtil {

namespace {

int DigitAt(QStringView text, qsizetype position)
{
    if (position >= text.size())
        return 0;
    const char16_t c = text[position].unicode();
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return 0;
}

quint32 PairAt(QStringView text, qsizetype position)
{
    return quint32(DigitAt(text, position) * 16 + DigitAt(text, position + 1));
}

} // namespace

quint32 FromHex(QStringView text)
{
    if (text.isEmpty())
        return SyntaxColour::DefaultBack;
    const quint32 red = PairAt(text, 1);
    const quint32 green = PairAt(text, 3);
    const quint32 blue = PairAt(text, 5);
    return red | (green << 8) | (blue << 16);
}

QString ToHex(quint32 colour)
{
    const auto channel = [colour](int shift) {
        return QStringLiteral("%1").arg((colour >> shift) & 0xFF, 2, 16, QLatin1Char('0')).toUpper();
    };
    return QLatin1Char('#') + channel(0) + channel(8) + channel(16);
}

} // namespace ColourUtil
