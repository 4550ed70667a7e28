#!/usr/bin/env bats
# Doxygen makes the reference from the public headers without a warning, and it is
# complete.
#
# Environment: DOXYGEN, DOXYFILE, SOURCE_TREE.

bats_require_minimum_version 1.5.0

# make LINE...: makes the reference with these lines added to the configuration.
make() {
  {
    cat "$DOXYFILE"
    printf '%s\n' "OUTPUT_DIRECTORY = \"$BATS_TEST_TMPDIR\"" "$@"
  } | "$DOXYGEN" -
}

# with_header SED-SCRIPT: makes the reference from a changed DantegRPC.h.
with_header() {
  sed "$1" "$SOURCE_TREE/dante/DantegRPC.h" >"$BATS_TEST_TMPDIR/DantegRPC.h"
  run ! cmp "$SOURCE_TREE/dante/DantegRPC.h" "$BATS_TEST_TMPDIR/DantegRPC.h"
  make "INPUT = \"$BATS_TEST_TMPDIR/DantegRPC.h\"" "USE_MDFILE_AS_MAINPAGE ="
}

@test "the reference is made without a warning" {
  run -0 make
  echo "$output"
  [ -z "$output" ]
  [ -s "$BATS_TEST_TMPDIR/reference/index.html" ]
}

@test "the reference has every function" {
  # The record of the interface has constructors, destructors and static objects besides.
  sed -nE 's/^(function|variable) ([^:]+):.*/\2/p' "$SOURCE_TREE/abi/64-bit.abi" | c++filt |
    grep -oE '^([A-Za-z]+::)?[A-Za-z0-9]+(\(|\[|$)' |
    tr -d '[(' | grep -vxE '([A-Za-z]+)::(\1|GetInstance)' | sort -u >"$BATS_TEST_TMPDIR/expected"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/expected")" -gt 90 ]
  make "GENERATE_TAGFILE = \"$BATS_TEST_TMPDIR/tags\""
  awk -F '[<>]' '
    /<compound kind="class"/ { owner = "class" }
    /<compound kind="file"/ { owner = "" }
    $2 == "name" && owner == "class" { owner = $3 "::" }
    /<member kind="function"/ { function_follows = 1; next }
    $2 == "name" && function_follows { print owner $3; function_follows = 0 }
  ' "$BATS_TEST_TMPDIR/tags" | grep -vxE '([A-Za-z]+)::(\1|GetInstance|operator=)' | sort -u |
    diff "$BATS_TEST_TMPDIR/expected" -
}

@test "a function without a description is a warning" {
  run ! with_header '/Reads the latency\./,/static/ { /\/\/\// d }'
  grep -q 'GetLatency.* is not documented' <<<"$output"
}

@test "a parameter without a description is a warning" {
  run ! with_header '/@param\[out\] latency/ d'
  grep -q 'GetLatency' <<<"$output"
}

@test "a result without a description is a warning" {
  run ! with_header '/Reads the latency\./,/static/ { /@return/ d }'
  grep -q 'return type of member DantegRPC::GetLatency is not documented' <<<"$output"
}
