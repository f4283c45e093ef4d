"""The minimal server of docs/contract.md, run as the server of the program."""

import re
import shutil

import pytest

from harness.screenshots import ScreenshotMode
from harness.shell import REPOSITORY
from harness.tray import Watcher

CONTRACT = REPOSITORY / "docs" / "contract.md"

# A view that is not ready by now is answered after 18 seconds.
SOON = 10


def minimal_server():
    (code,) = re.findall(r"^```js\n(.*?)^```$", CONTRACT.read_text(), re.DOTALL | re.MULTILINE)
    return code


@pytest.fixture
def shell(make_shell, make_desktop):
    """A program whose dashboard is the document's server, run by the machine's own interpreter."""
    shell = make_shell(plan=None, desktop=make_desktop(), environment={"HARBROOK_SHOTS": "1"})
    shutil.rmtree(shell.resources / "app")
    (shell.resources / "app").mkdir()
    (shell.resources / "app" / "server.js").write_text(minimal_server())
    shell.data.mkdir()
    return shell


def test_the_minimal_server_is_enough_for_a_status_menu_and_a_page(shell):
    watcher = Watcher(shell.desktop).arrive()
    mode = ScreenshotMode(shell.desktop.bus, shell.data)
    shell.start()
    watcher.item().menu.wait_for_outline(lambda rows: ("hello   ", ["Show in Harbrook"]) in rows)

    # A view is ready when its #page holds more than fifty characters, and the page writes the project's path there
    # once it has got the state by its token.
    assert len(str(shell.resources / "app")) > 50
    mode.wait_for_window()
    mode.send(hash="#/", token="shown")
    assert mode.answered("shown", within=SOON)

    shell.quit()
    shell.wait_until_ended()
    mode.close()
    watcher.close()
