#!/usr/bin/env python3
"""Runs the console blocks of pages and compares what the commands write with what the page shows.

run_examples.py PROGRAM_FOLDER PAGE... [--update]

A console block has commands, each after "$ ", with further lines of a command after "> " (">" for an
empty one), and the output of each command below it. The blocks of a page run in order in one temporary
folder, with PROGRAM_FOLDER first in PATH; standard error is part of the output. A block of another language
that is marked `json` must be JSON. With --update the output in the pages is replaced.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def steps(block):
    """Returns the commands of a console block, each with the output shown, as lists of lines."""
    found = []
    for line in block.splitlines():
        if line.startswith("$ "):
            found.append(([line[2:]], []))
        elif not found:
            raise ValueError(f"a console block must begin with a command: {line}")
        elif (line == ">" or line.startswith("> ")) and not found[-1][1]:
            found[-1][0].append(line[2:])
        else:
            found[-1][1].append(line)
    return found


def run(command, folder, programs):
    environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", LC_ALL="C.UTF-8")
    done = subprocess.run(["bash", "-c", "\n".join(command)], cwd=folder, env=environment, timeout=300,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.stdout.decode().splitlines()


class Page:
    def __init__(self, path, programs):
        self.path = pathlib.Path(path)
        self.programs = programs
        self.commands = 0
        self.faults = []

    def check(self):
        """Runs the page and returns its text with the output that the commands really write."""
        text = self.path.read_text(encoding="utf-8")
        with tempfile.TemporaryDirectory() as folder:
            text = BLOCK.sub(lambda match: self.block(match, folder), text)
        if self.commands == 0:
            self.faults.append(f"{self.path}: no console block")
        return text

    def block(self, match, folder):
        language, content = match.groups()
        if language == "json":
            self.require_json(content)
        if language != "console":
            return match[0]
        lines = []
        for command, shown in steps(content):
            self.commands += 1
            actual = run(command, folder, self.programs)
            if actual != shown:
                wanted, got = "\n".join(shown), "\n".join(actual)
                self.faults.append(f"{self.path}: {command[0]}\n--- shown\n{wanted}\n--- written\n{got}")
            lines += ["$ " + command[0], *(("> " + line).rstrip() for line in command[1:]), *actual]
        return "```console\n" + "".join(line + "\n" for line in lines) + "```"

    def require_json(self, content):
        try:
            json.loads(content)
        except json.JSONDecodeError as error:
            self.faults.append(f"{self.path}: a json block is not JSON: {error}")


def main(arguments):
    update = "--update" in arguments
    programs, *paths = [argument for argument in arguments if argument != "--update"]
    faults = []
    for path in paths:
        page = Page(path, pathlib.Path(programs).resolve())
        text = page.check()
        if update:
            page.path.write_text(text, encoding="utf-8")
        faults += page.faults
        print(f"{path}: {page.commands} commands")
    if not update:
        print("\n".join(faults))
    return 1 if faults and not update or not paths else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
