#!/usr/bin/env python3
"""Checks that docs/parse.schema.json accepts what the program writes and rejects damaged documents.

schema_test.py PROGRAM
"""
import copy
import json
import pathlib
import subprocess
import sys

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[3]
EXAMPLES = sorted(path for path in (ROOT / "examples").iterdir() if path.is_file())


def parse(program, *arguments):
    done = subprocess.run([program, "parse", "--format", "ndjson", *arguments], capture_output=True,
                          check=True, timeout=60)
    return [json.loads(line) for line in done.stdout.decode().split("\n")[:-1]]


def find(value, key, wanted):
    """Returns the first object below `value` whose `key` is `wanted`."""
    if isinstance(value, dict):
        if value.get(key) == wanted:
            return value
        value = list(value.values())
    if isinstance(value, list):
        for child in value:
            if (found := find(child, key, wanted)) is not None:
                return found
    return None


def task(document):
    return find(document, "kind", "LiveAppIntegratedInlineNode")


def text(document):
    return find(document, "kind", "PlainTextNode")


def failure(document):
    return find(document, "failureId", "overlapping_task_marker")


# Each damages the document of examples/tasks.py in one way.
DAMAGE = {
    "no schema version": lambda d: d.pop("schemaVersion"),
    "another schema version": lambda d: d.update(schemaVersion=2),
    "no file": lambda d: d.pop("file"),
    "an unknown key": lambda d: d.update(extra=1),
    "nodes that are not a list": lambda d: d.update(nodes={}),
    "a node of an unknown kind": lambda d: d["nodes"][0].update(kind="CodeNode"),
    "a node without a kind": lambda d: d["nodes"][0].pop("kind"),
    "a line node with a text": lambda d: d["nodes"][0].update(text=""),
    "a text node without its text": lambda d: text(d).pop("text"),
    "a text that is null": lambda d: text(d).update(text=None),
    "a node without children": lambda d: text(d).pop("children"),
    "a task without its id": lambda d: task(d).pop("id"),
    "a task without one of its texts": lambda d: task(d)["liveTaskData"].pop("view"),
    "a count of lines that is a string": lambda d: task(d)["liveTaskData"].update(numCodeLines="4"),
    "a count of lines beyond 16 bits": lambda d: task(d)["liveTaskData"].update(numCodeLines=65536),
    "a boolean for a string of a task": lambda d: task(d)["liveTaskData"].update(autoRun=True),
    "a failure without data": lambda d: failure(d).pop("failureData"),
    "a failure whose marker lacks a part": lambda d: failure(d)["markerInfo"].pop("subFeatureId"),
    "contributor data without a feature": lambda d: d["nodes"][0].update(
        contributorData=[{"lineData": []}]),
    "line data that is not an object": lambda d: d["nodes"][0].update(
        contributorData=[{"contributingFeature": "f", "lineData": [1]}]),
    "a line with the number 0": lambda d: d["lines"][0].update(line=0),
    "a line without its parser": lambda d: d["lines"][0].pop("parser"),
    "a type with a third part": lambda d: d["lines"][0]["type"].update(flag=0),
    "a kind that does not fit a byte": lambda d: d["lines"][0]["type"].update(kind=256),
    "a flag that is a string": lambda d: d["lines"][0].update(flag="false"),
    "a marker type twice": lambda d: d["lines"][0].update(markerTypes=["%<@task>", "%<@task>"]),
    "a node index below 0": lambda d: d["lines"][0].update(nodes=[-1]),
    "a log that is a string": lambda d: d["lines"][0].update(log="x"),
}


def main():
    program = sys.argv[1]
    schema = json.loads((ROOT / "docs" / "parse.schema.json").read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    problems = []
    documents = parse(program, *map(str, EXAMPLES)) + parse(program, "--trace", *map(str, EXAMPLES))
    for document in documents:
        problems += [f"{document['file']}: {error.message}" for error in validator.iter_errors(document)]
    if len(documents) != 2 * len(EXAMPLES) or len(EXAMPLES) < 7:
        problems.append(f"{len(documents)} documents of {len(EXAMPLES)} examples")
    tasks = next(d for d in documents if d["file"].endswith("tasks.py"))
    for name, damage in DAMAGE.items():
        damaged = copy.deepcopy(tasks)
        damage(damaged)
        if damaged == tasks:
            problems.append(f"{name}: nothing was damaged")
        elif validator.is_valid(damaged):
            problems.append(f"{name}: the schema accepts it")
    print("\n".join(problems + [f"{len(documents)} documents, {len(DAMAGE)} damaged ones"]))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
