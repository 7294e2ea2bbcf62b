#!/usr/bin/env python3
"""Tests which names and folders `tessera new-bundle` takes. What it writes is built by tests/package.

new_bundle_test.py PROGRAM
"""
import json
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SPELLING = ('is not the name of a bundle: use lower-case letters and digits, a letter first, with single "_" between '
            "words, for example word_count")
TARGET = "is the name of a target of CMake: use another name"
MACRO = "is a macro of C++ compilers: use another name"


class NewBundle(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, directory, **options):
        return subprocess.run([PROGRAM, "new-bundle", name, directory], cwd=self.folder, capture_output=True, text=True,
                              timeout=60, **options)

    def content(self):
        """Returns the texts of all files by their paths."""
        return {str(path.relative_to(self.folder)): path.read_text()
                for path in self.folder.rglob("*") if path.is_file()}

    def test_the_files_are_those_that_are_listed_and_nothing_is_left_to_fill_in(self):
        done = self.write("word_count2", "new")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        content = self.content()
        self.assertEqual(sorted(content), sorted(done.stdout.split("\n\n")[0].splitlines()))
        self.assertIn("new/WordCount2Parser.cpp", content)
        for path, text in content.items():
            self.assertNotIn("@NAME", path + text)
            self.assertNotIn("@CLASS", path + text)
            self.assertNotIn("@VERSION", text)
        self.assertEqual(json.loads(content["new/manifest.json"])["bundle.symbolic_name"], "word_count2")
        self.assertEqual((self.folder / "new" / "README.md").stat().st_mode & 0o777, 0o666 & ~current_umask())

    def test_the_commands_shown_are_quoted_for_a_shell(self):
        done = self.write("a", "it's new")
        commands = [shlex.split(line) for line in done.stdout.splitlines() if line.startswith("  ")]
        self.assertEqual([words[0] for words in commands], ["cmake", "cmake", "ctest"])
        self.assertEqual(commands[1], ["cmake", "--build", "it's new/build"])

    def test_names_that_cannot_be_used_are_refused(self):
        cases = {name: SPELLING for name in ("", "A", "wordCount", "1a", "_a", "a_", "a__b", "a-b", "a.b", "a b", "ä",
                                             "../a", "a/b", "a\n")}
        cases |= {name: TARGET for name in ("test", "all", "install", "package", "preinstall", "package_source")}
        cases |= {name: MACRO for name in ("errno", "i386", "linux", "unix")}
        cases |= {"tessera_pieces": "is the name of another bundle: use another name",
                  "a" * 65: "is too long for the name of a bundle: use at most 64 characters"}
        for name, fault in cases.items():
            with self.subTest(name):
                done = self.write(name, "new")
                shown = name.replace("\n", "\\n")
                self.assertEqual((done.stderr, done.stdout), (f'tessera: error: "{shown}" {fault}\n', ""))
                self.assertEqual(done.returncode, 2)
                self.assertEqual(self.content(), {})

    def test_names_at_the_limits_are_taken(self):
        for number, name in enumerate(("a", "a1", "a_b_c", "tests", "class", "linux_a", "a" * 64)):
            self.assertEqual(self.write(name, str(number)).stderr, "")

    def test_nothing_that_exists_is_changed(self):
        (self.folder / "full").mkdir()
        (self.folder / "full" / "README.md").write_text("mine")
        (self.folder / "file").write_text("mine")
        (self.folder / "link").symlink_to("nowhere")
        before = self.content()
        another = "name another directory, one that does not exist"
        for name, fault in {"full": "is not empty; " + another, "file": "cannot be made: File exists; " + another,
                            "link": "cannot be made: File exists; " + another,
                            "none/below": "cannot be made: No such file or directory; make the folder above it first",
                            }.items():
            with self.subTest(name):
                done = self.write("a", name)
                self.assertEqual(done.stderr, f"{name}: error: {fault}\n")
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertEqual(self.content(), before)

    def test_an_empty_folder_is_used(self):
        (self.folder / "empty").mkdir()
        self.assertEqual(self.write("a", "empty").stderr, "")
        self.assertIn("empty/CMakeLists.txt", self.content())


def current_umask():
    mask = os.umask(0)
    os.umask(mask)
    return mask


if __name__ == "__main__":
    unittest.main()
