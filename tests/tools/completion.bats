#!/usr/bin/env bats
# What bash, zsh and fish offer to complete.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

complete() { tool __complete "$@" | cut -f1 | paste -sd' '; }

# is_output STRING COMMAND...: for wait_until. On a busy machine, the device may answer
# after the time limit of a completion, which then offers nothing.
is_output() { [ "$("${@:2}")" = "$1" ]; }

@test "Complete_EmptyWord_OffersEveryNoun" {
  absent_device
  [[ " $(complete '') " == *" interface "*" dante "*" doctor "* ]]
  [ "$(complete rou)" = routing ]
  [ "$(complete interface st)" = stored ]
}

@test "Complete_Option_OffersSpecificAndCommonOptions" {
  absent_device
  [[ " $(complete interface set --) " == *" --control "*" --json "* ]]
}

@test "Complete_NameOrId_OffersThoseOfTheDevice" {
  start_simulator --tx-channels 2
  wait_until is_output "lan0 lan1 lan2 lan3" complete interface stored ''
  wait_until is_output lan3 complete interface set --name lan3
  wait_until is_output "0 1 2" complete switch set ''
  wait_until is_output "1 2" complete channel rename ''
  wait_until is_output $'1\tRedundant' tool __complete switch set 1
  [ "$(complete dante aes67 '')" = "on off" ]
}

@test "Complete_EndpointOnTheCommandLine_UsesIt" {
  start_simulator
  network="$network_manager_url"
  absent_device
  wait_until is_output lan2 complete --network-manager "$network" interface mac lan2
}

@test "Complete_DaemonUnreachable_PrintsNothing" {
  absent_device
  run -0 --separate-stderr tool __complete interface stored ''
  [ -z "$output$stderr" ]
}

@test "Complete_DaemonNeverAnswers_GivesUpSilently" {
  start_mute_device
  # The tool's own limit is a quarter of a second; without it, gRPC's of 20 s would
  # apply, and timeout would exit with 124. 10 s leaves room for a busy machine.
  run -0 --separate-stderr timeout 10 "$TOOL" __complete interface stored ''
  [ -z "$output$stderr" ]
}

@test "Complete_OptionWithItsValue_OffersBothAsOneWord" {
  start_simulator
  wait_until is_output --name=lan3 complete interface set --name=lan3
  network="$network_manager_url"
  absent_device
  wait_until is_output lan2 complete --network-manager="$network" interface mac lan2
}

@test "Complete_Option_OffersItOnce" {
  absent_device
  [ -z "$(tool __complete -- | sort | uniq --repeated)" ]
  [ "$(complete interface list --j)" = --json ]
}

@test "Complete_FileArgument_DelegatesToTheShell" {
  absent_device
  [ "$(tool __complete diff '')" = $'\ta file' ]
  [ "$(tool __complete diff sta)" = $'\ta file' ]
}

@test "Complete_NameWithANewline_DoesNotOfferIt" {
  printf '{"schema": 1, "network": {"interfaces": [{"name": "a\\nb"}, {"name": "lan1"}]}}' \
    >"$BATS_TEST_TMPDIR/state.json"
  start_simulator --state "$BATS_TEST_TMPDIR/state.json"
  wait_until is_output lan1 complete interface stored ''
}

@test "Complete_LabelWithANewline_ReplacesControlCharacters" {
  start_simulator --tx-channels 2
  tool channel rename 1 $'two\nlines\tand a tab'
  wait_until is_output $'1\ttwo\\nlines\\tand a tab\n2\t02' tool __complete channel rename ''
}

# type_into SHELL LINE...: types lines into a shell on a terminal, without user settings,
# with the tool on its path, in a temporary folder.
type_into() {
  local shell="$1"
  shift
  cd "$BATS_TEST_TMPDIR" || return
  printf '%s\n' "$@" 'exit' |
    PATH="$(dirname "$TOOL"):$PATH" TERM=xterm timeout 30 script --quiet --command "$shell" /dev/null
}

# The only sample rate with a 9 proves the completion; the endpoint on the line, unlike
# the one in the environment, proves that the option was used.
typed_line() {
  printf 'networkgrpc --dapi %s dante sample-rate 9\t' "$grpc_dapi_url"
}
# has_completed IN-SHELL: runs the completed line, which sets the rate.
has_completed() {
  "$1" 'export grpc_dapi_url=127.0.0.1:1' "$(typed_line)" >/dev/null
  [ "$(tool dante sample-rate --json | jq .result.sample_rate)" = 96000 ]
}

in_bash() {
  type_into "bash --norc" "source '$SOURCE_TREE/tools/completion/networkgrpc.bash'" "$@"
}

in_zsh() {
  type_into "zsh -f" "fpath=('$SOURCE_TREE/tools/completion' \$fpath)" \
    'autoload -U compinit && compinit -u -D' "$@"
}

# fish has a command that prints the candidates.
in_fish() {
  cd "$BATS_TEST_TMPDIR" || return
  PATH="$(dirname "$TOOL"):$PATH" HOME="$BATS_TEST_TMPDIR" fish --no-config -c "
    source '$SOURCE_TREE/tools/completion/networkgrpc.fish'; complete -C '$1'" | cut -f1 | paste -sd' '
}

@test "Complete_InBash_CompletesWithValuesOfTheDevice" {
  require_terminal
  start_simulator
  # The endpoint is an option because bash splits it at the colon.
  wait_until has_completed in_bash
}

@test "Complete_InZsh_CompletesWithValuesOfTheDevice" {
  require_terminal
  start_simulator
  wait_until has_completed in_zsh
}

@test "Complete_InFish_OffersValuesOfTheDevice" {
  start_simulator
  wait_until is_output "lan0 lan1 lan2 lan3" in_fish 'networkgrpc interface stored '
  wait_until is_output --name=lan3 in_fish 'networkgrpc interface set --name=lan3'
}

@test "Complete_OptionWithItsValueInBash_CompletesTheValue" {
  require_terminal
  start_simulator
  run -0 in_bash $'networkgrpc interface set --name=lan\t3 --ip 10.9.9.9 --netmask 255.0.0.0 --y\t'
  [ "$(tool interface stored lan3 --json | jq -r .result.ip)" = 10.9.9.9 ]
}

@test "Complete_FileArgumentInEveryShell_OffersFiles" {
  require_terminal
  start_simulator
  tool export >"$BATS_TEST_TMPDIR/one-state.json"
  run -0 in_bash $'networkgrpc diff one\t >bash-did'
  [ "$(cat "$BATS_TEST_TMPDIR/bash-did")" = "no difference" ]
  run -0 in_zsh $'networkgrpc diff one\t >zsh-did'
  [ "$(cat "$BATS_TEST_TMPDIR/zsh-did")" = "no difference" ]
  [ "$(in_fish 'networkgrpc diff one')" = one-state.json ]
}

@test "Complete_DaemonUnreachable_NoShellOffersFiles" {
  require_terminal
  absent_device
  touch "$BATS_TEST_TMPDIR/one"
  [ -z "$(in_fish 'networkgrpc interface stored o')" ]
  run -0 in_bash $'networkgrpc interface stored o\t; echo'
  [[ $output != *"stored one"* ]]
  run -0 in_zsh $'networkgrpc interface stored o\t; echo'
  [[ $output != *"stored one"* ]]
}
