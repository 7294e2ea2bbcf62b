#!/usr/bin/env python3
"""Runs the program as its users do: arguments, standard streams, exit status.

program_test.py PROGRAM SLIDER_BUNDLE
"""
import fcntl
import json
import os
import pathlib
import pty
import re
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import unittest
import zipfile

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SLIDER_BUNDLE = pathlib.Path(sys.argv.pop(1)).resolve()
EXAMPLES = pathlib.Path(__file__).resolve().parents[3] / "examples"
FILES = sorted(str(path) for path in EXAMPLES.iterdir() if path.is_file())
LINKED = subprocess.run(["ldd", PROGRAM], capture_output=True).stdout.decode()
SYSTEM_FRAMEWORK = "libquenlith_cppmicroservices" not in LINKED
# Sanitizers reserve address space by the terabyte. Their run time is a library or part of the program.
SANITIZED = any(name in PROGRAM.read_bytes() for name in (b"__asan_init", b"__tsan_init"))


def tessera(*arguments, stdin=b"", **options):
    return subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=120, **options)


def output_of(*arguments, **options):
    """Returns what a run writes, to compare with another run: nothing would be equal to nothing."""
    output = tessera(*arguments, **options).stdout
    assert output, arguments
    return output


def documents(output):
    return [json.loads(line) for line in output.decode().split("\n")[:-1]]


class ProgramTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, data):
        (self.folder / name).write_bytes(data)
        return str(self.folder / name)

    def assertRefused(self, done, message, output=b"", status=2):
        self.assertEqual(done.stderr.decode(), message + "\n")
        self.assertEqual(done.stdout, output)
        self.assertEqual(done.returncode, status)


def on_terminal(columns, *arguments, **environment):
    """Returns what the program writes to a terminal of so many columns."""
    reader, writer = pty.openpty()
    fcntl.ioctl(writer, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    environment = {**os.environ, "TERM": "xterm", "NO_COLOR": "", "LC_ALL": "C.UTF-8", **environment}
    with subprocess.Popen([PROGRAM, *arguments], stdin=subprocess.DEVNULL, stdout=writer,
                          stderr=subprocess.DEVNULL, env=environment):
        os.close(writer)
        data = b""
        try:
            while piece := os.read(reader, 4096):
                data += piece
        except OSError:  # The other side is closed.
            pass
    os.close(reader)
    return data.decode().replace("\r\n", "\n")


class Tree(ProgramTest):
    COLOR = re.compile(r"\x1b\[[0-9;]*m")

    def setUp(self):
        super().setUp()
        self.name = self.write("a.py", b"x = 1  # <@output#o [0,1]> # <@text:anchor#here>\n" + b"x" * 150 + b"\n")
        self.names = [self.write("bad", b"\xff"), self.name, self.write("empty", b""), self.name, *FILES] * 2

    def test_on_a_terminal_it_is_as_wide_and_in_colour(self):
        for columns in 40, 73:
            text = on_terminal(columns, "parse", FILES[0], self.name)
            rows = self.COLOR.sub("", text).split("\n")
            self.assertEqual(max(map(len, rows)), columns)
            self.assertIn("\x1b[4;36mx\x1b[0m = 1", text)

    def test_colours_and_the_width_can_be_chosen(self):
        plain = tessera("parse", self.name).stdout.decode()
        self.assertNotIn("\x1b", plain)
        self.assertIn("\n       ~ output #o\n", plain)
        self.assertIn("\n   2   " + "x" * 150 + "\n", plain)
        for arguments, environment in ((["--color", "never"], {}), ([], {"NO_COLOR": "1"}), ([], {"TERM": "dumb"})):
            text = on_terminal(1000, "parse", self.name, *arguments, **environment)
            self.assertEqual(text, plain, (arguments, environment))
        colored = tessera("parse", "--color", "always", self.name).stdout.decode()
        self.assertEqual(colored, on_terminal(1000, "parse", self.name))
        narrow = tessera("parse", "--width", "40", self.name).stdout.decode()
        self.assertEqual(narrow, on_terminal(100, "parse", "--width", "40", "--color", "never", self.name))
        self.assertEqual(max(map(len, narrow.split("\n"))), 40)

    def test_symbols_on_a_terminal_are_those_of_the_locale(self):
        locales = {"LC_ALL": "", "LC_CTYPE": "", "LANG": ""}
        for settings, is_unicode in (({}, False), ({"LANG": "de_DE.UTF-8"}, True), ({"LANG": "C.utf8"}, True),
                                     ({"LC_CTYPE": "C", "LANG": "C.UTF-8"}, False),
                                     ({"LC_ALL": "C.UTF-8", "LC_CTYPE": "C"}, True), ({"LANG": "de_DE"}, False)):
            settings = {**locales, **settings}
            text = on_terminal(1000, "parse", "--color", "never", self.name, **settings)
            self.assertEqual(("\u2693 here" in text, "anchor here" in text), (is_unicode, not is_unicode), settings)
            text = tessera("parse", self.name, env={**os.environ, **settings}).stdout.decode()
            self.assertIn("\u2693 here", text, settings)

    def test_files_are_separated_by_an_empty_row(self):
        done = tessera("parse", *self.names)
        rest = done.stdout
        for number, name in enumerate(name for name in self.names if not name.endswith("bad")):
            alone = tessera("parse", name).stdout if name.endswith("empty") else output_of("parse", name)
            expected = (b"" if number == 0 else b"\n") + alone
            self.assertEqual(rest[:len(expected)], expected)
            rest = rest[len(expected):]
        self.assertEqual((rest, done.returncode), (b"", 3))

    def test_it_is_the_same_from_several_processes(self):
        for arguments in ([], ["--color", "always", "--width", "50"]):
            expected = tessera("parse", *arguments, *self.names, "-j", "1")
            self.assertTrue(expected.stdout)
            done = tessera("parse", *arguments, *self.names, "-j", "3")
            self.assertEqual((done.stdout, done.stderr), (expected.stdout, expected.stderr))
        self.assertEqual(on_terminal(60, "parse", *self.names, "-j", "3"), on_terminal(60, "parse", *self.names, "-j", "1"))


class Parse(ProgramTest):
    def test_tree_is_the_default(self):
        self.assertEqual(output_of("parse", FILES[0]), output_of("parse", "--format", "tree", FILES[0]))

    def test_ndjson_is_the_same_object_on_one_line_per_file(self):
        compact = tessera("parse", "--format", "ndjson", *FILES)
        self.assertEqual(compact.returncode, 0)
        texts = compact.stdout.decode().split("\n")
        self.assertEqual(len(texts), len(FILES) + 1)
        for name, text in zip(FILES, texts):
            indented = tessera("parse", "--format", "json", name).stdout.decode()
            self.assertEqual(json.loads(indented), json.loads(text))
            self.assertEqual(json.loads(text)["file"], name)
            whole = json.loads(text)
            self.assertEqual(list(whole), ["schemaVersion", "file", "nodes", "lines"])

    def test_json_is_indented_by_two_spaces_and_files_follow_one_another(self):
        both = output_of("parse", "--format", "json", FILES[0], FILES[1])
        one = output_of("parse", "--format", "json", FILES[0])
        two = output_of("parse", "--format", "json", FILES[1])
        self.assertEqual(both, one + two)
        self.assertEqual(json.dumps(json.loads(one), indent=2, ensure_ascii=False) + "\n", one.decode())

    def test_standard_input_is_a_file_too(self):
        done = tessera("parse", "--format", "ndjson", "-", stdin=b"a\nb\n")
        self.assertEqual(documents(done.stdout)[0]["file"], "-")
        self.assertEqual([line["line"] for line in documents(done.stdout)[0]["lines"]], [1, 2])

    def test_the_trace_has_the_records_of_each_lines_calls(self):
        done = tessera("parse", "--format", "ndjson", "--trace", "-", stdin=b"a\n# <@task#x>")
        logs = [line["log"] for line in documents(done.stdout)[0]["lines"]]
        self.assertEqual(logs[0], ["Checking if parse as task", "Checking the default parser",
                                   "Parsing using the default parser",
                                   # The first line of a run fills the provider's list.
                                   "In LineNodeParserService",
                                   "Found 1 non default code element parsers"])
        self.assertEqual(logs[1][0], "Checking if parse as task")
        self.assertNotIn("log", documents(tessera("parse", "--format", "ndjson", "-",
                                                  stdin=b"a").stdout)[0]["lines"][0])

    def test_control_characters_of_a_file_do_not_reach_a_terminal(self):
        name = self.write("\x1b[2J.py", b"\x1b]0;x\x07\x7f\xc2\x9b\n")
        for arguments in (["parse"], ["parse", "--trace"], ["check"]):
            done = tessera(*arguments, name, str(self.folder / "\x1bnone"))
            self.assertIn(b"\\u001b[2J.py" if arguments[0] == "parse" else b"\\u001bnone", done.stdout + done.stderr)
            for character in (done.stdout + done.stderr).decode().replace("\n", ""):
                self.assertFalse(ord(character) < 32 or 127 <= ord(character) < 160)

    def test_a_file_that_cannot_be_used_leaves_the_others(self):
        good = self.write("good", b"x\n")
        expected = output_of("parse", "--format", "ndjson", good)
        bad = self.write("bad", "one\ntwö\n".encode() + b"\xc3\xa4\xff")
        cases = {
            str(self.folder / "none"): ": error: cannot be opened: No such file or directory; check the name",
            bad: ":3:2: error: byte 0xFF is not valid UTF-8; convert the file to UTF-8",
        }
        for name, message in cases.items():
            with self.subTest(name=name):
                done = tessera("parse", "--format", "ndjson", name, good)
                refusal, document = done.stdout.splitlines(keepends=True)
                self.assertRefused(done, name + message, refusal + expected, status=3)
                self.assertEqual(document, expected)
                done = tessera("parse", "--format", "ndjson", good, name)
                self.assertEqual((done.stdout, done.returncode), (expected + refusal, 3))
                self.assertEqual(tessera("parse", "--format", "json", name).stdout, b"")
                for command in ("check", "markers"):
                    alone = output_of(command, "--format", "json", good)
                    self.assertRefused(tessera(command, "--format", "json", name, good), name + message, alone,
                                       status=3)

    def test_a_parser_that_throws_ends_its_file(self):
        good = self.write("good", b"x\n")
        bad = self.write("bad", b"x\ny = 1  # <@control:slider#stuck [4,5]>\nz\n")
        for command in ("parse", "check", "markers"):
            arguments = [command, "--format", "json", "--bundle", str(SLIDER_BUNDLE)]
            done = tessera(*arguments, bad, good)
            self.assertRefused(done, bad + ":2:1: error: the parser CodeSnippetParserImpl of the bundle "
                               "com_velquorin_quenlith_build_markup_code threw: the slider is stuck; leave out "
                               "bundles, or report it with the calls that --record writes",
                               output_of(*arguments, good), status=3)

    def test_a_parser_that_throws_after_parsing_ends_its_file(self):
        good = self.write("good", b"x\n")
        bad = self.write("bad", b"y = 1  # <@control:slider#fickle [4,5]>\n")
        for command in ("check", "markers"):
            for workers in ("1", "2"):
                arguments = [command, "--format", "json", "-j", workers, "--bundle", str(SLIDER_BUNDLE)]
                done = tessera(*arguments, bad, good)
                self.assertRefused(done, bad + ": error: a parser threw when it was asked about a marker: not again; "
                                   "leave out bundles, or report it", output_of(*arguments, good), status=3)

    def test_a_message_follows_the_output_of_the_files_before_it(self):
        good, bad = self.write("good", b"x\n"), str(self.folder / "none")
        done = subprocess.run([PROGRAM, "parse", good, bad, good], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=60)
        tree = output_of("parse", good)
        message = tessera("parse", bad).stderr
        self.assertEqual(message.count(b"\n"), 1)
        self.assertEqual(done.stdout, tree + message + b"\n" + tree)

    def test_a_file_without_read_permission_is_an_error(self):
        name = self.write("closed", b"x")
        os.chmod(name, 0)
        os.chmod(self.folder, 0o755)
        # The user nobody cannot write the counters of a program built for coverage.
        counters = {"env": dict(os.environ, LLVM_PROFILE_FILE="/dev/null")}
        nobody = {"user": 65534, **counters} if os.geteuid() == 0 else {}
        try:
            done = tessera("parse", name, **nobody)
        except PermissionError:
            self.skipTest("the user nobody cannot run the program")
        self.assertRefused(done, name + ": error: cannot be opened: Permission denied; "
                           "check its permissions, or name another file", status=3)

    def test_output_that_cannot_be_written_is_an_error(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([PROGRAM, "parse", *FILES], stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(done.stderr.decode(), "standard output: error: cannot be written: No space left on "
                         "device; free some disk space, or name a file that can be written\n")
        self.assertEqual(done.returncode, 2)

    def test_help_that_cannot_be_written_is_an_error(self):
        for arguments in (["--help"], ["--version"], ["parse", "--help"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([PROGRAM, *arguments], stdout=full, stderr=subprocess.PIPE, timeout=60)
            self.assertEqual((done.stderr.decode(), done.returncode), (
                "standard output: error: cannot be written: No space left on device; free some disk space, or "
                "name a file that can be written\n", 2))

    def test_a_closed_stream_is_an_error_and_its_output_goes_to_no_other_file(self):
        name, record = self.write("f", b"x\n"), str(self.folder / "calls")
        tessera("parse", "--record", record, name)
        expected = pathlib.Path(record).read_bytes()
        shell = ["sh", "-c", '"$0" parse --record "$1" "$2" "$3" >&-', PROGRAM, record, name, name]
        done = subprocess.run(shell, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((done.stderr.decode(), done.returncode), (
            "standard output: error: cannot be written: Bad file descriptor; "
            "name a file that can be written\n", 2))
        self.assertTrue(pathlib.Path(record).read_bytes().startswith(expected))
        shell[2] = '"$0" parse --record "$1" "$2" none 2>&-'
        self.assertEqual(subprocess.run(shell, stdout=subprocess.DEVNULL, timeout=60).returncode, 3)
        self.assertEqual(pathlib.Path(record).read_bytes(), expected)
        done = subprocess.run(["sh", "-c", '"$0" parse - <&-', PROGRAM], capture_output=True, timeout=60)
        self.assertRefused(done, "-: error: cannot be read: Bad file descriptor; name a file that can be read",
                           status=3)

    def test_devices_and_pipes_are_read_and_replay_refuses_a_folder(self):
        self.assertRefused(tessera("replay", str(self.folder)), str(self.folder) +
                           ": error: cannot be read: Is a directory; name the files in it")
        for command, status in ("parse", 3), ("check", 3), ("markers", 3), ("replay", 2):
            self.assertRefused(tessera(command, ""),
                               '"": error: cannot be opened: No such file or directory; check the name', status=status)
            self.assertEqual(tessera(command, "/dev/null").returncode, 0)
        pipe = str(self.folder / "pipe")
        os.mkfifo(pipe)
        with subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", pipe], stdout=subprocess.PIPE) as run:
            with open(pipe, "wb") as writer:
                writer.write(b"a\nb")
            output = run.communicate(timeout=60)[0]
            self.assertEqual((len(documents(output)[0]["lines"]), run.returncode), (2, 0))

    def test_a_file_named_twice_is_parsed_twice_and_standard_input_is_read_once(self):
        name = self.write("f", b"x\n")
        once = output_of("parse", name)
        self.assertEqual(tessera("parse", name, name).stdout, once + b"\n" + once)
        self.assertEqual(tessera("parse", "-", stdin=b"x\n").stdout, once.replace(name.encode(), b"-"))
        self.assertRefused(tessera("parse", "-", "-", stdin=b"x\n"),
                           "-: error: standard input is named 2 times, and can be read once; name it once")

    def test_invalid_utf8_is_located_around_every_chunk_boundary(self):
        # The file is read in chunks of 64 KiB.
        for size in (0, 1, 65533, 65534, 65535, 65536, 131072):
            for bad in (b"\x80", b"\xff", b"\xc0\x80", b"\xe2\x82", b"\xed\xa0\x80", b"\xf0\x9f\x98",
                        b"\xf4\x90\x80\x80"):
                for tail in (b"", b"\n", b"z"):
                    begin = ("\u00e9\n" * (size // 3)).encode() + b"x" * (size % 3)
                    done = tessera("check", "-", stdin=begin + bad + tail)
                    self.assertRefused(done, f"-:{size // 3 + 1}:{size % 3 + 1}: error: byte 0x{bad[0]:02X} "
                                       "is not valid UTF-8; convert the file to UTF-8", status=3)

    def test_bare_drops_the_pieces_of_markers(self):
        line = b"ab # <@output#o [0,1]> # <@control#c [1,2]>"
        kept, = documents(tessera("parse", "--format", "ndjson", "-", stdin=line).stdout)
        bare, = documents(tessera("parse", "--bare", "--format", "ndjson", "-", stdin=line).stdout)
        self.assertEqual([(child["kind"], child["text"]) for child in kept["nodes"][0]["children"]],
                         [("OutputNode", "a"), ("ControlNode", "b"), ("PlainTextNode", "  ")])
        self.assertEqual([(child["kind"], child["text"]) for child in bare["nodes"][0]["children"]],
                         [("PlainTextNode", "b  # <@control#c [1,2]>")])
        self.assertEqual(kept["lines"], bare["lines"])

    def test_a_file_that_is_not_a_bundle_is_an_error(self):
        name = self.write("no.so", b"no library")
        done = tessera("parse", "--bundle", name, FILES[0])
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertEqual(done.stderr.decode(), name + ": error: it is not a shared library: it does not begin as an "
                         "ELF file; name the library of a bundle\n")

    def test_memory_is_proportional_to_the_length_of_a_line(self):
        size = 24 << 20
        name = self.write("long", b"x" * size)
        limit = resource.RLIM_INFINITY if SANITIZED else size * 24
        done = tessera("parse", "--format", "ndjson", name,
                       preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(len(documents(done.stdout)[0]["nodes"][0]["children"][0]["text"]), size)

    def test_the_program_finds_its_libraries_from_anywhere(self):
        done = tessera("parse", "-", stdin=b"x", cwd="/", env={})
        self.assertEqual(done.returncode, 0, done.stderr)
        link = self.folder / "elsewhere"
        link.symlink_to(PROGRAM)
        self.assertEqual(subprocess.run([link, "parse", FILES[0]], capture_output=True).returncode, 0)


class Bundles(ProgramTest):
    """Runs a copy of the program in which one of its bundles has another manifest."""

    PARSERS = "libzqquenlith_build_markup_code.so"

    def install(self, change, changed=PARSERS):
        """Copies the program and applies `change` to the components of the manifest of `changed`."""
        (self.folder / "bin").mkdir()
        (self.folder / "lib").mkdir()
        program = shutil.copy(PROGRAM, self.folder / "bin")
        libraries = PROGRAM.parent.parent / "lib"
        for library in libraries.glob("*.so*"):
            if library.name != changed:
                (self.folder / "lib" / library.name).symlink_to(library)
        with zipfile.ZipFile(libraries / changed) as archive:
            begin = min(entry.header_offset for entry in archive.infolist())
            name, = (name for name in archive.namelist() if name.endswith("manifest.json"))
            manifest = json.loads(archive.read(name))
        change(manifest["scr"]["components"])
        bundle = self.folder / "lib" / changed
        bundle.write_bytes((libraries / changed).read_bytes()[:begin])
        with zipfile.ZipFile(bundle, "a") as archive:
            archive.writestr(name, json.dumps(manifest))
        return program

    def assertRefusedFor(self, program, bundle, reason):
        """Checks that nothing is parsed, and the reason given last."""
        done = subprocess.run([program, "parse", "-"], input=b"x", capture_output=True, timeout=60)
        self.assertEqual((done.stdout, done.returncode), (b"", 2))
        self.assertEqual(done.stderr.decode().splitlines()[-1],
                         f"{self.folder}/bin/../lib/{bundle}: error: {reason}; install the program again")

    def test_the_changed_copy_runs(self):
        program = self.install(lambda components: None)
        self.assertEqual(subprocess.run([program, "check", "-"], input=b"x", timeout=60).returncode, 0)

    def test_without_the_bundle_for_pieces_only_bare_parses(self):
        program = self.install(lambda components: None)
        bundle = self.folder / "lib" / "libtessera_pieces.so"
        bundle.unlink()
        for command in ("parse", "check"):
            done = subprocess.run([program, command, "-"], input=b"x", capture_output=True, timeout=60)
            self.assertEqual((done.stdout, done.returncode), (b"", 2))
            self.assertEqual(done.stderr.decode(), f"{self.folder}/bin/../lib/libtessera_pieces.so: error: the file "
                             "cannot be read (No such file or directory); install the program again\n")
            bare = subprocess.run([program, command, "--bare", "-"], input=b"x", capture_output=True, timeout=60)
            self.assertEqual((bare.stderr, bare.returncode), (b"", 0))

    def test_a_bundle_for_pieces_without_its_parser_is_an_error(self):
        program = self.install(lambda components: components[0].update({"implementation-class": "tessera::Nowhere"}),
                               "libtessera_pieces.so")
        self.assertRefusedFor(program, "libtessera_pieces.so", "the component tessera::Nowhere is in the manifest, "
                              "and the library has no function NewInstance_tessera_Nowhere, but "
                              "NewInstance_tessera_pieces_PieceParser")

    def test_without_the_task_parser_nothing_is_parsed(self):
        program = self.install(lambda components: components[3].update({"implementation-class": "quenlith::Nowhere"}))
        self.assertRefusedFor(program, self.PARSERS, "the component quenlith::Nowhere is in the manifest, and the "
                              "library has no function NewInstance_quenlith_Nowhere")
        self.folder = self.folder / "renamed"
        self.folder.mkdir()
        program = self.install(lambda components: components[3]["properties"].update({"test_id": "Other"}))
        self.assertRefusedFor(program, self.PARSERS, "the parser TaskSnippetParserImpl is missing")

    @unittest.skipIf(SYSTEM_FRAMEWORK, "an installed framework words its errors in its own way")
    def test_when_the_task_parser_cannot_be_created_nothing_is_parsed(self):
        def swap_class(components):
            other, task = components.pop(2), components[2]
            task["implementation-class"] = other["implementation-class"]
            del task["references"], task["inject-references"]
        markup = "quenlith::build::markup"
        reason = (f"the component {markup}::code::TaskSnippetParserImpl cannot be created" if SYSTEM_FRAMEWORK else
                  f"component {markup}::code::PlainTextNodeParserImpl: its factory does not provide "
                  f"{markup}::SnippetParser, which the manifest lists")
        self.assertRefusedFor(self.install(swap_class), self.PARSERS, reason)


class CheckInATerminal(ProgramTest):
    def check_in_terminal(self, name, *options, columns=100, **environment):
        """Returns what `check` writes to a terminal."""
        master, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        environment = {"TERM": "xterm", **environment}
        subprocess.run([PROGRAM, "check", *options, name], stdout=terminal, timeout=60,
                       env={**{key: text for key, text in os.environ.items() if key != "NO_COLOR"}, **environment})
        os.close(terminal)
        written = b""
        try:
            while data := os.read(master, 65536):
                written += data
        except OSError:
            # Linux reports the closed terminal this way.
            pass
        os.close(master)
        return written.decode().replace("\r\n", "\n")

    def test_only_a_terminal_has_colours_unless_they_are_asked_for(self):
        name = self.write("f", b"# <@task#a>\n")
        plain = tessera("check", name).stdout.decode()
        coloured = tessera("check", "--color", "always", name).stdout.decode()
        self.assertNotIn("\x1b", plain)
        self.assertIn("\x1b[1;31mfailure\x1b[0m", coloured)
        self.assertEqual(re.sub("\x1b\\[[0-9;]*m", "", coloured), plain)
        summary = '\n1 failure; "tessera explain ID" says more\n'
        for options, environment, expected in (
                ([], {}, coloured), (["--color", "auto"], {"NO_COLOR": ""}, coloured),
                (["--color", "never"], {}, plain), ([], {"NO_COLOR": "1"}, plain), ([], {"TERM": "dumb"}, plain),
                (["--color", "always"], {"NO_COLOR": "1"}, coloured)):
            self.assertEqual(self.check_in_terminal(name, *options, columns=400, **environment), expected + summary)
        self.assertNotIn("\x1b", self.check_in_terminal(name, "--format", "json"))

    def test_long_lines_are_cut_to_the_width_of_the_terminal(self):
        name = self.write("f", b"x" * 1000 + b" # <@task#a> " + b"y" * 1000 + b"\n")
        for columns in (60, 200):
            rows = self.check_in_terminal(name, "--color", "never", columns=columns).split("\n")
            excerpt, mark = next((row, below) for row, below in zip(rows, rows[1:]) if row.startswith("     1 | "))
            self.assertEqual(len(excerpt), columns)
            self.assertLessEqual(max(map(len, rows[1:])), columns)
            self.assertEqual(excerpt[mark.index("^"):mark.rindex("~") + 1], "# <@task#a>")
        rows = self.check_in_terminal(name, "--color", "never", columns=0).split("\n")
        self.assertEqual([len(row) for row in rows if row.startswith("     1 | ")], [100])


class Explain(ProgramTest):
    def test_without_an_id_all_diagnostics_are_listed(self):
        done = tessera("explain")
        rows = [row.split() for row in done.stdout.decode().splitlines()]
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertGreaterEqual(len(rows), 10)
        for name, severity, *title in rows:
            self.assertIn(severity, ("failure", "warning"))
            self.assertTrue(title)
            explained = tessera("explain", name).stdout.decode()
            self.assertTrue(explained.startswith(f"{name} ({severity})\n{' '.join(title)}\n\n"), explained)

    def test_an_unknown_id_is_an_error(self):
        self.assertRefused(tessera("explain", "nothing\x1b"), 'tessera: error: there is no diagnostic '
                           '"nothing\\u001b"; "tessera explain" lists them')
        self.assertRefused(tessera("explain", ""), 'tessera: error: there is no diagnostic ""; "tessera explain" lists '
                           "them")
        self.assertRefused(tessera("explain", "unknown_elemnt"),
                           'tessera: error: there is no diagnostic "unknown_elemnt"; did you mean '
                           '"unknown_element"? "tessera explain" lists them')

    def test_markdown_of_one_diagnostic_is_its_section_of_the_catalogue(self):
        section = tessera("explain", "--format", "markdown", "unused_entry").stdout.decode()
        self.assertIn("Before:\n\n```text\n", section)
        self.assertIn(section, tessera("explain", "--format", "markdown").stdout.decode())


class Replay(ProgramTest):
    def test_a_recording_replays_to_the_same_documents(self):
        record = str(self.folder / "calls")
        parsed = tessera("parse", "--bare", "--format", "ndjson", "--trace", "--record", record, *FILES)
        replayed = tessera("replay", record)
        self.assertEqual((replayed.returncode, replayed.stderr), (0, b""))
        answers = documents(replayed.stdout)
        self.assertEqual([answer["nodes"] for answer in answers if "nodes" in answer],
                         [document["nodes"] for document in documents(parsed.stdout)])
        results = [answer["result"] for answer in answers if "result" in answer]
        lines = [line for document in documents(parsed.stdout) for line in document["lines"]]
        self.assertEqual(results, [{key: line[key] for key in ("type", "flag", "markerTypes")}
                                   for line in lines])
        with open(record, "rb") as calls:
            self.assertEqual(len(calls.readlines()), len(answers))

    def test_the_recording_must_not_be_an_input(self):
        name = self.write("f", b"x")
        self.assertRefused(tessera("parse", "--record", str(self.folder / "." / "f"), name),
                           str(self.folder / "." / "f") + ": error: the file to record to is one of the inputs; "
                           "name another file after --record")
        self.assertEqual((self.folder / "f").read_bytes(), b"x")

    def test_the_recording_must_not_be_a_standard_stream(self):
        name, other = self.write("f", b"x"), self.write("g", b"y")
        message = ": error: the file to record to is %s; name another file after --record\n"
        with open(name, "rb") as source:
            done = subprocess.run([PROGRAM, "parse", "--record", name, "-"], stdin=source, capture_output=True)
        self.assertEqual((done.returncode, done.stderr.decode()), (2, name + message % "one of the inputs"))
        with open(name, "ab") as target:
            done = subprocess.run([PROGRAM, "parse", "--record", name, other], stdout=target, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr.decode()), (2, name + message % "where the output goes"))
        self.assertEqual((self.folder / "f").read_bytes(), b"x")

    def test_a_recording_that_cannot_be_written_is_an_error(self):
        cases = {
            str(self.folder): "created: Is a directory; name a file that can be written",
            str(self.folder / "none" / "f"):
                "created: No such file or directory; create its folder, or name a file in another one",
            "/dev/full": "written: No space left on device; free some disk space, or name a file that can be written",
        }
        for name, message in cases.items():
            with self.subTest(name=name):
                self.assertRefused(tessera("parse", "--record", name, *FILES), name + ": error: cannot be " + message)

    def test_blank_lines_are_skipped_and_the_last_line_needs_no_ending(self):
        done = tessera("replay", "-", stdin=b'\xef\xbb\xbf\n \t\r\n{"op":"document"}\r\n\n{"op":"nodes"}')
        self.assertEqual(done.stdout, b'{}\n{"nodes":[]}\n')

    def test_a_bad_line_ends_the_run_and_is_reported(self):
        remedy = "; write one command per line, as tessera parse --record does"
        cases = {
            b'{"op":"nodes"': ":2:14: error: ",
            b'{"op":"jump"}': ':2:7: error: unknown operation "jump"' + remedy,
            b'{"op":"reset","parser":"none"}': ':2:24: error: there is no parser "none"; name '
                '"TaskSnippetParserImpl" or "CodeSnippetParserImpl", or start the bundle that has it with --bundle\n',
            b'{"op":"setView","node":0,"view":""}': ":2:24: error: the node 0 is not the header of a task; "
                'count the top-level nodes from 0, as "nodes" shows them\n',
            b'{"op":"addLine","text":"\xc3\xa4\xff"}': ":2:26: error: a byte is not valid UTF-8; "
                "convert the file to UTF-8\n",
        }
        for line, message in cases.items():
            with self.subTest(line=line):
                done = tessera("replay", "-", stdin=b'{"op":"document"}\n' + line + b'\n{"op":"document"}\n')
                self.assertEqual((done.stdout, done.returncode), (b"{}\n", 2))
                self.assertTrue(done.stderr.decode().startswith("-" + message), done.stderr)

    def test_commands_nested_a_hundred_thousand_deep_are_bad_lines(self):
        deep = b"[" * 100000
        for line, column in ((b'{"op":' + deep, 7), (b'{"op":"appendix","entries":' + deep, 29), (deep, 1),
                             (b'{"op":"nodes","extra":' + deep, 15)):
            done = tessera("replay", "-", stdin=line)
            self.assertEqual((done.returncode, done.stdout), (2, b""))
            self.assertTrue(done.stderr.decode().startswith(f"-:1:{column}: error: "), done.stderr)

    def test_each_answer_comes_before_the_next_line_is_awaited(self):
        with subprocess.Popen([PROGRAM, "replay", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as run:
            for _ in range(3):
                run.stdin.write(b'{"op":"nodes"}\n')
                run.stdin.flush()
                self.assertEqual(run.stdout.readline(), b'{"nodes":[]}\n')
            run.stdin.close()
            self.assertEqual(run.wait(timeout=60), 0)


if __name__ == "__main__":
    unittest.main()
