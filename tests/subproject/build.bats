#!/usr/bin/env bats
# The library as part of another project's build.
#
# Environment: SOURCE_TREE; CMAKE, CMAKE_GENERATOR, CC and CXX, the tools of the build.

bats_require_minimum_version 1.5.0

# configure WAY ARGUMENT...: configures the project with no options but the library's
# folder and these.
configure() {
  "$CMAKE" -S "$BATS_TEST_DIRNAME/project" -B "$BATS_TEST_TMPDIR/build" \
    "-DLIBRARY_SOURCE_DIR=$SOURCE_TREE" "-DWAY=$1" "${@:2}"
}

# The targets in the library's folders, as the project lists them.
targets() { sed -n 's/^-- targets: //p' <<<"$output"; }

@test "by add_subdirectory nothing but the library is built" {
  run -0 configure add_subdirectory
  echo "$output"
  [ "$(targets | tr ';' '\n' | grep -cE 'simulator|demo|overview|test|reference|man|bench')" -eq 0 ]
  [[ ";$(targets);" == *";NetworkgRPC;"* ]]
}

@test "by add_subdirectory nothing of the library is installed" {
  configure add_subdirectory
  find "$BATS_TEST_TMPDIR/build/library" -name cmake_install.cmake -exec cat {} + >"$BATS_TEST_TMPDIR/rules"
  [ -s "$BATS_TEST_TMPDIR/rules" ]
  run -1 grep 'file(INSTALL' "$BATS_TEST_TMPDIR/rules"
}

# The project compiles all sources of a target as one unit, which the library's must allow.
@test "by FetchContent programs on the facades and on the clients are built and run" {
  configure FetchContent -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0
  "$CMAKE" --build "$BATS_TEST_TMPDIR/build" --parallel 2
  # No daemon can listen on port 0.
  export network_manager_url=127.0.0.1:0
  "$BATS_TEST_TMPDIR/build/application"
  "$BATS_TEST_TMPDIR/build/client_application"
}
