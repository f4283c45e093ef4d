"""What is measured of a running program: whether its window answers, and what it holds on to."""

import os
import select
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from Xlib import X
from Xlib.display import Display
from Xlib.protocol import event

from harness.waiting import wait_until

# How often the window is asked, and when it counts as one that does not answer at all, in seconds.
INTERVAL = 0.02
SILENCE = 10.0
# How often it is looked at who waits for a processor, while an answer is waited for, in seconds.
SLICE = 0.005

# What the names of threads begin with that wait in a pool for work: GLib's, and the program's own.
POOLS = ("pool-", "worker")

# See Holdings.
UNCOUNTED = ("/proc/", "/sys/", "/memfd:WebKitSharedMemory")


@dataclass(frozen=True)
class Holdings:
    """What a process holds: open descriptors, threads (all, and those of pools), and memory that it has written and is
    its own (KiB).

    Pages of libraries that it only reads are no such memory. They would count only while no other process has the
    library, too: when that other ends, they would seem to have come.

    Some descriptors do not count: those of the system's own figures, a few of which the engine opens once, some seconds
    after its start, to watch how much memory is left; and those of its pictures of the page, of which there are one to
    three at a time. Too many pictures would show as memory.
    """

    descriptors: int
    threads: int
    pooled: int
    memory: int

    @staticmethod
    def of(pid):
        rollup = Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]
        sizes = {line.split(":")[0]: int(line.split()[1]) for line in rollup}
        threads = list(_thread_names(pid))
        return Holdings(
            descriptors=sum(1 for _ in open_files(pid)),
            threads=len(threads),
            pooled=sum(name.startswith(POOLS) for name in threads),
            memory=sizes["Private_Dirty"] + sizes.get("Swap", 0),
        )


def open_files(pid):
    """What the descriptors of a process lead to that count."""
    folder = Path(f"/proc/{pid}/fd")
    for entry in os.listdir(folder):
        try:
            target = os.readlink(folder / entry)
        except FileNotFoundError:
            continue  # closed since
        if not target.startswith(UNCOUNTED):
            yield target


def _thread_names(pid):
    for thread in Path(f"/proc/{pid}/task").iterdir():
        try:
            yield (thread / "comm").read_text()
        except (FileNotFoundError, ProcessLookupError):
            pass  # ended since


# Memory rests that has not grown by more than this (KiB) for so many seconds.
STEP = 256
REST = 0.5


def settled(pid):
    """What a process holds once its memory rests: when its start is over, with the first pictures of its window."""
    level, since = Holdings.of(pid).memory, time.monotonic()

    def rests():
        nonlocal level, since
        memory = Holdings.of(pid).memory
        if memory > level + STEP:
            level, since = memory, time.monotonic()
        return time.monotonic() - since >= REST

    wait_until("its memory rests", rests)
    return Holdings.of(pid)


def waited_for_processor(pid, thread=None):
    """Seconds that the thread (the main one) could have run but had no processor; see proc(5) on schedstat."""
    return int(Path(f"/proc/{pid}/task/{thread or pid}/schedstat").read_text().split()[1]) / 1e9


class Waits:
    """The time since now in which any of several threads waited for a processor, all at once counting once.

    The system tells only how long each has waited so far, and tells it when the wait is over. So they are asked again
    and again, and what is new of a thread is taken for the time right before it was seen.
    """

    def __init__(self, threads):
        self._so_far = {thread: waited_for_processor(*thread) for thread in threads}
        self._spans = []

    def look(self):
        now = time.monotonic()
        for thread, before in self._so_far.items():
            self._so_far[thread] = waited_for_processor(*thread)
            self.add(self._so_far[thread] - before, now)

    def add(self, seconds, ended):
        self._spans.append((ended - seconds, ended))

    def seconds(self, begun, ended):
        """How much of that time it was."""
        return covered([(max(start, begun), min(end, ended)) for start, end in self._spans])


def covered(spans):
    """How long the spans are together; where they overlap, it counts once."""
    total, reached = 0.0, float("-inf")
    for start, end in sorted(spans):
        total += max(0.0, end - max(start, reached))
        reached = max(reached, end)
    return total


class Pulse:
    """Asks a window again and again whether its program is alive, as a window manager does (_NET_WM_PING).

    The answer comes from the program's main loop. What is kept of each is the time in seconds that it took, without
    the time in which the program's main thread, the messenger (the X server, by its process id) or the one who asks
    had no processor: that is the machine's, not the program's.
    """

    def __init__(self, display, window, pid, messenger=None):
        self.pid = pid
        self.answers = []
        # What kept it from asking on, if anything did.
        self.problem = None
        self._messenger = messenger
        self._window = window
        self._display = Display(display)
        self._root = self._display.screen().root
        self._root.change_attributes(event_mask=X.SubstructureNotifyMask)
        self._protocols = self._display.intern_atom("WM_PROTOCOLS")
        self._ping = self._display.intern_atom("_NET_WM_PING")
        self._ended = threading.Event()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self):
        number = 0
        try:
            # Once at the least, however soon it is over.
            while not self._ended.wait(INTERVAL) or not self.answers:
                number += 1
                self.answers.append(self._ask(number))
        except (FileNotFoundError, ProcessLookupError):
            pass  # the program has ended: whether it should have is judged elsewhere
        except Exception as problem:
            self.problem = problem

    def _ask(self, number):
        asker = (os.getpid(), threading.get_native_id())
        messenger = [(self._messenger,)] if self._messenger else []
        begun, waits = time.monotonic(), Waits([*messenger, (self.pid,)])
        data = (32, [self._ping, number, self._window, 0, 0])
        target = self._display.create_resource_object("window", self._window)
        target.send_event(event.ClientMessage(window=target, client_type=self._protocols, data=data))
        self._display.flush()
        while time.monotonic() - begun < SILENCE:
            own = waited_for_processor(*asker)
            answered = self._answered(number)
            ended = time.monotonic()
            waits.look()
            if answered:
                # As long as there is nothing to be read, it keeps nobody up.
                waits.add(waited_for_processor(*asker) - own, ended)
                return ended - begun - waits.seconds(begun, ended)
        return SILENCE

    def _answered(self, number):
        """Waits a moment for events; whether the answer to that question is among them."""
        _wait_readable(self._display, SLICE)
        answered = False
        while self._display.pending_events():
            happened = self._display.next_event()
            if happened.type == X.ClientMessage and happened.client_type == self._protocols:
                data = happened.data[1]
                answered |= data[0] == self._ping and data[1] == number
        return answered

    def close(self):
        self._ended.set()
        self._thread.join()
        self._display.close()

    @property
    def slowest(self):
        return max(self.answers, default=0.0)


def _wait_readable(display, seconds):
    if not display.pending_events():
        select.select([display.fileno()], [], [], seconds)
