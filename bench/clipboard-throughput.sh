#!/usr/bin/env bash
# Whole-process throughput of the glyphmill clipboard text commands (lines, stats, html-to-text,
# rtf-to-text) on the generated inputs of 1 MB and 10 MB, measured with hyperfine. Builds
# nothing: give it the binaries.
#
#   bench/clipboard-throughput.sh [--runs N] [--filter REGEX] path/to/glyphmill path/to/make_corpora
#
# Prints milliseconds at both sizes, MB/s at 10 MB (1 MB = 1,000,000 bytes of input) on wall and
# CPU time, and the time of 10 MB over that of 1 MB, which is about 10 for linear work. This
# reports, it does not gate: the exit status says only whether every command ran.
set -euo pipefail

usage() {
    echo "Usage: $0 [--runs N] [--filter REGEX] GLYPHMILL MAKE_CORPORA" >&2
    exit 64
}

runs=5
filter=""
while [[ $# -gt 0 && $1 == --* ]]; do
    case $1 in
    --runs)
        [[ $# -ge 2 && $2 =~ ^[1-9][0-9]*$ ]] || usage
        runs=$2
        shift 2
        ;;
    --filter)
        [[ $# -ge 2 ]] || usage
        filter=$2
        shift 2
        ;;
    *) usage ;;
    esac
done
source "$(dirname "$0")/throughput-setup.sh"

# One line per measurement: id, input file, hyperfine JSON.
plan="$work/plan.tsv"
: >"$plan"

measure() { # id input-stem extension glyphmill-arguments... (the input file goes last)
    local id=$1 stem=$2 extension=$3
    shift 3
    [[ -z $filter || $id =~ $filter ]] || return 0
    local size
    for size in 1MB 10MB; do
        local input="$work/corpora/$stem-$size.$extension"
        local command
        command=$(quote "$glyphmill")
        local argument
        for argument in "$@" "$input"; do
            command+=" $(quote "$argument")"
        done
        # A failing command would be timed as a fast one, so check it once first.
        if ! sh -c "$command" >/dev/null; then
            echo "$0: '$id' failed on $stem-$size.$extension" >&2
            exit 70
        fi
        echo "measuring $id $size" >&2
        local json="$work/${id//\//_}-$size.json"
        hyperfine -N --style none --warmup 1 --runs "$runs" --export-json "$json" "$command" >/dev/null
        printf '%s\t%s\t%s\t%s\n' "$id" "$size" "$input" "$json" >>"$plan"
    done
}

measure "lines sort" lines txt lines sort
measure "lines remove-duplicates" lines txt lines remove-duplicates
measure "lines remove-empty" lines txt lines remove-empty
for style in period zero-padded parenthesis; do
    measure "lines number --style $style" lines txt lines number --style "$style"
done
measure "lines bullet" lines txt lines bullet
measure "lines join --separator comma-space" lines txt lines join --separator comma-space
measure "lines split --delimiter comma" lines txt lines split --delimiter comma
for preset in email url contains-at contains-digit non-empty; do
    measure "lines matching --preset $preset" lines txt lines matching --preset "$preset"
done
# The same pattern as ClipboardTextBench.cpp: the warnings and errors of the log lines.
measure "lines matching --pattern" lines txt lines matching --pattern '^\d{4}-\d{2}-\d{2}T\S+ (WARN|ERROR)\b'
measure "lines containing" lines txt lines containing report
measure "lines fix-whitespace" lines txt lines fix-whitespace
measure "lines replace" lines txt lines replace report summary
measure "lines replace --match-case" lines txt lines replace --match-case report summary
measure "stats (lines)" lines txt stats
measure "stats (prose)" mixed txt stats
measure "html-to-text" page html html-to-text
measure "rtf-to-text" document rtf rtf-to-text

python3 - "$plan" "$runs" <<'PYTHON'
import json, os, sys

plan_path, runs = sys.argv[1], sys.argv[2]
rows = {}
order = []
for line in open(plan_path, encoding="utf-8"):
    ident, size, input_path, json_path = line.rstrip("\n").split("\t")
    result = json.load(open(json_path, encoding="utf-8"))["results"][0]
    # The median resists the odd run that other processes slowed down.
    rows[(ident, size)] = dict(bytes=os.path.getsize(input_path), median=result["median"],
                               cpu=result["user"] + result["system"])
    if ident not in order:
        order.append(ident)

load = os.getloadavg()[0]
print(f"glyphmill COMMAND FILE, whole process, median of {runs} runs (CPU: mean user + system);"
      f" load average {load:.1f} on {os.cpu_count()} cores")
print(f"{'command':<40} {'1 MB ms':>9} {'10 MB ms':>9} {'MB/s':>7} {'CPU MB/s':>9} {'10MB/1MB':>9} {'CPU':>6}")
for ident in order:
    small, large = rows[(ident, "1MB")], rows[(ident, "10MB")]
    rate = large["bytes"] / large["median"] / 1e6
    cpu_rate = large["bytes"] / large["cpu"] / 1e6 if large["cpu"] > 0 else float("inf")
    ratio = large["median"] / small["median"]
    cpu_ratio = large["cpu"] / small["cpu"] if small["cpu"] > 0 else float("inf")
    print(f"{ident:<40} {small['median'] * 1e3:9.1f} {large['median'] * 1e3:9.1f} {rate:7.1f} {cpu_rate:9.1f}"
          f" {ratio:8.2f}x {cpu_ratio:5.2f}x")
PYTHON
