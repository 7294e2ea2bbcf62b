"""corpus.py FILE: writes the lines that the benchmarks read to FILE, LF behind each of them.

They are real sources that the machine has: the Python library's modules, then Boost's headers, up
to the count of lines wanted. Left out are files with a very long line, because they are tables that
a program wrote; lines with a control character, because XML cannot hold it; and lines with "<@" or
with an escaped leader, so that the benchmarks alone decide where markers stand.
"""

import pathlib
import re
import sys
import sysconfig
import zlib

WANTED_LINES = 1_900_000
LONGEST_LINE = 200
UNFIT = re.compile("[\x00-\x08\x0b-\x1f\x7f\u0085\u2028\u2029\ufffe\uffff]|<@|%%\\\\")


def modules():
    root = pathlib.Path(sysconfig.get_paths()["stdlib"])
    return root, [path for path in root.rglob("*.py") if "-packages" not in str(path)]


def headers():
    root = pathlib.Path("/usr/include/boost")
    # Those are written by a preprocessor: no person's lines.
    return root, [path for path in root.rglob("*.hpp") if "preprocessed" not in path.parts]


def scattered(root, paths):
    """Returns `paths` in an order that has nothing to do with their folders, the same each time."""
    names = {path: path.relative_to(root).as_posix() for path in paths}
    return sorted(paths, key=lambda path: (zlib.crc32(names[path].encode()), names[path]))


def fit_lines(path):
    try:
        text = path.read_bytes().decode("utf-8").replace("\r\n", "\n")
    except UnicodeDecodeError:
        return []
    lines = text.removesuffix("\n").split("\n")
    if max(map(len, lines)) > LONGEST_LINE:
        return []
    return [line for line in lines if not UNFIT.search(line)]


def collect(wanted):
    lines, origins = [], []
    for name, (root, paths) in (("Python library", modules()), ("Boost headers", headers())):
        before = len(lines)
        for path in scattered(root, paths):
            if len(lines) < wanted:
                lines += fit_lines(path)
        del lines[wanted:]
        origins.append(f"{name} {len(lines) - before}")
    return lines, origins


def main(target):
    lines, origins = collect(WANTED_LINES)
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text("".join(line + "\n" for line in lines), encoding="utf-8", newline="")
    print(f"corpus: {len(lines)} lines ({', '.join(origins)})", file=sys.stderr)
    return 0 if lines else 1


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
