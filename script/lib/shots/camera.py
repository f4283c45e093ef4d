"""Pictures of X11 windows, with what is transparent about them: their corners and their shadow."""

import gi

gi.require_version("Gdk", "4.0")
from gi.repository import Gdk, GLib  # noqa: E402
from Xlib import X, Xatom  # noqa: E402
from Xlib.ext import composite  # noqa: E402

DEPTH_WITH_TRANSPARENCY = 32


def invite_shadows(screen):
    """Makes a bare display one on which programs draw rounded corners and a shadow.

    Keeps the windows' pixels off the screen, as a compositing manager does, and promises that the window
    manager knows of margins around a window. It does not, but nothing here is placed by their edges.
    """
    manager = screen.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
    manager.set_selection_owner(screen.atom("_NET_WM_CM_S0"), X.CurrentTime)
    screen.root.composite_redirect_subwindows(composite.RedirectAutomatic)
    margins = [screen.atom("_GTK_FRAME_EXTENTS")]
    screen.root.change_property(screen.atom("_NET_SUPPORTED"), Xatom.ATOM, 32, margins, X.PropModeAppend)
    screen.display.sync()


def take(screen, number, path):
    """Writes what the window with that number shows to a PNG file, whatever else is in front of it."""
    window = screen.display.create_resource_object("window", number)
    area = window.get_geometry()
    image = window.get_image(0, 0, area.width, area.height, X.ZPixmap, 0xFFFFFFFF)
    see_through = area.depth == DEPTH_WITH_TRANSPARENCY
    layout = Gdk.MemoryFormat.B8G8R8A8_PREMULTIPLIED if see_through else Gdk.MemoryFormat.B8G8R8
    data = image.data if see_through else _without_fourth_byte(image.data)
    pitch = area.width * (4 if see_through else 3)
    path.parent.mkdir(parents=True, exist_ok=True)
    texture = Gdk.MemoryTexture.new(area.width, area.height, layout, GLib.Bytes.new(data), pitch)
    if not texture.save_to_png(str(path)):
        raise OSError(f"{path} cannot be written")


def _without_fourth_byte(data):
    opaque = bytearray(len(data) // 4 * 3)
    opaque[0::3], opaque[1::3], opaque[2::3] = data[0::4], data[1::4], data[2::4]
    return bytes(opaque)
