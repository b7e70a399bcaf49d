#!/usr/bin/env bash
# Builds everything (installing what is missing) and runs the whole test suite.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="${MORVANE_BUILD_DIR:-$here/build}"
"$here/scripts/setup.sh"
export QT_QPA_PLATFORM=offscreen
cd "$build"
ctest --output-on-failure --parallel "$(nproc)" "$@"
