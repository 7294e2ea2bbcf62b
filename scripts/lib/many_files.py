"""Measures `tessera parse` on many files and on a large one: ratios of runs that take turns."""

import os
import pathlib
import subprocess
import tempfile
import time

ROUNDS = 3
SMALL_FILES, SMALL_LINES = 20_000, 40
LARGE_FILES, LARGE_BYTES = 20, 3_000_000
MEMORY_BYTES = 60_000_000


def pieces(lines, count, size):
    """Yields `count` texts of at least `size` bytes made of `lines`, repeated as needed."""
    at = 0
    for _ in range(count):
        text, length = [], 0
        while length < size:
            text.append(lines[at % len(lines)])
            length += len(text[-1])
            at += 1
        yield b"".join(text)


def write_files(folder, texts):
    folder.mkdir()
    total = 0
    for number, text in enumerate(texts):
        (folder / f"{number:05}").write_bytes(text)
        total += len(text)
    return total


def seconds_together(commands):
    """Returns how long the commands take at the same time."""
    begin = time.monotonic()
    processes = [subprocess.Popen(command, stdout=subprocess.DEVNULL) for command in commands]
    for process, command in zip(processes, commands):
        if process.wait() != 0:
            raise subprocess.CalledProcessError(process.returncode, command)
    return time.monotonic() - begin


def best_times(runs):
    """Returns the best time of each run, a list of commands that run at the same time. The runs take
    turns: a disturbance hits all alike."""
    best = [float("inf")] * len(runs)
    for _ in range(ROUNDS):
        for number, commands in enumerate(runs):
            best[number] = min(best[number], seconds_together(commands))
    return best


def halves(folder):
    """Writes the paths of a folder's files to two lists in turn."""
    paths = sorted(folder.iterdir())
    for number in (0, 1):
        path = folder.with_name(f"{folder.name}.{number}")
        path.write_text("".join(f"{path}\n" for path in paths[number::2]))
        yield path


def processes_below(number):
    yield number
    try:
        for task in os.listdir(f"/proc/{number}/task"):
            for child in pathlib.Path(f"/proc/{number}/task/{task}/children").read_text().split():
                yield from processes_below(int(child))
    except OSError:
        pass  # It has ended.


def peak_bytes(command):
    """Returns the sum of the peak memory of all processes of `command`. The peak of each (VmHWM)
    only grows, so that what is read last before its end is nearly the final one."""
    peaks = {}
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    while process.poll() is None:
        for number in processes_below(process.pid):
            try:
                status = pathlib.Path(f"/proc/{number}/status").read_text()
                peaks[number] = int(status.split("VmHWM:")[1].split()[0]) * 1024
            except (OSError, IndexError):
                pass  # It has ended.
        time.sleep(0.005)
    if process.returncode != 0:
        raise subprocess.CalledProcessError(process.returncode, command)
    return sum(peaks.values())


def rows(program, lines, folder):
    """Yields each aim with a sign of what is wanted, the limit, and what was measured."""
    parse = [program, "parse", "--format", "ndjson"]
    average = sum(map(len, lines)) / len(lines)
    write_files(folder / "small", pieces(lines, SMALL_FILES, int(SMALL_LINES * average)))
    size = write_files(folder / "large", pieces(lines, LARGE_FILES, LARGE_BYTES))
    sets = (("small", f"{SMALL_FILES} small files"), ("large", f"{LARGE_FILES} files of 3 MB"))
    for name, text in sets:
        one, two, separate = best_times(
            [
                [[*parse, "-j", "1", folder / name]],
                [[*parse, "-j", "2", folder / name]],
                [[*parse, "-j", "1", "--files-from", path] for path in halves(folder / name)],
            ]
        )
        yield f"speed of -j 2 in times of -j 1, {text}", "at least", 1.8, one / two
        aim = f"the same in times of two separate runs of half of the files each, {text}"
        yield aim, "at least", 0.9, separate / two
    output = folder / "out"
    full = [*parse, "-j", "1", "-o", output, folder / "large"]
    short = [*full, "--omit-empty"]
    full_time, short_time = best_times([[full], [short]])
    seconds_together([short])
    aim = "size of a document with --omit-empty, in times of the source"
    yield aim, "at most", 4, output.stat().st_size / size
    yield "time with --omit-empty, in times of the full form", "at most", 1, short_time / full_time
    output.unlink()
    [text] = pieces(lines, 1, MEMORY_BYTES)
    (folder / "one").write_bytes(text)
    for form in ("json", "ndjson"):
        peak = peak_bytes([program, "parse", "--format", form, "-o", "/dev/null", folder / "one"])
        aim = f"peak memory of all processes in times of the file, {form}"
        yield aim, "at most", 3.6, peak / len(text)


def measure(program, corpus):
    """Returns the aims as a table."""
    lines = corpus.read_bytes().splitlines(keepends=True)
    table = ["| aim | wanted | measured | met |", "| --- | --- | --- | --- |"]
    with tempfile.TemporaryDirectory(dir=corpus.parent) as folder:
        for aim, sign, limit, measured in rows(program, lines, pathlib.Path(folder)):
            met = measured >= limit if sign == "at least" else measured <= limit
            verdict = "yes" if met else "NO"
            table.append(f"| {aim} | {sign} {limit} | {measured:.3f} | {verdict} |")
    return "\n".join(table)
