#!/usr/bin/env bats
# Every example that the guide and the manual page show is run, and the guide
# tells of the faults what the program tells.
#
# ctest gives: SIMULATOR and TOOL, the programs; SOURCE_TREE.

# shellcheck disable=SC2016 # backticks of Markdown
# shellcheck disable=SC2154 # set by device.bash and by run

bats_require_minimum_version 1.5.0
load ../tools/device.bash

setup() {
  open_device_input
  guide="$SOURCE_TREE/docs/simulator.md"
  export PATH="${SIMULATOR%/*}:${TOOL%/*}:$PATH"
  export XDG_RUNTIME_DIR="$BATS_TEST_TMPDIR/run"
  mkdir -m 700 "$XDG_RUNTIME_DIR"
  cd "$BATS_TEST_TMPDIR" || exit
}

# section HEADING: that of the program's help, without its indentation.
section() { "$SIMULATOR" --help | sed -n "/^$1:\$/,/^[^ ].*:\$/ s/^  //p"; }

@test "Examples_OfTheGuide_Work" {
  start_simulator # the device of those that do not start their own
  local count=0 line block=
  while IFS= read -r line; do
    if [ "$line" = '```' ]; then
      XDG_RUNTIME_DIR=$BATS_TEST_TMPDIR/run$count # the simulator of the block before may still end
      mkdir -m 700 "$XDG_RUNTIME_DIR"
      # A failing block must not leave its simulator behind.
      run timeout 60 bash -c "set -euo pipefail; simulator=
trap '[ -z \"\$simulator\" ] || kill -KILL \$simulator 2>/dev/null || true' EXIT
$block" 3>&- <"/dev/fd/$device_input"
      echo "$block$output"
      [ "$status" -eq 0 ]
      count=$((count + 1)) block=
    else
      block+="$line"$'\n'
    fi
  done < <(sed -n '/^```sh$/,/^```$/ { /^```sh$/d; p }' "$guide")
  [ "$count" -eq "$(grep -c '^```sh$' "$guide")" ]
  [ "$count" -gt 3 ]
}

@test "Faults_OfTheGuide_AreThoseOfTheHelp" {
  sed -n '/^```text$/,/^```$/ { /^```/d; /./p }' "$guide" >faults
  [ -s faults ]
  diff -u faults <(section Faults)
}

@test "Examples_OfThePage_Work" {
  local example asked=0 served=0
  while IFS= read -r example; do
    if [[ $example == *" ctl "* || $example == *" -- "* || $example == eval* ]]; then
      timeout 60 bash -c "$example" 3>&-
      asked=$((asked + 1))
    else
      # The simulator ends here but for the last one, which ctl asks.
      stop_devices
      # shellcheck disable=SC2086 # a command line, quotes and all
      eval "start_simulator ${example#networkgrpc-simulator}"
      # The states are written when a device ends by itself.
      if [[ $example == *--save* ]]; then
        kill -TERM "${device_pids[0]}"
        wait_until test -s hall.json
      fi
      served=$((served + 1))
    fi
  done < <("$SIMULATOR" --help | sed -n '/^Examples:$/,$ s/^  \$ //p')
  [ "$asked" -gt 3 ]
  [ "$served" -gt 3 ]
}
