#!/usr/bin/env python3
"""Checks that the schemas in docs/ accept what the program writes and reject damaged documents.

schema_test.py PROGRAM
"""
import base64
import copy
import json
import os
import pathlib
import subprocess
import sys
import tempfile

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


def piece(document):
    return find(document, "kind", "ControlNode")


# Each damages the document of examples/fit.py in one way.
DAMAGED_PIECES = {
    "a piece without its text": lambda d: piece(d).pop("text"),
    "a piece without its id": lambda d: piece(d).pop("id"),
    "a piece without its type": lambda d: piece(d).pop("type"),
    "a piece without its range": lambda d: piece(d).pop("range"),
    "a piece without its data": lambda d: piece(d).pop("data"),
    "a range with one number": lambda d: piece(d)["range"].pop(),
    "a range with three numbers": lambda d: piece(d)["range"].append(9),
    "a range below 0": lambda d: piece(d)["range"].__setitem__(0, -1),
    "data that is a list": lambda d: piece(d).update(data=[]),
    "a piece with an unknown key": lambda d: piece(d).update(extra=1),
    "a node of another bundle with an id": lambda d: piece(d).update(kind="CodeNode"),
}

# Each damages the document of examples/tasks.py in one way.
DAMAGE = {
    "no schema version": lambda d: d.pop("schemaVersion"),
    "another schema version": lambda d: d.update(schemaVersion=2),
    "no file": lambda d: d.pop("file"),
    "an unknown key": lambda d: d.update(extra=1),
    "nodes that are not a list": lambda d: d.update(nodes={}),
    "a node whose kind is empty": lambda d: d["nodes"][0].update(kind=""),
    "a node of another bundle without children": lambda d: d["nodes"].append(
        {"kind": "CodeNode", "anchorId": "", "contributorData": [], "parserFailures": []}),
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


# Each damages the record of a file that could not be parsed in one way.
DAMAGED_ERRORS = {
    "an error and nodes": lambda d: d.update(nodes=[]),
    "no line": lambda d: d["error"].pop("line"),
    "a column below 0": lambda d: d["error"].update(column=-1),
    "an empty message": lambda d: d["error"].update(message=""),
    "no remedy": lambda d: d["error"].pop("remedy"),
    "an unknown key in an error": lambda d: d["error"].update(extra=1),
    "bytes that are not base64": lambda d: d.update(fileBytes="/w="),
}


# Each damages a record about a file in one way; the first diagnostic has a note and a fix.
DAMAGED_CHECKS = {
    "no schema version": lambda d: d.pop("schemaVersion"),
    "no file": lambda d: d.pop("file"),
    "an unknown key": lambda d: d.update(extra=1),
    "an id with a blank": lambda d: d["diagnostics"][0].update(id="a b"),
    "another severity": lambda d: d["diagnostics"][0].update(severity="error"),
    "a line 0": lambda d: d["diagnostics"][0].update(line=0),
    "a column that is a string": lambda d: d["diagnostics"][0].update(column="1"),
    "no end": lambda d: d["diagnostics"][0].pop("endColumn"),
    "an empty message": lambda d: d["diagnostics"][0].update(message=""),
    "notes that are null": lambda d: d["diagnostics"][0].update(notes=None),
    "a note without a message": lambda d: d["diagnostics"][0]["notes"][0].pop("message"),
    "no fix": lambda d: d["diagnostics"][0].pop("fix"),
    "a fix without edits": lambda d: d["diagnostics"][0]["fix"].update(edits=[]),
    "bytes that are not base64": lambda d: d.update(fileBytes="/w="),
    "an edit without its text": lambda d: d["diagnostics"][0]["fix"]["edits"][0].pop("text"),
}


def check_odd_name(program):
    """Returns the record of `check` about a file whose name is not UTF-8."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(os.fsencode(folder), b"\xff")
        with open(path, "wb"):
            pass
        return json.loads(subprocess.run([program, "check", "--format", "json", path], capture_output=True, timeout=60).stdout)


def check_problems(program):
    """Returns what is wrong with the records of `check`."""
    validator = jsonschema.Draft7Validator(json.loads((ROOT / "docs" / "check.schema.json").read_text()))
    validator.check_schema(validator.schema)
    sources = [*EXAMPLES, *(path for path in (ROOT / "tests" / "golden" / "check").iterdir()
                            if path.suffix != ".expected")]
    done = subprocess.run([program, "check", "--format", "json", *map(str, sources)], capture_output=True, timeout=60)
    records = [json.loads(line) for line in done.stdout.decode().split("\n")[:-1]]
    problems = [f"{record['file']}: {error.message}" for record in records for error in validator.iter_errors(record)]
    if len(records) != len(sources) or len(sources) < 40:
        problems.append(f"{len(records)} records of {len(sources)} files")
    record = check_odd_name(program)
    problems += [f"{record['file']}: {error.message}" for error in validator.iter_errors(record)]
    record = next(record for record in records for diagnostic in record["diagnostics"][:1]
                  if diagnostic["notes"] and diagnostic["fix"])
    for name, damage in DAMAGED_CHECKS.items():
        damaged = copy.deepcopy(record)
        damage(damaged)
        if validator.is_valid(damaged):
            problems.append(f"{name}: the schema of check accepts it")
    return problems


def error_problems(program, validator):
    """Returns what is wrong with the record of a file that could not be parsed."""
    name = b"none \xff"
    done = subprocess.run([program, "parse", "--format", "ndjson", name], capture_output=True, timeout=60)
    record = json.loads(done.stdout)
    problems = [f"error record: {error.message}" for error in validator.iter_errors(record)]
    if record.get("fileBytes") != base64.b64encode(name).decode():
        problems.append(f"error record: {record}")
    for what, damage in DAMAGED_ERRORS.items():
        damaged = copy.deepcopy(record)
        damage(damaged)
        if validator.is_valid(damaged):
            problems.append(f"{what}: the schema accepts it")
    return problems


def main():
    program = sys.argv[1]
    schema = json.loads((ROOT / "docs" / "parse.schema.json").read_text())
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    problems = []
    documents = [document for options in ([], ["--trace"], ["--bare"])
                 for document in parse(program, *options, *map(str, EXAMPLES))]
    for document in documents:
        problems += [f"{document['file']}: {error.message}" for error in validator.iter_errors(document)]
    if len(documents) != 3 * len(EXAMPLES) or len(EXAMPLES) < 7:
        problems.append(f"{len(documents)} documents of {len(EXAMPLES)} examples")
    for file, cases in ("tasks.py", DAMAGE), ("fit.py", DAMAGED_PIECES):
        document = next(d for d in documents if d["file"].endswith(file))
        for name, damage in cases.items():
            damaged = copy.deepcopy(document)
            damage(damaged)
            if damaged == document:
                problems.append(f"{name}: nothing was damaged")
            elif validator.is_valid(damaged):
                problems.append(f"{name}: the schema accepts it")
    foreign = copy.deepcopy(document)
    node = {"kind": "CodeNode", "anchorId": "", "children": [], "contributorData": [], "parserFailures": []}
    foreign["nodes"] += [node, {**node, "text": "x"}]
    problems += [f"nodes of another bundle: {error.message}" for error in validator.iter_errors(foreign)]
    problems += error_problems(program, validator)
    problems += check_problems(program)
    damaged_count = sum(map(len, (DAMAGE, DAMAGED_PIECES, DAMAGED_ERRORS, DAMAGED_CHECKS)))
    print("\n".join(problems + [f"{len(documents)} documents, {damaged_count} damaged ones"]))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
