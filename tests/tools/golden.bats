#!/usr/bin/env bats
# The output of every command, compared with the recordings in golden/. The commands
# are those of golden/success.txt, in that order: each sees what the commands before it
# changed. To record a new command, write its line "$ networkgrpc ..." there.
#
# NETWORKGRPC_REGENERATE=1 writes the recordings. Review the difference.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

golden="$BATS_TEST_DIRNAME/golden"

validate() { /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" "$@"; }

# Replaces what differs between runs: ports, times and the version.
mask() {
  sed -E -e 's/127\.0\.0\.1:[0-9]+/127.0.0.1:PORT/g' \
    -e 's/("round_trip_ms":)[0-9.e-]+/\1TIME/g' \
    -e 's/("value":)([0-9]+\.[0-9]+(e-[0-9]+)?|[0-9]+e-[0-9]+)/\1TIME/g' \
    -e 's/^(networkgrpc_round_trip_seconds\{.*\}) .*/\1 TIME/' \
    -e 's/("waited_s":)[0-9.e-]+/\1TIME/g' -e 's/[0-9]+\.[0-9] ms *$/TIME/' -e 's/[0-9]+\.[0-9] ms +/TIME  /' \
    -e 's/^(networkgrpc  )[0-9.]+$/\1VERSION/' -e 's/("networkgrpc":)"[0-9.]+"/\1"VERSION"/'
}

# paragraph ARGUMENT...: a command line, its output, its standard error and, unless it
# is 0, its exit status.
paragraph() {
  local errors="$BATS_TEST_TMPDIR/errors" status=0
  printf '$ networkgrpc %s\n' "$*"
  tool "$@" 2>"$errors" || status=$?
  sed 's/^/standard error: /' "$errors"
  [ "$status" -eq 0 ] || printf '(exit status %d)\n' "$status"
}

# record SUCCESS ARGUMENT...: a paragraph per command, run with the arguments added.
# What the recording SUCCESS of golden/ contains as well is not repeated.
record() {
  local success="$1" recorded='' command words text
  shift
  cd "$golden" || return # state.json is there
  [ -z "$success" ] || recorded="$(<"$success")"$'\n\n$ '
  for command in "${commands[@]}"; do
    read -ra words <<<"$command"
    text=$(paragraph "${words[@]}" "$@" | mask && echo .) # the dot keeps blank lines at the end
    text=${text%$'\n'.}
    [[ $recorded != *$'\n\n'"$text"$'\n\n$ '* ]] || text="${text%%$'\n'*}  # as in $success"
    printf '\n%s\n' "$text"
  done
}

commands_of_the_recordings() {
  mapfile -t commands < <(sed -n 's/^\$ networkgrpc //p' "$golden/success.txt")
  [ "${#commands[@]}" -gt 0 ]
}

# compare SCENARIO DESCRIPTION START...: starts a device for text, and one for JSON.
compare() {
  local scenario="$1" description="$2" form name success
  shift 2
  commands_of_the_recordings
  for form in '' _json; do
    name=$scenario$form.txt success=
    [ "$scenario" = success ] || success=success$form.txt
    "$@"
    { echo "# $description"; record "$success" ${form:+--json}; } >"$BATS_TEST_TMPDIR/$name"
    stop_devices
    [ -z "${NETWORKGRPC_REGENERATE-}" ] || cp "$BATS_TEST_TMPDIR/$name" "$golden/$name"
    # Each difference shows the command line, in its context or behind the @@.
    diff --unified --show-function-line='^\$ ' "$golden/$name" "$BATS_TEST_TMPDIR/$name"
  done
  validate "$BATS_TEST_TMPDIR/$name"
}

start_device_with_unusual_names() {
  start_simulator --tx-channels 3 --rx-channels 7
  tool dante name 'Großer Saal – 大ホール'
  tool channel rename 1 '主 左'
  tool channel rename 2 'a label that is longer than any that a person would type, for good measure'
  tool channel rename 3 'é with a combining accent'
  tool hostname set 'name with  spaces'
  tool ntp set $'tab\tand\nnewline'
  tool routing set 3 'Bühne 1' 'Mikro – links'
  tool routing set 4 'ステージ' 'マイク 1'
  tool routing set 5 'a device with a name that is long' 'and a channel with one that is longer still'
  tool routing set-raw 6 '239.69.0.1 and more' --sip 'ünï' --session-id 18446744073709551615
} >/dev/null

# The first one: the other recordings refer to it.
@test "EveryCommand_DeviceAcceptsIt_PrintsAsRecorded" {
  compare success "The device accepts every valid change." start_simulator
}
@test "EveryCommand_DeviceRejectsChanges_PrintsAsRecorded" {
  compare rejected "The device rejects every change." start_simulator --fault '*:reject'
}
@test "EveryCommand_EveryRpcFails_PrintsAsRecorded" {
  compare failing "Every RPC fails with UNIMPLEMENTED." start_simulator --fault '*:status=UNIMPLEMENTED'
}
@test "EveryCommand_DaemonsUnreachable_PrintsAsRecorded" {
  compare unreachable "No daemon listens." absent_device
}
@test "EveryCommand_UnusualNames_PrintsAsRecorded" {
  compare unusual_names "The device has long names, names in several scripts and names with control characters." \
    start_device_with_unusual_names
}

@test "EveryCommand_Together_CallsEveryRpc" {
  start_controlled_simulator
  commands_of_the_recordings
  cd "$golden"
  for command in "${commands[@]}"; do
    read -ra words <<<"$command"
    tool "${words[@]}" >/dev/null 2>&1 || true # the recordings have their exit status
  done
  diff <(sed -n 's/^ *rpc \(\w*\).*/\1/p' "$SOURCE_TREE"/proto/*/*.proto | sort) \
    <(control calls | jq -r .method | sed "s,.*[./],," | sort -u)
}

@test "Validation_DocumentIsWrong_RejectsItAndNamesTheMember" {
  validate - <<<'{"schema":3,"command":"dns","result":{"dns":["10.0.0.1"]}}'
  while IFS='|' read -r document message; do
    run -1 --separate-stderr validate - <<<"$document"
    [[ $stderr == "-: line 1: $message"* ]] || { echo "$document: $stderr"; return 1; }
  done <<'DOCUMENTS'
{} {}|not one JSON object
{"schema":1,"command":"dns","result":{"dns":[]}}|$.schema: 3 was expected
{"schema":3,"command":"dns"}|$: 'error' is a required property
{"schema":3,"command":"dns","error":{"code":7,"name":"failed","daemon":"","endpoint":"","rpc":"","grpc_status":"","daemon_message":"","message":"","outcome":"not-done"}}|$.error.code: 7 is not one of
{"schema":3,"command":"colour","result":{"dns":[]}}|$.command: 'colour' is unknown
{"schema":3,"command":"dns","result":{}}|$.result: 'dns' is a required property
{"schema":3,"command":"dns","result":{"dns":[],"ttl":1}}|$.result: Additional properties are not allowed ('ttl'
{"schema":3,"command":"dns","result":{"dns":null}}|$.result.dns: None is not of type 'array'
{"schema":3,"command":"dante latency","result":{"latency":4294967296,"minimum":1}}|$.result.latency: 4294967296 is greater
{"schema":3,"command":"channel count","result":{"tx":1,"rx":-2147483649}}|$.result.rx: -2147483649 is less
{"schema":3,"command":"routing set","result":{"rx_channel":1,"device":"","channel":"","raw":{"ip":""},"flag5":false}}|$.result.raw: 'value2' is a required
{"schema":3,"command":"export","result":{"schema":1,"dante":{"colour":1}}}|$.result.dante: Additional properties
DOCUMENTS
}
