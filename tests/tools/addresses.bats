#!/usr/bin/env bats
# What is stored, in effect and pending, and which addresses are accepted.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  start_controlled_simulator
}

lan1() { tool interface list --json | jq -c '.result.interfaces[] | select(.name == "lan1") | [.stored.mode, .stored.ip, .in_effect.ip, .pending]'; }

@test "InterfaceSet_WithoutReload_ShowsStoredAndInEffectApart" {
  tool interface set --control --ip 10.0.0.5/24 --yes
  [ "$(lan1)" = '["static","10.0.0.5","192.168.10.57",true]' ]
  [[ "$(tool interface list)" == *$'\n2   lan1  control          eth0     static   10.0.0.5/24     192.168.10.57/24  yes '* ]]
  tool dante reboot --yes
  [ "$(lan1)" = '["static","10.0.0.5","10.0.0.5",false]' ]
}

@test "SwitchSet_NotReloaded_IsPendingInStatusAndList" {
  tool switch set 1 --yes
  [[ "$(tool status)" == *"switch mode  0 Switched; pending: 1 Redundant"* ]]
  [ "$(tool status --json | jq -c '.result.network | [.switch_mode.pending, .ntp.pending]')" = '[true,null]' ]
  [[ "$(tool switch list)" == *"The stored mode is not in effect yet." ]]
}

@test "Addresses_CannotWork_AreUsageErrorsBeforeTheQuestion" {
  while IFS='|' read -r words message; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool interface set --control $words
    [ "$stderr" = "networkgrpc: $message" ] || { echo "$words: $stderr"; return 1; }
  done <<'ADDRESSES'
--ip 10.0.0.2 --netmask 255.0.255.0|'255.0.255.0' is not a netmask such as 255.255.255.0
--ip 10.0.0.2 --netmask 0.0.0.0|'0.0.0.0' is not a netmask such as 255.255.255.0
--ip 10.0.0.256/8|'10.0.0.256' is not an IPv4 address such as 10.0.0.2
--ip 10.0.0.2/33|--ip '10.0.0.2/33': the prefix length must be an integer from 1 to 32
--ip 10.0.0.2/08|--ip '10.0.0.2/08': the prefix length must be an integer from 1 to 32
--ip 10.0.0.2/8 --netmask 255.0.0.0|--ip with a prefix length and --netmask exclude each other
--ip 127.0.0.1/8|'127.0.0.1' is not the address of an interface
--ip 10.0.0.0/24|'10.0.0.0' is the address of the network itself
--ip 10.0.0.255/24|'10.0.0.255' is the broadcast address of its network
--ip 10.0.0.2/24 --gateway 10.0.1.1|gateway '10.0.1.1' is outside the network 10.0.0.0/24
--ip 10.0.0.2/24 --gateway 10.0.0.2|gateway and address are both '10.0.0.2'
--ip 10.0.0.2/24 --dns dns.example|DNS server 'dns.example' is not an IPv4 address
ADDRESSES
  run -1 grep -q Set <(control calls)
}

@test "Addresses_WithPrefixAndSeveralServers_AreStored" {
  tool interface set --name lan3 --ip 10.0.0.5/31 --gateway 10.0.0.4 --dns 10.0.0.4 --dns 10.0.0.6 --yes
  [ "$(tool interface stored lan3 --json | jq -c '.result | [.netmask, .gateway, .dns]')" = \
    '["255.255.255.254","10.0.0.4",["10.0.0.4","10.0.0.6"]]' ]
}

@test "Question_BeforeAReload_NamesWhatElseItApplies" {
  require_terminal
  tool switch set 2 --yes
  tool interface set --name lan0 --ip 10.0.0.9/8 --yes
  run -1 env TERM=dumb script --quiet --return --command \
    "$TOOL interface set --control --dynamic --reload" /dev/null <<<n
  [[ $output == *"interface 'lan1' is in use at 192.168.10.57/24; dynamic will be stored and applied"* ]]
  [[ $output == *"the reload also applies switch mode 2 Separate control, now 0 Switched"* ]]
  [[ $output == *"the reload also applies interface 'lan0' at 10.0.0.9/8, now 169.254.82.1/16"* ]]
}

@test "Commands_ChangeWhatIsInUse_RequireAConfirmation" {
  for words in "switch set 1" "dante transmit off" "dante reboot" "factory-reset" "ntp set t.example --reload" \
    "interface set --control --dynamic" "interface set --name lan3 --dynamic --reload"; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
    [[ $stderr == *"there is no terminal to ask for confirmation: --yes is required" ]] || { echo "$words: $stderr"; return 1; }
  done
  run -1 grep -qE 'Set|Reload|Reset' <(control calls)
}
