#pragma once

#include <atomic>
#include <cstddef>
#include <functional>

// How lines are compared.
struct DiffOptions
{
    // Runs of blanks compare equal to one blank, and blanks and line ends at the end of
    // a line are ignored.
    bool ignoreWhitespace = false;
    // Letters compare without regard to case.
    bool ignoreCase = false;

    bool operator==(const DiffOptions&) const = default;
};

// One difference: `leftCount` lines from `leftStart` of the left side stand where
// `rightCount` lines from `rightStart` stand on the right. Either count may be zero.
struct DiffHunk
{
    int leftStart = 0;
    int leftCount = 0;
    int rightStart = 0;
    int rightCount = 0;

    bool operator==(const DiffHunk&) const = default;
};

// Lets a long diff be watched and stopped from another thread.
struct DiffControl
{
    // Set by the caller to stop; the diff then returns as soon as it can.
    const std::atomic<bool>* cancel = nullptr;
    // Called now and then from the diff's thread with a value from 0 to 1000.
    std::function<void(int permille)> progress;

    bool Cancelled() const { return cancel && cancel->load(std::memory_order_relaxed); }
};
