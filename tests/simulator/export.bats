#!/usr/bin/env bats
# networkgrpc-simulator --export and --pid: a device in the background of a shell; and
# --address-book.
#
# ctest gives: SIMULATOR, the program.

# shellcheck disable=SC2016 # expanded by the shell that is run
# shellcheck disable=SC2154 # set by run

bats_require_minimum_version 1.5.0

setup() { cd "$BATS_TEST_TMPDIR" || exit; }

# ended PID: waits until the process has ended.
ended() { timeout 20 tail -s 0.1 --pid="$1" -f /dev/null; }

# in_shell SHELL SCRIPT: what the script prints.
in_shell() { timeout 60 "$1" -c "$2" 3>&- </dev/null; }

@test "Export_EveryShellUsesTheDeviceAndEndsIt" {
  export -n network_manager_url grpc_dapi_url
  local shell start simulator_pid
  for shell in bash zsh dash fish; do
    start='eval "$($SIMULATOR --export --control $PWD/private/control 2>&1)"'
    [ "$shell" != fish ] || start='$SIMULATOR --export fish --control $PWD/private/control | source'
    run -0 in_shell "$shell" "$start
      sh -c 'echo \$network_manager_url \$grpc_dapi_url; \$SIMULATOR ctl state | grep -c schema'
      echo \$simulator_pid"
    echo "$shell: $output"
    [[ ${lines[0]} =~ ^127\.0\.0\.1:[0-9]+\ 127\.0\.0\.1:[0-9]+$ ]]
    [ "${lines[1]}" = 1 ]
    ended "${lines[2]}"
    [ ! -e private/control ]
  done
}

@test "Export_PrintedPidEndsTheDeviceAndItsStateIsSaved" {
  run -0 in_shell bash 'eval "$($SIMULATOR --export --save state.json)"
    test ! -e state.json; kill $simulator_pid; tail -s 0.1 --pid=$simulator_pid -f /dev/null
    grep -c Amplifier-520001 state.json'
}

@test "Export_DeviceCannotStart_PrintsNothingAndFails" {
  run -1 --separate-stderr "$SIMULATOR" --export --control "$PWD/$(printf '%0120d' 0)/control"
  [ -z "$output" ]
  [[ $stderr == *"its path must have 1 to 107 bytes" ]]
  run -1 --separate-stderr "$SIMULATOR" --export --save none/state.json
  [ -z "$output" ]
  run -1 sh -c 'timeout 20 "$SIMULATOR" --export >/dev/full'
  [ "$output" = "networkgrpc-simulator: cannot print the endpoints: standard output: No space left on device" ]
  run -2 "$SIMULATOR" --export csh
  run -2 "$SIMULATOR" run --export -- true
  run -2 "$SIMULATOR" --pid $$ ctl state
}

@test "Pid_DeviceEndsWithTheProcess" {
  mkfifo alive
  cat alive 3>&- &
  local process=$! lines
  lines=$("$SIMULATOR" --export --pid "$process" 3>&-)
  [[ $lines == *"ends with process $process;"* ]]
  eval "$lines"
  kill -0 "$simulator_pid"
  : >alive
  ended "$simulator_pid"
  wait "$process"
  run -1 timeout 20 "$SIMULATOR" --pid 4194305
  [ "$output" = "networkgrpc-simulator: cannot watch process 4194305: No such process" ]
}

@test "UnixSockets_HaveTheirModeAndAreRemoved" {
  export PATH="${SIMULATOR%/*}:$PATH"
  run -0 sh -c 'umask 077; networkgrpc-simulator run --network-manager unix:nm.sock --dapi unix:$PWD/dapi.sock \
    --socket-mode 666 -- sh -c "stat -c %a nm.sock dapi.sock; echo \$network_manager_url \$grpc_dapi_url"'
  [ "${lines[*]}" = "666 666 unix:$PWD/nm.sock unix:$PWD/dapi.sock" ]
  run -0 sh -c 'umask 0; networkgrpc-simulator run --dapi unix:dapi.sock -- stat -c %a dapi.sock'
  [ "$output" = 600 ]
  [ ! -e nm.sock ]
  [ ! -e dapi.sock ]
  mkdir 'two words'
  run -1 timeout 20 "$SIMULATOR" --dapi 'unix:two words/dapi.sock'
  [[ $output == *"Unix socket $PWD/two words/dapi.sock: its absolute path may only have letters, digits and "* ]]
  : >file
  run -1 timeout 20 "$SIMULATOR" --dapi unix:file
  [ "$output" = "networkgrpc-simulator: cannot listen on Unix socket $PWD/file: Address already in use" ]
}

@test "UnixSocket_OfAKilledDeviceIsReplacedThatOfAnotherIsNot" {
  eval "$("$SIMULATOR" --export --dapi unix:dapi.sock 3>&-)"
  run -1 timeout 20 "$SIMULATOR" --dapi unix:dapi.sock
  [[ $output == *"dapi.sock: another process listens on it" ]]
  kill -KILL "$simulator_pid"
  ended "$simulator_pid"
  [ -S dapi.sock ]
  run -0 "$SIMULATOR" run --dapi unix:dapi.sock -- test -S dapi.sock
  [ ! -e dapi.sock ]
}

@test "BadOptionsOfEndpoints_AreNamed" {
  local options
  for options in "--dapi dapi.sock" "--dapi unix:" "--socket-mode 8" "--socket-mode 1777" "--socket-mode -1" \
    "--dapi unix:a --dapi-port 5000" "--dapi unix:a --network-manager unix:a" "--dapi unix:a --devices 2" \
    "--name a --devices 2" "--name a --name a --devices 2" "--pid 0"; do
    # shellcheck disable=SC2086 # several words
    run -2 timeout 20 "$SIMULATOR" $options
    [[ $output == *"${options%% *}"* ]]
  done
}

@test "AddressBook_EntriesAreAddedAndReplacedTheRestStays" {
  cat >book.toml <<'BOOK'
# Devices of the house.
[devices.hall]
network_manager = "10.0.0.1:1"
note = "upstairs" # stays
  dapi="10.0.0.1:2"

[devices."two words"]
dapi = "10.0.0.2:2"
BOOK
  chmod 640 book.toml
  run -0 "$SIMULATOR" run --network-manager unix:nm --dapi unix:dapi --name hall --address-book book.toml -- true
  run -0 "$SIMULATOR" run --devices 2 --name 'two words' --name $'a"\\\x7f' --address-book book.toml -- true
  sed -E 's/127\.0\.0\.1:[0-9]+/URL/' book.toml >actual
  cat >expected <<BOOK
# Devices of the house.
[devices.hall]
network_manager = "unix:$PWD/nm"
dapi = "unix:$PWD/dapi"
note = "upstairs" # stays

[devices."two words"]
network_manager = "URL"
dapi = "URL"

[devices."a\"\\\\\u007F"]
network_manager = "URL"
dapi = "URL"
BOOK
  diff -u expected actual
  [ "$(stat -c %a book.toml)" = 640 ]
  run -1 "$SIMULATOR" run --address-book none/book.toml -- true
  [[ $output == *"cannot write none/book.toml: cannot use folder none/: No such file or directory" ]]
}

@test "AddressBook_SimulatorsAtTheSameTime_NoEntryIsLost" {
  local i pids=()
  for i in 1 2 3 4 5 6; do
    "$SIMULATOR" run --name "device-$i" --address-book book.toml -- true 3>&- &
    pids+=($!)
  done
  for i in "${pids[@]}"; do wait "$i"; done
  [ "$(grep -c '^\[devices\.device-[1-6]\]$' book.toml)" = 6 ]
}

@test "AddressBook_Dash_PrintsTheEntry" {
  mkfifo ready
  "$SIMULATOR" --address-book - --name hall >ready 3>&- &
  exec 4<ready
  read -r -t 20 _ endpoints <&4
  eval "$endpoints"
  read -r -t 20 header <&4
  read -r -t 20 first <&4
  read -r -t 20 second <&4
  kill $!
  wait $!
  [ "$header $first $second" = "[devices.hall] network_manager = \"$network_manager_url\" dapi = \"$grpc_dapi_url\"" ]
}
