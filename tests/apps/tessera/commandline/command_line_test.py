#!/usr/bin/env python3
"""Tests what the program says about its own command line.

command_line_test.py PROGRAM
"""
import fcntl
import json
import os
import pathlib
import pty
import re
import struct
import subprocess
import sys
import tempfile
import termios
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()


def tessera(*arguments, **options):
    return subprocess.run([PROGRAM, *arguments], stdin=subprocess.DEVNULL, capture_output=True, timeout=120, **options)


def in_terminal(arguments, columns):
    """Returns what the program writes to a terminal of that width."""
    master, terminal = pty.openpty()
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    with subprocess.Popen([PROGRAM, *arguments], stdout=terminal):
        os.close(terminal)
        written = b""
        try:
            while data := os.read(master, 65536):
                written += data
        except OSError:
            # Linux reports the closed terminal this way.
            pass
    os.close(master)
    return written.decode().replace("\r\n", "\n")


class CommandLine(unittest.TestCase):
    def test_version_and_help_are_fine(self):
        for option in ("--version", "-V"):
            version = tessera(option)
            self.assertRegex(version.stdout.decode(), r"^tessera \d+\.\d+\.\d+\n$")
            self.assertEqual((version.returncode, version.stderr), (0, b""))
        for arguments in (["--help"], ["parse", "--help"], ["check", "-h"], ["replay", "--help"], ["help"],
                          ["help", "parse"]):
            done = tessera(*arguments)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertTrue(done.stdout.startswith(b"Usage: tessera "), arguments)

    def test_each_way_to_ask_for_help_shows_the_same(self):
        program = tessera("help").stdout
        for arguments in (["-h"], ["--help"], ["--version", "--help"]):
            self.assertEqual(tessera(*arguments).stdout, program)
        for command in re.findall(r"^  ([a-z]+) ", program.decode().split("\nOptions:")[0], re.MULTILINE):
            with self.subTest(command):
                shown = tessera("help", command).stdout
                self.assertIn(f"Usage: tessera {command} ".encode(), shown)
                for arguments in ([command, "-h"], [command, "--help"], ["-h", command]):
                    self.assertEqual(tessera(*arguments).stdout, shown)

    def test_without_arguments_the_program_says_how_to_begin(self):
        done = tessera()
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        for text in (b"Usage: tessera COMMAND", b"tessera parse fit.py", b"tessera help COMMAND"):
            self.assertIn(text, done.stderr)

    def assertRefused(self, done, message, status=2):
        self.assertEqual(done.stderr.decode(), message + "\n")
        self.assertEqual((done.stdout, done.returncode), (b"", status))

    def test_unusable_arguments_are_reported_with_a_remedy(self):
        cases = {
            ("jump",): 'unknown command "jump"; ',
            ("pasre",): 'unknown command "pasre"; did you mean "parse"? ',
            ("PARSE", "a"): 'unknown command "PARSE"; did you mean "parse"? ',
            ("pasre", "--help"): 'unknown command "pasre"; did you mean "parse"? ',
            ("--help", "pasre"): 'unknown command "pasre"; did you mean "parse"? ',
            ("help", "mark"): 'unknown command "mark"; did you mean "markers"? ',
            (str(PROGRAM),): f'unknown command "{PROGRAM}"; "tessera parse {PROGRAM}" parses it; ',
            ("--jump",): 'unknown option "--jump"; ',
            ("--jump", "--help"): 'unknown option "--jump"; ',
            ("--verison",): 'unknown option "--verison"; did you mean "--version"? ',
            ("-x",): 'unknown option "-x"; ',
            ("--help=1",): '"--help" takes no value; ',
            ("-V=", "parse"): '"--version" takes no value; ',
        }
        of_commands = {
            ("parse",): "PATH is required; ",
            ("replay",): "FILE is required; ",
            ("replay", "a", "b"): 'unexpected argument "b"; ',
            ("explain", "damaged_marker", "unused_entry"): 'unexpected argument "unused_entry"; ',
            ("help", "parse", "a"): 'unexpected argument "a"; ',
            ("parse", "--jump", "a"): 'unknown option "--jump"; ',
            ("parse", "--fromat=json", "a"): 'unknown option "--fromat"; did you mean "--format"? ',
            ("parse", "--fromat", "json", "--help"): 'unknown option "--fromat"; did you mean "--format"? ',
            ("parse", "-format", "json", "a"): 'unknown option "-format"; did you mean "--format"? ',
            ("check", "--dry", "a"): 'unknown option "--dry"; did you mean "--dry-run"? ',
            ("parse", "--fix", "a"): 'unknown option "--fix"; it is an option of "tessera check"; ',
            ("explain", "--bundle=a"): 'unknown option "--bundle"; it is an option of "tessera parse"; ',
            ("parse", "-q", "a"): 'unknown option "-q"; ',
            ("parse", "--\x1b[1m", "a"): 'unknown option "--\\u001b[1m"; ',
            ("parse", "--format", "xml", "a"): '"xml" is not a format: use tree, json, ndjson or html; ',
            ("parse", "--format", "jsn", "--help"):
                '"jsn" is not a format: use tree, json, ndjson or html; did you mean "json"? ',
            ("check", "--format", "xml", "a"): '"xml" is not a format: use text, json or sarif; ',
            ("explain", "--format", "html"): '"html" is not a format: use text or markdown; ',
            ("check", "--color", "red", "a"): '"red" is not a way to colour: use auto, always or never; ',
            ("parse", "--color", "red", "a"): '"red" is not a way to colour: use auto, always or never; ',
            ("parse", "--width", "19", "a"): '"19" is not a width: use 20 to 1000000 columns; ',
            ("parse", "--width", "wide", "a"): '"wide" is not a width: use 20 to 1000000 columns; ',
            ("parse", "--width", "1000001", "a"): '"1000001" is not a width: use 20 to 1000000 columns; ',
            ("parse", "--format", "json", "--format", "tree", "a"): '"--format" is given twice; ',
            ("parse", "--format"): '"--format" needs a value: FORMAT; ',
            ("parse", "a", "-j"): '"--jobs" needs a value: N; ',
            ("parse", "--trace=1", "a"): '"--trace" takes no value; ',
            ("parse", "--record", "", "a"): '"" is not a file to record to: name a file; ',
            ("parse", "--record=", "a"): '"" is not a file to record to: name a file; ',
            ("parse", "--record", "-", "a"): '"-" is not a file to record to: name a file; ',
            ("replay", "--bundle", "", "a"): '"" is not a bundle: name its library; ',
            ("check", "--files-from", ""): '"" is not a list of paths: name a file; ',
            ("view", "--files-from=", "a"): '"" is not a list of paths: name a file; ',
            ("parse", "--record", "r", "--resume", "-o", "f", "a"): '"--record" cannot be used with "--resume"; ',
            ("check", "--dry-run", "a"): '"--dry-run" needs "--fix"; ',
            ("parse", "-0", "a"): '"--null" needs "--files-from"; ',
            ("parse", "--force", "a"): '"--force" needs "--record"; ',
            ("check", "--fix", "--dry-run", "--format", "json", "a"):
                '"--dry-run" cannot be used with "--format"; ',
        }
        for arguments, message in (cases | of_commands).items():
            with self.subTest(arguments=arguments):
                place = f"tessera {arguments[0]}" if arguments in of_commands else "tessera"
                self.assertRefused(tessera(*arguments),
                                   f'tessera: error: {message}"{place} --help" lists what there is')

    def test_what_follows_two_dashes_is_not_an_option(self):
        done = tessera("parse", "--", "--help")
        self.assertRefused(done, "--help: error: cannot be opened: No such file or directory; check the name", status=3)

    def test_a_path_in_brackets_is_one_path(self):
        with tempfile.TemporaryDirectory() as folder:
            names = ["[x]", "[a,b]", "[]", "[-]", '[x,"q"]', "['x']"]
            # What the names would be without brackets.
            for name in (*names, "x", "a", "b", "q"):
                pathlib.Path(folder, name).write_text("text\n", encoding="utf-8")
            for arguments in (*([name] for name in names), ["--", "[x]"], ["--", *names], ["x", "[x]", "a", "b"], names):
                with self.subTest(arguments=arguments):
                    done = tessera("parse", "--format", "ndjson", *arguments, cwd=folder)
                    paths = [json.loads(record)["file"] for record in done.stdout.splitlines()]
                    self.assertEqual((paths, done.stderr), ([name for name in arguments if name != "--"], b""))
            self.assertRefused(tessera("replay", "[x,a]", cwd=folder),
                               "[x,a]: error: cannot be opened: No such file or directory; check the name")

    def test_a_glob_in_brackets_is_one_glob(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a", "b", "c", "a,b"):
                pathlib.Path(folder, name).write_text("text\n", encoding="utf-8")
            done = tessera("parse", "--format", "ndjson", "--glob", "[a,b]", ".", cwd=folder)
            self.assertEqual([json.loads(record)["file"] for record in done.stdout.splitlines()], ["./a", "./b"])

    def test_help_is_as_wide_as_the_terminal(self):
        for columns in (50, 80, 132):
            rows = in_terminal(["parse", "--help"], columns).split("\n")
            longest = max(map(len, rows))
            self.assertLessEqual(longest, columns)
            self.assertGreater(longest, columns - 12)


if __name__ == "__main__":
    unittest.main()
