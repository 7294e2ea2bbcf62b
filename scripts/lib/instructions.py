"""instructions.py PROGRAM CORPUS: counts instructions by callgrind and prints them as Markdown.

One table holds the instructions a line of everything that is compared, on the first lines of the
corpus; the other one how the instructions of the parsers grow with their input.
"""

import math
import pathlib
import re
import subprocess
import sys
import tempfile

LINES = 20_000
LARGEST = 100_000
MOST_GROWTH = 1.05
GROWING = (
    "lines",
    "markers a line",
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


def print_table(header, rows):
    cells = [header, *rows]
    widths = [max(len(row[column]) for row in cells) for column in range(len(header))]
    cells.insert(1, ["-" * width for width in widths])
    for row in cells:
        print("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |")


def split(counts):
    """Returns the counts of one building: those of what is compared, and those of growing input."""
    compared, growing = {}, {}
    for name, instructions in counts.items():
        part, what, size = name.split("|")
        if part == "end":
            continue
        group = growing if what in GROWING else compared
        group.setdefault(what, {})[int(size)] = (instructions, counts[f"end|{what}|{size}"])
    return compared, growing


def print_compared(compared):
    floor = next(iter(compared["floor"].items()))
    floor_a_line = floor[1][0] / floor[0]
    rows = []
    for what, sizes in compared.items():
        for size, (build, end) in sizes.items():
            ratio = build / size / floor_a_line
            rows.append([what, f"{build / size:.0f}", f"{ratio:.2f}", f"{end / size:.0f}"])
    print_table(["what", "instructions a line", "x floor", "end, instructions a line"], rows)


def exponents(sizes):
    """Returns the exponent over the whole span and the greatest of any step of it."""
    points = [(math.log(size), math.log(build)) for size, (build, _) in sorted(sizes.items())]
    slopes = [(y1 - y0) / (x1 - x0) for (x0, y0), (x1, y1) in zip(points, points[1:])]
    (x0, y0), (x1, y1) = points[0], points[-1]
    return (y1 - y0) / (x1 - x0), max(slopes)


def print_growth(growing):
    rows = []
    for what, sizes in growing.items():
        whole, steepest = exponents(sizes)
        span = f"{min(sizes)} to {max(sizes)}"
        last = max(sizes)
        met = "yes" if steepest <= MOST_GROWTH else "NO"
        each = f"{sizes[last][0] / last:.0f}"
        rows.append([what, span, each, f"{whole:.3f}", f"{steepest:.3f}", met])
    header = ["grows", "from, to", "instructions each", "exponent", "steepest step"]
    print_table([*header, f"at most {MOST_GROWTH}"], rows)


def main(program, corpus):
    compared, growing = split(count(program, corpus))
    print_compared(compared)
    print()
    print_growth(growing)


if __name__ == "__main__":
    main(*sys.argv[1:])
