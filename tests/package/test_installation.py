"""The Debian package on a system that has nothing: installed, started by a user, removed.

The steps build on each other, in the order in which they stand here."""

import json
import re
import subprocess

import pytest
from bare_root import USER, USER_NUMBER, BareRoot

from harness.desktop import Desktop
from harness.screenshots import ScreenshotMode
from harness.shell import REPOSITORY
from harness.tray import Watcher

# A bare system is made, and then updated over the network.
pytestmark = pytest.mark.timeout(900)

PICTURE = REPOSITORY / "build" / "package" / "installed.png"


@pytest.fixture(scope="module")
def package():
    made = subprocess.run([REPOSITORY / "script" / "package"], check=True, stdout=subprocess.PIPE, text=True)
    return made.stdout.strip()


@pytest.fixture(scope="module")
def bare(package, tmp_path_factory):
    """The system with everything that the package asks for, but without the package."""
    root = BareRoot(tmp_path_factory.mktemp("bare"))
    root.apt("update")
    asked = subprocess.run(["dpkg-deb", "--field", package, "Depends"], check=True, stdout=subprocess.PIPE, text=True)
    root.apt("satisfy", "--no-install-recommends", asked.stdout.strip())
    root.before = root.files()
    yield root
    root.remove()


@pytest.fixture(scope="module")
def installed(bare, package):
    bare.said = bare.apt("install", "--no-install-recommends", bare.give(package, "harbrook.deb"))
    return bare


@pytest.fixture
def desktop():
    desktop = Desktop()
    # For programs of another user than ours.
    desktop.folder.chmod(0o755)
    yield desktop
    desktop.close()


def test_installing_brings_nothing_else(installed):
    assert "0 upgraded, 1 newly installed, 0 to remove" in installed.said
    added = installed.files() - installed.before
    listed = installed.run("dpkg", "--listfiles", "harbrook").splitlines()
    owned = {path.lstrip("/") for path in listed if path != "/."}
    assert owned <= installed.files()
    # The icon theme's own index of what it holds.
    assert added - owned == {"usr/share/icons/hicolor/icon-theme.cache"}


def test_it_answers_without_a_display(installed):
    assert re.fullmatch(r"Harbrook \d+\.\d+\.\d+\n", installed.run("harbrook", "--version", user=True))
    assert "--version" in installed.run("harbrook", "--help", user=True)


def test_a_user_starts_it(installed, desktop):
    manifest = installed.home / "projects" / "shop" / "package.json"
    manifest.parent.mkdir(parents=True)
    manifest.write_text(json.dumps({"name": "shop", "scripts": {"dev": "node server.js"}}))
    runtime = installed.home / "runtime"
    runtime.mkdir(mode=0o700)
    data = installed.home / ".harbrook"
    data.mkdir()
    installed.run("chown", "--recursive", f"{USER}:{USER}", f"/home/{USER}")
    watcher = Watcher(desktop).arrive()
    mode = ScreenshotMode(desktop.bus, data)

    inside = {
        "DISPLAY": desktop.environment["DISPLAY"],
        "DBUS_SESSION_BUS_ADDRESS": desktop.environment["DBUS_SESSION_BUS_ADDRESS"],
        "XDG_RUNTIME_DIR": f"/home/{USER}/runtime",
        "SHELL": "/bin/bash",
        "HARBROOK_SHOTS": "1",
        "HARBROOK_SHOTS_HOME": f"/home/{USER}",
    }
    bound = [desktop.folder, "/tmp/.X11-unix"]
    program = desktop.spawn(
        installed.command("harbrook", user=True, bound=bound, environment=inside), stderr=subprocess.PIPE, text=True
    )
    mode.wait_for_window()
    mode.send(hash="#/", token="home")
    assert mode.answered("home", within=60)
    menu = watcher.item().menu
    menu.wait_for_outline(lambda rows: "(Server not reachable)" not in rows)
    (window,) = desktop.screen.windows()
    desktop.screen.picture(window.area).save(PICTURE)
    assert (data / "logs" / "server.log").stat().st_uid == USER_NUMBER

    menu.click("Quit Harbrook")
    assert program.wait(20) == 0, program.stderr.read()
    mode.close()
    watcher.close()


@pytest.mark.parametrize("verb", ["remove", "purge"])
def test_removing_leaves_nothing(installed, package, verb):
    if verb == "purge":
        installed.apt("install", "--no-install-recommends", f"/home/{USER}/harbrook.deb")
    said = installed.apt(verb, "harbrook")
    assert "0 upgraded, 0 newly installed, 1 to remove" in said
    assert installed.files() == installed.before
    assert not [path for path in installed.files() if "harbrook" in path.lower()]
