#!/usr/bin/env bats
# What configuring this project does, and what becomes of the user's flags.
#
# Environment: SOURCE_TREE; CMAKE, CC and CXX, the tools of the build.

# shellcheck disable=SC2154 # run sets output and status
bats_require_minimum_version 1.5.0

setup() {
  export CMAKE_GENERATOR=Ninja
  # Those of the build that runs this test.
  unset CFLAGS CXXFLAGS LDFLAGS
}

# configure ARGUMENT...: the library alone, unless the arguments say otherwise.
configure() {
  "$CMAKE" -S "$SOURCE_TREE" -B "$BATS_TEST_TMPDIR/build" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
    -DNETWORKGRPC_BUILD_SIMULATOR=OFF -DNETWORKGRPC_BUILD_TOOLS=OFF -DNETWORKGRPC_BUILD_EXAMPLES=OFF \
    -DNETWORKGRPC_BUILD_TESTS=OFF -DNETWORKGRPC_INSTALL=OFF "$@"
}

# compiled PATTERN: the flag that matches it and is in effect, the last one, in the library.
compiled() {
  jq -r '.[] | select(.file | endswith("/client/channel.cc")) | .command' \
    "$BATS_TEST_TMPDIR/build/compile_commands.json" | tr ' ' '\n' | grep -xE -- "$1" | tail -n 1
}

# linked PATTERN: the flags that match it when the library is linked.
linked() {
  grep -A 9 '^build libNetworkgRPC.so[^ ]*: CXX' "$BATS_TEST_TMPDIR/build/build.ninja" |
    sed -n 's/^ *LINK_FLAGS = //p' | tr ' ' '\n' | grep -xE -- "$1"
}

# flags: those in effect that this project has a default for.
flags() {
  printf '%s ' "$(compiled '-O.*')" "$(compiled '-[DU]_FORTIFY_SOURCE.*')" \
    "$(compiled '-f(no-)?stack-protector.*')" "$(compiled '-W(no-)?format(=.*)?')" "$(compiled '-g.*')"
}
readonly DEFAULTS="-Os -D_FORTIFY_SOURCE=3 -fstack-protector-strong -Wformat -g "

@test "Configure_NoFlags_UsesTheDefaultsAndAsksPkgConfigOnce" {
  printf '#!/bin/sh\necho "$*" >>"%s"\nexec pkg-config "$@"\n' "$BATS_TEST_TMPDIR/asked" \
    >"$BATS_TEST_TMPDIR/pkg-config"
  chmod +x "$BATS_TEST_TMPDIR/pkg-config"
  configure -DCMAKE_BUILD_TYPE=Release "-DPKG_CONFIG_EXECUTABLE=$BATS_TEST_TMPDIR/pkg-config"
  [ "$(flags)" = "$DEFAULTS" ]
  [ "$(linked '-Wl,-z,.*|.*strip.*' | paste -sd ' ')" = "-Wl,--strip-debug -Wl,-z,relro -Wl,-z,now" ]
  [ "$(grep -vcx -e --version "$BATS_TEST_TMPDIR/asked")" -eq 1 ]
}

@test "Configure_FlagsForEveryBuildType_Hold" {
  local users="-O2 -D_FORTIFY_SOURCE=2 -fstack-protector-all -Wformat=2 -g1"
  # As Debian's packages do, without flags of a build type.
  CXXFLAGS="$users" LDFLAGS=-Wl,-z,norelro,-z,lazy configure -DCMAKE_BUILD_TYPE=None
  [ "$(flags)" = "$users " ]
  run ! linked '-Wl,-z,(relro|now)'
}

@test "Configure_FlagsOfABuildType_HoldForIt" {
  configure -DCMAKE_BUILD_TYPE=Release \
    "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -g3 -Wp,-D_FORTIFY_SOURCE=2 -fno-stack-protector" \
    "-DCMAKE_CXX_FLAGS_DEBUG=-Wno-format"
  [ "$(flags)" = "-O2  -fno-stack-protector -Wformat -g3 " ]
  run ! linked '.*strip.*'
}

@test "Configure_FlagsOfASurroundingProject_Hold" {
  echo 'add_compile_options(-O2)
    add_compile_definitions(_FORTIFY_SOURCE=2)' >"$BATS_TEST_TMPDIR/surrounding.cmake"
  configure -DCMAKE_BUILD_TYPE=Release "-DCMAKE_PROJECT_INCLUDE=$BATS_TEST_TMPDIR/surrounding.cmake"
  [ "$(flags)" = "-O2 -D_FORTIFY_SOURCE=2 -fstack-protector-strong -Wformat -g " ]
}

@test "Configure_FlagsForCOnly_LeaveTheDefaultsForCxx" {
  CFLAGS="-O2 -D_FORTIFY_SOURCE=2 -fno-stack-protector" configure -DCMAKE_BUILD_TYPE=Release
  [ "$(flags)" = "$DEFAULTS" ]
}

@test "Configure_SeveralBuildTypes_EachHasItsOwnFlags" {
  CMAKE_GENERATOR="Ninja Multi-Config" configure "-DCMAKE_CONFIGURATION_TYPES=Release;Custom" \
    -DCMAKE_CXX_FLAGS_CUSTOM=-O1
  own() { jq -r '.[].command' "$BATS_TEST_TMPDIR/build/compile_commands.json" | grep -e "/$1/client/channel.cc"; }
  own Release | grep -e ' -Os ' | grep -v -e ' -O1 '
  own Custom | grep -e ' -O1 ' | grep -v -e ' -Os '
}

# commands ARGUMENT...: configures a cross build with programs, and prints its commands.
commands() {
  configure -DCMAKE_SYSTEM_NAME=Linux -DNETWORKGRPC_BUILD_TOOLS=ON -DNETWORKGRPC_BUILD_SIMULATOR=ON "$@" &&
    "$CMAKE" --build "$BATS_TEST_TMPDIR/build" -- -t commands all
}

@test "ManualPages_CrossBuildWithoutAnEmulator_AreLeftOut" {
  commands >"$BATS_TEST_TMPDIR/commands"
  grep -F /tools/main.cc "$BATS_TEST_TMPDIR/commands"
  grep -F 'CMAKE_CROSSCOMPILING_EMULATOR is not set: no manual pages' "$BATS_TEST_TMPDIR/commands"
  run ! grep -F make-page "$BATS_TEST_TMPDIR/commands"
}

@test "ManualPages_CrossBuildWithAnEmulator_AreMadeByIt" {
  commands -DCMAKE_CROSSCOMPILING_EMULATOR=/usr/bin/env | grep -F make-page | grep -F ' /usr/bin/env '
}

@test "Programs_SysrootHasThem_AreThoseOfThisMachine" {
  local folder="$BATS_TEST_TMPDIR/root/usr/bin" program
  mkdir -p "$folder"
  for program in pkg-config protoc grpc_cpp_plugin; do cp /bin/false "$folder/$program"; done
  configure -DCMAKE_SYSTEM_NAME=Linux "-DCMAKE_FIND_ROOT_PATH=$BATS_TEST_TMPDIR/root"
  run -1 grep -F "=$folder/" "$BATS_TEST_TMPDIR/build/CMakeCache.txt"
}
