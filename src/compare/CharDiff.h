#pragma once

#include <string_view>
#include <vector>

// Which characters of a changed line differ from its counterpart on the other side.
namespace CharDiff {

// A run of bytes within a line.
struct Span
{
    int start = 0;
    int length = 0;
    bool operator==(const Span&) const = default;
};

struct Result
{
    std::vector<Span> left;
    std::vector<Span> right;
};

// Lines longer than this (in characters) are marked whole: past it the marks stop
// helping the reader and start costing time.
constexpr int MaxLineLength = 20000;

// The differing runs of two lines, given without their line ends. Runs never split a
// UTF-8 character; runs a character or two apart are joined so that a changed word
// reads as one mark.
Result Compute(std::string_view left, std::string_view right);

} // namespace CharDiff
