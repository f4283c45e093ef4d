import os
import re
from pathlib import Path

import pytest

from harness.browser import RecordingBrowser
from harness.desktop import Desktop
from harness.server import Plan
from harness.shell import REPOSITORY, STAGE, Shell, newer_in_build
from harness.tray import Watcher

FLATPAK_MARK = Path("/.flatpak-info")


def pytest_sessionstart():
    if not (STAGE / "bin" / "harbrook").exists():
        pytest.exit(f"no program in {STAGE}; script/test build installs it there", returncode=1)
    if "HARBROOK_STAGE" not in os.environ and (newer := newer_in_build()):
        pytest.exit(f"{newer} is newer than what is installed of it; script/test build installs it anew", returncode=1)
    if FLATPAK_MARK.exists():
        pytest.exit(f"{FLATPAK_MARK} makes every program here believe to be inside Flatpak; remove it", returncode=1)


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item, call):
    """A failed test shows what the program said and what the screen looked like."""
    report = (yield).get_result()
    # At the teardown the desktop may be gone already.
    if not report.failed or report.when == "teardown":
        return
    for number, shell in enumerate(item.funcargs.get("make_shell", lambda: None).__dict__.get("made", [])):
        report.sections.append((f"program {number}", shell.output[-10_000:]))
        # Without the harness's own conversation with the page.
        events = [[name for name in server.names() if name not in ("done", "result")] for server in shell.switchboard.servers]
        report.sections.append((f"servers {number}", "\n".join(map(str, events))))
    # Afterwards the desktops are gone already.
    if call.when == "teardown":
        return
    for desktop in item.funcargs.get("make_desktop", lambda: None).__dict__.get("made", []):
        name = re.sub(r"[^\w-]+", "-", item.name)
        picture = REPOSITORY / "build" / "test-pictures" / f"{name}.png"
        desktop.screen.picture().save(picture)
        report.sections.append(("screen", str(picture)))


@pytest.fixture(scope="session")
def shared_desktop():
    """One desktop for the many tests that leave nothing on it but their own program."""
    desktop = Desktop()
    yield desktop
    desktop.close()


@pytest.fixture
def make_desktop(shared_desktop):
    """Makes desktops that differ from the ordinary one; see Desktop for the arguments."""

    def make(**options):
        desktop = Desktop(**options)
        make.made.append(desktop)
        return desktop

    make.made = [shared_desktop]
    yield make
    for desktop in make.made[1:]:
        desktop.close()


@pytest.fixture
def desktop(make_desktop):
    """A desktop of the test's own: what stands on its bus, a panel or a portal, is there for all programs on it."""
    return make_desktop()


@pytest.fixture
def watcher(desktop):
    """The watcher of a panel on that desktop; it has not come yet."""
    watcher = Watcher(desktop)
    yield watcher
    watcher.close()


@pytest.fixture
def make_shell(make_desktop, shared_desktop, tmp_path):
    """Makes shells that are not started yet; see Shell for the arguments."""

    def make(plan=Plan(), desktop=shared_desktop, **options):
        shell = Shell(desktop, tmp_path / f"shell-{len(make.made)}", plan, **options)
        make.made.append(shell)
        return shell

    make.made = []
    yield make
    outputs = [shell.output for shell in make.made]
    for shell in make.made:
        shell.close()
    for output in outputs:
        assert "CRITICAL" not in output, output
        assert "Sanitizer" not in output, output
    assert not FLATPAK_MARK.exists()


@pytest.fixture
def shell(make_shell):
    """A shell whose server serves a page and announces itself at once; not started yet."""
    return make_shell()


@pytest.fixture
def browser(shell):
    """The browser and mail program of the user of that shell."""
    return RecordingBrowser(shell.home)


@pytest.fixture
def running(shell):
    """The same, started, with its page loaded."""
    shell.start()
    shell.server.wait_for_page()
    return shell
