#!/usr/bin/env bats
# Changes that are undone unless they are confirmed in time: --confirm-within, checkpoint,
# confirm and rollback.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_controlled_simulator
}

teardown() {
  kill_rescuers
  [ -z "${terminal_pid-}" ] || kill -KILL "$terminal_pid" 2>/dev/null || true
  stop_devices
}

# What is stored and what is in effect, network and Dante.
everything() { tool export && tool status --json && tool switch list --json; }
remember() { everything >"$BATS_TEST_TMPDIR/before"; }
is_as_before() { everything | diff "$BATS_TEST_TMPDIR/before" - >/dev/null; }
is_open() { [ "$(tool checkpoint --json | jq -r '.result.checkpoints[0].state')" = open ]; }
is_closed() { [ "$(tool checkpoint)" = "no checkpoint is open" ]; }
is_renamed() { [ "$(tool hostname)" = changed ]; }
is_waiting() { tool checkpoint --json | jq -e '.result.checkpoints[0] | .state == "restoring" and (.problem | contains("cannot be reached"))'; }
is_abandoned() { [ "$(tool checkpoint --json 2>/dev/null | jq -r '.result.checkpoints[0].state')" = abandoned ]; }
# Signalled, a process has its locks until it has run to its end.
abandon() {
  kill -KILL "$(rescuers)"
  wait_until is_abandoned
}

has_ended() { ! kill -0 "$1" 2>/dev/null; }

# Whether what runs on the terminal ends with this status.
ends_with() {
  local status=0
  wait "$terminal_pid" || status=$?
  [ "$status" -eq "$1" ]
}

# Whether the command that runs in the background ends with this status and message.
command_ends_with() {
  local status=0
  wait "$command_pid" || status=$?
  [ "$status" -eq "$1" ] && grep -q "$2" "$BATS_TEST_TMPDIR/errors"
}

# Whether the device has received a call of this method.
is_called() { control calls | grep -q "$1"; }

# The change of most tests, with the question behind it answered by ANSWER.
rename_and_answer() {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until shows "Keep it?"
  type_in "$1"
}

@test "Question_AnsweredYes_KeepsTheChange" {
  rename_and_answer y
  ends_with 0
  is_renamed
  is_closed
}

@test "Question_AnsweredNo_RestoresAndFails" {
  rename_and_answer n
  ends_with 1
  shows "not confirmed: what was before is restored"
  is_as_before
}

@test "Question_NobodyAnswers_RestoresInTime" {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 1
  wait_until shows "Keep it?"
  ends_with 1
  is_as_before
}

@test "Question_TypedBeforeIt_DoesNotCount" {
  remember
  control fault SetHostname:freeze
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until is_called SetHostname
  type_in y
  control clear SetHostname
  wait_until shows "Keep it?"
  type_in n
  ends_with 1
  is_as_before
}

@test "Question_Interrupted_RestoresAtOnce" {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until shows "Keep it?"
  printf '\003' >&"$keys" # Ctrl-C
  ends_with 1
  is_as_before
}

@test "Question_ConfirmedFromElsewhere_EndsWithSuccess" {
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until shows "Keep it?"
  run -0 tool confirm
  ends_with 0
  shows "confirmed from elsewhere"
  is_renamed
}

@test "Question_RolledBackFromElsewhere_EndsWithFailure" {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until shows "Keep it?"
  run -0 tool rollback
  ends_with 1
  shows "rolled back"
  is_as_before
}

@test "Rollback_RescuerIsFaster_IsDone" {
  remember
  tool hostname set changed --confirm-within 60
  # The rescuer restores between the opening of the file and its lock.
  # LeakSanitizer cannot work under strace.
  ASAN_OPTIONS=detect_leaks=0 run -0 strace -f -qq -o /dev/null -e inject=fcntl:delay_enter=500000 "$TOOL" rollback
  is_as_before
}

# roll_back_late CALL FILE: in the background, 2 s late at that system call. Returns when it has
# opened the file.
roll_back_late() {
  ASAN_OPTIONS=detect_leaks=0 strace -f -o "$BATS_TEST_TMPDIR/trace" -e "trace=openat,$1" \
    -e "inject=$1:delay_enter=2000000:when=1" "$TOOL" rollback 2>"$BATS_TEST_TMPDIR/errors" &
  command_pid=$!
  wait_until grep -qs "$2\"" "$BATS_TEST_TMPDIR/trace"
}

@test "Rollback_ConfirmedMeanwhile_SaysThatItIsKept" {
  tool hostname set changed --confirm-within 60
  roll_back_late flock '[.]open'
  run -0 tool confirm
  command_ends_with 1 "^networkgrpc: confirmed meanwhile: the change is kept$"
  is_renamed
}

@test "Confirm_RollbackHasBegun_IsTooLate" {
  remember
  tool hostname set changed --confirm-within 60
  control stop NetworkManager # it is not done before that is back
  roll_back_late rename "$XDG_STATE_HOME/networkgrpc"
  run -1 --separate-stderr tool confirm
  [[ $stderr == "networkgrpc: too late: 'networkgrpc hostname set changed --confirm-within 60' is being undone" ]]
  control start NetworkManager
  wait "$command_pid"
  is_as_before
}

@test "NoTerminal_ChangeIsMade_StaysOpenUntilConfirmed" {
  run -0 --separate-stderr tool hostname set changed --confirm-within 60 --json
  [[ $stderr == "networkgrpc: the change is undone in 60 s unless confirmed: networkgrpc confirm" ]]
  [[ $(jq -r .confirm_by <<<"$output") == 20*Z ]]
  is_open
  tool checkpoint --json | jq -e '.result.checkpoints[0] | .network_manager == env.network_manager_url and .dapi == env.grpc_dapi_url'
  row='^open +[0-9]+ s +20[-0-9]{8}T[:0-9]{8}Z  networkgrpc hostname set changed --confirm-within 60 --json '
  [[ $(tool checkpoint | tail -1) =~ $row\ +$network_manager_url\ +$grpc_dapi_url\ +-$ ]]
  run -0 tool confirm
  is_renamed
  is_closed
  wait_until eval '! rescuers'
}

@test "NoTerminal_NotConfirmed_IsUndone" {
  remember
  tool hostname set changed --confirm-within 3
  wait_until is_as_before
  is_closed
}

@test "EveryCommand_RolledBack_LeavesEverythingAsBefore" {
  # Somebody else's changes are pending, which a reload applies.
  tool interface set --dante-primary --ip 10.1.0.2/16 --gateway 10.1.0.1 --yes
  tool switch set 1 --yes
  tool routing set-raw 2 239.1.1.1 --value2 7 --encoding L16 --session-id 0
  tool export | jq '.network.hostname = "hall" | .dante.name = "Hall" | .dante.routing[0].device = "D"
    | .dante.routing[0].channel = "C" | .network.ntp = ["a", "b"]' >"$BATS_TEST_TMPDIR/import.json"
  remember
  while read -ra words; do
    run -0 --separate-stderr tool "${words[@]}" --confirm-within 60
    ! is_as_before || { echo "changes nothing: ${words[*]}"; return 1; }
    run -0 tool rollback
    is_as_before || { echo "differs after: ${words[*]}"; everything | diff "$BATS_TEST_TMPDIR/before" -; return 1; }
  done <<COMMANDS
interface set --control --ip 10.0.0.60/8 --yes
interface set --control --ip 10.0.0.60/8 --reload --yes
interface set --dante-primary --dynamic --reload --yes
interface set --dante-primary --ip 10.1.0.3/16 --dns 10.1.0.9 --reload --yes
switch set 2 --yes
hostname set changed
hostname from-ampname Changed
ntp set one two --reload --yes
factory-reset --yes
dante name Changed
dante sample-rate 96000
dante latency 5000
dante aes67 on
dante transmit off --yes
dante ptp-slave-only on
dante reboot --yes
channel rename 1 Changed
channel rename --receive 1 Changed
routing set 1 Device Channel
routing set-raw 1 239.1.1.2 --sip 10.0.0.1
routing clear 2
import $BATS_TEST_TMPDIR/import.json --reload --yes
COMMANDS
}

last_changes() { control calls | grep -oE '(Set|Reload)[A-Za-z]+' | tail -2 | tr '\n' ' '; }

@test "NtpServers_RolledBack_AreAlsoInEffectAgain" {
  tool ntp set one --reload --yes --confirm-within 60
  control forget
  tool rollback
  [ "$(last_changes)" = "SetNTPServer ReloadNTPConfig " ]
}

@test "OnlyTheHostName_RolledBack_IsTheOnlyChange" {
  tool hostname set changed --confirm-within 60
  control forget
  tool rollback
  [ "$(last_changes)" = "SetHostname " ]
}

# Daemons do not report the gateway that is in effect.
@test "Gateway_RolledBack_IsAlsoInEffectAgain" {
  local set=(interface set --control --ip 10.0.0.60/8 --reload --yes)
  tool "${set[@]}" --gateway 10.0.0.1
  tool "${set[@]}" --gateway 10.0.0.2 --confirm-within 60
  control forget
  tool rollback
  [ "$(last_changes)" = "SetNetworkConfig ReloadNetworkConfig " ]
}

@test "InexactRestoration_IsSaidBeforeTheChange" {
  tool interface set --control --ip 10.0.0.60/8 --yes
  control fault SetSwitchMode:reject,times=1
  run -4 --separate-stderr tool switch set 1 --yes --confirm-within 60
  diff - <(head -3 <<<"$stderr") <<'LINES'
not restored exactly: of interface 'lan1', which has a change that is not in effect, daemons report neither mode nor DNS servers in effect
not restored exactly: the network may assign other addresses to lan0, lan2, lan3
not restored exactly: whether stored NTP servers are in effect is not reported
LINES
  is_closed
}

@test "TerminalIsLost_SessionIsGone_StaysOpenForAnother" {
  on_terminal "$TOOL" hostname set changed --confirm-within 60
  wait_until shows "Keep it?"
  kill -KILL "$terminal_pid" # hangs up
  is_open
  run -0 tool confirm
  is_renamed
}

@test "ToolAtTheQuestionIsKilled_DeadlineCame_RescuerRestores" {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 3
  wait_until shows "Keep it?"
  kill -KILL "$(pgrep -P "$terminal_pid")"
  wait_until is_as_before
}

@test "RescuerIsKilled_ToolIsThere_ToolRestores" {
  remember
  on_terminal "$TOOL" hostname set changed --confirm-within 2
  wait_until shows "Keep it?"
  kill -KILL "$(rescuers)"
  wait_until is_open # not abandoned: the tool attends to it
  ends_with 1
  shows "what was before is restored"
  is_as_before
}

@test "BothAreKilled_NextCommand_SaysSoAndRollbackWorks" {
  remember
  tool hostname set changed --confirm-within 60
  abandon
  run -0 --separate-stderr tool hostname
  [[ $stderr == "networkgrpc: an abandoned checkpoint of 'networkgrpc hostname set changed --confirm-within 60' is left: 'networkgrpc rollback' restores"* ]]
  run -0 tool rollback
  is_as_before
  run -0 --separate-stderr tool hostname
  [ -z "$stderr" ]
}

@test "AbandonedCheckpoint_Confirmed_IsRemovedAndKeepsTheChange" {
  tool hostname set changed --confirm-within 60
  abandon
  run -0 tool confirm
  is_renamed
  is_closed
}

@test "RescuerIsKilledWhileRestoring_Rollback_GoesOn" {
  remember
  tool dante reboot --yes --confirm-within 60
  tool hostname set changed
  control fault SetHostname:freeze,times=1
  control forget
  tool rollback &
  wait_until is_called SetHostname
  kill -KILL "$(rescuers)"
  wait_until is_as_before
}

# From now on; what would go to the system's log is in the file "log".
use_tool_with_log() {
  TOOL=$TOOL_WITH_LOG
  export SYSTEM_LOG=$BATS_TEST_TMPDIR/log
}
of_the_change="the checkpoint of 'networkgrpc hostname set changed --confirm-within 3'"

@test "DaemonIsAway_DeadlineCame_RestoresWhenItIsBackAndSaysSoInTheLog" {
  remember
  use_tool_with_log
  tool hostname set changed --confirm-within 3
  control stop NetworkManager
  wait_until is_waiting
  control start NetworkManager
  wait_until is_as_before
  wait_until is_closed
  [[ $(head -1 "$SYSTEM_LOG") == "<4>cannot restore $of_the_change yet: "*"cannot be reached"*"; trying again in 1 s" ]]
  wait_until grep -x "<5>$of_the_change is restored" "$SYSTEM_LOG"
}

# A restoration that pauses goes on when its file is touched.
do_not_pause() { touch -c "$XDG_STATE_HOME"/networkgrpc/*.restoring; }

@test "DaemonRejectsTheRestoration_TenTimes_IsAbandonedAndSaysWhy" {
  remember
  use_tool_with_log
  tool hostname set changed --confirm-within 3
  control fault SetHostname:reject
  is_abandoned() {
    do_not_pause
    tool checkpoint --json 2>/dev/null | jq -e '.result.checkpoints[0] |
      .state == "abandoned" and (.problem | contains("rejected SetHostname"))'
  }
  control forget
  wait_until is_abandoned
  wait_until grep -x "<3>$of_the_change is abandoned: see 'networkgrpc checkpoint'" "$SYSTEM_LOG"
  [ "$(control calls | grep -c SetHostname)" = 10 ]
  control clear SetHostname
  run -0 tool rollback
  is_as_before
}

@test "Change_FailsAndCannotBeUndone_IsPartlyDone" {
  tool export | jq '.network.hostname = "changed" | .dante.name = "changed"' >"$BATS_TEST_TMPDIR/import.json"
  control fault SetName:reject,after=1
  control fault SetHostname:reject
  "$TOOL" import "$BATS_TEST_TMPDIR/import.json" --yes --json --confirm-within 60 >"$BATS_TEST_TMPDIR/errors" &
  command_pid=$!
  without_pauses_has_ended() { do_not_pause && has_ended "$1"; }
  wait_until without_pauses_has_ended "$command_pid"
  command_ends_with 4 '; not everything could be restored: '
  jq -e '.result == null and .error.outcome == "partly"' "$BATS_TEST_TMPDIR/errors"
}

@test "FileIsDamaged_EveryCommand_SaysSoAndNothingIsRestored" {
  tool hostname set changed --confirm-within 60
  abandon
  local file
  file=$(echo "$XDG_STATE_HOME"/networkgrpc/*.open)
  printf '{"snapshot":{}}' >"$file"
  run -0 --separate-stderr tool hostname
  [[ $stderr == "networkgrpc: an abandoned checkpoint is left: "* ]]
  for command in confirm rollback; do
    run -1 --separate-stderr tool "$command"
    [[ $stderr == *"the checkpoint $file is damaged; remove it" ]]
  done
  is_renamed
}

@test "List_CheckpointHasEndedMeanwhile_LeavesItOut" {
  tool hostname set changed --confirm-within 600
  local file
  file="$(echo "$XDG_STATE_HOME"/networkgrpc/*.open)"
  ASAN_OPTIONS=detect_leaks=0 run -0 --separate-stderr strace -qq -o /dev/null -P "$file" -e inject=openat:error=ENOENT "$TOOL" checkpoint
  [ "$output" = "no checkpoint is open" ]
}

@test "SecondCheckpoint_SameDevice_IsRefusedAndNamesTheFirst" {
  tool hostname set changed --confirm-within 60
  run -1 --separate-stderr tool dante name Other --confirm-within 60
  [[ $stderr == "networkgrpc: a checkpoint is open for this device, of 'networkgrpc hostname set changed --confirm-within 60' since 20"* ]]
  [ "$(tool dante name)" != Other ]
  run -1 --separate-stderr tool checkpoint --timeout 9 -- true
  tool confirm
}

@test "Checkpoint_CommandSucceeds_WaitsForConfirm" {
  run -0 --separate-stderr tool checkpoint --timeout 60 -- "$TOOL" hostname set changed
  [[ $output == "host name is set to 'changed'" ]]
  is_open
  tool checkpoint --json | jq -e '.result.checkpoints[0].command == env.TOOL + " hostname set changed"'
  tool confirm
  is_renamed
}

@test "Checkpoint_CommandChangesAnything_RollbackRestoresIt" {
  remember
  tool checkpoint --timeout 60 -- bash -c "'$TOOL' hostname set x && '$TOOL' dante name y && '$TOOL' routing set 1 a b &&
    '$TOOL' interface set --control --ip 10.0.0.60/8 --reload --yes"
  run ! is_as_before
  run -0 tool rollback
  is_as_before
}

@test "Checkpoint_CommandFails_RestoresAtOnce" {
  remember
  run -1 --separate-stderr tool checkpoint --timeout 60 -- bash -c "'$TOOL' hostname set changed; exit 7"
  [[ $stderr == *"'bash' ended with status 7; what was before is restored" ]]
  is_as_before
}

@test "Checkpoint_CommandIsKilled_RestoresAtOnce" {
  remember
  run -1 --separate-stderr tool checkpoint --timeout 60 -- bash -c "'$TOOL' hostname set changed; kill -KILL \$\$"
  [[ $stderr == *"'bash' was ended by signal 9; what was before is restored" ]]
  is_as_before
}

@test "Checkpoint_CommandNeverEnds_IsEndedWithWhatItStartedAndUndone" {
  remember
  run -1 --separate-stderr tool checkpoint --timeout 2 -- bash -c "'$TOOL' hostname set changed
    tail -f /dev/null >/dev/null 2>&1 3>&- & echo \$! >'$BATS_TEST_TMPDIR/started'; wait"
  [[ $stderr == *"'bash' was still running at the end of the time; what was before is restored" ]]
  is_as_before
  wait_until has_ended "$(cat "$BATS_TEST_TMPDIR/started")"
}

# run_command TIMEOUT COMMAND: under a checkpoint, in the background.
run_command() {
  "$TOOL" checkpoint --timeout "$1" -- bash -c "$2" 2>"$BATS_TEST_TMPDIR/errors" &
  command_pid=$!
  wait_until is_open
}
# Which is likely on a busy machine.
@test "Checkpoint_RescuerIsDoneFirst_IsNotTakenForAConfirmation" {
  run_command 3 "read -r <>'$BATS_TEST_TMPDIR/input'"
  kill -STOP "$command_pid"
  wait_until is_closed
  kill -CONT "$command_pid"
  command_ends_with 1 "; what was before is restored"
}

@test "Checkpoint_CommandHasEndedInTime_WaitsForTheRestoration" {
  mkfifo "$BATS_TEST_TMPDIR/go"
  run_command 3 "read -r <'$BATS_TEST_TMPDIR/go'"
  kill -STOP "$command_pid"
  echo >"$BATS_TEST_TMPDIR/go"
  has_bash_ended() { pgrep --parent "$command_pid" --runstates Z bash; }
  wait_until has_bash_ended
  control stop NetworkManager
  wait_until is_waiting
  kill -CONT "$command_pid"
  wait_until grep "cannot restore yet: .* cannot be reached.*; trying again" "$BATS_TEST_TMPDIR/errors"
  control start NetworkManager
  command_ends_with 1 "networkgrpc: not confirmed: what was before is restored, but perhaps not"
}

@test "Rollback_CommandIsRunning_EndsIt" {
  run_command 60 "'$TOOL' hostname set changed; read -r <>'$BATS_TEST_TMPDIR/input'"
  run -0 tool rollback
  command_ends_with 1 "'bash' was still running when it was rolled back; what was before is restored"
}

@test "Confirm_CommandIsRunning_LetsItEnd" {
  run_command 6 "read -r -t 7 <>'$BATS_TEST_TMPDIR/input'; '$TOOL' hostname set changed"
  run -0 tool confirm
  command_ends_with 0 "confirmed from elsewhere"
  is_renamed
}

@test "Confirm_CommandFailsAfterwards_TellsBoth" {
  mkfifo "$BATS_TEST_TMPDIR/go"
  run_command 60 "read -r <'$BATS_TEST_TMPDIR/go'; exit 7"
  run -0 tool confirm
  echo >"$BATS_TEST_TMPDIR/go"
  command_ends_with 1 "'bash' ended with status 7; confirmed meanwhile: the change is kept"
}

@test "Confirm_CommandFailsAfterwards_LeavesAnotherCheckpoint" {
  mkfifo "$BATS_TEST_TMPDIR/go"
  run_command 60 "read -r <'$BATS_TEST_TMPDIR/go'; exit 7"
  run -0 tool confirm
  tool hostname set changed --confirm-within 60
  echo >"$BATS_TEST_TMPDIR/go"
  command_ends_with 1 "'bash' ended with status 7; confirmed meanwhile: the change is kept"
  is_open
  is_renamed
}

# It wakes when the next checkpoint has the name of its own.
@test "Confirm_RescuerIsLate_LeavesAnotherCheckpoint" {
  tool hostname set first --confirm-within 3
  late=$(rescuers)
  kill -STOP "$late"
  tool confirm
  tool hostname set changed --confirm-within 60
  kill -CONT "$late"
  wait_until has_ended "$late"
  is_open
  is_renamed
}

@test "Confirm_ChangeThenFailsHalfWay_TellsBoth" {
  control fault ReloadNetworkConfig:freeze
  "$TOOL" interface set --control --ip 10.0.0.60/8 --reload --yes --confirm-within 60 2>"$BATS_TEST_TMPDIR/errors" &
  command_pid=$!
  wait_until is_called ReloadNetworkConfig
  run -0 tool confirm
  control drop NetworkManager
  command_ends_with 6 "outcome unknown: .*; confirmed meanwhile: the change is kept"
}

@test "Confirm_ChangeThenEndsUnknown_IsStillUnknown" {
  control fault SetHostname:freeze
  "$TOOL" hostname set changed --json --confirm-within 60 >"$BATS_TEST_TMPDIR/errors" &
  command_pid=$!
  wait_until is_called SetHostname
  run -0 tool confirm
  control drop NetworkManager
  command_ends_with 6 "confirmed meanwhile: the change is kept"
  [ "$(jq -r .error.outcome "$BATS_TEST_TMPDIR/errors")" = unknown ]
}

@test "Rollback_DuringAChange_IsNotTakenForOneToConfirm" {
  control fault SetHostname:freeze
  "$TOOL" hostname set changed --confirm-within 60 2>"$BATS_TEST_TMPDIR/errors" </dev/null &
  command_pid=$!
  wait_until is_called SetHostname
  run -0 tool rollback
  control clear SetHostname
  command_ends_with 1 "rolled back meanwhile: what was before is restored, but perhaps not"
}

@test "Checkpoint_CommandCannotBeRun_LeavesNone" {
  run -1 --separate-stderr tool checkpoint --timeout 9 -- /nonexistent
  [[ $stderr == *"cannot run '/nonexistent': No such file or directory" ]]
  is_closed
}

@test "Checkpoint_NoTimeout_IsAUsageError" {
  run -2 --separate-stderr tool checkpoint -- true
  [[ $stderr == *"--timeout is required"* ]]
  run -0 tool checkpoint --help
  [[ $output == *" Behind --, with its arguments; without it, list"* ]]
}

@test "ConfirmAndRollback_NoneIsOpen_FailWithNotFound" {
  for command in confirm rollback; do
    run -10 --separate-stderr tool "$command"
    [[ $stderr == "networkgrpc: no checkpoint is open for this device" ]]
  done
}

@test "Change_OutcomeIsUnknown_IsUndone" {
  remember
  control fault SetHostname:freeze,times=1
  run -6 --separate-stderr tool hostname set changed --confirm-within 60 --timeout "$time_limit"
  [[ $stderr == *"outcome unknown"*"; what was before is restored" ]]
  is_as_before
}

@test "Change_IsRejected_LeavesNoCheckpoint" {
  control fault SetHostname:reject
  run -4 --separate-stderr tool hostname set changed --confirm-within 60
  is_closed
}

@test "Change_IsRejected_ReportsACheckpointThatStays" {
  control fault SetHostname:reject
  # LeakSanitizer cannot work under strace.
  ASAN_OPTIONS=detect_leaks=0 run -4 --separate-stderr strace -qq -o /dev/null \
    -e inject=unlink:error=EROFS "$TOOL" hostname set changed --confirm-within 60
  [[ ${stderr_lines[0]} == "networkgrpc: cannot remove the checkpoint $XDG_STATE_HOME/networkgrpc/"*".open: Read-only file system" ]]
  [[ ${stderr_lines[1]} == *"rejected SetHostname" ]]
}

@test "Change_CheckpointCannotBeCreated_IsNotMadeAndLeavesNoFile" {
  local call file message open folder=$XDG_STATE_HOME/networkgrpc
  tool hostname set before --confirm-within 60
  open=$(echo "$folder"/*.open)
  tool confirm
  while read -r call file message; do
    ASAN_OPTIONS=detect_leaks=0 run -1 --separate-stderr strace -qq -o /dev/null -P "$file" \
      -e "inject=$call" "$TOOL" hostname set changed --confirm-within 60
    [ "$stderr" = "networkgrpc: cannot $message the checkpoint $open: Input/output error" ]
    [ "$(tool hostname) $(ls "$folder")" = "before " ]
  done <<TABLE
fsync:error=EIO:when=2 $folder create
renameat2:error=EIO $open create
openat:error=EIO $open open
TABLE
}

@test "Change_RescuerCannotBeStarted_IsNotMade" {
  remember
  ASAN_OPTIONS=detect_leaks=0 run -1 --separate-stderr strace -f --quiet=all -o /dev/null -P /proc/self/exe \
    -e inject=execve:error=EAGAIN "$TOOL" hostname set changed --confirm-within 60
  [ "$stderr" = "networkgrpc: cannot run '/proc/self/exe': Resource temporarily unavailable" ]
  is_as_before
  is_closed
}

@test "CommandThatOnlyShows_ConfirmWithin_OpensNone" {
  run -0 --separate-stderr tool dante name --confirm-within 60
  [ -z "$stderr" ]
  is_closed
}

@test "Folder_CannotBeWritten_ChangesNothing" {
  remember
  XDG_STATE_HOME=/dev/null run -1 --separate-stderr tool hostname set changed --confirm-within 60
  [[ $stderr == *"cannot create the folder of the checkpoint"* ]]
  with_small_files() (trap '' XFSZ && ulimit -f 0 && tool "$@")
  run -1 with_small_files hostname set changed --confirm-within 60
  [[ $output == "networkgrpc: no checkpoint: cannot write $XDG_STATE_HOME/networkgrpc/"*": File too large" ]]
  is_as_before
}

@test "Folder_IsInTheStateOfTheUser_RootHasItInVar" {
  # is_in FOLDER VARIABLE=VALUE...: with these alone, the tool looks for checkpoints there.
  is_in() {
    env -i ASAN_OPTIONS=detect_leaks=0 "${@:2}" "$strace" -qq -o "$BATS_TEST_TMPDIR/trace" -e trace=openat "$TOOL" checkpoint
    grep -F "\"$1/networkgrpc\"" "$BATS_TEST_TMPDIR/trace"
  }
  local strace in_home=$BATS_TEST_TMPDIR/.local/state
  strace=$(command -v strace)
  [ "$(id -u)" -ne 0 ] || in_home=/var/lib
  is_in "$XDG_STATE_HOME" "HOME=$BATS_TEST_TMPDIR" "XDG_STATE_HOME=$XDG_STATE_HOME"
  is_in "$in_home" "HOME=$BATS_TEST_TMPDIR"
  is_in /var/lib "HOME="
}
