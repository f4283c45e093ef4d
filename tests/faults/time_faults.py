"""Time that passes in other ways than it should, and much of it."""

import os
import signal
import time
from contextlib import contextmanager

from harness.processes import descendants

from clock import Clock
from matrix import fault
from polls import INTERVAL, STATE, Polls, gaps, in_panel, polled_plan, snapshot

# By how much the pace of the polls may be off, in seconds, but never by half: the machine has other things to do.
LEEWAY = 0.5

DAY = 86400
# How much faster than real time virtual time passes, ...
RATE = 200
# ... and how many polls that makes in a quarter of an hour.
QUARTER = 300
# Suspensions are shorter than that: there the engine's processes, which have the real clock, are waited for, too.
SUSPENSION_RATE = 5


def in_panel_by(trial, **options):
    """A shell whose menu is in a panel, with a clock of the program's own: shell, server, panel and clock."""
    shell = trial.shell(polled_plan())
    clock = Clock(shell, **options)
    return *in_panel(trial, shell), clock


def expect_pace(trial, times, rate=1):
    """Neither a burst nor a stall."""
    interval = INTERVAL / rate
    off = [f"{gap:.2f}" for gap in gaps(times) if abs(gap - interval) > min(LEEWAY, interval / 2)]
    trial.expect(not off, f"seconds between polls: {', '.join(off)}")


def end(trial, shell, panel):
    panel.close()
    trial.quit(shell)
    Clock.clear(shell.pid)


@fault("the system clock is set forward and back", quick=1, whole=20)
def clock_set(trial):
    shell, _, panel, clock = in_panel_by(trial, monotonic=False)
    with trial.keeping(shell), trial.answering(shell):
        polls = Polls(shell.server)
        times = polls.times(1)
        for number in trial.rounds():
            for offset in (DAY * 4**number % (DAY * 10000), -DAY - number):
                clock.set(offset)
                times += polls.times(1)
    expect_pace(trial, times)
    end(trial, shell, panel)


# Not in the quick half: after the leap of the clock, threads that wait by the real one wake only seconds later.
@fault("a day of polling, 200 times as fast", quick=0, whole=96)
def virtual_day(trial):
    """A round is a quarter of an hour."""
    shell, server, panel, clock = in_panel_by(trial, monotonic=True)
    polls = Polls(server)
    clock.set(rate=RATE)
    count = poll_changing(polls, server, 0, QUARTER // 2)
    with trial.keeping(shell), trial.answering(shell):
        polls.skip()
        for _ in trial.rounds():
            begun = time.monotonic()
            count = poll_changing(polls, server, count, QUARTER)
            pace = (time.monotonic() - begun) * RATE / QUARTER
            trial.expect(abs(pace - INTERVAL) < LEEWAY, f"{pace:.2f} seconds between polls")
        panel.wait_for_count(count)
    end(trial, shell, panel)


def poll_changing(polls, server, count, further):
    """Waits for so many polls and changes the answer after each; gives the number of the last answer."""
    for number in range(count + 1, count + further + 1):
        polls.next()
        server.answer(STATE, **snapshot(number))
    return count + further


@fault("the program is suspended with its server", quick=1, whole=50)
def suspended(trial):
    shell, server, panel, _ = in_panel_by(trial, monotonic=True, rate=SUSPENSION_RATE)
    server.evaluate("void setTimeout(() => { window.answer = [confirm('Still there?')] }, 0)")
    shell.wait_for_text("Still there?")
    polls = Polls(server)
    with trial.keeping(shell):
        for number in trial.rounds():
            polls.times(1)
            # As when the machine sleeps, and as when only these two are stopped.
            below = [one.pid for one in descendants(shell.pid)] if number % 2 else [server.pid]
            with stopped([shell.pid, *below]):
                time.sleep(2.5 * INTERVAL / SUSPENSION_RATE)
                polls.skip()
            with trial.answering(shell):
                times = polls.times(4)
            # The first makes up for all that were missed; the second keeps the pace that was there before.
            expect_pace(trial, times[1:], SUSPENSION_RATE)
            trial.expect(len(shell.windows()) == 2, "the dialog is gone")
    shell.desktop.accessibility().wait_for(shell.pid, role="button", name="OK").act()
    trial.expect(server.evaluate("window.answer") == [True], "the dialog's answer is lost")
    end(trial, shell, panel)


@contextmanager
def stopped(pids):
    for pid in pids:
        os.kill(pid, signal.SIGSTOP)
    yield
    for pid in pids:
        os.kill(pid, signal.SIGCONT)


# A round is a minute of real time. Not in the quick half.
@fault("one hour of polling", quick=0, whole=60)
def hour(trial):
    shell, server, panel = in_panel(trial)
    polls = Polls(server)
    # What is allocated once is allocated by then.
    polls.times(20)
    with trial.keeping(shell):
        for minute in trial.rounds():
            server.answer(STATE, **snapshot(minute + 1))
            with trial.answering(shell):
                panel.wait_for_count(minute + 1)
            expect_pace(trial, polls.times(20))
    end(trial, shell, panel)
