#!/usr/bin/env bats
# --get and --quiet.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

leaves() { /usr/bin/python3 "$BATS_TEST_DIRNAME/leaves.py" "$@"; }


# mask: what differs between devices and runs: endpoints, times, seconds left of a day.
mask() { sed -E 's/127\.0\.0\.1:[0-9]+/ENDPOINT/g; s/^[0-9]+\.[0-9e-]+$/TIME/; s/^86[0-9]{3}$/LEFT/'; }

# reach_leaves ARGUMENT...: runs the command with --json on one device, and on another
# with --get of every leaf that the first has printed; adds these to the file reached.
reach_leaves() {
  local document="$BATS_TEST_TMPDIR/document" expected=0 status=0 paths
  network_manager_url=$one_network grpc_dapi_url=$one_dante tool "$@" --json >"$document" || expected=$?
  paths=$(leaves paths <"$document" | paste -sd,)
  network_manager_url=$other_network grpc_dapi_url=$other_dante \
    tool "$@" ${paths:+--get "$paths"} >"$BATS_TEST_TMPDIR/values" 2>/dev/null || status=$?
  [ "$status" -eq "$expected" ] || { echo "$*: $status, not $expected"; return 1; }
  [ -n "$paths" ] || return 0
  diff <(leaves values <"$document" | mask) <(mask <"$BATS_TEST_TMPDIR/values") || { echo "$*"; return 1; }
  leaves reached <"$document" >>"$BATS_TEST_TMPDIR/reached"
}

# start_both OPTION...: two devices alike.
start_both() {
  stop_devices
  start_simulator "$@"
  one_network=$network_manager_url one_dante=$grpc_dapi_url
  start_simulator "$@"
  other_network=$network_manager_url other_dante=$grpc_dapi_url
}

@test "Get_EveryLeafOfTheSchema_PrintsItsValue" {
  cd "$BATS_TEST_DIRNAME/golden"
  start_both
  while read -ra words; do reach_leaves "${words[@]}"; done < <(sed -n 's/^\$ networkgrpc //p' success.txt)
  reach_leaves interface set --dante-primary --ip 10.0.0.2/8 --dns 10.0.0.3 --yes
  reach_leaves interface list
  reach_leaves status
  sed 's/"id": 2/"id": 99/' state.json >"$BATS_TEST_TMPDIR/larger.json"
  reach_leaves import "$BATS_TEST_TMPDIR/larger.json" --skip-missing --dry-run
  printf '[devices.one]\nhost = "one"\n' >"$BATS_TEST_TMPDIR/devices.toml"
  NETWORKGRPC_DEVICES="$BATS_TEST_TMPDIR/devices.toml" reach_leaves devices
  tool hostname other --confirm-within 86400 >/dev/null
  reach_leaves checkpoint
  [ "$(tool confirm --get command)" = "networkgrpc hostname other --confirm-within 86400" ]
  echo command >>"$BATS_TEST_TMPDIR/reached"
  # What only happens when something goes wrong.
  start_both --fault SetLatency:freeze
  reach_leaves import state.json --yes --timeout "$time_limit"
  start_both --fault GetName:status=UNAVAILABLE
  reach_leaves doctor
  # Those of watch have a test of their own; nothing makes a simulated device differ after an
  # import, and no daemon reports whether NTP servers are pending.
  diff <(leaves schema "$SOURCE_TREE/tools/schema" | grep -vxFf <(sort -u "$BATS_TEST_TMPDIR/reached")) - <<'LEAVES'
from
network.ntp.pending
path
remaining[].from
remaining[].path
remaining[].to
to
LEAVES
}

@test "Get_FieldsOfWatch_ArePrintedForEveryChange" {
  start_simulator
  "$TOOL" watch --interval 0.1 --get path,to,from >"$BATS_TEST_TMPDIR/seen" </dev/null 3>&- &
  device_pids+=("$!") # ended with the device
  watched() { [ "$(sort "$BATS_TEST_TMPDIR/seen" | uniq -c | paste -sd' ' | tr -s ' ')" = "$1" ]; }
  wait_until watched " 1 dante-api 1 network-manager 2 null 2 watched"
  tool hostname other >/dev/null
  wait_until grep -qxF amplifier "$BATS_TEST_TMPDIR/seen"
  [ "$(tail -n 3 "$BATS_TEST_TMPDIR/seen" | paste -sd' ')" = "network.hostname other amplifier" ]
}

@test "Get_Value_IsPrintedWithoutQuotes" {
  start_simulator
  tool dante name $'a "quoted"\tname – Bühne'
  while IFS='|' read -r words fields output; do
    # shellcheck disable=SC2086 # split into words
    [ "$(tool $words --get "$fields" | paste -sd';')" = "$output" ] || { echo "$words $fields"; return 1; }
  done <<'VALUES'
dante name|name|a "quoted"\tname – Bühne
hostname|hostname|amplifier
dante latency|latency,minimum|1000;250
dante aes67|aes67|false
dante sample-rate|available|[44100,48000,88200,96000]
dante sample-rate|available[1]|48000
dante sample-rate|available[]|44100;48000;88200;96000
interface list|interfaces[].name|lan0;lan1;lan2;lan3
interface list|interfaces[lan1].id,interfaces[2].name|2;lan1
status|network.switch_mode.stored|{"id":0,"name":"Switched"}
routing get 8|channel|
routing get 8 --timeout 9|rx_channel|8
VALUES
}

@test "Get_NoValue_ExitsWithTenAndNamesWhatThereIs" {
  start_simulator
  while IFS='|' read -r words fields message; do
    # shellcheck disable=SC2086 # split into words
    run -10 --separate-stderr tool $words --get "$fields"
    [ "$output|$stderr" = "|networkgrpc: --get: $message" ] || { echo "$stderr"; return 1; }
  done <<'MESSAGES'
hostname|name|'name' has no value: the result has hostname
hostname|hostname,name|'name' has no value: the result has hostname
status|network.switch_mode.name|'network.switch_mode.name' has no value: 'network.switch_mode' has stored, in_effect, pending
interface list|interfaces[eth0.1].mac|'interfaces[eth0.1].mac' has no value: 'interfaces' has [lan0], [lan1], [lan2], [lan3]
dns|dns[3]|'dns[3]' has no value: 'dns' has [0]
routing get 1|raw|'raw' has no value: the result has rx_channel, device, channel, raw (null), flag5, rx_name
routing get 1|raw.ip|'raw.ip' has no value: the result has rx_channel, device, channel, raw (null), flag5, rx_name
dante latency|latency.unit|'latency.unit' has no value: 'latency' has no fields
MESSAGES
}

@test "Get_ResultComesWithAFailure_PrintsTheValueAndKeepsTheStatus" {
  start_simulator
  export grpc_dapi_url=127.0.0.1:1
  run -8 --separate-stderr tool status --get network.hostname
  [ "$output" = amplifier ]
  [[ $stderr == "networkgrpc: cannot read the device name: "* ]]
  run -8 --separate-stderr tool status --get dante.name
  [ -z "$output" ]
  [ "${#stderr_lines[@]}" -eq 2 ]
}

@test "Quiet_Command_PrintsErrorsOnly" {
  start_simulator
  run -0 --separate-stderr tool status --quiet
  [ -z "$output$stderr" ]
  run -0 --separate-stderr tool import "$BATS_TEST_DIRNAME/golden/state.json" --yes --quiet
  [ -z "$output$stderr" ]
  run -4 --separate-stderr tool dante latency 1 --quiet
  [ -z "$output" ]
  [ "${#stderr_lines[@]}" -eq 1 ]
}

@test "Output_ConflictingOptions_AreUsageErrors" {
  absent_device
  for options in "--get hostname --json" "--get hostname --quiet" "--json --quiet" "--get ," "--get hostname,"; do
    # shellcheck disable=SC2086 # split into words
    run -2 tool hostname $options
  done
}
