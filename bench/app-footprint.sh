#!/usr/bin/env bash
# Speed and footprint of the tray application on a display: launch to the icon in the tray, CPU
# time while idle, resident memory, and the Title Case hot key on 100 KB of clipboard text. Run
# it under the private X session (the session's tray host is trayer), in a Release build:
#
#   tests/platform/linux/run-under-x-server.sh \
#       bench/app-footprint.sh [--launches N] [--chords N] [--idle-seconds S] \
#       path/to/glyphmill path/to/make_corpora
#
# The two timed moments come from bench/x11_probe.cpp, compiled here with the system compiler:
# it starts the application and blocks on the X server's events, so a time ends on the event
# itself (the icon's window reparented into trayer and mapped; another client taking CLIPBOARD),
# with no polling interval in it. The chord is timed from the T key's press (XTest) to the
# application owning the clipboard, which it takes once the transformed text is ready; reading
# those 100 KB back with xclip is timed on its own. CPU time is the scheduler's run time of every
# thread (/proc/PID/task/*/schedstat, in ns); utime + stime from /proc/PID/stat is printed beside
# it as a check, in 10 ms ticks, which also count threads that have ended. Preferences go to a
# fresh directory, so every run starts as a first run. This reports, it does not gate.
set -euo pipefail

usage() {
    echo "Usage: $0 [--launches N] [--chords N] [--idle-seconds S] GLYPHMILL MAKE_CORPORA" >&2
    exit 64
}

launches=10
chords=10
idle_seconds=60
while [[ $# -gt 0 && $1 == --* ]]; do
    [[ $# -ge 2 && $2 =~ ^[1-9][0-9]*$ ]] || usage
    case $1 in
    --launches) launches=$2 ;;
    --chords) chords=$2 ;;
    --idle-seconds) idle_seconds=$2 ;;
    *) usage ;;
    esac
    shift 2
done
[[ $# -eq 2 ]] || usage
glyphmill=$(realpath "$1")
make_corpora=$(realpath "$2")
[[ -x $glyphmill && -x $make_corpora ]] || { echo "$0: both programs must be executable" >&2; exit 66; }
[[ -n ${DISPLAY:-} ]] || { echo "$0: no DISPLAY; run it under run-under-x-server.sh" >&2; exit 69; }
for tool in xclip c++; do
    command -v "$tool" >/dev/null || { echo "$0: $tool is not installed" >&2; exit 69; }
done

source "$(dirname "$(realpath "$0")")/app-session-setup.sh"
"$make_corpora" "$work/corpora" >/dev/null
corpus="$work/corpora/mixed-100KB.txt"


# Starts the application under the probe; sets app_pid, and launch_ms to the milliseconds until
# its icon was in the tray. No subshell, or app_pid would be lost.
launch() {
    "$probe" launch "$glyphmill" >"$work/launch-line" 2>>"$work/app.log" || {
        echo "$0: launch failed" >&2
        cat "$work/app.log" >&2
        read -r _ app_pid <"$work/launch-line" || true # for the clean-up to end it
        exit 70
    }
    read -r launch_ms app_pid <"$work/launch-line"
}

# Asks the application to quit and waits until it has gone, so the next start owns the bus name.
quit_app() {
    "$glyphmill" quit
    local _
    for _ in $(seq 200); do
        # Not our child: once it has gone it may linger as a zombie of whoever adopted it.
        if [[ ! -e /proc/$app_pid/stat ]] || [[ $(awk '{ print $3 }' "/proc/$app_pid/stat") == Z ]]; then
            app_pid=""
            return 0
        fi
        sleep 0.05
    done
    echo "$0: the application did not quit within ten seconds" >&2
    exit 70
}

memory() { # label
    awk -v label="$1" '/^VmRSS|^VmHWM/ { kb[$1] = $2 } END {
        printf "%s: VmRSS %.1f MB, VmHWM %.1f MB\n", label, kb["VmRSS:"] / 1024, kb["VmHWM:"] / 1024 }' \
        "/proc/$app_pid/status"
}

# CPU time of every thread in nanoseconds, from the scheduler's own accounting.
cpu_ns() { cat /proc/"$app_pid"/task/*/schedstat | awk '{ sum += $1 } END { printf "%d\n", sum }'; }
cpu_ticks() { awk '{ print $14 + $15 }' "/proc/$app_pid/stat"; }

# Launch to tray: one start, reported apart, fills the page cache; then the measured ones.
echo "launching $launches times (and once to warm up)" >&2
launch
first_launch=$launch_ms
quit_app
launch_times="$work/launch.txt"
for _ in $(seq "$launches"); do
    launch
    echo "$launch_ms" >>"$launch_times"
    quit_app
done

launch
sleep 2
memory_started=$(memory "after start (2 s)")

echo "idle: ${idle_seconds} s to settle, then a ${idle_seconds} s window" >&2
sleep "$idle_seconds"
ticks_before=$(cpu_ticks)
ns_before=$(cpu_ns)
sleep "$idle_seconds"
ns_after=$(cpu_ns)
ticks_after=$(cpu_ticks)
idle_percent=$(awk -v ns=$((ns_after - ns_before)) -v s="$idle_seconds" 'BEGIN { printf "%.4f", ns / 1e9 / s * 100 }')
idle_ticks=$((ticks_after - ticks_before))
memory_idle=$(memory "after the idle minutes")

# Title Case chord on 100 KB: the application's result is checked against the command line's.
echo "pressing the Title Case chord $chords times on $(wc -c <"$corpus") bytes" >&2
"$glyphmill" transform title-case "$corpus" --defaults >"$work/expected.txt"
chord_times="$work/chord.txt"
read_times="$work/read.txt"
chord_cpu="$work/chord-cpu.txt"
matches=0
for _ in $(seq "$chords"); do
    xclip -selection clipboard -i <"$corpus"
    # Let the monitor's poll see the new text first, as a person's copy would.
    sleep 0.6
    ns_before=$(cpu_ns)
    "$probe" chord >>"$chord_times" || exit 70
    echo $(($(cpu_ns) - ns_before)) | awk '{ printf "%.3f\n", $1 / 1e6 }' >>"$chord_cpu"
    start=$(date +%s%N)
    xclip -selection clipboard -o >"$work/result.txt"
    echo "$(( ($(date +%s%N) - start) / 1000 ))" | awk '{ printf "%.3f\n", $1 / 1000 }' >>"$read_times"
    cmp -s "$work/result.txt" "$corpus" && { echo "$0: the clipboard still holds the input" >&2; exit 70; }
    cmp -s "$work/result.txt" "$work/expected.txt" && matches=$((matches + 1))
done
memory_chords=$(memory "after $chords chords")
quit_app

launch_median=$(median <"$launch_times")
chord_median=$(median <"$chord_times")
hwm_now=$(grep -o 'VmHWM [0-9.]*' <<<"$memory_chords" | cut -d' ' -f2)
cat <<EOF
launch to tray icon   median $launch_median ms of $launches ($(range <"$launch_times") ms)  aim < 300 ms  $(verdict "$launch_median" 300)
                      the warm-up start before them: $first_launch ms
idle CPU              $idle_percent % over $idle_seconds s after $idle_seconds s ($idle_ticks ticks of $(getconf CLK_TCK)/s)  aim < 0.1 %  $(verdict "$idle_percent" 0.1)
resident memory       $memory_started
                      $memory_idle
                      $memory_chords  aim < 60 MB  $(verdict "$hwm_now" 60)
Title Case chord      median $chord_median ms of $chords ($(range <"$chord_times") ms), key press to clipboard owned  aim < 30 ms  $(verdict "$chord_median" 30)
                      the application's CPU time in that span: median $(median <"$chord_cpu") ms
                      reading the 100 KB back with xclip: median $(median <"$read_times") ms
                      result equals glyphmill transform title-case --defaults: $matches of $chords
EOF
