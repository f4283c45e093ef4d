"""The installed program with a scripted server as its interpreter."""

import os
import shutil
import signal
import subprocess
import uuid
from pathlib import Path

from . import node
from .processes import descendants, end_marked, marked
from .server import PROGRAM, Plan, Switchboard
from .waiting import PATIENCE, wait_until
from .x11 import Rectangle

REPOSITORY = Path(__file__).resolve().parents[2]

# `cmake --install` puts the program there; another tree can be named to try it instead.
STAGE = Path(os.environ.get("HARBROOK_STAGE", REPOSITORY / "build" / "stage"))

BUILD = REPOSITORY / "build" / "release"

# Every process of one shell carries this variable.
MARK = "HARBROOK_TEST_SHELL"


class Shell:
    """One home and one copy of the installed tree; the program can be started in it again and again.

    plan: what the scripted server does; None leaves the tree without an interpreter of its own.
    environment: added to the desktop's; a value of None takes a variable away.
    """

    def __init__(self, desktop, folder, plan=Plan(), environment=None):
        self.desktop = desktop
        self.folder = folder
        self.home = folder / "home"
        self.home.mkdir(parents=True)
        self.tree = folder / "installed"
        # Hard links: the copy is made at once, and where the program finds itself is the copy.
        shutil.copytree(STAGE, self.tree, copy_function=_link)
        self.resources = self.tree / "share" / "harbrook"
        self.executable = self.tree / "bin" / "harbrook"
        self.mark = uuid.uuid4().hex
        self.environment = desktop.environment | {"HOME": str(self.home), MARK: self.mark}
        for name, value in (environment or {}).items():
            self.environment.pop(name, None)
            if value is not None:
                self.environment[name] = value
        self.switchboard = Switchboard()
        self.programs = []
        if plan is None:
            node.tell_login_shells(self.home)
        else:
            self.put_interpreter(plan)

    def put_interpreter(self, plan):
        """The plan holds for servers that are started after this."""
        runtime = self.resources / "runtime"
        runtime.mkdir(parents=True, exist_ok=True)
        node = runtime / "node"
        node.unlink(missing_ok=True)
        shutil.copy(PROGRAM, node)
        node.chmod(0o755)
        plan.write(runtime, self.switchboard.address)

    # Running

    def start(self, *arguments, environment=None, through=(), **options):
        """Starts the program (once more) and returns it without waiting for anything.

        through: a command that ends by becoming the program that follows it on its command line.
        """
        output = open(self.folder / f"output-{len(self.programs)}.txt", "wb")
        with output:
            program = subprocess.Popen(
                [*through, self.executable, *arguments],
                env=self.environment | (environment or {}),
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=output,
                cwd=self.folder,
                **options,
            )
        self.programs.append(program)
        return program

    @property
    def program(self):
        return self.programs[-1]

    @property
    def pid(self):
        return self.program.pid

    @property
    def server(self):
        """The server started last."""
        return self.switchboard.server(max(len(self.switchboard.servers) - 1, 0), hopeless=self._has_ended)

    def _has_ended(self):
        # None, when something else than this test has started it.
        return bool(self.programs) and all(program.poll() is not None for program in self.programs)

    @property
    def output(self):
        """What the program itself wrote, over all its starts."""
        files = sorted(self.folder.glob("output-*.txt"))
        return "".join(one.read_text(errors="replace") for one in files)

    def signal(self, number=signal.SIGTERM):
        self.program.send_signal(number)

    def wait(self, within=PATIENCE):
        """The exit status of the program."""
        return self.program.wait(within)

    def quit(self, within=PATIENCE):
        self.signal(signal.SIGTERM)
        status = self.wait(within)
        assert status == 0, f"the program ended with {status}\n{self.output}"

    def wait_until_ended(self, within=PATIENCE):
        """Waits until nothing is left of what the program started."""
        wait_until("nothing of the program is left", lambda: not self.processes(), within)

    def processes(self):
        """Everything that the program started and that lives, itself included."""
        # The number of a program that has ended may be another's by now.
        running = [program.pid for program in self.programs if program.poll() is None]
        below = [one for pid in running for one in descendants(pid)]
        return list({one.pid: one for one in [*marked(MARK, self.mark), *below]}.values())

    def web_processes(self):
        """The engine's own processes, without the sandbox's around them."""
        return [one for one in self.processes() if one.name.startswith("WebKit")]

    def end_left_behind(self):
        """Ends by force whatever lives of what the program started, itself included."""
        for program in self.programs:
            if program.poll() is None:
                program.kill()
            program.wait()
        end_marked(MARK, self.mark)

    def close(self):
        self.end_left_behind()
        self.switchboard.close()

    # Files

    @property
    def data(self):
        return self.home / ".harbrook"

    @property
    def log(self):
        return self.data / "logs" / "server.log"

    def prefer_dark(self, dark):
        """The setting of a desktop that has no portal, for programs of this home."""
        settings = self.home / ".config" / "gtk-4.0" / "settings.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(f"[Settings]\ngtk-application-prefer-dark-theme={int(dark)}\n")

    # The window

    def windows(self):
        """The windows of this program that are visible."""
        pids = {program.pid for program in self.programs}
        return [window for window in self.desktop.screen.windows() if window.pid in pids]

    def window(self, within=PATIENCE):
        return wait_until("the window is shown", self.windows, within)[0]

    def in_window(self, x, y):
        """Where that place of the window is on the screen."""
        area = self.window().area
        return area.x + x, area.y + y

    def viewport(self):
        """Width and height of the page as the page sees them."""
        return tuple(self.server.evaluate("[innerWidth, innerHeight]"))

    def place(self, x, y, width, height):
        """Moves the window and resizes it until the page has that size; returns the window."""
        window = self.window()
        now = self.viewport()
        # Borders that the toolkit draws inside the window.
        around = [window.area.width - now[0], window.area.height - now[1]]
        window.move_and_resize(x, y, width + around[0], height + around[1])
        wait_until(f"the page is {width} by {height}", lambda: self.viewport() == (width, height))
        return window

    def wait_until_drawn(self, within=PATIENCE):
        """Waits until the heading of the page is on the screen."""
        area = self.window().area
        beside_buttons = Rectangle(area.x + 100, area.y + 5, 100, 60)
        screen = self.desktop.screen
        wait_until("the page is drawn", lambda: len(screen.picture(beside_buttons).colours()) > 1, within)

    def wait_until_hidden(self, within=PATIENCE):
        wait_until("no window is shown", lambda: not self.windows(), within)

    def wait_for_text(self, text, within=PATIENCE):
        """Waits until a label in the window shows that text."""
        return self.desktop.accessibility().wait_for(self.pid, role="label", name=text, within=within)

    def wait_for_label(self, fits, within=PATIENCE):
        """Waits until a label is shown whose text fits."""
        tree = self.desktop.accessibility()

        def labels():
            return [node for node in tree.walk(self.pid) if node.role == "label" and fits(node.text)]

        return wait_until("a label that fits", labels, within)[0]

    def texts(self):
        return self.desktop.accessibility().texts(self.pid)


def newer_in_build(build=BUILD, stage=STAGE):
    """A file that was built after it was installed, or None. An installed file keeps the time of what was built."""
    pairs = {build / "harbrook": stage / "bin" / "harbrook"}
    pairs |= {one: stage / "share" / "harbrook" / one.relative_to(build / "resources") for one in built_resources(build)}
    for built, installed in pairs.items():
        if built.exists() and (not installed.exists() or built.stat().st_mtime > installed.stat().st_mtime + 1):
            return built
    return None


def built_resources(build):
    return [one for one in (build / "resources").rglob("*") if one.is_file() and not one.name.startswith(".")]


def _link(source, target):
    try:
        os.link(source, target)
    except OSError:
        shutil.copy2(source, target)
