#!/usr/bin/env python3
"""Tests the charts of docs/performance.md.

charts_test.py SOURCE_FOLDER
"""
import pathlib
import sys
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(sys.argv.pop(1)).resolve()
sys.path.append(str(ROOT / "scripts" / "lib"))

import charts  # noqa: E402

SVG = "{http://www.w3.org/2000/svg}"


class Charts(unittest.TestCase):
    def test_they_show_the_figures_of_the_page(self):
        page = (ROOT / "docs" / "performance.md").read_text(encoding="utf-8")
        drawn = charts.draw(page)
        self.assertEqual(sorted(drawn), sorted(path.name for path in (ROOT / "docs" / "charts").iterdir()))
        for name, chart in drawn.items():
            self.assertEqual((ROOT / "docs" / "charts" / name).read_text(encoding="utf-8"), chart,
                             f"run scripts/lib/charts.py: {name} is older than the page")
            self.assertIn(f"](charts/{name})", page)

    def test_a_bar_is_as_long_as_its_value(self):
        root = xml.etree.ElementTree.fromstring(charts.bars("Title", "ms", [("a", 10.0), ("*b", 40.0), ("c", 0.001)]))
        lengths = {bar.get("class"): [] for bar in root.iter(f"{SVG}rect")}
        for bar in root.iter(f"{SVG}rect"):
            lengths[bar.get("class")].append(float(bar.get("width")))
        self.assertEqual(lengths["ours"], [charts.LONGEST])
        self.assertEqual(lengths["other"], [charts.LONGEST / 4, 1])
        texts = ["".join(text.itertext()) for text in root.iter(f"{SVG}text")]
        self.assertEqual(texts, ["Title ms", "a", "10", "b", "40", "c", "0.001"])

    def test_it_says_the_same_to_who_cannot_see_it(self):
        root = xml.etree.ElementTree.fromstring(charts.bars("<Title> & more", "ms", [("a<b", 10.0), ("*b", 40.0)]))
        self.assertEqual(root.find(f"{SVG}title").text, "<Title> & more")
        self.assertEqual(root.find(f"{SVG}desc").text, "ms. a<b: 10; b: 40")

    def test_a_table_is_found_by_its_heading_and_its_header(self):
        page = ("\n## One\n\n| what | ns |\n| --- | --- |\n| a | 1.5 |\n\n## Two\n\n| aim | ns |\n| --- | --- |\n| x | 9 |\n\n"
                "| what | ns |\n| --- | --- |\n| b | 2 |\n| c | 3 |\n| text | none |\n| d | 4 |\n")
        self.assertEqual(charts.table(page, "Two", "what"), [["b", "2"], ["c", "3"]])


if __name__ == "__main__":
    unittest.main()
