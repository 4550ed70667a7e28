# shellcheck shell=bash
# Shared by the tests in which every system call of a program fails once, the program is
# killed at every one, and the machine loses its power there.

# shellcheck disable=SC2154 # set by device.bash

load device.bash

setup() {
  cd "$BATS_TEST_TMPDIR" || return
  open_device_input
}

# Those that can fail for want of space, memory, descriptors or permission.
readonly calls=%file,write,fsync,close,fcntl,flock,fchmod,fchown,socket,connect,sendmsg

# One of so many calls is tried, in turn: 1 tries all.
every=${NETWORKGRPC_EVERY_NTH_CALL:-4}

# for_each_call FOLDER COMMAND...: runs the command once for each of its system calls that
# uses a file in the folder, connects or sends; once that call fails, once the command is
# killed at it, and twice all is, and what was not flushed is lost: names, or contents. The
# function `before` makes the state; `check STATUS` looks at what has become of it.
for_each_call() {
  local folder=$1 call number how status hits=0
  shift
  before
  strace -qq -y -o calls -e "trace=$calls" "$@" >/dev/null 2>&1 </dev/null
  while read -r call number; do
    for how in error=EIO signal=KILL lost=names lost=contents; do
      before
      cp -a "$folder" on_disk 2>/dev/null || mkdir on_disk
      status=0
      run_with "$call" "$number" "$how" "$@" || status=$?
      if [ "$status" -eq 137 ] || grep -q INJECTED trace; then hits=$((hits + 1)); fi
      [[ $how != lost=* ]] || cut_power "$folder" "${how#lost=}"
      rm -rf on_disk
      check "$status" || { echo "$how at $call $number, status $status:"; tail -2 trace; cat stderr; return 1; }
    done
  done < <(awk -F'(' -v folder="$folder" 'NR > 1 { ++count[$1] }
    NR > 1 && (index($0, folder) || $1 ~ /^(connect|sendmsg)$/) { print $1, count[$1] }' calls |
    awk "NR % $every == 0")
  echo "# $hits runs" >&3
  [ "$hits" -gt 5 ]
}

# run_with CALL NUMBER HOW COMMAND...
run_with() {
  local how=${3/lost=*/signal=KILL}
  { # the shell reports what is killed
    strace -qq -y -xx -s 1000000 -o trace -e "trace=$calls" -e "inject=$1:$how:when=$2" "${@:4}" \
      >stdout 2>stderr </dev/null
  } 2>/dev/null
}

# for_each_allocation COMMAND...: runs the command once for each place in its C++ code that
# allocates, and the first allocation there fails; `before` and `check` as above. There are many:
# fewer of them are tried.
for_each_allocation() {
  local place status failures=0
  for ((place = 1; ; place += every ** 3)); do
    before
    rm -f failed
    status=0
    { # the shell reports what is killed; no program blocks SIGALRM
      FAILING_PLACE=$place LD_PRELOAD=$FAIL_ALLOCATION timeout --signal=ALRM 60 "$@" >stdout 2>stderr </dev/null || status=$?
    } 2>/dev/null
    [ -e failed ] || break # it comes to fewer places
    failures=$((failures + 1))
    { [ "$status" -ne 124 ] && check "$status"; } || { echo "place $place, status $status:"; cat stderr; return 1; }
  done
  echo "# $failures runs" >&3
  [ "$failures" -gt 2 ] # of 200 to 500 places, as the compiler inlines
}

# cut_power FOLDER names|contents: leaves in the folder what is on the disk.
cut_power() {
  kill_rescuers
  rm -rf "$1"
  python3 "$SOURCE_TREE/tests/tools/power_cut.py" "$1" on_disk trace "$2"
}

# By a signal: it was killed, or it has aborted, as without memory gRPC does, and all before main.
was_ended() { [ "$1" -eq 137 ] || [ "$1" -eq 134 ]; }
# Unless it was ended, it has said why it failed.
has_said_why() { [ "$1" -eq 0 ] || was_ended "$1" || [ -s stderr ]; }
implies() { [ "$1" -ne 0 ] || "${@:2}"; } # STATUS COMMAND...

has_asked() { grep -q "unless confirmed" stderr; }
is_renamed() { [ "$(tool hostname 2>/dev/null)" = changed ]; }
has_checkpoint() { [ -n "$(find state -name '*.open' -o -name '*.restoring')" ]; }
has_none() { ! has_checkpoint; }
if_there() { has_none || tool "$1" >/dev/null 2>&1; }

# The host name as before, and no checkpoint.
begin_anew() {
  kill_rescuers
  rm -rf state
  mkdir state
  tool hostname set before >/dev/null
}

# A checkpoint whose rescuer is gone.
abandon() {
  begin_anew
  tool hostname set changed --confirm-within 60 >/dev/null 2>&1
  kill_rescuers
}
