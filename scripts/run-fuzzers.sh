#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer, address and undefined-behaviour
# sanitizers into build-fuzz/, then runs each for a while on a copy of its corpus.
#
#   scripts/run-fuzzers.sh [SECONDS] [TARGET...]     (default 60 s, every target)
#
# An input that crashes a target or breaks one of its properties is copied into
# fuzz/<target>/corpus/ as crash-<hash>, where the ordinary test suite replays it from
# then on: fix the fault, keep the file. New inputs the fuzzer found interesting stay in
# build-fuzz/corpus/<target>/ (pass MORVANE_FUZZ_KEEP=1 to merge them into the tree).
# At the end a table gives each target's executions per second, total executions and
# crashes found; the same figures, one line per target, go to build-fuzz/fuzz-summary.txt
# (scripts/reliability-figures.sh reads them).
set -uo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${MORVANE_FUZZ_BUILD_DIR:-$here/build-fuzz}"
seconds="${1:-60}"
shift || true
# Every folder under fuzz/ holding a corpus is a target.
all_targets=()
for d in "$here"/fuzz/*/corpus; do
    all_targets+=("$(basename "$(dirname "$d")")")
done
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=("${all_targets[@]}")

if ! command -v clang++ >/dev/null || ! ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1; then
    "$here/scripts/setup.sh" --fuzz --install-only || exit 2
fi

flags="-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined -g -O1"
if [ ! -f "$build/CMakeCache.txt" ]; then
    launcher=()
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake -S "$here" -B "$build" -G Ninja "${launcher[@]}" \
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" \
        -DMORVANE_FUZZ=ON -DMORVANE_BUILD_TESTS=OFF -DMORVANE_BUILD_BENCH=OFF >/dev/null || exit 2
fi
ninja -C "$build" "${targets[@]/#/fuzz_}" || exit 2

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:symbolize=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
export QT_QPA_PLATFORM=offscreen
summary="$build/fuzz-summary.txt"
: > "$summary"
status=0
for t in "${targets[@]}"; do
    seeds="$here/fuzz/$t/corpus"
    work="$build/corpus/$t"
    artifacts="$build/artifacts/$t"
    mkdir -p "$work" "$artifacts"
    rm -f "$artifacts"/*
    log="$build/fuzz-$t.log"
    echo "== $t: ${seconds}s"
    # One process: a run stops at its first crash, which is kept below.
    "$build/fuzz/fuzz_$t" "$work" "$seeds" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len=4096 -print_final_stats=1 -artifact_prefix="$artifacts/" >"$log" 2>&1
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | tail -1 | grep -o '[0-9]*$')
    if [ -z "$runs" ]; then
        runs=$(grep -oE '^#[0-9]+' "$log" | tail -1 | tr -d '#')
    fi
    runs=${runs:-0}
    crashes=0
    for a in "$artifacts"/*; do
        [ -f "$a" ] || continue
        crashes=$((crashes + 1))
        keep="$seeds/crash-$(sha1sum "$a" | cut -c1-16)"
        cp "$a" "$keep"
        echo "   kept $(basename "$a") as ${keep#$here/}"
    done
    [ "$crashes" -gt 0 ] && status=1
    # libFuzzer's own rate: the run may have stopped early at a crash.
    rate=$(grep -o 'stat::average_exec_per_sec: *[0-9]*' "$log" | tail -1 | grep -o '[0-9]*$')
    rate=${rate:-$((runs / (seconds > 0 ? seconds : 1)))}
    echo "$t $seconds $runs $rate $crashes" >> "$summary"
    echo "   $runs runs, $rate per second, $crashes crashes (log: ${log#$here/})"
    if [ "${MORVANE_FUZZ_KEEP:-0}" = 1 ]; then
        "$build/fuzz/fuzz_$t" -merge=1 "$seeds" "$work" >/dev/null 2>&1
    fi
done
echo
printf '%-12s %10s %14s %8s\n' target execs/s "total execs" crashes
total=0
while read -r name _ runs rate crashes; do
    printf '%-12s %10s %14s %8s\n' "$name" "$rate" "$runs" "$crashes"
    total=$((total + crashes))
done < "$summary"
echo "crashes found: $total"
exit $status
