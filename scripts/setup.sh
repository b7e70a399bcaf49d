#!/usr/bin/env bash
# Installs whatever the build needs and is missing, then configures and builds.
# Quick when everything is already there.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${MORVANE_BUILD_DIR:-$here/build}"

# lld links the test programs several times faster than the default linker.
packages=(build-essential cmake ninja-build pkg-config ccache lld
          qt6-base-dev qt6-base-dev-tools libgl-dev libqscintilla2-qt6-dev
          libpugixml-dev zlib1g-dev googletest libgtest-dev libgmock-dev libbenchmark-dev
          qt6-tools-dev qt6-tools-dev-tools poppler-utils
          adwaita-icon-theme hicolor-icon-theme)

# --fuzz also installs clang and its libFuzzer and sanitizer runtimes (scripts/run-fuzzers.sh);
# --xwindow what the real-window checks need;
# --install-only stops after installing. The ordinary build needs g++ alone.
install_only=0
while [ $# -gt 0 ]; do
    case "$1" in
        --fuzz) packages+=(clang libclang-rt-dev); shift ;;
        # The real-window checks (tests/*/x_*.sh): a virtual display, a window manager, keys and screenshots.
        --xwindow) packages+=(xvfb openbox xdotool imagemagick x11-utils); shift ;;
        --install-only) install_only=1; shift ;;
        *) break ;;
    esac
done

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo_cmd=()
    if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}"
fi

[ "$install_only" = 1 ] && exit 0

generator=()
if [ ! -f "$build/CMakeCache.txt" ] && command -v ninja >/dev/null; then generator=(-G Ninja); fi
# A compiler cache makes rebuilds after a branch switch or in a second clone quick.
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake -S "$here" -B "$build" "${generator[@]}" "${launcher[@]}" -DCMAKE_BUILD_TYPE="${MORVANE_BUILD_TYPE:-RelWithDebInfo}" >/dev/null
cmake --build "$build" --parallel "$(nproc)" "$@"
