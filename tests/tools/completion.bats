#!/usr/bin/env bats
# What the shells offer.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

complete() { tool __complete "$@" | cut -f1 | paste -sd' '; }

# is_output TEXT COMMAND...: for wait_until, where the device is asked: what it does
# not answer in time is not offered, which on a busy machine says nothing.
is_output() { [ "$("${@:2}")" = "$1" ]; }

@test "Complete_NothingYet_OffersEveryNoun" {
  absent_device
  [[ " $(complete '') " == *" interface "*" dante "*" doctor "* ]]
  [ "$(complete ro)" = routing ]
  [ "$(complete interface st)" = stored ]
}

@test "Complete_Option_OffersThoseOfTheCommandAndOfEveryCommand" {
  absent_device
  [[ " $(complete interface set --) " == *" --control "*" --json "* ]]
}

@test "Complete_LiveNames_AreThoseOfTheDevice" {
  start_simulator --tx-channels 2
  wait_until is_output "lan0 lan1 lan2 lan3" complete interface stored ''
  wait_until is_output lan3 complete interface set --name lan3
  wait_until is_output "0 1 2" complete switch set ''
  wait_until is_output "1 2" complete channel rename ''
  wait_until is_output $'1\tRedundant' tool __complete switch set 1
  [ "$(complete dante aes67 '')" = "on off" ]
}

@test "Complete_EndpointOnTheCommandLine_IsAsked" {
  start_simulator
  network="$network_manager_url"
  absent_device
  wait_until is_output lan2 complete --network-manager "$network" interface mac lan2
}

@test "Complete_DaemonAbsent_IsSilent" {
  absent_device
  run -0 --separate-stderr tool __complete interface stored ''
  [ -z "$output$stderr" ]
}

@test "Complete_DaemonNeverAnswers_IsSilentAndQuick" {
  start_mute_device
  # timeout would end it with 124. Without the tool's own limit of a quarter of a
  # second it would be gRPC's of twenty; what is between is for a busy machine.
  run -0 --separate-stderr timeout 10 "$TOOL" __complete interface stored ''
  [ -z "$output$stderr" ]
}

@test "Complete_OptionWithItsValueInOneWord_OffersThatWord" {
  start_simulator
  wait_until is_output --name=lan3 complete interface set --name=lan3
  network="$network_manager_url"
  absent_device
  wait_until is_output lan2 complete --network-manager="$network" interface mac lan2
}

@test "Complete_Option_IsOfferedOnce" {
  absent_device
  [ -z "$(tool __complete -- | sort | uniq --repeated)" ]
  [ "$(complete interface list --j)" = --json ]
}

@test "Complete_FileIsWanted_LeavesItToTheShell" {
  absent_device
  [ "$(tool __complete diff '')" = $'\ta file' ]
  [ "$(tool __complete diff sta)" = $'\ta file' ]
}

@test "Complete_NameThatALineCannotHold_IsNotOffered" {
  printf '{"schema": 1, "network": {"interfaces": [{"name": "a\\nb"}, {"name": "lan1"}]}}' \
    >"$BATS_TEST_TMPDIR/state.json"
  start_simulator --state "$BATS_TEST_TMPDIR/state.json"
  wait_until is_output lan1 complete interface stored ''
}

@test "Complete_DescriptionThatALineCannotHold_SpoilsNoOther" {
  start_simulator --tx-channels 2
  tool channel rename 1 $'two\nlines\tand a tab'
  wait_until is_output $'1\ttwo?lines?and a tab\n2\t02' tool __complete channel rename ''
}

# type_into SHELL LINE...: a shell at a terminal, without its user's settings and
# with the tool on its path, in a folder of its own.
type_into() {
  local shell="$1"
  shift
  cd "$BATS_TEST_TMPDIR" || return
  printf '%s\n' "$@" 'exit' |
    PATH="$(dirname "$TOOL"):$PATH" TERM=xterm timeout 30 script --quiet --command "$shell" /dev/null
}

# The one sample rate with a 9 says that the line was completed; the endpoint,
# that it was asked for where the line says.
typed_line() {
  printf 'networkgrpc --dapi %s dante sample-rate 9\t' "$grpc_dapi_url"
}
# has_completed IN-SHELL: the typed line, completed, has set the rate.
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

# fish tells by itself what it would offer.
in_fish() {
  cd "$BATS_TEST_TMPDIR" || return
  PATH="$(dirname "$TOOL"):$PATH" HOME="$BATS_TEST_TMPDIR" fish --no-config -c "
    source '$SOURCE_TREE/tools/completion/networkgrpc.fish'; complete -C '$1'" | cut -f1 | paste -sd' '
}

@test "Complete_Bash_CompletesWithWhatTheDeviceHas" {
  start_simulator
  # Elsewhere only as an option, whose value bash takes apart.
  wait_until has_completed in_bash
}

@test "Complete_Zsh_CompletesWithWhatTheDeviceHas" {
  start_simulator
  wait_until has_completed in_zsh
}

@test "Complete_Fish_OffersWhatTheDeviceHas" {
  start_simulator
  wait_until is_output "lan0 lan1 lan2 lan3" in_fish 'networkgrpc interface stored '
  wait_until is_output --name=lan3 in_fish 'networkgrpc interface set --name=lan3'
}

@test "Complete_OptionWithItsValueInOneWord_BashCompletesThatWord" {
  start_simulator
  run -0 in_bash $'networkgrpc interface set --name=lan\t3 --ip 10.9.9.9 --netmask 255.0.0.0 --y\t'
  [ "$(tool interface stored lan3 --json | jq -r .result.ip)" = 10.9.9.9 ]
}

@test "Complete_FileIsWanted_EveryShellOffersFiles" {
  start_simulator
  tool export >"$BATS_TEST_TMPDIR/one-state.json"
  run -0 in_bash $'networkgrpc diff one\t >bash-did'
  [ "$(cat "$BATS_TEST_TMPDIR/bash-did")" = "no difference" ]
  run -0 in_zsh $'networkgrpc diff one\t >zsh-did'
  [ "$(cat "$BATS_TEST_TMPDIR/zsh-did")" = "no difference" ]
  [ "$(in_fish 'networkgrpc diff one')" = one-state.json ]
}

@test "Complete_DaemonAbsent_NoShellOffersFilesInstead" {
  absent_device
  touch "$BATS_TEST_TMPDIR/one"
  [ -z "$(in_fish 'networkgrpc interface stored o')" ]
  run -0 in_bash $'networkgrpc interface stored o\t; echo'
  [[ $output != *"stored one"* ]]
  run -0 in_zsh $'networkgrpc interface stored o\t; echo'
  [[ $output != *"stored one"* ]]
}
