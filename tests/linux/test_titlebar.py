"""The three buttons over the page: where they are, what they look like, what they do."""

import pytest

from harness.input_page import input_plan
from harness.waiting import wait_until
from harness.x11 import Rectangle

PLACES = {"Close": 20, "Minimize": 40, "Zoom": 60}
SIZE = 14
TOP = 27  # so that the centres lie 34 points below the window's top edge
BAND = Rectangle(0, 0, 100, 52)

NOT_MARKED = "!document.documentElement.classList.contains('fullscreen')"


@pytest.fixture
def shell(make_shell):
    return make_shell(input_plan())


def button(shell, name):
    return shell.desktop.accessibility().find(shell.pid, role="button", name=name)


def buttons(shell):
    found = {name: button(shell, name) for name in PLACES}
    return {name: node.area for name, node in found.items() if node}


def in_place(shell):
    return buttons(shell) == {name: Rectangle(x, TOP, SIZE, SIZE) for name, x in PLACES.items()}


def band(shell):
    """The picture of the top left corner of the window."""
    area = shell.window().area
    return shell.desktop.screen.picture(Rectangle(area.x, area.y, BAND.width, BAND.height))


def away_from_buttons(shell):
    shell.desktop.screen.tool("mousemove", *shell.in_window(700, 500))


def press_button(shell, name):
    shell.desktop.screen.click(*shell.in_window(PLACES[name] + SIZE // 2, TOP + SIZE // 2))


def discs(picture, scale):
    """The columns and rows of the picture where something is drawn on the canvas, as spans."""
    ground = picture.pixel(2, 2)

    def spans(marks):
        found, start = [], None
        for at, mark in enumerate([*marks, False]):
            if mark and start is None:
                start = at
            elif not mark and start is not None:
                found.append((start / scale, at / scale))
                start = None
        return found

    drawn = [
        [picture.pixel(x, y) != ground for x in range(picture.width)] for y in range(picture.height)
    ]
    columns = spans([any(row[x] for row in drawn) for x in range(picture.width)])
    rows = spans([any(row) for row in drawn])
    return columns, rows


def test_the_buttons_are_in_their_places(running):
    wait_until("all are in place", lambda: in_place(running))


@pytest.mark.parametrize("scale", [1, 2])
@pytest.mark.parametrize("dark", [False, True], ids=["light", "dark"])
def test_the_buttons_are_seen_in_their_places(make_desktop, make_shell, scale, dark):
    desktop = make_desktop(size=(2800, 1900)) if scale == 2 else make_desktop()
    plan = input_plan()
    shell = make_shell(plan, desktop=desktop, environment={"GDK_SCALE": str(scale)})
    shell.prefer_dark(dark)
    shell.start()
    shell.server.wait_for_page()
    away_from_buttons(shell)

    def as_drawn():
        area = shell.window().area
        corner = Rectangle(area.x, area.y, BAND.width * scale, BAND.height * scale)
        return discs(shell.desktop.screen.picture(corner), scale)

    expected = ([(x, x + SIZE) for x in PLACES.values()], [(TOP, TOP + SIZE)])
    wait_until(f"three discs in place, not {as_drawn()}", lambda: as_drawn() == expected)


def test_close_hides_the_window(running):
    press_button(running, "Close")
    running.wait_until_hidden()
    assert running.program.poll() is None


def test_miniaturize_and_back(running):
    window = running.window()
    press_button(running, "Minimize")
    wait_until("it is minimized", lambda: "_NET_WM_STATE_HIDDEN" in window.states)
    window.activate()
    wait_until("it is back", lambda: window.visible)
    wait_until("all are in place", lambda: in_place(running))


def test_zoom_there_and_back(running):
    before = running.window().area
    press_button(running, "Zoom")
    wait_until("it is maximized", lambda: "_NET_WM_STATE_MAXIMIZED_VERT" in running.window().states)
    wait_until("it fills the screen", lambda: running.viewport()[0] == 1920)
    wait_until("all are in place", lambda: in_place(running))
    press_button(running, "Zoom")
    wait_until("it has its own size", lambda: running.window().area == before)
    wait_until("all are in place again", lambda: in_place(running))


def test_the_pointer_brings_out_the_signs(running):
    away_from_buttons(running)
    plain = band(running)
    area = running.window().area
    running.desktop.screen.tool("mousemove", area.x + 27, area.y + 34)

    def is_red():
        red, green, blue = band(running).pixel(23, 34)
        return red > 1.5 * green and red > 1.5 * blue

    wait_until("close is red", is_red)
    wait_until("zoom shows its sign", lambda: band(running).pixel(64, 34) != plain.pixel(64, 34))
    away_from_buttons(running)
    wait_until("all is as before", lambda: band(running).data == plain.data)


def test_a_window_without_the_keyboard_looks_different(running):
    away_from_buttons(running)
    active = band(running)
    other = running.desktop.spawn(["xmessage", "-geometry", "200x100+0+0", "another window"])
    wait_until("it looks different", lambda: band(running).pixel(27, 30) != active.pixel(27, 30))
    other.terminate()
    wait_until("it looks as before", lambda: band(running).data == active.data)


def test_the_keyboard_reaches_them(running):
    window = running.window()
    screen = running.desktop.screen
    wait_until("it has the keyboard", lambda: screen.active_window() == window.number)
    screen.press("F6", "Tab", "space")
    wait_until("it is minimized", lambda: "_NET_WM_STATE_HIDDEN" in window.states)


def test_assistive_technology_can_press_them(running):
    button(running, "Close").act()
    running.wait_until_hidden()


def test_the_rest_of_the_band_is_the_pages(running):
    area = running.window().area
    # Beside, above, below and between the buttons.
    for x, y in [(10, 34), (36, 34), (47, 20), (67, 45), (90, 34), (600, 6)]:
        running.server.evaluate("happened.length = 0")
        running.desktop.screen.click(area.x + x, area.y + y)
        wait_until(f"a click at {x},{y}", lambda: running.server.evaluate("happened") == ["press", "click"])


def test_a_new_title_leaves_them_where_they_are(running):
    running.server.evaluate("post({k: 'title', v: 'A much longer title than before'})")
    wait_until("it has the title", lambda: running.window().title == "A much longer title than before")
    assert in_place(running)


def test_full_screen_marks_the_page_and_takes_the_buttons_away(running):
    window = running.window()
    wait_until("all are in place", lambda: in_place(running))
    window.set_state("_NET_WM_STATE_FULLSCREEN")
    wait_until("the page is marked", lambda: not running.server.evaluate(NOT_MARKED))
    wait_until("it fills the screen", lambda: running.viewport() == (1920, 1200))
    wait_until("no button is left", lambda: not buttons(running))
    window.set_state("_NET_WM_STATE_FULLSCREEN", on=False)
    wait_until("the mark is gone", lambda: running.server.evaluate(NOT_MARKED))
    wait_until("all are in place", lambda: in_place(running))
    assert running.viewport() == (1320, 860)


def test_three_hundred_steps_of_a_resize_never_show_them_elsewhere(running):
    window = running.window()
    running.place(40, 40, 1100, 700)
    away_from_buttons(running)
    # The page is repainted for every size. What it shows there must not matter.
    running.server.evaluate("document.body.style.background = '#406080', document.body.innerHTML = ''; true")
    spots = [(x + 3, TOP + 3) for x in PLACES.values()] + [(x + 7, TOP + 10) for x in PLACES.values()]
    ground = [(10, 34), (37, 34), (57, 34), (80, 34), (27, 20), (27, 47)]

    def seen():
        picture = running.desktop.screen.picture(Rectangle(40, 40, BAND.width, BAND.height))
        return tuple(picture.pixel(*spot) for spot in spots + ground)

    wait_until("the page is painted", lambda: set(seen()[len(spots) :]) == {(0x40, 0x60, 0x80)})
    expected = seen()
    assert (0x40, 0x60, 0x80) not in expected[: len(spots)]
    others = {}
    for step in range(300):
        size = abs((step * 2) % 300 - 150)
        window.move_and_resize(40, 40, 1100 + 4 * size, 700 + 3 * size)
        for _ in range(3):
            if (now := seen()) != expected:
                others[step] = now
    assert not others
    wait_until("all are in place", lambda: in_place(running))
