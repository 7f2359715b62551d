#!/usr/bin/env bash
# Runs a command against a private X server, the way a desktop session looks to Glyphmill: Xvfb on
# a display nobody else uses, openbox as window manager, trayer as tray host, all inside one D-Bus
# session of their own. DISPLAY is exported and Qt is told to use it.
#
#   run-under-x-server.sh COMMAND [ARGUMENT...]
#
# GLYPHMILL_TEST_SCREEN sets the screen's WIDTHxHEIGHTxDEPTH (1600x900x24 unless set); a wider
# screen can then be split into monitors with xrandr --setmonitor.
#
# Exits with the command's status, or 77 (CTest's "skipped") when a tool is not installed.
set -euo pipefail

if [ "${1:-}" != --inside-session ]; then
  for tool in Xvfb xdpyinfo xprop xdotool openbox trayer xclip dbus-run-session; do
    if ! command -v "$tool" >/dev/null; then
      echo "run-under-x-server: $tool is not installed (scripts/install-deps installs it); skipped" >&2
      exit 77
    fi
  done
  exec dbus-run-session -- bash "$0" --inside-session "$@"
fi
shift

workdir=$(mktemp -d)
pids=()
stop_all() {
  local i
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2>/dev/null || true
    wait "${pids[i]}" 2>/dev/null || true
  done
  rm -rf "$workdir"
}
trap stop_all EXIT

# Waits until the command succeeds, up to about ten seconds.
wait_for() {
  local _
  for _ in $(seq 100); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  return 1
}

fail() {
  echo "run-under-x-server: $1" >&2
  cat "$workdir"/*.log >&2 2>/dev/null || true
  exit 1
}

# Xvfb chooses a free display number itself and writes it to descriptor 3 once it listens, so
# parallel runs and an X server already on :99 do not get in each other's way. Without -noreset
# it resets when the last client leaves (xdpyinfo below) and refuses whoever connects meanwhile.
Xvfb -displayfd 3 -screen 0 "${GLYPHMILL_TEST_SCREEN:-1600x900x24}" -nolisten tcp -noreset 3>"$workdir/display" >"$workdir/xvfb.log" 2>&1 &
pids+=($!)
wait_for grep -q '^[0-9]' "$workdir/display" || fail "Xvfb did not start"
DISPLAY=":$(head -n 1 "$workdir/display")"
export DISPLAY
wait_for xdpyinfo || fail "display $DISPLAY does not answer"

openbox --sm-disable >"$workdir/openbox.log" 2>&1 &
pids+=($!)
wait_for sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' || fail "openbox did not start"

trayer --edge top --align right --widthtype request --height 24 --SetDockType true \
  >"$workdir/trayer.log" 2>&1 &
pids+=($!)
wait_for xdotool search --classname trayer || fail "trayer did not start"

export QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY
# A session has one; Qt warns without it.
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
  mkdir -m 0700 "$workdir/runtime"
  export XDG_RUNTIME_DIR="$workdir/runtime"
fi
status=0
"$@" || status=$?
exit "$status"
