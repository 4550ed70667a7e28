#!/usr/bin/env bats
# export, diff and import of a state document.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_simulator
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
  [[ $output == *"verified" ]]
  diff "$state" <(tool export | jq .)
  run -0 tool import "$state" --yes
  [[ $output == *"the device matches the document" ]]
}

@test "Import_MembersAreMissing_LeavesTheirSettingsUnchanged" {
  printf '{"schema": 1, "dante": {"latency": 3000}} // the rest stays' >"$state"
  before=$(tool export | jq 'del(.dante.latency)')
  run -0 tool import "$state" --yes
  [ "$(tool dante latency)" = 3000 ]
  [ "$(tool export | jq 'del(.dante.latency)')" = "$before" ]
}

@test "Import_SeveralSettingsDiffer_AppliesWhatCanCutTheConnectionLast" {
  document '.network.hostname = "hall" | .network.switch_mode = 2 | .dante.name = "Hall"
    | .network.interfaces[1] += {mode: "static", ip: "192.168.10.99", netmask: "255.255.255.0"}'
  [ "$(tool import "$state" --yes --json 2>/dev/null | jq -c .result.applied)" = \
    '["dante.name","network.hostname","network.switch_mode","network.interfaces[lan1]"]' ]
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

@test "Import_UnknownModes_ReportsAndAppliesNone" {
  start_device_with_unknown_modes
  tool export >"$state"
  stop_devices
  start_simulator
  run -4 --separate-stderr tool import "$state" --yes
  [[ $stderr == *'network.switch_mode: 0 -> 77'* ]]
  [[ $stderr == *'network.interfaces[lan1].mode: "dynamic" -> 7'*'Cannot be applied:'*'network.interfaces[lan1]: '* ]]
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

@test "Import_SeveralNtpServers_FailsAndChangesNothing" {
  document '.dante.name = "Hall" | .network.ntp = ["a", "b"]'
  run -1 --separate-stderr tool import "$state" --yes
  [[ $stderr == *"network.ntp: the library sets exactly one NTP server; nothing was changed" ]]
  [ "$(tool dante name)" != Hall ]
}

@test "Import_ModeThatCannotBeSet_ReportsItAndFails" {
  document '.network.interfaces[1].mode = "dhcp-only"'
  run -1 --separate-stderr tool import "$state" --yes
  [[ $stderr == *"Cannot be applied:"*"network.interfaces[lan1]"* ]]
  [[ $output == *'differs      network.interfaces[lan1].mode: "dynamic" -> "dhcp-only"'* ]]
}

@test "Import_NoTerminalAndNoYes_ShowsTheDifferencesAndChangesNothing" {
  document '.dante.name = "Hall"'
  run -2 --separate-stderr tool import "$state"
  [[ $stderr == *'dante.name: "Amplifier-520001" -> "Hall"'*"--yes is required"* ]]
  [ "$(tool dante name)" != Hall ]
}

@test "Diff_StateThatASimulatorSaved_IsThatOfTheExport" {
  stop_devices
  start_controlled_simulator
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
