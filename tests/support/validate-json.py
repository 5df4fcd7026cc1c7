#!/usr/bin/python3
"""Checks JSON documents against a JSON Schema (draft 2020-12).

    validate-json.py SCHEMA FILE...     a FILE of "-" is standard input

Prints "valid", or where in the document and what is most wrong, for each document in order;
exits 1 when one is invalid.
"""
import json
import sys

import jsonschema


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        validator = jsonschema.Draft202012Validator(json.load(file))
    status = 0
    for name in sys.argv[2:]:
        if name == "-":
            document = json.load(sys.stdin)
        else:
            with open(name, encoding="utf-8") as file:
                document = json.load(file)
        error = jsonschema.exceptions.best_match(validator.iter_errors(document))
        if error is None:
            print("valid")
            continue
        # Of the alternatives (a stick check or a report), the one that came closest.
        while error.context:
            error = jsonschema.exceptions.best_match(error.context)
        where = "/".join(str(part) for part in error.absolute_path)
        print(f"invalid at /{where}: {error.message[:300]}")
        status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
