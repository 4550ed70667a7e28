# shellcheck shell=bash
# Shared by the scripts of this project. Sourced, not run.

set -euo pipefail
# Relative folders are not looked for elsewhere.
unset CDPATH
# Scripts can be called through symbolic links.
script=$(readlink -f "$0")
me=${script##*/}
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../.."
cores=$(nproc)

# With a proxy in the environment, gRPC would use it for localhost, too.
export no_grpc_proxy=localhost,127.0.0.1,::1

say() { printf '%s: %s\n' "$me" "$*"; }
fail() {
  printf '%s: %s\n' "$me" "$*" >&2
  exit 1
}

misused() {
  printf '%s: %s; see --help\n' "$me" "$*" >&2
  exit 2
}
# no_more_arguments ARGUMENT...: there must be none.
no_more_arguments() { [ $# -eq 0 ] || misused "unknown argument '$1'"; }

# check_ctest_arguments ARGUMENT...: ctest ignores what it does not know.
check_ctest_arguments() {
  while [ $# -gt 0 ]; do
    case "$1" in
      -R | -E | -L | -LE | -I | -j | --repeat | --timeout | --output-junit)
        [ $# -ge 2 ] || misused "$1 requires a value"
        shift 2
        ;;
      -V | -VV | -Q | -N | --progress | --output-on-failure | --stop-on-failure | --rerun-failed | --schedule-random)
        shift
        ;;
      *) misused "unknown argument '$1'" ;;
    esac
  done
}

# A script's help is the comment at its top.
for argument in "$@"; do
  case "$argument" in
    -h | --help) sed -n '2,/^$/ s/^# \{0,1\}//p' "$script" && exit ;;
  esac
done

# listed GROUP...: the packages of these groups in scripts/packages.txt.
listed() {
  awk -v groups=" $* " 'NF && index(groups, " " $1 " ") { print $2 }' scripts/packages.txt
}

# The version of the CMake project.
project_version() { sed -n 's/^project(NetworkgRPC VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt; }

# export_date: documents and packages have the date of the last commit, or SOURCE_DATE_EPOCH.
# In the archive of scripts/dist, git has replaced the format with that date.
# shellcheck disable=SC2016 # git's placeholder
commit_date='$Format:%ct$'
export_date() {
  [[ $commit_date != *Format* ]] || commit_date=$(git log -1 --format=%ct 2>/dev/null || date +%s)
  export SOURCE_DATE_EPOCH="${SOURCE_DATE_EPOCH:-$commit_date}"
}

# as_root COMMAND...
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# configure FOLDER PRESET ARGUMENT...: prints nothing unless it fails. With an empty
# PRESET, a folder keeps its settings.
configure() {
  local folder="$1" preset="$2" log="$1/configure.log"
  shift 2
  mkdir -p "$folder"
  cmake ${preset:+--preset "$preset"} -B "$folder" "$@" >"$log" 2>&1 || {
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
