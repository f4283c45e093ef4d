"""The test's end of the scripted server."""

import base64
import itertools
import json
import socket
import tempfile
import threading
import time
from pathlib import Path

from .page import page
from .waiting import PATIENCE, NeverHappened, wait_until

PROGRAM = Path(__file__).with_name("scripted_server.py")

# Steps. A plan is a list of them; each can also be sent to a running server.


def serve(port=0):
    return {"do": "serve", "port": port}


def announce(**around):
    return {"do": "announce", **around}


def say(text):
    return {"do": "print", "text": text}


def say_bytes(data):
    return {"do": "bytes", "base64_text": base64.b64encode(data).decode()}


def drain():
    """Waits until all output so far has been read, so that what follows comes in a read of its own."""
    return {"do": "drain"}


def complain(text):
    return {"do": "complain", "text": text}


def flood(size, **options):
    return {"do": "flood", "size": size, **options}


def flood_numbered(size):
    """Lines that all differ; the event that follows has their digest."""
    return {"do": "flood-numbered", "size": size}


def leave(status=0):
    return {"do": "exit", "status": status}


def pause(seconds):
    return {"do": "pause", "seconds": seconds}


def ignore(*signals):
    return {"do": "ignore", "signals": signals}


def end_slowly(seconds):
    return {"do": "end-slowly", "seconds": seconds}


def last_words(text):
    """Printed when it is asked to end, right before it does."""
    return {"do": "last-words", "text": text}


READY = [serve(), announce()]


class Plan:
    """What servers do that are started from now on."""

    def __init__(self, steps=None, answers=None):
        self.steps = list(READY if steps is None else steps)
        self.answers = {"/": {"body": page()}} | (answers or {})

    def write(self, folder, address):
        text = json.dumps({"socket": address, "steps": self.steps, "answers": self.answers})
        (folder / "plan.json").write_text(text)


class Server:
    """One started server: what it told, and a way to command it."""

    def __init__(self, connection):
        self._connection = connection
        self._changed = threading.Condition()
        self._ids = itertools.count(1)
        self.events = []
        self.gone = False
        threading.Thread(target=self._listen, daemon=True).start()

    def _listen(self):
        with self._connection.makefile("r", encoding="utf-8") as lines:
            try:
                for line in lines:
                    with self._changed:
                        self.events.append(json.loads(line))
                        self._changed.notify_all()
            except OSError:
                pass
        with self._changed:
            self.gone = True
            self._changed.notify_all()

    def wait_for(self, event, fits=lambda event: True, within=PATIENCE, after=0):
        """The first event of that name that fits; `after` skips that many events of any kind."""
        deadline = time.monotonic() + within
        looked_at = after
        with self._changed:
            while True:
                for candidate in self.events[looked_at:]:
                    if candidate["event"] == event and fits(candidate):
                        return candidate
                looked_at = len(self.events)
                left = deadline - time.monotonic()
                if left <= 0 or self.gone:
                    why = "the server is gone" if self.gone else f"waited {within:g} s"
                    raise NeverHappened(f"{why}; no {event!r} among {self.names()}")
                self._changed.wait(left)

    def wait_until_gone(self, within=PATIENCE):
        with self._changed:
            if not self._changed.wait_for(lambda: self.gone, within):
                raise NeverHappened(f"the server still runs after {within:g} s")

    def names(self):
        return [event["event"] for event in self.events]

    def all(self, event):
        return [candidate for candidate in list(self.events) if candidate["event"] == event]

    @property
    def start(self):
        """Arguments, environment, streams: what it found when it was started."""
        return self.wait_for("started")

    @property
    def pid(self):
        return self.start["pid"]

    @property
    def port(self):
        return self.wait_for("serving")["port"]

    # Commands

    def do(self, step):
        self._connection.sendall((json.dumps(step) + "\n").encode())

    def answer(self, path, **answer):
        """What the path answers from now on: body or base64, status, headers, delay, drop."""
        self.do({"do": "answer", "path": path, **answer})

    def requests(self, path=None):
        """The requests for that path (without its query) so far, or all of them."""
        return [one for one in self.all("request") if path is None or one["path"].split("?")[0] == path]

    def wait_for_request(self, path, method=None, within=PATIENCE, after=0):
        def fits(event):
            return event["path"].split("?")[0] == path and method in (None, event["method"])

        return self.wait_for("request", fits, within, after)

    def wait_for_polls(self, count, within=PATIENCE):
        """Waits until the program has asked for the state so many times more."""
        before = len(self.requests("/api/state"))
        wait_until(f"{count} polls", lambda: len(self.requests("/api/state")) >= before + count, within)

    # The page

    def wait_for_page(self, count=1, within=PATIENCE):
        """Waits until the page has been loaded that many times."""
        deadline = time.monotonic() + within
        with self._changed:
            while self.names().count("page") < count:
                left = deadline - time.monotonic()
                if left <= 0 or self.gone:
                    raise NeverHappened(f"no page number {count} among {self.names()}")
                self._changed.wait(left)

    def evaluate(self, script, within=PATIENCE):
        """The value of a script in the newest page (awaited, when it is a promise)."""
        number = next(self._ids)
        self.do({"do": "evaluate", "id": number, "script": script})
        result = self.wait_for("result", lambda event: event["id"] == number, within)
        assert "error" not in result, result["error"]
        return result["value"]

    def run(self, script):
        """Runs a script that may keep the newest page from saying what became of it: one that leaves it, or hangs."""
        self.do({"do": "evaluate", "id": next(self._ids), "script": script})

    def close(self):
        try:
            self._connection.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass
        self._connection.close()


class Switchboard:
    """Where the servers of one shell report, in the order in which they start."""

    def __init__(self):
        # Short, because paths of sockets are limited to 107 bytes.
        self._folder = tempfile.TemporaryDirectory(prefix="hb-")
        self.address = str(Path(self._folder.name) / "socket")
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.bind(self.address)
        self._socket.listen(16)
        self._changed = threading.Condition()
        self.servers = []
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        while True:
            try:
                connection, _ = self._socket.accept()
            except OSError:
                return
            with self._changed:
                self.servers.append(Server(connection))
                self._changed.notify_all()

    def server(self, number=0, within=PATIENCE, hopeless=lambda: False):
        """The number-th server since the beginning, waiting for it to start.

        hopeless: tells that nobody is left to start it, so that waiting on makes no sense.
        """
        deadline = time.monotonic() + within
        with self._changed:
            while len(self.servers) <= number:
                if hopeless() or time.monotonic() > deadline:
                    raise NeverHappened(f"no server number {number} was started within {within:g} s")
                self._changed.wait(0.2)
            return self.servers[number]

    def close(self):
        self._socket.shutdown(socket.SHUT_RDWR)
        self._socket.close()
        for server in self.servers:
            server.close()
        self._folder.cleanup()
