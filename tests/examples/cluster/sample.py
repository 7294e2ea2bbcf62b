"""The files that the tests of the cluster scripts parse, and what one process makes of them."""

import hashlib
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

FILES = 120
SHARDS = 6
# The file that keeps its reader waiting is the 17th of 20 in shard 4.
SLOW = 99
SLOW_SHARD = SLOW % SHARDS + 1


# Daemons are outside of the search path of users.
PATH = os.environ["PATH"] + ":/usr/sbin:/sbin"
SKIPPED = 77


def require(programs):
    """Ends with the status SKIPPED where a program is missing, or the daemons cannot be started."""
    missing = [program for program in programs if shutil.which(program, path=PATH) is None]
    if missing or os.geteuid() != 0:
        print("skipped: " + ("needs root" if not missing else "not installed: " + ", ".join(missing)))
        sys.exit(SKIPPED)


def wait_for(condition, what, seconds=120):
    """Returns the first result of `condition` that is true."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        result = condition()
        if result:
            return result
        time.sleep(0.05)
    raise AssertionError(f"after {seconds} s: no {what}")


class Sample:
    """Source files in a folder, their list, and the output of one process.

    One of them is a pipe at first: a process that parses it waits there, in the middle of its output, until
    `release` makes an ordinary file of it.
    """

    def __init__(self, folder, tessera):
        self.folder = pathlib.Path(folder)
        self.list = self.folder / "list"
        self.out = self.folder / "out"
        (self.folder / "src").mkdir()
        names = [f"src/{number}.py" for number in range(FILES)]
        for number, name in enumerate(names):
            line = f"value{number} = {number}  # <@output#o{number} [0,5]>\n"
            (self.folder / name).write_text(line * (200 + number))
        (self.folder / names[7]).write_bytes(b"\xff")
        self.list.write_text("".join(name + "\n" for name in names))
        self.whole = self.folder / "whole.ndjson"
        done = subprocess.run([tessera, "parse", "--format", "ndjson", "--omit-empty", "-j", "1", "-o", self.whole,
                               "--files-from", self.list], cwd=self.folder, stderr=subprocess.DEVNULL)
        assert done.returncode == 3, done
        self.slow = self.folder / names[SLOW]
        self.content = self.slow.read_bytes()
        self.slow.unlink()
        os.mkfifo(self.slow)
        self.writer = os.open(self.slow, os.O_RDWR)
        self.partial = self.out / f"{SLOW_SHARD}.ndjson.partial"

    def waiting_process(self):
        """Returns the process that waits for the slow file, once it has written records; else None."""
        if not self.partial.exists() or b"\n" not in self.partial.read_bytes():
            return None
        for folder in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if (folder / "comm").read_text() == "tessera\n" and any(
                        os.readlink(link) == str(self.slow) for link in (folder / "fd").iterdir()):
                    return int(folder.name)
            except OSError:
                continue
        return None

    def release(self):
        """Makes the slow file an ordinary one.

        A file whose record was written before changes, so that parsing it again would give another record.
        """
        (self.folder / "src" / f"{SLOW_SHARD - 1}.py").write_text("changed\n")
        ready = self.folder / "ready"
        ready.write_bytes(self.content)
        ready.replace(self.slow)
        os.close(self.writer)

    def merged(self, script):
        """Returns the records of all shards in the order of the list."""
        return subprocess.run([script, self.out, str(SHARDS)], stdout=subprocess.PIPE, check=True).stdout

    def difference(self, script):
        """Returns what differs between the shards and the output of one process; "" if nothing does."""
        whole = self.whole.read_bytes()
        cat = b"".join((self.out / f"{shard}.ndjson").read_bytes() for shard in range(1, SHARDS + 1))
        if sorted(cat.splitlines()) != sorted(whole.splitlines()):
            return f"other records: {len(cat.splitlines())} of {len(whole.splitlines())}"
        merged = self.merged(script)
        sums = [hashlib.sha256(text).hexdigest() for text in (merged, whole)]
        print(f"merged: {len(merged)} bytes, SHA-256 {sums[0]}; one process: {len(whole)} bytes, {sums[1]}")
        return "" if sums[0] == sums[1] else "another order"


def ancestors(process):
    """Returns the processes that started `process`, from its parent on, without the first of the system."""
    found = []
    while True:
        status = pathlib.Path(f"/proc/{process}/stat").read_text()
        process = int(status.rpartition(")")[2].split()[1])
        if process <= 1:
            return found
        found.append(process)


def name_of(process):
    return pathlib.Path(f"/proc/{process}/comm").read_text().strip()


def kill(processes):
    """Kills processes in this order. One that is gone, because one before was killed, is left out."""
    for process in processes:
        try:
            os.kill(process, signal.SIGKILL)
        except ProcessLookupError:
            pass
