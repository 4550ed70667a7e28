#!/usr/bin/env bats
# export, diff and import of a state document.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_controlled_simulator
  state="$BATS_TEST_TMPDIR/state.json"
}

# document FILTER: the device's document, changed by a jq filter.
document() { tool export | jq "$1" >"$state"; }

@test "Export_Json_IsValidAgainstTheSchema" {
  tool export --json >"$state"
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <"$state"
}

@test "Diff_DocumentOfTheDevice_FindsNoDifference" {
  tool export >"$state"
  run -0 tool diff "$state" --exit-code
  [ "$output" = "no difference" ]
}

@test "Diff_SettingDiffers_ShowsItsPathAndBothValues" {
  document '.network.hostname = "other" | .dante.routing[0].device = "D" | .dante.routing[0].channel = "C"'
  run -0 tool diff "$state"
  [ "${lines[0]}" = 'network.hostname: "amplifier" -> "other"' ]
  [ "${lines[1]}" = 'dante.routing[1].device: "" -> "D"' ]
  run -1 tool diff "$state" --exit-code
}

@test "Diff_TwoDocuments_CallsNoDaemon" {
  document '.dante.latency = 5000'
  tool export >"$state.other"
  absent_device
  run -0 tool diff "$state" "$state.other"
  [ "$output" = "dante.latency: 5000 -> 1000" ]
}

@test "Import_EverySettingDiffers_AppliesAll" {
  document '.network.hostname = "hall" | .network.ntp = ["time.example"] | .network.switch_mode = 2
    | .network.interfaces[0] += {mode: "static", ip: "10.0.0.2", netmask: "255.0.0.0", gateway: "10.0.0.1", dns: ["10.0.0.3"]}
    | .dante.name = "Hall" | .dante.sample_rate = 96000 | .dante.latency = 2000 | .dante.aes67 = true
    | .dante.transmit_disabled = true | .dante.ptp_slave_only = true | .dante.tx_channels[1].name = "Right"
    | .dante.routing[0] += {device: "D", channel: "C"}
    | .dante.routing[1].raw = {ip: "239.0.0.1", value2: 1, value3: 2, value4: 3, value5: 4, value6: 5, encoding: "L16", sip: "10.0.0.8", session_id: 9}'
  run -0 --separate-stderr tool import "$state" --yes
  [[ $output == *"the device matches the document" ]]
  diff "$state" <(tool export | jq .)
  run -0 tool import "$state" --yes
  [[ $output == *"the device matches the document" ]]
}

@test "Import_MembersAreMissing_LeavesTheirSettingsUnchanged" {
  printf '{"schema": 1, "dante": {"latency": 3000}} // the rest stays' >"$state"
  before=$(tool export | jq 'del(.dante.latency)')
  run -0 tool import "$state" --yes
  [[ $(tool dante latency) == "3000 "* ]]
  [ "$(tool export | jq 'del(.dante.latency)')" = "$before" ]
}

@test "Import_SeveralSettingsDiffer_AppliesWhatCanCutTheConnectionLast" {
  document '.network.hostname = "hall" | .network.switch_mode = 2 | .dante.name = "Hall"
    | .network.interfaces[1] += {mode: "static", ip: "192.168.10.99", netmask: "255.255.255.0"}'
  [ "$(tool import "$state" --yes --json 2>/dev/null | jq -c .result.applied)" = \
    '["dante.name","network.hostname"]' ]
  [ "$(control calls | grep -oE 'Set[A-Za-z]+' | tr '\n' ' ')" = "SetName SetHostname SetSwitchMode SetNetworkConfig " ]
}

@test "Import_WithReload_PutsStoredSettingsIntoEffect" {
  document '.network.switch_mode = 2'
  run -0 tool import "$state" --yes
  [ "$(tool switch current --json | jq .result.id)" = 0 ]
  run -0 tool import "$state" --yes --reload
  [ "$(tool switch current --json | jq .result.id)" = 2 ]
}

# A device whose stored modes have no name.
start_device_with_unknown_modes() {
  stop_devices
  printf '{"schema": 1, "network": {"switch_mode": 77, "interfaces": [{"name": "lan1", "mode": 7}]}}' \
    >"$BATS_TEST_TMPDIR/unknown_modes.json"
  start_simulator --state "$BATS_TEST_TMPDIR/unknown_modes.json"
}

@test "Export_UnknownModes_WritesNumbersThatImportAndSimulatorRead" {
  start_device_with_unknown_modes
  tool export --json >"$state.json"
  [ "$(jq -c '[.result.network.switch_mode, .result.network.interfaces[0].mode]' "$state.json")" = '[77,7]' ]
  tool interface stored lan1 --json >>"$state.json"
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <"$state.json"
  [[ $(tool interface stored lan1) == *"mode     7"* ]]
  tool export >"$state"
  run -0 tool import "$state" --yes
  [ "$output" = "the device matches the document" ]
  # A simulator that starts with the document exports the same.
  stop_devices
  start_simulator --state "$state"
  diff "$state" <(tool export)
}

@test "Import_UnknownSwitchMode_StopsAndSaysWhatIsApplied" {
  start_device_with_unknown_modes
  tool export >"$state"
  stop_devices
  start_simulator
  run -10 --separate-stderr tool import "$state" --yes
  [[ $stderr == *'network.switch_mode: 0 -> 77'* ]]
  [[ $stderr == *'network.interfaces[lan1].mode: "dynamic" -> 7'* ]]
  [ "$(tool switch configured --json | jq .result.id)" = 0 ]
}

@test "Diff_ModeAsItsNumber_FindsNoDifference" {
  document '.network.interfaces[0].mode = 0'
  run -0 tool diff "$state"
  [ "$output" = "no difference" ]
}

@test "Import_DeviceRejectsOneSetting_ReportsAppliedAndNotApplied" {
  document '.dante.name = "Hall" | .dante.sample_rate = 12345 | .network.hostname = "hall"'
  run -4 --separate-stderr tool import "$state" --yes --json
  [ "$(jq -c '[.result.applied, [.result.not_applied[].path]]' <<<"$output")" = \
    '[["dante.name"],["dante.sample_rate","network.hostname"]]' ]
  [ "$(tool dante name) $(tool hostname get)" = "Hall amplifier" ]
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <<<"$output"
}

@test "Import_WhatAClientMethodCannotSet_IsRestoredExactly" {
  document '.network.ntp = ["a", "b"] | .network.interfaces[1] += {mode: "dhcp-only", dns: ["10.0.0.1", "10.0.0.2"]}
    | .network.interfaces[2] += {mode: "link-local-only"}'
  run -0 --separate-stderr tool import "$state" --yes
  diff "$state" <(tool export | jq .)
}

@test "Import_ObjectIsNotOnTheDevice_NamesItAndAppliesTheRest" {
  document '.dante.latency = 2000 | .network.interfaces[0].name = "lan9"'
  run -1 --separate-stderr tool import "$state" --yes
  [[ $output == *"applied      dante.latency"*"not applied  network.interfaces[lan9]: not found on the device"* ]]
}

# The paths of each kind in the report of an import.
report() { jq -c '.result | [.applied, .stored, [.unknown[].path], [.not_applied[].path]]'; }

@test "Import_EndsHalfWay_ReportsWhatIsAppliedNotAppliedAndUnknown" {
  while IFS=' ' read -r fault expected error; do
    control fault "$fault"
    document '.dante.name = "N" | .network.hostname = "h" | .network.ntp = ["t"] | .network.switch_mode = 1'
    run --separate-stderr tool --timeout "$time_limit" import "$state" --yes --reload --json
    [ "$(report <<<"$output")" = "$expected" ] || { echo "$fault: $output"; return 1; }
    [ "$(jq -c '[.error.code, .error.outcome]' <<<"$output")" = "$error" ] || { echo "$fault: $output"; return 1; }
    /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <<<"$output"
    control clear all
    # A second run resumes.
    run -0 --separate-stderr tool import "$state" --yes --reload
    [[ $output == *"the device matches the document" ]]
    tool factory-reset --yes >/dev/null
    tool dante name first >/dev/null
  done <<'ENDS'
SetName:reject [[],[],[],["dante.name","network.hostname","network.ntp","network.switch_mode"]] [4,"not-done"]
SetHostname:status=ABORTED [["dante.name"],[],[],["network.hostname","network.ntp","network.switch_mode"]] [5,"partly"]
SetNTPServer:drop [["dante.name","network.hostname"],[],["network.ntp"],["network.switch_mode"]] [6,"unknown"]
SetSwitchMode:freeze [["dante.name","network.hostname"],["network.ntp"],["network.switch_mode"],[]] [6,"unknown"]
ReloadNTPConfig:reject [["dante.name","network.hostname"],["network.ntp","network.switch_mode"],[],[]] [4,"partly"]
ReloadNetworkConfig:drop [["dante.name","network.hostname","network.ntp"],["network.switch_mode"],[],[]] [6,"unknown"]
ENDS
}

@test "Import_ReadBackFails_SaysThatItIsNotVerified" {
  document '.network.hostname = "h"'
  control fault GetHostname:delay=1,times=1
  control fault GetHostname:status=INTERNAL
  run -5 --separate-stderr tool import "$state" --yes
  [[ $output == "applied      network.hostname" ]]
  [[ $stderr == *"networkgrpc: not verified: cannot read the host name: "* ]]
}

@test "Import_Interrupted_ReportsWhatItHasDone" {
  document '.dante.name = "N" | .network.hostname = "h" | .network.ntp = ["t"]'
  control fault SetHostname:freeze
  env --default-signal=INT "$TOOL" import "$state" --yes --json >"$state.report" 2>/dev/null 3>&- &
  pid=$!
  called() { control calls | grep -q SetHostname; }
  wait_until called
  kill -INT "$pid"
  status=0
  wait "$pid" || status=$?
  [ "$status" -eq 6 ]
  [ "$(report <"$state.report")" = '[["dante.name"],[],["network.hostname"],["network.ntp"]]' ]
}

@test "Import_NothingDiffers_ReloadsNothing" {
  tool export >"$state"
  run -0 tool import "$state" --yes --reload
  [ "$output" = "the device matches the document" ]
  run -1 grep -q Reload <(control calls)
}

@test "Import_PipeNestedDeeply_IsRejectedByNameAndLine" {
  run -1 --separate-stderr bash -c "'$TOOL' import --yes - < <(yes '[' | head -c 300000)"
  [[ $stderr == "networkgrpc: -:1: "* ]]
  for file in / /dev/null; do
    run -1 --separate-stderr tool diff "$file"
    [[ $stderr == "networkgrpc: cannot read $file: "* ]]
  done
}

@test "ExportOutput_File_IsReplacedAsAWhole" {
  tool export --output "$state"
  diff "$state" <(tool export)
  chmod 640 "$state"
  tool dante name Other
  tool export --output "$state"
  [ "$(jq -r .dante.name "$state") $(stat -c %a "$state")" = "Other 640" ]
  stop_devices
  cp "$state" "$state.old"
  run -8 --separate-stderr tool export --output "$state"
  cmp "$state" "$state.old"
  run -1 --separate-stderr tool export --output /dev/full
  [ "$stderr" = "networkgrpc: cannot write /dev/full: not a regular file" ]
}

@test "Import_NoTerminalAndNoYes_ShowsTheDifferencesAndChangesNothing" {
  document '.dante.name = "Hall"'
  run -2 --separate-stderr tool import "$state"
  [[ $stderr == *'dante.name: "Amplifier-520001" -> "Hall"'*"--yes is required"* ]]
  [ "$(tool dante name)" != Hall ]
}

@test "Diff_StateThatASimulatorSaved_IsThatOfTheExport" {
  tool routing set-raw 2 239.69.0.2 --session-id 7
  control state >"$state"
  run -0 tool diff "$state"
  [ "$output" = "no difference" ]
}

@test "Import_DocumentIsWrong_ReportsFileLineAndReason" {
  printf '{"schema": 1,\n"dante": {"latency": -1}}' >"$state"
  run -1 --separate-stderr tool import "$state" --yes
  [ "$stderr" = "networkgrpc: $state:2: dante.latency: must be an integer from 0 to 4294967295" ]
}
