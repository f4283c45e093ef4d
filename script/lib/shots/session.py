"""One run of the shell: one appearance, one scale, several pictures."""

import shutil
import subprocess
import sys
import tempfile
import time
from contextlib import ExitStack
from dataclasses import dataclass
from pathlib import Path

from harness.processes import end

from .plan import Step

if sys.platform == "darwin":
    from .macos import desktop
else:
    from .linux import desktop

__all__ = ["Failed", "Session", "desktop"]

START = 60.0  # seconds until the mode is on
ANSWER = 60.0  # seconds for a request; the shell itself gives up on a page after some 18
REPEAT = 5.0
LOOK = 0.5  # how often, while waiting, the shell is looked after
GIVEN_UP = 18.0  # a page that was ready was so earlier than this


class Failed(Exception):
    pass


@dataclass
class Outcome:
    seconds: float
    was_ready: bool


class Session:
    """The shell with a throw-away home; everything is ended and removed by close()."""

    def __init__(self, desktop, program, arguments, plan, appearance, scale):
        self._desktop = desktop
        self._requests = 0
        self._undo = ExitStack()
        try:
            # Gone with the desktop: some of the engine's processes write to it for a moment after the program's end.
            self.home = Path(tempfile.mkdtemp(prefix="home-", dir=desktop.folder))
            self._furnish(plan.home)
            appearing, options = desktop.dress(self.home, appearance, scale)
            self._environment = desktop.environment | {
                "HOME": str(self.home),
                "PATH": self._path(desktop.environment["PATH"]),
                "HARBROOK_SHOTS": "1",
                "HARBROOK_SHOTS_HOME": str(self.home),
                **appearing,
            }
            for command in plan.services:
                self._serve(command)
            self._start(program, [*options, *arguments])
            # A view that is asked for before the page is loaded is lost, so the first request asks for none.
            for step in (Step("#/"), *plan.first):
                self.show(step)
        except BaseException:
            self.close()
            raise

    def close(self):
        self._undo.close()

    def _furnish(self, source):
        if source:
            shutil.copytree(source, self.home, dirs_exist_ok=True, ignore=shutil.ignore_patterns("README.md"))
        self.data = self.home / ".harbrook"
        self.data.mkdir(exist_ok=True)

    def _path(self, usual):
        """The home's own programs, and what the desktop has."""
        return f"{self.home / '.local' / 'bin'}:{usual}"

    def _serve(self, command):
        service = subprocess.Popen(
            ["sh", "-c", f"exec {command}"],
            cwd=self.home,
            env=self._environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
        )
        self._undo.callback(end, service)
        if not service.stdout.readline():
            raise Failed(f"{command} ended before it was ready")

    def _start(self, program, arguments):
        self._mode = self._desktop.screenshot_mode(self.data)
        self._undo.callback(self._mode.close)
        self._output = self.home / "output.txt"
        with self._output.open("wb") as output:
            self._shell = subprocess.Popen(
                [program, *arguments],
                cwd=self.home,
                env=self._environment,
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=output,
            )
        # Asked to end, it waits for its server, and that for the projects it has started.
        self._undo.callback(end, self._shell, within=30)
        if not self._within(START, self._mode.window_is_known):
            raise self._failure(f"the shell did not come up within {START:.0f} s")
        self.window = self._mode.wait_for_window()

    def _within(self, seconds, happened):
        """Whether it happened in time; raises Failed as soon as the shell has ended."""
        deadline = time.monotonic() + seconds
        while not happened(LOOK):
            if self._shell.poll() is not None:
                raise self._failure(f"the shell ended with {self._shell.returncode}")
            if time.monotonic() >= deadline:
                return False
        return True

    def _failure(self, what):
        return Failed(f"{what}\n{self._output.read_text(errors='replace')}".rstrip())

    def show(self, step):
        """Shows a view and clicks in it; returns once the shell says that it is done."""
        self._requests += 1
        token = f"{self._requests} {step}"
        request = {"hash": step.hash(self.home), "token": token}
        if step.click:
            request["click"] = step.click
        # What is sent before the shell listens is lost, so the first request is repeated.
        patience, attempts = (REPEAT, int(ANSWER / REPEAT)) if self._requests == 1 else (ANSWER, 1)
        began = time.monotonic()
        for _ in range(attempts):
            self._mode.send(**request)
            if self._within(patience, lambda patience: self._mode.answered(token, patience)):
                took = time.monotonic() - began
                return Outcome(took, took < GIVEN_UP)
        raise self._failure(f"{step}: no answer within {ANSWER:.0f} s")

    def take(self, path):
        self._desktop.take(self.window, path)
