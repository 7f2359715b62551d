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
  for tool in Xvfb xdpyinfo xprop xdotool openbox trayer xclip dbus-run-session python3; do
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

# Waits until the command succeeds. The deadline of a minute only keeps a broken start from
# hanging: on a machine busy with a build, or under the sanitizers, the programs below can take
# many seconds to come up, and the wait ends as soon as they have.
wait_for() {
  local deadline=$((SECONDS + 60))
  until "$@" >/dev/null 2>&1; do
    ((SECONDS < deadline)) || return 1
    sleep 0.1
  done
}

# Whether a tray host owns the system tray selection of the display's default screen, which is
# what a tray icon needs; trayer's window can exist before it does.
tray_is_managed() {
  python3 - <<'PYTHON'
import ctypes, ctypes.util, sys
x11 = ctypes.CDLL(ctypes.util.find_library("X11") or "libX11.so.6")
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XOpenDisplay.argtypes = [ctypes.c_char_p]
x11.XDefaultScreen.argtypes = [ctypes.c_void_p]
x11.XInternAtom.restype = ctypes.c_ulong
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XGetSelectionOwner.restype = ctypes.c_ulong
x11.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
display = x11.XOpenDisplay(None)
if not display:
    sys.exit(1)
selection = x11.XInternAtom(display, b"_NET_SYSTEM_TRAY_S%d" % x11.XDefaultScreen(display), 0)
owner = x11.XGetSelectionOwner(display, selection)
x11.XCloseDisplay(display)
sys.exit(0 if owner else 1)
PYTHON
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
wait_for tray_is_managed || fail "trayer did not take the system tray"

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
