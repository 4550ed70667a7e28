#!/bin/sh
# Give the control interface a static address without locking yourself out, with the tool.
#
# usage: static_address.sh ADDRESS/PREFIX SECONDS     keeps the address if "y" is read in time
#
# Otherwise exactly what was stored before is restored, also if the terminal is lost because its
# connection used the old address, or if the tool is killed. If the change interrupts the connection
# that you would answer through, pipe the answer of a check of the new address instead.
set -eu

exec networkgrpc interface set --control --ip "$1" --reload --confirm-within "$2"
