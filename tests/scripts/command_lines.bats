#!/usr/bin/env bats
# The command lines of the scripts: help, unknown arguments, and where they are called from.
#
# Environment: SOURCE_TREE.

# shellcheck disable=SC2154 # run sets output and status
bats_require_minimum_version 1.5.0

# Every script, with arguments that it accepts.
table() {
  cat <<'SCRIPTS'
packaging/build-in-chroot trixie arm64 source
packaging/check folder 1.0 trixie arm64 short
packaging/spdx name 1.0 amd64 --map file
scripts/abi check --record file
scripts/bench --quick
scripts/coverage
scripts/cross-test arm64 -R name
scripts/demo --transcript
scripts/dist
scripts/faults --full
scripts/format --check
scripts/fuzz --runs 10
scripts/lint shell
scripts/mutate --sample 2 --seed 1 library
scripts/package --system trixie --for arm64 build
scripts/prove memcheck
scripts/sanitize memcheck
scripts/setup demo
scripts/soak --threads 2
scripts/static arm64 check
scripts/test --werror -R name
SCRIPTS
}

setup() {
  cd "$SOURCE_TREE" || return
  mkdir "$BATS_TEST_TMPDIR/programs"
  PATH="$BATS_TEST_TMPDIR/programs:$PATH"
  # A script that does not notice its mistake must neither install nor build.
  local program
  for program in apt-get cmake clang-format ctest dpkg-query mmdebstrap networkgrpc-simulator sudo; do
    replace "$program" 'exit 99'
  done
}

# replace PROGRAM CODE: the scripts run this instead of the program.
replace() {
  printf '#!/bin/sh\n%s\n' "$2" >"$BATS_TEST_TMPDIR/programs/$1"
  chmod +x "$BATS_TEST_TMPDIR/programs/$1"
}

# each FUNCTION: calls it with every line of the table; names the one that fails.
each() {
  local words
  while read -r -a words; do
    "$1" "${words[@]}" || { echo "${words[*]}: status $status, $output"; return 1; }
  done < <(table)
}

# prints_help SCRIPT COMMAND: the command prints the usage of that script.
prints_help() {
  run -0 "$2" --help && grep -q "^usage: $1\\b" <<<"$output" && [[ "${lines[0]}" != /* ]]
}

@test "Table_ComparedWithTheFolders_NamesEveryScript" {
  find scripts packaging -maxdepth 1 -type f -perm -u+x | sort | diff - <(table | cut -d' ' -f1)
}

@test "Help_AnyScript_PrintsUsage" {
  plain() { prints_help "$1" "$1"; }
  each plain
}

@test "Help_CdpathNamesAnotherTree_PrintsUsage" {
  mkdir -p "$BATS_TEST_TMPDIR/other/scripts/lib" "$BATS_TEST_TMPDIR/other/packaging"
  with_cdpath() { CDPATH="$BATS_TEST_TMPDIR/other" prints_help "$1" "$1"; }
  each with_cdpath
}

@test "Help_CalledThroughALink_PrintsUsage" {
  cd "$BATS_TEST_TMPDIR"
  through_link() {
    ln -sf "$(realpath --relative-to . "$SOURCE_TREE/$1")" link && prints_help "$1" ./link
  }
  each through_link
}

@test "UnknownArgument_AnyScript_IsAUsageErrorThatNamesIt" {
  named() {
    run -2 timeout 20 "$@" surprise
    [ "${#lines[@]}" -eq 1 ] && [[ "$output" == "${1##*/}: "*"'surprise'"* ]]
  }
  each named
}

# has_installed WHAT...: every package of the list is installed, except as sed's WHAT changes it.
has_installed() {
  awk '$1 !~ /^(#.*)?$/ { print "installed " $2 ", " }' scripts/packages.txt | sed "$@" \
    >"$BATS_TEST_TMPDIR/installed"
  replace dpkg-query "cat '$BATS_TEST_TMPDIR/installed'"
}

@test "Setup_PackageIsProvidedByAnother_InstallsNothing" {
  has_installed '/ npm,/d; s/ nodejs, /&nodejs-dev (= 20), npm (= 20)/'
  run -0 scripts/setup test
  [ "$output" = "" ]
}

@test "Setup_PackageIsMissing_InstallsIt" {
  has_installed '/ npm,/d; s/ nodejs, /&npm-of-another-name/; s/^installed jq,/config-files jq,/'
  replace sudo 'exit 98'
  run -1 scripts/setup test
  [[ "${lines[0]}" == "setup: installing jq npm" ]]
}

@test "Faults_FolderIsConfiguredWithoutTests_EnablesThem" {
  has_installed ''
  replace cmake "echo \"\$*\"; [ \"\$1\" != --build ]"
  touch "$BATS_TEST_TMPDIR/CMakeCache.txt"
  run -1 scripts/faults --folder "$BATS_TEST_TMPDIR"
  # Its own build type and other settings stay.
  [ "$(cat "$BATS_TEST_TMPDIR/configure.log")" = "-B $BATS_TEST_TMPDIR -DNETWORKGRPC_BUILD_TESTS=ON" ]
  [[ "${lines[1]}" == "--build $BATS_TEST_TMPDIR "* ]]
}
