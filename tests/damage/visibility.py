"""Decides from the rules, and from the text alone, whether anything is wrong with the markers of a file.

The rules are those of docs/markers.md and of the parsers. `faults` names each rule that a text breaks; a text that
breaks none cannot be told from one that its author meant.
"""
import collections
import json
import re

import grammar

SETTINGS = {"taskClassDefFile", "uniqueId", "text", "run", "autorun", "collapsed", "outputs", "variablesMap", "appState",
            "view"}
CLOSER = re.compile(r"[ \t]*(?:\*+/|\*+\)|--+>|-\})")
ELEMENTS = (*grammar.ELEMENTS, "appendix")
BODY = re.compile(r"(?:control|output|task|text)(?:[:#]|[ \t]+\[)")


class File:
    """The markers of a text: those of the code, and the lines of the appendix."""

    def __init__(self, lines):
        self.lines = lines
        ends = (i for i, line in enumerate(lines) if grammar.is_appendix_line(line))
        self.appendix = next(ends, len(lines))
        self.code, self.entries, self.others = [], {}, []
        for number, line in enumerate(lines):
            if number == self.appendix:
                continue
            markers, others = grammar.scan_line(line, number)
            self.others += [(number, position) for position in others]
            if number < self.appendix:
                self.code += markers
            else:
                self.entries[number] = markers

    def meanings(self):
        code = [marker.meaning() for marker in self.code]
        return code, [marker.meaning() for markers in self.entries.values() for marker in markers]


def faults(file):
    """Yields the name of each rule that the text breaks."""
    for rule in (likeness, remains, tasks, entries, settings, anchors, ranges):
        yield from rule(file)


def likeness(file):
    """No text outside of markers is like one, or would be if one character of its "<@" were not damaged."""
    if any(is_like_marker(file.lines[number], opening) for number, opening in file.others):
        yield "text like a marker"
    for number, line in enumerate(file.lines):
        if any(is_damaged_opening(line, at) for at, unit in enumerate(line) if unit in "<@"):
            yield "damaged opening"
        following = file.lines[number + 1] if number + 1 < len(file.lines) else ""
        if line.endswith("<") and following.startswith("@") and grammar.scan_line(line + following)[0]:
            yield "damaged opening"


def is_like_marker(line, opening):
    """Returns whether a "<@" that begins no marker can be told from one in ordinary text.

    In a comment, one of the elements follows, perhaps with a typing mistake, or the line ends within it; or the text has
    an id or a range like a marker, or ends like one with a range or data. Without a comment, the rest is whole.
    """
    if grammar.comment_before(line, opening, 0) is None:
        return is_whole_without_comment(line, opening)
    text = line[opening + 2 :].split("<@")[0].strip(grammar.BLANKS)
    word = re.match(r"[^:#\[{> \t]*", text)[0]
    if is_element(word) or any(element.startswith(text) or is_misspelt(text, element) for element in ELEMENTS):
        return True
    body = grammar.read_body(line, opening)
    if text[:1] in (":", "#"):
        body = grammar.read_body("<@text" + text, 0)
    if body and (body[0][2] or body[0][3]):
        return True
    return bool(re.search(r"[\]}]>(?:[ \t]*(?:\*+/|\*+\)|--+>|-\}))?$", text))


def is_element(word):
    return any(word.startswith(element) or is_one_edit_apart(word.lower(), element) for element in ELEMENTS)


def is_misspelt(text, element):
    """Returns whether the id or type follows a word of the same length with one other character."""
    size = len(element)
    count = sum(a != b for a, b in zip(text, element))
    return len(text) > size and text[size] in ":#" and count == 1


def is_one_edit_apart(a, b):
    if a == b:
        return True
    shorter, longer = sorted((a, b), key=len)
    if len(shorter) + 1 == len(longer):
        return any(longer[:i] + longer[i + 1 :] == shorter for i in range(len(longer)))
    if len(a) != len(b):
        return False
    differing = [i for i in range(len(a)) if a[i] != b[i]]
    is_swap = len(differing) == 2 and differing[1] == differing[0] + 1 and \
        a[differing[0]] == b[differing[1]] and a[differing[1]] == b[differing[0]]
    return len(differing) == 1 or is_swap


def is_whole_without_comment(line, opening):
    """Returns whether a marker that lacks only its leader is on the line, and is not a quotation."""
    body = grammar.read_body(line, opening)
    if not body or body[0][0] not in ELEMENTS:
        return False
    before = line[opening - 1 : opening] if opening else " "
    is_apart = before in grammar.BLANKS + "<-/" or any(
        grammar.comment_before(line[:end] + " <@", end + 1, 0) for end in (opening - 1, opening))
    return bool(is_apart or CLOSER.match(line, body[1]))


def is_damaged_opening(line, at):
    """Returns whether a marker appears when "<@" is completed at `at`: lost, replaced or swapped characters.

    The marker has an id or a range, or is the line that starts an appendix.
    """
    if line.startswith("<@", at) or line.startswith("<@", at - 1) and at > 0:
        return False
    if line[at] == "<":
        # A character between the two is how a marker is written that is not to be used.
        repaired = [(at, line[:at] + "<@" + line[at + 1 :]), (at, line[:at] + "<@" + line[at + 2 :])]
        if line[at - 1 : at] == "@":
            repaired.append((at - 1, line[: at - 1] + "<@" + line[at + 1 :]))
        if line[at + 2 : at + 3] == "@":
            repaired.append((at, line[:at] + "<@" + line[at + 1] + line[at + 3 :]))
    elif line[at - 2 : at - 1] == "<" and at > 1:
        return False
    else:
        repaired = [(at, line[:at] + "<@" + line[at + 1 :])]
        if at > 0:
            repaired.append((at - 1, line[: at - 1] + "<@" + line[at + 1 :]))
    return any(is_marker_at(text, opening) for opening, text in repaired)


def is_marker_at(text, opening):
    if text.startswith("<@appendix", opening):
        return grammar.is_appendix_line(text)
    return bool(BODY.match(text, opening + 2)) and any(
        marker.opening == opening and (marker.id or marker.range) for marker in grammar.scan_line(text)[0])


def remains(file):
    """Nothing touches the end of a marker in a line comment, and no block comment ends there that does not begin."""
    for marker in file.code:
        rest = file.lines[marker.line][marker.end :]
        if marker.is_block or not rest:
            continue
        if CLOSER.match(rest):
            yield "end of a block comment after a marker in a line comment"
        elif re.match(r"[A-Za-z0-9>]", rest) or is_like_end(rest):
            yield "text directly after a marker"


def is_like_end(rest):
    """Returns whether the text after a marker ends like one: a range or data, or a word without blanks."""
    if re.match(r"-*(?:[%#?]>|\]\]>|</|[\"']?/>)", rest):
        return False
    return bool(re.match(r"[\[{].*>", rest) or re.match(r"[^ \t]*>", rest))


def tasks(file):
    """Task markers are pairs, tasks do not overlap, and contain something."""
    places = collections.defaultdict(list)
    for marker in file.code:
        if marker.element == "task":
            places[marker.id].append(marker)
    if any(len(markers) != 2 for markers in places.values()):
        yield "task marker without a partner"
        return
    pairs = sorted(places.values(), key=lambda pair: (pair[0].line, pair[0].begin))
    for (_, end), (begin, _) in zip(pairs, pairs[1:]):
        if begin.line <= end.line:
            yield "overlapping tasks"
    for begin, end in pairs:
        if is_empty(file, begin.line, end.line):
            yield "empty task"
        elif begin.line == end.line and begin.begin == 0:
            yield "task that drops its line"


def is_empty(file, first, last):
    for number in range(first, last + 1):
        line = list(file.lines[number])
        for marker in file.code:
            if marker.line == number:
                line[marker.begin : marker.end] = " " * (marker.end - marker.begin)
        if "".join(line).strip(grammar.BLANKS):
            return False
    return True


def entries(file):
    """A line of the appendix is blank or one marker; entries and markers belong together."""
    code = {marker.key() for marker in file.code}
    seen = set()
    for number, markers in file.entries.items():
        text = file.lines[number].strip(grammar.BLANKS)
        if len(markers) > 1 or (text and not markers):
            yield "line of the appendix that is not one entry"
            continue
        for entry in markers:
            if len(text) != entry.end - entry.begin:
                yield "text beside an entry"
            if entry.key() in seen:
                yield "second entry"
            if entry.key() not in code:
                yield "entry without a marker"
            seen.add(entry.key())
    if any(marker.element == "task" and marker.key() not in seen for marker in file.code):
        yield "task without an entry"


def settings(file):
    """Settings are known, are text, and are there once."""
    for markers in file.entries.values():
        for entry in markers:
            if entry.element != "task" or not entry.data:
                continue
            members = json.loads(entry.data, object_pairs_hook=list)
            keys = [key for key, _ in members]
            if len(set(keys)) < len(keys):
                yield "setting given twice"
            if not set(keys) <= SETTINGS:
                yield "unknown setting"
            if any(key in SETTINGS and not isinstance(value, str) for key, value in members):
                yield "setting that is not text"


def anchors(file):
    """Text markers are anchors with unique ids, one per line, and none is on the line that ends a task."""
    seen = collections.Counter()
    open_task = None
    for number in range(file.appendix):
        markers = [marker for marker in file.code if marker.line == number]
        found = [marker for marker in markers if marker.element == "text"]
        task = next((marker.id for marker in markers if marker.element == "task"), None)
        if any(not marker.is_anchor() for marker in found):
            yield "text marker that is not an anchor"
        if any(not marker.id for marker in found):
            yield "anchor without an id"
        if len(found) > 1 or (found and task is not None and open_task == task):
            yield "anchor that is not set"
        if task is not None:
            open_task = None if open_task == task else task
        seen.update(marker.id for marker in found)
    if any(count > 1 for count in seen.values()):
        yield "anchors with one id"


def ranges(file):
    """A range is a part of the line that does not touch a marker, is not blank, and loses nothing to a later one."""
    lines = collections.defaultdict(list)
    for marker in file.code:
        lines[marker.line].append(marker)
    for number, markers in lines.items():
        line = file.lines[number]
        used = [marker for marker in markers if marker.range]
        for index, marker in enumerate(used):
            begin, end = marker.range
            touches = any(begin <= other.end and other.begin < end for other in markers)
            if begin >= end or end > len(line) or touches:
                yield "unusable range"
            elif not line[begin:end].strip(grammar.BLANKS):
                yield "blank range"
            for later in used[index + 1 :]:
                is_apart = later.range[1] <= begin or end <= later.range[0]
                contains = begin <= later.range[0] and later.range[1] <= end and later.range != marker.range
                if not is_apart and not contains:
                    yield "hidden range"


# Why a damage that breaks no rule cannot be seen. docs/diagnostics.md explains each.
REASONS = ("same markers", "another value", "valid elsewhere", "one more marker", "no marker left")


def reason(original, damaged):
    """Returns why a damage that breaks no rule cannot be seen."""
    same, another, elsewhere, more, gone = REASONS
    before, after = original.meanings(), damaged.meanings()
    if before == after:
        return same
    count = len(after[0]) - len(before[0])
    if count != 0:
        return more if count > 0 else gone
    if sorted(map(repr, before[0])) == sorted(map(repr, after[0])) and before[1] == after[1]:
        return elsewhere
    return another
