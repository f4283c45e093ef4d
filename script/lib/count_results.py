"""count_results.py LOG: what the runners of tests say at their ends, in one line: passed, failed, skipped.

Then a line for each skip: "impossible" or "possible", and what was skipped and why. A skip is impossible to avoid when
its reason says what this machine does not have or allow, or what a sanitizer rules out; every other is a test that
could have been run.
"""

import re
import sys
from pathlib import Path

NOT_POSSIBLE = re.compile(r"\b(this machine|sanitizers?)\b|^needs |^not tried: ")

# [12: ]: ctest puts the number of a program before its lines.
GOOGLE_TEST = re.compile(r"^(?:\d+: )?\[  (PASSED|FAILED) +\] (\d+) tests?[.,]")
GOOGLE_TEST_SKIP = re.compile(r"^(?:\d+: )?\[  SKIPPED \] (\S+) \(\d+ ms\)")
GOOGLE_TEST_REASON = re.compile(r"^(?:\d+: )?\S+:\d+: Skipped$")
# A program that ended before it could say anything.
CTEST_END = re.compile(r"^\s*\d+ - (\S+) \((?!Failed\b)(.+)\)$")
NODE = re.compile(r"^(?:# |ℹ )(pass|fail) (\d+)$")
NODE_SKIP = re.compile(r"^\s*﹣ (.+) \([\d.]+ms\) # (.+)$")
# pytest's, and that of our own scripts: [=== ]1 failed, 20 passed[, 2 errors] [in 3.4s ===]
SUMMARY = re.compile(r"^=* ?\d+ (?:passed|failed|errors?|skipped)(?:,| in |$)")
PYTEST_SKIP = re.compile(r"^SKIPPED \[(\d+)\] (\S+?):(?:\d+:)? (.+)$")
FAULT_SKIP = re.compile(r"^(.+): (not tried: .+) \(\d+ s\)$")


def count(log):
    """Passed, failed, and the pairs of what was skipped and why."""
    passed, failed, skips = 0, 0, []
    reason_follows, reason = False, ""
    for line in log.splitlines():
        if reason_follows:
            reason, reason_follows = re.sub(r"^\d+: ", "", line), False
        elif GOOGLE_TEST_REASON.match(line):
            reason_follows = True
        elif found := GOOGLE_TEST.match(line):
            if found[1] == "PASSED":
                passed += int(found[2])
            else:
                failed += int(found[2])
        elif found := GOOGLE_TEST_SKIP.match(line):
            skips.append((found[1], reason))
        elif CTEST_END.match(line):
            failed += 1
        elif found := NODE.match(line):
            if found[1] == "pass":
                passed += int(found[2])
            else:
                failed += int(found[2])
        elif found := NODE_SKIP.match(line):
            skips.append((found[1], found[2]))
        elif SUMMARY.match(line):
            passed += sum(map(int, re.findall(r"(\d+) passed", line)))
            failed += sum(map(int, re.findall(r"(\d+) (?:failed|error)", line)))
        elif found := PYTEST_SKIP.match(line):
            skips += [(found[2], found[3])] * int(found[1])
        elif found := FAULT_SKIP.match(line):
            skips.append((found[1], found[2]))
    return passed, failed, skips


def main(log):
    passed, failed, skips = count(Path(log).read_text(errors="replace"))
    print(passed, failed, len(skips))
    for name, reason in skips:
        print("impossible" if NOT_POSSIBLE.search(reason) else "possible", f"{name}: {reason}")


if __name__ == "__main__":
    main(sys.argv[1])
