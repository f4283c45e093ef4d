"""Where pictures are taken on macOS: the desktop of whoever is logged in, at the scale that the display has."""

import json
import os
import subprocess
import tempfile
import time
from contextlib import contextmanager

LOOK = 0.1  # seconds between two looks at a file

# A program that is driven is not in front, and those get their notifications later unless told otherwise.
POST = """
ObjC.import("Foundation");
function run([request]) {
    $.NSDistributedNotificationCenter.defaultCenter.postNotificationNameObjectUserInfoDeliverImmediately(
        "com.brackenforge.harbrook.shot", $(), $(JSON.parse(request)), true);
}
"""

LOOKS = {"light": ["-NSRequiresAquaSystemAppearance", "YES"], "dark": ["-AppleInterfaceStyle", "Dark"]}


class ScreenshotMode:
    """Requests to a shell, and its answers in its data directory."""

    def __init__(self, data):
        self._window = data / "shot-window"
        self._ready = data / "shot-ready"

    def close(self):
        pass

    def window_is_known(self, within):
        return self._comes_to_hold(self._window.exists, within)

    def wait_for_window(self):
        return int(self._window.read_text())

    def send(self, **strings):
        subprocess.run(["osascript", "-l", "JavaScript", "-e", POST, json.dumps(strings)], check=True)

    def answered(self, token, within):
        return self._comes_to_hold(lambda: self._ready.exists() and self._ready.read_text() == token, within)

    @staticmethod
    def _comes_to_hold(condition, within):
        deadline = time.monotonic() + within
        while not condition():
            if time.monotonic() >= deadline:
                return False
            time.sleep(LOOK)
        return True


class Place:
    environment = dict(os.environ)

    def __init__(self, folder):
        self.folder = folder

    def dress(self, home, appearance, scale):
        """Has a program with that home look so: what that adds to its environment and its arguments."""
        # Settings and the engine's data go by this one.
        return {"CFFIXED_USER_HOME": str(home)}, LOOKS[appearance]

    def screenshot_mode(self, data):
        return ScreenshotMode(data)

    def take(self, window, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        subprocess.run(["screencapture", "-x", f"-l{window}", str(path)], check=True)


@contextmanager
def desktop(scale, display=None):
    with tempfile.TemporaryDirectory(prefix="harbrook-shots-") as folder:
        yield Place(folder)
