# Sourced by the real-window checks after /work/shared/tools/xwindow.sh: starts Xvfb (on
# DISPLAY_NUMBER when set, else a free display) and openbox with our own configuration,
# which leaves Alt+drag and Alt+Shift+arrows to the editor.
e2e_x_ours() {
  local rc n
  rc=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/openbox-rc.xml
  n=${DISPLAY_NUMBER:-$((90 + RANDOM % 400))}
  if [ -z "${DISPLAY_NUMBER:-}" ]; then
    while [ -e /tmp/.X11-unix/X$n ] || [ -e /tmp/.X$n-lock ]; do n=$((n + 1)); done
  fi
  Xvfb :$n -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 & E2E_PIDS+=($!)
  export DISPLAY=:$n
  local i; for i in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
  openbox --config-file "$rc" >/dev/null 2>&1 & E2E_PIDS+=($!)
  sleep 0.5
}
