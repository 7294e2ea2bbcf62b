"""What dpkg knows about the files of this system."""

import dataclasses
import pathlib
import re
import subprocess

FIELDS = ("Package", "Version", "Architecture", "source:Package", "source:Version", "Maintainer", "Homepage")
# Names of licences in Debian's copyright files with another name in SPDX.
LICENSES = {
    "Expat": "MIT",
    "Apache-2": "Apache-2.0",
    "BSL-1": "BSL-1.0",
    "Boost-1.0": "BSL-1.0",
    "BSD-3-clause": "BSD-3-Clause",
    "BSD-2-clause": "BSD-2-Clause",
    "GPL-2": "GPL-2.0-only",
    "GPL-2+": "GPL-2.0-or-later",
    "GPL-3": "GPL-3.0-only",
    "GPL-3+": "GPL-3.0-or-later",
    "LGPL-2.1": "LGPL-2.1-only",
    "LGPL-2.1+": "LGPL-2.1-or-later",
}
SAME_NAME = {"MIT", "Apache-2.0", "BSL-1.0", "BSD-3-Clause", "BSD-2-Clause", "Zlib", "ISC"}


@dataclasses.dataclass(frozen=True)
class Package:
    name: str
    version: str
    architecture: str
    source: str
    source_version: str
    maintainer: str
    homepage: str

    def license(self):
        """Returns the SPDX name of the licence of most files, or None if that is not told in a known form."""
        path = pathlib.Path("/usr/share/doc") / self.name / "copyright"
        text = path.read_text(errors="replace") if path.exists() else ""
        if not text.startswith("Format:"):
            return None
        main = re.search(r"^Files:\s*\*\s*\n(?:.+\n)*?License:\s*(\S.*)$", text, re.MULTILINE)
        name = main[1].strip() if main else ""
        return LICENSES.get(name, name if name in SAME_NAME else None)


def spellings(path):
    """Returns the paths under which dpkg may know a file: /lib is a link to /usr/lib."""
    path = str(path)
    moved = path.startswith(("/lib", "/bin", "/sbin"))
    return [path, "/usr" + path if moved else path.removeprefix("/usr")]


def owners(paths):
    """Returns the name of the package, as "name:architecture" or "name", of each path that has one."""
    wanted = {spelling: path for path in paths for spelling in spellings(path)}
    if not wanted:
        return {}
    # The status is not 0 if one of them is unknown.
    done = subprocess.run(["dpkg-query", "--search", *sorted(wanted)], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True)
    found = {}
    for line in done.stdout.splitlines():
        names, _, path = line.rpartition(": ")
        if path in wanted:
            found[wanted[path]] = names.split(", ")[0]
    return found


def read_packages(names):
    """Returns the installed packages of these names."""
    if not names:
        return {}
    form = "\\t".join("${%s}" % field for field in FIELDS) + "\\n"
    done = subprocess.run(["dpkg-query", "--show", "--showformat", form, *sorted(names)],
                          stdout=subprocess.PIPE, text=True, check=True)
    packages = (Package(*line.split("\t")) for line in done.stdout.splitlines())
    return {package.name: package for package in packages}
