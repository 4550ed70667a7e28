"""A pytest plug-in: the fixture `device` is a simulated device.

In conftest.py, or in a test module:

    pytest_plugins = ["networkgrpc.pytest_plugin"]

The library reads its endpoints once per process. So all tests of a process share one simulator, on
Unix sockets, and `device` resets it before each test that uses it. The test process calls this
device from the first of these tests on; no test may have called the library before.
"""

import typing

import pytest

from .simulator import Simulator, State


@pytest.fixture(scope="session")
def device_state() -> State:
    """Return the state that each test starts with; to be overridden."""
    return None


@pytest.fixture(scope="session")
def device_options() -> typing.Sequence[str]:
    """Return more options of networkgrpc-simulator; to be overridden."""
    return ()


@pytest.fixture(scope="session")
def device_of_session(
    device_state: State, device_options: typing.Sequence[str]
) -> typing.Iterator[Simulator]:
    """Return the simulated device of this process, as the test before has left it.

    Args:
        device_state: the state that each test starts with
        device_options: more options of networkgrpc-simulator
    """
    with Simulator(device_state, device_options, unix_sockets=True) as simulator:
        simulator.configure()
        yield simulator


@pytest.fixture
def device(device_of_session: Simulator) -> Simulator:
    """Return the simulated device of this process, as at its start.

    Args:
        device_of_session: the device, as the test before has left it
    """
    device_of_session.reset()
    return device_of_session
