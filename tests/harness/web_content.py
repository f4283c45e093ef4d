"""The page in the real engine: read as assistive technology reads it, pressed with the pointer."""

import re

from gi.repository import GLib

from .accessibility import Tree
from .waiting import PATIENCE, wait_until

# The engine's own process is on the accessibility bus under a name of its own.
ENGINE_NAME = re.compile(r"\.Sandboxed\.WebProcess-")
PAGES = "/org/a11y/webkit/accessible"

# Roles by their numbers.
BUTTON, HEADING, LINK, SWITCH, TEXT_FIELD = 43, 83, 88, 62, 79


class EngineTree(Tree):
    # WebKitGTK has no names for roles, and 2.50 crashes when it is asked for that of a column header.
    role_question = "GetRole"

    def __init__(self, bus):
        self.bus = bus


class WebContent:
    """The page that a shell shows."""

    def __init__(self, shell):
        self.shell = shell
        self.tree = EngineTree(shell.desktop.accessibility().bus)

    # Reading

    def _root(self):
        """The top of the page's tree, or None while there is no page."""
        own = {one.pid for one in self.shell.processes()}
        for name in self._bus_call("ListNames"):
            if not ENGINE_NAME.search(name):
                continue
            if self._bus_call("GetConnectionUnixProcessID", name) not in own:
                continue
            description = self.tree.bus.call(name, PAGES, "org.freedesktop.DBus.Introspectable", "Introspect")[0]
            pages = re.findall(r'<node name="([^"]+)"', description)
            if pages:
                return self.tree.node(self.tree.bus.owner(name), f"{PAGES}/{pages[-1]}")
        return None

    def _bus_call(self, method, *arguments):
        given = GLib.Variant(f"({'s' * len(arguments)})", arguments) if arguments else None
        return self.tree.bus.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", method, given)[0]

    def walk(self):
        """Every node of the page that can be seen, parents first, in the order of the page."""
        root = self._root()
        open_ends = root.children if root else []
        while open_ends:
            node = open_ends.pop(0)
            if node.visible:
                yield node
            open_ends = node.children + open_ends

    def find(self, name, role=None):
        """The first node called that, or whose name a pattern fits; None without one."""
        fits = name.fullmatch if isinstance(name, re.Pattern) else name.__eq__
        try:
            for node in self.walk():
                if fits(node.name) and role in (None, node.role):
                    return node
        except GLib.Error:
            pass  # The page was changed while it was read.
        return None

    def wait_for(self, name, role=None, within=PATIENCE):
        return wait_until(f"{name!r} is in the page", lambda: self.find(name, role), within)

    def wait_until_gone(self, name, role=None, within=PATIENCE):
        def gone():
            return self.find("Harbrook") and not self.find(name, role)

        wait_until(f"{name!r} is not in the page", gone, within)

    def texts(self):
        """Everything the page says, names and texts."""
        try:
            return "\n".join(f"{node.name}\n{node.text}" for node in self.walk())
        except GLib.Error:
            return ""

    def wait_for_text(self, *words, within=PATIENCE):
        """Waits until the page says all of that at once."""

        def said():
            texts = self.texts()
            return all(word in texts for word in words)

        wait_until(f"the page says {words}", said, within)

    # Acting

    def click(self, name, role=None):
        """Presses the left button of the pointer in the middle of what is called that."""
        spot = self.wait_for(name, role).area
        window = self.shell.window().area
        self.shell.desktop.screen.click(window.x + spot.center[0], window.y + spot.center[1])

    def press(self, name, role=None):
        """What a screen reader does to press a button or to follow a link."""
        self.wait_for(name, role).act()

    def replace_text(self, name, text):
        """Types into the field of that name, over what is in it."""
        self.click(name, TEXT_FIELD)
        screen = self.shell.desktop.screen
        screen.press("ctrl+a")
        screen.tool("type", "--delay", "15", text)
        field = self.wait_for(name, TEXT_FIELD)
        wait_until(f"{name} holds {text!r}", lambda: field.text == text)
