"""page_links.py TREE: checks the links between the Markdown pages of a tree.

Faults are a link to a file or heading that does not exist, a `path` in code that names a missing file of
docs/ or scripts/, and a page in docs/ that no chain of links from the README leads to. The status is
not 0 if there is one.
"""

import pathlib
import re
import sys

LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
NAMED_FILE = re.compile(r"`((?:docs|scripts)/[\w./-]+)`")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
SKIPPED_FOLDERS = {"build", ".git", ".cache"}


def pages(root):
    """Returns the Markdown pages of the tree, in order."""
    return sorted(
        path
        for path in root.rglob("*.md")
        if not SKIPPED_FOLDERS.intersection(path.relative_to(root).parts)
    )


def anchors(text):
    """Returns the anchors of a page's headings, as GitHub makes them."""
    headings = (re.sub(r"[^\w\- ]", "", heading.lower()) for heading in HEADING.findall(text))
    return {heading.replace(" ", "-") for heading in headings}


def targets(page):
    """Yields the target of each link to a file: its text, the path and the anchor ("" without one)."""
    for link in LINK.findall(page.read_text(encoding="utf-8")):
        if "://" not in link and not link.startswith("mailto:"):
            name, _, anchor = link.partition("#")
            yield link, (page.parent / name).resolve() if name else page.resolve(), anchor


def broken_links(root):
    for page in pages(root):
        name = page.relative_to(root)
        for link, path, anchor in targets(page):
            if not path.exists():
                yield f"{name}: {link} does not exist"
            elif anchor and anchor not in anchors(path.read_text(encoding="utf-8")):
                yield f"{name}: {link} has no such heading"
        for file in NAMED_FILE.findall(page.read_text(encoding="utf-8")):
            if not (root / file).exists():
                yield f"{name}: {file} does not exist"


def reachable_pages(root):
    """Returns the README and the pages that chains of links from it lead to."""
    found, todo = set(), [(root / "README.md").resolve()]
    while todo:
        page = todo.pop()
        if page not in found and page.suffix == ".md" and page.exists():
            found.add(page)
            todo += [path for _, path, _ in targets(page)]
    return found


def unlinked_pages(root):
    reachable = reachable_pages(root)
    for page in sorted((root / "docs").glob("*.md")):
        if page.resolve() not in reachable:
            yield f"docs/{page.name}: no chain of links from README.md leads here"


def faults(root):
    root = pathlib.Path(root)
    return [*broken_links(root), *unlinked_pages(root)]


def main(root):
    found = faults(root)
    print("\n".join(found or ["every link resolves"]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
