#!/usr/bin/env python3
"""Validates documents of packaging/spdx against spdx.schema.json, and their references.

usage: validate_spdx.py FILE...
"""
import json
import pathlib
import sys

import jsonschema

SCHEMA = json.loads((pathlib.Path(__file__).parent / "spdx.schema.json").read_text())


def check(condition, problem):
    if not condition:
        raise ValueError(problem)


def validate(document):
    jsonschema.validate(document, SCHEMA)
    ids = [document["SPDXID"]] + [package["SPDXID"] for package in document["packages"]]
    check(len(ids) == len(set(ids)), "two elements have the same SPDXID")
    related = set()
    for relation in document["relationships"]:
        ends = {relation["spdxElementId"], relation["relatedSpdxElement"]}
        check(ends <= set(ids), f"a relationship names what is not there: {ends - set(ids)}")
        related |= ends
    check(related == set(ids), f"no relationship names {set(ids) - related}")
    licences = [licence["licenseId"] for licence in document["hasExtractedLicensingInfos"]]
    check(len(licences) == len(set(licences)), "two licences have the same licenseId")
    used = {package["licenseDeclared"] for package in document["packages"]} - {"NOASSERTION"}
    check(used == set(licences), f"licences used and licences given differ: {used ^ set(licences)}")


for name in sys.argv[1:]:
    try:
        validate(json.loads(pathlib.Path(name).read_text()))
    except (jsonschema.ValidationError, ValueError) as error:
        sys.exit(f"{name}: {getattr(error, 'message', error)}")
