"""Test an application with a simulated device, with pytest.

    python3 -m pytest test_device.py

The plug-in gives the test process a device, and resets it before each test. The library reads its
endpoints once per process, so all tests of a process share the device.
"""

import subprocess
import threading

import pytest

from networkgrpc import CallFailed, dante
from networkgrpc.simulator import Simulator

pytest_plugins = ["networkgrpc.pytest_plugin"]


@pytest.fixture(scope="session")
def device_state() -> dict[str, object]:
    """What each test starts with; the rest is the simulator's own."""
    return {"schema": 1, "dante": {"name": "Amplifier"}}


def test_name_is_changed(device: Simulator) -> None:
    dante.set_name("Hall")
    assert device.state()["dante"]["name"] == "Hall"
    assert [call.request for call in device.calls()] == [{"name": "Hall"}]


def test_rejected_change_raises_and_changes_nothing(device: Simulator) -> None:
    device.fault("SetName:reject")
    with pytest.raises(CallFailed):
        dante.set_name("Stage")
    assert dante.get_name() == "Amplifier"


def test_call_in_progress_has_not_changed_anything(device: Simulator) -> None:
    device.fault("SetName:freeze")
    caller = threading.Thread(target=dante.set_name, args=("Hall",))
    caller.start()
    device.wait("SetName")
    assert dante.get_name() == "Amplifier"
    device.clear()
    caller.join()
    assert dante.get_name() == "Hall"


def test_another_program_finds_the_device(device: Simulator) -> None:
    device.set("dante.name", "Box")  # as a third party would
    program = ["python3", "-c", "from networkgrpc import dante; print(dante.get_name())"]
    assert subprocess.run(program, check=True, stdout=subprocess.PIPE, text=True).stdout == "Box\n"
