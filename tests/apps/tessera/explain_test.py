#!/usr/bin/env python3
"""Runs the example of every diagnostic through the program, before and after.

explain_test.py PROGRAM SLIDER_BUNDLE
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SLIDER_BUNDLE = pathlib.Path(sys.argv.pop(1)).resolve()
GOLDEN = pathlib.Path(__file__).resolve().parents[2] / "golden"
EXAMPLE = re.compile(r"^(Before|After)(?: \(with ([^)]*)\))?:\n\n```text\n(.*?)^```$", re.MULTILINE | re.DOTALL)
REPEATED = re.compile(r"^(.*?) *# and ([\d,]+) lines more\n", re.MULTILINE)


def tessera(*arguments, **options):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, timeout=120, **options)


def repeat_lines(source):
    """Writes the lines that an example only counts."""
    return REPEATED.sub(lambda row: f"{row[1]}\n" * (int(row[2].replace(",", "")) + 1), source)


class Entry:
    """What `tessera explain` says about one diagnostic."""

    def __init__(self, name):
        self.name = name
        text = tessera("explain", "--format", "markdown", name).stdout.decode()
        examples = {kind: (options, repeat_lines(source)) for kind, options, source in EXAMPLE.findall(text)}
        self.options, self.before = examples.get("Before", ("", ""))
        _, self.after = examples.get("After", ("", ""))
        self.options = [str(SLIDER_BUNDLE) if word == "FILE" else word for word in self.options.split()]
        self.has_fix = "`tessera check --fix`: " in text


ENTRIES = [Entry(row.split()[0]) for row in tessera("explain").stdout.decode().splitlines()]


class Examples(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        # The language must be one whose strings are recognized.
        self.file = pathlib.Path(holder.name) / "example.py"

    def diagnostics(self, source, options):
        self.file.write_text(source, encoding="utf-8")
        done = tessera("check", "--format", "json", *options, str(self.file))
        self.assertEqual(done.stderr, b"")
        return json.loads(done.stdout)["diagnostics"]

    def test_every_diagnostic_has_an_example(self):
        for entry in ENTRIES:
            with self.subTest(entry.name):
                self.assertTrue(entry.before and entry.after)

    def test_only_the_diagnostic_is_found_before_and_nothing_after(self):
        for entry in ENTRIES:
            with self.subTest(entry.name):
                before = self.diagnostics(entry.before, entry.options)
                self.assertEqual({diagnostic["id"] for diagnostic in before}, {entry.name})
                self.assertEqual(self.diagnostics(entry.after, entry.options), [])

    def test_fix_turns_before_into_after_where_the_entry_promises_a_fix(self):
        for entry in ENTRIES:
            with self.subTest(entry.name):
                self.file.write_text(entry.before, encoding="utf-8")
                done = tessera("check", "--fix", *entry.options, str(self.file))
                self.assertEqual(self.file.read_text(encoding="utf-8"),
                                 entry.after if entry.has_fix else entry.before)
                self.assertEqual(b"fix made" in done.stderr, entry.has_fix)

    def test_only_entries_that_promise_one_have_fixes(self):
        promised = {entry.name for entry in ENTRIES if entry.has_fix}
        fixed = set()
        for folder, options in (("check", ()), ("check_without_pieces", ("--bare",))):
            sources = [path for path in (GOLDEN / folder).iterdir() if path.suffix != ".expected"]
            done = tessera("check", "--format", "json", *options, *map(str, sources))
            for record in done.stdout.decode().split("\n")[:-1]:
                fixed |= {found["id"] for found in json.loads(record)["diagnostics"] if found["fix"]}
        self.assertLessEqual(fixed, promised)


if __name__ == "__main__":
    unittest.main()
