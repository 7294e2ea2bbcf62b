"""lint.py BUILD: runs clang-tidy on the files that BUILD compiles, except those that passed before.

A verdict depends on the content of the file, of every header of the tree that it includes (as the
build recorded them), of the .clang-tidy files, and on the command that compiles it.
"""

import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

from passed import ROOT, SOURCE_FOLDERS, Hasher, Passed

TOOL = "clang-tidy-14"
# The commands are g++'s; clang does not know some of its warning options.
ARGUMENTS = ["--quiet", "--warnings-as-errors=*", "--extra-arg=-Wno-unknown-warning-option"]


# g++'s precompiled headers: clang cannot read them, and a source has to compile without them.
PRECOMPILED = re.compile(r" -fpch-preprocess| -Winvalid-pch| -include \S*/cmake_pch\.hxx")


def of_the_tree(path):
    """Tells whether `path` is one of our own files rather than a package's or a generated one."""
    return path.is_relative_to(ROOT) and str(path.relative_to(ROOT)).startswith(SOURCE_FOLDERS)


def recorded_includes(build):
    """Returns the files of the tree that each object depends on, as Ninja recorded them."""
    text = subprocess.run(
        ["ninja", "-C", build, "-t", "deps"], capture_output=True, text=True, check=True
    ).stdout
    includes, current = {}, None
    for line in text.splitlines():
        if line.startswith("    "):
            path = pathlib.Path(os.path.normpath(build / line.strip()))
            if of_the_tree(path):
                current.append(path)
        elif ": #deps" in line:
            current = includes.setdefault(line.split(": #deps")[0], [])
    return includes


def configs_above(path):
    """Returns the .clang-tidy files that apply to `path`."""
    return [
        folder / ".clang-tidy" for folder in path.parents if (folder / ".clang-tidy").exists()
    ]


def write_commands(build):
    """Writes the commands of `build` without precompiled headers to build/lint; returns that folder."""
    commands = json.loads((build / "compile_commands.json").read_text())
    for entry in commands:
        entry["command"] = PRECOMPILED.sub("", entry["command"])
    folder = build / "lint"
    folder.mkdir(exist_ok=True)
    (folder / "compile_commands.json").write_text(json.dumps(commands))
    return folder


def jobs(build, commands):
    """Yields each file to check with the key of its verdict."""
    hasher, includes = Hasher(), recorded_includes(build)
    for entry in json.loads((commands / "compile_commands.json").read_text()):
        path = pathlib.Path(entry["file"])
        if not of_the_tree(path):
            continue
        object_name = entry["command"].split(" -o ")[1].split()[0]
        files = [path, *includes.get(object_name, []), *configs_above(path)]
        yield path, hasher.key([TOOL, *ARGUMENTS, entry["command"]], files)


def check(commands, path):
    done = subprocess.run(
        [TOOL, "-p", commands, *ARGUMENTS, path], capture_output=True, text=True
    )
    # Standard error only counts the warnings in headers of packages, unless clang-tidy itself failed
    # and printed nothing else.
    return done.returncode == 0, done.stdout or done.stderr


def main(build):
    passed, keys, commands = Passed("lint"), {}, write_commands(build)
    for path, key in jobs(build, commands):
        keys.setdefault(path, key)
    todo = [path for path, key in keys.items() if key not in passed]
    if todo:
        print(f"clang-tidy: {len(todo)} of {len(keys)} files", file=sys.stderr, flush=True)
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        running = {pool.submit(check, commands, path): path for path in todo}
        for future in concurrent.futures.as_completed(running):
            good, output = future.result()
            if good:
                passed.add(keys[running[future]])
            else:
                failed += 1
                print(output, flush=True)
    if not failed:
        passed.keep(keys.values())
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
