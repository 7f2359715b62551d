#!/usr/bin/env bash
# The tray application on a desktop, used as a person would: the icon docks in the tray, the hot
# keys transform and paste, the palette opens at the pointer and its buttons work, the tray icon
# opens the menu, a hot key another program holds stays with that program, the settings window
# opens on command and the welcome guide at the first start. Runs inside
# run-under-x-server.sh (Xvfb, openbox, trayer and a private D-Bus session).
#
#   glyphmill-desktop-session.sh PATH/TO/glyphmill PATH/TO/paste-target PATH/TO/hold-chord
#
# With GLYPHMILL_TEST_SCREENSHOTS set to a directory and ImageMagick's import installed, the open
# menu and palette are saved there as pictures to look at.
set -uo pipefail

glyphmill=$1
paste_target=$2
hold_chord=$3
source "$(dirname "$0")/session-support.sh"

clipboard_is() { [ "$(clipboard)" = "$1" ]; }

# Starts the application and returns once it answers on the bus: the hot keys are grabbed and
# the menu installed before its event loop serves the first call.
start_app() {
  "$glyphmill" 2>>"$workdir/app.log" &
  app_pid=$!
  wait_until gdbus call --session --dest org.glyphmill.Glyphmill --object-path /org/glyphmill/Glyphmill \
    --method org.glyphmill.Services.transformUppercase ready >/dev/null 2>&1 ||
    { echo "FAILED: the application never answered on the bus" >&2; cat "$workdir/app.log" >&2; exit 1; }
}
stop_app() {
  "$glyphmill" quit
  wait "$app_pid"
  check "the application ends normally" "0" "$?"
  app_pid=
}

# The application's windows on screen other than the tray icon; the palette is the one the
# window manager is told is a utility window.
shown_windows() {
  local window
  for window in $(xdotool search --onlyvisible --pid "$app_pid" 2>/dev/null); do
    [ "$window" != "$tray_icon" ] && echo "$window"
  done
}
palette_window() {
  local window
  for window in $(shown_windows); do
    xprop -id "$window" _NET_WM_WINDOW_TYPE 2>/dev/null | grep -q UTILITY && echo "$window"
  done
}
palette_is_open() { [ -n "$(palette_window)" ]; }
palette_is_closed() { [ -z "$(palette_window)" ]; }
# The palette shows before the window manager gives it the keyboard; a key typed in between would
# go to the window below.
palette_has_keyboard() {
  local palette
  palette=$(palette_window)
  [ -n "$palette" ] && [ "$(xdotool getwindowfocus -f 2>/dev/null)" = "$palette" ]
}
palette_key() { # KEY...
  wait_until palette_has_keyboard || echo "the palette never took the keyboard" >&2
  xdotool key "$@"
}
menu_is_open() { [ -n "$(shown_windows)" ] && palette_is_closed; }
nothing_is_open() { [ -z "$(shown_windows)" ]; }

screenshot() { # NAME
  if [ -n "${GLYPHMILL_TEST_SCREENSHOTS:-}" ] && command -v import >/dev/null; then
    mkdir -p "$GLYPHMILL_TEST_SCREENSHOTS"
    import -window root "$GLYPHMILL_TEST_SCREENSHOTS/$1.png"
  fi
}

# Whether some ancestor of the window is trayer's panel, that is, the icon has docked.
docked_in_tray() { # WINDOW
  local window=$1 parent
  while xwininfo -id "$window" >/dev/null 2>&1; do
    xprop -id "$window" WM_CLASS 2>/dev/null | grep -q '"trayer"' && return 0
    parent=$(xwininfo -tree -id "$window" | grep 'Parent window id:')
    [[ $parent == *"(the root window)"* ]] && return 1
    window=${parent#*Parent window id: }
    window=${window%% *}
  done
  return 1
}

# --- Another program holds Shift+Super+T before Glyphmill starts ------------------------------
"$hold_chord" >"$workdir/hold-chord.out" &
helper_pids+=($!)
wait_until grep -q grabbed "$workdir/hold-chord.out" || { echo "FAILED: the chord helper did not grab" >&2; exit 1; }
tray_icon=
start_app
set_clipboard "the end of the road"
xdotool mousemove 800 450 key shift+super+t key ctrl+alt+super+t
# Key events arrive in order, so once the palette is open the Title Case press went wherever it
# was going to go.
wait_until palette_is_open
check "the palette chord still works while Title Case is taken" "yes" "$(palette_is_open && echo yes)"
check "the taken chord stays with the other program" "the end of the road" "$(clipboard)"
palette_key Escape
wait_until palette_is_closed
stop_app
kill "${helper_pids[0]}"
wait "${helper_pids[0]}" 2>/dev/null
helper_pids=()

# --- The tray icon ---------------------------------------------------------------------------
start_app
find_tray_icon() { tray_icon=$(xdotool search --onlyvisible --pid "$app_pid" 2>/dev/null | head -n 1); [ -n "$tray_icon" ]; }
wait_until find_tray_icon
wait_until docked_in_tray "$tray_icon"
check "the icon docks in the tray" "yes" "$(docked_in_tray "$tray_icon" && echo yes)"

# --- Hot keys --------------------------------------------------------------------------------
set_clipboard "the end of the road"
xdotool key shift+super+t
wait_until clipboard_is "The End of the Road"
check "the Title Case chord" "The End of the Road" "$(clipboard)"
"$glyphmill" restore
check "restore brings back the text before the transform" "the end of the road" "$(clipboard)"

"$paste_target" "$workdir/pasted" 2>>"$workdir/app.log" &
helper_pids+=($!)
find_target() { target=$(xdotool search --onlyvisible --name '^glyphmill paste target$' 2>/dev/null | head -n 1); [ -n "$target" ]; }
wait_until find_target
xdotool windowactivate --sync "$target"
printf '<p><b>Bold</b> and <i>plain</i></p>' | xclip -selection clipboard -t text/html -in
xdotool key alt+shift+super+v
pasted_is() { [ "$(cat "$workdir/pasted" 2>/dev/null)" = "$1" ]; }
wait_until pasted_is "Bold and plain"
check "Paste as Plain Text pastes into the focused window" "Bold and plain" "$(cat "$workdir/pasted" 2>/dev/null)"
targets=$(xclip -selection clipboard -out -t TARGETS 2>/dev/null)
check "the clipboard holds only plain text now" "no rich, has text" \
  "$(grep -qiE 'html|rtf|image' <<<"$targets" && echo rich || echo no rich), $(grep -qx UTF8_STRING <<<"$targets" && echo has text)"
kill "${helper_pids[0]}"
wait "${helper_pids[0]}" 2>/dev/null
helper_pids=()

# --- The palette -----------------------------------------------------------------------------
set_clipboard "a tale of two cities"
xdotool mousemove 800 450
"$glyphmill" palette
wait_until palette_is_open
screenshot palette
# Centred under the pointer, a little below it.
eval "$(xdotool getwindowgeometry --shell "$(palette_window)")"
check "the palette opens below the pointer" "660 466 280" "$X $Y $WIDTH"
palette_left=$X
palette_top=$Y
palette_key Escape
wait_until palette_is_closed
check "Escape closes the palette" "closed" "$(palette_is_closed && echo closed)"

"$glyphmill" palette
wait_until palette_is_open
# The middle of Title Case, the second mode button, under the header and the hint; the offset
# holds for the usual desktop fonts (DejaVu Sans here).
xdotool mousemove $((palette_left + 140)) $((palette_top + 112)) click 1
wait_until clipboard_is "A Tale of Two Cities"
check "a mode button transforms the clipboard" "A Tale of Two Cities" "$(clipboard)"
wait_until palette_is_closed
check "and closes the palette" "closed" "$(palette_is_closed && echo closed)"

# --- The menu --------------------------------------------------------------------------------
set_clipboard "$(printf 'first line\nsecond line')"
eval "$(xdotool getwindowgeometry --shell "$tray_icon")"
xdotool mousemove $((X + 3)) $((Y + HEIGHT / 2)) click 1
wait_until menu_is_open
check "clicking the tray icon opens the menu" "open" "$(menu_is_open && echo open)"
screenshot menu
xdotool key Escape
wait_until nothing_is_open
check "Escape closes the menu" "closed" "$(nothing_is_open && echo closed)"

# The third row is UPPERCASE; the keyboard reaches it whatever the font.
xdotool mousemove $((X + WIDTH - 3)) $((Y + HEIGHT / 2)) click 1
wait_until menu_is_open
xdotool key Down Down Down Return
wait_until clipboard_is "$(printf 'FIRST LINE\nSECOND LINE')"
check "a menu row chosen by keyboard transforms the clipboard" "$(printf 'FIRST LINE\nSECOND LINE')" "$(clipboard)"
wait_until nothing_is_open
check "and the menu closes" "closed" "$(nothing_is_open && echo closed)"

# --- The windows -----------------------------------------------------------------------------
named_window() { xdotool search --onlyvisible --pid "$app_pid" --name "^$1\$" 2>/dev/null | head -n 1; }
settings_shown() { [ -n "$(named_window Settings)" ]; }
welcome_shown() { [ -n "$(named_window "Welcome to Glyphmill")" ]; }
"$glyphmill" settings
wait_until settings_shown
check "glyphmill settings opens the settings window" "shown" "$(settings_shown && echo shown)"
screenshot settings
xdotool windowactivate --sync "$(named_window Settings)" key Return
wait_until nothing_is_open
check "Return presses Done, which closes it" "closed" "$(nothing_is_open && echo closed)"
"$glyphmill" settings
wait_until settings_shown
check "and a second glyphmill settings brings it back" "shown" "$(settings_shown && echo shown)"
stop_app

# A first start: the welcome guide opens by itself, and closing it does not complete it.
printf '{}\n' >"$XDG_CONFIG_HOME/glyphmill/preferences.json"
start_app
wait_until welcome_shown
check "the first start opens the welcome guide" "shown" "$(welcome_shown && echo shown)"
xdotool windowactivate --sync "$(named_window "Welcome to Glyphmill")" key --clearmodifiers alt+F4
wait_until nothing_is_open
stop_app
start_app
wait_until welcome_shown
check "closed with its close box, it opens again at the next start" "shown" "$(welcome_shown && echo shown)"

stop_app
finish
