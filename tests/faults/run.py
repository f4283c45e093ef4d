#!/usr/bin/python3
"""Puts the installed program through every fault of the matrix, and prints the table of what was counted."""

import argparse
import multiprocessing
import sys
import tempfile
from concurrent.futures import ProcessPoolExecutor, as_completed
from pathlib import Path

import report
import table
from matrix import FAULTS, try_fault

HERE = Path(__file__).resolve().parent

for module in sorted(HERE.glob("*_faults.py")):
    __import__(module.stem)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true", help="only the half that takes a few minutes")
    parser.add_argument("--list", action="store_true", help="name the faults and end")
    parser.add_argument("--rounds", type=int, help="that many rounds of each")
    parser.add_argument("--jobs", type=int, default=1, help="so many faults at the same time; 1 by default")
    parser.add_argument("--write", type=Path, metavar="FILE", help="put the rows into the table in that document, too")
    parser.add_argument("names", nargs="*", metavar="NAME", help="faults whose name contains it; all by default")
    return parser.parse_args()


def chosen(given):
    """The names of the faults that were asked for, each with its number of rounds."""
    found = {}
    for fault in FAULTS.values():
        rounds = given.rounds or (fault.quick if given.quick else fault.whole)
        if rounds and (not given.names or any(name in fault.name for name in given.names)):
            found[fault.name] = rounds
    return found


def try_named(name, rounds, folder):
    return try_fault(FAULTS[name], rounds, Path(folder))


def try_all(faults, jobs):
    """The name and the counts of each fault, as soon as it has been tried; each has a process of its own."""
    processes = multiprocessing.get_context("spawn")
    with (
        tempfile.TemporaryDirectory(prefix="hb-faults-") as folder,
        ProcessPoolExecutor(jobs, processes, max_tasks_per_child=1) as pool,
    ):
        tried = {
            pool.submit(try_named, name, rounds, f"{folder}/{number}"): name
            for number, (name, rounds) in enumerate(faults.items())
        }
        for outcome in as_completed(tried):
            yield tried[outcome], outcome.result()


def tell(name, counts):
    print(f"{name}: {counts.outcome} ({counts.seconds:.0f} s)", flush=True)
    for failure in counts.failures[:20]:
        print(f"    {failure}", flush=True)


def main():
    given = arguments()
    faults = chosen(given)
    if given.list:
        for name, rounds in faults.items():
            print(f"{name} ({rounds})")
        return 0
    tried = {}
    for name, counts in try_all(faults, given.jobs):
        tried[name] = counts
        tell(name, counts)
        if given.write:
            report.write(given.write, {name: table.row(name, counts)}, list(FAULTS))
    rows = {name: table.row(name, tried[name]) for name in faults}
    print()
    print(table.table(rows.values()))
    failed = sum(bool(counts.failures) for counts in tried.values())
    not_tried = sum(counts.not_tried is not None for counts in tried.values())
    left_out = f", {not_tried} not tried" if not_tried else ""
    print(f"\n{len(rows) - failed - not_tried} passed, {failed} failed{left_out}")
    return 1 if failed or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
