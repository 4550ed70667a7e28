#!/usr/bin/env bats
# The size of the shared object, and the work at load.
#
# Environment: LIBRARY the shared object, OWN and GENERATED the object files it is
# made of, separated by spaces, BUDGETS what is allowed, STRIP and READELF the
# build's own binutils.

bats_require_minimum_version 1.5.0

budget() { awk -v name="$1" '$1 == name { print $2 }' "$BUDGETS"; }

# within NAME NUMBER: fails unless the number is above 0 and within the budget NAME.
within() {
  echo "$1: $2 of $(budget "$1")"
  [ "$2" -gt 0 ] && [ "$2" -le "$(budget "$1")" ]
}

# runs_at_load OBJECT: the symbols to which its code that runs at load refers, except the
# standard streams, which every file that includes a header of gRPC sets up.
runs_at_load() {
  "$READELF" -rW "$1" |
    awk '/^Relocation section/ { startup = $3 ~ /\.(text\.startup|ctors|preinit_array)/; next }
         startup && $1 ~ /^[0-9a-f]+$/ { print $5 }' |
    grep -Evx '\.bss\._ZStL8__ioinit|_ZNSt8ios_base4Init[CD]1Ev|__dso_handle|__cxa_atexit'
}

@test "the stripped shared object is small" {
  "$STRIP" -o "$BATS_TEST_TMPDIR/stripped" "$LIBRARY"
  within size "$(stat -c %s "$BATS_TEST_TMPDIR/stripped")"
}

@test "the loader has few addresses to fill in" {
  within relocations "$("$READELF" -rW "$LIBRARY" | grep -c ' R_')"
}

@test "nothing of our own runs at load" {
  local object
  [ -n "$OWN" ]
  for object in $OWN; do
    run runs_at_load "$object"
    echo "$object: $output"
    [ -z "$output" ]
  done
}

@test "what runs at load is found: the generated classes are set up there" {
  local object found=0
  for object in $GENERATED; do
    if runs_at_load "$object" >/dev/null; then found=$((found + 1)); fi
  done
  [ "$found" -gt 2 ]
}
