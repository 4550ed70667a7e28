#!/usr/bin/env bats
# networkgrpc-simulator record and replay, with the tool as client.
#
# ctest gives: SIMULATOR and TOOL, the programs.

# shellcheck disable=SC2154 # set by run

bats_require_minimum_version 1.5.0
load ../tools/device.bash

setup() {
  open_device_input
  cd "$BATS_TEST_TMPDIR" || exit
}

simulator() { timeout 60 "$SIMULATOR" "$@" 3>&-; }

@test "Session_RecordedAndReplayed_PrintsTheSame" {
  start_simulator
  session() {
    "$TOOL" status && "$TOOL" dante name Hall && "$TOOL" dante name && ! "$TOOL" dante rate 1 &&
      "$TOOL" channel list && "$TOOL" export
  }
  export -f session
  run -0 --separate-stderr simulator record --log session.jsonl -- bash -c session
  local recorded=$output errors=$stderr
  stop_devices
  run -0 --separate-stderr simulator replay session.jsonl -- bash -c session
  [ "$output" = "$recorded" ]
  [ "$stderr" = "$errors" ]
}

@test "RecordAndReplay_PrintTheReadyLineAndFaultsWork" {
  start_simulator
  mkdir -m 700 private
  start_device "$SIMULATOR" record --log session.jsonl --network-manager "$network_manager_url" \
    --dapi "$grpc_dapi_url" --control "$PWD/private/control" --fault GetHostname:status=INTERNAL
  [ "$(tool dante name)" = Amplifier-520001 ]
  run ! tool hostname
  control clear all
  [ "$(tool hostname)" = amplifier ]
  control fault SetName:reject
  run ! tool dante name Hall
  [ "$(control calls | wc -l)" = 4 ]
  run -1 control state
  [ "$output" = "networkgrpc-simulator: no state: the answers come from a recording or from real daemons" ]
  run -1 control set dante.name Hall
  stop_devices
  jq -se 'map(.fault) == [null, null, "GetHostname:status=INTERNAL", null, "SetName:reject"]' session.jsonl
  start_device "$SIMULATOR" replay session.jsonl --dapi unix:dapi.sock
  [ "$grpc_dapi_url" = "unix:$PWD/dapi.sock" ]
  run ! tool hostname
  [ "$(tool hostname)" = amplifier ]
}

@test "Replay_CallsThatAreNotInTheRecording_AreReported" {
  start_simulator
  simulator record --log session.jsonl -- "$TOOL" dante name
  run -1 --separate-stderr simulator replay session.jsonl -- sh -c "'$TOOL' dante name; '$TOOL' hostname 2>/dev/null || true"
  [ "$output" = Amplifier-520001 ]
  [ "$stderr" = "networkgrpc-simulator: not in the recording: NetworkManager.GetHostname
networkgrpc-simulator: 1 calls were not in the recording" ]
  run -7 simulator replay session.jsonl -- sh -c 'exit 7'
}

@test "Redact_RecordingHasPseudonymsAndReplays" {
  start_simulator
  simulator record --redact --log session.jsonl -- "$TOOL" status
  run ! grep -E 'Amplifier-520001|02:54:41|10\.10\.' session.jsonl
  simulator replay session.jsonl -- "$TOOL" status
}

@test "Log_CannotBeWritten_IsReported" {
  run -1 simulator record --log none/session.jsonl -- true
  [ "$output" = "networkgrpc-simulator: cannot write none/session.jsonl: No such file or directory" ]
  run -1 simulator record --log /dev/full -- true
  [[ $output == *"cannot write /dev/full: No space left on device; the recording ends here"* ]]
  run -1 simulator replay absent.jsonl
  [ "$output" = "networkgrpc-simulator: cannot read absent.jsonl: No such file or directory" ]
}

@test "Log_CannotBeContinued_HasWholeCallsAndIsReported" {
  start_simulator
  # Measuring the coverage, programs would report that they cannot write their profile.
  with_small_files() (ulimit -f 1 && LLVM_PROFILE_FILE=/dev/null simulator "$@")
  run -1 --separate-stderr with_small_files record --log cut.jsonl -- "$TOOL" status --json
  jq -e .result.dante <<<"$output"
  [ "$stderr" = "networkgrpc-simulator: cannot write cut.jsonl: File too large; the recording ends here" ]
  jq -se 'length > 1' cut.jsonl
  simulator replay cut.jsonl -- true
  run -7 with_small_files record --log cut.jsonl -- sh -c "'$TOOL' status; exit 7"
}

@test "BadCommandLines_AreNamed" {
  local words
  for words in "record" "record --log x --state y" "record --log x --devices 2" "replay" "replay x --save y" \
    "record --log x --export -- true"; do
    # shellcheck disable=SC2086 # several words
    run -2 simulator $words
  done
}
