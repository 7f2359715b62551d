#!/usr/bin/env bash
# Speed of screen text capture in the tray application: from the capture chord's key press to the
# overlay on screen, and from the release of the drag to the recognised text on the clipboard and
# the status bubble, for a 400x100 region and for the whole 1600x900 screen, over a page of 22 px
# prose. Run it under the private X session in a Release build:
#
#   tests/platform/linux/run-under-x-server.sh \
#       bench/capture-latency.sh [--runs N] path/to/glyphmill path/to/glyphmill_text_board
#
# The moments come from bench/x11_probe.cpp (capture), compiled here with the system compiler: it
# presses Shift+Super+2 and drags through XTest and blocks on the X server's events, so a time ends
# on the event itself (the overlay's window mapped; another client taking CLIPBOARD; the bubble's
# window mapped), with no polling interval in it. The first capture after start, which loads the
# recognition model, is reported apart. The recognised page is compared word by word with the text
# on screen. This reports, it does not gate.
set -euo pipefail

usage() {
    echo "Usage: $0 [--runs N] GLYPHMILL TEXT_BOARD" >&2
    exit 64
}

runs=5
while [[ $# -gt 0 && $1 == --* ]]; do
    [[ $# -ge 2 && $2 =~ ^[1-9][0-9]*$ ]] || usage
    case $1 in
    --runs) runs=$2 ;;
    *) usage ;;
    esac
    shift 2
done
[[ $# -eq 2 ]] || usage
glyphmill=$(realpath "$1")
text_board=$(realpath "$2")
[[ -x $glyphmill && -x $text_board ]] || { echo "$0: both programs must be executable" >&2; exit 66; }
[[ -n ${DISPLAY:-} ]] || { echo "$0: no DISPLAY; run it under run-under-x-server.sh" >&2; exit 69; }
for tool in xclip xdpyinfo gdbus c++ python3; do
    command -v "$tool" >/dev/null || { echo "$0: $tool is not installed" >&2; exit 69; }
done
[[ $(xdpyinfo | awk '/dimensions:/ { print $2 }') == 1600x900 ]] ||
    { echo "$0: the screen must be 1600x900 (one monitor)" >&2; exit 69; }

source "$(dirname "$(realpath "$0")")/app-session-setup.sh"


"$text_board" "$work/layout" page 2>>"$work/app.log" &
extra_pids+=($!)
for _ in $(seq 100); do [[ -s $work/layout ]] && break; sleep 0.1; done
[[ -s $work/layout ]] || { echo "$0: the text board never showed" >&2; cat "$work/app.log" >&2; exit 70; }

"$probe" launch "$glyphmill" >"$work/launch-line" 2>>"$work/app.log" || {
    echo "$0: launch failed" >&2
    cat "$work/app.log" >&2
    read -r _ app_pid <"$work/launch-line" || true
    exit 70
}
read -r _ app_pid <"$work/launch-line"
# The hot keys are grabbed before the application serves its first call on the bus.
for _ in $(seq 100); do
    gdbus call --session --dest org.glyphmill.Glyphmill --object-path /org/glyphmill/Glyphmill \
        --method org.glyphmill.Services.transformUppercase ready >/dev/null 2>&1 && break
    sleep 0.1
done

# One capture: prints "overlay clipboard bubble" in ms and keeps the clipboard in $work/NAME.txt.
# Waits for the bubble to go before returning, so the next capture starts on a quiet screen.
capture() { # NAME X1 Y1 X2 Y2
    local name=$1 line status=0
    # xclip stays behind to serve the text: it must not hold the caller's output open.
    printf 'before %s' "$name" | xclip -selection clipboard -in >/dev/null 2>&1
    line=$("$probe" capture "$app_pid" 1 "$2" "$3" "$4" "$5" 2>>"$work/app.log") || status=$?
    if [[ $status -ne 0 ]]; then
        echo "$0: the $name capture failed (status $status): $line" >&2
        tail -n 20 "$work/app.log" >&2
        exit 70
    fi
    xclip -selection clipboard -out >"$work/$name.txt"
    echo "$line"
    sleep 2.2
}

# Words of the recognised text found in order in the page's text, as a share of the page's words.
word_match() { # RECOGNISED
    python3 - "$1" "$work/layout" <<'EOF'
import difflib, sys
recognised = open(sys.argv[1]).read().split()
page = open(sys.argv[2]).readline().split(" ", 5)[5].replace("|", " ").split()
matcher = difflib.SequenceMatcher(None, page, recognised, autojunk=False)
same = sum(block.size for block in matcher.get_matching_blocks())
print(f"{same} of {len(page)} words in order, {len(recognised)} recognised")
EOF
}

echo "warming up: the first capture loads the recognition model" >&2
first=$(capture first 32 32 432 132)
echo "capturing a 400x100 region $runs times" >&2
for _ in $(seq "$runs"); do capture small 32 32 432 132 >>"$work/small.times"; done
echo "capturing the whole screen $runs times" >&2
for _ in $(seq "$runs"); do capture full 0 0 1599 899 >>"$work/full.times"; done
"$glyphmill" quit

column() { awk -v n="$2" '{ print $n }' "$1"; }
report() { printf 'median %s ms (%s ms)' "$(column "$1" "$2" | median)" "$(column "$1" "$2" | range)"; }
small="$work/small.times"
full="$work/full.times"
cat "$small" "$full" >"$work/all.times"
cat <<EOF
chord to overlay mapped       $(report "$work/all.times" 1) over $((runs * 2)) captures
400x100 region, release to
  clipboard taken             $(report "$small" 2)
  bubble mapped               $(report "$small" 3)
1600x900 screen, release to
  clipboard taken             $(report "$full" 2)
  bubble mapped               $(report "$full" 3)
first capture after start     $first ms (overlay, clipboard, bubble)
recognised page               $(word_match "$work/full.txt")
recognised region             $(tr '\n' ' ' <"$work/small.txt")
EOF
