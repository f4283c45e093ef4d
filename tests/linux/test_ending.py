"""Quitting, and being killed."""

import os
import signal
import time

import pytest

from harness.processes import is_alive
from harness.server import READY, Plan, end_slowly, ignore, last_words, serve
from harness.waiting import stays


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
