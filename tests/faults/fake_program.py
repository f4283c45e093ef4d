#!/usr/bin/python3
"""Takes the program's place in the tests of the runner, and has the weakness that its arguments name.

It ends at SIGTERM. At SIGUSR1 it does once what is to be noticed as a leak; at SIGUSR2 it gives all of that back.
"""

import mmap
import os
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

from Xlib import X, Xatom
from Xlib.display import Display
from Xlib.protocol import event

SIGNALS = {signal.SIGTERM, signal.SIGUSR1, signal.SIGUSR2}

leaked = []


def leak(kind):
    if kind == "descriptors":
        leaked.append(open("/dev/null"))
    if kind == "threads":
        leaked.append(event := threading.Event())
        threading.Thread(target=event.wait, daemon=True).start()
    if kind == "memory":
        leaked.append(written_memory(8 << 20))
    if kind == "little memory":
        leaked.append(written_memory(512 << 10))


def written_memory(size):
    """Goes back to the system when it is given back."""
    memory = mmap.mmap(-1, size)
    memory.write(bytes([1]) * size)
    return memory


def give_back():
    for one in leaked:
        one.set() if isinstance(one, threading.Event) else one.close()
    leaked.clear()


def read_mapped(name):
    """Maps a file, as libraries are, and reads all of it."""
    with open(name, "rb") as file:
        mapped = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
    assert not mapped[:].strip(b"\0")
    return mapped


def write_log(lines):
    log = Path(os.environ["HOME"]) / ".harbrook" / "logs" / "server.log"
    log.parent.mkdir(parents=True, exist_ok=True)
    log.write_text(lines)


def spin():
    while True:
        pass


class AnsweringWindow:
    """A window whose program answers _NET_WM_PING, each time after so many seconds."""

    def __init__(self, delay):
        self._delay = delay
        self._display = Display()
        self._root = self._display.screen().root
        self._protocols = self._display.intern_atom("WM_PROTOCOLS")
        window = self._root.create_window(10, 10, 200, 100, 0, X.CopyFromParent)
        window.set_wm_protocols([self._display.intern_atom("_NET_WM_PING")])
        window.change_property(self._display.intern_atom("_NET_WM_PID"), Xatom.CARDINAL, 32, [os.getpid()])
        window.map()
        self._display.flush()

    def answer(self):
        while True:
            happened = self._display.next_event()
            if happened.type != X.ClientMessage or happened.client_type != self._protocols:
                continue
            time.sleep(self._delay)
            answer = event.ClientMessage(window=self._root, client_type=self._protocols, data=happened.data)
            self._root.send_event(answer, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
            self._display.flush()


def end(weakness):
    if weakness == "crash":
        os.abort()
    os._exit(3 if weakness == "status" else 0)


def main(weakness, value=""):
    # Waited for, one after the other; before threads begin, so that none of them takes one.
    signal.pthread_sigmask(signal.SIG_BLOCK, SIGNALS)
    if weakness == "orphan":
        subprocess.Popen(["sleep", "600"], start_new_session=True)
    if weakness == "log":
        write_log(value)
    if weakness == "mapping":
        leaked.append(read_mapped(value))
    if weakness == "complaint":
        print(value.format(pid=os.getpid()), flush=True)
    if weakness == "window":
        threading.Thread(target=AnsweringWindow(float(value)).answer, daemon=True).start()
    if weakness == "restless":
        threading.Thread(target=spin, daemon=True).start()
    (Path(os.environ["HOME"]) / "ready").touch()
    while True:
        number = signal.sigwait(SIGNALS)
        if number == signal.SIGUSR1:
            leak(value)
        elif number == signal.SIGUSR2:
            give_back()
        elif weakness != "deaf":
            end(weakness)


if __name__ == "__main__":
    main(*sys.argv[1:])
