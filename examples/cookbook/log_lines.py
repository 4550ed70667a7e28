"""Set the endpoints in the program, and send the library's lines to the logging module.

configure() works before the first call only. log_lines() redirects file descriptor 2 of the whole
process, so use it around the main loop of a program and not around each call.
"""

import logging
import os

import networkgrpc
from networkgrpc import CallFailed, network

logging.basicConfig()
networkgrpc.configure(network_manager_url=os.environ.get("network_manager_url", "localhost:50007"))
with networkgrpc.log_lines():
    try:
        network.set_hostname("stage")
    except CallFailed:
        pass  # why is in the log, a moment later

try:
    networkgrpc.configure(network_manager_url="localhost:1")
except RuntimeError as error:
    print(error)  # the library reads its settings once per process
