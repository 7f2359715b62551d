#!/usr/bin/env bash
# Screen text capture in the tray application, used as a person would on two monitors side by side:
# the overlay covers both, a drag copies the text under it, Escape and a plain click cancel, a
# second request while selecting changes nothing, a drag is kept to the monitor it started on, the
# capture chord opens the overlay too, and a change of monitors ends the selection. Runs inside
# run-under-x-server.sh with a 3200x900 screen (GLYPHMILL_TEST_SCREEN=3200x900x24), which it splits
# into two monitors before anything starts.
#
#   capture-session.sh PATH/TO/glyphmill PATH/TO/text-board
#
# With GLYPHMILL_TEST_SCREENSHOTS set to a directory and ImageMagick's import installed, a drag
# under way and the status bubble are saved there as pictures to look at.
set -uo pipefail

glyphmill=$1
text_board=$2
source "$(dirname "$0")/../../app/session-support.sh"

for tool in xrandr python3 xev stdbuf; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed (scripts/install-deps installs it); skipped" >&2; exit 77; }
done
if [ "$(xdpyinfo | awk '/dimensions:/ { print $2 }')" != 3200x900 ]; then
  echo "FAILED: the screen is not 3200x900; run with GLYPHMILL_TEST_SCREEN=3200x900x24" >&2
  exit 1
fi
if ! { xrandr --setmonitor left 1600/423x900/238+0+0 screen &&
  xrandr --setmonitor right 1600/423x900/238+1600+0 none; } >/dev/null 2>"$workdir/xrandr.log"; then
  echo "FAILED: xrandr could not split the screen" >&2
  cat "$workdir/xrandr.log" >&2
  exit 1
fi

screenshot() { # NAME
  if [ -n "${GLYPHMILL_TEST_SCREENSHOTS:-}" ] && command -v import >/dev/null; then
    mkdir -p "$GLYPHMILL_TEST_SCREENSHOTS"
    import -window root "$GLYPHMILL_TEST_SCREENSHOTS/$1.png"
  fi
}

# --- Known text on both monitors -------------------------------------------------------------
"$text_board" "$workdir/layout" desk 2>>"$workdir/app.log" &
helper_pids+=($!)
wait_until test -s "$workdir/layout" || { echo "FAILED: the text board never showed" >&2; cat "$workdir/app.log" >&2; exit 1; }
declare -A left top width height text
while read -r name x y w h words; do
  left[$name]=$x top[$name]=$y width[$name]=$w height[$name]=$h text[$name]=${words//|/$'\n'}
done <"$workdir/layout"
board_origins() {
  local window
  for window in $(xdotool search --onlyvisible --name '^glyphmill text board$' 2>/dev/null); do
    eval "$(xdotool getwindowgeometry --shell "$window")"
    echo "$X,$Y ${WIDTH}x$HEIGHT"
  done | sort | paste -sd ' '
}
check "a text board covers each monitor" "0,0 1600x900 1600,0 1600x900" "$(board_origins)"

"$glyphmill" 2>>"$workdir/app.log" &
app_pid=$!
wait_until gdbus call --session --dest org.glyphmill.Glyphmill --object-path /org/glyphmill/Glyphmill \
  --method org.glyphmill.Services.transformUppercase ready >/dev/null 2>&1 ||
  { echo "FAILED: the application never answered on the bus" >&2; cat "$workdir/app.log" >&2; exit 1; }

# The application's windows on screen, as "ID X,Y WIDTHxHEIGHT": the overlay panels cover a
# monitor each, the bubble is 220x44, the tray icon is neither.
app_windows() {
  local window
  for window in $(xdotool search --onlyvisible --pid "$app_pid" 2>/dev/null); do
    eval "$(xdotool getwindowgeometry --shell "$window" 2>/dev/null)" && echo "$window $X,$Y ${WIDTH}x$HEIGHT"
  done
}
overlays() { app_windows | awk '$3 == "1600x900"' | sort -k2; }
overlay_frames() { overlays | awk '{ print $2 " " $3 }' | paste -sd ' '; }
overlay_is_up() { [ "$(overlays | wc -l)" -eq 2 ]; }
overlay_is_gone() { [ -z "$(overlays)" ]; }
bubble() { app_windows | awk '$3 == "220x44" { print $2 }'; }
bubble_is_gone() { [ -z "$(bubble)" ]; }
# The bubble goes away by itself a moment after it shows, sooner than polling the screen is sure
# to see it on a busy machine. So the windows mapped on the root are followed as the server's
# events, which wait in line until read, from before the first capture on.
stdbuf -oL xev -root -event substructure -event property >"$workdir/root-events" 2>/dev/null &
helper_pids+=($!)
root_events_seen() {
  xprop -root -f _GLYPHMILL_TEST_MARK 8s -set _GLYPHMILL_TEST_MARK seen
  grep -q '^PropertyNotify' "$workdir/root-events"
}
wait_until root_events_seen || { echo "FAILED: xev never reported the root window's events" >&2; exit 1; }
# Where the latest bubble mapped after line MARK of the root events is, as "X,Y".
bubble_mapped_since() { # MARK
  awk -v mark="$1" '
    /^[A-Za-z]+ event,/ { kind = $1; next }
    kind == "" || !match($0, /window 0x[0-9a-f]+/) { next }
    {
      id = substr($0, RSTART + 7, RLENGTH - 7)
      if ((kind == "CreateNotify" || kind == "ConfigureNotify") &&
          match($0, /\(-?[0-9]+,-?[0-9]+\), width [0-9]+, height [0-9]+/))
        frame[id] = substr($0, RSTART, RLENGTH)
      else if (kind == "MapNotify" && NR > mark && frame[id] ~ /width 220, height 44$/)
        found = substr(frame[id], 2, index(frame[id], ")") - 2)
      kind = ""
    }
    END { if (found == "") exit 1; print found }' "$workdir/root-events"
}
root_events_mark() { wc -l <"$workdir/root-events"; }
clipboard_is_not() { [ "$(clipboard)" != "$1" ]; }
# The panel that has the keyboard's focus, as "X,Y WIDTHxHEIGHT", if one has. A panel shows
# before it takes the keyboard, and a key typed in between would go elsewhere.
focused_panel() {
  local focus
  focus=$(xdotool getwindowfocus -f 2>/dev/null) || return 1
  overlays | awk -v focus="$focus" '$1 == focus { print $2 " " $3; found = 1 } END { exit !found }'
}
overlay_has_keyboard() { focused_panel >/dev/null; }
# Types keys on the overlay once one of its panels has the keyboard.
overlay_key() { # KEY...
  wait_until overlay_has_keyboard || echo "the overlay never took the keyboard" >&2
  xdotool key "$@"
}

# The captured texts in the stored history, newest first, one a line ("|" for a line break).
history() {
  python3 - "$XDG_CONFIG_HOME/glyphmill/preferences.json" <<'EOF'
import base64, json, sys
try:
    store = json.load(open(sys.argv[1]))
    items = json.loads(base64.b64decode(store["captureHistory.items"]["data"]))
except (OSError, KeyError, ValueError):
    items = []
for item in items:
    print(item["text"].replace("\n", "|"))
EOF
}

open_overlay() {
  "$glyphmill" capture
  wait_until overlay_is_up
}

# A drag as a hand makes it: press, a few moves, release.
drag() { # X1 Y1 X2 Y2 [SCREENSHOT]
  xdotool mousemove "$1" "$2" mousedown 1 mousemove $((($1 * 3 + $3) / 4)) $((($2 * 3 + $4) / 4)) \
    mousemove $((($1 + $3) / 2)) $((($2 + $4) / 2)) mousemove "$3" "$4"
  [ -n "${5:-}" ] && screenshot "$5"
  xdotool mouseup 1
}

# Drags around a block of the board with a margin and waits for the clipboard to change from its
# current text (or, when nothing was found, for the bubble).
sentinel="nothing captured yet"
capture_block() { # NAME [SCREENSHOT]
  local name=$1 margin=12
  set_clipboard "$sentinel"
  open_overlay
  drag $((left[$name] - margin)) $((top[$name] - margin)) \
    $((left[$name] + width[$name] + margin)) $((top[$name] + height[$name] + margin)) "${2:-}"
  wait_until clipboard_is_not "$sentinel"
}

# --- A drag copies the text under it ---------------------------------------------------------
set_clipboard "$sentinel"
open_overlay
check "the overlay covers each monitor once" "0,0 1600x900 1600,0 1600x900" "$(overlay_frames)"
# An even width and height, so the bubble's place below the selection is a whole pixel.
x1=$((left[left] - 14)) y1=$((top[left] - 14))
x2=$((x1 + (width[left] + 28 + 1) / 2 * 2)) y2=$((y1 + (height[left] + 28 + 1) / 2 * 2))
mark=$(root_events_mark)
drag "$x1" "$y1" "$x2" "$y2" capture-drag
wait_until clipboard_is_not "$sentinel"
check "the clipboard holds the text under the drag" "${text[left]}" "$(clipboard)"
check "the overlay is gone after the drag" "gone" "$(overlay_is_gone && echo gone)"
wait_until bubble_mapped_since "$mark"
screenshot capture-bubble
# Centred under the selection, 24 px below its bottom edge.
check "the bubble shows below the selection" "$(((x1 + x2) / 2 - 110)),$((y2 + 24))" "$(bubble_mapped_since "$mark")"
wait_until bubble_is_gone
check "the bubble goes away by itself" "gone" "$(bubble_is_gone && echo gone)"
check "the capture history holds the text" "${text[left]//$'\n'/|}" "$(history)"

# --- Cancelling leaves the clipboard alone ---------------------------------------------------
set_clipboard "$sentinel"
open_overlay
xdotool mousemove 900 300
overlay_key Escape
wait_until overlay_is_gone
check "Escape closes the overlay" "gone" "$(overlay_is_gone && echo gone)"

open_overlay
xdotool mousemove 900 300 click 1
wait_until overlay_is_gone
check "a plain click closes the overlay" "gone" "$(overlay_is_gone && echo gone)"

open_overlay
drag 900 300 905 400
wait_until overlay_is_gone
check "a drag narrower than 8 px closes the overlay" "gone" "$(overlay_is_gone && echo gone)"

# Blank paper: the bubble says so and nothing is copied.
open_overlay
mark=$(root_events_mark)
drag 900 150 1300 350
wait_until bubble_mapped_since "$mark"
check "a drag over blank paper shows the bubble" "shown" "$(bubble_mapped_since "$mark" >/dev/null && echo shown)"
wait_until bubble_is_gone
check "cancelled and empty captures leave the clipboard alone" "$sentinel" "$(clipboard)"
check "and add nothing to the history" "${text[left]//$'\n'/|}" "$(history)"

# --- A second request while selecting changes nothing -----------------------------------------
open_overlay
panels=$(overlays)
"$glyphmill" capture
check "a second capture keeps the same panels" "$panels" "$(overlays)"
overlay_key Escape
wait_until overlay_is_gone
check "and Escape still closes them" "gone" "$(overlay_is_gone && echo gone)"

# --- Each monitor, and a drag across the edge --------------------------------------------------
mark=$(root_events_mark)
capture_block right
check "a drag on the right monitor copies its text" "${text[right]}" "$(clipboard)"
wait_until bubble_mapped_since "$mark"
check "the bubble shows on the right monitor" "right" \
  "$(bubble_mapped_since "$mark" | awk -F, '{ print ($1 >= 1600) ? "right" : "left" }')"
wait_until bubble_is_gone

set_clipboard "$sentinel"
open_overlay
bottom=$((top[left-edge] + height[left-edge]))
[ $((top[right-edge] + height[right-edge])) -gt "$bottom" ] && bottom=$((top[right-edge] + height[right-edge]))
drag $((left[left-edge] - 20)) $((top[left-edge] - 14)) \
  $((left[right-edge] + width[right-edge] + 20)) $((bottom + 14)) capture-across
wait_until clipboard_is_not "$sentinel"
check "a drag across the edge keeps to the monitor it started on" "${text[left-edge]}" "$(clipboard)"
wait_until bubble_is_gone

capture_block inverse
check "white text on a dark ground" "${text[inverse]}" "$(clipboard)"
wait_until bubble_is_gone

# --- The capture chord -----------------------------------------------------------------------
# With the pointer on the right monitor, whose panel must then take the keyboard.
xdotool mousemove 2400 450 key shift+super+2
wait_until overlay_is_up
check "Shift+Super+2 opens the overlay" "0,0 1600x900 1600,0 1600x900" "$(overlay_frames)"
wait_until overlay_has_keyboard
check "the panel under the pointer takes the keyboard" "1600,0 1600x900" "$(focused_panel)"
overlay_key Escape
wait_until overlay_is_gone
check "Escape closes it with the pointer on the right monitor" "gone" "$(overlay_is_gone && echo gone)"

check "the history lists the captures newest first" \
  "$(printf '%s\n' "${text[inverse]}" "${text[left-edge]}" "${text[right]}" "${text[left]//$'\n'/|}")" \
  "$(history)"

# --- A change of monitors while selecting ------------------------------------------------------
# Last, since the text board's right window has nowhere to go meanwhile.
open_overlay
xrandr --delmonitor right >/dev/null
wait_until overlay_is_gone
check "removing a monitor closes the overlay" "gone" "$(overlay_is_gone && echo gone)"
xrandr --setmonitor right 1600/423x900/238+1600+0 none >/dev/null
open_overlay
check "the next capture covers the monitors as they are" "0,0 1600x900 1600,0 1600x900" "$(overlay_frames)"
overlay_key Escape
wait_until overlay_is_gone

"$glyphmill" quit
wait "$app_pid"
check "the application ends normally" "0" "$?"
app_pid=
finish
