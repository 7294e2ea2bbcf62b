#!/usr/bin/env python3
"""Tests the page that `tessera parse --format html` writes in Chromium.

browser_test.py PROGRAM OUTPUT_DATA_BUNDLE
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import chromium

PROGRAM, BUNDLE = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
del sys.argv[1:3]
EXAMPLES = sorted(path for path in (pathlib.Path(__file__).resolve().parents[4] / "examples").iterdir() if path.is_file())
# How a test tells CTest that it did not run.
SKIPPED = 77

SOURCE = """# <@text:anchor#start>
verbose = True  # <@control:switch#verbose [10,14]>
color = "blue"  # <@control:choice#color [8,14] {"options":["red","green","blue"]}>
rate = 0.25  # <@control:slider#rate [7,11] {"min":0,"max":1,"step":0.05}>
# <@task#fit>
y = model.fit(x)  # <@output:plot#result [4,16] {"format":"short"}>
# <@task#fit>
z = 1  # <@outputs#z [0,1]>
# <@appendix>
# <@task#fit {"text":"Fit the model","run":"auto"}>
"""

# Each starts with a mark that must be found as text. Were one of them read as HTML, it would make an element, run a
# script, or load something.
PAYLOADS = [
    "<script>attack()</script>", "<SCRIPT>attack()</SCRIPT>", "</script><script>attack()</script>",
    "</style><script>attack()</script>", "</title><script>attack()</script>", "</textarea><script>attack()</script>",
    "<img src=x onerror=attack()>", "<svg onload=attack()>", "<svg><script>attack()</script></svg>",
    "<iframe src=javascript:attack()>", "<a href=javascript:attack()>go</a>", "<body onload=attack()>",
    "<details open ontoggle=attack()>", "<style>@import 'http://127.0.0.1:9/x'</style>", "<link rel=stylesheet href=//x>",
    "<meta http-equiv=refresh content=0>", "<base href=//x>", "<form action=//x><input autofocus onfocus=attack()>",
    "<!--", "-->", "<![CDATA[", "]]>", "<?php", "&lt;script&gt;attack()&lt;/script&gt;", "&#60;script>attack()&#60;/script>",
    "\\\"><script>attack()</script>", "'><script>attack()</script>", "` onload=attack() `", "</li></ol></div><h1>", "</pre><h2>",
    "</summary></details><h2>", "<math><mtext><style><img src=x onerror=attack()>", "<template><script>attack()</script>",
    "<noscript><img src=x onerror=attack()>",
]


def setUpModule():
    if chromium.PROGRAM is None:
        print("skipped: chromium is not installed")
        sys.exit(SKIPPED)


class BrowserTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = cls.enterClassContext(chromium.Browser())
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return str(path)

    def page(self, *arguments, status=0, **options):
        """Writes the page of a run and opens it."""
        target = self.folder / "page.html"
        done = subprocess.run([PROGRAM, "parse", "--format", "html", *arguments, "-o", target], capture_output=True, timeout=300)
        self.assertEqual(done.returncode, status, done.stderr.decode())
        tab = self.browser.open(target.as_uri(), **options)
        self.addCleanup(tab.close)
        # Blocks of lines are laid out when a frame is drawn, their groups with the next one.
        tab.screenshot()
        tab.screenshot()
        return tab


def value_of(node, key):
    return node.get(key, {}).get("value", "")


def properties(node):
    return {entry["name"]: entry["value"].get("value") for entry in node.get("properties", [])}


class Accessibility(BrowserTest):
    def nodes(self, tab):
        return [(value_of(node, "role"), value_of(node, "name"), node) for node in tab.tree()]

    def test_landmarks_headings_and_controls_have_their_names(self):
        first, second = self.write("a.py", SOURCE), self.write("b.py", "x = 1\n# <@text:anchor#b>\n")
        found = [(role, name) for role, name, _ in self.nodes(self.page(first, second))]
        for expected in [
            ("banner", ""), ("navigation", "Files"), ("main", ""), ("contentinfo", ""), ("region", "Summary"),
            ("region", "Failures and warnings"), ("region", first), ("region", second), ("navigation", "Outline " + first),
            ("navigation", "Outline " + second), ("region", "What the failures and warnings mean"),
            ("heading", "2 files"), ("heading", "Summary"), ("heading", first), ("heading", "Task: Fit the model"),
            ("heading", "Appendix"), ("slider", "rate"), ("checkbox", "verbose"), ("radio", "blue"), ("group", "color"),
            ("link", "Skip to the content"), ("link", "anchor start"), ("image", "1 of 1"),
            ("mark", ""), ("note", ""),
        ]:
            self.assertIn(expected, found)

    def test_controls_tell_their_values_and_that_they_are_disabled(self):
        nodes = {(role, name): properties(node) | {"value": value_of(node, "value")}
                 for role, name, node in self.nodes(self.page(self.write("a.py", SOURCE)))}
        slider = nodes["slider", "rate"]
        self.assertEqual((slider["value"], slider["valuemin"], slider["valuemax"], slider["disabled"]), (0.25, 0, 1, True))
        self.assertEqual(nodes["checkbox", "verbose"]["checked"], "true")
        self.assertEqual([nodes["radio", name]["checked"] for name in ("red", "green", "blue")], ["false", "false", "true"])

    def test_headings_are_in_order(self):
        levels = [properties(node)["level"] for role, _, node in self.nodes(self.page(*map(str, EXAMPLES))) if role == "heading"]
        self.assertEqual(levels[0], 1)
        self.assertEqual(levels.count(1), 1)
        for before, after in zip(levels, levels[1:]):
            self.assertLessEqual(after, before + 1)

    def test_everything_that_can_be_focused_has_a_name(self):
        for role, name, node in self.nodes(self.page(*map(str, EXAMPLES))):
            if properties(node).get("focusable") and role not in ("RootWebArea", "main"):
                self.assertNotEqual(name, "", (role, node))

    def test_lines_are_items_of_lists_with_their_numbers(self):
        markers = [name.strip() for role, name, _ in self.nodes(self.page(self.write("a.py", "a\nb\nc\n"))) if role == "ListMarker"]
        self.assertEqual(markers, ["1", "2", "3"])


    def test_lines_out_of_view_are_in_the_tree_unless_the_page_is_large(self):
        for lines, everything in ((5000, True), (5001, False)):
            tab = self.page(self.write("a.py", "".join(f"line {n}\n" for n in range(lines))))
            items = sum(role == "listitem" for role, _, _ in self.nodes(tab))
            self.assertEqual(items >= lines, everything, items)
            # A link leads to each of them all the same.
            tab.evaluate("location.hash = '#f1-4000'")
            tab.screenshot()
            self.assertTrue(tab.evaluate("(r => r.top >= 0 && r.bottom <= innerHeight)"
                                         "(document.getElementById('f1-4000').getBoundingClientRect())"))


class Keyboard(BrowserTest):
    FOCUSED = "(e => e.tagName + ' ' + e.textContent.trim())(document.activeElement)"

    def test_the_first_tab_stop_skips_to_the_content(self):
        tab = self.page(self.write("a.py", SOURCE), self.write("b.py", "x\n"))
        tab.press("Tab")
        self.assertEqual(tab.evaluate(self.FOCUSED), "A Skip to the content")
        self.assertGreaterEqual(tab.evaluate("document.activeElement.getBoundingClientRect().top"), 0)
        tab.press("Enter")
        self.assertEqual(tab.evaluate("location.hash"), "#main")
        tab.press("Tab")
        self.assertTrue(tab.evaluate("document.querySelector('main').contains(document.activeElement)"))

    def test_tab_goes_through_everything_in_the_order_of_the_page(self):
        tab = self.page(self.write("a.py", SOURCE))
        seen = []
        for _ in range(40):
            tab.press("Tab")
            seen.append(tab.evaluate(self.FOCUSED))
            if seen[-1].startswith("BODY "):
                break
        order = ["A Skip to the content", "A element that does not exist", "A start", "A Fit the model", "SUMMARY Task: Fit the model",
                 "SUMMARY data", "A Explain unknown_element", "SUMMARY Appendix"]
        places = [next(i for i, text in enumerate(seen) if text.startswith(wanted)) for wanted in order]
        self.assertEqual(places, sorted(places), seen)
        # Each of them shows that it has the focus.
        tab.press("Tab")
        tab.press("Tab")
        self.assertEqual(tab.evaluate("getComputedStyle(document.activeElement).outlineStyle"), "solid")

    def test_enter_folds_a_task(self):
        tab = self.page(self.write("a.py", SOURCE))
        tab.evaluate("document.querySelector('.t summary').focus()")
        for expected in (False, True):
            tab.press("Enter")
            self.assertEqual(tab.evaluate("document.querySelector('.t').open"), expected)

    def test_a_link_leads_into_a_folded_task(self):
        tab = self.page(self.write("a.py", SOURCE.replace('"run":"auto"', '"collapsed":"true"')))
        self.assertFalse(tab.evaluate("document.querySelector('.t').open"))
        tab.evaluate("location.hash = '#f1-6'")
        self.assertTrue(tab.evaluate("new Promise(done => setTimeout(() => done(document.querySelector('.t').open), 100))"))


class Display(BrowserTest):
    def test_nothing_is_wider_than_the_page(self):
        wide = self.write("wide.py", "x" * 3000 + "\n" + SOURCE)
        for width in (320, 390, 820, 1440, 2200):
            with self.subTest(width=width):
                tab = self.page(wide, *map(str, EXAMPLES), width=width)
                self.assertLessEqual(tab.evaluate("document.documentElement.scrollWidth"), width)

    def test_an_anchor_is_after_a_line_that_is_written_from_right_to_left(self):
        tab = self.page(self.write("a.py", "x = \u05e9\u05dc\u05d5\u05dd # <@text:anchor#\u05e2\u05d5\u05d2\u05df>\n"))
        self.assertTrue(tab.evaluate("""(line => {
            const text = document.createRange();
            text.selectNodeContents(line.firstChild);
            return text.getBoundingClientRect().right <= line.querySelector('.a').getBoundingClientRect().left;
        })(document.getElementById('f1-1'))"""))

    def test_print_shows_what_is_folded(self):
        tab = self.page(self.write("a.py", SOURCE.replace('"run":"auto"', '"collapsed":"true"')))
        visible = "document.getElementById('f1-6').checkVisibility()"
        self.assertFalse(tab.evaluate(visible))
        tab.call("Emulation.setEmulatedMedia", media="print")
        self.assertTrue(tab.evaluate(visible))

    def test_the_colours_follow_the_reader(self):
        background = "getComputedStyle(document.body).backgroundColor"
        path = self.write("a.py", SOURCE)
        light, dark = (self.page(path, dark=dark).evaluate(background) for dark in (False, True))
        self.assertEqual((light, dark), ("rgb(246, 247, 249)", "rgb(18, 21, 27)"))

    def test_everything_is_there_without_scripts(self):
        path = self.write("a.py", SOURCE)
        self.assertEqual(*(self.page(path, script=script).evaluate("document.body.innerText") for script in (True, False)))


class Injection(BrowserTest):
    """Every text that a file can bring, with text that must not become HTML."""

    def sources(self, index, payload):
        """Yields the names and texts of files that have the payload in every place."""
        text = payload.replace("\\\"", "\"")
        # In JSON; ">" does not end a marker inside quotes.
        quoted = json.dumps(text)
        yield f"text{index}.py", f"mark{index} {text}\n"
        yield f"id{index}.py", (f"# <@text:anchor#{quoted}>\n# <@task#{quoted}>\nx = 1  # <@output#{quoted} [0,1]>\n# <@task#{quoted}>\n"
                                f"y = 2  # <@control#{quoted} [0,1]>\nz = 3  # <@output#{quoted} [0,99]>\n")
        yield f"data{index}.py", (f"x = 1  # <@output#o [0,1] {{{quoted}:{quoted}}}>\n"
                                  f"x = 1  # <@control#c [0,1] {{\"value\":{quoted}}}>\n"
                                  f"x = 1  # <@control#d [0,1] {{\"options\":[{quoted},{{\"label\":{quoted}}}]}}>\n"
                                  f"x = 1  # <@output#e [0,1] {{\"format\":{quoted}]>\n")
        settings = ",".join(f"{json.dumps(name)}:{quoted}" for name in
                            ("uniqueId", "text", "taskClassDefFile", "run", "autorun", "view", "outputs", "variablesMap",
                             "appState", text))
        yield f"settings{index}.py", f"# <@task#t>\n# <@task#t>\n# <@appendix>\n# <@task#t {{{settings}}}>\n{text}\n"

    def test_no_attempt_gets_through(self):
        names = []
        for index, payload in enumerate(PAYLOADS):
            names += [self.write(name, text) for name, text in self.sources(index, payload)]
            # A file cannot have a slash in its name; these are parsed too.
            names.append(self.write("name" + payload.replace("/", "|") + ".py", "x\n"))
        missing = [str(self.folder / ("missing" + payload)) for payload in PAYLOADS]
        self.assertGreater(len(names) + len(missing), 100)
        tab = self.page("--bundle", str(BUNDLE), *names, *missing, status=3)
        text = tab.evaluate("document.body.textContent")
        for index, payload in enumerate(PAYLOADS):
            payload = payload.replace("\\\"", "\"")
            self.assertIn(f"mark{index} {payload}", text)
            # In the outline, the anchor, the task and its settings, pieces, data, messages, excerpts.
            self.assertGreater(text.count(payload), 20, payload)
        for forbidden in ("script", "iframe", "img", "form", "base", "link", "object", "embed", "math", "template", "noscript",
                          "title ~ title", "style ~ style", "h1 ~ h1", "[onload]", "[onerror]", "[ontoggle]", "[onfocus]",
                          "[style]", "a[href]:not([href^='#'])", "svg *:not(rect)", "[action]", "[src]"):
            self.assertEqual(tab.evaluate(f"document.querySelectorAll({json.dumps(forbidden)}).length"), 0, forbidden)
        self.assertEqual(tab.evaluate("document.querySelectorAll('h1').length"), 1)
        self.assertEqual(tab.evaluate("document.querySelectorAll('section.file').length"), len(names))
        self.assertEqual(tab.complaints(), [])

    def test_the_policy_stops_what_would_get_through(self):
        target = self.folder / "attacked.html"
        subprocess.run([PROGRAM, "parse", "--format", "html", self.write("a.py", "mark\n"), "-o", target], check=True, timeout=60)
        attack = "<script>window.attacked = 1</script><img src=data:,x onerror='window.attacked = 1'><p style='color:red'>"
        target.write_text(target.read_text().replace("mark", attack))
        tab = self.browser.open(target.as_uri())
        self.addCleanup(tab.close)
        self.assertIsNone(tab.evaluate("window.attacked"))
        self.assertGreaterEqual(len(tab.complaints()), 3)

    def test_pages_of_ordinary_files_cause_no_complaint(self):
        for dark in (False, True):
            self.assertEqual(self.page(*map(str, EXAMPLES), dark=dark).complaints(), [])


if __name__ == "__main__":
    unittest.main()
