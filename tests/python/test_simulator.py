"""The simulated device for tests: networkgrpc.simulator and the pytest plug-in."""

import os
import socket
import sys
import tempfile
from pathlib import Path

import pytest
from networkgrpc.simulator import Call, Simulator, SimulatorError

SIMULATOR = os.environ["SIMULATOR"]
# What a user has: the simulator in PATH.
INSTALLED = {"PATH": f"{Path(SIMULATOR).parent}:{os.environ['PATH']}"}


def test_state_is_changed_and_reset_to_the_initial_one(start_device):
    faults = [{"method": "GetName", "delay_ms": 1}]
    device = start_device(state={"schema": 1, "dante": {"name": "Hall"}, "faults": faults})
    initial = device.state()
    assert initial["dante"]["name"] == "Hall"
    device.set("dante.name", "Stage")
    device.set("network.interfaces[lan0].speed", "none")
    device.load({"schema": 1, "dante": {"latency": 2000, "rx_channels": []}})
    device.fault("SetName:reject", "SetLatency:reject")
    device.clear("SetLatency")
    assert device.faults() == ["GetName:delay=1", "SetName:reject"]
    changed = device.state()["dante"]
    assert (changed["name"], changed["latency"], changed["rx_channels"]) == ("Stage", 2000, [])
    device.reset()
    assert device.state() == initial
    assert device.faults() == ["GetName:delay=1"]


def test_calls_are_recorded_waited_for_and_forgotten(device, ask):
    device.fault("GetName:delay=1")
    ask("dante.set_name('Hall'); dante.get_name()")
    device.wait("DAPI.*", count=2)
    assert device.calls() == [
        Call(1, "DAPI.SetName", {"name": "Hall"}, None),
        Call(2, "DAPI.GetName", {}, "GetName:delay=1"),
    ]
    device.forget()
    assert device.calls() == []
    with pytest.raises(TimeoutError, match="^GetName was called fewer than 2 times within 0.01 s$"):
        device.wait("GetName", count=2, timeout=0.01)


def test_state_from_a_file_and_unix_sockets_are_used(start_device, run, tmp_path):
    file = tmp_path / "state.json"
    file.write_text('{"schema": 1, "dante": {"name": "Hall"}} // a comment', encoding="utf-8")
    device = start_device(state=file, unix_sockets=True)
    assert all(url.startswith("unix:") for url in device.environment.values())
    code = "from networkgrpc import *\nprint(dante.get_name(), network.get_hostname())"
    assert run(sys.executable, "-c", code, **device.environment).stdout == "Hall amplifier\n"


@pytest.mark.parametrize(
    "arguments, message",
    [
        ({"program": "/nowhere/simulator"}, "cannot run /nowhere/simulator: No such file or directory"),
        ({"program": "/bin/true"}, "/bin/true printed no endpoints"),
        ({"options": ["--devices", "x"]}, "networkgrpc-simulator: --devices: 'x' must be an integer"),
        ({"state": {"schema": 1, "dante": {"nam": ""}}}, "dante.nam: unknown member"),
    ],
    ids=["not there", "another program", "option", "state"],
)
def test_simulator_that_cannot_start_raises_with_its_reason(arguments, message):
    with pytest.raises(SimulatorError) as raised:
        Simulator(**{"program": SIMULATOR, **arguments})
    assert message in str(raised.value)


def test_simulator_that_is_not_installed_raises(monkeypatch):
    monkeypatch.setenv("PATH", "/nowhere")
    with pytest.raises(SimulatorError, match="not in PATH; install the package networkgrpc-simulator"):
        Simulator()


def test_rejected_command_raises_with_the_reason(device):
    with pytest.raises(SimulatorError, match="^networkgrpc-simulator: set: cannot set dante.nam: unknown"):
        device.set("dante.nam", "x")
    device.close()
    with pytest.raises(SimulatorError, match="cannot be reached: No such file or directory$"):
        device.state()


def test_configure_after_a_call_raises_and_calls_still_reach_the_first_device(device, ask):
    assert ask(f"""
from networkgrpc.simulator import Simulator
dante.get_name()
with Simulator({{"schema": 1, "dante": {{"name": "Hall"}}}}, program={SIMULATOR!r}) as second:
    try: second.configure()
    except RuntimeError as error: print("already" in str(error), dante.get_name())
""") == "True Amplifier-520001\n"


def test_reset_after_a_daemon_was_stopped_waits_until_calls_work(run):
    ended = run(sys.executable, "-c", """
from networkgrpc import CallFailed, dante, network
from networkgrpc.simulator import Simulator
with Simulator() as device:
    device.configure()
    print(dante.get_name(), network.get_hostname())
    device.stop("DAPI")
    device.drop("NetworkManager")
    try: dante.get_name()
    except CallFailed as failed: print(failed)
    device.reset()
    print(dante.get_name(), network.get_hostname(), [call.number for call in device.calls()] != [])
""", **INSTALLED)
    assert ended.stdout == (
        "Amplifier-520001 amplifier\nnetworkgrpc.dante.get_name() failed\nAmplifier-520001 amplifier True\n"
    ), ended.stderr


def test_process_that_is_killed_ends_its_simulator(run):
    with tempfile.TemporaryDirectory() as folder:
        ended = run(sys.executable, "-c", """
import os, signal, sys
from networkgrpc.simulator import Simulator
device = Simulator()
print(device.environment["control"], flush=True)
os.kill(os.getpid(), signal.SIGKILL)
""", **INSTALLED, TMPDIR=folder)
        with socket.socket(socket.AF_UNIX) as connection:
            connection.settimeout(20)
            try:
                connection.connect(ended.stdout.strip().split(":", 1)[1])
                # The answer never comes; the connection ends with the simulator.
                connection.sendall(b'{"command": "wait", "argument": "GetName"}\n')
                assert connection.recv(1) == b""
            except (ConnectionError, FileNotFoundError):
                pass  # it has ended already


HEAD = """
import pytest
from networkgrpc import CallFailed, dante
pytest_plugins = ["networkgrpc.pytest_plugin"]
"""
RESET = """
def test_first(device):
    device.fault("SetName:reject")
    with pytest.raises(CallFailed): dante.set_name("Hall")
    device.set("dante.name", "Stage")
def test_second(device):
    assert (dante.get_name(), len(device.calls())) == ("Amplifier-520001", 1)
    dante.set_name("x")
"""
OVERRIDDEN = """
@pytest.fixture(scope="session")
def device_state(): return {"schema": 1, "dante": {"name": "Hall"}}
@pytest.fixture(scope="session")
def device_options(): return ["--fault", "SetLatency:reject"]
def test_only(device):
    assert dante.get_name() == "Hall" and device.faults() == ["SetLatency:reject"]
"""
TOO_LATE = """
def test_before(): pytest.raises(CallFailed, dante.get_name)
def test_with_device(device): pass
"""


@pytest.mark.parametrize(
    "suite, printed",
    [(RESET, "2 passed"), (OVERRIDDEN, "1 passed"), (TOO_LATE, "networkgrpc.dante has been called already")],
    ids=["reset", "state and options", "too late"],
)
def test_plugin_gives_each_test_the_device_as_at_its_start(run, tmp_path, suite, printed):
    (tmp_path / "test_suite.py").write_text(HEAD + suite, encoding="utf-8")
    ended = run(
        sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", str(tmp_path),
        **INSTALLED, network_manager_url="127.0.0.1:1", grpc_dapi_url="127.0.0.1:1",
    )
    assert printed in ended.stdout, ended.stdout
