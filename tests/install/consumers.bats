#!/usr/bin/env bats
# Programs of other projects, built from the files that `cmake --install` installs and
# run against a daemon that is built the same way.
#
# Environment: BUILD_TREE, SOURCE_TREE and BUILD_TYPE, the build to install; LIBDIR,
# INCLUDEDIR, DATADIR and BINDIR, its folders below the prefix; CMAKE, CMAKE_GENERATOR,
# READELF, CC, CFLAGS, CXX and CXXFLAGS, the tools and flags of that build.

# shellcheck disable=SC2030,SC2031 # run sets output in the shell of each test
bats_require_minimum_version 1.5.0

# Time limits in seconds: of a program, and of the daemon's start.
RUN_LIMIT=60
START_LIMIT=30

setup_file() {
  export LC_ALL=C
  export PREFIX="$BATS_FILE_TMPDIR/moved here" # a space, as folders may have
  "$CMAKE" --install "$BUILD_TREE" --prefix "$BATS_FILE_TMPDIR/installed" >/dev/null
  mv "$BATS_FILE_TMPDIR/installed" "$PREFIX"

  export HEADERS="$PREFIX/$INCLUDEDIR/NetworkgRPC"
  export PKG_CONFIG_PATH="$PREFIX/$LIBDIR/pkgconfig"
  # The library has no search path, so the programs need one.
  export LD_LIBRARY_PATH="$PREFIX/$LIBDIR"

  start_daemon
}

teardown_file() {
  if [ -n "${DAEMON_PID:-}" ]; then
    kill -TERM "$DAEMON_PID"
    wait "$DAEMON_PID"
  fi
}

start_daemon() {
  build CXX CXXFLAGS NetworkgRPC-client "$BATS_FILE_TMPDIR/daemon" \
    -std=c++17 "$BATS_TEST_DIRNAME/daemon/daemon.cc"
  mkfifo "$BATS_FILE_TMPDIR/port"
  # Descriptor 3 is bats' own: held open, it would keep bats waiting.
  "$BATS_FILE_TMPDIR/daemon" >"$BATS_FILE_TMPDIR/port" 3>&- &
  export DAEMON_PID=$!
  local port
  read -r -t "$START_LIMIT" port <"$BATS_FILE_TMPDIR/port"
  export network_manager_url="127.0.0.1:$port" grpc_dapi_url="127.0.0.1:$port"
}

# build COMPILER FLAGS MODULE OUTPUT ARGUMENT...: compiles and links one program with
# the flags of a pkg-config module. COMPILER and FLAGS are names of variables.
build() {
  local compiler="${!1}" flags="${!2}" module="$3" output="$4"
  shift 4
  # pkg-config escapes for a shell, hence eval.
  eval "\"$compiler\" $flags \"\$@\" -o \"\$output\" $(pkg-config --cflags --libs "$module")"
}

# passes PROGRAM ARGUMENT...: the program exits in time with status 0.
passes() {
  timeout "$RUN_LIMIT" "$@"
}

# configure PROJECT ARGUMENT...: configures a CMake project of this folder.
configure() {
  local project="$1"
  shift
  "$CMAKE" -S "$BATS_TEST_DIRNAME/$project" -B "$BATS_TEST_TMPDIR/build" \
    -DCMAKE_PREFIX_PATH="$PREFIX" -DCMAKE_FIND_ROOT_PATH="$PREFIX" "$@"
}

# find_in_project LINE...: configures a project that consists of these lines.
find_in_project() {
  mkdir -p "$BATS_TEST_TMPDIR/project"
  printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(asking LANGUAGES CXX)' "$@" \
    >"$BATS_TEST_TMPDIR/project/CMakeLists.txt"
  "$CMAKE" -S "$BATS_TEST_TMPDIR/project" -B "$BATS_TEST_TMPDIR/project/build" \
    -DCMAKE_PREFIX_PATH="$PREFIX" -DCMAKE_FIND_ROOT_PATH="$PREFIX"
}

# The output of the last `run` on one line, as CMake wraps its messages.
words() { tr -s ' \n' ' ' <<<"$output"; }

@test "all files are installed in their folders" {
  cd "$PREFIX"
  for file in NetworkgRPC.h NetworkgRPC_version.h DantegRPC.h NetworkgRPC_c.h NetworkManagerClient.h DAPIClient.h \
    ostrevan/{common,networkmanager,grpcdapi}.pb.h ostrevan/{networkmanager,grpcdapi}.grpc.pb.h; do
    echo "$INCLUDEDIR/NetworkgRPC/$file"
  done | sort >"$BATS_TEST_TMPDIR/expected"
  find "$INCLUDEDIR" -type f ! -path '*/simulator/*' | sort | diff -u "$BATS_TEST_TMPDIR/expected" -
  for schema in common networkmanager grpcdapi; do
    [ -f "$DATADIR/NetworkgRPC/proto/ostrevan/$schema.proto" ]
  done
  [ "$(readlink "$LIBDIR/libNetworkgRPC.so")" = libNetworkgRPC.so.1 ]
  [[ "$(readlink -f "$LIBDIR/libNetworkgRPC.so.1")" == */libNetworkgRPC.so.1.*.* ]]
}

@test "no installed file contains the path of the build" {
  # A debug build contains them for the debugger.
  local searched=("$PREFIX")
  if [ "$BUILD_TYPE" = Debug ]; then
    searched=("$HEADERS" "$PREFIX/$LIBDIR/cmake" "$PREFIX/$LIBDIR/pkgconfig")
  fi
  run -1 grep -rlF -e "$BUILD_TREE" -e "$SOURCE_TREE" -e "$BATS_FILE_TMPDIR" "${searched[@]}"
}

@test "no compiler flags are exported" {
  run -1 grep -rnE -e '[ ";]-[WOgf]|NDEBUG|FORTIFY' \
    "$PREFIX/$LIBDIR/cmake" "$PREFIX/$LIBDIR/pkgconfig"
}

@test "the installed library has no search path of its own" {
  run -0 "$READELF" -dW "$PREFIX/$LIBDIR/libNetworkgRPC.so"
  grep -q '(SONAME)' <<<"$output"
  run ! grep -E '\((RPATH|RUNPATH)\)' <<<"$output"
}

@test "the installed simulator finds the library beside it" {
  local simulator="$PREFIX/$BINDIR/networkgrpc-simulator"
  [ -x "$simulator" ] || skip "the simulator is not built"
  unset LD_LIBRARY_PATH
  passes "$simulator" --version
}

@test "NetworkgRPC_c.h and NetworkgRPC_version.h are C99 headers that include what they need" {
  for compiler in gcc clang; do
    command -v "$compiler" >/dev/null || continue
    for header in c version; do
      "$compiler" -std=c99 -pedantic -Wall -Wextra -Werror -fsyntax-only -I "$HEADERS" -x c - \
        <<<"#include <NetworkgRPC_$header.h>"
    done
  done
}

@test "the version of the headers is that of the package, as string and as number" {
  cat >"$BATS_TEST_TMPDIR/version.c" <<'PROGRAM'
#include <NetworkgRPC_version.h>
#include <stdio.h>
#if NETWORKGRPC_VERSION_NUMBER < 10000
#error "older than 1.0.0"
#endif
int main(void) {
  printf("%s %d.%d.%d\n", NetworkgRPC_version(), NETWORKGRPC_VERSION_NUMBER / 10000,
         NETWORKGRPC_VERSION_NUMBER / 100 % 100, NETWORKGRPC_VERSION_NUMBER % 100);
  return 0;
}
PROGRAM
  build CC CFLAGS NetworkgRPC "$BATS_TEST_TMPDIR/version" \
    -std=c99 -pedantic -Wall -Wextra -Werror "$BATS_TEST_TMPDIR/version.c"
  version=$(pkg-config --modversion NetworkgRPC)
  [ "$(passes "$BATS_TEST_TMPDIR/version")" = "$version $version" ]
}

@test "a program with a simulated device is built by pkg-config and runs" {
  pkg-config --exists NetworkgRPC-simulator || skip "the simulator is not built"
  build CXX CXXFLAGS NetworkgRPC-simulator "$BATS_TEST_TMPDIR/simulated" \
    -std=c++17 "$SOURCE_TREE/simulator/examples/simulated_device.cc"
  passes "$BATS_TEST_TMPDIR/simulated"
}

@test "the components together install everything but the site, each file once" {
  for component in runtime development tools simulator python cookbook; do
    "$CMAKE" --install "$BUILD_TREE" --prefix "$BATS_TEST_TMPDIR/$component" --component "$component" >/dev/null
    (cd "$BATS_TEST_TMPDIR/$component" 2>/dev/null && find . ! -type d) || [ "$component" = python ]
  done | sort >"$BATS_TEST_TMPDIR/installed"
  (cd "$PREFIX" && find . ! -type d | sort) | diff - "$BATS_TEST_TMPDIR/installed"
  cd "$BATS_TEST_TMPDIR"
  diff <(find runtime ! -type d -printf '%f\n' | sort) <(basename -a "$PREFIX/$LIBDIR"/libNetworkgRPC.so.* | sort)
  [ -z "$(find development -path "*/$BINDIR/*")" ]
}

@test "every public header is a C++17 header that includes what it needs" {
  local flags
  read -r -a flags < <(pkg-config --cflags grpc++_unsecure)
  for header in "$HEADERS"/*.h; do
    printf '#include <%s>\n' "${header##*/}" |
      "$CXX" -std=c++17 -pedantic -Wall -Wextra -Werror -fsyntax-only -I "$HEADERS" "${flags[@]}" -x c++ -
  done
}

@test "the facade and C headers include nothing but the standard library" {
  for header in NetworkgRPC.h NetworkgRPC_version.h DantegRPC.h NetworkgRPC_c.h; do
    printf '#include <%s>\n' "$header" | "$CXX" -std=c++17 -M -I "$HEADERS" -x c++ - >"$BATS_TEST_TMPDIR/files"
    grep -qF "/NetworkgRPC/$header" "$BATS_TEST_TMPDIR/files"
    run ! grep -E '/grpcpp/|/grpc/|protobuf|absl|ostrevan' "$BATS_TEST_TMPDIR/files"
  done
}

@test "a C program is built by pkg-config and runs" {
  build CC CFLAGS NetworkgRPC "$BATS_TEST_TMPDIR/consumer" \
    -std=c99 -pedantic -Wall -Wextra -Werror "$BATS_TEST_DIRNAME/c/consumer.c"
  passes "$BATS_TEST_TMPDIR/consumer"
}

@test "a C++ program on the facades is built by pkg-config and runs" {
  run -0 pkg-config --print-requires --print-requires-private NetworkgRPC
  [ -z "$output" ]
  build CXX CXXFLAGS NetworkgRPC "$BATS_TEST_TMPDIR/consumer" \
    -std=c++17 -pedantic -Wall -Wextra -Werror "$BATS_TEST_DIRNAME/facade/consumer.cc"
  passes "$BATS_TEST_TMPDIR/consumer"
}

@test "a C++ program on the facades is built by CMake without gRPC and pkg-config" {
  configure facade -DPKG_CONFIG_EXECUTABLE=/nonexistent
  "$CMAKE" --build "$BATS_TEST_TMPDIR/build"
  passes "$BATS_TEST_TMPDIR/build/facade_consumer"
}

@test "a C++ program on the clients is built by CMake and runs" {
  configure client
  "$CMAKE" --build "$BATS_TEST_TMPDIR/build"
  passes "$BATS_TEST_TMPDIR/build/client_consumer"
}

@test "asking for the clients without pkg-config names it" {
  run ! configure client -DPKG_CONFIG_EXECUTABLE=/nonexistent
  [[ "$(words)" == *"component Client needs what is not installed: pkg-config "* ]]
}

@test "asking for the clients without gRPC names its modules" {
  unset PKG_CONFIG_PATH
  PKG_CONFIG_LIBDIR=/nonexistent run ! configure client
  [[ "$(words)" == *"component Client needs what is not installed: grpc++_unsecure, protobuf-lite "* ]]
}

@test "find_package without components defines the clients, too, if gRPC is installed" {
  find_in_project 'find_package(NetworkgRPC REQUIRED)' \
    'if(NOT TARGET NetworkgRPC::NetworkgRPC OR NOT TARGET NetworkgRPC::Client)' \
    '  message(FATAL_ERROR "a target is missing")' 'endif()'
}

@test "asking for the facades alone does not look for gRPC" {
  find_in_project 'find_package(NetworkgRPC REQUIRED COMPONENTS NetworkgRPC)' \
    'if(NOT TARGET NetworkgRPC::NetworkgRPC OR TARGET NetworkgRPC::Client)' \
    '  message(FATAL_ERROR "not the facades alone")' 'endif()'
}

# count_pkg_config: CMake's questions to pkg-config are recorded; asked_pkg_config: how many
# there were, except for its version.
count_pkg_config() {
  printf '#!/bin/sh\necho "$*" >>"%s"\nexec pkg-config "$@"\n' "$BATS_TEST_TMPDIR/asked" \
    >"$BATS_TEST_TMPDIR/pkg-config"
  chmod +x "$BATS_TEST_TMPDIR/pkg-config"
  export PKG_CONFIG="$BATS_TEST_TMPDIR/pkg-config"
  touch "$BATS_TEST_TMPDIR/asked"
}
asked_pkg_config() { grep -vcx -e --version "$BATS_TEST_TMPDIR/asked"; }

@test "FindPackage_WithoutComponentsAndTwice_RunsPkgConfigOnce" {
  count_pkg_config
  find_in_project 'find_package(NetworkgRPC REQUIRED)' \
    'find_package(NetworkgRPC REQUIRED COMPONENTS Client)'
  [ "$(asked_pkg_config)" -eq 1 ]
}

@test "FindPackage_SysrootHasPkgConfig_RunsThatOfThisMachine" {
  mkdir -p "$BATS_TEST_TMPDIR/root/usr/bin"
  cp /bin/false "$BATS_TEST_TMPDIR/root/usr/bin/pkg-config"
  find_in_project "list(PREPEND CMAKE_FIND_ROOT_PATH \"$BATS_TEST_TMPDIR/root\")" \
    'find_package(NetworkgRPC REQUIRED COMPONENTS Client)'
}

@test "FindPackage_FacadesOnly_DoesNotRunPkgConfig" {
  count_pkg_config
  find_in_project 'find_package(NetworkgRPC REQUIRED COMPONENTS NetworkgRPC)'
  [ ! -s "$BATS_TEST_TMPDIR/asked" ]
}

@test "asking for what does not exist fails" {
  run ! find_in_project 'find_package(NetworkgRPC REQUIRED COMPONENTS Server)'
  run ! find_in_project 'find_package(NetworkgRPC 2.0 REQUIRED)'
  run ! find_in_project 'find_package(NetworkgRPC 0.9 REQUIRED)'
  find_in_project 'find_package(NetworkgRPC 1.0 REQUIRED)'
}

# link_hidden COMPILER FLAGS OUTPUT ARGUMENT...: links one module that hides its symbols,
# except those that the program looks for. COMPILER and FLAGS name variables.
link_hidden() {
  printf '{ global: ClientsOf*; local: *; };\n' >"$BATS_TEST_TMPDIR/hidden.map"
  build "$1" "$2" NetworkgRPC-client "$BATS_TEST_TMPDIR/$3" -std=c++17 -fPIC \
    "-Wl,--version-script=$BATS_TEST_TMPDIR/hidden.map" "${@:4}"
}

# shares_clients COMPILER FLAGS: a program, a shared object that it is linked with and a
# module that it loads all have the library's own clients.
shares_clients() {
  local module="$BATS_TEST_DIRNAME/one_client/module.cc"
  link_hidden "$1" "$2" liblinked.so -shared -DFUNCTION=ClientsOfLinked "$module"
  link_hidden "$1" "$2" loaded.so -shared -DFUNCTION=ClientsOfLoaded "$module"
  link_hidden "$1" "$2" program -DFUNCTION=ClientsOfProgram "$module" \
    "$BATS_TEST_DIRNAME/one_client/program.cc" -L"$BATS_TEST_TMPDIR" -llinked
  export LD_LIBRARY_PATH="$LD_LIBRARY_PATH:$BATS_TEST_TMPDIR"
  run -0 passes "$BATS_TEST_TMPDIR/program" "$BATS_TEST_TMPDIR/loaded.so"
  diff -u - <(echo "$output") <<<$'exported: yes\nprogram: same\nlinked: same\nloaded: same'
}

@test "Modules_SymbolsAreHidden_ShareTheLibrarysClients" {
  shares_clients CXX CXXFLAGS
  # Clang merges less than GCC does; the developers' packages have it. Its sanitizers are others.
  if command -v clang++ >/dev/null && [[ $CXXFLAGS != *-fsanitize=* ]]; then
    # shellcheck disable=SC2034 # passed by name
    clang=clang++ optimised=-O2
    shares_clients clang optimised
  fi
}

@test "Modules_OptimisedAtLinkTime_ShareTheLibrarysClients" {
  # shellcheck disable=SC2034 # passed by name
  lto="$CXXFLAGS -O2 -flto"
  shares_clients CXX lto
}
