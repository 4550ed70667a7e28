#!/usr/bin/env bats
# Every exported function of the library has a command that calls it: functions.txt.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

table() { grep -Ev '^(#|$)' "$BATS_TEST_DIRNAME/functions.txt"; }

@test "ExportedFunction_Always_IsInTheTable" {
  "$NM" -DC --defined-only "$LIBRARY" | sed -nE 's/^[0-9a-f]+ T //p' |
    sed -nE 's/^((NetworkgRPC|DantegRPC)::[A-Za-z0-9]+)\(.*/\1/p; /^(c[A-Z]|setampname)[A-Za-z]*$/p' |
    sort >"$BATS_TEST_TMPDIR/exported"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/exported")" -gt 40 ]
  table | awk '{ print $1 }' | sort >"$BATS_TEST_TMPDIR/table"
  diff -u "$BATS_TEST_TMPDIR/exported" "$BATS_TEST_TMPDIR/table"
}

@test "FunctionOfTheTable_Always_IsCalledByTheTool" {
  "$NM" -DC --undefined-only "$TOOL" >"$BATS_TEST_TMPDIR/used"
  while read -r function command; do
    grep -Eq " U $function(\(|$)" "$BATS_TEST_TMPDIR/used" || { echo "not called: $function"; return 1; }
  done < <(table)
}

@test "CommandOfTheTable_Always_Exists" {
  absent_device
  while read -r function command; do
    # shellcheck disable=SC2086 # split into words
    run -0 tool ${command%% --*} --help
    [ "${command#* --}" = "$command" ] || [[ $output == *" --${command#* --}"* ]]
  done < <(table)
}
