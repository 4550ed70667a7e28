"""The Dante module: name, versions, sample rate, latency, flags, channels, routing.

Every function calls the Dante API daemon (reboot: the network-manager daemon) and blocks its own
thread until the daemon has answered. Calls have no deadline and cannot be cancelled: an absent
daemon fails a call within milliseconds, a frozen one after about 20 s, one that never replies not
at all.

Every function raises networkgrpc.CallFailed on failure: the daemon is unreachable, it answered
with an error, or it rejected the request. A change that failed may have been made: read it back.

The daemon defines the units of sample rates and latencies: the simulated device uses Hz and
microseconds.
"""

from typing import ClassVar, List

class Channel:
    """One transmit or receive channel."""

    id: int
    """Channel id, as the daemon numbers the channels."""
    name: str
    """Current channel label."""
    __hash__: ClassVar[None]  # type: ignore[assignment]
    def __init__(self, *, id: int = ..., name: str = ...) -> None: ...
    def __eq__(self, other: object) -> bool: ...

class ChannelLink:
    """What one receive channel is subscribed to: a transmit channel, by names, or a raw stream."""

    rx_channel_id: int
    """Id of the receive channel."""
    channel_name: str
    """Label of the transmit channel; empty if there is none."""
    device_name: str
    """Name of the transmitting device; empty if there is none."""
    is_raw: bool
    """Whether the raw parameters below define the subscription."""
    ip: str
    """Raw: an address of the stream; not empty."""
    value2: int
    """Raw: defined by the daemon, 0 to 4294967295."""
    value3: int
    """Raw: defined by the daemon, 0 to 4294967295."""
    value4: int
    """Raw: defined by the daemon, 0 to 4294967295."""
    value5: int
    """Raw: defined by the daemon, 0 to 4294967295."""
    value6: int
    """Raw: defined by the daemon, 0 to 4294967295."""
    encoding: int
    """Raw: sample encoding, 0: 24 bits (L24), 1: 16 bits (L16)."""
    sip: str
    """Raw: a second address of the stream."""
    has_session_id: bool
    """Raw: whether the stream has a session identifier."""
    session_id: int
    """Raw: the session identifier; not sent if has_session_id is False."""
    __hash__: ClassVar[None]  # type: ignore[assignment]
    def __init__(
        self,
        *,
        rx_channel_id: int = ...,
        channel_name: str = ...,
        device_name: str = ...,
        is_raw: bool = ...,
        ip: str = ...,
        value2: int = ...,
        value3: int = ...,
        value4: int = ...,
        value5: int = ...,
        value6: int = ...,
        encoding: int = ...,
        sip: str = ...,
        has_session_id: bool = ...,
        session_id: int = ...,
    ) -> None: ...
    def __eq__(self, other: object) -> bool: ...

class ChannelsNum:
    """The numbers of channels."""

    tx: int
    """Number of transmit channels."""
    rx: int
    """Number of receive channels."""
    __hash__: ClassVar[None]  # type: ignore[assignment]
    def __init__(self, *, tx: int = ..., rx: int = ...) -> None: ...
    def __eq__(self, other: object) -> bool: ...

def get_name() -> str:
    """Return the device name."""

def set_name(name: str) -> None:
    """Set the device name.

    Args:
        name: sent unchanged, even if empty
    """

def get_firmware_version() -> str:
    """Return the firmware version, as the daemon sent it."""

def get_software_version() -> str:
    """Return the software version, as the daemon sent it."""

def get_model_name() -> str:
    """Return the model name."""

def get_model_version() -> str:
    """Return the model version, as the daemon sent it."""

def get_available_sample_rates() -> List[int]:
    """Return the supported sample rates, in the daemon's unit (simulated device: Hz) and order."""

def get_sample_rate() -> int:
    """Return the sample rate, in the daemon's unit (simulated device: Hz)."""

def set_sample_rate(rate: int) -> None:
    """Set the sample rate.

    Args:
        rate: in the daemon's unit (simulated device: Hz); sent without a check
    """

def get_latency() -> int:
    """Return the latency, in the daemon's unit (simulated device: microseconds)."""

def set_latency(latency: int) -> None:
    """Set the latency.

    Args:
        latency: in the daemon's unit (simulated device: microseconds); sent without a check
    """

def get_aes67_available() -> bool:
    """Return whether the module supports AES67."""

def get_aes67_status() -> bool:
    """Return whether AES67 is on."""

def set_aes67(enabled: bool) -> None:
    """Turn AES67 on or off.

    Args:
        enabled: True: on
    """

def get_disable_tx() -> bool:
    """Return whether transmission is disabled."""

def set_disable_tx(disabled: bool) -> None:
    """Disable or enable transmission.

    Args:
        disabled: True: nothing is transmitted
    """

def get_ptp_slave_only() -> bool:
    """Return whether the module is PTP slave only."""

def set_ptp_slave_only(slave_only: bool) -> None:
    """Make the module PTP slave only, or allow it to become master.

    Args:
        slave_only: True: slave only
    """

def reboot() -> None:
    """Restart the Dante side: the network-manager daemon reloads its network configuration."""

def get_tx_channels() -> List[Channel]:
    """Return the transmit channels, in the daemon's order."""

def get_rx_channels() -> List[Channel]:
    """Return the receive channels, in the daemon's order."""

def get_channels_num() -> ChannelsNum:
    """Return the numbers of transmit and receive channels."""

def set_tx_channel_name(channel: Channel) -> None:
    """Set the label of a transmit channel.

    Args:
        channel: id: the channel; name: its new label, not empty
    """

def get_tapping() -> List[ChannelLink]:
    """Return the subscription of every receive channel, in the daemon's order.

    Makes one call for each channel; subscriptions may change between the calls.
    """

def set_tapping(link: ChannelLink) -> None:
    """Change the subscription of one receive channel.

    An incomplete record removes the subscription: a name is empty, or is_raw is True and ip empty.

    Args:
        link: rx_channel_id: the channel; the other fields: what to subscribe to
    """
