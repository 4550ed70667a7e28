# The program from a shell: invalid states, control socket, and the installed
# library.
#
# ctest sets: SIMULATOR, the program; SOURCE_TREE; BUILD_TREE, LIBDIR and DATADIR,
# what is installed and where; CMAKE, CXX and CXXFLAGS, the tools and flags.

bats_require_minimum_version 1.5.0

teardown() {
  if [ -n "${DEVICE_PID:-}" ]; then
    kill -KILL "$DEVICE_PID" 2>/dev/null || true
  fi
}

# start OPTION...: starts the program and waits for its ready line, in READY.
start() {
  local word
  mkfifo "$BATS_TEST_TMPDIR/ready$((++STARTS))"
  # Descriptor 3 belongs to bats, which would wait until it is closed.
  "$SIMULATOR" "$@" >"$BATS_TEST_TMPDIR/ready$STARTS" 3>&- &
  DEVICE_PID=$!
  exec 4<"$BATS_TEST_TMPDIR/ready$STARTS"
  read -r -t 20 word READY <&4
  [ "$word" = ready ]
}

# end: terminates the program; its status is that of the program.
end() {
  kill -TERM "$DEVICE_PID"
  wait "$DEVICE_PID"
  DEVICE_PID=
}

ctl() { timeout 20 "$SIMULATOR" ctl --control "$BATS_TEST_TMPDIR/private/control" "$@"; }

@test "an invalid state is rejected with file, line and reason before anything starts" {
  printf '{"schema": 1,\n"bogus": 2}\n' >"$BATS_TEST_TMPDIR/bad.json"
  run -1 --separate-stderr "$SIMULATOR" --state "$BATS_TEST_TMPDIR/bad.json"
  [ -z "$output" ]
  # shellcheck disable=SC2154 # run sets it
  [ "$stderr" = "networkgrpc-simulator: $BATS_TEST_TMPDIR/bad.json:2: bogus: unknown member" ]
}

@test "without a descriptor for signals, nothing starts" {
  # LeakSanitizer cannot work under strace.
  ASAN_OPTIONS=detect_leaks=0 run -1 strace -f -qq -o /dev/null -e inject=signalfd4:error=EMFILE \
    timeout --signal KILL 20 "$SIMULATOR"
  [ "$output" = "networkgrpc-simulator: cannot watch for signals: Too many open files" ]
}

@test "the control socket is private, adds and clears faults, and is removed at exit" {
  start --control "$BATS_TEST_TMPDIR/private/control"
  [[ "$READY" == *" control=unix:$BATS_TEST_TMPDIR/private/control" ]]
  [ "$(stat -c %a "$BATS_TEST_TMPDIR/private")" = 700 ]
  [ "$(stat -c %a "$BATS_TEST_TMPDIR/private/control")" = 600 ]
  ctl fault GetName:freeze '*:delay=1'
  [ "$(ctl faults)" = $'GetName:freeze\n*:delay=1' ]
  ctl clear '*'
  [ "$(ctl faults)" = GetName:freeze ]
  ctl clear all
  ctl stop DAPI
  [ "$(ctl faults)" = "DAPI.*:stop" ]
  ctl start DAPI
  ctl fault 'GetName:status=INTERNAL,message=down, up'
  [ "$(ctl faults)" = 'GetName:status=INTERNAL,message=down, up' ]
  ctl clear GetName
  ctl drop NetworkManager
  [ -z "$(ctl faults)" ]
  [ -z "$(ctl calls)" ]
  ctl state | jq -e '.schema == 1 and .dante.name == "Amplifier-520001"'
  run -1 ctl stop bogus
  run -1 ctl --device 2 state
  run -1 ctl fault GetBogus:drop
  run -2 ctl
  end
  [ ! -e "$BATS_TEST_TMPDIR/private/control" ]
  run -1 ctl state
  [[ "$output" == *"No such file or directory; start a simulator with --control" ]]
}

# state_of_connection_to PORT: the number that the kernel has for it, on this side.
state_of_connection_to() {
  awk -v port="$(printf ':%04X$' "$1")" '$3 ~ port { print $4 }' /proc/net/tcp
}

@test "dropping the connections of one daemon leaves the other's" {
  start --control "$BATS_TEST_TMPDIR/private/control"
  local network_manager_url grpc_dapi_url
  eval "${READY% control=*}"
  exec 5<>"/dev/tcp/${network_manager_url/://}" 6<>"/dev/tcp/${grpc_dapi_url/://}"
  # The daemons have accepted the connections when their first frames arrive.
  timeout 20 head -c 9 <&5 >"$BATS_TEST_TMPDIR/frame"
  timeout 20 head -c 9 <&6 >"$BATS_TEST_TMPDIR/frame"
  ctl drop NetworkManager
  timeout 20 cat <&5 >"$BATS_TEST_TMPDIR/rest"
  [ "$(state_of_connection_to "${grpc_dapi_url#*:}")" = 01 ] # established
  ctl drop DAPI
  timeout 20 cat <&6 >"$BATS_TEST_TMPDIR/rest"
  exec 5>&- 6>&-
  end
}

@test "a control socket in use is left alone, that of a killed simulator is replaced" {
  start --control "$BATS_TEST_TMPDIR/private/control"
  run -1 timeout 20 "$SIMULATOR" --control "$BATS_TEST_TMPDIR/private/control"
  [[ "$output" == *"another process listens on it"* ]]
  [ "$(ctl state | jq .schema)" = 1 ]
  kill -KILL "$DEVICE_PID"
  wait "$DEVICE_PID" || true
  [ -e "$BATS_TEST_TMPDIR/private/control" ]
  start --control "$BATS_TEST_TMPDIR/private/control"
  [ "$(ctl state | jq .schema)" = 1 ]
  end
}

@test "the automatic control socket is in XDG_RUNTIME_DIR, and both sides find it" {
  export XDG_RUNTIME_DIR="$BATS_TEST_TMPDIR"
  start --control auto
  [[ "$READY" == *" control=unix:$BATS_TEST_TMPDIR/networkgrpc-simulator/control" ]]
  [ "$(timeout 20 "$SIMULATOR" ctl state | jq .schema)" = 1 ]
  end
}

@test "without XDG_RUNTIME_DIR, it is in a private folder that is removed at exit" {
  unset XDG_RUNTIME_DIR
  local folder
  for TMPDIR in "$BATS_TEST_TMPDIR" ''; do
    export TMPDIR
    start --control auto
    [[ "$READY" == *" control=unix:${TMPDIR:-/tmp}/networkgrpc-simulator."??????/control ]]
    folder=${READY##*unix:} folder=${folder%/control}
    [ "$(stat -c %a "$folder")" = 700 ]
    [ "$(control="${READY##*control=}" timeout 20 "$SIMULATOR" ctl state | jq .schema)" = 1 ]
    [ "$(timeout 20 "$SIMULATOR" ctl --control "${READY##*control=}" state | jq .schema)" = 1 ]
    end
    [ ! -e "$folder" ]
  done
  TMPDIR="$BATS_TEST_TMPDIR/absent" run -1 "$SIMULATOR" --control auto
  [[ "$output" == *"control socket: $BATS_TEST_TMPDIR/absent: No such file or directory" ]]
  run -2 "$SIMULATOR" ctl state
  [[ "$output" == *"XDG_RUNTIME_DIR is not set; use the control=unix:PATH of the ready line"* ]]
}

@test "a control socket in a folder that others can enter is rejected" {
  mkdir -m 755 "$BATS_TEST_TMPDIR/open"
  run -1 timeout 20 "$SIMULATOR" --control "$BATS_TEST_TMPDIR/open/control"
  [[ "$output" == *"others have access"* ]]
}

@test "a control socket whose path is too long is rejected" {
  run -1 timeout 20 "$SIMULATOR" --control "$BATS_TEST_TMPDIR/$(printf '%0120d' 0)/control"
  [[ "$output" == *"its path must have 1 to 107 bytes"* ]]
}

@test "the installed library builds the installed example, which passes" {
  local prefix="$BATS_TEST_TMPDIR/installed" project="$BATS_TEST_TMPDIR/project"
  "$CMAKE" --install "$BUILD_TREE" --prefix "$prefix" >/dev/null
  mkdir "$project"
  {
    printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(own LANGUAGES CXX)' \
      "add_executable(my_test \"$prefix/$DATADIR/NetworkgRPC/simulator/simulated_device.cc\")"
    # What the guide tells users to write.
    # shellcheck disable=SC2016 # backticks of Markdown
    sed -n '/^```cmake$/,/^```$/ { /^```/d; p }' "$SOURCE_TREE/docs/simulator.md"
  } >"$project/CMakeLists.txt"
  # shellcheck disable=SC2120 # run passes them
  configure() {
    "$CMAKE" -S "$project" -B "$project/build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_ROOT_PATH="$prefix" \
      -DCMAKE_CXX_COMPILER="$CXX" "$@"
  }
  # shellcheck disable=SC2119 # none here
  configure
  "$CMAKE" --build "$project/build"
  run -0 timeout 60 "$project/build/my_test"
  [[ "$output" == *'DAPI.SetName {"name":"Stage"} SetName:reject,times=1'* ]]

  # Every header that is installed compiles alone.
  local header
  for header in "$prefix"/include/NetworkgRPC/simulator/*.h; do
    "$CXX" -std=c++17 -fsyntax-only -I "$prefix/include/NetworkgRPC" -x c++ "$header"
  done

  # The message names the component that was asked for and what is missing.
  run ! configure --fresh -DPKG_CONFIG_EXECUTABLE=/nonexistent
  [[ "$(tr -s ' \n' ' ' <<<"$output")" == *"component Simulator needs what is not installed: pkg-config "* ]]
  rm "$prefix/$LIBDIR"/cmake/NetworkgRPC/NetworkgRPCSimulatorTargets*
  run ! configure --fresh
  [[ "$(tr -s ' \n' ' ' <<<"$output")" == *"component Simulator needs what is not installed: the simulator, which this NetworkgRPC was built without "* ]]
}
