"""The main menu: shortcuts, editing, the bar in the window, what other programs are shown."""

import pytest
from gi.repository import GLib

from harness.input_page import TEXT_FIELD, input_plan
from harness.waiting import wait_until

BUS_NAME = "com.brackenforge.harbrook"


@pytest.fixture
def shell(make_shell):
    return make_shell(input_plan())


def keyboard(shell):
    window = shell.window()
    wait_until("it has the keyboard", lambda: shell.desktop.screen.active_window() == window.number)
    return shell.desktop.screen


def focus_text(shell):
    screen = keyboard(shell)
    screen.click(*shell.in_window(*TEXT_FIELD))
    wait_until("the field is focused", lambda: shell.server.evaluate("document.activeElement.id") == "text")
    return screen


def wait_for_text(shell, text):
    wait_until(f"the text is {text!r}", lambda: shell.server.evaluate("text.value") == text)


def typed(shell, text):
    screen = focus_text(shell)
    screen.tool("type", "--delay", "20", text)
    wait_for_text(shell, text)
    return screen


def menu_bar(shell):
    return shell.desktop.accessibility().find(shell.pid, role="menu bar")


def bar_titles(shell):
    bar = menu_bar(shell)
    return [child.name for child in bar.children] if bar else None


def open_menu(shell, position):
    """Opens a menu by keyboard, away from the pointer, which would choose too."""
    screen = keyboard(shell)
    screen.tool("mousemove", *shell.in_window(900, 700))
    screen.press("F10")
    wait_until("the bar is shown", lambda: menu_bar(shell))
    screen.press(*["Right"] * position, "Down")
    wait_until("a menu is open", lambda: menu_items(shell))
    return screen


def menu_items(shell):
    """What is in the open menu; the titles in the bar are items for assistive technology too."""
    tree = shell.desktop.accessibility()
    names = [node.name for node in tree.walk(shell.pid) if node.role == "menu item" and node.name]
    for title in bar_titles(shell) or []:
        names.remove(title)
    return names


@pytest.mark.parametrize(
    "keys, hash",
    [
        ("ctrl+1", "#/"),
        ("ctrl+2", "#/services"),
        ("ctrl+3", "#/docker"),
        ("ctrl+4", "#/ports"),
        ("ctrl+comma", "#/settings"),
    ],
)
def test_a_shortcut_moves_the_page_to_its_view(running, keys, hash):
    keyboard(running).press(keys)
    wait_until(f"the page is at {hash}", lambda: running.server.evaluate("location.hash") == hash)


def test_reload_loads_the_page_anew(running):
    keyboard(running).press("ctrl+r")
    running.server.wait_for_page(2)


def test_the_sidebar_shortcut_presses_the_pages_button_once(running):
    screen = keyboard(running)
    screen.press("ctrl+alt+s")
    wait_until("it was pressed", lambda: "sidebar" in running.server.evaluate("happened"))
    screen.press("ctrl+2")
    wait_until("the next key is through", lambda: running.server.evaluate("location.hash") == "#/services")
    assert running.server.evaluate("happened") == ["sidebar"]


def test_shortcuts_work_while_a_field_or_a_button_of_the_title_bar_has_the_keyboard(running):
    screen = focus_text(running)
    screen.press("ctrl+2")
    wait_until("services", lambda: running.server.evaluate("location.hash") == "#/services")
    screen.press("F6", "ctrl+3")
    wait_until("docker", lambda: running.server.evaluate("location.hash") == "#/docker")
    assert running.server.evaluate("text.value") == ""


@pytest.mark.parametrize("keys", ["ctrl+w", "ctrl+h"])
def test_close_and_hide_hide_the_window(running, keys):
    keyboard(running).press(keys)
    running.wait_until_hidden()
    assert running.program.poll() is None


def test_minimize(running):
    window = running.window()
    keyboard(running).press("ctrl+m")
    wait_until("it is minimized", lambda: "_NET_WM_STATE_HIDDEN" in window.states)


def test_quit(running):
    keyboard(running).press("ctrl+q")
    assert running.wait() == 0
    running.wait_until_ended()


def test_undo_and_redo_in_a_text_field(running):
    screen = typed(running, "one")
    screen.press("ctrl+z")
    wait_for_text(running, "")
    screen.press("ctrl+shift+z")
    wait_for_text(running, "one")


def test_each_press_of_undo_undoes_one_thing(running):
    screen = focus_text(running)
    for text in ("a", "b", "c"):
        # Each in the place of all before, which makes each a step of its own.
        screen.press("ctrl+a", text)
        wait_for_text(running, text)
    screen.press("ctrl+z")
    wait_for_text(running, "b")
    screen.press("ctrl+z")
    wait_for_text(running, "a")
    screen.press("ctrl+shift+z")
    wait_for_text(running, "b")


def test_copy_and_paste_act_once(running):
    screen = typed(running, "one")
    screen.press("ctrl+a", "ctrl+c", "End", "ctrl+v")
    wait_for_text(running, "oneone")
    screen.press("ctrl+a", "ctrl+x")
    wait_for_text(running, "")
    screen.press("ctrl+v")
    wait_for_text(running, "oneone")


def test_a_page_that_has_its_own_use_for_an_editing_key_keeps_it(running):
    screen = typed(running, "one")
    running.server.evaluate(
        "addEventListener('keydown', event => {"
        " if (event.ctrlKey && event.key == 'z') { happened.push('own'); event.preventDefault(); } })"
    )
    screen.press("ctrl+z")
    wait_until("the page has had the key", lambda: "own" in running.server.evaluate("happened"))
    screen.tool("type", "x")
    wait_for_text(running, "onex")


@pytest.mark.parametrize("key", ["alt", "F10"])
def test_the_menu_bar_comes_and_goes_with_a_key_and_leaves_the_page_where_it_is(running, key):
    screen = keyboard(running)
    assert menu_bar(running) is None
    screen.press(key)
    wait_until("the bar is shown", lambda: menu_bar(running))
    assert bar_titles(running) == ["Harbrook", "Edit", "View", "Window", "Help"]
    assert running.viewport() == (1320, 860)
    screen.press(key)
    wait_until("the bar is gone", lambda: menu_bar(running) is None)


def test_escape_and_a_click_beside_it_hide_the_bar(running):
    screen = keyboard(running)
    screen.press("F10")
    wait_until("the bar is shown", lambda: menu_bar(running))
    screen.press("Escape")
    wait_until("the bar is gone", lambda: menu_bar(running) is None)
    screen.press("F10")
    wait_until("the bar is shown again", lambda: menu_bar(running))
    screen.click(*running.in_window(*TEXT_FIELD))
    wait_until("the bar is gone again", lambda: menu_bar(running) is None)


def test_alt_with_another_key_is_not_the_menu(running):
    screen = focus_text(running)
    screen.press("alt+x")
    screen.tool("type", "y")
    wait_until("the key is through", lambda: "y" in running.server.evaluate("text.value"))
    assert menu_bar(running) is None


@pytest.mark.parametrize(
    "position, titles",
    [
        (
            0,
            ["About Harbrook", "Check for Updates…", "Settings…", "Support Harbrook…"]
            + ["Hide Harbrook", "Quit Harbrook"],
        ),
        (1, ["Undo", "Redo", "Cut", "Copy", "Paste", "Select All"]),
        (2, ["Show or Hide Sidebar", "Reload", "Dashboard", "Services", "Docker", "Ports"]),
        (3, ["Minimize", "Close", "Harbrook"]),
        (4, ["About & Support", "Harbrook Website", "Email Support", "Show Server Log"]),
    ],
    ids=["Harbrook", "Edit", "View", "Window", "Help"],
)
def test_a_menu_has_its_items_titled_as_they_stand(running, position, titles):
    open_menu(running, position)
    assert menu_items(running) == titles


def test_a_command_is_chosen_by_keyboard_and_the_bar_goes_away(running):
    screen = open_menu(running, 2)
    screen.press(*["Down"] * menu_items(running).index("Services"), "Return")
    wait_until("services", lambda: running.server.evaluate("location.hash") == "#/services")
    wait_until("the bar is gone", lambda: menu_bar(running) is None)


def test_an_editing_command_of_the_menu_acts_on_the_field_that_had_the_keyboard(running):
    typed(running, "one")
    screen = open_menu(running, 1)
    screen.press("Up", "Return")
    wait_until("the bar is gone", lambda: menu_bar(running) is None)
    selected = "text.selectionStart == 0 && text.selectionEnd == 3"
    wait_until("all is selected", lambda: running.server.evaluate(selected))
    screen.tool("type", "two")
    wait_for_text(running, "two")


def test_the_windows_menu_lists_the_window_by_its_title(running):
    running.server.evaluate("post({k: 'title', v: 'snake_case'})")
    wait_until("it has the title", lambda: running.window().title == "snake_case")
    open_menu(running, 3)
    wait_until("the menu lists it", lambda: "snake_case" in menu_items(running))


def test_about_shows_the_program_and_the_credits(running):
    screen = open_menu(running, 0)
    screen.press("Return")
    wait_until("a panel is shown", lambda: len(running.windows()) == 2)
    texts = " ".join(running.texts())
    assert "Harbrook" in texts and "why a project will not start" in texts
    screen.press("Escape")
    wait_until("it is gone", lambda: len(running.windows()) == 1)


def test_showing_the_log_where_nothing_can_show_it_is_silent(running):
    screen = open_menu(running, 4)
    screen.press("Up", "Return")
    wait_until("the bar is gone", lambda: menu_bar(running) is None)
    screen.press("ctrl+2")
    wait_until("the program goes on", lambda: running.server.evaluate("location.hash") == "#/services")
    assert len(running.windows()) == 1


def test_desktops_with_a_global_menu_are_told_where_it_is(running):
    window = running.window()
    path = wait_until("the window names it", lambda: window._property("_GTK_MENUBAR_OBJECT_PATH")).decode()
    groups = running.desktop.bus.call(
        BUS_NAME, path, "org.gtk.Menus", "Start", GLib.Variant("(au)", ([0],))
    )[0]
    titles = [item["label"] for _, number, items in groups if number == 0 for item in items]
    assert titles == ["Harbrook", "Edit", "View", "Window", "Help"]


def test_the_key_that_ends_other_programs_with_this_engine_does_no_harm(running):
    screen = focus_text(running)
    screen.press("F7")
    screen.tool("type", "still here")
    wait_for_text(running, "still here")
    # Longer than the cursor takes to blink.
    wait_until("seconds pass", lambda: running.server.evaluate("new Promise(r => setTimeout(() => r(true), 1500))"))
    assert running.program.poll() is None
