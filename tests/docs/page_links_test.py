"""Plants faults in small trees of pages and checks what is reported."""

import pathlib
import tempfile
import unittest

import page_links

SOUND = {
    "README.md": "[a](docs/a.md), [there](docs/a.md#two-words), [up](#top), `docs/a.md`\n\n# Top\n",
    "docs/a.md": "# Two words!\n\n[back](../README.md) and [elsewhere](https://example.org/x)\n",
}


class PageLinks(unittest.TestCase):
    def check(self, planted, *messages):
        with tempfile.TemporaryDirectory() as root:
            for name, content in {**SOUND, **planted}.items():
                path = pathlib.Path(root) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(content)
            self.assertEqual(page_links.faults(root), list(messages))

    def test_a_sound_tree_has_no_fault(self):
        self.check({})

    def test_a_link_to_a_missing_file_is_found(self):
        self.check({"docs/a.md": "[gone](b.md)\n# Two words"}, "docs/a.md: b.md does not exist")

    def test_a_link_to_a_missing_heading_is_found(self):
        self.check({"docs/a.md": ""}, "README.md: docs/a.md#two-words has no such heading")

    def test_a_missing_script_is_found(self):
        self.check({"CONTRIBUTING.md": "run `scripts/gone`"}, "CONTRIBUTING.md: scripts/gone does not exist")

    def test_a_page_that_nothing_links_is_found(self):
        self.check({"docs/b.md": ""}, "docs/b.md: no chain of links from README.md leads here")

    def test_a_page_that_only_itself_and_another_unlinked_page_link_is_found(self):
        pages = {"docs/b.md": "[b](b.md) [c](c.md)", "docs/c.md": "[b](b.md)"}
        self.check(pages, *(f"{name}: no chain of links from README.md leads here" for name in pages))

    def test_a_page_may_be_linked_by_a_linked_page(self):
        self.check({"docs/a.md": "[b](b.md)\n# Two words", "docs/b.md": ""})

    def test_pages_in_a_build_are_not_read(self):
        self.check({"build/x.md": "[gone](gone.md)"})


if __name__ == "__main__":
    unittest.main()
