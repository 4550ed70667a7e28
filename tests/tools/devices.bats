#!/usr/bin/env bats
# A file of devices; commands on one, on several, and between two.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  export NETWORKGRPC_DEVICES="$BATS_TEST_TMPDIR/devices.toml"
  state="$BATS_TEST_TMPDIR/state.json"
}

# add_device NAME: the device of the environment, which is then none.
add_device() {
  printf '[devices.%s]\nnetwork_manager = "%s"\ndapi = "%s"\n' \
    "$1" "$network_manager_url" "$grpc_dapi_url" >>"$NETWORKGRPC_DEVICES"
  absent_device
}

start_devices() {
  local name
  for name; do
    start_simulator
    tool dante name "Name of $name"
    add_device "$name"
  done
} >/dev/null

validate() { /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" -; }

@test "Devices_SystemAndUserFile_UserWins" {
  unset NETWORKGRPC_DEVICES
  mkdir -p "$BATS_TEST_TMPDIR/networkgrpc"
  printf '%s\n' '[devices.hall]' 'host = "engineer@hall.local"' '[devices.foyer]' 'dapi = "10.0.0.2:50008"' \
    >"$BATS_TEST_TMPDIR/networkgrpc/devices.toml"
  XDG_CONFIG_HOME="$BATS_TEST_TMPDIR" run -0 tool devices
  [[ ${lines[0]} == "NAME "*"NETWORK-MANAGER "*"DAPI "*"HOST "*"FILE" ]]
  [[ ${lines[1]} =~ ^foyer\ +localhost:50007\ +10.0.0.2:50008\ +-\ +$BATS_TEST_TMPDIR/networkgrpc/devices.toml$ ]]
  [[ ${lines[2]} =~ ^hall\ +localhost:50007\ +localhost:50008\ +engineer@hall.local\ + ]]
  mkdir -p "$BATS_TEST_TMPDIR/home/.config"
  mv "$BATS_TEST_TMPDIR/networkgrpc" "$BATS_TEST_TMPDIR/home/.config"
  HOME="$BATS_TEST_TMPDIR/home" run -0 tool devices --json
  validate <<<"$output"
  [ "$(jq -r '.result.devices[1].name' <<<"$output")" = hall ]
}

@test "Devices_NoFile_ListsNone" {
  unset NETWORKGRPC_DEVICES
  HOME="$BATS_TEST_TMPDIR" run -0 tool devices --json
  [ "$(jq -c .result.devices <<<"$output")" = '[]' ]
  NETWORKGRPC_DEVICES='' run -0 tool devices
  [ "${#lines[@]}" -le 1 ]
}

@test "DevicesFile_IsWrong_NamesFileAndLine" {
  while IFS='|' read -r content message; do
    printf '%b' "$content" >"$NETWORKGRPC_DEVICES"
    run -1 --separate-stderr tool devices
    [[ $stderr == "networkgrpc: $NETWORKGRPC_DEVICES:$message"* ]] || { echo "$content: $stderr"; return 1; }
  done <<'FILES'
[devices.a]\nport = 1\n|2: devices.a.port: unknown
[devices.a]\ndapi = 1\n|2: devices.a.dapi: must be a string
[devices.a]\n\ndapi = ""\n|3: devices.a.dapi: must not be empty
[devices.a]\nhost = "-oProxyCommand=x"\n|2: devices.a.host: '-oProxyCommand=x' is not
\n[device.a]\n|2: device: unknown
\n\n[devices]\na = 3\n|4: devices.a: must be a table
devices = 3\n|1: devices: must be a table
[devices."a,b"]\n|1: 'a,b' cannot name a device
[devices.all]\n|1: 'all' cannot name a device
[devices.a]\n[devices.a]\n|2: 
[devices.a]\ndapi = "x\n|2: 
FILES
  rm "$NETWORKGRPC_DEVICES"
  run -1 --separate-stderr tool devices
  [[ $stderr == "networkgrpc: cannot read $NETWORKGRPC_DEVICES: No such file"* ]]
  NETWORKGRPC_DEVICES=$BATS_TEST_TMPDIR run -1 --separate-stderr tool devices
  [[ $stderr == "networkgrpc: cannot read $BATS_TEST_TMPDIR: Is a directory" ]]
}

@test "Devices_FileIsEmpty_NoneIsNamed" {
  : >"$NETWORKGRPC_DEVICES"
  run -0 tool devices
  [ "${#lines[@]}" -eq 1 ]
}

@test "On_OneDevice_UsesItsEndpoints" {
  start_devices hall
  run -0 tool --on hall dante name
  [ "$output" = "Name of hall" ]
  run -0 tool dante name --on hall --json
  [ "$(jq -r '.device + .result.name' <<<"$output")" = "hallName of hall" ]
  validate <<<"$output"
}

@test "On_EndpointIsGiven_WinsOverTheFile" {
  start_devices hall
  run -8 tool --on hall --dapi 127.0.0.1:1 dante name
  start_simulator
  run -0 tool --on hall --dapi "$grpc_dapi_url" dante name
  [[ $output != "Name of hall" ]]
}

@test "On_NameIsUnknown_NamesIt" {
  start_devices hall
  run -10 --separate-stderr tool --on hall,hal dante name
  [ "$stderr" = "networkgrpc: no device is named 'hal'; see 'networkgrpc devices'" ]
  run -2 tool --on hall --host hall status
}

@test "On_Several_PrintsEachInTheOrderNamed" {
  start_devices a b c
  run -0 --separate-stderr tool --on c,a,b,c dante name
  [ "$output" = $'c:\nName of c\n\na:\nName of a\n\nb:\nName of b' ]
  run -0 tool dante name --on all --json
  [ "$(jq -r '.device + "=" + .result.name' <<<"$output")" = $'a=Name of a\nb=Name of b\nc=Name of c' ]
  validate <<<"$output"
}

@test "On_OneIsAway_PrintsTheOthersAndExitsWithTheWorst" {
  start_devices a
  add_device away
  start_devices b
  run -8 --separate-stderr tool --on a,away,b dante name
  [[ $output == *"Name of a"*"away:"*"Name of b" ]]
  [[ $stderr == "away: networkgrpc: "*"cannot be reached"* ]]
  # What was rejected is worse than what cannot be reached.
  run -4 --separate-stderr tool --on away,a dante latency 1
}

@test "On_OneDoesNotReply_DoesNotHoldUpTheOthers" {
  start_mute_device
  add_device mute
  start_devices a
  NETWORKGRPC_DEVICES=$NETWORKGRPC_DEVICES "$TOOL" --on mute,a dante name --timeout 60 \
    >"$BATS_TEST_TMPDIR/lines" 2>/dev/null </dev/null 3>&- &
  wait_until grep -q "Name of a" "$BATS_TEST_TMPDIR/lines"
  kill -0 $!
  run ! grep -q mute "$BATS_TEST_TMPDIR/lines"
  child=$(pgrep -P $!)
  kill -TERM $!
  run -0 timeout 20 tail --pid="$child" -f /dev/null
}

@test "On_ToolIsKilled_EndsItsProcesses" {
  start_mute_device
  add_device mute
  start_devices a
  "$TOOL" --on mute,a dante name --timeout 60 >"$BATS_TEST_TMPDIR/lines" 2>/dev/null </dev/null 3>&- &
  wait_until grep -q "Name of a" "$BATS_TEST_TMPDIR/lines"
  child=$(pgrep -P $!)
  kill -KILL $!
  run -0 timeout 20 tail --pid="$child" -f /dev/null
}

@test "On_SeveralAndAQuestion_RequiresYes" {
  start_devices a b
  run -2 --separate-stderr bash -c "yes | '$TOOL' --on a,b dante transmit off"
  [[ $stderr == *"a: "*"--yes is required"*"b: "*"--yes is required"* ]]
  run -0 tool --on a,b dante transmit off --yes
  run -0 tool --on b dante transmit
  [ "$output" = off ]
}

@test "On_SeveralToOneFile_Rejects" {
  start_devices a b
  run -2 --separate-stderr tool --on a,b export --output "$state"
  [[ $stderr == "networkgrpc: --output with several devices: "* ]]
  [ ! -e "$state" ]
  run -0 tool --on b export --output "$state"
}

@test "Watch_SeveralDevices_PrintsTheDeviceBeforeEachLine" {
  start_devices a b
  for form in '' --json; do
    # shellcheck disable=SC2086 # no argument, or one
    "$TOOL" watch --on a,b --interval 0.1 --only dante $form >"$BATS_TEST_TMPDIR/lines" 2>/dev/null </dev/null 3>&- &
    watched() { [ "$(grep -c watched "$BATS_TEST_TMPDIR/lines")" -eq 4 ]; }
    wait_until watched
    tool --on b dante latency $((3000 + ${#form}))
    wait_until grep -qE '^(b: .*dante.latency: |.*"device":"b".*"dante.latency")' "$BATS_TEST_TMPDIR/lines"
    kill -TERM $!
    wait $!
  done
  validate <"$BATS_TEST_TMPDIR/lines"
}

@test "DiffWith_OtherDevice_ShowsWhatDiffers" {
  start_devices a b
  tool --on b routing set 1 'Stage box' 'Mic 1'
  run -0 tool --on a diff --with b
  [ "${lines[0]}" = 'dante.name: "Name of a" -> "Name of b"' ]
  [ "${lines[1]}" = 'dante.routing[1].device: "" -> "Stage box"' ]
  run -1 tool --on a diff --with b --exit-code
  run -0 tool --on a diff --with a --exit-code
  run -10 tool --on a diff --with c
  run -2 tool --on a diff --with a,b
  run -2 tool --on a diff
  run -2 tool --on a diff /dev/null --with b
}

@test "DiffWith_OtherDeviceIsAway_FailsAsThatOneDoes" {
  start_devices a
  add_device away
  run -8 --separate-stderr tool --on a diff --with away
  [[ $stderr == "networkgrpc: away: cannot read "* ]]
}

@test "ImportOnly_Paths_AppliesOnlyTheirSettings" {
  start_simulator
  tool export | jq '.dante.latency = 2000 | .dante.tx_channels[0].name = "L" | .dante.tx_channels[1].name = "R"
    | .dante.routing[0] += {device: "D", channel: "C"} | .network.interfaces[0].dns = ["10.0.0.3"]' >"$state"
  before=$(tool export)
  run -0 tool import "$state" --yes --only 'dante.tx_channels[2]' --only 'dante.routing[1].device'
  expected=$(jq '.dante.tx_channels[1].name = "R" | .dante.routing[0] += {device: "D", channel: "C"}' <<<"$before")
  diff <(jq . <<<"$expected") <(tool export | jq .)
  run -0 tool import "$state" --yes --only 'network.interfaces[lan0].dns'
  [ "$(tool export | jq -c '.network.interfaces[0].dns')" = '["10.0.0.3"]' ]
  for path in dante.colour 'dante.tx_channels[77]' dante.latency.unit; do
    run -10 --separate-stderr tool import "$state" --yes --only "$path"
    [ "$stderr" = "networkgrpc: the document has no setting at '$path'" ]
  done
}

@test "ImportSkipMissing_SmallerDevice_LeavesOutWhatItLacks" {
  start_simulator --tx-channels 4 --rx-channels 4
  tool export | jq '.dante.tx_channels[].name |= "x" + . | .network.interfaces[0].name = "fibre0"' >"$state"
  stop_devices
  start_simulator --tx-channels 2 --rx-channels 2
  run -1 tool import "$state" --yes --dry-run
  run -0 tool import "$state" --yes --skip-missing
  for path in 'dante.tx_channels[3]' 'dante.rx_channels[4]' 'dante.routing[3]' 'network.interfaces[fibre0]'; do
    [[ $output == *"skipped      $path"* ]]
  done
  [[ $output == *"the device matches the document" ]]
  run -0 tool import "$state" --yes --skip-missing --json
  validate <<<"$output"
}

@test "ImportDryRun_SettingsDiffer_ChangesNothingAndAsksNothing" {
  start_controlled_simulator
  tool export | jq '.dante.latency = 2000' >"$state"
  run -0 --separate-stderr tool import "$state" --dry-run
  [ "$output" = "dante.latency: 1000 -> 2000" ]
  run -1 grep -q 'Set' <(control calls)
  tool import "$state" --yes
  run -0 --separate-stderr tool import "$state" --dry-run
  [ "$output" = "no difference" ]
}

@test "Complete_On_OffersTheDevices" {
  start_devices hall foyer
  printf '[devices.far]\nhost = "far.local"\n' >>"$NETWORKGRPC_DEVICES"
  [ "$(tool __complete --on '')" = $'far\tfar.local\nfoyer\t\nhall\t' ]
  [ "$(tool __complete --on hall interface mac la | head -n 1)" = $'lan0\tdante-primary' ]
  [ "$(tool __complete --on far interface mac la)" = '' ]
  [ "$(tool __complete --host far interface mac la)" = '' ]
}
