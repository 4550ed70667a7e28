#!/bin/sh
# Start a program when both daemons answer: the library resolves its interfaces only once.
#
# usage: wait_for_daemons.sh PROGRAM...
#
# With systemd, order the units instead (packaging/systemd) and let the daemons notify readiness.
set -eu

attempts=60
until networkgrpc hostname --timeout 2 >/dev/null 2>&1 &&
  networkgrpc dante name --timeout 2 >/dev/null 2>&1; do
  attempts=$((attempts - 1))
  [ "$attempts" -gt 0 ] || { echo "the daemons do not answer" >&2; exit 1; }
  sleep 1
done
exec "$@"
