#!/usr/bin/env python3
"""Forward connections to the Dante API daemon while a command runs.

usage: forwarder.py ADDRESS[,ADDRESS...][,reuse-port] COMMAND...

The command finds the daemon at localhost and a free port, on which the forwarder listens on
these addresses only, and with SO_REUSEPORT if that is wanted.
"""

import asyncio
import os
import socket
import sys


async def copy(reader: asyncio.StreamReader, writer: asyncio.StreamWriter) -> None:
    try:
        while data := await reader.read(65536):
            writer.write(data)
            await writer.drain()
    except ConnectionError:
        pass
    writer.close()


async def main() -> int:
    words = sys.argv[1].split(",")
    addresses = [word for word in words if word != "reuse-port"]
    daemon = os.environ["grpc_dapi_url"].rsplit(":", 1)

    async def serve(reader: asyncio.StreamReader, writer: asyncio.StreamWriter) -> None:
        there = await asyncio.open_connection(*daemon)
        await asyncio.gather(copy(reader, there[1]), copy(there[0], writer))

    port = 0
    for address in addresses:
        server = await asyncio.start_server(
            serve, address, port, reuse_port="reuse-port" in words, reuse_address=True
        )
        port = server.sockets[0].getsockname()[1]
    environment = dict(os.environ, grpc_dapi_url=f"localhost:{port}")
    command = await asyncio.create_subprocess_exec(*sys.argv[2:], env=environment)
    return await command.wait()


sys.exit(asyncio.run(main()))
