#!/bin/sh
# Subscribe, move and clear a route with the command-line tool, and stop at the first failure.
#
# The exit status says what happened (networkgrpc --help): 4 is a rejected request, 10 an unknown
# channel, 6 a change that may have been made. JSON is for programs: tables may change.
set -eu

networkgrpc routing set 1 'Stage box' 'Mic 1'

# Move: subscribe the new channel first, so that the audio is not lost if that fails.
source=$(networkgrpc routing list --json | jq '.result.routing[] | select(.rx_channel == 1)')
networkgrpc routing set 2 "$(echo "$source" | jq -r .device)" "$(echo "$source" | jq -r .channel)"
networkgrpc routing clear 1

networkgrpc routing list --grid
