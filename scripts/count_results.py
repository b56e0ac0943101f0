#!/usr/bin/env python3
"""Counts the results of a ctest run: count_results.py RESULTS.xml CTEST_STATUS

Prints 'N passed, N failed' (', N skipped' when there are any) and exits non-zero unless tests ran and none failed.
"""
import os
import sys
import xml.etree.ElementTree as ElementTree


def main(path, ctest_status):
    passed, failed, skipped = 0, [], 0
    if os.path.exists(path):
        for case in ElementTree.parse(path).getroot().iter("testcase"):
            status = case.get("status")
            if status == "run":
                passed += 1
            elif status == "disabled" or (case.find("skipped") is not None and status == "notrun"
                                          and "Unable to find" not in (case.find("skipped").get("message") or "")):
                skipped += 1
            else:
                failed.append(case.get("name"))
    # A run that broke off, or a program whose tests could not be listed, is a failure without a name.
    if not failed and (ctest_status != 0 or passed == 0):
        failed.append("the test run itself")
    for name in failed:
        print(f"FAILED: {name}")
    print(f"{passed} passed, {len(failed)} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], int(sys.argv[2])))
