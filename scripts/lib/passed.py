"""Remembers what has passed a check, by content.

A key is a hash of everything that the verdict depends on, so that nothing is checked twice and
everything that changed is checked again.
"""

import hashlib
import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE_FOLDERS = ("platform", "src", "apps", "bundles", "tests", "bench", "examples/bundles", "examples/host")
# Inputs of tests, which are not to be changed by a formatter.
GOLDEN = ROOT / "tests" / "golden"


def sources(*suffixes):
    """Returns the files of the tree with one of `suffixes`, in order."""
    return sorted(
        path
        for folder in SOURCE_FOLDERS
        for path in (ROOT / folder).rglob("*")
        if path.suffix in suffixes and path.is_file() and not path.is_relative_to(GOLDEN)
    )


class Hasher:
    """Hashes files, each of them once."""

    def __init__(self):
        self._digests = {}

    def file(self, path):
        if path not in self._digests:
            self._digests[path] = hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()
        return self._digests[path]

    def key(self, texts, paths):
        """Returns the key of a verdict that depends on `texts` and on the content of `paths`."""
        whole = hashlib.sha256()
        for part in [*texts, *(f"{path}\0{self.file(path)}" for path in paths)]:
            whole.update(part.encode() + b"\0")
        return whole.hexdigest()


class Passed:
    """The keys that passed the check `name`: one empty file each, so that concurrent runs do not clash."""

    def __init__(self, name):
        self._folder = ROOT / "build" / "passed" / name
        self._folder.mkdir(parents=True, exist_ok=True)
        self._keys = {path.name for path in self._folder.iterdir()}

    def __contains__(self, key):
        return key in self._keys

    def add(self, key):
        (self._folder / key).touch()
        self._keys.add(key)

    def keep(self, keys):
        """Forgets every key that is not one of `keys`."""
        for key in self._keys.difference(keys):
            (self._folder / key).unlink(missing_ok=True)
