"""search_paths_test.py COMPILER: links libraries with planted search paths and checks the reports."""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest

import search_paths

COMPILER = sys.argv[1]


class SearchPaths(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def link(self, *options):
        """Makes a library linked with `options`."""
        library = self.folder / "lib" / "planted.so"
        library.parent.mkdir(exist_ok=True)
        source = self.folder / "planted.cpp"
        source.write_text("int planted() { return 0; }\n")
        subprocess.run([COMPILER, "-shared", "-fPIC", source, "-o", library, *options], check=True)
        return library

    def elements_refused(self, search_path, *options):
        library = self.link(f"-Wl,-rpath,{search_path}", *options)
        found = search_paths.faults(search_paths.linked_files(self.folder))
        start = f"{library}: looks for libraries in '"
        self.assertTrue(all(fault.startswith(start) for fault in found), found)
        return [fault.removeprefix(start).partition("'")[0] for fault in found]

    def test_a_library_without_a_search_path_is_accepted(self):
        self.link()
        self.assertEqual(search_paths.faults(search_paths.linked_files(self.folder)), [])

    def test_absolute_paths_and_origin_are_accepted(self):
        self.assertEqual(self.elements_refused("/opt/lib:$ORIGIN:$ORIGIN/../lib:${ORIGIN}/x"), [])

    def test_an_empty_element_is_refused(self):
        for search_path in ("/opt/lib:", ":/opt/lib", "/opt/lib::/lib", "::::"):
            with self.subTest(search_path):
                self.assertEqual(self.elements_refused(search_path), [""])

    def test_a_relative_element_is_refused(self):
        self.assertEqual(self.elements_refused("/lib:plugins:./x"), ["plugins", "./x"])

    def test_a_variable_that_only_begins_like_origin_is_refused(self):
        self.assertEqual(self.elements_refused("$ORIGINAL/lib"), ["$ORIGINAL/lib"])

    def test_both_kinds_of_search_path_are_read(self):
        for kind in ("--enable-new-dtags", "--disable-new-dtags"):
            with self.subTest(kind):
                self.assertEqual(self.elements_refused("plugins", f"-Wl,{kind}"), ["plugins"])

    def test_a_folder_without_a_library_is_a_fault(self):
        (self.folder / "text.so").write_text("not a library")
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(search_paths.main([str(self.folder)]), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
