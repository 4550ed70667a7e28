#!/usr/bin/env python3
"""Validates recorded JSON output, and tests the validation itself.

usage: validate.py SCHEMA-FOLDER FILE...

A FILE is one JSON object, or a recording: a line with the command, the object,
lines of standard error, the exit status. "-" is standard input, one object a line.
"""
import json
import pathlib
import sys

import jsonschema


def objects(name):
    """The objects of a file, with the exit status where it is recorded."""
    text = sys.stdin.read() if name == "-" else pathlib.Path(name).read_text()
    status = None
    found = []
    for line in text.replace(":TIME", ":0.5").splitlines():
        if line.startswith("exit status: "):
            status = int(line.split()[-1])
        elif not line.startswith(("$ ", "standard error: ")):
            found.append(json.loads(line))
    return found, status


def main(folder, names):
    store = {path.name: json.loads(path.read_text()) for path in pathlib.Path(folder).glob("*.json")}
    for schema in store.values():
        jsonschema.Draft202012Validator.check_schema(schema)
    schema = store["output.schema.json"]
    resolver = jsonschema.RefResolver("output.schema.json", schema, store=store)
    validator = jsonschema.Draft202012Validator(schema, resolver=resolver)
    for name in names:
        found, status = objects(name)
        if not found or (status is not None and len(found) != 1):
            sys.exit(f"{name}: {len(found)} objects")
        for one in found:
            for error in validator.iter_errors(one):
                sys.exit(f"{name}: {error.json_path}: {error.message}")
            code = one.get("error", {"code": 0})["code"]
            if status is not None and code != status:
                sys.exit(f"{name}: error code {code}, exit status {status}")


main(sys.argv[1], sys.argv[2:])
