#!/usr/bin/env python3
"""Tests `tessera view`: who is answered, and that the page follows the files.

view_test.py PROGRAM
"""
import contextlib
import ctypes
import http.client
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.parse

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent))
from signals import send_signal

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
# How long something may take on a loaded machine under a sanitizer.
DEADLINE = 60

PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH = 24, 1, 2


def drop_rights():
    """Lets the user root be refused like any other."""
    for capability in (CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH):
        ctypes.CDLL(None).prctl(PR_CAPBSET_DROP, capability, 0, 0, 0)


class View:
    """A running `tessera view`; use it in a with statement."""

    def __init__(self, folder, *arguments, **options):
        """`says` is an expression that matches what the program writes to standard error."""
        self.folder, self.arguments, self.options = folder, arguments, options
        self.says = options.pop("says", "")

    def __enter__(self):
        self.process = subprocess.Popen([PROGRAM, "view", "--no-browser", *self.arguments], cwd=self.folder,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                        start_new_session=True, **self.options)
        self.address = self.read_line(self.process.stdout).rstrip("\n")
        address = urllib.parse.urlsplit(self.address)
        self.authority, self.port, self.path = address.netloc, address.port, address.path
        return self

    def __exit__(self, kind, *_):
        self.process.kill()
        errors = self.process.communicate()[1]
        # A sanitizer would write what it finds.
        if kind is None and errors and not re.fullmatch(self.says, errors):
            raise AssertionError(errors)

    def request(self, path, method="GET", **headers):
        """Returns the status and the text of an answer. An underscore in the name of a header is a hyphen."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=DEADLINE)
        connection.putrequest(method, path, skip_host=True)
        for name, value in {"Host": self.authority, **headers}.items():
            if value is not None:
                connection.putheader(name.replace("_", "-"), value)
        connection.endheaders()
        answer = connection.getresponse()
        text = answer.read().decode()
        self.headers = dict(answer.getheaders())
        connection.close()
        return answer.status, text

    def page(self):
        """Returns the body of the page."""
        status, text = self.request(self.path)
        assert status == 200, (status, text)
        return text[text.index("<body"):]

    def events(self):
        """Opens the page as far as the server can see, and returns the stream of events as a file."""
        connection = socket.create_connection(("127.0.0.1", self.port), timeout=DEADLINE)
        connection.sendall(f"GET {self.path}events HTTP/1.1\r\nHost: {self.authority}\r\n\r\n".encode())
        return connection

    def message(self):
        """Waits for a message, and returns it."""
        return self.read_line(self.process.stderr)

    def read_line(self, stream):
        """Waits for a line, and returns it: what came of it if the program ends or does not write one in time."""
        deadline = threading.Timer(DEADLINE, self.process.kill)
        deadline.start()
        line = stream.readline()
        deadline.cancel()
        return line

    def await_end(self, status=0):
        """Waits until the program ends, and checks its status."""
        if self.process.wait(DEADLINE) != status:
            raise AssertionError(f"status {self.process.returncode}: {self.process.stderr.read()}")

    def await_page(self, expected):
        """Waits until the page contains a text, or no longer does if it starts with an exclamation mark."""
        deadline = time.monotonic() + DEADLINE
        while time.monotonic() < deadline:
            page = self.page()
            if (expected[1:] not in page) if expected.startswith("!") else (expected in page):
                return page
            time.sleep(0.01)
        raise AssertionError(f"the page did not come to {expected!r}: {page}")


class Case(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text="x = 1\n"):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())


class Answers(Case):
    def test_the_page_is_that_of_parse(self):
        self.write("a.py", "x = 1  # <@output#o [0,1]>\n# <@task#lost>\n")
        self.write("b.py")
        expected = subprocess.run([PROGRAM, "parse", "--format", "html", "a.py", "b.py"], cwd=self.folder,
                                  capture_output=True, check=True, text=True).stdout
        with View(self.folder, "a.py", "b.py") as view:
            status, page = view.request(view.path)
        self.assertEqual(status, 200)
        self.assertEqual(page[page.index("<body"):], expected[expected.index("<body"):])
        self.assertNotIn("<script", expected)
        self.assertEqual(page.count("<script"), 1)
        self.assertIn("connect-src 'self'", page)

    def test_nobody_else_is_answered(self):
        self.write("a.py", "secret\n")
        with View(self.folder, "a.py") as view:
            token = view.path.strip("/")
            other = ("0" if token[0] != "0" else "1") + token[1:]
            self.assertRegex(token, "^[0-9a-f]{32}$")
            refused = [("/", {}), ("/a.py", {}), (f"/{other}/", {}), (f"/{token[:-1]}/", {}), (f"//{token}/", {}),
                       (f"/{token.upper()}x/", {}), ("/?" + token, {})]
            refused += [(view.path, headers) for headers in (
                {"Host": None}, {"Host": f"localhost:{view.port}"}, {"Host": "127.0.0.1"}, {"Host": "evil.example"},
                {"Host": f"evil.example:{view.port}"}, {"Origin": "http://evil.example"}, {"Origin": "null"},
                {"Origin": f"https://{view.authority}"}, {"Sec_Fetch_Site": "cross-site"},
                {"Sec_Fetch_Site": "same-site"})]
            for path, headers in refused:
                for resource in (path, path + "events"):
                    for method in ("GET", "POST"):
                        self.assertEqual(view.request(resource, method, **headers), (403, ""), (resource, headers))
            answered = [{}, {"Origin": f"http://{view.authority}"}, {"Sec_Fetch_Site": "same-origin"},
                        {"Sec_Fetch_Site": "none"}]
            for headers in answered:
                self.assertEqual(view.request(view.path, **headers)[0], 200, headers)
            for method in ("POST", "PUT", "DELETE", "OPTIONS"):
                self.assertEqual(view.request(view.path, method), (405, ""))
            self.assertEqual(view.request(view.path + "a.py"), (404, ""))
            with self.assertRaises(ConnectionRefusedError):
                socket.create_connection(("127.0.0.2", view.port), timeout=DEADLINE)

    def test_a_browser_is_told_to_keep_it_to_itself(self):
        self.write("a.py")
        with View(self.folder, "a.py") as view:
            view.page()
            for name, value in (("Cache-Control", "no-store"), ("Referrer-Policy", "no-referrer"),
                                ("X-Content-Type-Options", "nosniff"), ("X-Frame-Options", "DENY"),
                                ("Cross-Origin-Resource-Policy", "same-origin")):
                self.assertEqual(view.headers[name], value)

    def test_each_run_has_another_token(self):
        self.write("a.py")
        with View(self.folder, "a.py") as first, View(self.folder, "a.py") as second:
            self.assertNotEqual(first.path, second.path)

    def test_a_port_can_be_chosen(self):
        self.write("a.py")
        with View(self.folder, "a.py") as first:
            done = subprocess.run([PROGRAM, "view", "--port", str(first.port), "a.py"], cwd=self.folder,
                                  capture_output=True, text=True, timeout=DEADLINE)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertIn(f"127.0.0.1:{first.port}: error: this port cannot be used; leave out --port", done.stderr)
        with View(self.folder, "a.py", "--port", str(first.port)) as again:
            self.assertEqual(again.port, first.port)

    def test_what_cannot_be_shown_is_refused(self):
        self.write("list", "a\n-\n")
        for arguments, message in ((["-"], "standard input cannot be watched"),
                                   (["--files-from", "list"], "standard input cannot be watched"), (["--port", "0", "a"], "is not a port"),
                                   (["--port", "65536", "a"], "is not a port"),
                                   (["--close-after", "-1", "a"], "is not a time")):
            done = subprocess.run([PROGRAM, "view", *arguments], cwd=self.folder, capture_output=True, text=True,
                                  stdin=subprocess.DEVNULL, timeout=DEADLINE)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertIn(message, done.stderr)

    def test_an_address_that_cannot_be_written_ends_the_command(self):
        self.write("a.py")
        for _ in range(12):
            with open("/dev/full", "w", encoding="utf-8") as full:
                done = subprocess.run([PROGRAM, "view", "--no-browser", "a.py"], cwd=self.folder, stdout=full,
                                      stderr=subprocess.PIPE, text=True, timeout=DEADLINE)
            self.assertEqual(done.returncode, 2)
            self.assertIn("standard output: error: ", done.stderr)

    def test_connections_without_the_address_do_not_block_the_page(self):
        self.write("a.py", "shown\n")
        with View(self.folder, "a.py") as view, contextlib.ExitStack() as open_until_the_end:
            for _ in range(64):
                open_until_the_end.enter_context(socket.create_connection(("127.0.0.1", view.port), timeout=DEADLINE))
            began = time.monotonic()
            self.assertIn("shown", view.page())
            self.assertLess(time.monotonic() - began, 5)

    def test_31_pages_can_be_open(self):
        self.write("a.py", "shown\n")
        with View(self.folder, "a.py") as view, contextlib.ExitStack() as open_until_the_end:
            for _ in range(31):
                open_until_the_end.enter_context(view.events()).recv(1)
            self.assertIn("shown", view.page())


class Changes(Case):
    def test_a_file_is_followed(self):
        self.write("a.py", "first\n")
        self.write("b.py", "other\n")
        with View(self.folder, "a.py", "./b.py") as view:
            self.assertIn("first", view.page())
            self.write("a.py", "second\n")
            self.assertNotIn("first", view.await_page("second"))
            with open(self.folder / "a.py", "a", encoding="utf-8") as file:
                file.write("third\n")
                file.flush()
                view.await_page("third")
            # As editors save a file.
            self.write("b.py.new", "fourth\n")
            os.rename(self.folder / "b.py.new", self.folder / "b.py")
            view.await_page("fourth")
            self.write("a.py", b"\xff\n")
            self.assertIn("is not valid UTF-8", view.await_page("Not parsed"))
            os.remove(self.folder / "a.py")
            view.await_page("!is not valid UTF-8")
            self.write("a.py", "fifth\n")
            self.assertNotIn("Not parsed", view.await_page("fifth"))

    def test_a_file_that_does_not_exist_is_reported_and_followed(self):
        # A View that ends raises what the program wrote to standard error.
        with self.assertRaisesRegex(AssertionError, "^gone.py: error: does not exist; check the name\n$"):
            with View(self.folder, "gone.py") as view:
                self.assertIn("Not parsed", view.page())
                self.write("gone.py", "first\n")
                view.await_page("first")

    def test_the_target_of_a_symbolic_link_is_followed(self):
        self.write("real/r.py", "first\n")
        (self.folder / "links").mkdir()
        (self.folder / "links/m.py").symlink_to("../real/r.py")
        (self.folder / "l.py").symlink_to(self.folder / "links/m.py")
        with View(self.folder, "l.py") as view:
            self.assertIn("first", view.page())
            self.write("real/r.py", "second\n")
            view.await_page("second")
            # As editors save a file.
            self.write("real/new", "third\n")
            os.rename(self.folder / "real/new", self.folder / "real/r.py")
            view.await_page("third")
            shutil.rmtree(self.folder / "real")
            view.await_page("Not parsed")
            self.write("real/r.py", "fourth\n")
            view.await_page("fourth")
            # One of the links leads to another file.
            self.write("other/o.py", "fifth\n")
            os.remove(self.folder / "links/m.py")
            view.await_page("Not parsed")
            (self.folder / "links/m.py").symlink_to("../other/o.py")
            view.await_page("fifth")
            self.write("other/o.py", "sixth\n")
            view.await_page("sixth")

    def test_a_link_that_leads_to_itself_is_not_followed_for_ever(self):
        (self.folder / "l.py").symlink_to("l.py")
        with View(self.folder, "l.py") as view:
            self.assertIn("Not parsed", view.page())
            os.remove(self.folder / "l.py")
            self.write("l.py", "first\n")
            view.await_page("first")

    def test_a_folder_that_is_replaced_is_followed(self):
        self.write("d1/deep/a.py", "first\n")
        with View(self.folder, "d1/deep/a.py") as view:
            self.assertIn("first", view.page())
            for gone in ("d1", "d1/deep"):
                for number in range(10):
                    shutil.rmtree(self.folder / gone)
                    view.await_page("Not parsed")
                    self.write("d1/deep/a.py", f"early{number}.\n")
                    view.await_page(f"early{number}.")
                    self.write("d1/deep/a.py", f"late{number}.\n")
                    view.await_page(f"late{number}.")

    def test_a_folder_that_is_moved_is_followed(self):
        self.write("d1/a.py", "first\n")
        with View(self.folder, "d1/a.py") as view:
            os.rename(self.folder / "d1", self.folder / "d2")
            view.await_page("Not parsed")
            os.rename(self.folder / "d2", self.folder / "d1")
            view.await_page("first")
            self.write("d1/a.py", "second\n")
            view.await_page("second")

    def test_a_directory_is_followed(self):
        self.write("t/a.py", "first\n")
        with View(self.folder, "t") as view:
            self.assertIn("first", view.page())
            self.write("t/b.py", "second\n")
            view.await_page("second")
            self.write("t/new/deep/c.py", "third\n")
            view.await_page("third")
            self.write("t/new/deep/c.py", "fourth\n")
            view.await_page("fourth")
            os.remove(self.folder / "t/a.py")
            view.await_page("!first")
            self.write("t/.gitignore", "b.py\n")
            view.await_page("!second")
            shutil.rmtree(self.folder / "t/new")
            view.await_page("!fourth")

    def test_a_change_of_rights_or_of_gitignore_is_noticed(self):
        self.write("t/a.py", "first\n")
        self.write("t/new/b.py", "second\n")
        self.write("t/.gitignore", "nothing\n")
        os.chmod(self.folder / "t/new", 0)
        os.chmod(self.folder / "t/a.py", 0)
        with View(self.folder, "t", preexec_fn=drop_rights) as view:
            view.await_page("Not parsed")
            os.chmod(self.folder / "t/a.py", 0o644)
            view.await_page("first")
            os.chmod(self.folder / "t/new", 0o755)
            view.await_page("second")
            with open(self.folder / "t/.gitignore", "w", encoding="utf-8") as file:
                file.write("new\n")
            view.await_page("!second")

    def test_a_list_of_files_is_read_once(self):
        self.write("a.py", "first\n")
        self.write("t/b.py", "second\n")
        self.write("list", "a.py\nt\n")
        with open(self.folder / "list", encoding="utf-8") as names, \
                View(self.folder, "--files-from", "-", stdin=names) as view:
            self.assertIn("second", view.page())
            self.write("t/c.py", "third\n")
            self.assertIn("first", view.await_page("third"))
            os.rename(self.folder / "t/c.py", self.folder / "t/d.py")
            self.assertIn("first", view.await_page("t/d.py"))
            # As editors save a file.
            self.write("new", "fourth\n")
            os.rename(self.folder / "new", self.folder / "a.py")
            self.assertIn("second", view.await_page("fourth"))

    def test_a_change_is_not_lost_when_the_files_cannot_be_listed(self):
        self.write("t/a.py", "first\n")
        refused = "t/.gitignore: error: is not a regular file"
        with View(self.folder, "t", says=f"({refused}.*\n)+") as view:
            os.mkfifo(self.folder / "t/.gitignore")
            self.assertIn(refused, view.message())
            # As editors save a file.
            self.write("new", "second\n")
            os.rename(self.folder / "new", self.folder / "t/a.py")
            self.assertIn(refused, view.message())
            self.assertIn("first", view.page())
            os.remove(self.folder / "t/.gitignore")
            view.await_page("second")

    def test_the_page_is_made_again_when_a_bundle_is_there_again(self):
        pieces, = PROGRAM.parent.parent.rglob("libtessera_pieces.so")
        bundle = self.folder / "bundle.so"
        bundle.symlink_to(pieces)
        self.write("t/a.py", "first\n")
        missing = "bundle.so: error: the file cannot be read "
        with View(self.folder, "--bare", "--bundle", "bundle.so", "t", says=f"({missing}.*\n)+") as view:
            bundle.unlink()
            self.write("t/b.py", "second\n")
            self.assertIn(missing, view.message())
            bundle.symlink_to(pieces)
            self.write("t/a.py", "third\n")
            self.assertIn("second", view.await_page("third"))

    def test_a_change_during_an_update_is_not_lost(self):
        self.write("t/a.py")
        with View(self.folder, "t") as view:
            for i in range(40):
                self.write(f"t/new{i}/deep/c.py", f"early{i}.\n")
                # The second change comes while the first one is being worked on, at another moment each time.
                time.sleep(i * 0.0005)
                self.write(f"t/new{i}/deep/c.py", f"late{i}.\n")
                view.await_page(f"late{i}.")

    def test_another_file_changes_what_is_said_about_a_task(self):
        self.write("a.py", "# <@task#far>\n")
        self.write("b.py")
        with View(self.folder, "a.py", "b.py") as view:
            self.assertNotIn("b.py:1:1", view.page())
            self.write("b.py", "# <@task#far>\n")
            view.await_page("the other task marker with this id is at b.py:1:1")

    def test_readers_are_told(self):
        self.write("a.py")
        with View(self.folder, "a.py") as view, view.events() as stream, stream.makefile() as lines:
            def version():
                for line in lines:
                    if line.startswith("data: "):
                        return int(line[6:])
                raise AssertionError("the stream has ended")
            first = version()
            self.write("a.py", "changed\n")
            self.assertGreater(version(), first)
            self.assertIn("changed", view.page())


class End(Case):
    def test_it_ends_when_the_page_was_closed(self):
        self.write("a.py")
        with View(self.folder, "a.py", "--close-after", "0.5") as view:
            first, second = view.events(), view.events()
            first.recv(1)
            second.recv(1)
            first.close()
            # Nobody has left the page altogether.
            with self.assertRaises(subprocess.TimeoutExpired):
                view.process.wait(2)
            second.close()
            view.await_end()

    def test_it_does_not_end_before_the_page_was_opened(self):
        self.write("a.py")
        with View(self.folder, "a.py", "--close-after", "0.1") as view:
            with self.assertRaises(subprocess.TimeoutExpired):
                view.process.wait(1)
            view.page()
            view.await_end()

    def test_an_interruption_ends_it(self):
        self.write("a.py")
        with View(self.folder, "a.py") as view, view.events() as stream:
            stream.recv(1)
            send_signal(view.process.pid, signal.SIGINT, PROGRAM)
            view.await_end(130)
            with self.assertRaises(ConnectionRefusedError):
                socket.create_connection(("127.0.0.1", view.port), timeout=DEADLINE)


if __name__ == "__main__":
    unittest.main()
