"""Tries mutants: builds each in a copy of the tree and runs the tests that could notice it.

usage: try.py GROUP JOBS [SAMPLE SEED], in the folder of the project. See scripts/mutate.
"""

import collections
import contextlib
import filecmp
import glob
import hashlib
import os
import queue
import re
import shutil
import signal
import subprocess
import sys
import threading

from faults import read_faults
from generate import generate

FOLDER = os.path.abspath("build/mutate")
LISTED = "tests/mutation/survivors.txt"
# Seconds of one step, and of one test of bats: some mutants never end.
LIMIT, BATS_LIMIT = 600, 300
NO_LIMIT = threading.TIMEOUT_MAX
# Steps are what is built, and the tests then run. {} is the folder of the file.
Plan = collections.namedtuple("Plan", "files steps")
CALLERS = "^(dante|network)[.]"
MORE = [
    # The code once more: each of its allocations fails.
    (["networkgrpc_watched"], "^allocation[.]"),
    ([], "^(call_frame|client|dante|network)[.]"),
    ([], "^lifecycle[.]|^faults[.](Arg|Con|Cur|Gua|Lar|Lim|Mac)"),
]
GROUPS = {
    "library": [
        Plan("dante/|network/", [(["NetworkgRPC"], "^{}[.]"), *MORE]),
        Plan("client/channel", [(["NetworkgRPC"], "^client[.]"), ([], "^(call_frame|faults)[.]")]),
        Plan("client/", [(["NetworkgRPC"], CALLERS), *MORE]),
        Plan("call_frame/", [(["NetworkgRPC", "frame_test"], CALLERS), *MORE]),
    ],
    "programs": [
        Plan(
            "state_document/",
            [
                (["state_document_test"], "^state_document[.][^p]"),
                (["networkgrpc", "networkgrpc-simulator"], "^state_document[.]programs$"),
                ([], "^tools[.](state|values|checkpoint)$|^simulator[.](export|documents)$"),
            ],
        ),
        Plan(
            "tools/(checkpoint|rescuer|snapshot)",
            [
                (["networkgrpc", "tool_with_log"], "^tools[.]checkpoint$"),
                (["networkgrpc-conformance"], "^tools[.]golden$|^conformance[.]conformance$"),
                ([], "^tools[.](state|wait|torture|rescue)$"),
            ],
        ),
        Plan(
            "conformance/",
            [
                (["networkgrpc-conformance"], "^conformance[.]conformance$"),
                ([], "^conformance[.]faults$"),
            ],
        ),
    ],
}
TARGETS = {
    "library": [
        f"tests/{folder}/all"
        for folder in ("allocation", "call_frame", "client", "dante", "faults", "lifecycle", "network")
    ],
    "programs": [
        "conformance/all",
        "networkgrpc_other_stacks",
        "simulator/all",
        "tests/state_document/all",
        "tests/tools/all",
        "tools/all",
    ],
}
OPTIONS = [
    "-DCMAKE_BUILD_TYPE=None",
    "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
    "-DCMAKE_UNITY_BUILD=OFF",  # a mutant is one file
    "-DNETWORKGRPC_BUILD_TESTS=ON",
]
# Most of the time would go into gRPC's headers.
PRECOMPILED = """cmake_language(DEFER CALL target_precompile_headers networkgrpc_core PRIVATE
  <algorithm> <ostrevan/grpcdapi.grpc.pb.h> <ostrevan/networkmanager.grpc.pb.h>)
"""


class Copy:
    def __init__(self, number):
        folder = os.path.join(FOLDER, str(number))
        self.tree, self.build, self.log = (os.path.join(folder, name) for name in ("tree", "build", "log"))

    def prepare(self, targets):
        # Only files that differ are copied: an interrupted run leaves no mutant behind,
        # and the next run compiles little.
        for folder, folders, names in os.walk("."):
            if folder == ".":
                folders[:] = [name for name in folders if name not in (".git", "build")]
            os.makedirs(os.path.join(self.tree, folder), exist_ok=True)
            for name in (os.path.join(folder, name) for name in names):
                target = os.path.join(self.tree, name)
                if not (os.path.exists(target) and filecmp.cmp(name, target, shallow=False)):
                    shutil.copy(name, target)
        os.makedirs(self.build, exist_ok=True)
        prelude = os.path.join(self.build, "precompiled.cmake")
        with open(prelude, "w", encoding="utf-8") as file:
            file.write(PRECOMPILED)
        options = [*OPTIONS, f"-DCMAKE_PROJECT_INCLUDE={prelude}"]
        if not (
            self.run("cmake", "--preset", "dev", "-B", self.build, *options, limit=NO_LIMIT)
            and self.compile(os.cpu_count(), targets, limit=NO_LIMIT)
        ):
            sys.exit(f"mutate: cannot build the copy; see {self.log}")

    def run(self, *command, limit=LIMIT):
        """Whether the command succeeds, within the limit, and no test of bats fails on the way."""
        process = subprocess.Popen(
            command,
            cwd=self.tree,
            env={**os.environ, "BATS_TEST_TIMEOUT": str(BATS_LIMIT)},
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            start_new_session=True,
        )
        timer = threading.Timer(limit, os.killpg, (process.pid, signal.SIGKILL))
        timer.start()
        failed = False
        with open(self.log, "wb") as log, process.stdout:
            for line in process.stdout:
                log.write(line)
                if failed and not re.match(rb"\d+: #", line):  # after the reason
                    os.killpg(process.pid, signal.SIGKILL)
                    break
                failed = failed or re.match(rb"\d+: not ok ", line)
        timer.cancel()
        succeeded = process.wait() == 0
        if not succeeded:
            self.end_programs()
        return succeeded

    def end_programs(self):
        """Ends what a test started that could not end it any more, in sessions of its own, too."""
        for link in glob.glob("/proc/[0-9]*/exe"):
            with contextlib.suppress(OSError):  # it has ended
                if os.readlink(link).startswith(self.build):
                    os.kill(int(link.split("/")[2]), signal.SIGKILL)

    def verdict(self, name, content, plan):
        with open(os.path.join(self.tree, name), "wb") as file:
            file.write(content)
        for targets, tests in plan.steps:
            if targets and not self.compile(1, targets):
                return "does not compile"
            if not self.passes(tests.format(os.path.dirname(name))):
                return "killed"
        return "survived"

    def compile(self, jobs, targets, limit=LIMIT):
        options = ["--parallel", str(jobs), "--target", *targets]
        return self.run("cmake", "--build", self.build, *options, limit=limit)

    def passes(self, tests):
        options = ["--no-tests=error", "--stop-on-failure", "--parallel", "2", "--verbose"]
        return self.run("ctest", "--test-dir", self.build, *options, "-R", tests)

    def noticed_by(self):
        """The first test that failed in the last step."""
        with open(self.log, encoding="utf-8", errors="replace") as log:
            found = re.search(r"(?:not ok \d+|\[  FAILED  \]) ([^\n(]*)", log.read())
        return found[1].strip() if found else "a test that did not end"

    def restore(self, name):
        shutil.copy(name, os.path.join(self.tree, name))


def listed():
    """The survivors that are explained: each name is a line, the reason follows indented."""
    with open(LISTED, encoding="utf-8") as file:
        return {line.rstrip("\n") for line in file if line.strip() and line[0] not in "# "}


def work(copy, files, done, results):
    """Tries all mutants of one file after the other, so that no other has to be compiled again."""
    while True:
        try:
            name, plan, mutants = files.get_nowait()
        except queue.Empty:
            return
        for key, digest, content in mutants:
            verdict = copy.verdict(name, content, plan)
            done[key] = verdict
            print(f"{verdict}\t{digest}\t{key}", file=results, flush=True)
            by = f" by '{copy.noticed_by()}'" if verdict == "killed" else ""
            print(f"mutate: {len(done)}: {verdict}{by}: {key}", flush=True)
        copy.restore(name)


def make(group, copy):
    """All mutants of a group: name: (file, plan, digest, content)."""
    made, faults = {}, read_faults()
    for plan in GROUPS[group]:
        found = generate(os.getcwd(), copy.build, copy.tree, plan.files)
        found.update((key, fault) for key, fault in faults.items() if re.match(plan.files, key))
        for key, (name, content) in found.items():
            made.setdefault(key, (name, plan, hashlib.sha1(content).hexdigest(), content))
    return made


def read_results(path):
    if not os.path.exists(path):
        return {}
    with open(path, encoding="utf-8") as file:
        lines = [line.rstrip("\n").split("\t") for line in file]
    return {(digest, key): verdict for verdict, digest, key in lines}


def in_each(copies, task):
    """Runs task(copy) for all copies at a time."""
    threads = [threading.Thread(target=task, args=(copy,), daemon=True) for copy in copies]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def check_tests(copies, files):
    """Ends the program unless the tests pass without a mutant, at the load of the mutants."""
    steps = {tests.format(os.path.dirname(name)) for name, plan, _ in files for _, tests in plan.steps}
    passed = []
    in_each(copies, lambda copy: passed.append(all(copy.passes(tests) for tests in sorted(steps))))
    if not all(passed):
        sys.exit(f"mutate: tests fail without a mutant; see {FOLDER}/*/log")


def try_all(copies, files, path):
    """Tries the mutants of these files. Returns the verdicts."""
    check_tests(copies, files)
    waiting, done = queue.Queue(), {}
    for entry in files:
        waiting.put(entry)
    with open(path, "a", encoding="utf-8") as results:
        in_each(copies, lambda copy: work(copy, waiting, done, results))
    return done


def report(done, explained, stale):
    """Prints the numbers, and what is wrong. Returns whether anything is."""
    count = collections.Counter(done.values())
    survivors = {key for key, verdict in done.items() if verdict == "survived"}
    wrong = {
        "survived, and is not listed": survivors - explained,
        "is listed, but was noticed": explained & set(done) - survivors,
        "is listed, but is not made": stale,
    }
    for what, keys in wrong.items():
        for key in sorted(keys):
            print(f"mutate: {what}: {key}")
    print(
        f"mutate: {count['killed']} killed, {len(survivors & explained)} survived and are listed, "
        f"{len(survivors - explained)} survived, {count['does not compile']} do not compile"
    )
    return any(wrong.values())


def main(group, jobs, sample=None, seed=0):
    copies = [Copy(number) for number in range(int(jobs))]
    for copy in copies:
        copy.prepare(TARGETS[group])
    made = make(group, copies[0])
    explained = {key for key in listed() if any(re.match(plan.files, key) for plan in GROUPS[group])}
    chosen = set(made)
    if sample:  # without those that no test can notice; mostly the same after a small change
        shuffled = sorted(made, key=lambda key: hashlib.sha1(f"{seed} {key}".encode()).digest())
        chosen = set(shuffled[: int(sample)]) - explained

    path = os.path.join(FOLDER, "results.tsv")
    known, done, files = read_results(path), {}, {}
    for key, (name, plan, digest, content) in made.items():
        verdict = known.get((digest, key))
        if key not in chosen:
            continue
        if verdict and (verdict != "survived" or key in explained):
            done[key] = verdict
        else:
            files.setdefault(name, (name, plan, []))[2].append((key, digest, content))
    numbers = f"{len(made)} mutants made, {len(chosen)} chosen, {len(done)} tried before"
    print(f"mutate: {numbers}", flush=True)
    done.update(try_all(copies, files.values(), path))
    return report(done, explained, explained - set(made))


sys.exit(main(*sys.argv[1:]))
