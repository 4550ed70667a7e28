#!/usr/bin/env bats
# How failures are told: exit status, outcome, the daemon's own reason, each once.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_controlled_simulator
}

# failure FAULT COMMAND...: the command's error object with that fault, as words; leaves
# the exit status in $status and what a person sees in $told.
failure() {
  control fault "$1"
  run --separate-stderr tool --timeout "$time_limit" "${@:2}"
  told=$stderr
  control clear all
  control fault "$1"
  tool --timeout "$time_limit" --json "${@:2}" 2>/dev/null |
    jq -r '.error | [.code, .name, .outcome, .grpc_status, .daemon_message] | join("|")'
  control clear all
}

@test "Failure_OfEachKind_HasItsExitStatusAndOutcome" {
  while IFS=' ' read -r fault expected; do
    command=(hostname set amp)
    [[ $fault == Set* ]] || command=(hostname get)
    failure "$fault" "${command[@]}" >"$BATS_TEST_TMPDIR/error"
    [ "$(<"$BATS_TEST_TMPDIR/error")" = "$expected" ] || { echo "$fault: $(<"$BATS_TEST_TMPDIR/error")"; return 1; }
    [ "$status" = "${expected%%|*}" ]
    [[ $told == "networkgrpc: "* && $told != *$'\n'* ]] || { echo "$fault: $told"; return 1; }
  done <<'FAULTS'
GetHostname:freeze 3|time-limit|not-done|DEADLINE_EXCEEDED|
GetHostname:drop 8|unreachable|not-done|UNAVAILABLE|
GetHostname:status=UNAVAILABLE,message=starting 5|error-status|not-done|UNAVAILABLE|starting
GetHostname:status=INTERNAL,message=disk 5|error-status|not-done|INTERNAL|disk
SetHostname:reject 4|rejected|not-done||
SetHostname:status=INVALID_ARGUMENT,message=short 5|error-status|not-done|INVALID_ARGUMENT|short
SetHostname:status=INTERNAL,message=disk 5|error-status|unknown|INTERNAL|disk
SetHostname:status=UNAVAILABLE,message=busy 5|error-status|unknown|UNAVAILABLE|busy
SetHostname:freeze 6|unknown|unknown|DEADLINE_EXCEEDED|
SetHostname:drop 6|unknown|unknown|UNAVAILABLE|
FAULTS
}

@test "Failure_DaemonAbsent_SaysThatNothingWasChanged" {
  absent_device
  run -8 --separate-stderr tool hostname set amp
  [[ $stderr == "networkgrpc: cannot set the host name: the network-manager daemon at 127.0.0.1:1 cannot be reached (UNAVAILABLE: "*"; see 'networkgrpc doctor'" ]]
  [ "$(tool hostname set amp --json | jq -r .error.outcome)" = not-done ]
}

@test "Failure_ChangeIsUnknown_SaysSoAndWhatToDo" {
  control fault SetHostname:drop
  run -6 --separate-stderr tool hostname set amp
  [[ $stderr == "networkgrpc: outcome unknown: set the host name: the connection to "*"; read the setting back" ]]
}

@test "TotalTimeout_ManyCalls_EndsTheCommand" {
  control fault 'DAPI.*:delay=300'
  run -3 --separate-stderr tool --timeout 5 --total-timeout 1 export
  [[ $stderr == *"within the time limit" ]]
}

@test "Verbose_Command_ReportsEachCall" {
  run -0 --separate-stderr tool --verbose interface mac lan1
  [ "${#stderr_lines[@]}" -eq 3 ]
  [[ ${stderr_lines[0]} == "GetAvailableInterfaces of the network-manager daemon at "*": OK after "*" ms" ]]
}

@test "Reload_FailsAfterTheStore_IsToldAsStoredNotApplied" {
  while IFS='|' read -r fault expected message; do
    control fault "$fault"
    case $fault in
      ReloadNTP*) command=(ntp set time.example --reload --yes) ;;
      *) command=(interface set --name lan3 --ip 10.0.0.9/8 --reload --yes) ;;
    esac
    run --separate-stderr tool --timeout "$time_limit" "${command[@]}"
    [[ $stderr == *"$message"* ]] || { echo "$fault: $stderr"; return 1; }
    run --separate-stderr tool --timeout "$time_limit" --json "${command[@]}"
    error=$(jq -c '[.error.code, .result.stored, .result.applied, .error.outcome]' <<<"$output")
    [ "$error" = "$expected" ] || { echo "$fault: $error"; return 1; }
    control clear all
  done <<'RELOADS'
ReloadNetworkConfig:reject|[4,true,false,"partly"]|is stored, not applied: cannot reload
ReloadNetworkConfig:status=ABORTED|[5,true,false,"partly"]|is stored, not applied: cannot reload
ReloadNetworkConfig:drop|[6,true,null,"unknown"]|is stored, perhaps applied: outcome unknown
ReloadNTPConfig:reject|[4,true,false,"partly"]|is stored, not applied: cannot reload
ReloadNTPConfig:freeze|[6,true,null,"unknown"]|is stored, perhaps applied: outcome unknown
RELOADS
}

@test "RoleWithoutInterface_AnyCommand_IsNotFound" {
  export control_interface_env=lan9
  run -10 --separate-stderr tool interface control
  run -10 --separate-stderr tool interface set --control --dynamic --yes
  [[ $stderr == "networkgrpc: no interface has the role control; see 'networkgrpc doctor'" ]]
}

@test "DaemonStrings_HaveControlCharacters_NeitherActOnATerminalNorForgeALine" {
  require_terminal
  stop_devices
  # A title, a new line, a mark that turns the direction of writing, C1.
  printf '%s' '{"schema":1,"network":{"interfaces":[{"name":"a\u001b]0;t\u0007\nContinue? y \u202e\u009b1m",
    "lease":{"ip":"10.0.0.2","netmask":"255.0.0.0"}}]}}' >"$BATS_TEST_TMPDIR/hostile.json"
  start_simulator --state "$BATS_TEST_TMPDIR/hostile.json"
  name=$(tool interface list --json | jq -r '.result.interfaces[0].name')
  export name
  tool interface list --json >"$BATS_TEST_TMPDIR/out"
  tool export >>"$BATS_TEST_TMPDIR/out"
  tool status >>"$BATS_TEST_TMPDIR/out"
  # shellcheck disable=SC2016 # expanded by the shell on the terminal
  TERM=dumb script --quiet --return --command "$TOOL"' interface set --name "$name" --dynamic' /dev/null \
    <<<n >"$BATS_TEST_TMPDIR/question" || true
  grep -q 'will be stored' "$BATS_TEST_TMPDIR/question"
  [ "$(grep -c 'Continue?' "$BATS_TEST_TMPDIR/question")" -eq 2 ] # the name, on its line, and the question
  run -1 grep -aP '[\x00-\x08\x0b\x0c\x0e-\x1f\x7f]|\xc2[\x80-\x9f]|\xe2\x80\xae' \
    "$BATS_TEST_TMPDIR/out" "$BATS_TEST_TMPDIR/question"
}

@test "Numbers_NotDecimal_AreUsageErrorsOrDecimal" {
  run -0 tool routing set 08 Box Mic
  [ "$(tool routing list --json | jq -r '.result.routing[7].device')" = Box ]
  for words in "routing set-raw 2 239.0.0.1 --session-id -1" "routing set-raw 2 239.0.0.1 --session-id 99999999999999999999" \
    "routing set 0x1 a b" "routing set 1.0 a b" "switch set one --yes"; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
    [[ $stderr == *"must be an integer from "* || $stderr == *"must be an id, "* ]]
  done
}

@test "Usage_NearMiss_IsNamedWithTheCommandsOwnHelp" {
  while IFS='|' read -r words message; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
    [ "$stderr" = "networkgrpc: $message" ] || { echo "$words: $stderr"; return 1; }
  done <<'USAGE'
interfaec list|unexpected argument 'interfaec'; did you mean 'interface'?; see 'networkgrpc --help'
interface set --dynamc|unexpected argument '--dynamc'; did you mean '--dynamic'?; see 'networkgrpc interface set --help'
interface set --dns|--dns requires a value; see 'networkgrpc interface set --help'
interface set --dynamic=3|--dynamic does not have a value; see 'networkgrpc interface set --help'
interface set --control --name lan1|--control cannot be combined with --name; see 'networkgrpc interface set --help'
dns --timeout 1 --timeout 2|--timeout can be given only once; see 'networkgrpc dns --help'
hostname set|NAME is required; see 'networkgrpc hostname --help'
USAGE
}

@test "Help_AsACommand_IsThatOfTheOption" {
  [ "$(tool help interface set)" = "$(tool interface set --help)" ]
  [ "$(tool help)" = "$(tool --help)" ]
  [ "$(tool -V)" = "$(tool --version)" ]
  run -0 tool --help-all
}

@test "StandardDescriptors_Closed_AreOpenedOnNothing" {
  run -0 bash -c "'$TOOL' hostname set closed <&- >&- 2>&-"
  [ "$(tool hostname get)" = closed ]
}

@test "Interrupted_DuringAChange_SaysThatTheOutcomeIsUnknown" {
  control fault SetHostname:freeze
  env --default-signal=INT "$TOOL" hostname set amp >/dev/null 2>"$BATS_TEST_TMPDIR/told" 3>&- &
  pid=$!
  called() { control calls | grep -q SetHostname; }
  wait_until called
  kill -INT "$pid"
  status=0
  wait "$pid" || status=$?
  [ "$status" -eq 6 ]
  grep -q 'outcome unknown: set the host name: SetHostname was interrupted' "$BATS_TEST_TMPDIR/told"
}

@test "FirstThread_CannotBeStarted_IsReported" {
  # LeakSanitizer cannot work under strace.
  ASAN_OPTIONS=detect_leaks=0 run -1 --separate-stderr strace -o /dev/null -e trace=clone,clone3 -e inject=clone,clone3:error=EAGAIN "$TOOL" hostname set new
  [ "$stderr" = "networkgrpc: cannot start a thread: Resource temporarily unavailable" ]
  [ "$(tool hostname get)" != new ]
}
