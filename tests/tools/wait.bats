#!/usr/bin/env bats
# wait: ends as soon as the device is as it should be.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

# Starts waiting with these arguments; ends_with checks how it ended.
start_waiting() {
  "$TOOL" wait "$@" </dev/null >"$BATS_TEST_TMPDIR/output" 2>&1 3>&- &
  waiting=$!
}
ends_with() {
  local status=0
  wait "$waiting" || status=$?
  [ "$status" -eq "$1" ]
}

@test "Wait_EverythingHolds_EndsAtOnce" {
  start_simulator
  run -0 --separate-stderr tool wait --for daemons --for roles --for ptp --for link:lan1 \
    --for dante.sample_rate=48000 --for 'network.interfaces[lan1].mode=dynamic' --timeout 20
  [ -z "$output$stderr" ]
}

@test "Wait_SomethingIsMissing_FailsInTimeAndNamesIt" {
  start_simulator
  while IFS='|' read -r condition reason; do
    run -3 --separate-stderr tool wait --for daemons --for "$condition" --timeout "$time_limit"
    [[ $output == "missing  $condition: $reason" ]] || { echo "$condition: $output"; return 1; }
    [[ $stderr == "networkgrpc: not yet: $condition: $reason" ]]
  done <<'CONDITIONS'
dante.name=Other|dante.name is not Other
link:lan9|interface 'lan9' not found; see 'networkgrpc interface list'
live.interfaces[lan1].ip=1.2.3.4|live.interfaces[lan1].ip is not 1.2.3.4
CONDITIONS
  control_interface_env=lan7 run -3 --separate-stderr tool wait --for roles --timeout "$time_limit"
  [[ $output == "missing  roles: no interface 'lan7' for the role control" ]]
}

@test "Wait_ClockAndLinkAreDown_SaysSo" {
  printf '{"schema": 1, "network": {"interfaces": [{"name": "lan0", "id": 1, "speed": "none"}]},
    "dante": {"ptp": {"clock": "undisciplined"}}}' >"$BATS_TEST_TMPDIR/state.json"
  start_simulator --state "$BATS_TEST_TMPDIR/state.json"
  run -3 --separate-stderr tool wait --for ptp --for link:lan0 --timeout "$time_limit"
  [ "$output" = "missing  ptp: the PTP clock is undisciplined
missing  link:lan0: interface 'lan0' has no link" ]
  run -3 tool wait --for ptp --timeout "$time_limit" --json
  [ "$(jq -r '.result.missing[0].condition' <<<"${lines[0]}")" = ptp ]
}

@test "Wait_ValueAppears_Ends" {
  start_simulator
  start_waiting --for dante.name=Hall --timeout 60
  tool dante name Hall
  ends_with 0
}

@test "Wait_DaemonsStart_Ends" {
  start_controlled_simulator
  control stop NetworkManager
  start_waiting --timeout 60
  control start NetworkManager
  ends_with 0
}

@test "Wait_ConditionIsUnknown_IsAUsageError" {
  start_simulator
  for condition in ptpp nothing.at=1 link; do
    run -2 --separate-stderr tool wait --for "$condition"
  done
}
