#!/usr/bin/env bats
# networkgrpc-simulator run: a command with a device of its own.
#
# ctest gives: SIMULATOR, the program.

# shellcheck disable=SC2016 # expanded by the shell that is run
# shellcheck disable=SC2154 # set by run

bats_require_minimum_version 1.5.0

setup() { cd "$BATS_TEST_TMPDIR" || exit; }

simulate() { timeout 60 "$SIMULATOR" run "$@" 3>&-; }

@test "Command_FindsTheDeviceInItsEnvironment" {
  export network_manager_url=other grpc_dapi_url=other
  run -0 --separate-stderr simulate --control "$PWD/private/control" -- \
    sh -c 'printf "%s\n" "$network_manager_url" "$grpc_dapi_url" "$control" "$@"; '"'$SIMULATOR' ctl faults" \
    sh --save ctl run --
  [[ ${lines[0]} =~ ^127\.0\.0\.1:[0-9]+$ ]]
  [[ ${lines[1]} =~ ^127\.0\.0\.1:[0-9]+$ ]]
  [ "${lines[2]}" = "unix:$PWD/private/control" ]
  [ "${lines[*]:3}" = "--save ctl run --" ]
  [ -z "$stderr" ]
}

@test "Command_DaemonsServeUntilItEnds" {
  run -0 simulate -- bash -c 'for url in "$network_manager_url" "$grpc_dapi_url"; do
    exec 5<>"/dev/tcp/${url/://}"; timeout 20 head -c 9 <&5 >frame; test -s frame; echo "$url"; done'
  local url
  for url in "${lines[@]}"; do
    run -1 bash -c "exec 5<>'/dev/tcp/${url/://}'"
  done
}

@test "Command_EndsWhileNobodyWaits_IsNoticed" {
  # The simulator has looked for its end, and is about to wait for the next signal.
  # LeakSanitizer cannot work under strace.
  ASAN_OPTIONS=detect_leaks=0 run -7 timeout 20 strace -qq -o trace -e trace=wait4 -e inject=wait4:delay_exit=300000:when=1 \
    "$SIMULATOR" run -- sh -c 'exit 7'
}

@test "Command_ItsStatusIsThatOfTheSimulator" {
  run -7 simulate -- sh -c 'exit 7'
  run -137 simulate -- sh -c 'kill -KILL $$'
  run -127 simulate bogus
  [ "$output" = "networkgrpc-simulator: cannot run bogus: No such file or directory" ]
  : >file
  run -126 simulate ./file
  [ "$output" = "networkgrpc-simulator: cannot run ./file: Permission denied" ]
  run -2 simulate
  [[ $output == *"COMMAND is required"* ]]
}

@test "Command_StateIsSavedWhenItEnds" {
  run -7 simulate --save state.json -- sh -c 'test ! -e state.json && exit 7'
  grep -q Amplifier-520001 state.json
  run -1 simulate --save none/state.json -- touch started
  [ ! -e started ]
  run -1 simulate --save state.json -- sh -c 'rm state.json; mkdir state.json'
}

@test "Command_InheritsSignalsAndVariablesAsTheyWere" {
  unset GRPC_VERBOSITY
  # The signals that it blocks and ignores, without those of the C library.
  signals=$'s/^Sig(Blk|Ign):\t.{9}//p'
  run -0 simulate -- sh -c 'sed -nE "$1" /proc/self/status; echo "${GRPC_VERBOSITY-unset}"' sh "$signals"
  [ "$output" = "$(sed -nE "$signals" /proc/self/status; echo unset)" ]
  run -141 simulate -- sh -c 'kill -PIPE $$'
}

@test "SimulatorTerminated_CommandIsToldAndItsStatusReturned" {
  mkfifo ready never
  local signal
  for signal in TERM HUP; do
    "$SIMULATOR" run --save state.json -- bash -c "trap 'exit 5' $signal; echo >ready
      while true; do read -r -t 1 <>never || true; done" 3>&- &
    read -r -t 20 <>ready
    kill -"$signal" $!
    status=0
    wait $! || status=$?
    [ "$status" -eq 5 ]
    [ -s state.json ]
    rm state.json
  done
}
