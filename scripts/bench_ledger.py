"""Runs the benchmarks and prints the ledger.

Called by scripts/bench: bench_ledger.py RUNNER PROGRAM [--json FILE] [--rounds N] [FILTER]
"""

import argparse
import json
import re
import statistics
import subprocess
import sys


def parse_arguments():
    parser = argparse.ArgumentParser(prog="bench")
    parser.add_argument("runner")
    parser.add_argument("program")
    parser.add_argument("filter", nargs="?", default="")
    parser.add_argument("--json", metavar="FILE", help="also write the ledger as JSON")
    parser.add_argument("--rounds", type=int, default=5, help="rounds of each row, at least 5 (default 5)")
    arguments = parser.parse_intermixed_args()
    arguments.rounds = max(arguments.rounds, 5)
    return arguments


def run(arguments, *options):
    command = [arguments.runner, arguments.program, *options]
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=False)
    if done.returncode != 0:
        sys.exit(f"bench: {' '.join(command)} ended with {done.returncode}")
    return done.stdout.decode()


def timed_rows(arguments):
    """The rounds of all rows and sides alternate at random, so that a slow moment of the machine hits both."""
    output = run(
        arguments,
        f"--benchmark_filter={arguments.filter or '.'}",
        f"--benchmark_repetitions={arguments.rounds}",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_min_time=0.05",
        "--benchmark_format=json",
    )
    start = output.find("{")
    if start < 0:
        return {}
    rows = {}
    for result in sorted(json.loads(output[start:])["benchmarks"], key=lambda each: each["family_index"]):
        if result["run_type"] != "iteration":
            continue
        group, work, beside, target, side = result["run_name"].split("/real_time")[0].split("|")
        scale = {"ns": 1, "us": 1e3, "ms": 1e6}[result["time_unit"]]
        sides = rows.setdefault((group, work, beside, float(target)), {})
        sides.setdefault(side, []).append(result["real_time"] * scale)
    return {row: {side: statistics.median(times) for side, times in sides.items()} for row, sides in rows.items()}


def memory_rows(arguments):
    """Each side of each row in processes of its own, so that neither profits from what the other left."""
    rows = {}
    for index, line in enumerate(run(arguments, "--memory").splitlines()):
        group, work, beside, target, entries = line.strip().split("|")
        if not re.search(arguments.filter or ".", f"{group}|{work}"):
            continue
        rows[(group, work, beside, float(target))] = {
            side: statistics.median(
                int(run(arguments, "--memory", str(index), side)) / int(entries) for _ in range(arguments.rounds)
            )
            for side in ("library", "counterpart")
        }
    return rows


def amount(value, is_bytes):
    if is_bytes:
        return f"{value:.1f} B"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if value >= scale:
            return f"{value / scale:.2f} {unit}"
    return f"{value:.1f} ns"


def main():
    arguments = parse_arguments()
    ledger = []
    for measured, is_bytes in ((timed_rows(arguments), False), (memory_rows(arguments), True)):
        for (group, work, beside, target), sides in measured.items():
            ratio = sides["library"] / sides["counterpart"]
            ledger.append(
                {
                    "group": group,
                    "work": work,
                    "beside": beside,
                    "unit": "bytes" if is_bytes else "ns",
                    "library": sides["library"],
                    "counterpart": sides["counterpart"],
                    "ratio": ratio,
                    "target": target,
                    "met": ratio <= target,
                }
            )
    for row in ledger:
        is_bytes = row["unit"] == "bytes"
        print(
            f"{row['group']:15} {row['work']:62} {amount(row['library'], is_bytes):>11}"
            f" {amount(row['counterpart'], is_bytes):>11} {row['ratio']:6.2f} x of {row['target']:<5g}"
            f" {'met   ' if row['met'] else 'MISSED'}  beside: {row['beside']}"
        )
    met = sum(row["met"] for row in ledger)
    print(f"{met} of {len(ledger)} rows met")
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(ledger, file, indent=1)


if __name__ == "__main__":
    main()
