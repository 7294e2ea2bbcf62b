#!/usr/bin/env python3
"""Checks that --omit-empty leaves out empty members only: with the defaults restored, documents are the full ones.

omit_empty_test.py PROGRAM [--update]

--update writes docs/parse-omit-empty.schema.json anew from the schema of the full form.
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[3]
FULL_SCHEMA = ROOT / "docs" / "parse.schema.json"
SCHEMA = ROOT / "docs" / "parse-omit-empty.schema.json"
PROGRAM = sys.argv.pop(1)
SOURCES = sorted(str(path) for folder in ("examples", "tests/golden") for path in (ROOT / folder).rglob("*")
                 if path.is_file())

COMMON = {"anchorId": "", "children": [], "contributorData": [], "parserFailures": []}
TASK_DATA = {key: "" for key in ("taskId", "text", "appIdentifier", "appState", "appVariables", "appVariablesUserMap",
                                 "view", "executionModel", "autoRun", "collapsed")} | {"numCodeLines": 0}
PIECE = {"text": "", "id": "", "type": "", "data": {}}
NODES = {"PlainTextNode": {"text": ""}, "LiveAppIntegratedInlineNode": {"id": "", "liveTaskData": TASK_DATA},
         "OutputNode": PIECE, "ControlNode": PIECE}
LINE = {"parser": "", "type": {"group": 0, "kind": 0}, "flag": False, "markerTypes": [], "nodes": []}
# Objects whose members are data of an author or of a bundle: nothing in them is left out.
VERBATIM = ("data", "failureData")
# Members that are always there, and those of an error.
ALWAYS = {"schemaVersion", "file", "fileBytes", "kind", "line", "error", "range", "failureId"}
ALWAYS_IN_ERRORS = {"message"}


def restore(value, defaults):
    """Returns the object `value` with the defaults that it lacks, also in objects below it."""
    restored = {**defaults, **value}
    for key, default in defaults.items():
        if isinstance(default, dict) and key not in VERBATIM:
            restored[key] = restore(restored[key], default)
    return restored


def restore_node(node):
    node = restore(node, COMMON | NODES.get(node["kind"], {}))
    node["children"] = [restore_node(child) for child in node["children"]]
    node["contributorData"] = [restore(data, {"contributingFeature": "", "lineData": []})
                               for data in node["contributorData"]]
    marker = {"markerId": "", "featureId": "", "subFeatureId": ""}
    node["parserFailures"] = [restore(failure, {"failureId": "", "markerInfo": marker, "failureData": {}})
                              for failure in node["parserFailures"]]
    return node


def restore_record(record, is_traced):
    if "error" in record:
        return record | {"error": restore(record["error"], {"line": 0, "column": 0, "message": "", "remedy": ""})}
    record = restore(record, {"nodes": [], "lines": []})
    record["nodes"] = [restore_node(node) for node in record["nodes"]]
    record["lines"] = [restore(line, LINE | ({"log": []} if is_traced else {})) for line in record["lines"]]
    return record


def empties(value, is_verbatim=False):
    """Yields the keys of empty members below `value`."""
    if isinstance(value, dict):
        for key, child in value.items():
            if not is_verbatim and child in ("", [], {}, None, False, 0):
                yield key
            yield from empties(child, is_verbatim or key in VERBATIM or key == "lineData")
    elif isinstance(value, list):
        for child in value:
            yield from empties(child, is_verbatim)


def derive(schema):
    """Returns the schema of the form without empty members."""
    if isinstance(schema, list):
        return [derive(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    derived = {key: derive(part) for key, part in schema.items()}
    always = ALWAYS_IN_ERRORS if "remedy" in schema.get("properties", {}) else ALWAYS
    if isinstance(schema.get("required"), list):
        derived["required"] = [key for key in schema["required"] if key in always]
    if "additionalProperties" in schema and "properties" in schema:
        for key, part in derived["properties"].items():
            if key not in always:
                derived["properties"][key] = {"allOf": [part, {"not": {"enum": ["", [], {}, None, False, 0]}}]}
    return derived


def derived_schema():
    schema = derive(json.loads(FULL_SCHEMA.read_text()))
    schema["title"] = "One file's document as `tessera parse --format json --omit-empty` writes it"
    return json.dumps(schema, indent=2) + "\n"


def parse(*arguments):
    done = subprocess.run([PROGRAM, "parse", *arguments], capture_output=True, timeout=120)
    return done.stdout.decode()


def records(text):
    return [json.loads(line) for line in text.split("\n")[:-1]]


class OmitEmpty(unittest.TestCase):
    def test_the_full_form_can_be_restored(self):
        self.assertGreater(len(SOURCES), 100)
        with tempfile.NamedTemporaryFile() as empty:
            sources = [*SOURCES, empty.name, "/missing"]
            for options in ([], ["--trace"], ["--bare"]):
                full = records(parse("--format", "ndjson", *options, *sources))
                short = records(parse("--format", "ndjson", "--omit-empty", *options, *sources))
                self.assertEqual(len(full), len(sources))
                for expected, record in zip(full, short, strict=True):
                    self.assertEqual(list(empties(record)), [])
                    self.assertEqual(restore_record(record, "--trace" in options), expected)

    def test_both_layouts_have_the_same_members(self):
        compact = records(parse("--format", "ndjson", "--omit-empty", SOURCES[0]))
        self.assertEqual(json.loads(parse("--format", "json", "--omit-empty", SOURCES[0])), compact[0])

    def test_the_schema_is_that_of_the_full_form_without_empty_members(self):
        self.assertEqual(SCHEMA.read_text(), derived_schema(), "run omit_empty_test.py PROGRAM --update")
        schema = json.loads(SCHEMA.read_text())
        jsonschema.Draft7Validator.check_schema(schema)
        validator = jsonschema.Draft7Validator(schema)
        examples = [source for source in SOURCES if source.startswith(str(ROOT / "examples"))]
        short = records(parse("--format", "ndjson", "--omit-empty", "--trace", *examples, "/missing"))
        for record in short:
            self.assertEqual([error.message for error in validator.iter_errors(record)], [], record["file"])
        for record in records(parse("--format", "ndjson", *examples)):
            self.assertFalse(validator.is_valid(record), record["file"])


if __name__ == "__main__":
    if "--update" in sys.argv:
        SCHEMA.write_text(derived_schema())
    else:
        unittest.main()
