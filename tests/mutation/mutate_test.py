"""mutate_test.py SOURCE: runs scripts/mutate on a small tree whose mutants are known."""

import pathlib
import subprocess
import sys
import tempfile
import textwrap
import unittest

try:
    import clang.cindex
except ImportError:
    print("skipped: python3-clang-14 is not installed")
    sys.exit(77)

SOURCE = pathlib.Path(sys.argv.pop(1)).resolve()
TOOL = SOURCE / "scripts" / "lib" / "mutation" / "mutate.py"
sys.path.insert(0, str(TOOL.parent))

from explained import read_explained, read_nearest  # noqa: E402

TREE = {
    "CMakeLists.txt": """
        cmake_minimum_required(VERSION 3.25)
        project(Small LANGUAGES CXX)
        set(CMAKE_CXX_STANDARD 20)
        set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
        set(CMAKE_RUNTIME_OUTPUT_DIRECTORY bin)
        add_executable(small_test src/build/small.cpp tests/smallTest.cpp)
        target_include_directories(small_test PRIVATE src/build)
        enable_testing()
        add_test(NAME small_test COMMAND small_test)
        """,
    "CMakePresets.json": """
        {"version": 6, "configurePresets": [{"name": "dev", "generator": "Ninja"}]}
        """,
    "src/build/small.hpp": """
        #pragma once
        bool isDigit(char text);
        int within(int value, int low, int high);
        long distance(const char* begin, const char* end);
        int unused(int value);
        """,
    "src/build/small.cpp": """
        #include "small.hpp"

        constexpr int kNothing = 0;

        bool isDigit(char text) { return text >= '0' && text <= '9'; }

        int smaller(int first, int second) { return first < second ? first : second; }

        int within(int value, int low, int high) {
          if (value < low) {
            value = low;  // not the caller's
          }
          return smaller(value, high);
        }

        long distance(const char* begin, const char* end) { return end - begin; }

        int unused(int value) { return -value; }
        """,
    "tests/smallTest.cpp": """
        #include "small.hpp"

        int main() {
          const bool digits = isDigit('0') && isDigit('5') && !isDigit('/') && !isDigit('a');
          const bool inside = within(1, 2, 9) == 2 && within(5, 2, 9) == 5 && within(10, 2, 9) == 9;
          const char text[3] = {};
          return digits && inside && distance(text, text + 3) == 3 ? 0 : 1;
        }
        """,
    "tests/mutation/nearest.txt": """
        # Comments are allowed.
        src: small_test
        """,
    "tests/mutation/equivalent.txt": """
        src/build/small.cpp
          if (value < low) {
          value < low -> value <= low
          A value equal to `low` becomes `low`.

        src/build/small.cpp
          int smaller(int first, int second) { return first < second ? first : second; }
          first < second -> first <= second
          Equal values are the same.

        src/build/small.cpp
          return smaller(value, high);
          value, high -> high, value
          The smaller of two does not depend on their order.
        """,
}

# The test does not call `isDigit` with '9' or ':'.
SURVIVORS = """
    src/build/small.cpp:5:49: survived
      bool isDigit(char text) { return text >= '0' && text <= '9'; }
      text <= '9' -> text < '9'
    src/build/small.cpp:5:57: survived
      bool isDigit(char text) { return text >= '0' && text <= '9'; }
      '9' -> '9' + 1
    src/build/small.cpp:18:32: not reached
      int unused(int value) { return -value; }
      -value -> value
    """


class Mutate(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tree = pathlib.Path(folder.name).resolve() / "a tree"

    def setUp(self):
        # The build stays, configuring it takes longest.
        for name, text in TREE.items():
            self.write(name, textwrap.dedent(text).lstrip("\n"))
        (self.tree / "build" / "mutate" / "results.jsonl").unlink(missing_ok=True)

    def write(self, name, text):
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def replace(self, name, old, new):
        text = (self.tree / name).read_text()
        self.assertIn(old, text)
        self.write(name, text.replace(old, new))

    def mutate(self, *arguments):
        done = subprocess.run([sys.executable, TOOL, "--tree", self.tree, *arguments], cwd=self.tree,
                              capture_output=True, text=True)
        return done.returncode, done.stdout, done.stderr

    def sources(self):
        return {name: (self.tree / name).read_text() for name in TREE}

    def test_prints_what_no_test_notices(self):
        before = self.sources()
        status, output, messages = self.mutate("src")
        counts = "17 made, 11 killed, 2 survived, 1 not reached, 3 explained\n"
        self.assertEqual(output, textwrap.dedent(SURVIVORS).lstrip("\n") + counts +
                         "left out: 1 constants, which the compiler evaluates; 1 changes that do not compile\n", messages)
        self.assertEqual(status, 1)
        self.assertEqual(self.sources(), before)

    def test_the_page_shows_this_output(self):
        page = (SOURCE / "docs" / "mutation.md").read_text()
        shown = textwrap.dedent(SURVIVORS).lstrip("\n").split("src/build/small.cpp:18:")[0]
        self.assertIn("```text\n" + shown + "```", page)

    def test_runs_again_only_what_a_change_can_affect(self):
        self.mutate()
        self.assertNotIn("running", self.mutate()[2])
        self.replace("tests/smallTest.cpp", "isDigit('5')", "isDigit('9') && !isDigit(':')")
        status, output, messages = self.mutate()
        self.assertIn("running 3 mutants", messages)
        self.assertIn("13 killed, 0 survived, 1 not reached", output)
        self.replace("src/build/small.cpp", "return -value", "return value")
        self.replace("src/build/small.hpp", "int unused", "/* lines move */\n\nint unused")
        self.assertEqual(self.mutate()[0], 0)

    def test_an_explanation_without_a_mutant_is_reported(self):
        self.replace("tests/smallTest.cpp", "isDigit('5')", "isDigit('9') && !isDigit(':') && unused(1) == -1")
        self.replace("src/build/small.cpp", "value < low", "low > value")
        status, output, _ = self.mutate()
        self.assertEqual(status, 1)
        self.assertIn("no such mutant (remove it from tests/mutation/equivalent.txt):\n  src/build/small.cpp\n"
                      "  if (value < low) {\n  value < low -> value <= low\n", output)
        self.assertIn("low > value -> low >= value", output)

    def test_a_mutant_that_does_not_end_is_killed(self):
        self.replace("src/build/small.cpp", "return -value;", "while (value < 3) ++value; return value;")
        self.replace("tests/smallTest.cpp", "isDigit('5')", "unused(2) == 3")
        status, output, _ = self.mutate()
        self.assertNotIn("++value", output)

    def test_equal_changes_on_a_line_are_numbered(self):
        self.replace("src/build/small.cpp", "return -value", "return value + (value + 1) + (value + 1)")
        _, output, _ = self.mutate("--list")
        self.assertIn("32: value + (value + 1) -> value - (value + 1)\n", output)
        self.assertIn("value + 1 -> value - 1\n", output)
        self.assertIn("value + 1 -> value - 1 (no. 2 of the line)\n", output)
        self.assertNotIn("value + 1 -> value - 1 (no. 3 of the line)\n", output)

    def test_lists_the_mutants(self):
        status, output, _ = self.mutate("--list", "src/build/small.cpp")
        self.assertEqual(status, 0)
        self.assertEqual(output.count("\n"), 17)
        self.assertIn("src/build/small.cpp:11:5: value = low; -> removed\n", output)

    def test_needs_a_source(self):
        status, _, messages = self.mutate("tests")
        self.assertEqual(status, 1)
        self.assertIn("no sources of src, platform, bundles, apps: tests", messages)


class Lists(unittest.TestCase):
    def test_every_explained_line_is_in_its_file(self):
        explained = read_explained(SOURCE / "tests" / "mutation" / "equivalent.txt")
        self.assertGreater(len(explained), 0)
        for file, line, _ in explained:
            lines = [" ".join(text.split()) for text in (SOURCE / file).read_text().splitlines()]
            self.assertIn(line, lines, file)

    def test_the_nearest_tests_exist(self):
        tests = "".join(path.read_text() for path in (SOURCE / "tests").rglob("CMakeLists.txt"))
        nearest = read_nearest(SOURCE / "tests" / "mutation" / "nearest.txt")
        self.assertGreater(len(nearest), 0)
        for folder, names in nearest.items():
            self.assertTrue((SOURCE / folder).is_dir(), folder)
            for name, _ in names:
                self.assertRegex(tests, rf"(quenlith_add_(test|fuzzers)\(|NAME ){name}\b")


if __name__ == "__main__":
    unittest.main()
