"""Puts all mutants of a source into one text, each of them switched on at run time (mutant schemata)."""

import dataclasses

SWITCH = '#include "mutationSwitch.hpp"\n'


@dataclasses.dataclass
class Site:
    """A piece of the source with the mutants that change it, and the sites inside."""

    begin: int
    end: int
    form: str
    choices: list  # pairs of a mutant's number and its text
    inside: list = dataclasses.field(default_factory=list)


def sites_of(mutants):
    """Returns the outermost sites. `mutants` are pairs of a number and a mutant."""
    sites = {}
    for number, mutant in mutants:
        for place in mutant.places:
            key = (place.begin, place.end, place.form)
            sites.setdefault(key, Site(*key, [])).choices.append((number, place.text))
    # A statement contains its expression, and the conversion of a condition is outside of what it converts.
    order = {"statement": 0, "bool": 1, "call": 3}
    outermost, open_sites = [], []
    for site in sorted(sites.values(), key=lambda site: (site.begin, -site.end, order.get(site.form, 2))):
        while open_sites and open_sites[-1].end < max(site.end, site.begin + 1):
            open_sites.pop()
        (open_sites[-1].inside if open_sites else outermost).append(site)
        if site.form != "declared":
            open_sites.append(site)
    return outermost


class Rewriter:
    """Writes one source with switches, and remembers which mutants are responsible for which part of it."""

    def __init__(self, text, mutants):
        self._text, self._parts, self._size = text, [], 0
        # Triples of the begin, the end and the numbers of the mutants.
        self.spans = []
        self.put(SWITCH + "#line 1\n")
        self.copy(0, len(text), sites_of(mutants))
        self.text = "".join(self._parts)

    def put(self, text):
        self._parts.append(text)
        self._size += len(text)

    def copy(self, begin, end, sites):
        for site in sites:
            self.put(self._text[begin:site.begin])
            self.site(site)
            begin = site.end
        self.put(self._text[begin:end])

    def site(self, site):
        start = self._size
        if site.form == "statement":
            number = site.choices[0][0]
            self.put(f"{{ if (!::mutation::on({number})) {{ ")
            self.copy(site.begin, site.end, site.inside)
            self.put(" } }")
        elif site.form == "call":
            self.copy(site.begin, site.end, site.inside)
        elif site.form == "declared":
            number, name = site.choices[0]
            self.put(f"; static_cast<bool>({name}) != ::mutation::on({number})")
        else:
            self.expression(site)
        self.spans.append((start, self._size, [number for number, _ in site.choices]))

    def expression(self, site):
        convert = "" if site.form == "value" else f"static_cast<{site.form}>"
        self.put("(")
        for number, text in site.choices:
            start = self._size
            self.put(f"::mutation::on({number}) ? {convert}({text}) : ")
            self.spans.append((start, self._size, [number]))
        self.put(f"{convert}(")
        self.copy(site.begin, site.end, site.inside)
        self.put("))")

    def at(self, offset):
        """Returns the numbers of the mutants that are responsible for the text at `offset`."""
        around = [span for span in self.spans if span[0] <= offset < span[1]]
        return min(around, key=lambda span: span[1] - span[0])[2] if around else []

    def on_line(self, number, column):
        """Like `at`, for a line and a column, counted from 1 as compilers do, in bytes."""
        # Without the two lines added at the top.
        lines = self.text.split("\n")
        return self.at(sum(len(line) + 1 for line in lines[:number + 1]) + column - 1)
