#!/usr/bin/env python3
"""Checks that docs/diagnostics.md explains each reason why a damage cannot be seen, and no other.

reasons_test.py PAGE
"""
import pathlib
import re
import sys

import visibility


def main(page):
    text = pathlib.Path(page).read_text(encoding="utf-8")
    section = text.split("## Damage that cannot be seen\n")[1].split("\n## ")[0]
    explained = re.findall(r"^\| ([a-z ]+) \|", section, re.MULTILINE)
    if sorted(explained) != sorted(visibility.REASONS):
        print(f"{page} explains {explained}, and the measure has {list(visibility.REASONS)}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
