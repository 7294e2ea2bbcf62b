"""Plants includes in small trees and reads what the rules say of them."""

import pathlib
import tempfile
import unittest

import include_rules

MARKUP = "src/quenlith/build/markup"


def faults_of(files):
    """Returns the faults of a tree of `files`: name to content."""
    with tempfile.TemporaryDirectory() as root:
        for name, content in files.items():
            path = pathlib.Path(root) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content)
        return include_rules.faults(root)


SOUND = {
    "platform/text/fl/ustring.hpp": "#include <string>\n",
    "platform/json/json/Value.hpp": '#include "fl/ustring.hpp"\n#include "quenlith/export/text.hpp"\n',
    f"{MARKUP}/Snippet.hpp": '#include "json/Value.hpp"\n',
    f"{MARKUP}/code/Cut.hpp": '#include "quenlith/build/markup/Snippet.hpp"\n',
    f"{MARKUP}/code/Cut.cpp": '#include "quenlith/build/markup/code/Cut.hpp"\n',
    "apps/tessera/main.cpp": '#include "quenlith/build/markup/Snippet.hpp"\n',
    "tests/src/CutTest.cpp": '#include "quenlith/build/markup/code/Cut.hpp"\n',
}


class IncludeRules(unittest.TestCase):
    def check(self, planted, *messages):
        self.assertEqual(faults_of({**SOUND, **planted}), list(messages))

    def test_a_sound_tree_has_no_fault(self):
        self.check({})

    def test_no_tree_is_a_fault(self):
        self.assertEqual(len(faults_of({})), 1)

    def test_platform_may_not_see_the_bundle(self):
        self.check(
            {"platform/json/json/Bad.cpp": '// top\n#include "quenlith/build/markup/Snippet.hpp"\n'},
            "platform/json/json/Bad.cpp:2: platform/json may not include "
            "quenlith/build/markup/Snippet.hpp, which is part of src:interfaces",
            "circle: platform/json -> src:interfaces -> platform/json",
        )

    def test_interfaces_may_not_see_the_code(self):
        self.check(
            {f"{MARKUP}/SnippetType.hpp": "#  include <quenlith/build/markup/code/Cut.hpp>\n"},
            f"{MARKUP}/SnippetType.hpp:1: src:interfaces may not include "
            "quenlith/build/markup/code/Cut.hpp, which is part of src:code",
            "circle: src:code -> src:interfaces -> src:code",
        )

    def test_the_host_may_not_see_the_code(self):
        self.check(
            {"apps/tessera/Bad.cpp": '#include "quenlith/build/markup/code/Cut.hpp"\n'},
            "apps/tessera/Bad.cpp:1: apps/tessera may not include "
            "quenlith/build/markup/code/Cut.hpp, which is part of src:code",
        )

    def test_a_path_upwards_is_seen_through(self):
        self.check(
            {"apps/tessera/Bad.cpp": '#include "../../src/quenlith/build/markup/code/Cut.hpp"\n'},
            "apps/tessera/Bad.cpp:1: apps/tessera may not include "
            "../../src/quenlith/build/markup/code/Cut.hpp, which is part of src:code",
        )

    def test_the_bundle_may_not_see_the_host(self):
        self.check(
            {"apps/tessera/Host.hpp": "", f"{MARKUP}/code/Bad.cpp": '#include "Host.hpp"\n'},
            f"{MARKUP}/code/Bad.cpp:1: src:code may not include Host.hpp, which is part of apps/tessera",
        )

    def test_nothing_but_tests_may_see_tests(self):
        self.check(
            {"tests/Fake.hpp": "", "bench/lines.cpp": '#include "tests/Fake.hpp"\n'},
            "bench/lines.cpp:1: bench may not include tests/Fake.hpp, which is part of tests",
        )

    def test_a_generated_header_belongs_to_its_library(self):
        self.check(
            {"platform/text/fl/Bad.hpp": '#include "quenlith/export/json.hpp"\n'},
            "circle: platform/json -> platform/text -> platform/json",
        )

    def test_a_quoted_include_stands_for_a_file(self):
        self.check(
            {"apps/tessera/Bad.cpp": '#include "nowhere/Gone.hpp"\n'},
            "apps/tessera/Bad.cpp:1: nowhere/Gone.hpp stands for no file of the tree",
        )

    def test_a_circle_of_libraries_is_found(self):
        self.check(
            {
                "platform/text/fl/Bad.hpp": '#include "json/Other.hpp"\n',
                "platform/json/json/Other.hpp": "",
            },
            "circle: platform/json -> platform/text -> platform/json",
        )

    def test_a_file_that_includes_itself_is_a_circle(self):
        self.check(
            {"platform/text/fl/A.hpp": '#include "fl/A.hpp"\n'},
            "circle: platform/text/fl/A.hpp -> platform/text/fl/A.hpp",
        )

    def test_a_circle_of_three_files_is_found(self):
        self.check(
            {
                "platform/text/fl/A.hpp": '#include "fl/B.hpp"\n',
                "platform/text/fl/B.hpp": '#include "fl/C.hpp"\n',
                "platform/text/fl/C.hpp": '#include "fl/A.hpp"\n',
            },
            "circle: platform/text/fl/A.hpp -> platform/text/fl/B.hpp -> platform/text/fl/C.hpp"
            " -> platform/text/fl/A.hpp",
        )


if __name__ == "__main__":
    unittest.main()
