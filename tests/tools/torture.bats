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
