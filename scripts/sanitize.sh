#!/usr/bin/env bash
# Builds the test suite with AddressSanitizer and UndefinedBehaviorSanitizer (leaks
# reported) into build-asan/ and runs it. Any report fails the run.
#
#   scripts/sanitize.sh            every test, the interface included
#   scripts/sanitize.sh --core     the widget-free libraries' tests and the fuzz corpora only
#   extra arguments go to ctest, e.g. scripts/sanitize.sh --core -R textio
#   MORVANE_JOBS=N sets how many compilers and tests run at once (default: every core)
#
# The build is a unity build linked by lld (see CMakeLists.txt) with line tables only for
# debug information, which makes a cold build several times quicker while every report
# still names file and line.
#
# Leaks inside the toolkit's own libraries (fonts, plugins, the platform) are listed in
# scripts/lsan.supp; a leak of ours is never suppressed.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${MORVANE_ASAN_BUILD_DIR:-$here/build-asan}"
scope=all
jobs="${MORVANE_JOBS:-$(nproc)}"
if [ "${1:-}" = "--core" ]; then scope=core; shift; fi
if [ "${1:-}" = "--all" ]; then shift; fi

flags="-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined"
# Configured every time, so that a change of flags here reaches an existing build-asan/.
launcher=()
generator=()
if [ ! -f "$build/CMakeCache.txt" ]; then
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    command -v ninja >/dev/null && generator=(-G Ninja)
fi
# -Og compiles in about half the time -O1 takes under the sanitizers while the tests
# still run at a usable speed; -g1 (line tables, no types or variables) makes compiling
# and linking much cheaper while the reports keep their files and line numbers. The test
# programs are linked at a fixed address: as position-independent programs each of the
# thousand-odd test processes spent a tenth of a second relocating the sanitizers' tables.
cmake -S "$here" -B "$build" "${generator[@]}" "${launcher[@]}" \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g1 -Og" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined -no-pie" \
    -DCMAKE_SHARED_LINKER_FLAGS="-fsanitize=address,undefined" \
    -DMORVANE_BUILD_BENCH=OFF >/dev/null
if [ "$scope" = core ]; then
    cmake --build "$build" --parallel "$jobs" --target morvane_core_tests
    labels=(-L core)
else
    cmake --build "$build" --parallel "$jobs"
    labels=()
fi
# As in ./test.sh, the tests that write files past 2 GB run only when asked for with
# MORVANE_HUGE_TESTS=1.
[[ "${MORVANE_HUGE_TESTS:-0}" == 1 ]] || labels+=(-LE huge)

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS="detect_leaks=1:detect_stack_use_after_return=1${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
export LSAN_OPTIONS="suppressions=$here/scripts/lsan.supp:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$here/scripts/ubsan.supp${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}"
cd "$build"
ctest --output-on-failure --parallel "$jobs" "${labels[@]}" "$@"
