"""Read an overview of a device in Python. A function that fails raises CallFailed."""

import sys

from networkgrpc import CallFailed, dante, network

try:
    print(f"{dante.get_name()}, {dante.get_model_name()}, {dante.get_sample_rate()} Hz")
    print(f"host {network.get_hostname()}, mode {network.get_current_switch_mode().name}")
    for interface in network.get_all_ipv4():
        print(f"{interface.name}: {interface.ip or 'no address'}")
except CallFailed as failed:
    # The library has printed its own line on standard error for most failures.
    sys.exit(f"{sys.argv[0]}: {failed}")
