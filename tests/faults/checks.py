"""What several faults look at, besides what a Trial counts by itself."""

import hashlib
from pathlib import Path

from harness.tray import Watcher
from harness.waiting import stays, wait_until


BLOCK = 1 << 20

# How many bytes a line has of those that are numbered.
NUMBERED_LINE = 64

NOT_REACHABLE = "(Server not reachable)"

ESTABLISHED = "01"

# A program that waits may want a processor for this share of the time.
RESTING = 0.5


def expect_log_is(trial, log, whole):
    """The log holds exactly these bytes, perhaps in a moment."""
    try:
        wait_until("it is logged", lambda: log.exists() and log.stat().st_size >= len(whole))
        logged = log.read_bytes()
    except AssertionError:
        logged = log.read_bytes() if log.exists() else b""
    trial.count_lost(whole.count(b"\n") - logged.count(b"\n"))
    trial.expect(logged == whole, f"the log has {len(logged)} bytes and is not what was printed ({len(whole)} bytes)")


def expect_log_digest(trial, log, size, digest, lines, skip=0):
    """The log holds, after so many bytes to skip, that many bytes with that digest."""
    try:
        wait_until("it is logged", lambda: log.stat().st_size >= skip + size, within=120)
    except AssertionError as short:
        trial.expect(False, str(short))
    found, counted = hashlib.sha256(), 0
    with log.open("rb") as file:
        file.seek(skip)
        while block := file.read(BLOCK):
            found.update(block)
            counted += block.count(b"\n")
    trial.count_lost(lines - counted)
    trial.expect(found.hexdigest() == digest, "the log is not what was printed")


def flood_numbered(trial, server, size, log=None, kept=None):
    """The server prints lines that differ all, and the log (if there is one) holds them and the announcement."""
    server.do({"do": "flood-numbered", "size": size})
    flooded = server.wait_for("flooded", within=120)
    if kept:
        kept.text += flooded["size"]
    if log is None:
        trial.counts.no_log = True
        return
    announced = len(f"HARBROOK_PORT {server.port}\n")
    expect_log_digest(trial, log, flooded["size"], flooded["digest"], flooded["size"] // NUMBERED_LINE, skip=announced)


def expect_resting(trial, shell, seconds=1.0):
    """The program waits for something to happen, and does not look for it again and again."""
    before = _busy_time(shell.pid)
    stays("the program runs", lambda: shell.program.poll() is None, seconds)
    share = (_busy_time(shell.pid) - before) / seconds
    trial.expect(share <= RESTING, f"the program is busy for {share:.0%} of the time with waiting")


def _busy_time(pid):
    """Seconds that the threads of a process have run, or could have run but had no processor."""
    total = 0
    for thread in Path(f"/proc/{pid}/task").iterdir():
        try:
            running, waiting = (thread / "schedstat").read_text().split()[:2]
        except (FileNotFoundError, ProcessLookupError):
            continue  # it has ended
        total += int(running) + int(waiting)
    return total / 1e9


def wait_for_unread_requests(port, count):
    """Waits until so many requests wait on that port for a server that does not read them."""
    wait_until(f"{count} requests wait", lambda: sum(_unread(port)) >= count, within=30)


def _unread(port):
    """For each connection to a server's port, whether something waits there to be read; see proc(5) on net/tcp."""
    for line in Path("/proc/net/tcp").read_text().splitlines()[1:]:
        _, local, _, state, queues = line.split()[:5]
        if int(local.split(":")[1], 16) == port and state == ESTABLISHED:
            yield int(queues.split(":")[1], 16) > 0


class StatusMenu:
    """The status menu of one start of the program after the other, as a panel of the desktop reads it."""

    def __init__(self, desktop):
        self._watcher = Watcher(desktop).arrive()
        self._expected = 0

    def close(self):
        self._watcher.close()

    def expect_start(self):
        """From now on it is about the item that comes next."""
        self._expected = len(self._watcher.registrations)

    @property
    def menu(self):
        return self._watcher.item(self._expected).menu

    def wait_until_reachable(self):
        return self.menu.wait_for_outline(lambda rows: NOT_REACHABLE not in rows, within=30)

    def wait_until_not_reachable(self):
        return self.menu.wait_for_outline(lambda rows: NOT_REACHABLE in rows, within=30)
