"""example_host_test.py CMAKE BUILD SOURCE COMPILER: installs BUILD, builds examples/host against it and runs it.

The commands are those of the README, in other folders. A second program is the same host, in which an environment
variable leaves a piece or a check out.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD, SOURCE, COMPILER = sys.argv[1:5]
HOST = pathlib.Path(SOURCE) / "examples" / "host"
README = (pathlib.Path(SOURCE) / "README.md").read_text(encoding="utf-8")
GUIDE = (pathlib.Path(SOURCE) / "docs" / "host-guide.md").read_text(encoding="utf-8")
# Where the line of the host begins that each variable leaves out.
PIECES = {
    "RUNTIME": "for (auto bundle",
    "APPENDIX": "framework->GetBundleContext().RegisterService",
    "FRAMEWORK": "setFramework(framework);",
    "CHECKS": "if (!condition) throw",
}
DOCUMENT = """\
LineNode
  PlainTextNode: x = 1
LiveAppLineNode
  LiveAppIntegratedInlineNode
LineNode
  PlainTextNode: \n\
LineNode
  PlainTextNode: y = x + 1
LineNode
  PlainTextNode: \n\
"""


def without_pieces(source):
    """Returns the source of the host with a condition before each piece."""
    for name, line in PIECES.items():
        condition = f'if (!std::getenv("NO_{name}")) '
        if name == "RUNTIME":
            condition = 'if (!std::getenv("NO_RUNTIME") || file != std::string(RUNTIME_BUNDLE)) '
        if source.count(line) != 1:
            raise AssertionError(f"{line}: {source.count(line)} times in the host")
        source = source.replace(line, condition + line)
    return "#include <cstdlib>\n#include <string>\n" + source


class ExampleHost(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = pathlib.Path(tempfile.mkdtemp(prefix="quenlith_host_"))
        cls.addClassCleanup(shutil.rmtree, cls.work)
        shutil.copytree(HOST, cls.work / "host")
        (cls.work / "host" / "without.cpp").write_text(without_pieces((HOST / "main.cpp").read_text()))
        with (cls.work / "host" / "CMakeLists.txt").open("a") as project:
            project.write("add_executable(without without.cpp)\n"
                          "target_link_libraries(without $<TARGET_PROPERTY:host,LINK_LIBRARIES>)\n"
                          "target_compile_definitions(without PRIVATE $<TARGET_PROPERTY:host,COMPILE_DEFINITIONS>)\n")
        for command in cls.commands_of_the_readme():
            cls.run_quietly(*command)

    @classmethod
    def commands_of_the_readme(cls):
        """Returns the commands from the installation to the run of the host, with the folders of this test."""
        text = README[README.index("    cmake --install"):]
        paths = {"cmake ": f"{CMAKE} ", "build/parse": BUILD, r"\$HOME/quenlith": cls.work / "installed",
                 "build/host": cls.work / "built", "examples/host ": f"{cls.work / 'host'} "}
        for name, path in paths.items():
            text = re.sub(rf"(?<![\w/]){name}", str(path), text)
        lines = re.findall("^    (.*)", text, re.MULTILINE)
        if len(lines) != 4:
            raise AssertionError(lines)
        return [shlex.split(line) for line in lines]

    @staticmethod
    def run_quietly(*command):
        environment = {**os.environ, "CXX": COMPILER, "CXXFLAGS": "-O0", "CMAKE_GENERATOR": "Ninja"}
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, env=environment)
        if done.returncode:
            raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}")

    def run_host(self, name, *missing):
        """Returns status, output and error of the host without the pieces named."""
        variables = {f"NO_{piece}": "1" for piece in missing}
        done = subprocess.run([self.work / "built" / name], env={**os.environ, **variables},
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return done.returncode, done.stdout, done.stderr

    def test_the_example_prints_the_document(self):
        self.assertEqual(self.run_host("host"), (0, DOCUMENT, ""))
        self.assertEqual(self.run_host("without"), (0, DOCUMENT, ""))

    def test_each_missing_piece_has_a_message_that_the_guide_explains(self):
        for piece, message in {
            "RUNTIME": "no parser: is the runtime bundle started?",
            "APPENDIX": "no task parser: is an AppendixBuilder registered?",
            "FRAMEWORK": "call setFramework first",
        }.items():
            self.assertEqual(self.run_host("without", piece), (1, "", f"host: {message}\n"))
            self.assertIn(f"`{message}`", GUIDE)

    def test_the_guide_says_what_happens_without_the_checks(self):
        status, output, error = self.run_host("without", "FRAMEWORK", "CHECKS")
        self.assertEqual((status, output), (1, ""))
        self.assertIn(f"`{error.removeprefix('host: ').strip()}`", GUIDE)
        self.assertEqual(self.run_host("without", "RUNTIME", "CHECKS"), (0, "", ""))
        without_task = DOCUMENT.replace("LiveAppLineNode\n  LiveAppIntegratedInlineNode\n", "")
        self.assertEqual(self.run_host("without", "APPENDIX", "CHECKS"), (0, without_task, ""))

    def test_the_code_of_the_guide_is_that_of_the_example(self):
        lines = [line.strip() for line in (HOST / "main.cpp").read_text().splitlines()]
        blocks = re.findall(r"^ *```cpp\n(.*?)^ *```$", GUIDE, re.MULTILINE | re.DOTALL)
        self.assertGreater(len(blocks), 5)
        for block in blocks:
            wanted = [line.strip() for line in block.splitlines()]
            starts = [lines[place:place + len(wanted)] for place in range(len(lines))]
            self.assertIn(wanted, starts)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
