#pragma once

// The whole compare, from reading to the first paint of both panes: measured where the
// compare's window classes are built in, absent otherwise.
namespace CompareOpenProbe {
bool Available();
// Prints "seconds 0 0 peakKb changed" as the diff measurement does.
int Measure(int argc, char** argv, long long (*peakKb)());
} // namespace CompareOpenProbe
