#!/usr/bin/env python3
"""Reads what one run of ctest left behind: prints "PASSED FAILED", then a line for each test that needs a remark.

    ctest_results.py JUNIT-FILE CONSOLE-LOG

ctest repeats the tests on real desktops that fail (--repeat until-pass) and reports the last try alone, so the tests
that failed first are found in the console log. A test that was skipped or did not run counts as failed: every test is
expected to run. A sanitizer's report counts as a failure even where a later try of the test passed.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree

FAILED_TRY = re.compile(r"Test +#\d+: (.+?) \.*\s*\*\*\*(.+?) +[\d.]+ sec")
SANITIZER_REPORT = re.compile(r"WARNING: ThreadSanitizer|ERROR: \w+Sanitizer|: runtime error: ")


def main(junit_file, console_log):
    cases = list(ElementTree.parse(junit_file).getroot().iter("testcase"))
    with open(console_log, encoding="utf-8", errors="replace") as file:
        console = file.read()
    failed = {case.get("name"): case.get("status") for case in cases if case.get("status") != "run"}
    remarks = [f"{name}: {'failed' if status == 'fail' else 'did not run'}" for name, status in failed.items()]
    repeated = {name: reason for name, reason in FAILED_TRY.findall(console) if name not in failed}
    remarks += [f"{name}: passed when repeated, after: {reason}" for name, reason in repeated.items()]
    failures = len(failed)
    if repeated and SANITIZER_REPORT.search(console):
        failures += 1
        remarks.append("a sanitizer reported something in a test that passed when repeated")
    print(len(cases) - len(failed), failures)
    print("\n".join(remarks))


if __name__ == "__main__":
    main(*sys.argv[1:])
