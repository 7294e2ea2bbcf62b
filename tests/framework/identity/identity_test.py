"""identity_test.py COMPILER embedded|system TESSERA HOST RUNTIME BUNDLE [LIBRARY LOADER]

Gives bundles to the program TESSERA and to HOST, a host without checks: BUNDLE, which was built against the
framework of both, and bundles that were built against another one. RUNTIME is the Declarative Services
runtime for HOST. LIBRARY is the embedded framework, and LOADER a program that only loads libraries.

A library is linked with a framework of a certain name and version if its dynamic section says so: most
tests make small libraries with such names. A bundle that was really built against the other framework is
taken from the environment variable OTHER_FRAMEWORK_BUNDLE. To have one, build the program against the other
framework and name its lib/libtessera_pieces.so.
"""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest
import zipfile

COMPILER, FRAMEWORK, TESSERA, HOST, RUNTIME, BUNDLE = sys.argv[1:7]
OWN, LOADER = sys.argv[7:] or (None, None)
OTHER_BUNDLE = os.environ.get("OTHER_FRAMEWORK_BUNDLE")
EMBEDDED = FRAMEWORK == "embedded"
# Names of libraries of the other framework and of this one in another version.
OTHER = "libCppMicroServices.so.3.8.99" if EMBEDDED else "libquenlith_cppmicroservices.so.0.1"
OTHER_VERSION = "libquenlith_cppmicroservices.so.0.9" if EMBEDDED else "libCppMicroServices.so.3.7.99"
OTHER_PHRASE = f"CppMicroServices ({OTHER})" if EMBEDDED else f"the embedded framework ({OTHER})"
OTHER_CHOICE = "system" if EMBEDDED else "embedded"
# Leaves a file as evidence when the library is loaded.
PROBE = """
#include <cstdio>
#include <cstdlib>
__attribute__((constructor)) static void leaveEvidence() {
  if (const char* name = std::getenv("PROBE_FILE")) std::fclose(std::fopen(name, "w"));
}
"""


class Identity(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.evidence = self.folder / "evidence"

    def link(self, name, *needed, source=""):
        """Makes the library `name`, which is linked with the libraries `needed` beside it."""
        (self.folder / "source.cpp").write_text(source)
        subprocess.run([COMPILER, "-shared", "-fPIC", self.folder / "source.cpp", "-o", self.folder / name,
                        f"-Wl,-soname,{name},-rpath,$ORIGIN,--no-as-needed",
                        *[self.folder / other for other in needed]], check=True)
        return self.folder / name

    def bundle(self, *needed):
        """Makes a bundle without components that is linked with libraries beside it."""
        library = self.link("bundle.so", *needed, source=PROBE)
        with zipfile.ZipFile(library, "a") as archive:
            archive.writestr("probe/manifest.json", '{"bundle.symbolic_name": "probe"}')
        return library

    def run_program(self, *command):
        return subprocess.run([str(part) for part in command], input="x\n", text=True, capture_output=True,
                              env={**os.environ, "PROBE_FILE": str(self.evidence)}, timeout=60)

    def parse(self, bundle):
        return self.run_program(TESSERA, "parse", "--bundle", bundle, "-")

    def assertRefused(self, done, *phrases):
        self.assertEqual((done.returncode, done.stdout), (2, ""), done.stderr)
        for phrase in phrases:
            self.assertIn(phrase, done.stderr)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertFalse(self.evidence.exists(), "code of the bundle has run")

    def test_a_bundle_of_the_same_framework_is_used(self):
        # By --bare the program leaves out its own copy of that bundle.
        done = self.run_program(TESSERA, "parse", "--bare", "--bundle", BUNDLE, "-")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        done = self.run_program(HOST, RUNTIME, BUNDLE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_the_evidence_is_left_by_a_bundle_that_is_loaded(self):
        self.run_program(HOST, RUNTIME, self.bundle())
        self.assertEqual(self.evidence.exists(), EMBEDDED)
        done = self.parse(self.bundle(self.link("libother.so")))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.evidence.exists(), EMBEDDED)

    def test_a_bundle_of_the_other_framework_is_refused(self):
        bundle = self.bundle(self.link(OTHER))
        self.assertRefused(self.parse(bundle), f"{bundle}: error: it was built against {OTHER_PHRASE}, and this "
                           "process runs", f"-DTESSERA_FRAMEWORK={OTHER_CHOICE}\n")

    def test_a_library_of_the_bundle_may_bring_the_other_framework(self):
        own = self.link("libown.so", self.link(OTHER))
        bundle = self.bundle(own)
        self.assertRefused(self.parse(bundle), f"{bundle}: error: the library {own}, which it needs, was built "
                           f"against {OTHER_PHRASE}")

    def test_another_version_of_the_framework_is_refused(self):
        bundle = self.bundle(self.link(OTHER_VERSION))
        stem, version = OTHER_VERSION.split(".so.")
        self.assertRefused(self.parse(bundle), f"{bundle}: error: it was built against version {version} of {stem}, "
                           "and this process has version ", f"/{stem}.so.")

    def test_another_version_of_a_library_is_refused(self):
        bundle = self.bundle(self.link("libquenlith_model.so.0.9"))
        self.assertRefused(self.parse(bundle), f"{bundle}: error: it was built against version 0.9 of "
                           "libquenlith_model, and this process has version 0.1 (", "/libquenlith_model.so.0.1)",
                           "use a program with version 0.9\n")

    def test_so_is_another_version_of_a_library_that_the_program_does_not_load(self):
        bundle = self.bundle(self.link("libquenlith_new.so.0.9"))
        self.assertRefused(self.parse(bundle), "version 0.9 of libquenlith_new, and this process has version 0.1 (")

    @unittest.skipUnless(EMBEDDED, "an installed framework does not check what it loads")
    def test_the_framework_refuses_them_in_every_host(self):
        bundle = self.bundle(self.link(OTHER))
        self.assertRefused(self.run_program(HOST, RUNTIME, bundle), f"{bundle}: it was built against {OTHER_PHRASE}")

    @unittest.skipUnless(EMBEDDED, "only the embedded framework looks for another one when it is loaded")
    def test_the_embedded_framework_ends_a_process_that_runs_another(self):
        other = self.link(OTHER)
        done = self.run_program(LOADER, other, OWN)
        self.assertEqual(done.returncode, -signal.SIGABRT, done.stderr)
        self.assertRegex(done.stderr, f"^{re.escape(OWN)}: this is the embedded framework.* runs another framework, {other}: "
                         "bundles of one cannot run in the other; .*\n$")
        self.assertEqual(self.run_program(LOADER, OWN).returncode, 0)

    @unittest.skipUnless(OTHER_BUNDLE, "OTHER_FRAMEWORK_BUNDLE does not name a bundle of the other framework")
    def test_a_bundle_that_was_really_built_against_the_other_framework_is_refused(self):
        self.assertRefused(self.parse(OTHER_BUNDLE), f"{OTHER_BUNDLE}: error: it was built against ",
                           f"-DTESSERA_FRAMEWORK={OTHER_CHOICE}\n")
        done = self.run_program(HOST, RUNTIME, OTHER_BUNDLE)
        # An installed framework cannot be told to refuse it: the embedded one ends the process when it is
        # loaded beside another.
        self.assertEqual(done.returncode, 2 if EMBEDDED else -signal.SIGABRT, done.stderr)
        self.assertIn("bundles of one cannot run in the other", done.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
