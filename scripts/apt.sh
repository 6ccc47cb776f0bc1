# Sourced by scripts/setup: installs packages with apt. Nothing is installed before the user knows
# what and how much, nor on a system whose packages are too old.

oldest_usable() {  # PACKAGE -> the oldest version that works; nothing if every version does
  case $1 in
    cmake) echo 3.25 ;;
    g++) echo 12 ;;
  esac
}

at_least() {  # VERSION OLDEST
  [ "$(printf '%s\n' "$1" "$2" | sort -V | head -n 1)" = "$2" ]
}

is_usable() {  # PACKAGE: installed, and new enough where that matters
  local oldest version
  if ! command -v "$1" >/dev/null; then  # a command can be there without its package
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q 'ok installed'
    return
  fi
  oldest=$(oldest_usable "$1")
  [ -n "$oldest" ] || return 0
  version=$("$1" --version | sed -n '1s/.* \([0-9][0-9.]*\).*/\1/p')
  at_least "$version" "$oldest"
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

candidate() {  # PACKAGE -> the version that apt would install; nothing if it knows none
  LC_ALL=C apt-cache policy "$1" |
    sed -n "/^$1:/,/Version table/s/^ *Candidate: \\([0-9]*:\\)\\{0,1\\}\\([0-9][^-+]*\\).*/\\2/p"
}

refuse_old_system() {
  local name version oldest
  for name in "${missing[@]}"; do
    oldest=$(oldest_usable "$name")
    version=$(candidate "$name")
    [ -n "$oldest" ] && [ -n "$version" ] || continue
    at_least "$version" "$oldest" || fail "$(. /etc/os-release && echo "$PRETTY_NAME") is too old: \
it has $name $version, and $oldest is needed.
Use Debian 12, Ubuntu 24.04 or a later release. Nothing was installed."
  done
}

require_root() {
  [ "$(id -u)" -ne 0 ] || return 0
  if command -v sudo >/dev/null && sudo apt-get --version >/dev/null; then return 0; fi
  fail "installing needs root, and sudo is missing or refused. An administrator can run this:

apt-get update && apt-get install --no-install-recommends ${missing[*]}
"
}

no_network() {
  fail "no network: apt cannot reach its servers, and these are missing: ${missing[*]}"
}

update_package_lists() {
  local name
  echo "Updating apt's package lists"
  as_root env LC_ALL=C apt-get update -q -o Acquire::http::Timeout=30 \
    -o DPkg::Lock::Timeout=300 >"$log" 2>&1 || true
  grep -Eq '^(Hit|Get):' "$log" || ! grep -Eq '^(Err|Ign):' "$log" || no_network
  for name in "${missing[@]}"; do
    [ -n "$(candidate "$name")" ] ||
      fail "apt has no package $name. On Ubuntu, turn on the component 'universe'."
  done
}

announce() {
  LC_ALL=C apt-get install --print-uris --no-install-recommends "${missing[@]}" 2>&1 |
    sed -n -e 's/.* \([0-9]*\) newly installed.*/  packages: \1, dependencies included/p' \
      -e 's|^Need to get \([^/]*\).* of archives.*|  download: \1|p' \
      -e 's/^After this operation, \(.*\) of additional.*/  on disk:  \1/p'
  echo "  time:     a minute or two with a fast network"
}

# Prints apt's progress: one line that changes on a terminal, otherwise a line for each quarter.
# Everything else that apt prints goes to the log.
show_progress() {
  local line kind percent step quarter=
  while IFS= read -r line; do
    IFS=: read -r kind _ percent _ <<<"$line"
    case $kind in
      dlstatus) step=Downloading ;;
      pmstatus) step=Installing ;;
      *) printf '%s\n' "$line" >>"$log"; continue ;;
    esac
    percent=${percent%.*}
    if [ -t 1 ]; then
      printf '\r%s: %3d %%  ' "$step" "$percent"
    elif [ "$step $((percent / 25))" != "$quarter" ]; then
      quarter="$step $((percent / 25))"
      printf '%s: %d %%\n' "$step" "$percent"
    fi
  done
  [ ! -t 1 ] || printf '\n'
}

# The status goes to standard output by way of another descriptor: dpkg closes the status descriptor
# for the scripts of packages, and some of them fail without a standard output.
apt_install() {
  as_root env LC_ALL=C DEBIAN_FRONTEND=noninteractive sh -c 'exec "$@" 3>&1 1>&2' sh apt-get install \
    --no-install-recommends -o DPkg::Lock::Timeout=300 -y -qq -o Dpkg::Use-Pty=0 \
    -o APT::Status-Fd=3 "${missing[@]}"
}

install_missing() {
  : >"$log"
  apt_install 2>>"$log" | show_progress ||
    {
      ! grep -Eq 'resolving|connect' "$log" || no_network
      cat "$log" >&2
      fail "apt could not install these: ${missing[*]}"
    }
}

with_apt() {  # PACKAGE...
  local name
  missing=()
  for name in "$@"; do
    is_usable "$name" || missing+=("$name")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "To be installed: ${missing[*]}"
  refuse_old_system
  require_root
  unset TMPDIR  # parts of apt run as another user, who may not write there
  log=$(mktemp)
  trap 'rm -f "$log"' EXIT
  update_package_lists
  refuse_old_system
  announce
  install_missing
  for name in "${missing[@]}"; do
    is_usable "$name" || fail "$(command -v "$name") is too old; put /usr/bin first in PATH"
  done
  echo "Installed after $SECONDS s. To remove: sudo apt-get autoremove --purge ${missing[*]}"
}
