"""Runs a command under the filters of a unit for systemd: SystemCallFilter=,
RestrictAddressFamilies= and MemoryDenyWriteExecute=, as systemd makes them.

usage: under_unit.py UNIT COMMAND...
"""

import errno
import mmap
import os
import socket
import subprocess
import sys

import seccomp

AF_MAX = 46  # of Linux 6.1


def settings(unit, name):
    """The words of each line that sets it."""
    with open(unit, encoding="utf-8") as file:
        return [line.partition("=")[2].split() for line in file if line.startswith(name + "=")]


def calls(word):
    """The system calls of a word: a call, or a @group, which can contain groups."""
    if not word.startswith("@"):
        return {word}
    group = subprocess.run(["systemd-analyze", "syscall-filter", word], check=True, text=True, stdout=subprocess.PIPE)
    members = [line.split()[0] for line in group.stdout.splitlines()[1:] if line.split()]
    return set().union(*(calls(member) for member in members if member != "#"))


def allowed_calls(unit):
    allowed = set()
    for words in settings(unit, "SystemCallFilter"):
        if words[0].startswith("~"):
            words[0] = words[0][1:]
            allowed -= set().union(*map(calls, words))
        else:
            allowed |= set().union(*map(calls, words))
    # systemd always allows these.
    return allowed | calls("@default") | {"execve"}


def main():
    unit, command = sys.argv[1], sys.argv[2:]
    allow, deny = seccomp.ALLOW, seccomp.ERRNO
    by_call = seccomp.SyscallFilter(deny(errno.EPERM))
    for call in allowed_calls(unit):
        try:
            by_call.add_rule(allow, call)
        except (RuntimeError, OSError):
            pass  # of another architecture
    by_argument = seccomp.SyscallFilter(allow)
    families = {getattr(socket, name) for words in settings(unit, "RestrictAddressFamilies") for name in words}
    for family in set(range(AF_MAX)) - families:
        by_argument.add_rule(deny(errno.EAFNOSUPPORT), "socket", seccomp.Arg(0, seccomp.EQ, family))
    if settings(unit, "MemoryDenyWriteExecute") == [["yes"]]:
        both = mmap.PROT_WRITE | mmap.PROT_EXEC
        by_argument.add_rule(deny(errno.EPERM), "mmap", seccomp.Arg(2, seccomp.MASKED_EQ, both, both))
        for call in ("mprotect", "pkey_mprotect"):
            executable = seccomp.Arg(2, seccomp.MASKED_EQ, mmap.PROT_EXEC, mmap.PROT_EXEC)
            by_argument.add_rule(deny(errno.EPERM), call, executable)
    by_argument.load()
    by_call.load()
    os.execvp(command[0], command)


main()
