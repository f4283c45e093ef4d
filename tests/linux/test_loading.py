"""Loads that fail, and the view that comes back by itself."""

import pytest

from harness.browser import RecordingBrowser
from harness.page import page
from harness.server import Plan, announce, serve
from harness.waiting import stays, wait_until

RETRY = 1.5


def times(shell):
    return [request["at"] for request in shell.server.requests("/")]


def test_a_server_that_answers_nothing_is_asked_again_every_second_and_a_half(make_shell):
    shell = make_shell(Plan(answers={"/": {"drop": True}}))
    shell.start()
    wait_until("it was asked", lambda: shell.switchboard.servers and times(shell))

    def rounds():
        """The engine may try a dropped connection again at once; that is one round."""
        first = []
        for moment in times(shell):
            if not first or moment - first[-1] > 0.5:
                first.append(moment)
        return first

    wait_until("three rounds", lambda: len(rounds()) >= 3)
    gaps = [later - earlier for earlier, later in zip(rounds(), rounds()[1:])]
    # Never sooner. How much later a busy machine makes it says nothing.
    assert all(gap > RETRY - 0.1 for gap in gaps), gaps
    shell.server.answer("/", body=page())
    shell.server.wait_for_page()
    asked = len(times(shell))
    stays("it is not loaded again", lambda: len(times(shell)) == asked, RETRY + 0.7)


def test_a_server_that_refuses_connections_is_found_once_it_listens(make_shell):
    shell = make_shell(Plan([serve(), {"do": "stop-serving"}, announce()]))
    shell.start()
    server = shell.server
    server.wait_for("done", lambda event: event["step"] == "announce")
    stays("there is no page", lambda: "page" not in server.names(), RETRY + 0.5)
    server.do(serve(server.port))
    server.wait_for_page()
    assert shell.texts() == []


def test_the_view_comes_back_at_the_root(running):
    running.server.evaluate("void (location.hash = '#/ports')")
    running.server.answer("/", drop=True)
    asked = len(times(running))
    running.server.run("location.reload()")
    # The engine itself asks again at once where the connection was one that it had kept; a second later, the shell.
    wait_until("the shell has asked again", lambda: len(times(running)) > asked and times(running)[-1] - times(running)[asked] > 1)
    running.server.answer("/", body=page())
    running.server.wait_for_page(2)
    assert running.server.evaluate("[location.pathname, location.hash]") == ["/", ""]


def test_a_failed_load_keeps_the_page_and_shows_no_page_of_the_engines(running):
    running.server.answer("/gone", drop=True)
    running.server.evaluate("void (document.body.style.background = 'rgb(10, 120, 30)')")
    window = running.window()
    x, y = (round(number) for number in window.area.center)

    def green():
        return running.desktop.screen.pixel(x, y) == (10, 120, 30)

    wait_until("the page is painted", green)
    running.server.run("location.href = '/gone'")
    running.server.wait_for_request("/gone")
    # Until the shell loads its page again.
    wait_until("it is tried again", lambda: len(times(running)) > 1 or not green())
    assert len(times(running)) > 1, "the page is gone"
    running.server.wait_for_page(2)


def test_a_server_slower_than_the_retries_is_waited_for(make_shell):
    shell = make_shell(Plan(answers={"/": {"drop": True}}))
    shell.start()
    wait_until("it was asked", lambda: shell.switchboard.servers and len(times(shell)) >= 2)
    shell.server.answer("/", body=page(), delay=3 * RETRY)
    shell.server.wait_for_page()
    asked = len(times(shell))
    stays("it is not loaded again", lambda: len(times(shell)) == asked, RETRY + 0.7)


@pytest.mark.parametrize("answer", [{"status": 204}, {"headers": {"Content-Type": "application/x-thing"}, "body": "x"}])
def test_a_root_that_is_no_page_is_tried_again_and_opened_nowhere(make_shell, answer):
    shell = make_shell(Plan(answers={"/": answer}))
    browser = RecordingBrowser(shell.home)
    shell.start()
    wait_until("it was asked twice", lambda: shell.switchboard.servers and len(times(shell)) >= 2)
    assert browser.opened == []
    shell.server.answer("/", body=page())
    shell.server.wait_for_page()


def test_a_page_that_asks_for_a_password_shows_no_question_of_the_engines(running):
    body = page("<h1>Not for you</h1>")
    running.server.answer("/private", status=401, headers={"WWW-Authenticate": 'Basic realm="x"'}, body=body)
    running.server.run("location.href = '/private'")
    running.server.wait_for_page(2)
    assert running.server.evaluate("document.querySelector('h1').textContent") == "Not for you"
