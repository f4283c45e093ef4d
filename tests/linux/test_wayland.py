"""The program in a Wayland session, where a window neither knows nor chooses its place."""

import pytest

from harness import wayland
from harness.input_page import input_page
from harness.server import Plan
from harness.waiting import wait_until

CANVAS = (0xF3, 0xF4, 0xF0)
SCREEN = (wayland.WIDTH, wayland.HEIGHT)
PAGE = input_page().replace("</head>", "<style>textarea { display: none }</style></head>")
HEADER = (700, 26)
# The centres of the title-bar buttons.
CLOSE, MINIMIZE, ZOOM = (27, 34), (47, 34), (67, 34)


@pytest.fixture
def shell(make_shell, desktop):
    wayland.start_compositor(desktop)
    return make_shell(Plan(answers={"/": {"body": PAGE}}), desktop, environment=wayland.ENVIRONMENT)


def area(shell):
    """Where the window is on the screen; None while it is not seen."""
    return wayland.find_area(shell.desktop.screen.picture(), CANVAS)


def corner(shell):
    window = area(shell)
    return window and (window.x, window.y)


@pytest.fixture
def running(shell):
    shell.start()
    shell.server.wait_for_page()
    wait_until("the window is seen", lambda: area(shell))
    return shell


def on_screen(shell, place):
    window = area(shell)
    return window.x + place[0], window.y + place[1]


def click(shell, place):
    shell.desktop.screen.click(*on_screen(shell, place))


def double_click(shell, place):
    x, y = on_screen(shell, place)
    shell.desktop.screen.tool("mousemove", x, y, "click", "--repeat", 2, "--delay", 60, 1)


def test_a_right_click_on_the_header_asks_for_the_windows_menu(shell):
    shell.environment["WAYLAND_DEBUG"] = "1"
    shell.start()
    shell.server.wait_for_page()
    wait_until("the window is seen", lambda: area(shell))
    x, y = on_screen(shell, HEADER)
    shell.desktop.screen.click(x, y + 300, button=3)
    shell.desktop.screen.press("Escape")
    assert "show_window_menu" not in shell.output
    shell.desktop.screen.click(x, y, button=3)
    wait_until("the compositor is asked", lambda: "show_window_menu" in shell.output)


def test_the_window_has_its_size_and_its_buttons(running):
    assert running.viewport() == (1320, 860)
    window = area(running)
    assert (window.width, window.height) == (1320, 860)
    picture = running.desktop.screen.picture(window)
    assert all(picture.pixel(*button) != CANVAS for button in (CLOSE, MINIMIZE, ZOOM))
    assert all(picture.pixel(x, 34) == CANVAS for x in (37, 57, 77))


def test_the_header_drags_the_window(running):
    before = area(running)
    screen = running.desktop.screen
    screen.tool("mousemove", *on_screen(running, HEADER), "mousedown", 1)
    wait_until("the page has the press", lambda: running.server.evaluate("happened") == ["press"])
    for _ in range(10):
        screen.tool("mousemove_relative", "--", 6, 4)
    screen.tool("mouseup", 1)
    wait_until("the window followed", lambda: corner(running) == (before.x + 60, before.y + 40))


def test_a_double_click_on_the_header_zooms_and_the_next_start_remembers(running):
    double_click(running, HEADER)
    wait_until("it fills the screen", lambda: running.viewport() == SCREEN)
    running.quit()
    running.start()
    second = running.switchboard.server(1)
    second.wait_for_page()
    wait_until("it fills the screen again", lambda: tuple(second.evaluate("[innerWidth, innerHeight]")) == SCREEN)


def test_a_closed_window_comes_back_with_a_second_start(running):
    click(running, CLOSE)
    wait_until("the window is gone", lambda: area(running) is None)
    first = running.program
    running.start()
    assert running.wait() == 0
    wait_until("the window is back", lambda: area(running))
    assert first.poll() is None
    assert len(running.switchboard.servers) == 1


def test_a_question_of_the_page_is_answered(running):
    running.server.evaluate("setTimeout(() => happened.push(confirm('Stop it?')), 0); true")
    running.wait_for_text("Stop it?")
    running.desktop.screen.press("Return")
    wait_until("the page has the answer", lambda: running.server.evaluate("happened") == [True])


def test_quitting_leaves_nothing(running):
    running.quit()
    running.wait_until_ended()
