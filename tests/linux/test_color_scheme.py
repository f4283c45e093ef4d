"""Window, page and status icon follow the light or dark look that the user has chosen for the desktop."""

import pytest

from harness.portal import NO_PREFERENCE, PREFERS_DARK, PREFERS_LIGHT, SettingsPortal
from harness.waiting import wait_until

CANVAS = {False: (0xF3, 0xF4, 0xF0), True: (0x16, 0x18, 0x16)}


@pytest.fixture
def make_portal(desktop):
    def make(scheme):
        make.made.append(SettingsPortal(desktop, scheme))
        return make.made[-1]

    make.made = []
    yield make
    for portal in make.made:
        portal.close()


def ink(item):
    """How bright the mark in the panel is, from 0 to 255: the middle of what is opaque."""
    side, _, data = item.property("IconPixmap")[-1]
    pixels = zip(*[iter(data)] * 4)
    bright = sorted(red for alpha, red, _green, _blue in pixels if alpha == 255)
    return bright[len(bright) // 2]


def is_dark(shell, watcher):
    """What the page believes; the canvas behind it and the icon must be of the same opinion."""
    page = shell.server.evaluate("matchMedia('(prefers-color-scheme: dark)').matches")
    canvas = shell.window().picture()
    corner = canvas.pixel(canvas.width // 2, canvas.height - 5)
    light_mark = ink(watcher.item()) > 128
    return page if (corner, light_mark) == (CANVAS[page], page) else None


def becomes(shell, watcher, dark):
    wait_until("all are dark" if dark else "all are light", lambda: is_dark(shell, watcher) is dark)


@pytest.fixture
def shell(make_shell, desktop, watcher):
    watcher.arrive()
    return make_shell(desktop=desktop)


def start(shell):
    shell.start()
    shell.server.wait_for_page()


@pytest.mark.parametrize("scheme", [NO_PREFERENCE, PREFERS_DARK, PREFERS_LIGHT])
def test_the_choice_is_followed_from_the_start(shell, watcher, make_portal, scheme):
    make_portal(scheme).arrive()
    start(shell)
    becomes(shell, watcher, dark=scheme == PREFERS_DARK)


def test_a_change_is_followed_while_running(shell, watcher, make_portal):
    portal = make_portal(PREFERS_LIGHT).arrive()
    start(shell)
    becomes(shell, watcher, dark=False)
    portal.choose(PREFERS_DARK)
    becomes(shell, watcher, dark=True)
    portal.choose(NO_PREFERENCE)
    becomes(shell, watcher, dark=False)


def test_a_portal_that_comes_late_is_heard(shell, watcher, make_portal):
    start(shell)
    becomes(shell, watcher, dark=False)
    portal = make_portal(PREFERS_DARK).arrive()
    becomes(shell, watcher, dark=True)
    portal.leave()
    portal.scheme = PREFERS_LIGHT
    portal.arrive()
    becomes(shell, watcher, dark=False)
