"""coverage.py BUILD: prints the line and branch coverage of src/ and platform/.

Reads the counters that the programs and libraries of BUILD left in BUILD/profiles. Prints one row
a file, then each line and each outcome of a condition that no test reached. The status is not 0
when less than every line or 95 of 100 branches are covered, or when there is nothing to cover.
"""

import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MEASURED = ("src/", "platform/")
WANTED = {"lines": 100.0, "branches": 95.0}


def instrumented(build):
    """Returns the programs and libraries of `build` that carry a coverage map."""
    for path in sorted((build / "bin").rglob("*")) + sorted((build / "lib").rglob("*")):
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


def export(build, profile, *arguments):
    first, *others = instrumented(build)
    objects = [argument for path in others for argument in ("-object", path)]
    command = ["llvm-cov-14", "export", *arguments, "-instr-profile", profile, first, *objects]
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def relative(filename):
    """Returns the name of a measured file within the tree, or None for any other file."""
    path = pathlib.Path(filename)
    name = str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else ""
    return name if name.startswith(MEASURED) else None


def unreached(lcov):
    """Yields a message for each line and each outcome of a condition that was never reached."""
    name = None
    for row in lcov.splitlines():
        kind, _, rest = row.partition(":")
        fields = rest.split(",")
        if kind == "SF":
            name = relative(rest)
        elif name and kind == "DA" and fields[1] == "0":
            yield f"{name}:{fields[0]}: not reached"
        elif name and kind == "BRDA" and fields[3] in ("0", "-"):
            outcome = "true" if int(fields[2]) % 2 == 0 else "false"
            yield f"{name}:{fields[0]}: condition {int(fields[2]) // 2 + 1} never {outcome}"


def row(name, counts):
    cells = [f"{counts[kind][0]:>6} of {counts[kind][1]:>6} {kind}" for kind in WANTED]
    return f"{name:<80} {'  '.join(cells)}"


def main(build):
    profile = merge(build)
    files = json.loads(export(build, profile, "-summary-only"))["data"][0]["files"]
    total = {kind: [0, 0] for kind in WANTED}
    for file in files:
        name = relative(file["filename"])
        if name is None:
            continue
        counts = {k: [file["summary"][k]["covered"], file["summary"][k]["count"]] for k in WANTED}
        print(row(name, counts))
        for kind in WANTED:
            total[kind] = [a + b for a, b in zip(total[kind], counts[kind])]
    for message in unreached(export(build, profile, "-format=lcov")):
        print(message)
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
