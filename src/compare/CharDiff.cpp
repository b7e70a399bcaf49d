#include "compare/CharDiff.h"

#include "compare/CLineDiff.h"

namespace CharDiff {

namespace {

constexpr int kJoinGap = 2;

// Code points (or lone bytes) and where each begins.
void Decode(std::string_view s, std::vector<int>& units, std::vector<int>& offsets)
{
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        int length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 1;
        if (i + std::size_t(length) > s.size())
            length = 1;
        int cp = length == 1 ? c : length == 2 ? (c & 0x1F) : length == 3 ? (c & 0x0F) : (c & 0x07);
        for (int k = 1; k < length; ++k) {
            const auto cc = static_cast<unsigned char>(s[i + std::size_t(k)]);
            if ((cc & 0xC0) != 0x80) {
                length = 1;
                cp = 0x40000000 | c;
                break;
            }
            cp = (cp << 6) | (cc & 0x3F);
        }
        units.push_back(cp);
        offsets.push_back(int(i));
        i += std::size_t(length);
    }
    offsets.push_back(int(s.size()));
}

std::vector<Span> Spans(const std::vector<char>& changed, const std::vector<int>& offsets)
{
    std::vector<Span> spans;
    const int n = int(changed.size());
    int i = 0;
    while (i < n) {
        if (!changed[std::size_t(i)]) {
            ++i;
            continue;
        }
        int end = i;
        while (end < n && changed[std::size_t(end)])
            ++end;
        const int from = offsets[std::size_t(i)];
        const int to = offsets[std::size_t(end)];
        if (!spans.empty() && i > 0) {
            Span& last = spans.back();
            // Count the characters of the gap, not its bytes.
            int gap = 0;
            for (int k = i - 1; k >= 0 && offsets[std::size_t(k)] >= last.start + last.length; --k)
                ++gap;
            if (gap <= kJoinGap) {
                last.length = to - last.start;
                i = end;
                continue;
            }
        }
        spans.push_back({from, to - from});
        i = end;
    }
    return spans;
}

} // namespace

Result Compute(std::string_view left, std::string_view right)
{
    Result result;
    std::vector<int> a, b, offA, offB;
    Decode(left, a, offA);
    Decode(right, b, offB);
    if (int(a.size()) > MaxLineLength || int(b.size()) > MaxLineLength) {
        if (!left.empty())
            result.left.push_back({0, int(left.size())});
        if (!right.empty())
            result.right.push_back({0, int(right.size())});
        return result;
    }
    CLineDiff diff(a, b, 0);
    diff.SetMethod(CLineDiff::Method::Myers);
    diff.Run();
    result.left = Spans(diff.LeftChanged(), offA);
    result.right = Spans(diff.RightChanged(), offB);
    return result;
}

} // namespace CharDiff
