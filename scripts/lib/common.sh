# shellcheck shell=bash
# Shared by the scripts of this project. Sourced, not run.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
me=$(basename "$0")
cores=$(nproc)

# With a proxy in the environment, gRPC would use it for localhost, too.
export no_grpc_proxy=localhost,127.0.0.1,::1

say() { printf '%s: %s\n' "$me" "$*"; }
fail() {
  printf '%s: %s\n' "$me" "$*" >&2
  exit 1
}

# A script's help is the comment at its top.
show_help() {
  sed -n '2,/^$/ s/^# \{0,1\}//p' "scripts/$me"
}
misused() {
  printf '%s: %s; see --help\n' "$me" "$*" >&2
  exit 2
}

# listed GROUP...: the packages of these groups in scripts/packages.txt.
listed() {
  awk -v groups=" $* " 'NF && index(groups, " " $1 " ") { print $2 }' scripts/packages.txt
}

# as_root COMMAND...
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# configure FOLDER PRESET ARGUMENT...: prints nothing unless it fails.
configure() {
  local folder="$1" preset="$2" log="$1/configure.log"
  shift 2
  mkdir -p "$folder"
  cmake --preset "$preset" -B "$folder" "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    fail "cannot configure $folder"
  }
}

# build FOLDER ARGUMENT...: shows its progress.
build() {
  say "building in $1"
  cmake --build "$1" --parallel "$cores" "${@:2}" || fail "cannot build $1"
}

# own_files PATTERN...: the files of this project with such names, one per line.
own_files() {
  local names=() pattern
  for pattern in "$@"; do names+=(-o -name "$pattern"); done
  find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print | sort
}
