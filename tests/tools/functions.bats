#!/usr/bin/env bats
# Every exported function of the library is called by the tool.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

@test "ExportedFunction_Always_IsCalledByTheTool" {
  "$NM" -DC --defined-only "$LIBRARY" | sed -nE 's/^[0-9a-f]+ T //p' |
    grep -E '^((NetworkgRPC|DantegRPC)::|(c[A-Z]|setampname)[A-Za-z]*$)' | sort >"$BATS_TEST_TMPDIR/exported"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/exported")" -gt 40 ]
  "$NM" -DC --undefined-only "$TOOL" | sed 's/^ *U //' | sort >"$BATS_TEST_TMPDIR/called"
  run -0 comm -23 "$BATS_TEST_TMPDIR/exported" "$BATS_TEST_TMPDIR/called"
  echo "not called: $output"
  [ -z "$output" ]
}
