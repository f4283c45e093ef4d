"""Time that passes in other ways than it should, and much of it."""

from matrix import fault
from polls import INTERVAL, Panel, Polls, gaps, polled_plan, snapshot

# By how much the pace of the polls may be off, in seconds: the machine has other things to do.
LEEWAY = 0.5


def polled(trial, **options):
    """A shell whose polls are answered and whose menu is in a panel: both, with its server."""
    shell = trial.shell(polled_plan(), **options)
    panel = Panel(shell.desktop)
    server = trial.start(shell)
    server.wait_for_page()
    panel.wait_for_count(0)
    return shell, server, panel


def expect_pace(trial, times, interval=INTERVAL):
    """Neither a burst nor a stall."""
    off = [f"{gap:.2f}" for gap in gaps(times) if abs(gap - interval) > LEEWAY]
    trial.expect(not off, f"seconds between polls: {', '.join(off)}")


# A round is a minute of real time. Not in the quick half.
@fault("one hour of polling", quick=0, whole=60)
def hour(trial):
    shell, server, panel = polled(trial)
    polls = Polls(server)
    # What is allocated once is allocated by then.
    polls.times(20)
    with trial.keeping(shell):
        for minute in trial.rounds():
            server.answer("/api/state", **snapshot(minute + 1))
            with trial.answering(shell):
                panel.wait_for_count(minute + 1)
            expect_pace(trial, polls.times(20))
    panel.close()
    trial.quit(shell)
