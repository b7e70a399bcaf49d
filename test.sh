#!/usr/bin/env bash
# Builds everything (installing what is missing) and runs the whole test suite.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="${MORVANE_BUILD_DIR:-$here/build}"
"$here/scripts/setup.sh"
export QT_QPA_PLATFORM=offscreen
cd "$build"
# Tests labelled "huge" write files past 2 GB: MORVANE_HUGE_TESTS=1 runs them as well.
exclude=(-LE huge)
[[ "${MORVANE_HUGE_TESTS:-0}" == 1 ]] && exclude=()
ctest --output-on-failure --parallel "$(nproc)" "${exclude[@]}" "$@"
