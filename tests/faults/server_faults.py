"""What the dashboard's server may do wrong."""

from harness.server import Plan, announce, leave, say, serve

from matrix import fault

NOT_STARTED = "The server did not start. See ~/.harbrook/logs/server.log"


# The program waits ten seconds for an announcement.
@fault("the server exits at once", quick=2, whole=20)
def exits_at_once(trial):
    shell = trial.shell(Plan([say("no luck today\n"), leave(3)]))
    for _ in trial.rounds():
        server = trial.start(shell)
        with trial.answering(shell):
            server.wait_until_gone()
            shell.wait_for_text(NOT_STARTED)
        trial.expect_logged(shell, [b"no luck today"])
        trial.quit(shell)


@fault("the server exits after it was ready", quick=5, whole=50)
def exits_after_ready(trial):
    shell = trial.shell(Plan([serve(), announce()]))
    for _ in trial.rounds():
        server = trial.start(shell)
        server.wait_for_page()
        with trial.answering(shell):
            server.do(say("good-bye\n"))
            server.do(leave(1))
            server.wait_until_gone()
        trial.expect_logged(shell, [b"good-bye"])
        trial.quit(shell)
