"""The bundled dashboard in the shell: its page in the real engine, real projects, the status menu."""

import re
import signal
import subprocess

import pytest
from gi.repository import GLib

from harness.dashboard import PROJECTS, Dashboard, answer_at, furnish, processes_in
from harness.portal import CHOSEN, Portal
from harness.processes import end
from harness.tray import Watcher
from harness.waiting import wait_until
from harness.web_content import BUTTON, HEADING, LINK, SWITCH, WebContent

PORT_LINK = re.compile(r"Open port \d+ in the browser")

# By shortcut or desktop action: the heading of each view, and what only that view says.
VIEWS = [
    ("ctrl+2", "goServices", "Services", "No container engine was found."),
    ("ctrl+3", "goDocker", "Docker", "Its containers appear here"),
    ("ctrl+4", "goPorts", "Ports", "Reachable from"),
    ("ctrl+comma", "goSettings", "Settings", "Project folders"),
    ("ctrl+1", "goHome", "Dashboard", "4 projects in ~/projects"),
]


@pytest.fixture
def desktop(make_desktop):
    return make_desktop()


@pytest.fixture
def shell(make_shell, desktop):
    """A shell whose server is the bundled one, in a home with projects; not started yet."""
    # No engine's socket is here, so that the machine's own containers stay out of it.
    shell = make_shell(None, desktop=desktop, environment={"DOCKER_HOST": "unix:///nowhere/docker.sock"})
    furnish(shell.home / "projects", PROJECTS)
    yield shell
    for program in shell.programs:
        end(program)
    wait_until("nothing of the projects is left", lambda: not processes_in(shell.home))


@pytest.fixture
def page(shell):
    """The page of the shell, started and with its projects shown."""
    shell.start()
    page = WebContent(shell)
    page.wait_for("Start shop", BUTTON)
    return page


@pytest.fixture
def dashboard(shell, page):
    return Dashboard(shell)


@pytest.fixture
def menu(desktop, page):
    """The status menu, with the projects that can be started in it."""
    watcher = Watcher(desktop).arrive()
    menu = watcher.item().menu
    menu.wait_for_outline(lambda rows: ("Start a project", ["atlas", "shop", "stubborn"]) in rows)
    yield menu
    watcher.close()


def menu_row(name, port):
    """A running project in the status menu, as the dashboard's server started it."""
    return (f"{name}   :{port}", [f"Open localhost:{port} in browser", "Show in Harbrook", "-", f"Stop {name}"])


def activate(desktop, action):
    """What a launcher does for an action of the program's entry."""
    desktop.bus.call(
        "com.brackenforge.harbrook",
        "/com/brackenforge/harbrook",
        "org.freedesktop.Application",
        "ActivateAction",
        GLib.Variant("(sava{sv})", (action, [], {})),
    )


# The page


def test_the_projects_of_the_home_are_shown(page):
    page.wait_for_text("4 projects in ~/projects", "atlas", "shop", "stubborn", "weather")
    page.wait_for_text("Django", "Node.js", "CMake", "2.4.1", "1.12", "0.3")
    for name in ["atlas", "shop", "stubborn"]:
        assert page.find(f"Start {name}", BUTTON)
    # Its manifest names no command.
    assert not page.find("Start weather", BUTTON)


def test_the_shortcuts_lead_to_every_view(shell, page):
    wait_until("the window has the keyboard", lambda: shell.desktop.screen.active_window() == shell.window().number)
    for keys, _, title, words in VIEWS:
        shell.desktop.screen.press(keys)
        page.wait_for(title, HEADING)
        page.wait_for_text(words)
        window_title = "Harbrook" if title == "Dashboard" else f"{title} – Harbrook"
        wait_until("the window is called after it", lambda: shell.window().title == window_title)


def test_the_actions_of_the_launcher_lead_to_every_view(desktop, page):
    for _, action, title, words in VIEWS:
        activate(desktop, action)
        page.wait_for(title, HEADING)
        page.wait_for_text(words)


def test_the_links_of_the_sidebar_lead_to_the_views(page):
    for title in ["Ports", "About & Support", "Dashboard"]:
        page.click(title, LINK)
        page.wait_for(title, HEADING)


# Start and stop


def test_a_project_is_started_and_stopped_by_clicks_in_the_page(dashboard, page):
    page.click("Start shop", BUTTON)
    page.wait_for("Stop shop", BUTTON)
    port = dashboard.wait_until_listening("shop")
    page.wait_for(f"Open port {port} in the browser", LINK)
    assert answer_at(port) == "a shop"
    assert dashboard.programs("shop")

    page.click("Stop shop", BUTTON)
    dashboard.wait_until_ended("shop")
    assert answer_at(port) is None
    page.wait_for("Start shop", BUTTON)
    assert not page.find(PORT_LINK)


def test_a_screen_reader_starts_and_stops_a_project_on_its_own_page(dashboard, page):
    page.press(re.compile("atlas.*"), LINK)
    page.wait_for("Output", HEADING)
    page.press("Start atlas", BUTTON)
    port = dashboard.wait_until_listening("atlas")
    page.wait_for(f"Open port {port} in the browser", LINK)
    page.wait_for_text("$ python3 manage.py runserver")
    page.press("Stop atlas", BUTTON)
    dashboard.wait_until_ended("atlas")
    page.wait_for_text("Not running", "Stopped.")


def test_a_command_typed_in_the_page_starts_a_project_that_names_none(dashboard, page):
    page.click(re.compile("weather.*"), LINK)
    page.replace_text("Start command", "make forecast")
    page.click("Save", BUTTON)
    page.click("Start weather", BUTTON)
    port = dashboard.wait_until_listening("weather")
    page.wait_for(f"Open port {port} in the browser", LINK)
    assert "Makefile" in answer_at(port)


def test_a_project_that_does_not_heed_the_request_is_forced_to_end(dashboard, page):
    page.click(re.compile("stubborn.*"), LINK)
    page.click("Start stubborn", BUTTON)
    dashboard.wait_until_listening("stubborn")
    page.click("Stop stubborn", BUTTON)
    page.wait_for_text("Not yet.", "Stopping")
    assert dashboard.programs("stubborn")
    dashboard.wait_until_ended("stubborn")
    page.wait_for_text("Did not end when asked; forced.")
    page.wait_for("Start stubborn", BUTTON)


def test_a_project_started_elsewhere_is_shown_running_but_not_to_be_stopped(desktop, dashboard, page, menu):
    elsewhere = desktop.spawn(["node", "serve.js"], cwd=dashboard.path("shop"), stdout=subprocess.DEVNULL)
    port = dashboard.wait_until_listening("shop")
    page.wait_for(f"Open port {port} in the browser", LINK)
    page.wait_for_text("Running elsewhere")
    assert not page.find("Stop shop", BUTTON)
    own_row = (f"shop   :{port}", [f"Open localhost:{port} in browser", "Show in Harbrook"])
    menu.wait_for_outline(lambda rows: own_row in rows)
    elsewhere.terminate()
    page.wait_for("Start shop", BUTTON)


def test_a_port_in_the_page_opens_in_the_default_browser(browser, dashboard, page):
    page.click("Start shop", BUTTON)
    port = dashboard.wait_until_listening("shop")
    page.click(f"Open port {port} in the browser", LINK)
    browser.wait_for(f"http://localhost:{port}/")
    page.wait_for("Dashboard", HEADING)


# The status menu


def test_a_project_is_started_and_stopped_from_the_status_menu(dashboard, page, menu):
    menu.click("Start a project", "shop")
    port = dashboard.wait_until_listening("shop")
    assert answer_at(port) == "a shop"
    menu.wait_for_outline(lambda rows: menu_row("shop", port) in rows)
    menu.wait_for_outline(lambda rows: ("Start a project", ["atlas", "stubborn"]) in rows)
    page.wait_for(f"Open port {port} in the browser", LINK)

    menu.click("shop", "Stop shop")
    dashboard.wait_until_ended("shop")
    assert answer_at(port) is None
    menu.wait_for_outline(lambda rows: "(No projects running)" in rows)
    page.wait_for("Start shop", BUTTON)


def test_what_the_page_starts_is_in_the_status_menu_at_once(dashboard, page, menu):
    page.click("Start shop", BUTTON)
    port = dashboard.wait_until_listening("shop")
    menu.wait_for_outline(lambda rows: menu_row("shop", port) in rows)


def test_the_status_menu_leads_to_the_page_of_a_project(shell, dashboard, page, menu):
    menu.click("Start a project", "shop")
    port = dashboard.wait_until_listening("shop")
    menu.wait_for_outline(lambda rows: menu_row("shop", port) in rows)
    shell.window().close()
    shell.wait_until_hidden()
    menu.click("shop", "Show in Harbrook")
    shell.window()
    page.wait_for(re.compile("shop.*"), HEADING)
    page.wait_for_text("~/projects/shop", "$ npm run start", f"Open on {port}")


def test_a_project_can_be_kept_out_of_the_status_menu(dashboard, page, menu):
    page.click(re.compile("shop.*"), LINK)
    page.click("Show in the menu bar", SWITCH)
    menu.wait_for_outline(lambda rows: ("Start a project", ["atlas", "stubborn"]) in rows)
    page.click("Start shop", BUTTON)
    dashboard.wait_until_listening("shop")
    page.click(re.compile("Dashboard"), LINK)
    page.click("Start atlas", BUTTON)
    port = dashboard.wait_until_listening("atlas")
    menu.wait_for_outline(lambda rows: menu_row("atlas", port) in rows)
    assert not [row for row in menu.outline() if row[0].startswith("shop")]


# Settings


def test_a_chosen_folder_is_looked_through_and_survives_a_restart(desktop, shell):
    portal = Portal(desktop)
    chosen = shell.home / "work, old"
    furnish(chosen, {"ledger/Cargo.toml": '[package]\nname = "ledger"\n'})
    shell.start()
    page = WebContent(shell)
    page.wait_for("Start shop", BUTTON)
    page.click("Settings", LINK)
    page.click("Add a folder…", BUTTON)
    portal.question()
    portal.respond(CHOSEN, chosen.as_uri())
    page.wait_for(f"Do not look in {chosen}", BUTTON)
    page.click("Dashboard", LINK)
    page.wait_for_text("5 projects in ~/projects and ~/work, old", "ledger")
    shell.quit()
    portal.close()

    shell.start()
    page.wait_for_text("5 projects in ~/projects and ~/work, old", "ledger")
    stored = Dashboard(shell).get("api/settings")["folders"]
    assert [one["path"] for one in stored if one["exists"]] == [str(shell.home / "projects"), str(chosen)]


def test_a_start_command_survives_a_restart(shell, dashboard, page):
    page.click(re.compile("weather.*"), LINK)
    page.replace_text("Start command", "make forecast")
    page.click("Save", BUTTON)
    page.wait_for("Start weather", BUTTON)
    shell.quit()
    shell.start()
    page.wait_for("Start weather", BUTTON)
    assert dashboard.project("weather")["ownCommand"] == "make forecast"


# The end


def test_what_was_started_ends_when_the_shell_quits(shell, dashboard, page):
    for name in ["shop", "stubborn"]:
        page.click(f"Start {name}", BUTTON)
        page.wait_for(f"Stop {name}", BUTTON)
    ports = [dashboard.wait_until_listening(name) for name in ["shop", "stubborn"]]
    shell.quit()
    assert not dashboard.programs("shop")
    assert not dashboard.programs("stubborn")
    assert [answer_at(port) for port in ports] == [None, None]
    wait_until("nothing of them is left", lambda: not processes_in(shell.home))


@pytest.mark.parametrize("victim", ["shell", "server"])
def test_what_was_started_ends_even_when_its_starter_is_killed(shell, dashboard, page, victim):
    page.click("Start shop", BUTTON)
    dashboard.wait_until_listening("shop")
    if victim == "shell":
        shell.signal(signal.SIGKILL)
    else:
        subprocess.run(["kill", "-KILL", str(dashboard.server().pid)], check=True)
    dashboard.wait_until_ended("shop")
    wait_until("nothing of it is left", lambda: not processes_in(shell.home))
