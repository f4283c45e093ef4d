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

from watch import Holdings, Pulse, settled

# What has to hold: the window answers within this many seconds, ...
ANSWER = 0.1
# ... and the memory of the program itself grows by no more than this (KiB), whatever the number of rounds.
GROWTH = 4096

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


def fault(name, quick, whole):
    """Enters a function into the matrix. It is called with a Trial and carries out each of `trial.rounds()`.

    quick, whole: how many rounds the quick half and the whole matrix have; 0 leaves the row out.
    """

    def enter(put):
        FAULTS[name] = Fault(name, put, quick, whole)
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
        self._planned = rounds
        self._folder = folder
        self._desktops = []
        self._shells = []
        self._killed = set()

    def rounds(self):
        for number in range(self._planned):
            yield number
            self.counts.rounds += 1

    @property
    def planned(self):
        return self._planned

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
        lost = len(lines) - _matched(lines, logged)
        self.counts.lines_lost = (self.counts.lines_lost or 0) + lost
        self.expect(lost == 0, f"{lost} of {len(lines)} lines are not in the log")

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
        self.counts.slowest = max(self.counts.slowest or 0.0, pulse.slowest)
        self.expect(pulse.slowest <= within, f"the window took {pulse.slowest * 1000:.0f} ms to answer")

    @contextmanager
    def keeping(self, shell, growth=GROWTH):
        """What the program holds at the end is what it held at the beginning, when its start was over.

        Begin when the program has warmed up: what is allocated once is no leak. If it has a page, that is on the screen.
        """
        before = settled(shell.pid)
        yield
        if not self.expect_running(shell):
            return
        try:
            # Threads of a pool end, and memory is given back, when they have been idle for a while.
            wait_until("as little as before", lambda: _no_more(before, Holdings.of(shell.pid), growth), 30)
        except NeverHappened:
            pass
        after = Holdings.of(shell.pid)
        self.counts.descriptors = max(self.counts.descriptors or 0, after.descriptors - before.descriptors)
        self.counts.threads = max(self.counts.threads or 0, after.threads - before.threads)
        self.counts.memory = max(self.counts.memory or 0, after.memory - before.memory)
        self.expect(after.descriptors <= before.descriptors, f"descriptors: {before} became {after}")
        self.expect(after.threads <= before.threads, f"threads: {before} became {after}")
        self.expect(after.memory - before.memory <= growth, f"memory: {before} became {after}")


def _no_more(before, now, growth):
    few = now.descriptors <= before.descriptors and now.threads <= before.threads
    return few and now.memory <= before.memory + growth


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
    if trial.counts.not_tried is None:
        trial.expect(trial.counts.rounds == rounds, f"only {trial.counts.rounds} of {rounds} rounds")
    return trial.counts
