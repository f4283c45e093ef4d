"""Where pictures are taken on Linux: an X11 desktop, virtual or the one there is."""

from contextlib import contextmanager

from harness.desktop import Desktop
from harness.screenshots import ScreenshotMode

from . import camera

SCREEN = (1600, 1000)  # at scale 1


class Place:
    def __init__(self, made):
        self._made = made
        self.environment = made.environment
        self.folder = made.folder

    def dress(self, home, appearance, scale):
        """Has a program with that home look so: what that adds to its environment and its arguments."""
        settings = home / ".config" / "gtk-4.0" / "settings.ini"
        settings.parent.mkdir(parents=True)
        dark = int(appearance == "dark")
        # Nothing moves or blinks in a picture.
        settings.write_text(
            f"[Settings]\ngtk-application-prefer-dark-theme={dark}\ngtk-enable-animations=0\ngtk-cursor-blink=0\n"
        )
        return {"GDK_SCALE": str(scale), "GSETTINGS_BACKEND": "memory"}, []

    def screenshot_mode(self, data):
        return ScreenshotMode(self._made.bus, data)

    def take(self, window, path):
        camera.take(self._made.screen, window, path)


@contextmanager
def desktop(scale, display=None):
    """A desktop for sessions of that scale: a virtual one, or the display that is named."""
    made = Desktop(size=[side * scale for side in SCREEN], display=display)
    try:
        if not display:
            camera.invite_shadows(made.screen)
        yield Place(made)
    finally:
        made.close()
