"""performance.py PROGRAMS CORPUS: measures everything, prints the tables as they come, and writes
them with the machine's data into docs/performance.md, between the two marking comments, and the charts into docs/charts.
"""

import csv
import datetime
import os
import pathlib
import re
import subprocess
import sys

import charts
import instructions
import many_files
import page_speed

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs" / "performance.md"
BEGIN, END = "<!-- measured: begin -->", "<!-- measured: end -->"
SOURCE_LINES = 200_000


def output_of(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True, cwd=ROOT)
    return done.stdout.strip()


def first(pattern, path):
    found = re.search(pattern, pathlib.Path(path).read_text(), re.MULTILINE)
    return found[1] if found else "unknown"


def machine(programs):
    memory = int(first(r"^MemTotal:\s+(\d+)", "/proc/meminfo")) / 1024 / 1024
    compiler = first(r"^CMAKE_CXX_COMPILER:\w+=(\S+)", programs.parent / "CMakeCache.txt")
    changed = " with changes" if output_of("git", "status", "--porcelain", "-uno") else ""
    rows = {
        "Processor": first(r"^model name\s*: (.*)", "/proc/cpuinfo"),
        "Cores": f"{os.cpu_count()}, of which one is used",
        "Memory": f"{memory:.0f} GB",
        "System": first(r'^PRETTY_NAME="(.*)"', "/etc/os-release") + ", Linux " + os.uname().release,
        "Compiler": output_of(compiler, "--version").splitlines()[0],
        "Commit": output_of("git", "rev-parse", "--short", "HEAD") + changed,
        "Date": datetime.date.today().isoformat(),
    }
    return "\n".join(f"- {name}: {value}" for name, value in rows.items())


def lines_of(corpus):
    lines = corpus.read_text(encoding="utf-8").splitlines()
    units = sum(len(line) for line in lines)
    return f"- Lines: {len(lines)}, {units / len(lines):.1f} characters each on average"


def source_of(corpus, lines):
    """Writes the first lines of the corpus to a separate file, for programs that read files."""
    source = corpus.with_name("source.txt")
    with corpus.open(encoding="utf-8") as text, source.open("w", encoding="utf-8") as target:
        for _, line in zip(range(lines), text):
            target.write(line)
    return source


def lookups(program):
    """Returns a table of the processor time that each lookup in the service registry takes."""
    measured = csv.DictReader(output_of(program, "--benchmark_format=csv").splitlines())
    rows = [f"| {row['name']} | {float(row['cpu_time']):.1f} |" for row in measured]
    return "\n".join(["| Lookup | Processor time, ns |", "| --- | ---: |", *rows])


def sections(programs, corpus):
    """Yields the title and text of each section, measured one after the other."""
    yield "The machine and the lines", machine(programs) + "\n" + lines_of(corpus)
    yield "The parsers", output_of(programs / "quenlith_bench", corpus)
    yield "The service registry", lookups(programs / "quenlith_bench_lookup")
    source = source_of(corpus, SOURCE_LINES)
    yield "The program", output_of(programs / "quenlith_bench_programs", source)
    yield "Many files", many_files.measure(programs / "tessera", corpus)
    yield "The page", page_speed.measure(programs / "tessera", corpus)
    yield "Instructions", instructions.measure(programs / "quenlith_bench", corpus)


def write(text):
    page = PAGE.read_text(encoding="utf-8")
    before, rest = page.split(BEGIN)
    _, after = rest.split(END)
    PAGE.write_text(f"{before}{BEGIN}\n\n{text}\n{END}{after}", encoding="utf-8")


def main(programs, corpus):
    parts = []
    for title, text in sections(programs, corpus):
        parts.append(f"## {title}\n\n{text}\n")
        print(parts[-1], flush=True)
    write("\n".join(parts))
    charts.write()


if __name__ == "__main__":
    main(*map(pathlib.Path, sys.argv[1:]))
