#!/usr/bin/python3
"""Puts the installed program through every fault of the matrix, and prints the table of what was counted."""

import argparse
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "linux"))

import table  # noqa: E402
from matrix import FAULTS, try_fault  # noqa: E402

for module in sorted(HERE.glob("*_faults.py")):
    __import__(module.stem)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true", help="only the half that takes a few minutes")
    parser.add_argument("--list", action="store_true", help="name the faults and end")
    parser.add_argument("--rounds", type=int, help="that many rounds of each")
    parser.add_argument("names", nargs="*", metavar="NAME", help="faults whose name contains it; all by default")
    return parser.parse_args()


def chosen(given):
    """The faults that were asked for, each with its number of rounds."""
    found = []
    for fault in FAULTS.values():
        rounds = given.rounds or (fault.quick if given.quick else fault.whole)
        if rounds and (not given.names or any(name in fault.name for name in given.names)):
            found.append((fault, rounds))
    return found


def main():
    given = arguments()
    faults = chosen(given)
    if given.list:
        for fault, rounds in faults:
            print(f"{fault.name} ({rounds})")
        return 0
    rows, failed = [], 0
    with tempfile.TemporaryDirectory(prefix="hb-faults-") as folder:
        for number, (fault, rounds) in enumerate(faults):
            counts = try_fault(fault, rounds, Path(folder) / str(number))
            rows.append(table.row(fault.name, counts))
            failed += not counts.holds
            print(f"{fault.name}: {'holds' if counts.holds else 'DOES NOT HOLD'} ({counts.seconds:.0f} s)", flush=True)
            for failure in counts.failures[:20]:
                print(f"    {failure}", flush=True)
    print()
    print(table.table(rows))
    print(f"\n{len(rows) - failed} passed, {failed} failed")
    return 1 if failed or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
