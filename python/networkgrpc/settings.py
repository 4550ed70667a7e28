"""Endpoints and interface names of a process."""

import os
from typing import Optional

from . import dante, network


def configure(
    *,
    network_manager_url: Optional[str] = None,
    grpc_dapi_url: Optional[str] = None,
    dante_primary_interface_env: Optional[str] = None,
    dante_secondary_interface_env: Optional[str] = None,
    control_interface_env: Optional[str] = None,
) -> None:
    """Set endpoints and interface names for this process, before its first call.

    The arguments are the environment variables of the library; None keeps what the environment
    says. The library reads them once, so they cannot be changed back: for another device, start
    another process. They are also passed to processes started later.

    Args:
        network_manager_url: endpoint of the network-manager daemon, 'host:port' or 'unix:path'
        grpc_dapi_url: endpoint of the Dante API daemon
        dante_primary_interface_env: name of the Dante primary interface
        dante_secondary_interface_env: name of the Dante secondary interface
        control_interface_env: name of the control interface

    Raises:
        RuntimeError: a function has been called already; nothing was changed
    """
    variables = dict(locals())
    for module in (network, dante):
        if getattr(module, "_called")():
            raise RuntimeError(
                f"networkgrpc.configure: a function of {module.__name__} has been called already, "
                "and the library reads its settings once per process; call configure() first"
            )
    os.environ.update({name: value for name, value in variables.items() if value is not None})
