"""fuzz.py BUILD TESTS SECONDS [TARGET]...: runs the fuzz targets of BUILD for SECONDS each, as many at once as there
are processors, and prints what each did.

TESTS has the seed corpora, the dictionaries and the options. What a target finds stays in BUILD/corpus and is where its next run
begins; the output of libFuzzer is in BUILD/logs, an input that ends a target in BUILD/crashes. The status is 1 if a
target failed.
"""

import concurrent.futures
import dataclasses
import os
import pathlib
import re
import subprocess
import sys
import threading

# A target has this much time in addition, to start and to read its corpus, before it is stopped.
START_SECONDS = 300
# Without them, a third of the time goes into recording where a block was allocated and into pages for blocks that
# are new each time.
SETTINGS = {
    "ASAN_OPTIONS": "malloc_context_size=2:quarantine_size_mb=4",
    "UBSAN_OPTIONS": "print_stacktrace=1",
    "MALLOC_TRIM_THRESHOLD_": str(1 << 28),
    "MALLOC_TOP_PAD_": str(1 << 24),
}
# The entropic schedule takes up to half of the time where a target is fast.
OPTIONS = ("-rss_limit_mb=4096", "-entropic=0")
# #12345  DONE   cov: 123 ft: 456 corp: 7/89b ...
STATUS = re.compile(r"^#(\d+)\s+\w+\s+cov: (\d+) ft: (\d+) corp: (\d+)", re.MULTILINE)
RUNS = re.compile(r"^Done (\d+) runs in", re.MULTILINE)
EDGES = re.compile(r"\((\d+) inline 8-bit counters\)")
ARTIFACT = re.compile(r"Test unit written to (\S+)")


@dataclasses.dataclass
class Outcome:
    """What one run of a target printed."""

    target: str
    failed: bool
    executions: int
    # Of the processor: the machine may do other work.
    seconds: float
    covered: int
    edges: int
    features: int
    inputs: int
    crash: str

    @classmethod
    def of(cls, target, status, seconds, log):
        last = [tuple(map(int, found)) for found in STATUS.findall(log)] or [(0, 0, 0, 0)]
        done = RUNS.findall(log) or [last[-1][0]]
        crash = ARTIFACT.findall(log) or [""]
        loaded = EDGES.search(log)
        return cls(
            target, status != 0, int(done[-1]), seconds, last[-1][1], int(loaded[1]) if loaded else 0,
            last[-1][2], last[-1][3], crash[-1],
        )

    def row(self):
        speed = f"{round(self.executions / self.seconds):,}" if self.seconds else ""
        covered = f"{self.covered:,} of {self.edges:,}"
        return (
            self.target, f"{self.executions:,}", speed, covered, f"{self.features:,}", f"{self.inputs:,}",
            "FAILED" if self.failed else "",
        )


HEAD = ("target", "executions", "per second", "edges covered", "features", "inputs", "")


def table(outcomes):
    """Returns the rows of the outcomes, numbers to the right."""
    rows = [HEAD, *(outcome.row() for outcome in outcomes)]
    widths = [max(map(len, column)) for column in zip(*rows)]
    return "\n".join(
        "  ".join([row[0].ljust(widths[0]), *map(str.rjust, row[1:], widths[1:])]).rstrip() for row in rows
    )


def run_for(seconds, command, **settings):
    """Runs a command, which is ended after `seconds`. Returns its status and how long it used a processor."""
    with subprocess.Popen(command, **settings) as process:
        alarm = threading.Timer(seconds, process.kill)
        alarm.start()
        _, status, used = os.wait4(process.pid, 0)
        alarm.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode, used.ru_utime + used.ru_stime


def read_options(tests):
    """Returns the options of libFuzzer for each target."""
    lines = (tests / "options").read_text().splitlines()
    return {name: options for name, *options in map(str.split, lines) if name != "#"}


class Fuzzing:
    def __init__(self, build, tests, seconds):
        self.build, self.tests, self.seconds = build, tests, seconds

    def folder(self, *names):
        path = self.build.joinpath(*names)
        path.mkdir(parents=True, exist_ok=True)
        return path

    def command(self, target):
        crashes = self.folder("crashes", target)
        return [
            self.build / "bin" / f"{target}_fuzz",
            f"-max_total_time={self.seconds}",
            *OPTIONS,
            f"-artifact_prefix={crashes}/",
            *self.options(target),
            self.folder("corpus", target),
            self.tests / "corpus" / target,
        ]

    def options(self, target):
        return [
            option.replace("-dict=", f"-dict={self.tests}/dictionaries/")
            for option in read_options(self.tests)[target]
        ]

    def run(self, target):
        log = self.folder("logs") / f"{target}.log"
        environment = {**os.environ, **SETTINGS, "TMPDIR": str(self.folder("tmp"))}
        print(f"fuzz: {target}", file=sys.stderr, flush=True)
        with log.open("wb") as output:
            status, used = run_for(
                self.seconds + START_SECONDS, self.command(target), stdin=subprocess.DEVNULL,
                stdout=output, stderr=output, cwd=self.build, env=environment,
            )
        return Outcome.of(target, status, used, log.read_text(errors="replace"))

    def explain(self, outcome):
        """Prints where a failure is and how to repeat it."""
        print(f"\n{outcome.target} failed; its output is in {self.build}/logs/{outcome.target}.log")
        if outcome.crash:
            print(f"the input: {outcome.crash}")
            print(f"to repeat it: {self.build}/bin/{outcome.target}_fuzz {outcome.crash}")


def main(arguments):
    build, tests = (pathlib.Path(argument).resolve() for argument in arguments[:2])
    fuzzing = Fuzzing(build, tests, int(arguments[2]))
    targets = arguments[3:] or list(read_options(tests))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as processors:
        outcomes = list(processors.map(fuzzing.run, targets))
    print(table(outcomes))
    failed = [outcome for outcome in outcomes if outcome.failed]
    for outcome in failed:
        fuzzing.explain(outcome)
    total = sum(outcome.executions for outcome in outcomes)
    print(f"{total:,} executions of {len(outcomes)} targets, {len(failed)} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
