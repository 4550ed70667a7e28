"""The library's lines on standard error as records of the logging module."""

import contextlib
import logging
import os
import queue
import threading
import typing
from typing import Optional

_PREFIX = b"libNetworkgRPC: "
_END = b"\0end of networkgrpc.log_lines\n"


def _read(source: int, lines: "queue.SimpleQueue[Optional[bytes]]") -> None:
    """Only reads, so that nobody who writes to the pipe waits for a handler that does, too."""
    with open(source, "rb") as pipe:
        for line in pipe:
            end = line.endswith(_END)
            lines.put(line[: -len(_END)] if end else line)
            if end:
                break
    lines.put(None)


def _log(lines: "queue.SimpleQueue[Optional[bytes]]", original: int, logger: logging.Logger) -> None:
    while True:
        line = lines.get()
        if line is None:
            return
        if line.startswith(_PREFIX):
            # Without the prefix, a handler that prints it to standard error makes no new record.
            logger.error("%s", line[len(_PREFIX) :].decode("utf-8", "backslashreplace").rstrip("\n"))
        else:
            os.write(original, line)


@contextlib.contextmanager
def log_lines(logger: Optional[logging.Logger] = None) -> typing.Iterator[None]:
    """Send the lines that the library prints on standard error to a logger, at level ERROR.

        with networkgrpc.log_lines():
            network.set_hostname("stage")

    The library writes to file descriptor 2, so this redirects the descriptor of the whole process
    into a pipe: everything else that is written there, by any thread, is passed on, a moment later.
    Processes started meanwhile inherit the pipe: give them a standard error of their own. If this
    process ends abnormally, the last lines are lost. Blocks of several threads must not overlap.

    Args:
        logger: default: the logger 'networkgrpc'
    """
    lines: "queue.SimpleQueue[Optional[bytes]]" = queue.SimpleQueue()
    source, sink = os.pipe()
    original = os.dup(2)
    threads = [
        threading.Thread(target=_read, args=(source, lines), daemon=True),
        threading.Thread(
            target=_log, args=(lines, original, logger or logging.getLogger("networkgrpc")), daemon=True
        ),
    ]
    os.dup2(sink, 2)
    for thread in threads:
        thread.start()
    try:
        yield
    finally:
        # First, so that what handlers still print is not written behind the end.
        os.dup2(original, 2)
        os.write(sink, _END)
        os.close(sink)
        for thread in threads:
            thread.join()
        os.close(original)
