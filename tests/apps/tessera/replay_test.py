#!/usr/bin/env python3
"""Replays recordings, and generated calls that are too many for a golden file.

replay_test.py PROGRAM
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
EXAMPLES = pathlib.Path(__file__).resolve().parents[3] / "examples"
PIECES = PROGRAM.parent.parent / "lib" / "libtessera_pieces.so"
TASKS = "TaskSnippetParserImpl"


def run(*arguments, stdin=b""):
    """Returns the lines that the program writes."""
    done = subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, timeout=300)
    assert (done.returncode, done.stderr) == (0, b""), (arguments, done.stderr[:500])
    return done.stdout.split(b"\n")[:-1]


def tessera(*arguments):
    return [json.loads(line) for line in run(*arguments)]


def parse(text, kind, block=None):
    """Returns a call of the task parser; without `block` it reuses the block of the previous call."""
    snippet = {"text": text, "type": {"group": 0, "kind": kind}}
    if block is not None:
        snippet["auxiliaryText"] = block
    return {"op": "parse", "parser": TASKS, "snippet": snippet}


def written(*calls):
    return "".join(json.dumps(call) + "\n" for call in calls).encode()


def replay(*calls):
    return [json.loads(line) for line in run("replay", "-", stdin=written(*calls))]


def pair(task):
    return f"# <@task#{task}>\n# <@task#{task}>"


class LongTask(unittest.TestCase):
    """The count of an open task wraps to 0 at line 65,536."""

    PLAIN = parse("plain", 3)

    def replay(self, last, *after, inside=65534):
        """Returns the answer to the last line, the answers after it, and the nodes."""
        answers = run("replay", "-", stdin=written(parse("x # <@task#a>", 0, pair("a"))) +
                      inside * written(self.PLAIN) + written(last, *after, {"op": "nodes"}))
        self.assertEqual(set(answers[1:inside + 1]), {
            b'{"result":{"type":{"group":0,"kind":3},"flag":false,"markerTypes":[]},'
            b'"log":["Parsing using the task parser","In LineNodeParserService"]}'})
        answers = list(map(json.loads, answers[inside + 1:]))
        return answers[0], answers[1:-1], answers[-1]["nodes"]

    def count(self, node):
        return node["children"][0]["liveTaskData"]["numCodeLines"]

    def test_a_plain_line_wraps_to_idle_and_closes_nothing(self):
        last, after, nodes = self.replay(self.PLAIN, self.PLAIN)
        self.assertEqual(last["result"]["type"], {"group": 0, "kind": 0})
        self.assertEqual(last["log"], ["Parsing using the task parser", "In LineNodeParserService"])
        self.assertEqual(self.count(nodes[0]), 0)
        # Idle again: a plain line counts as the first of a task without a header.
        self.assertIn("Task marker found for first time", after[0]["log"])
        self.assertEqual((len(nodes), nodes[-1]["kind"]), (65538, "LineNode"))

    def test_a_closing_line_writes_the_count_0(self):
        for kind in (0, 3):
            last, _, nodes = self.replay(parse("# <@task#a>", kind))
            self.assertEqual(last["result"]["type"]["kind"], 0)
            self.assertEqual(last["log"], ["Parsing using the task parser",
                                           "End of task found, cleaning up 0", "",
                                           "In LineNodeParserService"])
            self.assertEqual((self.count(nodes[0]), len(nodes)), (0, 65537))

    def test_closing_one_line_earlier_writes_the_largest_count(self):
        last, _, nodes = self.replay(parse("x # <@task#a>", 3), inside=65533)
        self.assertIn("End of task found, cleaning up 65535", last["log"])
        self.assertEqual(self.count(nodes[0]), 65535)

    def test_a_marker_with_another_id_wraps_and_overlaps(self):
        last, after, nodes = self.replay(parse("y # <@task#b>", 3), parse("y # <@task#b>", 0, pair("b")))
        self.assertEqual(last["result"]["type"]["kind"], 0)
        self.assertEqual([failure["failureId"] for node in nodes[-2:] for failure in node["parserFailures"]],
                         ["overlapping_task_marker", "missing_task_marker_pair"])
        self.assertEqual(after[0]["result"]["type"]["kind"], 0)

    def test_the_id_of_the_wrapped_task_needs_no_pairing(self):
        header = ["Parsing live task appendix data", "finding Appendix Entry",
                  "Adding Header node to tessera doc", ""]
        first = ["Parsing using the task parser", "Task marker found for first time",
                 "Adding task marker to the list of seen markers"]
        close = "Closing task found on same line, closing it now"
        end, line = "End of task found, cleaning up ", "In LineNodeParserService"
        cases = {
            "x # <@task#a>": (3, header + [line], ["LiveAppLineNode", "LineNode"]),
            "x # <@task#a> # <@task#b>": (3, header + [line], ["LiveAppLineNode", "LineNode"]),
            "x # <@task#a> # <@task#a>":
                (0, header + [close, end + "1", "", line], ["LiveAppLineNode", "LineNode"]),
            "# <@task#a> # <@task#a>": (0, header + [close, end + "0", ""], ["LiveAppLineNode"]),
        }
        for text, (kind, log, kinds) in cases.items():
            with self.subTest(text=text):
                # The marker without a partner in between does not change the id.
                _, after, nodes = self.replay(self.PLAIN, parse("# <@task#c>", 1), parse(text, 2, ""))
                self.assertEqual(after[1]["result"]["type"]["kind"], kind)
                self.assertEqual(after[1]["log"], first + log)
                self.assertEqual([node["kind"] for node in nodes[65538:]], kinds)
                self.assertEqual(self.count(nodes[65538]), int(close in log and "x" in text))


class OverlappingIds(unittest.TestCase):
    def assertAllEqual(self, actual, expected):
        """Like assertEqual, which takes minutes to show where lists of this length differ."""
        self.assertEqual(len(actual), len(expected))
        different = (pair for pair in zip(range(len(actual)), actual, expected) if pair[1] != pair[2])
        self.assertIsNone(next(different, None))

    def test_fifty_thousand_are_all_remembered_and_in_order(self):
        ids = [f"t{number}" for number in range(50000)]
        inside = [parse(f"# <@task#{task}>", 3) for task in ids]
        after = [parse(f"# <@task#{task}>", 0, pair(task)) for task in ids]
        *answers, last = replay(parse("x # <@task#a>", 0, pair("a")), *inside, parse("# <@task#a>", 3),
                                *after, {"op": "reset", "parser": TASKS}, parse("# <@task#t7>", 0, pair("t7")),
                                {"op": "nodes"})
        nodes = last["nodes"]
        kinds = [answer["result"]["type"]["kind"] for answer in answers if "result" in answer]
        self.assertAllEqual(kinds, [3] * 50001 + [0] * 50001 + [3])
        failures = [(failure["failureId"], failure["markerInfo"]["markerId"])
                    for node in nodes for failure in node["parserFailures"]]
        self.assertAllEqual(failures, [("overlapping_task_marker", task) for task in ids] +
                            [("missing_task_marker_pair", task) for task in ids])
        # The opening and the closing line are counted too.
        self.assertEqual(nodes[0]["children"][0]["liveTaskData"]["numCodeLines"], 50002)


class Recordings(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def documents(self, *names):
        """Compares what is parsed, with and without pieces, with the replay of the recording; returns the
        documents with pieces."""
        self.replayed(["--bare"], [], *names)
        return self.replayed([], ["--bundle", PIECES], *names)

    def replayed(self, parse_options, replay_options, *names):
        record = str(self.folder / "calls.ndjson")
        parsed = tessera("parse", *parse_options, "--format", "ndjson", "--trace", "--record", record, *names)
        answers = tessera("replay", *replay_options, record)
        documents = [answer["nodes"] for answer in answers if "nodes" in answer]
        self.assertEqual(documents, [document["nodes"] for document in parsed])
        lines = [line for document in parsed for line in document["lines"]]
        self.assertEqual([answer["result"] for answer in answers if "result" in answer],
                         [{key: line[key] for key in ("type", "flag", "markerTypes")} for line in lines])
        # The records of a line are those of its calls.
        logs, records = [], []
        for answer in answers:
            logs += answer["log"] if "canParse" in answer or "result" in answer else []
        for line in lines:
            records += line["log"]
        self.assertEqual(logs, records)
        return documents

    def write(self, name, data):
        (self.folder / name).write_bytes(data)
        return str(self.folder / name)

    def test_every_example_replays_to_its_document(self):
        for path in sorted(path for path in EXAMPLES.iterdir() if path.is_file()):
            with self.subTest(path=path.name):
                self.documents(str(path))

    def test_a_recording_with_pieces_replays_without_them(self):
        name = self.write("f", b"ab # <@output#o [0,1]> # <@control#c [1,2]>\n# <@task#t> # <@task#t>\n")
        calls = [str(self.folder / option) for option in ("pieces", "bare")]
        tessera("parse", "--format", "ndjson", "--record", calls[0], name)
        bare, = tessera("parse", "--bare", "--format", "ndjson", "--record", calls[1], name)
        # The calls of the snippet parsers are the same.
        self.assertEqual(*(pathlib.Path(call).read_bytes() for call in calls))
        *_, last = tessera("replay", calls[0])
        self.assertEqual(last["nodes"], bare["nodes"])

    def test_other_spellings_of_an_example_give_the_same_document(self):
        for path in sorted(path for path in EXAMPLES.iterdir() if path.is_file()):
            data = path.read_bytes()
            expected = self.documents(str(path))
            spellings = {
                "crlf": data.replace(b"\n", b"\r\n"),
                "bom": b"\xef\xbb\xbf" + data,
                "both": b"\xef\xbb\xbf" + data.replace(b"\n", b"\r\n"),
                "bare": data.removesuffix(b"\n"),
            }
            for name, spelling in spellings.items():
                with self.subTest(path=path.name, spelling=name):
                    self.assertEqual(self.documents(self.write(name, spelling)), expected)

    def test_odd_files_replay_to_their_documents(self):
        task = "x # <@task#ä>\n# <@task#ä>\n"
        files = {
            "empty": b"",
            "one ending": b"\n",
            "appendix alone": b"# <@appendix>\n# <@task#a>\n",
            "appendix": (task + '# <@appendix>\n# <@task#ä {"uniqueId":"\\ud800","z":[1.0,-0.0,1e400]}>\n'
                         '# <@task#ä {"uniqueId":"\\ud800\\n","z":[1.0,-0.0,1e300]}>\n').encode(),
            "controls": bytes(range(1, 10)) + bytes(range(11, 128)) + b"\n# <@task#\"\\u0000\">\r\r\n",
            "damaged": b"# <@task#a {]}>\n# <@appendix>\n?\n# <@task#a {]}>\n# <@appendix>\n",
            "pairs": "# <@task#\"\\ud83d\\ude00\"> # <@task#😀>\n# <@task#\"\\ud800\">\n".encode(),
        }
        names = [self.write(name, data) for name, data in files.items()]
        for name in names:
            with self.subTest(name=name):
                self.documents(name)
        # In sequence, and each twice.
        self.documents(*names, *reversed(names))


class TasksExample(unittest.TestCase):
    """One example has a task of each sort."""

    def setUp(self):
        source = (EXAMPLES / "tasks.py").read_text()
        self.code, self.appendix = source.split("# <@appendix>\n")
        document, = tessera("parse", "--format", "ndjson", str(EXAMPLES / "tasks.py"))
        self.headers = [node for node in document["nodes"] if node["kind"] == "LiveAppLineNode"]
        self.failures = [(failure["failureId"], self.code.count(f'@task#{failure["markerInfo"]["markerId"]}>'))
                         for node in document["nodes"] for failure in node["parserFailures"]]

    def test_over_lines_and_on_one_line(self):
        counts = [node["children"][0]["liveTaskData"]["numCodeLines"] for node in self.headers]
        self.assertIn(1, counts)
        self.assertGreater(max(counts), 3)

    def test_overlapping_and_unpaired_and_three_times_the_same_id(self):
        self.assertIn(("overlapping_task_marker", 2), self.failures)
        self.assertIn(("missing_task_marker_pair", 1), self.failures)
        self.assertEqual(self.failures.count(("missing_task_marker_pair", 3)), 3)

    def test_with_an_anchor(self):
        self.assertTrue(any(node["anchorId"] for node in self.headers))

    def test_settings_beyond_ascii(self):
        texts = "".join(node["children"][0]["liveTaskData"]["text"] for node in self.headers)
        self.assertTrue(any(ord(character) > 0xFFFF for character in texts))


if __name__ == "__main__":
    unittest.main()
