"""A simulated device for the tests, and processes of their own that ask it."""

import os
import subprocess
import sys
import tempfile
from contextlib import ExitStack
from pathlib import Path
from typing import Callable, Iterator

import pytest


class Device:
    """One run of the simulator, with its options and a control socket."""

    def __init__(self, folder: Path, *options: str) -> None:
        self.simulator = os.environ["SIMULATOR"]
        self.socket = folder / "control" / "socket"
        self.process = subprocess.Popen(
            [self.simulator, "--control", str(self.socket), *options],
            stdout=subprocess.PIPE,
            text=True,
        )
        assert self.process.stdout is not None
        words = self.process.stdout.readline().split()
        assert words and words[0] == "ready"
        self.environment = dict(word.split("=", 1) for word in words[1:3])

    def ctl(self, *words: str) -> str:
        """What the control command prints."""
        command = [self.simulator, "ctl", "--control", str(self.socket), *words]
        return subprocess.run(command, check=True, capture_output=True, text=True, timeout=60).stdout

    def end(self) -> None:
        self.process.terminate()
        self.process.communicate(timeout=60)


@pytest.fixture
def start_device() -> Iterator[Callable[..., Device]]:
    # The path of a socket must be short, pytest's own folders are not.
    with ExitStack() as started:

        def start(*options: str) -> Device:
            folder = started.enter_context(tempfile.TemporaryDirectory(prefix="device-"))
            device = Device(Path(folder), *options)
            started.callback(device.end)
            return device

        yield start


@pytest.fixture
def device(start_device) -> Device:
    return start_device()


@pytest.fixture
def run():
    """Runs a program: the library reads its environment once."""

    def run_program(*arguments: str, **environment: str) -> "subprocess.CompletedProcess[str]":
        return subprocess.run(
            arguments,
            env={**os.environ, **environment},
            capture_output=True,
            text=True,
            timeout=120,
        )

    return run_program


# What code that asks the device can use besides the package.
PRELUDE = """\
import subprocess
from networkgrpc import *
def ctl(*words):
    return subprocess.run([*CTL, *words], check=True, capture_output=True, text=True).stdout
def wait_for_call(method):
    while method not in ctl("calls"): pass
"""


@pytest.fixture
def ask(device: Device, run):
    """Runs Python code that asks the simulated device; what it prints, or the failure."""

    def ask_device(code: str) -> str:
        command = [device.simulator, "ctl", "--control", str(device.socket)]
        ended = run(sys.executable, "-c", f"CTL = {command}\n{PRELUDE}{code}", **device.environment)
        assert ended.returncode == 0, ended.stderr
        return ended.stdout

    return ask_device
