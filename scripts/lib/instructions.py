"""instructions.py PROGRAM CORPUS: counts instructions by callgrind and prints them as Markdown.

The first table has the instructions per line of everything that is compared, on the first lines of the
corpus; the second shows how the instructions of the parsers grow with their input.
"""

import math
import pathlib
import re
import subprocess
import sys
import tempfile

LINES = 20_000
LARGEST = 1_000_000
MOST_GROWTH = 1.05
GROWING = (
    "lines",
    "markers per line",
    "ranges",
    "failures",
    "tasks",
    "block length",
    "appendix entries",
)


def count(program, corpus):
    """Returns the counts by name, in the order in which the program made them."""
    with tempfile.TemporaryDirectory() as folder:
        dumps = pathlib.Path(folder) / "dump"
        command = ["valgrind", "--tool=callgrind", "--instr-atstart=no", "--quiet"]
        command += [f"--callgrind-out-file={dumps}", program, corpus]
        command += ["--lines", str(LINES), "--count", "--largest", str(LARGEST)]
        done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
        names = done.stdout.splitlines()
        return {name: total(f"{dumps}.{place}") for place, name in enumerate(names, 1)}


def total(dump):
    text = pathlib.Path(dump).read_text(errors="replace")
    return int(re.search(r"^(?:totals|summary): (\d+)$", text, re.MULTILINE)[1])


def table(header, rows):
    cells = [header, *rows]
    widths = [max(len(row[column]) for row in cells) for column in range(len(header))]
    cells.insert(1, ["-" * width for width in widths])
    lines = (" | ".join(c.ljust(width) for c, width in zip(row, widths)) for row in cells)
    return "".join(f"| {line} |\n" for line in lines)


def split(counts):
    """Returns what is compared and what grows: by what and size, the counts of building and end."""
    compared, growing = {}, {}
    for name, instructions in counts.items():
        part, what, size = name.split("|")
        if part == "build":
            group = growing if what in GROWING else compared
            end = counts[f"end|{what}|{size}"]
            group.setdefault(what, {})[int(size)] = (instructions, end)
    return compared, growing


def compared_table(compared):
    ((floor_size, (floor_build, _)),) = compared["floor"].items()
    rows = []
    for what, sizes in compared.items():
        for size, (build, end) in sizes.items():
            ratio = build / size / (floor_build / floor_size)
            rows.append([what, f"{build / size:.0f}", f"{ratio:.2f}", f"{end / size:.0f}"])
    return table(["what", "instructions per line", "x floor", "end, instructions per line"], rows)


def exponents(sizes):
    """Returns the exponent over the whole span and the greatest of any step of it."""
    points = [(math.log(size), math.log(build)) for size, (build, _) in sorted(sizes.items())]
    slopes = [(y1 - y0) / (x1 - x0) for (x0, y0), (x1, y1) in zip(points, points[1:])]
    (x0, y0), (x1, y1) = points[0], points[-1]
    return (y1 - y0) / (x1 - x0), max(slopes)


def growth_table(growing):
    rows = []
    for what, sizes in growing.items():
        whole, steepest = exponents(sizes)
        last = max(sizes)
        each = f"{sizes[last][0] / last:.0f}"
        met = "yes" if whole <= MOST_GROWTH else "NO"
        rows.append([what, f"{min(sizes)} to {last}", each, f"{whole:.3f}", f"{steepest:.3f}", met])
    header = ["grows", "from, to", "instructions each", "exponent", "steepest step"]
    return table([*header, f"exponent at most {MOST_GROWTH}"], rows)


def measure(program, corpus):
    compared, growing = split(count(program, corpus))
    return compared_table(compared) + "\n" + growth_table(growing)


if __name__ == "__main__":
    print(measure(*sys.argv[1:]))
