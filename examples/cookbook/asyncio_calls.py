"""Call from asyncio: each call in a thread, with a bounded wait.

The wait is bounded, the call is not: it continues in its thread, and a change may still be made.
asyncio.run() and the interpreter wait for the threads, so the program ends by os._exit() if a call
is still in progress. A call that can be ended needs a process: see several_devices.py.
"""

import asyncio
import os
import sys

from networkgrpc import CallFailed, dante, network


async def main(seconds: float) -> int:
    calls = asyncio.gather(
        asyncio.to_thread(dante.get_name),
        asyncio.to_thread(network.get_hostname),
        asyncio.to_thread(dante.get_latency),
    )
    try:
        name, host, latency = await asyncio.wait_for(calls, seconds)
    except asyncio.TimeoutError:
        print(f"no answer within {seconds} s; the calls continue", flush=True)
        os._exit(3)
    except CallFailed as failed:
        print(failed)
        return 1
    print(f"{name} on {host}, latency {latency}")
    return 0


sys.exit(asyncio.run(main(float(sys.argv[1]) if len(sys.argv) > 1 else 10)))
