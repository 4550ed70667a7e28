#!/usr/bin/env bats
# What every command prints, on disk, for a device that does it, one that
# refuses every change, one whose every call fails, one that is not there, and one
# with odd names. NETWORKGRPC_REGENERATE=1 writes the files anew: read the
# difference before it is committed.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

golden="$BATS_TEST_DIRNAME/golden"

commands() { grep -Ev '^(#|$)' "$BATS_TEST_DIRNAME/commands.txt"; }

# record FOLDER ARGUMENT...: one file for each command.
record() {
  local folder="$1" name words out err status
  shift
  mkdir -p "$folder"
  cd "$BATS_TEST_DIRNAME" || return # where the documents are that commands name
  err="$BATS_TEST_TMPDIR/err"
  while read -r name words; do
    # shellcheck disable=SC2086 # words of one line
    out=$(tool $words "$@" 2>"$err"; printf 'exit status %d' $?)
    status=${out##*exit status }
    {
      printf '$ networkgrpc %s\n' "$words${*:+ $*}"
      printf '%s' "${out%exit status *}"
      sed 's/^/standard error: /' "$err"
      printf 'exit status: %s\n' "$status"
    } | mask >"$folder/$name"
  done < <(commands)
}

# compare SCENARIO START...: a device for the text, a fresh one for the JSON.
compare() {
  local scenario="$1" made="$BATS_TEST_TMPDIR/$1"
  shift
  "$@"
  record "$made/text"
  stop_devices
  "$@"
  record "$made/json" --json
  stop_devices
  if [ -n "${NETWORKGRPC_REGENERATE-}" ]; then
    rm -rf "${golden:?}/$scenario"
    mkdir -p "$golden"
    cp -r "$made" "$golden/$scenario"
  fi
  diff -ru "$golden/$scenario" "$made"
  # Nothing but one JSON object that the contract allows.
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" "$made"/json/*
}

odd_device() {
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

@test "EveryCommand_DeviceDoesIt_PrintsAsRecorded" { compare success start_simulator; }
@test "EveryCommand_DeviceRefuses_PrintsAsRecorded" { compare refused start_simulator --fault '*:refuse'; }
@test "EveryCommand_DeviceFails_PrintsAsRecorded" {
  compare failing start_simulator --fault '*:status=UNIMPLEMENTED'
}
@test "EveryCommand_DeviceAbsent_PrintsAsRecorded" { compare absent absent_device; }
@test "EveryCommand_OddNames_PrintsAsRecorded" { compare odd odd_device; }
