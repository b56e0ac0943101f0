#!/usr/bin/env python3
"""Counts the results of a ctest run: count_results.py RESULTS.xml CTEST_STATUS [AGAIN.xml AGAIN_STATUS]

AGAIN.xml has a second run of the tests that failed. Prints 'N passed, N failed' (', N skipped' and ', N of them at the
second attempt' when there are any, with the names of the latter before) and exits non-zero unless tests ran and none
failed to the end.
"""
import os
import sys
import xml.etree.ElementTree as ElementTree


def read(path):
    """The names that passed, failed and were skipped."""
    passed, failed, skipped = [], [], []
    if os.path.exists(path):
        for case in ElementTree.parse(path).getroot().iter("testcase"):
            status = case.get("status")
            if status == "run":
                passed.append(case.get("name"))
            elif status == "disabled" or (case.find("skipped") is not None and status == "notrun"
                                          and "Unable to find" not in (case.find("skipped").get("message") or "")):
                skipped.append(case.get("name"))
            else:
                failed.append(case.get("name"))
    return passed, failed, skipped


def main(path, ctest_status, again=None, again_status=1):
    passed, failed, skipped = read(path)
    recovered = []
    if again is not None:
        recovered = [name for name in read(again)[0] if name in failed]
        failed = [name for name in failed if name not in recovered]
        passed += recovered
        ctest_status = int(again_status)
    # A run that broke off, or a program whose tests could not be listed, is a failure without a name.
    if not failed and (int(ctest_status) != 0 or not passed):
        failed.append("the test run itself")
    for name in recovered:
        print(f"AT THE SECOND ATTEMPT: {name}")
    for name in failed:
        print(f"FAILED: {name}")
    line = f"{len(passed)} passed, {len(failed)} failed"
    line += f", {len(skipped)} skipped" if skipped else ""
    print(line + (f", {len(recovered)} of them at the second attempt" if recovered else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
