"""What is on the disk if the power is cut behind the last call of a trace.

usage: power_cut.py FOLDER ON_DISK TRACE names|contents

Makes FOLDER from ON_DISK, its content before the program ran, and from the program's calls as
strace -y -xx shows them. What a file contains is on the disk as of its last fsync. A name is as of
the last fsync of its folder, all that POSIX promises; or, with "contents", as the program left it,
because some file systems write names first.
"""

import pathlib
import re
import sys

CALL = re.compile(r"(\w+)\((.*)\)\s+= (-?\d+)(?:<(.*)>)?")
TEXT = re.compile(r'"((?:\\x[0-9a-f]{2})*)"')
OF_DESCRIPTOR = re.compile(r"^\d+<([^>]*)>")


def text(hexadecimal):
    return bytes.fromhex(hexadecimal.replace("\\x", ""))


class File:
    def __init__(self, flushed=b""):
        self.written = self.flushed = flushed


class Disk:
    """Names are paths below the folder; its own name is ""."""

    def __init__(self, root, before):
        self.root = root
        self.names = {"": None}  # a folder is None
        for path in before.rglob("*"):
            content = None if path.is_dir() else File(path.read_bytes())
            self.names[str(path.relative_to(before))] = content
        self.flushed = dict(self.names)

    def name(self, path):
        """None for what lies elsewhere."""
        if path != self.root and not path.startswith(self.root + "/"):
            return None
        return path[len(self.root) + 1 :]

    def flush(self, name):
        if self.names[name] is not None:
            self.names[name].flushed = self.names[name].written
            return
        inside = lambda child: child and str(pathlib.PurePath(child).parent) == (name or ".")
        self.flushed = {key: value for key, value in self.flushed.items() if not inside(key)}
        self.flushed.update((key, value) for key, value in self.names.items() if inside(key))

    def take(self, call, arguments, result):
        descriptor = OF_DESCRIPTOR.match(arguments)
        paths = [self.name(text(it).decode(errors="replace")) for it in TEXT.findall(arguments)]
        if descriptor:
            on = self.name(text(descriptor[1]).decode())
            if on is None:
                return
            if call == "write":
                self.names[on].written += text(TEXT.search(arguments)[1])[:result]
            elif call == "fsync":
                self.flush(on)
        elif not paths or None in paths:
            return
        elif call in ("open", "openat") and "O_CREAT" in arguments:
            self.names.setdefault(paths[0], File())
        elif call == "mkdir":
            self.names[paths[0]] = None
        elif call in ("unlink", "unlinkat"):
            self.names.pop(paths[0])
        elif call in ("rename", "renameat2"):
            self.names[paths[1]] = self.names.pop(paths[0])

    def leave(self, lost):
        root = pathlib.Path(self.root)
        root.mkdir()
        for name, content in sorted((self.flushed if lost == "names" else self.names).items()):
            path = root / name
            if not name or not path.parent.is_dir():
                continue  # its folder was not on the disk
            if content is None:
                path.mkdir()
            else:
                path.write_bytes(content.flushed)


disk = Disk(sys.argv[1], pathlib.Path(sys.argv[2]))
for line in open(sys.argv[3]):
    match = CALL.match(line)
    if match and int(match[3]) >= 0 and "INJECTED" not in line:
        disk.take(match[1], match[2], int(match[3]))
disk.leave(sys.argv[4])
