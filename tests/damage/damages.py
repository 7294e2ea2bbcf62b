"""Damages one marker of a source, as typing, editing and formatting do."""
import dataclasses
import random
import string

import grammar

CHARACTERS = string.ascii_letters + string.digits + string.punctuation + " "


@dataclasses.dataclass
class Damage:
    kind: str
    form: str
    marker: grammar.Marker
    lines: list


def markers_of(lines):
    return [marker for number, line in enumerate(lines) for marker in grammar.scan_line(line, number)[0]]


def other(chance, count, number):
    """Returns a number below `count` other than `number`."""
    return (number + chance.randrange(1, count)) % count


class Damager:
    """Damages a copy of some lines. Each operation returns the new text of the marker, or changes the lines."""

    def __init__(self, lines, chance: random.Random):
        self.original = lines
        self.chance = chance
        self.markers = markers_of(lines)

    def make(self):
        """Returns a damage that changes the text."""
        while True:
            self.lines = list(self.original)
            self.marker = self.chance.choice(self.markers)
            line = self.lines[self.marker.line]
            self.text = line[self.marker.begin : self.marker.end]
            self.alone = line.strip(grammar.BLANKS) == self.text
            kind = self.chance.choice(list(KINDS))
            form = self.chance.choice(KINDS[kind])
            changed = form(self)
            if changed is not None:
                self.put(self.marker, changed)
            # Some forms put a line break into a line.
            self.lines = "\n".join(self.lines).split("\n")
            if self.lines != self.original:
                return Damage(kind, form.__name__, self.marker, self.lines)

    def put(self, marker, text):
        line = self.lines[marker.line]
        self.lines[marker.line] = line[: marker.begin] + text + line[marker.end :]

    def place(self):
        return self.chance.randrange(len(self.text))

    def without_character(self):
        i = self.place()
        return self.text[:i] + self.text[i + 1 :]

    def without_marker(self):
        return ""

    def without_line(self):
        del self.lines[self.marker.line]

    def character_twice(self):
        i = self.place()
        return self.text[:i] + self.text[i] + self.text[i:]

    def marker_twice(self):
        return self.text + " " + self.text

    def line_twice(self):
        self.lines.insert(self.marker.line, self.lines[self.marker.line])

    def neighbours_swapped(self):
        i = self.chance.randrange(len(self.text) - 1)
        return self.text[:i] + self.text[i + 1] + self.text[i] + self.text[i + 2 :]

    def lines_swapped(self):
        i = self.marker.line
        j = i + 1 if i + 1 < len(self.lines) else i - 1
        self.lines[i], self.lines[j] = self.lines[j], self.lines[i]

    def markers_swapped(self):
        second = self.markers[other(self.chance, len(self.markers), self.markers.index(self.marker))]
        if second.line == self.marker.line:
            return
        text = self.original[second.line][second.begin : second.end]
        self.put(second, self.text)
        self.put(self.marker, text)

    def end_cut(self):
        return self.text[: self.place()]

    def line_end_cut(self):
        line = self.lines[self.marker.line]
        self.lines[self.marker.line] = line[: self.marker.begin + self.place()]

    def start_cut(self):
        return self.text[self.place() + 1 :]

    def middle_cut(self):
        i, j = sorted((self.place(), self.place()))
        return self.text[:i] + self.text[j:]

    def moved_to_line_end(self):
        self.lines[other(self.chance, len(self.lines), self.marker.line)] += " " + self.text
        return ""

    def moved_to_line_of_its_own(self):
        self.put(self.marker, "")
        if self.alone:
            del self.lines[self.marker.line]
        self.lines.insert(self.chance.randrange(len(self.lines)), self.text)

    def line_moved(self):
        line = self.lines.pop(self.marker.line)
        self.lines.insert(self.chance.randrange(len(self.lines)), line)

    def retyped(self):
        i = self.place()
        return self.text[:i] + self.chance.choice(CHARACTERS) + self.text[i + 1 :]

    def letter_in_other_case(self):
        i = self.chance.choice([i for i, unit in enumerate(self.text) if unit.isalpha()])
        return self.text[:i] + self.text[i].swapcase() + self.text[i + 1 :]

    def upper_case(self):
        return self.text.upper()

    def lower_case(self):
        return self.text.lower()

    def line_indented(self):
        line = self.lines[self.marker.line]
        self.lines[self.marker.line] = self.chance.choice([" ", "  ", "    ", "\t"]) + line

    def line_dedented(self):
        line = self.lines[self.marker.line]
        width = len(line) - len(line.lstrip(grammar.BLANKS))
        self.lines[self.marker.line] = line[self.chance.randrange(width + 1) :]

    def marker_aligned(self):
        """The blanks before the marker change."""
        line = self.lines[self.marker.line]
        before = line[: self.marker.begin].rstrip(grammar.BLANKS)
        gap = " " * self.chance.randrange(6)
        self.lines[self.marker.line] = before + gap + line[self.marker.begin :]

    def leader(self):
        return " * " if self.marker.is_block else self.text[: self.marker.opening - self.marker.begin]

    def broken_at_blank(self):
        blanks = [i for i, unit in enumerate(self.text) if unit == " "]
        if not blanks:
            return None
        i = self.chance.choice(blanks)
        start = self.chance.choice(["", "    ", self.leader()])
        return self.text[:i] + "\n" + start + self.text[i + 1 :]

    def broken_anywhere(self):
        i = self.place()
        return self.text[:i] + "\n" + self.text[i:]

    def joined_with_next_line(self):
        i = self.marker.line
        if i + 1 < len(self.lines):
            self.lines[i : i + 2] = [self.lines[i] + " " + self.lines[i + 1].lstrip(grammar.BLANKS)]

    def joined_with_line_before(self):
        i = self.marker.line
        if i > 0:
            self.lines[i - 1 : i + 1] = [self.lines[i - 1] + " " + self.lines[i].lstrip(grammar.BLANKS)]


KINDS = {
    "delete": [Damager.without_character, Damager.without_marker, Damager.without_line],
    "repeat": [Damager.character_twice, Damager.marker_twice, Damager.line_twice],
    "swap": [Damager.neighbours_swapped, Damager.lines_swapped, Damager.markers_swapped],
    "cut": [Damager.end_cut, Damager.line_end_cut, Damager.start_cut, Damager.middle_cut],
    "move": [Damager.moved_to_line_end, Damager.moved_to_line_of_its_own, Damager.line_moved],
    "retype": [Damager.retyped],
    "change case": [Damager.letter_in_other_case, Damager.upper_case, Damager.lower_case],
    "re-indent": [Damager.line_indented, Damager.line_dedented, Damager.marker_aligned],
    "reflow": [Damager.broken_at_blank, Damager.broken_anywhere, Damager.joined_with_next_line,
               Damager.joined_with_line_before],
}
