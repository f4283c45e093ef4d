"""Windows, pixels and input of an X display."""

import struct
import subprocess
import zlib
from dataclasses import dataclass

from Xlib import X, Xatom, error
from Xlib.display import Display
from Xlib.protocol import event


@dataclass(frozen=True)
class Picture:
    """Pixels of the screen: four bytes each, blue, green, red and one unused."""

    width: int
    height: int
    data: bytes

    def pixel(self, x, y):
        """The colour there as (red, green, blue)."""
        at = (y * self.width + x) * 4
        blue, green, red = self.data[at : at + 3]
        return red, green, blue

    def colours(self, step=1):
        """How often each colour occurs, looking at every step-th pixel of every step-th row."""
        count = {}
        for y in range(0, self.height, step):
            for x in range(0, self.width, step):
                colour = self.pixel(x, y)
                count[colour] = count.get(colour, 0) + 1
        return count

    def save(self, path):
        """Writes a PNG file."""
        rows = bytearray()
        for y in range(self.height):
            row = self.data[y * self.width * 4 : (y + 1) * self.width * 4]
            rows.append(0)
            rgb = bytearray(self.width * 3)
            rgb[0::3], rgb[1::3], rgb[2::3] = row[2::4], row[1::4], row[0::4]
            rows += rgb

        def chunk(kind, body):
            return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(
            b"\x89PNG\r\n\x1a\n"
            + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(bytes(rows), 6))
            + chunk(b"IEND", b"")
        )


@dataclass(frozen=True)
class Rectangle:
    x: int
    y: int
    width: int
    height: int

    @property
    def center(self):
        return self.x + self.width // 2, self.y + self.height // 2


class Screen:
    """A connection of the test's own to the display."""

    def __init__(self, name):
        self.name = name
        self.display = Display(name)
        self.root = self.display.screen().root

    def close(self):
        self.display.close()

    def atom(self, name):
        return self.display.intern_atom(name)

    # Windows

    def windows(self):
        """The managed windows that are visible, oldest first."""
        listed = self.root.get_full_property(self.atom("_NET_CLIENT_LIST"), Xatom.WINDOW)
        found = [Window(self, number) for number in (listed.value if listed else [])]
        return [window for window in found if window.visible]

    def active_window(self):
        active = self.root.get_full_property(self.atom("_NET_ACTIVE_WINDOW"), Xatom.WINDOW)
        return active.value[0] if active and active.value else 0

    # Pixels

    def picture(self, area=None):
        size = self.root.get_geometry()
        area = area or Rectangle(0, 0, size.width, size.height)
        x, y = max(area.x, 0), max(area.y, 0)
        width = min(area.x + area.width, size.width) - x
        height = min(area.y + area.height, size.height) - y
        image = self.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF)
        return Picture(width, height, image.data)

    def pixel(self, x, y):
        return self.picture(Rectangle(x, y, 1, 1)).pixel(0, 0)

    # Input

    def tool(self, *arguments):
        """xdotool, which knows the names of keys and where they are on the keyboard."""
        done = subprocess.run(
            ["xdotool", *map(str, arguments)],
            env={"DISPLAY": self.name, "PATH": "/usr/bin:/bin"},
            capture_output=True,
            text=True,
            timeout=20,
        )
        assert done.returncode == 0, done.stderr
        return done.stdout.strip()

    def press(self, *keys):
        self.tool("key", "--clearmodifiers", *keys)

    def click(self, x, y, button=1):
        self.tool("mousemove", x, y, "click", button)


class Window:
    def __init__(self, screen, number):
        self.screen = screen
        self.number = number
        self.handle = screen.display.create_resource_object("window", number)

    def __eq__(self, other):
        return isinstance(other, Window) and other.number == self.number

    def __hash__(self):
        return hash(self.number)

    def _property(self, name, kind=X.AnyPropertyType):
        try:
            found = self.handle.get_full_property(self.screen.atom(name), kind)
        except error.BadWindow:
            return None
        return found.value if found else None

    @property
    def visible(self):
        try:
            return self.handle.get_attributes().map_state == X.IsViewable
        except error.BadWindow:
            return False

    @property
    def pid(self):
        value = self._property("_NET_WM_PID")
        return value[0] if value else None

    @property
    def title(self):
        value = self._property("_NET_WM_NAME")
        return value.decode() if value else None

    @property
    def states(self):
        """Names such as _NET_WM_STATE_FULLSCREEN."""
        return {self.screen.display.get_atom_name(one) for one in self._property("_NET_WM_STATE") or []}

    @property
    def area(self):
        """Where the window is on the screen, frame of the window manager left out."""
        size = self.handle.get_geometry()
        corner = self.handle.translate_coords(self.screen.root, 0, 0)
        # What the server answers is where the screen's corner is, seen from the window.
        return Rectangle(-corner.x, -corner.y, size.width, size.height)

    @property
    def minimum_size(self):
        hints = self.handle.get_wm_normal_hints()
        return hints.min_width, hints.min_height

    def picture(self):
        return self.screen.picture(self.area)

    def tell_manager(self, message, *data):
        """A request to the window manager, as a pager or a task bar makes it."""
        data = (list(data) + [0] * 5)[:5]
        request = event.ClientMessage(
            window=self.handle, client_type=self.screen.atom(message), data=(32, data)
        )
        mask = X.SubstructureRedirectMask | X.SubstructureNotifyMask
        self.screen.root.send_event(request, event_mask=mask)
        self.screen.display.flush()

    def close(self):
        """As the close button of a task bar does it: the window is asked, not destroyed."""
        self.tell_manager("_NET_CLOSE_WINDOW", X.CurrentTime, 2)

    def activate(self):
        self.tell_manager("_NET_ACTIVE_WINDOW", 2, X.CurrentTime)

    def move_and_resize(self, x, y, width, height):
        all_four_from_a_pager = (2 << 12) | (0b1111 << 8) | X.NorthWestGravity
        self.tell_manager("_NET_MOVERESIZE_WINDOW", all_four_from_a_pager, x, y, width, height)

    def set_state(self, name, on=True):
        self.tell_manager("_NET_WM_STATE", int(on), self.screen.atom(name), 0, 2)
