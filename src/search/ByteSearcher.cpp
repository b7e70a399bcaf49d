#include "ByteSearcher.h"

#include <array>
#include <cstring>

namespace {

inline unsigned char FoldByte(unsigned char c)
{
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + 32) : c;
}

// A rough guess of how often each byte appears in source code and prose: the lower the
// score, the fewer false starts memchr gives us.
std::array<int, 256> MakeFrequency()
{
    std::array<int, 256> score{};
    for (int c = 0; c < 256; ++c)
        score[c] = c >= 0x80 ? 30 : 10; // control bytes are rare, UTF-8 bytes a little less
    const char* letters = "etaoinsrhldcumfpgwybvkxjqz";
    for (int i = 0; letters[i]; ++i) {
        const int value = 1000 - i * 35;
        score[static_cast<unsigned char>(letters[i])] = value;
        score[static_cast<unsigned char>(letters[i] - 32)] = value / 4;
    }
    for (int c = '0'; c <= '9'; ++c)
        score[c] = 250;
    for (const char* p = "();,.=_\"'{}*/-<>:#&[]+!"; *p; ++p)
        score[static_cast<unsigned char>(*p)] = 300;
    score[' '] = 1200;
    score['\t'] = 600;
    score['\n'] = 500;
    score['\r'] = 400;
    return score;
}

} // namespace

ByteSearcher::ByteSearcher(std::string needle, bool caseSensitive)
    : m_needle(std::move(needle))
    , m_caseSensitive(caseSensitive)
{
    static const std::array<int, 256> frequency = MakeFrequency();
    if (!m_caseSensitive) {
        for (char& c : m_needle)
            c = static_cast<char>(FoldByte(static_cast<unsigned char>(c)));
    }
    int best = 1 << 30;
    for (std::size_t i = 0; i < m_needle.size(); ++i) {
        const auto c = static_cast<unsigned char>(m_needle[i]);
        int score = frequency[c];
        if (!m_caseSensitive && c >= 'a' && c <= 'z')
            score += frequency[c - 32];
        if (score < best) {
            best = score;
            m_rareIndex = i;
        }
    }
    if (!m_needle.empty()) {
        m_rareLower = static_cast<unsigned char>(m_needle[m_rareIndex]);
        m_rareUpper = m_rareLower;
        if (!m_caseSensitive && m_rareLower >= 'a' && m_rareLower <= 'z')
            m_rareUpper = static_cast<unsigned char>(m_rareLower - 32);
    }
}

bool ByteSearcher::Verify(const char* at) const
{
    if (m_caseSensitive)
        return std::memcmp(at, m_needle.data(), m_needle.size()) == 0;
    const auto* s = reinterpret_cast<const unsigned char*>(at);
    for (std::size_t i = 0; i < m_needle.size(); ++i) {
        if (FoldByte(s[i]) != static_cast<unsigned char>(m_needle[i]))
            return false;
    }
    return true;
}

std::size_t ByteSearcher::Find(const char* data, std::size_t length, std::size_t from) const
{
    const std::size_t n = m_needle.size();
    if (n == 0 || from > length || length - from < n)
        return npos;
    // Candidates for the rare byte lie in [first, last].
    const char* first = data + from + m_rareIndex;
    const char* last = data + (length - n) + m_rareIndex;

    if (m_rareLower == m_rareUpper) {
        const char* p = first;
        while (p <= last) {
            const auto* q = static_cast<const char*>(
                std::memchr(p, m_rareLower, std::size_t(last - p) + 1));
            if (!q)
                return npos;
            const char* start = q - m_rareIndex;
            if (Verify(start))
                return std::size_t(start - data);
            p = q + 1;
        }
        return npos;
    }

    // Both cases of a letter: keep the next hit of each and take the nearer.
    auto next = [last](const char* p, unsigned char c) -> const char* {
        if (p > last)
            return nullptr;
        return static_cast<const char*>(std::memchr(p, c, std::size_t(last - p) + 1));
    };
    const char* lower = next(first, m_rareLower);
    const char* upper = next(first, m_rareUpper);
    while (lower || upper) {
        const bool takeLower = lower && (!upper || lower < upper);
        const char* q = takeLower ? lower : upper;
        const char* start = q - m_rareIndex;
        if (Verify(start))
            return std::size_t(start - data);
        if (takeLower)
            lower = next(q + 1, m_rareLower);
        else
            upper = next(q + 1, m_rareUpper);
    }
    return npos;
}
