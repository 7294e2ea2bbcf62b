"""count.py BUILD...: prints how many tests ran, from the reports that CTest and GoogleTest wrote.

A GoogleTest program is one CTest test and counts as its cases; every other CTest test counts as one.
The last line is the total. The status is not 0 if a test failed or none passed.
"""

import collections
import pathlib
import sys
import xml.etree.ElementTree


def outcome_for_ctest(case):
    """Returns the outcome of one test as CTest saw it."""
    if case.get("status") == "run":
        return "passed"
    # A test that asked to be skipped, or is disabled. Any other test without a run is a failure.
    reason = case.find("skipped")
    asked = reason is not None and reason.get("message", "").startswith(("SKIP_", "Disabled"))
    return "skipped" if asked or case.get("status") == "disabled" else "failed"


def outcome_for_case(case):
    """Returns the outcome of one GoogleTest case."""
    if case.find("failure") is not None:
        return "failed"
    ran = case.get("status") == "run" and case.get("result") == "completed"
    return "passed" if ran else "skipped"


def count_program(report, outcome):
    """Counts the cases of one GoogleTest program, whose whole run had `outcome`."""
    counts = collections.Counter(
        outcome_for_case(case) for case in xml.etree.ElementTree.parse(report).iter("testcase")
    )
    # A crash, a leak or a timeout is a failure that no case reports.
    if outcome == "failed" and not counts["failed"]:
        counts["failed"] += 1
    return counts


def count_build(build):
    reports = build / "reports"
    counts = collections.Counter()
    for case in xml.etree.ElementTree.parse(reports / "ctest.xml").iter("testcase"):
        outcome = outcome_for_ctest(case)
        report = reports / (case.get("name") + ".xml")
        try:
            counts += count_program(report, outcome)
        except (FileNotFoundError, xml.etree.ElementTree.ParseError):
            # Not a GoogleTest program, or one that ended before its report was complete.
            counts[outcome] += 1
    return counts


def line(counts):
    return ", ".join(f"{counts[outcome]} {outcome}" for outcome in ("passed", "failed", "skipped"))


def main(builds):
    total = collections.Counter()
    for build in builds:
        counts = count_build(build)
        total += counts
        if len(builds) > 1:
            print(f"{build.name}: {line(counts)}")
    print(line(total))
    return 1 if total["failed"] or not total["passed"] else 0


if __name__ == "__main__":
    sys.exit(main([pathlib.Path(name) for name in sys.argv[1:]]))
