"""What the page asks of the shell: drag, zoom, quit, title, folder, state."""

import json
import random

import pytest

from harness.input_page import input_plan
from harness.portal import CANCELLED, CHOSEN, Portal
from harness.waiting import stays, wait_until

HEADER = (700, 26)


@pytest.fixture
def shell(make_shell):
    return make_shell(input_plan())


def press_and_move(shell, start, by, steps=12):
    """Presses the left button and moves the pointer in steps, as a hand does. The button stays down."""
    screen = shell.desktop.screen
    screen.tool("mousemove", *shell.in_window(*start))
    before = len(shell.server.evaluate("happened"))
    screen.tool("mousedown", 1)
    wait_until("the page has the press", lambda: len(shell.server.evaluate("happened")) > before)
    for _ in range(steps):
        screen.tool("mousemove_relative", "--", by[0] // steps, by[1] // steps)


def test_the_header_drags_the_window(running):
    before = running.place(200, 100, 1200, 800).area
    press_and_move(running, HEADER, (120, 60))
    running.desktop.screen.tool("mouseup", 1)
    wait_until(
        "the window followed",
        lambda: (running.window().area.x, running.window().area.y) == (before.x + 120, before.y + 60),
    )
    assert running.viewport() == (1200, 800)


def test_after_a_drag_a_message_without_a_press_moves_nothing(running):
    running.place(200, 100, 1200, 800)
    press_and_move(running, HEADER, (60, 60))
    running.desktop.screen.tool("mouseup", 1)
    wait_until("the window followed", lambda: running.window().area.x == 260)
    before = running.window().area
    running.server.evaluate("post('drag'); true")
    for _ in range(10):
        running.desktop.screen.tool("mousemove_relative", "--", 6, 6)
    running.server.evaluate("post('drag'); true")
    for _ in range(10):
        running.desktop.screen.tool("mousemove_relative", "--", -6, -3)
    stays("the window is where it was", lambda: running.window().area == before, 1)


def test_a_message_without_a_press_moves_nothing(running):
    before = running.window().area
    running.desktop.screen.tool("mousemove", *running.in_window(*HEADER))
    running.server.evaluate("post('drag'); true")
    for _ in range(10):
        running.desktop.screen.tool("mousemove_relative", "--", 6, 6)
    stays("the window is where it was", lambda: running.window().area == before, 1)


def test_another_button_moves_nothing(running):
    before = running.window().area
    screen = running.desktop.screen
    screen.tool("mousemove", *running.in_window(*HEADER), "mousedown", 2)
    running.server.evaluate("post('drag'); true")
    for _ in range(10):
        screen.tool("mousemove_relative", "--", 6, 6)
    screen.tool("mouseup", 2)
    stays("the window is where it was", lambda: running.window().area == before, 1)


def test_a_second_drag_needs_and_gets_a_second_press(running):
    running.place(200, 100, 1200, 800)
    for number in (1, 2):
        press_and_move(running, HEADER, (60, 0))
        running.desktop.screen.tool("mouseup", 1)
        wait_until("the window followed", lambda: running.window().area.x == 200 + 60 * number)


def test_a_click_on_the_header_stays_a_click(running):
    before = running.window().area
    running.desktop.screen.click(*running.in_window(*HEADER))
    wait_until("the page has it", lambda: running.server.evaluate("happened") == ["press", "click"])
    assert running.window().area == before


def test_a_double_click_on_the_header_zooms_there_and_back(running):
    before = running.window().area

    def double_click(x, y):
        x, y = running.in_window(x, y)
        running.desktop.screen.tool("mousemove", x, y, "click", "--repeat", 2, "--delay", 60, 1)

    double_click(*HEADER)
    wait_until("it fills the screen", lambda: running.viewport()[0] == 1920)
    # Later than the longest time between the clicks of one double click.
    running.server.evaluate("new Promise(done => setTimeout(() => done(true), 600))")
    double_click(*HEADER)
    wait_until("it has its own size", lambda: running.window().area == before)


def test_quit_ends_the_program_and_its_server(running):
    running.server.run("post('quit')")
    assert running.wait() == 0
    running.wait_until_ended()


@pytest.mark.parametrize(
    "message, title",
    [
        ("{k: 'title', v: 'Ports · Harbrook'}", "Ports · Harbrook"),
        ("{k: 'title', v: ''}", "Harbrook"),
        ("{k: 'title'}", "Harbrook"),
        ("{k: 'title', v: 7}", "Harbrook"),
        # What JSON would make a text of is none.
        ("{k: 'title', v: new Date()}", "Harbrook"),
        ("{k: 'title', v: new String('no')}", "Harbrook"),
        ("{k: 'title', v: ['no']}", "Harbrook"),
        ("{k: 'title', v: 'yes', w: new Date(), x: [new String('no')], y: {z: null}}", "yes"),
    ],
)
def test_the_page_sets_the_title(running, message, title):
    running.server.evaluate("post({k: 'title', v: 'something else'}); true")
    wait_until("it has another title", lambda: running.window().title == "something else")
    running.server.evaluate(f"post({message}); true")
    wait_until(f"it is called {title}", lambda: running.window().title == title)


@pytest.mark.parametrize(
    "message",
    ["null", "7", "true", "[]", "['drag']", "'state'", "'Drag'", "{}", "{k: 7}", "{k: 'quit'}", "{v: 'x'}", "{k: null}"]
    + ["new String('quit')", "new Date()", "{k: new String('title'), v: 'no'}", "[{k: 'title', v: 'no'}]"],
)
def test_any_other_message_does_nothing(running, message):
    before = running.window().area
    running.server.evaluate(f"post({message}); true")
    running.server.evaluate("post({k: 'title', v: 'after'}); true")
    wait_until("later messages are heard", lambda: running.window().title == "after")
    assert running.window().area == before
    assert len(running.windows()) == 1


def test_state_refreshes_the_status_at_once(running):
    def asked():
        return len(running.server.requests("/api/state"))

    # More often than the polls, which come every three seconds, could ask while this waits.
    before, times = asked(), 20
    running.server.evaluate(f"for (let i = 0; i < {times}; ++i) post({{k: 'state'}}); true")
    wait_until("the state was asked for", lambda: asked() >= before + times)


# Choosing a folder


def panel(shell):
    window = shell.window()
    others = wait_until("a panel is shown", lambda: [one for one in shell.windows() if one != window])
    wait_until("it has the keyboard", lambda: shell.desktop.screen.active_window() == others[0].number)
    return others[0]


def choose_button(shell):
    """The default button; the toolkit names it twice over, for its label and for itself."""
    tree = shell.desktop.accessibility()

    def found():
        return [one for one in tree.walk(shell.pid) if one.role == "button" and one.name.split()[:1] == ["Choose"]]

    return wait_until("the panel has its button", found)[0]


def picked(shell):
    return [one for one in shell.server.evaluate("happened") if isinstance(one, list)]


@pytest.mark.parametrize(
    "message, title, target",
    [
        ("{k: 'pickFolder'}", "Choose a folder that contains your projects.", ""),
        ("{k: 'pickFolder', v: 'a \"b\"/\\n'}", "Choose a folder.", 'a "b"/\n'),
    ],
    ids=["no target", "target"],
)
def test_a_folder_is_chosen_and_the_page_hears_of_it(running, message, title, target):
    running.server.evaluate(f"post({message}); true")
    assert panel(running).title == title
    choose_button(running).act()
    wait_until("the page hears of it", lambda: picked(running))
    assert picked(running) == [["folder", str(running.home), target]]
    wait_until("the panel is gone", lambda: len(running.windows()) == 1)


def test_a_folder_with_every_kind_of_character(make_shell, tmp_path):
    folder = tmp_path / "a 'b' \"c\" \\d é 名 <script> $(e)"
    folder.mkdir()
    shell = make_shell(input_plan(), environment={"HOME": str(folder)})
    shell.start()
    shell.server.wait_for_page()
    shell.server.evaluate("post({k: 'pickFolder'}); true")
    panel(shell)
    choose_button(shell).act()
    wait_until("the page hears of it", lambda: picked(shell))
    assert picked(shell) == [["folder", str(folder), ""]]


def test_the_panel_belongs_to_the_window(running):
    window = running.window()
    running.server.evaluate("post({k: 'pickFolder'}); true")
    shown = panel(running)
    assert "_NET_WM_STATE_MODAL" in shown.states
    assert shown.handle.get_wm_transient_for().id == window.number


def test_a_cancelled_choice_is_not_mentioned_to_the_page(running):
    running.server.evaluate("post({k: 'pickFolder'}); true")
    panel(running)
    running.desktop.screen.press("Escape")
    wait_until("the panel is gone", lambda: len(running.windows()) == 1)
    stays("the page hears nothing", lambda: not picked(running), 1)
    assert running.program.poll() is None


# Choosing it in the portal's dialog


@pytest.fixture
def make_portal(desktop):
    portals = []

    def make(**options):
        portals.append(Portal(desktop, **options))
        return portals[-1]

    yield make
    for portal in portals:
        portal.close()


@pytest.fixture
def at_portal(make_shell, desktop):
    shell = make_shell(input_plan(), desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    return shell


def test_where_there_is_a_portal_it_is_asked(at_portal, make_portal):
    portal = make_portal()
    at_portal.server.evaluate("post({k: 'pickFolder', v: 'roots'}); true")
    parent, title, options = portal.question()
    assert parent == f"x11:{at_portal.window().number:x}"
    assert title == "Choose a folder."
    assert options["accept_label"] == "Choose"
    assert options["directory"] is True and options["modal"] is True
    assert bytes(options["current_folder"]).rstrip(b"\0").decode() == str(at_portal.home)
    assert len(at_portal.windows()) == 1
    portal.respond(CHOSEN, "file:///srv/a%20b/%C3%A9")
    wait_until("the page hears of it", lambda: picked(at_portal))
    assert picked(at_portal) == [["folder", "/srv/a b/é", "roots"]]


@pytest.mark.parametrize("address, path", [("file:///tmp/a/", "/tmp/a"), ("file:///", "/")])
def test_a_folder_has_no_slash_at_its_end(at_portal, make_portal, address, path):
    portal = make_portal()
    at_portal.server.evaluate("post({k: 'pickFolder', v: 'roots'}); true")
    portal.question()
    portal.respond(CHOSEN, address)
    wait_until("the page hears of it", lambda: picked(at_portal))
    assert picked(at_portal) == [["folder", path, "roots"]]


def test_a_choice_cancelled_at_the_portal_is_not_mentioned(at_portal, make_portal):
    portal = make_portal()
    at_portal.server.evaluate("post({k: 'pickFolder'}); true")
    portal.question()
    portal.respond(CANCELLED)
    at_portal.server.evaluate("post({k: 'pickFolder'}); true")
    portal.question(1)
    portal.respond(CHOSEN, "file:///srv")
    wait_until("the page hears of it", lambda: picked(at_portal))
    assert picked(at_portal) == [["folder", "/srv", ""]]


def test_the_shells_own_panel_takes_the_place_of_a_portal_that_goes_away(at_portal, make_portal):
    portal = make_portal()
    at_portal.server.evaluate("post({k: 'pickFolder'}); true")
    portal.question()
    portal.close()
    panel(at_portal)


def test_a_portal_that_cannot_choose_folders_is_passed_over(at_portal, make_portal):
    portal = make_portal(version=2)
    at_portal.server.evaluate("post({k: 'pickFolder'}); true")
    panel(at_portal)
    assert not portal.questions


def test_a_portal_that_does_not_answer_is_passed_over(make_shell, make_desktop):
    desktop = make_desktop(services={"org.freedesktop.portal.Desktop": "/bin/sleep 600"})
    shell = make_shell(input_plan(), desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    shell.server.evaluate("post({k: 'pickFolder'}); true")
    assert panel(shell).title == "Choose a folder that contains your projects."


def test_random_texts_come_back_from_the_page_as_they_were(running):
    """The target goes to the shell as a message and back as a script."""
    random.seed(20)
    alphabet = "ab/\\'\"`${}<>\n\r\t\b\f\v\0\x1f\x7f\u2028\u2029é名😀\ufeff "
    for number in range(5):
        target = "".join(random.choice(alphabet) for _ in range(40)) + "x"
        running.server.evaluate(f"post({{k: 'pickFolder', v: {json.dumps(target)}}}); true")
        panel(running)
        choose_button(running).act()
        wait_until("the page hears of it", lambda: len(picked(running)) == number + 1)
        assert picked(running)[-1] == ["folder", str(running.home), target]
        wait_until("the panel is gone", lambda: len(running.windows()) == 1)
