#!/usr/bin/env python3
"""Imports models one after another into a new state, and checks each report against the schema, beyond which a status
has to be the first of an object's changes. Usage: validate-report.py SCHEMA HOST PLUGIN FOLDER MODEL..."""
import json
import shutil
import subprocess
import sys

import jsonschema

schema_file, host, plugin, folder, *models = sys.argv[1:]
with open(schema_file, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft7Validator.check_schema(schema)
shutil.rmtree(folder, ignore_errors=True)
report_file = folder + ".json"
for model in models:
    command = [host, "--plugin", plugin, "--state", folder, "--report", report_file, model]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    with open(report_file, encoding="utf-8") as file:
        report = json.load(file)
    jsonschema.validate(report, schema)
    assert report["objects"] and sum(report["counts"].values()) == len(report["objects"])
    for item in report["objects"]:
        assert item["status"] == (item["changes"] or ["unchanged"])[0], item

# The schema says something: a report with a member that nobody knows, or without one that is needed, is refused.
for damage in (lambda o: o.update(mood="good"), lambda o: o.pop("box"), lambda o: o.update(status="gone")):
    damaged = json.loads(json.dumps(report))
    damage(damaged["objects"][0])
    try:
        jsonschema.validate(damaged, schema)
    except jsonschema.ValidationError:
        continue
    sys.exit("a damaged report is valid")
print("valid")
