#!/usr/bin/env python3
"""Checks that the list in docs/diagnostics.md is what the program has in its catalogue.

diagnostics_page.py PROGRAM PAGE [--update]
"""
import pathlib
import subprocess
import sys

BEGIN = """\
<!-- Made by `tessera explain --format markdown`. To write it:
     python3 tests/docs/diagnostics_page.py build/dev/bin/tessera docs/diagnostics.md --update -->
"""


def main(program, page, *options):
    page = pathlib.Path(page)
    text = page.read_text(encoding="utf-8")
    before, begin, _ = text.partition(BEGIN)
    if not begin:
        print(f"{page}: no line {BEGIN}")
        return 1
    catalogue = subprocess.run([program, "explain", "--format", "markdown"], stdout=subprocess.PIPE, check=True,
                               timeout=60).stdout.decode()
    made = before + begin + "\n" + catalogue
    if "--update" in options:
        page.write_text(made, encoding="utf-8")
    elif made != text:
        print(f"{page}: the catalogue has changed; write the page with --update")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
