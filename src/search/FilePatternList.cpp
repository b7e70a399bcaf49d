#include "FilePatternList.h"

#include <QRegularExpression>

namespace {

inline unsigned char Fold(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + 32) : c;
}

// Iterative wildcard match with one backtrack point: linear for the usual patterns.
bool WildcardMatch(const QByteArray& pattern, const char* name, std::size_t length)
{
    const auto* p = reinterpret_cast<const unsigned char*>(pattern.constData());
    const std::size_t plen = std::size_t(pattern.size());
    const auto* s = reinterpret_cast<const unsigned char*>(name);
    std::size_t pi = 0, si = 0;
    std::size_t starP = std::size_t(-1), starS = 0;
    while (si < length) {
        if (pi < plen && (p[pi] == '?' || Fold(p[pi]) == Fold(s[si]))) {
            if (p[pi] == '?') {
                // "?" takes one character, not one byte.
                ++si;
                while (si < length && (s[si] & 0xC0) == 0x80)
                    ++si;
            } else {
                ++si;
            }
            ++pi;
        } else if (pi < plen && p[pi] == '*') {
            starP = pi++;
            starS = si;
        } else if (starP != std::size_t(-1)) {
            pi = starP + 1;
            si = ++starS;
        } else {
            return false;
        }
    }
    while (pi < plen && p[pi] == '*')
        ++pi;
    return pi == plen;
}

} // namespace

FilePatternList::FilePatternList(const QString& patterns)
{
    static const QRegularExpression separators(QStringLiteral("[;\\s]+"));
    const QStringList parts = patterns.split(separators, Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        if (part == QLatin1String("*") || part == QLatin1String("*.*")) {
            m_patterns.clear();
            m_all = true;
            return;
        }
        m_patterns.append(part.toUtf8());
    }
    m_all = m_patterns.isEmpty();
}

bool FilePatternList::Matches(const char* name, std::size_t length) const
{
    if (m_all)
        return true;
    for (const QByteArray& pattern : m_patterns) {
        if (WildcardMatch(pattern, name, length))
            return true;
    }
    return false;
}

bool FilePatternList::Matches(const QString& name) const
{
    const QByteArray utf8 = name.toUtf8();
    return Matches(utf8.constData(), std::size_t(utf8.size()));
}
