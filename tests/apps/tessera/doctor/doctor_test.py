#!/usr/bin/env python3
"""Checks that tessera doctor, and tessera parse in the same words, name what is wrong with a bundle.

doctor_test.py PROGRAM BASE COMPILER embedded|system

BASE is the library of a bundle without a manifest. Each fault is made from it in a temporary folder.
"""
import copy
import ctypes
import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile

import jsonschema

PROGRAM, BASE = map(pathlib.Path, sys.argv[1:3])
COMPILER, FRAMEWORK = sys.argv[3:5]
EMBEDDED = FRAMEWORK == "embedded"
ROOT = pathlib.Path(__file__).resolve().parents[4]
SCHEMA = json.loads((ROOT / "docs/doctor.schema.json").read_text())
ELEMENT_PARSER = "quenlith::build::markup::code::CodeElementParser"
PROVIDER = "quenlith::build::markup::services::ParserServicesProvider"
OTHER_FRAMEWORK = "libCppMicroServices.so.3.8.99" if EMBEDDED else "libquenlith_cppmicroservices.so.0.1"
PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH = 24, 1, 2


def component(name="faults::Fine", interfaces=(ELEMENT_PARSER,), references=(), **others):
    """Returns a component with references, each a name and an interface."""
    found = {"implementation-class": name, "service": {"interfaces": list(interfaces)}, **others}
    if references:
        found["inject-references"] = True
        found["references"] = [{"name": name, "interface": interface} for name, interface in references]
    return found


def manifest(*components, **others):
    headers = {"bundle.symbolic_name": "faults", **others}
    if components:
        headers["scr"] = {"version": 1, "components": list(components)}
    return headers


def drop_rights():
    """Lets the user root be refused like any other."""
    for capability in (CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH):
        ctypes.CDLL(None).prctl(PR_CAPBSET_DROP, capability, 0, 0, 0)


class Workshop:
    """Makes broken bundles in a folder. The methods return the path of the bundle."""

    def __init__(self, folder):
        self.folder = folder
        self.file = folder / "broken.so"

    def bytes(self, content):
        self.file.write_bytes(content)
        return self.file

    def bundle(self, headers=None, text=None, name="faults/manifest.json", library=None):
        """Makes a bundle with the manifest `headers`, or `text` instead."""
        if text is None:
            text = json.dumps(manifest(component()) if headers is None else headers)
        self.bytes(BASE.read_bytes() if library is None else library)
        with zipfile.ZipFile(self.file, "a") as archive:
            archive.writestr(name, text)
        return self.file

    def components(self, *components):
        return self.bundle(manifest(*components))

    def patched(self, place, layout, value):
        """Makes a bundle with another value at one place of the ELF header."""
        library = bytearray(BASE.read_bytes())
        struct.pack_into(layout, library, place, value)
        return self.bundle(library=bytes(library))

    def cut(self, begin, end):
        return self.bytes(self.bundle().read_bytes()[begin:end])

    def wrong_byte(self):
        content = self.bundle(manifest(purpose="marker-in-the-text")).read_bytes()
        return self.bytes(content.replace(b"marker-in", b"marker-on", 1))

    def lost_beginning(self):
        content = self.bundle().read_bytes()
        # The archive's last record says where its directory begins.
        end = content.rindex(b"PK\5\6")
        return self.bytes(content[:end + 16] + struct.pack("<I", 0x7FFFFFFF) + content[end + 20:])

    def stripped(self):
        self.bundle()
        subprocess.run(["strip", self.file], check=True)
        return self.file

    def pipe(self):
        os.mkfifo(self.file)
        return self.file

    def directory(self):
        self.file.mkdir()
        return self.file

    def unreadable(self):
        self.bundle().chmod(0)
        return self.file

    def link(self, name, *options, source=""):
        source_file = self.folder / "source.cpp"
        source_file.write_text(source)
        subprocess.run([COMPILER, "-shared", "-fPIC", source_file, "-o", self.folder / name, f"-Wl,-soname,{name}",
                        "-Wl,-rpath,$ORIGIN,--no-as-needed", *options], check=True)
        return self.folder / name

    def linked(self, *options, **source):
        """Makes a bundle without components that is linked with `options`."""
        return self.bundle(manifest(), library=self.link("library.so", *options, **source).read_bytes())

    def linked_with(self, name):
        return self.linked(self.link(name))

    def without_neighbour(self):
        neighbour = self.link("libneighbour.so.1")
        made = self.linked(neighbour)
        neighbour.unlink()
        return made


def remedy_of_archive():
    return "append a zip archive that contains <symbolic name>/manifest.json to the library, after it was stripped"


CORRECT = "correct the manifest and append the archive again"
CORRECT_MANIFEST = "correct the manifest of the bundle"
LIBRARY = "name the library of a bundle"
AGAIN = "copy or build the file again"
MACHINE = "build it for the machine that the program was built for"
NO_ARCHIVE = "there is no complete zip archive at the end of the file"
FAILING = "let its constructor do nothing that can fail, or ask for the service again"
UNLOADABLE = "install that library, or put it beside the bundle"

# Each is a name, how the bundle is made, what is wrong, the remedy. The two texts are expressions that match
# the whole. Those in the second table are in the words of the embedded framework.
FAULTS = [
    # The file.
    ("no such file", lambda w: w.file, r"the file cannot be read \(No such file or directory\)",
     "name a file that exists"),
    ("a directory", Workshop.directory, r"the file cannot be read \(Is a directory\)", LIBRARY),
    ("no permission", Workshop.unreadable, r"the file cannot be read \(Permission denied\)",
     "give its user the right to read it"),
    ("a pipe", Workshop.pipe, "it is not a regular file", LIBRARY),
    ("an empty file", lambda w: w.bytes(b""), "the file is empty", AGAIN),
    ("a text", lambda w: w.bytes(b"#!/bin/sh\n"), "it is not a shared library: it does not begin as an ELF file",
     LIBRARY),
    ("an archive without a library", lambda w: w.bundle(library=b""),
     "it is not a shared library: it does not begin as an ELF file", LIBRARY),
    ("half of the library", lambda w: w.bytes(BASE.read_bytes()[:BASE.stat().st_size // 2]),
     r"the file is truncated: it has \d+ bytes, and its ELF header names more", AGAIN),
    ("half of the ELF header", lambda w: w.bytes(BASE.read_bytes()[:30]),
     "the file is truncated: it has 30 bytes, and its ELF header names more", AGAIN),
    ("a library for 32 bits", lambda w: w.patched(4, "B", 1),
     "it is a 32-bit library, and this is a 64-bit process", MACHINE),
    ("the other byte order", lambda w: w.patched(5, "B", 2), "its byte order is not that of this machine", MACHINE),
    ("another architecture", lambda w: w.patched(18, "<H", 243),
     "it was built for RISC-V, and this process runs on .+", MACHINE),
    ("a program", lambda w: w.bytes(PROGRAM.read_bytes()),
     "it is a program or an object file, not a shared library", LIBRARY),
    ("an object file", lambda w: w.patched(16, "<H", 1),
     "it is a program or an object file, not a shared library", LIBRARY),
    # Its libraries.
    ("another framework", lambda w: w.linked_with(OTHER_FRAMEWORK),
     rf"it was built against .+ \({re.escape(OTHER_FRAMEWORK)}\), and this process runs .+: bundles of one cannot run "
     "in the other", "build the bundle against the framework of this program, or use a program that was configured "
     "with -DTESSERA_FRAMEWORK=(system|embedded)"),
    ("another version of a library", lambda w: w.linked_with("libquenlith_model.so.0.9"),
     r"it was built against version 0\.9 of libquenlith_model, and this process has version 0\.1 \(.+\)",
     r"build the bundle again with the libraries of this program, or use a program with version 0\.9"),
    # What the components and the library say about each other.
    ("a misspelt class", lambda w: w.components(component("faults::Fien")),
     "the component faults::Fien is in the manifest, and the library has no function NewInstance_faults_Fien, but "
     "NewInstance_faults_Fine", r'correct "implementation-class" in the manifest, or add '
     r"QUENLITH_COMPONENT\(faults_Fien, \.\.\.\) to a source of the bundle"),
    ("a class of another bundle", lambda w: w.components(component("other::Parser")),
     "the component other::Parser is in the manifest, and the library has no function NewInstance_other_Parser",
     r'correct "implementation-class" in the manifest, or add QUENLITH_COMPONENT\(other_Parser, \.\.\.\) to a '
     "source of the bundle"),
    ("a misspelt interface of a reference", lambda w: w.components(component(
        "faults::Needs", references=[("provider", PROVIDER + "s")])),
     f'the component faults::Needs waits for the service "{PROVIDER}s" \\(its reference "provider"\\), which neither '
     f'the program nor a bundle provides \\(did you mean "{PROVIDER}"\\?\\)',
     'correct "interface" in the manifest, or add the bundle that provides it with --bundle'),
    ("a reference that nobody provides", lambda w: w.components(component(
        "faults::Needs", references=[("provider", "some::Dictionary")])),
     r'the component faults::Needs waits for the service "some::Dictionary" \(its reference "provider"\), which '
     "neither the program nor a bundle provides",
     'correct "interface" in the manifest, or add the bundle that provides it with --bundle'),
]

EMBEDDED_FAULTS = [
    ("a library without its neighbour", Workshop.without_neighbour,
     r"the library libneighbour\.so\.1, which it needs, is not found \(it is looked for in .+\)", UNLOADABLE),
    ("a function that nobody defines", lambda w: w.linked(
        source="namespace other { void help(int); }\nvoid use() { other::help(1); }\n"),
     r"it uses other::help\(int\), which none of the libraries that it is linked with defines",
     "link it with the library that does, or build it again with the libraries that are installed"),
    # The archive.
    ("an archive lost by strip", Workshop.stripped, NO_ARCHIVE, remedy_of_archive()),
    ("no archive", lambda w: w.bytes(BASE.read_bytes()), NO_ARCHIVE, remedy_of_archive()),
    ("the end of the archive", lambda w: w.cut(0, -15), NO_ARCHIVE, remedy_of_archive()),
    ("an archive without its beginning", Workshop.lost_beginning,
     "the zip archive at the end of the file has lost its beginning", remedy_of_archive()),
    ("a wrong byte in the archive", Workshop.wrong_byte,
     r"the zip archive at the end of the file is damaged \(CRC error\)", remedy_of_archive()),
    ("an archive without a manifest", lambda w: w.bundle(name="faults/other.json"),
     "the zip archive at the end of the file has no manifest", remedy_of_archive()),
    ("a manifest in no folder", lambda w: w.bundle(name="manifest.json"),
     "the zip archive at the end of the file has no manifest", remedy_of_archive()),
    # The manifest.
    ("an empty manifest", lambda w: w.bundle(text=""), r"faults/manifest\.json cannot be used: it is not JSON at line "
     "1, column 1: .+", CORRECT),
    ("a comma too many", lambda w: w.bundle(text='{"bundle.symbolic_name":"faults",}'),
     r"faults/manifest\.json cannot be used: it is not JSON at line 1, column 34: .+", CORRECT),
    ("a manifest that is a list", lambda w: w.bundle(text='["faults"]'),
     r"faults/manifest\.json cannot be used: it is not an object", CORRECT),
    ("a key twice", lambda w: w.bundle(text='{"bundle.symbolic_name":"faults","a":1,"a":2}'),
     r'faults/manifest\.json cannot be used: the key "a" occurs twice', CORRECT),
    ("no symbolic name", lambda w: w.bundle({"purpose": "parse"}),
     r'faults/manifest\.json cannot be used: "bundle\.symbolic_name" is missing', CORRECT),
    ("a symbolic name with a dash", lambda w: w.bundle({"bundle.symbolic_name": "fau-lts"}),
     r'faults/manifest\.json cannot be used: "bundle\.symbolic_name" is not a text of letters, digits and _', CORRECT),
    ("the name of another bundle", lambda w: w.bundle({"bundle.symbolic_name": "tessera_pieces"}),
     r'the values of "bundle\.symbolic_name" and "bundle\.version", tessera_pieces and 0\.0\.0, are those of .+ already',
     "change the name or the version of one of the two bundles or uninstall the other"),
    ("an activator that is a text", lambda w: w.bundle(manifest(**{"bundle.activator": "yes"})),
     r'faults/manifest\.json cannot be used: "bundle\.activator" is neither true nor false', CORRECT),
    ("an activator that is not there", lambda w: w.bundle(manifest(**{"bundle.activator": True})),
     r'the library lacks _us_create_activator_faults or _us_destroy_activator_faults, but "bundle\.activator" is true',
     'use CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR in a source file that is compiled with US_BUNDLE_NAME=faults, or '
     'set "bundle\\.activator" to false'),
    ("an unknown key of scr", lambda w: w.bundle(manifest(scr={"version": 1, "componets": []})),
     'scr has the key "componets", which Declarative Services do not know', CORRECT_MANIFEST),
    ("another version of scr", lambda w: w.bundle(manifest(scr={"version": 2, "components": [component()]})),
     r"scr\.version must be 1", CORRECT_MANIFEST),
    ("an unknown key of a component", lambda w: w.components(component(refrences=[])),
     r'scr\.components\[0\] \(faults::Fine\) has the key "refrences", which Declarative Services do not know', CORRECT_MANIFEST),
    ("a component without a class", lambda w: w.components({"service": {"interfaces": [ELEMENT_PARSER]}}),
     r'scr\.components\[0\] must have the key "implementation-class"', CORRECT_MANIFEST),
    ("interfaces that are a text", lambda w: w.components(
        {**component(), "service": {"interfaces": ELEMENT_PARSER}}),
     r"scr\.components\[0\] \(faults::Fine\)\.service\.interfaces must be a list", CORRECT_MANIFEST),
    ("a reference without an interface", lambda w: w.components(
        {**component(), "inject-references": True, "references": [{"name": "provider"}]}),
     r'scr\.components\[0\] \(faults::Fine\)\.references\[0\] must have the key "interface"', CORRECT_MANIFEST),
    ("two components of one name", lambda w: w.components(component(), component()),
     r"scr\.components\[1\] is the second one named faults::Fine", CORRECT_MANIFEST),
    ("a feature of installed frameworks only", lambda w: w.components(component(immediate=True)),
     r"scr\.components\[0\] \(faults::Fine\)\.immediate: the embedded framework has no immediate components",
     "leave it out or use an installed CppMicroServices, which has it"),
    # The components.
    ("a misspelt interface", lambda w: w.components(component(interfaces=[ELEMENT_PARSER[:-1]])),
     f'the component faults::Fine provides "{ELEMENT_PARSER[:-1]}", which neither the program nor a bundle looks up '
     f'\\(did you mean "{ELEMENT_PARSER}"\\?\\)',
     'correct "interfaces" in the manifest and in QUENLITH_COMPONENT, or leave the bundle out'),
    ("an interface that the class does not implement", lambda w: w.components(
        component(interfaces=[ELEMENT_PARSER, PROVIDER])),
     f"component faults::Fine: its factory does not provide {PROVIDER}, which the manifest lists",
     'make "interfaces" and the factory agree'),
    ("a component without its second function", lambda w: w.components(component("faults::Half")),
     "component faults::Half: the library exports no function DeleteInstance_faults_Half",
     r"add QUENLITH_COMPONENT\(faults_Half, \.\.\.\) to a source of the bundle"),
    ("a misspelt name of a reference", lambda w: w.components(
        component("faults::Needs", references=[("provder", PROVIDER)])),
     "component faults::Needs: its factory asks for the reference provider, which the manifest does not list",
     'make "references" and the factory agree'),
    ("a reference of another type", lambda w: w.components(
        component("faults::Needs", references=[("provider", ELEMENT_PARSER)])),
     f"component faults::Needs: its factory takes the reference provider as {PROVIDER}, which is {ELEMENT_PARSER} in "
     "the manifest", "make both agree"),
    ("components that wait for each other", lambda w: w.components(
        component("faults::Needs", ["some::Left"], [("provider", "some::Right")]),
        component("faults::Fine", ["some::Right"], [("provider", "some::Left")])),
     "components wait for each other and are not offered: faults::Needs needs faults::Fine needs faults::Needs",
     "break the circle, or start a bundle that provides one of their interfaces"),
    ("a constructor that throws", lambda w: w.components(component("faults::Throws")),
     "component faults::Throws: cannot be made: the dictionary is missing", FAILING),
    ("a constructor that throws a number", lambda w: w.components(component("faults::ThrowsNumber")),
     "component faults::ThrowsNumber: cannot be made: it threw something that is not a std::exception", FAILING),
]


def run(*command, program=PROGRAM, **options):
    return subprocess.run([program, *command], capture_output=True, timeout=60, stdin=subprocess.DEVNULL, **options)


class DoctorTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.workshop = Workshop(self.folder)
        self.source = self.folder / "a.py"
        self.source.write_text("x\n")

    def diagnose(self, *arguments, status=0, program=PROGRAM):
        done = run("doctor", "--format", "json", *arguments, program=program, preexec_fn=drop_rights)
        self.assertEqual((done.returncode, done.stderr), (status, b""))
        diagnosis = json.loads(done.stdout)
        jsonschema.validate(diagnosis, SCHEMA)
        self.assertEqual(diagnosis["usable"], status == 0)
        return diagnosis


class Faults(DoctorTest):
    def check(self, make, what, remedy):
        bundle = make(self.workshop)
        diagnosis = self.diagnose("--bundle", bundle, status=2)
        problem, = diagnosis["problems"]
        self.assertEqual(problem["file"], str(bundle))
        self.assertRegex(problem["message"], f"^{what}$")
        self.assertRegex(problem["remedy"], f"^{remedy}$")
        line = f"{bundle}: error: {problem['message']}; {problem['remedy']}\n"
        # The other bundles are not affected.
        self.assertEqual([entry["state"] for entry in diagnosis["bundles"][:3]], ["active"] * 3)
        text = run("doctor", "--bundle", bundle, preexec_fn=drop_rights)
        self.assertEqual(text.returncode, 2)
        self.assertIn(f"\nProblems\n  {line}", text.stdout.decode())
        parsed = run("parse", "--bundle", bundle, self.source, preexec_fn=drop_rights)
        self.assertEqual((parsed.stderr.decode(), parsed.stdout, parsed.returncode), (line, b"", 2))

    def test_the_bundle_without_a_fault_is_used(self):
        made = self.workshop.components(component(), component("faults::Needs", references=[("provider", PROVIDER)]))
        diagnosis = self.diagnose("--bundle", made)
        self.assertEqual(diagnosis["problems"], [])
        self.assertEqual([entry["state"] for entry in diagnosis["bundles"][3]["components"]], ["ready", "ready"])
        self.assertEqual(run("parse", "--bundle", made, self.source).returncode, 0)

    def test_everything_that_a_component_waits_for_is_named(self):
        made = self.workshop.components(
            component("faults::Needs", ["some::First"], [("a", "some::Second")]),
            component("faults::Fine", ["some::Second"], [("b", "some::Third"), ("c", "some::Fourth"), ("d", PROVIDER)]))
        diagnosis = self.diagnose("--bundle", made, status=2)
        first, second = diagnosis["bundles"][3]["components"]
        self.assertEqual((first["state"], second["state"]), ("waiting", "waiting"))
        self.assertEqual(first["waitsFor"],
                         [{"reference": "a", "interface": "some::Second", "provider": "faults::Fine"}])
        self.assertEqual([wait["interface"] for wait in second["waitsFor"]], ["some::Third", "some::Fourth"])
        self.assertEqual([problem["message"].split(", which ")[1] for problem in diagnosis["problems"]],
                         ["only the component faults::Fine provides, and that is not registered either",
                          *["neither the program nor a bundle provides"] * 2])

    def test_a_bundle_that_ends_the_process_is_a_problem(self):
        for code, how in (("std::raise(SIGKILL)", r"by signal 9 \(Killed\)"),
                          # Some of them are statuses of the command itself.
                          *((f"std::_Exit({status})", f"with status {status}") for status in (0, 2, 3, 7)),
                          ("std::exit(0)", "with status 0")):
            self.workshop.linked(source="#include <csignal>\n#include <cstdlib>\n"
                                 f"__attribute__((constructor)) static void end() {{ {code}; }}\n")
            # An installed framework loads only bundles with an activator or components.
            made = self.workshop.bundle(manifest(**{"bundle.activator": True}),
                                        library=(self.folder / "library.so").read_bytes())
            problem, = self.diagnose("--bundle", made, status=2)["problems"]
            self.assertRegex(problem["message"], f"^a bundle ended the process that started it {how}$")
            self.assertEqual(problem["remedy"],
                             "name fewer bundles, to find out which one it is, and leave that one out")

    def test_an_output_that_cannot_be_written_is_no_fault_of_a_bundle(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([PROGRAM, "doctor"], stdout=full, stderr=subprocess.PIPE, text=True, timeout=60)
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, "^standard output: error: .*No space left on device.*\n$")

    def test_a_bundle_that_is_named_in_several_ways_is_one(self):
        made = self.workshop.components(component())
        (self.folder / "link.so").symlink_to(made)
        (self.folder / "below").mkdir()
        spellings = ["broken.so", "./broken.so", made, "below/../broken.so", "link.so"]
        bundles = [word for spelling in spellings for word in ("--bundle", spelling)]
        done = run("doctor", "--format", "json", *bundles, program=PROGRAM.resolve(), cwd=self.folder)
        diagnosis = json.loads(done.stdout)
        self.assertEqual((diagnosis["problems"], done.returncode), ([], 0))
        self.assertEqual([bundle["file"] for bundle in diagnosis["bundles"][3:]], ["broken.so"])
        parsed = run("parse", *bundles, self.source, program=PROGRAM.resolve(), cwd=self.folder)
        self.assertEqual((parsed.stderr, parsed.returncode), (b"", 0))

    def test_a_snippet_parser_that_adds_no_node_is_named(self):
        made = self.workshop.components(component("faults::Silent", ["quenlith::build::markup::SnippetParser"]))
        self.source.write_text("x\nsilent\n")
        parsed = run("parse", "--bundle", made, self.source)
        self.assertEqual((parsed.returncode, parsed.stdout), (3, b""))
        self.assertEqual(parsed.stderr.decode(), f"{self.source}:2:1: error: a parser of the bundle faults accepted the "
                         "line and added no node for it; leave out bundles, or report it with the calls that --record "
                         "writes\n")

    def test_there_are_40_faults(self):
        names = [row[0] for row in FAULTS + EMBEDDED_FAULTS]
        self.assertEqual(len(names), len(set(names)))
        self.assertGreaterEqual(len(names), 40)


def add_faults(table, decorate):
    for name, *row in table:
        method = "test_" + re.sub(r"\W+", "_", name)
        setattr(Faults, method, decorate(lambda self, row=row: self.check(*row)))


add_faults(FAULTS, lambda test: test)
add_faults(EMBEDDED_FAULTS, unittest.skipUnless(EMBEDDED, "an installed framework has its own words"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
