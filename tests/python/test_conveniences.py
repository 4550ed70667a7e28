"""What the package adds to the functions: documentation, settings, logging, tables."""

import ast
import inspect
import os
import re
import sys
from pathlib import Path

import networkgrpc
import pytest
from networkgrpc import dante, network

SOURCES = Path(os.environ["SOURCE_TREE"])
PACKAGE = SOURCES / "python" / "networkgrpc"


def public(module):
    return [value for name, value in vars(module).items() if not name.startswith("_")]


@pytest.mark.parametrize("module", [network, dante], ids=["network", "dante"])
def test_everything_documented_help_shows_the_docstring_of_the_stub(module):
    stub = ast.parse((PACKAGE / f"{module.__name__.split('.')[1]}.pyi").read_text(encoding="utf-8"))
    declared = [node for node in stub.body if isinstance(node, (ast.FunctionDef, ast.ClassDef))]
    assert len(declared) == len(public(module))
    assert module.__doc__ == ast.get_docstring(stub)
    for node in declared:
        assert ast.get_docstring(node) in getattr(module, node.name).__doc__
    for record in filter(inspect.isclass, public(module)):
        assert all(field.__doc__ for field in vars(record).values() if isinstance(field, property)), record


@pytest.mark.parametrize("name", ["get_sample_rate", "set_sample_rate", "get_latency", "set_latency"])
def test_number_with_a_unit_help_names_it(name):
    assert re.search("unit .*(Hz|microseconds)", getattr(dante, name).__doc__)


@pytest.mark.parametrize("change", ["set_sample_rate", "set_tapping", "set_tx_channel_name"])
def test_every_argument_is_documented(change):
    arguments = re.findall(r"(\w+): ", getattr(dante, change).__doc__.split("->")[0])
    assert arguments and all(f"    {name}: " in getattr(dante, change).__doc__ for name in arguments)


def test_configure_before_the_first_call_is_used(device, run):
    code = (
        "import networkgrpc\n"
        f"networkgrpc.configure(network_manager_url='{device.environment['network_manager_url']}',\n"
        f"    grpc_dapi_url='{device.environment['grpc_dapi_url']}', control_interface_env='lan3')\n"
        "print(networkgrpc.dante.get_name(), networkgrpc.network.get_control_interfaces_info()[0].ip)\n"
    )
    ended = run(sys.executable, "-c", code, network_manager_url="127.0.0.1:1", grpc_dapi_url="127.0.0.1:1")
    assert ended.stdout == "Amplifier-520001 10.77.0.20\n", ended.stderr


def test_configure_after_the_first_call_raises_and_changes_nothing(ask):
    assert ask("""
import os
dante.get_name()
before = dict(os.environ)
try:
    configure(network_manager_url="127.0.0.1:1")
except RuntimeError as error:
    print(error)
print(os.environ == before)
""") == (
        "networkgrpc.configure: a function of networkgrpc.dante has been called already, and the "
        "library reads its settings once per process; call configure() first\nTrue\n"
    )


def test_log_lines_forwards_the_library_and_passes_on_the_rest(ask):
    # The handler prints to standard error what would be a line of the library again.
    assert ask("""
import logging, os, sys
logging.basicConfig(format="%(message)s")
class Seen(logging.Handler):
    def emit(self, record): print(record.name, record.levelname, record.getMessage())
logging.getLogger("networkgrpc").addHandler(Seen())
received, sent = os.pipe()
os.dup2(sent, 2)
ctl("fault", "SetHostname:reject")
with log_lines():
    os.write(2, b"from elsewhere\\n")
    try: network.set_hostname("x")
    except CallFailed: pass
with log_lines():
    os.write(2, b"unfinished")
os.write(2, b" line\\n")
print(os.read(received, 1000).decode())
""") == (
        "networkgrpc ERROR SetHostname: error while requesting informations via gRPC\n"
        "from elsewhere\nSetHostname: error while requesting informations via gRPC\nunfinished line\n\n"
    )


def test_log_lines_more_than_a_pipe_holds_none_is_lost(ask):
    assert ask("""
import logging, os
logging.basicConfig()  # prints to the redirected descriptor
counted = []
class Count(logging.Handler):
    def emit(self, record): counted.append(record)
logging.getLogger("networkgrpc").addHandler(Count())
with log_lines():
    for number in range(5000):
        os.write(2, b"libNetworkgRPC: line %d %s\\n" % (number, b"x" * 100))
print(len(counted), counted[-1].getMessage()[:9])
""") == "5000 line 4999\n"


def test_records_and_routing_show_as_tables(ask):
    shown = ask("""
dante.set_tapping(dante.ChannelLink(rx_channel_id=1, channel_name="<Mic>", device_name="Box"))
dante.set_tapping(dante.ChannelLink(rx_channel_id=2, is_raw=True, ip="239.69.0.2"))
table = routing()
print([(route.rx_channel_id, route.source) for route in table[:3]])
print(repr(table).splitlines()[0])
print("<td>&lt;Mic&gt; @ Box</td>" in table._repr_html_(), table._repr_html_().count("<tr>"))
print("<td>ip</td><td>&#x27;239.69.0.2&#x27;</td>" in dante.get_tapping()[1]._repr_html_())
""")
    assert shown == (
        "[(1, '<Mic> @ Box'), (2, 'stream 239.69.0.2'), (3, '')]\n"
        "   1  01  <Mic> @ Box\nTrue 9\nTrue\n"
    )


def test_package_and_cookbook_are_typed(run):
    checked = run(
        sys.executable, "-m", "mypy", "--strict", "--cache-dir", os.environ["MYPY_CACHE"],
        "-p", "networkgrpc",
    )
    assert checked.returncode == 0, checked.stdout + checked.stderr
    for recipe in (SOURCES / "examples" / "cookbook").glob("*.py"):
        checked = run(
            sys.executable, "-m", "mypy", "--strict", "--cache-dir", os.environ["MYPY_CACHE"], str(recipe)
        )
        assert checked.returncode == 0, checked.stdout + checked.stderr
    assert networkgrpc.__all__ == sorted(networkgrpc.__all__)
