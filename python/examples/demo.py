"""Change three settings of a device, read each back and restore it, like networkgrpc-demo.

Do not run it on a device in use: a new latency may interrupt the audio. Exit status: 0 if every
new and every restored value was read back; otherwise 1, and the remaining settings are not
changed.
"""

import re
import sys
from typing import Any, Callable, Tuple

from networkgrpc import CallFailed, dante, network


def first_tx_channel() -> dante.Channel:
    channels = dante.get_tx_channels()
    if not channels:
        raise ValueError("the device has no transmit channel")
    return channels[0]


def set_label(label: str) -> None:
    dante.set_tx_channel_name(dante.Channel(id=first_tx_channel().id, name=label))


def show(value: Any) -> str:
    # A control character could move the cursor of a terminal.
    return '"' + re.sub(r"[\0-\x1f\x7f]", "?", value) + '"' if isinstance(value, str) else str(value)


def change_and_restore(
    name: str, read: Callable[[], Any], write: Callable[[Any], None], values: Tuple[Any, Any]
) -> None:
    """Set the first value, or the second if the first is the present one; then restore."""

    def write_and_read_back(value: Any) -> None:
        write(value)
        seen = read()
        print(f"  set to {show(value)}, read back {show(seen)}", flush=True)
        if seen != value:
            raise ValueError(f"{name}: {show(value)} was set, but {show(seen)} was read back")

    before = read()
    print(f"{name}: {show(before)}", flush=True)
    try:
        write_and_read_back(values[1] if before == values[0] else values[0])
    finally:
        # Also after a failure: a call may fail after the daemon has made the change.
        write_and_read_back(before)


try:
    host_names = ("stage-left", "stage-right")
    change_and_restore("Host name", network.get_hostname, network.set_hostname, host_names)
    labels = ("Bühne links", "Bühne rechts")
    label = "Label of the first transmit channel"
    change_and_restore(label, lambda: first_tx_channel().name, set_label, labels)
    change_and_restore("Latency", dante.get_latency, dante.set_latency, (2000, 5000))
except (CallFailed, ValueError) as failed:
    # If restoring failed, too, the failure before it is its context.
    sys.exit(f"demo.py: {failed.__context__ or failed}")
