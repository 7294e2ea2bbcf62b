"""coverage.py BUILD: prints the line and branch coverage of src/ and platform/.

Reads the counters that the programs and libraries of BUILD left in BUILD/profiles. Prints one row
per file, then each line and each outcome of a condition that no test reached. The status is not 0
when less than every line or 95 of 100 branches are covered, or when there is nothing to cover.
"""

import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MEASURED = ("src/", "platform/")
WANTED = {"lines": 100.0, "branches": 95.0}


def instrumented(build):
    """Returns the programs and libraries of `build` that carry a coverage map."""
    folders = sorted((build / "bin").rglob("*")) + sorted((build / "lib").rglob("*"))
    # The bundles that tests load are in the tests' folders. Those in folders "made" are copies that a
    # test made, some of them broken on purpose.
    tests = build / "tests"
    bundles = [path for path in tests.rglob("*.so") if "made" not in path.relative_to(tests).parts]
    for path in folders + sorted(bundles):
        if path.is_file() and not path.is_symlink():
            content = path.read_bytes()
            if content.startswith(b"\x7fELF") and b"__llvm_covmap" in content:
                yield path


def merge(build):
    profile = build / "profiles" / "merged.profdata"
    raw = sorted((build / "profiles").glob("*.profraw"))
    if not raw:
        sys.exit("coverage: no program left a profile")
    subprocess.run(["llvm-profdata-14", "merge", "-sparse", "-o", profile, *raw], check=True)
    return profile


def export(build, profile):
    first, *others = instrumented(build)
    objects = [argument for path in others for argument in ("-object", path)]
    command = ["llvm-cov-14", "export", "-skip-functions", "-instr-profile", profile, first, *objects]
    text = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout
    return json.loads(text)["data"][0]["files"]


def relative(filename):
    """Returns the name of a measured file within the tree, or None for any other file."""
    # ccache may have made the name relative to the build folder.
    path = pathlib.Path(os.path.normpath(filename))
    name = str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else ""
    return name if name.startswith(MEASURED) else None


def unreached(name, file):
    """Yields a message for each line and each outcome of a condition that was never reached."""
    for line, _, count, has_count, is_entry, is_gap in file["segments"]:
        if has_count and is_entry and not is_gap and count == 0:
            yield f"{name}:{line}: not reached"
    yield from unreached_outcomes(name, file["branches"])


def unreached_outcomes(name, branches):
    # A condition in a template is listed once per instantiation; the best one counts.
    outcomes = {}
    for line, column, _, _, true_count, false_count, *_ in branches:
        outcomes.setdefault((line, column), set()).add((true_count > 0, false_count > 0))
    for (line, column), seen in sorted(outcomes.items()):
        place = f"{name}:{line}:{column}: condition"
        if (True, True) in seen:
            continue
        never = [text for text, index in (("true", 0), ("false", 1)) if not any(o[index] for o in seen)]
        yield f"{place} never {' or '.join(never)}" if never else (
            f"{place} never both true and false in one instantiation"
        )


def row(name, counts):
    cells = [f"{counts[kind][0]:>6} of {counts[kind][1]:>6} {kind}" for kind in WANTED]
    return f"{name:<80} {'  '.join(cells)}"


def main(build):
    total, messages = {kind: [0, 0] for kind in WANTED}, []
    for file in export(build, merge(build)):
        name = relative(file["filename"])
        if name is None:
            continue
        counts = {k: [file["summary"][k]["covered"], file["summary"][k]["count"]] for k in WANTED}
        print(row(name, counts))
        messages += unreached(name, file)
        for kind in WANTED:
            total[kind] = [a + b for a, b in zip(total[kind], counts[kind])]
    print("\n".join(messages))
    return verdict(total)


def verdict(total):
    failed = False
    for kind, least in WANTED.items():
        covered, count = total[kind]
        percent = 100.0 * covered / count if count else 0.0
        print(f"{kind}: {covered} of {count}, {percent:.2f} % (at least {least:.0f} % wanted)")
        failed = failed or percent < least
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
