"""The faults by name, and what is counted of each."""

import re
import signal
import time
from contextlib import contextmanager
from dataclasses import dataclass, field

from harness.desktop import Desktop
from harness.server import Plan
from harness.shell import Shell
from harness.waiting import NeverHappened, wait_until

from watch import Holdings, Pulse, open_files, settled

# What has to hold: the window answers within this many seconds, ...
ANSWER = 0.1
# ... and the memory of the program itself grows by no more than this (KiB), whatever the number of rounds.
GROWTH = 4096

# Where it draws without a graphics device, the engine holds one to three pictures of the page in the program's memory
# (KiB). They come and go with its process, and when the window is hidden and shown.
PICTURES = 3 * 1320 * 860 * 4 // 1024

# What a round has in use for a moment, a connection say, may take so many seconds to be given back, ...
MOMENT = 5
# ... and idle threads of a pool so many to end.
IDLE = 30

# Why a row has no figures for what the program holds on to.
ENDS = "ends"
STARTS = "starts"

# A line in which a process complains; GLib's lines tell its number.
COMPLAINT = re.compile(r"^(?:\(.*:(?P<pid>\d+)\): )?.*(?:CRITICAL|Sanitizer|terminate called).*$", re.MULTILINE)

FAULTS = {}


class NotTried(Exception):
    """This system does not allow the fault; says why. The row neither holds nor fails."""


@dataclass(frozen=True)
class Fault:
    name: str
    put: callable
    quick: int
    whole: int
    unmeasured: str | None = None


def fault(name, quick, whole, unmeasured=None):
    """Enters a function into the matrix. It is called with a Trial and carries out each of `trial.rounds()`.

    quick, whole: how many rounds the quick half and the whole matrix have; 0 leaves the row out.
    unmeasured: why there is nothing to measure of what the program holds on to: the fault ENDS it, or is there when it
    STARTS, so that there is no before. Every other fault has to be measured.
    """

    def enter(put):
        FAULTS[name] = Fault(name, put, quick, whole, unmeasured)
        return put

    return enter


@dataclass
class Counts:
    """One row of the table. None: was not measured."""

    rounds: int = 0
    seconds: float = 0.0
    crashes: int = 0
    left_behind: int = 0
    lines_lost: int | None = None
    # Whether there was no place for a log.
    no_log: bool = False
    # Why the next three were not measured, if they need not be.
    unmeasured: str | None = None
    descriptors: int | None = None
    threads: int | None = None
    memory: int | None = None
    slowest: float | None = None
    failures: list = field(default_factory=list)
    not_tried: str | None = None

    @property
    def holds(self):
        return not self.failures and self.not_tried is None

    @property
    def outcome(self):
        if self.failures:
            return "DOES NOT HOLD"
        return f"not tried: {self.not_tried}" if self.not_tried is not None else "holds"


class Trial:
    """One fault being tried: makes what it needs, counts what happens, and takes everything away at the end."""

    def __init__(self, rounds, folder):
        self.counts = Counts()
        self.planned = rounds
        self._folder = folder
        self._desktops = []
        self._shells = []
        self._killed = set()
        self._kept = []

    def rounds(self):
        for number in range(self.planned):
            yield number
            for kept in self._kept:
                kept.look()
            self.counts.rounds += 1

    def desktop(self, **options):
        self._desktops.append(Desktop(**options))
        return self._desktops[-1]

    def shell(self, plan=Plan(), desktop=None, **options):
        """A shell that is not started yet, on the given desktop or on one of the trial's own."""
        if desktop is None:
            desktop = self._desktops[0] if self._desktops else self.desktop()
        self._shells.append(Shell(desktop, self._folder / f"shell-{len(self._shells)}", plan, **options))
        return self._shells[-1]

    def start(self, shell, *arguments, **options):
        """Starts the program once more and gives the server that this start brings."""
        earlier = len(shell.switchboard.servers)
        shell.start(*arguments, **options)
        return shell.switchboard.server(earlier, hopeless=lambda: shell.program.poll() is not None)

    def close(self):
        for shell in self._shells:
            self.look_for_complaints(shell)
            shell.close()
        for desktop in self._desktops:
            desktop.close()

    # What has to hold

    def expect(self, holds, what):
        """Notes a failure without ending the trial; `what` says what did not hold."""
        if not holds:
            self.counts.failures.append(f"round {self.counts.rounds}: {what}")
        return holds

    def expect_exit(self, shell, status=0, within=20):
        """The program has ended by itself, or ends now, with that status."""
        try:
            found = shell.wait(within)
        except Exception:
            return self.expect(False, "the program does not end")
        if found != status:
            self.counts.crashes += 1
        return self.expect(found == status, f"the program ended with {found}")

    def expect_running(self, shell):
        if shell.program.poll() is not None:
            self.counts.crashes += 1
        return self.expect(shell.program.poll() is None, f"the program has ended with {shell.program.poll()}")

    def expect_nothing_left(self, shell, within=10):
        """Nothing lives any more of what the program started."""
        try:
            shell.wait_until_ended(within)
        except NeverHappened:
            left = shell.processes()
            self.counts.left_behind += len(left)
            self.expect(False, "left behind: " + "; ".join(map(str, left)))
            shell.end_left_behind()

    def quit(self, shell):
        """Ends the program as the session does, and sees that it is gone with all that it started."""
        if self.expect_running(shell):
            shell.signal()
        self.expect_exit(shell)
        self.expect_nothing_left(shell)

    def expect_logged(self, shell, lines):
        """The log holds each of these lines, in their order."""
        logged = shell.log.read_bytes().splitlines() if shell.log.exists() else []
        self.count_lost(len(lines) - _matched(lines, logged))

    def count_lost(self, lines):
        """So many lines are not in the log."""
        self.counts.lines_lost = (self.counts.lines_lost or 0) + max(0, lines)
        self.expect(lines <= 0, f"{lines} lines are not in the log")

    def kill(self, shell):
        """Kills the program. What the engine's processes have to say to that counts no more."""
        self._killed.add(shell)
        shell.signal(signal.SIGKILL)
        shell.wait()

    def look_for_complaints(self, shell):
        own = {str(program.pid) for program in shell.programs}
        for complaint in COMPLAINT.finditer(shell.output):
            orphan = shell in self._killed and complaint["pid"] not in {None, *own}
            self.expect(orphan, f"the program said: {complaint[0]}")

    @contextmanager
    def answering(self, shell, within=ANSWER):
        """In this time the window answers, each time within so many seconds."""
        desktop = shell.desktop
        pulse = Pulse(desktop.screen.name, shell.window().number, shell.pid, desktop.display_pid)
        try:
            yield pulse
        finally:
            pulse.close()
        self.expect(pulse.problem is None, f"the window could not be asked: {pulse.problem!r}")
        if self.expect(pulse.answers, "the window has not answered once"):
            self.counts.slowest = max(self.counts.slowest or 0.0, pulse.slowest)
            self.expect(pulse.slowest <= within, f"the window took {pulse.slowest * 1000:.0f} ms to answer")

    @contextmanager
    def keeping(self, shell, growth=GROWTH):
        """What the program holds after each round from here to the end of the block, and at that end, is what it held
        at the beginning, when its start was over. Gives the Kept.

        Begin when the program has warmed up: what is allocated once is no leak. If it has a page, that is on the screen.
        """
        kept = Kept(self, shell, growth)
        self._kept.append(kept)
        try:
            yield kept
        finally:
            self._kept.remove(kept)
        kept.look()
        kept.look_when_idle()


class Kept:
    """Looks at what a running program holds on to, and enters the worst into the counts."""

    def __init__(self, trial, shell, growth):
        self._trial = trial
        self._shell = shell
        self._growth = growth
        self._before = settled(shell.pid)
        self._files = set(open_files(shell.pid))
        # How many bytes the server has printed since: the program keeps them, by design.
        self.text = 0

    def look(self):
        """Pools may have threads that idle."""
        self._look(MOMENT, pools=False)

    def look_when_idle(self):
        self._look(IDLE, pools=True)

    def _look(self, patience, pools):
        if not self._trial.expect_running(self._shell):
            return
        try:
            wait_until("as little as before", lambda: self._is_as_before(self._more(pools)), patience)
        except NeverHappened:
            pass
        more = self._more(pools)
        counts = self._trial.counts
        counts.descriptors = max(counts.descriptors or 0, more.descriptors)
        counts.threads = max(counts.threads or 0, more.threads)
        counts.memory = max(counts.memory or 0, more.memory)
        opened = sorted(set(open_files(self._shell.pid)) - self._files) if more.descriptors > 0 else ""
        self._trial.expect(self._is_as_before(more), f"it holds on to {more} {opened}")

    def _more(self, pools):
        """How much more than before."""
        before, now = self._before, Holdings.of(self._shell.pid)
        threads = now.threads - before.threads
        return Holdings(
            descriptors=now.descriptors - before.descriptors,
            threads=threads if pools else threads - (now.pooled - before.pooled),
            pooled=now.pooled - before.pooled,
            memory=now.memory - before.memory - self.text // 1024,
        )

    def _is_as_before(self, more):
        return more.descriptors <= 0 and more.threads <= 0 and more.memory <= self._growth


def _matched(lines, logged):
    """How many of the lines stand in the log, each after the one before."""
    place = iter(logged)
    return sum(1 for line in lines if any(candidate == line for candidate in place))


def try_fault(which, rounds, folder):
    """Carries one fault out; whatever goes wrong is in the counts."""
    trial = Trial(rounds, folder)
    begun = time.monotonic()
    try:
        which.put(trial)
    except NotTried as reason:
        trial.counts.not_tried = str(reason)
    except Exception as problem:  # the matrix goes on, and the row fails
        trial.expect(False, f"{type(problem).__name__}: {problem}")
    finally:
        trial.close()
    trial.counts.seconds = time.monotonic() - begun
    counts = trial.counts
    counts.unmeasured = which.unmeasured
    if counts.not_tried is None:
        trial.expect(counts.rounds == rounds, f"only {counts.rounds} of {rounds} rounds")
        measured = counts.memory is not None
        trial.expect(measured != bool(which.unmeasured), "whether it holds on to anything was not measured as it should")
    return counts
