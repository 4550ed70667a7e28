"""Reads the faults that are written by hand; as a program, checks that each can be made."""

import os
import re
import sys

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


def read_faults():
    """Description: (name of the file, its content with the fault)."""
    faults = {}
    with open(os.path.join(ROOT, "tests/mutation/faults.txt"), encoding="utf-8") as file:
        blocks = re.sub("^#.*\n", "", file.read(), flags=re.MULTILINE).strip().split("\n\n")
    for block in blocks:
        title, *lines = block.split("\n")
        name = title.split(": ")[0]
        with open(os.path.join(ROOT, name), encoding="utf-8") as file:
            content = file.read()
        for old, new in zip(lines[::2], lines[1::2]):
            if content.count(old[2:]) != 1:
                sys.exit(f"mutate: {title}: not in the file once: {old[2:]}")
            content = content.replace(old[2:], new[2:])
        faults[title] = (name, content.encode())
    return faults


if __name__ == "__main__":
    print(len(read_faults()), "faults")
