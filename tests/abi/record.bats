#!/usr/bin/env bats
# The exported interface compared with its record, and whether the comparison detects
# every kind of change.
#
# ctest gives: LIBRARY, the shared object with debug information; RECORD, the
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
  earlier "/class-decl name='InterfaceInfo'/ s/size-in-bits='[0-9]+'/size-in-bits='1600'/"
  breaks_programs
  grep -q "NetworkgRPC::InterfaceInfo" <<<"$output"
}

@test "a field that moved breaks programs" {
  earlier "/class-decl name='ChannelLink'/,/<\/class-decl>/ s/(layout-offset-in-bits=')(896|640)'/\1864'/"
  breaks_programs
}

@test "a message of the schema that became larger breaks programs" {
  earlier "/class-decl name='LinkInfo'/ s/size-in-bits='[0-9]+'/size-in-bits='384'/"
  breaks_programs
}

@test "a function that went breaks programs" {
  earlier "/elf-symbol/ s/_ZN9DantegRPC6RebootEv/_ZN9DantegRPC7RestartEv/
           s/mangled-name='_ZN9DantegRPC6RebootEv'/mangled-name='_ZN9DantegRPC7RestartEv'/
           s/elf-symbol-id='_ZN9DantegRPC6RebootEv'/elf-symbol-id='_ZN9DantegRPC7RestartEv'/"
  breaks_programs
}

@test "an RPC between the others breaks daemons" {
  earlier "/vtable-offset='/ { N; /7Service11GetHostname/ s/(vtable-offset=')([0-9]+)/\\11\\2/ }"
  breaks_programs
  grep -q "Service::GetHostname" <<<"$output"
}

@test "a function that came asks for a new record only" {
  earlier "/elf-symbol .*'setampname'/ d; /function-decl name='setampname'/,/<\/function-decl>/ d"
  run -1 check "$EARLIER"
  grep -q "the interface has grown" <<<"$output"
}

@test "a library without debug information is refused" {
  cp "$LIBRARY" "$BATS_TEST_TMPDIR/stripped.so"
  "$OBJCOPY" --strip-debug "$BATS_TEST_TMPDIR/stripped.so"
  LIBRARY="$BATS_TEST_TMPDIR/stripped.so" run -1 check "$RECORD"
  grep -q "has no debug information; build the target networkgrpc_abi" <<<"$output"
}
