#!/usr/bin/env python3
"""Counts the instructions that the library adds to a call, with callgrind, or with an
emulator where it was compiled for another processor.

Three counts for each function of the library:

frames  the library's own functions
own     that, and the C and C++ runtime functions that they call: strings, lists and
        memory that the library returns, lines that it prints
call    everything that the calling thread executes

gRPC and the generated classes are not counted as own; a program that uses only the
stub executes them as well. The second count needs callgrind.
"""
import argparse
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # nothing is written into the source tree
import emulated  # pylint: disable=wrong-import-position

GROWTH = {"interfaces": "GetAllIPv4", "rates": "GetAvailableSampleRates", "channels": "GetTapping"}
MOST_CHANNELS = 512


def owner(name, library):
    """Whose a function is: by the outermost scope of its mangled name."""
    scope = re.sub(r"^_Z[NKVLTIGr]*", "", name)
    if name.startswith("_Z") and scope.startswith(("S", "9__gnu_cxx")):
        return "runtime"
    if "libNetworkgRPC.so" in library:
        return "wire" if scope.startswith(("4grpc", "6google", "8ostrevan", "4absl")) else "own"
    runtime = ("libc.so", "libc-", "libstdc++.so", "libm.so", "libgcc_s.so", "vgpreload")
    return "runtime" if any(part in library for part in runtime) else "other"


class Profile:
    """One dump of callgrind: what each function took, and whom it called."""

    def __init__(self, text):
        self.names = {}
        self.frames = 0
        self.own = 0
        self.call = 0
        state = {"ob": "", "fn": "", "cob": None, "cfn": ""}
        called = False
        for line in text.splitlines():
            match = re.match(r"(ob|fl|fi|fe|fn|cob|cfi|cfl|cfn)=(.*)", line)
            if match:
                state[match[1]] = self.named(match[1][-2:], match[2])
            elif line.startswith("calls="):
                called = True
            elif re.match(r"[+*-]?\d*[ ]?", line) and re.match(r"[+*\-\d]", line):
                self.count(state, int((line.split() + ["0"])[1]), called)
                if called:
                    state["cob"] = None
                called = False

    def named(self, kind, text):
        """Names are written out once and then abbreviated by their number."""
        number, _, name = text.partition(" ")
        if not number.startswith("("):
            return text
        kind = "fn" if kind == "fn" else "ob" if kind == "ob" else "file"
        if name:
            self.names[kind, number] = name
        return self.names[kind, number]

    def count(self, state, cost, called):
        caller = owner(state["fn"], state["ob"])
        if not called:
            self.call += cost
            self.frames += cost if caller == "own" else 0
            self.own += cost if caller == "own" else 0
        elif caller == "own":
            callee = owner(state["cfn"], state["cob"] or state["ob"])
            self.own += cost if callee == "runtime" else 0

    def counts(self):
        return {"frames": self.frames, "own": self.own, "call": self.call}


def under_callgrind(program, environment):
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder, "profile")
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--demangle=no", "--compress-pos=no",
             "--collect-atstart=no", "--toggle-collect=measured_call",
             "--dump-after=measured_call", f"--callgrind-out-file={out}", *program],
            env=environment, capture_output=True, text=True, check=False)
        if run.returncode != 0:
            sys.exit(f"instructions.py: {program[0]} failed: {run.stdout}{run.stderr}")
        return {name: Profile(pathlib.Path(f"{out}.{number}").read_text()).counts()
                for number, name in enumerate(run.stdout.split(), 1)}


def under(emulator, library):
    """The same with an emulator and the shared object of its processor."""
    return lambda program, environment: emulated.measure(
        emulator, program, environment, library, owner)


def measure(run, program, daemon, options, names=()):
    """Runs the program and returns {name: counts}."""
    with subprocess.Popen([*daemon, *options], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          text=True) as serving:
        network, dapi = serving.stdout.readline().split()
        environment = dict(os.environ, network_manager_url=network, grpc_dapi_url=dapi)
        try:
            return run([program, *names], environment)
        finally:
            serving.stdin.close()


def budgets(path):
    """NAME NUMBER a line; the rest of a line is what for."""
    lines = (line.split(None, 2) for line in pathlib.Path(path).read_text().splitlines())
    return {words[0]: int(words[1]) for words in lines if words and not words[0].startswith("#")}


def excesses(measured, grown, allowed):
    """What exceeds its budget, in words."""
    for name, counts in measured.items():
        limit = allowed.get(f"own_instructions.{name}", allowed["own_instructions"])
        if counts.get("own", 0) > limit:
            yield f"{name}: {counts['own']} own instructions, {limit} allowed"
        # This one makes no RPC: the whole call is the library's own work.
        percent = 100 * counts["frames"] / counts["call"]
        if percent > allowed["frames_percent"] and name != "GetTarvoInterfaceName":
            yield f"{name}: {percent:.2f} % in own functions, {allowed['frames_percent']} % allowed"
    first = {}
    for step in grown:
        each = step.get("own", step["frames"]) / step["size"]
        few = first.setdefault(step["what"], each)
        if each > few * (1 + allowed["growth_percent"] / 100):
            yield (f"{step['size']} {step['what']}: {each:.0f} own instructions each, for few of "
                   f"them {few:.0f}; {allowed['growth_percent']} % more is allowed")


def growth(run, program, daemon, sizes):
    """The functions whose work grows with the device, for devices of these sizes."""
    for what, name in GROWTH.items():
        most = MOST_CHANNELS if what == "channels" else max(sizes)
        for size in sorted({min(size, most) for size in sizes}):
            counts = measure(run, program, daemon, [f"--{what}", str(size)], [name])[name]
            yield {"what": what, "size": size, **counts}


def shares(counts):
    parts = [part for part in ("frames", "own") if part in counts]
    return "".join(f"{counts[part]:8} " for part in parts) + f"{counts['call']:10}" + "".join(
        f"{100 * counts[part] / counts['call']:8.2f} %" for part in parts)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", help="the program instructions")
    parser.add_argument("daemon", help="the program steady_daemon")
    parser.add_argument("--emulator", type=shlex.split, default=[], metavar="COMMAND",
                        help="what runs the programs, which are another processor's")
    parser.add_argument("--library", metavar="FILE", help="the shared object, for that")
    parser.add_argument("--json", metavar="FILE", help="write the counts there")
    parser.add_argument("--budgets", metavar="FILE", help="fail when a count exceeds these")
    parser.add_argument("--growth", type=int, nargs="*", default=[], metavar="SIZE",
                        help="count also for devices with so many interfaces, channels, rates")
    known = parser.parse_args()
    run = under(known.emulator, known.library) if known.emulator else under_callgrind
    daemon = [*known.emulator, known.daemon]
    measured = measure(run, known.program, daemon, [])
    grown = list(growth(run, known.program, daemon, known.growth)) if known.growth else []

    heading = ("  frames       call    frames" if known.emulator else
               "  frames      own       call    frames       own")
    print(f"{'':28} {heading}")
    for name, counts in measured.items():
        print(f"{name:28} {shares(counts)}")
    for step in grown:
        own = "own" if "own" in step else "frames"
        print(f"{step['size']:13} {step['what']:14} {shares(step)} "
              f"{step[own] / step['size']:7.1f} {own} each")
    if known.json:
        pathlib.Path(known.json).write_text(json.dumps({"calls": measured, "growth": grown}))
    wrong = []
    if known.budgets:
        wrong = list(excesses(measured, grown, budgets(known.budgets)))
        print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
