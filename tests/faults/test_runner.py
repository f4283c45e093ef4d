"""That the runner reports what does not hold: each weakness is planted in a small program that takes the real one's place.

A matrix that cannot fail would be worth nothing.
"""

import os
import signal
import subprocess
import tempfile
from pathlib import Path

import pytest

import checks
import report
import table
from fake_program import read_mapped
from harness.desktop import Desktop
from harness.waiting import wait_until
from leftovers import files, new_files, temporary_folder
from matrix import Counts, Fault, NotTried, Trial, try_fault
from watch import Holdings

HERE = Path(__file__).resolve().parent

SLOW, QUICK = "0.25", "0"


@pytest.fixture(scope="module")
def desktop():
    desktop = Desktop()
    yield desktop
    desktop.close()


@pytest.fixture
def trial(tmp_path):
    trial = Trial(1, tmp_path)
    yield trial
    trial.close()


@pytest.fixture
def start(trial, desktop):
    """Starts the small program with that weakness."""

    def start(*weakness):
        shell = trial.shell(desktop=desktop, environment=temporary_folder(desktop.folder / "tmp"))
        shell.executable = HERE / "fake_program.py"
        shell.start(*(weakness or ("none",)))
        wait_until("it is ready", (shell.home / "ready").exists)
        return shell

    return start


def failures(trial):
    return "\n".join(trial.counts.failures)


# Its end


def test_a_program_that_ends_in_order_holds(trial, start):
    shell = start()
    trial.quit(shell)
    trial.look_for_complaints(shell)
    assert trial.counts.holds and trial.counts.crashes == trial.counts.left_behind == 0


@pytest.mark.parametrize("weakness, status", [("crash", "-6"), ("status", "3")])
def test_a_program_that_ends_wrong_is_a_crash(trial, start, weakness, status):
    trial.quit(start(weakness))
    assert trial.counts.crashes == 1
    assert f"ended with {status}" in failures(trial)


def test_a_program_that_is_gone_is_a_crash(trial, start):
    shell = start()
    shell.signal(signal.SIGKILL)
    shell.wait()
    trial.expect_running(shell)
    assert trial.counts.crashes == 1 and not trial.counts.holds


def test_a_program_that_does_not_end_is_reported(trial, start):
    shell = start("deaf")
    shell.signal()
    trial.expect_exit(shell, within=0.5)
    assert "does not end" in failures(trial)


def test_a_process_that_is_left_behind_is_reported_and_ended(trial, start):
    shell = start("orphan")
    shell.signal()
    shell.wait()
    trial.expect_nothing_left(shell, within=0.5)
    assert trial.counts.left_behind == 1
    assert "sleep" in failures(trial)
    assert not shell.processes()


def test_a_process_with_the_number_of_an_ended_program_is_no_orphan(trial, start):
    shell = start()
    trial.quit(shell)
    shell.program.pid = os.getpid()
    with subprocess.Popen(["sleep", "600"]) as child:
        found = shell.processes()
        child.kill()
    assert not found


@pytest.mark.parametrize("words", ["a CRITICAL mistake", "AddressSanitizer: leak", "terminate called after"])
def test_complaints_are_reported(trial, start, words):
    shell = start("complaint", words)
    trial.look_for_complaints(shell)
    assert words in failures(trial)


def test_engine_processes_may_complain_when_the_program_is_killed(trial, start):
    shell = start("complaint", "(process:2): GLib-CRITICAL **: The connection is closed")
    trial.kill(shell)
    trial.look_for_complaints(shell)
    assert trial.counts.holds


@pytest.mark.parametrize("words", ["(harbrook:{pid}): GLib-CRITICAL **: assertion failed", "AddressSanitizer: leak"])
def test_the_program_may_not_complain_even_when_it_is_killed(trial, start, words):
    shell = start("complaint", words)
    trial.kill(shell)
    trial.look_for_complaints(shell)
    assert not trial.counts.holds


# Its log


def test_a_log_that_is_whole_holds(trial, start):
    shell = start("log", "one\ntwo\nthree\n")
    trial.expect_logged(shell, [b"one", b"three"])
    checks.expect_log_is(trial, shell, b"one\ntwo\nthree\n")
    assert trial.counts.holds and trial.counts.lines_lost == 0


@pytest.mark.parametrize("log", ["one\nthree\n", "one\ntw\nthree\n", "two\none\nthree\n"], ids=["lost", "cut", "moved"])
def test_a_line_that_is_lost_is_reported(trial, start, log):
    trial.expect_logged(start("log", log), [b"one", b"two", b"three"])
    assert trial.counts.lines_lost and not trial.counts.holds


def test_a_log_with_another_byte_is_reported(trial, start):
    checks.expect_log_is(trial, start("log", "one\ntwx\n"), b"one\ntwo\n")
    assert not trial.counts.holds


def test_a_digest_tells_of_a_lost_line(trial, start):
    shell = start("log", "skip\none\ntwo!\n")
    checks.expect_log_digest(trial, shell, 9, "0" * 64, lines=3, skip=5)
    assert trial.counts.lines_lost == 1
    assert "not what was printed" in failures(trial)


# What it holds on to


@pytest.mark.parametrize("kind", ["descriptors", "threads", "memory"])
def test_a_leak_is_reported(trial, start, kind, monkeypatch):
    # Nothing of this goes away by itself.
    monkeypatch.setattr("matrix.wait_until", lambda *_: None)
    shell = start("leak", kind)
    before = Holdings.of(shell.pid)
    with trial.keeping(shell):
        shell.signal(signal.SIGUSR1)
        wait_until("it leaks", lambda: getattr(Holdings.of(shell.pid), kind) > getattr(before, kind))
        if kind == "memory":
            wait_until("all of it", lambda: Holdings.of(shell.pid).memory > before.memory + 6000)
    assert getattr(trial.counts, kind) > 0
    assert kind in failures(trial)


def test_a_program_that_keeps_nothing_holds(trial, start):
    shell = start()
    with trial.keeping(shell):
        pass
    assert trial.counts.holds
    assert trial.counts.descriptors == trial.counts.threads == 0


def test_what_it_only_reads_is_not_its_own_once_others_end(trial, start):
    # On a disk, where libraries are: temporary folders may be memory themselves.
    with tempfile.NamedTemporaryFile(dir=HERE.parents[1] / "build") as library:
        library.write(bytes(8 << 20))
        os.fsync(library)
        other = read_mapped(library.name)
        shell = start("mapping", library.name)
        with trial.keeping(shell):
            other.close()
    assert trial.counts.holds, failures(trial)


def test_a_program_that_does_not_rest_is_reported(trial, start):
    checks.expect_resting(trial, start("restless"), 0.5)
    assert "with waiting" in failures(trial)


def test_a_program_that_rests_holds(trial, start):
    checks.expect_resting(trial, start(), 0.5)
    assert trial.counts.holds


def test_files_that_grow_are_counted(start):
    shell = start()
    before = files(shell)
    (shell.home / "one").mkdir()
    (shell.home / "one" / "two").touch()
    Path(shell.environment["TMPDIR"], "three").touch()
    assert new_files(shell, before)[0] == 3


# Its answers


def test_a_window_that_answers_late_is_reported(trial, start):
    with trial.answering(start("window", SLOW)) as pulse:
        wait_until("it has answered", lambda: pulse.answers)
    assert trial.counts.slowest > 0.2
    assert "to answer" in failures(trial)


def test_a_window_that_answers_at_once_holds(trial, start):
    with trial.answering(start("window", QUICK)) as pulse:
        wait_until("it has answered", lambda: len(pulse.answers) > 5)
    assert trial.counts.holds and trial.counts.slowest < 0.1


# Rows


def tried(put, folder, rounds=2):
    return try_fault(Fault("a fault", put, rounds, rounds), rounds, folder)


def all_rounds(trial):
    for _ in trial.rounds():
        pass


def too_few_rounds(trial):
    for _ in trial.rounds():
        return


def breaks_down(trial):
    raise RuntimeError("out of order")


def not_allowed(trial):
    raise NotTried("no permission")


@pytest.mark.parametrize(
    "put, outcome, cell",
    [
        (all_rounds, "holds", "yes"),
        (too_few_rounds, "DOES NOT HOLD", "NO"),
        (breaks_down, "DOES NOT HOLD", "NO"),
        (not_allowed, "not tried: no permission", "not tried"),
    ],
)
def test_a_row_says_how_it_went(tmp_path, put, outcome, cell):
    counts = tried(put, tmp_path)
    assert counts.outcome == outcome
    assert counts.holds == (cell == "yes")
    assert table.row("a fault", counts)[-1] == cell


def test_new_rows_replace_those_of_the_same_fault(tmp_path):
    document = tmp_path / "document.md"
    document.write_text(f"before\n{report.BEGIN}\n{report.END}\nafter\n")
    rows = {name: table.row(name, Counts(rounds=1)) for name in ("one", "two", "gone")}
    report.write(document, rows, ["two", "one", "gone"])
    report.write(document, {"one": table.row("one", Counts(rounds=7))}, ["two", "one"])
    written = [[cell.strip() for cell in line.split("|")[1:3]] for line in document.read_text().splitlines() if "|" in line]
    assert written[2:] == [["two", "1"], ["one", "7"]]
    assert document.read_text().startswith("before\n") and document.read_text().endswith("after\n")
