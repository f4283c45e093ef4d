#!/usr/bin/python3
"""Stands in the place of the interpreter and behaves as the test says.

It finds its plan beside itself: the socket on which it tells the test what it sees and takes further
commands, and the steps to carry out first. Nothing else of the harness is needed here, so that a
copy of this one file is enough.
"""

import array
import base64
import fcntl
import hashlib
import json
import os
import queue
import signal
import socket
import stat
import sys
import termios
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path

REQUESTS_TO_END = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP)


def inherited():
    """What the process was started with, looked at before anything here changes it."""
    descriptors = {}
    for entry in os.listdir("/proc/self/fd"):
        try:
            descriptors[entry] = os.readlink(f"/proc/self/fd/{entry}")
        except FileNotFoundError:
            pass  # the one that listed the folder
    kinds = {}
    for number in (0, 1, 2):
        try:
            kinds[str(number)] = stat.S_IFMT(os.fstat(number).st_mode)
        except OSError:
            pass
    status = dict(line.split(":\t", 1) for line in Path("/proc/self/status").read_text().splitlines())
    return {
        "arguments": sys.argv[1:],
        "executable": sys.argv[0],
        "folder": os.getcwd(),
        "environment": dict(os.environ),
        "descriptors": descriptors,
        "pipes": [number for number, kind in kinds.items() if kind == stat.S_IFIFO],
        "blocked": int(status["SigBlk"], 16),
        "ignored": int(status["SigIgn"], 16),
        "pid": os.getpid(),
        "parent": os.getppid(),
        "session": os.getsid(0),
    }


class Channel:
    """JSON lines to and from the test."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.lines = self.socket.makefile("r", encoding="utf-8")
        self.lock = threading.RLock()

    def tell(self, event, **what):
        line = json.dumps({"event": event, "at": time.monotonic(), **what}) + "\n"
        with self.lock:
            try:
                self.socket.sendall(line.encode())
            except OSError:
                pass  # the test has gone on

    def commands(self):
        for line in self.lines:
            yield json.loads(line)


class Site:
    """Pages, answers and the scripts on their way to the page."""

    def __init__(self, channel):
        self.channel = channel
        self.answers = {}
        self.server = None
        self.newest_page = None
        self.changed = threading.Condition()

    def listen(self, port):
        site = self

        class Server(ThreadingHTTPServer):
            daemon_threads = True
            request_queue_size = 128

            def handle_error(self, request, address):
                pass  # a page that goes away in the middle of an answer

        class Handler(RequestHandler):
            pass

        Handler.site = site
        self.server = Server(("127.0.0.1", port), Handler)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        return self.server.server_address[1]

    def close(self):
        self.server.shutdown()
        self.server.server_close()

    def evaluate(self, message):
        """Hands a script to the newest page, waiting for one to come up if need be."""
        threading.Thread(target=self._evaluate, args=(json.dumps(message),), daemon=True).start()

    def _evaluate(self, message):
        with self.changed:
            self.changed.wait_for(lambda: self.newest_page is not None)
            self.newest_page.put(message)


class RequestHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    site = None

    def log_message(self, *_):
        pass

    def handle_any(self):
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length)
        if self.path == "/agent/scripts":
            return self.stream_scripts()
        if self.path == "/agent/result":
            self.site.channel.tell("result", **json.loads(body))
            return self.answer({"body": "{}"})
        # Before the test hears of the request, and may change what the next one is answered.
        answer = self.site.answers.get(self.path.split("?")[0], {"status": 404, "body": "{}"})
        self.site.channel.tell(
            "request",
            method=self.command,
            path=self.path,
            headers=[[name, value] for name, value in self.headers.items()],
            body=body.decode(errors="replace"),
        )
        return self.answer(answer)

    do_GET = do_POST = do_PUT = do_DELETE = do_HEAD = handle_any

    def answer(self, answer):
        time.sleep(answer.get("delay", 0))
        if answer.get("drop"):
            self.close_connection = True
            return
        body = base64.b64decode(answer["base64"]) if "base64" in answer else answer.get("body", "").encode()
        self.send_response(answer.get("status", 200))
        headers = {"Content-Type": "text/html; charset=utf-8", "Cache-Control": "no-store"}
        headers |= answer.get("headers", {})
        for name, value in headers.items():
            self.send_header(name, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def stream_scripts(self):
        scripts = queue.SimpleQueue()
        self.close_connection = True
        self.send_response(200)
        self.send_header("Content-Type", "text/event-stream")
        self.send_header("Cache-Control", "no-store")
        self.end_headers()
        with self.site.changed:
            self.site.newest_page = scripts
            self.site.changed.notify_all()
        self.site.channel.tell("page")
        while True:
            self.wfile.write(f"data: {scripts.get()}\n\n".encode())


class Program:
    def __init__(self, channel):
        self.channel = channel
        self.site = Site(channel)
        self.ignored = set()
        self.slowness = 0.0
        self.outlives_input = False
        self.last_words = b""

    def watch_signals(self):
        # Waited for on a thread: a handler would run only when the main thread's next read comes to an end, should
        # the signal arrive just before that read begins.
        while True:
            self.signalled(signal.sigwait(REQUESTS_TO_END))

    def signalled(self, number):
        name = signal.Signals(number).name
        self.channel.tell("signal", name=name)
        if name in self.ignored:
            return
        time.sleep(self.slowness)
        self.write(self.last_words)
        self.leave(0)

    def leave(self, status):
        self.channel.tell("leaving", status=status)
        os._exit(status)

    def watch_input(self):
        try:
            while os.read(0, 4096):
                self.channel.tell("input")
        except OSError:
            pass
        self.channel.tell("input-closed")
        if not self.outlives_input:
            self.leave(0)

    def write(self, data, descriptor=1):
        view = memoryview(data)
        while view:
            view = view[os.write(descriptor, view) :]

    # Steps and commands, by name.

    def do_print(self, text):
        self.write(text.encode())

    def do_bytes(self, base64_text):
        self.write(base64.b64decode(base64_text))

    def do_drain(self):
        """Waits until the other side has read all that was written."""
        waiting = array.array("i", [1])
        while waiting[0]:
            fcntl.ioctl(1, termios.FIONREAD, waiting)
            time.sleep(0.005)

    def do_complain(self, text):
        self.write(text.encode(), 2)

    def do_serve(self, port=0):
        self.channel.tell("serving", port=self.site.listen(port))

    def do_stop_serving(self):
        self.site.close()
        self.channel.tell("stopped-serving")

    def do_announce(self, before="", marker="HARBROOK_PORT ", after="\n"):
        self.do_print(f"{before}{marker}{self.site.server.server_address[1]}{after}")

    def do_answer(self, path, **answer):
        self.site.answers[path] = answer

    def do_evaluate(self, id, script):
        self.site.evaluate({"id": id, "script": script})

    def do_flood(self, size, line="x" * 63):
        chunk = (line + "\n").encode()
        block = chunk * max(1, 65536 // len(chunk))
        written = 0
        while written < size:
            part = block[: size - written]
            self.write(part)
            written += len(part)
        self.channel.tell("flooded", size=written)

    def do_flood_numbered(self, size, width=64):
        """Lines that differ all, in blocks so that making them costs little; tells a digest of them."""
        block = b"".join(b"%015d %s\n" % (number, b"." * (width - 17)) for number in range(4096))
        digest, written = hashlib.sha256(), 0
        while written < size:
            part = b"block %0*d\n" % (width - 7, written) + block
            digest.update(part)
            self.write(part)
            written += len(part)
        self.channel.tell("flooded", size=written, digest=digest.hexdigest())

    def do_close_streams(self, streams=(1, 2)):
        for number in streams:
            os.close(number)
        self.channel.tell("streams-closed")

    def do_ignore(self, signals):
        self.ignored = set(signals)

    def do_end_slowly(self, seconds):
        self.slowness = seconds

    def do_last_words(self, text):
        """Printed when it is asked to end, right before it does."""
        self.last_words = text.encode()

    def do_outlive_input(self):
        self.outlives_input = True

    def do_pause(self, seconds):
        time.sleep(seconds)

    def do_exit(self, status=0):
        self.leave(status)

    def do_crash(self):
        os.kill(os.getpid(), signal.SIGKILL)

    def carry_out(self, step):
        step = dict(step)
        name = step.pop("do")
        getattr(self, "do_" + name.replace("-", "_"))(**step)
        self.channel.tell("done", step=name)


def main():
    found = inherited()
    signal.pthread_sigmask(signal.SIG_BLOCK, REQUESTS_TO_END)
    plan = json.loads((Path(sys.argv[0]).parent / "plan.json").read_text())
    channel = Channel(plan["socket"])
    program = Program(channel)
    program.site.answers.update(plan.get("answers", {}))
    channel.tell("started", **found)
    threading.Thread(target=program.watch_signals, daemon=True).start()
    threading.Thread(target=program.watch_input, daemon=True).start()
    for step in plan.get("steps", []):
        program.carry_out(step)
    for step in channel.commands():
        program.carry_out(step)
    # The test has gone on; the shell is what decides now.
    threading.Event().wait()


if __name__ == "__main__":
    main()
