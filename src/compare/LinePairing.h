#pragma once

#include "compare/DiffTypes.h"

#include <functional>
#include <string_view>
#include <vector>

// Inside one difference, which left line stands beside which right line. Pairing from
// the top puts unrelated lines side by side when lines were added as well as changed;
// this pairs each changed line with its most similar counterpart, in order, and leaves
// the rest as added or removed.
namespace LinePairing {

// Differences larger than this (left lines times right lines) keep the top pairing.
constexpr int MaxCells = 10000;

// How alike two lines are, from 0 to 1: shared pairs of neighbouring characters, blanks
// at either end left out.
double Similarity(std::string_view a, std::string_view b);

// Splits `hunk` into consecutive parts whose lines pair from the top; `line(side, n)`
// gives a line's text. A hunk with one side empty, or too large, comes back whole.
std::vector<DiffHunk> Pair(const DiffHunk& hunk, const std::function<std::string_view(int side, int line)>& line);

} // namespace LinePairing
