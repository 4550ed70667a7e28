#!/usr/bin/env bats
# The installed command-line tool, moved to another folder: it runs, and shells, `man`
# and programs find its files.
#
# Environment: BUILD_TREE, the build to install; BINDIR, DATADIR and MANDIR, its folders
# below the prefix; CMAKE; SOURCE_TREE.

# shellcheck disable=SC2154 # set by device.bash and by run

load ../tools/device.bash

setup_file() {
  export PREFIX="$BATS_FILE_TMPDIR/moved here" # a space, as folders may have
  "$CMAKE" --install "$BUILD_TREE" --prefix "$BATS_FILE_TMPDIR/installed" >/dev/null
  mv "$BATS_FILE_TMPDIR/installed" "$PREFIX"
}

setup() {
  unset LD_LIBRARY_PATH
  export TOOL="$PREFIX/$BINDIR/networkgrpc"
  export SIMULATOR="$PREFIX/$BINDIR/networkgrpc-simulator"
  PATH="$PREFIX/$BINDIR:$PATH"
  open_device_input
}

# Runs a command with the installed data folder in the search path.
with_data() { XDG_DATA_DIRS="$PREFIX/$DATADIR:/usr/share" HOME="$BATS_TEST_TMPDIR" "$@"; }

@test "the installed tool changes a device of the installed simulator" {
  start_simulator
  tool routing set 1 'Stage box' 'Mic 1'
  [ "$(tool routing list --json | jq -r '.result.routing[0].device')" = "Stage box" ]
}

@test "the output of the installed tool conforms to the installed schemas" {
  start_simulator
  for command in status export doctor; do tool "$command" --json; done >"$BATS_TEST_TMPDIR/printed"
  /usr/bin/python3 "$SOURCE_TREE/tests/tools/validate.py" "$PREFIX/$DATADIR/NetworkgRPC/schema" - \
    <"$BATS_TEST_TMPDIR/printed"
}

@test "every command has an installed manual page" {
  for noun in '' $(tool __complete '' | cut -f1); do
    mman -M "$PREFIX/$MANDIR" -w "networkgrpc${noun:+-$noun}"
  done
}

@test "bash finds the installed completion" {
  # shellcheck disable=SC2016 # for the other shell
  run -0 with_data bash --norc -c 'source /usr/share/bash-completion/bash_completion
    _completion_loader networkgrpc; complete -p networkgrpc'
  [ "$output" = "complete -F _networkgrpc networkgrpc" ]
}

@test "zsh finds the installed completion" {
  # shellcheck disable=SC2016 # for the other shell
  run -0 with_data zsh -f -c 'fpath=($1 $fpath)
    autoload -U compinit && compinit -u -d $HOME/dump && print $_comps[networkgrpc]' \
    zsh "$PREFIX/$DATADIR/zsh/vendor-completions"
  [ "$output" = _networkgrpc ]
}

@test "fish finds the installed completion" {
  start_simulator
  offers() { [[ $(with_data fish -c "complete -C 'networkgrpc interface stored lan1'") == lan1* ]]; }
  wait_until offers
}
