#!/usr/bin/env python3
"""Compares the texts about the command line with each other and with what the program accepts.

texts_test.py PROGRAM GENERATED PAGE: GENERATED is the folder of the generated texts, PAGE is docs/options.md.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, GENERATED, PAGE = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(3))
EXAMPLES = pathlib.Path(__file__).resolve().parents[4] / "examples"
# A value that the program accepts for an option without a closed list.
VALUES = {"FILE": "f", "GLOB": "*", "I/N": "1/2", "N": "2", "SECONDS": "1", "COLUMNS": "80"}


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=120, **options)


def help_of(*command):
    return run(PROGRAM, "help", *command).stdout


def commands():
    return re.findall(r"^  ([a-z-]+) ", help_of().split("\nOptions:")[0], re.MULTILINE)


def options(text):
    """Returns the options in the help `text`: their short form or None, long form, value or None, and
    the values of a closed list."""
    rows = re.sub(r"\n {24}", " ", text.split("\nExamples:")[0])
    found = re.findall(r"^  (?:(-\w), )?(--[\w-]+)(?: ([A-Z/]+))?(?:  |$)(.*)", rows, re.MULTILINE)
    for letter, name, value, meaning in found:
        closed = re.search(rf"{value} is ([\w, -]+)\.", meaning) if value else None
        yield letter or None, name, value or None, re.split(", | or ", closed[1]) if closed else []


class Texts(unittest.TestCase):
    def setUp(self):
        self.texts = {kind: next((GENERATED / kind).iterdir()).read_text(encoding="utf-8")
                      for kind in ("man", "bash", "zsh", "fish", "markdown")}
        # Without the requests for fonts and the escapes of dashes.
        self.texts["man"] = re.sub(r"\\f[BIP]", "", self.texts["man"]).replace("\\-", "-")

    def test_the_manual_page_is_where_man_looks_for_that_of_the_built_program(self):
        page = PROGRAM.parent.parent / "share" / "man" / "man1" / "tessera.1"
        self.assertEqual(page.resolve(), GENERATED / "man" / "tessera.1")
        self.assertTrue(page.is_file())

    def section(self, kind, command):
        """Returns the part of a text that is about a command."""
        start, end = {
            "man": (f".SS tessera {command} ", r"\n\.S[SH] "),
            "bash": (f"\n      {command}) _tessera_words", r"\n"),
            "zsh": (f"\n    {command})\n", r"\n      ;;"),
            "fish": (f"__tessera_is '{command}'\"", r"\n\n"),
            "markdown": (f"\n## tessera {command}\n", r"\n## "),
        }[kind]
        text = self.texts[kind]
        return re.split(end, text[text.index(start) + len(start):])[0]

    def test_there_are_commands_with_options(self):
        self.assertLess({"parse", "check", "help"}, set(commands()))
        found = {name: (letter, value, closed) for letter, name, value, closed in options(help_of("check"))}
        self.assertEqual(found["--output"], ("-o", "FILE", []))
        self.assertEqual(found["--fix"], (None, None, []))
        self.assertEqual(found["--fail-on"], (None, "SEVERITY", ["failure", "warning", "never"]))

    def test_every_option_that_is_accepted_is_in_every_text(self):
        for command in commands():
            for letter, name, value, closed in options(help_of(command)):
                for kind in self.texts:
                    with self.subTest(command=command, option=name, text=kind):
                        section = self.section(kind, command)
                        written = name[2:] if kind == "fish" else name
                        self.assertRegex(section, rf"(?<!\w){re.escape(written)}(?![\w-])")
                        if letter:
                            self.assertIn(f"-s {letter[1:]} " if kind == "fish" else letter, section)
                        for choice in closed if kind != "bash" else []:
                            self.assertIn(choice, section)
                for choice in closed:
                    self.assertRegex(self.texts["bash"], rf"{command}:{name}\)[^\n]*\b{choice}\b")

    def test_the_program_accepts_every_option_of_its_help(self):
        for command in commands():
            for letter, name, value, closed in options(help_of(command)):
                for form in filter(None, (letter, name)):
                    for given in closed or [value and VALUES[value]]:
                        arguments = [form] if value is None else [form, given]
                        with self.subTest(command=command, arguments=arguments):
                            done = run(PROGRAM, command, *arguments, "--help")
                            self.assertEqual((done.stderr, done.returncode), ("", 0))

    def test_the_program_accepts_a_value_of_every_option(self):
        """With --help, it does not read the values."""
        count = 0
        for command in commands():
            shown = help_of(command)
            # The server does not end.
            if " PATH...\n" not in shown or command == "view":
                continue
            for _, name, value, closed in options(shown):
                for given in closed or filter(None, [value and VALUES[value]]):
                    with self.subTest(command=command, option=name, value=given), tempfile.TemporaryDirectory() as folder:
                        pathlib.Path(folder, "f").write_text("f\n")
                        count += 1
                        done = run(PROGRAM, command, name, given, "f", cwd=folder)
                        self.assertNotRegex(done.stderr, '(?m)^tessera: error: "')
        self.assertGreater(count, 30)

    def test_every_value_of_a_closed_list_means_something(self):
        count = 0
        for command in commands():
            shown = help_of(command)
            # A file for the commands that work on files; the others here need no argument.
            files = [EXAMPLES / "fit.py"] if "--output FILE" in shown else []
            if not files and command not in ("explain", "doctor"):
                continue
            for _, name, _, closed in options(shown):
                for choice in closed:
                    count += 1
                    with self.subTest(command=command, option=name, choice=choice):
                        done = run(PROGRAM, command, name, choice, *files)
                        self.assertIn(done.returncode, (0, 1), done.stderr)
        self.assertGreater(count, 15)

    def test_every_command_is_in_every_text(self):
        for command in commands():
            for kind in self.texts:
                with self.subTest(command=command, text=kind):
                    self.assertNotEqual(self.section(kind, command), "")

    def test_every_diagnostic_can_be_completed(self):
        ids = [row.split()[0] for row in run(PROGRAM, "explain").stdout.splitlines()]
        self.assertGreater(len(ids), 30)
        for kind in ("bash", "zsh", "fish"):
            for name in ids:
                self.assertRegex(self.texts[kind], rf"\b{name}\b")

    def test_the_options_page_is_that_of_this_program(self):
        self.assertEqual(PAGE.read_text(encoding="utf-8"), self.texts["markdown"],
                         f"copy {GENERATED / 'markdown' / 'options.md'} to {PAGE}")

    def test_the_examples_of_each_command_work(self):
        with tempfile.TemporaryDirectory() as folder:
            for path in EXAMPLES.iterdir():
                if path.is_file():
                    shutil.copy(path, folder)
            environment = {**os.environ, "PATH": f"{PROGRAM.parent}:{os.environ['PATH']}"}
            for command in commands():
                lines = re.findall(r"^  (\S.*)\n      \S", help_of(command).split("\nExamples:\n")[1], re.MULTILINE)
                self.assertGreater(len(lines), 0, command)
                for line in lines:
                    with self.subTest(line):
                        if command == "view":
                            self.assertRegex(self.first_line_of(line, folder, environment), "^http://127.0.0.1:")
                            continue
                        done = run("bash", "-c", line, cwd=folder, env=environment)
                        # The status of `check` says what it found.
                        self.assertIn(done.returncode, (0, 1) if command == "check" else (0,), done.stderr)
                        self.assertEqual(done.stderr, "")

    def first_line_of(self, line, folder, environment):
        """Runs a command that does not end, and returns what it writes first."""
        without_desktop = {name: value for name, value in environment.items() if "DISPLAY" not in name}
        with subprocess.Popen(["bash", "-c", "exec " + line], cwd=folder, env=without_desktop, stdout=subprocess.PIPE,
                              text=True) as process:
            try:
                return process.stdout.readline()
            finally:
                process.kill()

    def test_the_manual_page_has_no_fault(self):
        page = next((GENERATED / "man").iterdir())
        checked = 0
        if shutil.which("mandoc"):
            checked += 1
            faults = run("mandoc", "-Tlint", page).stdout.splitlines()
            # The page is the same whenever it is made, so it has no date.
            self.assertEqual([fault for fault in faults if 'missing date, using ""' not in fault], [])
        if shutil.which("man"):
            checked += 1
            done = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page,
                       env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "80"})
            self.assertEqual((done.stderr, done.returncode), ("", 0))
            self.assertIn("tessera", done.stdout)
        if not checked:
            self.skipTest("neither mandoc nor man is installed")


if __name__ == "__main__":
    unittest.main()
