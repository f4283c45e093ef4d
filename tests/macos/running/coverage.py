"""Says which lines of platform/cocoa the run has reached. Each line that it cannot reach stands, with the reason,
in unreached.tsv; any other line that was not reached, and any listed one that was, is an error.

usage: coverage.py BUILD_DIRECTORY PROGRAM...
"""

import json
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[2]
LLVM = "/usr/lib/llvm-19/bin"


def exported(build, programs):
    merged = build / "all.profdata"
    raw = sorted(str(p) for p in build.glob("profile-*.raw"))
    subprocess.run([f"{LLVM}/llvm-profdata", "merge", "-o", str(merged), *raw], check=True)
    objects = [word for program in programs[1:] for word in ("-object", str(build / program))]
    output = subprocess.run(
        [f"{LLVM}/llvm-cov", "export", f"-instr-profile={merged}", str(build / programs[0]), *objects],
        check=True, capture_output=True, text=True).stdout
    return json.loads(output)["data"][0]["files"]


def lines_of(file):
    """How often each line with code was reached, from the segments (line, column, count, has count, is start...)."""
    counts, current, previous = {}, None, 0
    for line, _, count, has_count, is_start, is_gap in file["segments"]:
        for between in range(previous + 1, line):
            if current is not None:
                counts[between] = max(counts.get(between, 0), current)
        if has_count and is_start and not is_gap:
            counts[line] = max(counts.get(line, 0), count)
        if current is not None and line not in counts:
            counts[line] = current
        current = count if has_count and not is_gap else None
        previous = line
    return counts


def reasons():
    table = {}
    for line in (HERE / "unreached.tsv").read_text().splitlines()[1:]:
        file, text, reason = line.split("\t")
        table[(file, text)] = reason
    return table


def main():
    build, programs = Path(sys.argv[1]), sys.argv[2:]
    excused, errors, reached, total = reasons(), [], 0, 0
    seen = set()
    for file in exported(build, programs):
        path = Path(file["filename"]).resolve()
        if path.parent != ROOT / "platform/cocoa":
            continue
        source = path.read_text().splitlines()
        for line, count in sorted(lines_of(file).items()):
            text = source[line - 1].strip()
            if not text.strip("{}();, "):
                continue
            total += 1
            reached += count > 0
            key = (path.name, text)
            if key in excused:
                seen.add(key)
            if count == 0 and key not in excused:
                errors.append(f"{path.name}:{line} is never reached: {text}")
    errors += [f"{file} has no such line any more: {text}" for file, text in sorted(set(excused) - seen)]
    print("\n".join(errors + [f"{reached} of {total} lines of platform/cocoa run, {100 * reached / max(total, 1):.1f} %"]))
    return 1 if errors or not total else 0


if __name__ == "__main__":
    sys.exit(main())
