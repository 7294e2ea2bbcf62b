"""Runs a test with a mutant, with limits on its time and memory."""

import dataclasses
import math
import os
import re
import resource
import signal
import subprocess
import tempfile
import time

MEMORY_BYTES = 8 << 30
# So that recursion that is too deep fails wherever this runs.
STACK_BYTES = 8 << 20


@dataclasses.dataclass
class Limits:
    processor_seconds: int = 600
    seconds: float = 600

    @staticmethod
    def of(seconds):
        """Returns limits that a test which normally takes `seconds` exceeds only if it does not end."""
        return Limits(math.ceil(3 * seconds) + 1, 10 * seconds + 20)


@dataclasses.dataclass
class Run:
    passed: bool
    seconds: float
    processor_seconds: float
    output: str


def run(command, folder, environment, limits):
    """Runs a command in a process group, and ends the whole group if it exceeds a limit."""

    def limit():
        resource.setrlimit(resource.RLIMIT_CPU, (limits.processor_seconds, limits.processor_seconds))
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
        resource.setrlimit(resource.RLIMIT_STACK, (STACK_BYTES, STACK_BYTES))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    started = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="mutate-", ignore_cleanup_errors=True) as temporary, \
            tempfile.TemporaryFile() as output:
        # The random tests repeat a few of their cases: a survivor does not depend on luck.
        settings = {"GTEST_FAIL_FAST": "1", "ORACLE_SEED": "1", "ORACLE_SHARE": "50", "TMPDIR": temporary}
        process = subprocess.Popen(command, cwd=folder, env={**os.environ, **settings, **environment},
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
                                   start_new_session=True, preexec_fn=limit)
        status, usage = wait(process, limits.seconds)
        output.seek(0)
        text = output.read().decode(errors="replace")
    return Run(status == 0, time.monotonic() - started, usage.ru_utime + usage.ru_stime, text)


def wait(process, seconds):
    """Returns the status and the resources used. After `seconds`, ends the processes of the group first."""
    end = time.monotonic() + seconds
    pause = 0.002
    while True:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            break
        if time.monotonic() > end:
            os.killpg(process.pid, signal.SIGKILL)
            _, status, usage = os.wait4(process.pid, 0)
            break
        time.sleep(pause)
        pause = min(pause * 1.5, 0.05)
    process.returncode = status
    try:
        os.killpg(process.pid, signal.SIGKILL)  # what it left
    except ProcessLookupError:
        pass
    return status, usage


# Tests of GoogleTest that take less than this run in one process.
QUICK_SECONDS = 0.3


@dataclasses.dataclass
class Test:
    """A test that can fail with a mutant: a command, or one case of a program of GoogleTest."""

    name: str
    command: list
    folder: str
    case: str = ""
    seconds: float = 0
    reached: bytes = b""

    def run(self, environment, limits):
        return run(self.command, self.folder, {"GTEST_FILTER": self.case or "*", **environment}, limits)


def tests_of(name, command, folder, has_cases):
    """Returns the tests of a command that ctest runs."""
    if not has_cases:
        return [Test(name, command, folder)]
    listed = run([*command, "--gtest_list_tests"], folder, {}, Limits())
    tests, suite = [], ""
    for line in listed.output.splitlines():
        line, _, _ = line.partition("#")
        if line.startswith("  "):
            tests.append(Test(name, command, folder, suite + line.strip()))
        elif line.rstrip().endswith("."):
            suite = line.strip()
    return tests


def joined(tests):
    """Returns tests that run the same cases as `tests`, the quick ones of a program together."""
    slow = [test for test in tests if not test.case or test.seconds >= QUICK_SECONDS]
    quick = {}
    for test in tests:
        if test.case and test.seconds < QUICK_SECONDS:
            quick.setdefault(test.name, []).append(test)
    return slow + [dataclasses.replace(some[0], case=":".join(test.case for test in some),
                                       seconds=sum(test.seconds for test in some)) for some in quick.values()]


def failed_case(output):
    """Returns the first case that GoogleTest reports as failed, "" if there is none."""
    failed = re.search(r"^\[  FAILED  \] ([\w./]+)", output, re.MULTILINE)
    return failed[1] if failed else ""
