#!/usr/bin/env bats
# watch prints a line per change.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_simulator
  seen="$BATS_TEST_TMPDIR/lines"
}

# watch ARGUMENT...: starts it in the background as $watcher and waits for its first poll.
watch() {
  # Without env, the shell would let it ignore SIGINT, as all that it starts with "&".
  env --default-signal=INT "$TOOL" watch --interval 0.1 "$@" >"$seen" 2>/dev/null 3>&- &
  watcher=$!
  wait_until grep -q 'network-manager.*watched' "$seen"
  wait_until grep -q 'dante-api.*watched' "$seen"
}

teardown() {
  kill -KILL "$watcher" 2>/dev/null || true
  stop_devices
}

@test "Watch_SettingChanges_PrintsPathAndBothValues" {
  watch
  tool hostname set other
  wait_until grep -qE '^20[0-9]{2}-[0-9]{2}-[0-9]{2}T[0-9:]{8}Z network.hostname: "amplifier" -> "other"$' "$seen"
}

@test "Watch_Json_PrintsOneObjectPerLine" {
  watch --json
  tool channel rename 1 Left
  wait_until grep -q 'tx_channels\[1\].name' "$seen"
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <"$seen"
}

@test "Watch_DaemonsStop_ReportsEachOnce" {
  watch
  stop_devices
  both_reported() { [ "$(grep -c 'cannot be reached' "$seen")" -ge 2 ]; }
  wait_until both_reported
  [ "$(grep -c 'network-manager daemon.*cannot be reached' "$seen")" -eq 1 ]
}

@test "Watch_DaemonRestarts_ReportsItAndContinues" {
  stop_devices
  start_controlled_simulator
  watch
  control stop DAPI
  wait_until grep -q 'cannot be reached' "$seen"
  control start DAPI
  wait_until grep -q 'dante-api: null -> "answers again"' "$seen"
  tool dante latency 2000
  wait_until grep -q 'dante.latency: 1000 -> 2000' "$seen"
}

@test "Watch_OneDaemonFreezes_ReportsItAndStillShowsTheOther" {
  stop_devices
  start_controlled_simulator
  watch --timeout 0.5
  control fault 'DAPI.*:freeze'
  wait_until grep -q 'no reply from the dante-api daemon' "$seen"
  tool hostname set other
  wait_until grep -q 'network.hostname: "amplifier" -> "other"' "$seen"
  control clear all
  wait_until grep -q 'dante-api: null -> "answers again"' "$seen"
}

@test "Watch_NobodyReads_Ends" {
  run -0 bash -c "'$TOOL' watch --interval 0.1 | head -n 1"
}

@test "Watch_Interrupted_ExitsWithZero" {
  for signal in INT TERM; do
    watch
    kill -"$signal" "$watcher"
    wait "$watcher"
  done
}
