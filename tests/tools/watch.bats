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
  "$TOOL" watch --interval 0.1 "$@" >"$seen" 2>/dev/null 3>&- &
  watcher=$!
  wait_until grep -q started "$seen"
}

teardown() {
  kill -KILL "$watcher" 2>/dev/null || true
  stop_devices
}

@test "Watch_SettingChanges_PrintsPathAndBothValues" {
  watch
  tool hostname set other
  wait_until grep -qx 'network.hostname: "amplifier" -> "other"' "$seen"
}

@test "Watch_Json_PrintsOneObjectPerLine" {
  watch --json
  tool channel rename 1 Left
  wait_until grep -q 'tx_channels\[1\].name' "$seen"
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <"$seen"
}

@test "Watch_DaemonStops_ReportsItOnce" {
  watch
  stop_devices
  wait_until grep -q 'cannot be reached' "$seen"
  [ "$(grep -c 'cannot be reached' "$seen")" -eq 1 ]
}

@test "Watch_DaemonRestarts_ReportsItAndContinues" {
  stop_devices
  start_controlled_simulator
  watch
  control stop DAPI
  wait_until grep -q 'cannot be reached' "$seen"
  control start DAPI
  wait_until grep -qx 'daemons: null -> "answer again"' "$seen"
  tool dante latency 2000
  wait_until grep -qx 'dante.latency: 1000 -> 2000' "$seen"
}

@test "Watch_DaemonNeverAnswers_ExitsAtTheTimeLimit" {
  stop_devices
  start_mute_device
  run -3 --separate-stderr tool --timeout 0.3 watch
  [[ $stderr == *"no reply from the network-manager daemon"* ]]
}

@test "Watch_Interrupted_ExitsWithZero" {
  for signal in INT TERM; do
    watch
    kill -"$signal" "$watcher"
    wait "$watcher"
  done
}
