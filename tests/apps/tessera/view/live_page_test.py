#!/usr/bin/env python3
"""Tests in Chromium that the page of `tessera view` changes in place.

live_page_test.py PROGRAM
"""
import os
import pathlib
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "html"))

import chromium
import view_test

# How a test tells CTest that it did not run.
SKIPPED = 77
# The line in the middle of the window, and where it is.
PLACE = """(() => {
  const line = document.elementFromPoint(innerWidth / 2, innerHeight / 2).closest("li");
  return [line.textContent, Math.round(line.getBoundingClientRect().top)];
})()"""


class LivePage(view_test.Case):
    @classmethod
    def setUpClass(cls):
        cls.browser = cls.enterClassContext(chromium.Browser())

    def setUp(self):
        super().setUp()
        self.lines = [f"x{number} = {number}" for number in range(1000)]
        self.save()
        self.view = self.enterContext(view_test.View(self.folder, "a.py", "--close-after", "1"))
        self.tab = self.browser.open(self.view.address)
        self.addCleanup(self.tab.close)

    def save(self):
        # In one step, as editors do: on a loaded machine, a page of the empty file could be seen before that of the lines.
        self.write("a.py.new", "".join(line + "\n" for line in self.lines))
        os.replace(self.folder / "a.py.new", self.folder / "a.py")

    def show_changes(self):
        """Saves the lines, and waits until the page has changed and was drawn."""
        self.tab.evaluate("""window.changed = new Promise((resolve) => {
          new MutationObserver((_, observer) => { observer.disconnect(); resolve(); })
            .observe(document.body, {subtree: true, childList: true, characterData: true, attributes: true});
        }), 0""")
        self.save()
        self.tab.evaluate("window.changed.then(() => new Promise((resolve) => "
                          "requestAnimationFrame(() => requestAnimationFrame(() => resolve(0)))))")

    def text_of(self, line):
        return self.tab.evaluate(f"document.getElementById('f1-{line}').textContent")

    def test_only_what_differs_is_replaced(self):
        self.tab.evaluate("""window.kept = [...document.querySelectorAll("li[id], section, header")], 0""")
        self.lines[9] = "changed = 1  # <@output#o [0,7]>"
        self.show_changes()
        self.assertIn("changed", self.text_of(10))
        self.assertTrue(self.tab.evaluate("window.kept.every((element) => element.isConnected)"))
        self.assertEqual(self.text_of(11), "x10 = 10")

    def test_a_line_stays_where_it_is(self):
        self.tab.evaluate("scrollTo(0, document.body.scrollHeight / 2), "
                          "new Promise((resolve) => setTimeout(() => resolve(0), 500))")
        place = self.tab.evaluate(PLACE)
        edits = [lambda: self.lines.__setitem__(slice(5, 5), ["new = 1"] * 7),
                 lambda: self.lines.__delitem__(slice(20, 40)),
                 lambda: self.lines.__setitem__(900, "new = 2"),
                 lambda: self.lines.__setitem__(3, "# <@outputs#o> " + "long " * 500)]
        for edit in edits:
            edit()
            self.show_changes()
            text, top = self.tab.evaluate(PLACE)
            self.assertEqual(text, place[0])
            # A window scrolls by whole pixels.
            self.assertAlmostEqual(top, place[1], delta=2)

    def test_what_the_reader_has_opened_stays_so(self):
        self.lines[2:4] = ["# <@task#t>", "y = 1", "# <@task#t>"]
        self.lines[7:9] = ["# <@task#u>", "y = 2", "# <@task#u>"]
        self.show_changes()
        self.tab.evaluate("""document.querySelectorAll("details.t")[0].open = false, 0""")
        self.lines[3] = "y = 3"
        self.show_changes()
        self.assertEqual(self.tab.evaluate("""[...document.querySelectorAll("details.t")].map((card) => card.open)"""),
                         [False, True])

    def test_the_page_is_that_of_a_new_reader(self):
        edits = [lambda: self.lines.__setitem__(slice(0, 0), ["# <@text:anchor#begin>", "# <@task#t>", "z = 1"]),
                 lambda: self.lines.append("# <@task#t>"),
                 lambda: self.lines.__delitem__(slice(1, 500)),
                 lambda: self.lines.clear()]
        body = "document.body.outerHTML"
        for edit in edits:
            edit()
            self.show_changes()
            other = self.browser.open(self.view.address)
            self.assertEqual(self.tab.evaluate(body), other.evaluate(body))
            self.assertEqual(self.tab.evaluate("document.title"), other.evaluate("document.title"))
            other.close()

    def test_the_browser_has_nothing_to_complain_about(self):
        self.lines[0] = "changed = 1"
        self.show_changes()
        complaints = [text for text in self.tab.complaints()
                      if text not in (f"request: {self.view.address}", f"request: {self.view.address}events")]
        self.assertEqual(complaints, [])

    def test_a_closed_page_ends_the_command(self):
        self.tab.call("Page.navigate", url="about:blank")
        self.view.await_end()


if __name__ == "__main__":
    if chromium.PROGRAM is None:
        print("skipped: Chromium is not installed", file=sys.stderr)
        sys.exit(SKIPPED)
    unittest.main()
