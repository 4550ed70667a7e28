#!/bin/sh
# Give the control interface a static address without locking yourself out, with the tool.
#
# usage: static_address.sh ADDRESS/PREFIX SECONDS CHECK...
#
# CHECK is a command that succeeds if the device can be reached at the new address. Unless the change
# is confirmed in time, what was before is restored, also if this script is killed or its connection
# lost. Somebody who logs in at the new address can confirm it, too: `networkgrpc confirm`.
set -eu

address=$1 seconds=$2
shift 2
networkgrpc interface set --control --ip "$address" --reload --yes --confirm-within "$seconds"
if "$@"; then
  networkgrpc confirm
else
  networkgrpc rollback
  exit 1
fi
