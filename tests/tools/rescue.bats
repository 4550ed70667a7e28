#!/usr/bin/env bats
# A change with a time limit is kept or undone, whatever happens meanwhile: the processes are
# killed, the power is cut, daemons restart or are away for an hour, others decide.

# shellcheck disable=SC2154,SC2317 # set by device.bash and run; called by for_each_call

load torture.bash

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

# The rescuer's file, as when the deadline has come.
begin_restoring() {
  abandon
  stem=$(find "$XDG_STATE_HOME" -name '*.open')
  stem=${stem%.open}
  mv "$stem.open" "$stem.restoring"
}

@test "Rescuer_EachCallFailsOrKills_IsDoneOrCanBeRepeated" {
  start_simulator
  begin_restoring
  before() { begin_restoring; }
  check() { { ! is_renamed || has_checkpoint; } && if_there rollback && has_none && ! is_renamed; }
  for_each_call "$XDG_STATE_HOME" "$TOOL" __rescue "$stem"
}

# The rescuer without its pauses: each ends at once, and the file pauses tells how long it would
# have been.
rescue_without_pauses() {
  strace -qq -o pauses -e trace=poll -e inject=poll:retval=0 "$TOOL" __rescue "$stem" >/dev/null 2>&1 3<"$stem.restoring" </dev/null
}
seconds_passed() { sed -n 's/.*, \([0-9]*\)) *= .*/\1/p' pauses 2>/dev/null | awk '{ sum += $1 } END { print int(sum / 1000) }'; }
has_passed() { [ "$(seconds_passed)" -ge "$1" ]; }

# A checkpoint of a change to much, whose rescuer is gone. The files old and much.json are made.
abandon_much() {
  kill_rescuers
  rm -rf state
  tool export >old
  jq '.network.hostname = "changed" | .network.ntp = ["a", "b"] | .network.switch_mode = 1 |
      .network.interfaces[1] += {mode: "static", ip: "10.9.8.7", netmask: "255.0.0.0"} |
      .dante.name = "changed" | .dante.latency = 2000 | .dante.aes67 = true |
      .dante.rx_channels[0].name = "Mic" | .dante.routing[1] += {device: "Box", channel: "01"}' old >much.json
  tool import much.json --yes --confirm-within 60 >/dev/null 2>&1
  kill_rescuers
  stem=$(find "$XDG_STATE_HOME" -name '*.open')
  stem=${stem%.open}
}
is_as_before() { has_none && tool export | cmp -s - old && ! tool interface | grep -q 10.9.8.7; }

@test "DaemonIsAway_FromASecondToAnHour_IsRestored" {
  local daemon seconds
  start_controlled_simulator
  for daemon in NetworkManager DAPI; do
    for seconds in 1 10 60 600 3600; do
      abandon_much
      mv "$stem.open" "$stem.restoring"
      control stop "$daemon"
      rm -f pauses
      rescue_without_pauses &
      wait_until has_passed "$seconds"
      control start "$daemon"
      wait "$!"
      is_as_before
    done
  done
}

# The daemons get the same calls each time, those made side by side in any order.
@test "DaemonRestarts_AtEachCallOfARestoration_IsRestored" {
  local methods first number daemon method count=0
  start_controlled_simulator
  abandon_much
  first=$(control calls | wc -l)
  tool rollback
  methods=$(control calls | jq -r .method)
  while read -r number daemon method; do
    stop_devices
    printf '{"steps": [{"call": "%s", "count": %d, "restart": "%s"}]}' "$daemon.$method" "$number" "$daemon" >scenario
    start_simulator --scenario scenario
    abandon_much
    strace -qq -o pauses -e trace=poll -e inject=poll:retval=0 "$TOOL" rollback >stdout 2>stderr </dev/null
    is_as_before || { echo "$daemon.$method, call $number"; cat stderr; diff <(tool export) old; return 1; }
    grep -q "cannot restore yet" stderr && count=$((count + 1))
  done < <(awk -F. -v first="$first" '{ ++count[$0] } NR > first { print count[$0], $1, $2 }' <<<"$methods" |
    awk "NR % $every == 0")
  echo "# $count restarts" >&3
  [ "$count" -gt 5 ]
}
