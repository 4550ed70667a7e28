"""Settings of a networked amplifier, for test benches and service scripts.

`network` has the functions of the C++ class NetworkgRPC (the host's networking),
`dante` those of DantegRPC (the Dante audio-network module), with their names in
snake_case. A function returns what it reads and raises `CallFailed` on failure. A
call blocks only its own thread.

`configure` sets endpoints before the first call, `log_lines` sends the library's
lines to `logging`, `routing` returns the routing as a table.
"""

from . import dante, network
from .failure import CallFailed
from .lines import log_lines
from .notebook import Route, Routing, routing
from .settings import configure

__version__ = network.__version__

__all__ = [
    "CallFailed",
    "Route",
    "Routing",
    "configure",
    "dante",
    "log_lines",
    "network",
    "routing",
]
