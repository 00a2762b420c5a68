#!/usr/bin/env python3
"""Holds the documents that the tool dumps against their schema. Arguments: the tool, the schema, profiles."""
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
    dump = subprocess.run([tool, "dump", profile], capture_output=True, check=True)
    validator.validate(json.loads(dump.stdout))
    print(f"{profile}: fits the schema")
if not profiles:
    sys.exit("no profiles given")
