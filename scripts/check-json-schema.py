#!/usr/bin/env python3
"""Checks JSON documents against one of sentrel-acl's schemas (cli/schema/*.schema.json, which
refer to each other by file name). Prints every fault with its JSON path; exit status 1 if any.

Usage: scripts/check-json-schema.py SCHEMA DOCUMENT...
"""
import json
import pathlib
import sys

from jsonschema import Draft202012Validator


def validator_for(schema_path):
    schemas = {p.name: json.loads(p.read_text()) for p in schema_path.parent.glob("*.schema.json")}
    for schema in schemas.values():
        Draft202012Validator.check_schema(schema)
    root = schemas[schema_path.name]
    try:
        from referencing import Registry, Resource
        registry = Registry().with_resources((name, Resource.from_contents(s)) for name, s in schemas.items())
        return Draft202012Validator(root, registry=registry)
    except ImportError:  # jsonschema before 4.18
        from jsonschema import RefResolver
        return Draft202012Validator(root, resolver=RefResolver(schema_path.name, root, store=schemas))


def main(argv):
    if len(argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    validator = validator_for(pathlib.Path(argv[1]))
    faults = 0
    for name in argv[2:]:
        with open(name, encoding="utf-8") as f:
            document = json.load(f)
        for error in sorted(validator.iter_errors(document), key=lambda e: e.json_path):
            print(f"{name}: {error.json_path}: {error.message}")
            faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
