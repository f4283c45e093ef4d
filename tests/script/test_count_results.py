"""What the runners of tests say at their ends is counted, and what they skipped is seen."""

import count_results
import pytest

GOOGLE = """
1: [==========] Running 3 tests from 1 test suite.
1: [ RUN      ] Views.move
1: /src/ViewContract.cpp:22: Skipped
1: GLib's threads are unknown to the thread sanitizer
1: [  SKIPPED ] Views.move (0 ms)
1: [ RUN      ] Views.stay
1: [       OK ] Views.stay (0 ms)
1: [  PASSED  ] 1 test.
1: [  SKIPPED ] 1 test, listed below:
1: [  SKIPPED ] Views.move
1: [  FAILED  ] 1 test, listed below:
1: [  FAILED  ] Views.end
"""

CRASHED = """
50% tests passed, 1 tests failed out of 2

The following tests FAILED:
	  1 - unit_tests (SEGFAULT)
	  2 - gtk_tests (Failed)
"""

NODE = """
✔ the first (0.1ms)
﹣ the page (0.2ms) # Chromium is not installed
ℹ tests 5
ℹ pass 3
ℹ fail 1
ℹ skipped 1
"""

PYTEST = """
SKIPPED [2] tests/linux/test_x.py:57: this machine allows no sandbox
FAILED tests/linux/test_y.py::test_z - AssertionError
1 failed, 20 passed, 2 skipped, 2 errors in 3.40s
"""

FAULTS = """
the disk is full: not tried: no permission (2 s)
7 passed, 0 failed, 1 not tried
"""


@pytest.mark.parametrize(
    "log, passed, failed, skips",
    [
        (GOOGLE, 1, 1, [("Views.move", "GLib's threads are unknown to the thread sanitizer")]),
        (CRASHED, 0, 1, []),
        (NODE, 3, 1, [("the page", "Chromium is not installed")]),
        (PYTEST, 20, 3, [("tests/linux/test_x.py", "this machine allows no sandbox")] * 2),
        (FAULTS, 7, 0, [("the disk is full", "not tried: no permission")]),
        ("== 3 passed in 0.1s ==\n", 3, 0, []),
        ("nothing of the kind\n", 0, 0, []),
    ],
    ids=["GoogleTest", "ended early", "node", "pytest", "faults", "with a frame", "none"],
)
def test_all_runners_are_understood(log, passed, failed, skips):
    assert count_results.count(log) == (passed, failed, skips)


@pytest.mark.parametrize(
    "reason, word",
    [
        ("this machine allows no sandbox", "impossible"),
        ("unknown to the thread sanitizer", "impossible"),
        ("needs root", "impossible"),
        ("not tried: no permission", "impossible"),
        ("Chromium is not installed", "possible"),
        ("", "possible"),
    ],
)
def test_a_skip_is_excused_only_by_what_the_machine_lacks(tmp_path, capsys, reason, word):
    log = tmp_path / "log"
    log.write_text(f"SKIPPED [1] test_x.py:1: {reason}\n1 skipped in 0.1s\n")
    count_results.main(log)
    lines = capsys.readouterr().out.splitlines()
    assert lines[0] == f"0 0 {1 if reason else 0}"
    assert [line.split()[0] for line in lines[1:]] == ([word] if reason else [])
