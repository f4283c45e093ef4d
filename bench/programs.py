"""The programs that are measured against each other, each showing the same page in the same desktop."""

import os
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

from harness.desktop import Desktop
from harness.processes import descendants, end, is_alive
from harness.waiting import wait_until

REPOSITORY = Path(__file__).resolve().parents[1]
STAGE = REPOSITORY / "build" / "stage"
BARE_VIEWER = REPOSITORY / "build" / "bench" / "bench" / "bare_viewer"
SERVER = REPOSITORY / "bench" / "page_server.js"


# Less work than it would do by itself, and what it needs to run as root.
CHROMIUM_FLAGS = (
    "--no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking "
    "--disable-component-update --disable-sync"
).split()


class Run:
    """One start of one program, from its exec to the page's second animation frame."""

    def __init__(self, desktop, home, command, events, environment=None):
        self.events_file = events
        home.mkdir(parents=True, exist_ok=True)
        self.started = time.monotonic_ns()
        self.process = subprocess.Popen(
            command,
            env=desktop.environment | {"HOME": str(home), "BENCH_EVENTS": str(events)} | (environment or {}),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )

    def wait_for(self, event):
        wait_until(f"{event} is reported", lambda: event in self.events(), 60)
        return self.events()[event]

    def wait_until_painted(self):
        return self.wait_for("painted")

    def events(self):
        """Milliseconds from the program's exec to each event since."""
        found = {}
        for line in self.events_file.read_text().splitlines():
            name, when = line.rsplit(" ", 1)
            if int(when) >= self.started:
                found.setdefault(name, (int(when) - self.started) / 1e6)
        return found

    def end(self):
        below = descendants(self.process.pid)
        end(self.process)
        wait_until("nothing is left", lambda: not any(is_alive(one.pid) for one in below))


class Bench:
    """A desktop, the page's server for the viewers, and an installed shell that starts its own."""

    def __init__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="hb-bench-"))
        self.desktop = Desktop(size=(1600, 1000))
        self.events = self.folder / "events"
        self.events.touch()
        self.tree = self.folder / "installed"
        shutil.copytree(STAGE, self.tree, symlinks=True)
        resources = self.tree / "share" / "harbrook"
        # In place of the dashboard, and of the file that says that its modules are of the other kind.
        shutil.rmtree(resources / "app")
        (resources / "app").mkdir()
        shutil.copy(SERVER, resources / "app" / "server.js")
        (resources / "runtime").mkdir(exist_ok=True)
        (resources / "runtime" / "node").symlink_to(shutil.which("node"))
        self.server = self.desktop.spawn(
            ["node", SERVER],
            env=self.desktop.environment | {"BENCH_EVENTS": str(self.folder / "server-events")},
            stdout=subprocess.PIPE,
        )
        port = int(self.server.stdout.readline().split()[1])
        self.url = f"http://localhost:{port}/"
        self.server_events = self.folder / "server-events"

    def harbrook(self, home, **environment):
        return Run(self.desktop, home, [self.tree / "bin" / "harbrook"], self.events, environment)

    def bare_viewer(self, home):
        return Run(self.desktop, home, [BARE_VIEWER, self.url], self.server_events)

    def chromium(self, home):
        command = ["chromium", *CHROMIUM_FLAGS, f"--user-data-dir={home}/chromium", f"--app={self.url}"]
        return Run(self.desktop, home, command, self.server_events)

    def programs(self):
        """Name and starter of each program that is there."""
        found = {"harbrook": self.harbrook, "bare viewer": self.bare_viewer}
        if shutil.which("chromium"):
            found["chromium --app"] = self.chromium
        return found

    def describe(self):
        """How those that are measured against the shell are started."""
        print(f"bare viewer: {BARE_VIEWER.name} {self.url}")
        if "chromium --app" in self.programs():
            print(f"chromium: chromium {' '.join(CHROMIUM_FLAGS)} --user-data-dir=... --app={self.url}")

    def close(self):
        self.desktop.close()
        shutil.rmtree(self.folder, ignore_errors=True)


def proportional_set_size(pid):
    """PSS of one process in MiB."""
    try:
        for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
            if line.startswith("Pss:"):
                return int(line.split()[1]) / 1024
    except (FileNotFoundError, ProcessLookupError):
        pass
    return 0.0


def tree_without_server(pid):
    """The process and all below it, but for the page's server."""
    return [pid, *(one.pid for one in descendants(pid) if one.name != "node")]


def cpu_seconds(pids):
    """Processor time of those processes so far."""
    total = 0
    for pid in pids:
        try:
            fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
            total += int(fields[11]) + int(fields[12])
        except (FileNotFoundError, ProcessLookupError):
            pass
    return total / os.sysconf("SC_CLK_TCK")
