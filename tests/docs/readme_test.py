"""readme_test.py SOURCE TESSERA: runs what the README shows."""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

SOURCE, TESSERA = map(pathlib.Path, sys.argv[1:3])
README = (SOURCE / "README.md").read_text(encoding="utf-8")
BLOCK = re.compile(r"\n\n((?:    .*\n)+)")


def block_after(text):
    """Returns the first indented block after `text`, without the indentation."""
    return BLOCK.search(README, README.index(text))[1].replace("\n    ", "\n").removeprefix("    ")


class Readme(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def parse(self, text, *options):
        (self.folder / "fit.py").write_text(text, encoding="utf-8")
        done = subprocess.run(
            [TESSERA, "parse", *options, "fit.py"],
            cwd=self.folder,
            env=dict(os.environ, LC_ALL="C.UTF-8"),
            stdout=subprocess.PIPE,
            encoding="utf-8",
        )
        self.assertEqual(done.returncode, 0)
        return done.stdout

    def test_the_sample_gives_the_document_that_is_shown(self):
        self.assertEqual(self.parse(block_after("Given this file")), block_after("`scripts/parse fit.py`"))

    def test_check_prints_what_is_shown(self):
        (self.folder / "report.py").write_text(block_after("`report.py`:"), encoding="utf-8")
        done = subprocess.run(
            [TESSERA, "check", "report.py"], cwd=self.folder, stdout=subprocess.PIPE, encoding="utf-8"
        )
        self.assertEqual((done.stdout, done.returncode), (block_after("`tessera check report.py` prints"), 1))

    def test_the_first_marker_is_one(self):
        shown = json.loads(self.parse(block_after("## A marker in ten lines"), "--format", "json"))
        self.assertEqual(shown["lines"][0]["markerTypes"], ["%<@output>"])

    def test_every_leader_named_begins_a_marker(self):
        leaders = re.search(r"a leader \(([^)]*)\)", README)[1]
        for leader in re.findall(r"`([^`]+)`", leaders):
            with self.subTest(leader):
                shown = json.loads(self.parse(f"x {leader} <@text:anchor#a>\n", "--format", "json"))
                self.assertEqual(shown["lines"][0]["markerTypes"], ["%<@text>"])

    def test_every_block_comment_named_encloses_a_marker(self):
        comments = re.search(r"A block comment\s+\((`.*`)\)", README)[1]
        for comment in re.findall(r"`([^`]+)`", comments):
            with self.subTest(comment):
                opener, closer = comment.split()
                line = f"x {opener} <@text:anchor#a> {closer}\n"
                shown = json.loads(self.parse(line, "--format", "json"))
                self.assertEqual(shown["lines"][0]["markerTypes"], ["%<@text>"])

    def test_the_commands_are_there(self):
        commands = re.findall(r"^    (scripts/\w+)", README, re.MULTILINE)
        self.assertGreaterEqual(len(commands), 2)
        for command in commands:
            self.assertTrue(os.access(SOURCE / command, os.X_OK), command)

    def test_the_presets_named_are_those_that_exist(self):
        presets = json.loads((SOURCE / "CMakePresets.json").read_text())["configurePresets"]
        there = [preset["name"] for preset in presets if not preset.get("hidden")]
        sentence = re.search(r"The presets are ([^;]*);", README)[1]
        self.assertEqual(sorted(re.findall(r"`(\w+)`", sentence)), sorted(there))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
