#!/usr/bin/env python3
"""Runs a small project of tests that pass, fail, crash, are skipped or pass when repeated, as ./test would, and compares
what scripts/ctest_results.py makes of it.

    check_test_results.py CTEST RESULTS-SCRIPT
"""

import pathlib
import re
import subprocess
import sys
import tempfile

# Fails in its first try and passes in the second, after printing the text that it is given.
SECOND_TRY = "import pathlib, sys; seen = pathlib.Path('{name}'); print({text!r}); first = not seen.exists(); seen.touch(); sys.exit(first)"


def results_of(ctest, script, tests):
    """What the script prints for tests given as {name: Python program}."""
    with tempfile.TemporaryDirectory() as folder:
        lines = []
        for name, program in tests.items():
            file = pathlib.Path(folder, re.sub(r"\W", "_", name) + ".py")
            file.write_text(program, encoding="utf-8")
            lines.append(f'add_test("{name}" "{sys.executable}" "{file}")\n'
                         f'set_tests_properties("{name}" PROPERTIES SKIP_RETURN_CODE 77)\n')
        pathlib.Path(folder, "CTestTestfile.cmake").write_text("".join(lines), encoding="utf-8")
        run = subprocess.run([ctest, "--repeat", "until-pass:3", "--output-on-failure", "--output-junit", "results.xml"],
                             cwd=folder, capture_output=True, text=True, check=False)
        log = pathlib.Path(folder, "console.log")
        log.write_text(run.stdout, encoding="utf-8")
        return subprocess.run([sys.executable, script, str(pathlib.Path(folder, "results.xml")), str(log)],
                              capture_output=True, text=True, check=True).stdout.split("\n")[:-1]


def expect(what, actual, expected):
    if actual != expected:
        sys.exit(f"{what}: expected {expected}, got {actual}")


def main(ctest, script):
    expect("tests that pass", results_of(ctest, script, {"A.Passes": "", "B.Passes": ""}), ["2 0", ""])
    expect("failed, crashed, skipped and repeated tests",
           results_of(ctest, script, {"Passes": "", "Fails": "raise SystemExit(1)",
                                      "Crashes": "import os; os.kill(os.getpid(), 11)",
                                      "Skips": "raise SystemExit(77)",
                                      # As parameters are shown in the names.
                                      "Passes/Later  # GetParam() = later": SECOND_TRY.format(name="later", text="no luck")}),
           ["2 3", "Fails: failed", "Crashes: failed", "Skips: did not run",
            "Passes/Later  # GetParam() = later: passed when repeated, after: Failed"])
    expect("a sanitizer's report in a test that passes later",
           results_of(ctest, script, {"Races": SECOND_TRY.format(name="races", text="WARNING: ThreadSanitizer: data race")}),
           ["1 1", "Races: passed when repeated, after: Failed",
            "a sanitizer reported something in a test that passed when repeated"])


if __name__ == "__main__":
    main(*sys.argv[1:])
