"""What may happen to the web engine's processes, and to the page in them."""

import os
import signal
from contextlib import contextmanager

from harness.page import page
from harness.server import Plan
from harness.waiting import wait_until

from clock import Clock
from matrix import PICTURES, fault
from polls import STATE, Polls, in_panel, refresh, snapshot

# The engine's library prepares a new process and its sandbox on the thread that asks: 10 to 70 ms on two processors,
# and longer where these are busy.
ENGINE_START = 0.25
WEB = "WebKitWebProces"
NETWORK = "WebKitNetworkPr"

# So slow that what is done meanwhile is done in time.
SLOW = {"body": page(), "delay": 60.0}
QUICK = {"body": page()}


def started(trial):
    """A shell with its page and the connection that its polls use, and its server."""
    shell = trial.shell()
    server = trial.start(shell)
    server.wait_for_page()
    shell.wait_until_drawn()
    refresh(server)
    server.wait_for_request(STATE)
    return shell, server


def pids(shell, name):
    return [one.pid for one in shell.web_processes() if one.name == name]


def kill(shell, name):
    """Kills the engine's process of that kind, once there is one."""
    os.kill(wait_until(f"a {name}", lambda: pids(shell, name))[0], signal.SIGKILL)


def kill_for_a_page(trial, shell, server, name):
    """Kills the process and sees the page come back, whole."""
    loaded = len(server.all("page"))
    kill(shell, name)
    server.wait_for_page(loaded + 1)
    trial.expect(server.evaluate("first.token !== null && first.native"), "the page came back without its token")


def answering(trial, shell):
    return trial.answering(shell, ENGINE_START)


def kill_during_load(shell, server, name):
    """Kills the process while a page is on its way, and waits for the next attempt and its page."""
    seen = len(server.events)
    server.answer("/", **SLOW)
    server.run("location.reload()")
    server.wait_for_request("/", after=seen)
    server.answer("/", **QUICK)
    seen = len(server.events)
    kill(shell, name)
    attempt = server.wait_for_request("/", after=seen)
    server.wait_for("page", after=server.events.index(attempt, seen))


@contextmanager
def killing(trial, name):
    """A shell that has lost a process of that kind once, so that it has what it needs for that, and its server."""
    shell, server = started(trial)
    kill_for_a_page(trial, shell, server, name)
    with trial.keeping(shell, PICTURES), answering(trial, shell):
        yield shell, server
    trial.quit(shell)


@fault("the web process is killed", quick=1, whole=50)
def web_process_killed(trial):
    with killing(trial, WEB) as (shell, server):
        for _ in trial.rounds():
            kill_for_a_page(trial, shell, server, WEB)


@fault("the web process is killed during a load", quick=0, whole=20)
def web_process_killed_during_load(trial):
    with killing(trial, WEB) as (shell, server):
        for _ in trial.rounds():
            kill_during_load(shell, server, WEB)


@fault("the web process is killed at every attempt", quick=0, whole=50)
def each_web_process_killed(trial):
    """A round is one more process that asks for the page and does not live to show it."""
    with killing(trial, WEB) as (shell, server):
        server.answer("/", **SLOW)
        seen = len(server.events)
        kill(shell, WEB)
        for _ in trial.rounds():
            server.wait_for_request("/", after=seen)
            seen = len(server.events)
            kill(shell, WEB)
        loaded = len(server.all("page"))
        server.answer("/", **QUICK)
        server.wait_for_page(loaded + 1)


@fault("the network process is killed", quick=0, whole=50)
def network_process_killed(trial):
    """The page stays, and what it asks for next is answered."""
    with killing(trial, NETWORK) as (shell, server):
        for _ in trial.rounds():
            kill_for_a_page(trial, shell, server, NETWORK)
            loaded = len(server.all("page"))
            server.run("location.reload()")
            server.wait_for_page(loaded + 1)


@fault("the network process is killed during a load", quick=0, whole=20)
def network_process_killed_during_load(trial):
    with killing(trial, NETWORK) as (shell, server):
        for _ in trial.rounds():
            kill_during_load(shell, server, NETWORK)


@fault("the page hangs in an endless loop", quick=1, whole=20)
def page_hangs(trial):
    for number in trial.rounds():
        shell, server, panel = in_panel(trial)
        polls = Polls(server)
        with trial.keeping(shell, PICTURES), trial.answering(shell):
            server.run("for (;;);")
            server.answer(STATE, **snapshot(number + 1))
            polls.times(1)
            panel.wait_for_count(number + 1)
            press_close(shell)
            shell.wait_until_hidden()
            panel.item.activate()
            shell.window()
        panel.item.menu.click("Quit Harbrook")
        trial.expect_exit(shell)
        trial.expect_nothing_left(shell, within=5)
        panel.close()


def press_close(shell):
    """A click on the shell's own button over the page."""
    shell.desktop.screen.click(*shell.in_window(27, 34))


# The delay between two attempts is a second and a half; ten times as fast, it is a tenth of that.
FAST = 10


@fault("loads fail in a row", quick=10, whole=200)
def loads_fail(trial):
    """The server hangs up each time, until it does not."""
    shell = trial.shell(Plan(answers={"/": {"drop": True}}))
    Clock(shell, monotonic=True, rate=FAST)
    server = trial.start(shell)
    warm_up = Attempts(server)
    for _ in range(10):
        warm_up.wait()
    with trial.keeping(shell), trial.answering(shell):
        attempts = Attempts(server)
        for _ in trial.rounds():
            attempts.wait()
    server.answer("/", **QUICK)
    server.wait_for_page()
    trial.quit(shell)
    Clock.clear(shell.pid)


class Attempts:
    """The attempts at a page. The engine may follow up a broken connection with another at once; both are one."""

    def __init__(self, server):
        self._server = server
        self._place = len(server.events)
        self._last = 0.0

    def wait(self):
        while True:
            event = self._server.wait_for_request("/", after=self._place)
            self._place = self._server.events.index(event, self._place) + 1
            begun, self._last = event["at"] - self._last, event["at"]
            if begun > 0.5 * 1.5 / FAST:
                return
