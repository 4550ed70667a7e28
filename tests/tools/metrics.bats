#!/usr/bin/env bats
# metrics prints what Prometheus's own parser reads.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  file="$BATS_TEST_TMPDIR/networkgrpc.prom"
}

# parsed FILE: one line per sample, as that parser understands it: name, labels, value.
parsed() {
  /usr/bin/python3 - "$1" <<'PYTHON'
import json
import sys

from prometheus_client.parser import text_fd_to_metric_families

with open(sys.argv[1], encoding="utf-8", newline="\n") as text:
    for family in text_fd_to_metric_families(text):
        assert family.documentation and family.type == "gauge", family
        for sample in family.samples:
            assert sample.name == family.name, sample
            print(sample.name, json.dumps(sample.labels, ensure_ascii=False), sample.value)
PYTHON
}

has() { grep -qxF "$1" "$BATS_TEST_TMPDIR/parsed" || { cat "$BATS_TEST_TMPDIR/parsed"; return 1; }; }

@test "Metrics_DeviceReplies_AreReadByThePrometheusParser" {
  start_simulator
  tool routing set 2 'Stage box' 'Mic 1'
  tool metrics >"$file"
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  has 'networkgrpc_up {"daemon": "network-manager"} 1.0'
  has 'networkgrpc_up {"daemon": "dante-api"} 1.0'
  grep -qE '^networkgrpc_round_trip_seconds \{"daemon": "dante-api"\} [0-9.e-]+$' "$BATS_TEST_TMPDIR/parsed"
  has 'networkgrpc_ptp_clock_state {"state": "disciplined"} 1.0'
  has 'networkgrpc_ptp_clock_state {"state": "none"} 0.0'
  has 'networkgrpc_interface_active {"interface": "lan0", "role": "dante-primary"} 1.0'
  has 'networkgrpc_interface_link_speed_bytes_per_second {"interface": "lan0", "role": "dante-primary"} 125000000.0'
  has 'networkgrpc_rx_channels {} 8.0'
  has 'networkgrpc_rx_channels_subscribed {} 1.0'
  has 'networkgrpc_sample_rate {} 48000.0'
  has 'networkgrpc_latency {} 1000.0'
}

@test "Metrics_UnusualNames_AreEscaped" {
  start_simulator
  tool dante name $'Saal "大"\\ 1\nline\ttab'
  tool hostname set 'back\nslash'
  tool metrics >"$file"
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  # What the format cannot escape is escaped as everywhere.
  grep -qF '"name": "Saal \"大\"\\ 1\nline\\ttab"' "$BATS_TEST_TMPDIR/parsed"
  grep -qF '"hostname": "back\\nslash"' "$BATS_TEST_TMPDIR/parsed"
}

@test "Metrics_DaemonIsAway_ReportsItAndExitsWithZero" {
  start_controlled_simulator
  control stop DAPI
  run -0 --separate-stderr tool metrics
  [ -z "$stderr" ]
  printf '%s\n' "$output" >"$file"
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  has 'networkgrpc_up {"daemon": "network-manager"} 1.0'
  has 'networkgrpc_up {"daemon": "dante-api"} 0.0'
  run -1 grep -E 'dante-api.*[1-9]|networkgrpc_(latency|ptp)' "$BATS_TEST_TMPDIR/parsed"
}

@test "Metrics_OneReadingFails_ReportsTheDaemonAsDown" {
  start_simulator --fault 'GetLatency:status=INTERNAL'
  tool metrics >"$file"
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  has 'networkgrpc_up {"daemon": "dante-api"} 0.0'
}

@test "Metrics_NoDaemon_ExitsWithZero" {
  absent_device
  tool metrics --output "$file"
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/parsed")" -eq 2 ]
}

@test "Output_WhateverTheMask_IsReadableByAll" {
  start_simulator
  for old_mode in none 600; do
    [ "$old_mode" = none ] || chmod "$old_mode" "$file"
    (umask 077 && tool metrics --output "$file")
    [ "$(stat -c %a "$file")" = 644 ]
  done
  parsed "$file" >"$BATS_TEST_TMPDIR/parsed"
  has 'networkgrpc_rx_channels {} 8.0'
  [ "$(find "$BATS_TEST_TMPDIR" -name '.networkgrpc.*')" = "" ]
}

@test "Output_FolderIsMissing_NamesTheFile" {
  absent_device
  run -1 --separate-stderr tool metrics --output "$BATS_TEST_TMPDIR/missing/a.prom"
  [[ $stderr == "networkgrpc: cannot write $BATS_TEST_TMPDIR/missing/a.prom: "* ]]
}

@test "Metrics_Json_IsValidAgainstTheSchema" {
  start_simulator
  tool metrics --json >"$file"
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <"$file"
}
