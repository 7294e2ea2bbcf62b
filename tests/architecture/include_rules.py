"""include_rules.py TREE: reads the #includes of a tree and reports those that break its layers.

A unit is what one target is built from: a folder of platform/, the reference host, its bundle, the
benchmarks, the tests, and in src/ the interfaces for other bundles separately from the rest. A room is
a folder of one unit. Faults are an include of a unit that may not be seen, an include of a file that
does not exist, a cycle of units, rooms or files, and two rooms of one name. The status is not 0 if
there is one.
"""

import os
import pathlib
import re
import sys

INTERFACES = {
    f"src/quenlith/build/markup/{name}.hpp"
    for name in (
        "ParseResult",
        "Snippet",
        "SnippetParser",
        "SnippetType",
        "code/CodeElement",
        "code/CodeElementParser",
        "contributordata/LineContributorDataParser",
        "services/ParserServicesProvider",
    )
}
PLATFORM = "platform/"
# What each unit may include besides itself; a name that ends in a slash means every unit below it.
MAY_SEE = {
    PLATFORM: {PLATFORM},
    "src:interfaces": {PLATFORM},
    "src:code": {PLATFORM, "src:interfaces"},
    "apps/": {PLATFORM, "src:interfaces", "bundles/"},
    "bundles/": {PLATFORM, "src:interfaces"},
    "examples/bundles": {PLATFORM, "src:interfaces"},
    "bench": {PLATFORM, "src:interfaces", "src:code", "apps/"},
    "tests": {PLATFORM, "src:interfaces", "src:code", "apps/", "bundles/"},
}
# Rooms that are part of the folder named: an interface fixes the namespaces, and so the folders, of classes
# that need each other.
JOINED_ROOMS = {
    # The details of the framework's public headers are included through these only.
    "platform/cppmicroservices/cppmicroservices/detail": "platform/cppmicroservices/cppmicroservices",
    # A found marker's record contains the marker, and the scanner returns such records.
    "platform/markers/quenlith/build/markup/core": "platform/markers/quenlith/syntax",
    # The functions of a class description take `ModelElement::Impl`, a nested class that cannot be declared
    # ahead, and an element stores the key of its class description.
    "platform/model/kd/zero/meta": "platform/model/kd/zero",
}
# Folders named after a namespace that an interface fixes: the folder above says what the room is for.
NAMESPACE_FOLDERS = {"cppmicroservices", "detail", "kdzero"}
# The units whose rooms are checked; the tests mirror the tree.
UNITS_WITH_ROOMS = ("apps/", "bench", "bundles/", "platform/", "src:")
FOLDERS = ("apps", "bench", "bundles", "examples/bundles", "platform", "src", "tests")
SUFFIXES = (".cpp", ".h", ".hpp", ".in", ".tpp")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)
GENERATED = re.compile(r"quenlith/export/(\w+)\.hpp")
# The units of the libraries outside platform/ that have a generated header.
UNITS_OF_LIBRARIES = {"piece_nodes": "bundles/pieces"}


def unit_of(name):
    """Returns the unit that the file `name`, relative to the tree, is part of."""
    parts = name.split("/")
    if parts[0] == "src":
        return "src:interfaces" if name in INTERFACES else "src:code"
    if parts[0] in ("platform", "apps", "bundles", "examples"):
        return "/".join(parts[:2])
    return parts[0]


def room_of(name):
    """Returns the room that the file `name` is in, or None if rooms are not checked there."""
    if not unit_of(name).startswith(UNITS_WITH_ROOMS):
        return None
    folder = os.path.dirname(name)
    return JOINED_ROOMS.get(folder, folder)


def may_see(unit):
    """Returns the units that `unit` may include, itself among them."""
    for start, seen in MAY_SEE.items():
        if unit == start or start.endswith("/") and unit.startswith(start):
            return seen | {unit}
    return {unit}


def allowed(unit, other):
    return any(
        other == name or name.endswith("/") and other.startswith(name) for name in may_see(unit)
    )


class Tree:
    """The files of a tree and what they include."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.files = sorted(
            str(path.relative_to(self.root))
            for folder in FOLDERS
            for path in (self.root / folder).rglob("*")
            if path.suffix in SUFFIXES and path.is_file()
        )
        # Every suffix of a file's path, because any folder may be an include directory.
        self.endings = {}
        for name in self.files:
            parts = name.split("/")
            for start in range(len(parts)):
                self.endings.setdefault("/".join(parts[start:]), []).append(name)

    def includes(self, name):
        """Yields each include of a file: its line, its text, whether the text is in quotes, the file
        meant (None if it is generated or not part of the tree) and that file's unit."""
        content = (self.root / name).read_text(encoding="utf-8", errors="replace")
        for match in INCLUDE.finditer(content):
            line = content.count("\n", 0, match.start()) + 1
            generated = GENERATED.fullmatch(match[2])
            file = None if generated else self.meaning(name, match[2])
            if generated:
                unit = UNITS_OF_LIBRARIES.get(generated[1], f"platform/{generated[1]}")
            else:
                unit = file and unit_of(file)
            yield line, match[2], match[1] == '"', file, unit

    def meaning(self, name, included):
        neighbour = os.path.normpath(os.path.join(os.path.dirname(name), included))
        if neighbour in self.files:
            return neighbour
        found = self.endings.get(included, [])
        own = [other for other in found if unit_of(other) == unit_of(name)]
        return (own or found or [None])[0]


def steps(tree):
    """Yields a message for each include of a unit that may not be seen, or of no file."""
    for name in tree.files:
        unit = unit_of(name)
        for line, text, quoted, _, other in tree.includes(name):
            if other and not allowed(unit, other):
                yield f"{name}:{line}: {unit} may not include {text}, which is part of {other}"
            elif quoted and not other:
                yield f"{name}:{line}: {text} is not a file of the tree"


def units(tree):
    """Returns the units that each unit includes."""
    edges = {}
    for name in tree.files:
        seen = {unit for *_, unit in tree.includes(name)}
        edges.setdefault(unit_of(name), set()).update(seen - {None, unit_of(name)})
    return edges


def files(tree):
    """Returns the files that each file includes."""
    return {name: {file for *_, file, _ in tree.includes(name)} - {None} for name in tree.files}


def rooms(tree):
    """Returns the rooms of the same unit that each room includes."""
    edges = {}
    for name in tree.files:
        room, unit = room_of(name), unit_of(name)
        for *_, file, other in tree.includes(name):
            if room and file and other == unit and room_of(file) != room:
                edges.setdefault((unit, room), set()).add((unit, room_of(file)))
    return edges


def rooms_of_one_name(tree):
    """Yields a message for each name that several rooms have."""
    places = {}
    for name in tree.files:
        room = room_of(name)
        if room and unit_of(name) != "bench":
            places.setdefault(os.path.basename(room), set()).add(room)
    for name, folders in sorted(places.items()):
        if len(folders) > 1 and name not in NAMESPACE_FOLDERS:
            yield f"one name for several rooms: {', '.join(sorted(folders))}"


def cycles(edges):
    """Yields a cycle from each group of nodes that reach each other."""
    done = set()
    for start in sorted(edges):
        if start not in done:
            path = way_back(edges, start, done)
            if path:
                yield path


def way_back(edges, start, done):
    """Returns a path of `edges` from `start` to itself, or None. Adds to `done` what is on it."""
    came_from, pending = {}, [start]
    while pending:
        node = pending.pop()
        for other in sorted(edges.get(node, ())):
            if other == start:
                path = [start]
                while node != start:
                    path.append(node)
                    node = came_from[node]
                done.update(path)
                return [start, *reversed(path[1:]), start]
            if other not in came_from:
                came_from[other] = node
                pending.append(other)
    return None


def faults(root):
    """Returns the faults of the tree at `root` as messages."""
    tree = Tree(root)
    if not tree.files:
        return [f"{root}: no sources"]
    found = list(steps(tree))
    for what, edges in (("units", units(tree)), ("rooms", rooms(tree)), ("files", files(tree))):
        for path in cycles(edges):
            names = [node[1] if isinstance(node, tuple) else node for node in path]
            found.append(f"cycle of {what}: {' -> '.join(names)}")
    return found + list(rooms_of_one_name(tree))


def main(root):
    found = faults(root)
    print("\n".join(found or ["every include keeps to its layer and its room"]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
