#!/usr/bin/env python3
"""Holds the documents that the tool dumps, and documents (.json), against their schema.

Arguments: the tool, the schema, profiles and documents.
"""
import json
import subprocess
import sys

import jsonschema

tool, schema_path, *profiles = sys.argv[1:]
with open(schema_path, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
for profile in profiles:
    if profile.endswith(".json"):
        with open(profile, encoding="utf-8") as file:
            document = json.load(file)
    else:
        document = json.loads(subprocess.run([tool, "dump", profile], capture_output=True, check=True).stdout)
    validator.validate(document)
    print(f"{profile}: fits the schema")
if not profiles:
    sys.exit("no profiles given")
