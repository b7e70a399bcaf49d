#!/usr/bin/env bash
# Builds Morvane (installing what is missing) and starts it with the given files.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
"$here/scripts/setup.sh" --target morvane
exec "${MORVANE_BUILD_DIR:-$here/build}/morvane" "$@"
