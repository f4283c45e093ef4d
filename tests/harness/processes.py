"""Processes, read from /proc."""

import os
import signal
from dataclasses import dataclass
from pathlib import Path

from .waiting import wait_until


@dataclass(frozen=True)
class Process:
    pid: int
    parent: int
    state: str
    name: str

    @property
    def alive(self):
        return self.state not in "ZX"

    @property
    def command(self):
        return _read(self.pid, "cmdline").decode(errors="replace").replace("\0", " ").strip()

    @property
    def environment(self):
        """What it was started with, unless it is gone or another's."""
        entries = _read(self.pid, "environ").decode(errors="replace").split("\0")
        return dict(entry.split("=", 1) for entry in entries if "=" in entry)

    def namespace(self, kind):
        """Which one it is in: two processes that share it give the same answer."""
        return os.readlink(f"/proc/{self.pid}/ns/{kind}")

    @property
    def descriptors(self):
        """What each open descriptor leads to."""
        folder = Path(f"/proc/{self.pid}/fd")
        found = {}
        for entry in os.listdir(folder):
            try:
                found[int(entry)] = os.readlink(folder / entry)
            except FileNotFoundError:
                pass
        return found

    def __str__(self):
        return f"{self.pid} ({self.name}, {self.state}) {self.command}"


def _read(pid, entry):
    try:
        return Path(f"/proc/{pid}/{entry}").read_bytes()
    except (FileNotFoundError, ProcessLookupError, PermissionError):
        return b""


def process(pid):
    """The process with that id, or None when there is none (any more)."""
    stat = _read(pid, "stat").decode(errors="replace")
    if not stat:
        return None
    # The name stands in parentheses and may hold anything, parentheses too.
    name = stat[stat.index("(") + 1 : stat.rindex(")")]
    state, parent = stat[stat.rindex(")") + 2 :].split()[:2]
    return Process(pid, int(parent), state, name)


def all_processes():
    found = (process(int(entry)) for entry in os.listdir("/proc") if entry.isdigit())
    return [one for one in found if one]


def descendants(pid):
    """Living processes below that one, however deep."""
    children = {}
    for one in all_processes():
        children.setdefault(one.parent, []).append(one)
    found, open_ends = [], [pid]
    while open_ends:
        for child in children.get(open_ends.pop(), []):
            found.append(child)
            open_ends.append(child.pid)
    return [one for one in found if one.alive]


def marked(name, value):
    """Living processes that were started with that environment variable, orphans among them."""
    mark = f"{name}={value}".encode()
    return [
        one for one in all_processes() if one.alive and mark in _read(one.pid, "environ").split(b"\0")
    ]


def is_alive(pid):
    one = process(pid)
    return one is not None and one.alive


def end(child, within=10):
    """Ends a child of ours (a Popen): asked first, then made to."""
    if child.poll() is None:
        child.terminate()
        try:
            child.wait(within)
        except Exception:
            child.kill()
    child.wait()


def end_marked(name, value):
    for one in marked(name, value):
        try:
            os.kill(one.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
    wait_until("what was started is gone", lambda: not marked(name, value))
