#!/usr/bin/env bats
# networkgrpc-conformance on daemons that are right, and what it prints.

# shellcheck disable=SC2154 # set by device.bash and by run

load ../tools/device

setup() {
  open_device_input
  control=$BATS_TEST_TMPDIR/private/control
}

# In front of the simulator; "" for itself. A cross build has no others.
daemons=("")
[ -z "$OTHER_STACKS" ] || daemons+=("$OTHER_STACKS/grpc_js_daemon" "$OTHER_STACKS/grpc_go_daemon")

keepalive=0
conformance() { timeout 60 "$CONFORMANCE" --keepalive-seconds "$keepalive" "$@" </dev/null; }
state() { control state | jq -S .; }
# The results, in a file. Prints what failed.
report() {
  report=$BATS_TEST_TMPDIR/report.json
  conformance --json "$@" >"$report" || {
    local status=$?
    jq '.checks[] | select(.outcome == "failed")' "$report"
    return "$status"
  }
}
has() { jq -e "$1" "$report" >/dev/null; }
names() { jq -r ".checks[] | select(.outcome == \"$1\").name" "$report"; }

@test "daemons that are right pass every check" {
  keepalive=1
  for daemon in "${daemons[@]}"; do
    start_simulator
    [ -z "$daemon" ] || start_device "$daemon"
    report --factory-reset --restart true
    has '.failed == 0 and .passed >= 120'
  done
}

@test "at localhost, both loopback addresses are checked" {
  start_simulator
  report --network-manager "localhost:${network_manager_url##*:}" --dapi "localhost:${grpc_dapi_url##*:}" \
    --only loopback,port
  has '.passed == 6'
}

@test "a device with other settings has them again afterwards" {
  start_controlled_simulator --state "$SOURCE_TREE/simulator/examples/state.json"
  control set network.hostname hall network.ntp '["a.example"]' network.ntp_in_effect '["a.example"]' 'network.interfaces[lan3].mode' static \
    'network.interfaces[lan3].ip' 10.1.2.3 'network.interfaces[lan3].netmask' 255.0.0.0 \
    network.switch_mode 2 'dante.tx_channels[1].name' 'Main left' 'dante.routing[2].device' Desk \
    'dante.routing[2].channel' 01 dante.transmit_disabled true
  state >"$BATS_TEST_TMPDIR/before"
  report
  has '.failed == 0 and .restored'
  diff "$BATS_TEST_TMPDIR/before" <(state)
}

@test "with --read-only, no call that changes something is made" {
  start_controlled_simulator
  report --read-only
  has '.failed == 0'
  [ "$(names passed | grep -c '^answers.Get')" = 30 ]
  [ "$(control calls | grep -c '"method":"[A-Za-z]*\.\(Set\|Reload\|Factory\|Reconnect\)')" = 0 ]
}

# Starts it, and stops the device in the middle of settings.Name.
start_in_the_middle() {
  echo '{"steps": [{"call": "SetName", "count": 2, "fault": "GetName:freeze"}]}' \
    >"$BATS_TEST_TMPDIR/scenario"
  start_controlled_simulator --scenario "$BATS_TEST_TMPDIR/scenario"
  state | jq .dante >"$BATS_TEST_TMPDIR/before"
  "$CONFORMANCE" --timeout 60 --keepalive-seconds 0 >"$BATS_TEST_TMPDIR/report" 2>&1 3>&- &
  process=$!
  wait_until has_other_name
}
has_other_name() { state | jq -e '.dante.name == "conformance-1"'; }
is_as_before() { state | jq .dante | cmp -s - "$BATS_TEST_TMPDIR/before"; }

@test "killed in the middle of a change, the device gets its settings back" {
  start_in_the_middle
  tool checkpoint --json | jq -e '.result.checkpoints[0].seconds_left > 23 * 60 * 60'
  kill -KILL "$process"
  control clear all
  wait_until is_as_before
}

@test "after a signal, the device gets its settings back and the exit status is 1" {
  start_in_the_middle
  kill -TERM "$process"
  status=0
  wait "$process" || status=$?
  [ "$status" = 1 ]
  grep 'interrupted: the checks that follow were not made' "$BATS_TEST_TMPDIR/report"
  control clear all
  wait_until is_as_before
}

@test "after --restart, the daemons are expected back with the same interface ids" {
  start_controlled_simulator
  ctl="\"$SIMULATOR\" ctl --control \"$control\""
  conformance --only restart --restart "$ctl stop DAPI; $ctl start DAPI"
  run -1 report --only restart --restart "$ctl set 'network.interfaces[lan0].id' 9"
  report=$BATS_TEST_TMPDIR/report.json
  [ "$(names failed)" = restart.InterfaceIds ]
  run -1 conformance --only restart --restart false
  [[ $output == *"problem   the command of --restart failed"* ]]
}

# NETWORKGRPC_REGENERATE=1 writes the file. Review the difference.
@test "what it prints of itself and of a failed check is as in printed.txt" {
  local printed=$BATS_TEST_TMPDIR/printed option
  start_simulator --fault SetName:ignore
  for option in --help --list --factory-reset; do
    printf '$ networkgrpc-conformance %s\n' "$option"
    conformance "$option" | sed -E 's/after [0-9]+\.[0-9] ms/after N ms/'
    echo
  done >"$printed"
  [ -z "${NETWORKGRPC_REGENERATE-}" ] || cp "$printed" "$BATS_TEST_DIRNAME/printed.txt"
  diff "$BATS_TEST_DIRNAME/printed.txt" "$printed"
}

@test "what cannot be written or restored is reported" {
  start_controlled_simulator --fault SetName:reject,after=1
  state | jq .dante >"$BATS_TEST_TMPDIR/before"
  into_full() { conformance "$@" >/dev/full; }
  run -1 --separate-stderr into_full --only settings.Name --timeout 1 --junit /dev/full
  diff - <(echo "${stderr//$grpc_dapi_url/ENDPOINT}") <<'LINES'
networkgrpc-conformance: cannot write to standard output
networkgrpc-conformance: cannot write '/dev/full'
networkgrpc-conformance: not everything is restored yet: cannot set the device name: the dante-api daemon at ENDPOINT rejected SetName; another process tries again: see 'networkgrpc checkpoint'
LINES
  control clear SetName
  wait_until is_as_before
}

@test "JUnit and JSON agree with the text" {
  start_simulator --fault 'GetDNSList:answer={"dns":["<&>\"\u0007"]}'
  run -1 --separate-stderr conformance --json --junit "$BATS_TEST_TMPDIR/junit.xml"
  python3 - "$BATS_TEST_TMPDIR/junit.xml" "$output" <<'PYTHON'
import json, sys, xml.etree.ElementTree as xml
suite = xml.parse(sys.argv[1]).getroot()
report = json.loads(sys.argv[2])
assert [int(suite.get(it)) for it in ("tests", "failures", "skipped")] == [
    len(report["checks"]), report["failed"], report["skipped"]]
seconds = [float(it.get("time")) for it in (suite, *suite)]
assert abs(seconds[0] - sum(seconds[1:])) < 0.001 * len(seconds) < seconds[0]
assert report["failed"] == 1 and report["schema"] == 1 and report["restored"]
for case, check in zip(suite, report["checks"], strict=True):
    assert f'{case.get("classname")}.{case.get("name")}' == check["name"]
    outcome = {"failure": "failed", "skipped": "skipped"}.get(case[0].tag) if len(case) else "passed"
    assert outcome == check["outcome"], check
failed = [check for check in report["checks"] if check["outcome"] == "failed"]
assert failed[0]["name"] == "lists.Dns" and failed[0]["calls"][-1]["sent"] == "GetDNSList {}"
details = next(case[0].text for case in suite if len(case) and case[0].tag == "failure")
sent, received = details.splitlines()[2:4]
assert sent == "  sent      GetDNSList {}" and received.startswith(r'  received  OK {"dns":["<&>\"\u0007"]} after '), details
PYTHON
}

# Of each: the number of calls, the first that was sent, the last that was received.
@test "a failed check reports its calls, the latest 20 of them" {
  local fault check expected
  while read -r fault check expected; do
    start_simulator --fault "$fault"
    run -1 --separate-stderr conformance --json --timeout 9 --only "$check"
    diff <(echo "$expected") <(jq -r '.checks[] | select(.outcome == "failed").calls |
      "\(length) \(first.sent[:18]) \(last.received | sub(" after.*"; ""))"' <<<"$output")
    stop_devices
  done <<'TABLE'
GetName:malformed answers.GetName 1 GetName {} OK (the reply is no Name) 0a7f6162
GetModelName:after=1,status=INTERNAL calls.Concurrent.Dante 20 GetModelName {} INTERNAL
GetName:after=4,times=1,status=INTERNAL sizes.HugeRequest.Dante 2 SetName {"name":"x INTERNAL
GetHostname:after=4,times=1,status=INTERNAL sizes.HugeRequest.NetworkManager 2 SetHostname {"host INTERNAL
GetName:after=4,times=1,status=INTERNAL utf8.InvalidName 2 SetName {"name":"a INTERNAL
GetHostname:after=4,times=1,status=INTERNAL utf8.InvalidHostname 2 SetHostname {"host INTERNAL
TABLE
}

# only FAULT CHECKS FAILED: of these checks, with the fault, only this one fails, and none is skipped.
only() {
  start_simulator --fault "$1"
  report --only "$2" || true
  [ "$(names failed) $(names skipped)" = "$3 " ]
  stop_devices
}

@test "what a daemon may do fails no check" {
  only 'SetNetworkConfig:times=1,request={"flag7":true}' settings.NetworkConfig ""
  only 'GetNetworkStatus:when={"ids":[4]},answer={"status":[{"id":4}]}' stored.Address,reload.Address ""
  only GetModelName:status=UNIMPLEMENTED answers.GetModelName,wire,calls answers.GetModelName
  only GetDNSList:status=UNIMPLEMENTED answers.GetDNSList,wire,calls answers.GetDNSList
}

@test "--profile and --only choose the checks" {
  start_simulator --fault DAPI.*:stop
  report --profile networkmanager
  has '.passed > 40 and .failed == 0 and all(.checks[]; .daemon == "network-manager")'
  stop_devices
  start_simulator --fault NetworkManager.*:stop
  report --profile dante
  has '.failed == 0 and all(.checks[]; .daemon == "dante-api")'
  report --profile dante --only lists,answers.GetName
  has '.passed == 7'
  run -1 conformance --profile dante --only rejected.Aes67
  [[ $output == *"0 passed, 0 failed, 1 skipped" ]]
}

@test "exit status 8 without a daemon, 2 with a wrong command line" {
  start_simulator --fault DAPI.*:stop
  run -8 conformance
  [[ $output == "networkgrpc-conformance: the dante-api daemon at $grpc_dapi_url cannot be reached" ]]
  run -2 conformance --only settings.Nmae
  [[ $output == *"unknown check 'settings.Nmae'; see --list"* ]]
  run -2 conformance --profile both
}

@test "without a place for the checkpoint, nothing is changed" {
  start_controlled_simulator
  touch "$BATS_TEST_TMPDIR/file"
  XDG_STATE_HOME=$BATS_TEST_TMPDIR/file report
  [ "$(control calls | grep -c '"method":"[A-Za-z]*\.\(Set\|Reload\|Factory\|Reconnect\)')" = 0 ]
  has '.checks[] | select(.name == "settings.Name").reason | startswith("no checkpoint: ")'
}

@test "docs/conformance.md explains every check, and no other" {
  "$CONFORMANCE" --list | cut -d' ' -f1 >"$BATS_TEST_TMPDIR/names"
  sed -n 's/^### //p' "$SOURCE_TREE/docs/conformance.md" >"$BATS_TEST_TMPDIR/headings"
  # A heading is a name, or what several names begin with.
  while read -r name; do
    grep -qxF -e "$name" -e "${name%.*}" "$BATS_TEST_TMPDIR/headings" || { echo "$name"; false; }
  done <"$BATS_TEST_TMPDIR/names"
  while read -r heading; do
    grep -qE "^$heading([.]|\$)" "$BATS_TEST_TMPDIR/names" || { echo "$heading"; false; }
  done <"$BATS_TEST_TMPDIR/headings"
}
