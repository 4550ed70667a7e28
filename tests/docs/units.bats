#!/usr/bin/env bats
# The example units for systemd.
#
# Environment: SOURCE_TREE, SIMULATOR, FUNCTIONS a program that calls every function.

# shellcheck disable=SC2154 # run sets stderr

load ../tools/device.bash

units="$SOURCE_TREE/packaging/systemd"

@test "systemd accepts the example units" {
  local unit
  for unit in "$units"/*.service; do
    # The programs and manual pages are not installed.
    sed -E 's#^(ExecStart|ExecStartPre)=[^ ]*#\1=/bin/true#' "$unit" >"$BATS_TEST_TMPDIR/${unit##*/}"
  done
  systemd-analyze verify --man=no "$BATS_TEST_TMPDIR"/*.service 2>&1 | tee "$BATS_TEST_TMPDIR/messages"
  [ "${PIPESTATUS[0]}" -eq 0 ]
  [ ! -s "$BATS_TEST_TMPDIR/messages" ]
}

@test "their exposure is at most 2.0" {
  systemd-analyze security --offline=true --threshold=20 "$units"/*.service
}

# A command with the system calls, socket families and memory that a unit allows.
under=(/usr/bin/python3 "$BATS_TEST_DIRNAME/under_unit.py")
daemon=("${under[@]}" "$units/amplifier-network-manager.service")
application=("${under[@]}" "$units/amplifier-application.service")

@test "every function works under their filters" {
  export ASAN_OPTIONS=detect_leaks=0  # they do not allow what LeakSanitizer does
  # The ids and the address that the calls of the program name.
  jq -n '{schema: 1, network: {interfaces: [
    (range(4) | {name: "lan\(.)", id: (10 + .), mac: "02:00:00:00:00:1\(.)"}),
    {name: "lan4", id: 7}]}}' >"$BATS_TEST_TMPDIR/state"
  start_device "${daemon[@]}" "$SIMULATOR" --state "$BATS_TEST_TMPDIR/state" \
    --network-manager "unix:$BATS_TEST_TMPDIR/network-manager" --dapi "unix:$BATS_TEST_TMPDIR/dapi"
  run -0 --separate-stderr "${application[@]}" "$FUNCTIONS"
  diff <("$FUNCTIONS" --list) <(echo "$output")
}

# fails_with MESSAGE COMMAND...
fails_with() {
  run ! --separate-stderr "${@:2}"
  [[ $stderr == *"$1"* ]] || { echo "$*: $stderr"; return 1; }
}

@test "the filters deny what the units do not allow" {
  ip='import socket; socket.socket(socket.AF_INET)'
  code='import mmap; mmap.mmap(-1, 4096, prot=mmap.PROT_WRITE | mmap.PROT_EXEC)'
  for unit in daemon application; do
    declare -n filtered=$unit
    fails_with 'Address family not supported' "${filtered[@]}" /usr/bin/python3 -c "$ip"
    fails_with 'Operation not permitted' "${filtered[@]}" /usr/bin/python3 -c "$code"
    fails_with 'Operation not permitted' "${filtered[@]}" chroot / true
  done
}
