"""The launcher's entry: the program started and commanded over the session bus, as desktops do it."""

import subprocess
from configparser import ConfigParser

import pytest

from harness.waiting import wait_until

ID = "com.brackenforge.harbrook"

VIEWS = {
    "goHome": "#/",
    "goServices": "#/services",
    "goDocker": "#/docker",
    "goPorts": "#/ports",
    "goSettings": "#/settings",
}


@pytest.fixture
def installed(make_shell, make_desktop):
    """A shell that the session bus starts, as if its package were installed and the user logged in."""
    desktop = make_desktop()
    shell = make_shell(desktop=desktop)
    shell.environment["PATH"] = f"{shell.tree}/bin:{shell.environment['PATH']}"
    shell.environment["XDG_DATA_DIRS"] = f"{shell.tree}/share:/usr/share"
    service = (shell.tree / f"share/dbus-1/services/{ID}.service").read_text()
    # Its own environment, which whatever else the bus starts does not get.
    variables = " ".join(f"{name}={value}" for name, value in shell.environment.items())
    place = desktop.folder / "services" / f"{ID}.service"
    place.write_text(service.replace("/usr/bin/harbrook", f"/usr/bin/env {variables} {shell.executable}"))
    desktop.bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig")
    yield shell
    run(shell, "gapplication", "action", ID, "terminate")
    shell.wait_until_ended()


def run(shell, *command, **options):
    """Runs a tool of the desktop's to its end."""
    return subprocess.run(command, env=shell.environment, check=True, timeout=20, **options)


def is_at(shell, hash):
    return wait_until(f"the page is at {hash}", lambda: shell.server.evaluate("location.hash") == hash)


def windows(shell):
    """The visible windows, whoever has started their program."""
    return shell.desktop.screen.windows()


@pytest.mark.parametrize("tool", ["gapplication", "gio"])
def test_the_launcher_starts_the_program(installed, tool):
    entry = installed.tree / f"share/applications/{ID}.desktop"
    run(installed, tool, "launch", ID if tool == "gapplication" else str(entry))
    installed.server.wait_for_page()
    wait_until("one window", lambda: len(windows(installed)) == 1)


def test_the_launcher_brings_a_closed_window_back_and_starts_nothing_again(installed):
    run(installed, "gapplication", "launch", ID)
    installed.server.wait_for_page()
    run(installed, "gapplication", "action", ID, "performClose")
    wait_until("no window", lambda: not windows(installed))
    run(installed, "gapplication", "launch", ID)
    wait_until("the window", lambda: windows(installed))
    assert len(installed.switchboard.servers) == 1


def test_the_entry_offers_the_views_and_the_end(installed):
    run(installed, "gapplication", "launch", ID)
    listed = run(installed, "gapplication", "list-actions", ID, stdout=subprocess.PIPE, text=True)
    assert listed.stdout.split() == [*VIEWS, "terminate"]


@pytest.mark.parametrize("action", VIEWS)
def test_an_action_of_the_entry_starts_the_program_in_its_view(installed, action):
    run(installed, "gapplication", "action", ID, action)
    installed.server.wait_for_page()
    is_at(installed, VIEWS[action])


@pytest.mark.parametrize("action", VIEWS)
def test_launchers_that_run_commands_do_the_same(installed, action):
    entry = ConfigParser(interpolation=None)
    entry.read(installed.tree / f"share/applications/{ID}.desktop")
    run(installed, *entry[f"Desktop Action {action}"]["Exec"].split())
    is_at(installed, VIEWS[action])


def test_the_actions_of_the_entry_move_a_running_program_to_their_views(installed):
    run(installed, "gapplication", "launch", ID)
    installed.server.wait_for_page()
    for action, hash in VIEWS.items():
        run(installed, "gapplication", "action", ID, action)
        is_at(installed, hash)
