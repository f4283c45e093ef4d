"""Closing hides; a second start shows the window again."""

from types import SimpleNamespace

import pytest
from gi.repository import GLib

from harness.bus import Bus
from harness.waiting import stays, wait_until


def test_closing_hides_the_window_and_leaves_server_and_page_alone(running):
    running.server.evaluate("window.state = 'kept'")
    running.window().close()
    running.wait_until_hidden()
    assert running.program.poll() is None
    assert running.server.evaluate("window.state") == "kept"


def test_a_second_start_shows_the_same_window_and_ends_with_zero(running):
    first = running.program
    running.server.evaluate("window.state = 'kept'")
    running.window().close()
    running.wait_until_hidden()

    second = running.start()
    assert second.wait(20) == 0
    window = running.window()
    assert window.pid == first.pid
    wait_until("it is active", lambda: running.desktop.screen.active_window() == window.number)
    assert running.server.evaluate("window.state") == "kept"
    assert len(running.switchboard.servers) == 1


def test_a_window_that_is_shown_again_is_where_it_was(running):
    window = running.place(200, 100, 1200, 800)
    before = window.area
    window.close()
    running.wait_until_hidden()
    assert running.start().wait(20) == 0
    wait_until("it is there again", lambda: running.window().area == before)


def test_a_second_start_while_the_window_is_open_changes_nothing(running):
    assert running.start().wait(20) == 0
    assert len(running.windows()) == 1
    assert len(running.switchboard.servers) == 1
    assert running.programs[0].poll() is None


def test_of_two_starts_at_once_one_stays(shell):
    programs = [shell.start(), shell.start()]
    wait_until("one has ended", lambda: any(program.poll() is not None for program in programs))
    assert sorted(str(program.poll()) for program in programs) == ["0", "None"]
    shell.server.wait_for_page()
    assert len(shell.windows()) == 1
    assert len(shell.switchboard.servers) == 1


def test_a_start_as_a_new_instance_runs_beside_with_a_server_of_its_own(running):
    other = running.start("--new-instance")
    running.switchboard.server(1).wait_for_page()
    assert other.poll() is None and running.programs[0].poll() is None
    first, second = (server.start["environment"] for server in running.switchboard.servers)
    for environment in (first, second):
        assert environment["HARBROOK_PORT"] == "47545"
        assert environment["HARBROOK_PORT_FALLBACK"] == "1"
    assert first["HARBROOK_TOKEN"] != second["HARBROOK_TOKEN"]
    # The name is the first one's still.
    assert running.start().wait(20) == 0
    assert len(running.switchboard.servers) == 2


def test_a_start_in_screenshot_mode_runs_beside_and_takes_no_name(running):
    own_name = running.desktop.bus.owner("com.brackenforge.harbrook")
    data = running.folder / "pictures" / ".harbrook"
    data.mkdir(parents=True)
    mode = {"HARBROOK_SHOTS": "1", "HARBROOK_SHOTS_HOME": "pictures"}
    other = running.start(environment=mode)
    running.switchboard.server(1).wait_for_page()
    assert other.poll() is None
    assert running.desktop.bus.owner("com.brackenforge.harbrook") == own_name
    # A relative home counts from the working directory.
    assert (data / "logs" / "server.log").exists()
    assert (data / "shot-window").exists()


def test_without_a_session_bus_each_start_is_a_shell_of_its_own(make_desktop, make_shell):
    shell = make_shell(desktop=make_desktop(bus=False))
    for number in range(2):
        shell.start()
        shell.switchboard.server(number).wait_for_page()
    assert len(shell.windows()) == 2
    for program in shell.programs:
        program.terminate()
        assert program.wait(20) == 0


# Where no panel shows the status item

NOTIFICATIONS = "org.freedesktop.Notifications"
NOTIFICATIONS_PATH = "/org/freedesktop/Notifications"
NOTIFICATIONS_DESCRIPTION = f"""
<node>
  <interface name="{NOTIFICATIONS}">
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{{sv}}" direction="in"/><arg type="i" direction="in"/>
      <arg type="u" direction="out"/>
    </method>
    <method name="CloseNotification"><arg type="u" direction="in"/></method>
  </interface>
</node>"""


@pytest.fixture
def notices(desktop):
    """What the desktop is asked to tell the user: titles, texts, and the actions with their labels."""
    bus, told = Bus(desktop.bus.address), []

    def answer(method, arguments):
        if method != "Notify":
            return None
        title, text, actions = arguments[3:6]
        told.append((title, text, dict(zip(actions[::2], actions[1::2], strict=True))))
        return GLib.Variant("(u)", (len(told),))

    bus.export(NOTIFICATIONS_PATH, NOTIFICATIONS_DESCRIPTION, answer)
    bus.take_name(NOTIFICATIONS)
    yield SimpleNamespace(told=told, bus=bus)
    bus.close()


def close_window(shell):
    shell.window().close()
    shell.wait_until_hidden()


def test_without_a_panel_the_first_close_says_that_the_program_still_runs(make_shell, desktop, notices):
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    close_window(shell)
    [(title, text, actions)] = wait_until("the user is told", lambda: notices.told)
    assert (title, text) == ("Harbrook is still running", "Start it again to bring its window back.")
    [quit_action] = [action for action, label in actions.items() if label == "Quit"]
    chosen = GLib.Variant("(us)", (1, quit_action))
    notices.bus.emit(NOTIFICATIONS_PATH, NOTIFICATIONS, "ActionInvoked", chosen)
    assert shell.wait() == 0


def test_that_the_program_still_runs_is_said_once(make_shell, desktop, notices):
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    close_window(shell)
    wait_until("the user is told", lambda: notices.told)
    assert shell.start().wait(20) == 0
    close_window(shell)
    stays("nothing more is told", lambda: len(notices.told) == 1, 1)


def test_with_a_panel_closing_says_nothing(make_shell, desktop, watcher, notices):
    watcher.arrive()
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    watcher.item()
    close_window(shell)
    stays("nothing is told", lambda: not notices.told, 1)
