"""finish_tree.py OPTIONS ROOT: adds what only packages have to the tree of a package.

ROOT is the folder with bin, lib and so on. Adds the list of components (SPDX), and to a .deb the change log
and the overrides of lintian; compresses its man pages. Gives everything the time SOURCE_DATE_EPOCH.
"""

import argparse
import email.utils
import gzip
import os
import pathlib
import shutil

import sbom

HERE = pathlib.Path(__file__).parent


def compress(text, target):
    """Writes `text` to `target`, with neither name nor time in the header."""
    with target.open("wb") as file:
        with gzip.GzipFile(filename="", mode="wb", compresslevel=9, fileobj=file, mtime=0) as zipped:
            zipped.write(text)


def changelog(version, maintainer, time):
    return (
        f"quenlith ({version}-1) unstable; urgency=medium\n\n"
        "  * The changes of each version are in changelog.gz.\n\n"
        f" -- {maintainer}  {email.utils.formatdate(time)}\n"
    )


def add_debian_files(root, options, time):
    documents = root / "share" / "doc" / "quenlith"
    documents.mkdir(parents=True, exist_ok=True)
    text = changelog(options.version, options.maintainer, time)
    compress(text.encode(), documents / "changelog.Debian.gz")
    compress((options.source / "CHANGELOG.md").read_bytes(), documents / "changelog.gz")
    overrides = root / "share" / "lintian" / "overrides"
    overrides.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(HERE / "lintian-overrides", overrides / "quenlith")
    for page in sorted((root / "share" / "man").rglob("*.[1-9]")):
        compress(page.read_bytes(), page.with_name(page.name + ".gz"))
        page.unlink()


def set_modes(root):
    """Removes the effect of the caller's umask."""
    for path in [root, *root.rglob("*")]:
        if not path.is_symlink():
            path.chmod(0o755 if path.is_dir() or path.stat().st_mode & 0o100 else 0o644)


def set_times(root, time):
    for path in [root, *root.rglob("*")]:
        os.utime(path, (time, time), follow_symlinks=False)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("kind", "version", "maintainer", "compiler"):
        parser.add_argument(f"--{name}", required=True)
    for name in ("--source", "--build", "root"):
        parser.add_argument(name, type=pathlib.Path)
    options = parser.parse_args()
    time = int(os.environ["SOURCE_DATE_EPOCH"])
    if options.kind == "DEB":
        add_debian_files(options.root, options, time)
    sbom.write(options.root, options, time)
    set_modes(options.root)
    set_times(options.root, time)


if __name__ == "__main__":
    main()
