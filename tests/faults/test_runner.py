"""That the runner reports what does not hold: each weakness is planted in a small program that takes the real one's place.

A matrix that cannot fail would be worth nothing.
"""

import os
import signal
import subprocess
import tempfile
import time
from pathlib import Path

import pytest

import checks
import file_faults
import matrix
import report
import table
from fake_program import read_mapped
from harness.desktop import Desktop
from harness.waiting import NeverHappened, wait_until
from leftovers import files, new_files, temporary_folder
from matrix import ENDS, Counts, Fault, NotTried, Trial, try_fault
from watch import Holdings, Pulse, covered

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
    checks.expect_log_is(trial, shell.log, b"one\ntwo\nthree\n")
    assert trial.counts.holds and trial.counts.lines_lost == 0


@pytest.mark.parametrize("log", ["one\nthree\n", "one\ntw\nthree\n", "two\none\nthree\n"], ids=["lost", "cut", "moved"])
def test_a_line_that_is_lost_is_reported(trial, start, log):
    trial.expect_logged(start("log", log), [b"one", b"two", b"three"])
    assert trial.counts.lines_lost and not trial.counts.holds


def test_a_log_with_another_byte_is_reported(trial, start):
    checks.expect_log_is(trial, start("log", "one\ntwx\n").log, b"one\ntwo\n")
    assert not trial.counts.holds


def test_a_digest_tells_of_a_lost_line(trial, start):
    shell = start("log", "skip\none\ntwo!\n")
    checks.expect_log_digest(trial, shell.log, 9, "0" * 64, lines=3, skip=5)
    assert trial.counts.lines_lost == 1
    assert "not what was printed" in failures(trial)


class LosingServer:
    """Has all its lines in the log but the last, and a page that works."""

    port = 1
    events = ()

    def __init__(self, log):
        self._log = log

    def wait_for_page(self):
        pass

    def evaluate(self, _):
        return 42

    def do(self, step):
        self._size = step["size"]
        line = b"." * (checks.NUMBERED_LINE - 1) + b"\n"
        self._log.write_bytes(b"HARBROOK_PORT 1\n" + line * (self._size // len(line) - 1))

    def wait_for(self, _, **__):
        return {"size": self._size, "digest": ""}


def test_a_line_that_is_lost_during_a_fault_of_the_disk_is_reported(trial, start, monkeypatch):
    monkeypatch.setattr("checks.wait_until", out_of_patience)
    shell = start("window", QUICK)
    shell.wait_until_drawn = lambda: None
    log = shell.folder / "log"
    file_faults.work(trial, shell, LosingServer(log), log)
    assert trial.counts.lines_lost == 1
    assert "1 lines are not in the log" in failures(trial)


def test_where_there_is_no_place_for_a_log_the_row_says_so(trial, start):
    shell = start("window", QUICK)
    shell.wait_until_drawn = lambda: None
    file_faults.work(trial, shell, LosingServer(shell.folder / "log"))
    assert table.row("a fault", trial.counts)[4] == "no log"
    assert table.row("a fault", Counts())[4] == "–"


# What it holds on to


KINDS = ["descriptors", "threads", "memory"]


def out_of_patience(what, predicate, *_, **__):
    """Nothing that is planted here goes away by itself."""
    if not predicate():
        raise NeverHappened(what)


def leak_once(shell, kind):
    figure = kind.removeprefix("little ")
    before = getattr(Holdings.of(shell.pid), figure)
    enough = {"memory": 8000, "little memory": 400}.get(kind, 1)
    shell.signal(signal.SIGUSR1)
    wait_until("it leaks", lambda: getattr(Holdings.of(shell.pid), figure) >= before + enough)
    return before


@pytest.mark.parametrize("kind", KINDS)
def test_a_leak_is_reported(trial, start, kind, monkeypatch):
    monkeypatch.setattr("matrix.wait_until", out_of_patience)
    shell = start("leak", kind)
    with trial.keeping(shell):
        leak_once(shell, kind)
    assert getattr(trial.counts, kind) > 0
    assert "holds on to" in failures(trial)


@pytest.mark.parametrize("kind", KINDS)
def test_each_round_is_measured(trial, start, kind, monkeypatch):
    """What a round holds on to is reported, though a later one gives it back."""
    monkeypatch.setattr("matrix.wait_until", out_of_patience)
    trial.planned = 2
    leeway = 1000 if kind == "memory" else 0
    shell = start("leak", kind)
    with trial.keeping(shell):
        for number in trial.rounds():
            if number == 0:
                before = leak_once(shell, kind)
            else:
                shell.signal(signal.SIGUSR2)
                wait_until("it is given back", lambda: getattr(Holdings.of(shell.pid), kind) <= before + leeway)
    assert getattr(trial.counts, kind) > 0
    assert failures(trial).count("holds on to") == 1


def test_an_allowance_does_not_grow_with_the_rounds(trial, start, monkeypatch):
    """A little in each of many rounds is too much."""
    monkeypatch.setattr("matrix.wait_until", out_of_patience)
    trial.planned = 2 * matrix.GROWTH // 512
    shell = start("leak", "little memory")
    with trial.keeping(shell):
        for _ in trial.rounds():
            leak_once(shell, "little memory")
    assert trial.counts.memory > matrix.GROWTH
    assert "holds on to" in failures(trial)


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


def test_a_window_that_never_answers_is_reported(trial, start):
    """One of which not a single answer is known, as that of a program that is gone."""
    shell = start("window", QUICK)
    shell.window()
    shell.signal(signal.SIGKILL)
    shell.wait()
    shell.window = lambda: Gone
    with trial.answering(shell):
        pass
    assert trial.counts.slowest is None
    assert "has not answered once" in failures(trial)


class Gone:
    number = 1


def test_what_breaks_in_the_asking_thread_is_reported(trial, start, monkeypatch):
    asked = []

    def break_down(pulse, number):
        asked.append(number)
        if number > 2:
            raise RuntimeError("out of order")
        return 0.0

    monkeypatch.setattr(Pulse, "_ask", break_down)
    with trial.answering(start("window", QUICK)):
        wait_until("it has asked", lambda: len(asked) > 2)
    assert "out of order" in failures(trial)


def test_waits_that_overlap_count_once(trial, start, monkeypatch):
    """Three who all wait in the same half of the time make an answer late by half of it, not by none of it."""
    monkeypatch.setattr("watch.waited_for_processor", lambda *_: time.monotonic() / 2)
    with trial.answering(start("window", SLOW)) as pulse:
        wait_until("it has answered", lambda: pulse.answers)
    assert 0.1 < trial.counts.slowest < 0.2
    assert "to answer" in failures(trial)


@pytest.mark.parametrize(
    "spans, seconds",
    [([], 0), ([(1, 3)], 2), ([(1, 3), (2, 5)], 4), ([(1, 9), (2, 3), (4, 10)], 9), ([(5, 6), (1, 2)], 2), ([(3, 1)], 0)],
)
def test_spans_cover_what_at_least_one_covers(spans, seconds):
    assert covered(spans) == seconds


# Rows


def tried(put, folder, rounds=2):
    return try_fault(Fault("a fault", put, rounds, rounds, ENDS), rounds, folder)


def all_rounds(trial):
    for _ in trial.rounds():
        pass


def too_few_rounds(trial):
    for _ in trial.rounds():
        return


def measures(trial):
    all_rounds(trial)
    trial.counts.descriptors = trial.counts.threads = trial.counts.memory = 0


@pytest.mark.parametrize(
    "put, unmeasured, holds", [(all_rounds, ENDS, True), (all_rounds, None, False), (measures, None, True), (measures, ENDS, False)]
)
def test_what_a_fault_leaves_to_measure_is_measured(tmp_path, put, unmeasured, holds):
    counts = try_fault(Fault("a fault", put, 1, 1, unmeasured), 1, tmp_path)
    assert counts.holds == holds
    assert table.row("a fault", counts)[5:8].count(ENDS) == 3 * (put is all_rounds and unmeasured is not None)


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


@pytest.fixture
def document(tmp_path):
    document = tmp_path / "document.md"
    document.write_text(f"before\n{report.BEGIN}\n{report.END}\nafter\n")
    return document


def cells(document):
    """The rows of the written table by the name of the fault, without their headings."""
    rows = [line.strip("|").split("|") for line in document.read_text().splitlines() if line.startswith("| ")]
    return {row[0].strip(): [cell.strip() for cell in row[1:]] for row in rows[1:]}


def test_new_rows_replace_those_of_the_same_fault(document):
    rows = {name: table.row(name, Counts(rounds=1)) for name in ("one", "two", "gone")}
    report.write(document, rows, ["two", "one", "gone"])
    report.write(document, {"one": table.row("one", Counts(rounds=7))}, ["two", "one"])
    assert [(name, row[0]) for name, row in cells(document).items()] == [("two", "1"), ("one", "7")]
    assert document.read_text().startswith("before\n") and document.read_text().endswith("after\n")


def test_each_row_keeps_the_machine_and_the_commit_it_was_counted_on(document, monkeypatch):
    row = table.row("one", Counts(rounds=1))
    for name, commit, machine in [("one", "abc", "an old one"), ("two", "def", "a new one"), ("three", "def", "an old one")]:
        monkeypatch.setattr(report, "commit", lambda commit=commit: commit)
        monkeypatch.setattr(report, "machine", lambda machine=machine: machine)
        report.write(document, {name: (name, *row[1:])}, ["one", "two", "three"])
    assert [row[-2:] for row in cells(document).values()] == [["abc", "A"], ["def", "B"], ["def", "A"]]
    assert "- Machine A: an old one\n- Machine B: a new one\n" in document.read_text()
    # What no row was counted on any more goes away.
    report.write(document, {"two": row}, ["two"])
    assert "a new one" not in document.read_text()
