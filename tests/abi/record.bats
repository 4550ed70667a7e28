#!/usr/bin/env bats
# The exported interface compared with its record, and whether the comparison detects
# every kind of change.
#
# Environment: LIBRARY, the shared object with debug information; RECORD, the
# record for its size of addresses; SOURCE_TREE; OBJCOPY.

bats_require_minimum_version 1.5.0

check() { "$SOURCE_TREE/scripts/abi" check --library "$LIBRARY" --record "$1"; }

# earlier SED-SCRIPT: makes the record of an earlier library that differs in this way.
earlier() {
  export EARLIER="$BATS_TEST_TMPDIR/earlier.abi"
  sed -E "$1" "$RECORD" >"$EARLIER"
  run ! cmp "$RECORD" "$EARLIER"
}

# breaks_programs: fails unless the library breaks programs built with that library.
breaks_programs() {
  run -1 check "$EARLIER"
  grep -q "programs built with the earlier library break" <<<"$output"
}

@test "the interface is as recorded" {
  check "$RECORD"
}

@test "a record that became larger breaks programs" {
  earlier 's/^(type NetworkgRPC::InterfaceInfo: )[0-9]+ bytes/\1200 bytes/'
  breaks_programs
  grep -q "NetworkgRPC::InterfaceInfo" <<<"$output"
}

@test "a field that moved breaks programs" {
  earlier 's/^(type DantegRPC::ChannelLink: at )[0-9]+(: .* ip)$/\1108\2/'
  breaks_programs
}

@test "a field of another type breaks programs" {
  earlier 's/^(type DantegRPC::Channel: at 0: )int/\1unsigned int/'
  breaks_programs
}

@test "a new field in unused bytes breaks programs" {
  earlier '/^type NetworkgRPC::InterfaceInfo: .* active$/ d'
  breaks_programs
}

@test "a message of the schema that became larger breaks programs" {
  earlier 's/^(type ostrevan::grpcdapi::LinkInfo: )[0-9]+ bytes/\148 bytes/'
  breaks_programs
}

@test "a removed function breaks programs" {
  earlier 's/_ZN9DantegRPC6RebootEv/_ZN9DantegRPC7RestartEv/'
  breaks_programs
  grep -q "DantegRPC::Restart()" <<<"$output"
}

@test "a result of another type breaks programs" {
  earlier 's/^(function _ZN9DantegRPC6RebootEv: )bool/\1int/'
  breaks_programs
}

@test "a parameter of another type in a C function breaks programs" {
  earlier '/^function cGetCurrentSwitchMode:/ s/int\*/long*/'
  breaks_programs
}

@test "a function that became static breaks programs" {
  earlier '/^function _ZN9DantegRPC6RebootEv:/ s/ static//'
  breaks_programs
}

@test "an enumerator with another number breaks programs" {
  earlier 's/^(enumerator .*::kSessionId: )[0-9]+/\19/'
  breaks_programs
}

@test "a new RPC between the others breaks daemons" {
  earlier 's/^(type .*Service: virtual function )[0-9]+(: .*Service11GetHostname)/\199\2/'
  breaks_programs
  grep -q "Service::GetHostname" <<<"$output"
}

@test "a new RPC after the others breaks daemons" {
  earlier '/Service22GetRoutingForInterface/ d'
  breaks_programs
}

@test "an added function only requires a new record" {
  earlier '/^function setampname:/ d'
  run -1 check "$EARLIER"
  grep -q "the interface has grown" <<<"$output"
}

@test "a library without debug information is rejected" {
  cp "$LIBRARY" "$BATS_TEST_TMPDIR/stripped.so"
  "$OBJCOPY" --strip-debug "$BATS_TEST_TMPDIR/stripped.so"
  LIBRARY="$BATS_TEST_TMPDIR/stripped.so" run -1 check "$RECORD"
  grep -q "has no debug information; build the target networkgrpc_abi" <<<"$output"
}
