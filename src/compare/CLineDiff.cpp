#include "compare/CLineDiff.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Lines that occur more often than this on the left are too common to anchor a range.
constexpr int kMaxChain = 64;

} // namespace

CLineDiff::CLineDiff(const std::vector<int>& left, const std::vector<int>& right, int distinctCount)
    : m_a(left)
    , m_b(right)
    , m_distinct(distinctCount)
{
}

bool CLineDiff::Run()
{
    const int n = int(m_a.size());
    const int m = int(m_b.size());
    m_changed[0].assign(std::size_t(n), 0);
    m_changed[1].assign(std::size_t(m), 0);
    m_hunks.clear();
    m_total = (long long)n + m;
    m_done = m_reported = 0;
    m_cancelled = false;

    if (m_method != Method::Myers && m_distinct > 0) {
        m_count.assign(std::size_t(m_distinct), 0);
        m_head.assign(std::size_t(m_distinct), -1);
        m_next.assign(std::size_t(n), -1);
        if (m_method == Method::Patience) {
            m_countB.assign(std::size_t(m_distinct), 0);
            m_placeB.assign(std::size_t(m_distinct), -1);
        }
        Anchored(0, n, 0, m);
        m_count = {};
        m_head = {};
        m_next = {};
        m_countB = {};
        m_placeB = {};
    } else {
        Myers(0, n, 0, m);
    }
    m_kv = {};
    if (m_cancelled)
        return false;
    SlideGroups(0);
    SlideGroups(1);
    CollectHunks();
    if (m_control && m_control->progress)
        m_control->progress(1000);
    return true;
}

void CLineDiff::Mark(int side, int from, int to)
{
    std::fill(m_changed[side].begin() + from, m_changed[side].begin() + to, char(1));
    Settled(to - from);
}

void CLineDiff::Settled(long long lines)
{
    m_done += lines;
    if (!m_control)
        return;
    if (m_done - m_reported >= 65536 || m_done == m_total) {
        m_reported = m_done;
        if (m_control->Cancelled())
            m_cancelled = true;
        if (m_control->progress && m_total > 0)
            m_control->progress(int(m_done * 999 / m_total));
    }
}

void CLineDiff::Anchored(int a0, int a1, int b0, int b1)
{
    const std::vector<int>& A = m_a;
    const std::vector<int>& B = m_b;
    std::vector<Range> stack{{a0, a1, b0, b1}};
    while (!stack.empty() && !m_cancelled) {
        Range r = stack.back();
        stack.pop_back();
        const int before = (r.a1 - r.a0) + (r.b1 - r.b0);
        while (r.a0 < r.a1 && r.b0 < r.b1 && A[r.a0] == B[r.b0])
            ++r.a0, ++r.b0;
        while (r.a0 < r.a1 && r.b0 < r.b1 && A[r.a1 - 1] == B[r.b1 - 1])
            --r.a1, --r.b1;
        Settled(before - ((r.a1 - r.a0) + (r.b1 - r.b0)));
        if (r.a0 == r.a1 || r.b0 == r.b1) {
            Mark(0, r.a0, r.a1);
            Mark(1, r.b0, r.b1);
            continue;
        }
        if (m_method == Method::Patience && PatienceStep(r, stack))
            continue;
        HistogramStep(r, stack);
    }
}

bool CLineDiff::PatienceStep(const Range& r, std::vector<Range>& stack)
{
    const std::vector<int>& A = m_a;
    const std::vector<int>& B = m_b;
    for (int i = r.a0; i < r.a1; ++i) {
        const int id = A[i];
        if (m_count[id] == 0 && m_countB[id] == 0)
            m_touched.push_back(id);
        ++m_count[id];
        m_head[id] = i;
    }
    for (int j = r.b0; j < r.b1; ++j) {
        const int id = B[j];
        if (m_count[id] == 0 && m_countB[id] == 0)
            m_touched.push_back(id);
        ++m_countB[id];
        m_placeB[id] = j;
    }
    // Lines once on each side, in right-side order, with their left place.
    std::vector<std::pair<int, int>> unique; // (left, right)
    for (int j = r.b0; j < r.b1; ++j) {
        const int id = B[j];
        if (m_count[id] == 1 && m_countB[id] == 1)
            unique.emplace_back(m_head[id], j);
    }
    for (const int id : m_touched) {
        m_count[id] = 0;
        m_countB[id] = 0;
        m_head[id] = -1;
        m_placeB[id] = -1;
    }
    m_touched.clear();
    if (unique.empty())
        return false;

    // The longest run increasing on the left too (patience sorting): tails[k] is the
    // pair ending the best run of length k + 1 found so far.
    std::vector<int> tails;
    std::vector<int> previous(unique.size(), -1);
    for (int k = 0; k < int(unique.size()); ++k) {
        const int left = unique[std::size_t(k)].first;
        const auto it = std::lower_bound(tails.begin(), tails.end(), left,
                                         [&unique](int index, int value) { return unique[std::size_t(index)].first < value; });
        if (it != tails.begin())
            previous[std::size_t(k)] = *(it - 1);
        if (it == tails.end())
            tails.push_back(k);
        else
            *it = k;
    }
    std::vector<std::pair<int, int>> anchors;
    for (int k = tails.back(); k >= 0; k = previous[std::size_t(k)])
        anchors.push_back(unique[std::size_t(k)]);
    // `anchors` runs from the last to the first: pushing the gaps in this order leaves
    // the first gap on top of the stack.
    int a1 = r.a1, b1 = r.b1;
    for (const auto& [left, right] : anchors) {
        stack.push_back({left + 1, a1, right + 1, b1});
        a1 = left;
        b1 = right;
    }
    stack.push_back({r.a0, a1, r.b0, b1});
    Settled(2LL * (long long)anchors.size());
    return true;
}

void CLineDiff::HistogramStep(const Range& r, std::vector<Range>& stack)
{
    const std::vector<int>& A = m_a;
    const std::vector<int>& B = m_b;
    {
        // Index the left range: occurrences counted, chained in ascending order.
        for (int i = r.a1 - 1; i >= r.a0; --i) {
            const int id = A[i];
            if (m_count[id] == 0)
                m_touched.push_back(id);
            if (m_count[id] <= kMaxChain)
                ++m_count[id];
            m_next[i] = m_head[id];
            m_head[id] = i;
        }

        // The longest run around the rarest line that both sides share.
        int bestA = 0, bestB = 0, bestLength = 0;
        int bestCount = kMaxChain + 1;
        bool hasCommon = false;
        for (int j = r.b0; j < r.b1;) {
            int bNext = j + 1;
            const int id = B[j];
            const int count = m_count[id];
            if (count == 0) {
                j = bNext;
                continue;
            }
            hasCommon = true;
            if (count > bestCount) {
                j = bNext;
                continue;
            }
            for (int as = m_head[id];;) {
                int np = m_next[as];
                int bs = j, ae = as, be = j;
                int rc = count;
                while (as > r.a0 && bs > r.b0 && A[as - 1] == B[bs - 1]) {
                    --as, --bs;
                    if (rc > 1)
                        rc = std::min(rc, m_count[A[as]]);
                }
                while (ae + 1 < r.a1 && be + 1 < r.b1 && A[ae + 1] == B[be + 1]) {
                    ++ae, ++be;
                    if (rc > 1)
                        rc = std::min(rc, m_count[A[ae]]);
                }
                if (bNext <= be)
                    bNext = be + 1;
                if (bestLength < ae - as + 1 || rc < bestCount) {
                    bestA = as;
                    bestB = bs;
                    bestLength = ae - as + 1;
                    bestCount = rc;
                }
                while (np >= 0 && np <= ae)
                    np = m_next[np];
                if (np < 0)
                    break;
                as = np;
            }
            j = bNext;
        }

        for (const int id : m_touched) {
            m_count[id] = 0;
            m_head[id] = -1;
        }
        m_touched.clear();

        if (!hasCommon) {
            Mark(0, r.a0, r.a1);
            Mark(1, r.b0, r.b1);
        } else if (bestLength == 0 || bestCount > kMaxChain) {
            Myers(r.a0, r.a1, r.b0, r.b1);
        } else {
            Settled(2LL * bestLength);
            stack.push_back({bestA + bestLength, r.a1, bestB + bestLength, r.b1});
            stack.push_back({r.a0, bestA, r.b0, bestB});
        }
    }
}

void CLineDiff::Myers(int a0, int a1, int b0, int b1)
{
    const int n = a1 - a0;
    const int m = b1 - b0;
    // Diagonals run from a0 - b1 - 1 to a1 - b0 + 1; both arrays are indexed by the
    // diagonal's number.
    const std::size_t diagonals = std::size_t(n) + std::size_t(m) + 3;
    m_kv.assign(2 * diagonals, 0);
    const long long offset = (long long)b1 + 1 - a0;
    m_kvdf = m_kv.data() + offset;
    m_kvdb = m_kv.data() + diagonals + offset;
    m_maxCost = std::max(256, int(std::sqrt(double(diagonals))));

    struct Box
    {
        int off1, lim1, off2, lim2;
        bool needMin;
    };
    std::vector<Box> stack{{a0, a1, b0, b1, false}};
    const std::vector<int>& A = m_a;
    const std::vector<int>& B = m_b;
    while (!stack.empty() && !m_cancelled) {
        Box box = stack.back();
        stack.pop_back();
        const int before = (box.lim1 - box.off1) + (box.lim2 - box.off2);
        while (box.off1 < box.lim1 && box.off2 < box.lim2 && A[box.off1] == B[box.off2])
            ++box.off1, ++box.off2;
        while (box.off1 < box.lim1 && box.off2 < box.lim2 && A[box.lim1 - 1] == B[box.lim2 - 1])
            --box.lim1, --box.lim2;
        Settled(before - ((box.lim1 - box.off1) + (box.lim2 - box.off2)));
        if (box.off1 == box.lim1 || box.off2 == box.lim2) {
            Mark(0, box.off1, box.lim1);
            Mark(1, box.off2, box.lim2);
            continue;
        }
        const Split split = MiddleSnake(box.off1, box.lim1, box.off2, box.lim2, box.needMin);
        stack.push_back({split.x, box.lim1, split.y, box.lim2, split.minHigh});
        stack.push_back({box.off1, split.x, box.off2, split.y, split.minLow});
    }
}

CLineDiff::Split CLineDiff::MiddleSnake(int off1, int lim1, int off2, int lim2, bool needMin)
{
    const std::vector<int>& A = m_a;
    const std::vector<int>& B = m_b;
    int* kvdf = m_kvdf;
    int* kvdb = m_kvdb;
    const int dmin = off1 - lim2, dmax = lim1 - off2;
    const int fmid = off1 - off2, bmid = lim1 - lim2;
    const bool odd = ((fmid - bmid) & 1) != 0;
    int fmin = fmid, fmax = fmid;
    int bmin = bmid, bmax = bmid;
    kvdf[fmid] = off1;
    kvdb[bmid] = lim1;

    for (int cost = 1;; ++cost) {
        if (fmin > dmin)
            kvdf[--fmin - 1] = -1;
        else
            ++fmin;
        if (fmax < dmax)
            kvdf[++fmax + 1] = -1;
        else
            --fmax;
        for (int d = fmax; d >= fmin; d -= 2) {
            int i1 = kvdf[d - 1] >= kvdf[d + 1] ? kvdf[d - 1] + 1 : kvdf[d + 1];
            int i2 = i1 - d;
            while (i1 < lim1 && i2 < lim2 && A[i1] == B[i2])
                ++i1, ++i2;
            kvdf[d] = i1;
            if (odd && bmin <= d && d <= bmax && kvdb[d] <= i1)
                return {i1, i2, true, true};
        }

        if (bmin > dmin)
            kvdb[--bmin - 1] = INT_MAX;
        else
            ++bmin;
        if (bmax < dmax)
            kvdb[++bmax + 1] = INT_MAX;
        else
            --bmax;
        for (int d = bmax; d >= bmin; d -= 2) {
            int i1 = kvdb[d - 1] < kvdb[d + 1] ? kvdb[d - 1] : kvdb[d + 1] - 1;
            int i2 = i1 - d;
            while (i1 > off1 && i2 > off2 && A[i1 - 1] == B[i2 - 1])
                --i1, --i2;
            kvdb[d] = i1;
            if (!odd && fmin <= d && d <= fmax && i1 <= kvdf[d])
                return {i1, i2, true, true};
        }

        if ((cost & 63) == 0 && m_control && m_control->Cancelled()) {
            m_cancelled = true;
            return {(off1 + lim1) / 2, (off2 + lim2) / 2, false, false};
        }
        if (needMin || cost < m_maxCost)
            continue;

        // Past the cost limit: split at the furthest point either search reached.
        long long fbest = -1;
        int fbest1 = -1;
        for (int d = fmax; d >= fmin; d -= 2) {
            int i1 = std::min(kvdf[d], lim1);
            int i2 = i1 - d;
            if (lim2 < i2)
                i1 = lim2 + d, i2 = lim2;
            if (fbest < (long long)i1 + i2) {
                fbest = (long long)i1 + i2;
                fbest1 = i1;
            }
        }
        long long bbest = LLONG_MAX;
        int bbest1 = INT_MAX;
        for (int d = bmax; d >= bmin; d -= 2) {
            int i1 = std::max(off1, kvdb[d]);
            int i2 = i1 - d;
            if (i2 < off2)
                i1 = off2 + d, i2 = off2;
            if ((long long)i1 + i2 < bbest) {
                bbest = (long long)i1 + i2;
                bbest1 = i1;
            }
        }
        if (((long long)lim1 + lim2) - bbest < fbest - ((long long)off1 + off2))
            return {fbest1, int(fbest - fbest1), true, false};
        return {bbest1, int(bbest - bbest1), false, true};
    }
}

void CLineDiff::SlideGroups(int side)
{
    // A run of inserted or deleted lines that can move down over equal lines is shown
    // at its lowest place: an added block then ends where the reader expects it, after
    // the closing line it repeats rather than before.
    std::vector<char>& changed = m_changed[side];
    const std::vector<int>& ids = side == 0 ? m_a : m_b;
    const int n = int(changed.size());
    int i = 0;
    while (i < n) {
        if (!changed[i]) {
            ++i;
            continue;
        }
        int start = i;
        int end = i;
        while (end < n && changed[end])
            ++end;
        while (end < n && !changed[end] && ids[start] == ids[end]) {
            changed[start] = 0;
            changed[end] = 1;
            ++start;
            ++end;
            while (end < n && changed[end]) // joined the next group
                ++end;
        }
        i = end;
    }
}

void CLineDiff::CollectHunks()
{
    const int n = int(m_a.size());
    const int m = int(m_b.size());
    const std::vector<char>& ca = m_changed[0];
    const std::vector<char>& cb = m_changed[1];
    int i = 0, j = 0;
    while (i < n || j < m) {
        if (i < n && j < m && !ca[i] && !cb[j]) {
            ++i, ++j;
            continue;
        }
        const int i0 = i, j0 = j;
        while (i < n && ca[i])
            ++i;
        while (j < m && cb[j])
            ++j;
        if (i == i0 && j == j0) {
            // Unpaired unchanged lines can only be left at one end; show them as changed.
            i = n, j = m;
        }
        m_hunks.push_back({i0, i - i0, j0, j - j0});
    }
}
