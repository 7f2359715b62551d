# Shared by the scripts that measure the tray application on a private X session: a scratch
# folder with fresh preferences (past the welcome guide, which would open a window of its own),
# the X-event probe compiled from x11_probe.cpp, and the statistics the reports print. Sourced,
# not run; the caller sets `extra_pids` before anything it starts and may add to it.

work=$(mktemp -d)
app_pid=""
extra_pids=()
cleanup() {
    if [[ -n $app_pid ]]; then kill "$app_pid" 2>/dev/null || true; fi
    local pid
    for pid in "${extra_pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    rm -rf "$work"
}
trap cleanup EXIT
export XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
mkdir -p "$XDG_CONFIG_HOME/glyphmill" "$XDG_DATA_HOME"
(umask 077 && printf '{"onboardingCompletedV11": true}\n' >"$XDG_CONFIG_HOME/glyphmill/preferences.json")

here=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
probe="$work/x11_probe"
c++ -std=c++20 -O2 "$here/x11_probe.cpp" -o "$probe" -lXtst -lXfixes -lX11

median() { sort -g | awk '{ v[NR] = $1 } END { printf "%.1f\n", (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
range() { sort -g | awk 'NR == 1 { lo = $1 } { hi = $1 } END { printf "%s to %s", lo, hi }'; }
verdict() { awk -v value="$1" -v aim="$2" 'BEGIN { print (value < aim) ? "PASS" : "MISS" }'; }
