"""Plants faults in small trees and checks what the rules report."""

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
            "cycle of units: platform/json -> src:interfaces -> platform/json",
        )

    def test_interfaces_may_not_see_the_code(self):
        self.check(
            {f"{MARKUP}/SnippetType.hpp": "#  include <quenlith/build/markup/code/Cut.hpp>\n"},
            f"{MARKUP}/SnippetType.hpp:1: src:interfaces may not include "
            "quenlith/build/markup/code/Cut.hpp, which is part of src:code",
            "cycle of units: src:code -> src:interfaces -> src:code",
        )

    def test_the_host_may_not_see_the_code(self):
        self.check(
            {"apps/tessera/Bad.cpp": '#include "quenlith/build/markup/code/Cut.hpp"\n'},
            "apps/tessera/Bad.cpp:1: apps/tessera may not include "
            "quenlith/build/markup/code/Cut.hpp, which is part of src:code",
        )

    def test_a_path_through_the_parent_folder_is_resolved(self):
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
            "cycle of units: platform/json -> platform/text -> platform/json",
        )

    def test_a_quoted_include_names_a_file(self):
        self.check(
            {"apps/tessera/Bad.cpp": '#include "nowhere/Gone.hpp"\n'},
            "apps/tessera/Bad.cpp:1: nowhere/Gone.hpp is not a file of the tree",
        )

    def test_a_cycle_of_libraries_is_found(self):
        self.check(
            {
                "platform/text/fl/Bad.hpp": '#include "json/Other.hpp"\n',
                "platform/json/json/Other.hpp": "",
            },
            "cycle of units: platform/json -> platform/text -> platform/json",
        )

    def test_a_file_that_includes_itself_is_a_cycle(self):
        self.check(
            {"platform/text/fl/A.hpp": '#include "fl/A.hpp"\n'},
            "cycle of files: platform/text/fl/A.hpp -> platform/text/fl/A.hpp",
        )

    def test_a_cycle_of_three_files_is_found(self):
        self.check(
            {
                "platform/text/fl/A.hpp": '#include "fl/B.hpp"\n',
                "platform/text/fl/B.hpp": '#include "fl/C.hpp"\n',
                "platform/text/fl/C.hpp": '#include "fl/A.hpp"\n',
            },
            "cycle of files: platform/text/fl/A.hpp -> platform/text/fl/B.hpp -> platform/text/fl/C.hpp"
            " -> platform/text/fl/A.hpp",
        )

    def test_a_cycle_of_two_rooms_is_found_where_no_file_is_in_one(self):
        self.check(
            {
                "apps/tessera/input/A.hpp": '#include "output/B.hpp"\n',
                "apps/tessera/output/B.hpp": "",
                "apps/tessera/output/C.hpp": '#include "input/A.hpp"\n',
            },
            "cycle of rooms: apps/tessera/input -> apps/tessera/output -> apps/tessera/input",
        )

    def test_a_room_and_a_room_inside_it_include_each_other_one_way_only(self):
        self.check(
            {
                f"{MARKUP}/code/Cut.hpp": '#include "code/line/Line.hpp"\n',
                f"{MARKUP}/code/line/Line.hpp": "",
                f"{MARKUP}/code/line/Line.cpp": '#include "code/Kind.hpp"\n',
                f"{MARKUP}/code/Kind.hpp": "",
            },
            f"cycle of rooms: {MARKUP}/code -> {MARKUP}/code/line -> {MARKUP}/code",
        )

    def test_rooms_of_a_library_are_checked(self):
        self.check(
            {
                "platform/json/read/A.hpp": '#include "write/B.hpp"\n',
                "platform/json/write/B.hpp": "",
                "platform/json/write/C.cpp": '#include "read/A.hpp"\n',
            },
            "cycle of rooms: platform/json/read -> platform/json/write -> platform/json/read",
        )

    def test_interfaces_and_code_in_one_folder_are_different_rooms(self):
        self.check(
            {
                f"{MARKUP}/code/line/Line.hpp": '#include "markup/code/CodeElement.hpp"\n',
                f"{MARKUP}/code/CodeElement.hpp": "",
                f"{MARKUP}/code/Cut.hpp": '#include "code/line/Line.hpp"\n',
                f"{MARKUP}/services/ParserServicesProvider.hpp": '#include "code/CodeElement.hpp"\n',
                f"{MARKUP}/code/Impl.cpp": '#include "services/Provider.hpp"\n',
                f"{MARKUP}/services/Provider.hpp": "",
            }
        )

    def test_joined_rooms_may_include_each_other(self):
        self.check(
            {
                "platform/model/kd/zero/Model.hpp": '#include "kd/zero/meta/Class.hpp"\n',
                "platform/model/kd/zero/meta/Class.hpp": '#include "kd/zero/Element.hpp"\n',
                "platform/model/kd/zero/Element.hpp": "",
            }
        )

    def test_two_rooms_of_one_name_are_found(self):
        self.check(
            {"apps/tessera/session/A.hpp": "", "platform/json/session/B.hpp": ""},
            "one name for several rooms: apps/tessera/session, platform/json/session",
        )

    def test_folders_of_a_fixed_namespace_may_share_its_name(self):
        self.check(
            {"platform/model/document/kdzero/A.hpp": "", "platform/model/failures/kdzero/B.hpp": ""}
        )

    def test_a_bundle_of_the_host_may_not_see_the_code(self):
        self.check(
            {"bundles/pieces/Bad.cpp": '#include "quenlith/build/markup/code/Cut.hpp"\n'},
            "bundles/pieces/Bad.cpp:1: bundles/pieces may not include "
            "quenlith/build/markup/code/Cut.hpp, which is part of src:code",
        )


if __name__ == "__main__":
    unittest.main()
