#include "compare/LinePairing.h"

#include <algorithm>
#include <cstdint>

namespace LinePairing {

namespace {

constexpr double kThreshold = 0.5;

std::string_view Trimmed(std::string_view s)
{
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!s.empty() && blank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && blank(s.back()))
        s.remove_suffix(1);
    return s;
}

std::vector<std::uint16_t> Bigrams(std::string_view s)
{
    std::vector<std::uint16_t> grams;
    for (std::size_t i = 0; i + 1 < s.size(); ++i)
        grams.push_back(std::uint16_t((static_cast<unsigned char>(s[i]) << 8) | static_cast<unsigned char>(s[i + 1])));
    std::sort(grams.begin(), grams.end());
    return grams;
}

double Dice(const std::vector<std::uint16_t>& a, const std::vector<std::uint16_t>& b)
{
    if (a.empty() && b.empty())
        return 1.0;
    std::size_t i = 0, j = 0, common = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i] == b[j])
            ++common, ++i, ++j;
        else if (a[i] < b[j])
            ++i;
        else
            ++j;
    }
    return 2.0 * double(common) / double(a.size() + b.size());
}

} // namespace

double Similarity(std::string_view a, std::string_view b)
{
    const std::string_view ta = Trimmed(a), tb = Trimmed(b);
    if (ta.size() < 2 || tb.size() < 2)
        return ta == tb ? 1.0 : 0.0;
    return Dice(Bigrams(ta), Bigrams(tb));
}

std::vector<DiffHunk> Pair(const DiffHunk& hunk, const std::function<std::string_view(int side, int line)>& line)
{
    const int n = hunk.leftCount, m = hunk.rightCount;
    if (n == 0 || m == 0 || n == m || n * m > MaxCells)
        return {hunk};
    std::vector<std::vector<std::uint16_t>> a, b;
    for (int i = 0; i < n; ++i)
        a.push_back(Bigrams(Trimmed(line(0, hunk.leftStart + i))));
    for (int j = 0; j < m; ++j)
        b.push_back(Bigrams(Trimmed(line(1, hunk.rightStart + j))));

    // The in-order pairing with the largest total likeness (pairs below the threshold
    // don't count as pairs at all).
    std::vector<double> score(std::size_t(n + 1) * std::size_t(m + 1), 0.0);
    auto at = [m, &score](int i, int j) -> double& { return score[std::size_t(i) * std::size_t(m + 1) + std::size_t(j)]; };
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= m; ++j) {
            double best = std::max(at(i - 1, j), at(i, j - 1));
            const double s = Dice(a[std::size_t(i - 1)], b[std::size_t(j - 1)]);
            if (s >= kThreshold)
                best = std::max(best, at(i - 1, j - 1) + s);
            at(i, j) = best;
        }
    }
    std::vector<std::pair<int, int>> pairs;
    for (int i = n, j = m; i > 0 && j > 0;) {
        if (at(i, j) == at(i - 1, j))
            --i;
        else if (at(i, j) == at(i, j - 1))
            --j;
        else {
            pairs.emplace_back(i - 1, j - 1);
            --i, --j;
        }
    }
    std::reverse(pairs.begin(), pairs.end());
    if (pairs.empty())
        return {hunk};

    std::vector<DiffHunk> parts;
    int left = 0, right = 0;
    std::size_t k = 0;
    while (k < pairs.size()) {
        const auto [i, j] = pairs[k];
        if (i > left || j > right)
            parts.push_back({hunk.leftStart + left, i - left, hunk.rightStart + right, j - right});
        std::size_t run = 1;
        while (k + run < pairs.size() && pairs[k + run].first == i + int(run) && pairs[k + run].second == j + int(run))
            ++run;
        parts.push_back({hunk.leftStart + i, int(run), hunk.rightStart + j, int(run)});
        left = i + int(run);
        right = j + int(run);
        k += run;
    }
    if (left < n || right < m)
        parts.push_back({hunk.leftStart + left, n - left, hunk.rightStart + right, m - right});
    return parts;
}

} // namespace LinePairing
