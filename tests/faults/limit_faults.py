"""What the system may refuse the program while it runs: descriptors, processes and threads."""

from contextlib import closing

from harness.input_page import input_plan
from harness.server import say
from harness.tray import answered, project
from harness.waiting import wait_until

from checks import StatusMenu
from limits import no_descriptors, no_processes
from matrix import PICTURES, fault

NOTES = project("notes", running=False, hasCommand=True)
SHOP = project("shop", [3000])

# A round of this takes its time from the polls.
POLLS = 2


def plan():
    # Else the program keeps the connection of each such request for a minute, to use it again.
    hang_up = {"body": "{}", "headers": {"Connection": "close"}}
    return input_plan(**{"/api/state": answered(NOTES), "/api/project/start": hang_up})


def labels(rows):
    return [row[0] if isinstance(row, tuple) else row for row in rows]


def use(trial, shell, panel, server):
    """What a user does; some of it may be refused, and nothing may come to harm."""
    panel.menu.about_to_show()
    panel.menu.outline()
    panel.menu.click("Start a project", "notes")
    server.do(say("a line in hard times\n"))
    trial.expect(server.evaluate("6 * 7") == 42, "the page no longer works")
    server.evaluate("void (document.body.style.background = 'teal')")
    shell.window().close()
    shell.wait_until_hidden()
    panel.menu.click("Open Harbrook")
    shell.window()


def ask_in_dialog(trial, shell, server):
    """A confirmation is shown, and its answer reaches the page."""
    server.evaluate("void setTimeout(() => { window.answer = [confirm('Stop it?')] }, 0)")
    wait_until("the dialog is shown", lambda: len(shell.windows()) == 2)
    shell.desktop.screen.press("Escape")
    answer = wait_until("the page has its answer", lambda: server.evaluate("window.answer"))
    trial.expect(answer == [False], f"the dialog answered {answer}")
    server.evaluate("void (window.answer = null)")
    wait_until("the dialog is gone", lambda: len(shell.windows()) == 1)


def let_polls_pass(server):
    for _ in range(POLLS):
        server.wait_for_request("/api/state", after=len(server.events))


def works_again(trial, panel, server):
    """Without the limit all is as it was."""
    seen = len(server.events)
    panel.menu.click("Start a project", "notes")
    server.wait_for_request("/api/project/start", after=seen)
    server.answer("/api/state", **answered(NOTES, SHOP))
    panel.menu.wait_for_outline(lambda rows: any(label.startswith("shop") for label in labels(rows)))
    server.answer("/api/state", **answered(NOTES))
    panel.menu.wait_for_outline(lambda rows: not any(label.startswith("shop") for label in labels(rows)))
    trial.expect(server.evaluate("6 * 7") == 42, "the page no longer works")


@fault("no descriptor is left", quick=1, whole=30)
def without_descriptors(trial):
    shell = trial.shell(plan())
    with closing(StatusMenu(shell.desktop)) as panel:
        server = trial.start(shell)
        server.wait_for_page()
        panel.wait_until_reachable()
        use(trial, shell, panel, server)
        ask_in_dialog(trial, shell, server)
        with trial.keeping(shell, PICTURES), trial.answering(shell):
            for _ in trial.rounds():
                with no_descriptors(shell.pid):
                    use(trial, shell, panel, server)
                    ask_in_dialog(trial, shell, server)
                    # A poll has the connection of the one before.
                    let_polls_pass(server)
                works_again(trial, panel, server)
        trial.expect_logged(shell, [b"a line in hard times"] * (trial.planned + 1))
        trial.quit(shell)


@fault("no process or thread is left", quick=1, whole=30)
def without_processes(trial):
    """Without a dialog: for the text of one that it has not shown before, the toolkit needs a thread, or ends itself."""
    shell = trial.shell(plan())
    with closing(StatusMenu(shell.desktop)) as panel:
        server = trial.start(shell)
        server.wait_for_page()
        panel.wait_until_reachable()
        use(trial, shell, panel, server)
        with trial.keeping(shell, PICTURES), trial.answering(shell):
            for _ in trial.rounds():
                with no_processes(shell.pid):
                    use(trial, shell, panel, server)
                    let_polls_pass(server)
                works_again(trial, panel, server)
        trial.expect_logged(shell, [b"a line in hard times"] * (trial.planned + 1))
        trial.quit(shell)
