"""Every function of the facades from Python, against a simulated device."""

import os
import re
import sys
from pathlib import Path

import networkgrpc
import pytest
from networkgrpc import dante, network

SOURCES = Path(os.environ["SOURCE_TREE"])
EXAMPLES = SOURCES / "python" / "examples"

# Nobody listens there.
NOBODY = {"network_manager_url": "127.0.0.1:1", "grpc_dapi_url": "127.0.0.1:1"}


def functions_of(module):
    return {name for name in dir(module) if name.islower() and not name.startswith("_")}


@pytest.mark.parametrize(
    "module, header",
    [(network, "network/NetworkgRPC.h"), (dante, "dante/DantegRPC.h")],
    ids=["network", "dante"],
)
def test_every_function_of_the_facade_is_there_and_no_other(module, header):
    declared = re.findall(r"static bool (\w+)\(", (SOURCES / header).read_text(encoding="utf-8"))
    assert len(declared) > 15
    # Case and underscores apart the names are the same.
    assert sorted(name.lower() for name in declared) == sorted(
        name.replace("_", "") for name in functions_of(module)
    )


def test_every_reader_reads(ask):
    for module in ("network", "dante"):
        readers = [n for n in functions_of(getattr(networkgrpc, module)) if n.startswith("get_")]
        assert len(readers) > 10
        arguments = {"get_mac_address": "'lan0'", "get_tarvo_interface_name": "2"}
        code = "".join(f"print(repr({module}.{n}({arguments.get(n, '')})))\n" for n in readers)
        assert len(ask(code).splitlines()) == len(readers)


@pytest.mark.parametrize(
    "change, reader, expected",
    [
        ("network.set_hostname('stage')", "network.get_hostname()", "'stage'"),
        ("network.set_ntp_server('time', True)", "network.get_ntp_server()", "'time'"),
        ("network.set_switch_mode(2)", "network.get_configured_switch_mode().id", "1"),
        (
            "network.set_generic_ip(4, network.InterfaceInfo(mode=1, ip='10.77.0.9',"
            " netmask='255.255.0.0'), reload=True)",
            "[i.ip for i in network.get_all_ipv4() if i.name == 'lan3']",
            "['10.77.0.9']",
        ),
        (
            "network.set_control_ip(info=network.InterfaceInfo(mode=1, ip='10.0.0.9',"
            " netmask='255.0.0.0'), reload=True)",
            "network.get_control_interfaces_info()[0].ip",
            "'10.0.0.9'",
        ),
        (
            "network.set_control_ip(network.InterfaceInfo(mode=1, ip='10.0.0.9', netmask='255.0.0.0',"
            " gateway='10.0.0.1', dns='10.0.0.53'), True)",
            "(network.get_current_dns(), network.get_default_gateway())",
            "('10.0.0.53', '10.0.0.1')",
        ),
        (
            "network.set_dante_ip(network.InterfaceInfo(mode=1, ip='10.1.0.9',"
            " netmask='255.255.0.0'), 0, True)",
            "network.get_dante_interfaces_info()[0].ip",
            "'10.1.0.9'",
        ),
        ("dante.set_name('Bühne')", "dante.get_name()", "'Bühne'"),
        ("dante.set_sample_rate(96000)", "dante.get_sample_rate()", "96000"),
        ("dante.set_latency(2000)", "dante.get_latency()", "2000"),
        ("dante.set_aes67(True)", "dante.get_aes67_status()", "True"),
        ("dante.set_disable_tx(True)", "dante.get_disable_tx()", "True"),
        ("dante.set_ptp_slave_only(True)", "dante.get_ptp_slave_only()", "True"),
        (
            "dante.set_tx_channel_name(dante.Channel(id=1, name='Main'))",
            "dante.get_tx_channels()[0]",
            "Channel(id=1, name='Main')",
        ),
        (
            "dante.set_tapping(dante.ChannelLink(rx_channel_id=2, channel_name='Mic',"
            " device_name='Box'))",
            "[(l.device_name, l.channel_name) for l in dante.get_tapping()][1]",
            "('Box', 'Mic')",
        ),
        ("network.factory_reset()", "network.get_hostname()", "'amplifier'"),
        ("dante.reboot()", "dante.get_channels_num()", "ChannelsNum(tx=4, rx=8)"),
    ],
)
def test_what_is_changed_is_read_back(ask, change, reader, expected):
    assert ask(f"{change}\nprint(repr({reader}))").strip() == expected


def test_readers_that_nothing_changes_tell_the_state(device, ask):
    state = device.state()
    members = ["firmware_version", "software_version", "model_name", "model_version"]
    expected = [state["dante"][member] for member in members]
    assert len(set(expected)) == len(members)
    assert ask(f"print([getattr(dante, 'get_' + m)() for m in {members}])").strip() == repr(expected)
    for code, what in [
        ("dante.get_available_sample_rates()", state["dante"]["sample_rates"]),
        ("dante.get_aes67_available()", state["dante"]["aes67_available"]),
        ("[c.name for c in dante.get_tx_channels()]", [c["name"] for c in state["dante"]["tx_channels"]]),
        ("[c.name for c in dante.get_rx_channels()]", [c["name"] for c in state["dante"]["rx_channels"]]),
        ("[m.name for m in network.get_switch_modes()]", [m["name"] for m in state["network"]["switch_modes"]]),
        ("network.get_mac_address('lan1')", state["network"]["interfaces"][1]["mac"]),
        ("network.get_tarvo_interface_name(2)", "eth0"),
        ("network.get_current_switch_mode().id", 0),
    ]:
        assert ask(f"print(repr({code}))").strip() == repr(what)


def test_refusal_raises_with_function_and_arguments(device, ask):
    device.fault("SetHostname:reject")
    told = ask(
        "try:\n"
        "    network.set_hostname('x')\n"
        "except CallFailed as failed:\n"
        "    print(failed.function, failed.arguments, '|', failed)\n"
    )
    assert told == (
        "networkgrpc.network.set_hostname {'hostname': 'x'} | "
        "networkgrpc.network.set_hostname(hostname='x') failed\n"
    )


def test_absent_daemon_raises_from_readers_and_changers(run):
    code = (
        "from networkgrpc import *\n"
        "for call in (dante.get_latency, dante.reboot, lambda: network.get_mac_address('lan0')):\n"
        "    try:\n"
        "        call()\n"
        "    except CallFailed as failed:\n"
        "        print(failed)\n"
    )
    ended = run(sys.executable, "-c", code, **NOBODY)
    assert ended.stdout.splitlines() == [
        "networkgrpc.dante.get_latency() failed",
        "networkgrpc.dante.reboot() failed",
        "networkgrpc.network.get_mac_address(name='lan0') failed",
    ]
    # The library's own lines, as from C++.
    assert ended.stderr.count("libNetworkgRPC: ") == 3


def test_examples_tell_what_those_in_cxx_and_c_do(device, run):
    overview = run(sys.executable, str(EXAMPLES / "overview.py"), **device.environment)
    assert overview.returncode == 0, overview.stderr
    assert overview.stdout.startswith("Amplifier-520001 on amplifier, 48000 Hz\ninput 1: 01\n")
    control = run(sys.executable, str(EXAMPLES / "control.py"), **device.environment)
    assert control.stdout == (
        "control 192.168.10.57 netmask 255.255.255.0 MAC 02:54:41:52:00:02\nswitch mode 0\n"
    )


@pytest.mark.parametrize(
    "options, status",
    [
        ([], 0),
        (["--tx-channels", "0"], 1),
        (["--fault", "SetHostname:reject"], 1),
        (["--fault", "SetLatency:delay=1,times=1", "--fault", "SetLatency:reject"], 1),
    ],
    ids=["success", "no channel", "change rejected", "restoring rejected"],
)
def test_demo_prints_and_does_the_same_as_in_cxx(start_device, run, options, status):
    seen = []
    for program in ([os.environ["DEMO"]], [sys.executable, str(EXAMPLES / "demo.py")]):
        device = start_device(*options)
        demo = run(*program, **device.environment)
        assert demo.returncode == status, demo.stderr
        assert bool(demo.stderr) == bool(status)
        seen.append((demo.stdout, device.state()))
    assert seen[0] == seen[1]


def test_demo_change_rejected_reports_the_first_failed_call(start_device, run):
    device = start_device("--fault", "SetHostname:reject")
    demo = run(sys.executable, str(EXAMPLES / "demo.py"), **device.environment)
    message = "demo.py: networkgrpc.network.set_hostname(hostname='stage-left') failed"
    assert demo.stderr.splitlines()[-1] == message


def test_demo_change_ignored_exits_with_one_and_reports_both_values(device, run):
    demo = run(
        sys.executable, "-c",
        "import runpy\n"
        "from networkgrpc import dante\n"
        "dante.set_latency = lambda latency: None\n"
        f"runpy.run_path({str(EXAMPLES / 'demo.py')!r}, run_name='__main__')\n",
        **device.environment,
    )
    assert (demo.returncode, demo.stderr) == (
        1,
        "demo.py: Latency: 2000 was set, but 1000 was read back\n",
    )


def test_readme_does_what_it_shows(device, run):
    code = re.search(r"```python\n(.*?)```", (SOURCES / "README.md").read_text(encoding="utf-8"), re.S)
    shown = run(sys.executable, "-c", code[1], **device.environment)
    assert shown.stdout == "amplifier\n", shown.stderr
    assert device.state()["dante"]["name"] == "Studio B"


def test_version_is_that_of_the_project():
    project = (SOURCES / "CMakeLists.txt").read_text(encoding="utf-8")
    assert networkgrpc.__version__ == re.search(r"^project\(.*VERSION ([0-9.]+)", project, re.M | re.S)[1]


def test_stubs_say_what_the_modules_have(run):
    checked = run(
        sys.executable, "-m", "mypy.stubtest", "networkgrpc", "--mypy-config-file", str(SOURCES / "tests/python/mypy.ini")
    )
    assert checked.returncode == 0, checked.stdout + checked.stderr


def test_examples_are_typed(run):
    checked = run(
        sys.executable, "-m", "mypy", "--strict", "--cache-dir", os.environ["MYPY_CACHE"],
        *map(str, EXAMPLES.glob("*.py")),
    )
    assert checked.returncode == 0, checked.stdout + checked.stderr
