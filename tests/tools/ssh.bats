#!/usr/bin/env bats
# --host: the daemons of another host, through the system's ssh and a real sshd. Each
# connection has an sshd of its own, on its standard input and output: no port is needed.

# shellcheck disable=SC2154 # set by device.bash and by run

load device.bash

setup() {
  open_device_input
  home="$BATS_TEST_TMPDIR/ssh"
  mkdir -m 700 "$home" "$home/run"
  export XDG_RUNTIME_DIR="$home/run"
  [ "$(id -u)" -ne 0 ] || mkdir -p /run/sshd # what sshd requires of root
  ssh-keygen -q -t ed25519 -N '' -f "$home/host_key"
  ssh-keygen -q -t ed25519 -N '' -f "$home/key"
  printf 'device %s\n' "$(<"$home/host_key.pub")" >"$home/known_hosts"
  cat >"$home/sshd_config" <<END
HostKey $home/host_key
AuthorizedKeysFile $home/key.pub
StrictModes no
UsePAM no
PermitRootLogin yes
PasswordAuthentication no
END
  cat >"$home/config" <<END
Host device
  User $(id -un)
  HostKeyAlias device
  ProxyCommand /usr/sbin/sshd -i -f $home/sshd_config -E $home/log
Host silent
  ProxyCommand false
Host *
  IdentityFile $home/key
  IdentitiesOnly yes
  UserKnownHostsFile $home/known_hosts
  StrictHostKeyChecking yes
END
  mkdir "$home/bin"
  printf '#!/bin/sh\nexec /usr/bin/ssh -F "%s" "$@"\n' "$home/config" >"$home/bin/ssh"
  chmod +x "$home/bin/ssh"
  PATH="$home/bin:$PATH"
}

# there COMMAND...: on the device behind ssh; here, nothing listens.
there() { tool --host device --network-manager "$nm" --dapi "$dapi" "$@"; }

start_device_there() {
  start_controlled_simulator "$@"
  nm=$network_manager_url dapi=$grpc_dapi_url
  absent_device
}

# start_there COMMAND...: in the background as $process, with its ssh as $ssh, until the
# device has received a call with a fault.
start_there() {
  control forget
  # Without env, the shell would let it ignore SIGINT, as all that it starts with "&".
  env --default-signal=INT "$TOOL" --host device --network-manager "$nm" --dapi "$dapi" "$@" \
    >"$home/output" 2>"$home/errors" </dev/null 3>&- &
  process=$!
  is_faulty() { [ -n "$(control calls | jq 'select(.fault != "")')" ]; }
  wait_until is_faulty
  ssh=$(pgrep -P "$process" -x ssh)
}

has_ended() { ! kill -0 "$1" 2>/dev/null; }
nothing_is_left() { [ "$(ls -A "$home/run")" = '' ]; }

@test "Host_DeviceIsThere_RunsTheCommand" {
  start_device_there
  run -0 there hostname set hall
  run -0 there hostname get --json
  [ "$(jq -r '.device + " " + .result.hostname' <<<"$output")" = "device hall" ]
  /usr/bin/python3 "$BATS_TEST_DIRNAME/validate.py" "$SOURCE_TREE/tools/schema" - <<<"$output"
  run -0 there status
  nothing_is_left
}

@test "On_DeviceHasAHost_GoesThroughSsh" {
  start_device_there
  export NETWORKGRPC_DEVICES="$home/devices.toml"
  printf '[devices.%s]\nhost = "%s"\nnetwork_manager = "%s"\ndapi = "%s"\n' \
    hall device "$nm" "$dapi" foyer silent "$nm" "$dapi" >"$NETWORKGRPC_DEVICES"
  run -0 tool --on hall hostname get
  [ "$output" = amplifier ]
  run -8 --separate-stderr tool --on hall,foyer hostname get
  [[ $output == *$'hall:\namplifier'* && $output == *foyer:* ]]
  nothing_is_left
}

@test "Host_CannotBeReached_ReportsTheStatusOfSsh" {
  run -8 --separate-stderr tool --host silent status
  [[ $stderr == *"networkgrpc: cannot connect to 'silent': ssh ended with status 255; try 'ssh silent'" ]]
  nothing_is_left
}

@test "Host_KeyOfTheHostIsUnknown_Fails" {
  start_device_there
  : >"$home/known_hosts"
  run -8 --separate-stderr there status
  [[ $stderr == *"verification failed"*"ssh ended with status 255"* ]]
}

@test "Host_NoDaemonThere_NamesEndpointAndHost" {
  nm=127.0.0.1:1 dapi=127.0.0.1:1
  run -8 --separate-stderr there hostname get
  [[ $stderr == *"the network-manager daemon at 127.0.0.1:1 on device cannot be reached"* ]]
  run -8 there hostname set hall
  nothing_is_left
}

@test "Host_SshIsNotInstalled_SaysSo" {
  run -8 --separate-stderr env PATH="$home" "$TOOL" --host device status
  [[ $stderr == *"could not be started (status 127)"* ]]
}

@test "Host_LooksLikeAnOption_Rejects" {
  run -2 --separate-stderr tool "--host=-oProxyCommand=touch $home/hacked" status
  [ ! -e "$home/hacked" ]
  run -2 tool --host= status
  run -2 tool --host device --dapi nowhere status
}

@test "Host_Checkpoint_Rejects" {
  run -2 --separate-stderr tool --host device hostname set hall --confirm-within 5
  [[ $stderr == "networkgrpc: no checkpoint through ssh: "* ]]
}

@test "Host_ToolIsKilled_LeavesNoSsh" {
  start_device_there --fault 'GetHostname:freeze'
  start_there hostname get
  kill -KILL "$process"
  run -0 timeout 20 tail --pid="$ssh" -f /dev/null
  # What nobody can remove then is the folder.
  [ "$(find "$home/run" -mindepth 1 -maxdepth 1 | wc -l)" -eq 1 ]
}

@test "Host_ToolIsTerminated_LeavesNothing" {
  start_device_there --fault 'GetHostname:freeze'
  for signal in TERM HUP; do
    start_there hostname get
    kill -"$signal" "$process"
    wait_until has_ended "$process"
    wait_until has_ended "$ssh" # and its end has been taken note of
    nothing_is_left
  done
}

@test "Host_InterruptedDuringAChange_SshServesItsReport" {
  start_device_there --fault 'SetHostname:freeze'
  start_there hostname set hall --timeout 30
  # As from the terminal: ssh and the tool receive it.
  kill -INT "$ssh"
  kill -HUP "$ssh"
  kill -TERM "$process"
  wait "$process" || status=$?
  [ "$status" -eq 6 ]
  [[ $(<"$home/errors") == *"SetHostname was interrupted"* ]]
  nothing_is_left
}

@test "Host_KeyOfTheTerminalInterruptsSsh_GoesOn" {
  start_device_there --fault 'GetHostname:freeze'
  start_there hostname get
  for signal in INT QUIT HUP; do kill -"$signal" "$ssh"; done
  control clear all
  wait "$process"
  [ "$(<"$home/output")" = amplifier ]
}
