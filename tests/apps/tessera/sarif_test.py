#!/usr/bin/env python3
"""Checks the SARIF log that `tessera check` writes: against the schema, and against the JSON records.

sarif_test.py PROGRAM
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

import jsonschema

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
TESTS = pathlib.Path(__file__).resolve().parents[2]
SCHEMA = json.loads((TESTS / "data" / "sarif-schema-2.1.0.json").read_text())
SOURCES = [*sorted((TESTS / "golden" / "check").glob("*.in")),
           *sorted(path for path in (TESTS.parent / "examples").iterdir() if path.is_file())]


def check(*arguments, **options):
    return subprocess.run([PROGRAM, "check", *arguments], capture_output=True, timeout=120, **options)


def run_of(*names, **options):
    """Returns the only run of the log about the files."""
    log = json.loads(check("--format", "sarif", *names, **options).stdout)
    run, = log["runs"]
    return run


def units(text):
    return len(text.encode("utf-16-le")) // 2


def lines_of(path):
    return path.read_bytes().removeprefix(b"\xef\xbb\xbf").decode().replace("\r\n", "\n").split("\n")


def in_units(path, span):
    """Returns a place of a JSON record, in characters, as a SARIF region, in code units."""
    lines = [*lines_of(path), ""]
    return {"startLine": span["line"], "startColumn": units(lines[span["line"] - 1][:span["column"] - 1]) + 1,
            "endLine": span["endLine"], "endColumn": units(lines[span["endLine"] - 1][:span["endColumn"] - 1]) + 1}


class Sarif(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, text):
        (self.folder / name).write_bytes(text.encode())
        return str(self.folder / name)

    def test_the_log_is_valid(self):
        validator = jsonschema.Draft4Validator(SCHEMA)
        validator.check_schema(SCHEMA)
        for names in ([], [*map(str, SOURCES)], [str(self.folder / "none")]):
            with self.subTest(names=len(names)):
                done = check("--format", "sarif", *names, self.write("f", "x\n"))
                log = json.loads(done.stdout)
                self.assertEqual([error.message for error in validator.iter_errors(log)], [])
                # The schema allows any other log, too.
                self.assertEqual((log["version"], len(log["runs"])), ("2.1.0", 1))
        self.assertGreater(len(SOURCES), 15)

    def test_results_are_the_diagnostics_of_the_records(self):
        for path in SOURCES:
            with self.subTest(path=path.name):
                diagnostics = json.loads(check("--format", "json", str(path)).stdout)["diagnostics"]
                results = run_of(str(path))["results"]
                self.assertEqual(len(results), len(diagnostics))
                for result, diagnostic in zip(results, diagnostics):
                    self.compare(path, result, diagnostic)

    def compare(self, path, result, diagnostic):
        self.assertEqual(result["ruleId"], diagnostic["id"])
        self.assertEqual(result["level"], {"failure": "error", "warning": "warning"}[diagnostic["severity"]])
        self.assertTrue(result["message"]["text"].startswith(diagnostic["message"]))
        place = result["locations"][0]["physicalLocation"]
        self.assertEqual(place["region"], in_units(path, diagnostic))
        self.assertEqual(urllib.parse.unquote(urllib.parse.urlparse(place["artifactLocation"]["uri"]).path),
                         str(path))
        related = result.get("relatedLocations", [])
        self.assertEqual([(other["physicalLocation"]["region"], other["message"]["text"]) for other in related],
                         [(in_units(path, note), note["message"]) for note in diagnostic["notes"]])
        for other in related:
            self.assertIn(f"]({other['id']})", result["message"]["text"])
        edits = (diagnostic["fix"] or {"edits": []})["edits"]
        replacements = [replacement for fix in result.get("fixes", []) for change in fix["artifactChanges"]
                        for replacement in change["replacements"]]
        self.assertEqual([(one["deletedRegion"], one.get("insertedContent", {"text": ""})["text"])
                          for one in replacements], [(in_units(path, edit), edit["text"]) for edit in edits])

    def test_every_rule_has_help(self):
        rules = run_of(self.write("f", "x\n"))["tool"]["driver"]["rules"]
        self.assertGreaterEqual(len(rules), 10)
        for rule in rules:
            self.assertTrue(rule["shortDescription"]["text"] and rule["fullDescription"]["text"])
            self.assertIn(rule["fullDescription"]["text"].split()[0], rule["help"]["markdown"])
            self.assertIn(rule["id"], rule["help"]["text"])
            self.assertIn(rule["defaultConfiguration"]["level"], ("error", "warning"))

    def test_columns_count_utf16_code_units(self):
        run = run_of(self.write("f", "x = '\U0001F3C6'  # <@task#a>\n"))
        self.assertEqual(run["columnKind"], "utf16CodeUnits")
        region = run["results"][0]["locations"][0]["physicalLocation"]["region"]
        self.assertEqual((region["startColumn"], region["endColumn"]), (11, 22))

    def test_a_related_location_may_be_in_another_file(self):
        first, second = self.write("1.py", "x\n# <@task#a>\n"), self.write("2.py", "\U0001F3C6  # <@task#a>\n")
        [here, there] = [result["relatedLocations"][0] for result in run_of(first, second)["results"]]
        self.assertEqual([place["physicalLocation"]["artifactLocation"]["uri"] for place in (here, there)],
                         ["file://" + second, "file://" + first])
        self.assertEqual([place["physicalLocation"]["region"] for place in (here, there)],
                         [{"startLine": 1, "startColumn": 5, "endLine": 1, "endColumn": 16},
                          {"startLine": 2, "startColumn": 1, "endLine": 2, "endColumn": 12}])

    def test_names_of_files_are_uris(self):
        self.write("a b%#?ä.py", "# <@task#a>\n")
        relative = run_of("./a b%#?ä.py", cwd=self.folder)["results"][0]
        self.assertEqual(relative["locations"][0]["physicalLocation"]["artifactLocation"],
                         {"uri": "a%20b%25%23%3F%C3%A4.py"})
        absolute = run_of(str(self.folder / "a b%#?ä.py"))["results"][0]
        self.assertEqual(absolute["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
                         "file://" + urllib.parse.quote(str(self.folder)) + "/a%20b%25%23%3F%C3%A4.py")

    def fingerprints(self, text):
        return sorted(result["partialFingerprints"]["primaryLocationLineHash"]
                      for result in run_of(self.write("f.py", text))["results"])

    def test_fingerprints_survive_unrelated_edits(self):
        marked = "x = 1  # <@output#o [9,9]>\ny = 2  # <@output#p [9,9]>\n"
        before = self.fingerprints(marked)
        self.assertEqual(len(set(before)), 2)
        for edited in ("import os\n\n" + marked, marked + "z = 3\n", marked.replace("\n", "\n\n"),
                       "    " + marked.replace("\n", "\n    "), marked.replace("\n", "\r\n")):
            self.assertEqual(self.fingerprints(edited), before)
        changed = self.fingerprints(marked.replace("x = 1", "x = 2"))
        self.assertEqual(len(set(changed) & set(before)), 1)

    def test_equal_lines_have_different_fingerprints(self):
        line = "x = 1  # <@output#o [9,9]>\n"
        self.assertEqual(len(set(self.fingerprints(3 * line))), 3)
        self.assertEqual(self.fingerprints(2 * line), self.fingerprints(3 * line)[:2])

    def test_a_file_that_cannot_be_checked_is_a_notification(self):
        done = check("--format", "sarif", str(self.folder / "none"), self.write("f", "# <@task#a>\n"))
        self.assertEqual(done.returncode, 3)
        run, = json.loads(done.stdout)["runs"]
        invocation, = run["invocations"]
        self.assertFalse(invocation["executionSuccessful"])
        notification, = invocation["toolExecutionNotifications"]
        self.assertEqual(notification["message"]["text"],
                         "cannot be opened: No such file or directory; check the name")
        self.assertEqual(len(run["results"]), 1)


if __name__ == "__main__":
    unittest.main()
