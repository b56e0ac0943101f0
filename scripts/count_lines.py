#!/usr/bin/env python3
"""Sums up the line counts of a coverage build: count_lines.py BUILD_DIR MISSED.txt"""
import json
import os
import subprocess
import sys

FOLDERS = ("core", "string", "variant", "stream", "fio", "param", "supp")


def main(build, missed_path):
    root = os.getcwd()
    counts = {}
    for folder, _, names in os.walk(build):
        for name in names:
            if not name.endswith(".gcda"):
                continue
            run = subprocess.run(["x86_64-w64-mingw32-gcov-posix", "--json-format", "--stdout",
                                  os.path.join(folder, name)], capture_output=True, text=True, check=True)
            for document in run.stdout.splitlines():
                unit = json.loads(document)
                for file in unit["files"]:
                    path = os.path.join(unit["current_working_directory"], file["file"])
                    path = os.path.relpath(path, root).replace("\\", "/")
                    if path.split("/")[0] not in FOLDERS:
                        continue
                    lines = counts.setdefault(path, {})
                    for line in file["lines"]:
                        number = line["line_number"]
                        lines[number] = lines.get(number, 0) + line["count"]
    if not counts:
        print("no line of the library was counted")
        return 1
    all_lines = all_run = 0
    with open(missed_path, "w", encoding="utf-8") as missed:
        for path, lines in sorted(counts.items()):
            ran = sum(1 for count in lines.values() if count)
            all_lines += len(lines)
            all_run += ran
            print(f"{100 * ran / len(lines):5.1f} %  {ran:5} of {len(lines):5}  {path}")
            missed.writelines(f"{path}:{number}\n" for number, count in sorted(lines.items()) if not count)
    print(f"{100 * all_run / all_lines:5.1f} %  {all_run:5} of {all_lines:5}  lines of the library")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
