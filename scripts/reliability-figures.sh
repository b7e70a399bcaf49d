#!/usr/bin/env bash
# Prints the reliability figures: for each fuzz target the executions per second and in
# total over a run of SECONDS (default 60) and the crashes found, then the number of
# fault-injection cases of every writer and how many left the file intact.
#
#   scripts/reliability-figures.sh [SECONDS]      (SECONDS 0: the fault figures only)
#
# Fuzzing uses scripts/run-fuzzers.sh (clang, build-fuzz/); the fault cases come from the
# ordinary build's test programs (build/, or MORVANE_BUILD_DIR), built when missing.
set -uo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
seconds="${1:-60}"
build="${MORVANE_BUILD_DIR:-$here/build}"

if [ "$seconds" -gt 0 ]; then
    echo "Fuzzing, ${seconds} s per target (libFuzzer, ASan+UBSan, one process):"
    # run-fuzzers.sh ends with the table of every target and the crashes found.
    "$here/scripts/run-fuzzers.sh" "$seconds" 2>/dev/null | sed -n '/^target /,$p' | sed 's/^/  /'
    echo
fi
echo "Fault injection (every open, write, sync, rename, link, chmod and copy of a save failed in turn):"
if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
fi
cmake --build "$build" --target test_savefaults test_documentsavefaults >/dev/null || exit 2
export QT_QPA_PLATFORM=offscreen
{
    "$build/tests/reliability/test_savefaults" --gtest_brief=1
    "$build/tests/reliability/test_documentsavefaults" --gtest_filter='DocumentSaveFaults.*:PdfExportFaults.*' --gtest_brief=1
} 2>/dev/null | grep '^fault injection:' | grep -v 'all writers' | sed 's/^fault injection: */  /' |
    awk '{print} {n=$(NF-6); k=$(NF-4); cases+=n; intact+=k}
         END {printf "  %-28s %4d cases, %4d left the file intact\n", "all writers", cases, intact}'
