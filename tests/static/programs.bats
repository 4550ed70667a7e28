#!/usr/bin/env bats
# The programs that scripts/static builds. It also runs tests/tools/golden.bats with them.
#
# Environment: TOOL, SIMULATOR, SOURCE_TREE.

# shellcheck disable=SC2154 # run sets stderr

load ../tools/device.bash

setup() {
  open_device_input
  root="$BATS_TEST_TMPDIR/root"
  mkdir "$root"
  cp "$TOOL" "$root/networkgrpc"
  cp "$SIMULATOR" "$root/networkgrpc-simulator"
  in_empty_root=(unshare --map-root-user --root="$root")
}

@test "EachProgram_HasAtMost8Megabytes" {
  for program in "$root"/*; do
    [ "$(stat -c %s "$program")" -le 8000000 ] || { ls -l "$program" && false; }
  done
}

@test "EachProgram_NeedsNoLibrary_IsPositionIndependentButOn32BitArm" {
  for program in "$root"/*; do
    readelf --wide --file-header "$program" | grep -E 'Type: +DYN|Machine: +ARM'
    run ! grep -E 'INTERP|NEEDED' <(readelf --wide --segments --dynamic "$program")
  done
}

@test "EmptyRoot_ToolChangesTheSimulator_NamesArePrintedAsElsewhere" {
  start_device "${in_empty_root[@]}" /networkgrpc-simulator
  name='Großer Saal – 大ホール'
  "${in_empty_root[@]}" /networkgrpc dante name "$name"
  # A table, whose columns depend on the width of each character.
  for arguments in "dante name" status export "channel list"; do
    # shellcheck disable=SC2086 # a command line
    diff <("${in_empty_root[@]}" /networkgrpc $arguments) <(tool $arguments)
  done
  [ "$("${in_empty_root[@]}" /networkgrpc dante name)" = "$name" ]
}

@test "EmptyRoot_EndpointIsAHostName_ReportsThatItIsUnreachable" {
  network_manager_url=device.example:1 run -8 --separate-stderr "${in_empty_root[@]}" /networkgrpc hostname
  [[ $stderr == *'device.example:1 cannot be reached'* ]]
}
