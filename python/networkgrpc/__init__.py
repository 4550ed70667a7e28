"""Settings of a networked amplifier, for test benches and service scripts.

`network` has the functions of the C++ class NetworkgRPC (the host's networking),
`dante` those of DantegRPC (the Dante audio-network module), with their names in
snake_case. A function returns what it reads and raises `CallFailed` on failure. A
call blocks only its own thread. The C++ headers document the functions and the
environment variables.
"""

from . import dante, network
from .failure import CallFailed

__all__ = ["CallFailed", "dante", "network"]
