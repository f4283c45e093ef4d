"""The status item and the watchers that come and go."""

from pathlib import Path

from harness.server import Plan
from harness.tray import Watcher, answered, project
from harness.waiting import stays, wait_until

SHOP = project("shop", [3000])
BLOG = project("blog", [4000])


def plan(*projects, **counts):
    return Plan(answers={"/api/state": answered(*projects, **counts)})


def answer(shell, *projects, **counts):
    shell.server.answer("/api/state", **answered(*projects, **counts))


def shown_pixels(item):
    return {(width, height): data for width, height, data in item.property("IconPixmap")}


def test_what_a_panel_reads_of_the_item(make_shell, desktop, watcher):
    watcher.arrive()
    make_shell(plan(SHOP, BLOG), desktop=desktop).start()
    item = watcher.item()
    wait_until("the count is known", lambda: item.property("ToolTip")[3] == "2 running")
    found = item.properties()
    sides = [(width, height) for width, height, _ in found.pop("IconPixmap")]
    assert {(side, side) for side in (18, 22, 24, 32, 36, 44, 48)} <= set(sides)
    assert found == {
        "Category": "ApplicationStatus",
        "Id": "Harbrook",
        "Title": "Harbrook",
        "Status": "Active",
        "WindowId": 0,
        "IconThemePath": "",
        "Menu": item.menu.path,
        "ItemIsMenu": False,
        "IconName": "",
        "IconAccessibleDesc": "Harbrook",
        "OverlayIconName": "",
        "OverlayIconPixmap": [],
        "AttentionIconName": "",
        "AttentionIconPixmap": [],
        "AttentionMovieName": "",
        "ToolTip": ("", [], "Harbrook", "2 running"),
        # The count is in the picture; beside it, it would stand there twice.
        "XAyatanaLabel": "",
        "XAyatanaLabelGuide": "",
        "XAyatanaOrderingIndex": 0,
    }
    assert item.menu.property("Version") == 3
    assert item.menu.property("Status") == "normal"
    assert item.menu.property("TextDirection") == "ltr"
    assert item.menu.property("IconThemePath") == []


def test_a_watcher_that_comes_late_gets_the_item(make_shell, desktop, watcher):
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    assert watcher.registrations == []
    watcher.arrive()
    assert watcher.item().property("Id") == "Harbrook"


def test_each_watcher_that_comes_back_gets_the_item_again(make_shell, desktop, watcher):
    watcher.arrive()
    make_shell(desktop=desktop).start()
    watcher.item(0)
    for number in (1, 2, 3):
        watcher.leave()
        watcher.arrive()
        assert watcher.item(number).property("Id") == "Harbrook"
    stays("registered once with each", lambda: len(watcher.registrations) == 4, 1)


def test_a_watcher_that_takes_over_gets_the_item(make_shell, desktop, watcher):
    watcher.arrive()
    make_shell(desktop=desktop).start()
    watcher.item()
    other = Watcher(desktop)
    try:
        watcher.leave()
        other.arrive()
        other.item()
    finally:
        other.close()


def test_a_watcher_that_refuses_at_first_is_asked_again(make_shell, desktop, watcher):
    watcher.refusals = 1
    watcher.arrive()
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    wait_until("it is asked again", lambda: len(watcher.registrations) == 2)
    assert shell.output == ""


def test_a_watcher_that_always_refuses_harms_nothing(make_shell, desktop, watcher):
    watcher.refusals = 1000
    watcher.arrive()
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    watcher.item()
    assert shell.window()
    shell.quit()
    assert shell.output == ""


def test_without_a_session_bus_the_rest_works(make_shell, make_desktop):
    shell = make_shell(desktop=make_desktop(bus=False))
    shell.start()
    shell.server.wait_for_page()
    shell.server.wait_for_request("/api/state")
    shell.window()
    shell.quit()
    # The engine's own processes do complain.
    assert [line for line in shell.output.splitlines() if line and "(process:" not in line] == []


def test_the_icon_follows_the_projects_and_stays_when_the_server_is_lost(make_shell, desktop, watcher):
    watcher.arrive()
    shell = make_shell(plan(), desktop=desktop)
    shell.start()
    item = watcher.item()
    item.menu.wait_for_outline(lambda rows: "(No projects running)" in rows)
    idle = shown_pixels(item)
    assert item.property("ToolTip")[3] == ""

    _, heard = item.signals()
    changes = item.bus.signals(sender=item.name, member="NewIcon")
    answer(shell, SHOP)
    wait_until("a new icon is announced", lambda: changes)
    busy = shown_pixels(item)
    assert busy != idle
    assert item.property("ToolTip")[3] == "1 running"

    shell.server.answer("/api/state", status=500, body="lost")
    item.menu.wait_for_outline(lambda rows: "(Server not reachable)" in rows)
    assert item.property("ToolTip")[3] == ""
    # Busy still, and only the count has gone.
    assert shown_pixels(item) not in (idle, busy)


def test_a_watcher_that_knows_names_only_gets_a_name_and_the_count_as_text(make_shell, desktop, watcher):
    watcher.bus.take_name("org.ayatana.indicator.application")
    watcher.arrive()
    shell = make_shell(plan(SHOP, BLOG), desktop=desktop)
    shell.start()
    item = watcher.item()
    wait_until("the count is shown", lambda: item.property("XAyatanaLabel") == "2")
    name, folder = item.property("IconName"), Path(item.property("IconThemePath"))
    assert list(folder.glob(f"hicolor/*/apps/{name}.svg"))

    labels = item.bus.signals(sender=item.name, member="XAyatanaNewLabel")
    answer(shell, SHOP)
    wait_until("the new count is announced", lambda: [arguments for _, _, arguments in labels] == [("1", "1")])

    watcher.leave()
    watcher.bus.drop_name("org.ayatana.indicator.application")
    watcher.arrive()
    again = watcher.item(1)
    assert (again.property("IconName"), again.property("XAyatanaLabel")) == ("", "")


def test_a_click_on_the_icon_opens_the_window(make_shell, desktop, watcher):
    watcher.arrive()
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    item = watcher.item()
    shell.window().close()
    shell.wait_until_hidden()
    item.activate()
    shell.window()


def test_polls_that_change_nothing_put_nothing_on_the_bus(make_shell, desktop, watcher):
    watcher.arrive()
    shell = make_shell(plan(SHOP, BLOG), desktop=desktop)
    shell.start()
    item = watcher.item()
    item.menu.wait_for_outline(lambda rows: "(Running projects)" in rows)
    of_item, of_menu = item.signals()
    shell.server.wait_for_polls(3)
    assert of_item == []
    assert of_menu == []
