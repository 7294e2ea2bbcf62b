"""installed_tree_test.py CMAKE BUILD SOURCE COMPILER [FRAMEWORK]: installs BUILD and uses it.

FRAMEWORK is the folder of the libraries of an installed framework, if BUILD was made with one. The
prefix contains a space and a letter outside ASCII; one test moves the tree to another prefix.
"""

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

import search_paths

CMAKE, BUILD, SOURCE, COMPILER = sys.argv[1:5]
FRAMEWORK = sys.argv[5:]
SAMPLE = pathlib.Path(__file__).parent / "sample.py"


def run(*command, status=0, **options):
    """Runs a command, checks its exit status and returns what it printed."""
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True, **options}
    done = subprocess.run([str(part) for part in command], **options)
    if done.returncode != status:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}{done.stderr}")
    return done


def bare_environment():
    """Returns an environment that names no library path."""
    return {name: text for name, text in os.environ.items() if name != "LD_LIBRARY_PATH"}


class InstalledTree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = pathlib.Path(tempfile.mkdtemp(prefix="quenlith_package_"))
        cls.addClassCleanup(shutil.rmtree, cls.work)
        cls.prefix = cls.work / "odd prefix ü"
        # Stripped, as distributions do; the manifests must not be lost.
        run(CMAKE, "--install", BUILD, "--strip", "--prefix", cls.prefix)
        cls.bundles = cls.work / "bundles"
        run(CMAKE, "-S", f"{SOURCE}/examples/bundles", "-B", cls.bundles, "-G", "Ninja",
            f"-DCMAKE_PREFIX_PATH={cls.prefix}", f"-DCMAKE_CXX_COMPILER={COMPILER}")
        run(CMAKE, "--build", cls.bundles)

    def parse(self, *arguments, prefix=None):
        """Returns the nodes of the sample as the installed program parses it."""
        program = (prefix or self.prefix) / "bin" / "tessera"
        return json.loads(self.tessera(program, *arguments).stdout)["nodes"]

    def tessera(self, program, *arguments):
        # Run from a folder in which the program can find nothing by chance.
        return run(program, "parse", "--format", "json", *arguments, SAMPLE,
                   cwd="/", env=bare_environment())

    def bundle(self, name):
        return "--bundle", self.bundles / f"lib{name}.so"

    def test_the_installed_and_the_built_program_agree(self):
        built = self.tessera(f"{BUILD}/bin/tessera").stdout
        self.assertEqual(self.tessera(self.prefix / "bin" / "tessera").stdout, built)

    def pieces(self, *arguments):
        """Returns kind and text of each child of the line with the output."""
        return [(child["kind"], child["text"]) for child in self.parse(*arguments)[1]["children"]]

    def test_the_text_of_an_output_range_is_a_node_unless_bare(self):
        self.assertEqual(self.pieces(), [("OutputNode", "print(total)"), ("PlainTextNode", "  ")])
        self.assertEqual(self.pieces("--bare"), [("PlainTextNode", "  ")])

    def test_a_bundle_keeps_the_text_of_an_output_range(self):
        expected = [("PlainTextNode", "print(total)"), ("PlainTextNode", "  ")]
        self.assertEqual(self.pieces("--bare", *self.bundle("output_text")), expected)
        # It takes precedence over the program's own bundle.
        self.assertEqual(self.pieces(*self.bundle("output_text")), expected)

    def test_a_bundle_contributes_data(self):
        line = self.parse(*self.bundle("output_data"))[1]
        self.assertEqual(
            line["contributorData"],
            [{"contributingFeature": "output", "lineData": [{"format": "short"}]}],
        )

    def test_a_new_bundle_builds_is_loaded_and_passes_its_test(self):
        source = self.work / "new bundle"
        shown = run(self.prefix / "bin" / "tessera", "new-bundle", "word_count", source).stdout
        commands = re.findall("^  (.*)", shown, re.MULTILINE)
        self.assertEqual([shlex.split(command)[0] for command in commands], ["cmake", "cmake", "ctest"])
        # The commands as shown, with the compiler of this build.
        for command in commands:
            run("bash", "-c", command, cwd="/", env={**bare_environment(), "CXX": COMPILER})
        output = json.loads(run(self.prefix / "bin" / "tessera", "parse", "--format", "json", "--bundle",
                                source / "build" / "libword_count.so", source / "test" / "sample.py",
                                cwd="/", env=bare_environment()).stdout)
        self.assertEqual([child["text"] for child in output["nodes"][0]["children"]],
                         ["x = ", "word_count: 10", "  "])
        # The test fails if the bundle makes another node.
        sample = source / "test" / "sample.py"
        sample.write_text(sample.read_text().replace("10", "11"))
        run("ctest", "--test-dir", source / "build", status=8)

    @unittest.skipIf(FRAMEWORK, "an installed framework has other messages")
    def test_the_extension_guide_works_as_shown(self):
        run(sys.executable, f"{SOURCE}/tests/docs/run_examples.py", self.prefix / "bin",
            f"{SOURCE}/docs/extension-guide.md", env={**bare_environment(), "CXX": COMPILER})

    def test_bundles_work_together(self):
        line = self.parse(*self.bundle("output_data"), *self.bundle("output_text"))[1]
        self.assertEqual((len(line["contributorData"]), len(line["children"])), (1, 2))

    def test_a_bundle_whose_component_cannot_be_created_is_refused(self):
        bundle = self.bundle("broken")[1]
        for command in (["parse", SAMPLE], ["doctor"]):
            done = run(self.prefix / "bin" / "tessera", *command, "--bundle", bundle, status=2,
                       cwd="/", env=bare_environment())
            said = done.stdout if command[0] == "doctor" else done.stderr
            self.assertIn(f"{bundle}: error: ", said)
            # An installed framework has other messages.
            self.assertIn("ServiceFactory" if FRAMEWORK else "the dictionary of BrokenParser is missing", said)

    def test_the_manual_page_and_the_completions_are_where_programs_look_for_them(self):
        for name in ("man/man1/tessera.1", "bash-completion/completions/tessera",
                     "zsh/vendor-completions/_tessera", "fish/vendor_completions.d/tessera.fish"):
            self.assertIn("omit", (self.prefix / "share" / name).read_text(), name)

    def test_the_tree_can_be_moved(self):
        before = self.parse(*self.bundle("output_text"))
        moved = self.work / "moved tree ñ" / "deeper"
        moved.parent.mkdir()
        self.prefix.rename(moved)
        try:
            self.assertEqual(self.parse(*self.bundle("output_text"), prefix=moved), before)
        finally:
            moved.rename(self.prefix)

    def test_no_installed_text_file_contains_a_build_path(self):
        texts = [*self.prefix.rglob("*.cmake"), *self.prefix.rglob("*.pc"), *self.prefix.rglob("*.h*")]
        self.assertGreater(len(texts), 50)
        for path in texts:
            for folder in (BUILD, SOURCE, str(self.prefix)):
                self.assertNotIn(folder, path.read_text(), path)

    def test_libraries_are_searched_relative_to_the_file_that_needs_them(self):
        files = search_paths.linked_files(self.prefix)
        self.assertGreater(len(files), 5)
        self.assertEqual(search_paths.faults(files), [])
        for path in files:
            others = {e for e in search_paths.search_paths(path) if not e.startswith("$ORIGIN")}
            self.assertLessEqual(others, set(FRAMEWORK), path)

    def test_bundles_of_others_do_not_search_the_current_folder(self):
        files = search_paths.linked_files(self.bundles)
        self.assertGreater(len(files), 2)
        self.assertEqual(search_paths.faults(files), [])

    def bundles_that_run(self):
        """Returns the paths of the bundles of the installed program, in the order of their start."""
        done = run(self.prefix / "bin" / "tessera", "doctor", "--format", "json",
                   cwd="/", env=bare_environment())
        bundles = json.loads(done.stdout)["bundles"]
        return [os.path.realpath(bundle["file"]) for bundle in bundles]

    def test_the_cmake_package_has_the_paths_of_the_bundles(self):
        done = self.configure(
            "find_package(Quenlith 0.1 REQUIRED)\n"
            "foreach(kind RUNTIME PARSER PIECE)\n"
            "  message(NOTICE \"${Quenlith_${kind}_BUNDLE}\")\n"
            "endforeach()\n")
        # An installed framework writes lines, too.
        paths = [os.path.realpath(line) for line in done.stderr.splitlines() if line.startswith("/")]
        self.assertEqual(paths, self.bundles_that_run())

    def test_pkg_config_has_the_paths_of_the_bundles(self):
        paths = []
        for kind in ("runtime", "parser", "piece"):
            text = self.pkg_config(f"--variable={kind}_bundle")
            # The path is quoted for a shell.
            paths.append(os.path.realpath(os.fsencode(shlex.split(text)[0])).decode())
        self.assertEqual(paths, self.bundles_that_run())

    def pkg_config(self, *arguments):
        return run("pkg-config", *arguments, "quenlith",
                   env={**os.environ, "PKG_CONFIG_PATH": f"{self.prefix}/lib/pkgconfig"},
                   # pkg-config escapes each byte of the letter by itself.
                   errors="surrogateescape").stdout

    def output_of(self, code, standard="c++20"):
        """Compiles a program with the flags of pkg-config; returns what it prints."""
        source, program = self.work / "user.cpp", self.work / "user"
        source.write_text(code)
        command = shlex.join([COMPILER, f"-std={standard}", str(source), "-o", str(program)])
        # The flags are quoted for a shell.
        run("sh", "-c", f"{command} {self.pkg_config('--cflags', '--libs').strip()}")
        folders = ":".join([f"{self.prefix}/lib", *FRAMEWORK])
        return run(program, env={**os.environ, "LD_LIBRARY_PATH": folders}).stdout

    def test_pkg_config_names_what_a_program_needs(self):
        self.assertEqual(self.output_of(
            '#include <cstdio>\n#include "quenlith/syntax/Marker.hpp"\n'
            'int main() { std::puts(quenlith::syntax::Marker(u"<@output#a>").getId() == u"a" ?'
            ' "found" : "missed"); }\n'), "found\n")

    def test_pkg_config_names_the_framework(self):
        self.assertEqual(self.output_of(
            '#include <cstdio>\n#include <cppmicroservices/BundleContext.h>\n'
            '#include <cppmicroservices/Framework.h>\n#include <cppmicroservices/FrameworkFactory.h>\n'
            'int main() {\n'
            '  auto framework = cppmicroservices::FrameworkFactory().NewFramework();\n'
            '  framework.Init();\n'
            '  std::puts(framework.GetBundleContext() ? "runs" : "does not run");\n'
            '}\n'), "runs\n")

    def test_pkg_config_leaves_the_standard_to_the_author(self):
        self.assertEqual(self.output_of(
            '#include <cstdio>\n#include "quenlith/syntax/Marker.hpp"\n'
            'int main() { std::puts(__cplusplus > 202002L ? "newer" : "C++20"); }\n', "c++2b"), "newer\n")

    def test_a_host_of_others_reads_the_pieces(self):
        with tempfile.TemporaryDirectory(dir=self.work) as folder:
            source = pathlib.Path(folder)
            (source / "main.cpp").write_text(
                '#include <cstdio>\n#include "tessera/pieces/OutputNode.hpp"\n'
                'int main() {\n'
                '  const auto model = kd::zero::Model::create();\n'
                '  const document::kdzero::Node node =\n'
                '      tessera::pieces::OutputNode::Builder(model).createOutputNode({});\n'
                '  std::puts(tessera::pieces::PieceNode::castFrom(node) ? "piece" : "other");\n'
                '}\n')
            (source / "CMakeLists.txt").write_text(
                "cmake_minimum_required(VERSION 3.25)\nproject(User CXX)\n"
                "find_package(Quenlith 0.1 REQUIRED COMPONENTS piece_nodes)\n"
                "add_executable(user main.cpp)\ntarget_link_libraries(user Quenlith::piece_nodes)\n")
            run(CMAKE, "-S", source, "-B", source / "build", "-G", "Ninja",
                f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_CXX_COMPILER={COMPILER}")
            run(CMAKE, "--build", source / "build")
            self.assertEqual(run(source / "build" / "user").stdout, "piece\n")

    def test_one_component_needs_no_other_dependency(self):
        self.configure("find_package(Quenlith 0.1 REQUIRED COMPONENTS json)\n"
                       "if(Boost_FOUND)\n  message(FATAL_ERROR \"Boost was looked for\")\nendif()\n"
                       "get_target_property(type Quenlith::json TYPE)\n")

    def test_libraries_whose_headers_include_boost_link_it(self):
        components = set()
        for path in pathlib.Path(SOURCE, "platform").rglob("*.hpp"):
            installed = self.prefix / "include" / "quenlith" / pathlib.Path(*path.relative_to(SOURCE).parts[2:])
            if installed.exists() and "#include <boost/" in installed.read_text():
                components.add(path.relative_to(SOURCE).parts[1])
        self.assertIn("markers", components)
        for name in components:
            self.configure(f"find_package(Quenlith 0.1 REQUIRED COMPONENTS {name})\n"
                           f"get_target_property(libraries Quenlith::{name} INTERFACE_LINK_LIBRARIES)\n"
                           "if(NOT Boost::headers IN_LIST libraries)\n"
                           f"  message(FATAL_ERROR \"Quenlith::{name} does not link Boost::headers\")\nendif()\n")

    def test_an_unknown_component_is_refused(self):
        done = self.configure("find_package(Quenlith 0.1 REQUIRED COMPONENTS nonsense)\n", status=1)
        self.assertIn("Quenlith has no library nonsense", " ".join(done.stderr.split()))

    def configure(self, text, **expected):
        with tempfile.TemporaryDirectory(dir=self.work) as folder:
            path = pathlib.Path(folder) / "CMakeLists.txt"
            path.write_text(f"cmake_minimum_required(VERSION 3.25)\nproject(User CXX)\n{text}")
            return run(CMAKE, "-S", folder, "-B", f"{folder}/build", "-G", "Ninja",
                       f"-DCMAKE_PREFIX_PATH={self.prefix}", **expected)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
