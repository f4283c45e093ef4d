"""What may be wrong with the data directory and its disk."""

import os
import shutil

from harness.server import say
from harness.waiting import wait_until

import mounts
from checks import expect_resting
from matrix import fault


def works(trial, shell, server):
    """The page is there, and the server's output is taken, whatever becomes of it."""
    server.wait_for_page()
    with trial.answering(shell):
        server.do({"do": "flood", "size": 4_000_000})
        server.wait_for("flooded")
        trial.expect(server.evaluate("6 * 7") == 42, "the page does not work")


def start_once_more(trial, shell):
    """Without the fault everything is as it was, and the log is whole."""
    server = trial.start(shell)
    server.wait_for_page()
    server.do(say("all is well\n"))
    wait_until("it is logged", lambda: shell.log.exists() and shell.log.read_bytes().endswith(b"all is well\n"))
    trial.expect_logged(shell, [f"HARBROOK_PORT {server.port}".encode(), b"all is well"])
    trial.quit(shell)


@fault("the data directory is on a full disk", quick=1, whole=20)
def full_disk(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.data))
        works(trial, shell, server)
        # As soon as there is room again, lines are logged again.
        data = mounts.seen_by(shell.pid, shell.data)
        (data / "ballast").unlink()
        log = data / "logs" / "server.log"
        log.write_bytes(b"")
        server.do(say("room again\n"))
        wait_until("it is logged", lambda: log.read_bytes().endswith(b"room again\n"))
        trial.quit(shell)
        start_once_more(trial, shell)


@fault("the disk of the data directory fills up", quick=1, whole=20)
def disk_fills_up(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.data, "1m", full=False))
        works(trial, shell, server)
        log = mounts.seen_by(shell.pid, shell.data) / "logs" / "server.log"
        announced = f"HARBROOK_PORT {server.port}\n".encode()
        trial.expect(log.read_bytes().startswith(announced), "what was logged while there was room is lost")
        trial.quit(shell)


@fault("the home is on a full disk", quick=1, whole=20)
def full_home(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.home))
        works(trial, shell, server)
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the data directory is read-only", quick=1, whole=20)
def read_only(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.read_only_disk(shell.data))
        works(trial, shell, server)
        trial.expect(server.start["descriptors"]["2"] == os.devnull, "the server's complaints go somewhere else")
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the data directory is removed while the program runs", quick=2, whole=20)
def removed(trial):
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        shutil.rmtree(shell.data)
        works(trial, shell, server)
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the home is removed while the program runs", quick=1, whole=20)
def home_removed(trial):
    for _ in trial.rounds():
        shell = trial.shell()
        server = trial.start(shell)
        server.wait_for_page()
        shutil.rmtree(shell.home)
        works(trial, shell, server)
        trial.quit(shell)


def instead_of(place, put):
    """Tries a start with something else in the place of what the program would make there."""

    def attempt(trial):
        shell = trial.shell()
        for _ in trial.rounds():
            path = place(shell)
            path.parent.mkdir(parents=True, exist_ok=True)
            put(path)
            works(trial, shell, trial.start(shell))
            expect_resting(trial, shell)
            trial.quit(shell)
            shutil.rmtree(shell.data) if shell.data.is_dir() else shell.data.unlink()
        start_once_more(trial, shell)

    return attempt


def loop(path):
    path.symlink_to(path.name)


def data(shell):
    return shell.data


def log(shell):
    return shell.log


fault("the data directory is a symbolic link to itself", quick=1, whole=20)(instead_of(data, loop))
fault("the data directory is a file", quick=1, whole=20)(instead_of(data, lambda path: path.write_text("a file")))
fault("the log is a symbolic link to itself", quick=0, whole=20)(instead_of(log, loop))
fault("the log is a directory", quick=1, whole=20)(instead_of(log, lambda path: path.mkdir()))
fault("the log is a FIFO that nobody reads", quick=1, whole=20)(instead_of(log, os.mkfifo))


@fault("the log is a FIFO in a read-only directory", quick=1, whole=20)
def fixed_fifo(trial):
    """Here the program cannot put a file in its place."""
    mounts.require_mounts()
    shell = trial.shell()
    script = 'mkdir -p "$1"\nmount -t tmpfs tmpfs "$1"\nmkdir "$1/logs"\nmkfifo "$1/logs/server.log"\n'
    read_only_fifo = mounts.through(script + 'mount -o remount,ro "$1"', shell.data)
    for _ in trial.rounds():
        works(trial, shell, trial.start(shell, through=read_only_fifo))
        trial.quit(shell)
