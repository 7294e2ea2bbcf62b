#!/usr/bin/env python3
"""Runs `check` as its users do.

check_test.py PROGRAM
"""
import json
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
PIECES = ["# <@task#a>", "# <@task#a>", "# <@task#b>", "// <@task#bb>", "/* <@task#a> */", "x", "yy",
          "# <@output#o [0,2]>", "# <@output#o [4,2]>", "# <@output#p [0,9]>", "-- <@text:anchor#a [1,1]>",
          "# <@task#a", "# <@control#c [0,1] {]}>"]
# The messages of failures for which no reason was found.
UNEXPLAINED = r"has no partner$|is inside another task$|cannot be used$"


def tessera(*arguments, stdin=b"", **options):
    return subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=120, **options)


def documents(output):
    return [json.loads(line) for line in output.decode().split("\n")[:-1]]


class Check(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return str(path)

    def headings(self, name, *options):
        """Returns the first row of each diagnostic of a file, without the file's name."""
        rows = tessera("check", *options, name).stdout.decode().split("\n")[:-1]
        self.assertEqual(len(rows) % 3, 0)
        for heading, excerpt, mark in zip(rows[::3], rows[1::3], rows[2::3]):
            self.assertTrue(heading.startswith(name + ":"), heading)
            self.assertEqual((excerpt[6:9], mark[:9].strip()), (" | ", "|"))
        return [row.removeprefix(name) for row in rows[::3]]

    def test_the_status_says_what_was_found(self):
        fine = self.write("fine", b"x\n# <@text:anchor#a>\n")
        warning = self.write("warning", b"# <@appendix>\nx\n")
        failure = self.write("failure", b"# <@task#a>\n")
        statuses = {(): (0, 0, 1), ("--fail-on", "failure"): (0, 0, 1), ("--fail-on", "warning"): (0, 1, 1),
                    ("--fail-on", "never"): (0, 0, 0)}
        for options, expected in statuses.items():
            for format_options in ((), ("--format", "json")):
                actual = tuple(tessera("check", *options, *format_options, name, fine).returncode
                               for name in (fine, warning, failure))
                self.assertEqual(actual, expected, (options, format_options))
        self.assertEqual(tessera("check", fine).stdout, b"")
        # A file that cannot be read counts for more than a failure, in either order.
        none = str(self.folder / "none")
        for names in ([failure, none], [none, failure]):
            both = tessera("check", *names)
            self.assertEqual(both.returncode, 3)
            self.assertIn(b"failure:1:1: failure: ", both.stdout)
            self.assertEqual(both.stderr.decode(),
                             none + ": error: cannot be opened: No such file or directory; check the name\n")

    def test_json_has_a_record_for_each_file(self):
        fine = self.write("fine", b"x\n")
        damaged = self.write("damaged", b"x = '\xf0\x9f\x8f\x86'  # <@task#a>\n")
        done = tessera("check", "--format", "json", fine, damaged)
        records = documents(done.stdout)
        self.assertEqual(records[0], {"schemaVersion": 1, "file": fine, "diagnostics": []})
        self.assertEqual(list(records[1]), ["schemaVersion", "file", "diagnostics"])
        [diagnostic] = records[1]["diagnostics"]
        self.assertEqual(list(diagnostic), ["id", "severity", "line", "column", "endLine", "endColumn", "message",
                                            "notes", "fix"])
        self.assertEqual([diagnostic[key] for key in ("id", "severity", "line", "column", "endLine", "endColumn")],
                         ["missing_task_marker_pair", "failure", 1, 10, 1, 21])

    def test_data_nested_a_hundred_thousand_deep_is_damaged(self):
        for begin, end, levels in (('{"a":', "}", 1), ('{"a":[', "]}", 2)):
            marker = f"# <@output#a {begin * 100000}1{end * 100000}>"
            name = self.write("f", f"{marker}\n# <@appendix>\n{marker}\n".encode())
            # Where the 65th level begins.
            column = len("# <@output#a " + begin * (64 // levels)) + 1
            self.assertEqual(self.headings(name), [
                f":{line}:{column}: warning: the data is nested deeper than 64 levels [marker_limit]" for line in (1, 3)])

    def test_each_of_a_hundred_thousand_failures_on_a_line_has_its_column(self):
        count = 100000
        name = self.write("f", b" ".join(b"# <@output#\xc3\xa9%d [9,1]>" % i for i in range(count)))
        lines = self.headings(name)
        self.assertEqual(len(lines), count)
        column = 1
        for number, line in enumerate(lines):
            range_column = column + len(f"# <@output#\u00e9{number} ")
            self.assertTrue(line.startswith(f':1:{range_column}: failure: '), line)
            column += len(f"# <@output#\u00e9{number} [9,1]> ")

    def test_partners_in_other_files_of_the_run_are_found(self):
        names = [self.write(f"{number}.py", text) for number, text in enumerate(
            (b"# <@task#a>\n", b"x\n", "\u00e9 # <@task#a>\n# <@task#b>\n".encode(), b"# <@task#c>\n"))]
        first, clean, second, third = names
        checked = [[(diagnostic["message"], [note["message"] for note in diagnostic["notes"]])
                    for diagnostic in record["diagnostics"]]
                   for record in documents(tessera("check", "--format", "json", *names).stdout)]
        elsewhere = 'the task marker "a" has no partner in this file: the other one is in another file'
        alone = 'the task marker "%s" has no partner: no other task marker in the code has this id'
        self.assertEqual(checked, [[(elsewhere, [f"the other one is {second}:1:3"])], [],
                                   [(elsewhere, [f"the other one is {first}:1:1"]), (alone % "b", [])],
                                   [(alone % "c", [])]])
        # A file that is clean or explained by itself is in its place.
        records = documents(tessera("check", "--format", "json", clean, *names).stdout)
        self.assertEqual([record["file"] for record in records], [clean, *names])

    def test_a_task_of_65536_lines_is_reported(self):
        for count, ids in ((65535, []), (65536, ["task_too_long"]), (70000, ["task_too_long"])):
            text = b"# <@task#a>\n" + b"x\n" * (count - 2) + b'# <@task#a>\n# <@appendix>\n# <@task#a {"text":"A"}>\n'
            [record] = documents(tessera("check", "--format", "json", self.write("f", text)).stdout)
            self.assertEqual([diagnostic["id"] for diagnostic in record["diagnostics"]], ids, count)

    def test_every_failure_of_the_parsers_is_explained(self):
        """Random tasks and ranges: each failure in the document belongs to a diagnostic with a reason."""
        random.seed(3)
        for number in range(100):
            lines = [" ".join(random.choice(PIECES) for _ in range(random.randrange(4)))
                     for _ in range(random.randrange(1, 12))]
            name = self.write("f", "\n".join(lines).encode())
            [document] = documents(tessera("parse", "--format", "ndjson", name).stdout)
            failures = {(line["line"], failure["failureId"]) for line in document["lines"]
                        for node in line["nodes"] for failure in document["nodes"][node]["parserFailures"]}
            [checked] = documents(tessera("check", "--format", "json", name).stdout)
            explained = {}
            for diagnostic in checked["diagnostics"]:
                places = {diagnostic["line"], *(note["line"] for note in diagnostic["notes"])}
                for place in places if diagnostic["severity"] == "failure" else ():
                    explained.setdefault(place, []).append(diagnostic)
            for line, failure in failures:
                self.assertTrue(explained.get(line), (lines, line, failure))
            for diagnostic in checked["diagnostics"]:
                self.assertNotRegex(diagnostic["message"], UNEXPLAINED, lines)


if __name__ == "__main__":
    unittest.main()
