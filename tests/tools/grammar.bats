#!/usr/bin/env bats
# One grammar: settings by their nouns, older spellings, abbreviations, columns.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

# result ARGUMENT...: output, errors and exit status, without the name of a command.
result() {
  local status=0
  tool "$@" 2>&1 || status=$?
  echo "($status)"
}

@test "OldSpelling_EveryOne_MeansTheNewOne" {
  while IFS='|' read -r old new command; do
    for form in '' --json; do
      for setting in '' ' again'; do # the second time, on a device where all was set
        start_simulator
        [ -z "$setting" ] || tool hostname other >/dev/null
        before=$(eval "result $form $old" && tool hostname && tool ntp)
        stop_devices
        start_simulator
        [ -z "$setting" ] || tool hostname other >/dev/null
        after=$(eval "result $form $new" && tool hostname && tool ntp)
        stop_devices
        diff <(echo "$before") <(echo "$after") || { echo "$old"; return 1; }
        [ -z "$form" ] || [ "$(head -n1 <<<"$after" | jq -r .command)" = "$command" ]
      done
    done
  done <<'SPELLINGS'
hostname get|hostname|hostname
hostname set studio-amp|hostname studio-amp|hostname
hostname set get|hostname -- get|hostname
ntp get|ntp|ntp
ntp set time.example|ntp time.example|ntp
ntp set a.example b.example --reload --yes|ntp a.example b.example --reload --yes|ntp
SPELLINGS
}

@test "OldSpelling_WithoutItsValue_IsAUsageError" {
  start_simulator
  for words in "hostname set" "ntp set" "ntp --reload" "ntp get --reload" "hostname get x" "hostname a b" "hostname from-ampname A b" \
    "ntp get x"; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
  done
  [ "$(tool hostname)" = amplifier ]
}

@test "OldSpelling_Help_DoesNotShowIt" {
  for noun in hostname ntp; do
    run -0 tool "$noun" --help-all
    [[ $output != *"  get"* && $output != *"  set"* ]]
    [[ " $(tool __complete "$noun" '' | cut -f1 | paste -sd' ') " != *" get "* ]]
  done
  [ "$(tool __complete hostname '' | cut -f1)" = from-ampname ]
}

@test "Argument_EqualsTheNameOfACommand_IsAnArgument" {
  while IFS='|' read -r change read expected; do
    start_simulator
    # shellcheck disable=SC2086 # split into words
    tool $change >/dev/null
    # shellcheck disable=SC2086 # split into words
    [ "$(tool $read | paste -sd' ')" = "$expected" ] || { echo "$change"; return 1; }
    stop_devices
  done <<'COMMANDS'
dante name status|dante name|status
hostname dns|hostname|dns
ntp status dns get|ntp|status dns get
ntp set status dns --json|ntp|status dns
hostname --json routing --timeout 5|hostname|routing
channel rename 1 status|channel list --get tx_channels[1].name|status
COMMANDS
}

@test "Abbreviation_OfOneCommand_MeansIt" {
  start_simulator
  while IFS='|' read -r short long; do
    # shellcheck disable=SC2086 # split into words
    diff <(result $short) <(result $long) || { echo "$short"; return 1; }
  done <<'COMMANDS'
rout li|routing list
rout li --grid|routing list --grid
--timeout 5 sta --json|--timeout 5 status --json
int set|interface set
int se --help|interface set --help
help int set|help interface set
help rou|help routing
hostn|hostname
da sam|dante sample-rate
da ptp|dante ptp
--network-manager localhost:1 hostn|--network-manager localhost:1 hostname
COMMANDS
}

@test "Abbreviation_OfSeveralCommands_ListsThem" {
  absent_device
  while IFS='|' read -r words message; do
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
    [ "$stderr" = "networkgrpc: $message; see 'networkgrpc --help'" ] || { echo "$stderr"; return 1; }
  done <<'COMMANDS'
s|'s' is ambiguous: it can mean switch or status
interface l|'l' is ambiguous: it can mean list or label
help interface l|'l' is ambiguous: it can mean list or label
COMMANDS
}

@test "Abbreviation_OfAVerbWhereAnArgumentIsPossible_IsTheArgument" {
  start_simulator
  tool hostname from >/dev/null
  [ "$(tool hostname)" = from ]
}

@test "Complete_AfterAnAbbreviation_OffersWholeNames" {
  absent_device
  [ "$(tool __complete rout cl | cut -f1)" = clear ]
  [ "$(tool __complete rou | cut -f1)" = routing ]
}

# columns: the number of columns of every line, which two or more blanks separate.
columns() { awk -F '  +' 'NF { print NF }' | sort -u | paste -sd' '; }

@test "Tables_EmptyValues_HaveEveryColumn" {
  start_simulator
  tool hostname '' >/dev/null
  tool dante name '' >/dev/null
  while IFS='|' read -r words expected; do
    # shellcheck disable=SC2086 # split into words
    [ "$(tool $words | columns)" = "$expected" ] || { echo "$words"; tool $words; return 1; }
  done <<'COMMANDS'
interface list|10
interface stored lan1|2
switch list|4
channel list|3
routing list|8
dante ptp|2
dante version|2
dante model|2
COMMANDS
  # Headings of parts stand alone; the interfaces have a table of their own.
  [ "$(tool status | columns)" = "1 10 2" ]
}

@test "Grid_FewSources_HasAColumnForEach" {
  start_simulator --rx-channels 3
  tool routing set 1 Box A >/dev/null
  tool routing set 3 Box B >/dev/null
  diff <(tool routing list --grid) - <<'GRID'
RX  NAME  1  2
1   01    x  .
2   02    .  .
3   03    .  x

COLUMN  SOURCE
1       A @ Box
2       B @ Box
GRID
}

@test "Grid_ManySources_FitsEightyColumns" {
  start_simulator --rx-channels 64
  tool routing set all Box '{}' --yes >/dev/null 2>&1
  run -0 tool routing list --grid
  for line in "${lines[@]}"; do [ "${#line}" -le 80 ]; done
  [ "${lines[0]}" = '                   1111111 1112222222222333 3333333444444444 4555555555566666' ]
  [ "${lines[1]}" = 'RX  NAME  1234567890123456 7890123456789012 3456789012345678 9012345678901234' ]
  [ "${lines[20]}" = '19  19    ................ ..x............. ................ ................' ]
  # Each receive channel has one source: every part repeats the names of the rows.
  [ "$(sed '/^COLUMN/,$d' <<<"$output" | grep -c x)" -eq 64 ]
  tool channel rename --receive all 'a long name of channel number {}' --yes >/dev/null 2>&1
  run -0 tool routing list --grid
  for line in "${lines[@]}"; do [ "${#line}" -le 80 ]; done
  [ "$(grep -c '^64 ' <<<"$output")" -eq 3 ] # two parts, and the list of the columns
  [ "$(sed '/^COLUMN/,$d' <<<"$output" | grep -c x)" -eq 64 ]
}
