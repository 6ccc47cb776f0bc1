# Sourced by every script: strict mode, the checkout as the working directory, --help, and short
# functions that several scripts use. --help prints the comment at the top of the script and does
# nothing else.

set -euo pipefail
script=$(readlink -f "$0")
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$script"
}

say() {  # MESSAGE
  printf '%s: %s\n' "${script#"$PWD"/}" "$1" >&2
}

# Ends the script with a reason.
fail() {  # REASON
  say "$1"
  exit 1
}

# Refuses a wrong call: prints why and how to call the script.
refuse() {  # REASON
  say "$1"
  printf '\n' >&2
  usage >&2
  exit 2
}

takes_no_arguments() {  # "$@"
  [ $# -eq 0 ] || refuse "unknown argument: $1"
}

takes_cmake_settings() {  # "$@"
  local argument
  for argument in "$@"; do
    [[ $argument == -D?*=* ]] || refuse "not a setting, -DNAME=VALUE: $argument"
  done
}

is_number() {  # TEXT
  case $1 in
    '' | *[!0-9]*) return 1 ;;
  esac
}

# Runs a command and shows its output only if it fails.
quietly() {  # COMMAND [ARGUMENT]...
  local output
  output=$("$@" 2>&1) || {
    printf '%s\n' "$output" >&2
    fail "this command failed: $*"
  }
}

# Ends a check that cannot run here, without failing it.
skip() {  # REASON
  say "SKIPPED: $1"
  exit 0
}

needs_tracing() {
  strace -o /dev/null true 2>/dev/null ||
    skip "this system does not let a process trace another. In a container, allow it with \
--cap-add SYS_PTRACE."
}

# Runs a check on a copy of the program with a planted mistake. Fails unless the check fails and
# prints a violation with these words.
must_find() {  # MISTAKE WORDS COMMAND [ARGUMENT]...
  local output=build/release/$1.txt
  if "${@:3}" >"$output" 2>&1 || ! grep -q "VIOLATION.*$2" "$output"; then
    fail "the planted mistake $1 was not found: see $output"
  fi
  echo "planted mistake $1: found"
}

configure() {  # PRESET [CMAKE OPTION]...
  echo "Configuring build/$1"
  quietly cmake --preset "$@"
}

for argument in "$@"; do
  case $argument in
    -h | --help) usage; exit 0 ;;
  esac
done

if [ -n "${TMPDIR-}" ] && [ ! -d "$TMPDIR" ]; then
  say "TMPDIR is $TMPDIR, which is not a folder; using /tmp instead"
  unset TMPDIR
fi
