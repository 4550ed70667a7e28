# shellcheck shell=bash
# What the scripts beside this file share. Sourced, not run.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
me=$(basename "$0")
cores=$(nproc)

# gRPC would ask a proxy for the daemons on this machine, too.
export no_grpc_proxy=localhost,127.0.0.1,::1

say() { printf '%s: %s\n' "$me" "$*"; }
fail() {
  printf '%s: %s\n' "$me" "$*" >&2
  exit 1
}

# listed GROUP...: the packages of these groups of scripts/packages.txt.
listed() {
  awk -v groups=" $* " 'NF && index(groups, " " $1 " ") { print $2 }' scripts/packages.txt
}

# as_root COMMAND...
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# A script's help is the comment that it opens with.
show_help() {
  sed -n '2,/^$/ s/^# \{0,1\}//p' "scripts/$me"
}
misused() {
  printf '%s: %s (--help lists what there is)\n' "$me" "$*" >&2
  exit 2
}

# configure FOLDER PRESET ARGUMENT...: silent, unless it fails.
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

# own_files PATTERN...: this project's files of these names, one a line.
own_files() {
  local names=() pattern
  for pattern in "$@"; do names+=(-o -name "$pattern"); done
  find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print | sort
}
