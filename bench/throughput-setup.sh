# Shared by the throughput scripts, sourced after their options are read: checks the two
# programs given (GLYPHMILL MAKE_CORPORA) and the tools, writes the corpora into a working
# directory ($work/corpora, removed at exit), and defines quote.

[[ $# -eq 2 ]] || usage
glyphmill=$(realpath "$1")
make_corpora=$(realpath "$2")
[[ -x $glyphmill && -x $make_corpora ]] || { echo "$0: both programs must be executable" >&2; exit 66; }
command -v hyperfine >/dev/null || { echo "$0: hyperfine is not installed" >&2; exit 69; }
command -v python3 >/dev/null || { echo "$0: python3 is not installed" >&2; exit 69; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$make_corpora" "$work/corpora" >/dev/null

# Commands run without a shell (hyperfine -N: a shell's start-up would blur short runs), but
# hyperfine splits them by the rules of sh, so every argument is quoted for sh.
quote() { printf "'%s'" "${1//\'/\'\\\'\'}"; }
