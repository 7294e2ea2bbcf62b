"""Measures how fast Chromium opens and scrolls the page that `tessera parse --format html` writes.

page_speed.py PROGRAM CORPUS: prints the table. CORPUS has at least 300,000 lines.
"""
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests" / "apps" / "tessera" / "html"))
import chromium  # noqa: E402

ROUNDS = 3
# Jumps to places all over the page, one per frame: everything there must be laid out first.
JUMPS = """new Promise(done => {
  const height = document.documentElement.scrollHeight; let step = 0;
  const jump = () => { if (step++ === 100) done(); else { scrollTo(0, height * step / 100); requestAnimationFrame(jump); } };
  requestAnimationFrame(jump);
})"""
# Scrolls on by 100 pixels per frame, about 5 lines, and returns the times between frames in milliseconds.
SCROLL = """new Promise(done => {
  const gaps = []; let last = 0; scrollTo(0, 0);
  const step = now => {
    if (last) gaps.push(now - last);
    last = now;
    if (gaps.length === 300) done(gaps); else { scrollBy(0, 100); requestAnimationFrame(step); }
  };
  requestAnimationFrame(step);
})"""


def marked(lines):
    """Returns the lines with markers in every tenth: tasks of eleven lines, anchors, outputs, controls, and mistakes."""
    code, appendix = [], []
    for number, line in enumerate(lines):
        start = len(line) - len(line.lstrip())
        place = f"[{start},{start + 4}]"
        if number % 40 == 0:
            line = f"# <@text:anchor#a{number}>"
        elif number % 40 == 10:
            line = f"# <@task#t{number}>"
            appendix.append(f'# <@task#t{number} {{"text":"Task {number}","run":"auto"}}>')
        elif number % 40 == 20:
            line = f"# <@task#t{number - 10}>"
        elif len(line.strip()) > 4 and number % 40 == 30:
            line += f'  # <@output#o{number} {place} {{"format":"short"}}>'
        elif len(line.strip()) > 4 and number % 400 == 35:
            line += f"  # <@outputs#x{number} {place}>"
        elif len(line.strip()) > 4 and number % 40 == 35:
            line += f'  # <@control#c{number} {place} {{"min":0,"max":9,"value":3}}>'
        code.append(line)
    return [*code, "# <@appendix>", *appendix]


def metrics(tab):
    return {entry["name"]: entry["value"] for entry in tab.call("Performance.getMetrics")["metrics"]}


def open_page(browser, page):
    """Opens the page once and returns what it took: seconds, and for scrolling milliseconds."""
    tab = browser.open("about:blank", width=1440, height=900, watched=False)
    tab.call("Performance.enable", timeDomain="threadTicks")
    browser.events.clear()
    begin = time.monotonic()
    tab.call("Page.navigate", url=page.as_uri())
    tab.wait("Page.loadEventFired")
    loaded = time.monotonic() - begin
    busy = metrics(tab)["TaskDuration"]
    paint = tab.evaluate("performance.getEntriesByName('first-contentful-paint')[0].startTime / 1000")
    gaps = sorted(tab.evaluate(SCROLL))
    before = metrics(tab)["TaskDuration"]
    tab.evaluate(JUMPS)
    jump = (metrics(tab)["TaskDuration"] - before) * 10
    tab.close()
    return paint, loaded, busy, statistics.median(gaps), gaps[int(len(gaps) * 0.99)], jump


def row(program, folder, name, lines):
    source, page = folder / "source.py", folder / "page.html"
    text = "\n".join(lines) + "\n"
    source.write_text(text)
    begin = time.monotonic()
    subprocess.run([program, "parse", "--format", "html", source, "-o", page], check=True)
    written = time.monotonic() - begin
    with chromium.Browser() as browser:
        rounds = [open_page(browser, page) for _ in range(ROUNDS)]
    paint, loaded, busy, median, late, jump = (statistics.median(values) for values in zip(*rounds))
    ratio = page.stat().st_size / source.stat().st_size
    return (f"| {name} | {written:.2f} | {page.stat().st_size / 1e6:.1f} | {ratio:.2f} | {paint:.2f} | {loaded:.2f} | {busy:.2f} "
            f"| {median:.1f} | {late:.1f} | {jump:.0f} |")


def measure(program, corpus):
    """Returns a table as Markdown."""
    lines = [line for line in pathlib.Path(corpus).read_text(encoding="utf-8").split("\n") if "<@" not in line]
    version = subprocess.run([chromium.PROGRAM, "--version"], capture_output=True, text=True, check=True).stdout.split()[1]
    text = (f"Chromium {version}, a window of 1440 by 900, medians of {ROUNDS} rounds; {os.cpu_count()} cores, load average "
            f"{os.getloadavg()[0]:.1f} at the start.\n\n")
    text += ("| Source | Written, s | Page, MB | Page per source | First paint, s | Loaded, s | Processor time to load, s "
             "| Frame, ms | 99th percentile, ms | Processor time per jump, ms |\n| --- |" + " ---: |" * 9)
    with tempfile.TemporaryDirectory() as folder:
        for count in (25_000, 100_000, 300_000):
            text += "\n" + row(program, pathlib.Path(folder), f"{count:,} plain lines", lines[:count])
        text += "\n" + row(program, pathlib.Path(folder), "100,000 lines, a tenth with markers", marked(lines[:100_000]))
    return text


if __name__ == "__main__":
    print(measure(*sys.argv[1:]))
