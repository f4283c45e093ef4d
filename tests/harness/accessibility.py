"""What assistive technology is told, read from its bus (AT-SPI)."""

from dataclasses import dataclass, field

from gi.repository import GLib

from .bus import Bus
from .waiting import wait_until
from .x11 import Rectangle

ACCESSIBLE = "org.a11y.atspi.Accessible"
ROOT = "/org/a11y/atspi/accessible/root"

VISIBLE = 30  # bit in the state set; GTK gives the stricter "showing" to windows only


@dataclass
class Node:
    tree: "Tree" = field(repr=False)
    owner: str = field(repr=False)
    path: str = field(repr=False)
    role: str
    name: str
    states: frozenset = field(repr=False)

    def _call(self, interface, method, arguments=None):
        return self.tree.bus.call(self.owner, self.path, interface, method, arguments, timeout=5)

    @property
    def visible(self):
        return VISIBLE in self.states

    @property
    def children(self):
        return [self.tree.node(*child) for child in self._call(ACCESSIBLE, "GetChildren")[0]]

    @property
    def text(self):
        """The text shown: its name, or what it holds as a text."""
        try:
            return self._call("org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0] or self.name
        except GLib.Error:
            return self.name

    @property
    def area(self):
        """In its window."""
        window_coordinates = 1
        extents = self._call(
            "org.a11y.atspi.Component", "GetExtents", GLib.Variant("(u)", (window_coordinates,))
        )[0]
        return Rectangle(*extents)

    def act(self, which=0):
        """What a screen reader does to press a button."""
        return self._call("org.a11y.atspi.Action", "DoAction", GLib.Variant("(i)", (which,)))[0]


class Tree:
    role_question = "GetRoleName"

    def __init__(self, session_bus):
        address = session_bus.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
        self.bus = Bus(address)

    def close(self):
        self.bus.close()

    def node(self, owner, path):
        def ask(method, default):
            try:
                return self.bus.call(owner, path, ACCESSIBLE, method, timeout=5)[0]
            except GLib.Error:
                return default

        try:
            name = self.bus.property(owner, path, ACCESSIBLE, "Name")
        except GLib.Error:
            name = ""
        words = ask("GetState", [])
        states = frozenset(i for i in range(64) if len(words) > i // 32 and words[i // 32] >> i % 32 & 1)
        return Node(self, owner, path, ask(self.role_question, "gone"), name, states)

    def application(self, pid):
        """The root of that process's tree, or None."""
        registry = self.node("org.a11y.atspi.Registry", ROOT)
        for candidate in registry.children:
            try:
                owner = self.bus.call(
                    "org.freedesktop.DBus",
                    "/",
                    "org.freedesktop.DBus",
                    "GetConnectionUnixProcessID",
                    GLib.Variant("(s)", (candidate.owner,)),
                )[0]
            except GLib.Error:
                continue
            if owner == pid:
                return candidate
        return None

    def walk(self, pid):
        """Every visible node below the application, parents first."""
        root = self.application(pid)
        open_ends = [root] if root else []
        while open_ends:
            node = open_ends.pop(0)
            try:
                children = node.children
            except GLib.Error:
                continue
            for child in children:
                if child.visible:
                    yield child
                    open_ends.append(child)

    def find(self, pid, role=None, name=None):
        """The first visible node that fits, or None. A name may be that of a text."""
        for node in self.walk(pid):
            if role is not None and node.role != role:
                continue
            if name is not None and name not in (node.name, node.text):
                continue
            return node
        return None

    def wait_for(self, pid, role=None, name=None, within=20.0):
        return wait_until(f"{role or 'anything'} called {name!r}", lambda: self.find(pid, role, name), within)

    def texts(self, pid):
        """The texts of all visible labels."""
        return [node.text for node in self.walk(pid) if node.role == "label"]

    def outline(self, pid):
        """For a failure's report: one line a node."""
        return "\n".join(f"{node.role}: {node.name!r}" for node in self.walk(pid))
