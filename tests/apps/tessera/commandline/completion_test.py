#!/usr/bin/env python3
"""Completes command lines in the shells themselves, each in a separate terminal.

completion_test.py GENERATED, the folder of the generated completions. Shells that are not installed are
skipped.
"""
import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

GENERATED = pathlib.Path(sys.argv.pop(1)).resolve()
# The shell answers at once; this only ends a test that fails.
PATIENCE_SECONDS = 60
# What is typed before the tabulator, and the arguments that the command gets.
CASES = {
    "pars": ["parse"],
    "--vers": ["--version"],
    "parse --omi": ["parse", "--omit-empty"],
    "parse --format nd": ["parse", "--format", "ndjson"],
    "parse --format=nd": ["parse", "--format=ndjson"],
    "check --fail-on w": ["check", "--fail-on", "warning"],
    "check --fix --dr": ["check", "--fix", "--dry-run"],
    "explain invalid_p": ["explain", "invalid_position_data"],
    "help mar": ["help", "markers"],
    # Files, with the blank quoted as the shell needs it.
    "parse od": ["parse", "odd name.py"],
    "parse fit.py od": ["parse", "fit.py", "odd name.py"],
    "parse -- od": ["parse", "--", "odd name.py"],
    "parse -o od": ["parse", "-o", "odd name.py"],
    "check --bundle od": ["check", "--bundle", "odd name.py"],
    "replay od": ["replay", "odd name.py"],
    "new-bundle name fol": ["new-bundle", "name", "folder"],
    # No files where none can be.
    "od": ["od"],
    "parse --jobs od": ["parse", "--jobs", "od"],
    "parse --format od": ["parse", "--format", "od"],
    "doctor od": ["doctor", "od"],
    "explain od": ["explain", "od"],
}


class Terminal:
    """A shell in a terminal."""

    def __init__(self, command, folder):
        self.pid, self.master = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.environ.update(TERM="dumb", HOME=str(folder), LC_ALL="C.UTF-8", PS1="$ ")
            os.execvp(command[0], command)
        self.read = ""

    def send(self, text):
        os.write(self.master, text.encode())

    def wait_for(self, pattern):
        """Reads until `pattern` is there, and returns its match; what precedes it is dropped."""
        end = time.monotonic() + PATIENCE_SECONDS
        while not (match := re.search(pattern, self.read)):
            if not select.select([self.master], [], [], max(0.0, end - time.monotonic()))[0]:
                raise AssertionError(f"no {pattern} in {self.read!r}")
            self.read += os.read(self.master, 65536).decode(errors="replace")
        self.read = self.read[match.end():]
        return match

    def close(self):
        os.close(self.master)
        os.waitpid(self.pid, 0)


class Completion(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        for name in ("odd name.py", "fit.py"):
            (self.folder / name).touch()
        (self.folder / "folder").mkdir()

    def need(self, shell):
        if shutil.which(shell) is None:
            self.skipTest(f"{shell} is not installed")

    def check_in_terminal(self, command, setup):
        """Types each case into a shell in which tessera is a function that prints its arguments."""
        shell = Terminal(command, self.folder)
        self.addCleanup(shell.close)
        # The word is not in what is typed, so it comes from the output.
        shell.send(setup + "; printf '%s%s\\n' REA DY\n")
        shell.wait_for("READY")
        for typed, expected in CASES.items():
            with self.subTest(typed):
                shell.send(f"tessera {typed}\t\n")
                found = shell.wait_for(r"GOT<(.*?)>TOG")[1]
                # zsh removes the slash after a folder.
                self.assertEqual(found.removesuffix("/").split("|"), expected)

    def test_bash(self):
        self.need("bash")
        self.check_in_terminal(
            ["bash", "--norc", "--noprofile", "-i"],
            "tessera() { local IFS='|'; printf '%s<%s>%s\\n' GOT \"$*\" TOG; }; "
            f"source {GENERATED}/bash/tessera")

    def test_zsh(self):
        self.need("zsh")
        self.check_in_terminal(
            ["zsh", "-f", "-i"],
            "tessera() { local IFS='|'; printf '%s<%s>%s\\n' GOT \"$*\" TOG; }; "
            f"fpath=({GENERATED}/zsh $fpath); autoload -U compinit; compinit -D -u")

    def test_fish(self):
        self.need("fish")
        for typed, expected in CASES.items():
            with self.subTest(typed):
                self.assertEqual([word.removesuffix("/") for word in self.complete_in_fish(typed)], expected)

    def complete_in_fish(self, typed):
        """Returns the arguments with the last one completed if there is one way to do it."""
        done = subprocess.run(
            ["fish", "--no-config", "-c", f"source {GENERATED}/fish/tessera.fish; complete -C 'tessera {typed}'"],
            cwd=self.folder, env={**os.environ, "HOME": str(self.folder)}, capture_output=True, text=True,
            timeout=PATIENCE_SECONDS)
        self.assertEqual(done.stderr, "")
        words = typed.split(" ")
        # fish also offers what contains the letters, in the name or the description.
        offered = [line.split("\t")[0] for line in done.stdout.splitlines() if line.startswith(words[-1])]
        return [*words[:-1], offered[0].replace("\\ ", " ") if len(offered) == 1 else words[-1]]


if __name__ == "__main__":
    unittest.main()
