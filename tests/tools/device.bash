# shellcheck shell=bash
# What the tests of the tool share. Loaded by each of them.

bats_require_minimum_version 1.5.0
export no_grpc_proxy=localhost,127.0.0.1,::1
unset http_proxy https_proxy grpc_proxy no_proxy network_manager_url grpc_dapi_url
unset dante_primary_interface_env dante_secondary_interface_env control_interface_env
unset NO_COLOR

# Seconds to wait for what should be there at once; PATIENCE where all is slower.
patience=${PATIENCE:-30}
device_pids=()

# start_device COMMAND...: runs a program that says where it listens, and points
# the tool at it. Its standard input ends with stop_devices.
start_device() {
  local line='' fd
  exec {fd}< <(exec "$@" 3>&- </dev/fd/"$device_input" 2>/dev/null)
  device_pids+=("$!")
  read -r -t "$patience" -u "$fd" line
  [[ $line == "ready network_manager_url="* ]]
  # shellcheck disable=SC2086 # words of one line
  export ${line#ready }
}

start_simulator() { start_device "$SIMULATOR" "$@"; }

# A simulator that takes commands while it runs, and such a command.
start_controlled_simulator() {
  mkdir -m 700 "$BATS_TEST_TMPDIR/private"
  start_simulator --control "$BATS_TEST_TMPDIR/private/control" "$@"
}
control() { "$SIMULATOR" ctl --control "$BATS_TEST_TMPDIR/private/control" "$@"; }

# One that takes every call and never answers.
start_mute_device() { start_simulator --fault '*:freeze'; }

stop_devices() {
  local pid
  for pid in "${device_pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
  device_pids=()
}

# A pipe that nobody writes to and that stays open.
open_device_input() {
  mkfifo "$BATS_TEST_TMPDIR/input"
  exec {device_input}<>"$BATS_TEST_TMPDIR/input"
}

setup() { open_device_input; }
teardown() { stop_devices; }

absent_device() {
  # Port 1 belongs to nobody who would listen on a test machine.
  export network_manager_url=127.0.0.1:1 grpc_dapi_url=127.0.0.1:1
}

# No test waits for a tool that hangs.
tool() { timeout 30 "$TOOL" "$@" </dev/null; }

# wait_until COMMAND...: looks again and again until the command succeeds.
wait_until() {
  local end=$((SECONDS + patience))
  until "$@"; do
    [ "$SECONDS" -lt "$end" ] || return 1
    read -r -t 0.05 -u "$device_input" || true # a pause: nothing comes
  done
}

# Ports, times and the version differ from run to run.
mask() {
  sed -E -e 's/127\.0\.0\.1:[0-9]+/127.0.0.1:PORT/g' \
    -e 's/("round_trip_ms":)[0-9.e-]+/\1TIME/g' \
    -e 's/[0-9]+\.[0-9] ms *$/TIME/' -e 's/[0-9]+\.[0-9] ms +/TIME  /' \
    -e 's/^(networkgrpc  )[0-9.]+$/\1VERSION/' -e 's/("networkgrpc":)"[0-9.]+"/\1"VERSION"/'
}
