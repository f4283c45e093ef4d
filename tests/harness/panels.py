"""Real panels, as they come with their desktops, along the upper edge of the screen."""

from pathlib import Path

from Xlib import X, error

from .processes import end
from .tray import WATCHER
from .waiting import wait_until
from .x11 import Rectangle

# Below the folder that bears the name of the machine's kind.
XFCONFD = next(map(str, Path("/usr/lib").glob("*/xfce4/xfconf/xfconfd")), "xfconfd")

XFCE_SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
    </property>
    <property name="plugin-2" type="string" value="systray"/>
  </property>
</channel>
"""

LXQT_SETTINGS = """panels=panel1

[panel1]
alignment=-1
animation-duration=0
desktop=0
hidable=false
iconSize=22
lineCount=1
lockPanel=false
panelSize=32
plugins=spacer, statusnotifier
position=Top
reserve-space=true
width=100
width-percent=true

[spacer]
alignment=Left
type=spacer
expandable=true

[statusnotifier]
alignment=Right
type=statusnotifier
"""


class Panel:
    """One panel whose only item sits in its right corner."""

    desktop_name = ""
    command = []
    settings = ("", "")
    # Of the item, seen from the upper right corner of the screen.
    item_offset = (0, 0)

    def __init__(self, desktop):
        self.desktop = desktop
        self.home = desktop.folder / "panel"
        path, text = self.settings
        file = self.home / ".config" / path
        file.parent.mkdir(parents=True)
        file.write_text(text)
        self.environment = desktop.environment | {
            "HOME": str(self.home),
            "XDG_CURRENT_DESKTOP": self.desktop_name,
            "NO_AT_BRIDGE": "1",
        }
        self.process = None

    def spawn(self, command):
        log = open(self.desktop.folder / f"{Path(command[0]).name}.log", "ab")
        with log:
            return self.desktop.spawn(command, env=self.environment, stdout=log, stderr=log)

    def start(self):
        self.process = self.spawn(self.command)
        wait_until("the panel watches", lambda: self.desktop.bus.owner(WATCHER))
        return self

    def stop(self):
        end(self.process)
        wait_until("the panel is gone", lambda: not self.desktop.bus.owner(WATCHER))

    @property
    def item(self):
        """Where the middle of the item is."""
        width = self.desktop.screen.root.get_geometry().width
        return width - self.item_offset[0], self.item_offset[1]

    def wait_for_count(self):
        """Waits until the item is shown with a count: nothing else on a panel has the badge's blue."""
        x, y = self.item
        area = Rectangle(x - 12, y - 12, 24, 24)

        def has_badge():
            colours = self.desktop.screen.picture(area).colours()
            blue = sum(count for (r, g, b), count in colours.items() if b > 180 and r < 80 and 80 < g < 150)
            return blue > 15

        wait_until("the item is in the panel", has_badge)

    def open_menu(self):
        """Opens the menu of the item and returns its window."""
        self.desktop.screen.click(*self.item, button=3)
        return wait_until("the menu is open", lambda: popups(self.desktop.screen))[0]

    def close_menu(self):
        def gone():
            self.desktop.screen.press("Escape")
            return not popups(self.desktop.screen)

        wait_until("the menu is closed", gone)
        self.desktop.screen.tool("mousemove", 300, 500)

    def choose(self, *keys):
        """Presses the keys, each once what the one before it opens is there."""
        for key in keys:
            before = len(popups(self.desktop.screen, SUBMENU))
            self.desktop.screen.press(key)
            if key == "Right":
                wait_until("the submenu is open", lambda: len(popups(self.desktop.screen, SUBMENU)) > before)
            assert self.process.poll() is None, f"the panel has ended with {self.process.returncode}"


# The least width and height.
MENU, SUBMENU = (120, 100), (60, 18)


def popups(screen, least=MENU):
    """The menus on the screen: windows that no window manager touches, and larger than a tooltip's."""
    found = []
    for window in screen.root.query_tree().children:
        try:
            attributes, size = window.get_attributes(), window.get_geometry()
        except (error.BadWindow, error.BadDrawable):
            continue
        is_shown = attributes.map_state == X.IsViewable and attributes.override_redirect
        if is_shown and size.width > least[0] and size.height > least[1]:
            found.append(Rectangle(size.x, size.y, size.width, size.height))
    return found


class XfcePanel(Panel):
    desktop_name = "XFCE"
    command = ["xfce4-panel", "--disable-wm-check"]
    settings = ("xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", XFCE_SETTINGS)
    item_offset = (12, 13)

    def start(self):
        if not self.desktop.bus.owner("org.xfce.Xfconf"):
            self.spawn([XFCONFD])
            wait_until("the settings are there", lambda: self.desktop.bus.owner("org.xfce.Xfconf"))
        return super().start()


class LxqtPanel(Panel):
    desktop_name = "LXQt"
    command = ["lxqt-panel"]
    settings = ("lxqt/panel.conf", LXQT_SETTINGS)
    item_offset = (16, 15)
