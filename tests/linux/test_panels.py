"""The status item in real panels: Xfce's, and LXQt's as the strict one."""

import pytest

from harness.panels import LxqtPanel, XfcePanel, popups
from harness.server import Plan
from harness.shell import REPOSITORY
from harness.tray import answered, project
from harness.waiting import stays, wait_until

SHOP = project("shop_front", [3000], appRunning=True)
BLOG = project("blog")

# The first project is the second row that can be chosen; "Show in Harbrook" and "Stop" follow its port.
FIRST_PROJECT = ("Down", "Down")
STOP = (*FIRST_PROJECT, "Right", "Down", "Down", "Return")


@pytest.fixture(params=[XfcePanel, LxqtPanel], ids=["Xfce", "LXQt"])
def panel(request, make_desktop):
    return request.param(make_desktop(size=(1280, 800))).start()


@pytest.fixture
def shell(make_shell, panel):
    shell = make_shell(
        Plan(answers={"/api/state": answered(SHOP)}),
        desktop=panel.desktop,
        environment={"XDG_CURRENT_DESKTOP": panel.desktop_name},
    )
    shell.start()
    shell.server.wait_for_page()
    panel.wait_for_count()
    return shell


def wait_for_blog(shell):
    where = "#/p/%2Fprojects%2Fblog"
    wait_until("the project's page is shown", lambda: shell.server.evaluate("location.hash") == where)


def take_picture(panel, name):
    panel.desktop.screen.picture().save(
        REPOSITORY / "build" / "test-pictures" / f"{name}-{panel.desktop_name.lower()}.png"
    )


def stops(shell):
    return len(shell.server.requests("/api/project/stop"))


def test_a_row_of_a_submenu_is_chosen_and_acts(panel, shell):
    menu = panel.open_menu()
    assert menu.y < 60
    take_picture(panel, "menu")
    panel.choose(*STOP)
    wait_until("the server is asked", lambda: stops(shell) == 1)
    assert not popups(panel.desktop.screen)


def test_the_open_menu_stays_usable_across_polls(panel, shell):
    menu = panel.open_menu()
    panel.choose(*FIRST_PROJECT, "Right")
    for projects in [(BLOG, SHOP), (BLOG,), (BLOG, SHOP)]:
        shell.server.answer("/api/state", **answered(*projects))
        shell.server.wait_for_polls(2)
        assert menu in popups(panel.desktop.screen)
    take_picture(panel, "menu-across-polls")
    panel.choose("Down", "Down", "Return")
    wait_until("the server is asked", lambda: stops(shell) == 1)


def test_the_next_opening_shows_the_new_menu(panel, shell):
    before = panel.open_menu()
    heard = panel.desktop.bus.signals(interface="com.canonical.dbusmenu", member="LayoutUpdated")
    shell.server.answer("/api/state", **answered(BLOG, SHOP))
    shell.server.wait_for_polls(2)
    assert before in popups(panel.desktop.screen)
    assert not heard
    panel.close_menu()
    # At once from a panel that tells; from one that does not, when it is surely closed.
    wait_until("the panel hears of it", lambda: heard, within=40)
    after = panel.open_menu()
    take_picture(panel, "menu-reopened")
    assert after.height > before.height
    panel.choose(*FIRST_PROJECT, "Right", "Return")
    wait_for_blog(shell)


def test_a_menu_that_is_opened_again_at_once_shows_the_new_one_too(panel, shell):
    screen = panel.desktop.screen
    before = panel.open_menu()
    shell.server.answer("/api/state", **answered(BLOG, SHOP))
    shell.server.wait_for_polls(2)
    picture = screen.picture(before).data
    panel.close_menu()
    after = panel.open_menu()
    wait_until("it is another menu", lambda: screen.picture(after).data != picture)
    panel.choose(*FIRST_PROJECT, "Right", "Return")
    wait_for_blog(shell)


def test_a_left_click_opens_the_window(panel, shell):
    shell.window().close()
    shell.wait_until_hidden()
    panel.desktop.screen.click(*panel.item)
    shell.window()


def test_the_item_comes_back_with_the_panel(panel, shell):
    for _ in range(2):
        panel.stop()
        panel.start()
        panel.wait_for_count()
    take_picture(panel, "panel-restarted")
    panel.open_menu()
    panel.choose(*STOP)
    wait_until("the server is asked", lambda: stops(shell) == 1)


def test_a_menu_that_nothing_changes_stays_open(panel, shell):
    menu = panel.open_menu()
    stays("the menu is open", lambda: menu in popups(panel.desktop.screen), 4)
