"""The program started and ended over and over, in order and out of order."""

import os
import random
import signal
import socket
import time

from harness.server import Plan, announce, last_words, say, serve
from harness.waiting import wait_until

from checks import expect_log_is
from leftovers import files, new_files, temporary_folder
from matrix import ENDS, PICTURES, STARTS, fault

# The same moments each time; another number gives others.
SEED = int(os.environ.get("HARBROOK_FAULT_SEED", "1"))

# A start takes about that many seconds until its page is there.
LAUNCH = 1.0

# What is made once is there after so many starts.
WARM_UP = 3

# For an address the engine makes a folder in a folder with a file, and when it ends in order, removes them again.
FOR_ONE_ADDRESS = 3

FIRST_WORDS = "".join(f"line {number}\n" for number in range(100))
LAST_WORDS = "".join(f"last line {number}\n" for number in range(100))


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as listener:
        return listener.getsockname()[1]


class Cycles:
    """A shell to be started again and again, and the files that it leaves."""

    def __init__(self, trial):
        self.trial = trial
        desktop = trial.desktop()
        # One port for all starts: the engine keeps a folder for each address that it has seen.
        plan = Plan([say(FIRST_WORDS), serve(free_port()), announce(), last_words(LAST_WORDS)])
        self.shell = trial.shell(plan, desktop, environment=temporary_folder(desktop.folder / "tmp"))
        for _ in range(WARM_UP):
            self.start_and_quit()
        self._before = files(self.shell)

    def start_and_quit(self):
        server = self.trial.start(self.shell)
        server.wait_for_page()
        server.wait_for("done", lambda event: event["step"] == "last-words")
        self.trial.quit(self.shell)
        log = f"{FIRST_WORDS}HARBROOK_PORT {server.port}\n{LAST_WORDS}"
        expect_log_is(self.trial, self.shell.log, log.encode())

    def expect_no_more_files(self, allowed=0):
        more, names = new_files(self.shell, self._before)
        self.trial.expect(more <= allowed, f"{more} files more than at the beginning: {names}")


@fault("start and quit", quick=10, whole=1000, unmeasured=ENDS)
def start_and_quit(trial):
    cycles = Cycles(trial)
    for _ in trial.rounds():
        cycles.start_and_quit()
    cycles.expect_no_more_files()


@fault("start and SIGKILL at a random moment", quick=8, whole=200, unmeasured=ENDS)
def start_and_kill(trial):
    moments = random.Random(SEED)
    cycles = Cycles(trial)
    for _ in trial.rounds():
        cycles.shell.start()
        time.sleep(moments.uniform(0, 1.5 * LAUNCH))
        trial.expect_running(cycles.shell)
        trial.kill(cycles.shell)
        trial.expect_nothing_left(cycles.shell)
    cycles.start_and_quit()
    cycles.expect_no_more_files(allowed=FOR_ONE_ADDRESS)


@fault("start and quit at a random moment", quick=8, whole=200, unmeasured=ENDS)
def quit_while_launching(trial):
    moments = random.Random(SEED)
    cycles = Cycles(trial)
    for _ in trial.rounds():
        started = len(cycles.shell.switchboard.servers)
        cycles.shell.start()
        time.sleep(moments.uniform(0, LAUNCH))
        cycles.shell.signal()
        status = cycles.shell.wait()
        # As with any program, the very first moments belong to the system: it has had no time to say otherwise.
        too_early = status == -signal.SIGTERM and len(cycles.shell.switchboard.servers) == started
        if not trial.expect(status == 0 or too_early, f"the program ended with {status}"):
            trial.counts.crashes += 1
        trial.expect_nothing_left(cycles.shell)
    cycles.start_and_quit()
    cycles.expect_no_more_files()


@fault("a second start while one runs", quick=5, whole=200)
def second_start(trial):
    shell = trial.shell()
    server = trial.start(shell)
    server.wait_for_page()
    shell.wait_until_drawn()
    start_again(trial, shell, hidden=True)
    with trial.keeping(shell, PICTURES), trial.answering(shell):
        for number in trial.rounds():
            # In turn behind another window's back and hidden.
            start_again(trial, shell, hidden=number % 2)
    trial.expect(len(shell.switchboard.servers) == 1, "it has started a second server")
    trial.quit(shell)


def start_again(trial, shell, hidden):
    if hidden:
        shell.window().close()
        shell.wait_until_hidden()
    second = shell.start()
    trial.expect(second.wait(20) == 0, f"the second start ended with {second.returncode}")
    shell.programs.remove(second)
    window = shell.window()
    wait_until("the window is active", lambda: shell.desktop.screen.active_window() == window.number)


@fault("two starts at the same moment", quick=3, whole=100, unmeasured=STARTS)
def two_starts(trial):
    shell = trial.shell()
    for _ in trial.rounds():
        started = len(shell.switchboard.servers)
        two = [shell.start(), shell.start()]
        wait_until("one has left it to the other", lambda: any(one.poll() is not None for one in two))
        shell.programs[-1] = next((one for one in two if one.poll() is None), two[0])
        trial.expect(sorted(one.poll() is None for one in two) == [False, True], "not exactly one of the two runs")
        server = shell.switchboard.server(started)
        server.wait_for_page()
        trial.quit(shell)
        trial.expect(len(shell.switchboard.servers) == started + 1, "both have started a server")
