"""Counts the instructions of a program of another processor, in the trace of its emulator.

QEMU writes down each run of instructions without a branch: once what is in it, and its
address each time that it is executed. The address identifies the function.
"""
import bisect
import collections
import os
import pathlib
import re
import subprocess
import sys
import tempfile


class Functions:
    """The functions of a shared object, by their addresses in it."""

    def __init__(self, path):
        listed = subprocess.run(["readelf", "-sW", path], capture_output=True, text=True, check=True)
        rows = (line.split() for line in listed.stdout.splitlines())
        self.rows = sorted({(int(row[1], 16), int(row[2], 0), row[7]) for row in rows
                            if len(row) == 8 and row[3] == "FUNC" and row[6] != "UND"})
        self.starts = [start for start, _, _ in self.rows]

    def at(self, address):
        """Which function is there; none outside the object."""
        place = bisect.bisect_right(self.starts, address) - 1
        start, size, name = self.rows[max(place, 0)]
        return name if start <= address < start + size else ""


def traced(lines):
    """For each time that measured_call was entered and left: {address: instructions}."""
    lengths = {}
    block = begin = None
    calls = []
    counting = False
    for line in lines:
        if line.startswith("0x"):
            address = line[2:line.index(":")]
            if block is None:
                block = int(address, 16)
                lengths[block] = 0
            lengths[block] += 1
        elif line.startswith("IN:"):
            block = None
        elif line.startswith("Trace 0:"):  # the first thread
            at = int(line.split("/", 2)[1], 16)
            if line.endswith(" measured_call\n"):
                begin = begin or at
                if at == begin:
                    calls.append(collections.Counter())
                counting = at == begin
            if counting:
                calls[-1][at] += lengths[at]
    return calls


def base_of(name, said):
    """Where the loader says that it put a library."""
    found = re.search(rf"file={re.escape(name)}\S* .*generating link map\n.*base: 0x([0-9a-f]+)", said)
    return int(found[1], 16)


def measure(emulator, program, environment, library, owner):
    """Runs the program; for each measured call, what it ran in the library's own functions and
    in all."""
    functions = Functions(library)
    name = re.sub(r"\.so.*", ".so", pathlib.Path(library).name)
    with tempfile.TemporaryDirectory() as folder:
        trace = pathlib.Path(folder, "trace")
        os.mkfifo(trace)
        options = ["-d", "in_asm,exec,nochain", "-D", trace,
                   "-E", "LD_DEBUG=files", "-E", f"LD_DEBUG_OUTPUT={folder}/loader"]
        said = pathlib.Path(folder, "said")
        with open(said, "w") as errors, subprocess.Popen(
                [*emulator, *options, *program], env=environment, text=True,
                stdout=subprocess.PIPE, stderr=errors) as running, open(trace) as lines:
            calls = traced(lines)
            measured = running.stdout.read().split()
        if running.returncode != 0:
            sys.exit(f"{program[0]} failed: {' '.join(measured)}{said.read_text()}")
        base = base_of(name, next(pathlib.Path(folder).glob("loader.*")).read_text())
    counted = {}
    for function, call in zip(measured, calls, strict=True):
        places = ((functions.at(at - base), count) for at, count in call.items())
        own = sum(count for place, count in places if place and owner(place, name) == "own")
        counted[function] = {"frames": own, "call": sum(call.values())}
    return counted
