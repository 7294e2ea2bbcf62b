#!/usr/bin/env python3
"""Runs the program as its users do: arguments, standard streams, exit status.

program_test.py PROGRAM
"""
import json
import os
import pathlib
import resource
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
EXAMPLES = pathlib.Path(__file__).resolve().parents[3] / "examples"
FILES = sorted(str(path) for path in EXAMPLES.iterdir() if path.is_file())


def tessera(*arguments, stdin=b"", **options):
    return subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=120, **options)


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

    def assertRefused(self, done, message, output=b""):
        self.assertEqual(done.stderr.decode(), message + "\n")
        self.assertEqual(done.stdout, output)
        self.assertEqual(done.returncode, 2)


class CommandLine(ProgramTest):
    def test_version_and_help_are_fine(self):
        version = tessera("--version")
        self.assertRegex(version.stdout.decode(), r"^tessera \d+\.\d+\.\d+\n$")
        self.assertEqual((version.returncode, version.stderr), (0, b""))
        for arguments in (["--help"], ["parse", "--help"], ["check", "-h"], ["replay", "--help"]):
            done = tessera(*arguments)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertIn(b"Usage:", done.stdout)

    def test_what_cannot_be_used_is_named_with_a_remedy(self):
        cases = {
            (): 'A subcommand is required; "tessera --help" tells what there is',
            ("jump",): 'unknown command "jump"; "tessera --help" tells what there is',
            ("--jump",): 'unknown option "--jump"; "tessera --help" tells what there is',
            ("parse",): 'FILE is required; "tessera parse --help" tells what there is',
            ("parse", "--jump", "a"): 'unknown option "--jump"; "tessera parse --help" tells what there is',
            ("parse", "--\x1b[1m", "a"):
                'unknown option "--\\u001b[1m"; "tessera parse --help" tells what there is',
            ("parse", "--format", "xml", "a"):
                '"xml" is no format: use tree, json or ndjson; "tessera parse --help" tells what there is',
        }
        for arguments, message in cases.items():
            with self.subTest(arguments=arguments):
                self.assertRefused(tessera(*arguments), "tessera: error: " + message)


class Parse(ProgramTest):
    def test_tree_is_the_default(self):
        self.assertEqual(tessera("parse", FILES[0]).stdout,
                         tessera("parse", "--format", "tree", FILES[0]).stdout)

    def test_ndjson_is_the_same_object_on_one_line_a_file(self):
        compact = tessera("parse", "--format", "ndjson", *FILES)
        self.assertEqual(compact.returncode, 0)
        texts = compact.stdout.decode().split("\n")
        self.assertEqual(len(texts), len(FILES) + 1)
        for name, text in zip(FILES, texts):
            indented = tessera("parse", "--format", "json", name).stdout.decode()
            self.assertEqual(json.loads(indented), json.loads(text))
            # Neither has blanks or breaks of its own; Python writes both just so.
            self.assertEqual(json.loads(text)["file"], name)
            whole = json.loads(text)
            self.assertEqual(list(whole), ["schemaVersion", "file", "nodes", "lines"])

    def test_json_is_indented_by_two_blanks_and_files_follow_one_another(self):
        both = tessera("parse", "--format", "json", FILES[0], FILES[1]).stdout
        one = tessera("parse", "--format", "json", FILES[0]).stdout
        two = tessera("parse", "--format", "json", FILES[1]).stdout
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
                                   "Found 0 non default code element parsers"])
        self.assertEqual(logs[1][0], "Checking if parse as task")
        self.assertNotIn("log", documents(tessera("parse", "--format", "ndjson", "-",
                                                  stdin=b"a").stdout)[0]["lines"][0])

    def test_control_characters_of_a_file_do_not_reach_a_terminal(self):
        name = self.write("\x1b[2J.py", b"\x1b]0;x\x07\x7f\xc2\x9b\n")
        for arguments in (["parse"], ["parse", "--trace"], ["check"]):
            done = tessera(*arguments, name, str(self.folder / "\x1bnone"))
            for character in (done.stdout + done.stderr).decode().replace("\n", ""):
                self.assertFalse(ord(character) < 32 or 127 <= ord(character) < 160)

    def test_a_file_that_cannot_be_used_leaves_the_others(self):
        good = self.write("good", b"x\n")
        expected = tessera("parse", "--format", "ndjson", good).stdout
        bad = self.write("bad", "one\ntwö\n".encode() + b"\xc3\xa4\xff")
        cases = {
            str(self.folder / "none"): ": error: cannot be opened: No such file or directory; check the name",
            str(self.folder): ": error: cannot be read: Is a directory; name the files in it",
            bad: ":3:2: error: byte 0xFF is not valid UTF-8; convert the file to UTF-8",
        }
        for name, message in cases.items():
            with self.subTest(name=name):
                done = tessera("parse", "--format", "ndjson", name, good)
                self.assertRefused(done, name + message, expected)
                self.assertEqual(tessera("parse", "--format", "ndjson", good, name).stdout, expected)

    def test_a_file_without_the_right_to_read_it_is_an_error(self):
        name = self.write("closed", b"x")
        os.chmod(name, 0)
        os.chmod(self.folder, 0o755)
        nobody = {"user": 65534} if os.geteuid() == 0 else {}
        try:
            done = tessera("parse", name, **nobody)
        except PermissionError:
            self.skipTest("the program itself is out of nobody's reach")
        self.assertRefused(done, name + ": error: cannot be opened: Permission denied; "
                           "ask for the right to read it, or name another file")

    def test_output_that_cannot_be_written_is_an_error(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([PROGRAM, "parse", *FILES], stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(done.stderr.decode(), "standard output: error: cannot be written: No space left on "
                         "device; make room, or name a file that can be written\n")
        self.assertEqual(done.returncode, 2)

    def test_a_bundle_that_is_none_is_an_error(self):
        name = self.write("no.so", b"no library")
        done = tessera("parse", "--bundle", name, FILES[0])
        self.assertEqual((done.returncode, done.stdout), (2, b""))
        self.assertTrue(done.stderr.decode().startswith(name + ": error: the bundle cannot be started: "))
        self.assertEqual(done.stderr.count(b"\n"), 1)

    def test_a_line_of_many_megabytes_takes_memory_in_proportion(self):
        size = 24 << 20
        name = self.write("long", b"x" * size)
        done = tessera("parse", "--format", "ndjson", name, preexec_fn=lambda: resource.setrlimit(
            resource.RLIMIT_AS, (size * 24, size * 24)) if "libasan" not in LINKED and "libtsan" not in LINKED else None)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(len(documents(done.stdout)[0]["nodes"][0]["children"][0]["text"]), size)

    def test_the_program_finds_its_libraries_from_anywhere(self):
        done = tessera("parse", "-", stdin=b"x", cwd="/", env={})
        self.assertEqual(done.returncode, 0, done.stderr)
        link = self.folder / "elsewhere"
        link.symlink_to(PROGRAM)
        self.assertEqual(subprocess.run([link, "parse", FILES[0]], capture_output=True).returncode, 0)


class Check(ProgramTest):
    def test_the_status_says_whether_anything_was_found(self):
        fine = self.write("fine", b"x\n# <@task#a>\n# <@task#a>\n")
        wrong = self.write("wrong", b"# <@task#a>\n")
        self.assertEqual(tessera("check", fine).returncode, 0)
        self.assertEqual(tessera("check", fine).stdout, b"")
        self.assertEqual(tessera("check", wrong, fine).returncode, 1)
        both = tessera("check", wrong, str(self.folder / "none"))
        self.assertEqual(both.returncode, 2)
        self.assertIn(b"wrong:1:1: warning: ", both.stdout)

    def test_damaged_lines_of_the_appendix_are_reported_with_their_place(self):
        name = self.write("f", b"# <@task#a>\n# <@task#a>\n# <@appendix>\nnothing\n# <@task#a {]}>\n"
                               b"# <@task#a>\n# <@task#a>\n# <@task#b>\n# <@appendix>\n")
        lines = tessera("check", name).stdout.decode().split("\n")[:-1]
        places = [line.removeprefix(name + ":").split(": ")[0] for line in lines]
        self.assertEqual(places, ["4:1", "5:13", "7:1", "8:1", "9:1"])
        for line in lines:
            self.assertRegex(line.removeprefix(name), r"^:\d+:\d+: warning: .")


class Replay(ProgramTest):
    def test_a_recording_replays_to_the_same_documents(self):
        record = str(self.folder / "calls")
        parsed = tessera("parse", "--format", "ndjson", "--trace", "--record", record, *FILES)
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
                           str(self.folder / "." / "f") + ": error: the file to record to is one of the files "
                           "to parse; name another file behind --record")
        self.assertEqual((self.folder / "f").read_bytes(), b"x")

    def test_blank_lines_are_passed_over_and_the_last_needs_no_ending(self):
        done = tessera("replay", "-", stdin=b'\xef\xbb\xbf\n \t\r\n{"op":"document"}\r\n\n{"op":"nodes"}')
        self.assertEqual(done.stdout, b'{}\n{"nodes":[]}\n')

    def test_a_bad_line_ends_the_run_and_is_named(self):
        remedy = "; write one command a line, as tessera parse --record does"
        cases = {
            b'{"op":"nodes"': ":2:14: error: ",
            b'{"op":"jump"}': ':2:7: error: unknown operation "jump"' + remedy,
            b'{"op":"reset","parser":"none"}': ':2:24: error: there is no parser "none"; name '
                '"TaskSnippetParserImpl" or "CodeSnippetParserImpl" or start the bundle that has it with --bundle\n',
            b'{"op":"setView","node":0,"view":""}': ":2:24: error: the node 0 is no header of a task; "
                'count the top-level nodes from 0, as "nodes" shows them\n',
            b'{"op":"addLine","text":"\xc3\xa4\xff"}': ":2:26: error: a byte is not valid UTF-8; "
                "convert the file to UTF-8\n",
        }
        for line, message in cases.items():
            with self.subTest(line=line):
                done = tessera("replay", "-", stdin=b'{"op":"document"}\n' + line + b'\n{"op":"document"}\n')
                self.assertEqual((done.stdout, done.returncode), (b"{}\n", 2))
                self.assertTrue(done.stderr.decode().startswith("-" + message), done.stderr)

    def test_each_answer_comes_before_the_next_line_is_awaited(self):
        with subprocess.Popen([PROGRAM, "replay", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as run:
            for _ in range(3):
                run.stdin.write(b'{"op":"nodes"}\n')
                run.stdin.flush()
                self.assertEqual(run.stdout.readline(), b'{"nodes":[]}\n')
            run.stdin.close()
            self.assertEqual(run.wait(timeout=60), 0)


LINKED = subprocess.run(["ldd", PROGRAM], capture_output=True).stdout.decode()

if __name__ == "__main__":
    unittest.main()
