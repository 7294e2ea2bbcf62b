"""hardening_test.py CMAKE COMPILER SETTINGS: builds a program with the project's settings, and checks what is reported.

SETTINGS is the folder of QuenlithSettings.cmake.
"""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import unittest

import hardening

CMAKE, COMPILER, SETTINGS = sys.argv[1:4]
SAMPLE = pathlib.Path(__file__).parent / "hardened"


class Hardening(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def build(self, *options, configuration="Release"):
        """Builds the sample and returns its program and its library."""
        subprocess.run([CMAKE, "-S", SAMPLE, "-B", self.folder, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                        f"-DCMAKE_BUILD_TYPE={configuration}", f"-DSETTINGS_FOLDER={SETTINGS}",
                        "-DCMAKE_CXX_COMPILER_LAUNCHER=env", *options], check=True, stdout=subprocess.DEVNULL)
        subprocess.run([CMAKE, "--build", self.folder], check=True, stdout=subprocess.DEVNULL)
        return [self.folder / "bin" / "program", self.folder / "lib" / "libhardened.so"]

    def test_a_release_build_has_every_protection(self):
        files = self.build()
        self.assertEqual(hardening.faults(files), [])
        done = subprocess.run([files[0], "some text"], stdout=subprocess.PIPE, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, "some text\n"))

    def test_each_protection_that_is_missing_is_reported(self):
        program, library = self.build(
            "-DQUENLITH_HARDENING=OFF",
            "-DCMAKE_CXX_FLAGS=-fno-pie -fno-stack-protector -fno-stack-clash-protection -fcf-protection=none -U_FORTIFY_SOURCE",
            "-DCMAKE_EXE_LINKER_FLAGS=-no-pie -Wl,-z,norelro,-z,lazy,-z,execstack",
            "-DCMAKE_SHARED_LINKER_FLAGS=-Wl,-z,norelro,-z,lazy,-z,execstack")
        found = hardening.faults([program, library])
        late = ["its stack can be executed", "its relocations stay writable (no RELRO)",
                "its relocations are made late (no BIND_NOW)"]
        self.assertEqual([fault for fault in found if "jump" not in fault],
                         [f"{program}: its address is fixed (no PIE)", *(f"{program}: {fault}" for fault in late),
                          *(f"{library}: {fault}" for fault in late), "no file has canaries on its stack",
                          "no file calls a checked function of the C library", "no file probes the pages of a large frame"])
        if hardening.Elf(library).is_x86_64():
            self.assertTrue([fault for fault in found if "copyText" in fault and "is not checked" in fault], found)

    def test_the_settings_can_be_switched_off(self):
        found = hardening.faults(self.build("-DQUENLITH_HARDENING=OFF"))
        self.assertIn("no file has canaries on its stack", found)

    def test_no_file_is_a_fault(self):
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(hardening.main([str(self.folder)]), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
