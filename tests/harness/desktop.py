"""A desktop of the test's own: X display, session bus, window manager, accessibility."""

import os
import shutil
import signal
import subprocess
import tempfile
import uuid
from pathlib import Path

from . import node
from .accessibility import Tree
from .bus import Bus
from .processes import end, end_marked
from .waiting import wait_until
from .x11 import Screen

# Every process of a desktop carries this variable, so that whatever outlives its starter is found.
MARK = "HARBROOK_TEST_DESKTOP"

BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={folder}/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_completed_connections">1000</limit>
  <limit name="max_connections_per_user">1000</limit>
  <limit name="max_replies_per_connection">10000</limit>
</busconfig>
"""


class Desktop:
    """What is running is up to the arguments; everything is ended by close().

    display: the name of a display that is there already, with its own window manager; None starts one.
    bus: False for no session bus at all.
    services: bus names that the bus starts on demand, each with its command.
    """

    def __init__(self, size=(1920, 1200), bus=True, services=None, display=None):
        # Short, because paths of sockets are limited to 107 bytes.
        self.folder = Path(tempfile.mkdtemp(prefix="hb-desktop-"))
        self.mark = uuid.uuid4().hex
        self._children = []
        self._closers = []
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        self.environment = {
            MARK: self.mark,
            "PATH": node.PATH,
            "LANG": "C.UTF-8",
            "SHELL": "/bin/sh",
            "USER": os.environ.get("USER", "root"),
            "LOGNAME": os.environ.get("LOGNAME", "root"),
            "XDG_RUNTIME_DIR": str(runtime),
            "XDG_SESSION_TYPE": "x11",
            "GDK_BACKEND": "x11",
        }
        try:
            if display:
                self._use_display(display)
            else:
                self._start_display(size)
            self.bus = None
            if bus:
                self._start_bus(services or {})
            else:
                self._refuse_bus()
            if not display:
                self._start_manager()
        except BaseException:
            self.close()
            raise

    def close(self):
        for closer in reversed(self._closers):
            closer()
        for child in reversed(self._children):
            end(child)
        end_marked(MARK, self.mark)
        shutil.rmtree(self.folder, ignore_errors=True)

    def spawn(self, command, **options):
        """Starts a program in this desktop; it is ended with it at the latest."""
        options.setdefault("env", self.environment)
        options.setdefault("stdin", subprocess.DEVNULL)
        child = subprocess.Popen(command, **options)
        self._children.append(child)
        return child

    def _serve(self, command_with):
        """Starts a service that writes one line to a pipe when it is ready; gives that line."""
        reading, writing = os.pipe()
        command = command_with(str(writing))
        log = open(self.folder / f"{Path(command[0]).name}.log", "wb")
        with os.fdopen(reading) as answers, log:
            self.spawn(command, pass_fds=[writing], stdout=log, stderr=log)
            os.close(writing)
            answer = answers.readline().strip()
        assert answer, Path(log.name).read_text()
        return answer

    def _start_display(self, size):
        screen = "{}x{}x24".format(*size)
        number = self._serve(
            lambda pipe: ["Xvfb", "-displayfd", pipe, "-screen", "0", screen, "-nolisten", "tcp", "-noreset"]
        )
        self._server = self._children[-1]
        self._use_display(f":{number}")

    def _use_display(self, name):
        self.environment["DISPLAY"] = name
        self.screen = Screen(name)
        self._closers.append(self.screen.close)

    @property
    def display_pid(self):
        """The process of the X server, when it is this desktop's own."""
        return self._server.pid if hasattr(self, "_server") else None

    def end_display(self):
        """The X server ends under all that is running."""
        self._closers.remove(self.screen.close)
        end(self._server)

    def _start_bus(self, services):
        folder = self.folder / "services"
        folder.mkdir()
        # Nothing of the machine's is started but what serves assistive technology.
        shutil.copy("/usr/share/dbus-1/services/org.a11y.Bus.service", folder)
        for name, command in services.items():
            (folder / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(folder=self.folder))
        address = self._serve(
            lambda pipe: [
                "dbus-daemon",
                f"--config-file={configuration}",
                "--nofork",
                "--nopidfile",
                f"--print-address={pipe}",
            ]
        )
        self._bus_daemon = self._children[-1]
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.bus = Bus(address)
        self._closers.append(self.bus.close)

    def end_bus(self):
        """The session bus ends under all that is running."""
        self._bus_daemon.kill()
        self._bus_daemon.wait()

    def stall_bus(self, stalled=True):
        """The session bus answers nobody, until it is told to go on."""
        self._bus_daemon.send_signal(signal.SIGSTOP if stalled else signal.SIGCONT)

    def _refuse_bus(self):
        """Keeps programs from launching a bus by themselves, which some systems let them."""
        tools = self.folder / "bin"
        tools.mkdir()
        (tools / "dbus-launch").write_text("#!/bin/sh\nexit 1\n")
        (tools / "dbus-launch").chmod(0o755)
        self.environment["PATH"] = f"{tools}:{self.environment['PATH']}"

    def _start_manager(self):
        home = self.folder / "manager"
        home.mkdir()
        ready = self.folder / "managed"
        self.spawn(
            ["openbox", "--sm-disable", "--startup", f"touch {ready}"],
            env=self.environment | {"HOME": str(home)},
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        wait_until("the window manager runs", ready.exists)

    def accessibility(self):
        """The tree that assistive technology reads."""
        if not hasattr(self, "_tree"):
            self._tree = Tree(self.bus)
            self._closers.append(self._tree.close)
        return self._tree
