#!/usr/bin/env python3
"""Symbolic links, "..", second names and folders that are replaced: what is written stays where it was named.

links_test.py PROGRAM
"""
import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
DEADLINE = 120
DAMAGED = "x = 1  # <@outputs#a [0,1]>\n"
FIXED = "x = 1  # <@output#a [0,1]>\n"
VICTIM = "y = 2  # <@outputs#a [0,1]>\n"


def fill(pipe):
    """Writes to a pipe until it is full. Returns the number of bytes."""
    os.set_blocking(pipe, False)
    count = 0
    with contextlib.suppress(BlockingIOError):
        while True:
            count += os.write(pipe, b".")
    os.set_blocking(pipe, True)
    return count


class Links(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        # Nothing that is named leads here.
        self.outside = self.folder / "outside"
        self.write("outside/victim.py", VICTIM)
        (self.folder / "work").mkdir()
        self.work = self.folder / "work"

    def tearDown(self):
        self.assertEqual({path.name: path.read_text() for path in self.outside.iterdir()}, {"victim.py": VICTIM})

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def run_in_work(self, *arguments, status=0):
        done = subprocess.run([PROGRAM, *arguments], cwd=self.work, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=DEADLINE)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stderr

    def start(self, *arguments, **options):
        options = {"stderr": subprocess.PIPE, **options}
        process = subprocess.Popen([PROGRAM, *arguments], cwd=self.work, text=True, **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def await_file(self, path, process):
        self.wait_until(path.exists, process)

    def await_text(self, path, text, process):
        self.wait_until(lambda: path.read_text() == text, process)

    def wait_until(self, condition, process):
        deadline = time.monotonic() + DEADLINE
        while not condition():
            self.assertIsNone(process.poll())
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.005)

    def swap(self, path, target):
        """Moves a folder away and puts a link in its place."""
        os.rename(path, path.with_name("moved"))
        os.symlink(target, path)


class Fixes(Links):
    def test_links_in_a_folder_are_not_fixed(self):
        self.write("work/in/a.py", DAMAGED)
        os.symlink("../../outside/victim.py", self.work / "in" / "file.py")
        os.symlink("../../outside", self.work / "in" / "folder")
        self.assertIn("in/a.py: 1 fix made", self.run_in_work("check", "--fix", "in"))
        self.assertEqual((self.work / "in" / "a.py").read_text(), FIXED)
        self.assertTrue((self.work / "in" / "file.py").is_symlink())

    def test_a_file_with_a_second_name_is_not_fixed(self):
        os.link(self.outside / "victim.py", self.work / "a.py")
        self.assertIn("hard links", self.run_in_work("check", "--fix", "a.py", status=3))

    def test_a_link_that_is_named_is_followed(self):
        self.write("work/real/a.py", DAMAGED)
        os.symlink("real/a.py", self.work / "link.py")
        os.symlink("real", self.work / "linked")
        self.run_in_work("check", "--fix", "link.py")
        self.assertEqual((self.work / "real" / "a.py").read_text(), FIXED)
        self.write("work/real/a.py", DAMAGED)
        self.run_in_work("check", "--fix", "linked")
        self.assertEqual((self.work / "real" / "a.py").read_text(), FIXED)
        self.assertTrue((self.work / "link.py").is_symlink())

    def fix_after(self, change, *paths):
        """Fixes the folder `in` and other paths, and calls `change` after the program has listed it. Returns the messages."""
        self.write("work/in/0.py", DAMAGED)
        reader, writer = os.pipe()
        filling = fill(writer)
        process = self.start("check", "--fix", "in", *paths, stdout=subprocess.DEVNULL, stderr=writer)
        os.close(writer)
        # The program has fixed the first file and waits until its message can be written.
        self.await_text(self.work / "in" / "0.py", FIXED, process)
        change()
        with open(reader, encoding="utf-8") as stream:
            messages = stream.read()[filling:]
        self.assertEqual(process.wait(DEADLINE), 3, messages)
        return messages

    def test_a_folder_that_becomes_a_link_is_not_followed(self):
        self.write("work/in/below/victim.py", DAMAGED)
        messages = self.fix_after(lambda: self.swap(self.work / "in" / "below", self.outside))
        self.assertIn("in/below/victim.py: error: cannot be read: it is not a regular file any more", messages)
        self.assertEqual((self.work / "in" / "moved" / "victim.py").read_text(), DAMAGED)

    def test_a_found_file_that_is_also_named_is_not_followed(self):
        for name in ("named.py", "in/below/victim.py"):
            with self.subTest(name):
                shutil.rmtree(self.work / "in", ignore_errors=True)
                self.write("work/in/below/victim.py", DAMAGED)
                if not (self.work / name).exists():
                    os.symlink("in/below/victim.py", self.work / name)
                messages = self.fix_after(lambda: self.swap(self.work / "in" / "below", self.outside), name)
                self.assertIn("in/below/victim.py: error: cannot be read: it is not a regular file any more", messages)
                self.assertEqual((self.work / "in" / "moved" / "victim.py").read_text(), DAMAGED)

    def test_a_file_that_becomes_a_link_is_not_followed(self):
        def swap():
            os.unlink(self.work / "in" / "victim.py")
            os.symlink(self.outside / "victim.py", self.work / "in" / "victim.py")
        self.write("work/in/victim.py", DAMAGED)
        self.assertIn("in/victim.py: error: cannot be read: it is not a regular file any more", self.fix_after(swap))


class Outputs(Links):
    """`-o FILE` and `--record FILE`, which write FILE.partial first."""

    OPTIONS = (("-o",), ("--format", "ndjson", "-o"), ("-o", "other", "--record"))

    def setUp(self):
        super().setUp()
        self.write("work/a.py", "x\n")
        (self.work / "out").mkdir()

    def refuse(self, message):
        for options in self.OPTIONS:
            self.assertIn(message, self.run_in_work("parse", "a.py", *options, "out/file", status=2))
            self.assertFalse((self.work / "out" / "file").exists())

    def test_a_link_in_the_way_is_not_followed(self):
        os.symlink(self.outside / "victim.py", self.work / "out" / "file.partial")
        self.refuse("is not the incomplete output of another run")
        os.unlink(self.work / "out" / "file.partial")
        os.symlink(self.outside / "new", self.work / "out" / "file.partial")
        self.refuse("is not the incomplete output of another run")

    def test_a_second_name_in_the_way_is_not_written(self):
        os.link(self.outside / "victim.py", self.work / "out" / "file.partial")
        self.refuse("is not the incomplete output of another run")

    def test_a_pipe_in_the_way_is_not_written(self):
        os.mkfifo(self.work / "out" / "file.partial")
        self.refuse("is not the incomplete output of another run")

    def test_a_folder_in_the_way_is_not_removed(self):
        (self.work / "out" / "file.partial").mkdir()
        self.refuse("is not the incomplete output of another run")

    def test_a_folder_that_becomes_a_link_is_not_followed(self):
        for options in self.OPTIONS:
            with self.subTest(options):
                process = self.start("parse", "-", *options, "out/file", stdin=subprocess.PIPE)
                self.await_file(self.work / "out" / "file.partial", process)
                self.swap(self.work / "out", self.outside)
                messages = process.communicate("x\n", timeout=DEADLINE)[1]
                self.assertEqual((process.returncode, messages), (0, ""))
                self.assertTrue((self.work / "moved" / "file").read_text())
                os.unlink(self.work / "out")
                os.rename(self.work / "moved", self.work / "out")
                os.unlink(self.work / "out" / "file")

    def test_an_interruption_removes_nothing_elsewhere(self):
        victim = self.write("elsewhere/file.partial", "kept")
        process = self.start("parse", "-", "-o", "out/file", stdin=subprocess.PIPE)
        self.await_file(self.work / "out" / "file.partial", process)
        self.swap(self.work / "out", victim.parent)
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(DEADLINE), 128 + signal.SIGTERM)
        self.assertEqual(victim.read_text(), "kept")
        self.assertEqual([*(self.work / "moved").iterdir()], [])

    def test_a_link_that_is_named_is_followed(self):
        os.symlink("../real", self.work / "out" / "file")
        self.write("work/real", "old")
        self.run_in_work("parse", "a.py", "-o", "out/file")
        self.assertTrue((self.work / "out" / "file").is_symlink())
        self.assertIn("a.py", (self.work / "real").read_text())

    def test_a_link_that_leads_nowhere_is_replaced(self):
        os.symlink(self.outside / "new", self.work / "out" / "file")
        self.run_in_work("parse", "a.py", "-o", "out/file")
        self.assertFalse((self.work / "out" / "file").is_symlink())
        self.assertIn("a.py", (self.work / "out" / "file").read_text())

    def test_dots_in_a_name_lead_where_the_user_says(self):
        (self.work / "in").mkdir()
        self.run_in_work("parse", "in/../a.py", "-o", "in/../out/../result")
        self.assertTrue((self.work / "result").is_file())

    def test_a_new_bundle_is_written_into_a_new_folder_only(self):
        os.symlink(self.outside, self.work / "linked")
        self.assertIn("is not empty", self.run_in_work("new-bundle", "some_name", "linked", status=2))
        os.symlink(self.outside / "none", self.work / "dangling")
        self.assertIn("cannot be made", self.run_in_work("new-bundle", "some_name", "dangling", status=2))


if __name__ == "__main__":
    unittest.main()
