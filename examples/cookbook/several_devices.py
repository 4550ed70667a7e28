"""Read from several devices: one process for each, because a process has one pair of endpoints.

usage: several_devices.py NETWORK_MANAGER_ENDPOINT,DANTE_API_ENDPOINT...

subprocess.run() ends a process that takes too long, and with it the call: the only way to end one.
The child starts anew (no fork), as gRPC requires after the first call.
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

CODE = "from networkgrpc import dante, network; print(dante.get_name(), network.get_hostname())"


def ask(device: str) -> str:
    network_manager_url, grpc_dapi_url = device.split(",")
    endpoints = {"network_manager_url": network_manager_url, "grpc_dapi_url": grpc_dapi_url}
    try:
        ended = subprocess.run(
            [sys.executable, "-c", CODE],
            env={**os.environ, **endpoints},
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
            timeout=10,
        )
    except subprocess.TimeoutExpired:
        return "no answer within 10 s"
    return ended.stdout.strip() if ended.returncode == 0 else "failed"


with ThreadPoolExecutor() as pool:
    for number, answer in enumerate(pool.map(ask, sys.argv[1:]), start=1):
        print(f"device {number}: {answer}")
