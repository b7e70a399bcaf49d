#pragma once

#include "compare/DiffTypes.h"

#include <vector>

// The difference of two sequences of numbered lines (see LineTable).
//
// The default, patience, anchors a range on the longest increasing run of lines that
// occur exactly once on each side, and recurses between the anchors: moved blocks and
// scattered edits come out near-minimal and readable. A range without such lines goes
// to the histogram method, which anchors on the longest run around the rarest shared
// line; a range without any shared line that is rare enough goes to Myers' method in
// linear space, with a cost limit that trades the last bit of minimality for speed on
// large unrelated parts. Memory stays linear throughout.
class CLineDiff
{
public:
    enum class Method { Patience, Histogram, Myers };

    CLineDiff(const std::vector<int>& left, const std::vector<int>& right, int distinctCount);

    void SetMethod(Method method) { m_method = method; }
    void SetControl(const DiffControl* control) { m_control = control; }

    // Runs the diff; false when it was cancelled.
    bool Run();
    const std::vector<DiffHunk>& Hunks() const { return m_hunks; }

    // Whether each line of a side is part of a difference, after Run.
    const std::vector<char>& LeftChanged() const { return m_changed[0]; }
    const std::vector<char>& RightChanged() const { return m_changed[1]; }

private:
    void Anchored(int a0, int a1, int b0, int b1);
    struct Range
    {
        int a0, a1, b0, b1;
    };
    bool PatienceStep(const Range& r, std::vector<Range>& stack);
    void HistogramStep(const Range& r, std::vector<Range>& stack);
    void Myers(int a0, int a1, int b0, int b1);
    struct Split
    {
        int x = 0, y = 0;
        bool minLow = true, minHigh = true;
    };
    Split MiddleSnake(int off1, int lim1, int off2, int lim2, bool needMin);
    void Mark(int side, int from, int to);
    void Settled(long long lines);
    void SlideGroups(int side);
    void CollectHunks();

    const std::vector<int>& m_a;
    const std::vector<int>& m_b;
    int m_distinct;
    Method m_method = Method::Patience;
    const DiffControl* m_control = nullptr;
    bool m_cancelled = false;
    std::vector<char> m_changed[2];
    std::vector<DiffHunk> m_hunks;

    // Histogram index, reused by every range: counts and first occurrence per line
    // number, and the next occurrence per left line.
    std::vector<int> m_count;
    std::vector<int> m_head;
    std::vector<int> m_next;
    std::vector<int> m_touched;
    // Patience: count and place per line number on the right side.
    std::vector<int> m_countB;
    std::vector<int> m_placeB;

    // Myers' furthest points on each diagonal, forward and backward.
    std::vector<int> m_kv;
    int* m_kvdf = nullptr;
    int* m_kvdb = nullptr;
    int m_maxCost = 256;

    long long m_total = 0;
    long long m_done = 0;
    long long m_reported = 0;
};
