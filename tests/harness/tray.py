"""The test's end of a status item: a watcher that it registers with, and what a panel reads of it."""

import json
from dataclasses import dataclass, field

from gi.repository import GLib

from .bus import Bus
from .waiting import PATIENCE, wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
ITEM_PATH = "/StatusNotifierItem"

WATCHER_DESCRIPTION = f"""
<node>
  <interface name="{WATCHER}">
    <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
    <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
    <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
    <property name="ProtocolVersion" type="i" access="read"/>
  </interface>
</node>"""


class Watcher:
    """Comes with arrive(), goes with leave(), and refuses as many registrations as it is told to."""

    def __init__(self, desktop):
        self.bus = Bus(desktop.bus.address)
        self.registrations = []
        self.refusals = 0
        properties = {
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0),
        }
        self.bus.export("/StatusNotifierWatcher", WATCHER_DESCRIPTION, self._answer, properties)

    def _answer(self, method, arguments):
        if method == "RegisterStatusNotifierItem":
            self.registrations.append(arguments[0])
            if len(self.registrations) <= self.refusals:
                raise RuntimeError("not now")
        return None

    def arrive(self):
        self.bus.take_name(WATCHER)
        return self

    def leave(self):
        self.bus.drop_name(WATCHER)

    def close(self):
        self.bus.close()

    def item(self, number=0, within=PATIENCE):
        """The item that registered as the number-th."""
        wait_until(f"registration {number}", lambda: len(self.registrations) > number, within)
        return Item(self.bus, self.registrations[number])


@dataclass
class Row:
    number: int
    properties: dict
    children: list = field(default_factory=list)

    @property
    def label(self):
        """As it is shown: a single underscore would mark a mnemonic."""
        return self.properties.get("label", "").replace("__", "_")

    @property
    def enabled(self):
        return self.properties.get("enabled", True)

    def outline(self):
        """A separator as "-", a disabled row in parentheses, a submenu as a pair, a shortcut in brackets."""
        if self.properties.get("type") == "separator":
            return "-"
        text = self.label if self.enabled else f"({self.label})"
        for press in self.properties.get("shortcut", []):
            text += f" [{'+'.join(press)}]"
        return (text, [row.outline() for row in self.children]) if "children-display" in self.properties else text

    def find(self, *labels):
        """The row that these labels lead to, each beginning as given."""
        row = self
        for label in labels:
            row = next(child for child in row.children if child.label.startswith(label))
        return row


class Item:
    def __init__(self, bus, name):
        self.bus = bus
        self.name = name
        self.menu = Menu(bus, name, self.property("Menu"))

    def property(self, which):
        return self.bus.property(self.name, ITEM_PATH, ITEM, which)

    def properties(self):
        arguments = GLib.Variant("(s)", (ITEM,))
        return self.bus.call(self.name, ITEM_PATH, "org.freedesktop.DBus.Properties", "GetAll", arguments)[0]

    def activate(self):
        self.bus.call(self.name, ITEM_PATH, ITEM, "Activate", GLib.Variant("(ii)", (5, 5)))

    def signals(self):
        """All signals of item and menu from now on."""
        return self.bus.signals(sender=self.name, path=ITEM_PATH), self.menu.signals()


class Menu:
    def __init__(self, bus, name, path):
        self.bus = bus
        self.name = name
        self.path = path

    def call(self, method, kinds="()", *arguments):
        return self.bus.call(self.name, self.path, MENU, method, GLib.Variant(kinds, arguments))

    def property(self, which):
        return self.bus.property(self.name, self.path, MENU, which)

    def signals(self):
        return self.bus.signals(sender=self.name, path=self.path)

    def layout(self, parent=0, depth=-1, names=()):
        def row(data):
            number, properties, children = data
            return Row(number, properties, [row(child) for child in children])

        return row(self.call("GetLayout", "(iias)", parent, depth, list(names))[1])

    def revision(self):
        return self.call("GetLayout", "(iias)", 0, 0, [])[0]

    def outline(self):
        return self.layout().outline()[1]

    def wait_for_outline(self, fits, within=PATIENCE):
        def read():
            outline = self.outline()
            return outline if fits(outline) else None

        return wait_until("a menu that fits", read, within)

    def about_to_show(self, number=0):
        return self.call("AboutToShow", "(i)", number)[0]

    def event(self, number, event):
        self.call("Event", "(isvu)", number, event, GLib.Variant("i", 0), 0)

    def click(self, *labels):
        """Chooses a row of the menu as it is."""
        self.event(self.layout().find(*labels).number, "clicked")


def project(name, ports=(), running=True, **more):
    return {"name": name, "path": f"/projects/{name}", "running": running, "ports": list(ports), **more}


def state(*projects, postgres=0, redis=0, containers=0):
    """What the server answers under api/state."""
    stats = {"running": 0, "postgres": postgres, "redis": redis, "containers": containers}
    return {"projects": list(projects), "stats": stats}


def answered(*projects, **counts):
    """That state as an answer of the scripted server."""
    return {"body": json.dumps(state(*projects, **counts))}
