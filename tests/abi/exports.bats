#!/usr/bin/env bats
# What the shared object exports, and how it is linked.
#
# Environment: LIBRARY the shared object, PROGRAM one that is linked with it, FUNCTIONS a
# program that lists the table of functions, SOURCE_TREE, NM and READELF of the build.

bats_require_minimum_version 1.5.0

setup_file() {
  export LC_ALL=C
  export MAP="$SOURCE_TREE/abi/libNetworkgRPC.map" RECORD="$SOURCE_TREE/abi/64-bit.abi"
  export MANGLED="$BATS_FILE_TMPDIR/mangled" DEMANGLED="$BATS_FILE_TMPDIR/demangled"
  "$NM" -D --defined-only "$LIBRARY" | awk '{ print $NF }' | sort >"$MANGLED"
  "$NM" -DC --defined-only "$LIBRARY" | sed -E 's/^[0-9a-f]+ . //' | sort >"$DEMANGLED"
}

# The patterns below "global:", one a line.
map_entries() {
  tr '\n' ' ' <"$MAP" | sed -E -e 's:/\*[^*]*\*+([^/*][^*]*\*+)*/::g' \
    -e 's/.*global://; s/local:.*//' | tr ';' '\n' | tr -d ' ' | sed '/^$/d'
}

# unmatched symbols|entries: prints the symbols that no entry of the map matches, or the
# entries that match no symbol.
unmatched() {
  map_entries | awk -v subjects="$1" '
    NR == FNR { pattern = $0; gsub(/\*/, ".*", pattern); entry[$0] = "^" pattern "$"; next }
    {
      hit = 0
      for (e in entry) if ($0 ~ entry[e]) { used[e] = 1; hit = 1 }
      if (!hit && subjects == "symbols") print "no entry for " $0
    }
    END { if (subjects == "entries") for (e in entry) if (!(e in used)) print "no symbol for " e }
  ' - "$MANGLED"
}

# not_generated: the symbols on standard input that are not of the generated packages.
not_generated() { grep -Ev '^_Z(TV|TI|TS)?NK?(8ostrevan|6google)'; }

# Prints "PACKAGE SERVICE RPC" per RPC and "PACKAGE MESSAGE" per message.
schema() {
  awk '
    { gsub(/[;{(]/, " ") }
    $1 == "package" { split($2, parts, "."); package = parts[2] }
    $1 == "message" { print package, $2 }
    $1 == "service" { service = $2 }
    $1 == "rpc" { print package, service, $2 }
  ' "$SOURCE_TREE"/proto/ostrevan/*.proto
}

# missing: prints the lines of standard input that begin no exported symbol.
missing() {
  awk 'NR == FNR { wanted[$0]; next }
       { for (w in wanted) if (index($0, w) == 1) delete wanted[w] }
       END { for (w in wanted) print "not exported: " w }' - "$DEMANGLED"
}

dynamic_section() { "$READELF" -dW "$LIBRARY"; }
needed() { dynamic_section | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'; }

@test "every exported symbol matches an entry of the map" {
  [ "$(wc -l <"$MANGLED")" -gt 1000 ]
  run unmatched symbols
  echo "$output"
  [ "$status" -eq 0 ] && [ -z "$output" ]
}

@test "every entry of the map matches an exported symbol" {
  [ "$(map_entries | wc -l)" -gt 10 ]
  run unmatched entries
  echo "$output"
  [ "$status" -eq 0 ] && [ -z "$output" ]
}

@test "only the public classes, the generated packages and the C functions are exported" {
  run awk '
    { name = $0 }
    sub(/^_Z(GV|TV|TI|TS)?Z?N?K?/, "", name) {
      if (name ~ /^(11NetworkgRPC|9DantegRPC|20NetworkManagerClient|10DAPIClient|8ostrevan)/) next
      if (name ~ /^6google8protobuf5Arena18CreateMaybeMessageIN8ostrevan/) next
    }
    /^(cGetControlInterface|cGetCurrentSwitchMode|setampname)$/ { next }
    { print "internal, but exported: " $0 }
  ' "$MANGLED"
  echo "$output"
  [ "$status" -eq 0 ] && [ -z "$output" ]
}

@test "the facades, the C functions and the clients are exported as recorded" {
  sed -nE 's/^(function|variable) ([^:]+):.*/\2/p' "$RECORD" | not_generated | sort >"$BATS_TEST_TMPDIR/recorded"
  not_generated <"$MANGLED" >"$BATS_TEST_TMPDIR/exported"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/exported")" -gt 90 ]
  diff -u "$BATS_TEST_TMPDIR/recorded" "$BATS_TEST_TMPDIR/exported"
}

@test "the table of functions, which the tests read, has every function of the facades and of C" {
  sed -nE 's/^(NetworkgRPC|DantegRPC)::([A-Za-z0-9]+)\(.*/\2/p; /^[a-z][A-Za-z]+$/p' "$DEMANGLED" |
    sort >"$BATS_TEST_TMPDIR/exported"
  "$FUNCTIONS" --list | sort | diff -u "$BATS_TEST_TMPDIR/exported" -
}

@test "every RPC of the schema has its stub method and its handler" {
  schema | awk 'NF == 3' >"$BATS_TEST_TMPDIR/calls"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/calls")" -gt 40 ]
  run missing < <(awk '{
    service = "ostrevan::" $1 "::" $2
    print service "::Stub::" $3 "(grpc::ClientContext*"
    print service "::Service::" $3 "(grpc::ServerContext*"
    print service "::NewStub("
    print "vtable for " service "::Service"
  }' "$BATS_TEST_TMPDIR/calls")
  echo "$output"
  [ "$status" -eq 0 ] && [ -z "$output" ]
}

@test "every message of the schema has its class" {
  schema | awk 'NF == 2' >"$BATS_TEST_TMPDIR/messages"
  [ "$(wc -l <"$BATS_TEST_TMPDIR/messages")" -gt 25 ]
  run missing < <(awk '{
    message = "ostrevan::" $1 "::" $2
    print message "::" $2 "(" message " const&)"
    print message "::MergeFrom("
    print "vtable for " message
    print "typeinfo for " message
    print message "* google::protobuf::Arena::CreateMaybeMessage<" message ">("
  }' "$BATS_TEST_TMPDIR/messages")
  echo "$output"
  [ "$status" -eq 0 ] && [ -z "$output" ]
}

@test "the library links the variants without TLS and without reflection" {
  needed | grep -q '^libgrpc++_unsecure\.so'
  needed | grep -q '^libprotobuf-lite\.so'
  # Neither do the libraries that those load. The loader lists them: the program's own,
  # if that was compiled for another processor.
  run env LD_TRACE_LOADED_OBJECTS=1 "$PROGRAM"
  [ "$status" -eq 0 ]
  run ! grep -E 'lib(grpc\+\+|grpc|protobuf|ssl|crypto)\.so|not found' <<<"$output"
}

@test "the SONAME is that of the major version" {
  dynamic_section | grep -q '(SONAME).*\[libNetworkgRPC\.so\.1\]$'
}

@test "the library looks for others where the system does" {
  run dynamic_section
  grep -q '(NEEDED)' <<<"$output"
  run ! grep -E '\((RPATH|RUNPATH)\)' <<<"$output"
}
