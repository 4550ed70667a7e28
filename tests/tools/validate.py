#!/usr/bin/env python3
"""Validates what networkgrpc --json printed against its schema.

usage: validate.py SCHEMA-FOLDER FILE...

A FILE is a recording of golden.bats, or "-": standard input with one object per line.
In a recording, the exit status must be the code of the error, or 0.
"""
import json
import pathlib
import re
import sys

import jsonschema

NOT_OUTPUT = re.compile(r"standard error: |\(exit status \d+\)$|$")


def objects(name):
    """The JSON objects of a file: where each is, its text, its exit status if recorded."""
    if name == "-":
        return [(f"line {number}", line, None) for number, line in enumerate(sys.stdin, 1)]
    found = []
    for paragraph in pathlib.Path(name).read_text(encoding="utf-8").split("\n$ ")[1:]:
        command, *lines = paragraph.splitlines()
        output = "\n".join(line for line in lines if not NOT_OUTPUT.match(line))
        if not command.endswith("  # as in success_json.txt"):
            status = re.search(r"^\(exit status (\d+)\)$", paragraph, re.M)
            found.append((command, output.replace(":TIME", ":0.5"), int(status[1]) if status else 0))
    return found


def explain(error):
    """The member and what is wrong with it, of the alternative that the object is meant to be."""
    while error.context:
        alternatives = {}
        for inner in error.context:
            alternatives.setdefault(inner.schema_path[0], []).append(inner)
        meant = [errors for errors in alternatives.values() if not any(map(is_of_another_kind, errors))]
        if len(meant) != 1:
            break
        error = meant[0][0]
    if error.validator == "oneOf" and not error.absolute_path:
        return f"$.command: {error.instance['command']!r} is unknown"
    return f"{error.json_path}: {error.message}"


def is_of_another_kind(error):
    return error.validator in ("const", "enum", "type") and list(error.relative_path) in ([], ["command"])


def main(folder, names):
    schemas = {path.name: json.loads(path.read_text()) for path in pathlib.Path(folder).glob("*.json")}
    for schema in schemas.values():
        jsonschema.Draft202012Validator.check_schema(schema)
    # One document of all, as Debian 12 and 13 have different interfaces to several.
    schema = schemas.pop("output.schema.json")
    schema["$defs"].update(schemas)
    validator = jsonschema.Draft202012Validator(schema)
    for name in names:
        found = objects(name)
        if not found:
            sys.exit(f"{name}: no object")
        for place, text, status in found:
            try:
                one = json.loads(text)
            except ValueError as error:
                sys.exit(f"{name}: {place}: not one JSON object: {error}")
            for error in validator.iter_errors(one):
                sys.exit(f"{name}: {place}: {explain(error)}")
            code = one.get("error", {"code": 0})["code"]
            if status is not None and code != status:
                sys.exit(f"{name}: {place}: error code {code}, exit status {status}")


main(sys.argv[1], sys.argv[2:])
