#pragma once

#include <QString>

// What this process still has open, read from /proc/self/fd (Linux only): a file that
// was replaced or deleted while open shows there with " (deleted)" after its name.
namespace TestSupport {

enum class Handles { Any, Replaced };

// How many of this process's descriptors lead to `path`: any of them, or only those to
// a file that has since lost that name.
int OpenHandlesTo(const QString& path, Handles which = Handles::Any);

// Waits up to `milliseconds` for the count above to reach zero: releases that happen
// on another thread take a moment.
bool HandlesGoneWithin(const QString& path, Handles which, int milliseconds);

} // namespace TestSupport
