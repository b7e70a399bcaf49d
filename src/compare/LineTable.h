#pragma once

#include "compare/DiffTypes.h"

#include <cstddef>
#include <string_view>
#include <vector>

// The lines of two texts as numbers: lines that compare equal under the options get the
// same number, so that the diff compares integers instead of text.
class LineTable
{
public:
    // Offsets of each line's first byte, with the text's length behind the last line.
    // A line holds its line end ("\n", "\r\n" or "\r"); a text that doesn't end with one
    // has a last line without it; an empty text has no lines.
    static std::vector<std::size_t> SplitLines(std::string_view text);

    // Splits both texts and numbers their lines. Returns false when `control` cancelled.
    bool Build(std::string_view left, std::string_view right, const DiffOptions& options,
               const DiffControl* control = nullptr);

    const std::vector<int>& LeftIds() const { return m_ids[0]; }
    const std::vector<int>& RightIds() const { return m_ids[1]; }
    const std::vector<std::size_t>& LeftStarts() const { return m_starts[0]; }
    const std::vector<std::size_t>& RightStarts() const { return m_starts[1]; }
    int DistinctCount() const { return m_distinct; }

    // The text of a line, line end included.
    static std::string_view Line(std::string_view text, const std::vector<std::size_t>& starts, int line)
    {
        return text.substr(starts[std::size_t(line)], starts[std::size_t(line) + 1] - starts[std::size_t(line)]);
    }

    // The hash and the equality the table uses, for tests and the character diff.
    static std::size_t Hash(std::string_view line, const DiffOptions& options);
    static bool Equal(std::string_view a, std::string_view b, const DiffOptions& options);

private:
    std::vector<int> m_ids[2];
    std::vector<std::size_t> m_starts[2];
    int m_distinct = 0;
};
