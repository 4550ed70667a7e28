"""A simulated device for the tests, and processes of their own that ask it."""

import os
import subprocess
import sys
from contextlib import ExitStack
from typing import Callable, Iterator

import pytest
from networkgrpc.simulator import Simulator


@pytest.fixture
def start_device() -> Iterator[Callable[..., Simulator]]:
    with ExitStack() as started:

        def start(*options: str, **more) -> Simulator:
            device = Simulator(options=options, program=os.environ["SIMULATOR"], **more)
            return started.enter_context(device)

        yield start


@pytest.fixture
def device(start_device) -> Simulator:
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
    ctl("wait", method)
"""


@pytest.fixture
def ask(device: Simulator, run):
    """Runs Python code that asks the simulated device; what it prints, or the failure."""

    def ask_device(code: str) -> str:
        command = [os.environ["SIMULATOR"], "ctl"]
        ended = run(sys.executable, "-c", f"CTL = {command}\n{PRELUDE}{code}", **device.environment)
        assert ended.returncode == 0, ended.stderr
        return ended.stdout

    return ask_device
