"""Clients that mean no good: afterwards the simulator answers others, and has kept nothing."""

import os
import resource
import socket
import struct
import subprocess
import time
from pathlib import Path

import pytest

PATIENCE = 30.0  # seconds
DATA, HEADERS, RST_STREAM, SETTINGS, PING, GOAWAY = 0, 1, 3, 4, 6, 7
END_STREAM, END_HEADERS = 1, 4
GET_NAME = "/ostrevan.grpcdapi.DAPI/GetName"


def frame(kind, flags=0, stream=0, payload=b""):
    return struct.pack(">I", len(payload))[1:] + bytes([kind, flags]) + struct.pack(">I", stream) + payload


OPENING = b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n" + frame(SETTINGS)


def literal(text):
    return bytes([len(text)]) + text.encode()


def headers(path):
    """A call, in HPACK without its tables."""
    fields = {
        ":method": "POST",
        ":scheme": "http",
        ":path": path,
        ":authority": "localhost",
        "te": "trailers",
        "content-type": "application/grpc",
    }
    return b"".join(b"\0" + literal(name) + literal(value) for name, value in fields.items())


def call(stream, path=GET_NAME, message=b""):
    body = b"\0" + struct.pack(">I", len(message)) + message
    chunks = [body[i : i + 16384] for i in range(0, len(body), 16384)]
    frames = [frame(DATA, END_STREAM if i + 1 == len(chunks) else 0, stream, it) for i, it in enumerate(chunks)]
    return frame(HEADERS, END_HEADERS, stream, headers(path)) + b"".join(frames)


def streams(count):
    return range(1, 2 * count, 2)


class Device:
    def __init__(self, limit=None):
        limits = (lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (limit, limit))) if limit else None
        self.process = subprocess.Popen(
            [os.environ["SIMULATOR"], "--rx-channels=512"],
            # AddressSanitizer else keeps 256 MiB of freed memory.
            env={**os.environ, "ASAN_OPTIONS": "quarantine_size_mb=16"},
            stdout=subprocess.PIPE,
            text=True,
            preexec_fn=limits,
        )
        words = self.process.stdout.readline().split()
        self.environment = dict(word.split("=") for word in words[1:])
        self.port = int(self.environment["grpc_dapi_url"].rsplit(":", 1)[1])
        self.answers()
        self.descriptors = self.count()

    def connect(self):
        return socket.create_connection(("127.0.0.1", self.port), PATIENCE)

    def send(self, *parts):
        """What is not taken any more is not sent."""
        with self.connect() as client:
            try:
                for part in parts:
                    client.sendall(part)
            except OSError:
                pass

    def answers(self):
        command = [os.environ["TOOL"], "dante", "name", "--timeout", str(PATIENCE)]
        subprocess.run(command, check=True, env={**os.environ, **self.environment}, stdout=subprocess.DEVNULL)

    def count(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def mebibytes(self):
        status = Path(f"/proc/{self.process.pid}/status").read_text(encoding="ascii")
        return int(status.split("VmRSS:")[1].split()[0]) // 1024


def flood_of_connections(device):
    clients = [device.connect() for _ in range(500)]
    for client in clients:
        client.sendall(OPENING)
    for client in clients:
        client.close()


def flood_of_streams(device):
    opened = (frame(HEADERS, END_HEADERS, it, headers(GET_NAME)) for it in streams(5000))
    device.send(OPENING, *opened)


def slow_reader(device):
    calls = (call(it, "/ostrevan.grpcdapi.DAPI/GetRxChannels") for it in streams(2000))
    device.send(OPENING, *calls)


def storms(device):
    device.send(OPENING, frame(GOAWAY, payload=bytes(8)) * 1000)
    device.send(OPENING, frame(SETTINGS) * 10000)
    device.send(OPENING, frame(PING, payload=bytes(8)) * 10000)
    device.send(OPENING, *(call(it) + frame(RST_STREAM, 0, it, bytes(4)) for it in streams(5000)))


def requests_beyond_the_window(device):
    for size in (3 << 20, 5 << 20):
        # A field that the schema does not have.
        length = size.to_bytes(4, "little")
        varint = bytes([length[0] & 127 | 128, (size >> 7) & 127 | 128, (size >> 14) & 127 | 128, size >> 21])
        device.send(OPENING, call(1, "/ostrevan.grpcdapi.DAPI/SetName", b"\xfa\x01" + varint + bytes(size)))


def unknown_methods(device):
    for path in ("/ostrevan.grpcdapi.DAPI/Bogus", "/bogus/GetName", "/", "x" * 100):
        device.send(OPENING, *(call(it, path) for it in streams(200)))


def half_frames(device):
    whole = OPENING + call(1)
    for end in range(len(whole)):
        device.send(whole[:end])


def drops(device):
    clients = [device.connect() for _ in range(20)]
    for at in range(len(OPENING + call(1))):
        for client in clients:
            client.sendall((OPENING + call(1))[at : at + 1])
    for client in clients:
        client.close()


def garbage(device):
    for content in (b"GET / HTTP/1.1\r\n\r\n", b"\xff" * 100000, b"\0" * 100000, OPENING + b"\xff" * 100000):
        device.send(content)


@pytest.fixture
def device():
    started = Device()
    yield started
    started.process.kill()
    started.process.wait()


@pytest.mark.parametrize(
    "attack",
    [
        flood_of_connections,
        flood_of_streams,
        slow_reader,
        storms,
        requests_beyond_the_window,
        unknown_methods,
        half_frames,
        drops,
        garbage,
    ],
)
def test_answers_others_and_keeps_nothing(device, attack):
    attack(device)
    device.answers()
    end = time.monotonic() + PATIENCE
    while device.count() > device.descriptors and time.monotonic() < end:
        device.answers()  # the tool takes its time
    assert device.count() <= device.descriptors
    assert device.mebibytes() < 256
    assert device.process.poll() is None


def test_a_good_call_is_answered(device):
    """So the frames above are frames."""
    with device.connect() as client:
        client.sendall(OPENING + call(1))
        answer = b""
        while b"Amplifier-" not in answer:
            received = client.recv(65536)
            assert received
            answer += received


def test_descriptors_are_used_up_and_given_back():
    device = Device(limit=64)
    try:
        clients = [device.connect() for _ in range(100)]
        for client in clients:
            client.close()
        device.answers()
    finally:
        device.process.kill()
        device.process.wait()
