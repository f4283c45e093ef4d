"""How the port is learnt from the server's output."""

import time

from harness.server import Plan, announce, drain, leave, say, say_bytes, serve
from harness.waiting import stays

NOT_STARTED = "The server did not start. See ~/.harbrook/logs/server.log"


def load(make_shell, *steps):
    shell = make_shell(Plan([serve(), *steps]))
    shell.start()
    shell.server.wait_for_page()
    return shell


def assert_never_loads(shell):
    shell.start()
    shell.wait_for_text(NOT_STARTED)
    assert shell.server.requests() == []


def test_the_announcement_may_stand_behind_other_words(make_shell):
    load(make_shell, announce(before="listening on every address, HARBROOK: "))


def test_the_announcement_needs_no_line_end(make_shell):
    load(make_shell, announce(after=""))


def test_a_marker_that_comes_in_two_reads_counts(make_shell):
    load(make_shell, say("HARBROOK_P"), drain(), announce(marker="ORT "))


def test_digits_that_come_after_the_read_do_not_count(make_shell):
    load(make_shell, announce(after=""), drain(), say("99\n"))


def test_the_first_of_two_announcements_counts(make_shell):
    load(make_shell, announce(), say("HARBROOK_PORT 9\n"))


def test_a_read_that_ends_inside_a_character_adds_nothing(make_shell):
    # The first half ends the read with an open character; the second begins with its end, so that
    # neither is text, although the marker stands in it.
    half, rest = "é".encode()[:1], "é".encode()[1:]
    shell = make_shell(
        Plan([serve(), say_bytes(half), drain(), say_bytes(rest + b" HARBROOK_PORT 9\n"), drain(), announce()])
    )
    shell.start()
    shell.server.wait_for_page()


def test_an_announcement_that_is_waited_for_is_in_time(make_shell):
    shell = make_shell(Plan([serve()]))
    shell.start()
    shell.wait_for_text("Starting Harbrook…")
    shell.server.do(announce())
    shell.server.wait_for_page()
    assert NOT_STARTED not in shell.texts()


def test_an_announcement_after_ten_seconds_comes_too_late(make_shell):
    shell = make_shell(Plan([serve()]))
    before = time.monotonic()
    shell.start()
    shell.wait_for_text(NOT_STARTED)
    assert time.monotonic() - before >= 10
    shell.server.do(announce())
    shell.server.do(drain())
    shell.server.wait_for("done", lambda event: event["step"] == "drain")
    stays("nothing is loaded", lambda: shell.server.requests() == [], 1)
    assert NOT_STARTED in shell.texts()


def test_a_first_marker_without_a_number_spoils_all_later_ones(make_shell):
    assert_never_loads(make_shell(Plan([serve(), say("HARBROOK_PORT soon\n"), announce()])))


def test_digits_of_other_scripts_spoil_the_number(make_shell):
    assert_never_loads(make_shell(Plan([serve(), announce(after="٣\n")])))


def test_a_server_that_exits_at_once_has_not_started(make_shell):
    shell = make_shell(Plan([say("cannot\n"), leave(1)]))
    shell.start()
    shell.wait_for_text(NOT_STARTED)
    assert shell.log.read_text() == "cannot\n"
