#include "AnsiCodePage.h"

#include "AsciiRun.h"
#include "Utf8Sequence.h"

#include <QStringDecoder>
#include <algorithm>

namespace {

// 0x80 to 0x9F of windows-1252; 0 where the code page defines nothing. Built in, so that
// the usual case needs nothing from the system's converters.
constexpr char32_t kWindows1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

bool IsWindows1252(const QString& name)
{
    const QString n = name.trimmed().toLower();
    return n == QLatin1String("windows-1252") || n == QLatin1String("cp1252")
        || n == QLatin1String("1252");
}

} // namespace

AnsiCodePage::AnsiCodePage(const QString& name)
{
    m_name = QString::fromLatin1(DefaultName);
    for (int b = 0; b < 256; ++b)
        m_toUnicode[std::size_t(b)] = char32_t(b);
    for (int b = 0x80; b < 0xA0; ++b) {
        if (const char32_t c = kWindows1252High[b - 0x80])
            m_toUnicode[std::size_t(b)] = c;
    }

    if (!IsWindows1252(name) && !name.trimmed().isEmpty()) {
        const QByteArray codec = name.trimmed().toLatin1();
        std::array<char32_t, 256> table{};
        bool usable = QStringDecoder(codec.constData()).isValid();
        for (int b = 0; usable && b < 256; ++b) {
            // A decoder for each byte: an error sticks to a decoder even past a reset.
            QStringDecoder decoder(codec.constData(), QStringConverter::Flag::Stateless);
            const char byte = char(b);
            const QString text = decoder.decode(QByteArrayView(&byte, 1));
            const bool defined = !decoder.hasError() && text.size() == 1
                && text.at(0) != QChar(QChar::ReplacementCharacter);
            // ASCII must stay ASCII: the rest of the program reads line ends and the like
            // as bytes.
            if (b < 0x80 && (!defined || text.at(0).unicode() != b))
                usable = false;
            table[std::size_t(b)] = defined ? char32_t(text.at(0).unicode()) : 0;
        }
        if (usable) {
            m_name = name.trimmed();
            // Undefined bytes stand for themselves, unless that character is already
            // taken; then a private-use character keeps them apart.
            for (int b = 0; b < 256; ++b) {
                if (!table[std::size_t(b)]) {
                    const bool taken = std::find(table.begin(), table.end(), char32_t(b)) != table.end();
                    table[std::size_t(b)] = taken ? char32_t(0xF700 + b) : char32_t(b);
                }
            }
            m_toUnicode = table;
        }
    }
    Index();
}

void AnsiCodePage::Index()
{
    for (int b = 0; b < 256; ++b)
        m_fromUnicode[std::size_t(b)] = {m_toUnicode[std::size_t(b)], std::uint8_t(b)};
    std::sort(m_fromUnicode.begin(), m_fromUnicode.end());
}

int AnsiCodePage::Encode(char32_t character) const
{
    if (character < 0x80 && m_toUnicode[character] == character)
        return int(character);
    const auto it = std::lower_bound(m_fromUnicode.begin(), m_fromUnicode.end(),
                                     std::pair<char32_t, std::uint8_t>{character, 0});
    if (it != m_fromUnicode.end() && it->first == character)
        return it->second;
    return -1;
}

bool AnsiCodePage::CanHold(const char* text, std::size_t length) const
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    std::size_t i = 0;
    while (i < length) {
        i += AsciiRun(text + i, length - i);
        if (i == length)
            break;
        const Utf8Sequence::Decoded d = Utf8Sequence::Decode(bytes + i, length - i);
        if (d.valid && Encode(d.character) < 0)
            return false;
        i += d.length;
    }
    return true;
}

const AnsiCodePage& AnsiCodePage::Default()
{
    static const AnsiCodePage codePage;
    return codePage;
}
