"""What the dashboard's server may do wrong, from never starting to never ending."""

import os
import signal
import socket
from contextlib import closing
from pathlib import Path

from harness.server import READY, Plan, announce, drain, ignore, leave, pause, say, serve
from harness.tray import answered, project
from harness.waiting import stays, wait_until

from checks import StatusMenu, expect_log_is, expect_resting, wait_for_unread_requests
from matrix import ENDS, STARTS, NotTried, fault
from watch import Holdings

NOT_FOUND = "Node.js was not found."
NOT_STARTED = "The server did not start. See ~/.harbrook/logs/server.log"
NOT_STARTABLE = "Could not start the server: "

# Where an interpreter is found whatever the user's login shell says.
FIXED_PLACES = (Path("/opt/homebrew/bin/node"), Path("/usr/local/bin/node"))

NOTES = project("notes", running=False, hasCommand=True)
WITH_NOTES = Plan(answers={"/api/state": answered(NOTES)})


def start_without_server(trial, shell, panel, beginning):
    """Starts the program, which says why there is no server, and stays usable until it is asked to quit."""
    panel.expect_start()
    shell.start()
    with trial.answering(shell):
        shell.wait_for_label(lambda text: text.startswith(beginning))
        panel.wait_until_not_reachable()
        look_on(trial, shell, panel)
    trial.quit(shell)


def look_on(trial, shell, panel):
    """Nothing grows while the user goes on looking."""
    wait_until("the engine is ready", lambda: len(shell.web_processes()) == 2)
    look_in_vain(panel)
    with trial.keeping(shell):
        look_in_vain(panel)


def look_in_vain(panel):
    """The user opens the menu, over and over; each time the program asks a server that is not there."""
    for _ in range(20):
        panel.menu.about_to_show()
        panel.wait_until_not_reachable()


@fault("there is no interpreter", quick=1, whole=20)
def no_interpreter(trial):
    if any(place.exists() for place in FIXED_PLACES):
        raise NotTried("this machine has an interpreter in a place that is always looked at")
    shell = trial.shell(plan=None)
    for profile in (".profile", ".zprofile", ".bash_profile"):
        (shell.home / profile).write_text("PATH=/nowhere; export PATH\n")
    with closing(StatusMenu(shell.desktop)) as panel:
        for _ in trial.rounds():
            start_without_server(trial, shell, panel, NOT_FOUND)


@fault("the interpreter cannot be started", quick=1, whole=20)
def interpreter_does_not_start(trial):
    shell = trial.shell()
    (shell.resources / "runtime" / "node").write_text("#!/nowhere/at/all\n")
    with closing(StatusMenu(shell.desktop)) as panel:
        for _ in trial.rounds():
            start_without_server(trial, shell, panel, NOT_STARTABLE)


# The program waits ten seconds for an announcement.
@fault("the server exits at once", quick=1, whole=10)
def exits_at_once(trial):
    shell = trial.shell(Plan([say("no luck today\n"), leave(3)]))
    with closing(StatusMenu(shell.desktop)) as panel:
        for _ in trial.rounds():
            panel.expect_start()
            server = trial.start(shell)
            with trial.answering(shell):
                server.wait_until_gone()
                shell.wait_for_text(NOT_STARTED)
                look_on(trial, shell, panel)
            expect_log_is(trial, shell.log, b"no luck today\n")
            trial.quit(shell)


@fault("the server crashes while the program waits for it", quick=5, whole=50)
def crashes_at_once(trial):
    shell = trial.shell(Plan([say("no luck today\n"), serve()]))
    for _ in trial.rounds():
        server = trial.start(shell)
        shell.window()
        with trial.keeping(shell), trial.answering(shell):
            server.do({"do": "crash"})
            server.wait_until_gone()
            expect_log_is(trial, shell.log, b"no luck today\n")
        trial.quit(shell)


@fault("the server exits after it was ready", quick=5, whole=50)
def exits_after_ready(trial):
    shell = trial.shell(Plan([serve(), announce()]))
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        shell.wait_until_drawn()
        with trial.keeping(shell), trial.answering(shell):
            server.do(say("good-bye\n"))
            server.do(leave(1))
            server.wait_until_gone()
        trial.expect_logged(shell, [b"good-bye"])
        trial.quit(shell)


def wait_for_poll(port):
    """Takes the place of a server that is gone until somebody asks there; the question is left unanswered."""
    with socket.create_server(("127.0.0.1", port)) as listener:
        listener.settimeout(20)
        listener.accept()[0].close()


@fault("the server exits, and polling goes on in vain", quick=1, whole=10)
def polling_in_vain(trial):
    shell = trial.shell(WITH_NOTES)
    with closing(StatusMenu(shell.desktop)) as panel:
        for _ in trial.rounds():
            panel.expect_start()
            server = trial.start(shell)
            server.wait_for_page()
            shell.wait_until_drawn()
            panel.wait_until_reachable()
            port = server.port
            with trial.keeping(shell), trial.answering(shell):
                server.do(leave(1))
                server.wait_until_gone()
                panel.wait_until_not_reachable()
                wait_for_poll(port)
            trial.quit(shell)


# A connection is kept that long for the next request.
IDLE_CONNECTION = 60


@fault("the server is stopped and goes on", quick=0, whole=10)
def stopped_for_a_while(trial):
    shell = trial.shell(WITH_NOTES)
    with closing(StatusMenu(shell.desktop)) as panel:
        panel.expect_start()
        server = trial.start(shell)
        server.wait_for_page()
        shell.wait_until_drawn()
        panel.wait_until_reachable()
        with trial.keeping(shell):
            before = Holdings.of(shell.pid).descriptors
            with trial.answering(shell):
                for _ in trial.rounds():
                    stop_for_a_while(server, panel)
            wait_until(
                "connections are let go",
                lambda: Holdings.of(shell.pid).descriptors <= before,
                within=IDLE_CONNECTION + 20,
            )
        trial.quit(shell)


def stop_for_a_while(server, panel):
    seen = len(server.events)
    os.kill(server.pid, signal.SIGSTOP)
    panel.menu.click("Start a project", "notes")
    wait_for_unread_requests(server.port, 2)
    os.kill(server.pid, signal.SIGCONT)
    server.wait_for_request("/api/project/start", after=seen)
    server.wait_for_request("/api/state", after=seen)


@fault("the server is stopped when the program quits", quick=2, whole=20, unmeasured=ENDS)
def stopped_at_the_end(trial):
    shell = trial.shell(WITH_NOTES)
    with closing(StatusMenu(shell.desktop)) as panel:
        for number in trial.rounds():
            panel.expect_start()
            server = trial.start(shell)
            server.wait_for_page()
            panel.wait_until_reachable()
            os.kill(server.pid, signal.SIGSTOP)
            with trial.answering(shell):
                panel.menu.click("Start a project", "notes")
                wait_for_unread_requests(server.port, 1 + number % 2)
            trial.quit(shell)


@fault("the server ignores the request to end", quick=2, whole=20, unmeasured=ENDS)
def ignores_terminate(trial):
    """The program waits for it, without limit, as it promises; here in turn until it ends, and until it is killed."""
    shell = trial.shell(Plan([*READY, ignore("SIGTERM")]))
    for number in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        shell.signal()
        server.wait_for("signal")
        shell.wait_until_hidden()
        stays("the program waits", lambda: shell.program.poll() is None, during=1)
        if number % 2 == 0:
            server.do(say("at last\n"))
            server.do(leave())
            trial.expect_exit(shell)
            trial.expect_logged(shell, [b"at last"])
        else:
            trial.kill(shell)
        trial.expect_nothing_left(shell)


@fault("the server closes its streams", quick=2, whole=50)
def closes_its_streams(trial):
    shell = trial.shell()
    for number in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        shell.wait_until_drawn()
        with trial.keeping(shell), trial.answering(shell):
            # All but its input, and in turn that too: it then takes it for the end of the program, and outlives it.
            server.do({"do": "outlive-input"})
            server.do({"do": "close-streams", "streams": [1, 2] if number % 2 else [0, 1, 2]})
            server.wait_for("streams-closed")
            expect_resting(trial, shell)
            trial.expect(server.evaluate("6 * 7") == 42, "the page no longer works")
        trial.quit(shell)


@fault("the server announces itself too late", quick=0, whole=5)
def announces_too_late(trial):
    shell = trial.shell(Plan([serve()]))
    for _ in trial.rounds():
        server = trial.start(shell)
        shell.wait_for_text(NOT_STARTED)
        with trial.keeping(shell), trial.answering(shell):
            server.do(announce())
            expect_log_is(trial, shell.log, f"HARBROOK_PORT {server.port}\n".encode())
        trial.expect(not server.requests("/"), "the page was loaded all the same")
        trial.quit(shell)


IN_PIECES = [say("HARB"), drain(), say("ROOK_PORT"), drain(), say(" "), drain(), announce(marker="", after="\n")]


@fault("the server announces itself in pieces", quick=2, whole=50, unmeasured=STARTS)
def announces_in_pieces(trial):
    shell = trial.shell(Plan([serve(), *IN_PIECES]))
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        expect_log_is(trial, shell.log, f"HARBROOK_PORT {server.port}\n".encode())
        trial.quit(shell)


@fault("the server announces itself twice, slowly", quick=1, whole=50, unmeasured=STARTS)
def announces_twice(trial):
    shell = trial.shell(Plan([serve(), pause(1), announce(), drain(), say("HARBROOK_PORT 1\n")]))
    for _ in trial.rounds():
        server = trial.start(shell)
        with trial.answering(shell):
            server.wait_for_page()
            expect_log_is(trial, shell.log, f"HARBROOK_PORT {server.port}\nHARBROOK_PORT 1\n".encode())
            server.wait_for_request("/api/state")
            wait_until("the label is hidden", lambda: shell.texts() == [])
        trial.quit(shell)
