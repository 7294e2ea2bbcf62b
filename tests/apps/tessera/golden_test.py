#!/usr/bin/env python3
"""Compares what the program writes with the golden files, byte for byte.

golden_test.py PROGRAM [--update]. With --update the golden files are written anew: read the
difference against the rules before it is committed.
"""
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[3]
EXAMPLES = ROOT / "examples"
GOLDEN = ROOT / "tests" / "golden"


def run(program, arguments):
    """Runs the program in the folder of the examples, so that files have short names."""
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    done = subprocess.run([program, *arguments], cwd=EXAMPLES, env=environment, capture_output=True, timeout=60)
    text = done.stdout
    if done.stderr:
        text += b"--- standard error\n" + done.stderr
    if done.returncode:
        text += b"--- status %d\n" % done.returncode
    return text


# The commands, by the folder of their golden files. `parse_bare` uses the sources of `parse`.
COMMANDS = {
    "check": ["check"],
    "markers": ["markers"],
    "check_without_pieces": ["check", "--bare"],
    "parse": ["parse", "--format", "json", "--trace"],
    "parse_bare": ["parse", "--bare", "--format", "json", "--trace"],
    "replay": ["replay"],
    "tree": ["parse"],
    "tree_bare": ["parse", "--bare"],
}


def cases():
    """Yields the golden file and the arguments of each case."""
    for folder, command in COMMANDS.items():
        for source in sorted((GOLDEN / folder.removesuffix("_bare")).iterdir()):
            # A source has the ending of its language where that matters.
            if source.suffix != ".expected":
                name = source.name.removesuffix(".in") + ".expected"
                yield GOLDEN / folder / name, [*command, f"../{source.relative_to(ROOT)}"]
        if folder not in ("replay", "check_without_pieces"):
            for source in sorted(path for path in EXAMPLES.iterdir() if path.is_file()):
                yield GOLDEN / folder / f"{source.name}.expected", [*command, source.name]


def main():
    program, update = pathlib.Path(sys.argv[1]).resolve(), "--update" in sys.argv[2:]
    failed = checked = 0
    known = set()
    for golden, arguments in cases():
        known.add(golden)
        checked += 1
        actual = run(program, arguments)
        if update:
            golden.write_bytes(actual)
        elif not golden.exists() or golden.read_bytes() != actual:
            failed += 1
            print(f"{golden.relative_to(ROOT)}: tessera {' '.join(arguments)} writes something else")
    for golden in sorted(set(GOLDEN.glob("*/*.expected")) - known):
        if golden.parent.name in COMMANDS:
            failed += 1
            print(f"{golden.relative_to(ROOT)}: no case has this golden file")
    print(f"{checked} golden files, {failed} differ")
    return 1 if failed or checked < 150 else 0


if __name__ == "__main__":
    sys.exit(main())
