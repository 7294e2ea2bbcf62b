#!/usr/bin/env python3
"""Compares what the program writes, byte for byte, in different environments and in several builds.

determinism_test.py [--preload LIBRARY] BUILD...

A BUILD is a build folder with the program and the extension bundles of the tests. LIBRARY reverses the entries of
directories. Of the first build, every command runs in an ordinary environment and in one that differs in everything:
locale, time zone, umask, number of workers, order of directory entries, folder and times of the files, terminal
variables, contents of fresh memory. With DETERMINISM=all, it also runs in environments that differ in one thing only.
The other builds run in the ordinary environment.

The test prints how many outputs it compared.
"""
import argparse
import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SECONDS = 600

# Sources whose names are in another order in other locales, and a file that cannot be read as text.
NAMED = {name: b"x = 1  # <@output#%d [0,1] {\"d\":0.5}>\n" % number for number, name in enumerate(
    ["I.py", "i.py", "\u0130.py", "\u0131.py", "Z.py", "\u00e4.py", "a b.py", "_.py", "a/b.py", "a.py", "a-b.py"])}
NAMED["not_text.py"] = b"x\n\xff\n"

# The commands, and whether they run with several workers. "@" is the folder for outputs; {bundles} are the extensions.
COMMANDS = {
    "parse as a tree": ("parse .", True),
    "parse as a coloured, narrow tree": ("parse --color always --width 60 .", True),
    "parse as a tree with all records": ("parse --trace .", True),
    "parse as JSON": ("parse --format json .", True),
    "parse as JSON without pieces": ("parse --format json --bare .", True),
    "parse as records": ("parse --format ndjson --trace .", True),
    "parse as records without empty members": ("parse --format ndjson --omit-empty -o @/records .", True),
    "parse as a page": ("parse --format html -o @/page.html .", True),
    "parse as a tree to a file": ("parse -o @/tree .", True),
    "parse with extensions": ("parse --format json {bundles} .", True),
    "parse with extensions, without pieces": ("parse --format json --bare {bundles} .", True),
    "parse and record": ("parse --format ndjson --record @/recording .", False),
    "replay": ("replay @/recording", False),
    "check": ("check .", True),
    "check in colour": ("check --color always .", True),
    "check as JSON": ("check --format json .", True),
    "check as SARIF": ("check --format sarif -o @/sarif .", True),
    "check with extensions": ("check --format json {bundles} .", True),
    "fixes": ("check --fix --dry-run .", True),
    "markers": ("markers .", True),
    "markers as JSON": ("markers --format json .", True),
    "explain everything": ("explain", False),
    "explain": ("explain missing_task_marker_pair", False),
    "doctor": ("doctor {bundles}", False),
    "doctor as JSON": ("doctor --format json", False),
    "version": ("--version", False),
    "help": ("help parse", False),
    "new bundle": ("new-bundle word_count @/word-count", False),
    # Changes the sources.
    "fix": ("check --fix .", True),
}


def make_locale(folder):
    """Makes a locale with a decimal comma and Turkish letters in `folder`. Returns its name, or that of one that is
    always there."""
    try:
        subprocess.run(["localedef", "-i", "tr_TR", "-f", "UTF-8", "--no-archive", folder / "tr_TR.UTF-8"], check=True,
                       capture_output=True)
        return "tr_TR.UTF-8"
    except (OSError, subprocess.CalledProcessError):
        print("no sources of locales: the locale is C.UTF-8")
        return "C.UTF-8"


def make_sources(folder, in_reverse):
    """Writes all sources of the tests to `folder`."""
    files = {name: data for name, data in NAMED.items()}
    sources = list((ROOT / "examples").iterdir())
    for part in "check", "markers", "parse", "tree", "languages":
        sources += (ROOT / "tests" / "golden" / part).rglob("*")
    for source in sources:
        if source.is_file() and source.suffix not in (".expected", ".json"):
            files[str(source.relative_to(ROOT))] = source.read_bytes()
    for name in sorted(files, reverse=in_reverse):
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(files[name])
        if in_reverse:
            path.chmod(0o600)
            os.utime(path, (10 ** 9, 10 ** 9 + len(name)))
    return len(files)


def read_files(tops):
    """Returns the contents of all files in folders, by the name of the folder and the path in it."""
    return {f"{name}/{path.relative_to(top)}": path.read_bytes()
            for name, top in tops.items() for path in top.rglob("*") if path.is_file()}


class Environment:
    """Where and how a program runs; each setting is one way in which a run differs from an ordinary one."""

    def __init__(self, folder, locale, library, settings):
        self.sources = folder / ("a longer name \u00fc/than/the other" if "folder" in settings else "sources")
        self.outputs = folder / "outputs"
        self.outputs.mkdir(parents=True)
        self.sources.mkdir(parents=True)
        self.count = make_sources(self.sources, "folder" in settings)
        self.umask = 0o077 if "umask" in settings else 0o022
        self.workers = "4" if "workers" in settings else "1"
        self.variables = {name: value for name, value in os.environ.items()
                          if not name.startswith("LC_") and name not in ("LANG", "LANGUAGE", "NO_COLOR", "COLUMNS")}
        self.variables.update(LC_ALL="C", TZ="UTC", TERM="xterm", HOME=str(folder))
        if "locale" in settings:
            self.variables.update(LC_ALL=locale, LANG=locale, LANGUAGE="tr", LOCPATH=str(folder.parent))
        if "time zone" in settings:
            self.variables.update(TZ="Asia/Kathmandu")
        if "terminal" in settings:
            self.variables.update(COLUMNS="40", LINES="5", NO_COLOR="1", TERM="dumb", HOME="/nonexistent")
        if "memory" in settings:
            self.variables.update(MALLOC_PERTURB_="165", MALLOC_ARENA_MAX="1")
        if "directory order" in settings and library:
            self.variables.update(LD_PRELOAD=library)

    def run(self, program, arguments, can_have_workers):
        """Returns the status, what the program wrote, and the files that it made or changed. Only --fix changes
        sources."""
        tops = {"outputs": self.outputs}
        if "--fix" in arguments:
            tops["sources"] = self.sources
        arguments = [re.sub("^@", str(self.outputs), argument) for argument in arguments]
        if can_have_workers:
            arguments += ["-j", self.workers]
        before = read_files(tops)
        done = subprocess.run([program, *arguments], cwd=self.sources, env=self.variables, umask=self.umask,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=SECONDS)
        after = read_files(tops)
        changed = {name: data for name, data in after.items() if before.get(name) != data}
        output = done.stdout.replace(str(self.outputs).encode(), b"@")
        return {"status": done.returncode, "output": output, "errors": done.stderr, "files": changed}


SETTINGS = ["locale", "time zone", "umask", "workers", "directory order", "folder", "terminal", "memory"]


class Build:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.program = self.folder / "bin" / "tessera"
        tests = self.folder / "tests"
        self.extensions = [
            tests / "determinism" / "extensions" / "libextension_ranked.so",
            *(tests / "apps" / "tessera" / "extensions" / f"libextension_{name}.so" for name in ("slider", "faulty"))]

    def outputs(self, environment, bundles=None, names=None):
        """Returns what each command does, by its name."""
        bundles = [argument for file in bundles or self.extensions for argument in ("--bundle", str(file))]
        outputs = {}
        for name, (line, can_have_workers) in COMMANDS.items():
            if names and name not in names:
                continue
            arguments = [part for word in line.split() for part in (bundles if word == "{bundles}" else [word])]
            outputs[name] = environment.run(self.program, arguments, can_have_workers)
        return outputs


def without_folders(result, folder):
    """Leaves out where the build is, which doctor says."""
    return {key: value.replace(str(folder).encode(), b"BUILD") if isinstance(value, bytes) else value
            for key, value in result.items()}


class Determinism(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="determinism"))
        cls.locale = make_locale(cls.folder)
        cls.compared = 0
        cls.expected = BUILDS[0].outputs(cls.environment())

    @classmethod
    def tearDownClass(cls):
        print(f"{cls.compared} outputs compared, {len(COMMANDS)} commands")
        shutil.rmtree(cls.folder)

    @classmethod
    def environment(cls, *settings):
        return Environment(pathlib.Path(tempfile.mkdtemp(dir=cls.folder)), cls.locale, LIBRARY, settings)

    def compare(self, expected, actual, what):
        self.assertEqual(expected.keys(), actual.keys())
        for name, result in actual.items():
            for part, value in result.items():
                with self.subTest(command=name, part=part, differs=what):
                    self.assertEqual(value, expected[name][part])
                type(self).compared += 1

    def test_the_commands_do_something(self):
        for name, result in self.expected.items():
            with self.subTest(command=name):
                self.assertTrue(result["output"] or result["files"], result["errors"])
                self.assertIn(result["status"], (0, 1, 3), result["errors"])
        self.assertEqual(self.expected["parse as records"]["output"].count(b"\n"), self.environment().count)
        self.assertIn(b"ranked ", self.expected["parse with extensions"]["output"])
        self.assertGreater(len(self.expected["fix"]["files"]), 10)

    @unittest.skipUnless("--preload" in sys.argv, "a sanitized program")
    def test_the_library_reverses_directories(self):
        names = [subprocess.run([sys.executable, "-c", "import os; print(*os.listdir(), sep='/')"], cwd=ROOT, env=env,
                                check=True, capture_output=True, text=True).stdout.strip().split("/")
                 for env in (dict(os.environ), dict(os.environ, LD_PRELOAD=LIBRARY))]
        self.assertEqual(names[0], names[1][::-1])

    def test_another_environment(self):
        self.compare(self.expected, BUILDS[0].outputs(self.environment(*SETTINGS)), "everything")

    @unittest.skipUnless(os.environ.get("DETERMINISM") == "all", "set DETERMINISM=all")
    def test_environments_that_differ_in_one_thing(self):
        self.compare(self.expected, BUILDS[0].outputs(self.environment()), "nothing")
        for setting in SETTINGS:
            self.compare(self.expected, BUILDS[0].outputs(self.environment(setting)), setting)

    def test_another_order_of_bundles(self):
        names = ["parse with extensions, without pieces"]
        expected = {name: self.expected[name] for name in names}
        for order in itertools.islice(itertools.permutations(BUILDS[0].extensions), 1, None):
            actual = BUILDS[0].outputs(self.environment(), order, names)
            self.compare(expected, actual, [path.name for path in order])

    def test_other_builds(self):
        if len(BUILDS) == 1:
            self.skipTest("one build; `scripts/test --all determinism` compares several")
        first = BUILDS[0]
        expected = {name: without_folders(result, first.folder) for name, result in self.expected.items()}
        for build in BUILDS[1:]:
            outputs = build.outputs(self.environment())
            actual = {name: without_folders(result, build.folder) for name, result in outputs.items()}
            self.compare(expected, actual, str(build.folder))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--preload", type=os.path.abspath)
    parser.add_argument("builds", nargs="+")
    options = parser.parse_args()
    LIBRARY = options.preload
    BUILDS = [Build(folder) for folder in options.builds]
    unittest.main(argv=sys.argv[:1])
