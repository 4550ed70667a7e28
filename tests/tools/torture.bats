#!/usr/bin/env bats
# Every system call and every allocation of a program that saves a file or makes a change fails
# once, the program is killed at every call, and the power is cut there: what it leaves is the old
# or the new state, and it does not call undone what is done.

# shellcheck disable=SC2154,SC2317 # set by device.bash and run; called by for_each_call

load torture.bash

# What a save leaves.
begin_file() { rm -f folder/.networkgrpc.* && echo old >folder/state.json; }
is_new() { cmp -s folder/state.json new; }
is_old_or_new() { is_new || [ "$(cat folder/state.json)" = old ]; }
# What is not on the disk is not saved.
is_reported() { [ "$1" -ne 0 ] || ! grep -qE '^(write|fsync|rename).*INJECTED' trace; }
# What it was writing is removed, unless that cannot be.
is_alone() { grep -q 'unlink.*INJECTED' trace || [ "$(ls -A folder)" = state.json ]; }

# `before` and `check` of a command that writes new to folder/state.json.
prepare_file() {
  mkdir folder
  : >trace
  before() { begin_file; }
  check() { has_said_why "$1" && is_reported "$1" && implies "$1" is_new && is_old_or_new && { was_ended "$1" || is_alone; }; }
}

# `before` and `check` of an import with a time limit.
prepare_import() {
  start_simulator
  begin_anew
  tool export >old
  jq '.network.hostname = "changed" | .dante.name = "changed" | .network.ntp = ["a"]' old >new.json
  is_old() { tool export 2>/dev/null | cmp -s - old; }
  before() { begin_anew && tool import old --yes >/dev/null 2>&1; }
  check() {
    has_said_why "$1" && implies "$1" is_renamed && implies "$1" has_asked && { is_old || has_checkpoint; } &&
      if_there rollback && has_none && is_old
  }
}

@test "Export_EachCallFailsOrKills_FileIsOldOrNew" {
  start_simulator
  prepare_file
  tool export >new
  for_each_call "$PWD/folder" "$TOOL" export --output "$PWD/folder/state.json"
}

@test "Export_EachAllocationFails_FileIsOldOrNew" {
  start_simulator
  prepare_file
  tool export >new
  for_each_allocation "$TOOL" export --output "$PWD/folder/state.json"
}

@test "Save_EachCallFailsOrKills_FileIsOldOrNew" {
  prepare_file
  "$SIMULATOR" run --save new -- true
  for_each_call "$PWD/folder" "$SIMULATOR" run --save "$PWD/folder/state.json" -- true
}

@test "Save_EachAllocationFails_FileIsOldOrNew" {
  prepare_file
  "$SIMULATOR" run --save new -- true
  for_each_allocation "$SIMULATOR" run --save "$PWD/folder/state.json" -- true
}

@test "Import_EachCallFailsOrKills_IsNeverWithoutCheckpoint" {
  prepare_import
  for_each_call "$XDG_STATE_HOME" "$TOOL" import new.json --yes --confirm-within 60
}

@test "Import_EachAllocationFails_IsNeverWithoutCheckpoint" {
  prepare_import
  for_each_allocation "$TOOL" import new.json --yes --confirm-within 60
}

@test "Checkpoint_IsOnTheDisk_BeforeTheFirstChange" {
  start_simulator
  mkdir -p "$XDG_STATE_HOME/networkgrpc"
  strace -qq -y -o trace -e trace=renameat2,fsync,sendmsg "$TOOL" hostname set changed --confirm-within 60
  # Behind the checkpoint's name comes the folder's fsync, then the call.
  [[ $(sed -n '/^renameat2/,$s/(.*//p' trace | tr '\n' ' ') == "renameat2 fsync sendmsg "* ]]
}

# A recording has whole calls, and all of them if no failure is reported.
is_whole() { [ ! -s log.jsonl ] || "$SIMULATOR" replay log.jsonl -- true; }
is_complete() { [ "$(wc -l <log.jsonl)" -eq "$length" ]; }
# `before` and `check` of a recording of this command.
prepare_recording() {
  start_simulator
  "$SIMULATOR" record --log log.jsonl -- "$@" >/dev/null
  length=$(wc -l <log.jsonl)
  before() { rm -f log.jsonl; }
  check() { has_said_why "$1" && implies "$1" is_complete && is_whole; }
}

@test "Record_EachCallFailsOrKills_HasWholeCalls" {
  local call number how status hits=0
  prepare_recording "$TOOL" status
  while read -r call number; do
    for how in error=ENOSPC signal=KILL; do
      before
      status=0
      { strace -f -qq -o trace -P "$PWD/log.jsonl" -e "inject=$call:$how:when=$number" \
        "$SIMULATOR" record --log "$PWD/log.jsonl" -- "$TOOL" status >stdout 2>stderr </dev/null || status=$?; } 2>/dev/null
      if [ "$status" -eq 137 ] || grep -q INJECTED trace; then hits=$((hits + 1)); fi
      check "$status" || { echo "$how at $call $number, status $status:"; cat trace stderr; return 1; }
    done
  done < <(printf '%s\n' openat\ 1 close\ 1 write\ {1..6})
  echo "# $hits runs" >&3
  [ "$hits" -gt 5 ]
}

# A server of gRPC waits for ever for the end of a call that gRPC itself had no memory for.
@test "Record_EachAllocationFails_HasWholeCalls" {
  prepare_recording "$TOOL" hostname
  ONLY_OWN_PLACES=1 for_each_allocation "$SIMULATOR" record --log log.jsonl -- env -u LD_PRELOAD "$TOOL" hostname
}
