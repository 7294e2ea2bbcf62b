"""program_test.py TESSERA WRITE_FAMILIES SANITIZERS: runs every command on the hostile texts, with a stack of 64 KiB
unless the program is sanitized.

With HOSTILE_SIZES=all in the environment, it also runs them on a line of 64 MiB, on ten million lines, on a million
lines that are all reported and on a million files, which takes an hour and 20 GB of memory.
"""

import json
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

TESSERA, WRITE_FAMILIES, SANITIZERS = sys.argv[1:4]
STACK_BYTES = 8 * 1024 * 1024 if SANITIZERS else 64 * 1024
SIZE = 1000 if SANITIZERS else 8000
IS_WHOLE = os.environ.get("HOSTILE_SIZES") == "all"
SECONDS = 7200 if IS_WHOLE else 600

# Only the last open comment has a fix, and a run fixes a file in at most 40 rounds.
FIXED_LATER = "comments_that_are_not_closed.py"

# Arguments after which the paths follow, and the statuses that are right.
COMMANDS = [
    (["parse", "--format", "tree"], {0}),
    (["parse", "--format", "json"], {0}),
    (["parse", "--format", "html"], {0}),
    (["check"], {0, 1}),
    (["check", "--format", "json"], {0, 1}),
    (["check", "--format", "sarif"], {0, 1}),
    (["check", "--fix", "--dry-run"], {0, 1}),
    (["markers"], {0}),
    (["markers", "--format", "json"], {0}),
]


def limit_stack():
    resource.setrlimit(resource.RLIMIT_STACK, (STACK_BYTES, STACK_BYTES))


def run(*arguments, output=subprocess.PIPE, folder=None):
    done = subprocess.run([TESSERA, *map(str, arguments)], stdout=output, stderr=subprocess.PIPE, cwd=folder,
                          preexec_fn=limit_stack, timeout=SECONDS)
    done.message = f"{arguments}: status {done.returncode}\n" + done.stderr.decode(errors="replace")[-2000:]
    return done


def write_families(folder, size, *name):
    folder.mkdir()
    subprocess.run([WRITE_FAMILIES, folder, str(size), *name], check=True)


class Hostile(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="hostile"))
        cls.sources = cls.folder / "sources"
        write_families(cls.sources, SIZE)
        cls.list = cls.folder / "list"
        cls.names = sorted(path.name for path in cls.sources.iterdir())
        cls.list.write_text("".join(f"{name}\n" for name in cls.names))

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    def expect(self, done, statuses):
        self.assertIn(done.returncode, statuses, done.message)
        self.assertEqual(done.stderr, b"", done.message)

    def test_all_commands_end_well(self):
        for arguments, statuses in COMMANDS:
            with self.subTest(arguments=arguments):
                done = run(*arguments, "--files-from", self.list, folder=self.sources)
                self.expect(done, statuses)
                self.assertNotEqual(done.stdout, b"")

    def test_each_file_has_a_record_whatever_the_number_of_workers_is(self):
        outputs = []
        for workers in "1", "2":
            done = run("parse", "--format", "ndjson", "-j", workers, "--files-from", self.list, folder=self.sources)
            self.expect(done, {0})
            outputs.append(done.stdout)
        self.assertEqual(outputs[0], outputs[1])
        records = [json.loads(line) for line in outputs[0].splitlines()]
        self.assertEqual([record["file"] for record in records], self.names)

    def test_fixing_again_changes_nothing(self):
        fixed = self.folder / "fixed"
        shutil.copytree(self.sources, fixed)
        (fixed / FIXED_LATER).write_bytes(b"")
        first = run("check", "--fix", "--files-from", self.list, folder=fixed)
        self.assertIn(first.returncode, {0, 1}, first.message)
        texts = {path.name: path.read_bytes() for path in fixed.iterdir()}
        self.assertNotEqual(texts, {path.name: path.read_bytes() for path in self.sources.iterdir()})
        self.expect(run("check", "--fix", "--files-from", self.list, folder=fixed), {0, 1})
        self.assertEqual(texts, {path.name: path.read_bytes() for path in fixed.iterdir()})

    def test_recordings_are_replayed(self):
        recording = self.folder / "recording"
        done = run("parse", "--bare", "--format", "ndjson", "--record", recording, "--files-from", self.list,
                   folder=self.sources)
        self.expect(done, {0})
        parsed = [json.loads(line)["nodes"] for line in done.stdout.splitlines()]
        done = run("replay", recording)
        self.expect(done, {0})
        answers = map(json.loads, done.stdout.splitlines())
        self.assertEqual(parsed, [answer["nodes"] for answer in answers if "nodes" in answer])


@unittest.skipUnless(IS_WHOLE, "set HOSTILE_SIZES=all")
class HostileAtScale(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="hostile"))
        self.addCleanup(shutil.rmtree, self.folder)

    def measure(self, arguments, statuses, *paths):
        begin = time.monotonic()
        with open(os.devnull, "wb") as nowhere:
            done = run(*arguments, *paths, output=nowhere)
        self.assertIn(done.returncode, statuses, done.message)
        peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
        print(f"{self.id().split('.')[-1]}: {' '.join(arguments)}: {time.monotonic() - begin:.1f} s,"
              f" largest process so far {peak:.0f} MB", flush=True)

    def test_a_line_of_64_mib(self):
        for name in "a line of words", "markers on a line", "task markers on a line", "openings":
            write_families(self.folder / name, 64 << 20, name)
            for arguments, statuses in COMMANDS:
                self.measure(arguments, statuses, *(self.folder / name).iterdir())
            shutil.rmtree(self.folder / name)

    def test_ten_million_lines(self):
        self.run_on_lines("plain lines", 10_000_000, 6)

    def test_a_million_reported_lines(self):
        self.run_on_lines("task markers without partners", 1_000_000, 19)

    def run_on_lines(self, name, lines, units):
        write_families(self.folder / name, lines * units, name)
        for arguments, statuses in COMMANDS:
            self.measure(arguments, statuses, *(self.folder / name).iterdir())

    def test_a_million_files(self):
        for number in range(1000):
            part = self.folder / f"{number:03}"
            part.mkdir()
            for other in range(1000):
                (part / f"{other:03}.py").write_bytes(b"# <@task#t%d>\n" % other)
        for arguments, statuses in COMMANDS:
            self.measure(arguments, statuses, self.folder)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
