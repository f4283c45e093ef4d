"""What may happen on the session bus, and what others may do to the item on it."""

import os
import signal

from gi.repository import Gio, GLib
from harness.processes import descendants
from harness.server import Plan
from harness.tray import MENU, WATCHER, Watcher
from harness.waiting import wait_until

from matrix import fault
from polls import STATE, Panel, Polls, polled_plan, snapshot


def in_panel(trial, desktop=None):
    """A shell whose item is in a panel: shell, server and panel."""
    shell = trial.shell(polled_plan(), desktop)
    panel = Panel(shell.desktop)
    server = trial.start(shell)
    server.wait_for_page()
    panel.wait_for_count(0)
    return shell, server, panel


@fault("the session bus is lost", quick=1, whole=20)
def bus_lost(trial):
    for number in trial.rounds():
        shell, server, panel = in_panel(trial, trial.desktop())
        polls = Polls(server)
        with trial.answering(shell):
            shell.desktop.end_bus()
            polls.times(2)
            trial.expect(server.evaluate("1 + 1") == 2, "the page does not answer")
        trial.quit(shell)
