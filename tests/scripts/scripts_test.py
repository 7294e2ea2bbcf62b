"""scripts_test.py SOURCE: tests the total of test reports, and commands in scripts/ that cannot build."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SCRIPTS = pathlib.Path(sys.argv[1]) / "scripts"

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


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
