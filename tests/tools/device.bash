# shellcheck shell=bash
# Shared by the tests of the command-line programs: a simulated device, and the tool.

bats_require_minimum_version 1.5.0
export no_grpc_proxy=localhost,127.0.0.1,::1
unset http_proxy https_proxy grpc_proxy no_proxy network_manager_url grpc_dapi_url
unset dante_primary_interface_env dante_secondary_interface_env control_interface_env
unset NO_COLOR
export NETWORKGRPC_DEVICES= # none
[ -z "${BATS_TEST_TMPDIR-}" ] || export XDG_STATE_HOME=$BATS_TEST_TMPDIR/state

# Seconds to wait for an event; ctest sets PATIENCE, longer under emulation.
patience=${PATIENCE:-30}
# A time limit, in seconds, that a call keeps unless its daemon does not answer.
# shellcheck disable=SC2034 # for the tests
time_limit=$((patience / 10))
device_pids=()

# start_device COMMAND...: starts a program that prints its endpoints, and exports them
# for the tool. stop_devices ends it.
start_device() {
  local line='' fd
  exec {fd}< <(exec "$@" 3>&- </dev/fd/"$device_input" 2>/dev/null)
  device_pids+=("$!")
  read -r -t "$patience" -u "$fd" line
  [[ $line == "ready network_manager_url="* ]]
  # shellcheck disable=SC2086 # two assignments
  export ${line#ready }
}

start_simulator() { start_device "$SIMULATOR" "$@"; }

# A simulator with a control socket, and a command to it.
start_controlled_simulator() {
  mkdir -m 700 "$BATS_TEST_TMPDIR/private"
  start_simulator --control "$BATS_TEST_TMPDIR/private/control" "$@"
}
control() { "$SIMULATOR" ctl --control "$BATS_TEST_TMPDIR/private/control" "$@"; }

# Accepts every call and never answers.
start_mute_device() { start_simulator --fault '*:freeze'; }

# What would restore the checkpoints of this test.
rescuers() { pgrep -f "__rescue $XDG_STATE_HOME"; }
kill_rescuers() {
  local pid
  for pid in $(rescuers); do kill -KILL "$pid" 2>/dev/null || true; done
}

stop_devices() {
  local pid
  for pid in "${device_pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
  device_pids=()
}

# Sets device_input to the descriptor of a pipe that stays open and empty.
open_device_input() {
  mkfifo "$BATS_TEST_TMPDIR/input"
  exec {device_input}<>"$BATS_TEST_TMPDIR/input"
}

setup() { open_device_input; }
teardown() {
  kill_rescuers
  stop_devices
}

absent_device() {
  # Nothing listens on port 1 of a test machine.
  export network_manager_url=127.0.0.1:1 grpc_dapi_url=127.0.0.1:1
}

# The time limit ends a tool that hangs.
tool() { timeout 30 "$TOOL" "$@" </dev/null; }

# require_terminal: for tests that run a program on a terminal.
require_terminal() {
  script --quiet --command true /dev/null </dev/null >/dev/null 2>&1 && return
  echo "this test needs a pseudo-terminal: mount /dev/pts"
  return 1
}

# on_terminal COMMAND...: starts it on a terminal of its own, whose output is the file
# $screen. type_in types a line there.
on_terminal() {
  require_terminal
  screen="$BATS_TEST_TMPDIR/screen"
  mkfifo "$BATS_TEST_TMPDIR/keys"
  exec {keys}<>"$BATS_TEST_TMPDIR/keys"
  # What is started with & ignores Ctrl-C otherwise. exec: a shell between the two would
  # end by Ctrl-C itself, with another status.
  SHELL=$BASH env --default-signal=INT script --quiet --flush --return --command "exec $(printf '%q ' "$@")" "$screen" <&"$keys" >/dev/null 2>&1 3>&- &
  # shellcheck disable=SC2034 # for the tests
  terminal_pid=$!
}
type_in() { printf '%s\n' "$1" >&"$keys"; }
shows() { grep -q "$1" "$screen"; }

# wait_until COMMAND...: repeats the command until it succeeds.
wait_until() {
  local end=$((SECONDS + patience))
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    read -r -t 0.05 -u "$device_input" || true # a pause: nothing is written to it
  done
}
