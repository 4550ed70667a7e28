"""Test an application with a simulated device, with pytest.

    networkgrpc-simulator run --control auto -- python3 -m pytest test_device.py

gives the test process a device; the fixture resets its faults. The library reads its endpoints
once per process, so all tests of a process share the device.
"""

import subprocess
from typing import Iterator

import pytest

from networkgrpc import CallFailed, dante


def ctl(*words: str) -> str:
    """Control the simulator; it is found by the environment."""
    command = ["networkgrpc-simulator", "ctl", *words]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


@pytest.fixture(autouse=True)
def without_faults() -> Iterator[None]:
    yield
    ctl("clear", "all")


def test_name_is_changed() -> None:
    dante.set_name("Hall")
    assert dante.get_name() == "Hall"
    assert '"name": "Hall"' in ctl("state")


def test_rejected_change_raises_and_changes_nothing() -> None:
    before = dante.get_name()
    ctl("fault", "SetName:reject")
    with pytest.raises(CallFailed):
        dante.set_name("Stage")
    assert dante.get_name() == before
