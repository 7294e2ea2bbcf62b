"""Reads the markers of a text by the grammar on docs/markers.md, literally and slowly.

It shares no code with the program: the measure compares the two.
"""
import dataclasses
import json
import re

ELEMENTS = ("control", "output", "task", "text")
NAME = r"[A-Za-z0-9_.\-\u0080-\U0010ffff]+"
CLOSERS = {"/*": r"\*+/", "(*": r"\*+\)", "<!--": r"--+>", "{-": r"-\}"}
BLANKS = " \t"
HEAD = re.compile(rf"<@({NAME})(?::({NAME}))?")
RANGE = re.compile(r"[ \t]+\[[ \t]*([0-9]+)[ \t]*,[ \t]*([0-9]+)[ \t]*\]")
LEADER = re.compile(r"(?:#+|%+|;+|!+|//+|--+)$")
OPENER = re.compile(r"(?:(/)\*+|(\()\*+|(<)!--+|(\{)-)$")
REMARK = re.compile(rf"(?<!{NAME[:-1]})(?:REM|rem)$")
OPENERS = ("/*", "(*", "<!--", "{-")


@dataclasses.dataclass
class Marker:
    line: int  # 0-based
    begin: int  # of the leader or opener
    opening: int  # of "<@"
    end: int
    element: str
    type: str
    id: str
    range: tuple | None
    data: str
    is_block: bool

    def key(self):
        return self.element, self.id

    def meaning(self):
        data = json.dumps(json.loads(self.data), sort_keys=True) if self.data else ""
        return self.element, self.type, self.id, self.range, data

    def is_anchor(self):
        return self.element == "text" and self.type == "anchor"


def reject(name):
    raise ValueError(name)


def read_number(text):
    value = float(text)
    if value in (float("inf"), float("-inf")):
        raise ValueError(text)
    return value


DECODER = json.JSONDecoder(parse_constant=reject, parse_float=read_number)


def comment_before(line, opening, floor):
    """Returns where the leader or opener before "<@" begins, and the opener's kind; None without one."""
    before = line[floor:opening]
    text = before.rstrip(BLANKS)
    found = OPENER.search(text)
    if found:
        kind = OPENERS[next(i for i, group in enumerate(found.groups()) if group)]
        return floor + found.start(), kind
    found = LEADER.search(text)
    if not found and text != before:
        found = REMARK.search(text)
        # The character before "REM" may be the last one of an earlier marker, which is not a letter.
    return (floor + found.start(), "") if found else None


def read_string(line, at):
    """Reads a JSON string; returns it and where it ends, or None."""
    try:
        return DECODER.raw_decode(line, at) if line[at : at + 1] == '"' else None
    except ValueError:
        return None


def read_body(line, opening):
    """Reads from "<@" to after ">"; returns the parts and the end, or None."""
    head = HEAD.match(line, opening)
    if not head:
        return None
    at, name = head.end(), ""
    if line[at : at + 1] == "#":
        found = read_string(line, at + 1)
        if found:
            name, at = found
        else:
            plain = re.compile(NAME).match(line, at + 1)
            if not plain:
                return None
            name, at = plain[0], plain.end()
    numbers = RANGE.match(line, at)
    if numbers:
        at = numbers.end()
    data = ""
    start = at + len(line[at:]) - len(line[at:].lstrip(BLANKS))
    if start > at and line[start : start + 1] == "{":
        try:
            _, at = DECODER.raw_decode(line, start)
        except ValueError:
            return None
        data = line[start:at]
    at += len(line[at:]) - len(line[at:].lstrip(BLANKS))
    if line[at : at + 1] != ">":
        return None
    span = (int(numbers[1]), int(numbers[2])) if numbers else None
    return (head[1], head[2] or "", name, span, data), at + 1


def read_marker(line, opening, floor, number=0):
    """Returns the marker of any element with "<@" at `opening`, or None."""
    comment = comment_before(line, opening, floor)
    body = read_body(line, opening)
    if comment is None or body is None:
        return None
    parts, end = body
    begin, kind = comment
    if kind:
        closer = re.compile(r"[ \t]*" + CLOSERS[kind]).match(line, end)
        if not closer:
            return None
        end = closer.end()
    return Marker(number, begin, opening, end, *parts, is_block=bool(kind))


def scan_line(line, number=0):
    """Returns the markers of a line, and the positions of each "<@" outside of them."""
    markers, others = [], []
    at = floor = 0
    while (opening := line.find("<@", at)) >= 0:
        marker = read_marker(line, opening, floor, number)
        if marker and marker.element in ELEMENTS:
            markers.append(marker)
            at = floor = marker.end
        else:
            others.append(opening)
            at = opening + 2
    return markers, others


def is_appendix_line(line):
    text = line.strip(BLANKS)
    opening = text.find("<@appendix>")
    marker = read_marker(text, opening, 0) if opening >= 0 else None
    return bool(marker) and (marker.begin, marker.end) == (0, len(text)) and marker.element == "appendix"
