"""readme_test.py SOURCE TESSERA: checks what the README says; run_examples.py runs its console blocks."""

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
COMMANDS = re.compile(r"^    (.*)", re.MULTILINE)
CODE = re.compile(r"`([^`\n]+)`")


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

    def test_the_sample_is_the_one_in_the_picture(self):
        page = (SOURCE / "docs" / "html.md").read_text(encoding="utf-8")
        self.assertIn("page.png", page)
        samples = [re.search(r"cat > fit.py.*?^> END$", text, re.MULTILINE | re.DOTALL)[0] for text in (README, page)]
        self.assertEqual(*samples)

    def test_each_part_of_a_marker_named_is_in_the_sample(self):
        parts = re.findall(r"^- the element.*?\n\n", README, re.MULTILINE | re.DOTALL)[0]
        sample = re.search(r"cat > fit.py.*?^> END$", README, re.MULTILINE | re.DOTALL)[0]
        for part in CODE.findall(parts):
            if part != "text":
                self.assertIn(part, sample)

    def test_every_leader_named_begins_a_marker(self):
        leaders = re.search(r"a leader \(([^)]*)\)", README)[1]
        for leader in CODE.findall(leaders):
            with self.subTest(leader):
                shown = json.loads(self.parse(f"x {leader} <@text:anchor#a>\n", "--format", "json"))
                self.assertEqual(shown["lines"][0]["markerTypes"], ["%<@text>"])

    def test_every_block_comment_named_encloses_a_marker(self):
        comments = re.search(r"A block comment\s+\((`.*`)\)", README)[1]
        for comment in CODE.findall(comments):
            with self.subTest(comment):
                opener, closer = comment.split()
                line = f"x {opener} <@text:anchor#a> {closer}\n"
                shown = json.loads(self.parse(line, "--format", "json"))
                self.assertEqual(shown["lines"][0]["markerTypes"], ["%<@text>"])

    def test_the_scripts_are_there_and_so_is_what_is_parsed(self):
        commands = [line.split() for line in COMMANDS.findall(README) if line.startswith("scripts/")]
        self.assertEqual([words[0] for words in commands], ["scripts/parse", "scripts/test"])
        for words in commands:
            self.assertTrue(os.access(SOURCE / words[0], os.X_OK), words[0])
        self.assertTrue((SOURCE / commands[0][1]).is_file())

    def test_the_path_is_where_scripts_parse_builds(self):
        built = re.search(r'exec "\$root/(.*)/tessera"', (SOURCE / "scripts" / "parse").read_text())[1]
        export = next(line for line in COMMANDS.findall(README) if line.startswith("export "))
        path = subprocess.run(["bash", "-c", f"{export}; printf %s \"$PATH\""], cwd=SOURCE, text=True, check=True,
                              stdout=subprocess.PIPE).stdout
        self.assertEqual(path.split(":")[0], str(SOURCE / built))

    def test_the_commands_named_in_the_text_exist(self):
        named = {code.split()[1] for code in CODE.findall(README) if code.startswith("tessera ")}
        self.assertGreater(len(named), 2)
        for command in named:
            done = subprocess.run([TESSERA, command, "--help"], stdout=subprocess.PIPE, text=True)
            self.assertEqual((done.returncode, done.stdout.split()[:3]), (0, ["Usage:", "tessera", command]))

    def test_contributing_has_every_preset(self):
        presets = json.loads((SOURCE / "CMakePresets.json").read_text())
        there = {preset["name"] for kind in ("configurePresets", "testPresets") for preset in presets[kind]
                 if not preset.get("hidden")}
        text = (SOURCE / "CONTRIBUTING.md").read_text(encoding="utf-8")
        table = text[text.index("| Preset |"):].split("\n\n")[0]
        self.assertEqual({name for row in table.splitlines() for name in CODE.findall(row.split("|")[1])}, there)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
