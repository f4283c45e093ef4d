"""Screenshot mode, seen by the script that drives it."""

import threading

from gi.repository import Gio, GLib

from .waiting import PATIENCE, NeverHappened

INTERFACE = "com.brackenforge.harbrook"
MEMBER = "shot"


class FolderWatch:
    """Wakes up whoever waits for the content of a file in the folder, which must exist."""

    def __init__(self, folder):
        self._changed = threading.Condition()
        # Called in the thread of the main loop, which every Bus keeps running.
        self._monitor = Gio.File.new_for_path(str(folder)).monitor_directory(Gio.FileMonitorFlags.WATCH_MOVES)
        self._monitor.connect("changed", self._wake)

    def _wake(self, *_):
        with self._changed:
            self._changed.notify_all()

    def wait_until(self, predicate, within):
        """Whether the predicate, asked again after each change in the folder, became true in time."""
        with self._changed:
            return self._changed.wait_for(predicate, within)

    def close(self):
        self._monitor.cancel()


class ScreenshotMode:
    """Requests to a shell, and its answers in its data directory, which must exist before the shell starts."""

    def __init__(self, bus, data):
        self.bus = bus
        self.window_file = data / "shot-window"
        self.ready_file = data / "shot-ready"
        self._watch = FolderWatch(data)

    def close(self):
        self._watch.close()

    def window_is_known(self, within):
        """Whether the mode was on in time."""
        return self._watch.wait_until(self.window_file.exists, within)

    def wait_for_window(self, within=PATIENCE):
        """The number of the main window, once the mode is on."""
        if not self.window_is_known(within):
            raise NeverHappened(f"no {self.window_file} within {within:g} s")
        return int(self.window_file.read_text())

    def send(self, **strings):
        """A request, with the keys and values as given."""
        self.send_variant(GLib.Variant("a{ss}", strings))

    def send_variant(self, information):
        self.bus.emit("/", INTERFACE, MEMBER, GLib.Variant.new_tuple(information))

    def answered(self, token, within):
        """Whether that token was written in time."""
        return self._watch.wait_until(lambda: self.ready() == token, within)

    def ready(self):
        """What the file of answers holds, or None without the file."""
        try:
            return self.ready_file.read_bytes().decode()
        except FileNotFoundError:
            return None
