# Sourced by every script: strict mode, the checkout as the working directory, and --help, which
# prints the comment at the top of the script and does nothing else.

set -euo pipefail
script=$(readlink -f "$0")
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$script" | sed '$d'
}

# Refuses a wrong call: prints why and how to call the script.
refuse() {  # REASON
  printf '%s: %s\n\n' "${script#"$PWD"/}" "$1" >&2
  usage >&2
  exit 2
}

for argument in "$@"; do
  case $argument in
    -h | --help) usage; exit 0 ;;
  esac
done
