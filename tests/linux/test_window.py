"""The window: size, frame, canvas."""

import pytest

from harness.page import page
from harness.server import Plan
from harness.waiting import wait_until

LIGHT = (0xF3, 0xF4, 0xF0)
DARK = (0x16, 0x18, 0x16)


def test_the_page_is_exactly_1320_by_860_at_the_first_start(running):
    assert running.viewport() == (1320, 860)


def test_the_window_is_called_harbrook(running):
    assert running.window().title == "Harbrook"


def test_the_window_opens_in_the_middle_of_the_screen(running):
    area = running.window().area
    assert abs(area.center[0] - 960) <= 2
    assert abs(area.center[1] - 600) <= 20  # panels and frames of the window manager


def test_the_window_is_active_when_it_opens(running):
    window = running.window()
    wait_until("it is active", lambda: running.desktop.screen.active_window() == window.number)


def test_the_page_cannot_be_made_smaller_than_1040_by_680(running):
    running.window().move_and_resize(50, 50, 300, 200)
    wait_until("it has the smallest size", lambda: running.viewport() == (1040, 680))


def test_size_and_place_are_remembered(shell):
    shell.start()
    shell.server.wait_for_page()
    window = shell.place(120, 90, 1200, 800)
    before = window.area
    shell.quit()

    shell.start()
    shell.switchboard.server(1).wait_for_page()
    wait_until("it has the old size", lambda: shell.viewport() == (1200, 800))
    after = shell.window().area
    assert (after.x, after.y) == (before.x, before.y)


def test_what_was_remembered_but_is_damaged_does_no_harm(shell):
    shell.start()
    shell.server.wait_for_page()
    shell.place(120, 90, 1200, 800)
    shell.quit()
    state = [one for one in (shell.home / ".local" / "state").rglob("*") if one.is_file()]
    assert state
    for one in state:
        one.write_bytes(b"\xff[HarbrookMain\nframe=what?\n\x00")

    shell.start()
    shell.switchboard.server(1).wait_for_page()
    assert shell.viewport() == (1320, 860)


@pytest.mark.parametrize("dark, canvas", [(False, LIGHT), (True, DARK)], ids=["light", "dark"])
def test_the_canvas_is_behind_the_page_that_is_not_there_yet(make_shell, dark, canvas):
    shell = make_shell(Plan([]))
    shell.prefer_dark(dark)
    shell.start()
    shell.wait_for_text("Starting Harbrook…")
    area = shell.window().area
    for x, y in [(area.width // 2, area.height // 4), (20, area.height - 20), (area.width - 20, area.height // 2)]:
        wait_until(f"canvas at {x},{y}", lambda: shell.desktop.screen.pixel(area.x + x, area.y + y) == canvas, 5)


@pytest.mark.parametrize("dark, canvas", [(False, LIGHT), (True, DARK)], ids=["light", "dark"])
def test_a_page_without_a_background_of_its_own_stands_on_the_canvas(make_shell, dark, canvas):
    shell = make_shell()
    shell.prefer_dark(dark)
    shell.start()
    shell.server.wait_for_page()
    area = shell.window().area
    middle = area.center
    wait_until("the canvas shows", lambda: shell.desktop.screen.pixel(*middle) == canvas)


@pytest.mark.parametrize("dark, canvas", [(False, LIGHT), (True, DARK)], ids=["light", "dark"])
def test_nothing_else_flashes_up_before_the_page(make_shell, dark, canvas):
    painted = (0x40, 0x60, 0x80)
    shell = make_shell(Plan(answers={"/": {"body": page(head="<style>html{background:#406080}</style>")}}))
    shell.prefer_dark(dark)
    screen = shell.desktop.screen
    spot = (960, 400)  # inside the window, beside the label
    behind = screen.pixel(*spot)
    seen = [behind]
    shell.start()

    def page_is_painted():
        colour = screen.pixel(*spot)
        if colour != seen[-1]:
            seen.append(colour)
        return colour == painted

    wait_until("the page is painted", page_is_painted)
    # Between the canvas and the page the engine may mix the two, but not anything brighter or darker.
    assert set(seen) <= {behind, canvas, painted}, seen
