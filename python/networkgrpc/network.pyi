"""The host's networking: interfaces, IPv4 addresses, switch mode, host name, NTP, DNS, gateway.

Every function calls the network-manager daemon and blocks its own thread until the daemon has
answered. Calls have no deadline and cannot be cancelled: an absent daemon fails a call within
milliseconds, a frozen one after about 20 s, one that never replies not at all.

Every function raises networkgrpc.CallFailed on failure: the daemon is unreachable, it answered
with an error, or it rejected the request. A change that failed may have been made: read it back.

Addresses are dotted IPv4 strings, empty if there is none. The three role interfaces (Dante primary,
Dante secondary, control) are resolved by name once, at the first call of the process. If that
fails they stay unresolved until a new process.
"""

from typing import ClassVar, List

__version__: str
"""The version of the library that the module was compiled for."""

class InterfaceInfo:
    """One network interface with its IPv4 addressing."""

    mode: int
    """Addressing: 1 static, 0 dynamic. Setters treat every value but 1 as dynamic."""
    name: str
    """System name, 'lan0' for example; filled by get_all_ipv4 only, ignored by setters."""
    ip: str
    """IPv4 address."""
    netmask: str
    """IPv4 netmask, '255.255.255.0' for example."""
    gateway: str
    """Address of the default gateway; read by setters, never filled."""
    mac: str
    """MAC address as the daemon sent it; ignored by setters."""
    dns: str
    """Address of one DNS server; read by setters, never filled."""
    active: bool
    """Whether the addresses are in use; ignored by setters."""
    id: int
    """Interface id; filled by get_all_ipv4 only, otherwise 0; ignored by setters."""
    __hash__: ClassVar[None]  # type: ignore[assignment]
    def __init__(
        self,
        *,
        mode: int = ...,
        name: str = ...,
        ip: str = ...,
        netmask: str = ...,
        gateway: str = ...,
        mac: str = ...,
        dns: str = ...,
        active: bool = ...,
        id: int = ...,
    ) -> None: ...
    def __eq__(self, other: object) -> bool: ...

class SwitchMode:
    """A switch mode: one way to use the device's network ports."""

    id: int
    """Id as the daemon reports it; set_switch_mode expects this id plus one."""
    name: str
    """Display name."""
    __hash__: ClassVar[None]  # type: ignore[assignment]
    def __init__(self, *, id: int = ..., name: str = ...) -> None: ...
    def __eq__(self, other: object) -> bool: ...

def get_dante_interfaces_info() -> List[InterfaceInfo]:
    """Return the Dante primary interface and, if the mode in effect has id 1, the secondary.

    Unresolved interfaces are skipped. The addresses are those in use if `active`, otherwise those
    of a stored static configuration.
    """

def get_control_interfaces_info() -> List[InterfaceInfo]:
    """Return the control interface, in a list of one.

    The addresses are those in use if `active`, otherwise those of a stored static configuration.
    Fails without a line on standard error if the control interface is unresolved.
    """

def get_all_ipv4() -> List[InterfaceInfo]:
    """Return all interfaces with their addresses, in the daemon's order.

    The list is also empty if the addresses cannot be read.
    """

def get_mac_address(name: str) -> str:
    """Return the MAC address of the first interface with this name.

    Args:
        name: system name, 'lan0' for example; case-sensitive
    """

def get_tarvo_interface_name(id: int) -> str:
    """Return the product's fixed label of an interface by its role: 'eth0', 'dante-0' or 'dante-1'.

    Fails if no role has this id.

    Args:
        id: interface id
    """

def set_dante_ip(info: InterfaceInfo, secondary: int, reload: bool) -> None:
    """Store the addressing of a Dante interface.

    Static if info.mode is 1 and info.ip and info.netmask are not empty. In every other case, an
    incomplete static address included, it becomes dynamic.

    Args:
        info: mode, ip, netmask, gateway and dns are read
        secondary: 0: Dante primary; any other value: Dante secondary
        reload: apply it at once; if that fails, only a line on standard error says so
    """

def set_control_ip(info: InterfaceInfo, reload: bool) -> None:
    """Store the addressing of the control interface, as set_dante_ip does.

    Args:
        info: mode, ip, netmask, gateway and dns are read
        reload: apply it at once; if that fails, only a line on standard error says so
    """

def set_generic_ip(id: int, info: InterfaceInfo, reload: bool) -> None:
    """Store the addressing of any interface, as set_dante_ip does.

    Args:
        id: interface id; info.id is ignored
        info: mode, ip, netmask, gateway and dns are read
        reload: apply it at once; if that fails, only a line on standard error says so
    """

def get_switch_modes() -> List[SwitchMode]:
    """Return all switch modes that the device offers, in the daemon's order."""

def get_configured_switch_mode() -> SwitchMode:
    """Return the stored switch mode."""

def get_current_switch_mode() -> SwitchMode:
    """Return the switch mode in effect."""

def set_switch_mode(mode: int) -> None:
    """Select a switch mode. Note the offset: set_switch_mode(1) selects the mode with id 0.

    Args:
        mode: one more than the id that the getters return
    """

def get_hostname() -> str:
    """Return the host name; it may be empty."""

def set_hostname(hostname: str) -> None:
    """Set the host name.

    Args:
        hostname: sent unchanged, even if empty
    """

def get_ntp_server() -> str:
    """Return the first stored NTP server, a name or an address. Fails if there is none."""

def set_ntp_server(server: str, reload: bool) -> None:
    """Store one NTP server, which replaces the stored list.

    Args:
        server: name or address
        reload: apply it at once; if that fails, only a line on standard error says so
    """

def get_current_dns() -> str:
    """Return the address of the first DNS server in use. Fails if there is none."""

def get_default_gateway() -> str:
    """Return the address of the host's default gateway; it may be empty."""

def factory_reset() -> None:
    """Reset the network settings to factory defaults."""
