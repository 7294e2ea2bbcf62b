"""compare_packages.py FIRST SECOND: compares the packages in two folders byte by byte.

For packages that differ, prints which files in them differ, and for programs and libraries which sections.
The status is not 0 if anything differs.
"""

import hashlib
import os
import pathlib
import subprocess
import sys
import tempfile


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout


def packages_in(folder):
    return {path.name: path for path in folder.iterdir() if path.name.endswith((".deb", ".tar.gz"))}


def unpack(package, folder):
    """Unpacks a package; the list of its entries becomes a file too."""
    folder.mkdir()
    if package.suffix == ".deb":
        subprocess.run(["dpkg-deb", "--raw-extract", package, folder / "files"], check=True)
        listing = output_of("dpkg-deb", "--contents", package) + output_of("ar", "tv", package)
    else:
        (folder / "files").mkdir()
        subprocess.run(["tar", "--extract", "--file", package, "--directory", folder / "files"], check=True)
        listing = output_of("tar", "--list", "--verbose", "--full-time", "--file", package)
    (folder / "list of entries").write_bytes(listing)


def described_files(folder):
    """Returns the content of each file below `folder`, or the target of the link."""
    return {
        path.relative_to(folder).as_posix(): os.readlink(path).encode() if path.is_symlink() else path.read_bytes()
        for path in sorted(folder.rglob("*"))
        if path.is_symlink() or path.is_file()
    }


def section_digests(path):
    """Returns a digest of each section of an ELF file."""
    names = [line.split("]")[1].split()[0] for line in
             output_of("readelf", "--section-headers", "--wide", path).decode().splitlines()
             if line.strip().startswith("[") and "]" in line and "NULL" not in line and "[Nr]" not in line]
    digests = {}
    for name in names:
        with tempfile.NamedTemporaryFile() as target:
            subprocess.run(["objcopy", "--dump-section", f"{name}={target.name}", path, "/dev/null"],
                           stderr=subprocess.DEVNULL)
            digests[name] = hashlib.sha1(pathlib.Path(target.name).read_bytes()).hexdigest()
    return digests


def differing_sections(first, second):
    one, two = section_digests(first), section_digests(second)
    return [name for name in one.keys() | two.keys() if one.get(name) != two.get(name)]


def first_line_pair(one, two):
    """Returns the first lines that differ, as text."""
    for left, right in zip(one.splitlines(), two.splitlines()):
        if left != right:
            return f"\n      {left[:160]!r}\n      {right[:160]!r}"
    return " (one is longer)"


def report(first, second):
    with tempfile.TemporaryDirectory() as name:
        folders = [pathlib.Path(name) / "first", pathlib.Path(name) / "second"]
        for package, folder in zip((first, second), folders):
            unpack(package, folder)
        one, two = map(described_files, folders)
        for path in sorted(one.keys() | two.keys()):
            if one.get(path) == two.get(path):
                continue
            if path not in one or path not in two:
                print(f"    {path}: only in the {'first' if path in one else 'second'}")
            elif one[path].startswith(b"\x7fELF"):
                sections = differing_sections(*(folder / path for folder in folders))
                print(f"    {path}: sections {', '.join(sorted(sections)) or 'the same, but not what follows them'}")
            else:
                print(f"    {path}: {first_line_pair(one[path], two[path])}")


def main(folders):
    first, second = map(packages_in, folders)
    names = sorted(first.keys() | second.keys())
    same = bool(names)
    for name in names:
        if name not in first or name not in second:
            print(f"{name}: missing in one folder")
            same = False
        elif first[name].read_bytes() == second[name].read_bytes():
            print(f"{name}: the same {first[name].stat().st_size} bytes,"
                  f" SHA-256 {hashlib.sha256(first[name].read_bytes()).hexdigest()}")
        else:
            print(f"{name}: differs")
            report(first[name], second[name])
            same = False
    return 0 if same else 1


if __name__ == "__main__":
    sys.exit(main([pathlib.Path(name) for name in sys.argv[1:]]))
