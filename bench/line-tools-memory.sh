#!/usr/bin/env bash
# Peak memory of every `glyphmill lines` tool on inputs of one size in several line shapes: all
# empty lines, one-character lines, one single line, prose lines, many duplicates, short
# distinct lines, and accented lines (precomposed and decomposed, ß, ligatures). Builds nothing:
# give it the binary.
#
#   bench/line-tools-memory.sh [--size BYTES] [--filter REGEX] path/to/glyphmill
#
# For each shape and tool, prints the peak resident memory less that of the same tool on a tiny
# input, that figure over the input's size in bytes of UTF-8, the wall time, and the output's
# size over the input's, with PASS or MISS beside the aim of at most 10 times the input. A
# result larger than its input needs room of its own: as UTF-16, twice its UTF-8 size. This
# reports, it does not gate: the exit status says only whether every command ran.
set -euo pipefail

usage() {
    echo "Usage: $0 [--size BYTES] [--filter REGEX] GLYPHMILL" >&2
    exit 64
}

size=10000000
filter=""
while [[ $# -gt 0 && $1 == --* ]]; do
    case $1 in
    --size)
        [[ $# -ge 2 && $2 =~ ^[1-9][0-9]*$ ]] || usage
        size=$2
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
[[ $# -eq 1 && -x $1 ]] || usage
glyphmill=$1
[[ -x /usr/bin/time ]] || {
    echo "$0: needs GNU time (/usr/bin/time)" >&2
    exit 69
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Lines from awk's seeded random numbers, so that every machine measures the same bytes, up to
# the last whole line within the size. Under the C locale awk counts bytes.
shape() {
    local name=$1 program=$2
    LC_ALL=C awk -v size="$size" "
        function emit(line) { if (n + length(line) + 1 > size) exit; print line; n += length(line) + 1 }
        function word() { return w[int(rand() * 29) + 1] }
        function words(count,   i, line) { line = word(); for (i = 1; i < count; i++) line = line \" \" word(); return line }
        BEGIN { srand(12); split(\"$vocabulary\", w, \" \"); $program }" >"$work/$name.txt"
}
vocabulary="the of and report summary quick brown fox jumps over lazy dog café naïve Straße résumé Ελληνικά 東京 \
data value item file10 file9 Report SUMMARY lorem ipsum dolor sit amet"
shape empty 'while (1) emit("")'
shape one-char 'split("a b c d e f g h i j k l m n o p q r s t u v w x y z A B C 0 1 2 , ; | é ß", c, " ");
    while (1) emit(c[int(rand() * 36) + 1])'
shape single-line 'while (1) { s = word() " "; if (n + length(s) > size) exit; printf "%s", s; n += length(s) }'
shape prose 'while (1) emit(words(4 + int(rand() * 15)))'
shape duplicates 'for (p = 0; p < 500; p++) pool[p] = words(2 + int(rand() * 5)); while (1) emit(pool[int(rand() * 500)])'
shape short-distinct 'a = "abcdefghijklmnopqrstuvwxyz0123456789";
    while (1) { l = ""; for (i = 0; i < 5; i++) l = l substr(a, int(rand() * 36) + 1, 1); emit(l) }'
# "e" and "é" decomposed, whole and in capitals, "ß", a Greek word and a ligature.
shape accented 'split("Straße ÉTÉ été e\314\201te\314\201 Ωμέγα ﬁn", x, " ");
    while (1) { l = x[int(rand() * 6) + 1]; for (i = 1 + int(rand() * 8); i > 0; i--) l = l " " x[int(rand() * 6) + 1]; emit(l) }'
printf 'a\n' >"$work/tiny.txt"

tools=(
    "sort" "remove-duplicates" "remove-empty" "bullet" "fix-whitespace" "number" "join --separator comma-space"
    "split" "split --delimiter ab" "matching --preset email" "matching --preset contains-digit"
    "containing report" "replace report summary" "replace --match-case report summary"
)

# Peak resident kilobytes and wall seconds of one run.
measure() {
    local input=$1
    shift
    /usr/bin/time -f '%M %e' -o "$work/time" "$glyphmill" lines "$@" <"$input" >"$work/out"
    cat "$work/time"
}

printf '%-15s %-38s %9s %7s %8s %7s\n' shape tool "peak MB" "× in" seconds "out/in"
for input in "$work"/*.txt; do
    name=$(basename "$input" .txt)
    [[ $name == tiny ]] && continue
    bytes=$(stat -c %s "$input")
    for tool in "${tools[@]}"; do
        [[ -z $filter || "$name $tool" =~ $filter ]] || continue
        # shellcheck disable=SC2086 # the tool's words are separate arguments
        read -r baseline _ < <(measure "$work/tiny.txt" $tool)
        # shellcheck disable=SC2086
        read -r peak seconds < <(measure "$input" $tool)
        out=$(stat -c %s "$work/out")
        awk -v n="$name" -v t="$tool" -v kb="$((peak - baseline))" -v b="$bytes" -v s="$seconds" -v o="$out" \
            'BEGIN { ratio = kb * 1000 / b; printf "%-15s %-38s %9.1f %6.1f× %8.2f %6.1f× %s\n",
                     n, t, kb / 1000, ratio, s, o / b, ratio <= 10 ? "PASS" : "MISS" }'
    done
done
