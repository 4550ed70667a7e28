#!/usr/bin/env bats
# networkgrpc-conformance on daemons with one fault each: exactly the checks that are meant
# for it fail.

# shellcheck disable=SC2154 # set by device.bash

load ../tools/device

@test "every fault fails the checks that faults.txt names, and no others" {
  rows=$(grep -c ' => ' "$BATS_TEST_DIRNAME/faults.txt")
  [ "$rows" -ge 60 ]
  grep ' => ' "$BATS_TEST_DIRNAME/faults.txt" |
    xargs -d '\n' -P $((2 * $(nproc))) -n 1 timeout $((4 * patience)) "$BATS_TEST_DIRNAME/run_fault"
}
