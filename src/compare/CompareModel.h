#pragma once

#include "compare/DiffTypes.h"

#include <vector>

// Two files laid out side by side: rows that pair a left line with a right line, and
// filler rows where one side has no line. A block is a run of equal lines or one part of
// a difference; such a part pairs its lines from the top ("changed") and leaves the rest
// on the longer side as deleted (left) or inserted (right).
class CompareModel
{
public:
    enum class LineKind { Equal, Changed, Deleted, Inserted };
    enum Side { Left = 0, Right = 1 };

    struct Block
    {
        bool difference = false;
        int start[2] = {0, 0};
        int count[2] = {0, 0};
        int row = 0;
        int rows = 0;
    };

    void Build(const std::vector<DiffHunk>& hunks, int leftLines, int rightLines);

    const std::vector<Block>& Blocks() const { return m_blocks; }
    int RowCount() const { return m_rows; }
    int LineCount(Side side) const { return m_lines[side]; }
    // Differences are runs of difference blocks with no equal line between them: a
    // difference whose lines were paired by likeness spans several blocks.
    int DifferenceCount() const { return int(m_differences.size()); }
    // The first block of difference `index`.
    int DifferenceBlock(int index) const { return m_differences[std::size_t(index)]; }
    // The lines of a side that difference `index` covers.
    void DifferenceLines(int index, Side side, int& start, int& count) const;

    // The block that holds a side's line; -1 outside the file.
    int BlockOfLine(Side side, int line) const;
    int BlockOfRow(int row) const;
    LineKind KindOf(Side side, int line) const;
    // The row a side's line stands on.
    int RowOfLine(Side side, int line) const;
    // Filler rows a side shows after `line`; `line` -1 asks for those above the first line.
    int FillerAfter(Side side, int line) const;

    // The difference after or before the one holding `row` (or nearest to it); -1 when none.
    int NextDifference(int row) const;
    int PreviousDifference(int row) const;
    // The difference a row belongs to, or -1 when it is in an equal block.
    int DifferenceOfRow(int row) const;

private:
    std::vector<Block> m_blocks;
    std::vector<int> m_differences;
    std::vector<int> m_differenceOfBlock;
    std::vector<int> m_differenceEnd; // one past the last block of each difference
    int m_rows = 0;
    int m_lines[2] = {0, 0};
};
