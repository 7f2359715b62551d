# Shared by the session scripts that drive the real application: a private settings folder,
# checks that count failures, waiting with a deadline, the clipboard through xclip, and the
# verdict with the application's log. Sourced, not run.

if ! command -v gdbus >/dev/null; then
  echo "gdbus is not installed (scripts/install-deps installs it); skipped" >&2
  exit 77
fi

workdir=$(mktemp -d)
export XDG_CONFIG_HOME="$workdir/config"
# A user who has been through the welcome guide, so it does not open over what the tests drive.
mkdir -p "$XDG_CONFIG_HOME/glyphmill"
(umask 077 && printf '{"onboardingCompletedV11": true}\n' >"$XDG_CONFIG_HOME/glyphmill/preferences.json")
failures=0
app_pid=
helper_pids=()
cleanup() {
  [ -n "$app_pid" ] && kill "$app_pid" 2>/dev/null
  local pid
  for pid in "${helper_pids[@]}"; do kill "$pid" 2>/dev/null; done
  rm -rf "$workdir"
}
trap cleanup EXIT

check() { # DESCRIPTION EXPECTED ACTUAL
  if [ "$2" != "$3" ]; then
    printf 'FAILED: %s\n  expected: %q\n  actual:   %q\n' "$1" "$2" "$3" >&2
    failures=$((failures + 1))
  else
    printf 'ok: %s\n' "$1"
  fi
}

# Waits for a condition, up to about thirty seconds (a sanitizer build is slow); the caller
# checks the outcome.
wait_until() {
  local _
  for _ in $(seq 300); do
    "$@" && return 0
    sleep 0.1
  done
  return 1
}

name_has_owner() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.NameHasOwner org.glyphmill.Glyphmill 2>/dev/null | grep -q true
}

set_clipboard() { printf '%s' "$1" | xclip -selection clipboard -in; }
clipboard() { xclip -selection clipboard -out 2>/dev/null; }

finish() {
  if [ "$failures" -ne 0 ]; then
    echo "--- application log" >&2
    cat "$workdir/app.log" >&2
    exit 1
  fi
  echo "all passed"
}
