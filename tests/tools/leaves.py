#!/usr/bin/env python3
"""Prints the leaves of results of networkgrpc, for values.bats.

usage: leaves.py schema SCHEMA-FOLDER   the leaves that the schema allows, "[]" for entries
       leaves.py reached                of the result on standard input: those with a value
       leaves.py paths                  the same, with the names of entries
       leaves.py values                 the same: the values, as --get prints them
"""
import json
import pathlib
import re
import sys


def key(entry, position):
    """How a path names an entry of a list."""
    if isinstance(entry, dict):
        for name in ("rx_channel", "name", "id"):
            if name in entry:
                return str(entry[name])
    return str(position)


def leaves(value, path=""):
    if isinstance(value, dict) and value:
        for name, member in value.items():
            yield from leaves(member, f"{path}.{name}" if path else name)
    elif isinstance(value, list) and value:
        for position, entry in enumerate(value):
            yield from leaves(entry, f"{path}[{key(entry, position)}]")
    elif value is not None:
        yield path, value


class Schema:
    def __init__(self, folder):
        self.files = {path.name: json.loads(path.read_text()) for path in pathlib.Path(folder).glob("*.json")}

    def all_leaves(self):
        for choice in self.files["output.schema.json"]["then"]["oneOf"]:
            result = choice["properties"]["result"]
            if result != {"$ref": "state.schema.json"}:  # has members of simulated devices only
                yield from self.leaves(result, "output.schema.json")

    def leaves(self, node, file, path=""):
        if "$ref" in node:
            name, pointer = node["$ref"].split("#") if "#" in node["$ref"] else (node["$ref"], "")
            target = self.files[name or file]
            for step in pointer.strip("/").split("/") if pointer else []:
                target = target[step]
            yield from self.leaves(target, name or file, path)
        choices = [node[word] for word in ("then", "else") if word in node] + node.get("oneOf", [])
        for choice in choices:
            yield from self.leaves(choice, file, path)
        for name, member in node.get("properties", {}).items():
            yield from self.leaves(member, file, f"{path}.{name}" if path else name)
        if "items" in node:
            yield from self.leaves(node["items"], file, f"{path}[]")
        if "$ref" not in node and not choices and node.get("type") not in ("null", "object", "array"):
            if "properties" not in node and "items" not in node:
                yield path


def main(action, *folder):
    if action == "schema":
        print("\n".join(sorted(set(Schema(*folder).all_leaves()))))
        return
    document = json.load(sys.stdin)
    for path, value in leaves(document.get("result")):
        if action == "paths":
            print(path)
        elif action == "reached":
            print(re.sub(r"\[[^]]*\]", "[]", path))
        else:
            print(value if isinstance(value, str) else json.dumps(value))


main(*sys.argv[1:])
