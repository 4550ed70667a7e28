"""A simulated device for tests: the installed networkgrpc-simulator as a child process.

    with Simulator() as device:
        device.configure()  # from now on, the library in this process calls this device
        device.fault("SetName:reject,times=1")
        with pytest.raises(CallFailed):
            dante.set_name("Hall")
        assert device.calls()[-1].method == "DAPI.SetName"

The library reads its endpoints once per process. So a process has one simulator, whose state is
reset between tests; the pytest plug-in `networkgrpc.pytest_plugin` does that. A program under test
that runs in a process of its own gets the device by `Simulator.environment`.
"""

import json
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import typing
from pathlib import Path
from typing import Any, Dict, List, Optional, Union

from . import dante, network
from .failure import CallFailed
from .settings import configure

_PROGRAM = "networkgrpc-simulator"
_DAEMONS = ("NetworkManager", "DAPI")
_LIMIT = 60.0  # seconds, for what does not wait for a call

State = Union[typing.Mapping[str, Any], str, "os.PathLike[str]", None]
"""A state document, or the file that has it; None for the simulator's own."""


class SimulatorError(Exception):
    """The simulator cannot be started or reached, or it rejected a command."""


class Call(typing.NamedTuple):
    """A call that the device has received."""

    number: int
    """Position among all calls, from 1 on."""
    method: str
    """Service and name: 'DAPI.SetName'."""
    request: Dict[str, Any]
    """The request by the names of the schema."""
    fault: Optional[str]
    """The fault that the call met, or None."""


class Simulator:
    """A simulated device, from the creation of the object to `close` or the end of a with block.

    Methods raise SimulatorError with the simulator's reason if it rejects something. Paths, values
    and faults are those of `networkgrpc-simulator ctl`.

    Attributes:
        environment: the variables by which programs find the device: network_manager_url and
            grpc_dapi_url for the library, control for `networkgrpc-simulator ctl`
    """

    def __init__(
        self,
        state: State = None,
        options: typing.Sequence[str] = (),
        *,
        unix_sockets: bool = False,
        program: Optional[str] = None,
    ) -> None:
        """Start the simulator, and return when both daemons listen.

        Args:
            state: the state to start with
            options: more options of networkgrpc-simulator
            unix_sockets: listen on Unix sockets that only this user can connect to, not on ports
            program: path of networkgrpc-simulator; default: search PATH

        Raises:
            SimulatorError: it is not installed, or did not start
        """
        self.environment: Dict[str, str] = {}
        self._process: Optional["subprocess.Popen[str]"] = None
        self._errors = tempfile.TemporaryFile("w+")
        self._is_configured = False
        # Short, because paths of sockets must be; accessible to this user only.
        self._folder = tempfile.TemporaryDirectory(prefix="networkgrpc-")
        try:
            self._start(program, [*self._sockets(unix_sockets), *self._state_option(state), *options])
            self._initial = self.state()
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Simulator":
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """End the simulator. Ends by itself with this process otherwise."""
        if self._process is not None:
            self._process.terminate()
            try:
                self._process.communicate(timeout=_LIMIT)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.communicate()
            self._process = None
        if not self._errors.closed:
            sys.stderr.write(self._take_errors())
            self._errors.close()
        self._folder.cleanup()

    def configure(self) -> None:
        """Point the library in this process at this device: `networkgrpc.configure`.

        Raises:
            RuntimeError: a function has been called already, so it is too late; nothing was changed
        """
        configure(
            network_manager_url=self.environment["network_manager_url"],
            grpc_dapi_url=self.environment["grpc_dapi_url"],
        )
        self._is_configured = True

    def reset(self) -> None:
        """Return to the start: its state and faults, both daemons running, no call received.

        If the library in this process has called the device, also waits until it can again: after a
        daemon was stopped, gRPC waits up to ten seconds before it connects again. The library's
        lines on standard error for the failed calls are harmless.

        Raises:
            CallFailed: it could not within a minute
        """
        self.clear()
        for daemon in _DAEMONS:
            self.start(daemon)
        self.load(self._initial)
        if self._is_configured:
            _wait_until_calls_work()
        self.forget()

    def state(self) -> Dict[str, Any]:
        """Return the state document."""
        state: Dict[str, Any] = self._ask("state")
        return state

    def set(self, path: str, value: object) -> None:
        """Change a member of the state, as someone else would.

        Args:
            path: 'network.interfaces[lan0].speed', for example
            value: a string, a name that stands for a number, a number, a list, ...
        """
        self._ask("set", {path: value})

    def load(self, state: typing.Mapping[str, Any]) -> None:
        """Take over a state document.

        Args:
            state: members that it lacks keep their values
        """
        self._ask("load", dict(state))

    def fault(self, *faults: str) -> None:
        """Add faults.

        Args:
            faults: 'SetName:reject,times=1', for example
        """
        self._ask("fault", faults)

    def faults(self) -> List[str]:
        """Return the faults."""
        faults: List[str] = self._ask("faults")
        return faults

    def clear(self, method: str = "all") -> None:
        """Remove faults.

        Args:
            method: as in the faults; 'all' for every fault
        """
        self._ask("clear", method)

    def calls(self) -> List[Call]:
        """Return the calls received since the start or the last `forget`."""
        return [Call(**call) for call in self._ask("calls")]

    def forget(self) -> None:
        """Forget the calls received."""
        self._ask("forget")

    def wait(self, method: str, count: int = 1, timeout: float = 20.0) -> None:
        """Return when the device has received this many calls of a method, as `calls` counts them.

        Args:
            method: as in a fault: 'SetName', 'DAPI.*'
            count: number of calls
            timeout: in seconds

        Raises:
            TimeoutError: it has received fewer within the timeout
        """
        try:
            self._ask("wait", method, timeout, count=count)
        except TimeoutError:
            raise TimeoutError(f"{method} was called fewer than {count} times within {timeout} s") from None

    def stop(self, daemon: str) -> None:
        """Stop a daemon: calls fail until it is started again.

        Args:
            daemon: 'DAPI' or 'NetworkManager'
        """
        self._ask("stop", daemon)

    def start(self, daemon: str) -> None:
        """Start a daemon again; does nothing if it runs.

        Args:
            daemon: 'DAPI' or 'NetworkManager'
        """
        self._ask("start", daemon)

    def drop(self, daemon: str) -> None:
        """Close the connections of a daemon.

        Args:
            daemon: 'DAPI' or 'NetworkManager'
        """
        self._ask("drop", daemon)

    def _path(self, name: str) -> str:
        return str(Path(self._folder.name, name))

    def _sockets(self, wanted: bool) -> List[str]:
        if not wanted:
            return []
        return [f"--{name}=unix:{self._path(name)}" for name in ("network-manager", "dapi")]

    def _state_option(self, state: State) -> List[str]:
        if state is None:
            return []
        if isinstance(state, typing.Mapping):
            file = self._path("state.json")
            Path(file).write_text(json.dumps(state), encoding="utf-8")
            state = file
        return ["--state", os.fspath(state)]

    def _start(self, program: Optional[str], options: typing.Sequence[str]) -> None:
        found = program or shutil.which(_PROGRAM)
        if found is None:
            raise SimulatorError(f"{_PROGRAM} is not in PATH; install the package {_PROGRAM}")
        command = [found, "--control", self._path("control"), "--pid", str(os.getpid()), *options]
        try:
            # In a session of its own: Ctrl-C ends the tests first.
            self._process = subprocess.Popen(
                command,
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=self._errors,
                text=True,
                start_new_session=True,
            )
        except OSError as error:
            raise SimulatorError(f"cannot run {found}: {error.strerror}") from error
        assert self._process.stdout is not None
        ready, *words = self._process.stdout.readline().split() or [""]
        if ready != "ready":
            self._process.wait(_LIMIT)
            raise SimulatorError(self._take_errors().strip() or f"{found} printed no endpoints")
        self.environment.update(dict(word.split("=", 1) for word in words))

    def _take_errors(self) -> str:
        """What the simulator has printed on standard error, once. It must have ended."""
        self._errors.seek(0)
        errors = self._errors.read()
        self._errors.truncate(0)
        return errors

    def _ask(self, command: str, argument: Any = "", limit: float = _LIMIT, **more: Any) -> Any:
        request = json.dumps({"command": command, "argument": argument, **more})
        answer = b""
        try:
            with socket.socket(socket.AF_UNIX) as connection:
                connection.settimeout(limit)
                connection.connect(self._path("control"))
                connection.sendall(request.encode() + b"\n")
                while not answer.endswith(b"\n"):
                    received = connection.recv(65536)
                    if not received:
                        raise ConnectionError("it closed the connection")
                    answer += received
        except TimeoutError:
            raise
        except OSError as error:
            raise SimulatorError(f"{_PROGRAM} cannot be reached: {error.strerror or error}") from error
        result = json.loads(answer)
        if not result["ok"]:
            raise SimulatorError(f"{_PROGRAM}: {command}: {result['error']}")
        return result["result"]


def _wait_until_calls_work() -> None:
    end = time.monotonic() + _LIMIT
    for module, call in ((network, network.get_hostname), (dante, dante.get_name)):
        while getattr(module, "_called")():
            try:
                call()
                break
            except CallFailed:
                if time.monotonic() > end:
                    raise
                time.sleep(0.1)
