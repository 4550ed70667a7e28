#!/usr/bin/env bats
# Every system call of a program fails once, and the program is killed at every one: what
# it leaves is the old or the new state, and it does not call undone what is done.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  cd "$BATS_TEST_TMPDIR" || return
  open_device_input
}

teardown() {
  local pid
  for pid in $(rescuers); do kill -KILL "$pid"; done
  stop_devices
}

rescuers() { pgrep -f "__rescue $XDG_STATE_HOME"; }

# Those that can fail for want of space, memory, descriptors or permission.
readonly calls=%file,write,fsync,close,fcntl,fchmod,fchown,socket,connect,sendmsg

# for_each_call FOLDER COMMAND...: runs the command once for each of its system calls that
# uses a file in the folder, connects or sends; once that call fails, once the command is killed
# at it. The function `before` makes the state; `check STATUS` looks at what has become of it.
for_each_call() {
  local folder=$1 call number how status hits=0
  shift
  before
  strace -qq -y -o calls -e "trace=$calls" "$@" >/dev/null 2>&1 </dev/null
  while read -r call number; do
    for how in error=EIO signal=KILL; do
      before
      status=0
      { # the shell reports what is killed
        strace -qq -y -o trace -e "trace=$call" -e "inject=$call:$how:when=$number" "$@" \
          >stdout 2>stderr </dev/null || status=$?
      } 2>/dev/null
      if [ "$status" -eq 137 ] || grep -q INJECTED trace; then hits=$((hits + 1)); fi
      check "$status" || { echo "$how at $call $number, status $status:"; tail -2 trace; cat stderr; return 1; }
    done
  done < <(awk -F'(' -v folder="$folder" 'NR > 1 { ++count[$1] }
    NR > 1 && (index($0, folder) || $1 ~ /^(connect|sendmsg)$/) { print $1, count[$1] }' calls)
  echo "# $hits runs" >&3
  [ "$hits" -gt 10 ]
}

# Unless it was killed, it has said why it failed.
has_said_why() { [ "$1" -eq 0 ] || [ "$1" -eq 137 ] || [ -s stderr ]; }
implies() { [ "$1" -ne 0 ] || "${@:2}"; } # STATUS COMMAND...

# What a save leaves.
begin_file() { rm -f folder/.networkgrpc.* && echo old >folder/state.json; }
is_new() { cmp -s folder/state.json new; }
is_old_or_new() { is_new || [ "$(cat folder/state.json)" = old ]; }
# What is not on the disk is not saved.
is_reported() { [ "$1" -ne 0 ] || ! grep -qE '^(write|fsync|rename).*INJECTED' trace; }
# What it was writing is removed, unless that cannot be.
is_alone() { grep -q 'unlink.*INJECTED' trace || [ "$(ls -A folder)" = state.json ]; }

@test "Export_EachCallFailsOrKills_FileIsOldOrNew" {
  start_simulator
  mkdir folder
  tool export >new
  before() { begin_file; }
  check() { has_said_why "$1" && is_reported "$1" && implies "$1" is_new && is_old_or_new && { [ "$1" -eq 137 ] || is_alone; }; }
  for_each_call "$PWD/folder" "$TOOL" export --output "$PWD/folder/state.json"
}

@test "Save_EachCallFailsOrKills_FileIsOldOrNew" {
  mkdir folder
  "$SIMULATOR" run --save new -- true
  before() { begin_file; }
  check() { has_said_why "$1" && is_reported "$1" && implies "$1" is_new && is_old_or_new && { [ "$1" -eq 137 ] || is_alone; }; }
  for_each_call "$PWD/folder" "$SIMULATOR" run --save "$PWD/folder/state.json" -- true
}

is_renamed() { [ "$(tool hostname 2>/dev/null)" = changed ]; }
has_checkpoint() { [ -n "$(find state -name '*.open' -o -name '*.restoring')" ]; }
has_none() { ! has_checkpoint; }
if_there() { has_none || tool "$1" >/dev/null 2>&1; }

# The host name as before, and no checkpoint.
begin_anew() {
  local pid
  for pid in $(rescuers); do kill -KILL "$pid"; done
  rm -rf state
  tool hostname set before >/dev/null
}

# A checkpoint whose rescuer is gone.
abandon() {
  begin_anew
  tool hostname set changed --confirm-within 60 >/dev/null 2>&1
  kill -KILL "$(rescuers)"
}

@test "Import_EachCallFailsOrKills_IsNeverWithoutCheckpoint" {
  start_simulator
  begin_anew
  tool export >old
  jq '.network.hostname = "changed" | .dante.name = "changed" | .network.ntp = ["a"]' old >new.json
  is_old() { tool export 2>/dev/null | cmp -s - old; }
  before() { begin_anew && tool import old --yes >/dev/null 2>&1; }
  check() {
    has_said_why "$1" && implies "$1" is_renamed && { is_old || has_checkpoint; } &&
      if_there rollback && has_none && is_old
  }
  for_each_call "$XDG_STATE_HOME" "$TOOL" import new.json --yes --confirm-within 60
}

@test "Checkpoint_IsOnTheDisk_BeforeTheFirstChange" {
  start_simulator
  mkdir -p "$XDG_STATE_HOME/networkgrpc"
  strace -qq -y -o trace -e trace=renameat2,fsync,sendmsg "$TOOL" hostname set changed --confirm-within 60
  # Behind the checkpoint's name comes the folder's fsync, then the call.
  [[ $(sed -n '/^renameat2/,$s/(.*//p' trace | tr '\n' ' ') == "renameat2 fsync sendmsg "* ]]
}

@test "TwoChanges_AtTheSameTime_OneIsRefused" {
  start_simulator
  local one two
  for _ in {1..25}; do
    begin_anew
    one=0 two=0
    tool hostname set one --confirm-within 60 >of_one 2>&1 &
    tool hostname set two --confirm-within 60 >of_two 2>&1 || two=$?
    wait "$!" || one=$?
    [ "$((one + two))" -eq 1 ] || { cat of_one of_two; return 1; }
    [ "$(tool hostname)" = "$([ "$one" -eq 0 ] && echo one || echo two)" ]
    tool rollback
    [ "$(tool hostname)" = before ]
  done
}

@test "Rollback_EachCallFailsOrKills_IsDoneOrCanBeRepeated" {
  start_simulator
  before() { abandon; }
  check() { has_said_why "$1" && implies "$1" has_none && if_there rollback && has_none && ! is_renamed; }
  for_each_call "$XDG_STATE_HOME" "$TOOL" rollback
}

@test "Confirm_EachCallFailsOrKills_IsDoneOrCanBeRepeated" {
  start_simulator
  before() { abandon; }
  check() { has_said_why "$1" && is_renamed && implies "$1" has_none && if_there confirm && has_none && is_renamed; }
  for_each_call "$XDG_STATE_HOME" "$TOOL" confirm
}
