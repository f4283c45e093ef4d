"""What a page cannot have, and where the token does not go."""

import socket
import ssl
import subprocess
import threading
from pathlib import Path

import pytest

from harness.browser import RecordingBrowser
from harness.page import page
from harness.processes import all_processes
from harness.server import say
from harness.waiting import stays, wait_until

A_WHILE = 2.2


# Requests of the page


def on_click(shell, script):
    """Has a click of the user's run a script, as much is not even asked for without; its value becomes window.answer."""
    keep = "value => { window.answer = value }"
    shell.server.evaluate(f"void addEventListener('click', () => Promise.resolve({script}).then({keep}), {{once: true}})")
    shell.wait_until_drawn()
    shell.desktop.screen.click(*shell.window().area.center)


def answer_to_click(shell, script):
    on_click(shell, script)
    return wait_until("there is an answer", lambda: shell.server.evaluate("window.answer"))


GEOLOCATION = (
    "new Promise(done => navigator.geolocation.getCurrentPosition(() => done('allowed'), error => done(error.code)))"
)
PERMISSION_DENIED = 1


def test_the_place_is_not_told(running):
    assert running.server.evaluate(GEOLOCATION) == PERMISSION_DENIED


def test_notifications_are_denied(running):
    assert answer_to_click(running, "Notification.requestPermission()") == "denied"


def test_a_page_that_asks_what_it_may_is_never_told_yes(running):
    # Before it has asked for a thing itself, the engine answers "prompt" in the shell's place.
    ask = "name => navigator.permissions.query({name}).then(one => one.state)"
    names = ["camera", "geolocation", "microphone", "notifications"]
    states = running.server.evaluate(f"Promise.all({names}.map({ask}))")
    assert all(one in ["denied", "prompt"] for one in states), states


def test_the_pointer_is_not_locked(running):
    script = (
        "new Promise(done => { document.addEventListener('pointerlockchange', () => done('locked'));"
        "document.addEventListener('pointerlockerror', () => done('refused'));"
        "Promise.resolve(document.body.requestPointerLock()).catch(() => {}) })"
    )
    assert answer_to_click(running, script) == "refused"


def test_the_clipboard_is_not_read(running):
    script = "navigator.clipboard.readText().then(() => 'allowed', error => error.name)"
    assert answer_to_click(running, script) == "NotAllowedError"


def test_full_screen_is_not_the_pages_to_enter(running):
    assert running.server.evaluate("document.fullscreenEnabled ?? false") is False


# What would bring up a window


def test_no_file_is_chosen(running):
    running.server.evaluate("void (document.body.innerHTML += '<input type=file id=file>')")
    on_click(running, "new Promise(done => { file.addEventListener('cancel', () => done('cancelled')); file.click() })")

    def answered():
        return running.server.evaluate("window.answer ?? null") or f"{len(running.windows())} windows"

    assert wait_until("it is answered", lambda: answered() != "1 windows" and answered()) == "cancelled"
    assert len(running.windows()) == 1


# What is printed is a frame: the engine waits for the rest of a page, and this one is never told all.
DIALOGS = "<input type=color><iframe srcdoc=text onload='window.framed = true'></iframe>"


@pytest.mark.parametrize(
    "script", ["document.querySelector('input').click()", "frames[0].print()"], ids=["colour chooser", "print dialog"]
)
def test_no_window_of_the_engines_is_shown(running, script):
    running.server.evaluate(f"void (document.body.innerHTML += `{DIALOGS}`)")
    wait_until("the frame is there", lambda: running.server.evaluate("window.framed ?? false"))
    # A message comes to the shell after what was asked of it before.
    on_click(running, f"({script}, webkit.messageHandlers.fc.postMessage({{k: 'title', v: 'Asked'}}))")
    wait_until("the shell was asked", lambda: "Asked" in [window.title for window in running.windows()])
    stays("there is the one window", lambda: len(running.windows()) == 1, 0.5)


# Downloads


@pytest.fixture
def beating(shell, browser):
    """A shell whose page sends a request again and again for as long as it is there."""
    shell.start()
    shell.server.wait_for_page()
    shell.server.answer("/file.bin", body="x" * 100, headers={"Content-Type": "application/octet-stream"})
    attached = {"Content-Disposition": 'attachment; filename="report.html"'}
    shell.server.answer("/report", body=page(agent=False), headers=attached)
    shell.server.answer("/page", body=page(agent=False))
    shell.server.evaluate("void setInterval(() => fetch('/beat'), 100)")
    return shell


def click(shell, link):
    shell.server.evaluate(f"void (document.body.innerHTML += `<a id=link {link}>x</a>`)")
    shell.server.run("document.getElementById('link').click()")


def assert_page_stays(shell):
    stays("the page is not loaded again", lambda: len(shell.server.requests("/")) == 1, A_WHILE)
    shell.server.wait_for_request("/beat", after=len(shell.server.events))


def files(shell):
    """What a download would have left, finished or not."""
    names = {"file", "report", "page"}
    return {one for one in shell.home.rglob("*") if one.is_file() and one.name.lstrip(".").split(".")[0] in names}


@pytest.mark.parametrize(
    "link, path, is_load",
    [
        ("href=/file.bin", "/file.bin", True),
        ("href=/report", "/report", True),
        ("href=/page download", "/page", False),
    ],
    ids=["type", "attachment", "attribute"],
)
def test_a_download_goes_to_the_browser(beating, browser, link, path, is_load):
    click(beating, link)
    browser.wait_for(f"http://localhost:{beating.server.port}{path}")
    if is_load:
        # A load that has brought no page has failed, and the view goes back to its home.
        beating.server.wait_for_page(2)
    else:
        assert_page_stays(beating)
    assert len(browser.opened) == 1
    assert files(beating) == set()


@pytest.mark.parametrize(
    "address",
    ["data:application/octet-stream,abc", "${URL.createObjectURL(new Blob(['abc']))}"],
    ids=["data", "blob"],
)
def test_what_is_no_web_address_is_not_downloaded(beating, browser, address):
    click(beating, f'href="{address}" download=file.bin')
    assert_page_stays(beating)
    assert browser.opened == []
    assert files(beating) == set()


# The network


@pytest.fixture
def listener():
    """A port, and how many connections have come to it."""
    server = socket.create_server(("127.0.0.1", 0))
    arrived = []

    def accept():
        while True:
            try:
                arrived.append(server.accept())
            except OSError:
                return

    threading.Thread(target=accept, daemon=True).start()
    yield server.getsockname()[1], arrived
    server.close()
    for connection, _ in arrived:
        connection.close()


def test_no_proxy_stands_between_the_shell_and_its_server(make_shell, listener):
    port, arrived = listener
    proxy = f"http://127.0.0.1:{port}"
    names = ["http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"]
    shell = make_shell(environment={name: proxy for name in names} | {"no_proxy": None, "NO_PROXY": None})
    shell.start()
    shell.server.wait_for_page()
    shell.server.wait_for_request("/api/state")
    assert arrived == []


@pytest.fixture
def untrusted(tmp_path):
    """A server whose certificate nobody has signed; gives its port and whether anybody got through."""
    certificate, key = tmp_path / "certificate.pem", tmp_path / "key.pem"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=localhost"]
        + ["-addext", "subjectAltName=DNS:localhost", "-out", certificate, "-keyout", key],
        check=True,
        capture_output=True,
    )
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(certificate, key)
    server = socket.create_server(("127.0.0.1", 0))
    asked = []

    def serve():
        while True:
            try:
                connection, _ = server.accept()
            except OSError:
                return
            try:
                with context.wrap_socket(connection, server_side=True) as secured:
                    asked.append(secured.recv(1000))
            except OSError as refusal:
                asked.append(refusal)

    threading.Thread(target=serve, daemon=True).start()
    yield server.getsockname()[1], asked
    server.close()


def test_an_untrusted_certificate_is_refused(running, untrusted):
    port, asked = untrusted
    script = f"fetch('https://localhost:{port}/', {{mode: 'no-cors'}}).then(() => 'read', () => 'refused')"
    assert running.server.evaluate(script) == "refused"
    wait_until("the attempt has come to its end", lambda: asked)
    assert all(isinstance(one, OSError) or one == b"" for one in asked), asked


# The token


def holding(secret, folder):
    """The files below the folder in which it stands, now."""
    found = set()
    for path in folder.rglob("*"):
        try:
            if path.is_file() and secret.encode() in path.read_bytes():
                found.add(str(path))
        except OSError:
            pass  # gone meanwhile, or a socket
    return found


class Leaks:
    """Where a secret turns up that only the program's server may have, looked for until it is stopped."""

    def __init__(self, shell, secret):
        self.shell, self.secret = shell, secret
        self.found = set()
        self.rounds = 0
        self._stop = threading.Event()
        self._thread = threading.Thread(target=self._search)
        self._thread.start()

    def _search(self):
        while not self._stop.is_set():
            self.look()

    def look(self):
        desktop = self.shell.desktop.folder
        for folder in [self.shell.folder, desktop, Path("/dev/shm")]:
            self.found |= holding(self.secret, folder)
        for process in all_processes():
            if self.secret in process.command:
                self.found.add(f"command line of {process.name}")
        server = self.shell.server.pid
        for process in self.shell.processes():
            if process.pid != server and self.secret in process.environment.values():
                self.found.add(f"environment of {process.name}")
        self.rounds += 1

    def stop(self):
        self._stop.set()
        self._thread.join()


@pytest.fixture
def private_tmp(make_shell, shared_desktop):
    """A shell whose temporary files are its own."""
    folder = shared_desktop.folder / "tmp"
    folder.mkdir(exist_ok=True)
    return make_shell(environment={"TMPDIR": str(folder)})


def test_the_token_is_on_no_command_line_in_no_file_and_in_no_address(private_tmp):
    shell = private_tmp
    browser = RecordingBrowser(shell.home)
    shell.start()
    shell.server.wait_for_page()
    token = shell.server.evaluate("window.__FC_TOKEN")
    assert token == shell.server.start["environment"]["HARBROOK_TOKEN"]
    leaks = Leaks(shell, token)
    try:
        # All that the program does of its own: asks for the state, writes the log, opens addresses, loads again.
        shell.server.do(say("a line for the log\n"))
        shell.server.wait_for_request("/api/state", after=len(shell.server.events))
        shell.server.run("location.href = 'http://example.com/'")
        browser.wait_for("http://example.com/")
        shell.server.run("location.reload()")
        shell.server.wait_for_page(2)
        seen = leaks.rounds
        wait_until("all was looked at since", lambda: leaks.rounds > seen + 1)
    finally:
        leaks.stop()
    assert "a line for the log" in shell.log.read_text()
    assert all(token not in request["path"] for request in shell.server.requests())
    assert token not in shell.server.evaluate("location.href + document.referrer")
    assert token not in " ".join(browser.opened)
    assert token not in str(browser.environment)
    shell.quit()
    leaks.look()
    assert leaks.found == set()
    assert token not in shell.output


# Messages

HOSTILE = """
(() => {
  const post = value => { try { webkit.messageHandlers.fc.postMessage(value) } catch (error) {} };
  const self = {}; self.self = self;
  let deep = 0; for (let i = 0; i < 20000; ++i) deep = [deep];
  const half = '\\u{1F600}'.slice(0, 1);
  for (const value of [undefined, null, NaN, self, deep, half, new Date(NaN), new Map(), () => 0, document,
                       {k: 'title', v: deep}, {k: deep}, 'x'.repeat(1 << 22), new Array(100000).fill('drag')]) post(value);
  post({k: 'title', v: 'After ' + half});
})()
"""


def test_messages_of_any_shape_do_no_harm(running):
    running.server.evaluate(f"void {HOSTILE.strip()}")

    def arrived():
        assert running.program.poll() is None, "the program has ended"
        return [window.title for window in running.windows()] == ["After \N{REPLACEMENT CHARACTER}"]

    wait_until("the last one has arrived", arrived)
    assert running.server.evaluate("document.readyState") == "complete"


# The context menu

def menu_items(shell, x, y):
    """The items of the menu that a right click on the page brings up."""
    tree = shell.desktop.accessibility()
    shell.desktop.screen.click(*shell.in_window(x, y), button=3)

    seen = [set()]

    def items():
        roles = {"menu item", "check menu item"}
        seen.append({node.name for node in tree.walk(shell.pid) if node.role in roles and node.name})
        # A menu that is being filled is no menu yet.
        return seen[-1] if seen[-1] == seen[-2] else None

    return wait_until("there is a menu", items)


@pytest.mark.parametrize(
    "body, expected",
    [
        ("<p>text", {"Reload"}),
        ("<a href=/other style='display:block; font-size:300px'>link</a>", {"Copy Link Location"}),
        (
            "<textarea style='position:fixed; inset:0; font-size:200px'>text</textarea>",
            {"Cut", "Copy", "Paste", "Delete", "Select All"},
        ),
    ],
    ids=["page", "link", "field"],
)
def test_the_context_menu_has_only_what_makes_sense(running, body, expected):
    running.server.evaluate(f"void (document.body.innerHTML = `{body}`)")
    assert menu_items(running, 400, 300) == expected
