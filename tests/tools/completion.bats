#!/usr/bin/env bats
# What the shells offer.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

complete() { tool __complete "$@" | cut -f1 | paste -sd' '; }

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
  [ "$(complete interface stored '')" = "lan0 lan1 lan2 lan3" ]
  [ "$(complete interface set --name lan3)" = lan3 ]
  [ "$(complete switch set '')" = "0 1 2" ]
  [ "$(complete channel rename '')" = "1 2" ]
  [ "$(tool __complete switch set 1)" = $'1\tRedundant' ]
  [ "$(complete dante aes67 '')" = "on off" ]
}

@test "Complete_EndpointOnTheCommandLine_IsAsked" {
  start_simulator
  network="$network_manager_url"
  absent_device
  [ "$(complete --network-manager "$network" interface mac lan2)" = lan2 ]
}

@test "Complete_DaemonAbsent_IsSilent" {
  absent_device
  run -0 --separate-stderr tool __complete interface stored ''
  [ -z "$output$stderr" ]
}

@test "Complete_DaemonNeverAnswers_IsSilentAndQuick" {
  start_device "$DAEMONS" mute
  # timeout would end it with 124. It takes 300 ms; the rest is for a busy machine.
  run -0 --separate-stderr timeout 1 "$TOOL" __complete interface stored ''
  [ -z "$output$stderr" ]
}

# A shell without its user's settings, with the tool on its path.
with_tool() { PATH="$(dirname "$TOOL"):$PATH" "$@"; }

@test "Complete_Bash_OffersLiveNames" {
  start_simulator
  run -0 with_tool bash --norc -c "
    source '$SOURCE_TREE/tools/completion/networkgrpc.bash'
    COMP_WORDS=(networkgrpc interface stored lan) COMP_CWORD=3
    _networkgrpc; echo \"\${COMPREPLY[*]}\""
  [ "$output" = "lan0 lan1 lan2 lan3" ]
}

@test "Complete_Fish_OffersLiveNames" {
  command -v fish >/dev/null || skip "fish is not installed"
  start_simulator
  run -0 with_tool env HOME="$BATS_TEST_TMPDIR" fish --no-config -c "
    source '$SOURCE_TREE/tools/completion/networkgrpc.fish'
    complete -C 'networkgrpc interface stored lan1'"
  [[ $output == *lan1* ]]
}

@test "Complete_Zsh_ParsesItsFile" {
  command -v zsh >/dev/null || skip "zsh is not installed"
  run -0 zsh -n "$SOURCE_TREE/tools/completion/_networkgrpc"
}
