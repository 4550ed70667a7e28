"""What a notebook shows: records and the routing as tables."""

import html
import typing
from typing import Any, List

from . import dante, network


def _table(head: typing.Iterable[str], rows: typing.Iterable[typing.Iterable[object]]) -> str:
    def row(cells: typing.Iterable[object], tag: str) -> str:
        return "<tr>" + "".join(f"<{tag}>{html.escape(str(cell))}</{tag}>" for cell in cells) + "</tr>"

    return "<table>" + row(head, "th") + "".join(row(cells, "td") for cells in rows) + "</table>"


def _record_html(record: Any) -> str:
    """The fields of a record; `_repr_html_` of each record class."""
    kind = type(record)
    fields = [name for name in vars(kind) if isinstance(getattr(kind, name), property)]
    return _table(("field", "value"), ((name, repr(getattr(record, name))) for name in fields))


def _show_as_table(*kinds: type) -> None:
    for kind in kinds:
        setattr(kind, "_repr_html_", _record_html)


_show_as_table(network.InterfaceInfo, network.SwitchMode, dante.Channel, dante.ChannelLink, dante.ChannelsNum)


class Route(typing.NamedTuple):
    """One receive channel and its source."""

    rx_channel_id: int
    """Id of the receive channel."""
    label: str
    """Label of the receive channel."""
    source: str
    """'channel @ device', 'stream ADDRESS', or empty if the channel is not subscribed."""


class Routing(List[Route]):
    """The routing: a list of routes that prints as a table."""

    def __repr__(self) -> str:
        width = max((len(route.label) for route in self), default=0)
        return "\n".join(f"{r.rx_channel_id:>4}  {r.label:{width}}  {r.source or '-'}" for r in self)

    def _repr_html_(self) -> str:
        return _table(("receive channel", "label", "source"), self)


def _source(link: dante.ChannelLink) -> str:
    if link.is_raw:
        return f"stream {link.ip}"
    return f"{link.channel_name} @ {link.device_name}" if link.device_name else ""


def routing() -> Routing:
    """Return what every receive channel is subscribed to, as a list that prints as a table.

    Makes the calls of dante.get_rx_channels and dante.get_tapping.

    Raises:
        CallFailed: one of them failed
    """
    labels = {channel.id: channel.name for channel in dante.get_rx_channels()}
    return Routing(
        Route(link.rx_channel_id, labels.get(link.rx_channel_id, ""), _source(link))
        for link in dante.get_tapping()
    )
