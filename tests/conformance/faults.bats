#!/usr/bin/env bats
# networkgrpc-conformance on daemons with one fault each: exactly the checks that are meant
# for it fail, and say why.

# shellcheck disable=SC2154 # set by device.bash

load ../tools/device

@test "every fault fails the checks that faults.txt names, for that reason, and no others" {
  local file=$BATS_TEST_DIRNAME/faults.txt
  [ "$(grep -c '^[^ #]' "$file")" -ge 60 ]
  cd "$BATS_TEST_TMPDIR"
  grep '^[^ #]' "$file" | nl -n rz -s ' ' |
    xargs -d '\n' -P $((2 * $(nproc))) -n 1 timeout $((4 * patience)) "$BATS_TEST_DIRNAME/run_fault"
  diff <(grep '^[^#]' "$file") <(cat 0*)
}
