#!/usr/bin/env bats
# interface set --confirm-within: rolls back to the previous configuration unless the
# new one is confirmed in time.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_simulator
  before=$(stored)
}

stored() { tool interface stored lan1 --json | jq -c .result; }
is_back() { [ "$(stored)" = "$before" ]; }
is_set() { [ "$(stored | jq -r .ip)" = 192.168.10.60 ]; }
# The change, and its rollback.
stored_twice() { [ "$(control calls | grep -c SetNetworkConfig)" -eq 2 ]; }
in_use() { tool interface control --json | jq -r '.result.interfaces[0].in_effect.ip'; }

change=(interface set --control --ip 192.168.10.60 --netmask 255.255.255.0 --reload)

@test "ConfirmWithin_Confirmed_KeepsTheChange" {
  run -0 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<y
  is_set
  [ "$(in_use)" = 192.168.10.60 ]
}

@test "ConfirmWithin_OthersArePending_NamesThemBefore" {
  tool switch set 1 --yes
  run -0 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<y
  [[ $stderr == "interface 'lan1' is in use at "*"the reload also applies switch mode 1 Redundant, now 0 Switched"*"Keep the new"* ]]
}

@test "ConfirmWithin_Declined_RollsBack" {
  run -1 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<n
  [[ $stderr == *"not confirmed: the previous configuration is restored" ]]
  is_back
  [ "$(in_use)" = 192.168.10.57 ]
}

@test "ConfirmWithin_NoAnswerInTime_RollsBack" {
  run -1 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 0.5 <&"$device_input"
  [[ $stderr == *"the previous configuration is restored" ]]
  is_back
}

@test "ConfirmWithin_ToolIsKilled_RollsBack" {
  "$TOOL" "${change[@]}" --confirm-within 60 <&"$device_input" 2>/dev/null 3>&- &
  wait_until is_set
  kill -KILL $!
  wait_until is_back
  [ "$(in_use)" = 192.168.10.57 ]
}

@test "ConfirmWithin_ProcessGroupIsKilled_RollsBack" {
  setsid "$TOOL" "${change[@]}" --confirm-within 60 <&"$device_input" 2>/dev/null 3>&- &
  wait_until is_set
  kill -KILL -- -$!
  wait_until is_back
}

@test "ConfirmWithin_ToolIsStopped_RollsBackInTime" {
  "$TOOL" "${change[@]}" --confirm-within 1 <&"$device_input" 2>"$BATS_TEST_TMPDIR/asks" 3>&- &
  wait_until grep -q 'Keep the new' "$BATS_TEST_TMPDIR/asks"
  kill -STOP $!
  wait_until is_back
  kill -KILL $!
}

@test "ConfirmWithin_TerminalIsLost_RollsBack" {
  require_terminal
  # The end of script closes the terminal; its processes receive a hangup.
  script --quiet --command "$TOOL ${change[*]} --confirm-within 60" /dev/null \
    <&"$device_input" >/dev/null 2>&1 3>&- &
  wait_until is_set
  kill -KILL $!
  wait_until is_back
}

@test "ConfirmWithin_ChangeTakesLongerThanTheLimit_StillAsks" {
  stop_devices
  start_simulator --fault SetNetworkConfig:delay=700,times=1
  run -0 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 0.4 <<<y
  is_set
}

@test "ConfirmWithin_TimeLimitExpiresDuringTheChange_RollsBack" {
  stop_devices
  start_controlled_simulator --fault SetNetworkConfig:freeze,times=1
  run -6 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 60 --timeout 0.5 <<<y
  [[ $stderr == *"outcome unknown"*"; the previous configuration is restored" ]]
  stored_twice
}

@test "ConfirmWithin_RollbackFailsOnce_Retries" {
  stop_devices
  start_simulator --fault SetNetworkConfig:delay=1,times=1 \
    --fault SetNetworkConfig:status=UNAVAILABLE,times=1
  run -1 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<n
  is_back
}

@test "ConfirmWithin_DaemonRejectsTheChange_ChangesNothing" {
  stop_devices
  start_controlled_simulator --fault SetNetworkConfig:reject
  run -4 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<y
  is_back
  run -1 grep -q Reload <(control calls)
}

@test "ConfirmWithin_ReloadFails_RollsBackAndSaysSo" {
  stop_devices
  start_simulator --fault ReloadNetworkConfig:reject,times=1
  run -4 --separate-stderr "$TOOL" "${change[@]}" --confirm-within 10 <<<y
  [[ $stderr == *"cannot reload"*"; the previous configuration is restored" ]]
  is_back
}

@test "ConfirmWithin_WithoutReload_FailsWithAUsageError" {
  run -2 --separate-stderr tool interface set --control --dynamic --confirm-within 5
  is_back
}
