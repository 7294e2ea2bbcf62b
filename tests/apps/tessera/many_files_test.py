#!/usr/bin/env python3
"""Runs `tessera parse`, `check` and `markers` on many files: how they are named, worker processes, faults,
interrupted runs.

many_files_test.py PROGRAM FAULTY_BUNDLE

TESSERA_KILLS is the number of runs that are killed at a random moment and resumed (default: 20).
"""
import base64
import fcntl
import itertools
import json
import os
import pathlib
import pty
import random
import re
import resource
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

from signals import send_signal

FAULTY = str(pathlib.Path(sys.argv.pop(2)).resolve())
PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
ROOT = pathlib.Path(__file__).resolve().parents[3]
IS_SANITIZED = any(name in pathlib.Path(PROGRAM).read_bytes() for name in (b"__asan_init", b"__tsan_init"))
IS_EMBEDDED = b"libCppMicroServices.so" not in pathlib.Path(PROGRAM).read_bytes()
KILLS = int(os.environ.get("TESSERA_KILLS", "20"))


def tessera(*arguments, stdin=b"", **options):
    return subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=120, **options)


def records(output):
    return [json.loads(line) for line in output.decode().split("\n")[:-1]]


class ManyFiles(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, data=b"x\n"):
        path = os.path.join(os.fsencode(self.folder), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        return os.fsdecode(path)

    def parse(self, *arguments, status=0, **options):
        done = tessera("parse", "--format", "ndjson", *arguments, cwd=self.folder, **options)
        self.assertEqual(done.returncode, status, done.stderr)
        return done

    def files(self, *arguments, **options):
        return [record["file"] for record in records(self.parse(*arguments, **options).stdout)]

    def assertNoLeftovers(self):
        self.assertEqual([path.name for path in self.folder.rglob("*.partial")], [])


class Inputs(ManyFiles):
    def test_a_directory_is_its_files_in_byte_order_of_their_paths(self):
        for name in ("t/b.py", "t/a/z", "t/a.b", "t/a-", "t/a/b/c", "t/B"):
            self.write(name)
        expected = ["t/B", "t/a-", "t/a.b", "t/a/b/c", "t/a/z", "t/b.py"]
        self.assertEqual(self.files("t"), expected)
        self.assertEqual(self.files("t/"), expected)
        self.assertEqual(self.files("t/b.py", "t/a"), ["t/b.py", "t/a/b/c", "t/a/z"])

    def test_hidden_files_links_and_binary_files_of_a_directory_are_no_inputs(self):
        for name in ("t/a", "t/.b", "t/.c/d"):
            self.write(name)
        self.write("t/late", b"x" * 8191 + b"\0")
        self.write("t/later", b"x" * 8192 + b"\0")
        os.symlink("a", self.folder / "t/link")
        os.symlink("..", self.folder / "t/up")
        self.assertEqual(self.files("t"), ["t/a", "t/later"])
        # Named, each is one.
        self.assertEqual(self.files("t/.b", "t/late", "t/link"), ["t/.b", "t/late", "t/link"])

    def test_every_command_skips_binary_files_of_a_directory(self):
        self.write("t/text", b"# <@text:anchor#a>\n")
        binary = b"\0\n# <@text:ancor#b>\n"
        path = self.write("t/binary", binary)
        for arguments in (["parse", "--format", "html"], ["check", "--format", "json"], ["check", "--fix", "--format", "json"],
                          ["markers", "--format", "json"]):
            done = tessera(*arguments, "t", cwd=self.folder)
            self.assertEqual((done.returncode, done.stderr), (0, b""), arguments)
            self.assertIn(b"t/text", done.stdout)
            self.assertNotIn(b"t/binary", done.stdout)
        self.assertEqual(pathlib.Path(path).read_bytes(), binary)

    def test_the_files_of_a_directory_do_not_depend_on_the_user(self):
        self.write("home/.config/git/ignore", b"*.a\n")
        self.write("home/.gitconfig", b"[core]\nexcludesFile = ~/rules\n")
        self.write("home/rules", b"*.b\n")
        self.write("t/.gitignore", b"*.c\n")
        for name in ("t/x.a", "t/x.b", "t/x.c", "t/x.d"):
            self.write(name)
        home = {"HOME": str(self.folder / "home"), "XDG_CONFIG_HOME": str(self.folder / "home/.config")}
        environment = {**os.environ, **home}
        self.assertEqual(self.files("t", env=environment), ["t/x.a", "t/x.b", "t/x.d"])
        self.assertEqual(self.files("t", "--no-ignore", "--glob", "*.d", env=environment), ["t/x.d"])

    def test_gitignore_excludes_files_of_directories(self):
        self.write("t/.gitignore", b"*.o\nbuild/\n!keep.o\n")
        self.write("t/sub/.gitignore", b"/only\n")
        for name in ("t/a.o", "t/a.c", "t/keep.o", "t/build/x", "t/sub/only", "t/sub/deep/only", "t/sub/build/y"):
            self.write(name)
        self.assertEqual(self.files("t"), ["t/a.c", "t/keep.o", "t/sub/deep/only"])
        self.assertIn("t/build/x", self.files("t", "--no-ignore"))
        # Only the files of a work tree have a say above the directory.
        self.assertEqual(self.files("t/sub"), ["t/sub/build/y", "t/sub/deep/only"])
        (self.folder / "t/.git").mkdir()
        self.assertEqual(self.files("t/sub"), ["t/sub/deep/only"])
        # Who names an excluded directory wants its files.
        self.assertEqual(self.files("t/build"), ["t/build/x"])

    def test_gitignore_files_exclude_what_git_excludes(self):
        names = ["a", "b", "ab", "a.py", "b.py", "[a]", "!a", "#b", "a ", "x\\", "]", "-", "^", "Z", "a\tb", "é"]
        folders = ["", "a/", "d/", "d/a/", "d/e/", "d/e/b/"]
        patterns = ["a", "b", "ab", "*", "*.py", "?", "[ab]", "[!a].py", "a*", "\\[a]", "e", "b/", "*/", "d/a", "/a",
                    "**/b", "d/**", "a/**", "e/*.py", "/*/a", "**/e/a.py", "", "# a", "\\a", "a ", "b.py\r", "\\#b", "#b", "!a", "//", "/", "\\", "/\\", "\\/", "a\\ ",
                    "a\t", "\va", "\f", "a\0b"]
        pieces = ["a", "b", "*", "**", "/", "?", "[ab]", "[!a]", "[^b]", "[a-c]", "[]-a]", "[a-]", "[z-a]", "[[:alpha:]]",
                  "[[:upper:]-]", "[[:none:]]", "[[:]", "[\\]]", "[", "]", "\\", " ", "!", "d", "e", ".py", "**/", "/**", "é"]
        environment = {**os.environ, "HOME": str(self.folder), "GIT_CONFIG_NOSYSTEM": "1"}
        for folder, name in itertools.product(folders, names):
            if name + "/" not in [f.removeprefix(folder) for f in folders]:
                self.write(f"t/{folder}{name}")
        tree = self.folder / "t"
        subprocess.run(["git", "init", "-q", tree], env=environment, check=True, capture_output=True)
        rng = random.Random(4)


        def choose_pattern():
            if rng.random() < 0.5:
                return rng.choice(patterns)
            return "".join(rng.choice(pieces) for _ in range(rng.randrange(1, 6)))

        for case in range(150):
            for folder in folders:
                lines = [rng.choice(["", "", "!"]) + choose_pattern() for _ in range(rng.randrange(4))]
                (tree / folder / ".gitignore").write_text("\n".join(lines))
            shown = subprocess.run(["git", "ls-files", "-o", "-z", "--exclude-standard"], cwd=tree, env=environment,
                                   check=True, capture_output=True).stdout.decode().split("\0")
            expected = sorted(f"t/{path}" for path in shown if path and not path.endswith(".gitignore"))
            rules = {folder: (tree / folder / ".gitignore").read_text() for folder in folders}
            self.assertEqual(self.files("t"), expected, (case, rules))

    def test_a_gitignore_excludes_only_below_its_folder(self):
        for name in ("a/x", "b/x", "b/deep/x", "bb/x", "c/x", "c/deep/x", "d/x"):
            self.write(f"t/{name}")
        self.write("t/b/.gitignore", b"x\n")
        self.write("t/c/deep/.gitignore", b"x\n")
        self.assertEqual(self.files("t"), ["t/a/x", "t/bb/x", "t/c/x", "t/d/x"])
        self.assertEqual(self.files("t/b/deep"), ["t/b/deep/x"])
        (self.folder / "t/.git").mkdir()
        self.assertEqual(self.files("t/a", "t/b/deep", "t/d"), ["t/a/x", "t/d/x"])
        self.write("t/b/.gitignore", b"/deep/x\n")
        self.assertEqual(self.files("t/b/deep"), [])
        self.assertEqual(self.files("t/b"), ["t/b/x"])

    def test_the_last_line_of_a_gitignore_that_matches_counts(self):
        for name in ("a", "b"):
            self.write(f"t/{name}")
        for rules, names in ((b"\xef\xbb\xbfa", "b"), (b"*\n!b", "b"), (b"!b\n*", ""), (b"a\0b\n", "b"), (b"b\n\0a", "a")):
            self.write("t/.gitignore", rules)
            self.assertEqual(self.files("t"), [f"t/{name}" for name in names], rules)

    def test_a_gitignore_that_cannot_be_read_ends_the_run(self):
        self.write("t/s/a.py")
        rules = self.folder / "t/.gitignore"
        os.mkfifo(rules)
        self.assertIn("t/.gitignore: error: is not a regular file; correct it, or add --no-ignore",
                      self.parse("t", status=2).stderr.decode())
        self.assertEqual(self.files("t", "--no-ignore"), ["t/s/a.py"])
        (self.folder / "t/.git").mkdir()
        self.assertIn(f"{rules}: error: is not a regular file; ", self.parse("t/s", status=2).stderr.decode())
        rules.unlink()
        with socket.socket(socket.AF_UNIX) as name:
            name.bind(str(rules))
            self.assertIn("t/.gitignore: error: cannot be opened: ", self.parse("t", status=2).stderr.decode())
        rules.unlink()
        rules.mkdir()
        self.assertEqual(self.files("t"), ["t/s/a.py"])

    def test_a_gitignore_that_is_a_symbolic_link_is_not_read(self):
        self.write("rules", b"*\n")
        self.write("t/a.py")
        (self.folder / "t/.gitignore").symlink_to("../rules")
        self.assertEqual(self.files("t"), ["t/a.py"])

    def test_globs_choose_among_the_files_of_directories(self):
        for name in ("t/a.py", "t/b.c", "t/s/c.py", "t/s/d.c"):
            self.write(name)
        self.assertEqual(self.files("t", "--glob", "*.py"), ["t/a.py", "t/s/c.py"])
        self.assertEqual(self.files("t", "--glob", "!*.py"), ["t/b.c", "t/s/d.c"])
        self.assertEqual(self.files("t", "--glob", "*.py", "--glob", "!c.*"), ["t/a.py"])
        self.assertEqual(self.files("t", "--glob", "/s/*.c", "--glob", "**/a.py"), ["t/a.py", "t/s/d.c"])
        self.assertEqual(self.files("t", "--glob", "/s/*.c", "--glob", "!d.c"), [])
        self.assertEqual(self.files("t", "--glob", "/s/", "--glob", "!d.c"), ["t/s/c.py"])
        self.assertEqual(self.files("t/b.c", "--glob", "*.py"), ["t/b.c"])
        # A glob is no line of a file: it has no comments, and blanks at its end count.
        for name in ("#b", "!c", "d ", "e\nf"):
            self.write(f"u/{name}")
            self.assertEqual(self.files("u", "--glob", "\\!c" if name == "!c" else name), [f"u/{name}"])
            self.assertEqual(len(self.files("u", "--glob", "*", "--glob", "!" + name)),
                             len(self.files("u", "--glob", "!" + name)))
            self.assertNotIn(f"u/{name}", self.files("u", "--glob", "!" + name))
        for glob in ("", "!"):
            with self.subTest(glob=glob):
                self.assertIn("is not a glob", self.parse("t", "--glob", glob, status=2).stderr.decode())

    def test_a_run_that_finds_nothing_says_so(self):
        self.write("t/a.c")
        (self.folder / "none").mkdir()
        for arguments in (["t", "--glob", "*.py"], ["none"]):
            done = self.parse(*arguments)
            self.assertEqual((done.stdout, done.stderr.count(b"\n")), (b"", 1))
            self.assertIn(b"tessera: note: no file was found; ", done.stderr)
        # An empty list, or an empty part of a run, is not a mistake.
        self.assertEqual(self.parse("--files-from", "-").stderr, b"")
        self.assertEqual(self.parse("t", "--shard", "2/2").stderr, b"")

    def test_a_listed_file_that_is_replaced_is_not_followed(self):
        self.write("secret", b"secret\n")
        os.mkfifo(self.folder / "gate")
        replacements = {"f.py": lambda name: name.symlink_to("../secret"), "p.py": os.mkfifo}
        for name in replacements:
            self.write(f"d/{name}", b"x\n")

        def replace_files():
            # The gate is opened when the files are listed.
            with open(self.folder / "gate", "wb"):
                for name, replace in replacements.items():
                    (self.folder / "d" / name).unlink()
                    replace(self.folder / "d" / name)

        thread = threading.Thread(target=replace_files, daemon=True)
        thread.start()
        done = self.parse("-j", "1", "gate", "d", status=3)
        thread.join()
        self.assertNotIn(b"secret", done.stdout)
        for name in replacements:
            self.assertIn(f"d/{name}: error: cannot be read: it is not a regular file any more; ".encode(), done.stderr)

    def test_a_list_names_more_paths(self):
        for name in ("a", "b", "d/c"):
            self.write(name)
        self.write("list", b"b\n\nd\na")
        self.assertEqual(self.files("--files-from", "list"), ["b", "d/c", "a"])
        self.assertEqual(self.files("a", "--files-from", "-", stdin=b"b\n"), ["a", "b"])
        self.assertEqual(self.files("-0", "--files-from", "-", stdin=b"b\0a\0"), ["b", "a"])
        # As Windows writes it.
        self.write("list", b"\xef\xbb\xbfb\r\n\r\na\r\nd\r")
        self.assertEqual(self.files("--files-from", "list"), ["b", "a", "d/c"])
        self.write("return\r")
        self.assertEqual(self.files("-0", "--files-from", "-", stdin=b"return\r\0"), ["return\r"])
        self.write("two\nlines")
        self.assertEqual(self.files("-0", "--files-from", "-", stdin=b"two\nlines\0"), ["two\nlines"])
        # Without -0, a path would end at its first NUL.
        for text, line in ((b"b\0a\0", 1), (b"b\na\0", 2), (b"\n\0", 2)):
            done = self.parse("--files-from", "-", status=2, stdin=text)
            self.assertEqual(done.stdout, b"")
            self.assertIn(f"-:{line}:".encode(), done.stderr)
            self.assertIn(b"add -0", done.stderr)
        message = self.parse("-", "--files-from", "-", status=2).stderr
        self.assertIn(b"standard input is named 2 times", message)
        self.parse("--files-from", "missing", status=2)
        self.parse(status=2)
        self.parse("-0", "a", status=2)

    def test_shards_share_out_the_inputs(self):
        for number in range(7):
            self.write(f"t/{number}")
        # A binary file is not counted.
        self.write("t/1b", b"\0")
        self.assertEqual(self.files("t", "--shard", "1/3"), ["t/0", "t/3", "t/6"])
        self.assertEqual(self.files("t", "--shard", "3/3"), ["t/2", "t/5"])
        self.assertEqual(self.files("t/0", "--shard", "2/2"), [])
        self.assertEqual(self.files("t", "--shard", f"5/{2**64 - 1}"), ["t/4"])
        for text in ("0/1", "2/1", "1", "a/2", "1/0", "-1/2", "1/2/3", "/"):
            self.parse("t", "--shard", text, status=2)

    def test_the_files_that_a_run_writes_are_not_counted_in_shards(self):
        for name in "abcd":
            self.write(f"t/{name}")
        self.write("t/aa.r", b"")
        # In the second run, what the first one wrote is there.
        for _ in range(2):
            self.parse("t", "-o", "t/aa", "--record", "t/aa.r", "--shard", "1/2")
            whole = (self.folder / "t/aa").read_bytes()
            self.assertEqual([record["file"] for record in records(whole)], ["t/a", "t/c"])
        os.unlink(self.folder / "t/aa")
        os.unlink(self.folder / "t/aa.r")
        self.write("t/aa.partial", whole.splitlines(keepends=True)[0])
        self.parse("t", "-o", "t/aa", "--shard", "1/2", "--resume")
        self.assertEqual((self.folder / "t/aa").read_bytes(), whole)

    def test_names_of_any_bytes_survive(self):
        self.write(b"t/\xff\n\"", b"x\n")
        [record] = records(self.parse("t").stdout)
        self.assertEqual(record["file"], "t/\ufffd\n\"")
        self.assertEqual(base64.b64decode(record["fileBytes"]), b"t/\xff\n\"")
        self.assertEqual(list(record)[:3], ["schemaVersion", "file", "fileBytes"])

    def test_each_input_gives_one_record(self):
        self.write("bad", b"ab\xff\n")
        self.write("good")
        found = records(self.parse("bad", "missing", "good", status=3).stdout)
        self.assertEqual([record["file"] for record in found], ["bad", "missing", "good"])
        self.assertEqual(found[0]["error"], {
            "line": 1, "column": 3, "message": "byte 0xFF is not valid UTF-8",
            "remedy": "convert the file to UTF-8"})
        self.assertEqual(found[1]["error"]["line"], 0)
        self.assertNotIn("error", found[2])


class Workers(ManyFiles):
    def write_sources(self, count=60):
        for number in range(count):
            self.write(f"t/{number:03}", b"# %<@text:anchor#a>\nx = 1\n" * (number * number % 97))

    def test_the_output_does_not_depend_on_their_number(self):
        self.write_sources()
        self.write("t/050", b"\xff")
        self.write("t/large", b"a line of text\n" * 200_000)
        expected = self.parse("t", "-j", "1", status=3)
        for workers in ("2", "5"):
            done = self.parse("t", "-j", workers, status=3)
            self.assertTrue(done.stdout == expected.stdout)
            self.assertEqual(done.stderr, expected.stderr)
        for text in ("0", "x", "-1", "1025", "1.5"):
            self.parse("t", "-j", text, status=2)

    def test_a_lost_worker_loses_one_file(self):
        self.write_sources(20)
        expected = records(self.parse("t").stdout)
        reasons = {"segv": "was ended by signal 11 (Segmentation fault)", "abort": "was ended by signal 6 (Aborted)",
                   "exit": "exited with status 7"}
        for name, fault in (("007", "segv"), ("008", "abort"), ("019", "exit")):
            self.write(f"t/{name}", f"a\nb\n# %<@text:anchor#{fault}>\n".encode())
        for workers in ("2", "4"):
            done = self.parse("t", "-j", workers, "--bundle", FAULTY, status=3)
            found = records(done.stdout)
            self.assertEqual([record["file"] for record in found], [record["file"] for record in expected])
            for record, (name, fault) in zip((found[7], found[8], found[19]), (("007", "segv"), ("008", "abort"),
                                                                               ("019", "exit"))):
                error = record["error"]
                self.assertEqual((error["line"], error["column"]), (3, 1))
                self.assertIn(reasons[fault], error["message"])
                self.assertIn(f"t/{name}:3:1: error: ".encode(), done.stderr)
            for number in set(range(20)) - {7, 8, 19}:
                self.assertEqual(found[number], expected[number])

    def test_what_can_be_read_only_once_is_not_lost_with_a_later_file(self):
        self.write("a")
        self.write("crash", b"# %<@text:anchor#segv>\n")
        os.mkfifo(self.folder / "pipe")
        source = b"x = 1\n"
        [expected] = records(self.parse("-", stdin=source).stdout)
        for name in ("-", "pipe"):
            if name == "pipe":
                # It waits until the program opens the pipe.
                threading.Thread(target=(self.folder / "pipe").write_bytes, args=(source,), daemon=True).start()
            found = records(self.parse(name, "a", "crash", "a", "-j", "2", "--bundle", FAULTY, status=3, stdin=source).stdout)
            self.assertEqual([record["file"] for record in found], [name, "a", "crash", "a"])
            self.assertEqual(["error" in record for record in found], [False, False, True, False])
            self.assertEqual(found[0], expected | {"file": name})

    def test_a_single_file_that_another_bundle_crashes_on_is_reported(self):
        remedies = {"segv": (b"signal 11", b"; leave out the bundle "), "kill": (b"signal 9", b"; if there was not enough memory, ")}
        for fault, texts in remedies.items():
            self.write("a", f"# %<@text:anchor#{fault}>\n".encode())
            for command in ("parse", "check", "markers"):
                done = tessera(command, "a", "--bundle", FAULTY, cwd=self.folder)
                self.assertEqual(done.returncode, 3)
                self.assertIn(b"a:1:1: error: ", done.stderr)
                for text in texts:
                    self.assertIn(text, done.stderr)

    def test_a_file_that_takes_too_long_is_given_up(self):
        self.write_sources(6)
        self.write("t/003", b"# %<@text:anchor#hang>\n")
        for workers in ("1", "2"):
            done = self.parse("t", "-j", workers, "--timeout", "0.5", "--bundle", FAULTY, status=3)
            found = records(done.stdout)
            self.assertEqual(len(found), 6)
            self.assertEqual(["error" in record for record in found], [number == 3 for number in range(6)])
            self.assertIn("--timeout", found[3]["error"]["message"])
            self.assertIn(b": it took longer than --timeout allows; allow more time ", done.stderr)
        for text in ("0", "-1", "x", "1s", "nan", "inf"):
            self.parse("t", "--timeout", text, status=2)

    @unittest.skipIf(IS_SANITIZED, "a sanitizer makes the worker itself slow")
    def test_the_time_in_which_nobody_reads_the_output_is_not_part_of_the_time_of_a_file(self):
        # More output than the memory that each of so many workers shares, so that it has to wait.
        self.write("a", b"some ordinary line of code\n" * 40_000)
        expected = self.parse("a", "-j", "1").stdout
        command = [PROGRAM, "parse", "--format", "ndjson", "a", "-j", "32", "--timeout", "4"]
        with subprocess.Popen(command, cwd=self.folder, stdout=subprocess.PIPE) as process:
            # Only once there is output: the machine may be slow.
            read = process.stdout.read(1)
            time.sleep(5)
            read += process.stdout.read()
            self.assertEqual(process.wait(120), 0)
        self.assertEqual(read, expected)

    def start_with_a_waiting_file(self, *arguments, **options):
        """Starts a run in which a worker waits for the content of its second file."""
        self.write("a")
        os.mkfifo(self.folder / "fifo")
        process = subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", "-j", "2", "a", "fifo", *arguments],
                                   cwd=self.folder, stdout=subprocess.PIPE, start_new_session=True, **options)
        # The run has begun once there is the record of the first file.
        return process, process.stdout.readline()

    def finish_waiting_file(self, process, first):
        while process.poll() is None:
            try:
                writer = os.open(self.folder / "fifo", os.O_WRONLY | os.O_NONBLOCK)
            except OSError:  # No worker has opened it.
                time.sleep(0.01)
                continue
            os.write(writer, b"x\n")
            os.close(writer)
            break
        with process:
            rest = process.stdout.read()
        self.assertEqual([record["file"] for record in records(first + rest) if "error" not in record], ["a", "fifo"])
        self.assertEqual(process.returncode, 0)

    @unittest.skipIf(IS_SANITIZED, "a sanitizer makes the worker itself slow")
    def test_the_time_in_which_the_run_is_suspended_is_not_part_of_the_time_of_a_file(self):
        process, first = self.start_with_a_waiting_file("--timeout", "4")
        os.killpg(process.pid, signal.SIGSTOP)
        time.sleep(5)
        os.killpg(process.pid, signal.SIGCONT)
        self.finish_waiting_file(process, first)

    def test_an_ignored_signal_does_not_end_the_workers(self):
        process, first = self.start_with_a_waiting_file(
            preexec_fn=lambda: signal.signal(signal.SIGTERM, signal.SIG_IGN))
        os.killpg(process.pid, signal.SIGTERM)
        self.finish_waiting_file(process, first)

    def test_the_start_of_a_process_is_not_part_of_the_time_of_a_file(self):
        self.write_sources(4)
        environment = dict(os.environ, TESSERA_TEST_FAULT="start slowly")
        done = self.parse("t", "-j", "2", "--timeout", "1", "--bundle", FAULTY, env=environment)
        self.assertEqual(len(records(done.stdout)), 4)

    @unittest.skipIf(IS_SANITIZED, "a sanitizer reserves more address space than there is")
    def test_a_file_without_memory_for_it_is_lost_alone(self):
        self.write("a")
        self.write("b")
        # Its blocks are never written or read: the text of such a size cannot be allocated.
        self.write("huge")
        os.truncate(self.folder / "huge", 4 << 30)
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))
        for workers in ("1", "2"):
            done = self.parse("a", "huge", "b", "-j", workers, status=3, preexec_fn=limit)
            found = records(done.stdout)
            self.assertEqual([record["file"] for record in found], ["a", "huge", "b"])
            self.assertEqual(["error" in record for record in found], [False, True, False])
            self.assertIn("not enough memory", found[1]["error"]["message"])
            for command in ("check", "markers"):
                done = tessera(command, "a", "huge", "b", "-j", workers, cwd=self.folder, preexec_fn=limit)
                self.assertEqual(done.returncode, 3)
                self.assertIn(b"huge: error: there is not enough memory", done.stderr)

    @unittest.skipIf(IS_SANITIZED, "a sanitizer needs descriptors")
    def test_workers_that_cannot_be_started_are_too_many(self):
        self.write_sources(40)
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (32, 32))
        message = self.parse("t", "-j", "32", status=2, preexec_fn=limit).stderr
        self.assertEqual(message, b"tessera: error: a worker process cannot be started: Too many open files; "
                         b"run fewer workers (-j)\n")

    def test_what_ended_a_worker_is_told_though_the_caller_ignores_the_ends_of_its_processes(self):
        self.write("a", b"# %<@text:anchor#segv>\n")
        [record] = records(self.parse("a", "-j", "2", "--bundle", FAULTY, status=3,
                                      preexec_fn=lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN)).stdout)
        self.assertIn("signal 11", record["error"]["message"])

    def test_a_bundle_that_ends_the_process_when_it_starts_is_unusable(self):
        self.write_sources(3)
        environment = dict(os.environ, TESSERA_TEST_FAULT="abort")
        done = tessera("parse", "t", "--bundle", FAULTY, cwd=self.folder, env=environment)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"the bundles cannot be started", done.stderr)
        self.assertIn(b"signal 6", done.stderr)

    def test_a_bundle_that_cannot_be_used_is_reported_once(self):
        self.write_sources(4)
        done = self.parse("t", "-j", "4", "--bundle", "missing.so", status=2)
        self.assertEqual(done.stderr.count(b"missing.so: error: "), 1)
        self.assertEqual(done.stdout, b"")


REPORTS = (["check"], ["check", "--format", "json"], ["check", "--format", "sarif"], ["check", "--fix", "--dry-run"],
           ["check", "--fail-on", "warning"], ["markers"], ["markers", "--format", "json"])


class Reports(ManyFiles):
    """`check` and `markers` in several processes."""

    def write_marked(self):
        """Writes files with diagnostics of many kinds, some about two files."""
        for source in sorted((ROOT / "tests/golden/check").rglob("*.in")):
            self.write(f"t/{source.name}", source.read_bytes())
        for number in range(0, 40, 3):
            self.write(f"t/{number:02}.py", b"x = 1\n" * number + b"# <@text:anchr#a> \xf0\x9f\x8f\x86 <@output#b [0,1]>\n")
        # The partner of the marker in the first file is in the last one.
        self.write("t/00.py", b"# <@task#shared>\nx = 1\n")
        self.write("t/zz.py", b"y = 1\n# <@task#shared>\n")
        self.write("t/bad.py", b"x\n\xff")
        self.write("t/binary", b"\0")

    def run_report(self, *arguments, **options):
        return tessera(*arguments, cwd=self.folder, **options)

    def run_mixed(self, *arguments):
        """Returns what both standard streams get, in its order."""
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=120).stdout

    def test_the_report_does_not_depend_on_the_number_of_workers(self):
        self.write_marked()
        for command in REPORTS:
            expected = self.run_report(*command, "t", "missing", "-j", "1")
            self.assertEqual(expected.returncode, 3)
            self.assertIn(b"t/bad.py:2:1: error: ", expected.stderr)
            self.assertNotEqual(expected.stdout, b"")
            mixed = self.run_mixed(*command, "t", "missing", "-j", "1")
            for workers in ("2", "5"):
                self.assertTrue(self.run_mixed(*command, "t", "missing", "-j", workers) == mixed, command)
                done = self.run_report(*command, "t", "missing", "-j", workers)
                self.assertTrue(done.stdout == expected.stdout, command)
                self.assertEqual((done.stderr, done.returncode), (expected.stderr, 3))
        # The status without files that cannot be used.
        for name in ("t/bad.py", "missing"):
            (self.folder / name).unlink(missing_ok=True)
        for command, status in ((["check"], 1), (["check", "--fail-on", "never"], 0), (["markers"], 0)):
            for workers in ("1", "3"):
                self.assertEqual(self.run_report(*command, "t", "-j", workers).returncode, status)

    def test_their_inputs_are_chosen_like_those_of_parse(self):
        for name in ("t/a.py", "t/b.c", "t/c.py"):
            self.write(name)
        self.write("t/.gitignore", b"c.*\n")
        for command in ("check", "markers"):
            for arguments, expected in ((["t"], ["t/a.py", "t/b.c"]), (["t", "--glob", "*.py"], ["t/a.py"]),
                                        (["t", "--no-ignore"], ["t/a.py", "t/b.c", "t/c.py"]),
                                        (["t", "--shard", "2/2"], ["t/b.c"]),
                                        (["-0", "--files-from", "-"], ["t/c.py", "t/a.py"])):
                with self.subTest(command=command, arguments=arguments):
                    done = self.run_report(command, "--format", "json", *arguments, stdin=b"t/c.py\0t/a.py\0")
                    self.assertEqual((done.returncode, done.stderr), (0, b""))
                    self.assertEqual([record["file"] for record in records(done.stdout)], expected)

    def test_partners_in_other_files_are_found(self):
        self.write_marked()
        for workers in ("1", "3"):
            found = records(self.run_report("check", "--format", "json", "t", "-j", workers).stdout)
            [first] = [record["diagnostics"] for record in found if record["file"] == "t/00.py"]
            notes = [note["message"] for diagnostic in first for note in diagnostic["notes"]]
            self.assertIn("the other task marker with this id is at t/zz.py:2:1", notes)

    def test_a_lost_worker_is_a_problem_of_the_report(self):
        for number in range(8):
            self.write(f"t/{number}", b"x\n# <@task#a>\n")
        self.write("t/3", b"a\n# %<@text:anchor#segv>\n")
        for command in REPORTS:
            for workers in ("2", "4"):
                done = self.run_report(*command, "t", "-j", workers, "--bundle", FAULTY)
                self.assertEqual(done.returncode, 3)
                self.assertIn(b"t/3:2:1: error: ", done.stderr)
                self.assertIn(b"signal 11 (Segmentation fault)", done.stderr)
                # All the others are there.
                os.rename(self.folder / "t/3", self.folder / "aside")
                rest = self.run_report(*command, "t", "-j", workers)
                os.rename(self.folder / "aside", self.folder / "t/3")
                if "sarif" not in command:
                    self.assertEqual(done.stdout, rest.stdout)
                    continue
                [log] = json.loads(done.stdout)["runs"]
                [notification] = log["invocations"][0]["toolExecutionNotifications"]
                self.assertIn("signal 11", notification["message"]["text"])
                self.assertFalse(log["invocations"][0]["executionSuccessful"])
                self.assertEqual(log["results"], json.loads(rest.stdout)["runs"][0]["results"])

    def test_a_file_that_takes_too_long_is_given_up(self):
        self.write("t/a", b"# <@text:anchor>\n")
        self.write("t/b", b"# %<@text:anchor#hang>\n")
        for command in ("check", "markers"):
            done = self.run_report(command, "t", "-j", "1", "--timeout", "0.5", "--bundle", FAULTY)
            self.assertEqual(done.returncode, 3)
            self.assertIn(b"t/b:1:1: error: ", done.stderr)
            self.assertIn(b"--timeout", done.stderr)
            self.assertTrue(done.stdout.startswith(b"t/a:1:1: "), done.stdout)

    def test_the_report_is_written_to_a_file(self):
        self.write_marked()
        for command in REPORTS:
            expected = self.run_report(*command, "t")
            self.write("out", b"old")
            done = self.run_report(*command, "t", "-o", "out", "--bundle", "missing.so")
            self.assertEqual(((self.folder / "out").read_bytes(), done.returncode), (b"old", 2))
            done = self.run_report(*command, "t", "-o", "out")
            self.assertEqual((done.stdout, done.stderr, done.returncode), (b"", expected.stderr, expected.returncode))
            self.assertTrue((self.folder / "out").read_bytes() == expected.stdout)
            self.assertNoLeftovers()
        self.assertIn(b"is one of the inputs", self.run_report("check", "t/00.py", "-o", "t/00.py").stderr)

    def test_an_interruption_removes_what_cannot_be_continued(self):
        self.write("t/a", b"# <@text:anchr>\n" * 10)
        self.write("t/b", b"# %<@text:anchor#hang>\n")
        for command in (["check"], ["check", "--format", "sarif"], ["markers"]):
            process = subprocess.Popen([PROGRAM, *command, "t", "-o", "out", "--bundle", FAULTY], cwd=self.folder,
                                       start_new_session=True)
            while not (self.folder / "out.partial").exists():
                time.sleep(0.01)
            send_signal(process.pid, signal.SIGTERM, pathlib.Path(PROGRAM))
            self.assertEqual(process.wait(), 143)
            self.assertNoLeftovers()

    def test_an_interruption_of_fixes_leaves_whole_files_only(self):
        wrong, right = b"# <@text:anchr#a>\n", b"# <@text:anchor#a>\n"
        for _ in range(10):
            for number in range(500):
                self.write(f"t/{number}", wrong)
            process = subprocess.Popen([PROGRAM, "check", "--fix", "t"], cwd=self.folder, start_new_session=True,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            while process.poll() is None and not any(".tessera-" in name for name in os.listdir(self.folder / "t")):
                pass
            if process.returncode is None:
                send_signal(process.pid, signal.SIGINT, pathlib.Path(PROGRAM))
            process.wait()
            self.assertEqual(len(os.listdir(self.folder / "t")), 500)
            self.assertLessEqual({path.read_bytes() for path in (self.folder / "t").iterdir()}, {wrong, right})

    def test_files_are_fixed_in_one_process(self):
        self.write("a", b"# <@text:anchr#a>\n")
        self.write("b", b"# <@text:anchr#b>\n")
        done = self.run_report("check", "--fix", "a", "b", "a", "-j", "4")
        self.assertEqual(done.stderr, b"a: 1 fix made\nb: 1 fix made\n")
        self.assertEqual((self.folder / "a").read_bytes(), b"# <@text:anchor#a>\n")

    def test_a_report_of_records_is_resumed(self):
        self.write_marked()
        (self.folder / "t/00.py").unlink()
        for command in ("check", "markers"):
            whole = self.run_report(command, "--format", "json", "t", "missing")
            lines = whole.stdout.splitlines(keepends=True)
            for count in (0, 1, 5, len(lines) // 2, len(lines) - 1, len(lines)):
                self.write("out.partial", b"".join(lines[:count]) + b'{"half')
                done = self.run_report(command, "--format", "json", "t", "missing", "-o", "out", "--resume")
                self.assertEqual((done.returncode, done.stdout), (whole.returncode, b""), done.stderr)
                # Files without a record are tried again, and reported again.
                self.assertEqual(sorted(done.stderr.splitlines()), sorted(whole.stderr.splitlines()))
                self.assertTrue((self.folder / "out").read_bytes() == whole.stdout)
                os.unlink(self.folder / "out")
            self.write("out.partial", lines[1] + lines[0])
            done = self.run_report(command, "--format", "json", "t", "-o", "out", "--resume")
            self.assertEqual(done.returncode, 2)
            self.assertEqual((self.folder / "out.partial").read_bytes(), lines[1] + lines[0])
            for arguments in (["--format", "json", "--resume"], ["--resume", "-o", "out"]):
                self.assertEqual(self.run_report(command, "t", *arguments).returncode, 2)

    def test_a_resumed_report_knows_the_files_before(self):
        # Records: without a diagnostic, with a failure, with a marker whose partner is in the last file.
        self.write("t/a", b"x\n")
        self.write("t/b", b"# <@output#a [5,3]>\n")
        self.write("t/c", b"# <@task#a>\n")
        self.write("t/d", b"# <@task#a>\n")
        check = ["check", "--format", "json", "t"]
        whole = self.run_report(*check)
        self.assertIn(b"the other task marker with this id is at t/c:1:1", whole.stdout)
        lines = whole.stdout.splitlines(keepends=True)
        for count in range(5):
            self.write("out.partial", b"".join(lines[:count]))
            self.assertEqual(self.run_report(*check, "-o", "out", "--resume").returncode, 1)
            self.assertEqual((self.folder / "out").read_bytes(), whole.stdout)
            os.unlink(self.folder / "out")
        # The status also counts what is in the records that are kept.
        for name in ("t/c", "t/d"):
            os.unlink(self.folder / name)
        for options, status in (([], 1), (["--fail-on", "warning"], 1), (["--fail-on", "never"], 0)):
            self.write("out.partial", b"".join(lines[:2]))
            self.assertEqual(self.run_report(*check, *options, "-o", "out", "--resume").returncode, status)
            os.unlink(self.folder / "out")

    def test_names_that_differ_only_in_bytes_have_records_apart(self):
        names = [b"t/\xfe", b"t/\xff"]
        self.write(names[0], b"bad \xff")
        self.write(names[1], b"# <@output#a [5,3]>\n")
        for command in ("check", "markers"):
            whole = self.run_report(command, "--format", "json", "t")
            self.assertEqual(whole.returncode, 3)
            [record] = records(whole.stdout)
            self.assertEqual(record["file"], "t/\ufffd")
            self.assertEqual(base64.b64decode(record["fileBytes"]), names[1])
            self.assertEqual(list(record)[:3], ["schemaVersion", "file", "fileBytes"])
            # The file without a record is the first one, also for a resumed run.
            self.write("out.partial", whole.stdout)
            done = self.run_report(command, "--format", "json", "t", "-o", "out", "--resume")
            self.assertEqual((done.returncode, done.stderr), (3, whole.stderr))
            self.assertEqual((self.folder / "out").read_bytes(), whole.stdout)

    def test_a_file_that_has_a_record_only_now_ends_a_resumed_run(self):
        # A record so large that it is written in pieces.
        self.write("t/a", b"# <@output#a [0,1]>\n" * 5000)
        self.write("t/b")
        for command in ("check", "markers"):
            lines = self.run_report(command, "--format", "json", "t").stdout.splitlines(keepends=True)
            self.write("out.partial", lines[1])
            done = self.run_report(command, "--format", "json", "t", "-o", "out", "--resume")
            self.assertEqual(done.returncode, 2)
            self.assertIn(b"t/a: error: the interrupted run could not use this file", done.stderr)
            self.assertEqual((self.folder / "out.partial").read_bytes(), lines[1])


class LargeFiles(ManyFiles):
    """A document is written from the text of the file where its nodes say nothing else."""

    def write_mixed(self, generator, lines):
        """Writes a file in which plain parts, markers and tasks take turns."""
        text, task = [], 0
        while len(text) < lines:
            kind = generator.randrange(4)
            if kind == 0:
                text.append(generator.choice(["# <@text:anchor#a> x", "y # <@output#o [0,1]>", "z = 1 # %%\\ escaped",
                                              "# <@task#alone>", "\u00e9\U0001F3C6 # <@control:slider#c>"]))
            elif kind == 1:
                # Longer than a part, or shorter; another marker or task may be within it.
                task += 1
                text += [f"# <@task#{task}>", *["a = 1"] * generator.randrange(600),
                         generator.choice(["b", "# <@task#other>", "# <@output>"]), f"# <@task#{task}>"]
            else:
                text += [generator.choice(["x = 1", "", "\u00e9\U0001F3C6", "  # \\ @"])] * generator.randrange(900)
        return self.write("large", "\n".join(text[:lines]).encode())

    def test_the_document_is_the_same_as_from_its_nodes(self):
        generator = random.Random(7)
        for lines in (255, 256, 257, 512, 5000, 20000, 0):
            self.write_mixed(generator, lines)
            # No part is plain.
            if lines == 0: self.write("large", b"x\n# <@output#o [0,1]>\n" * 2000)
            for options in (["--format", "tree"], ["--format", "json"], ["--format", "ndjson"],
                            ["--format", "ndjson", "--omit-empty"]):
                done = tessera("parse", *options, "large", "-j", "1", cwd=self.folder)
                self.assertEqual((done.returncode, done.stderr), (0, b""))
                # With another bundle, all nodes are kept.
                whole = tessera("parse", *options, "large", "-j", "1", "--bundle", FAULTY, cwd=self.folder)
                self.assertTrue(done.stdout == whole.stdout, (lines, options))

    @unittest.skipIf(IS_SANITIZED, "a sanitizer needs more memory")
    def test_the_memory_is_a_few_times_the_file(self):
        line = b"    value = compute(value, other)  # x\n"
        size = len(line) * 500_000
        self.write("large", line * 500_000)
        for form in ("json", "ndjson"):
            command = [PROGRAM, "parse", "--format", form, "-j", "1", "-o", "out", "large"]
            process = subprocess.Popen(command, cwd=self.folder)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = status
            self.assertEqual(status, 0)
            self.assertLess(usage.ru_maxrss * 1024, 3.6 * size)


def screen(data):
    """Returns the rows that a terminal shows after `data`: text, CR, LF and "erase to the end of the row"."""
    rows, row, column = [], "", 0
    for part in re.findall(r"\x1b\[K|\r|\n|[^\r\n\x1b]+", data.decode()):
        if part == "\x1b[K":
            row = row[:column]
        elif part == "\r":
            column = 0
        elif part == "\n":
            rows, row, column = rows + [row], "", 0
        else:
            row, column = row[:column] + part + row[column + len(part):], column + len(part)
    return rows + [row]


class Terminal:
    """The program on a terminal; what is not given is standard output and standard error."""

    def __init__(self, folder, *arguments, **streams):
        self.reader, writer = pty.openpty()
        fcntl.ioctl(writer, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 100, 0, 0))
        environment = {**os.environ, "TERM": "xterm"}
        self.process = subprocess.Popen([PROGRAM, *arguments], cwd=folder, env=environment, start_new_session=True,
                                        **{"stdin": subprocess.DEVNULL, "stdout": writer, "stderr": writer, **streams})
        os.close(writer)
        self.data = b""

    def read_until(self, pattern):
        """Reads until the terminal got something that matches. A program that ends before ends the test."""
        while not re.search(pattern, self.data):
            self.data += os.read(self.reader, 4096)

    def finish(self):
        """Returns the rows at the end and the status."""
        try:
            while piece := os.read(self.reader, 4096):
                self.data += piece
        except OSError:  # The other side is closed.
            pass
        os.close(self.reader)
        return screen(self.data), self.process.wait()


class Progress(ManyFiles):
    def test_it_is_shown_on_a_terminal_and_gone_at_the_end(self):
        for number in range(3):
            self.write(f"t/{number}", b"x = 1\n# %<@text:anchor#a>\n")
        self.write("t/1", b"# %<@text:anchor#hang>\n")
        self.write("t/bad", b"\xff\n")
        command = ["parse", "t", "--bundle", FAULTY, "--timeout", "1"]
        expected, status = Terminal(self.folder, *command, "--progress", "never").finish()
        self.assertEqual(status, 3)
        self.assertEqual(sum("error: " in row for row in expected), 2)
        terminal = Terminal(self.folder, *command, "--progress", "always")
        # One file is done, one hangs.
        terminal.read_until(rb"\d %  [1-3] of 4 files  \d+ B of \d+ B")
        self.assertEqual(terminal.finish(), (expected, status))

    def test_it_is_shown_without_being_asked_for_when_it_takes_long(self):
        self.write("t/a", b"# %<@text:anchor#hang>\n")
        self.write("t/b")
        terminal = Terminal(self.folder, "parse", "t", "--bundle", FAULTY, "--timeout", "3")
        terminal.read_until(rb"\d of 2 files")
        self.assertEqual(terminal.finish()[1], 3)

    def test_an_interruption_removes_it(self):
        self.write("t/a", b"# %<@text:anchor#hang>\n")
        self.write("t/b")
        terminal = Terminal(self.folder, "parse", "t", "--bundle", FAULTY, "--progress", "always")
        terminal.read_until(rb"of 2 files")
        send_signal(terminal.process.pid, signal.SIGINT, pathlib.Path(PROGRAM))
        self.assertEqual(terminal.finish(), ([""], 130))

    def test_it_is_shown_of_one_process(self):
        self.write("a", b"x = 1\n")
        for source in ("-", "fifo"):
            os.mkfifo(self.folder / "fifo")
            terminal = Terminal(self.folder, "parse", "a", source, "-j", "1", "--progress", "always", "--color",
                                "never", stdin=subprocess.PIPE)
            terminal.read_until(rb"1 of 2 files")
            if source == "fifo": terminal.process.stdin.close()
            with (terminal.process.stdin if source == "-" else open(self.folder / "fifo", "wb")) as writer:
                writer.write(b"y = 1\n")
            self.assertEqual(terminal.finish(), (["a", "   1   x = 1", "", source, "   1   y = 1", ""], 0))
            os.unlink(self.folder / "fifo")

    def test_it_advances_within_a_file(self):
        self.write("large", b"a line of text\n" * 1_000_000)
        for workers in ("1", "2"):
            terminal = Terminal(self.folder, "parse", "large", "--format", "ndjson", "-j", workers, "--progress", "always",
                                stdout=subprocess.DEVNULL)
            terminal.finish()
            shown = [int(percent) for percent in re.findall(rb"(\d+) %", terminal.data)]
            self.assertEqual(shown, sorted(shown))
            self.assertEqual(screen(terminal.data), [""])
            self.assertTrue(any(0 < percent < 100 for percent in shown), shown)

    @unittest.skipIf(IS_SANITIZED, "a sanitizer reserves more address space than there is")
    @unittest.skipUnless(IS_EMBEDDED, "an installed framework ends the process if it cannot start a thread")
    def test_a_run_without_memory_for_it_goes_on(self):
        self.write("a")
        _, most = resource.getrlimit(resource.RLIMIT_STACK)
        if most != resource.RLIM_INFINITY and most < 1 << 30: self.skipTest("there are no large stacks")

        def limit():
            # A new thread has a stack of this size.
            resource.setrlimit(resource.RLIMIT_STACK, (1 << 30, most))
            resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))
        done = tessera("parse", "a", "-j", "1", "--progress", "always", cwd=self.folder, preexec_fn=limit)
        self.assertEqual((done.returncode, done.stdout), (0, tessera("parse", "a", cwd=self.folder).stdout))

    def test_elsewhere_it_is_lines(self):
        for name in ("t/a", "t/b", "t/c"):
            self.write(name)
        for workers in ("1", "2"):
            for arguments in (["t", "-j", workers], ["t", "-j", workers, "--progress", "never"]):
                self.assertEqual(self.parse(*arguments).stderr, b"")
            lines = self.parse("t", "-j", workers, "--progress", "always").stderr.decode().splitlines()
            self.assertRegex(lines[-1], r"^tessera: 3 files, 6 B in \d+ s")
            for line in lines[:-1]:
                self.assertRegex(line, r"^tessera: .*files")
        self.parse("t", "--progress", "auto", status=2)


class Outputs(ManyFiles):
    def test_a_file_is_complete_or_untouched(self):
        self.write("a")
        self.write("out", b"old")
        self.parse("a", "-o", "out", "--bundle", "missing.so", status=2)
        self.assertEqual((self.folder / "out").read_bytes(), b"old")
        self.assertNoLeftovers()
        expected = self.parse("a").stdout
        self.assertEqual(self.parse("a", "-o", "out").stdout, b"")
        self.assertEqual((self.folder / "out").read_bytes(), expected)
        self.assertEqual(self.parse("a", "-o", "-").stdout, expected)
        self.assertNoLeftovers()
        # Also one that lacks some documents.
        self.parse("a", "missing", "-o", "out", status=3)
        self.assertEqual(len(records((self.folder / "out").read_bytes())), 2)

    def test_a_link_is_followed_and_a_device_is_written(self):
        self.write("a")
        self.write("real", b"old")
        os.symlink("real", self.folder / "link")
        self.parse("a", "-o", "link")
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertEqual(len(records((self.folder / "real").read_bytes())), 1)
        self.parse("a", "-o", "/dev/null")
        self.assertIn(b"No space left", self.parse("a", "-o", "/dev/full", status=2).stderr)
        # Nothing is written through a link that somebody put in the way.
        self.write("other", b"mine")
        os.symlink("other", self.folder / "fresh.partial")
        self.parse("a", "-o", "fresh", status=2)
        self.assertEqual((self.folder / "other").read_bytes(), b"mine")

    def test_an_input_is_not_overwritten(self):
        self.write("t/a", b"source\n")
        for option, force in (("-o", ()), ("--record", ("--force",))):
            for name in ("t/a", "./t/../t/a"):
                done = self.parse("t/a", option, name, *force, status=2)
                self.assertIn(b"is one of the inputs", done.stderr)
            self.write("t/out.partial", b"")
            self.parse("t/out.partial", option, "t/out", status=2)
            os.unlink(self.folder / "t/out.partial")
        self.assertEqual((self.folder / "t/a").read_bytes(), b"source\n")
        # In a directory, the output of an earlier run is left out.
        for _ in range(2):
            self.parse("t", "-o", "t/out")
            self.assertEqual([record["file"] for record in records((self.folder / "t/out").read_bytes())], ["t/a"])

    def test_the_partial_file_of_a_link_is_no_input(self):
        self.write("t/a")
        self.write("t/real", b"old")
        self.write("t/real.partial")
        os.symlink("t/real", self.folder / "link")
        self.parse("t", "-o", "link")
        self.assertEqual([record["file"] for record in records((self.folder / "t/real").read_bytes())], ["t/a"])

    def test_a_standard_stream_in_the_directory_is_no_input(self):
        source = b"# <@text:ancor#a>\n"
        for name in ("t/a", "t/b"):
            self.write(name, source)
        for command in (["parse", "--format", "ndjson"], ["check", "--format", "json"], ["markers", "--format", "json"],
                        ["check", "--fix", "--format", "json"]):
            for options, expected in (((), ["t/a", "t/b"]), (("-j", "2"), ["t/a", "t/b"]), (("--shard", "1/2"), ["t/a"])):
                # The output is the first file in the directory, and the errors are between others.
                for name in ("t/0", "t/aa"):
                    self.write(name, source)
                os.link(self.folder / "t/aa", self.folder / "t/c")
                with open(self.folder / "t/0", "ab") as out, open(self.folder / "t/aa", "ab") as error:
                    subprocess.run([PROGRAM, *command, "t", *options], cwd=self.folder, stdout=out, stderr=error)
                written = (self.folder / "t/0").read_bytes()
                self.assertTrue(written.startswith(source), written)
                found = [record["file"] for record in records(written.removeprefix(source))]
                self.assertEqual(found, expected, (command, options))
                self.assertTrue((self.folder / "t/aa").read_bytes().startswith(source))
                for name in ("t/0", "t/aa", "t/c"):
                    os.unlink(self.folder / name)

    def test_the_log_does_not_depend_on_a_standard_stream_in_the_directory(self):
        self.write("t/a")
        expected = tessera("parse", "--format", "ndjson", "--trace", "t", cwd=self.folder).stdout
        for options in ((), ("-j", "2")):
            with open(self.folder / "t/0", "w+b") as out:
                subprocess.run([PROGRAM, "parse", "--format", "ndjson", "--trace", "t", *options], cwd=self.folder, stdout=out)
                out.seek(0)
                self.assertEqual(out.read(), expected)

    def test_a_file_that_standard_output_goes_to_keeps_what_it_has(self):
        self.write("a")
        self.write("log", b"header\n")
        expected = self.parse("a").stdout
        os.symlink("/dev/stdout", self.folder / "link")
        for name in ("/dev/stdout", "/proc/self/fd/1", "log", "link"):
            self.write("log", b"header\n")
            with open(self.folder / "log", "ab") as log:
                subprocess.run([PROGRAM, "parse", "--format", "ndjson", "a", "-o", name], cwd=self.folder, stdout=log, check=True)
                log.write(b"footer\n")
            self.assertEqual((self.folder / "log").read_bytes(), b"header\n" + expected + b"footer\n")
            self.assertNoLeftovers()
        for old in (b"header\n", expected, expected[:-1], b""):
            self.write("log", old)
            with open(self.folder / "log", "ab") as log:
                done = subprocess.run([PROGRAM, "parse", "--format", "ndjson", "a", "-o", "/dev/stdout", "--resume"],
                                      cwd=self.folder, stdout=log, stderr=subprocess.PIPE)
            self.assertEqual(done.returncode, 2)
            self.assertIn(b"standard output, which cannot be resumed", done.stderr)
            self.assertEqual((self.folder / "log").read_bytes(), old)

    def test_a_list_of_files_is_not_overwritten(self):
        self.write("a")
        self.write("list", b"a\n")
        self.write("other.partial", b"a\n")
        for option, name, list_name in (("-o", "list", "list"), ("-o", "./list", "list"), ("-o", "other", "other.partial"),
                                        ("--record", "list", "list"), ("-o", "list", "-")):
            with open(self.folder / "list", "rb") as stdin:
                done = subprocess.run([PROGRAM, "parse", "--files-from", list_name, option, name], cwd=self.folder,
                                      stdin=stdin, capture_output=True)
            self.assertEqual(done.returncode, 2, (option, name))
            self.assertIn(b"is the list of the inputs", done.stderr)
            self.assertEqual((self.folder / "list").read_bytes(), b"a\n")
        self.assertEqual((self.folder / "other.partial").read_bytes(), b"a\n")

    def test_two_outputs_do_not_share_a_partial_file(self):
        self.write("a")
        for old in ((), ("x",), ("x.partial",)):
            for name in old:
                self.write(name, b"")
            for output, recording in (("x.partial", "x"), ("./x.partial", "x"), ("x", "x.partial"), ("x", "./x")):
                done = self.parse("a", "-o", output, "--record", recording, status=2)
                self.assertIn(b"the file to record to is where the output goes", done.stderr)
                self.assertEqual(sorted(os.listdir(self.folder)), sorted({"a", *old}))
            for name in old:
                os.unlink(self.folder / name)

    def test_only_a_recording_is_replaced_by_a_recording(self):
        self.write("a")
        for mine in (b"mine\n", b'{"op":"add","path":"/a","value":1}\n'):
            self.write("other", mine)
            self.assertIn(b"is not a recording", self.parse("a", "--record", "other", status=2).stderr)
            self.assertEqual((self.folder / "other").read_bytes(), mine)
        self.parse("a", "--record", "other", "--force")
        first = (self.folder / "other").read_bytes()
        self.assertTrue(first.startswith(b'{"op":"document"}\n'))
        self.parse("a", "--record", "other")
        # A run that fails leaves the old one.
        self.parse("a", "--record", "other", "--bundle", "missing.so", status=2)
        self.assertEqual((self.folder / "other").read_bytes(), first)
        self.write("empty", b"")
        self.parse("a", "--record", "empty")
        self.assertNoLeftovers()

    def test_a_file_that_may_not_grow_is_an_error_of_the_output(self):
        self.write("large", b"a line of text\n" * 10_000)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
        for form in ("tree", "json", "html"):
            done = tessera("parse", "--format", form, "large", "-o", "out", cwd=self.folder, preexec_fn=limit)
            self.assertEqual(done.returncode, 2)
            self.assertIn(b"File too large; raise the limit", done.stderr)
            self.assertEqual(os.listdir(self.folder), ["large"])
        # Also where the output is standard output.
        with open(self.folder / "out", "wb") as out:
            done = subprocess.run([PROGRAM, "help", "parse"], stdout=out, stderr=subprocess.PIPE, preexec_fn=limit)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"File too large", done.stderr)

    def test_a_reader_that_is_gone_is_an_interruption(self):
        for number in range(100):
            self.write(f"t/{number}", b"\xff")
        for options in (("-j", "1"), ("-j", "2")):
            reader, writer = os.pipe()
            os.close(reader)
            done = subprocess.run([PROGRAM, "parse", "--format", "html", "-o", "out", "t", *options], cwd=self.folder,
                                  stderr=writer, timeout=120)
            os.close(writer)
            self.assertEqual(done.returncode, 128 + signal.SIGPIPE)
            self.assertEqual(os.listdir(self.folder), ["t"])

    def test_workers_that_wait_for_a_failed_output_are_ended(self):
        for number in range(16):
            self.write(f"t/{number}", b"a line of text\n" * 40_000)
        # A worker that waits for room in its slots does not read that the run is over. If each were given its
        # ten seconds to stop, the run would be ended by the limit of two minutes below.
        done = subprocess.run([PROGRAM, "parse", "t", "-j", "16", "--format", "ndjson", "-o", "/dev/full"],
                              cwd=self.folder, capture_output=True, timeout=120)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"No space left", done.stderr)

    def test_two_runs_do_not_mix(self):
        self.write("a")
        with open(self.folder / "out.partial", "wb") as held:
            fcntl.lockf(held, fcntl.LOCK_EX)
            self.assertIn(b"another run is writing it", self.parse("a", "-o", "out", status=2).stderr)
        # Nor do the two outputs of one.
        self.write("link", b"")
        os.symlink("link", self.folder / "other")
        for name in ("link", "./link", "other"):
            self.parse("a", "-o", "link", "--record", name, status=2)
            self.assertEqual((self.folder / "link").read_bytes(), b"")

    def test_a_pipe_that_does_not_block_gets_everything(self):
        self.write("a", b"a line of text\n" * 20_000)
        expected = self.parse("a").stdout
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        process = subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", "a"], stdout=writer, cwd=self.folder)
        os.close(writer)
        time.sleep(0.2)
        with open(reader, "rb") as pipe:
            self.assertTrue(pipe.read() == expected)
        self.assertEqual(process.wait(), 0)
        # Also messages, which need more room than a pipe has.
        for number in range(1500):
            self.write(f"bad/{number:04}", b"\xff")
        expected = self.parse("bad", status=3).stderr
        for workers in ("1", "2"):
            reader, writer = os.pipe()
            os.set_blocking(writer, False)
            process = subprocess.Popen([PROGRAM, "parse", "bad", "-j", workers], stderr=writer, cwd=self.folder)
            os.close(writer)
            time.sleep(0.5)
            with open(reader, "rb") as pipe:
                self.assertTrue(pipe.read() == expected)
            self.assertEqual(process.wait(), 3)

    def test_standard_input_that_does_not_block_is_waited_for(self):
        self.write("a")
        for arguments, data in ((["-"], b"x\n"), (["--files-from", "-"], b"a\n")):
            reader, writer = os.pipe()
            os.set_blocking(reader, False)
            process = subprocess.Popen([PROGRAM, "parse", *arguments], stdin=reader, stdout=subprocess.PIPE,
                                       cwd=self.folder)
            os.close(reader)
            time.sleep(0.2)
            with open(writer, "wb") as pipe:
                pipe.write(data)
            output, _ = process.communicate(timeout=120)
            self.assertIn(b"   1   x\n", output)
            self.assertEqual(process.returncode, 0)

    def start_and_interrupt(self, number, *arguments):
        """Interrupts a run that hangs at its second file, and returns its exit status."""
        self.write("t/a")
        self.write("t/b", b"# %<@text:anchor#hang>\n")
        partial = self.folder / "out.partial"
        partial.unlink(missing_ok=True)
        process = subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", "--bundle", FAULTY, "t", *arguments],
                                   cwd=self.folder, stdout=subprocess.PIPE, start_new_session=True)
        while process.poll() is None and not (partial.exists() and partial.stat().st_size != 0):
            time.sleep(0.01)
        send_signal(process.pid, number, pathlib.Path(PROGRAM))
        status = process.wait()
        # The pipe is closed when no process is left.
        process.stdout.read()
        process.stdout.close()
        return status

    def test_an_interruption_ends_all_processes(self):
        # In an interrupted run the complete records are kept for --resume.
        self.assertEqual(self.start_and_interrupt(signal.SIGINT, "-o", "out", "-j", "2"), 130)
        self.assertFalse((self.folder / "out").exists())
        self.assertEqual(len(records((self.folder / "out.partial").read_bytes())), 1)
        self.assertEqual(self.start_and_interrupt(signal.SIGTERM, "-o", "out", "-j", "2"), 143)
        self.assertEqual(self.start_and_interrupt(signal.SIGKILL, "-o", "out", "-j", "2"), -9)

    def test_a_run_that_waits_for_the_reader_of_a_pipe_can_be_interrupted(self):
        self.write("a")
        os.mkfifo(self.folder / "out")
        # Before it waits, the program may not react to signals yet.
        for delay in (0.2, 1, 5, 25):
            process = subprocess.Popen([PROGRAM, "parse", "-o", "out", "a"], cwd=self.folder)
            time.sleep(delay)
            process.terminate()
            try:
                status = process.wait(60)
            except subprocess.TimeoutExpired:
                process.kill()
                status = process.wait()
            if status != -signal.SIGTERM:
                break
        self.assertEqual(status, 128 + signal.SIGTERM)


class Resume(ManyFiles):
    def test_a_killed_run_is_continued(self):
        generator = random.Random(5)
        for number in range(120):
            self.write(f"t/{number:03}", b"x = 1\n" * generator.randrange(1500))
        self.write("t/060", b"\xff")
        self.write("t/061", b"\0")
        expected = self.parse("t", status=3).stdout
        begin = time.monotonic()
        self.parse("t", "-o", "whole", status=3)
        duration = time.monotonic() - begin
        continued = 0
        for number in range(KILLS):
            name = f"out{number}"
            workers = str(generator.choice((1, 2, 3)))
            process = subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", "t", "-o", name, "-j", workers],
                                       cwd=self.folder, stderr=subprocess.DEVNULL)
            time.sleep(generator.uniform(0, duration))
            process.kill()
            process.wait()
            partial = self.folder / (name + ".partial")
            continued += partial.exists() and 0 < partial.stat().st_size < len(expected)
            self.assertFalse((self.folder / name).exists() and partial.exists())
            self.parse("t", "-o", name, "-j", workers, "--resume", status=3)
            self.assertTrue((self.folder / name).read_bytes() == expected)
            self.assertNoLeftovers()
        print(f"{KILLS} runs killed, {continued} of them within their output", file=sys.stderr)
        self.assertGreater(continued, 0)

    def test_the_complete_records_are_kept(self):
        for name in ("t/a", "t/b", "t/c"):
            self.write(name)
        # A binary file is not the first one, though it is found first.
        self.write("t/0", b"\0")
        for options in (["--trace"], []):
            whole = self.parse("t", *options).stdout
            self.assertEqual(self.parse("t", "--shard", f"1/{2**64 - 1}", *options).stdout, whole.splitlines(keepends=True)[0])
            lines = whole.splitlines(keepends=True)
            for kept in (b"", lines[0], lines[0] + lines[1][:-1], lines[0] + lines[1], whole, whole + b"{"):
                self.write("out.partial", kept)
                self.parse("t", "-o", "out", "--resume", *options)
                self.assertEqual((self.folder / "out").read_bytes(), whole)
                os.unlink(self.folder / "out")
        # Without --resume they are not.
        self.write("out.partial", lines[1])
        self.parse("t", "-o", "out")
        self.assertEqual((self.folder / "out").read_bytes(), whole)

    def test_a_complete_output_is_left_as_it_is(self):
        for name in ("t/a", "t/c"):
            self.write(name)
        self.write("t/b", b"\xff")
        # Without a partner, in the last file: a resumed run would write its record again.
        self.write("t/d", b"# <@task#a>\n")
        # Only parse has a record of a file that cannot be used.
        cases = ((["parse", "--format", "ndjson"], 3), (["check", "--format", "json"], 1), (["markers", "--format", "json"], 0))
        for command, status in cases:
            self.assertEqual(tessera(*command, "t", "-o", "out", cwd=self.folder).returncode, 3)
            before = (self.folder / "out").stat()
            done = tessera(*command, "t", "-o", "out", "--resume", cwd=self.folder)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (status, b"", b""))
            after = (self.folder / "out").stat()
            self.assertEqual((after.st_ino, after.st_mtime_ns), (before.st_ino, before.st_mtime_ns))
            self.assertNoLeftovers()
        os.unlink(self.folder / "t/b")
        for options, status in (([], 1), (["--fail-on", "warning"], 1), (["--fail-on", "never"], 0)):
            command = ["check", "--format", "json", "t", "-o", "out", *options]
            self.assertEqual(tessera(*command, cwd=self.folder).returncode, status)
            self.assertEqual(tessera(*command, "--resume", cwd=self.folder).returncode, status)

    def test_a_complete_output_of_other_inputs_is_left_as_it_is(self):
        for name in "abc":
            self.write(name)
        for command in (["parse", "--format", "ndjson"], ["check", "--format", "json"], ["markers", "--format", "json"]):
            tessera(*command, "a", "b", "-o", "out", cwd=self.folder)
            for content in ((self.folder / "out").read_bytes(), b"x", b""):
                self.write("out", content)
                for inputs in (["a"], ["b", "a"], ["a", "c"], ["a", "b", "c"]):
                    done = tessera(*command, *inputs, "-o", "out", "--resume", cwd=self.folder)
                    self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""), inputs)
                    self.assertEqual((self.folder / "out").read_bytes(), content)

    def test_a_link_is_followed_to_the_records(self):
        for name in ("a", "b"):
            self.write(name)
        whole = self.parse("a", "b").stdout
        (self.folder / "real").mkdir()
        os.symlink("real/out", self.folder / "link")
        self.write("real/out", b"old")
        self.write("real/out.partial", whole.splitlines(keepends=True)[0])
        self.parse("a", "b", "-o", "link", "--resume")
        self.assertEqual((self.folder / "real/out").read_bytes(), whole)
        self.assertTrue((self.folder / "link").is_symlink())
        self.assertNoLeftovers()

    def test_what_is_no_file_has_no_records(self):
        self.write("a")
        self.assertEqual(self.parse("a", "-o", "/dev/stdout", "--resume").stdout, self.parse("a").stdout)
        self.parse("a", "-o", ".", "--resume", status=2)

    def test_an_interruption_while_the_file_is_opened_keeps_the_records(self):
        for name in ("t/a", "t/b"):
            self.write(name)
        kept = self.parse("t").stdout.splitlines(keepends=True)[0]
        self.write("out.partial", kept)
        signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGIO})
        self.addCleanup(signal.pthread_sigmask, signal.SIG_UNBLOCK, {signal.SIGIO})
        with open(self.folder / "out.partial", "rb") as leased:
            # Whoever opens the file waits until the lease is given back; this process is told.
            try:
                fcntl.fcntl(leased, fcntl.F_SETLEASE, fcntl.F_RDLCK)
            except OSError as error:
                self.skipTest(f"this file system has no leases: {error}")
            process = subprocess.Popen([PROGRAM, "parse", "--format", "ndjson", "t", "-o", "out", "--resume"],
                                       cwd=self.folder, start_new_session=True, stdout=subprocess.DEVNULL)
            self.assertIsNotNone(signal.sigtimedwait({signal.SIGIO}, 60))
            send_signal(process.pid, signal.SIGINT, pathlib.Path(PROGRAM))
            fcntl.fcntl(leased, fcntl.F_SETLEASE, fcntl.F_UNLCK)
            self.assertEqual(process.wait(), 130)
        self.assertEqual((self.folder / "out.partial").read_bytes(), kept)

    def test_records_of_another_run_are_refused(self):
        for name in ("t/a", "t/b"):
            self.write(name)
        lines = self.parse("t").stdout.splitlines(keepends=True)
        for kept in (lines[1], lines[0] + lines[0], lines[0] + lines[1] + lines[1], b"{}\n", b"\n"):
            self.write("out.partial", kept)
            done = self.parse("t", "-o", "out", "--resume", status=2)
            self.assertIn(b"out.partial: error: record ", done.stderr)
            self.assertEqual((self.folder / "out.partial").read_bytes(), kept)

    def test_records_of_another_command_are_refused(self):
        self.write("a", b"# <@text:anchr>\n")
        commands = (["parse", "--format", "ndjson"], ["parse", "--format", "ndjson", "--omit-empty"],
                    ["check", "--format", "json"], ["markers", "--format", "json"])
        for written in commands:
            kept = tessera(*written, "a", cwd=self.folder).stdout
            for resumed in commands:
                self.write("out.partial", kept)
                done = tessera(*resumed, "a", "-o", "out", "--resume", cwd=self.folder)
                if resumed[0] == written[0]:
                    self.assertEqual((self.folder / "out").read_bytes(), kept)
                    os.unlink(self.folder / "out")
                    continue
                self.assertEqual(done.returncode, 2)
                self.assertIn(b"out.partial: error: record 1 does not belong to input \"a\"", done.stderr)
                self.assertEqual((self.folder / "out.partial").read_bytes(), kept)

    def test_an_input_without_a_name_is_kept_too(self):
        self.write("a")
        for options in ([], ["--omit-empty"]):
            whole = self.parse("a", "", "a", *options, status=3).stdout
            self.assertEqual([record["file"] for record in records(whole)], ["a", "", "a"])
            self.write("out.partial", b"".join(whole.splitlines(keepends=True)[:2]))
            self.parse("a", "", "a", *options, "-o", "out", "--resume", status=3)
            self.assertEqual((self.folder / "out").read_bytes(), whole)
            os.unlink(self.folder / "out")

    def test_it_is_for_records_in_a_file(self):
        self.write("a")
        self.parse("a", "--resume", status=2)
        done = tessera("parse", "a", "--format", "json", "-o", "out", "--resume", cwd=self.folder)
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"--format ndjson", done.stderr)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]])
