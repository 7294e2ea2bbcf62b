#!/usr/bin/env python3
"""Compares what `tessera markers` says became of each marker with the document that `tessera parse` writes.

markers_test.py PROGRAM
"""
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
ROOT = pathlib.Path(__file__).resolve().parents[3]
SOURCES = sorted((ROOT / "tests" / "golden" / "markers").glob("*.in"))


def tessera(*arguments, stdin=b""):
    done = subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=300)
    assert (done.returncode, done.stderr) == (0, b""), (arguments, done)
    return done.stdout.decode()


def listed(text, *options):
    return json.loads(tessera("markers", "--format", "json", *options, "-", stdin=text.encode()))["markers"]


def parsed(text, *options):
    return json.loads(tessera("parse", "--format", "ndjson", *options, "-", stdin=text.encode()))


def random_line(rng, number):
    """Returns a line with up to four markers with ids of their own, and code in between."""
    line = rng.choice(["", "  ", "x = 12345", "y = f(\U0001F3C6, 'a')", "9 %%\\ 8"])
    for part in range(rng.randrange(5)):
        element = rng.choice(["output", "control:slider", "text:anchor", "text", "text:other", "output:type"])
        begin = rng.randrange(12)
        position = rng.choice(["", f" [{begin},{begin + rng.randrange(-1, 9)}]"])
        line += f" # <@{element}#m{number}-{part}{position}>" + rng.choice(["", " tail", " %%\\"])
    return line


class Fates(unittest.TestCase):
    def check_line(self, nodes, markers, text, bare):
        """Compares the markers of one line with its nodes."""
        pieces, plain = set(), ""
        for child in (child for node in nodes for child in node["children"]):
            if child["kind"] in ("OutputNode", "ControlNode"):
                pieces.add(child["id"])
            else:
                plain += child["text"]
        anchors = {node["anchorId"] for node in nodes} - {""}
        failures = [failure["markerInfo"]["markerId"] for node in nodes for failure in node["parserFailures"]]
        for marker in markers:
            fates = marker["fates"]
            message = f"{text}: {marker}"
            self.assertEqual("node" in fates, marker["id"] in pieces, message)
            self.assertEqual("anchor" in fates, marker["id"] in anchors, message)
            self.assertEqual("failure" in fates, marker["id"] in failures, message)
            self.assertEqual(bool(marker["failures"]), "failure" in fates, message)
            self.assertEqual("text" in fates, f"#{marker['id']}" in plain, message)
            owns = bool({"node", "hidden", "dropped"} & set(fates))
            unused = {"failure", "text"} & set(fates)
            self.assertEqual(owns, marker["range"] is not None and not unused, message)
            if bare:
                self.assertNotIn("node", fates, message)

    def test_random_lines_agree_with_their_document(self):
        rng = random.Random(7)
        text = "".join(random_line(rng, number) + "\n" for number in range(2000))
        seen = set()
        for options in ([], ["--bare"]):
            document = parsed(text, *options)
            by_line = {}
            for marker in listed(text, *options):
                by_line.setdefault(marker["line"], []).append(marker)
                seen.update(marker["fates"])
            lines = text.split("\n")
            for line in document["lines"]:
                nodes = [document["nodes"][index] for index in line["nodes"]]
                self.check_line(nodes, by_line.get(line["line"], []), lines[line["line"] - 1], bool(options))
        self.assertEqual(seen, {"node", "hidden", "dropped", "anchor", "unset_anchor", "failure", "text", "handled"})

    def test_a_range_that_the_parser_counts_otherwise(self):
        # The task parser reads the line as it is, the line parser without the backslash: at 45 units its end is past
        # that of the line, at 44 it is not.
        for end, fate in ((45, "failure"), (44, "node")):
            line = f'# <@output#o [41,{end}]> # <@task#"x%%\\"y"> tail'
            self.assertEqual(len(line), 45)
            output, = (marker for marker in listed(2 * (line + "\n"))[:2] if marker["element"] == "output")
            self.assertEqual(output["fates"], [fate], line)
            children = [child["kind"] for child in parsed(2 * (line + "\n"))["nodes"][1]["children"]]
            self.assertEqual("OutputNode" in children, fate == "node")

    def test_one_of_two_ranges_fails_where_the_parser_counts_otherwise(self):
        line = 'ab = 1 # <@output#o [0,2]> # <@output#o [41,199]> # <@task#"x%%\\"y"> tail\n'
        fates = [marker["fates"] for marker in listed(2 * line)[:2]]
        self.assertEqual(fates, [["node"], ["failure"]])

    def test_every_fate_has_a_golden_case_and_is_on_the_page(self):
        seen = {fate for source in SOURCES for marker in listed(source.read_text()) for fate in marker["fates"]}
        page = (ROOT / "docs" / "markers.md").read_text()
        table = page.split("| Name | What became of the marker |\n")[1].split("\n\n")[0]
        self.assertEqual(sorted(re.findall(r"^\| `(\w+)` \|", table, re.MULTILINE)), sorted(seen))
        source = (ROOT / "apps/tessera/check/listing/MarkerFate.cpp").read_text()
        self.assertEqual(set(re.findall(r'^    \{k\w+, "(\w+)", ', source, re.MULTILINE)), seen)


class Json(unittest.TestCase):
    def test_a_marker_has_its_place_and_parts(self):
        text = '# <@control:slider#"a \\u00e9" [2,4] {"b":1,"a":[]}>'
        marker, = listed(f"\ufeff'\U0001F3C6é'  {text}  x\n")
        self.assertEqual(list(marker.items()), [
            ("line", 1), ("column", 7), ("endLine", 1), ("endColumn", 7 + len(text)), ("element", "control"), ("type", "slider"),
            ("id", "a \u00e9"), ("range", [2, 4]), ("data", {"a": [], "b": 1}), ("fates", ["node"]), ("failures", [])])

    def test_each_file_has_a_record_and_bad_ones_a_message(self):
        with tempfile.TemporaryDirectory() as folder:
            names = [str(pathlib.Path(folder) / name) for name in ("a", "none", "b")]
            pathlib.Path(names[0]).write_text("x\n")
            pathlib.Path(names[2]).write_text("# <@text:anchor#a>\n")
            done = subprocess.run([PROGRAM, "markers", "--format", "json", *names], capture_output=True, timeout=60)
            records = [json.loads(line) for line in done.stdout.splitlines()]
            self.assertEqual([list(record) for record in records], 2 * [["schemaVersion", "file", "markers"]])
            self.assertEqual([(record["file"], len(record["markers"])) for record in records],
                             [(names[0], 0), (names[2], 1)])
            self.assertEqual((done.returncode, done.stderr.decode()), (
                3, names[1] + ": error: cannot be opened: No such file or directory; check the name\n"))

    def test_a_bundle_that_accepts_a_marker_counts(self):
        bundle = PROGRAM.parent.parent / "lib" / "libtessera_pieces.so"
        line = "x  # <@output#o [0,1]>"
        self.assertEqual(listed(line, "--bare")[0]["fates"], ["dropped"])
        self.assertEqual(listed(line, "--bare", "--bundle", str(bundle))[0]["fates"], ["node"])

    def test_many_markers_on_a_line_have_their_columns(self):
        count = 100000
        markers = listed(" ".join(f"# <@output#é{number} [0,1]>" for number in range(count)))
        self.assertEqual(len(markers), count)
        column = 1
        for number, marker in enumerate(markers):
            self.assertEqual((marker["column"], marker["id"]), (column, f"é{number}"))
            column += len(f"# <@output#é{number} [0,1]> ")


if __name__ == "__main__":
    unittest.main()
