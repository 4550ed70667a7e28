#!/usr/bin/env bats
# Both programs judge a state document alike and report it alike.
#
# Environment: SIMULATOR and TOOL, the programs.

# shellcheck disable=SC2154 # set by run

bats_require_minimum_version 1.5.0

setup() {
  cd "$BATS_TEST_TMPDIR" || return
  export XDG_STATE_HOME=$PWD/state # not where checkpoints of this machine may be left
}

@test "WrongDocument_EitherProgram_ReportsFileLineAndReason" {
  local row count=0
  while IFS= read -r row; do
    document=${row%|*}
    printf '%s' "${document//'\n'/$'\n'}" >state.json
    expected="state.json:${row##*|}"
    run -1 --separate-stderr timeout 60 "$TOOL" diff state.json state.json
    [ "$stderr" = "networkgrpc: $expected" ] || { echo "$row: $stderr"; return 1; }
    run -1 --separate-stderr timeout 60 "$SIMULATOR" --state state.json
    [ "$stderr" = "networkgrpc-simulator: $expected" ] || { echo "$row: $stderr"; return 1; }
    count=$((count + 1))
  done < <(grep -Ev '^(#|$)' "$BATS_TEST_DIRNAME/bad_documents.txt")
  [ "$count" -gt 50 ]
}

@test "DeepDocument_EitherProgram_IsRejected" {
  printf '%*s' 300000 '' | tr ' ' '[' >state.json
  # shellcheck disable=SC2094 # both only read it
  run -1 --separate-stderr timeout 60 "$TOOL" diff - state.json <state.json
  [ "$stderr" = "networkgrpc: -:1: the document: must be an object" ]
  run -1 --separate-stderr timeout 60 "$SIMULATOR" --state state.json
  [ "$stderr" = "networkgrpc-simulator: state.json:1: the document: must be an object" ]
}
