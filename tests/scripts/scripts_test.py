"""scripts_test.py SOURCE TESSERA: tests the total of test reports, what the lint checks, and commands in scripts/
that cannot build or say how to begin."""

import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE, TESSERA = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
SCRIPTS = SOURCE / "scripts"
sys.path.insert(0, str(SCRIPTS / "lib"))

import lint  # noqa: E402

CTEST = """<testsuite>
  <testcase name="parser_test" status="run"/>
  <testcase name="golden" status="run"/>
  <testcase name="crashed" status="fail"><failure message=""/></testcase>
  <testcase name="elsewhere" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/></testcase>
</testsuite>
"""
GOOGLETEST = """<testsuites><testsuite name="Parser">
  <testcase name="One" status="run" result="completed"/>
  <testcase name="Two" status="run" result="completed"/>
  <testcase name="Three" status="run" result="skipped"/>
</testsuite></testsuites>
"""


class Scripts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def report(self, build, ctest, **programs):
        reports = self.folder / build / "reports"
        reports.mkdir(parents=True)
        (reports / "ctest.xml").write_text(ctest)
        for name, text in programs.items():
            (reports / f"{name}.xml").write_text(text)
        return reports.parent

    def count(self, *builds):
        done = subprocess.run(
            [sys.executable, SCRIPTS / "lib" / "count.py", *builds], stdout=subprocess.PIPE, text=True
        )
        return done.returncode, done.stdout.splitlines()

    def test_a_program_counts_as_its_cases(self):
        build = self.report("dev", CTEST, parser_test=GOOGLETEST)
        self.assertEqual(self.count(build), (1, ["3 passed, 1 failed, 2 skipped"]))

    def test_every_count_is_in_the_total_even_if_it_is_0(self):
        build = self.report("dev", '<testsuite><testcase name="a" status="run"/></testsuite>')
        self.assertEqual(self.count(build), (0, ["1 passed, 0 failed, 0 skipped"]))

    def test_the_total_of_several_builds_is_the_last_line(self):
        builds = [self.report(name, CTEST) for name in ("dev", "asan")]
        each = "2 passed, 1 failed, 1 skipped"
        total = "4 passed, 2 failed, 2 skipped"
        self.assertEqual(self.count(*builds), (1, [f"dev: {each}", f"asan: {each}", total]))

    def test_no_test_is_a_failure(self):
        self.assertEqual(self.count(self.report("dev", "<testsuite/>"))[0], 1)

    def test_parse_exits_with_125_when_it_cannot_build(self):
        shutil.copytree(SCRIPTS, self.folder / "tree" / "scripts")
        (self.folder / "tree" / "CMakePresets.json").write_text("{}")
        done = subprocess.run(
            [self.folder / "tree" / "scripts" / "parse", "a.py"],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
        )
        self.assertEqual((done.returncode, done.stdout), (125, ""), done.stderr)
        self.assertIn("parse: the build failed", done.stderr)

    def test_parse_without_arguments_shows_commands_that_work(self):
        for cwd in (SOURCE, self.folder):
            done = subprocess.run([SCRIPTS / "parse"], cwd=cwd, capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            commands = [shlex.split(line) for line in re.findall("^  (\\S.*)", done.stderr, re.MULTILINE)]
            self.assertEqual(len(commands), 3, done.stderr)
            for script, *arguments in commands:
                self.assertEqual((cwd / script).resolve(), SCRIPTS / "parse")
                # The program that the script would build. Its output does not go into the project.
                arguments = [str(self.folder / word) if word == "page.html" else word for word in arguments]
                run = subprocess.run([TESSERA, "parse", *arguments], cwd=cwd, capture_output=True, text=True,
                                     timeout=120)
                self.assertEqual((run.returncode, run.stderr), (0, ""), arguments)
            for page in ("README.md", "docs/options.md"):
                shown = re.search(rf"\S*{page}", done.stderr)[0]
                self.assertTrue((cwd / shown).is_file(), shown)


class Lint(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)
        return path

    def test_a_file_depends_on_what_its_includes_include(self):
        source = self.write("a/a.cpp", '#include "own.hpp"\n#include <vector>\n # include "b.hpp"\n')
        own = self.write("a/own.hpp", '#include "own.hpp"\n')
        first = self.write("first/b.hpp", '#include "c/c.hpp"\n')
        hidden = self.write("second/b.hpp", "")
        nested = self.write("c/c.hpp", "#if 0\n#include <d.hpp>\n#endif\n")
        conditional = self.write("second/d.hpp", "")
        includes = lint.Includes([source, own, first, hidden, nested, conditional])
        folders = [str(self.folder / name) for name in ("first", "second", ".")]
        self.assertEqual(includes.files(source, folders), sorted([own, first, nested, conditional]))

    def test_only_tests_with_equal_options_are_checked_together(self):
        def job(name, *options):
            return lint.Job(lint.ROOT / name, list(options), "")

        todo = [job("tests/a.cpp", "-Ia"), job("src/a.cpp", "-Ia"), job("src/b.cpp", "-Ia"),
                job("tests/b.cpp", "-Ia"), job("tests/c.cpp", "-Ib")]
        names = [[job.path.name for job in batch] for batch in lint.batches(todo)]
        self.assertEqual(names, [["a.cpp", "b.cpp"], ["a.cpp"], ["b.cpp"], ["c.cpp"]])

    def test_no_batch_is_longer_than_its_limit(self):
        todo = [lint.Job(lint.ROOT / f"tests/{n}.cpp", [], "") for n in range(2 * lint.BATCH_SIZE + 1)]
        self.assertEqual([len(batch) for batch in lint.batches(todo)], [lint.BATCH_SIZE, lint.BATCH_SIZE, 1])

    def test_options_name_no_file(self):
        entry = {"command": "g++ -DA=\\\"b\\\" -Ix -isystem y -o a.o -c a.cpp"}
        options = lint.options_of(entry)
        self.assertEqual(options, ['-DA="b"', "-Ix", "-isystem", "y"])
        self.assertEqual(lint.include_folders(options), ["x", "y"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
