#!/usr/bin/env python3
"""Tests run_examples.py with small pages."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).with_name("run_examples.py")


class RunExamples(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.page = pathlib.Path(holder.name) / "page.md"

    def run_page(self, text, *options):
        self.page.write_text(text, encoding="utf-8")
        return subprocess.run([sys.executable, SCRIPT, "/nowhere", self.page, *options],
                              capture_output=True, text=True, timeout=60)

    def assertFails(self, text, message):
        done = self.run_page(text)
        self.assertEqual(done.returncode, 1)
        self.assertIn(message, done.stdout + done.stderr)

    def test_output_as_shown_passes(self):
        page = "```console\n$ cat > f <<'END'\n> a\n> END\n$ cat f; echo b >&2\na\nb\n```\n```console\n$ cat f\na\n```\n"
        done = self.run_page(page)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("3 commands", done.stdout)

    def test_a_command_may_have_an_empty_line(self):
        done = self.run_page("```console\n$ cat <<'END'\n> a\n>\n> b\n> END\na\n\nb\n```\n")
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_other_output_fails(self):
        self.assertFails("```console\n$ echo a\nb\n```\n", "--- shown\nb\n--- written\na")
        self.assertFails("```console\n$ echo a\n```\n", "--- written\na")
        self.assertFails("```console\n$ true\na\n```\n", "--- shown\na")

    def test_a_page_without_commands_fails(self):
        self.assertFails("text\n```\n$ true\n```\n", "no console block")

    def test_a_block_that_begins_with_output_fails(self):
        self.assertFails("```console\na\n$ true\n```\n", "must begin with a command")

    def test_a_json_block_must_be_json(self):
        self.assertFails("```json\n{\"a\":}\n```\n```console\n$ true\n```\n", "is not JSON")

    def test_update_writes_the_output_into_the_page(self):
        done = self.run_page("a\n```console\n$ echo x\nold\n```\nb\n", "--update")
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.page.read_text(), "a\n```console\n$ echo x\nx\n```\nb\n")


if __name__ == "__main__":
    unittest.main()
