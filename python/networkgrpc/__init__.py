"""Settings of a networked amplifier, for test benches and service scripts.

`network` has the host's networking, `dante` the Dante audio-network module: every
function of the C++ facades, by its name in snake_case. What a function reads it
returns; one that is not done raises `CallFailed`. A call blocks its own thread
only. The environment variables and the rules of the C++ headers hold.
"""

from . import dante, network
from .failure import CallFailed

__all__ = ["CallFailed", "dante", "network"]
