#!/usr/bin/env bats
# dpkg-gensymbols compares the library with its symbols file, as it does in a package build.
#
# Environment: SOURCE_TREE, LIBRARY.

# shellcheck disable=SC2154 # run sets output and status
bats_require_minimum_version 1.5.0

function='DantegRPC::GetLatency(int&)'

setup() {
  cd "$SOURCE_TREE/packaging" || return
  symbols="$BATS_TEST_TMPDIR/symbols"
  cp debian/libnetworkgrpc1.symbols "$symbols"
}

# generate VERSION: with the level of checks of the package build.
generate() {
  local level
  level=$(sed -n 's/.*dh_makeshlibs -- //p' debian/rules)
  dpkg-gensymbols "$level" -plibnetworkgrpc1 -v"$1" -e"$LIBRARY" "-I$symbols" "-O$symbols.new"
}

@test "Symbols_OfTheLibrary_AreThoseOfTheFile" {
  generate 1.0.0
  grep -qxF ' cGetControlInterface@Base 1.0.0~' "$symbols.new"
}

@test "Symbols_FunctionIsLost_Fails" {
  sed -i "s/$function/DantegRPC::GetLost(int\&)/" "$symbols"
  run -1 generate 1.0.0
  [[ $output == *"some symbols or patterns disappeared"*"GetLost"* ]]
}

@test "Symbols_FunctionIsNew_FailsAndHasTheVersionThatAddsIt" {
  sed -i "/$function/d" "$symbols"
  run -2 generate 1.1.0
  [[ $output == *"new symbols appeared"* ]]
  grep -x ' _ZN9DantegRPC10GetLatencyERi@Base 1.1.0' "$symbols.new"
  sed "s/@Base\" 1.0.0~/@Base\" 1.1.0/; /$function/!d" debian/libnetworkgrpc1.symbols >>"$symbols"
  generate 1.1.0
}
