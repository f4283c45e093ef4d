"""The menu of the status item, as panels read it and act on it."""

import json
import time
from pathlib import Path

import pytest
from gi.repository import GLib

from harness.server import Plan
from harness.tray import answered, project
from harness.waiting import stays, wait_until

OPEN = "Open Harbrook [Control+o]"
QUIT = "Quit Harbrook [Control+q]"
NO_COUNTS = "(PostgreSQL: 0   Redis: 0   Containers: 0)"

SHOP = project("shop", [3000, 5173, 8080, 9000], appRunning=True)
BLOG = project("blog")
NOTES = project("notes", running=False, hasCommand=True)


@pytest.fixture
def started(make_shell, desktop, watcher):
    """Starts a shell whose server answers with these projects; gives it and its menu in the panel."""
    watcher.arrive()

    def start(*projects, **counts):
        shell = make_shell(Plan(answers={"/api/state": answered(*projects, **counts)}), desktop=desktop)
        shell.start()
        shell.server.wait_for_page()
        menu = watcher.item(len(watcher.registrations) - 1 if watcher.registrations else 0).menu
        menu.wait_for_outline(lambda rows: "(Server not reachable)" not in rows)
        return shell, menu

    return start


def change(shell, *projects, **counts):
    shell.server.answer("/api/state", **answered(*projects, **counts))


# Layouts


def test_the_layout_while_the_server_is_not_reachable(make_shell, desktop, watcher):
    watcher.arrive()
    make_shell(Plan(steps=[]), desktop=desktop).start()
    menu = watcher.item().menu
    menu.wait_for_outline(lambda rows: rows == [OPEN, "-", "(Server not reachable)", "-", QUIT])


def test_the_layout_with_nothing_to_list(started):
    _, menu = started(postgres=1, redis=2, containers=3)
    assert menu.outline() == [
        OPEN,
        "-",
        "(No projects running)",
        "-",
        "(No other saved start commands)",
        "-",
        "(PostgreSQL: 1   Redis: 2   Containers: 3)",
        "-",
        QUIT,
    ]


def test_the_layout_with_projects(started):
    _, menu = started(SHOP, BLOG, NOTES)
    assert menu.outline() == [
        OPEN,
        "-",
        "(Running projects)",
        (
            "shop   :3000 :5173 :8080",
            [
                "Open localhost:3000 in browser",
                "Open localhost:5173 in browser",
                "Open localhost:8080 in browser",
                "Open localhost:9000 in browser",
                "Show in Harbrook",
                "-",
                "Stop shop",
            ],
        ),
        ("blog   ", ["Show in Harbrook"]),
        "-",
        ("Start a project", ["notes"]),
        "-",
        NO_COUNTS,
        "-",
        QUIT,
    ]


def test_names_are_shown_as_they_are(started):
    names = ["my_app__x", "Größe & <b>", "日本 🎉", "&File"]
    _, menu = started(*[project(name) for name in names])
    labels = [row.label for row in menu.layout().children]
    assert [label for label in labels if label.endswith("   ")] == [name + "   " for name in names]
    assert menu.layout().find("my").properties["label"] == "my__app____x   "


# Actions


def test_open_harbrook_brings_the_window_back(started):
    shell, menu = started()
    shell.window().close()
    shell.wait_until_hidden()
    menu.click("Open Harbrook")
    shell.window()


def test_quit_ends_the_program(started):
    shell, menu = started()
    menu.click("Quit Harbrook")
    assert shell.wait() == 0


def test_show_in_harbrook_goes_to_the_projects_page(started):
    shell, menu = started(SHOP)
    menu.click("shop", "Show in")
    wait_until("the page is there", lambda: shell.server.evaluate("location.hash") == "#/p/%2Fprojects%2Fshop")


@pytest.mark.parametrize(
    "labels, verb, path",
    [(("shop", "Stop shop"), "stop", "/projects/shop"), (("Start a", "notes"), "start", "/projects/notes")],
)
def test_start_and_stop_ask_the_server(started, labels, verb, path):
    shell, menu = started(SHOP, NOTES)
    menu.click(*labels)
    request = shell.server.wait_for_request(f"/api/project/{verb}", "POST")
    headers = {name.lower(): value for name, value in request["headers"]}
    assert headers["content-type"] == "application/json"
    assert headers["x-harbrook"] == "1"
    assert headers["x-harbrook-source"] == "menubar"
    assert headers["x-harbrook-token"] == shell.server.start["environment"]["HARBROOK_TOKEN"]
    assert json.loads(request["body"]) == {"path": path}


def test_a_port_opens_in_the_default_browser(started, make_shell):
    shell, menu = started(SHOP)
    noted = shell.home / "opened"
    browser = shell.home / "browser"
    browser.write_text(f'#!/bin/sh\nprintf "%s\\n" "$@" >>{noted}\n')
    browser.chmod(0o755)
    applications = shell.home / ".local/share/applications"
    applications.mkdir(parents=True)
    (applications / "recorder.desktop").write_text(
        f"[Desktop Entry]\nType=Application\nName=Recorder\nExec={browser} %u\n"
        "MimeType=x-scheme-handler/http;\n"
    )
    (applications / "mimeapps.list").write_text(
        "[Default Applications]\nx-scheme-handler/http=recorder.desktop\n"
    )
    menu.click("shop", "Open localhost:5173")
    wait_until("the browser was asked", lambda: noted.exists() and noted.read_text())
    assert noted.read_text().splitlines() == ["http://localhost:5173"]


def test_a_click_may_come_in_a_group(started):
    shell, menu = started(SHOP)
    number = menu.layout().find("shop", "Stop").number
    event = (number, "clicked", GLib.Variant("s", ""), 0)
    unknown = (29999, "clicked", GLib.Variant("s", ""), 0)
    assert menu.call("EventGroup", "(a(isvu))", [event, unknown]) == ([29999],)
    shell.server.wait_for_request("/api/project/stop", "POST")


def test_a_group_larger_than_any_hosts_is_refused(started):
    _, menu = started(SHOP)
    clicked = (menu.layout().find("Open Harbrook").number, "clicked", GLib.Variant("i", 0), 0)
    with pytest.raises(GLib.Error, match="Too many events"):
        menu.call("EventGroup", "(a(isvu))", [clicked] * 1001)


def test_rows_without_an_action_do_nothing(started):
    shell, menu = started(SHOP)
    before = menu.outline()
    shown = (shell.windows(), shell.window().title, shell.server.evaluate("location.hash"))
    inert = [row for row in menu.layout().children if "children-display" in row.properties or not row.enabled or not row.label]
    assert [row.label.split()[0] for row in inert if row.label] == ["Running", "shop", "No", "PostgreSQL:"]
    for row in inert:
        menu.event(row.number, "clicked")
    # Choices act in the order in which they come: by the time this one has, the others would have.
    menu.click("shop", "Stop")
    shell.server.wait_for_request("/api/project/stop")
    asked = {request["path"] for request in shell.server.requests()}
    assert asked == {"/", "/api/state", "/api/project/stop"}
    assert (shell.windows(), shell.window().title, shell.server.evaluate("location.hash")) == shown
    assert menu.outline() == before


def test_rows_that_do_not_exist_are_errors(started):
    _, menu = started()
    for method, kinds, arguments in [
        ("GetLayout", "(iias)", (29999, -1, [])),
        ("GetProperty", "(is)", (29999, "label")),
        ("GetProperty", "(is)", (0, "nonsense")),
        ("AboutToShow", "(i)", (29999,)),
        ("Event", "(isvu)", (29999, "clicked", GLib.Variant("i", 0), 0)),
        ("EventGroup", "(a(isvu))", ([(29999, "clicked", GLib.Variant("i", 0), 0)],)),
        ("AboutToShowGroup", "(ai)", ([29998, 29999],)),
    ]:
        with pytest.raises(GLib.Error, match="InvalidArgs"):
            menu.call(method, kinds, *arguments)


def test_properties_can_be_asked_for_one_by_one_and_in_groups(started):
    _, menu = started(SHOP)
    shop = menu.layout().find("shop")
    assert menu.call("GetProperty", "(is)", shop.number, "label") == (shop.label,)
    assert menu.call("GetProperty", "(is)", shop.number, "enabled") == (True,)
    heading = menu.layout().find("Running")
    assert menu.call("GetProperty", "(is)", heading.number, "enabled") == (False,)
    answer = menu.call("GetGroupProperties", "(aias)", [shop.number, 29999, heading.number], ["label"])
    assert answer == ([(shop.number, {"label": shop.label}), (heading.number, {"label": heading.label})],)
    everything = menu.call("GetGroupProperties", "(aias)", [], [])[0]
    assert (shop.number, shop.properties) in everything
    assert menu.layout(depth=0).children == []
    assert menu.layout(shop.number).outline() == shop.outline()


# Changes


def test_a_changed_count_is_a_changed_property(started):
    shell, menu = started(SHOP)
    before = menu.layout()
    heard = menu.signals()
    change(shell, SHOP, redis=4)
    wait_until("the change is announced", lambda: heard)
    counts = before.find("PostgreSQL").number
    label = "PostgreSQL: 0   Redis: 4   Containers: 0"
    assert [(member, arguments) for member, _, arguments in heard] == [
        ("ItemsPropertiesUpdated", ([(counts, {"label": label, "enabled": False})], []))
    ]
    assert menu.layout().find("PostgreSQL: 0   Redis: 4").number == counts


def test_a_new_project_is_one_new_layout_and_the_others_keep_their_numbers(started):
    shell, menu = started(SHOP, NOTES)
    before = menu.layout()
    heard = menu.signals()
    change(shell, BLOG, SHOP, NOTES)
    wait_until("the change is announced", lambda: heard)
    shell.server.wait_for_polls(2)
    assert [(member, arguments[1]) for member, _, arguments in heard] == [("LayoutUpdated", 0)]
    after = menu.layout()
    for labels in [("shop",), ("shop", "Stop"), ("Start",), ("Start", "notes"), ("Quit",), ("PostgreSQL",)]:
        assert after.find(*labels).number == before.find(*labels).number
    used = {row.number for row in before.children}
    assert after.find("blog").number not in used


def test_a_new_layout_tells_which_of_the_rows_that_stay_have_changed(started):
    shell, menu = started(SHOP, NOTES)
    before = menu.layout()
    heard = menu.signals()
    change(shell, BLOG, SHOP, NOTES, redis=4)
    wait_until("the layout is announced", lambda: [member for member, _, _ in heard][-1:] == ["LayoutUpdated"])
    counts = before.find("PostgreSQL").number
    label = "PostgreSQL: 0   Redis: 4   Containers: 0"
    assert [(member, arguments) for member, _, arguments in heard[:-1]] == [
        ("ItemsPropertiesUpdated", ([(counts, {"label": label, "enabled": False})], []))
    ]


def test_a_number_gets_no_new_meaning_at_once(started):
    shell, menu = started(SHOP)
    stop = menu.layout().find("shop", "Stop").number
    change(shell, project("other", [1, 2, 3], appRunning=True))
    menu.wait_for_outline(lambda rows: any("other" in row[0] for row in rows if isinstance(row, tuple)))
    with pytest.raises(GLib.Error, match="InvalidArgs"):
        menu.event(stop, "clicked")
    assert shell.server.requests("/api/project/stop") == []


# Opening


def refreshes(shell):
    return len(shell.server.requests("/api/state"))


def wait_for_a_quiet_moment(shell):
    """Just after a poll, so that the next one is seconds away."""
    shell.server.wait_for_polls(1)


@pytest.mark.parametrize("host", ["single calls", "group calls", "events only"])
def test_each_opening_refreshes_once(started, host):
    shell, menu = started(SHOP)

    def open_menu():
        if host == "single calls":
            menu.about_to_show()
            menu.event(0, "opened")
        elif host == "group calls":
            menu.call("AboutToShowGroup", "(ai)", [0])
            menu.call("AboutToShowGroup", "(ai)", [menu.layout(depth=1).find("shop").number])
        else:
            menu.event(0, "opened")

    wait_for_a_quiet_moment(shell)
    before = refreshes(shell)
    open_menu()
    wait_until("it refreshes", lambda: refreshes(shell) == before + 1)
    stays("once", lambda: refreshes(shell) == before + 1, 0.5)
    if host != "group calls":
        menu.event(0, "closed")
    time.sleep(0.2)
    open_menu()
    wait_until("it refreshes again", lambda: refreshes(shell) >= before + 2)


def test_the_open_menu_is_left_alone_until_it_closes(started):
    shell, menu = started(SHOP)
    before = menu.outline()
    assert menu.about_to_show() is False
    menu.event(0, "opened")
    heard = menu.signals()
    change(shell, SHOP, BLOG)
    shell.server.wait_for_polls(3)
    assert heard == []
    assert menu.outline() == before

    menu.event(0, "closed")
    wait_until("the new one is announced", lambda: heard)
    assert [member for member, _, _ in heard] == ["LayoutUpdated"]
    assert menu.outline() != before


def test_a_choice_closes_the_menu(started):
    shell, menu = started(SHOP)
    menu.about_to_show()
    menu.event(0, "opened")
    change(shell, SHOP, BLOG)
    shell.server.wait_for_polls(2)
    heard = menu.signals()
    menu.click("Open Harbrook")
    wait_until("the new one is announced", lambda: heard)


def test_a_host_that_never_says_closed_gets_the_new_menu_at_its_next_opening(started):
    shell, menu = started(SHOP)
    assert menu.call("AboutToShowGroup", "(ai)", [0]) == ([], [])
    change(shell, SHOP, BLOG)
    heard = menu.signals()
    shell.server.wait_for_polls(2)
    assert heard == []
    assert menu.call("AboutToShowGroup", "(ai)", [0, 29999]) == ([0], [29999])
    assert menu.layout().find("blog")
    # Such hosts go by the signal; they follow it in place.
    assert [member for member, _, _ in heard] == ["LayoutUpdated"]


def test_a_host_that_asks_by_single_calls_gets_the_new_menu_by_the_answer(started):
    shell, menu = started(SHOP)
    menu.about_to_show()
    change(shell, SHOP, BLOG)
    heard = menu.signals()
    shell.server.wait_for_polls(2)
    assert menu.about_to_show() is True
    assert menu.layout().find("blog")
    assert heard == []
    menu.event(0, "closed")
    wait_until("the other hosts hear of it", lambda: [member for member, _, _ in heard] == ["LayoutUpdated"])


def test_an_opening_tells_which_of_the_rows_that_stay_have_changed(started):
    shell, menu = started(SHOP)
    menu.about_to_show()
    before = menu.layout()
    revision = menu.revision()
    change(shell, SHOP, redis=4)
    heard = menu.signals()
    shell.server.wait_for_polls(2)
    assert menu.about_to_show() is True
    wait_until("the row is announced", lambda: heard)
    assert [(member, arguments[0][0][0]) for member, _, arguments in heard] == [
        ("ItemsPropertiesUpdated", before.find("PostgreSQL").number)
    ]
    # Nothing came, went or moved, so nobody has to read the layout anew.
    assert menu.revision() == revision
    menu.event(0, "closed")
    shell.server.wait_for_polls(1)
    assert len(heard) == 1


def test_a_watcher_that_leaves_takes_the_open_menu_with_it(make_shell, desktop, watcher):
    watcher.arrive()
    shell = make_shell(Plan(answers={"/api/state": answered(SHOP)}), desktop=desktop)
    shell.start()
    menu = watcher.item().menu
    menu.wait_for_outline(lambda rows: "(Running projects)" in rows)
    menu.event(0, "opened")
    change(shell, SHOP, BLOG)
    shell.server.wait_for_polls(2)
    watcher.leave()
    menu.wait_for_outline(lambda rows: ("blog   ", ["Show in Harbrook"]) in rows)


# Size


def processor_time(pid, act):
    """What the main thread has used while something happens, and what all other threads have, in seconds."""

    def used():
        tasks = Path(f"/proc/{pid}/task").iterdir()
        times = {int(task.name): int((task / "schedstat").read_text().split()[0]) / 1e9 for task in tasks}
        return times.pop(pid), sum(times.values())

    before = used()
    act()
    return [after - then for after, then in zip(used(), before)]


def test_three_thousand_projects_do_not_stall_the_program(started):
    shell, menu = started()
    projects = [project(f"project-{n}", [3000 + n, 13000 + n], appRunning=True) for n in range(3000)]
    change(shell, *projects)
    wait_until("the menu is there", lambda: len(menu.layout(depth=1).children) > 3000)

    # The main thread has next to nothing to do with putting the whole menu into words.
    main, others = processor_time(shell.pid, menu.layout)
    assert main < others / 10
    rows = menu.layout()
    assert len(rows.children) > 3000
    assert max(row.number for parent in [rows, *rows.children] for row in parent.children) < 30000

    # Three polls that change nothing are less to it than to do that once.
    in_polls, _ = processor_time(shell.pid, lambda: shell.server.wait_for_polls(3))
    assert in_polls < others / 2
