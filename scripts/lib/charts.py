"""charts.py: draws the main figures of docs/performance.md as bars, in docs/charts."""

import pathlib
import re
from xml.sax.saxutils import escape

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs" / "performance.md"
FOLDER = ROOT / "docs" / "charts"

WIDTH, ROW, BAR, TOP, MARGIN = 760, 30, 18, 52, 16
# Where the bars begin, and how long the longest is.
NAMES, LONGEST = 300, 360

STYLE = """
  text { font: 14px system-ui, sans-serif; fill: #1b1f27 }
  .title { font-weight: 600 }
  .unit { fill: #596273; font-weight: 400 }
  .back { fill: #ffffff }
  .other { fill: #9aa5b8 }
  .ours { fill: #1d4fbf }
  @media (prefers-color-scheme: dark) {
    text { fill: #e4e8ef }
    .unit { fill: #a0a9b9 }
    .back { fill: #12151b }
    .other { fill: #5d6880 }
    .ours { fill: #8fb4ff }
  }"""


def table(page, heading, header):
    """Returns the rows of the first table below a heading whose first cell is `header`, as lists of cells."""
    section = page.split(f"\n## {heading}\n", 1)[1].split("\n## ", 1)[0]
    rows = [[cell.strip() for cell in line.strip("|").split("|")] for line in section.splitlines() if line.startswith("|")]
    begin = next(number for number, row in enumerate(rows) if row[0] == header)
    found = []
    for row in rows[begin + 2:]:
        if len(row) != len(rows[begin]) or not re.fullmatch(r"[\d.]+", row[1]):
            break
        found.append(row)
    return found


def bars(title, unit, rows):
    """Returns an SVG picture. `rows` are pairs of a name and a value, whose own ones begin with an asterisk."""
    most = max(value for _, value in rows)
    height = TOP + ROW * len(rows) + MARGIN
    summary = "; ".join(f"{name.lstrip('*')}: {value:g}" for name, value in rows)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" role="img" '
             f'aria-labelledby="title description">',
             f'<title id="title">{escape(title)}</title>',
             f'<desc id="description">{escape(f"{unit}. {summary}")}</desc>',
             f"<style>{STYLE}\n</style>",
             f'<rect class="back" width="{WIDTH}" height="{height}" rx="8"/>',
             f'<text class="title" x="{MARGIN}" y="28">{escape(title)} <tspan class="unit">{escape(unit)}</tspan></text>']
    for number, (name, value) in enumerate(rows):
        y = TOP + ROW * number
        kind = "ours" if name.startswith("*") else "other"
        length = max(LONGEST * value / most, 1)
        parts.append(f'<text x="{NAMES - 10}" y="{y + 14}" text-anchor="end">{escape(name.lstrip("*"))}</text>')
        parts.append(f'<rect class="{kind}" x="{NAMES}" y="{y}" width="{length:.1f}" height="{BAR}" rx="3"/>')
        parts.append(f'<text x="{NAMES + length + 8:.1f}" y="{y + 14}">{value:g}</text>')
    return "\n".join([*parts, "</svg>\n"])


def parsers(page):
    names = {"floor": "floor", "pugixml": "pugixml, XML", "md4c": "md4c, Markdown events", "libxml2": "libxml2, XML",
             "cmark": "cmark, Markdown", "parseLine": "*tessera, one line parser",
             "default parser as a service": "*tessera, as a service", "task and default parser": "*tessera, both parsers"}
    rows = [(names[row[0]], float(row[1])) for row in table(page, "The parsers", "what") if row[0] in names]
    rows.sort(key=lambda row: row[1])
    return bars("From text to a document", "processor time per line, ns", rows)


def program(page):
    names = {"tessera parse --format json, file to file": "*tessera parse --format json",
             "reading the file": "only reading", "parsing in memory": "only parsing",
             "writing as many bytes": "only writing as many bytes"}
    rows = [(names[row[0]], float(row[1])) for row in table(page, "The program", "what") if row[0] in names]
    return bars("200,000 lines, from a file to a file", "ms", rows)


def page_in_browser(page):
    rows = [("*" + row[0], float(row[5])) for row in table(page, "The page", "Source") if re.fullmatch(r"[\d.]+", row[5])]
    return bars("Opening the page in Chromium", "loaded after, s", rows)


def draw(page):
    """Returns the charts of the page by the names of their files."""
    return {"parsers.svg": parsers(page), "program.svg": program(page), "page.svg": page_in_browser(page)}


def write():
    FOLDER.mkdir(exist_ok=True)
    for name, chart in draw(PAGE.read_text(encoding="utf-8")).items():
        (FOLDER / name).write_text(chart, encoding="utf-8")


if __name__ == "__main__":
    write()
