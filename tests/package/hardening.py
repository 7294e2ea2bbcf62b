"""hardening.py FILE...: checks how programs and shared libraries are protected against attacks on their memory.

Faults of each file: the program's address is fixed; the stack may be executed, or a segment is writable and
executable; relocations stay writable; code has relocations. Faults of all files together, because not every library
contains such code: no canary on the stack, no checked function of the C library, no probes of large frames; and, on
x86-64, an exported function that an indirect jump must not reach. The linker drops the note that says so of the whole
file, because the C library's start files lack it: the instruction at the start of each function is what is checked.
The status is not 0 if there is a fault.
"""

import pathlib
import re
import struct
import subprocess
import sys

import search_paths

ENDBR64 = b"\xf3\x0f\x1e\xfa"
# They touch a page of the stack: orq $0x0,(%rsp) by g++, and movq $0x0,(%rsp) by clang.
PROBES = (b"\x48\x83\x0c\x24\x00", b"\x48\xc7\x04\x24\x00\x00\x00\x00")
X86_64 = "Advanced Micro Devices X86-64"
EXPORTED = re.compile(r"^ *\d+: ([0-9a-f]+) +\w+ +FUNC +(?:GLOBAL|WEAK) +DEFAULT +\d+ (\S+)", re.MULTILINE)
SEGMENT = re.compile(r"^  (\w+) +0x([0-9a-f]+) 0x([0-9a-f]+) 0x[0-9a-f]+ 0x([0-9a-f]+) 0x[0-9a-f]+ ([RWE ]{3}) ", re.MULTILINE)


class Elf:
    """One program or library, as readelf describes it."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.content = self.path.read_bytes()
        self.text = subprocess.run(["readelf", "--wide", "--file-header", "--segments", "--dynamic", "--dyn-syms", self.path],
                                   stdout=subprocess.PIPE, text=True, check=True).stdout
        self.segments = [(kind, int(offset, 16), int(address, 16), int(size, 16), flags)
                         for kind, offset, address, size, flags in SEGMENT.findall(self.text)]
        self.imports = set(re.findall(r" UND (\w+)", self.text))

    def has(self, pattern):
        return re.search(pattern, self.text, re.MULTILINE) is not None

    def is_x86_64(self):
        return self.has(rf"Machine: +{X86_64}")

    def bytes_at(self, address, count):
        for kind, offset, begin, size, _ in self.segments:
            if kind == "LOAD" and begin <= address < begin + size:
                return self.content[offset + address - begin:][:count]
        return b""

    def code(self):
        return b"".join(self.content[offset:offset + size]
                        for kind, offset, _, size, flags in self.segments if kind == "LOAD" and "E" in flags)

    def exported(self):
        """Yields the address and the name of each function that other files can call."""
        for address, name in EXPORTED.findall(self.text):
            yield int(address, 16), name

    def faults(self):
        """Yields what is wrong with this file."""
        if not self.has(r"Type: +DYN"):
            yield "its address is fixed (no PIE)"
        stack = [flags for kind, *_, flags in self.segments if kind == "GNU_STACK"]
        if len(stack) != 1 or "E" in stack[0]:
            yield "its stack can be executed"
        if any(kind == "LOAD" and "W" in flags and "E" in flags for kind, *_, flags in self.segments):
            yield "a segment is both writable and executable"
        if not any(kind == "GNU_RELRO" for kind, *_ in self.segments):
            yield "its relocations stay writable (no RELRO)"
        if not self.has(r"\((?:FLAGS|FLAGS_1)\).*\b(?:BIND_)?NOW\b"):
            yield "its relocations are made late (no BIND_NOW)"
        if self.has(r"\(TEXTREL\)"):
            yield "its code has relocations"

    def unmarked_functions(self):
        """Returns the names of exported functions that do not begin with an instruction that marks a target of jumps."""
        if not self.is_x86_64():
            return []
        return [name for address, name in self.exported() if self.bytes_at(address, len(ENDBR64)) != ENDBR64]


def faults(paths):
    """Returns a message for each fault of the files."""
    files = [Elf(path) for path in paths]
    found = [f"{elf.path}: {fault}" for elf in files for fault in elf.faults()]
    found += [f"{elf.path}: a jump to {name} is not checked" for elf in files for name in elf.unmarked_functions()]
    if not any("__stack_chk_fail" in elf.imports for elf in files):
        found.append("no file has canaries on its stack")
    if not any(name.endswith("_chk") for elf in files for name in elf.imports):
        found.append("no file calls a checked function of the C library")
    if any(elf.is_x86_64() for elf in files) and not any(probe in elf.code() for elf in files for probe in PROBES):
        found.append("no file probes the pages of a large frame")
    return found


def main(names):
    paths = [path for name in names for path in
             (search_paths.linked_files(name) if pathlib.Path(name).is_dir() else [pathlib.Path(name)])]
    found = faults(paths) if paths else [f"{' '.join(names)}: no program or library"]
    print("\n".join(found or [f"{len(paths)} files are protected"]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
