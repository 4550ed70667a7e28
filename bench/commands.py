#!/usr/bin/env python3
"""Times commands of the tool, linked and static, beside programs that make the same calls.

usage: commands.py RUNS BUILD-FOLDER STATIC-FOLDER PROTO-FOLDER

The device has 512 channels in each direction. What the tool asks it is recorded; the other
programs, in Python and in JavaScript, make the calls of the recording one after the other
and print the replies as JSON. Prints the medians of all as JSON, in milliseconds.
"""
import json
import os
import pathlib
import re
import resource
import statistics
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).parent
CHANNELS = 512
OTHERS = {
    "Python": [sys.executable, HERE / "peers/same_calls.py"],
    "Node": ["node", HERE / "peers/same_calls.js"],
}
PACKAGES = {
    "Python": [sys.executable, "-c", "import grpc, google.protobuf"],
    "Node": ["node", "-e", "require('@grpc/grpc-js'), require('@grpc/proto-loader')"],
}
QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


def is_installed(*check):
    return subprocess.run(check, check=False, **QUIET).returncode == 0


def spent():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run_once(command):
    """Seconds, and seconds of processor time."""
    begin, before = time.monotonic(), spent()
    subprocess.run(command, check=True, **QUIET)
    return time.monotonic() - begin, spent() - before


def write_documents(folder, state):
    """Two states, with all receive channels subscribed to one or another transmit channel."""
    for channel in ("left", "right"):
        for route in state["dante"]["routing"]:
            route.update(device="mixer", channel=channel)
        path = folder / f"{channel}.json"
        path.write_text(json.dumps(state))
        yield str(path)


def measure(runs, programs):
    """The medians of each program's command, or of its commands in turn, in milliseconds."""
    times = {name: [] for name in programs}
    for turn in range(1, runs + 1):  # alternately: all have the same conditions
        for name, commands in programs.items():
            times[name].append(run_once(commands[turn % len(commands)]))
    return {name: [statistics.median(part) * 1000 for part in zip(*both)] for name, both in times.items()}


def measure_all(folder, runs, simulator, tools, protos):
    state = json.loads(subprocess.check_output([tools["tool"], "export"]))
    commands = {
        "start": [["--version"]],
        "status": [["status"]],
        "export": [["export"]],
        "import": [["import", path, "--yes"] for path in write_documents(folder, state)],
    }
    others = {name: command for name, command in OTHERS.items() if is_installed(*PACKAGES[name])}
    for what, variants in commands.items():
        recording = folder / f"{what}.recording"
        record = [simulator, "record", "--log", recording, "--", tools["tool"], *variants[0]]
        subprocess.run(record, check=True, **QUIET)
        programs = {name: [[tool, *words] for words in variants] for name, tool in tools.items()}
        programs.update({name: [[*command, protos, recording]] for name, command in others.items()})
        calls = len(recording.read_text().splitlines()) - 1
        yield what, {"calls": calls, **measure(runs, programs)}


def main(runs, build, static, protos):
    simulator = str(build / "simulator/networkgrpc-simulator")
    tools = {"tool": build / "tools/networkgrpc", "static tool": static / "tools/networkgrpc"}
    tools = {name: str(path) for name, path in tools.items() if path.exists()}
    options = [f"--{way}-channels={CHANNELS}" for way in ("rx", "tx")]
    with tempfile.TemporaryDirectory() as name, subprocess.Popen(
        [simulator, *options], stdout=subprocess.PIPE, text=True
    ) as device:
        try:
            os.environ.update(re.findall(r"(\w+)=(\S+)", device.stdout.readline()))
            os.environ["XDG_STATE_HOME"] = name
            print(json.dumps(dict(measure_all(pathlib.Path(name), runs, simulator, tools, protos))))
        finally:
            device.terminate()


main(int(sys.argv[1]), *map(pathlib.Path, sys.argv[2:]))
