#!/usr/bin/env python3
"""Runs `check` as its users do.

check_test.py PROGRAM
"""
import json
import os
import pathlib
import random
import resource
import stat
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
# A sanitizer finds what it finds with fewer markers, too; more of them would take minutes.
IS_SANITIZED = any(name in PROGRAM.read_bytes() for name in (b"__asan_init", b"__tsan_init"))
MANY = 10_000 if IS_SANITIZED else 100_000
SOURCES = sorted(path for path in (pathlib.Path(__file__).resolve().parents[3] / "golden" / "check").iterdir()
                 if path.suffix != ".expected")
PIECES = ["# <@task#a>", "# <@task#a>", "# <@task#b>", "// <@task#bb>", "/* <@task#a> */", "x", "yy",
          "# <@output#o [0,2]>", "# <@output#o [4,2]>", "# <@output#p [0,9]>", "-- <@text:anchor#a [1,1]>",
          "# <@task#a", "# <@control#c [0,1] {]}>"]
# For a run that may not write the counters of a program built for coverage: of another user, or with small files only.
WITHOUT_COUNTERS = dict(os.environ, LLVM_PROFILE_FILE="/dev/null")
# The messages of failures for which no reason was found.
UNEXPLAINED = r"has no partner$|is inside another task$|cannot be used$"


def tessera(*arguments, stdin=b"", **options):
    return subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=120, **options)


def can_give_away():
    with tempfile.NamedTemporaryFile() as file:
        try:
            os.chown(file.name, 65534, 65534)
        except OSError:
            return False
    return True


def documents(output):
    return [json.loads(line) for line in output.decode().split("\n")[:-1]]


class CheckTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return str(path)


class Check(CheckTest):
    def headings(self, name, *options):
        """Returns the first row of each diagnostic of a file, without the file's name."""
        rows = tessera("check", *options, name).stdout.decode().split("\n")[:-1]
        self.assertEqual(len(rows) % 3, 0)
        for heading, excerpt, mark in zip(rows[::3], rows[1::3], rows[2::3]):
            self.assertTrue(heading.startswith(name + ":"), heading)
            self.assertEqual((excerpt[6:9], mark[:9].strip()), (" | ", "|"))
        return [row.removeprefix(name) for row in rows[::3]]

    def test_the_status_says_what_was_found(self):
        fine = self.write("fine", b"x\n# <@text:anchor#a>\n")
        warning = self.write("warning", b"# <@appendix>\nx\n")
        failure = self.write("failure", b"# <@task#a>\n")
        statuses = {(): (0, 0, 1), ("--fail-on", "failure"): (0, 0, 1), ("--fail-on", "warning"): (0, 1, 1),
                    ("--fail-on", "never"): (0, 0, 0)}
        for options, expected in statuses.items():
            for format_options in ((), ("--format", "json")):
                actual = tuple(tessera("check", *options, *format_options, name, fine).returncode
                               for name in (fine, warning, failure))
                self.assertEqual(actual, expected, (options, format_options))
        self.assertEqual(tessera("check", fine).stdout, b"")
        # A file that cannot be read counts for more than a failure, in either order.
        none = str(self.folder / "none")
        for names in ([failure, none], [none, failure]):
            both = tessera("check", *names)
            self.assertEqual(both.returncode, 3)
            self.assertIn(b"failure:1:1: failure: ", both.stdout)
            self.assertEqual(both.stderr.decode(),
                             none + ": error: cannot be opened: No such file or directory; check the name\n")

    def test_json_has_a_record_for_each_file(self):
        fine = self.write("fine", b"x\n")
        damaged = self.write("damaged", b"x = '\xf0\x9f\x8f\x86'  # <@task#a>\n")
        done = tessera("check", "--format", "json", fine, damaged)
        records = documents(done.stdout)
        self.assertEqual(records[0], {"schemaVersion": 1, "file": fine, "diagnostics": []})
        self.assertEqual(list(records[1]), ["schemaVersion", "file", "diagnostics"])
        [diagnostic] = records[1]["diagnostics"]
        self.assertEqual(list(diagnostic), ["id", "severity", "line", "column", "endLine", "endColumn", "message",
                                            "notes", "fix"])
        self.assertEqual([diagnostic[key] for key in ("id", "severity", "line", "column", "endLine", "endColumn")],
                         ["missing_task_marker_pair", "failure", 1, 10, 1, 21])

    def test_data_nested_a_hundred_thousand_deep_is_damaged(self):
        for begin, end, levels in (('{"a":', "}", 1), ('{"a":[', "]}", 2)):
            marker = f"# <@output#a {begin * 100000}1{end * 100000}>"
            name = self.write("f", f"{marker}\n# <@appendix>\n{marker}\n".encode())
            # Where the 65th level begins.
            column = len("# <@output#a " + begin * (64 // levels)) + 1
            self.assertEqual(self.headings(name), [
                f":{line}:{column}: warning: the data is nested deeper than 64 levels [marker_limit]" for line in (1, 3)])

    def test_each_of_many_failures_on_a_line_has_its_column(self):
        count = MANY
        name = self.write("f", b" ".join(b"# <@output#\xc3\xa9%d [9,1]>" % i for i in range(count)))
        lines = self.headings(name)
        self.assertEqual(len(lines), count)
        column = 1
        for number, line in enumerate(lines):
            range_column = column + len(f"# <@output#\u00e9{number} ")
            self.assertTrue(line.startswith(f':1:{range_column}: failure: '), line)
            column += len(f"# <@output#\u00e9{number} [9,1]> ")

    def test_many_markers_of_one_id_are_one_diagnostic_with_all_places(self):
        count = MANY
        for separator, last in ((b"\n", (count, 1)), (b" ", (1, (count - 1) * 12 + 1))):
            name = self.write("f", separator.join([b"# <@task#a>"] * count))
            [record] = documents(tessera("check", "--format", "json", name).stdout)
            [diagnostic] = record["diagnostics"]
            notes = diagnostic["notes"]
            self.assertEqual((len(notes), (notes[-1]["line"], notes[-1]["column"])), (count - 1, last))
            text = tessera("check", name).stdout.decode().split("\n")
            self.assertEqual(len([row for row in text if ": note: " in row]), 6)
            self.assertTrue(text[-2].endswith(f": note: and {count - 6} more places; --format json lists all"))
            [run] = json.loads(tessera("check", "--format", "sarif", name).stdout)["runs"]
            [result] = run["results"]
            self.assertEqual(len(result["relatedLocations"]), 100)
            self.assertTrue(result["message"]["text"].endswith(f"\n(and {count - 101} more)"))

    def test_partners_in_other_files_of_the_run_are_found(self):
        names = [self.write(f"{number}.py", text) for number, text in enumerate(
            (b"# <@task#a>\n", b"x\n", "\u00e9 # <@task#a>\n# <@task#b>\n".encode(), b"# <@task#c>\n"))]
        first, clean, second, third = names
        checked = [[(diagnostic["message"], [note["message"] for note in diagnostic["notes"]])
                    for diagnostic in record["diagnostics"]]
                   for record in documents(tessera("check", "--format", "json", *names).stdout)]
        elsewhere = 'the task marker "a" has no partner in this file: the other one is in another file'
        alone = 'the task marker "%s" has no partner: no other task marker in the code has this id'
        other = "the other task marker with this id is at "
        self.assertEqual(checked, [[(elsewhere, [f"{other}{second}:1:3"])], [],
                                   [(elsewhere, [f"{other}{first}:1:1"]), (alone % "b", [])],
                                   [(alone % "c", [])]])
        # A file that is clean or explained by itself is in its place.
        records = documents(tessera("check", "--format", "json", clean, first, third, second).stdout)
        self.assertEqual([record["file"] for record in records], [clean, first, third, second])

    def test_a_file_that_several_paths_lead_to_is_checked_once(self):
        name = self.write("f", b"# <@task#a>\n")
        (self.folder / "link").symlink_to("f")
        (self.folder / "folder").symlink_to(".")
        os.link(name, self.folder / "second")
        other = [f"{self.folder}/{path}" for path in ("./f", "link", "folder/f", "folder/link")]
        records = documents(tessera("check", "--format", "json", name, name, *other, "-", stdin=b"x\n").stdout)
        self.assertEqual([record["file"] for record in records], [name, "-"])
        [diagnostic] = records[0]["diagnostics"]
        self.assertEqual(diagnostic["notes"], [])
        # Of a folder too, in either order; a second name of the file is another file.
        found = [name, f"{self.folder}/second"]
        for paths in ([name, str(self.folder)], [str(self.folder), name], [str(self.folder), f"{self.folder}/."]):
            records = documents(tessera("check", "--format", "json", *paths).stdout)
            self.assertEqual([record["file"] for record in records], found)
        # What was named is not left out because it was also found.
        binary = self.write("binary", b"\0\n# <@task#a>\n")
        for paths in ([binary, str(self.folder)], [str(self.folder), binary]):
            records = documents(tessera("check", "--format", "json", *paths).stdout)
            self.assertEqual(sorted(record["file"] for record in records), sorted([*found, binary]))
        for paths in ([name, str(self.folder)], [str(self.folder), name]):
            done = tessera("check", *paths, "-o", name)
            self.assertIn(b"is one of the inputs", done.stderr)
        self.assertEqual(pathlib.Path(name).read_bytes(), b"# <@task#a>\n")
        # What does not exist is reported each time.
        none = str(self.folder / "none")
        self.assertEqual(tessera("check", none, none, name, "").stderr.count(b": error: "), 3)

    def test_a_file_that_is_named_twice_is_fixed_once(self):
        name = self.write("f", b"y = 2  # <@outputs#o1 [0,5]>\n")
        once = tessera("check", "--fix", "--dry-run", "f", cwd=self.folder).stdout
        self.assertEqual(once.count(b"+++"), 1)
        self.assertEqual(tessera("check", "--fix", "--dry-run", "f", "./f", cwd=self.folder).stdout, once)
        self.assertEqual(tessera("check", "--fix", name, name).stderr.decode(), f"{name}: 1 fix made\n")

    def test_of_several_other_files_none_has_the_partner(self):
        for count in (3, 4, 5):
            names = [self.write(f"{number}.py", b"# <@task#a>\n") for number in range(count)]
            for record in documents(tessera("check", "--format", "json", *names).stdout):
                [diagnostic] = record["diagnostics"]
                self.assertEqual((diagnostic["message"], diagnostic["notes"]), (
                    'the task marker "a" has no partner: no other task marker in the code has this id', []))

    def test_a_note_about_another_file_has_the_place_there(self):
        first, second = self.write("1.py", b"x\n# <@task#a>\n"), self.write("2.py", "\u00e9  # <@task#a>\n".encode())
        rows = tessera("check", first, second).stdout.decode().split("\n")
        note = ": note: the other task marker with this id"
        self.assertEqual(rows[3:6], [f"{second}:1:4{note}", "     1 | \u00e9  # <@task#a>", "       |    ^~~~~~~~~~~"])
        self.assertEqual(rows[9:], [f"{first}:2:1{note}", "     2 | # <@task#a>", "       | ^~~~~~~~~~~", ""])
        # The members of a note have no file: its place is that of the diagnostic.
        [record, _] = documents(tessera("check", "--format", "json", first, second).stdout)
        [diagnostic] = record["diagnostics"]
        place = ("line", "column", "endLine", "endColumn")
        self.assertEqual([diagnostic["notes"][0][key] for key in place], [diagnostic[key] for key in place])

    def test_a_task_of_65536_lines_is_reported(self):
        for count, is_reported in ((65535, False), (65536, True), (70000, True)):
            text = (b"x\n# <@task#a>\n" + b"x\n" * (count - 2) +
                    b'# <@task#a>\n# <@appendix>\n# <@task#a {"text":"A"}>\n')
            [record] = documents(tessera("check", "--format", "json", self.write("f", text)).stdout)
            found = [tuple(diagnostic[key] for key in ("id", "line", "column", "endLine", "endColumn", "message"))
                     for diagnostic in record["diagnostics"]]
            message = f'the task "a" ends after 65,535 lines: its last marker is on line {count + 1}'
            self.assertEqual(found, [("task_too_long", 2, 1, 2, 12, message)] if is_reported else [], count)

    def test_every_failure_of_the_parsers_is_explained(self):
        """Random tasks and ranges: each failure in the document belongs to a diagnostic with a reason."""
        random.seed(3)
        for number in range(100):
            lines = [" ".join(random.choice(PIECES) for _ in range(random.randrange(4)))
                     for _ in range(random.randrange(1, 12))]
            name = self.write("f", "\n".join(lines).encode())
            [document] = documents(tessera("parse", "--format", "ndjson", name).stdout)
            failures = {(line["line"], failure["failureId"]) for line in document["lines"]
                        for node in line["nodes"] for failure in document["nodes"][node]["parserFailures"]}
            [checked] = documents(tessera("check", "--format", "json", name).stdout)
            explained = {}
            for diagnostic in checked["diagnostics"]:
                places = {diagnostic["line"], *(note["line"] for note in diagnostic["notes"])}
                for place in places if diagnostic["severity"] == "failure" else ():
                    explained.setdefault(place, []).append(diagnostic)
            for line, failure in failures:
                self.assertTrue(explained.get(line), (lines, line, failure))
            for diagnostic in checked["diagnostics"]:
                self.assertNotRegex(diagnostic["message"], UNEXPLAINED, lines)


class Mistakes(CheckTest):
    """What is said about texts that are almost markers, and about text after markers."""

    def found(self, text, name="f.py"):
        """Returns the diagnostics of a file."""
        [record] = documents(tessera("check", "--format", "json", self.write(name, text.encode())).stdout)
        return record["diagnostics"]

    def test_a_damaged_line_that_starts_an_appendix_is_reported(self):
        """The line is nothing but a comment with the damaged word."""
        for body in ("<@Appendix>", "<@aPPENDIX>", "<@appendex>", "<@appendices>", "<@Appendixes>", "<@appendi>",
                     "<@ appendix>", "<@ appendix >", "<@@appendix>", "<@@appendix >", "@appendix>", "<appendix>",
                     "@<appendix>", "<!appendix>", "<a@ppendix>"):
            for before, after in (("# ", ""), ("  //", " "), ("<!-- ", " -->"), ("/*", "*/")):
                text = f'y = 1  # <@output#y [0,1]>\n{before}{body}{after}\n# <@output#y {{"format":"short"}}>\n'
                with self.subTest(text):
                    self.assertEqual([diagnostic["line"] for diagnostic in self.found(text)], [2])

    def test_a_damaged_line_that_starts_an_appendix_explains_its_entries(self):
        for body in ("<@appendex>", "<@@appendix>", "@appendix>", "<appendix>"):
            text = f'# <@task#a>\nx\n# <@task#a>\n# {body}\n# <@task#a {{"text":"A"}}>\n'
            [diagnostic] = self.found(text)
            self.assertEqual(diagnostic["id"], "missing_task_marker_pair", body)
            self.assertEqual(diagnostic["notes"][0]["line"], 4, body)

    def test_the_word_appendix_in_other_text_is_not_reported(self):
        for text in ("# see <appendix>", "# <appendix> of the book", "<appendix>", "# <appendix", "# user@appendix>",
                     "# <%@appendix>", "# appendix>", "# <@append>", "x = y  # <appendix>"):
            self.assertEqual(self.found(text + "\n"), [], text)


    def test_a_whole_marker_without_an_id_is_like_a_marker_too(self):
        """A character of "<@" is damaged, or a letter of the element is upper case."""
        for text, message in (
                ('x = 1  # <output:double [0,1] {"format":"short"}>', '"@" is missing here: a marker begins with "<@"'),
                ('x = 1  # @output:double [0,1] {"format":"short"}>', '"<" is missing here: a marker begins with "<@"'),
                ("x = 1  # <output [0,1]>", '"@" is missing here: a marker begins with "<@"'),
                ("x = 1  /* @control\t[0,1] */ # @control\t[0,1]>", '"<" is missing here: a marker begins with "<@"'),
                ("# <@Output>", '"Output" is not an element, because elements are lower case; did you mean "output"?'),
                ("# <@Control>", '"Control" is not an element, because elements are lower case; did you mean "control"?'),
                ("# <@Task>", '"Task" is not an element, because elements are lower case; did you mean "task"?'),
                ("# <@Text>", '"Text" is not an element, because elements are lower case; did you mean "text"?')):
            self.assertEqual([diagnostic["message"] for diagnostic in self.found(text + "\n")], [message], text)

    def test_a_word_that_resembles_text_is_not_reported(self):
        for text in ("# <@test>", "# <@next>", "# <@Test>", "# <text>", "# @text>", "# <output {}>", "# <@iew>"):
            self.assertEqual(self.found(text + "\n"), [], text)

    def test_an_opening_alone_is_reported_at_the_end_of_a_line_only(self):
        self.assertEqual([diagnostic["id"] for diagnostic in self.found("x -- <@\n")], ["unclosed_marker"])
        self.assertEqual(self.found("x -- <@ y\n"), [])

    def test_text_after_a_marker_is_reported_only_if_it_looks_like_a_part_of_it(self):
        for rest in (", used by p->x", ". See <stdio.h>.", ", see [a](<b>)", "%>", "-%>", "--%>", "#>", "?>",
                     "]]>", "</p>", "/>", '"/>', "; a -> b", ". <@iew>"):
            self.assertEqual(self.found(f"x = 1  # <@output#o [0,5]>{rest}\n"), [], rest)
        for rest in (">", "b>", "-b>", '"b>', "[0,1]>", "[0, 1]>", '{"a": 1}>'):
            found = self.found(f"x = 1  # <@output#o>{rest}\n")
            self.assertEqual([diagnostic["id"] for diagnostic in found], ["text_after_marker"], rest)

    def test_the_end_of_the_line_is_named_only_where_it_is(self):
        for text, end in (("y  # <@output#a [4,5", "the end of the line"),
                          ("y  # <@output#a [4,5 // <@text:anchor#x>", "the next marker"),
                          ('y  # <@output#a [0,1] {"a":"b}>', "the line ends before its end"),
                          ('y  # <@output#a [0,1] {"a":"b}> # <@text:anchor#x>', "the next marker begins before its end"),
                          ("/* <@text:anchor#j> <@text:anchor#k> */", 'expected "*/", found the next marker'),
                          ("# <@outp", 'the line ends inside the marker, after "<@outp"')):
            self.assertIn(end, self.found(text + "\n")[0]["message"], text)

    def test_a_comment_that_a_damaged_marker_begins_can_end_after_the_next_one(self):
        found = self.found("/* <@text:anchor#g> // <@text:anchor#h> */\n")
        self.assertEqual([diagnostic["message"] for diagnostic in found],
                         ['the block comment must end right after the marker: expected "*/", found the next marker'])
        found = self.found("/* <@text:anchor#g> */ // <@text:anchor#h> */\n")
        self.assertIn('"*/" ends a block comment, but "/*" does not begin one before this marker',
                      [diagnostic["message"] for diagnostic in found])

    def test_the_end_of_a_comment_is_not_a_leader_that_is_too_short(self):
        for text in ("/* a */ <@text:anchor#b>", "/**/<@text:anchor#b>", "/* a **/  <@text:anchor#b>"):
            [diagnostic] = self.found(text + "\n")
            self.assertIn("there is no comment leader before this marker", diagnostic["message"], text)
            self.assertEqual((diagnostic["column"], diagnostic["fix"]), (text.index("<") + 1, None))
        [diagnostic] = self.found("x / <@text:anchor#b>\n")
        self.assertEqual(diagnostic["message"], '"/" is not a comment leader: use "//"')

    def test_too_many_task_markers_without_an_id_are_told_what_an_id_is(self):
        for kinds, hint in (((":fit", ":plot"), ', and the text after ":" is a type'), (("", ""), "")):
            text = "".join(f"# <@task{kind}>\nx\n# <@task{kind}>\n" for kind in kinds)
            [diagnostic] = self.found(text)
            self.assertEqual(diagnostic["message"], "4 task markers have no id, but a task has exactly two; "
                             'an id begins with "#"' + hint)
            self.assertEqual({note["message"] for note in diagnostic["notes"]}, {"another marker without an id"})
        [diagnostic] = self.found("# <@task#a>\nx\n" * 3)
        self.assertEqual(diagnostic["message"], 'the id "a" is in 3 task markers, but a task has exactly two')

    def test_an_id_that_begins_with_another_character_is_not_missing(self):
        for written in ("/usr/bin", "$x", "(a)", "`a`", "*", "a/b", ",a", "a b"):
            [diagnostic] = self.found(f"# <@text:anchor#{written}>\n")
            self.assertIn(f'in it needs quotes: write #"{written}"', diagnostic["message"])
        [diagnostic] = self.found("x = 1  # <@output#/o [0,1]>\n")
        self.assertEqual(diagnostic["message"], 'an id with "/" in it needs quotes: write #"/o"')
        [diagnostic] = self.found("# <@text:anchor#/usr/bin and so on\n")
        self.assertEqual(diagnostic["message"], 'an id with "/" in it needs quotes: write #"/usr/bin"')
        for text in ("# <@text:anchor#>", "# <@text:anchor# a>", "# <@output# [0,1]>", "x  # <@output#[0,1]>",
                     "# <@output#{}>", "# <@text:anchor##a>", "# <@text:anchor#", "/* <@text:anchor#*/",
                     "# <@text:anchor## <@text:anchor#b>"):
            self.assertEqual(self.found(text + "\n")[0]["message"], 'the id is missing after "#"', text)

    def test_a_space_that_looks_like_a_blank_is_named(self):
        for text, message in (
                ("#\u00a0<@task#a>", 'only blanks may be between a comment leader and its marker, not "\\u00a0"'),
                ("x = 1  # <@output#o [0,\u00a01]>", 'expected a whole number in the range, found "\\u00a01"'),
                ("# <@text:anchor\u00a0#a>", '"anchor\\u00a0" is not a type of text marker; did you mean "anchor"?')):
            [diagnostic] = self.found(text + "\n")
            self.assertEqual(diagnostic["message"], message)
            self.assertNotIn("\u00a0", diagnostic["fix"]["description"] if diagnostic["fix"] else "")

    def test_a_remark_in_mixed_case_is_named(self):
        for before, word, column in (("Rem ", "Rem", 1), ("@rEM\t", "rEM", 2), ("x : REm  ", "REm", 5)):
            [diagnostic] = self.found(before + "<@text:anchor#b>\n")
            self.assertEqual((diagnostic["message"], diagnostic["column"], diagnostic["fix"]["description"]),
                             (f'"{word}" is not a comment leader: use "REM"', column, f'replace "{word}" by "REM"'))
        for before in ("Theorem Rem, ", "xRem ", ".Rem ", "-Rem ", "\u00e9Rem "):
            [diagnostic] = self.found(before + "<@text:anchor#b>\n")
            self.assertIn("there is no comment leader before this marker", diagnostic["message"], before)

    def test_a_blank_before_an_id_or_type_is_explained_without_a_fix_too(self):
        found = self.found("# <@task fit>\nx\n# <@task fit>\n# <@appendix>\n# <@task fit {}>\n")
        self.assertEqual([diagnostic["line"] for diagnostic in found], [1, 3, 5])
        for diagnostic in found:
            self.assertEqual(diagnostic["message"],
                             'expected ">" at the end of the marker, found "fit"; an id begins with "#"')
        self.assertEqual([diagnostic["fix"] for diagnostic in found], [None] * 3)
        [diagnostic] = self.found("# <@text anchor#a>\n")
        self.assertEqual((diagnostic["message"], diagnostic["fix"]["description"]),
                         ('expected ">" at the end of the marker, found "anchor"; a type begins with ":"',
                          'replace " " by ":"'))
        [diagnostic] = self.found("# <@task is the word>\n")
        self.assertEqual(diagnostic["message"], 'expected ">" at the end of the marker, found "is"')


def as_windows_writes_it(content):
    """Returns the content with a byte order mark and CRLF."""
    return b"\xef\xbb\xbf" + content.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")


class Fix(CheckTest):
    BROKEN = b'x  # <@output#a [0,1}>\n# <@ancor>\n# <@text:ancor#a>\n<!-- <@text:anchor#b -->\n'
    FIXED = b'x  # <@output#a [0,1]>\n# <@ancor>\n# <@text:anchor#a>\n<!-- <@text:anchor#b> -->\n'

    def fix(self, name, *options, **keywords):
        return tessera("check", "--fix", *options, name, **keywords)

    def read(self, name):
        return pathlib.Path(name).read_bytes()

    def test_the_fixes_are_made_and_counted(self):
        name = self.write("f", self.BROKEN)
        done = self.fix(name)
        self.assertEqual(self.read(name), self.FIXED)
        self.assertEqual((done.stdout, done.stderr.decode(), done.returncode), (b"", name + ": 3 fixes made\n", 0))
        self.assertEqual(os.listdir(self.folder), ["f"])

    def test_what_is_left_decides_the_status(self):
        name = self.write("f", b"# <@text:ancor#a>\n# <@task#b>\n")
        done = self.fix(name)
        self.assertEqual(self.read(name), b"# <@text:anchor#a>\n# <@task#b>\n")
        self.assertEqual((done.stdout.count(b"failure:"), done.stdout.count(b"warning:"), done.returncode), (1, 0, 1))

    def test_a_fix_that_the_file_does_not_confirm_is_not_made(self):
        """A task marker must get a partner, an entry its marker; an anchor that is cut off must have an id."""
        for text in (b"# <@task#a\n", b"# <@Task#a>\nx\n# <@task#bc>\n", b"# <@appendix>\n# <@task#a {}\n",
                     b"# <@text:anchor\n", b"x  # <@output#a\n", b"# <@text:anchor#a results\n"):
            name = self.write("f", text)
            self.fix(name)
            self.assertEqual(self.read(name), text)

    def assertFixed(self, before, after):
        name = self.write("f", before)
        self.fix(name)
        self.assertEqual(self.read(name), after, before)

    def test_a_file_with_a_nul_keeps_its_rest(self):
        self.assertFixed(b"# <@text:ancor#a>\nx\0y\n# <@text:ancor#b>\n", b"# <@text:anchor#a>\nx\0y\n# <@text:anchor#b>\n")

    def test_a_join_leaves_what_ends_something_else(self):
        """The end of a comment, of embedded code and of a tag, and an empty quote line."""
        for marker, end in ((b"-- <@text:anchor#a", b"-->"), (b"# <@text:anchor#a", b"-->"),
                            (b"// <@text:anchor#a", b"  --->"), (b"# <@text:anchor#a", b"#>"),
                            (b"% <@text:anchor#a", b"%>"), (b"// <@text:anchor#a", b"/>"),
                            (b"# <@text:anchor#a", b">"), (b"# <@text:anchor#a", b" > ")):
            self.assertFixed(marker + b"\n" + end + b"\nx\n", marker + b">\n" + end + b"\nx\n")

    def test_a_join_takes_the_end_of_the_marker(self):
        for before, after in ((b"# <@text:anchor#a\n# >\n", b"# <@text:anchor#a >\n"),
                              (b"-- <@text:anchor#a\n-- >\n", b"-- <@text:anchor#a >\n"),
                              (b"<!-- <@text:anchor#a\n> -->\n", b"<!-- <@text:anchor#a> -->\n"),
                              (b"x  # <@output#a [0,1\n]>\n", b"x  # <@output#a [0,1]>\n")):
            self.assertFixed(before, after)

    def test_a_list_item_and_a_division_do_not_become_a_comment(self):
        for text in (b"- <@text:anchor#a>\n", b"  - <@text:anchor#a>\n", b"x = a / <@output#a [0,1]>\n",
                     b"/ <@text:anchor#a> /\n", b"x = a -\t<@output#a [0,1]>\n"):
            self.assertFixed(text, text)
            self.assertIn(b" is not a comment leader: use ", tessera("check", "-", stdin=text).stdout)

    def test_a_leader_that_is_certainly_too_short_is_completed(self):
        for before, after in ((b"-<@text:anchor#a>\n", b"--<@text:anchor#a>\n"),
                              (b"x = 1  /<@output#a [0,1]>\n", b"x = 1  //<@output#a [0,1]>\n"),
                              (b"/ <@text:anchor#a> */\n", b"/* <@text:anchor#a> */\n"),
                              (b"<!- <@text:anchor#a> -->\n", b"<!-- <@text:anchor#a> -->\n")):
            self.assertFixed(before, after)

    def test_text_after_a_marker_becomes_a_comment_of_the_same_kind(self):
        """ "/**" and "(**" begin documentation."""
        for opener, closer in ((b"/*", b"*/"), (b"/**", b"*/"), (b"/***", b"*/"), (b"(*", b"*)"), (b"(**", b"*)"),
                               (b"<!--", b"-->"), (b"{-", b"-}")):
            marker = opener + b" <@text:anchor#a>"
            rest = b" The sum. " + closer + b"\n"
            self.assertFixed(marker + rest, b" ".join((marker, closer, opener)) + rest)

    def test_an_id_that_was_joined_to_a_name_stays_whole(self):
        """The separator takes the place of one character that was written for it."""
        for name, fixed in ((b"text:anchorfit", b"text:anchor#fit"), (b"text:anchora", b"text:anchor#a"),
                            (b"text:anchor1", b"text:anchor#1"), (b"text:anchor-results", b"text:anchor#results"),
                            (b"text:anchor.results", b"text:anchor#results"), (b"text:anchor_1", b"text:anchor#1"),
                            (b"text:anchor--1", b"text:anchor#-1"), (b"text:anchors", b"text:anchor"),
                            (b"text:anchor-", b"text:anchor"), (b"text.anchor#a", b"text:anchor#a"),
                            (b"text_anchor#a", b"text:anchor#a"), (b"textanchor#a", b"text:anchor#a")):
            self.assertFixed(b"# <@" + name + b">\n", b"# <@" + fixed + b">\n")
        for name in (b"output-o1", b"output.o1", b"output_o1", b"outputo1"):
            self.assertFixed(b"x  # <@" + name + b" [0,1]>\n", b"x  # <@output#o1 [0,1]>\n")

    def test_another_space_before_a_part_becomes_the_blank(self):
        """It would be a part of the id or type otherwise."""
        for space in ("\u00a0", "\u2009", "\u202f", "\u3000", "\u200b", "\ufeff", "\u00a0\u00a0"):
            for before, after in (("x  # <@output#o1{}[0,1]>\n", "x  # <@output#o1 [0,1]>\n"),
                                  ('x  # <@output#o1{}{{"a":1}}>\n', 'x  # <@output#o1 {{"a":1}}>\n'),
                                  ("x  # <@output:plot{}[0,1]>\n", "x  # <@output:plot [0,1]>\n")):
                self.assertFixed(before.format(space).encode(), after.format("").encode())
        nothing = "x  # <@output#\u00a0[0,1]>\n".encode()
        self.assertFixed(nothing, nothing)
        code = b"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n"
        self.assertFixed(code + '# <@task#a\u00a0{"text":"A"}>\n'.encode(), code + b'# <@task#a {"text":"A"}>\n')

    def test_a_letter_before_a_part_stays_in_the_id(self):
        for letter in ("\u00e9", "\u4e2d", "\U0001f3c6"):
            self.assertFixed(f"x  # <@output#o{letter}[0,1]>\n".encode(), f"x  # <@output#o{letter} [0,1]>\n".encode())

    def test_fixes_that_must_not_be_made_together_do_not_prevent_others(self):
        self.assertFixed(b"# <@Text:anchor#q>\n# <@task#aaa>\nx\n# <@taks#bbb>\n# <@taks#aaa>\ny\n# <@task#bbb>\n",
                         b"# <@text:anchor#q>\n# <@task#aaa>\nx\n# <@taks#bbb>\n# <@task#aaa>\ny\n# <@task#bbb>\n")

    def test_fixes_that_touch_are_made_one_after_the_other(self):
        code = b"# <@task#a>\nx\n# <@task#a>\n# <@appendix>\n"
        name = self.write("f", code + b'# <@task#a {"txt":1,"collapsd":true}\n')
        self.fix(name)
        self.assertEqual(self.read(name), code + b'# <@task#a {"text":"1","collapsed":"true"}>\n')

    def write_sources(self, folder, change):
        """Writes all golden sources, changed, to a folder of its own."""
        path = self.folder / folder
        path.mkdir()
        for source in SOURCES:
            (path / source.name).write_bytes(change(source.read_bytes()))
        return path

    def read_sources(self, path):
        return {source.name: (path / source.name).read_bytes() for source in SOURCES}

    def fix_in(self, path, *options):
        return subprocess.run([PROGRAM, "check", "--fix", *options, *(source.name for source in SOURCES)], cwd=path,
                              capture_output=True, timeout=120)

    def test_a_dry_run_writes_what_patch_applies(self):
        """Also with a byte order mark and CRLF, and without the last line ending."""
        changes = {"as_is": bytes, "windows": as_windows_writes_it, "no_ending": lambda text: text.rstrip(b"\r\n")}
        for name, change in changes.items():
            fixed, patched = (self.write_sources(name + kind, change) for kind in ("_fixed", "_patched"))
            difference = self.fix_in(fixed, "--dry-run").stdout
            self.assertGreater(difference.count(b"\n+++ "), 20)
            self.assertEqual(self.read_sources(fixed), self.read_sources(patched))
            subprocess.run(["patch", "--binary", "-p0", "-s"], cwd=patched, input=difference, check=True)
            self.assertRegex(self.fix_in(fixed).stderr, b"fixes made")
            self.assertEqual(self.read_sources(fixed), self.read_sources(patched))
            # A second run has nothing to do.
            self.assertNotRegex(self.fix_in(fixed).stderr, b"made")
            self.assertEqual(self.read_sources(fixed), self.read_sources(patched))

    def test_a_fixed_file_has_no_fixes(self):
        path = self.write_sources("sources", bytes)
        self.fix_in(path)
        done = tessera("check", "--format", "json", *(source.name for source in SOURCES), cwd=path)
        for record in documents(done.stdout):
            self.assertFalse([found for found in record["diagnostics"] if found["fix"]], record["file"])

    def test_everything_else_stays_byte_for_byte(self):
        unix = self.write_sources("unix", lambda text: text.replace(b"\r\n", b"\n").removeprefix(b"\xef\xbb\xbf"))
        windows = self.write_sources("windows", lambda text: as_windows_writes_it(text.removeprefix(b"\xef\xbb\xbf")))
        self.fix_in(unix)
        self.fix_in(windows)
        for name, content in self.read_sources(unix).items():
            self.assertEqual((windows / name).read_bytes(), as_windows_writes_it(content), name)

    def test_unusual_file_names_are_quoted_for_patch(self):
        for name in ("with blank", "tab\there", 'quo"te', "back\\slash", "\u00e9", "-x", "end ", "a b "):
            path = self.write(name, self.BROKEN)
            difference = subprocess.run([PROGRAM, "check", "--fix", "--dry-run", "./" + name], cwd=self.folder,
                                        capture_output=True).stdout
            subprocess.run(["patch", "-p0", "-s"], cwd=self.folder, input=difference, check=True)
            self.assertEqual(self.read(path), self.FIXED, name)

    def test_mode_and_symbolic_links_stay(self):
        name = self.write("f", self.BROKEN)
        os.chmod(name, 0o750)
        (self.folder / "links").mkdir()
        link = self.folder / "links" / "link"
        link.symlink_to("../f")
        self.fix(str(link))
        self.assertTrue(link.is_symlink())
        self.assertEqual((self.read(name), stat.S_IMODE(os.stat(name).st_mode)), (self.FIXED, 0o750))

    @unittest.skipUnless(can_give_away(), "files cannot be given away")
    def test_the_owner_stays(self):
        name = self.write("f", self.BROKEN)
        os.chown(name, 1234, 4321)
        os.chmod(name, 0o4755)
        self.fix(name)
        status = os.stat(name)
        self.assertEqual((status.st_uid, status.st_gid, stat.S_IMODE(status.st_mode)), (1234, 4321, 0o4755))

    def fix_as_nobody(self, *arguments):
        self.folder.chmod(0o777)
        try:
            nobody = {"user": 65534, "group": 65534, "extra_groups": ()}
            if subprocess.run(["test", "-w", self.folder], **nobody).returncode != 0:
                self.skipTest("the user nobody cannot use the folder of the test")
            return self.fix(*arguments, **nobody, env=WITHOUT_COUNTERS)
        except PermissionError:
            self.skipTest("the user nobody cannot run the program")

    @unittest.skipUnless(can_give_away(), "files cannot be given away")
    def test_a_file_whose_group_cannot_be_kept_is_refused(self):
        name = self.write("f", self.BROKEN)
        os.chown(name, 65534, 4321)
        os.chmod(name, 0o640)
        done = self.fix_as_nobody(name)
        self.assertNotFixed(done, name, "cannot be replaced by a file with its owner and permissions: Operation not "
                            "permitted; change the permissions of the file and its folder, let the owner of the file "
                            "fix it, or leave out --fix")
        self.assertEqual((self.read(name), os.listdir(self.folder)), (self.BROKEN, ["f"]))

    @unittest.skipUnless(can_give_away(), "files cannot be given away")
    def test_the_folders_above_may_be_private(self):
        folder = self.folder / "private" / "inner"
        folder.mkdir(parents=True)
        for name in ("f", "out"):
            self.write(f"private/inner/{name}", self.BROKEN)
            os.chown(folder / name, 65534, 65534)
        folder.chmod(0o777)
        # The user is in the folder, but could not come there.
        run = lambda *arguments: subprocess.run(
            ["sh", "-c", 'cd "$0" && exec setpriv --reuid 65534 --regid 65534 --clear-groups "$@"', folder, PROGRAM, *arguments],
            capture_output=True, env=WITHOUT_COUNTERS)
        if run("--version").returncode != 0:
            self.skipTest("the user nobody cannot run the program")
        (self.folder / "private").chmod(0o700)
        for arguments in (("check", "--fix", "f"), ("parse", "-o", "out", "f"), ("parse", "-o", "new", "f")):
            self.assertEqual(run(*arguments).stderr.decode().replace("f: 3 fixes made\n", ""), "", arguments)
        self.assertEqual((folder / "f").read_bytes(), self.FIXED)

    def test_a_name_may_be_long(self):
        for name in ("n" * 255, "\u00e9" * 127):
            self.fix(self.write(name, self.BROKEN))
            self.assertEqual((self.folder / name).read_bytes(), self.FIXED)

    def assertNotFixed(self, done, name, message, status=3):
        self.assertEqual(done.stderr.decode(), f"{name}: error: {message}\n")
        self.assertEqual(done.returncode, status)

    def test_standard_input_is_refused(self):
        for options in ([], ["--dry-run"]):
            self.assertNotFixed(self.fix("-", *options, stdin=self.BROKEN), "-",
                                "standard input cannot be fixed; name a file, or check it without --fix", 2)

    def test_what_is_no_regular_file_is_refused_and_the_others_are_fixed(self):
        name = self.write("f", self.BROKEN)
        done = tessera("check", "--fix", "/dev/null", name)
        self.assertEqual(done.stderr.decode().splitlines(), [
            "/dev/null: error: cannot be fixed: it is not a regular file; leave it out, or check it without --fix",
            name + ": 3 fixes made"])
        self.assertEqual((self.read(name), done.returncode), (self.FIXED, 3))

    def test_a_file_that_may_not_be_written_is_refused_and_reported(self):
        name = self.write("f", self.BROKEN)
        os.chmod(name, 0o444)
        done = self.fix_as_nobody(name, "--format", "json") if os.geteuid() == 0 else self.fix(name, "--format", "json")
        self.assertNotFixed(done, name, "is not writable: Permission denied; change the permissions of the file and "
                            "its folder, let the owner of the file fix it, or leave out --fix")
        self.assertEqual(len(documents(done.stdout)[0]["diagnostics"]), 3)
        self.assertEqual((self.read(name), os.listdir(self.folder)), (self.BROKEN, ["f"]))

    def test_a_file_with_several_names_is_refused(self):
        name = self.write("f", self.BROKEN)
        os.link(name, self.folder / "g")
        self.assertNotFixed(self.fix(name), name, "has several names (hard links), and only one would get the new "
                            "content; copy it, or correct it by hand")
        self.assertEqual(self.read(name), self.BROKEN)

    def test_a_disk_that_is_full_leaves_the_old_file(self):
        name = self.write("f", self.BROKEN + b"x\n" * 100000)
        before = self.read(name)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
        done = self.fix(name, preexec_fn=limit, env=WITHOUT_COUNTERS)
        self.assertNotFixed(done, name, "cannot be written: File too large; check it without --fix")
        self.assertEqual((self.read(name), os.listdir(self.folder)), (before, ["f"]))


if __name__ == "__main__":
    unittest.main()
