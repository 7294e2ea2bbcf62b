"""The clean sources that are damaged: those of tests/golden/languages, and the same with a second task."""
import dataclasses
import json
import pathlib
import random
import string

import grammar

LANGUAGES = pathlib.Path(__file__).resolve().parents[1] / "golden" / "languages"


@dataclasses.dataclass
class Source:
    language: str
    suffix: str
    lines: list


def frame_of(line):
    """Returns what is before and after the body of the only marker of a line."""
    opening = line.index("<@")
    _, end = grammar.read_body(line, opening)
    return line[:opening], line[end:]


def with_second_task(lines):
    """Adds a task with a quoted id, an anchor and an output, in the comments of the appendix line."""
    index = next(i for i, line in enumerate(lines) if grammar.is_appendix_line(line))
    before, after = frame_of(lines[index])
    comment = lambda body: before + body + after
    code = [comment("<@text:anchor#second-part>"), comment('<@task#"second task">'), "second = first + 1",
            "third = second * 2   " + comment('<@output:plot#"the plot" [0,5] {"size":[640,480]}>'),
            comment('<@task#"second task">'), ""]
    entry = comment('<@task#"second task" {"text":"Add one","run":"manual","view":"{\\"rows\\":2}","outputs":"third"}>')
    return lines[:index] + code + lines[index : index + 1] + [entry] + lines[index + 1 :]


def load():
    table = json.loads((LANGUAGES / "languages.json").read_text(encoding="utf-8"))
    sources = []
    for row in table:
        path = LANGUAGES / row["file"]
        lines = path.read_bytes().decode().split("\n")
        assert all(ord(character) < 0x10000 for line in lines for character in line)
        for variant in (lines, with_second_task(lines)):
            sources.append(Source(row["language"], path.suffix or path.name, variant))
    return sources


def copy(source, number, chance: random.Random):
    """Returns the lines of a copy whose tasks have ids that no other copy has.

    `check` looks for the partner of a task marker in the other files of a run, too. Nothing else
    that it says about a file depends on other files.
    """
    length = chance.randrange(2, 9)
    name = "".join(chance.choices(string.ascii_lowercase, k=length)) + f"{number:x}"
    text = "\n".join(source.lines)
    text = text.replace("<@task#sum", "<@task#" + name).replace('<@task#"second task"', f'<@task#"{name} task"')
    return text.split("\n")
