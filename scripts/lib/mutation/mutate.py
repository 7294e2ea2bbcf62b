"""mutate.py [--again] [--list] [PATH]...: tests the tests, see docs/mutation.md.

All mutants of the sources are compiled into one build, each with a switch, and the environment chooses the one to
run: compiling is what takes long.
"""

import argparse
import collections
import concurrent.futures
import dataclasses
import functools
import hashlib
import json
import os
import pathlib
import pickle
import re
import sys
import threading

from clang.cindex import Diagnostic, Index, TranslationUnitLoadError

import finder
from explained import nearest_to, read_explained, read_nearest
from running import Limits, failed_case, joined, tests_of
from schemata import Rewriter
from tree import Copy, files_of

ROOT = pathlib.Path(__file__).resolve().parents[3]
FOLDERS = ("src", "platform", "bundles", "apps")
SUFFIXES = (".cpp", ".hpp", ".h")


def say(text):
    print(f"mutate: {text}", file=sys.stderr, flush=True)


@functools.lru_cache(maxsize=None)
def source_of(path):
    return finder.Source(path)


def parse(path, options, unsaved=()):
    """Returns the translation unit of a source. `unsaved` are pairs of a path and the text to use instead."""
    arguments = [*options, "-w", "-ferror-limit=0", f"-I{pathlib.Path(__file__).resolve().parent}"]
    return Index.create().parse(str(path), args=arguments, options=finder.PARSE_OPTIONS,
                                unsaved_files=[(str(name), text) for name, text in unsaved])


def find_in(root, unit, options, files):
    """Returns the mutants and the constants that one translation unit shows in `files`."""
    try:
        parsed = parse(root / unit, options)
    except TranslationUnitLoadError:
        return {}, set()
    return finder.find(parsed, {str(root / file): (file, source_of(root / file)) for file in files})


def errors_of(root, unit, options, texts):
    """Returns the places where a translation unit does not compile if the files in `texts` have these texts."""
    unsaved = [(root / file, text.encode("latin-1").decode("utf-8")) for file, text in texts.items()]
    found = []
    for diagnostic in parse(root / unit, options, unsaved).diagnostics:
        place = diagnostic.location
        if diagnostic.severity >= Diagnostic.Error and place.file:
            path = pathlib.Path(place.file.name)
            name = str(path.relative_to(root)) if path.is_relative_to(root) else str(path)
            found.append((name, place.offset, diagnostic.spelling))
    return unit, found


def told_apart(mutants):
    """Yields the mutants; those that make the same change elsewhere on a line say which one they are."""
    seen = collections.Counter()
    for mutant in mutants:
        same = (mutant.file, mutant.position[0], mutant.change)
        seen[same] += 1
        count = f" (no. {seen[same]} of the line)" if seen[same] > 1 else ""
        yield dataclasses.replace(mutant, change=mutant.change + count)


class Schemata:
    """The mutants of the selected files, and the sources with switches for them."""

    def __init__(self, root, mutants):
        self._root = root
        self.mutants = dict(enumerate(told_apart(sorted(mutants)), 1))
        self.dropped = set()

    def rewriters(self):
        by_file = collections.defaultdict(list)
        for number, mutant in self.mutants.items():
            if number not in self.dropped:
                by_file[mutant.file].append((number, mutant))
        return {file: Rewriter(source_of(self._root / file).text, some) for file, some in by_file.items()}

    def texts(self):
        return {file: rewriter.text for file, rewriter in self.rewriters().items()}

    def drop(self, places, offset_of):
        """Drops the mutants at places where the compilers report errors. Returns whether there were any."""
        rewriters, before = self.rewriters(), len(self.dropped)
        for file, *place in places:
            if file in rewriters:
                self.dropped.update(offset_of(rewriters[file], *place))
        return len(self.dropped) > before

    def made(self):
        return {number: mutant for number, mutant in self.mutants.items() if number not in self.dropped}


def units_for(root, files, commands):
    """Returns the sources to parse: those of `files`, and for each header those of its library and its first user."""
    units = {file for file in files if file in commands}
    for file in set(files) - units:
        folder = "/".join(file.split("/")[:2])
        units.update(unit for unit in commands if unit.startswith(folder + "/"))
        units.update([unit for unit in sorted(commands) if includes(root / unit, file)][:1])
    return sorted(units)


@functools.lru_cache(maxsize=None)
def included(path):
    return re.findall(r'^#include "([^"]+)"', path.read_text(), re.MULTILINE) if path.exists() else []


def includes(path, header):
    return any(header.endswith("/" + name) for name in included(path))


def find_mutants(copy, files, pool):
    """Returns the schemata of `files` that clang compiles, and the number of constants left out."""
    commands = copy.compile_commands()
    units = units_for(copy.root, files, commands)
    say(f"looking for mutants in {len(files)} files")
    mutants, constants = {}, set()
    jobs = [pool.submit(find_in, copy.root, unit, commands[unit], files) for unit in units]
    for job in jobs:
        some, left_out = job.result()
        mutants.update(some)
        constants |= left_out
    schemata, todo = Schemata(copy.root, mutants.values()), units
    while todo:
        texts = schemata.texts()
        jobs = [pool.submit(errors_of, copy.root, unit, commands[unit], texts) for unit in todo]
        failed = [job.result() for job in jobs if job.result()[1]]
        places = [(file, offset) for _, found in failed for file, offset, _ in found]
        if failed and not schemata.drop(places, lambda rewriter, offset: rewriter.at(offset)):
            raise SystemExit(f"cannot be parsed by clang: {failed[0]}")
        todo = [unit for unit, _ in failed]
    return schemata, len(constants)


def find_or_recall(copy, files):
    """Like `find_mutants`, but remembers what it found until a source or this tool changes."""
    tool = [path for path in sorted(pathlib.Path(__file__).parent.glob("*.*")) if path.is_file()]
    sources = [copy.root / path for path in files_of(copy.root) if path.parts[0] in FOLDERS]
    key = hashlib.sha256("\n".join(files).encode())
    for path in tool + sources:
        key.update(str(path).encode() + path.read_bytes())
    memory = copy.build / "found" / key.hexdigest()
    if memory.exists():
        schemata = Schemata(copy.root, [])
        schemata.mutants, schemata.dropped, constants = pickle.loads(memory.read_bytes())
        return schemata, constants
    with concurrent.futures.ProcessPoolExecutor(os.cpu_count()) as pool:
        schemata, constants = find_mutants(copy, files, pool)
    memory.parent.mkdir(exist_ok=True)
    memory.write_bytes(pickle.dumps((schemata.mutants, schemata.dropped, constants)))
    return schemata, constants


class Results:
    """What is known of each mutant, kept in a file so that an interrupted run continues.

    A mutant that was killed stays so until its file changes; a survivor until anything in the tree does.
    """

    def __init__(self, path, root, again):
        self._path, self._root, self._lock = path, root, threading.Lock()
        self._known = {}
        if again:
            path.unlink(missing_ok=True)
        if path.exists():
            for line in path.read_text().splitlines():
                record = json.loads(line)
                self._known[record["key"]] = record
        self._tree = hashlib.sha256()
        for name in files_of(root):
            if name.parts[0] != "docs" and name != pathlib.Path("tests/mutation/equivalent.txt"):
                self._tree.update(str(name).encode() + (root / name).read_bytes())

    def valid_for(self, mutant, killed):
        tree = self._tree.hexdigest()
        return hashlib.sha256(source_of(self._root / mutant.file).text.encode()).hexdigest() if killed else tree

    def of(self, mutant, key):
        """Returns the test that killed a mutant, "survived", "not reached", or None if it is not known."""
        record = self._known.get(key)
        if record is None:
            return None
        killed = record["result"] not in ("survived", "not reached")
        return record["result"] if record["valid"] == self.valid_for(mutant, killed) else None

    def add(self, mutant, key, result):
        killed = result not in ("survived", "not reached")
        record = {"key": key, "result": result, "valid": self.valid_for(mutant, killed)}
        with self._lock:
            self._known[key] = record
            with self._path.open("a") as file:
                file.write(json.dumps(record) + "\n")


def reached_by(copy, test, count):
    """Runs a test without a mutant. Returns it with the mutants that it reaches, or None if it fails."""
    file = copy.build / "reached"
    file.write_bytes(bytes(count + 1))
    done = test.run({"MUTANT": "0", "MUTANTS_REACHED": str(file)}, Limits())
    if not done.passed:
        say(f"{test.name} fails without a mutant and is left out:\n{done.output[-2000:]}")
        return None
    return dataclasses.replace(test, seconds=max(done.seconds, done.processor_seconds), reached=file.read_bytes())


def try_tests(copy, names, count):
    """Returns the tests that pass without a mutant, by the name that ctest has for them."""
    known, found = copy.tests(), {}
    for name in names:
        tests = [reached_by(copy, test, count) for test in tests_of(name, *known[name])]
        found[name] = [test for test in tests if test is not None]
        reached = sum(map(any, zip(*(test.reached for test in found[name]))))
        say(f"{name}: {sum(test.seconds for test in found[name]):.1f} s, reaches {reached} mutants")
    return found


def judge(number, tests):
    """Returns the name of a test that fails with a mutant, or "survived", or "not reached"."""
    reaching = [test for test in tests if test.reached[number]]
    for test in sorted(joined(reaching), key=lambda test: test.seconds):
        done = test.run({"MUTANT": str(number)}, Limits.of(test.seconds))
        if not done.passed:
            return failed_case(done.output) or test.name
    return "survived" if reaching else "not reached"


def keys_of(mutants):
    """Returns the key of each mutant: its identity, and which of those with the same identity it is."""
    seen, keys = collections.Counter(), {}
    for number, mutant in mutants.items():
        seen[mutant.identity()] += 1
        keys[number] = "\n".join([*mutant.identity(), str(seen[mutant.identity()])])
    return keys


def run_mutants(copy, schemata, nearest, results, explained):
    made = schemata.made()
    keys = keys_of(made)
    todo = [number for number, mutant in made.items()
            if mutant.identity() not in explained and results.of(mutant, keys[number]) is None]
    if todo:
        wanted = {name: targets for number in todo for name, targets in nearest_to(made[number].file, nearest)}
        build(copy, schemata, {target for targets in wanted.values() for target in targets})
        todo = [number for number in todo if number not in schemata.dropped]
        tests = try_tests(copy, wanted, max(made))
        say(f"running {len(todo)} mutants")
        run_all(todo, made, tests, nearest, lambda number, result: results.add(made[number], keys[number], result))
    made = schemata.made()
    return {number: "explained" if mutant.identity() in explained else results.of(mutant, keys[number])
            for number, mutant in made.items()}


def build(copy, schemata, targets):
    say("building")
    while True:
        copy.update(schemata.texts())
        places = copy.compile(sorted(targets))
        if places is None:
            return
        if not schemata.drop(places, lambda rewriter, line, column: rewriter.on_line(line, column)):
            raise SystemExit(f"does not compile with the mutants: {places[:5]}")


def run_all(todo, made, tests, nearest, add):
    def work(number):
        near = [test for name, _ in nearest_to(made[number].file, nearest) for test in tests[name]]
        return number, judge(number, near)

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        jobs = [workers.submit(work, number) for number in todo]
        try:
            for count, job in enumerate(concurrent.futures.as_completed(jobs), 1):
                add(*job.result())
                if count % 50 == 0:
                    say(f"{count} of {len(todo)}")
        except KeyboardInterrupt:
            workers.shutdown(cancel_futures=True)
            raise


def report(made, outcome, stale, left_out, dropped):
    """Prints the mutants that no test notices, and the counts. Returns the exit status."""
    for number, mutant in made.items():
        if outcome[number] in ("survived", "not reached"):
            print(f"{mutant.place()}: {outcome[number]}\n  {mutant.line}\n  {mutant.change}")
    for identity in stale:
        print("no such mutant (remove it from tests/mutation/equivalent.txt):\n  " + "\n  ".join(identity))
    counts = collections.Counter(result if result in ("survived", "not reached", "explained") else "killed"
                                 for result in outcome.values())
    print(f"{len(made)} made, {counts['killed']} killed, {counts['survived']} survived, "
          f"{counts['not reached']} not reached, {counts['explained']} explained")
    print(f"left out: {left_out} constants, which the compiler evaluates; {dropped} changes that do not compile")
    return 1 if counts["survived"] or counts["not reached"] or stale else 0


def selected(root, paths):
    """Returns the sources at and below `paths`, in the folders that are mutated."""
    files = [path for path in files_of(root) if path.parts[0] in FOLDERS and path.suffix in SUFFIXES]
    chosen = [str(path) for path in files if any((root / path).is_relative_to(one.resolve()) for one in paths)]
    if not chosen:
        raise SystemExit(f"no sources of {', '.join(FOLDERS)}: {', '.join(map(str, paths))}")
    return chosen


def main():
    parser = argparse.ArgumentParser(prog="mutate", description="Tests the tests: changes sources, one change at a "
                                     "time, and prints the changes that no test notices.")
    parser.add_argument("paths", nargs="*", type=pathlib.Path, metavar="PATH",
                        help="a source or a folder of sources (default: all)")
    parser.add_argument("--again", action="store_true", help="forget the results of earlier runs")
    parser.add_argument("--list", action="store_true", help="print the mutants and run nothing")
    parser.add_argument("--tree", type=pathlib.Path, default=ROOT, help=argparse.SUPPRESS)
    parser.add_argument("--build", type=pathlib.Path, help=argparse.SUPPRESS)
    arguments = parser.parse_args()
    root = arguments.tree.resolve()
    copy = Copy(root, (arguments.build or root / "build" / "mutate").resolve())
    files = selected(root, arguments.paths or [root])
    explained = read_explained(root / "tests" / "mutation" / "equivalent.txt")
    nearest = read_nearest(root / "tests" / "mutation" / "nearest.txt")

    copy.update({}, kept=files)
    copy.configure()
    schemata, constants = find_or_recall(copy, files)
    identities = {mutant.identity() for mutant in schemata.mutants.values()}
    stale = [identity for identity in explained if identity[0] in files and identity not in identities]
    if arguments.list:
        for mutant in schemata.made().values():
            print(f"{mutant.place()}: {mutant.change}")
        return 0
    results = Results(copy.build / "results.jsonl", root, arguments.again)
    outcome = run_mutants(copy, schemata, nearest, results, explained)
    return report(schemata.made(), outcome, stale, constants, len(schemata.dropped))


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        say("interrupted; the same command continues")
        sys.exit(130)
