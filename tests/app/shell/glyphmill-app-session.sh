#!/usr/bin/env bash
# The application as a user's session meets it: `glyphmill` starts it in the tray, the Services
# answer on the bus, `glyphmill service` works with and without it, a second `glyphmill` hands
# its request over and ends, and `glyphmill quit` ends the first. Runs inside
# run-under-x-server.sh (a private X server and D-Bus session).
#
#   glyphmill-app-session.sh PATH/TO/glyphmill
set -uo pipefail

glyphmill=$1
source "$(dirname "$0")/session-support.sh"

services() { # METHOD TEXT
  gdbus call --session --dest org.glyphmill.Glyphmill --object-path /org/glyphmill/Glyphmill \
    --method "org.glyphmill.Services.$1" "$2"
}

"$glyphmill" terms add zorBlax >/dev/null

# --- Nothing running yet ---------------------------------------------------------------------
check "service works alone" "  zorBlax Is Here  " \
  "$(printf '  zorblax is here  ' | "$glyphmill" service capitalize-words)"
output=$(printf ' \n\t' | "$glyphmill" service uppercase; echo "status $?")
check "blank input comes back unchanged, status 1" "$(printf ' \n\t')status 1" "$output"
"$glyphmill" quit
check "quit with nothing running does nothing" "0 no" "$? $(name_has_owner && echo yes || echo no)"
output=$(env -u DISPLAY "$glyphmill" 2>&1; echo "status $?")
check "no display: a message and status 69" "1 status 69" \
  "$(grep -c '^glyphmill: no display' <<<"$output") $(tail -n 1 <<<"$output")"

lonely="$workdir/lonely"
mkdir "$lonely" && cp "$glyphmill" "$lonely/"
output=$("$lonely/glyphmill" palette 2>&1; echo "status $?")
check "application missing: status 69" "status 69" "$(tail -n 1 <<<"$output")"

# --- The first instance ----------------------------------------------------------------------
"$glyphmill" 2>"$workdir/app.log" &
app_pid=$!
wait_until name_has_owner || { echo "FAILED: the bus name never appeared" >&2; cat "$workdir/app.log" >&2; exit 1; }

check "Smart Case keeps the spaces" "(true, '  Hello world  ')" "$(services transformSmartCase '  hello world  ')"
check "terms are honoured" "(true, 'zorBlax SHIPS')" "$(services transformUppercase 'zorblax ships')"
check "Title Case" "(true, 'The End of the Road')" "$(services transformTitleCase 'the end of the road')"
check "blank is not handled" "(false, '  ')" "$(services transformLowercase '  ')"
check "service through the running instance" "Hello world" \
  "$(printf 'hello world' | "$glyphmill" service smart-case)"

# A second start hands over its request and ends; the first keeps running.
set_clipboard "make me loud"
"$glyphmill" clipboard uppercase
check "handed-over clipboard command" "0 MAKE ME LOUD" "$? $(clipboard)"
"$glyphmill" restore
check "restore" "0 make me loud" "$? $(clipboard)"
"$glyphmill"
check "a second plain start ends at once" "0" "$?"
env -u DISPLAY "$glyphmill" clipboard title-case
check "handing over needs no display" "0 Make Me Loud" "$? $(clipboard)"
kill -0 "$app_pid" 2>/dev/null
check "the first is still running" "0" "$?"

"$glyphmill" quit
check "quit answers" "0" "$?"
wait "$app_pid"
check "the first ends normally" "0" "$?"
app_pid=
check "the name is released" "no" "$(name_has_owner && echo yes || echo no)"

# --- A command starts the application when none runs -------------------------------------------
set_clipboard "QUIET NOW"
"$glyphmill" clipboard lowercase 2>>"$workdir/app.log" &
app_pid=$!
wait_until sh -c '[ "$(xclip -selection clipboard -out 2>/dev/null)" = "quiet now" ]'
check "a command starts the application and runs" "quiet now" "$(clipboard)"
# Logging out sends SIGTERM: the same orderly end as quitting.
kill -TERM "$app_pid"
wait "$app_pid"
check "SIGTERM ends it normally" "0 no" "$? $(name_has_owner && echo yes || echo no)"
app_pid=

finish
