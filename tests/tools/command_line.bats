#!/usr/bin/env bats
# What the recordings in golden/ do not cover: time limits, endpoints, usage errors,
# doctor, colour, prompts on a terminal.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

# output_on_terminal COMMAND: runs a shell command on a terminal.
output_on_terminal() { TERM=xterm script --quiet --return --command "$1" /dev/null; }

@test "Timeout_DaemonNeverAnswers_ExitsWithThreeAndNamesTheDaemon" {
  start_mute_device
  run --separate-stderr tool --timeout 0.3 dante name
  [ "$status" -eq 3 ]
  [ -z "$output" ]
  [[ $stderr == "networkgrpc: cannot read the device name: no reply from the dante-api daemon at 127.0.0.1:"*" to GetName within the time limit" ]]
}

@test "Timeout_DaemonNeverAnswersWithJson_PrintsOneErrorObject" {
  start_mute_device
  run --separate-stderr tool --timeout 0.3 --json hostname get
  [ "$status" -eq 3 ]
  [ "$(jq -r '.command + " " + .error.name + " " + .error.daemon' <<<"$output")" = \
    "hostname time-limit network-manager" ]
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <<<"$output"
}

@test "Timeout_NotANumberOfSeconds_FailsWithAUsageError" {
  for value in 0 -1 abc 1e9 nan ''; do
    run -2 tool --timeout "$value" dns
  done
}

@test "Endpoints_GivenAsOptions_OverrideTheEnvironment" {
  start_simulator
  network="$network_manager_url" dante="$grpc_dapi_url"
  absent_device
  run -8 --separate-stderr tool hostname get
  run -0 --separate-stderr tool hostname get --network-manager "$network"
  [ "$output" = amplifier ]
  run -8 --separate-stderr tool dante name --network-manager "$network"
  run -0 --separate-stderr tool dante name --dapi "$dante"
}

@test "Endpoints_Empty_AreUnreachable" {
  for words in "dante name" "dante latency 2000"; do
    # shellcheck disable=SC2086 # split into words
    grpc_dapi_url='' run -8 --separate-stderr tool $words
    [[ $stderr == *"the endpoint of the dante-api daemon is empty; see 'networkgrpc doctor'" ]]
  done
}

@test "Json_CommandLineIsWrong_PrintsOneErrorObject" {
  for words in "--frobnicate" "interface frobnicate" "switch set" "dante aes67 maybe" ""; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool --json $words
    [ -z "$stderr" ]
    [ "$(jq -r .error.name <<<"$output")" = usage ]
  done
}

@test "Arguments_NotUtf8_FailWithAUsageError" {
  start_simulator
  run -2 --separate-stderr tool hostname set $'\xff'
  [ "$(tool hostname get)" = amplifier ]
}

@test "Arguments_NotAnInteger_AreNamedWithTheRange" {
  run -2 --separate-stderr tool switch set 99999999999
  [[ $stderr == "networkgrpc: ID: '99999999999' must be an integer from -2147483648 to 2147483647; see "* ]]
}

@test "ErrorMessage_NameIsNotPrintable_IsOneLineWithEscapes" {
  start_simulator
  run -10 --separate-stderr tool interface mac $'lan\n\e[1m'
  [ "$stderr" = "networkgrpc: interface 'lan\n\x1b[1m' not found; see 'networkgrpc interface list'" ]
}

@test "Status_OneDaemonUnreachable_ShowsTheOther" {
  start_simulator
  export grpc_dapi_url=127.0.0.1:1
  run -8 --separate-stderr tool --json status
  [ "$(jq -r '.result.network.hostname + " " + .error.daemon' <<<"$output")" = "amplifier dante-api" ]
  [ "$(jq .result.dante <<<"$output")" = null ]
}

@test "Doctor_DaemonNeverAnswers_ReportsEverythingElse" {
  start_mute_device
  run -8 --separate-stderr tool --timeout 2 doctor
  [[ $output == *"no reply from the network-manager daemon"* ]]
  [[ $output == *"VARIABLE"* ]]
}

@test "Doctor_ProxyIsSet_SuggestsNoGrpcProxy" {
  start_simulator
  unset no_grpc_proxy
  http_proxy=http://127.0.0.1:1 run --separate-stderr tool doctor
  [ "$status" -ne 0 ]
  [[ $output == *"http_proxy is set"*"no_grpc_proxy=localhost"* ]]
}

@test "Doctor_ProxyIsNotUsedForLoopback_ReportsNoProblem" {
  start_simulator
  unset no_grpc_proxy
  http_proxy=http://127.0.0.1:1 no_proxy=127.0.0.1,localhost run -0 --separate-stderr tool doctor
}

@test "Doctor_EndpointIsInvalid_SuggestsAValidForm" {
  start_simulator
  while IFS='|' read -r endpoint problem; do
    grpc_dapi_url="$endpoint" run -8 --separate-stderr tool doctor
    [[ $output == *"Problem: grpc_dapi_url $problem"*"use host:port"* ]] || { echo "$endpoint: $output"; return 1; }
  done <<'ENDPOINTS'
|is set, but empty
http://127.0.0.1:1|is a URL, not an endpoint
127.0.0.1|has no port
ENDPOINTS
}

@test "Doctor_RoleHasNoInterface_SuggestsItsVariable" {
  start_simulator
  control_interface_env=lan9 run -1 --separate-stderr tool doctor
  [[ $output == *"no interface is named 'lan9', so the role control has none"*"set control_interface_env"* ]]
}

@test "Doctor_NoProblem_ExitsWithZero" {
  start_simulator
  run -0 --separate-stderr tool doctor
  [[ $output == *"No problem found." ]]
}

@test "Colour_OutputIsAPipe_IsNotUsed" {
  start_simulator
  TERM=xterm run -0 tool interface list
  [[ $output != *$'\033'* ]]
}

@test "Colour_OutputIsATerminal_IsUsedUnlessForbidden" {
  require_terminal
  start_simulator
  run -0 output_on_terminal "$TOOL interface list"
  [[ $output == *$'\033[1m'* ]]
  NO_COLOR=1 run -0 output_on_terminal "$TOOL interface list"
  [[ $output != *$'\033'* ]]
}

@test "Confirmation_AnsweredWithNo_ChangesNothing" {
  require_terminal
  start_simulator
  tool hostname set kept >/dev/null
  on_terminal "$TOOL" factory-reset
  wait_until shows "\[y/N\]"
  type_in n
  local status=0
  wait "$terminal_pid" || status=$?
  [ "$status" -eq 1 ]
  shows "nothing was changed"
  [ "$(tool hostname get)" = kept ]
}

@test "Confirmation_AnsweredWithYes_RunsTheCommand" {
  require_terminal
  start_simulator
  tool hostname set lost >/dev/null
  on_terminal "$TOOL" factory-reset
  wait_until shows "Continue?"
  type_in y
  wait "$terminal_pid"
  [ "$(tool hostname get)" = amplifier ]
}

@test "Confirmation_AnsweredAfterTheTimeLimit_RunsTheCommand" {
  require_terminal
  start_simulator
  on_terminal "$TOOL" factory-reset --timeout 1 --total-timeout 1
  wait_until shows "Continue?"
  read -r -t 1.5 -u "$device_input" || true # longer than the limit
  type_in y
  wait "$terminal_pid"
}

@test "Confirmation_NoTerminalAndNoYesOption_ChangesNothing" {
  start_simulator
  tool hostname set kept >/dev/null
  run -2 --separate-stderr tool factory-reset
  [[ $stderr == *"--yes is required"* ]]
  [ "$(tool hostname get)" = kept ]
}

@test "SwitchSet_ListedId_SelectsThatMode" {
  start_simulator
  for id in $(tool switch list --json | jq '.result.modes[].id'); do
    tool switch set "$id" --yes >/dev/null
    [ "$(tool switch configured --json | jq .result.id)" = "$id" ]
  done
}

@test "SwitchSet_UnknownId_FailsWithNotFound" {
  start_simulator
  for id in -1 -2147483648 2147483647 99; do
    run -10 --separate-stderr tool switch set "$id" --yes
  done
}

@test "Output_CannotBeWritten_ExitsWithOne" {
  start_simulator
  run -1 bash -c "'$TOOL' interface list >/dev/full"
}

@test "HelpAndVersion_NoDaemon_ExitWithZero" {
  absent_device
  run -0 tool --help
  run -0 tool interface set --help
  [[ $output == "Usage: networkgrpc interface set [OPTION]..."* ]]
  run -0 tool --version
}

@test "RequireTerminal_NoPseudoTerminal_NamesIt" {
  printf '#!/bin/sh\nexit 1\n' >"$BATS_TEST_TMPDIR/script"
  chmod +x "$BATS_TEST_TMPDIR/script"
  PATH="$BATS_TEST_TMPDIR:$PATH" run -1 require_terminal
  [ "$output" = "this test needs a pseudo-terminal: mount /dev/pts" ]
}
