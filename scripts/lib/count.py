"""count.py BUILD...: says how many tests ran, from the reports that CTest and GoogleTest left.

A GoogleTest program is one test of CTest and counts as its cases; every other test of CTest counts
as one. The status is not 0 when a test failed or none passed.
"""

import collections
import pathlib
import sys
import xml.etree.ElementTree


def outcome_for_ctest(case):
    """Returns the outcome of one test as CTest saw it."""
    if case.get("status") == "run":
        return "passed"
    # A test that asked to be skipped, or that is disabled; anything else did not run for a fault.
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
    # A crash, a leak or a time limit is a failure that no case shows.
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
            # No GoogleTest program, or one that ended before its report was whole.
            counts[outcome] += 1
    return counts


def line(counts):
    shown = [f"{counts['passed']} passed", f"{counts['failed']} failed"]
    if counts["skipped"]:
        shown.append(f"{counts['skipped']} skipped")
    return ", ".join(shown)


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
