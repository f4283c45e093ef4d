"""What people are used to from any window of a Linux desktop: zooming, reloading, full screen, clicks on a title bar."""

import pytest

from Xlib import X

from harness.input_page import input_plan
from harness.waiting import stays, wait_until

STRIP = (700, 20)
SETTINGS = "[Settings]\ngtk-titlebar-double-click={double}\ngtk-titlebar-middle-click={middle}\n"


@pytest.fixture
def shell(make_shell):
    return make_shell(input_plan())


def unmanaged(screen):
    """The windows on the screen that no window manager touches, such as menus and tooltips."""
    shown = [window.get_attributes() for window in screen.root.query_tree().children]
    return [one for one in shown if one.map_state == X.IsViewable and one.override_redirect]


def press(shell, *keys):
    shell.desktop.screen.press(*keys)


def scale(shell):
    """How much larger than usual the page is shown."""
    return shell.server.evaluate("1320 / innerWidth")


def wait_for_scale(shell, expected):
    wait_until(f"the page is shown at {expected}", lambda: abs(scale(shell) - expected) < 0.01)


def test_the_page_is_zoomed_by_keys_and_stays_so(shell):
    shell.start()
    shell.server.wait_for_page()
    shell.window()
    wait_for_scale(shell, 1)
    press(shell, "ctrl+plus")
    wait_for_scale(shell, 1.1)
    press(shell, "ctrl+equal")
    wait_for_scale(shell, 1.25)
    press(shell, "ctrl+minus")
    wait_for_scale(shell, 1.1)
    shell.quit()

    shell.start()
    shell.switchboard.server(1).wait_for_page()
    wait_for_scale(shell, 1.1)
    press(shell, "ctrl+0")
    wait_for_scale(shell, 1)
    shell.quit()

    shell.start()
    shell.switchboard.server(2).wait_for_page()
    wait_for_scale(shell, 1)


@pytest.mark.parametrize("saved", ["zoom=1000", "zoom=-1", "zoom=many", "nonsense"])
def test_a_saved_zoom_that_makes_no_sense_counts_for_nothing(shell, saved):
    state = shell.home / ".local/state/harbrook"
    state.mkdir(parents=True)
    (state / "page.ini").write_text(f"[Page]\n{saved}\n")
    shell.start()
    shell.server.wait_for_page()
    wait_for_scale(shell, 1)


def test_f5_loads_the_page_again(running):
    press(running, "F5")
    running.server.wait_for_page(2)


def test_f11_is_full_screen_and_back_and_the_page_hears_of_it_first(running):
    running.server.evaluate(
        "window.widths = []; new MutationObserver(() => widths.push(innerWidth))"
        ".observe(document.documentElement, {attributeFilter: ['class']}); true"
    )
    marked = "document.documentElement.classList.contains('fullscreen')"
    before = running.viewport()
    press(running, "F11")
    wait_until("the page is marked", lambda: running.server.evaluate(marked))
    wait_until("it fills the screen", lambda: running.viewport() == (1920, 1200))
    # The mark was there before the new size was.
    assert running.server.evaluate("widths") == [before[0]]
    press(running, "F11")
    wait_until("the window has its size again", lambda: running.viewport() == before)
    wait_until("the mark is gone", lambda: not running.server.evaluate(marked))


def test_the_buttons_say_what_they_do(running):
    screen = running.desktop.screen
    before = len(unmanaged(screen))
    screen.tool("mousemove", *running.in_window(45, 32), "mousemove", *running.in_window(47, 34))
    wait_until("a tooltip is shown", lambda: len(unmanaged(screen)) > before)


@pytest.mark.parametrize("setting, minimized", [("toggle-maximize", False), ("minimize", True), ("none", False)])
def test_a_double_click_on_the_header_does_what_the_desktop_says(shell, setting, minimized):
    settings = shell.home / ".config/gtk-4.0/settings.ini"
    settings.parent.mkdir(parents=True)
    settings.write_text(SETTINGS.format(double=setting, middle="none"))
    shell.start()
    shell.server.wait_for_page()
    before = shell.viewport()
    x, y = shell.in_window(*STRIP)
    shell.desktop.screen.tool("mousemove", x, y, "click", "--repeat", 2, "--delay", 60, 1)
    if setting == "none":
        stays("nothing happens", lambda: shell.windows() and shell.viewport() == before, 1)
    elif minimized:
        shell.wait_until_hidden()
    else:
        wait_until("it is maximized", lambda: shell.viewport()[0] > before[0])


def test_a_middle_click_on_the_header_does_what_the_desktop_says(shell):
    settings = shell.home / ".config/gtk-4.0/settings.ini"
    settings.parent.mkdir(parents=True)
    settings.write_text(SETTINGS.format(double="none", middle="minimize"))
    shell.start()
    shell.server.wait_for_page()
    shell.desktop.screen.click(*shell.in_window(700, 300), button=2)
    stays("a click on the page is the page's", shell.windows, 0.5)
    shell.desktop.screen.click(*shell.in_window(*STRIP), button=2)
    shell.wait_until_hidden()
