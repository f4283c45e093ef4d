"""What the window says when there is no server."""

from pathlib import Path

import pytest

from harness.server import Plan

NO_NODE = (
    "Node.js was not found. On Intel Macs, install Node.js from nodejs.org"
    " (or: brew install node), then reopen Harbrook."
)


def forget_every_interpreter(shell):
    """Login shells of this home find nothing."""
    for profile in (".profile", ".zprofile", ".bash_profile"):
        (shell.home / profile).write_text("PATH=/nowhere; export PATH\n")


def test_while_the_server_starts_the_window_says_so(make_shell):
    shell = make_shell(Plan([]))
    shell.start()
    shell.wait_for_text("Starting Harbrook…")


def test_the_label_goes_away_when_the_server_is_there(running):
    running.server.evaluate("1")
    assert running.texts() == []


@pytest.mark.skipif(
    any(Path(place).exists() for place in ("/opt/homebrew/bin/node", "/usr/local/bin/node")),
    reason="this machine has an interpreter in a place that is always looked at",
)
def test_without_an_interpreter_the_window_tells_where_to_get_one(make_shell):
    shell = make_shell(plan=None)
    forget_every_interpreter(shell)
    shell.start()
    shell.wait_for_text(NO_NODE)


def test_an_interpreter_that_may_not_be_executed_is_passed_over(make_shell, tmp_path):
    shell = make_shell()
    elsewhere = tmp_path / "elsewhere"
    elsewhere.mkdir()
    runtime = shell.resources / "runtime"
    # The one that the login shell finds, moved with its plan; what is left cannot run.
    (runtime / "node").rename(elsewhere / "node")
    (runtime / "plan.json").rename(elsewhere / "plan.json")
    (runtime / "node").write_text("not a program")
    for profile in (".profile", ".zprofile"):
        (shell.home / profile).write_text(f"PATH={elsewhere}:$PATH; export PATH\necho a greeting >&2\n")
    shell.start()
    assert shell.server.start["executable"] == str(elsewhere / "node")


def test_without_the_servers_script_the_window_asks_to_reinstall(make_shell):
    shell = make_shell()
    (shell.resources / "app" / "server.js").unlink()
    shell.start()
    shell.wait_for_text("The app is missing its files. Please reinstall Harbrook.")


def test_when_the_interpreter_cannot_be_started_the_window_says_why(make_shell):
    shell = make_shell()
    node = shell.resources / "runtime" / "node"
    node.write_text("#!/nowhere/at/all\n")
    shell.start()
    prefix = "Could not start the server: "
    label = shell.wait_for_label(lambda text: text.startswith(prefix))
    assert len(label.text) > len(prefix)


def test_after_a_failure_the_window_can_be_closed_and_the_program_quit(make_shell):
    shell = make_shell()
    (shell.resources / "app" / "server.js").unlink()
    shell.start()
    shell.wait_for_text("The app is missing its files. Please reinstall Harbrook.")
    shell.window().close()
    shell.wait_until_hidden()
    shell.quit()
    shell.wait_until_ended()
