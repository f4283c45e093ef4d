"""Desktops that lack something or do not answer."""

import subprocess
import time
from pathlib import Path

import pytest

from harness import processes
from harness.tray import Watcher

NEVER_ANSWERS = "/bin/sleep 600"

STALLED_CALL = 25.0  # seconds until GLib gives up on a call without an answer


def assert_does_not_wait(shell):
    """That all is there before a call that is never answered could come to its end."""
    deadline = time.monotonic() + STALLED_CALL - 1
    shell.start()
    shell.switchboard.server(within=deadline - time.monotonic()).wait_for("started")
    shell.window(within=deadline - time.monotonic())
    shell.server.wait_for_page(within=deadline - time.monotonic())


@pytest.mark.parametrize(
    "services",
    [
        {"org.freedesktop.portal.Desktop": NEVER_ANSWERS},
        {"org.freedesktop.portal.Desktop": "/bin/false"},
        {"org.freedesktop.portal.Desktop": NEVER_ANSWERS, "ca.desrt.dconf": NEVER_ANSWERS},
    ],
    ids=["stalled portal", "broken portal", "stalled portal and settings"],
)
@pytest.mark.parametrize("use_portals", [None, "1"], ids=["", "told to use portals"])
def test_a_portal_in_trouble_holds_nothing_up(make_desktop, make_shell, services, use_portals):
    environment = {"GTK_USE_PORTAL": use_portals}
    assert_does_not_wait(make_shell(desktop=make_desktop(services=services), environment=environment))


def test_without_a_session_bus_it_waits_for_none(make_desktop, make_shell):
    assert_does_not_wait(make_shell(desktop=make_desktop(bus=False)))


def test_it_outlives_its_session_bus(make_desktop, make_shell):
    shell = make_shell(desktop=make_desktop())
    shell.start()
    shell.server.wait_for_page()
    shell.desktop.end_bus()
    shell.server.wait_for_request("/api/state", after=len(shell.server.events))
    assert shell.server.evaluate("document.readyState") == "complete"
    shell.quit()


def test_a_session_bus_that_is_slow_is_taken_when_it_comes(make_desktop, make_shell):
    desktop = make_desktop()
    shell = make_shell(desktop=desktop)
    watcher = Watcher(desktop).arrive()
    try:
        desktop.stall_bus()
        assert_does_not_wait(shell)
        desktop.stall_bus(False)
        assert watcher.item().property("Id") == "Harbrook"
    finally:
        desktop.stall_bus(False)
        watcher.close()


def sandbox_is_possible():
    trial = ["bwrap", "--ro-bind", "/", "/", "--proc", "/proc", "--dev", "/dev", "--unshare-all", "true"]
    return subprocess.run(trial, stderr=subprocess.DEVNULL).returncode == 0


def root_of(process):
    """The files as that process sees them."""
    return Path(f"/proc/{process.pid}/root")


def renderers(shell):
    """The processes that run what pages bring along."""
    return [one for one in shell.web_processes() if one.name.startswith("WebKitWeb")]


def is_in_sandbox(process, shell):
    """Whether it has files, network and processes of its own, and of the user's files only what it was given."""
    apart = ["mnt", "net", "pid"]
    if any(process.namespace(kind) == processes.process(shell.pid).namespace(kind) for kind in apart):
        return False
    return not (root_of(process) / str(shell.home).lstrip("/") / "secret").exists()


@pytest.mark.skipif(not sandbox_is_possible(), reason="this machine allows no sandbox, as most containers")
def test_the_page_runs_in_the_sandbox(shell):
    (shell.home / "secret").touch()
    shell.start()
    shell.server.wait_for_page()
    assert renderers(shell)
    assert all(is_in_sandbox(one, shell) for one in renderers(shell))


def test_where_namespaces_are_refused_it_runs_without_the_sandbox(shell):
    (shell.home / "secret").touch()
    # In a namespace of its own that allows no further one, and without the power to do without.
    refusing = "echo 0 >/proc/sys/user/max_user_namespaces && exec setpriv --bounding-set -all --inh-caps -all \"$@\""
    shell.start(through=["unshare", "--user", "--map-root-user", "sh", "-c", refusing, "sh"])
    shell.server.wait_for_page()
    assert renderers(shell)
    assert not any(is_in_sandbox(one, shell) for one in renderers(shell))
    shell.quit()
    shell.wait_until_ended()


def test_without_a_writable_home_it_still_starts(make_shell):
    shell = make_shell(environment={"HOME": "/proc/nowhere"})
    shell.start()
    shell.server.wait_for_page()
