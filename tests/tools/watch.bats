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

# A daemon that ends can fail a call in the middle of a reading first, then the first of each.
@test "Watch_AnotherCallFailsForTheSameReason_IsNotReportedAgain" {
  stop_devices
  start_controlled_simulator
  watch
  control fault GetName:status=INTERNAL,message=disk
  wait_until grep -q 'INTERNAL: disk' "$seen"
  control fault GetPtpConfig:times=2,status=INTERNAL,message=disk
  control fault GetPtpConfig:status=INTERNAL,message=full
  wait_until grep -q 'INTERNAL: full' "$seen"
  [ "$(grep -c 'INTERNAL: disk' "$seen")" -eq 1 ]
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
  watch --timeout "$time_limit"
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

ended() { ! kill -0 "$watcher" 2>/dev/null; }
changes() { grep -cE '(network|dante|live)[.]' "$seen"; }

@test "Only_OtherSettingsChange_PrintsThatOfThePathAlone" {
  watch --only 'dante.tx_channels[1]' --only network.ntp
  tool dante latency 2000
  tool channel rename 2 Right
  tool channel rename 1 Left
  wait_until grep -q 'dante.tx_channels\[1\].name: .* -> "Left"' "$seen"
  [ "$(changes)" -eq 1 ]
}

@test "Only_EveryEntry_PrintsTheMemberOfEach" {
  watch --only 'dante.tx_channels[].name'
  tool channel rename 1 Left
  tool channel rename 2 Right
  wait_until grep -q 'tx_channels\[2\].name' "$seen"
  [ "$(changes)" -eq 2 ]
}

@test "Only_PathIsBelowAValueThatAppears_PrintsIt" {
  watch --only 'dante.routing[1].raw.ip'
  tool routing set-raw 1 239.69.0.1
  wait_until grep -q 'routing\[1\].raw: null -> {"ip":"239.69.0.1"' "$seen"
}

@test "Count_ThatManyChanges_EndsWithZero" {
  watch --only dante --count 2
  tool channel rename 1 Left
  wait_until grep -q 'tx_channels\[1\]' "$seen"
  run ! ended
  tool channel rename 2 Right
  wait "$watcher"
  [ "$(changes)" -eq 2 ]
}

@test "Count_MoreChangesAtOnce_PrintsNoMore" {
  tool export | jq '.dante.tx_channels[].name |= "x" + .' >"$BATS_TEST_TMPDIR/state.json"
  watch --count 1
  tool import "$BATS_TEST_TMPDIR/state.json" --yes
  wait "$watcher"
  [ "$(changes)" -eq 1 ]
}

@test "Count_OtherDaemonDoesNotReply_EndsAtOnce" {
  stop_devices
  start_controlled_simulator
  watch --count 1
  control fault 'NetworkManager.*:freeze'
  is_frozen() { control calls | jq -e 'select(.fault != "")'; }
  wait_until is_frozen
  tool dante latency 2000
  run -0 timeout 10 tail --pid="$watcher" -f /dev/null
  wait "$watcher"
}

@test "Until_ValueIsReached_EndsWithZero" {
  watch --until dante.latency=2000
  tool dante latency 3000
  wait_until grep -q 'latency: 1000 -> 3000' "$seen"
  run ! ended
  tool dante latency 2000
  wait "$watcher"
  [[ "$(tail -n 1 "$seen")" == *"dante.latency: 3000 -> 2000" ]]
}

@test "Until_ValueIsThereAtOnce_EndsWithZero" {
  for value in network.hostname=amplifier live.ptp.clock=disciplined dante.aes67=false \
    'live.interfaces[lan0].active=true' 'live.interfaces[].speed_mbit_s=1000'; do
    run -0 tool watch --until "$value"
  done
}

@test "WatchOptions_AreWrong_NamesTheCulprit" {
  while IFS='|' read -r option value message; do
    run -2 --separate-stderr tool watch "$option" "$value"
    [[ $stderr == "networkgrpc: $message"* ]] || { echo "$stderr"; return 1; }
  done <<'OPTIONS'
--only|dnte.latency|--only dnte.latency: a path begins with network, dante or live
--until|dnte.latency=1|--until dnte.latency: a path begins with network, dante or live
--until|dante.latency|--until dante.latency is not FIELD=VALUE
--until|dante.tx_channels[a=b]|--until dante.tx_channels[a=b] is not FIELD=VALUE
--count|0|--count must be at least 1
--count|-1|--count: '-1' must be an integer
OPTIONS
}
