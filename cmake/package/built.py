"""What the programs and libraries of a build consist of, read from the build and the files themselves."""

import functools
import pathlib
import re
import subprocess

NEEDED = re.compile(r"\(NEEDED\).*\[(.*)\]")


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def is_linked(path):
    """Returns whether `path` is a program or a shared library."""
    if path.is_symlink() or not path.is_file():
        return False
    with path.open("rb") as file:
        return file.read(4) == b"\x7fELF"


def needed_libraries(path):
    """Returns the names of the libraries that the loader loads for the file."""
    return NEEDED.findall(output_of("readelf", "--dynamic", "--wide", str(path)))


@functools.lru_cache(maxsize=None)
def library_paths():
    """Returns the paths of the libraries that the loader finds by name."""
    found = {}
    for line in output_of("/sbin/ldconfig", "-p").splitlines():
        name, arrow, path = line.partition(" => ")
        if arrow:
            found.setdefault(name.split()[0], path)
    return found


class Build:
    """A build folder of Ninja. Its paths are those that the build rules use."""

    def __init__(self, folder):
        self._folder = folder
        self._headers = self._read_headers()

    def _ninja(self, *arguments):
        return output_of("ninja", "-C", str(self._folder), "-t", *arguments)

    def _read_headers(self):
        """Returns the headers that were read for each object file."""
        headers, current = {}, None
        for line in self._ninja("deps").splitlines():
            if line.startswith("    "):
                current.append((self._folder / line.strip()).resolve())
            elif line:
                current = headers.setdefault(line.partition(":")[0], [])
        return headers

    def link_inputs(self, output):
        """Returns the files that the link rule of `output` reads, and what it reads of static libraries."""
        found, wanted = [], False
        for line in self._ninja("query", output).splitlines():
            if line.startswith("  ") and not line.startswith("    "):
                wanted = line.strip().startswith("input:")
            elif wanted and line.startswith("    ") and not line.strip().startswith("||"):
                found.append(line.strip().removeprefix("| "))
        for library in [name for name in found if name.endswith(".a")]:
            if not pathlib.Path(library).is_absolute():
                found += self.link_inputs(library)
        return found

    def headers_of(self, output):
        """Returns the headers from outside that the objects linked into `output` were compiled with."""
        headers = set()
        for name in self.link_inputs(output):
            headers.update(self._headers.get(name, ()))
        return headers

    def static_libraries_of(self, output):
        """Returns the static libraries from outside that are linked into `output`."""
        paths = map(pathlib.Path, self.link_inputs(output))
        return {path for path in paths if path.suffix == ".a" and path.is_absolute()}


def start_files(compiler):
    """Returns the object files and static libraries that the compiler adds to each link."""
    done = subprocess.run(
        [compiler, "-###", "-x", "c++", "/dev/null", "-o", "none"],
        stderr=subprocess.PIPE, text=True, check=True,
    )
    # clang quotes the words.
    words = (word.strip('"') for word in done.stderr.split())
    objects = {pathlib.Path(word) for word in words if word.endswith(".o")}
    archive = output_of(compiler, "-print-libgcc-file-name").strip()
    return {path.resolve() for path in [*objects, pathlib.Path(archive)] if path.exists()}
