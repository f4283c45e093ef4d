"""Screenshot mode, driven over the real bus as an outside script does it."""

import contextlib
import os
import threading
import time

import pytest
from gi.repository import GLib

from harness.page import page
from harness.screenshots import ScreenshotMode
from harness.server import Plan
from harness.waiting import wait_until

READY = '<div id="page">{}</div><button id="say\'so" onclick="clicks++">Press</button>'.format("A view with enough text. " * 4)
COUNTING = "<script>clicks = 0; window.views = []; addEventListener('hashchange', () => views.push(location.hash))</script>"
NEVER_READY = '<div id="page"><div class="spin"></div>Enough text, and a spinner that never goes away, whatever comes.</div>'


def dashboard(body=READY):
    return Plan(answers={"/": {"body": page(body, head=COUNTING)}})


@pytest.fixture
def make_mode(make_shell):
    """Starts shells in screenshot mode, with their page loaded; gives the shell and what drives it."""
    with contextlib.ExitStack() as undo:

        def make(body=READY, environment=None):
            shell = make_shell(dashboard(body), environment={"HARBROOK_SHOTS": "1"} | (environment or {}))
            shell.data.mkdir()
            mode = ScreenshotMode(shell.desktop.bus, shell.data)
            undo.callback(mode.close)
            shell.start()
            shell.server.wait_for_page()
            return shell, mode

        yield make


@pytest.fixture
def driven(make_mode):
    """The same with a page that is ready, and its main window known, after which it hears requests."""
    shell, mode = make_mode()
    mode.wait_for_window()
    return shell, mode


def let_it_arrive(shell):
    """Waits until the program has taken whatever was sent before: it answers this in the same thread, in order."""
    bus = shell.desktop.bus
    [name] = bus.names_of(shell.pid)
    bus.property(name, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Title")


def test_the_number_of_the_main_window_is_published(driven):
    shell, mode = driven
    assert mode.window_file.read_bytes() == str(shell.window().number).encode()


@pytest.mark.parametrize("token", ["plain", "two\nlines\n", "\n", "Grüße – 港 🚢", "'\"\\ $(x)", "x" * 5000])
def test_the_token_comes_back_as_it_was_sent(driven, token):
    _, mode = driven
    mode.send(hash="#/", token=token)
    assert mode.answered(token, within=20)
    assert mode.ready_file.read_bytes() == token.encode()


def test_a_request_without_a_token_is_answered_by_an_empty_file(driven):
    shell, mode = driven
    mode.send(hash="#/docker")
    assert mode.answered("", within=20)
    assert shell.server.evaluate("location.hash") == "#/docker"


def test_a_request_takes_away_what_lies_over_the_page(driven):
    shell, mode = driven
    shell.server.evaluate("document.body.insertAdjacentHTML('beforeend', '<div class=modal-bg>a</div>'.repeat(2))")
    mode.send(hash="#/ports", token="done")
    assert mode.answered("done", within=20)
    assert shell.server.evaluate("document.querySelectorAll('.modal-bg').length") == 0


def test_a_hash_with_quotes_changes_no_view_but_is_answered(driven):
    shell, mode = driven
    mode.send(hash="#/'); document.title = 'broken'; ('", token="single")
    assert mode.answered("single", within=20)
    assert shell.server.evaluate("[location.hash, document.title]") == ["", "Dashboard"]
    mode.send(hash='#/p/"quoted"', token="double")
    assert mode.answered("double", within=20)
    assert shell.server.evaluate("decodeURIComponent(location.hash)") == '#/p/"quoted"'


@pytest.mark.parametrize("selector", ["#say\\'so", "[id=\"say'so\"]", "body\n> button:not([title='\"'])"])
def test_quotes_and_line_feeds_in_a_selector_click_their_element_once(driven, selector):
    shell, mode = driven
    mode.send(hash="#/", token="clicked", click=selector)
    assert mode.answered("clicked", within=20)
    assert shell.server.evaluate("clicks") == 1


@pytest.mark.parametrize("selector", ["#nowhere", "not [a selector", "'); clicks = 9; ('"])
def test_a_selector_that_finds_nothing_clicks_nothing_but_is_answered(driven, selector):
    shell, mode = driven
    mode.send(hash="#/", token="clicked", click=selector)
    assert mode.answered("clicked", within=20)
    assert shell.server.evaluate("clicks") == 0


def test_the_token_comes_no_sooner_than_the_page_had_time_to_settle(driven):
    _, mode = driven
    sent = time.monotonic()
    mode.send(hash="#/", token="settled", click="button")
    assert mode.answered("settled", within=20)
    before_the_first_look, after_the_click, before_the_token = 1.0, 0.8, 1.0
    assert time.monotonic() - sent >= before_the_first_look + after_the_click + before_the_token - 0.05


@pytest.mark.parametrize(
    "ignored",
    [
        GLib.Variant("a{ss}", {"token": "ignored"}),
        GLib.Variant("a{sv}", {"hash": GLib.Variant("i", 7), "token": GLib.Variant("s", "ignored")}),
        GLib.Variant("a{sv}", {"hash": GLib.Variant("as", ["#/"]), "token": GLib.Variant("s", "ignored")}),
        GLib.Variant("s", "#/ports"),
    ],
    ids=["no hash", "a number", "a list", "no dictionary"],
)
def test_a_notification_without_a_hash_changes_nothing(driven, ignored):
    shell, mode = driven
    shell.server.evaluate("document.body.insertAdjacentHTML('beforeend', '<div class=modal-bg>a</div>')")
    mode.send_variant(ignored)
    let_it_arrive(shell)
    assert shell.server.evaluate("document.querySelectorAll('.modal-bg').length") == 1
    mode.send(hash="#/ports", token="heard")
    assert mode.answered("heard", within=20)
    assert shell.server.evaluate("views") == ["#/ports"]


def test_values_that_are_not_strings_count_as_missing(driven):
    shell, mode = driven
    values = {"hash": GLib.Variant("s", "#/ports"), "token": GLib.Variant("i", 4), "click": GLib.Variant("b", True)}
    mode.send_variant(GLib.Variant("a{sv}", values))
    assert mode.answered("", within=20)
    assert shell.server.evaluate("[location.hash, clicks]") == ["#/ports", 0]


def test_overlapping_requests_are_answered_each(driven):
    shell, mode = driven
    seen = []
    with reading(mode.ready_file, seen):
        mode.send(hash="#/docker", token="first", click="button")
        mode.send(hash="#/ports", token="second")
        # The click makes the first request the later one.
        assert mode.answered("first", within=20)
        # The reader is a loop of its own, and may not have come round to it yet.
        wait_until("the reader has seen the last answer", lambda: "first" in seen)
    assert [token for token in seen if token is not None] == ["second", "first"]
    assert shell.server.evaluate("location.hash") == "#/ports"


@contextlib.contextmanager
def reading(path, seen):
    """Reads a file over and over; `seen` grows by each content that differs from the one before."""
    stop = threading.Event()

    def read():
        while not stop.is_set():
            try:
                content = path.read_bytes().decode()
            except FileNotFoundError:
                content = None
            if not seen or seen[-1] != content:
                seen.append(content)

    reader = threading.Thread(target=read)
    reader.start()
    try:
        yield
    finally:
        stop.set()
        reader.join()


def test_a_reader_never_sees_a_part_of_a_token(driven):
    _, mode = driven
    tokens = [letter * 300_000 for letter in "ab"]
    seen = []
    with reading(mode.ready_file, seen):
        for token in tokens:
            mode.send(hash="#/", token=token)
            assert mode.answered(token, within=20)
        wait_until("the reader has read the last token", lambda: seen and seen[-1] == tokens[-1])
    assert seen in ([None, *tokens], tokens)
    # What was written beside it is gone.
    assert not [one for one in os.listdir(mode.ready_file.parent) if one.startswith((".", "shot-ready."))]


@pytest.mark.parametrize("switch", [None, "", "0", "true", "yes", "01", "1 ", " 1", "11"])
def test_the_mode_is_off_unless_switched_on_exactly(make_mode, switch):
    shell, mode = make_mode(environment={"HARBROOK_SHOTS": switch})
    mode.send(hash="#/docker", token="unheard")
    let_it_arrive(shell)
    assert shell.server.evaluate("[location.hash, views]") == ["", []]
    assert not mode.window_file.exists()
    assert not mode.ready_file.exists()


@pytest.mark.slow
def test_a_page_that_is_never_ready_is_answered_after_eighteen_seconds(make_mode):
    shell, mode = make_mode(NEVER_READY)
    mode.wait_for_window()
    sent = time.monotonic()
    mode.send(hash="#/docker", token="gave up", click="button")
    assert mode.answered("gave up", within=50)
    assert time.monotonic() - sent >= 18.0
    assert shell.server.evaluate("[location.hash, clicks]") == ["#/docker", 0]
