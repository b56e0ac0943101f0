#!/usr/bin/env python3
"""Sums up a coverage build: count_coverage.py BUILD_DIR [GCOV]

Prints a table of the library's files, then one of its folders that ends with the total. Both are kept in
BUILD_DIR/coverage.txt; what never ran is written to BUILD_DIR/missed.txt. A line or branch that several instantiations
and translation units have counts once and ran when it ran in any of them.

Branches are the edges of conditions. The two edges of a call, on past it and out of it with an exception, are left out
whether they ran or not: nearly every call has them, and no condition of the source decides between them.
"""
import collections
import concurrent.futures
import itertools
import json
import os
import subprocess
import sys

FOLDERS = ("core", "string", "variant", "stream", "fio", "param", "supp", "include")
GCOV = "x86_64-w64-mingw32-gcov-posix"


def documents(gcov, note):
    """What gcov tells of one translation unit. One that never ran has notes alone, and counts with all its lines."""
    run = subprocess.run([gcov, "--json-format", "--branch-probabilities", "--stdout", note],
                         capture_output=True, text=True, check=True)
    return [json.loads(line) for line in run.stdout.splitlines() if line.startswith("{")]


def decisions(branches):
    """The counts of the edges that a condition decides. gcov lists the edge past a call right before its exception."""
    counts = []
    for branch in branches:
        if branch["throw"]:
            if counts and counts[-1][1]:
                counts.pop()
        else:
            counts.append((branch["count"], branch["fallthrough"]))
    return [count for count, _ in counts]


class SourceFile:
    def __init__(self):
        self.lines = collections.Counter()
        self.edges = {}  # line -> {place of the function: {number of edges: their counts}}

    def add(self, listed):
        places = {function["name"]: (function["start_line"], function["start_column"])
                  for function in listed["functions"]}
        for line in listed["lines"]:
            number = line["line_number"]
            self.lines[number] += line["count"]
            counts = decisions(line["branches"])
            if counts:
                # Instantiations of a template begin at the same place; a lambda has its own.
                shapes = self.edges.setdefault(number, {}).setdefault(places.get(line.get("function_name")), {})
                sums = shapes.setdefault(len(counts), [0] * len(counts))
                shapes[len(counts)] = [a + b for a, b in zip(sums, counts)]

    def branches(self):
        """line -> the counts of its edges. Where instantiations differ, those with the most edges stand for all."""
        return {number: [count for shapes in functions.values() for count in shapes[max(shapes)]]
                for number, functions in self.edges.items()}


def read(build, gcov):
    root = os.getcwd()
    notes = [os.path.join(folder, name) for folder, _, names in os.walk(build) for name in names
             if name.endswith(".gcno")]
    files = {}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for units in pool.map(lambda note: documents(gcov, note), notes):
            for unit in units:
                for listed in unit["files"]:
                    path = os.path.join(unit["current_working_directory"], listed["file"])
                    path = os.path.relpath(path, root).replace("\\", "/")
                    if path.split("/")[0] in FOLDERS:
                        files.setdefault(path, SourceFile()).add(listed)
    return files


def unrun_ranges(lines):
    """The lines that never ran, as "12-15, 20"; lines without code do not break a range."""
    spans = []
    for ran, run in itertools.groupby(sorted(lines.items()), key=lambda item: item[1] > 0):
        numbers = [number for number, _ in run]
        if not ran:
            spans.append(f"{numbers[0]}-{numbers[-1]}" if len(numbers) > 1 else f"{numbers[0]}")
    return ", ".join(spans)


def share(ran, count):
    return f"{100 * ran / count:5.1f} %" if count else "      -"


def row(lines_ran, lines, branches_ran, branches, name):
    return (f"{share(lines_ran, lines)} {lines_ran:6} of {lines:6}   "
            f"{share(branches_ran, branches)} {branches_ran:6} of {branches:6}   {name}")


def main(build, gcov=GCOV):
    files = read(build, gcov)
    if not any(count for file in files.values() for count in file.lines.values()):
        print("no line of the library was counted")
        return 1
    heading = f"{'lines that ran':>23}   {'branches taken':>23}"
    table = [heading]
    missed = []
    sums = {folder: [0, 0, 0, 0] for folder in FOLDERS}
    for path, file in sorted(files.items()):
        if not file.lines:
            continue  # declarations alone
        branches = file.branches()
        edges = [count for counts in branches.values() for count in counts]
        figures = [sum(map(bool, file.lines.values())), len(file.lines), sum(map(bool, edges)), len(edges)]
        folder = path.split("/")[0]
        sums[folder] = [a + b for a, b in zip(sums[folder], figures)]
        table.append(row(*figures, path))

        if unrun_ranges(file.lines):
            missed.append(f"{path}: lines {unrun_ranges(file.lines)}")
        for number, counts in sorted(branches.items()):
            if file.lines[number] and not all(counts):
                places = ", ".join(str(place) for place, count in enumerate(counts, 1) if not count)
                missed.append(f"{path}:{number}: branch {places} of {len(counts)}")
    table += ["", heading]
    table += [row(*figures, folder) for folder, figures in sums.items()]
    table.append(row(*map(sum, zip(*sums.values())), "the library"))
    table.append("Edges that exceptions take, and their opposites, are not among the branches.")
    for name, rows in (("coverage.txt", table), ("missed.txt", missed)):
        with open(os.path.join(build, name), "w", encoding="utf-8") as out:
            out.writelines(text + "\n" for text in rows)
    print("\n".join(table))
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
