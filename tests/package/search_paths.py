"""search_paths.py FOLDER...: reads where each ELF file below the folders looks for its libraries.

An element of RPATH or RUNPATH that is empty or relative makes the loader search the current folder,
so that a library planted there is run. Allowed are absolute paths and those that begin with $ORIGIN.
The status is not 0 if there is any other element, or if there is no ELF file.
"""

import pathlib
import re
import subprocess
import sys

ENTRY = re.compile(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]")
SAFE = re.compile(r"(/|(\$ORIGIN|\$\{ORIGIN\})(/|$))")
EXECUTABLE, SHARED_OBJECT = 2, 3
# The folder in which tests make libraries that are broken on purpose.
MADE_BY_TESTS = "made"


def is_linked(path):
    """Returns whether `path` is a program or shared library, not an object file or anything else."""
    with path.open("rb") as file:
        header = file.read(18)
    return header[:4] == b"\x7fELF" and header[16] in (EXECUTABLE, SHARED_OBJECT)


def linked_files(folder):
    """Returns the programs and shared libraries below `folder`, in order."""
    return sorted(
        path
        for path in pathlib.Path(folder).rglob("*")
        if MADE_BY_TESTS not in path.parts
        and path.is_file()
        and not path.is_symlink()
        and is_linked(path)
    )


def search_paths(path):
    """Returns the elements of the RPATH and the RUNPATH of one file."""
    text = subprocess.run(
        ["readelf", "--dynamic", "--wide", path], stdout=subprocess.PIPE, text=True, check=True
    ).stdout
    return [element for entry in ENTRY.findall(text) for element in entry.split(":")]


def faults(files):
    """Returns a message for each file with an element that depends on the current folder."""
    return [
        f"{path}: looks for libraries in '{element}', relative to the current folder"
        for path in files
        for element in dict.fromkeys(search_paths(path))
        if not SAFE.match(element)
    ]


def main(folders):
    files = [path for folder in folders for path in linked_files(folder)]
    found = faults(files) if files else [f"{' '.join(folders)}: no ELF file"]
    print("\n".join(found or [f"{len(files)} files, no search path depends on the current folder"]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
