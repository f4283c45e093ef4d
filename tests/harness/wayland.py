"""A Wayland session: a compositor in a window of an X display, where it can be seen and be given input."""

from pathlib import Path

from .waiting import NeverHappened, wait_until
from .x11 import Rectangle

SOCKET = "wayland-of-the-test"

# The size of its screen.
WIDTH, HEIGHT = 1700, 1100

BACKGROUND = (0x33, 0x66, 0x99)

# Nothing of its own on the screen, and nothing that moves by itself.
CONFIGURATION = """
[core]
idle-time=0
[shell]
panel-position=none
background-color=0xff336699
animation=none
startup-animation=none
close-animation=none
locking=false
"""

# What a shell's environment needs to be in this session and not in the X session around it.
ENVIRONMENT = {
    "GDK_BACKEND": "wayland",
    "WAYLAND_DISPLAY": SOCKET,
    "XDG_SESSION_TYPE": "wayland",
    "DISPLAY": None,
}


def start_compositor(desktop):
    configuration = desktop.folder / "weston.ini"
    configuration.write_text(CONFIGURATION)
    log = open(desktop.folder / "weston.log", "wb")
    with log:
        desktop.spawn(
            [
                "weston",
                "--backend=x11-backend.so",
                f"--width={WIDTH}",
                f"--height={HEIGHT}",
                f"--socket={SOCKET}",
                f"--config={configuration}",
            ],
            stdout=log,
            stderr=log,
        )
    socket = Path(desktop.environment["XDG_RUNTIME_DIR"]) / SOCKET
    wait_until("the compositor listens", socket.exists)
    window = wait_until("the compositor is seen", desktop.screen.windows)[0]
    # A corner is out of the way.
    corner = Rectangle(window.area.x + WIDTH - 10, window.area.y + HEIGHT - 10, 10, 10)
    wait_until("its pointer follows the display's", lambda: _enter(desktop.screen, corner))


def _enter(screen, corner):
    """Moves the display's pointer into that corner; whether the compositor's is seen there.

    From the moment on that the one enters, the other is where it is. While the compositor starts, it may miss that.
    """
    screen.tool("mousemove", 0, 0)
    screen.tool("mousemove", corner.x, corner.y)
    try:
        return wait_until("the pointer", lambda: set(screen.picture(corner).colours()) > {BACKGROUND}, within=1)
    except NeverHappened:
        return False


def find_area(picture, colour):
    """The area that is filled with that colour around the middle of the picture, or None."""
    middle_x, middle_y = picture.width // 2, picture.height // 2
    if picture.pixel(middle_x, middle_y) != colour:
        return None

    def reach(start, step, end, at):
        while start != end and at(start) == colour:
            start += step
        return start

    left = reach(middle_x, -1, -1, lambda x: picture.pixel(x, middle_y)) + 1
    right = reach(middle_x, 1, picture.width, lambda x: picture.pixel(x, middle_y))
    top = reach(middle_y, -1, -1, lambda y: picture.pixel(middle_x, y)) + 1
    bottom = reach(middle_y, 1, picture.height, lambda y: picture.pixel(middle_x, y))
    return Rectangle(left, top, right - left, bottom - top)
