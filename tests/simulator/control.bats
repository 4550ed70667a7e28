#!/usr/bin/env bats
# What happens to a device while it runs: ctl set, load, wait; --scenario.
#
# ctest gives: SIMULATOR and TOOL, the programs.

# shellcheck disable=SC2154 # set by run

bats_require_minimum_version 1.5.0
load ../tools/device.bash

setup() {
  open_device_input
  cd "$BATS_TEST_TMPDIR" || exit
}

# start OPTION...: a device, and its control socket in the variable control.
start() { start_controlled_simulator "$@"; }

@test "Set_EveryKindOfMember_DeviceReportsIt" {
  start
  control set 'network.interfaces[lan0].speed' none 'network.interfaces[lan1].speed' 100 \
    'network.interfaces[lan1].live.ip' 10.0.0.9 'network.interfaces[lan1].lease' null \
    'network.interfaces[lan3].mode' 7 network.ntp '["10.0.0.1"]' dante.ptp.clock disciplined \
    dante.ptp_slave_only true dante.manufacturer state 'dante.tx_channels[2].name' 17 'dante.routing[1].device' Hall \
    'dante.routing[1].channel' 'Main left' 'dante.routing[2].raw' '{"ip": "239.1.2.3"}' \
    'dante.routing[2].raw.value2' 5 dante.name null
  control state >state.json
  jq -e '.network.interfaces as [$dante, $control, $_, $last] | $dante.speed == "none" and
    $control.speed == "100" and $control.live.ip == "10.0.0.9" and $control.lease == null and $last.mode == 7' state.json
  jq -e '.network.ntp == ["10.0.0.1"] and .dante.ptp.clock == "disciplined" and .dante.ptp_slave_only and
    .dante.tx_channels[1].name == "17" and .dante.name == "null"' state.json
  jq -e '.dante.routing[0].device == "Hall" and .dante.routing[0].channel == "Main left" and
    .dante.routing[1].raw.ip == "239.1.2.3" and .dante.routing[1].raw.value2 == 5' state.json
  [ "$(tool --json dante name | jq -r .name)" = null ]
}

@test "Set_OneOfSeveralIsWrong_NothingChangesAndTheCulpritIsNamed" {
  start
  control state >before
  local path value message
  while IFS='|' read -r path value message; do
    run -1 control set dante.name Other "$path" "$value"
    echo "$output"
    [ "$output" = "networkgrpc-simulator: cannot set $message" ]
  done <<'CASES'
network.x|1|network.x: unknown member 'x'
|1|: unknown member ''
network..ntp|1|network..ntp: unknown member ''
network.ntp[|1|network.ntp[: '[]' is not after a list whose entries have a key
network.interfaces[lan9].ip|1|network.interfaces[lan9].ip: no entry 'lan9'; there are lan0, lan1, lan2, lan3
network.interfaces[lan0].speed|fast|network.interfaces[0].speed: must be one of none, 10, 100, 1000, or an integer from -2147483648 to 2147483647
dante.sample_rate|fast|dante.sample_rate: 'fast' must be JSON
dante.sample_rate|-1|dante.sample_rate: must be an integer from 0 to 4294967295
dante.ptp|7|dante.ptp: must be an object
dante.routing[1].device|Hall|dante.routing[0]: needs both device and channel, or neither
faults|[]|faults: not a setting; use fault and clear for faults
CASES
  control state >after
  diff before after
  run -2 control set dante.name
  [[ $output == *"no VALUE given for dante.name"* ]]
}

@test "Load_MembersThatTheFileLacksStay_FaultsAreReplaced" {
  start --fault GetHostname:drop
  control set dante.name Hall
  echo '{"schema": 1, "network": {"hostname": "stage"}, // comment
    "faults": [{"method": "GetLatency", "fault": "drop"}]}' >state.json
  control load state.json
  run -0 control state
  [[ $output == *'"hostname": "stage"'* && $output == *'"name": "Hall"'* ]]
  [ "$(control faults)" = GetLatency:drop ]
  control load /dev/stdin <<<'{"schema": 1, "dante": {"name": "Stage"}}'
  [ "$(control faults)" = GetLatency:drop ]
  [ "$(tool dante name)" = Stage ]
  printf '{"schema": 1,\n"faults": [{"method": "GetBogus", "fault": "drop"}]}' >bad.json
  run -1 control load bad.json
  [[ $output == "networkgrpc-simulator: bad.json:2: faults[0]: unknown method 'GetBogus'"* ]]
  run -1 control load absent.json
  # The longest state is longer than other requests.
  local name
  name=$(head -c 1000000 /dev/zero | tr '\0' x)
  echo "{\"schema\": 1, \"dante\": {\"name\": \"$name\"}}" >long.json
  control load long.json
}

@test "Wait_EndsWithTheCallOrTheTimeLimit" {
  start
  control wait 'DAPI.*' 3>&- &
  local waiting=$!
  run -3 control wait GetName --timeout 0.1
  [ "$output" = "networkgrpc-simulator: fewer than 1 calls of GetName within the time limit" ]
  tool dante name
  wait "$waiting"
  control wait GetName
  control wait 'GetName' --count 2 3>&- &
  waiting=$!
  tool dante name
  wait "$waiting"
  control forget
  run -3 control wait GetName --timeout 0.1
  run -1 control wait GetBogus
  run -2 control wait
  # One that is gone, and more than others have to wait for.
  control wait GetBogus --timeout 0.1 || true
  [ -z "$(control faults)" ]
}

@test "Restart_ConnectionsEndAndTheStateStays" {
  start
  control set dante.name Hall
  control restart DAPI
  [ "$(tool dante name)" = Hall ]
  [ -z "$(control faults)" ]
}

@test "Scenario_StepsFollowCallsAndTime" {
  cat >scenario.json <<'STEPS'
{"steps": [ // counted from the step before
  {"set": {"dante.name": "first"}},
  {"call": "DAPI.GetName", "count": 2, "set": {"dante.name": "second", "dante.ptp_slave_only": true}},
  {"fault": ["GetHostname:status=INTERNAL", "GetLatency:drop"]},
  {"call": "GetHostname", "clear": "GetHostname"},
  {"call": "GetName", "restart": "DAPI"},
  {"load": {"schema": 1, "dante": {"name": "restarted"}}},
  {"call": "GetName"},
  {"after": 0.2, "set": {"dante.name": "later"}}
]}
STEPS
  for _ in 1 2; do
    start --scenario scenario.json
    control wait GetName --timeout 0.01 || true
    wait_until test "$(tool dante name)" = first
    [ "$(control faults)" = "" ]
    [ "$(tool dante name)" = second ]
    [ "$(control faults)" = $'GetHostname:status=INTERNAL\nGetLatency:drop' ]
    [ "$(tool hostname)" = amplifier ]
    [ "$(control faults)" = GetLatency:drop ]
    run ! tool dante name
    [[ $output == *UNAVAILABLE* ]]
    [ "$(tool dante name)" = restarted ]
    is_later() { [ "$(tool dante name)" = later ]; }
    wait_until is_later
    stop_devices
    rm -r private
  done
}

@test "Scenario_DeviceEndsWhileACallIsHeldOrAStepWaits_Ends" {
  echo '{"steps": [{"call": "GetName", "fault": "GetHostname:freeze"}, {"after": 3600, "clear": "all"}]}' >scenario.json
  run -0 timeout 20 "$SIMULATOR" run --scenario scenario.json --devices 2 -- "$TOOL" dante name
  [ "$output" = Amplifier-520001 ]
}

@test "Scenario_StepFails_IsReportedAndTheNextFollow" {
  echo '{"steps": [{"call": "GetName", "set": {"dante.bogus": "1"}}, {"set": {"dante.name": "next"}},
    {"device": 2, "set": {"dante.name": "x"}}]}' >scenario.json
  run -0 --separate-stderr timeout 20 "$SIMULATOR" run --scenario scenario.json -- "$TOOL" dante name
  [ "$output" = next ]
  # shellcheck disable=SC2154 # set by run
  [ "$stderr" = "networkgrpc-simulator: scenario.json: step 1: cannot set dante.bogus: unknown member 'bogus'
networkgrpc-simulator: scenario.json: step 3: unknown device 2; use 1 to 1" ]
}

@test "Scenario_FileIsWrong_NothingStartsAndTheCulpritIsNamed" {
  local step message
  while IFS='|' read -r step message; do
    echo "{\"steps\": [{\"after\": 1}, $step]}" >scenario.json
    run -1 timeout 20 "$SIMULATOR" --scenario scenario.json
    echo "$output"
    [[ $output == "networkgrpc-simulator: scenario.json: step 2: $message"* ]]
  done <<'CASES'
7|must be an object
{"bogus": 1}|unknown member 'bogus'
{"fault": "GetBogus:drop"}|unknown method 'GetBogus'
{"fault": 1}|fault must be a string
{"clear": "GetBogus"}|unknown method 'GetBogus'
{"stop": "bogus"}|unknown daemon 'bogus'
{"set": ["a"]}|set requires an object of paths and values
{"load": "file"}|load requires a state document
{"fault": "GetName:drop", "clear": "all"}|only one of its members can be a command
{"after": 1, "call": "GetName"}|after and call cannot be combined
{"after": -1}|after: must be a number of seconds from 0 to 86400
{"count": 2}|count requires call
{"call": "GetName", "count": 0}|count: must be an integer from 1 to 1000000
{"call": "GetBogus"}|unknown method 'GetBogus'
CASES
  echo '[]' >scenario.json
  run -1 timeout 20 "$SIMULATOR" --scenario scenario.json
  [ "$output" = 'networkgrpc-simulator: scenario.json: must be a JSON object {"steps": [...]}' ]
  run -1 timeout 20 "$SIMULATOR" --scenario "$PWD"
  [ "$output" = "networkgrpc-simulator: cannot read $PWD: Is a directory" ]
  run -1 timeout 20 "$SIMULATOR" --scenario absent.json
  [ "$output" = 'networkgrpc-simulator: cannot read absent.json: No such file or directory' ]
}

@test "DevicesOfOneRun_SubscriptionsAreReceivedWhileTheStreamIsThere" {
  start --devices 2 --name Hall --name Stage
  received() { # as the first device reports it
    control state | jq -c '[.dante.routing[0, 1].flag5]'
  }
  control set 'dante.routing[1].device' Stage 'dante.routing[1].channel' 02 \
    'dante.routing[2].device' Hall 'dante.routing[2].channel' 01
  [ "$(received)" = '[true,true]' ]
  run -0 control devices
  [ "$(jq -sc 'map(.name)' <<<"$output")" = '["Hall","Stage"]' ]
  [ "$(jq -sc '.[1].streams[1]' <<<"$output")" = '{"channel":"02","receivers":[{"device":"Hall","rx_channel":1}]}' ]
  [ "$(jq -sr '.[0].grpc_dapi_url' <<<"$output")" = "$grpc_dapi_url" ]
  control --device 2 set 'dante.tx_channels[2].name' renamed
  [ "$(received)" = '[false,true]' ]
  control set 'dante.routing[1].channel' renamed
  [ "$(received)" = '[true,true]' ]
  control --device 2 set dante.transmit_disabled true
  [ "$(received)" = '[false,true]' ]
  control --device 2 set dante.transmit_disabled false dante.sample_rate 96000
  [ "$(received)" = '[false,true]' ]
  control --device 2 set dante.sample_rate 48000 dante.name Foyer
  [ "$(received)" = '[false,true]' ]
  tool routing set 1 Foyer renamed
  [ "$(received)" = '[true,true]' ]
}
