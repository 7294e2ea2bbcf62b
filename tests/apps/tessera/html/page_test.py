#!/usr/bin/env python3
"""Tests the page that `tessera parse --format html` writes, without a browser.

page_test.py PROGRAM FAULTY_BUNDLE
"""
import base64
import hashlib
import html.parser
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM, FAULTY = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
del sys.argv[1:3]
TESTS = pathlib.Path(__file__).resolve().parents[3]
SOURCES = [*sorted((TESTS / "golden" / "check").glob("*.in")), *sorted((TESTS / "golden" / "tree").glob("*.in")),
           *sorted(path for path in (TESTS.parent / "examples").iterdir() if path.is_file())]
VOID = {"meta", "input", "br", "link", "img", "hr"}


def parse(*arguments, status=0, **options):
    done = subprocess.run([PROGRAM, "parse", "--format", "html", *arguments], capture_output=True, timeout=300, **options)
    if done.returncode != status:
        raise AssertionError((done.returncode, done.stderr.decode()))
    return done.stdout.decode()


class Page(html.parser.HTMLParser):
    """Reads a page and checks its form: every element is closed in turn, every attribute is one that pages have.

    An item of a list may be closed by the next one, or by the end of the list."""

    # Texts of files never become attributes: all values are of these forms.
    VALUES = re.compile(r"[\w.,:;=' /+#-]*")

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.open, self.ids, self.links, self.texts, self.elements = [], [], [], [], []
        self.feed(text)
        self.close()
        assert not self.open, self.open

    def handle_starttag(self, tag, attributes):
        names = [name for name, _ in attributes]
        assert len(names) == len(set(names)), (tag, attributes)
        for name, value in attributes:
            assert name != "style" and not name.startswith("on"), (tag, attributes)
            assert self.VALUES.fullmatch(value or ""), (tag, attributes)
        if tag == "li" and self.open[-1] == "li":
            self.open.pop()
        values = dict(attributes)
        self.elements.append((tag, values))
        if "id" in values:
            self.ids.append(values["id"])
        if "href" in values:
            self.links.append(values["href"])
        self.links += ["#" + name for name in values.get("aria-labelledby", "").split()]
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        raise AssertionError(f"<{tag}/>")

    def handle_endtag(self, tag):
        if tag in ("ol", "ul") and self.open[-1] == "li":
            self.open.pop()
        assert self.open and self.open[-1] == tag, (tag, self.open, self.getpos())
        self.open.pop()

    def handle_data(self, data):
        if not {"style", "title"} & set(self.open):
            self.texts.append(data)

    def handle_comment(self, data):
        raise AssertionError(f"<!--{data}-->")

    def handle_pi(self, data):
        raise AssertionError(f"<?{data}>")

    def text(self):
        return "".join(self.texts)


class PageTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return str(path)

    def page(self, text, name="a.py", *arguments):
        return Page(parse(*arguments, self.write(name, text)))

    def check_form(self, text):
        page = Page(text)
        self.assertEqual(len(page.ids), len(set(page.ids)))
        for link in page.links:
            self.assertTrue(link.startswith("#"), link)
            self.assertIn(link[1:], page.ids)
        return page

    def test_every_source_gives_a_well_formed_page(self):
        for path in SOURCES:
            with self.subTest(path=path.name):
                self.check_form(parse(str(path)))
        self.assertGreater(len(SOURCES), 50)

    def test_a_page_of_all_sources_is_well_formed(self):
        page = self.check_form(parse(*map(str, SOURCES)))
        self.assertEqual(sum(values.get("class", "").startswith("file") for _, values in page.elements), len(SOURCES))

    def test_the_policy_allows_the_style_sheet_and_nothing_else(self):
        text = parse(self.write("a.py", "x\n"))
        policy = re.search(r'<meta http-equiv=Content-Security-Policy content="([^"]*)">', text)[1]
        sheet = re.search(r"<style>(.*?)</style>", text, re.DOTALL)[1]
        allowed = base64.b64encode(hashlib.sha256(sheet.encode()).digest()).decode()
        self.assertEqual(policy, f"default-src 'none'; style-src 'sha256-{allowed}'; base-uri 'none'; form-action 'none'")
        # Nothing that the policy is about precedes it.
        self.assertLess(text.index("http-equiv"), text.index("<style"))
        for word in ("url(", "@import", "http:", "https:", "<script", "<iframe", "src="):
            self.assertNotIn(word, text)

    def test_lines_have_their_numbers_and_text(self):
        text = parse(self.write("a.py", "x = 1\n\n<b>&amp;\n# <@text:anchor#end>\n"))
        self.assertIn('<ol class=l start=1><li\nid=f1-1>x = 1<li\nid=f1-2><li\nid=f1-3>&lt;b&gt;&amp;amp;<li\nid=f1-4> '
                      '<a class=a href=#f1-4>end</a></ol>', text)

    def test_characters_without_a_shape_are_shown_by_their_numbers(self):
        page = self.page("a\x00b\x1bc\rd\x7fe\u0085f\u202eg\u2066h\ufeffi\uffff\n")
        line = re.search("a.*", page.text()[page.text().index("U+0000") - 1:])[0]
        self.assertEqual(line, "aU+0000bU+001BcU+000DdU+007FeU+0085fU+202EgU+2066hU+FEFFiU+FFFF")

    def test_a_page_does_not_depend_on_the_number_of_workers(self):
        names = [*map(str, SOURCES)]
        self.assertEqual(parse("-j", "1", *names), parse("-j", "3", *names))

    def test_a_task_is_a_card_with_its_settings_and_lines(self):
        source = ("a\n# <@task#t>\nb\n# <@task#t>\nc\n# <@appendix>\n"
                  '# <@task#t {"text":"Do <it>","run":"auto","collapsed":"%s"}>\n')
        for collapsed, begin in (("false", "<details class=t open>"), ("true", "<details class=t>")):
            with self.subTest(collapsed=collapsed):
                text = parse(self.write("a.py", source % collapsed))
                card = text[text.index(begin):text.index("</details>", text.index(begin))]
                self.assertIn("Do &lt;it&gt;</h3> <span class=q>3 lines</span>", card)
                self.assertIn("<dt>run</dt><dd>auto</dd>", card)
                self.assertEqual(re.findall(r"<li\nid=f1-(\d+)", card), ["2", "3", "4"])

    def test_the_lines_of_a_long_task_are_in_its_card(self):
        source = "# <@task#t>\n" + "x\n" * 1000 + "# <@task#t>\n" + "y\n"
        page = parse(self.write("a.py", source))
        card = page[page.index("<details class=t"):page.index("</details>", page.index("<details class=t"))]
        self.assertEqual(len(re.findall("<li\n(?:class=y )?id=", card)), 1002)
        self.assertGreater(card.count("<div class=\"k "), 5)
        self.check_form(page)

    def test_diagnostics_are_in_place_in_the_list_and_explained(self):
        path = self.write("a.py", "x = 1\ny = 2  # <@outputs#y [0,1]>\n# <@task#t>\n")
        page = self.check_form(parse(path))
        diagnostics = json.loads(subprocess.run([PROGRAM, "check", "--format", "json", path], capture_output=True,
                                                timeout=60).stdout)["diagnostics"]
        self.assertEqual(len(diagnostics), 2)
        for number, diagnostic in enumerate(diagnostics, 1):
            self.assertEqual(page.text().count(diagnostic["message"]), 2)
            self.assertIn(f"#f1-d{number}", page.links)
            self.assertIn("#x-" + diagnostic["id"], page.links)
            self.assertIn(f"{path}:{diagnostic['line']}:{diagnostic['column']}", page.text())

    def test_a_task_marker_whose_partner_is_in_another_file_is_explained(self):
        first, second = self.write("a.py", "# <@task#t>\n"), self.write("b.py", "# <@task#t>\n")
        page = self.check_form(parse(first, second))
        self.assertEqual(page.text().count(f"the other task marker with this id is at {second}:1:1"), 1)
        self.assertEqual(page.text().count(f"the other task marker with this id is at {first}:1:1"), 1)
        self.assertNotIn("\x01", page.text())

    def test_a_file_that_cannot_be_parsed_is_listed(self):
        bad, good = self.write("bad.py", b"x\n\xff\n"), self.write("good.py", "y\n")
        missing = str(self.folder / "missing.py")
        page = self.check_form(parse(bad, good, missing, status=3))
        self.assertIn(f"error {bad}:2:1 ", page.text())
        self.assertIn(f"error {missing} ", page.text())
        self.assertIn("Not parsed", page.text())

    def test_nothing_is_said_about_the_markers_of_files_that_were_not_parsed(self):
        bad, good = self.write("bad.py", b"\xff\n"), self.write("good.py", "y\n")
        (self.folder / "none").mkdir()
        nothing = "Nothing is wrong with the markers"
        for names, status, said in (([good], 0, nothing + "."),
                                    ([bad, good], 3, nothing + " of the files that were parsed."),
                                    ([bad], 3, "No file was parsed."),
                                    ([str(self.folder / "none")], 0, "No file was parsed.")):
            with self.subTest(names=names):
                text = self.check_form(parse(*names, status=status)).text()
                self.assertIn(said, text)
                if nothing not in said:
                    self.assertNotIn(nothing, text)

    def test_a_file_whose_process_ends_is_listed_and_the_others_are_there(self):
        names = [self.write("a.py", "before\n"), self.write("b.py", "x = 1  # <@output#abort [0,1]>\n"), self.write("c.py", "after\n")]
        page = self.check_form(parse("-j", "2", "--bundle", str(FAULTY), *names, status=3))
        self.assertRegex(page.text(), f"error {names[1]}:1:1 no section could be made: [^\n]*ended by signal 6")
        self.assertEqual([values["id"] for tag, values in page.elements if tag == "section" and "file" in values.get("class", "")],
                         ["f1", "f3"])

    def test_controls_are_drawn_as_their_data_says(self):
        cases = [  # the text, the data, what is drawn
            ("0.25", '{"min":0,"max":1,"step":0.05}', "<input type=range disabled step=any min=0 max=1 value=0.25>"),
            ("7", '{"min":0,"max":5}', "max=5 value=5></label><b>7</b>"),
            ("n", '{"min":0,"max":5,"value":3}', "max=5 value=3></label><b>3</b>"),
            ("True", "{}", "<input type=checkbox disabled checked>"),
            ("x", '{"value":false}', "<input type=checkbox disabled>"),
            ("'b'", '{"options":["a","b"]}', "disabled>a</label><label><input type=radio disabled checked>b<"),
            ("2", '{"choices":[1,2]}', "disabled>1</label><label><input type=radio disabled checked>2<"),
            ("u", '{"items":[{"label":"U","value":"u"}]}', "<input type=radio disabled checked>U<"),
            ("5", '{"min":5,"max":5}', "<span class=field>5</span>"),
            ("five", '{"min":0,"max":9}', "<span class=field>five</span>"),
            ("x", '{"default":"2024-01-01"}', "<span class=field>2024-01-01</span>"),
        ]
        for text, data, drawn in cases:
            with self.subTest(text=text, data=data):
                source = f"{text}  # <@control#c [0,{len(text)}] {data}>\n"
                self.assertIn(drawn, parse(self.write("a.py", source)))

    def test_the_data_of_a_control_is_shown_unless_the_drawing_shows_all_of_it(self):
        cases = [  # the text, the data, whether the drawing shows all of it
            ("1", '{"options":["a","b"],"value":"b"}', True),
            ("a", '{"options":["a","b"]}', True),
            ("'c'", '{"options":["a","b"]}', True),
            ("1", '{"options":["a","b"],"value":"c"}', False),
            ("1", '{"options":["a","b"],"default":1}', False),
            ("3", '{"options":["3","4"],"choices":["q"]}', False),
            ("3", '{"options":["3","4"],"values":3}', False),
            ("3", '{"choices":["3","4"]}', True),
            ("3", '{"min":1,"max":5,"step":2}', True),
            ("3", '{"min":1,"max":5,"step":"any"}', False),
            ("3", '{"min":1,"max":5,"step":null}', False),
            ("3", '{"min":1,"max":5,"value":"high"}', False),
        ]
        for text, data, is_all in cases:
            with self.subTest(text=text, data=data):
                page = parse(self.write("a.py", f"{text}  # <@control#c [0,{len(text)}] {data}>\n"))
                self.assertEqual("<details class=j>" not in page, is_all)

    def test_an_option_that_is_a_truth_value_or_empty_can_be_recognized(self):
        unchecked, checked = "<label><input type=radio disabled>", "<label><input type=radio disabled checked>"
        for text, data, drawn in (("True", "[true,false]", checked + "true</label>" + unchecked + "false</label>"),
                                  ("FALSE", "[true,false]", unchecked + "true</label>" + checked + "false</label>"),
                                  ("True", '["true","True"]', unchecked + "true</label>" + checked + "True</label>"),
                                  ('""', '["","a"]', checked + '""</label>' + unchecked + "a</label>")):
            with self.subTest(text=text, data=data):
                source = f'{text}  # <@control#c [0,{len(text)}] {{"options":{data}}}>\n'
                self.assertIn(drawn, parse(self.write("a.py", source)).replace("&quot;", '"'))

    def test_a_marker_with_several_pieces_is_one(self):
        text = parse(self.write("a.py", 'area = 2 * r + 3 * s  # <@output#area [7,20] {"k":1}> '
                                '# <@control:slider#r [11,12] {"max":9}>  # <@control:slider#s [19,20] {"max":8}>\n'))
        for expected in ("<dt>outputs</dt><dd>1</dd>", "<dt>controls</dt><dd>2</dd>", "<li>1 output</li>",
                         "<li>2 controls</li>"):
            self.assertIn(expected, text)
        self.assertEqual(re.findall('class="w (.)"', text), ["o", "c", "c"])
        self.assertEqual(re.findall("<details class=j>.*? of (\\w+)", text), ["area", "r", "s"])
        self.assertEqual(text.count("<mark class=o>"), 2)

    def test_markers_with_one_piece_each_are_told_apart(self):
        text = parse(self.write("a.py", "ab  # <@output#x [0,1]> # <@output#y [1,2]>\nab  # <@output#x [0,1]>\n"))
        self.assertIn("<dt>outputs</dt><dd>3</dd>", text)
        self.assertEqual(text.count('class="w o"'), 3)

    def test_a_task_without_a_number_of_lines_has_none(self):
        text = self.page("# <@task#a>\nx\n# <@task#a> # <@task#b>\nx\n# <@task#b>\n").text()
        self.assertIn("Task: a 3 lines", text)
        self.assertRegex(text, "Task: b\n")

    def test_a_piece_is_in_its_place(self):
        text = parse(self.write("a.py", "y = f(x) + 1  # <@output#o [4,8] {\"a\":[1]}>\n"))
        self.assertIn("<li\nid=f1-1>y = <mark class=o>f(x)</mark> + 1   <span class=\"w o\">", text)
        self.assertIn("<pre>{\n  &quot;a".replace("&quot;", '"'), text)

    def test_standard_input_is_named(self):
        folder = self.folder / "in"
        folder.mkdir()
        (folder / "-").write_text("x\n")
        page = self.check_form(parse("-", str(folder), input=b"# <@task#t>\n"))
        self.assertIn("standard input:1:1", page.text())
        self.assertEqual(page.text().count("standard input"), 3)

    def test_bars_have_their_numbers_as_text(self):
        page = self.page("# <@outputs#a>\n# <@outputs#b>\n# <@task#t>\n")
        labels = [values["aria-label"] for tag, values in page.elements if tag == "svg"]
        self.assertEqual(labels, ["2 of 3", "1 of 3"])

    def test_an_empty_file_and_no_file_at_all_have_pages(self):
        self.assertIn("This file is empty.", self.page("").text())
        (self.folder / "none").mkdir()
        self.check_form(parse(str(self.folder / "none")))

    def test_the_tree_joins_folders_that_contain_one_folder_only(self):
        names = ("t/a/b/c/1.py", "t/a/b/c/2.py", "t/a/b/d.py", "t/e/f/3.py", "t/4.py", "t/a.py")
        text = parse(*(self.write(name, "x\n") for name in names))
        tree = text[text.index("<nav class=tree"):text.index("</nav>")]
        # ")" is the end of a folder.
        shown = re.sub("</details>", " )", re.sub("<summary>", " ", tree.split("</h2>")[1]))
        self.assertEqual(re.sub("<[^>]*>", " ", shown).split(),
                         f"{self.folder}/t/ 4.py a/b/ c/ 1.py 2.py ) d.py ) a.py e/f/ 3.py )".split())

    def test_a_file_with_a_name_that_is_not_utf8(self):
        path = os.path.join(os.fsencode(self.folder), b"\xff<b>.py")
        pathlib.Path(os.fsdecode(path)).write_text("x\n")
        self.assertIn("\ufffd<b>.py", self.check_form(parse(path)).text())

    def test_the_file_appears_when_it_is_complete(self):
        path = self.write("a.py", "x\n")
        target = self.folder / "page.html"
        parse("-o", str(target), path)
        self.assertEqual(target.read_text(), parse(path))
        self.assertEqual([*self.folder.glob("*.partial")], [])

    def test_a_page_takes_at_most_six_times_the_source(self):
        marked = "".join(f"value_{i} = compute({i})  # <@output#o{i} [0,5]>\n" if i % 10 == 0 else
                         f"value_{i} = compute({i}, previous=value_{i - 1})\n" for i in range(20000))
        self.assertLess(len(parse(self.write("a.py", marked))), 6 * len(marked))


class Contrast(unittest.TestCase):
    """The colours of the style sheet, by the formulas of WCAG 2.2."""

    SHEET = (TESTS.parent / "apps" / "tessera" / "html" / "page.css").read_text()
    PAIRS = [  # text, background, least contrast
        *[(text, back, 4.5) for text in ("text", "quiet", "link") for back in ("page", "panel", "raised")],
        ("task", "raised", 4.5), ("task", "panel", 4.5),
        ("output", "output-back", 4.5), ("text", "output-back", 4.5),
        ("control", "control-back", 4.5), ("text", "control-back", 4.5),
        ("failure", "failure-back", 4.5), ("text", "failure-back", 4.5), ("link", "failure-back", 4.5),
        ("warning", "warning-back", 4.5), ("text", "warning-back", 4.5), ("link", "warning-back", 4.5),
        ("quiet", "warning-back", 4.5), ("failure", "panel", 4.5),
        ("failure-bar", "panel", 3), ("warning-bar", "panel", 3), ("output", "panel", 3), ("control", "panel", 3),
    ]

    @staticmethod
    def colours(block):
        return dict(re.findall(r"--([\w-]+): (#[0-9a-f]{6});", block))

    @staticmethod
    def luminance(colour):
        channels = [int(colour[at:at + 2], 16) / 255 for at in (1, 3, 5)]
        red, green, blue = [value / 12.92 if value <= 0.04045 else ((value + 0.055) / 1.055) ** 2.4 for value in channels]
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue

    def contrast(self, first, second):
        light, dark = sorted(map(self.luminance, (first, second)), reverse=True)
        return (light + 0.05) / (dark + 0.05)

    def test_the_formula(self):
        self.assertAlmostEqual(self.contrast("#000000", "#ffffff"), 21)
        self.assertAlmostEqual(self.contrast("#777777", "#ffffff"), 4.48, places=2)

    def test_every_pair_of_colours(self):
        light, dark = [self.colours(block) for block in re.findall(r":root \{(.*?)\}", self.SHEET, re.DOTALL)[:2]]
        self.assertEqual(light.keys(), dark.keys())
        for name, colours in (("light", light), ("dark", dark)):
            for text, back, least in self.PAIRS:
                with self.subTest(mode=name, text=text, back=back):
                    self.assertGreaterEqual(self.contrast(colours[text], colours[back]), least)

    def test_colours_are_properties(self):
        rest = self.SHEET[self.SHEET.index("* {"):self.SHEET.index("@media print")]
        self.assertEqual(re.findall(r"#[0-9a-fA-F]{3,8}\b|rgb\(|hsl\(", rest), [])


if __name__ == "__main__":
    unittest.main()
