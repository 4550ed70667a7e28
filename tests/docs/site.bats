#!/usr/bin/env bats
# Doxygen makes the site without a warning, and it is complete.
#
# Environment: DOXYGEN, DOXYFILE, SOURCE_TREE.

bats_require_minimum_version 1.5.0

# make LINE...: makes the site in site/ of the test with these lines added to the configuration.
make() {
  {
    cat "$DOXYFILE"
    printf '%s\n' "OUTPUT_DIRECTORY = \"$BATS_TEST_TMPDIR\"" "$@"
  } | "$DOXYGEN" -
}

setup_file() {
  BATS_TEST_TMPDIR="$BATS_FILE_TMPDIR" make "GENERATE_TAGFILE = \"$BATS_FILE_TMPDIR/tags\"" \
    >"$BATS_FILE_TMPDIR/output" 2>&1 || true
}

# check SITE
check() {
  python3 "$BATS_TEST_DIRNAME/check_site.py" "$1" "$SOURCE_TREE/network/NetworkgRPC.h" \
    "$SOURCE_TREE/network/NetworkgRPC_c.h" "$SOURCE_TREE/dante/DantegRPC.h"
}

# with_header SED-SCRIPT: makes the site from a changed DantegRPC.h.
with_header() {
  sed "$1" "$SOURCE_TREE/dante/DantegRPC.h" >"$BATS_TEST_TMPDIR/DantegRPC.h"
  run ! cmp "$SOURCE_TREE/dante/DantegRPC.h" "$BATS_TEST_TMPDIR/DantegRPC.h"
  make "INPUT = \"$BATS_TEST_TMPDIR/DantegRPC.h\"" "USE_MDFILE_AS_MAINPAGE ="
}

@test "Site_Made_HasNoWarningAndNoDeadLink" {
  cat "$BATS_FILE_TMPDIR/output"
  [ ! -s "$BATS_FILE_TMPDIR/output" ]
  check "$BATS_FILE_TMPDIR/site"
}

@test "Check_PageOrLinksMissing_ReportsThem" {
  local site="$BATS_TEST_TMPDIR/site"
  cp -r "$BATS_FILE_TMPDIR/site" "$site"
  rm "$site/page_limits.html"
  sed -i 's/-example\.html/-other.html/g' "$site/classNetworkgRPC.html"
  sed -i 's/ostrevan_1_1/other_/g' "$site/classDantegRPC.html"
  run -1 check "$site"
  grep -q 'index.html: no file: page_limits.html' <<<"$output"
  grep -q '^GetHostname: no example' <<<"$output"
  grep -q '^GetName: no RPC' <<<"$output"
  grep -q '^GetName: no message' <<<"$output"
}

@test "the site has every function" {
  # The record of the interface has constructors, destructors and static objects besides.
  sed -nE 's/^(function|variable) ([^:]+):.*/\2/p' "$SOURCE_TREE/abi/64-bit.abi" | c++filt |
    grep -oE '^([A-Za-z]+::)?[A-Za-z0-9]+(\(|\[|$)' |
    tr -d '[(' | grep -vxE '([A-Za-z]+)::(\1|GetInstance)' | sort -u >"$BATS_TEST_TMPDIR/expected"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/expected")" -gt 90 ]
  awk -F '[<>]' '
    /<compound kind="class"/ { owner = "class" }
    /<compound kind="file"/ { owner = "" }
    /<compound kind="namespace"/ { owner = "namespace::" }
    $2 == "name" && owner == "class" { owner = $3 "::" }
    /<member kind="function"/ { function_follows = 1; next }
    $2 == "name" && function_follows { print owner $3; function_follows = 0 }
  ' "$BATS_FILE_TMPDIR/tags" | grep -vxE '([A-Za-z]+)::(\1|GetInstance|operator=)|(ostrevan|networkgrpc|namespace)::.*' |
    sort -u | diff "$BATS_TEST_TMPDIR/expected" -
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
