#include "compare/CompareModel.h"

#include <algorithm>

void CompareModel::Build(const std::vector<DiffHunk>& hunks, int leftLines, int rightLines)
{
    m_blocks.clear();
    m_differences.clear();
    m_differenceOfBlock.clear();
    m_differenceEnd.clear();
    m_lines[Left] = leftLines;
    m_lines[Right] = rightLines;
    int left = 0, right = 0, row = 0;
    auto addEqual = [&](int upToLeft) {
        const int count = upToLeft - left;
        if (count <= 0)
            return;
        Block block;
        block.start[Left] = left;
        block.start[Right] = right;
        block.count[Left] = block.count[Right] = count;
        block.row = row;
        block.rows = count;
        m_blocks.push_back(block);
        m_differenceOfBlock.push_back(-1);
        left += count;
        right += count;
        row += count;
    };
    for (const DiffHunk& hunk : hunks) {
        const bool continues = !m_blocks.empty() && m_blocks.back().difference && hunk.leftStart == left &&
                               hunk.rightStart == right;
        addEqual(hunk.leftStart);
        Block block;
        block.difference = true;
        block.start[Left] = hunk.leftStart;
        block.start[Right] = hunk.rightStart;
        block.count[Left] = hunk.leftCount;
        block.count[Right] = hunk.rightCount;
        block.row = row;
        block.rows = std::max(hunk.leftCount, hunk.rightCount);
        if (!continues) {
            m_differences.push_back(int(m_blocks.size()));
            m_differenceEnd.push_back(0);
        }
        m_differenceOfBlock.push_back(int(m_differences.size()) - 1);
        m_blocks.push_back(block);
        m_differenceEnd.back() = int(m_blocks.size());
        left = hunk.leftStart + hunk.leftCount;
        right = hunk.rightStart + hunk.rightCount;
        row += block.rows;
    }
    addEqual(leftLines);
    m_rows = row;
}

int CompareModel::BlockOfLine(Side side, int line) const
{
    if (line < 0 || line >= m_lines[side])
        return -1;
    // The last block that starts at or before the line and holds lines of this side.
    auto it = std::upper_bound(m_blocks.begin(), m_blocks.end(), line,
                               [side](int value, const Block& b) { return value < b.start[side]; });
    while (it != m_blocks.begin()) {
        --it;
        if (it->count[side] > 0 && line < it->start[side] + it->count[side])
            return int(it - m_blocks.begin());
        if (it->count[side] > 0)
            break;
    }
    return -1;
}

int CompareModel::BlockOfRow(int row) const
{
    if (row < 0 || row >= m_rows)
        return -1;
    auto it = std::upper_bound(m_blocks.begin(), m_blocks.end(), row,
                               [](int value, const Block& b) { return value < b.row; });
    return int(it - m_blocks.begin()) - 1;
}

CompareModel::LineKind CompareModel::KindOf(Side side, int line) const
{
    const int index = BlockOfLine(side, line);
    if (index < 0)
        return LineKind::Equal;
    const Block& b = m_blocks[std::size_t(index)];
    if (!b.difference)
        return LineKind::Equal;
    const int other = side == Left ? Right : Left;
    if (line - b.start[side] < b.count[other])
        return LineKind::Changed;
    return side == Left ? LineKind::Deleted : LineKind::Inserted;
}

int CompareModel::RowOfLine(Side side, int line) const
{
    const int index = BlockOfLine(side, line);
    if (index < 0)
        return line < 0 ? 0 : m_rows;
    const Block& b = m_blocks[std::size_t(index)];
    return b.row + (line - b.start[side]);
}

void CompareModel::DifferenceLines(int index, Side side, int& start, int& count) const
{
    const Block& first = m_blocks[std::size_t(m_differences[std::size_t(index)])];
    const Block& last = m_blocks[std::size_t(m_differenceEnd[std::size_t(index)] - 1)];
    start = first.start[side];
    count = last.start[side] + last.count[side] - start;
}

int CompareModel::FillerAfter(Side side, int line) const
{
    // A difference's filler stands below the side's last line of it, or below the
    // line before it when the side has none there.
    int filler = 0;
    for (const Block& b : m_blocks) {
        if (!b.difference)
            continue;
        const int rows = b.rows - b.count[side];
        if (rows == 0)
            continue;
        const int anchor = b.start[side] + b.count[side] - 1;
        if (anchor == line)
            filler += rows;
        else if (anchor > line)
            break;
    }
    return filler;
}

int CompareModel::DifferenceOfRow(int row) const
{
    const int index = BlockOfRow(row);
    return index < 0 ? -1 : m_differenceOfBlock[std::size_t(index)];
}

int CompareModel::NextDifference(int row) const
{
    for (std::size_t i = 0; i < m_differences.size(); ++i) {
        if (m_blocks[std::size_t(m_differences[i])].row > row)
            return int(i);
    }
    return -1;
}

int CompareModel::PreviousDifference(int row) const
{
    for (std::size_t i = m_differences.size(); i-- > 0;) {
        if (m_blocks[std::size_t(m_differences[i])].row < row)
            return int(i);
    }
    return -1;
}
