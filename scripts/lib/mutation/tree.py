"""The copy of the tree in which the mutants are built, and what cmake, ninja and ctest know about it."""

import json
import os
import pathlib
import re
import shlex
import subprocess

# At the top of the tree.
SKIPPED_FOLDERS = {"build", ".git", ".cache"}
ERROR = re.compile(r"^(/[^:\n]+):(\d+):(\d+): (?:fatal )?error: ", re.MULTILINE)


def files_of(root):
    """Returns the paths of the files of a tree, relative to it."""
    found = []
    for folder, folders, names in os.walk(root):
        skipped = SKIPPED_FOLDERS if folder == str(root) else set()
        folders[:] = sorted(set(folders) - skipped - {"__pycache__"})
        found += [pathlib.Path(folder, name).relative_to(root) for name in names]
    return sorted(found)


def write_if_changed(path, content):
    """Writes a file unless it has this content, so that nothing is built again without need."""
    if not path.is_file() or path.read_bytes() != content:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


class Copy:
    """A copy of the tree at `root`, in the folder `build`."""

    def __init__(self, root, build):
        self.root, self.build = root, build
        self.tree, self.objects, self.commands = build / "tree", build / "objects", build / "commands"

    def update(self, rewritten, kept=()):
        """Makes the copy equal to the tree, except for the files in `rewritten`, which maps names to texts.

        Those of `kept` that the copy has stay as they are.
        """
        wanted = files_of(self.root)
        for path in wanted:
            if str(path) in kept and (self.tree / path).exists():
                continue
            text = rewritten.get(str(path))
            content = text.encode("latin-1") if text is not None else (self.root / path).read_bytes()
            write_if_changed(self.tree / path, content)
            mode = (self.root / path).stat().st_mode
            if (self.tree / path).stat().st_mode != mode:
                (self.tree / path).chmod(mode)
        for path in set(files_of(self.tree)) - set(wanted):
            (self.tree / path).unlink()

    def configure(self):
        """Configures a build of the copy, and another one that tells how each source is compiled alone."""
        settings = {
            # A mutant may cause any warning.
            self.objects: ["-DCMAKE_CXX_FLAGS=-w", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -DNDEBUG"],
            self.commands: ["-DQUENLITH_PRECOMPILE=OFF", "-DQUENLITH_UNITY=OFF"],
        }
        for folder, options in settings.items():
            subprocess.run(["cmake", "--preset", "dev", "-B", folder, *options], cwd=self.tree, check=True,
                           stdout=subprocess.DEVNULL)

    def compile_commands(self):
        """Returns the options that each source is compiled with, by its path in the tree."""
        found = {}
        for entry in json.loads((self.commands / "compile_commands.json").read_text()):
            path = pathlib.Path(entry["file"])
            if not path.is_relative_to(self.tree):
                continue
            words = shlex.split(entry["command"].replace(str(self.tree) + "/", str(self.root) + "/"))
            words = words[next(index for index, word in enumerate(words) if word.startswith("-")):]
            del words[words.index("-o"):words.index("-o") + 2]
            del words[words.index("-c"):words.index("-c") + 2]
            found.setdefault(str(path.relative_to(self.tree)), words)
        return found

    def compile(self, targets):
        """Builds `targets`. Returns the places of errors, as (file, line, column), or None if there are none."""
        # For the header of the switches.
        environment = {**os.environ, "CPATH": str(pathlib.Path(__file__).resolve().parent)}
        done = subprocess.run(["ninja", "-k", "0", "-C", self.objects, *targets], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", env=environment)
        if done.returncode == 0:
            return None
        places = [(pathlib.Path(match[1]), int(match[2]), int(match[3])) for match in ERROR.finditer(done.stdout)]
        inside = [(str(path.relative_to(self.tree)), line, column) for path, line, column in places
                  if path.is_relative_to(self.tree)]
        if not inside:
            raise SystemExit(done.stdout[-5000:])
        return inside

    def tests(self):
        """Returns the tests that ctest knows, by name: the command, the folder, and whether GoogleTest runs it."""
        shown = subprocess.run(["ctest", "--show-only=json-v1"], cwd=self.objects, check=True, stdout=subprocess.PIPE)
        found = {}
        for test in json.loads(shown.stdout)["tests"]:
            folders = [item["value"] for item in test.get("properties", []) if item["name"] == "WORKING_DIRECTORY"]
            if "command" in test:
                # Two runs at a time must not write one report.
                command = [word for word in test["command"] if not word.startswith("--gtest_output")]
                found[test["name"]] = (command, folders[0] if folders else str(self.objects),
                                       len(command) < len(test["command"]))
        return found
