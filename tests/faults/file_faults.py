"""What may be wrong with the data directory and its disk."""

import os
import shutil
from pathlib import Path

from harness.server import say
from harness.waiting import wait_until

import mounts
from checks import expect_log_is, expect_resting, flood_numbered
from matrix import fault

FLOOD = 4_000_000


def numbered(count):
    return "".join(f"line {number} of {count}\n" for number in range(count))


def announcement(server):
    return f"HARBROOK_PORT {server.port}\n".encode()


def work(trial, shell, server, log=None):
    """The page is there, and the server's output is taken: into that log, or into none where the fault leaves no place."""
    server.wait_for_page()
    shell.wait_until_drawn()
    with trial.keeping(shell) as kept, trial.answering(shell):
        flood_numbered(trial, server, FLOOD, log, kept)
        trial.expect(server.evaluate("6 * 7") == 42, "the page does not work")


def start_once_more(trial, shell):
    """Without the fault everything is as it was, and the log is whole."""
    server = trial.start(shell)
    server.wait_for_page()
    server.do(say("all is well\n"))
    whole = announcement(server) + b"all is well\n"
    wait_until("it is logged", lambda: shell.log.exists() and shell.log.stat().st_size >= len(whole))
    trial.expect(shell.log.read_bytes() == whole, "the log of the next start is not what was printed")
    trial.quit(shell)


def open_log(shell):
    """The log that the program has open, though it may have no name any more."""
    folder = Path(f"/proc/{shell.pid}/fd")
    return next(one for one in folder.iterdir() if "/server.log" in os.readlink(one))


@fault("the data directory is on a full disk", quick=1, whole=20)
def full_disk(trial):
    """As soon as there is room again, lines are logged again: these are counted."""
    mounts.require_mounts()
    shell = trial.shell()
    words = numbered(1000)
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.data))
        work(trial, shell, server)
        data = mounts.seen_by(shell.pid, shell.data)
        log = data / "logs" / "server.log"
        trial.expect(log.stat().st_size == 0, "the disk was not full")
        (data / "ballast").unlink()
        server.do(say(words))
        expect_log_is(trial, log, words.encode())
        trial.quit(shell)
        start_once_more(trial, shell)


@fault("the disk of the data directory fills up", quick=1, whole=20)
def disk_fills_up(trial):
    """What there was room for is logged, to the last byte: these lines are counted."""
    mounts.require_mounts()
    shell = trial.shell()
    words = numbered(100_000).encode()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.data, "1m", full=False))
        server.wait_for_page()
        shell.wait_until_drawn()
        with trial.keeping(shell) as kept, trial.answering(shell):
            seen = len(server.events)
            server.do(say(words.decode()))
            server.wait_for("done", after=seen)
            kept.text += len(words)
            trial.expect(server.evaluate("6 * 7") == 42, "the page does not work")
            data = mounts.seen_by(shell.pid, shell.data)
            wait_until("the disk is full", lambda: os.statvfs(data).f_bavail == 0)
        log = data / "logs" / "server.log"
        whole = announcement(server) + words
        trial.expect(log.stat().st_size < len(whole), "the disk did not fill up")
        expect_log_is(trial, log, whole[: log.stat().st_size])
        trial.quit(shell)


@fault("the home is on a full disk", quick=1, whole=20)
def full_home(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.small_disk(shell.home))
        work(trial, shell, server)
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the data directory is read-only", quick=1, whole=20)
def read_only(trial):
    mounts.require_mounts()
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell, through=mounts.read_only_disk(shell.data))
        work(trial, shell, server)
        trial.expect(server.start["descriptors"]["2"] == os.devnull, "the server's complaints go somewhere else")
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the data directory is removed while the program runs", quick=2, whole=20)
def removed(trial):
    """The program goes on with the log that it has open."""
    shell = trial.shell()
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        shutil.rmtree(shell.data)
        work(trial, shell, server, open_log(shell))
        trial.quit(shell)
    start_once_more(trial, shell)


@fault("the home is removed while the program runs", quick=1, whole=20)
def home_removed(trial):
    for _ in trial.rounds():
        shell = trial.shell()
        server = trial.start(shell)
        server.wait_for_page()
        shutil.rmtree(shell.home)
        work(trial, shell, server, open_log(shell))
        trial.quit(shell)


def instead_of(place, put, logged=False):
    """Tries a start with something else in the place of what the program would make there.

    logged: whether the program can put its log there all the same.
    """

    def attempt(trial):
        shell = trial.shell()
        for _ in trial.rounds():
            path = place(shell)
            path.parent.mkdir(parents=True, exist_ok=True)
            put(path)
            work(trial, shell, trial.start(shell), shell.log if logged else None)
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
fault("the log is a symbolic link to itself", quick=0, whole=20)(instead_of(log, loop, logged=True))
fault("the log is a directory", quick=1, whole=20)(instead_of(log, lambda path: path.mkdir()))
fault("the log is a FIFO that nobody reads", quick=1, whole=20)(instead_of(log, os.mkfifo, logged=True))


@fault("the log is a FIFO in a read-only directory", quick=1, whole=20)
def fixed_fifo(trial):
    """Here the program cannot put a file in its place."""
    mounts.require_mounts()
    shell = trial.shell()
    script = 'mkdir -p "$1"\nmount -t tmpfs tmpfs "$1"\nmkdir "$1/logs"\nmkfifo "$1/logs/server.log"\n'
    read_only_fifo = mounts.through(script + 'mount -o remount,ro "$1"', shell.data)
    for _ in trial.rounds():
        work(trial, shell, trial.start(shell, through=read_only_fifo))
        trial.quit(shell)
