"""Quitting, and being killed."""

import os
import signal
import time

import pytest

from harness.processes import is_alive
from harness.server import READY, Plan, end_slowly, ignore, last_words, serve
from harness.waiting import PATIENCE, stays, wait_until


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP], ids=lambda number: number.name)
def test_a_signal_ends_the_server_then_the_program(running, number):
    running.signal(number)
    assert running.wait() == 0
    assert [event["name"] for event in running.server.all("signal")] == ["SIGTERM"]
    running.server.wait_until_gone()
    running.wait_until_ended()


def test_the_program_waits_for_a_server_that_ends_slowly(make_shell):
    shell = make_shell(Plan([*READY, end_slowly(2)]))
    shell.start()
    shell.server.wait_for_page()
    asked = time.monotonic()
    shell.signal()
    shell.server.wait_for("signal")
    assert shell.wait() == 0
    assert time.monotonic() - asked >= 2
    assert "leaving" in shell.server.names()


def test_the_program_waits_for_a_server_that_ignores_the_request(make_shell):
    shell = make_shell(Plan([*READY, ignore("SIGTERM")]))
    shell.start()
    shell.server.wait_for_page()
    shell.signal()
    shell.server.wait_for("signal")
    stays("the program waits", lambda: shell.program.poll() is None, during=3)
    shell.server.do({"do": "exit"})
    assert shell.wait() == 0
    shell.wait_until_ended()


def test_a_second_request_kills_a_server_that_ignores_the_first(make_shell):
    shell = make_shell(Plan([*READY, ignore("SIGTERM")]))
    shell.start()
    shell.server.wait_for_page()
    shell.signal()
    shell.server.wait_for("signal")
    # What follows at once is taken for the same request, as a shutdown sends several signals.
    shell.signal(signal.SIGHUP)
    stays("the program waits", lambda: shell.program.poll() is None, during=0.5)

    def ask_again():
        if shell.program.poll() is None:
            shell.signal(signal.SIGINT)
        return shell.program.poll() is not None

    wait_until("the program has ended", ask_again)
    assert shell.wait() == 0
    shell.wait_until_ended()


def test_a_new_start_runs_while_the_last_one_waits_for_its_server(make_shell, watcher, desktop):
    watcher.arrive()
    shell = make_shell(Plan([*READY, ignore("SIGTERM")]), desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    item = watcher.item()
    stubborn = shell.server
    shell.signal()
    stubborn.wait_for("signal")
    wait_until("the item has gone", lambda: not watcher.bus.owner(item.name))
    waiting = shell.program
    shell.start()
    wait_until("a second server runs", lambda: len(shell.switchboard.servers) == 2)
    shell.server.wait_for_page()
    assert watcher.item(1).property("Id") == "Harbrook"
    assert waiting.poll() is None
    stubborn.do({"do": "exit"})
    assert waiting.wait(PATIENCE) == 0


def test_the_login_shell_that_looks_for_an_interpreter_ends_with_the_program(make_shell, tmp_path):
    noted = tmp_path / "login-shell"
    login_shell = tmp_path / "slow-shell"
    login_shell.write_text(f"#!/bin/sh\necho $$ >{noted}\nexec sleep 600\n")
    login_shell.chmod(0o755)
    shell = make_shell(plan=None, environment={"SHELL": str(login_shell)})
    shell.start()
    wait_until("the search is under way", lambda: noted.exists() and noted.read_text())
    shell.quit()
    shell.wait_until_ended()


def test_the_log_holds_what_the_server_prints_last(make_shell):
    words = "".join(f"last word {number}\n" for number in range(50_000))
    shell = make_shell(Plan([*READY, last_words(words)]))
    shell.start()
    shell.server.wait_for_page()
    shell.quit()
    assert shell.log.read_text() == f"HARBROOK_PORT {shell.server.port}\n{words}"


def test_a_server_that_is_stopped_is_ended_too(running):
    os.kill(running.server.pid, signal.SIGSTOP)
    running.signal()
    assert running.wait() == 0
    assert [event["name"] for event in running.server.all("signal")] == ["SIGTERM"]
    running.wait_until_ended()


def test_a_server_that_never_announced_itself_is_ended_too(make_shell):
    shell = make_shell(Plan([serve()]))
    shell.start()
    shell.server.wait_for("serving")
    shell.quit()
    shell.server.wait_until_gone()
    shell.wait_until_ended()


def test_a_server_that_is_gone_does_not_hold_up_the_end(running):
    running.server.do({"do": "exit"})
    running.server.wait_until_gone()
    running.quit(within=5)
    running.wait_until_ended()


def test_quitting_with_a_hidden_window_ends_all(running):
    running.window().close()
    running.wait_until_hidden()
    running.quit()
    running.wait_until_ended()


def test_killing_the_program_leaves_nothing_behind(running):
    running.signal(signal.SIGKILL)
    running.program.wait()
    running.server.wait_until_gone()
    assert "input-closed" in running.server.names()
    running.wait_until_ended()


def test_killing_the_program_before_its_server_is_up_leaves_nothing_behind(make_shell):
    shell = make_shell(Plan([]))
    shell.start()
    shell.server.wait_for("started")
    shell.signal(signal.SIGKILL)
    shell.program.wait()
    shell.server.wait_until_gone()
    shell.wait_until_ended()


def test_when_the_display_goes_away_all_is_ended(make_desktop, make_shell):
    desktop = make_desktop()
    shell = make_shell(desktop=desktop)
    shell.start()
    shell.server.wait_for_page()
    desktop.end_display()
    shell.wait()
    shell.server.wait_until_gone()
    shell.wait_until_ended()
    assert not is_alive(shell.pid)


def test_a_page_that_never_yields_ends_with_the_program(running):
    running.server.evaluate("void setTimeout(() => { for (;;); }, 0)")
    running.quit()
    # By itself, the engine's process would look for its program only every ten seconds.
    running.wait_until_ended(5)
