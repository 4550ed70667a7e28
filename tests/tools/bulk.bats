#!/usr/bin/env bats
# Several channels at once: ranges of ids, names that count, tables.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

# routes: "ID CHANNEL @ DEVICE" of every subscribed receive channel, separated by semicolons.
routes() {
  tool routing list --json | jq -r '.result.routing[] | select(.channel != "")
    | "\(.rx_channel) \(.channel) @ \(.device)"' | paste -sd';'
}
names() { tool channel list --get "$1[].name" | paste -sd';'; }
validate() { /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" -; }

@test "RoutingSet_SeveralChannels_SubscribesEach" {
  while IFS='|' read -r ids device channel expected; do
    start_simulator
    run -0 tool routing set "$ids" "$device" "$channel" --yes
    [ "$(routes)" = "$expected" ] || { echo "$ids $device $channel: $(routes)"; return 1; }
    stop_devices
  done <<'ROUTES'
5-7|Stage box|Mic {1}|5 Mic 1 @ Stage box;6 Mic 2 @ Stage box;7 Mic 3 @ Stage box
5-6|Stage box|Mic {}|5 Mic 5 @ Stage box;6 Mic 6 @ Stage box
1,8,2-3|Box|{9}|1 9 @ Box;2 11 @ Box;3 12 @ Box;8 10 @ Box
8-8|Box {}|{0}|8 0 @ Box 8
1-2|Box {08}|{099}|1 099 @ Box 08;2 100 @ Box 09
1-2|{{}} {}|}}{{{1}}}|1 }{1} @ {} 1;2 }{2} @ {} 2
all|B|{}|1 1 @ B;2 2 @ B;3 3 @ B;4 4 @ B;5 5 @ B;6 6 @ B;7 7 @ B;8 8 @ B
ROUTES
}

@test "RoutingSet_OneChannel_TakesNamesAsTheyAre" {
  start_simulator
  run -0 --separate-stderr tool routing set 3 'Box {}' '{x'
  [ "$output" = "receive channel 3 is subscribed to {x @ Box {}" ]
  run -0 tool channel rename 1 '{1}'
  [ "$output" = "transmit channel 1 is named '{1}'" ]
}

@test "Channels_Wrong_AreNamedBeforeAnythingIsChanged" {
  start_simulator
  while IFS='|' read -r expected words message; do
    eval "run -$expected --separate-stderr tool $words --yes"
    [ "$stderr" = "networkgrpc: $message" ] || { echo "$words: $stderr"; return 1; }
    [ -z "$(routes)" ]
    [ "$(names tx_channels)" = "01;02;03;04" ]
  done <<'COMMANDS'
10|routing clear 0-2|receive channel 0 not found; see 'networkgrpc channel list'
10|routing set 7-9 B C|receive channel 9 not found; see 'networkgrpc channel list'
10|routing clear 1,99|receive channel 99 not found; see 'networkgrpc channel list'
10|channel rename 3-5 'M {}'|transmit channel 5 not found; see 'networkgrpc channel list'
10|routing set 1-2147483647 B C|receive channel 9 not found; see 'networkgrpc channel list'
2|routing set 1-3,2 B C|'1-3,2' has receive channel 2 twice
2|routing set 8-1 B C|RX: '8-1' must be an id, ids and ranges such as 1-8,12, or all; see 'networkgrpc routing set --help'
2|routing set 1, B C|RX: '1,' must be an id, ids and ranges such as 1-8,12, or all; see 'networkgrpc routing set --help'
2|routing clear ''|RX: '' must be an id, ids and ranges such as 1-8,12, or all; see 'networkgrpc routing clear --help'
2|channel rename ALL x|ID: 'ALL' must be an id, ids and ranges such as 1-8,12, or all; see 'networkgrpc channel rename --help'
2|routing clear 99999999999|RX: '99999999999' must be an id, ids and ranges such as 1-8,12, or all; see 'networkgrpc routing clear --help'
2|routing set 1-2 '{x}' C|DEVICE: '{x}' has braces that are not {} for the id, {N} to count from N, {{ or }}
2|routing set 1-2 B 'C}'|CHANNEL: 'C}' has braces that are not {} for the id, {N} to count from N, {{ or }}
2|routing set 1-2 B '{-1}'|CHANNEL: '{-1}' has braces that are not {} for the id, {N} to count from N, {{ or }}
2|routing set 1-2 B ''|CHANNEL must not be empty
2|channel rename 1-2 'C{'|NAME: 'C{' has braces that are not {} for the id, {N} to count from N, {{ or }}
2|channel rename 1|NAME is required; see 'networkgrpc channel rename --help'
2|channel rename|ID is required; see 'networkgrpc channel rename --help'
2|routing import|--csv is required; see 'networkgrpc routing import --help'
COMMANDS
}

@test "Clear_SeveralChannels_RemovesTheirSubscriptions" {
  start_simulator
  tool routing set all Box '{}' --yes >/dev/null 2>&1
  tool routing clear 1-3,5-8 --yes >/dev/null 2>&1
  [ "$(routes)" = "4 4 @ Box" ]
  tool routing set-raw 4,8 239.69.0.1 --session-id 7 --yes >/dev/null 2>&1
  [ "$(tool routing get all --get 'routing[].raw.session_id' | paste -sd' ')" = "7 7" ]
  [ -z "$(routes)" ]
}

@test "ChannelRename_SeveralChannels_RenamesEach" {
  start_simulator
  tool channel rename 2-3 'Main {1}' --yes 2>/dev/null
  tool channel rename --receive all 'In {}' --yes >/dev/null 2>&1
  [ "$(names tx_channels)" = "01;Main 1;Main 2;04" ]
  [ "$(names rx_channels)" = "In 1;In 2;In 3;In 4;In 5;In 6;In 7;In 8" ]
}

@test "SeveralChannels_NoTerminalAndNoYesOption_ChangesNothing" {
  start_simulator
  for words in "routing set 1-2 B C" "routing clear 1-2" "routing set-raw 1-2 239.69.0.1" "channel rename 1-2 X"; do
    tool routing set 1 D E >/dev/null
    # shellcheck disable=SC2086 # split into words
    run -2 --separate-stderr tool $words
    [[ $stderr == "Differences:"*"there is no terminal to ask for confirmation: --yes is required" ]]
    [ "$(routes) $(names tx_channels)" = "1 E @ D 01;02;03;04" ]
  done
}

@test "SeveralChannels_OnATerminal_ShowsThePlanAndAsks" {
  require_terminal
  start_simulator
  log="$BATS_TEST_TMPDIR/log"
  # What is typed before the question does not count.
  answer() { wait_until grep -qs "Continue?" "$log" && echo "$1"; }
  run -1 script --quiet --return --flush --command "$TOOL routing set 1-2 B C" "$log" < <(answer n)
  [[ $output == *'dante.routing[1].device: "" -> "B"'*"Continue?"*"nothing was changed"* ]]
  [ -z "$(routes)" ]
  rm "$log"
  run -0 script --quiet --return --flush --command "$TOOL routing set 1-2 B C" "$log" < <(answer y)
  [[ $output == *"applied      dante.routing[2]"*"the device matches the request"* ]]
  [ "$(routes)" = "1 C @ B;2 C @ B" ]
}

@test "SeveralChannels_OneFails_ReportsEachAndExitsWithItsStatus" {
  while IFS='|' read -r fault expected report; do
    start_simulator --fault SetRxChannelLink:none,delay=1,times=1 --fault "SetRxChannelLink:$fault,times=1"
    run -"$expected" --separate-stderr tool routing set 1-3 B C --yes --timeout "$time_limit"
    # shellcheck disable=SC2053 # a pattern
    [[ $(paste -sd';' <<<"$output") == $report ]] || { echo "$fault: $output"; return 1; }
    stop_devices
  done <<'FAULTS'
reject|4|applied      dante.routing\[1];not applied  dante.routing\[2]: cannot set the subscription of receive channel 2: * rejected SetRxChannelLink;not applied  dante.routing\[3]: not tried
freeze|6|applied      dante.routing\[1];not known    dante.routing\[2]: outcome unknown: set the subscription of receive channel 2: *;not applied  dante.routing\[3]: not tried
FAULTS
}

@test "SeveralChannels_Json_IsValid" {
  start_simulator
  {
    tool routing set 1-3 B '{}' --yes --json
    tool routing set 1-3 B '{}' --yes --json # nothing differs
    tool routing get 1-2 --json
    tool routing get 1 --json
    tool routing clear all --yes --json
    tool channel rename all N --yes --json
    tool routing export --csv - --json
    tool routing import --csv <(tool routing export --csv -) --yes --json
  } 2>/dev/null | validate
}

@test "Csv_OfAnotherDevice_RestoresEverySubscription" {
  start_simulator
  table="$BATS_TEST_TMPDIR/patch.csv"
  tool routing set 1 'a "quoted", name' $'two\nlines' >/dev/null
  tool routing set 2 'Bühne; links' ' 01 ' >/dev/null
  tool routing set-raw 3 239.69.0.1 --value2 1 --value3 2 --value4 3 --value5 4 --value6 4294967295 --encoding L16 \
    --sip 10.0.0.9 --session-id 18446744073709551615 >/dev/null
  tool routing set-raw 4 239.69.0.2 --session-id 0 >/dev/null
  tool routing set-raw 5 239.69.0.2 >/dev/null
  before=$(tool routing list --json)
  run -0 tool routing export --csv "$table"
  [ -z "$output" ]
  cmp "$table" <(tool routing export --csv -)
  stop_devices
  start_simulator
  tool routing set 6 'not in' 'the table' >/dev/null
  run -0 --separate-stderr timeout 30 "$TOOL" routing import --csv - --yes <"$table"
  [[ $output == *$'\nthe device matches the file' ]]
  diff <(jq .result.routing[0:5] <<<"$before") <(tool routing list --json | jq .result.routing[0:5])
  run -0 --separate-stderr tool routing import --csv "$table" --yes
  [ "$output" = "the device matches the file" ]
}

@test "Csv_AsSpreadsheetsWriteIt_IsRead" {
  while IFS='|' read -r table expected; do
    start_simulator
    printf '%b' "$table" >"$BATS_TEST_TMPDIR/patch.csv"
    run -0 tool routing import --csv "$BATS_TEST_TMPDIR/patch.csv" --yes
    [ "$(routes)" = "$expected" ] || { echo "$table: $output"; return 1; }
    stop_devices
  done <<'TABLES'
rx_channel,device,channel\n1,Box,Mic\n|1 Mic @ Box
rx_channel,device,channel\r\n1,Box,Mic\r\n2,"Box, 2","""Mic"""\r\n|1 Mic @ Box;2 "Mic" @ Box, 2
\xef\xbb\xbfrx_channel;device;channel\r\n1;Box, 1;"Mic; 2"\r\n|1 Mic; 2 @ Box, 1
\xef\xbb\xbfsep=;\r\nrx_channel;device;channel\r\n1;B;C|1 C @ B
"channel","device","rx_channel"\nMic,Box,8|8 Mic @ Box
flag5,device,channel,rx_channel\n\nTRUE,Box,Mic,8\n\n0,B,Mic,1\n|1 Mic @ B;8 Mic @ Box
rx_channel,device,channel\n1,,\n|
rx_channel,device,channel\n|
rx_channel,device,channel,ip\n1,,,239.0.0.1\n|
TABLES
}

@test "Csv_Wrong_IsRejectedWithFileAndLine" {
  start_simulator
  tool routing set 1 kept 1 >/dev/null
  while IFS='|' read -r expected table message; do
    printf '%b' "$table" >"$BATS_TEST_TMPDIR/patch.csv"
    cd "$BATS_TEST_TMPDIR"
    run -"$expected" --separate-stderr tool routing import --csv patch.csv --yes
    [[ $stderr == "networkgrpc: patch.csv:$message"* ]] || { echo "$table: $stderr"; return 1; }
    [ "$(routes)" = "1 1 @ kept" ]
  done <<'TABLES'
1|| the header line is missing
1|rx_channel,device\n1,a\n|1: the column 'channel' is missing
1|rx_channel,device,channel,colour\n|1: unknown column 'colour'; there can be rx_channel, device, channel, ip, value2, value3, value4, value5, value6, encoding, sip, session_id, flag5
1|rx_channel,device,channel,device\n|1: duplicate column 'device'
1|rx_channel,device,channel\n1,a\n|2: has 2 fields; the header line has 3
1|rx_channel,device,channel\n1,"a\n\n|2:3: a quote that is not closed
1|rx_channel,device,channel\n1,a"b,c\n|2:4: a quote inside a field without quotes
1|rx_channel,device,channel\n1,"a"b,c\n|2:6: text follows the closing quote of a field
1|rx_channel,device,channel\n1,a,b\rc\n|2:6: a carriage return without a line feed
1|rx_channel,device,channel\n1,"a\nb",c\n2,"x|4:3: a quote that is not closed
1|rx_channel,device,channel\n1,a,\xff\n|2: not valid UTF-8
1|rx_channel,device,channel\n1,a,b\n\none,a,b\n|4: rx_channel: must be an integer from -2147483648 to 2147483647
1|rx_channel,device,channel\n1,"a\nb",b\n1,a,b\n|4: rx_channel
1|rx_channel,device,channel\n1,a,\n|2: needs both device and channel, or neither
1|rx_channel,device,channel,value2\n1,,,7\n|2: a stream needs an ip
1|rx_channel,device,channel,ip,encoding\n1,,,239.0.0.1,L20\n|2: raw.encoding
1|rx_channel,device,channel,ip,session_id\n1,,,239.0.0.1,1.84467E+19\n|2: raw.session_id
1|rx_channel,device,channel,flag5\n1,a,b,WAHR\n|2: flag5
10|rx_channel,device,channel\n2,a,b\n9,a,b\n|3: the device has no channel 9; see 'networkgrpc channel list'
TABLES
}

@test "CsvFile_CannotBeReadOrWritten_IsNamed" {
  start_simulator
  cd "$BATS_TEST_TMPDIR"
  run -1 --separate-stderr tool routing import --csv none.csv --yes
  [ "$stderr" = "networkgrpc: cannot read none.csv: No such file or directory" ]
  run -1 --separate-stderr tool routing export --csv none/patch.csv
  [[ $stderr == "networkgrpc: cannot write none/patch.csv: "*"No such file or directory" ]]
  run -1 --separate-stderr tool routing import --csv . --yes
  [ "$stderr" = "networkgrpc: cannot read .: Is a directory" ]
}

@test "ChannelRename_FromFile_RenamesBothDirections" {
  start_simulator
  cd "$BATS_TEST_TMPDIR"
  printf 'name;direction;id\r\nMain left;transmit;1\r\nStage;receive;2\r\n"Main; right";transmit;2\r\n' >names.csv
  run -0 --separate-stderr tool channel rename --from names.csv --yes
  [ "$(names tx_channels)" = "Main left;Main; right;03;04" ]
  [ "$(tool channel list --get 'rx_channels[2].name')" = Stage ]
  while IFS='|' read -r expected table message; do
    printf '%b' "$table" >names.csv
    run -"$expected" --separate-stderr tool channel rename --from names.csv --yes
    [[ $stderr == "networkgrpc: names.csv:"$message* ]] || { echo "$table: $stderr"; return 1; }
  done <<'TABLES'
1|direction,id,name\ntx,1,X\n|2: direction: 'tx' must be transmit or receive
1|direction,id,name\ntransmit,1,\n|2: name must not be empty
1|direction,id,name\ntransmit,1,a\nreceive,1,b\ntransmit,1,c\n|4:
1|id,name\n1,a\n|1: the column 'direction' is missing
10|direction,id,name\ntransmit,1,a\nreceive,9,b\n|3: the device has no channel 9; see 'networkgrpc channel list'
TABLES
  [ "$(tool channel list --get 'tx_channels[1].name')" = "Main left" ]
  run -2 tool channel rename --from names.csv 1 x --yes
  run -2 tool channel rename --from names.csv --receive --yes
}

@test "Progress_ManyChannelsOnATerminal_IsShown" {
  require_terminal
  start_simulator --rx-channels 16
  run -0 script --quiet --return --command "$TOOL routing set all Box '{}' --yes" /dev/null
  [[ $output == *"setting ["*"] 16 of 16"* ]]
}
