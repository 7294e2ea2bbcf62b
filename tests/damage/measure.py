#!/usr/bin/env python3
"""Measures what `tessera check` says about damaged markers.

Damages one marker or appendix entry at a time in copies of clean sources, and runs `check`, `check --fix` and `parse`
on the result. Whether a damage can be seen is decided from the rules, without the program: see visibility.py.
"""
import argparse
import collections
import dataclasses
import difflib
import json
import multiprocessing
import os
import pathlib
import random
import subprocess
import sys
import tempfile

import damages
import sources
import visibility

BATCH = 400
MEMORY = pathlib.Path("/dev/shm")


@dataclasses.dataclass
class Case:
    """One damaged copy, and what the program says about it."""

    name: str
    language: str
    kind: str
    form: str
    line: str  # the damaged line before the damage
    changed: list  # the damaged lines after it
    faults: list  # the rules that the damaged text breaks
    reason: str  # why the damage cannot be seen; empty if it can
    records: list
    is_near: bool  # a record is about the damaged place or its partner
    has_fix: bool = False
    is_restored: bool = False
    others_changed: bool = False


class Copy:
    """A clean copy, its damaged version, and the places that the damage is about."""

    def __init__(self, source, number, chance):
        self.source = source
        self.lines = sources.copy(source, number, chance)
        self.damage = damages.Damager(self.lines, chance).make()
        self.original = visibility.File(self.lines)
        self.damaged = visibility.File(self.damage.lines)
        steps = difflib.SequenceMatcher(None, self.lines, self.damage.lines, autojunk=False).get_opcodes()
        # From the numbers of the lines that are the same to their new ones.
        self.same = {a + i: b + i for tag, a, end, b, _ in steps if tag == "equal" for i in range(end - a)}
        self.changed = set()
        for tag, _, _, begin, end in steps:
            if tag == "delete":
                self.changed |= {max(begin - 1, 0), begin}
            elif tag != "equal":
                self.changed |= set(range(begin, end))
        self.places = self.changed | self.partners()

    def partners(self):
        """Returns the lines of the other markers with the id of the damaged one, and of the tasks that it overlaps."""
        old = damages.markers_of(self.lines)
        damaged = [self.damage.marker, *(marker for marker in old if marker.line not in self.same)]
        new = [marker for marker in damages.markers_of(self.damage.lines) if marker.line in self.changed]
        ids = {marker.id for marker in [*damaged, *new]}
        if self.original.appendix not in self.same:
            ids |= {marker.id for marker in old if marker.element == "task"}
        partners = {self.same[marker.line] for marker in old if marker.id in ids and marker.line in self.same}
        if any(marker.element == "task" for marker in damaged):
            code = [marker for marker in self.damaged.code if marker.element == "task"]
            own = [marker.line for marker in code if marker.id in ids]
            inside = {marker.id for marker in code if own and min(own) <= marker.line <= max(own)}
            partners |= {marker.line for marker in code if marker.id in inside}
        return partners


def run(program, *arguments, folder):
    done = subprocess.run([program, *arguments], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=600)
    if done.returncode not in (0, 1):
        raise RuntimeError(f"{arguments[0]} ended with status {done.returncode}: {done.stderr.decode()[:2000]}")
    return [json.loads(line) for line in done.stdout.decode().splitlines()]


def write(folder, texts):
    for name, lines in texts:
        (folder / name).write_bytes("\n".join(lines).encode())


def is_near(records, places):
    for record in records:
        for place in [record, *record["notes"]]:
            if any(place["line"] <= number + 1 <= place["endLine"] for number in places):
                return True
    return False


def nodes_by_line(document):
    """Returns the nodes that each line added. A header counts the lines of its task, which other lines may change."""
    nodes = document["nodes"]
    for node in nodes:
        for child in node["children"]:
            if "liveTaskData" in child:
                child["liveTaskData"].pop("numCodeLines")
    return [[nodes[index] for index in line["nodes"]] for line in document["lines"]]


def has_other_changes(copy, before, after):
    """Returns whether a line that is not damaged, nor the partner of the damaged one, has other nodes."""
    before, after = nodes_by_line(before), nodes_by_line(after)
    for old, new in copy.same.items():
        if new in copy.places or old >= len(before) or new >= len(after):
            continue
        if before[old] != after[new]:
            return True
    return False


class Batch:
    """Some copies, which the program reads in one run."""

    def __init__(self, program, seed, number, count):
        self.program = program
        self.chance = random.Random(f"{seed}.{number}")
        self.count = count

    def run(self):
        holder = tempfile.TemporaryDirectory(dir=MEMORY if MEMORY.is_dir() else None)
        with holder as name:
            self.folder = pathlib.Path(name)
            return self.measure()

    def measure(self):
        clean = sources.load()
        self.copies = {}
        for number in range(self.count):
            source = self.chance.choice(clean)
            copy = Copy(source, number, self.chance)
            self.copies[f"{number:05}{source.suffix}"] = copy
        originals = self.originals()
        write(self.folder, ((name, copy.damage.lines) for name, copy in self.copies.items()))
        checked = run(self.program, "check", "--format", "json", *self.copies, folder=self.folder)
        cases = [self.case(record) for record in checked]
        parsed = run(self.program, "parse", "--format", "ndjson", *self.copies, folder=self.folder)
        for case, before, after in zip(cases, originals, parsed):
            case.others_changed = has_other_changes(self.copies[case.name], before, after)
        self.fix([case for case in cases if case.has_fix])
        return cases

    def originals(self):
        """Returns the documents of the clean copies, about which `check` must say nothing."""
        write(self.folder, ((name, copy.lines) for name, copy in self.copies.items()))
        for record in run(self.program, "check", "--format", "json", *self.copies, folder=self.folder):
            if record["diagnostics"]:
                raise RuntimeError(f"a clean source has a diagnostic: {record}")
        for copy in self.copies.values():
            if found := list(visibility.faults(copy.original)):
                raise RuntimeError(f"a clean source breaks a rule: {copy.source.language}: {found}")
        return run(self.program, "parse", "--format", "ndjson", *self.copies, folder=self.folder)

    def case(self, record):
        copy = self.copies[record["file"]]
        broken = sorted(set(visibility.faults(copy.damaged)))
        reason = "" if broken else visibility.reason(copy.original, copy.damaged)
        changed = [copy.damage.lines[number] for number in sorted(copy.changed) if number < len(copy.damage.lines)]
        found = record["diagnostics"]
        return Case(record["file"], copy.source.language, copy.damage.kind, copy.damage.form,
                    copy.lines[copy.damage.marker.line], changed, broken, reason, found, is_near(found, copy.places),
                    any(record["fix"] for record in found))

    def fix(self, cases):
        if not cases:
            return
        run(self.program, "check", "--fix", "--format", "json", *(case.name for case in cases), folder=self.folder)
        for case in cases:
            text = (self.folder / case.name).read_bytes().decode()
            case.is_restored = text.split("\n") == self.copies[case.name].lines


class Tally:
    """Counts the cases by class, and keeps examples of those that miss an aim."""

    def __init__(self, shown):
        self.shown = shown
        self.seen = collections.Counter()
        self.kinds = collections.Counter()
        self.invisible = collections.Counter()
        self.records = collections.Counter()
        self.misses = collections.defaultdict(list)

    def add(self, case):
        self.kinds[case.kind] += 1
        self.records[len(case.records)] += 1
        self.seen["damages"] += 1
        if case.reason:
            self.invisible[case.reason, case.kind] += 1
            if case.records:
                self.miss("reported, though no rule is broken", case.reason, case)
        else:
            self.seen["visible"] += 1
            self.seen["reported"] += case.is_near
            if not case.records:
                self.miss("not reported", ", ".join(case.faults), case)
            elif not case.is_near:
                self.miss("reported at another place only", ", ".join(case.faults), case)
        if len(case.records) > 2:
            self.miss("more than two records", " + ".join(record["id"] for record in case.records), case)
        if case.has_fix:
            self.seen["with a fix"] += 1
            self.seen["restored"] += case.is_restored
            if not case.is_restored:
                fixes = " + ".join(record["id"] for record in case.records if record["fix"])
                self.miss("fixed, but not to the original", fixes, case)
        if case.others_changed:
            self.seen["others changed"] += 1
            self.miss("other lines changed", ", ".join(case.faults) or case.reason, case)

    def miss(self, aim, group, case):
        self.misses[aim, group].append(case)

    def share(self, part, whole):
        return 1.0 if not self.seen[whole] else self.seen[part] / self.seen[whole]

    def few(self):
        return (self.records[0] + self.records[1] + self.records[2]) / self.seen["damages"]

    def aims(self):
        """Yields each aim: its name, the figure, and what it has to be at least."""
        yield "visible damages that are reported", self.share("reported", "visible"), 1.0
        yield "damages with at most two records", self.few(), 0.999
        yield "damages with a fix that it undoes", self.share("restored", "with a fix"), 0.9
        yield "damages that leave other lines alone", 1 - self.share("others changed", "damages"), 1.0

    def print(self):
        count = self.seen["damages"]
        print(f"{count} damages: " + ", ".join(f"{number} {kind}" for kind, number in sorted(self.kinds.items())))
        print(f"{self.seen['visible']} can be seen, {count - self.seen['visible']} cannot:")
        reasons = collections.Counter()
        for (reason, _), number in self.invisible.items():
            reasons[reason] += number
        for reason, number in reasons.most_common():
            kinds = sorted((kind, n) for (other, kind), n in self.invisible.items() if other == reason)
            print(f"  {number:6} {reason} ({', '.join(f'{n} {kind}' for kind, n in kinds)})")
        print("records: " + ", ".join(f"{number} x {n}" for n, number in sorted(self.records.items())))
        for (aim, group), cases in sorted(self.misses.items(), key=lambda item: (item[0][0], -len(item[1]))):
            print(f"{aim}: {len(cases)}: {group}")
            for case in cases[: self.shown]:
                show(case)
        print(f"{self.seen['with a fix']} damages have a fix")
        for name, figure, least in self.aims():
            print(f"{'met   ' if figure >= least else 'MISSED'} {figure:9.4%} {name} (aim {least:.1%})")


def show(case):
    print(f"    {case.language}, {case.form}: {case.line!r}")
    print(f"      -> {case.changed!r}")
    for record in case.records:
        print(f"      {record['line']}:{record['column']} {record['id']}: {record['message']}"
              f"{' FIX ' + record['fix']['description'] if record['fix'] else ''}")


def measure(arguments):
    return Batch(*arguments).run()


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0], epilog=__doc__.split("\n\n", 1)[1],
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path, help="the program `tessera`")
    parser.add_argument("--cases", type=int, default=100_000, help="how many damages (default: %(default)s)")
    parser.add_argument("--seed", default="1", help="another seed gives other damages (default: %(default)s)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="processes (default: one per core)")
    parser.add_argument("--show", type=int, default=2, metavar="N", help="examples per class (default: %(default)s)")
    options = parser.parse_args()
    program = options.program.resolve()
    counts = [min(BATCH, options.cases - done) for done in range(0, options.cases, BATCH)]
    batches = [(program, options.seed, number, count) for number, count in enumerate(counts)]
    tally = Tally(options.show)
    with multiprocessing.Pool(options.jobs) as pool:
        for cases in pool.imap(measure, batches):
            for case in cases:
                tally.add(case)
    tally.print()
    return 0 if all(figure >= least for _, figure, least in tally.aims()) else 1


if __name__ == "__main__":
    sys.exit(main())
