#!/usr/bin/env python3
"""Tries to get texts unescaped into every output of the program.

attempts_test.py PROGRAM OUTPUT_DATA_BUNDLE BUNDLE_WITHOUT_MANIFEST GENERATED

GENERATED is the folder of the generated shell completions. attempts.py has the texts, and the places of a file that
bring them in; names, options, the environment and manifests are further places, here.
"""
import html.parser
import http.client
import json
import os
import pathlib
import pty
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import unicodedata
import unittest
import urllib.parse
import zipfile

import attempts

PROGRAM, BUNDLE, BARE_LIBRARY, GENERATED = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(4))
ROOT = pathlib.Path(__file__).resolve().parents[2]
DEADLINE = 300
ALL = "".join(attempts.marked(index) for index in range(len(attempts.PAYLOADS)))
MARKS = [attempts.mark(index) for index in range(len(attempts.PAYLOADS))]
MARK = re.compile("q[0-9]{3}z")

# The sequences that the program itself writes to a terminal.
OWN_SEQUENCES = re.compile(r"\x1b\[(?:0|1|2|4|7|[34][0-9]|90|[124];[39][0-9])m")
# Characters that Unicode lets a program ignore, in categories of visible characters.
IGNORABLE = {0x34F, 0x115F, 0x1160, 0x17B4, 0x17B5, 0x3164, 0xFFA0, *range(0x180B, 0x1810), *range(0xFE00, 0xFE10),
             *range(0xE0100, 0xE01F0)}
JOINERS = "\u200c\u200d\ufe0e\ufe0f"


def is_invisible(character):
    return unicodedata.category(character) in ("Cc", "Cf", "Cn", "Co", "Cs", "Zl", "Zp") or ord(character) in IGNORABLE


def joins(character, last):
    """Returns whether an invisible character chooses the shape of the one before it."""
    if character == "\ufe0f" and last in "0123456789#*":
        return True
    return character in JOINERS and last > "\x7f" and (not is_invisible(last) or (last, character) == ("\ufe0f", "\u200d"))


def invisible_in(text, allowed="\n"):
    """Returns the names of the characters that should not be in a text."""
    found = [character for character in set(text) - set(allowed) if is_invisible(character)]
    return sorted(f"U+{ord(character):04X}" for character in found if character not in JOINERS or
                  any(not joins(character, text[match.start() - 1:match.start()]) for match in re.finditer(character, text)))


def run(*arguments, **options):
    """Runs the program and returns its output and its messages."""
    done = subprocess.run([PROGRAM, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=DEADLINE, **options)
    return done.stdout.decode(errors="replace"), done.stderr.decode()


def run_on_terminal(*arguments, **options):
    """Returns what the program writes to a terminal that is its standard output and standard error."""
    reader, writer = pty.openpty()
    environment = {**os.environ, "TERM": "xterm", "LC_ALL": "C.UTF-8", "NO_COLOR": ""}
    with subprocess.Popen([PROGRAM, *arguments], stdin=subprocess.DEVNULL, stdout=writer, stderr=writer,
                          env=environment, **options):
        os.close(writer)
        data = b""
        try:
            while piece := os.read(reader, 65536):
                data += piece
        except OSError:  # The other side is closed.
            pass
    os.close(reader)
    return data.decode().replace("\r\n", "\n")


class SafePage(html.parser.HTMLParser):
    """Reads a page; fails if it has an element or an attribute that the program does not write."""

    ELEMENTS = set("""html head meta title style body header nav main section footer h1 h2 h3 p a b i ul ol li dl dt dd div span
        details summary pre code mark table caption tbody tr th td svg rect article figure figcaption fieldset legend label input
        script""".split())
    ATTRIBUTES = set("""lang charset http-equiv content name class href id aria-labelledby aria-label role tabindex start open
        viewbox preserveaspectratio width height rx scope type disabled checked step min max value hidden""".split())

    def __init__(self, text):
        super().__init__()
        self.scripts, self.texts = 0, []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        assert tag in self.ELEMENTS, tag
        self.scripts += tag == "script"
        for name, value in attributes:
            assert name in self.ATTRIBUTES, (tag, name)
            assert not MARK.search(value or ""), (tag, name, value)
            assert name != "href" or value.startswith("#"), (tag, value)

    def handle_data(self, data):
        self.texts.append(data)

    def handle_comment(self, data):
        raise AssertionError(f"a comment: {data}")

    handle_decl = staticmethod(lambda text: None)

    def handle_pi(self, data):
        raise AssertionError(f"an instruction: {data}")

    def unknown_decl(self, data):
        raise AssertionError(f"a declaration: {data}")


class Case(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def check_text(self, text, marks=MARKS, allowed="\n"):
        """Expects text that does nothing to a terminal, and contains every mark."""
        self.assertEqual(invisible_in(text, allowed), [])
        missing = set(marks) - set(MARK.findall(text))
        self.assertEqual(sorted(missing), [])

    def check_on_terminal(self, text, marks=MARKS):
        self.check_text(OWN_SEQUENCES.sub("", text), marks)

    def check_message(self, *arguments, marks=MARKS, **options):
        """Expects that a run fails with a message about what it was given, on a terminal and elsewhere."""
        messages = run(*arguments, **options)[1]
        self.assertIn("error: ", messages)
        self.check_text(messages, marks)
        self.check_on_terminal(run_on_terminal(*arguments, **options), marks)


class Sources(Case):
    """Texts in files, through every command that reads files."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        for place in attempts.PLACES:
            cls.write(cls, place.replace(" ", "_") + ".py", attempts.source_of(place))
        cls.names = sorted(path.name for path in cls.folder.iterdir())
        assert len(attempts.PLACES) * len(attempts.PAYLOADS) >= 150

    def output(self, command, *options):
        output, messages = run(command, *options, *self.names, cwd=self.folder)
        self.assertEqual(messages, "")
        return output

    def on_terminal(self, command, *options):
        return run_on_terminal(command, "--progress", "never", *options, *self.names, cwd=self.folder)

    def check_json(self, text, allowed="\n"):
        """Expects JSON, whose strings have what a file has, but no control character in its bytes."""
        self.assertEqual([name for name in invisible_in(text, allowed) if int(name[2:], 16) < 0xA0], [])
        self.assertEqual(set(MARKS) - set(MARK.findall(text)), set())

    def test_tree(self):
        self.check_text(self.output("parse"))
        self.check_text(self.output("parse", "--trace", "--bundle", str(BUNDLE)))
        self.check_on_terminal(self.on_terminal("parse"))

    def test_parse_json(self):
        text = self.output("parse", "--format", "ndjson", "--trace", "--bundle", str(BUNDLE))
        self.check_json(text)
        strings = set()
        for line in text.strip("\n").split("\n"):
            json.loads(line, object_hook=lambda members: strings.update(
                text for text in (*members, *members.values()) if isinstance(text, str)))
        # Nothing is lost either.
        for index in range(len(attempts.PAYLOADS)):
            self.assertIn(attempts.marked(index), strings)
        self.check_json(self.output("parse", "--format", "json"))

    def test_json_on_a_terminal(self):
        # A few places: the terminal is slow, and the writer is the same for all.
        self.names = ["data_value.py", "line.py", "damaged_data.py", "id_of_an_unpaired_task.py"]
        for command, *options in (("parse", "--format", "json"), ("parse", "--format", "ndjson"),
                                  ("check", "--format", "json"), ("check", "--format", "sarif"), ("markers", "--format", "json")):
            with self.subTest((command, *options)):
                shown = self.on_terminal(command, *options)
                self.check_text(shown)
                if "ndjson" in options or command == "markers":
                    read = [json.loads(line) for line in shown.strip("\n").split("\n")]
                    self.assertEqual(read, [json.loads(line) for line in self.output(command, *options).strip("\n").split("\n")])

    def test_page(self):
        text = self.output("parse", "--format", "html", "--trace", "--bundle", str(BUNDLE))
        page = SafePage(text)
        self.assertEqual(page.scripts, 0)
        self.check_text(text, allowed="\n\t")
        shown = "".join(page.texts)
        for index, payload in enumerate(attempts.PAYLOADS):
            if not invisible_in(payload.text):
                self.assertIn(attempts.marked(index), shown)

    def test_check(self):
        self.check_text(self.output("check"))
        self.check_on_terminal(self.on_terminal("check"))
        self.check_json(self.output("check", "--format", "json"))

    def test_difference(self):
        # For `patch`, the text is as it is; a terminal is not `patch`.
        self.check_on_terminal(self.on_terminal("check", "--fix", "--dry-run"), marks=[])
        self.assertIn("\u202e", self.output("check", "--fix", "--dry-run"))

    def test_sarif(self):
        text = self.output("check", "--format", "sarif")
        self.check_text(text)
        for begin in ("</", "<!", "<?", "<s", "<i", "<S"):
            self.assertNotIn(begin, text)
        [only] = json.loads(text)["runs"]
        messages = []
        json.loads(json.dumps(only["results"]), object_hook=lambda members: messages.extend(
            value["text"] for name, value in members.items() if name in ("message", "description")) or members)
        self.assertGreater(len(messages), len(MARKS))
        for message in messages:
            self.assertEqual(invisible_in(message), [], message)
            # Links lead to the related locations only.
            for target in re.findall(r"(?<!\\)\]\(([^)]*)\)", message):
                self.assertRegex(target, "^[0-9]+$", message)

    def test_markers(self):
        self.check_text(self.output("markers"))
        self.check_on_terminal(self.on_terminal("markers"))
        self.check_json(self.output("markers", "--format", "json"))

    def test_progress(self):
        messages = run("parse", "-j", "2", "--format", "ndjson", "--progress", "always", *self.names, cwd=self.folder)[1]
        self.assertTrue(messages)
        self.check_text(messages, marks=[])
        shown = run_on_terminal("parse", "-j", "2", "--progress", "always", "-o", os.devnull, *self.names, cwd=self.folder)
        self.assertIn("files", shown)
        self.check_on_terminal(shown.replace("\r\x1b[K", ""), marks=[])

    def test_view(self):
        with subprocess.Popen([PROGRAM, "view", "--no-browser", *self.names], cwd=self.folder, stdout=subprocess.PIPE) as process:
            try:
                address = process.stdout.readline().decode()
                self.check_text(address, marks=[])
                self.check_answers(urllib.parse.urlsplit(address.strip()))
            finally:
                process.kill()

    def check_answers(self, address):
        def ask(path, **headers):
            connection = http.client.HTTPConnection(address.netloc, timeout=DEADLINE)
            connection.request("GET", path, headers=headers)
            answer = connection.getresponse()
            text = answer.read().decode()
            connection.close()
            self.assertFalse(MARK.search(str(answer.headers)))
            return answer, text

        answer, text = ask(address.path)
        self.assertEqual(answer.status, 200)
        self.assertEqual(answer.headers["Content-Type"], "text/html; charset=utf-8")
        self.assertEqual(SafePage(text).scripts, 1)
        self.check_text(text, allowed="\n\t")
        usual = set(answer.headers.keys()) | {"Content-Length", "Transfer-Encoding"}
        for index in range(len(attempts.PAYLOADS)):
            path = urllib.parse.quote(attempts.marked(index), safe="")
            for answer, text in (ask(address.path + path), ask("/" + path)):
                self.assertIn(answer.status, (403, 404))
                self.assertEqual(text, "")
                self.assertLessEqual(set(answer.headers.keys()), usual)
        # What a client must not send: nothing of it comes back.
        for line in ("GET /q000z\x1b[2J HTTP/1.1", "GET /q000z<script> HTTP/1.1", "q000z\x9b HTTP/1.1"):
            with socket.create_connection((address.hostname, address.port), timeout=DEADLINE) as connection:
                connection.sendall(f"{line}\r\nHost: {address.netloc}\r\nConnection: close\r\n\r\n".encode())
                received = b""
                while piece := connection.recv(65536):
                    received += piece
                self.assertNotIn(b"q000z", received)


class Names(Case):
    """Texts in names of files and folders, and in whatever is read that is not a source."""

    SOURCE = "# <@task#lost>\nx = 1  # <@outputs#a [0,1]>\n"

    @staticmethod
    def name_of(index):
        return attempts.marked(index).replace("/", "|").replace("\0", "0")

    def folder_of_names(self):
        folder = self.folder / "names"
        for index in range(len(attempts.PAYLOADS)):
            name = self.name_of(index)
            self.write(folder / name, self.SOURCE)
            # A folder, a name that is not UTF-8, and a file that cannot be read as text.
            self.write(folder / "in" / name / "a.py", self.SOURCE)
            self.write(folder / "bad" / name, b"\xff")
        os.makedirs(folder / "bytes")
        for number, byte in enumerate((b"\x1b[2J", b"\x9b2J", b"\x9d0;t\x9c", b"\xff", b"\xc0\x9b")):
            with open(os.path.join(os.fsencode(folder / "bytes"), f"q{number:03}z".encode() + byte), "wb") as file:
                file.write(self.SOURCE.encode())
        return folder

    def test_names_of_files_and_folders(self):
        folder = self.folder_of_names()
        for command, *options in (
                ("parse",), ("parse", "--format", "ndjson"), ("parse", "--format", "html"), ("check",), ("check", "--format", "json"),
                ("check", "--format", "sarif"), ("check", "--fix", "--dry-run"), ("markers",), ("markers", "--format", "json"),
                ("check", "--fix")):
            with self.subTest((command, *options)):
                output, messages = run(command, *options, "names", cwd=self.folder)
                self.check_text(messages)
                if "html" in options:
                    self.assertEqual(SafePage(output).scripts, 0)
                # JSON and a difference for `patch` have the names as they are.
                shown = run_on_terminal(command, "--progress", "never", *options, "names", cwd=self.folder)
                if "html" in options:
                    # A page has tabs where a file has them.
                    output, shown = (text.replace("\t", " ") for text in (output, shown))
                if not {"ndjson", "json", "--dry-run"} & set(options):
                    self.check_text(output, marks=[] if "--fix" in options else MARKS)
                self.check_on_terminal(shown)

    def test_uris_of_names(self):
        name = "".join(map(self.name_of, range(0, len(attempts.PAYLOADS), 9)))[:120]
        self.write(name, self.SOURCE)
        output = run("check", "--format", "sarif", "--", name, cwd=self.folder)[0]
        [only] = json.loads(output)["runs"]
        uris = {result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"] for result in only["results"]}
        self.assertEqual(len(uris), 1)
        for uri in uris:
            self.assertRegex(uri, "^[A-Za-z0-9._~/%-]+$")
            self.assertEqual(urllib.parse.unquote(uri), name)

    def test_missing_files(self):
        names = ["./" + self.name_of(index) for index in range(len(attempts.PAYLOADS))]
        for command in ("parse", "check", "markers"):
            self.check_message(command, *names, cwd=self.folder)
        self.check_message("replay", names[0], marks=MARKS[:1], cwd=self.folder)
        self.write("list", "\n".join(names) + "\n")
        self.check_message("parse", "--files-from", "list", cwd=self.folder)
        self.write("list0", "\0".join(names) + "\0")
        self.check_message("parse", "-0", "--files-from", "list0", cwd=self.folder)

    def test_values_of_options(self):
        text = ALL.replace("\0", "")
        for arguments in (
                ("parse", "--format", text), ("check", "--fail-on", text), ("parse", "--color", text), ("parse", "-j", text),
                ("parse", "--shard", text), ("parse", "--timeout", text), ("parse", "--width", text), ("view", "--port", text, "a.py"),
                ("parse", "--" + text), ("parse", "--omi" + text), (text,), ("doctor", text), ("help", text),
                ("explain", text), ("new-bundle", text, "folder"), ("parse", "--bundle", text), ("doctor", "--bundle", text),
                ("parse", "--files-from", text), ("parse", "--record", "none/" + text), ("parse", "-o", "none/" + text)):
            arguments = [*arguments, *(["a.py"] if arguments[0] in ("parse", "check") else [])]
            with self.subTest([argument[:30] for argument in arguments]):
                self.write("a.py", "x\n")
                # What follows a "=" in an option is its value, which an unknown option does not have.
                is_option = arguments[1:2] and arguments[1].startswith("--") and MARK.search(arguments[1])
                shown = MARK.findall(arguments[1].split("=")[0]) if is_option else MARKS
                output, messages = run(*arguments, cwd=self.folder)
                self.check_text(output + messages, shown)
                self.check_on_terminal(run_on_terminal(*arguments, cwd=self.folder), shown)

    def test_environment(self):
        text = ALL.replace("\0", "")
        self.write("a.py", "x\n")
        environment = {**os.environ, "TMPDIR": text, "TERM": text, "NO_COLOR": text, "LC_ALL": text, "LANG": text, "COLUMNS": text}
        for arguments in (("parse", "a.py"), ("parse", "--format", "html", "a.py"), ("doctor",), ("check", "a.py"), ("explain",)):
            output, messages = run(*arguments, cwd=self.folder, env=environment)
            self.check_text(output + messages, marks=[])

    def test_replay(self):
        text = json.dumps(ALL, ensure_ascii=False)
        snippet = '{"text":%s,"type":{"group":0,"kind":0},"auxiliaryText":%s}' % (text, text)
        self.write("calls", "".join(line + "\n" for line in (
            '{"op":"parse","parser":"CodeSnippetParserImpl","snippet":%s}' % snippet,
            '{"op":"addLine","text":%s}' % text, '{"op":"nodes"}')))
        output, messages = run("replay", "calls", cwd=self.folder)
        self.assertEqual(messages, "")
        self.assertEqual(json.loads(output.strip("\n").split("\n")[-1])["nodes"][1]["children"][0]["text"], ALL)
        self.assertEqual([name for name in invisible_in(output) if int(name[2:], 16) < 0xA0], [])
        self.check_on_terminal(run_on_terminal("replay", "calls", cwd=self.folder))
        for call in ('{"op":%s}', '{%s:1}', '{"op":"nodes",%s:1}', '{"op":"reset","parser":%s}', '{"op":"appendix","entries":[%s]}',
                     '{"op":"parse","parser":%s,"snippet":' + snippet.replace("%", "%%") + "}"):
            with self.subTest(call):
                self.write("call", call % text + "\n")
                self.check_message("replay", "call", cwd=self.folder)
        for raw in ("{q000z\x1b[2J", "\u202eq000z", '{"op":"\x1bq000z"}'):
            self.write("call", raw + "\n")
            self.check_message("replay", "call", marks=[], cwd=self.folder)

    def test_ignore_files(self):
        folder = self.folder / "ignoring"
        self.write(folder / ".gitignore", "\n".join(attempts.marked(i) for i in range(len(attempts.PAYLOADS))) + "\n")
        self.write(folder / "a.py", "x\n")
        output, messages = run("parse", "ignoring", "--glob", ALL.replace("\0", "") + "/*", "--glob", "*.py", cwd=self.folder)
        self.check_text(output + messages, marks=[])

    def test_manifests(self):
        path = self.folder / "bundle.so"

        def add(headers):
            shutil.copy(BARE_LIBRARY, path)
            with zipfile.ZipFile(path, "a") as archive:
                archive.writestr("faults/manifest.json", headers if isinstance(headers, str) else json.dumps(headers))

        def component_of(text):
            return {"implementation-class": text, "service": {"interfaces": [text]}, "inject-references": True,
                    "references": [{"name": text, "interface": text}]}

        # An installed CppMicroServices cuts a text at its first NUL.
        whole = component_of(ALL.replace("\0", ""))
        for headers, marks in (
                ({"bundle.symbolic_name": ALL}, []), ({"bundle.symbolic_name": "faults", "bundle.version": ALL}, []),
                ({"bundle.symbolic_name": "faults", ALL: ALL}, []),
                ({"bundle.symbolic_name": "faults", "scr": {"version": 1, "components": [component_of(ALL)]}}, []),
                ({"bundle.symbolic_name": "faults", "scr": {"version": 1, "components": [whole]}}, MARKS),
                ({"bundle.symbolic_name": "faults", "scr": {"version": 1, "components": [{ALL: 1}]}}, []), (ALL, [])):
            add(headers)
            with self.subTest(str(headers)[:60]):
                for command in (("doctor",), ("doctor", "--format", "json"), ("parse", os.devnull)):
                    output, messages = run(*command, "--bundle", str(path))
                    self.check_text(messages, marks=[])
                    if "json" not in command:
                        self.check_text(output + messages, marks)
                    self.check_on_terminal(run_on_terminal(*command, "--bundle", str(path)), marks)

    def test_new_bundle_says_commands_that_are_safe(self):
        target = "".join(part for part in ("$(touch pwned)", "`touch pwned`", "';touch pwned;'", " \"x\"", "\x1b[2J", "\u202e"))
        output = run("new-bundle", "word_count", target, cwd=self.folder)[0]
        self.check_text(output, marks=[])
        for command in re.findall("^  (.*)", output, re.MULTILINE):
            subprocess.run(["/bin/bash", "-c", command], cwd=self.folder, env={"PATH": "/nonexistent"}, stderr=subprocess.DEVNULL)
            words = subprocess.run(["bash", "-c", f"printf '%s\\n' {command}"], cwd=self.folder, capture_output=True, text=True)
            self.assertIn("$(touch pwned)`touch pwned`';touch pwned;' \"x\"", words.stdout)
        self.assertEqual([*self.folder.rglob("pwned")], [])


class Completions(Case):
    """The shells complete names of files by themselves; the completions must not run what a name contains."""

    def setUp(self):
        for index, payload in enumerate(attempts.PAYLOADS):
            if "\0" not in payload.text:
                self.write(payload.text.replace("/", "|") + f".{index}.py", "x\n")

    def tearDown(self):
        self.assertEqual([path.name for path in self.folder.iterdir() if path.name == "pwned"], [])

    def run_shell(self, shell, script):
        if shutil.which(shell[0]) is None:
            self.skipTest(f"{shell[0]} is not installed")
        done = subprocess.run([*shell, script], cwd=self.folder, capture_output=True, timeout=DEADLINE,
                              env={**os.environ, "HOME": str(self.folder)})
        self.assertEqual(done.stderr.decode(), "")
        return done.stdout.decode(errors="replace")

    def test_bash(self):
        words = "".join(f" {json.dumps(payload.text)[1:-1]!r}" for payload in attempts.PAYLOADS if payload.text.isascii())
        output = self.run_shell(["bash", "-c"], f"""
            compopt() {{ :; }}
            source {GENERATED}/bash/tessera
            for word in nd{words}; do
              for option in parse check --format --bundle explain; do
                COMP_WORDS=(tessera parse "$option" "$word"); COMP_CWORD=3; _tessera
                printf '%s\\n' "${{COMPREPLY[@]}}"
                COMP_WORDS=(tessera "$word" "$option" ""); _tessera
                printf '%s\\n' "${{COMPREPLY[@]}}"
              done
            done""")
        self.assertIn("ndjson", output)
        self.assertNotIn("pwned", output)

    def test_fish(self):
        output = self.run_shell(["fish", "--no-config", "-c"], f"""
            source {GENERATED}/fish/tessera.fish
            for typed in 'parse ' 'parse --bundle ' 'parse -o ' 'check $(' 'replay `'
                complete -C "tessera $typed"
            end""")
        self.assertIn(".py", output)


if __name__ == "__main__":
    print(f"{(len(attempts.PLACES) + 30) * len(attempts.PAYLOADS)} attempts in files, names and options", file=sys.stderr)
    unittest.main()
