#!/usr/bin/env python3
"""Prints tables of the results of bench/run, and writes them to one JSON file.

usage: report.py [--markdown] [--build FOLDER --mode MODE] RESULT-FOLDER

With --build it first collects the results in bench.json; without, it only reads that file.
--markdown prints the tables in the form of docs/performance.md.
"""
import argparse
import datetime
import json
import pathlib
import platform
import re
import subprocess
import sys

# The counts of scripts/cross-test, if there are any: {architecture: instructions.json}.
EMULATED = ("arm64", "armhf")


def number(value, digits=1):
    return f"{value:,.{digits}f}"


class Table:
    def __init__(self, title, *heads):
        self.title = title
        self.heads = heads
        self.rows = []

    def add(self, *cells):
        self.rows.append([str(cell) for cell in cells])

    def plain(self):
        widths = [max(len(row[i]) for row in [self.heads, *self.rows]) for i in range(len(self.heads))]
        def line(cells):
            first = cells[0].ljust(widths[0])
            return "  ".join([first, *(c.rjust(w) for c, w in zip(cells[1:], widths[1:]))]).rstrip()
        return "\n".join([self.title, line(self.heads), *(line(row) for row in self.rows)])

    def markdown(self):
        def line(cells):
            return "| " + " | ".join(cells) + " |"
        rule = "|---|" + "--:|" * (len(self.heads) - 1)
        return "\n".join([f"### {self.title}", "", line(self.heads), rule, *map(line, self.rows)])


def counted(command, pattern):
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    return len(re.findall(pattern, text, re.MULTILINE))


def measure_object(build, folder):
    """The size of the stripped shared object, and its relocations."""
    library = str(build / "libNetworkgRPC.so")
    stripped = folder / "stripped.so"
    subprocess.run(["strip", "-o", stripped, library], check=True)
    size = stripped.stat().st_size
    stripped.unlink()
    return {"size": size, "relocations": counted(["readelf", "-rW", library], r" R_[A-Z0-9]+_")}


def machine():
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return {"machine": platform.machine(), "processor": model[1] if model else "unknown",
            "date": datetime.date.today().isoformat()}


def gather(folder, build, mode):
    """All results, as one value."""
    whole = {"mode": mode, **machine(), "object": measure_object(build, folder)}
    for part in sorted(folder.glob("*.json")):
        if part.name == "bench.json":
            continue
        content = json.loads(part.read_text())
        if "benchmarks" in content:
            whole["cores"] = content["context"]["num_cpus"]
            whole["optimised"] = content["context"]["networkgrpc_optimised"] == "yes"
            content = content["benchmarks"]
        whole[part.stem] = content
    for architecture in EMULATED:
        counted_there = build.parent / architecture / "tests/footprint/instructions.json"
        if counted_there.exists():
            whole[architecture] = json.loads(counted_there.read_text())
    for part in folder.glob("*.txt"):
        whole[part.stem] = part.read_text().strip()
    return whole


def ratio(run):
    return f"{run['ratio']:.3f} ({run['ratio_low']:.3f} to {run['ratio_high']:.3f})"


def name_of(run):
    return run["name"].split("/")[0]


def calls_table(data):
    table = Table("Each function against the same calls through the stub", "Function",
                  "TCP, µs", "stub, µs", "ratio", "Unix socket, µs", "stub, µs", "ratio")
    over_unix = {run["name"]: run for run in data["calls-unix"]}
    for run in data["calls-tcp"]:
        other = over_unix[run["name"]]
        table.add(name_of(run), *(cell for one in (run, other) for cell in
                                  (number(one["library_us"]), number(one["stub_us"]), ratio(one))))
    return table


def sizes_table(data):
    table = Table("Composite calls on devices of several sizes", "Call", "N", "µs", "stub, µs", "ratio")
    parts = [key.rsplit("-", 1) for key in data if re.fullmatch(r"(channels|interfaces|rates)-\d+", key)]
    for what, size in sorted(parts, key=lambda part: (part[0], int(part[1]))):
        for run in data[f"{what}-{size}"]:
            table.add(f"{name_of(run)}, {what}", size, number(run["library_us"]), number(run["stub_us"]), ratio(run))
    return table


def growth_table(data):
    """The shortest of several times: disturbances only make a time longer."""
    table = Table("The library's own work per interface", "Work", "N", "ns per interface", "relative to the first")
    best = {}
    for run in data["growth"]:
        if run["run_type"] == "iteration":
            work = tuple(run["run_name"].split("/")[:2])
            best[work] = min(best.get(work, run["each_s"]), run["each_s"])
    first = {}
    for (work, size), each in best.items():
        table.add(work, size, number(each * 1e9, 2), f"{each / first.setdefault(work, each):.2f}")
    return table


def instructions_tables(data):
    if "instructions" not in data:
        return
    table = Table("Instructions of a call", "Function", "own functions", "with runtime", "call",
                  "own functions, %", "with runtime, %")
    for name, run in data["instructions"]["calls"].items():
        table.add(name, number(run["frames"], 0), number(run["own"], 0), number(run["call"], 0),
                  number(100 * run["frames"] / run["call"], 2), number(100 * run["own"] / run["call"], 2))
    yield table
    if data["instructions"]["growth"]:
        table = Table("Instructions on devices of several sizes", "Item", "N", "own functions per item",
                      "with runtime per item", "call per item")
        for run in data["instructions"]["growth"]:
            table.add(run["what"], run["size"], *(number(run[part] / run["size"]) for part in ("frames", "own", "call")))
        yield table


def emulated_tables(data):
    for architecture in EMULATED:
        if architecture in data:
            table = Table(f"Instructions of a call on {architecture}", "Function", "own functions", "call",
                          "own functions, %")
            for name, run in data[architecture]["calls"].items():
                table.add(name, number(run["frames"], 0), number(run["call"], 0),
                          number(100 * run["frames"] / run["call"], 2))
            yield table


def threads_table(data):
    table = Table("Concurrent callers", "Callers", "calls/s", "stub, calls/s", "throughput, library/stub",
                  "p99, µs", "stub, µs", "p99, stub/library")
    for run in data["threads"]:
        table.add(run["name"].split("/")[1], number(run["library_per_s"], 0), number(run["stub_per_s"], 0),
                  f"{1 / run['ratio']:.3f} ({1 / run['ratio_high']:.3f} to {1 / run['ratio_low']:.3f})",
                  number(run["library_p99_us"]), number(run["stub_p99_us"]),
                  f"{run['stub_p99_us'] / run['library_p99_us']:.3f}")
    return table


def start_tables(data):
    table = Table("From process start to the first answer", "Library", "ms", "stub, ms", "ratio",
                  "private memory, KiB more", "dirty memory, KiB more")
    for run in data["start"]:
        table.add(name_of(run).lower(), number(run["library_us"] / 1000, 2), number(run["stub_us"] / 1000, 2),
                  ratio(run), number(run["library_private_kib"] - run["stub_private_kib"], 0),
                  number(run["library_dirty_kib"] - run["stub_dirty_kib"], 0))
    yield table
    table = Table("The shared object", "What", "Number")
    table.add("bytes, stripped", number(data["object"]["size"], 0))
    table.add("relocations", number(data["object"]["relocations"], 0))
    yield table


def peers_table(data):
    table = Table("Other RPC systems", "System", "µs", "relative to the library")
    run = data["peers"][0]
    library = run["library_us"]
    names = {"library_us": "GetName of this library", "stub_us": "the generated stub",
             "dbus_us": "D-Bus, with sd-bus", "tcp_us": "raw bytes over TCP"}
    found = {title: run.get(key) for key, title in names.items()}
    found["Python, with grpcio"] = data["grpcio"]
    found["Node, with grpc-js"] = data["grpcjs"]
    for title, value in found.items():
        try:
            table.add(title, number(float(value)), f"{float(value) / library:.2f}")
        except (TypeError, ValueError):
            table.add(title, value or "libsystemd is not installed", "")
    return table


def commands_table(data):
    programs = ("tool", "static tool", "Python", "Node")
    table = Table("Commands of the tool on a device of 512 channels", "Command", "calls",
                  *(f"{name}, {unit}" for name in programs for unit in ("ms", "CPU ms")))
    for command, found in data["commands"].items():
        times = (time for name in programs for time in found.get(name, ("", "")))
        table.add(command, found["calls"], *(time and number(time) for time in times))
    return table


def tables(data):
    yield calls_table(data)
    yield sizes_table(data)
    yield growth_table(data)
    yield from instructions_tables(data)
    yield from emulated_tables(data)
    yield threads_table(data)
    yield from start_tables(data)
    yield peers_table(data)
    if "commands" in data:
        yield commands_table(data)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--build", type=pathlib.Path)
    parser.add_argument("--mode", default="full")
    parser.add_argument("--markdown", action="store_true")
    known = parser.parse_args()
    whole = known.folder / "bench.json"
    if known.build:
        whole.write_text(json.dumps(gather(known.folder, known.build, known.mode), indent=1))
    if not whole.exists():
        sys.exit(f"report.py: {whole} does not exist: run scripts/bench")
    data = json.loads(whole.read_text())
    print(f"{data['processor']}, {data['cores']} cores, {data['machine']}, {data['date']}"
          f" ({data['mode']} run). Times depend on the machine and are noisy.\n")
    for table in tables(data):
        print(table.markdown() if known.markdown else table.plain(), end="\n\n")
    if not data["optimised"]:
        print("WARNING: not optimised, the figures mean nothing", file=sys.stderr)
    if data["mode"] != "full":
        print(f"A {data['mode']} run: the figures are not reliable.", file=sys.stderr)


main()
