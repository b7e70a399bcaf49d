#include "compare/LineTable.h"

#include <QChar>

#include <cstdint>
#include <cstring>

namespace {

bool IsBlank(unsigned char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

// One code point of UTF-8 text at `i`, moving `i` past it. A byte that doesn't start a
// well-formed sequence comes back as itself, marked so that it can't equal a letter.
char32_t NextCodePoint(std::string_view s, std::size_t& i)
{
    const auto c = static_cast<unsigned char>(s[i]);
    int length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (length == 0 || i + std::size_t(length) > s.size()) {
        ++i;
        return 0x80000000u | c;
    }
    char32_t cp = length == 1 ? c : length == 2 ? (c & 0x1F) : length == 3 ? (c & 0x0F) : (c & 0x07);
    for (int k = 1; k < length; ++k) {
        const auto cc = static_cast<unsigned char>(s[i + std::size_t(k)]);
        if ((cc & 0xC0) != 0x80) {
            ++i;
            return 0x80000000u | c;
        }
        cp = (cp << 6) | (cc & 0x3F);
    }
    i += std::size_t(length);
    return cp;
}

// Calls `sink` with each unit of the line as the options see it.
template <class Emit>
void Normalize(std::string_view line, const DiffOptions& options, Emit&& sink)
{
    bool pendingBlank = false;
    std::size_t i = 0;
    while (i < line.size()) {
        const auto c = static_cast<unsigned char>(line[i]);
        if (options.ignoreWhitespace && IsBlank(c)) {
            pendingBlank = true;
            ++i;
            continue;
        }
        if (pendingBlank) {
            sink(char32_t(' '));
            pendingBlank = false;
        }
        if (!options.ignoreCase) {
            sink(char32_t(c));
            ++i;
        } else if (c < 0x80) {
            sink(char32_t(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c));
            ++i;
        } else {
            const char32_t cp = NextCodePoint(line, i);
            sink(cp & 0x80000000u ? cp : QChar::toCaseFolded(cp));
        }
    }
}

inline std::uint64_t Mix(std::uint64_t h, std::uint64_t v)
{
    h ^= v;
    h *= 0x9E3779B97F4A7C15ull;
    return h ^ (h >> 29);
}

std::uint64_t RawHash(std::string_view s)
{
    std::uint64_t h = 0x243F6A8885A308D3ull ^ s.size();
    std::size_t i = 0;
    for (; i + 8 <= s.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, s.data() + i, 8);
        h = Mix(h, word);
    }
    std::uint64_t tail = 0;
    std::memcpy(&tail, s.data() + i, s.size() - i);
    return Mix(h, tail ^ (std::uint64_t(s.size() - i) << 56));
}

} // namespace

std::vector<std::size_t> LineTable::SplitLines(std::string_view text)
{
    std::vector<std::size_t> starts;
    starts.reserve(text.size() / 40 + 2);
    const char* data = text.data();
    const std::size_t n = text.size();
    if (n > 0)
        starts.push_back(0);
    if (!std::memchr(data, '\r', n)) {
        // The common case: only "\n" ends lines, and memchr finds them fast.
        std::size_t i = 0;
        while (i < n) {
            const void* hit = std::memchr(data + i, '\n', n - i);
            if (!hit)
                break;
            i = std::size_t(static_cast<const char*>(hit) - data) + 1;
            if (i < n)
                starts.push_back(i);
        }
    } else {
        for (std::size_t i = 0; i < n; ++i) {
            if (data[i] == '\n' || (data[i] == '\r' && (i + 1 >= n || data[i + 1] != '\n'))) {
                if (i + 1 < n)
                    starts.push_back(i + 1);
            }
        }
    }
    starts.push_back(n);
    return starts;
}

std::size_t LineTable::Hash(std::string_view line, const DiffOptions& options)
{
    if (!options.ignoreWhitespace && !options.ignoreCase)
        return std::size_t(RawHash(line));
    std::uint64_t h = 0x13198A2E03707344ull;
    Normalize(line, options, [&h](char32_t u) { h = Mix(h, u); });
    return std::size_t(h);
}

bool LineTable::Equal(std::string_view a, std::string_view b, const DiffOptions& options)
{
    if (!options.ignoreWhitespace && !options.ignoreCase)
        return a == b;
    thread_local std::u32string na, nb;
    na.clear();
    nb.clear();
    Normalize(a, options, [](char32_t u) { na.push_back(u); });
    Normalize(b, options, [](char32_t u) { nb.push_back(u); });
    return na == nb;
}

bool LineTable::Build(std::string_view left, std::string_view right, const DiffOptions& options,
                      const DiffControl* control)
{
    const std::string_view texts[2] = {left, right};
    for (int side = 0; side < 2; ++side)
        m_starts[side] = SplitLines(texts[side]);
    const std::size_t lineCount = (m_starts[0].size() - 1) + (m_starts[1].size() - 1);

    // Open addressing over (hash, id); the line an id stands for is kept apart, so a
    // slot is eight bytes.
    std::size_t capacity = 16;
    while (capacity < lineCount + lineCount / 2)
        capacity <<= 1;
    struct Slot
    {
        std::uint32_t hash;
        int id; // -1 when free
    };
    std::vector<Slot> table(capacity, Slot{0, -1});
    struct Origin
    {
        int side;
        int line;
    };
    std::vector<Origin> origins;
    const std::size_t mask = capacity - 1;

    for (int side = 0; side < 2; ++side) {
        const std::vector<std::size_t>& starts = m_starts[side];
        const int lines = int(starts.size()) - 1;
        std::vector<int>& ids = m_ids[side];
        ids.assign(std::size_t(lines), 0);
        for (int line = 0; line < lines; ++line) {
            if ((line & 0xFFFF) == 0 && control && control->Cancelled())
                return false;
            const std::string_view text = Line(texts[side], starts, line);
            const std::size_t h = Hash(text, options);
            const auto h32 = std::uint32_t(h ^ (std::uint64_t(h) >> 32));
            std::size_t slot = h & mask;
            for (;;) {
                Slot& s = table[slot];
                if (s.id < 0) {
                    s.hash = h32;
                    s.id = int(origins.size());
                    origins.push_back({side, line});
                    ids[std::size_t(line)] = s.id;
                    break;
                }
                if (s.hash == h32) {
                    const Origin& o = origins[std::size_t(s.id)];
                    if (Equal(Line(texts[o.side], m_starts[o.side], o.line), text, options)) {
                        ids[std::size_t(line)] = s.id;
                        break;
                    }
                }
                slot = (slot + 1) & mask;
            }
        }
    }
    m_distinct = int(origins.size());
    return true;
}
