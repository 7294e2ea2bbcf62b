#!/usr/bin/env python3
"""Lets every allocation and every system call of the program fail in turn, kills it while it replaces a file, and counts
the calls for a file.

program_faults_test.py PROGRAM FAILING_ALLOCATOR FAIL_SYSTEM_CALLS

After each fault: no signal and no hang; either the output that the program has without the fault, or another status and
a message that says what to do; no file is lost, changed in part or left over.

TESSERA_FAULTS is the number of faults for each command and kind; "all" for every one (default: 8). Those of allocations
are spread evenly over all. Those of system calls are spread over the calls: each fails with each of its errors in at
least one command, for which the number must not be much smaller. The test prints how many it injected.
"""
import collections
import concurrent.futures
import ctypes
import errno
import functools
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

PROGRAM, ALLOCATOR, TRACER = (str(pathlib.Path(sys.argv.pop(1)).resolve()) for _ in range(3))
FAULTS = os.environ.get("TESSERA_FAULTS", "8")
# A run takes 20 milliseconds: one that is not over by then waits for something that does not happen.
HANG_SECONDS = 100
CANNOT_TRACE = 125
# A fault has the number of a call, so each run has to make the same ones. The C library would otherwise return memory
# in some runs and not in others, depending on the address of it.
SAME_CALLS = {"MALLOC_TRIM_THRESHOLD_": "1000000000"}

SOURCE = rb"""x = 1  # <@output#o [0,1] {"a":[1,2]}>
# <@task#t1>
y = 2  # <@text:anchor#here>
# <@task#t1>
z = "%%\\"  # <@control:slider#c [0,1] {"min":0}>
# <@task#t2>
w # <@output#bad [9,2]>
# <@appendix>
# <@task#t1 {"uniqueId":"t1","taskClassDefFile":"fit.json","text":"Fit a line","run":"auto","collapsed":"false"}>
"""
INPUTS = {
    "a.py": SOURCE,
    "b.sql": b"select 1; -- <@output#q [7,8]>\n-- <@outptu#q2 [7,8]>\n",
    "damaged.py": b"x = 1  # <@output#o [0,1]\n# <@task#t1>\n# <@outputt#o [0,1]>\ny\n",
    "calls": rb"""{"op":"document"}
{"op":"appendix","entries":["%<@task#t1 {\"text\":\"a text of some length\"}>"]}
{"op":"canParse","parser":"TaskSnippetParserImpl","snippet":{"text":"# <@task#t1>","type":{"group":0,"kind":0}}}
{"op":"parse","parser":"CodeSnippetParserImpl","snippet":{"text":"# <@task#t1>","type":{"group":0,"kind":0}}}
{"op":"nodes"}
""",
    "dir/.gitignore": b"*.o\n",
    "dir/a.py": SOURCE,
    "dir/a.o": b"x\0",
    "names": b"a.py\nb.sql\n",
    "old": b"the output of an earlier run\n",
    "resumed.partial": b'{"half',
}
# What replaces one of these must not have more rights.
REPLACED = ("damaged.py", "old")
REPLACED_MODE = 0o640
OTHER_USER = 12345
COMMANDS = {
    "parse as a tree": "parse -j 1 a.py b.sql",
    "parse as JSON": "parse -j 1 --format json a.py b.sql",
    "parse as records": "parse -j 1 --format ndjson -o out a.py b.sql",
    "parse as a page": "parse -j 1 --format html -o out a.py b.sql",
    "parse and record": "parse --trace --format ndjson --record recording a.py b.sql",
    "parse with workers": "parse -j 2 --format ndjson a.py b.sql",
    "parse with workers to a file": "parse -j 2 -o old a.py b.sql",
    "parse as records over a file": "parse -j 1 --format ndjson -o old a.py b.sql",
    "resume": "parse -j 1 --format ndjson -o resumed --resume a.py b.sql",
    "parse standard input": "parse -j 1 --format ndjson -",
    "parse a folder": "parse -j 1 --format ndjson dir",
    "parse a list": "parse -j 1 --format ndjson --files-from names",
    "check": "check -j 1 a.py b.sql damaged.py",
    "check as JSON": "check -j 1 --format json a.py b.sql damaged.py",
    "check as SARIF": "check -j 2 --format sarif -o out a.py b.sql damaged.py",
    "fix": "check -j 1 --fix damaged.py",
    "fix with workers": "check -j 2 --fix damaged.py a.py",
    "markers": "markers -j 1 a.py b.sql",
    "markers as JSON": "markers -j 2 --format json a.py b.sql",
    "replay": "replay calls",
    "explain": "explain missing_task_marker_pair",
    "help": "parse --help",
    "doctor": "doctor",
}
# The errors of each system call that a program has to expect. 0: half of what is read or written. The calls that are
# missing here do not fail as they are used. Calls of local files and of the loader are not interrupted. C libraries make
# one of the calls of a row.
ERRORS_OF_SPELLINGS = {
    "faccessat2 faccessat access": "EIO", "fgetxattr flistxattr": "EIO ENOMEM", "fremovexattr": "EIO",
    "fsetxattr": "EIO ENOSPC", "brk": "ENOMEM", "clone clone3": "EAGAIN ENOMEM", "close": "EIO", "fchmod": "EPERM EIO",
    "fchown": "EPERM", "fcntl": "ENOLCK", "fdatasync": "EIO ENOSPC", "fsync": "EIO ENOSPC", "ftruncate": "EIO EINTR",
    "getcwd": "ENOMEM", "getdents64": "EIO", "getrandom": "EINTR", "ioctl": "ENOTTY", "lseek": "ESPIPE",
    "mmap": "ENOMEM", "mprotect": "ENOMEM", "munmap": "ENOMEM", "newfstatat fstat": "EIO ENOMEM",
    "openat": "EMFILE ENOMEM EIO", "openat2": "ENOSYS EMFILE ENOMEM EIO", "poll": "EINTR ENOMEM", "prctl": "EINVAL",
    "pread64": "EIO", "read": "0 EINTR EIO", "readlink": "EIO", "recvfrom": "EINTR ENOMEM",
    "renameat renameat2 rename": "EIO EXDEV ENOSPC", "sendto": "EINTR ENOMEM", "socketpair": "EMFILE ENOMEM",
    "wait4": "EINTR", "write writev": "0 EINTR EAGAIN ENOSPC EPIPE EIO",
}
ERRORS = {name: errors for names, errors in ERRORS_OF_SPELLINGS.items() for name in names.split()}
# Who ignores these loses data without a word.
WRITES_TO_DISK = ("fdatasync", "fsync", "ftruncate")
DISK_ERRORS = ("EIO", "ENOSPC")
# A call that is interrupted again and again is no error.
TEMPORARY = ("0", "EINTR", "EAGAIN")
# The program makes these again for the rest, or for all. Libraries make others, and do not.
REPEATED = ("ftruncate", "poll", "recvfrom", "sendto", "wait4", "write")
SHORTAGES = ("ENOMEM", "EMFILE", "EAGAIN", "ENOLCK")
GOLDEN_RATIO = (5 ** 0.5 - 1) / 2
HEADERS = subprocess.run(["cpp", "-dM", "-include", "sys/syscall.h", "/dev/null"], capture_output=True).stdout.decode()
NUMBERS = {name: number for name, number in re.findall(r"#define __NR_(\w+) (\d+)", HEADERS)}

Run = collections.namedtuple("Run", "status output messages files")
Fault = collections.namedtuple("Fault", "kind number error repeats")


def contents(folder):
    found = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
    for name in REPLACED:
        if name in found and os.stat(folder / name).st_mode & 0o7777 & ~REPLACED_MODE:
            found[name] += b"with more rights"
    for path in folder.rglob("*.partial"):
        # The user could not continue it.
        if path.stat().st_uid != os.geteuid():
            found[f"{path.name} of another user"] = b""
    return found


def write_inputs(folder):
    for file, data in INPUTS.items():
        (folder / file).parent.mkdir(parents=True, exist_ok=True)
        (folder / file).write_bytes(data)
    for file in REPLACED:
        os.chmod(folder / file, REPLACED_MODE)
        for change in POSSIBLE_CHANGES:
            change(folder / file)


def give_away(file):
    os.chown(file, OTHER_USER, OTHER_USER)


def set_attribute(file):
    os.setxattr(file, "user.note", b"text")


def is_possible(change):
    with tempfile.NamedTemporaryFile() as file:
        try:
            change(file.name)
        except OSError:
            return False
    return True


POSSIBLE_CHANGES = [*filter(is_possible, (give_away, set_attribute))]


def run(command, prefix=(), environment={}):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name, "inputs")
        write_inputs(folder)
        (folder / "temporary").mkdir()
        environment = {**os.environ, **SAME_CALLS, "TMPDIR": str(folder / "temporary"), **environment}
        try:
            done = subprocess.run([*prefix, PROGRAM, *COMMANDS[command].split()], cwd=folder, env=environment,
                                  input=SOURCE, capture_output=True, timeout=HANG_SECONDS)
        except subprocess.TimeoutExpired as late:
            return Run("hang", late.stdout, late.stderr or b"", {})
        return Run(done.returncode, done.stdout, done.stderr, contents(folder))


def run_with(command, fault):
    mode = "on" if fault.repeats else "once"
    if fault.kind in ("new", "malloc"):
        return run(command, environment={"LD_PRELOAD": ALLOCATOR,
                                         "FAIL_ALLOCATION": f"{fault.kind}:{fault.number}:{mode}"})
    error = getattr(errno, fault.error, 0)
    return run(command, [TRACER, NUMBERS[fault.kind], str(fault.number), str(error), mode])


def spread(faults):
    """Returns as many faults as are wanted, at equal distances."""
    if FAULTS == "all" or len(faults) <= int(FAULTS):
        return faults
    return [faults[i * len(faults) // int(FAULTS)] for i in range(int(FAULTS))]


def grouped(command, faults):
    """Returns the faults of each call and error."""
    groups = collections.defaultdict(list)
    for fault in faults:
        groups[fault.kind, fault.error, loses_data(command, fault)].append(fault)
    return groups


def spread_over_calls(faults_of_commands):
    """Returns as many faults of each command as are wanted: of the calls and errors that were tried least, and among
    these of those that the fewest of the other commands have. A call that is made often hides no other."""
    if FAULTS == "all":
        return faults_of_commands
    groups_of_commands = {command: grouped(command, faults) for command, faults in faults_of_commands.items()}
    left = collections.Counter(key for groups in groups_of_commands.values() for key in groups)
    tried = collections.Counter()
    chosen = {}
    for command, groups in groups_of_commands.items():
        keys = sorted(groups, key=lambda key: (tried[key], left[key], key))[:int(FAULTS)]
        # The first call, then one that is far from those that were chosen before.
        chosen[command] = [groups[key][int(tried[key] * GOLDEN_RATIO % 1 * len(groups[key]))] for key in keys]
        tried.update(keys)
        left.subtract(groups.keys())
    return chosen


def allocation_faults(command, kind, modes):
    with tempfile.TemporaryDirectory() as folder:
        counts = pathlib.Path(folder, "counts")
        run(command, environment={"LD_PRELOAD": ALLOCATOR, "ALLOCATION_COUNTS": str(counts)})
        column = ("new", "malloc").index(kind)
        # One line for each process.
        count = max(int(line.split()[column]) for line in counts.read_text().splitlines())
    return [fault for repeats in modes
            for fault in spread([Fault(kind, number, "", repeats) for number in range(1, count + 1)])]


@functools.cache
def list_of_calls(command):
    with tempfile.TemporaryDirectory() as folder:
        calls = pathlib.Path(folder, "calls")
        run(command, [TRACER, "list", str(calls)])
        return calls.read_text().splitlines()


@functools.cache
def calls_of(command):
    """Returns the system calls of the table that are made: for each, whether each time is about a folder."""
    calls = collections.defaultdict(list)
    for line in list_of_calls(command):
        calls[line.removesuffix("/")].append(line.endswith("/"))
    return {call: calls[NUMBERS[call]] for call in ERRORS if NUMBERS.get(call) in calls}


def call_faults(command):
    return [Fault(call, number, error, repeats) for call, times in sorted(calls_of(command).items())
            for error in ERRORS[call].split() for number in range(1, len(times) + 1) for repeats in (False, True)
            if not (repeats and error in TEMPORARY)]


def loses_data(command, fault):
    """Returns whether what was written to a file may not be on the disk. The entries of a folder are written as far as
    the system allows that: without them, the old file may be back."""
    if fault.kind not in WRITES_TO_DISK or fault.error not in DISK_ERRORS:
        return False
    last = None if fault.repeats else fault.number
    return not all(calls_of(command)[fault.kind][fault.number - 1:last])


def is_stderr_gone(fault):
    return fault.kind in ("write", "writev") and fault.repeats


def find_damage(command, fault, expected, done):
    """Returns the files that are neither as they were nor as they are after a run without a fault."""
    damage = [name for name in INPUTS if name not in done.files and not name.endswith(".partial")]
    for name, data in done.files.items():
        is_kept = name.endswith(".partial") and "--format ndjson" in COMMANDS[command]
        # Without a file that failed, an output is complete in a different way.
        is_partial = done.status == 3 and name in ("out", "old", "recording", "resumed")
        # Nothing can be found out about the file, and it may be another run's.
        is_partial |= name.endswith(".partial") and fault.kind == "newfstatat"
        if data not in (INPUTS.get(name), expected.files.get(name)) and not is_kept and not is_partial:
            damage.append(name)
    return damage


def judge(command, fault, expected, done):
    """Returns what is wrong; nothing if the program did well."""
    # What a doctor finds is its output.
    messages = (done.messages + (done.output if command == "doctor" else b"")).decode(errors="replace")
    if done.status == "hang" or done.status < 0 or done.status >= 128:
        return f"ended by {done.status}"
    if done.status == expected.status:
        if loses_data(command, fault):
            return "an error was ignored"
        is_same = (done.output, done.files) == (expected.output, expected.files)
        return "" if is_same else "wrong output without an error"
    if fault.kind in REPEATED and fault.error in ("0", "EINTR"):
        return "the call was not made again"
    # The loader and the C library, for example at the first use of a thread's data.
    if done.status == 127 and ("memory" in messages or "shared librar" in messages):
        return ""
    if done.status not in (2, 3):
        return f"status {done.status}"
    damage = find_damage(command, fault, expected, done)
    if damage:
        return f"damaged or left over: {damage}"
    if is_stderr_gone(fault):
        return ""
    if not re.search(r"error: .*; ", messages):
        return "no message that says what to do"
    is_shortage = fault.kind in ("new", "malloc") or fault.error in SHORTAGES
    if "10 seconds" in messages or (is_shortage and "install the program again" in messages):
        return "a message that misleads"
    return ""


def has_openat2():
    how = (ctypes.c_uint64 * 3)(os.O_RDONLY, 0, 0)
    file = ctypes.CDLL(None).syscall(int(NUMBERS["openat2"]), -100, b"/", how, ctypes.sizeof(how))
    if file >= 0:
        os.close(file)
    return file >= 0


class ProgramFaults(unittest.TestCase):
    def inject(self, faults_of_commands):
        injected = 0
        outcomes = collections.Counter()
        failures = []
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for command, faults in faults_of_commands.items():
                expected = run(command)
                injected += len(faults)
                runs = pool.map(lambda fault: run_with(command, fault), faults)
                for fault, done in zip(faults, runs):
                    outcomes[done.status] += 1
                    wrong = judge(command, fault, expected, done)
                    if wrong:
                        failures.append(f"{COMMANDS[command]}: {fault}: {wrong}: {done.messages.decode()[-300:]}")
        print(f"{injected} faults injected; status: {dict(outcomes)}", file=sys.stderr)
        self.assertGreaterEqual(injected, len(COMMANDS))
        self.assertFalse(failures, "\n".join(failures))

    def test_operator_new(self):
        self.inject({command: allocation_faults(command, "new", (False, True)) for command in COMMANDS})

    def test_malloc(self):
        # Not from one call on: then the C library ends a process that throws an exception through its functions.
        self.inject({command: allocation_faults(command, "malloc", (False,)) for command in COMMANDS})

    def require_tracer(self):
        if run("help", [TRACER, "list", "/dev/null"]).status == CANNOT_TRACE:
            self.skipTest("processes cannot be traced here")

    def test_system_calls(self):
        self.require_tracer()
        faults = {command: call_faults(command) for command in COMMANDS}
        chosen = spread_over_calls(faults)
        self.assertEqual(*({key for command in COMMANDS for key in grouped(command, lists[command])}
                           for lists in (chosen, faults)))
        self.inject(chosen)

    def test_a_doctor_without_memory_does_not_call_the_program_damaged(self):
        self.require_tracer()
        self.inject({"doctor": [fault for fault in call_faults("doctor")
                                if fault.kind in ("newfstatat", "fstat", "readlink") and fault.error in SHORTAGES]})

    def test_records_that_may_not_be_on_the_disk_are_not_continued(self):
        self.require_tracer()
        for error in DISK_ERRORS:
            done = run_with("parse as records", Fault("fdatasync", 1, error, False))
            self.assertEqual((done.status, done.files), (2, {**INPUTS, "out.partial": b""}), done.messages)

    def test_every_call_of_the_table_is_made(self):
        self.require_tracer()
        made = set().union(*map(calls_of, COMMANDS))
        missing = [names for names in ERRORS_OF_SPELLINGS if not made & set(names.split())]
        causes = {"fsetxattr": set_attribute, "fchown": give_away}
        self.assertEqual([names for names in missing if causes.get(names) in (None, *POSSIBLE_CHANGES)], [])

    def test_a_file_of_a_folder_is_opened_and_read_once(self):
        self.require_tracer()
        if not has_openat2():
            self.skipTest("the system does not have openat2()")
        calls = collections.Counter(list_of_calls("parse a folder"))
        with unittest.mock.patch.dict(INPUTS, {"dir/b.py": SOURCE}):
            added = collections.Counter(list_of_calls.__wrapped__("parse a folder")) - calls
        self.assertEqual({name: added[NUMBERS[name]] for name in ("openat", "openat2", "read", "close")},
                         {"openat": 0, "openat2": 1, "read": 1, "close": 1})

    def test_a_kill_leaves_the_old_or_the_new_file(self):
        """The program is killed before each call from the one on that makes the name of the temporary file."""
        self.require_tracer()
        calls = list_of_calls("fix")
        first = max(place for place, call in enumerate(calls) if call == NUMBERS["getrandom"])
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            killed = [*pool.map(lambda place: run("fix", [TRACER, "kill", str(place + 1)]), range(first, len(calls)))]
        self.assertEqual({done.status for done in killed}, {128 + signal.SIGKILL})
        old, new = INPUTS["damaged.py"], run("fix").files["damaged.py"]
        contents_of_file = [done.files.get("damaged.py") for done in killed]
        replaced = contents_of_file.index(new)
        self.assertGreater(replaced, 0)
        self.assertEqual(contents_of_file, [old] * replaced + [new] * (len(killed) - replaced))
        # The temporary file is there until it has replaced the other one.
        within = [any(".tessera-" in name for name in done.files) for done in killed]
        self.assertIn(True, within[:replaced])
        self.assertNotIn(True, within[replaced:])


if __name__ == "__main__":
    unittest.main(verbosity=2)
