"""all_tests.py [--list] [PART]...: runs every test in its longest form, part by part, or the parts named.

A part that fails does not end the run. The output of each is also in build/all/PART.log. At the end there is a row for
each part with its result and the time it took; the last line is the total, as that of scripts/test, where a part that
prints no total counts as one test. The status is not 0 if a part failed.
"""

import argparse
import dataclasses
import pathlib
import re
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOTAL = re.compile(r"(\d+) passed, (\d+) failed, (\d+) skipped")


@dataclasses.dataclass(frozen=True)
class Part:
    """A command for the shell, run in the project's folder."""

    name: str
    command: str


def build_of(preset, *programs):
    """Returns the command that builds the programs, or everything if none is named."""
    targets = f" --target {' '.join(programs)}" if programs else ""
    return f"cmake --preset {preset} && cmake --build --preset {preset}{targets}"


def cycles_in(preset, count):
    """Returns the command for life cycles of bundles in an embedded framework."""
    programs = ("framework_cycles", "markup_cycles")
    paths = " ".join(f"build/{preset}/bin/{program}" for program in programs)
    # env, because the name of the program itself is not replaced.
    return f"{build_of(preset, *programs)} && printf '%s\\n' {paths} | xargs -P 2 -I PROGRAM env PROGRAM {count}"


def compare_outputs_of(*presets):
    """Returns the command that builds the presets and compares what the programs write, in all environments."""
    builds = "; ".join(f"{build_of(preset)} || exit 1" for preset in presets)
    folders = " ".join(f"build/{preset}" for preset in presets)
    library = f"build/{presets[0]}/lib/libreversed_directories.so"
    return f"{builds}; DETERMINISM=all tests/determinism/determinism_test.py --preload {library} {folders}"


def make_parts():
    # No test is ended while it makes progress: some take hours.
    test = "TEST_TIMEOUT=86400 scripts/test"
    return [
        # The preset sets the variables that choose the longest forms.
        Part("long", "scripts/test dev-full"),
        Part("cycles", cycles_in("dev", 1000000)),
        # An hour in all.
        Part("fuzz", "scripts/fuzz 200"),
        Part("damage", f"{build_of('dev', 'tessera')} && tests/damage/measure.py build/dev/bin/tessera"),
        Part("release", f"ORACLE_SHARE=1 {test} release"),
        Part("clang", f"ORACLE_SHARE=1 {test} clang"),
        Part("asan", f"ORACLE_SHARE=1 {test} asan"),
        Part("tsan", f"ORACLE_SHARE=1 {test} tsan"),
        Part("determinism", compare_outputs_of("dev", "release", "clang", "asan")),
        Part("tsan_cycles", cycles_in("tsan", 100000)),
        Part("coverage", "scripts/coverage"),
    ]


# What is not part of it, and why.
LEFT_OUT = {
    "scripts/mutate": "run it for the folders that changed",
    "scripts/test-packages": "needs root and the network",
    "scripts/test-reproducible": "builds the last commit, not these files",
    "scripts/bench": "measures; it needs a machine that does nothing else",
}


@dataclasses.dataclass
class Result:
    part: Part
    seconds: float
    passed: int
    failed: int
    skipped: int

    def row(self):
        minutes, seconds = divmod(round(self.seconds), 60)
        return f"{self.part.name:12} {minutes // 60:3}:{minutes % 60:02}:{seconds:02}  {describe(self)}"


def describe(counts):
    return f"{counts.passed} passed, {counts.failed} failed, {counts.skipped} skipped"


def run_part(part, root, log):
    """Runs a part; its output goes to standard output and to the file `log`."""
    print(f"== {part.name}: {part.command}", flush=True)
    log.parent.mkdir(parents=True, exist_ok=True)
    began = time.monotonic()
    last = ""
    with log.open("w", encoding="utf-8") as copy, subprocess.Popen(
            ["bash", "-c", part.command], cwd=root, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            encoding="utf-8", errors="replace") as process:
        for line in process.stdout:
            sys.stdout.write(line)
            copy.write(line)
            last = line.strip() or last
    seconds = time.monotonic() - began
    total = TOTAL.fullmatch(last)
    passed, failed, skipped = map(int, total.groups()) if total else (int(process.returncode == 0), 0, 0)
    if process.returncode != 0 and failed == 0:
        failed = 1
    return Result(part, seconds, passed, failed, skipped)


def run_all(parts, root, folder):
    """Runs the parts, prints the table and the total, and returns the exit status."""
    results = [run_part(part, root, folder / f"{part.name}.log") for part in parts]
    print("\n".join(["", *(result.row() for result in results)]))
    for name, reason in LEFT_OUT.items():
        print(f"not run: {name} ({reason})")
    total = Result(None, 0, *(sum(getattr(result, field) for result in results) for field in ("passed", "failed", "skipped")))
    print(describe(total))
    return 1 if total.failed or not total.passed else 0


def main(arguments):
    parts = make_parts()
    parser = argparse.ArgumentParser(prog="scripts/test --all", description="Runs every test in its longest form.")
    parser.add_argument("--list", action="store_true", help="print the parts and their commands, and run nothing")
    parser.add_argument("part", nargs="*", help="the parts to run; all if none")
    chosen = parser.parse_args(arguments)
    unknown = set(chosen.part) - {part.name for part in parts}
    if unknown:
        parser.error(f"no part {min(unknown)!r}; the parts are {', '.join(part.name for part in parts)}")
    parts = [part for part in parts if not chosen.part or part.name in chosen.part]
    if chosen.list:
        print("\n".join(f"{part.name:12} {part.command}" for part in parts))
        return 0
    return run_all(parts, ROOT, ROOT / "build" / "all")


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
