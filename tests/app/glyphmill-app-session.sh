#!/usr/bin/env bash
# The application as a user's session meets it: `glyphmill` starts it in the tray, the Services
# answer on the bus, `glyphmill service` works with and without it, a second `glyphmill` hands
# its request over and ends with what became of it (0 the clipboard changed, 1 nothing to do),
# a command with nothing running starts the application on its own and returns, and
# `glyphmill quit` ends it. Runs inside
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

# Every line a command printed, on one line: a message and the status, and nothing else.
one_line() { tr '\n' ' ' <<<"$1" | sed 's/ $//'; }

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

# The running application follows the preference file: terms changed from the command line are
# protected (and given up) without a restart.
"$glyphmill" terms add QuuxCorp
wait_until sh -c "$(declare -f services); services transformLowercase 'QUUXCORP NEWS' | grep -q QuuxCorp"
check "a term added by another program" "(true, 'QuuxCorp news')" "$(services transformLowercase 'QUUXCORP NEWS')"
"$glyphmill" terms remove quuxcorp
wait_until sh -c "$(declare -f services); services transformLowercase 'QUUXCORP NEWS' | grep -q quuxcorp"
check "a term removed by another program" "(true, 'quuxcorp news')" "$(services transformLowercase 'QUUXCORP NEWS')"

# A second start hands over its request and ends; the first keeps running.
set_clipboard "make me loud"
"$glyphmill" clipboard uppercase
check "handed-over clipboard command" "0 MAKE ME LOUD" "$? $(clipboard)"
"$glyphmill" restore
check "restore" "0 make me loud" "$? $(clipboard)"
output=$("$glyphmill" restore 2>&1; echo "status $?")
check "a second restore has nothing to do" "glyphmill: nothing to restore status 1" "$(one_line "$output")"

printf '\x89PNG' | xclip -selection clipboard -target image/png -in
output=$("$glyphmill" clipboard title-case 2>&1; echo "status $?")
check "no text for a transform: status 1" "glyphmill: the clipboard holds no text status 1" \
  "$(one_line "$output")"
output=$("$glyphmill" paste-plain 2>&1; echo "status $?")
check "nothing to paste: status 1" "glyphmill: the clipboard holds no text status 1" "$(one_line "$output")"
set_clipboard "make me loud"
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
# It returns once the started application has answered, and leaves it running in the tray with
# nothing of ours held open: the command substitution would wait for a pipe held by it.
app_pid() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.GetConnectionUnixProcessID org.glyphmill.Glyphmill |
    grep -o '[0-9][0-9]*' | tail -n 1
}
output=$(timeout 120 "$glyphmill" restore 2>&1; echo "status $?")
check "restore starts the application, which has nothing to restore" "glyphmill: nothing to restore status 1 yes" \
  "$(one_line "$output") $(name_has_owner && echo yes || echo no)"
"$glyphmill" quit
wait_until sh -c '! gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus --method org.freedesktop.DBus.NameHasOwner org.glyphmill.Glyphmill | grep -q true'
check "and quits when asked" "no" "$(name_has_owner && echo yes || echo no)"

set_clipboard "QUIET NOW"
output=$(timeout 120 "$glyphmill" clipboard lowercase 2>&1; echo "status $?")
check "a command starts the application, hands over and returns" "status 0 quiet now" "$output $(clipboard)"
started=$(app_pid)
check "the started application keeps running in a session of its own" "yes yes" \
  "$(kill -0 "$started" 2>/dev/null && echo yes) $([ "$(ps -o sid= -p "$started" | tr -d ' ')" = "$started" ] && echo yes)"
# Logging out sends SIGTERM: the same orderly end as quitting, and the name goes with it.
kill -TERM "$started"
wait_until sh -c "! kill -0 $started 2>/dev/null"
check "SIGTERM ends it" "no no" \
  "$(kill -0 "$started" 2>/dev/null && echo yes || echo no) $(name_has_owner && echo yes || echo no)"

finish
