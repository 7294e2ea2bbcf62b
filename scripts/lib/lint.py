"""lint.py BUILD: runs clang-tidy on the files that BUILD compiles, except those that passed before.

A verdict depends on the content of the file, of every header of the tree that it includes, of the
.clang-tidy files, and on the command that compiles it. BUILD need not be built, only configured.

Most of the time goes into the headers of packages, which clang-tidy checks as well, only to drop the
findings. So several sources of one target are checked as one. A batch with a finding, or with names that
clash, is cut into halves, down to single sources.
"""

import concurrent.futures
import dataclasses
import hashlib
import itertools
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

from passed import ROOT, SOURCE_FOLDERS, Hasher, Passed, sources

TOOL = "clang-tidy-14"
# The commands are g++'s; clang does not know some of its warning options.
ARGUMENTS = ["--quiet", "--warnings-as-errors=*", "--extra-arg=-Wno-unknown-warning-option"]
# Like that of the builds, whose batches compile.
BATCH_SIZE = 16

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', re.MULTILINE)


def of_the_tree(path):
    """Tells whether `path` is one of our own files rather than a package's or a generated one."""
    return path.is_relative_to(ROOT) and str(path.relative_to(ROOT)).startswith(SOURCE_FOLDERS)


class Includes:
    """Finds the files of the tree that a file includes, conditional includes among them."""

    def __init__(self, tree):
        self._tree = {str(path): path for path in tree}
        self._names = {}
        self._found = {}

    def names(self, path):
        """Returns the names in the include directives of `path`."""
        if path not in self._names:
            self._names[path] = INCLUDE.findall(path.read_text())
        return self._names[path]

    def files(self, path, folders):
        """Returns the files that `path` includes, directly or not, when `folders` are searched."""
        found, todo = set(), [path]
        while todo:
            current = todo.pop()
            for name in self.names(current):
                header = self.find(name, (str(current.parent), *folders))
                if header and header not in found:
                    found.add(header)
                    todo.append(header)
        return sorted(found)

    def find(self, name, folders):
        if (name, folders) not in self._found:
            places = (os.path.normpath(os.path.join(folder, name)) for folder in folders)
            headers = (self._tree[place] for place in places if place in self._tree)
            self._found[name, folders] = next(headers, None)
        return self._found[name, folders]


def configs_above(path):
    """Returns the .clang-tidy files that apply to `path`."""
    return [
        folder / ".clang-tidy" for folder in path.parents if (folder / ".clang-tidy").exists()
    ]


@dataclasses.dataclass
class Job:
    """A file to check, the options that it is compiled with, and the key of its verdict."""

    path: pathlib.Path
    options: list
    key: str

    def config(self):
        """Returns the .clang-tidy file that applies."""
        return configs_above(self.path)[0]


def options_of(entry):
    """Returns the options of a compile command that do not name its files."""
    words = shlex.split(entry["command"])[1:]
    out = words.index("-o")
    del words[out : out + 2]
    compiled = words.index("-c")
    del words[compiled : compiled + 2]
    return words


def include_folders(options):
    return [
        option[2:] if option.startswith("-I") else following
        for option, following in itertools.pairwise([*options, ""])
        if option.startswith("-I") or option == "-isystem"
    ]


def jobs(build):
    """Returns a job for each file of the tree that the build compiles."""
    hasher, found = Hasher(), {}
    includes = Includes(sources(".cpp", ".hpp", ".h"))
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not of_the_tree(path) or path in found:
            continue
        options = options_of(entry)
        files = [path, *includes.files(path, include_folders(options)), *configs_above(path)]
        found[path] = Job(path, options, hasher.key([TOOL, *ARGUMENTS, *options], files))
    return list(found.values())


def batches(todo):
    """Splits the jobs into lists that are checked together."""
    targets = {}
    for job in todo:
        targets.setdefault((job.config(), *job.options), []).append(job)
    for target in targets.values():
        for start in range(0, len(target), BATCH_SIZE):
            yield target[start : start + BATCH_SIZE]


class Checker:
    """Runs clang-tidy. Batches are written to a folder of the build."""

    def __init__(self, build):
        self._build = build
        self._folder = build / "batches"

    def check(self, batch):
        """Returns the jobs of the batch that passed, and what clang-tidy printed for the others."""
        if len(batch) == 1:
            good, output = self.alone(batch[0])
            return (batch, []) if good else ([], [output])
        if self.together(batch):
            return batch, []
        middle = len(batch) // 2
        halves = [self.check(half) for half in (batch[:middle], batch[middle:])]
        return tuple(list(itertools.chain.from_iterable(lists)) for lists in zip(*halves))

    def alone(self, job):
        return self.run(["-p", self._build, *ARGUMENTS, job.path])

    def together(self, batch):
        # Copied, not included: some checks look at the main file only.
        text = "".join(job.path.read_text() for job in batch)
        name = hashlib.sha256(text.encode()).hexdigest()[:16]
        # With a copy of the configuration, which clang-tidy looks for beside the file and above.
        folder = self._folder / name
        folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(batch[0].config(), folder)
        source = folder / "batch.cpp"
        source.write_text(text)
        folders = dict.fromkeys(str(job.path.parent) for job in batch)
        quoted = [word for folder in folders for word in ("-iquote", folder)]
        good, _ = self.run([*ARGUMENTS, source, "--", *batch[0].options, *quoted])
        shutil.rmtree(folder)
        return good

    def run(self, arguments):
        done = subprocess.run([TOOL, *arguments], capture_output=True, text=True)
        # Standard error only counts the warnings in headers of packages, unless clang-tidy itself failed
        # and printed nothing else.
        return done.returncode == 0, done.stdout or done.stderr


def main(build):
    passed, every, checker = Passed("lint"), jobs(build), Checker(build)
    todo = [job for job in every if job.key not in passed]
    if todo:
        print(f"clang-tidy: {len(todo)} of {len(every)} files", file=sys.stderr, flush=True)
    failed = False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        running = [pool.submit(checker.check, batch) for batch in batches(todo)]
        for future in concurrent.futures.as_completed(running):
            good, outputs = future.result()
            for job in good:
                passed.add(job.key)
            for output in outputs:
                failed = True
                print(output, flush=True)
    if not failed:
        passed.keep([job.key for job in every])
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
