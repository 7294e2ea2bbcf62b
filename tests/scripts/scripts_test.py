"""scripts_test.py SOURCE TESSERA: tests the total of test reports, what the lint checks, and commands in scripts/
that cannot build or say how to begin."""

import contextlib
import io
import json
import os
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

import all_tests  # noqa: E402
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


class AllTests(unittest.TestCase):
    """`scripts/test --all`, with other parts: the real ones take hours."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_parts(self, **commands):
        """Returns the exit status and the lines printed."""
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            parts = [all_tests.Part(name, command) for name, command in commands.items()]
            status = all_tests.run_all(parts, self.folder, self.folder / "logs")
        return status, output.getvalue().splitlines()

    def test_a_part_that_fails_does_not_end_the_run(self):
        status, lines = self.run_parts(first="echo text; echo 3 passed, 1 failed, 2 skipped; exit 1", second="exit 7",
                                       third="echo 5 passed, 0 failed, 1 skipped", fourth="echo done >&2")
        self.assertEqual((status, lines[-1]), (1, "9 passed, 2 failed, 3 skipped"))
        rows = [line.split() for line in lines if re.match(r"\w+ +\d+:\d\d:\d\d  ", line)]
        self.assertEqual([[row[0], *row[2:]] for row in rows],
                         [["first", "3", "passed,", "1", "failed,", "2", "skipped"], ["second", "0", "passed,", "1", "failed,", "0", "skipped"],
                          ["third", "5", "passed,", "0", "failed,", "1", "skipped"], ["fourth", "1", "passed,", "0", "failed,", "0", "skipped"]])
        self.assertIn("text", lines)
        self.assertEqual((self.folder / "logs" / "fourth.log").read_text(), "done\n")

    def test_parts_that_pass_give_status_0(self):
        status, lines = self.run_parts(one="true", two="echo 4 passed, 0 failed, 0 skipped")
        self.assertEqual((status, lines[-1]), (0, "5 passed, 0 failed, 0 skipped"))
        self.assertIn("not run: scripts/mutate (run it for the folders that changed)", lines)

    def test_a_part_that_fails_after_its_total_is_a_failure(self):
        status, lines = self.run_parts(one="echo 4 passed, 0 failed, 0 skipped; exit 3")
        self.assertEqual((status, lines[-1]), (1, "4 passed, 1 failed, 0 skipped"))

    def test_the_time_is_in_hours_minutes_and_seconds(self):
        row = all_tests.Result(all_tests.Part("one", ""), 3723.6, 1, 0, 0).row()
        self.assertIn("  1:02:04  1 passed", row)

    def list(self, *arguments):
        return subprocess.run([SCRIPTS / "test", "--all", "--list", *arguments], cwd=self.folder, capture_output=True, text=True,
                              timeout=60)

    def test_every_part_is_something_that_exists(self):
        listed = dict(line.split(maxsplit=1) for line in self.list().stdout.splitlines())
        self.assertEqual(listed, {part.name: part.command for part in all_tests.make_parts()})
        presets = {preset["name"]: preset for preset in json.loads((SOURCE / "CMakePresets.json").read_text())["testPresets"]}
        tests = "".join(path.read_text(errors="replace") for path in SOURCE.joinpath("tests").rglob("*")
                        if path.suffix in (".py", ".cpp", ".hpp", ".txt"))
        for name in presets["dev-full"]["environment"]:
            self.assertIn(name, tests)
        for command in listed.values():
            *settings, program = re.match(r"((?:[A-Z_]+=\S+ )*)(.*)", command).groups()
            for name in re.findall(r"([A-Z_]+)=", settings[0]):
                self.assertTrue(name in tests or name == "TEST_TIMEOUT", name)
            for word in shlex.split(program.replace("&&", " ")):
                if "/" in word and not word.startswith("build/"):
                    self.assertTrue((SOURCE / word).exists(), word)
                if program.startswith("scripts/test ") and not word.startswith("scripts/"):
                    self.assertIn(word.partition(":")[0], presets)
        for name in all_tests.LEFT_OUT:
            self.assertTrue((SOURCE / name).exists(), name)

    def put_program(self, path, script):
        program = self.folder / path
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\n{script}\n")
        program.chmod(0o755)

    def test_the_parts_of_life_cycles_run_both_programs(self):
        self.put_program("path/cmake", "exit 0")
        parts = {part.name: part.command for part in all_tests.make_parts()}
        for name, preset, count in (("cycles", "dev", 1000000), ("tsan_cycles", "tsan", 100000)):
            for status in (0, 1):
                bin_folder = f"build/{preset}/bin"
                self.put_program(f"{bin_folder}/framework_cycles", 'echo "framework $*"')
                self.put_program(f"{bin_folder}/markup_cycles", f'echo "markup $*"; exit {status}')
                done = subprocess.run(["bash", "-c", parts[name]], cwd=self.folder, capture_output=True, text=True, timeout=60,
                                      env={**os.environ, "PATH": f"{self.folder / 'path'}:{os.environ['PATH']}"})
                self.assertEqual(sorted(done.stdout.splitlines()), [f"framework {count}", f"markup {count}"], done.stderr)
                self.assertEqual(done.returncode != 0, status != 0)

    def test_parts_can_be_chosen(self):
        self.assertEqual([line.split()[0] for line in self.list("release", "fuzz").stdout.splitlines()], ["fuzz", "release"])
        done = self.list("nonsense")
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertIn("no part 'nonsense'; the parts are long,", done.stderr)


# Writes what libFuzzer writes; the input "bad" of its corpus ends it.
FUZZER = """#!/bin/sh
echo "INFO: Loaded 1 modules   (200 inline 8-bit counters): 200 [0x1, 0x2)," >&2
for last; do :; done
echo "$@" >&2
echo "#8 INITED cov: 11 ft: 12 corp: 3/45b exec/s: 0 rss: 30Mb" >&2
if [ -e "$last/bad" ]; then
  echo "Test unit written to crashes/crash-1" >&2
  exit 77
fi
echo "#4000 DONE cov: 31 ft: 1042 corp: 5/67b lim: 8 exec/s: 2000 rss: 31Mb" >&2
echo "Done 4000 runs in 2 second(s)" >&2
"""


class Presets(unittest.TestCase):
    def test_a_build_is_tested_once(self):
        for arguments in (["dev:^a", "dev:^b"], ["asan", "dev-quick", "dev-full:^a"]):
            done = subprocess.run([SCRIPTS / "test", *arguments], capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn("only one preset of each build: dev has several", done.stderr)


class Fuzz(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build, self.tests = (pathlib.Path(folder.name).resolve() / name for name in ("build", "tests"))
        (self.build / "bin").mkdir(parents=True)
        for target in ("one", "two"):
            program = self.build / "bin" / f"{target}_fuzz"
            program.write_text(FUZZER)
            program.chmod(0o755)
            (self.tests / "corpus" / target).mkdir(parents=True)
        (self.tests / "options").write_text("# Options.\none -max_len=5 -dict=words\ntwo\n")

    def fuzz(self, *arguments):
        done = subprocess.run([sys.executable, SCRIPTS / "lib" / "fuzz.py", self.build, self.tests, *arguments],
                              capture_output=True, text=True, timeout=60)
        return done.returncode, done.stdout.splitlines()

    def test_every_target_has_a_row(self):
        status, rows = self.fuzz("2")
        self.assertEqual(status, 0)
        for name, row in zip(("one", "two"), rows[1:3]):
            self.assertRegex(row, rf"^{name} +4,000 +[\d,]+ +31 of 200 +1,042 +5$")
        self.assertEqual(rows[-1], "8,000 executions of 2 targets, 0 failed")

    def test_a_failure_is_told_with_its_input(self):
        (self.tests / "corpus" / "two" / "bad").touch()
        status, rows = self.fuzz("2")
        self.assertEqual(status, 1)
        self.assertRegex(rows[2], r"^two +8 +[\d,]+ +11 of 200 +12 +3  FAILED$")
        self.assertIn(f"to repeat it: {self.build}/bin/two_fuzz crashes/crash-1", rows)
        self.assertEqual(rows[-1], "4,008 executions of 2 targets, 1 failed")

    def test_a_target_that_cannot_run_is_a_failure(self):
        (self.build / "bin" / "one_fuzz").write_text("#!/bin/sh\nexit 1\n")
        self.assertEqual(self.fuzz("2", "one")[0], 1)

    def test_a_target_gets_its_options_and_both_corpora(self):
        self.fuzz("3", "one")
        log = (self.build / "logs" / "one.log").read_text()
        for option in ("-max_total_time=3", "-max_len=5", f"-dict={self.tests}/dictionaries/words",
                       f"{self.build}/corpus/one {self.tests}/corpus/one"):
            self.assertIn(option, log)
        self.assertFalse((self.build / "logs" / "two.log").exists())

    def test_needs_a_time_and_targets_that_exist(self):
        for arguments, message in ((["soon"], "usage: scripts/fuzz"), (["0"], "usage: scripts/fuzz"),
                                   (["--fast", "x"], "usage: scripts/fuzz"),
                                   (["5", "nothing"], 'there is no target "nothing"; the targets are: ')):
            done = subprocess.run([SCRIPTS / "fuzz", *arguments], capture_output=True, text=True, timeout=60)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn(message, done.stderr)

    def test_every_target_has_a_corpus_options_and_a_row_in_its_page(self):
        tests = SOURCE / "tests" / "fuzz"
        lists = re.findall(r"TARGETS ([a-z ]+)\n", (tests / "CMakeLists.txt").read_text())
        targets = sorted(" ".join(lists).split())
        self.assertEqual(targets, sorted(path.name for path in (tests / "corpus").iterdir()))
        self.assertEqual(targets, sorted(re.findall(r"^(\w+)", (tests / "options").read_text(), re.MULTILINE)))
        page = (SOURCE / "docs" / "fuzzing.md").read_text()
        self.assertEqual(targets, sorted(re.findall(r"^\| `(\w+)` \|", page, re.MULTILINE)))
        for dictionary in re.findall(r"-dict=(\w+)", (tests / "options").read_text()):
            self.assertTrue((tests / "dictionaries" / dictionary).is_file(), dictionary)


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

    def test_only_sources_with_equal_options_and_configurations_are_checked_together(self):
        def job(name, *options):
            return lint.Job(lint.ROOT / name, list(options), "")

        todo = [job("tests/a.cpp", "-Ia"), job("src/a.cpp", "-Ia"), job("tests/b.cpp", "-Ia"),
                job("src/b.cpp", "-Ia"), job("platform/cppmicroservices/c.cpp", "-Ia"), job("src/d.cpp", "-Ib")]
        names = [[str(job.path.relative_to(lint.ROOT)) for job in batch] for batch in lint.batches(todo)]
        self.assertEqual(names, [["tests/a.cpp", "tests/b.cpp"], ["src/a.cpp", "src/b.cpp"],
                                 ["platform/cppmicroservices/c.cpp"], ["src/d.cpp"]])

    def test_no_batch_is_longer_than_its_limit(self):
        todo = [lint.Job(lint.ROOT / f"tests/{n}.cpp", [], "") for n in range(2 * lint.BATCH_SIZE + 1)]
        self.assertEqual([len(batch) for batch in lint.batches(todo)], [lint.BATCH_SIZE, lint.BATCH_SIZE, 1])

    def test_a_batch_that_does_not_pass_is_cut_into_halves(self):
        class Checker(lint.Checker):
            def alone(self, job):
                tried.append([job])
                return job != "wrong", f"a finding in {job}"

            def together(self, batch):
                tried.append(batch)
                return "wrong" not in batch and not {"clash 1", "clash 2"} <= set(batch)

        tried = []
        checker = Checker(self.folder)
        self.assertEqual(checker.check(["a", "clash 1", "clash 2", "b"]), (["a", "clash 1", "clash 2", "b"], []))
        self.assertEqual(tried, [["a", "clash 1", "clash 2", "b"], ["a", "clash 1"], ["clash 2", "b"]])
        self.assertEqual(checker.check(["a", "b", "wrong"]), (["a", "b"], ["a finding in wrong"]))

    def test_options_name_no_file(self):
        entry = {"command": "g++ -DA=\\\"b\\\" -Ix -isystem y -o a.o -c a.cpp"}
        options = lint.options_of(entry)
        self.assertEqual(options, ['-DA="b"', "-Ix", "-isystem", "y"])
        self.assertEqual(lint.include_folders(options), ["x", "y"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
