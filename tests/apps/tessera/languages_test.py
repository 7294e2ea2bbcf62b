#!/usr/bin/env python3
"""Checks that the sources in tests/golden/languages give the same document for the same markers.

languages_test.py PROGRAM [--update]

Each source has the same markers in the comments of its language. Its code is different, so of its
document only what comes from the markers is compared, in the order of the document: see `marked`.
With --update the expected document is written anew: read the difference before it is committed.
"""
import json
import pathlib
import re
import subprocess
import sys
import unittest

LANGUAGES = pathlib.Path(__file__).resolve().parents[2] / "golden" / "languages"
TABLE = json.loads((LANGUAGES / "languages.json").read_text(encoding="utf-8"))
EXPECTED = LANGUAGES / "expected.json"
# The range of a piece is not compared: the text before it is that of the language.
OF_PIECES = ("kind", "text", "id", "type", "data")
# A marker with its comment at the end of a line. Nothing follows the markers of these sources.
LAST_MARKER = re.compile(
    r"(#+|%+|;+|!+|//+|--+|\b(REM|rem)|/[*]+|[(][*]+|<!--+|[{]-) *<@.*> *([*]+[/)]|--+>|-})?$"
)
PROGRAM = None


def tessera(*arguments):
    """Runs the program on all sources and returns its status and output."""
    files = [language["file"] for language in TABLE]
    command = [PROGRAM, *arguments, *files]
    done = subprocess.run(command, cwd=LANGUAGES, stdout=subprocess.PIPE, text=True)
    return done.returncode, done.stdout


def parse():
    """Returns the documents by language."""
    status, text = tessera("parse", "--format", "ndjson")
    assert status == 0
    documents = map(json.loads, text.splitlines())
    return {language["language"]: shown for language, shown in zip(TABLE, documents)}


def lines_of(language):
    return (LANGUAGES / language["file"]).read_text(encoding="utf-8").splitlines()


def marked(nodes):
    """Returns what the markers add to the document: the anchor of each line that has one, the task data
    of each header with its number of lines, the pieces, and every failure."""
    found = []
    for node in nodes:
        if node["anchorId"]:
            found.append({"kind": node["kind"], "anchorId": node["anchorId"]})
        if node["kind"] == "LiveAppIntegratedInlineNode":
            found.append({key: node[key] for key in ("kind", "id", "liveTaskData")})
        elif node["kind"] not in ("LineNode", "LiveAppLineNode", "PlainTextNode"):
            found.append({key: node[key] for key in OF_PIECES})
        found += node["parserFailures"]
        found += marked(node["children"])
    return found


def marker_types(shown):
    return [line["markerTypes"] for line in shown["lines"] if line["markerTypes"]]


def texts(nodes):
    for node in nodes:
        yield node.get("text", "")
        yield from texts(node["children"])


def pattern(comment):
    """Returns an expression for a marker in a comment: "#" for a leader, "/* */" for a block comment."""
    opener, _, closer = comment.partition(" ")
    end = f"> *[*-]*{re.escape(closer)}" if closer else ">(?! *([*]+[/)]|-+[>}]))"
    return re.compile(re.escape(opener) + r"[*-]* *<@[^\n]*" + end)


class Languages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.documents = parse()
        cls.expected = json.loads(EXPECTED.read_text(encoding="utf-8"))

    def test_there_are_at_least_forty(self):
        self.assertGreaterEqual(len(self.documents), 40)

    def test_the_table_names_every_source(self):
        present = [path for path in LANGUAGES.glob("*/*") if path.is_file()]
        named = [LANGUAGES / language["file"] for language in TABLE]
        self.assertEqual(sorted(named), sorted(present))

    def test_every_comment_of_a_language_contains_a_marker(self):
        for language in TABLE:
            for comment in language["comments"]:
                with self.subTest(language=language["language"], comment=comment):
                    self.assertRegex("\n".join(lines_of(language)), pattern(comment))

    def test_the_same_markers_give_the_same_document(self):
        for name, shown in self.documents.items():
            with self.subTest(name):
                self.assertEqual(marked(shown["nodes"]), self.expected["marked"])
                self.assertEqual(marker_types(shown), self.expected["markerTypes"])

    def test_only_the_text_of_the_markers_is_removed(self):
        for language in TABLE:
            shown = self.documents[language["language"]]
            for line, entry in zip(lines_of(language), shown["lines"]):
                with self.subTest(language["language"], line=entry["line"]):
                    text = "".join(texts(shown["nodes"][node] for node in entry["nodes"]))
                    self.assertEqual(text, LAST_MARKER.sub("", line))

    def test_check_finds_nothing(self):
        self.assertEqual(tessera("check"), (0, ""))


def update():
    shown = parse()[TABLE[0]["language"]]
    result = {"marked": marked(shown["nodes"]), "markerTypes": marker_types(shown)}
    EXPECTED.write_text(json.dumps(result, indent=2) + "\n", encoding="utf-8")


if __name__ == "__main__":
    PROGRAM = pathlib.Path(sys.argv[1]).resolve()
    if "--update" in sys.argv[2:]:
        update()
    else:
        unittest.main(argv=sys.argv[:1])
