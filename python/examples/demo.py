"""Shows a device, changes three of its settings and reads each back, as networkgrpc-demo.

It changes the device for good, the control interface's address included: a device that is
in use is not for demonstrations. Exit status 1 tells that a call failed or that something
else was read back.
"""

import sys
import unicodedata
from typing import Callable, List, Sequence, Set, TypeVar

from networkgrpc import CallFailed, dante, network

Value = TypeVar("Value")
Row = List[str]

# Two of each, so that a second run changes something, too.
NAMES = ("Bühne links", "Bühne rechts")
ADDRESSES = ("192.168.10.20", "192.168.10.21")
NETMASK = "255.255.255.0"
GATEWAY = "192.168.10.1"


class Unexpected(Exception):
    """The calls were done, but the device does not have what it should."""


# --- Tables --------------------------------------------------------------------


def printable(text: str) -> str:
    """Without control characters, which could move a terminal's cursor."""
    return "".join("?" if unicodedata.category(c) == "Cc" else c for c in text)


def width(text: str) -> int:
    """How many columns of a terminal it takes."""
    combining = ("Mn", "Me", "Cf")
    shown = [c for c in text if unicodedata.category(c) not in combining]
    return len(shown) + sum(unicodedata.east_asian_width(c) in "WF" for c in shown)


def print_table(title: str, rows: Sequence[Row]) -> None:
    print(title)
    shown = [[printable(cell) for cell in row] for row in rows]
    widths = [max(map(width, column)) for column in zip(*shown)]
    for row in shown:
        padded = [cell + " " * (most - width(cell)) for cell, most in zip(row[:-1], widths)]
        print("  " + "  ".join([*padded, row[-1]]))


def yes_or_no(yes: bool) -> str:
    return "yes" if yes else "no"


def on_or_off(on: bool) -> str:
    return "on" if on else "off"


def source(link: dante.ChannelLink) -> str:
    if link.is_raw:
        return f"stream {link.ip}"
    if not link.channel_name and not link.device_name:
        return "-"
    return f"{link.channel_name} @ {link.device_name}"


# --- What the device is set to -------------------------------------------------


def or_else(default: Value, read: Callable[[], Value]) -> Value:
    """For what may not be there, which the library tells like any other failure."""
    try:
        return read()
    except CallFailed:
        return default


def macs_with_role() -> Set[str]:
    found: List[network.InterfaceInfo] = []
    for read in (network.get_dante_interfaces_info, network.get_control_interfaces_info):
        found += or_else([], read)
    return {interface.mac for interface in found if interface.mac}


def show_interfaces() -> None:
    interfaces = network.get_all_ipv4()
    with_role = macs_with_role()
    rows = [["Id", "Name", "Role", "Mode", "Address", "Netmask", "In use", "MAC"]]
    for interface in interfaces:
        # Asked only where there is one: the library reports the others as faults.
        has_role = interface.mac in with_role
        role = network.get_tarvo_interface_name(interface.id) if has_role else ""
        mode = "static" if interface.mode == 1 else "dynamic"
        row = [str(interface.id), interface.name, role or "-", mode, interface.ip or "-"]
        rows.append([*row, interface.netmask or "-", yes_or_no(interface.active), interface.mac])
    print_table("Interfaces", rows)


def show_switch_modes() -> None:
    configured = network.get_configured_switch_mode().id
    current = network.get_current_switch_mode().id
    rows = [["Id", "Name", "Configured", "In effect"]]
    for mode in network.get_switch_modes():
        in_effect = yes_or_no(mode.id == current)
        rows.append([str(mode.id), mode.name, yes_or_no(mode.id == configured), in_effect])
    print_table("Switch modes", rows)


def show_host() -> None:
    rows = [
        ["Host name", network.get_hostname() or "-"],
        ["NTP server", or_else("", network.get_ntp_server) or "-"],
        ["DNS server", or_else("", network.get_current_dns) or "-"],
        ["Default gateway", network.get_default_gateway() or "-"],
    ]
    print_table("Host", rows)


def show_dante() -> None:
    rates = " ".join(map(str, dante.get_available_sample_rates()))
    aes67 = on_or_off(dante.get_aes67_status()) if dante.get_aes67_available() else "not available"
    rows = [
        ["Device name", dante.get_name() or "-"],
        ["Model", f"{dante.get_model_name()} {dante.get_model_version()}"],
        ["Firmware", dante.get_firmware_version()],
        ["Software", dante.get_software_version()],
        ["Sample rate", f"{dante.get_sample_rate()} of {rates}"],
        ["Latency", str(dante.get_latency())],
        ["AES67", aes67],
        ["Transmission", on_or_off(not dante.get_disable_tx())],
        ["PTP slave only", yes_or_no(dante.get_ptp_slave_only())],
    ]
    print_table("Dante", rows)


def show_channels() -> None:
    sending = [[str(channel.id), channel.name] for channel in dante.get_tx_channels()]
    print_table(f"Transmit channels: {len(sending)}", [["Id", "Name"], *sending])
    print()
    receiving = dante.get_rx_channels()
    sources = {link.rx_channel_id: source(link) for link in dante.get_tapping()}
    rows = [["Id", "Name", "Takes its audio from"]]
    for channel in receiving:
        rows.append([str(channel.id), channel.name, sources.get(channel.id, "unknown")])
    print_table(f"Receive channels: {len(receiving)}", rows)


def show_device() -> None:
    for show in (show_interfaces, show_switch_modes, show_host, show_dante, show_channels):
        show()
        print()


# --- Changes -------------------------------------------------------------------


def other(values: Sequence[str], present: str) -> str:
    return values[1] if present == values[0] else values[0]


def first(found: List[Value], what: str) -> Value:
    if not found:
        raise Unexpected(f"{what}: expected at least one, saw none")
    return found[0]


def first_tx_channel() -> dante.Channel:
    return first(dante.get_tx_channels(), "transmit channels")


def first_link() -> dante.ChannelLink:
    return first(dante.get_tapping(), "receive channels")


def control_interface() -> network.InterfaceInfo:
    return first(network.get_control_interfaces_info(), "control interfaces")


def verified(what: str, before: str, wanted: str, seen: str) -> Row:
    if seen != wanted:
        raise Unexpected(f"{what}: expected {wanted!r}, saw {seen!r}")
    return [what, before, wanted]


def rename_tx_channel() -> Row:
    channel = first_tx_channel()
    name = other(NAMES, channel.name)
    dante.set_tx_channel_name(dante.Channel(id=channel.id, name=name))
    what = f"Name of transmit channel {channel.id}"
    return verified(what, channel.name, name, first_tx_channel().name)


def subscribe_rx_channel() -> Row:
    before = first_link()
    wanted = dante.ChannelLink(
        rx_channel_id=before.rx_channel_id,
        channel_name=first_tx_channel().name,
        device_name=dante.get_name(),
    )
    dante.set_tapping(wanted)
    what = f"Source of receive channel {wanted.rx_channel_id}"
    return verified(what, source(before), source(wanted), source(first_link()))


def addressing(interface: network.InterfaceInfo) -> str:
    mode = "static" if interface.mode == 1 else "dynamic"
    return f"{interface.ip} {interface.netmask} {mode}" + ("" if interface.active else " not in use")


def set_control_address() -> Row:
    before = control_interface()
    wanted = network.InterfaceInfo(
        mode=1,
        ip=other(ADDRESSES, before.ip),
        netmask=NETMASK,
        gateway=GATEWAY,
        dns=GATEWAY,
        active=True,  # expected after the reload; the setter ignores it
    )
    network.set_control_ip(wanted, reload=True)
    seen = addressing(control_interface())
    return verified("Address of the control interface", addressing(before), addressing(wanted), seen)


def main() -> int:
    changes = [["Change", "Before", "After, read back"]]
    failure = None
    try:
        show_device()
        for change in (rename_tx_channel, subscribe_rx_channel, set_control_address):
            changes.append(change())
    except (CallFailed, Unexpected) as failed:
        failure = failed
    # Also after a failure: the device keeps what was changed before it.
    if len(changes) > 1:
        print_table("Changes", changes)
    if failure is None:
        return 0
    print(f"demo.py: FAILED: {failure}", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
