"""Reads the lists of tests/mutation."""

import re


def read_explained(path):
    """Returns the explanations by the identity of the mutant: its file, the text of its line, and the change.

    An entry is four lines, and entries are separated by an empty line; "#" begins a comment.
    """
    found, lines = {}, [line for line in path.read_text().splitlines() if not line.startswith("#")]
    for entry in re.split(r"\n(?:\s*\n)+", "\n".join(lines).strip()):
        if not entry:
            continue
        parts = [line.strip() for line in entry.splitlines()]
        if len(parts) < 4:
            raise SystemExit(f"{path}: an entry has a file, a line, a change and a reason:\n{entry}")
        found[tuple(parts[:3])] = " ".join(parts[3:])
    return found


def read_nearest(path):
    """Returns, for each folder, its tests as pairs of a name and the targets to build for it."""
    found = {}
    for line in path.read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            folder, _, tests = line.partition(":")
            found[folder] = [(name, (targets or name).split())
                             for name, targets in re.findall(r"(\w+)(?:\(([\w ]+)\))?", tests)]
    return found


def nearest_to(file, nearest):
    """Returns the tests of the innermost folder that has any and contains `file`."""
    folders = [folder for folder in nearest if file.startswith(folder + "/")]
    return nearest[max(folders, key=len)] if folders else []
