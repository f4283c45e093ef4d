"""What a page cannot have, and where the token does not go."""

import socket
import ssl
import subprocess
import threading

import pytest

from harness.page import page
from harness.waiting import stays, wait_until

A_WHILE = 2.2


# Requests of the page

GEOLOCATION = (
    "new Promise(done => navigator.geolocation.getCurrentPosition(() => done('allowed'), error => done(error.code)))"
)
PERMISSION_DENIED = 1


def test_the_place_is_not_told(running):
    assert running.server.evaluate(GEOLOCATION) == PERMISSION_DENIED


def test_notifications_are_denied(running):
    assert running.server.evaluate("Notification.requestPermission()") == "denied"


@pytest.mark.parametrize("what", ["audio", "video"])
def test_microphone_and_camera_are_denied(running, what):
    script = f"navigator.mediaDevices.getUserMedia({{{what}: true}}).then(() => 'allowed', error => error.name)"
    # Without a device the engine gives up before it asks.
    assert running.server.evaluate(script) in ["NotAllowedError", "OverconstrainedError", "NotFoundError"]


def test_the_pointer_is_not_locked(running):
    script = (
        "new Promise(done => { document.addEventListener('pointerlockchange', () => done('locked'));"
        "document.addEventListener('pointerlockerror', () => done('refused'));"
        "Promise.resolve(document.body.requestPointerLock()).catch(() => done('refused')) })"
    )
    assert running.server.evaluate(script) == "refused"


def test_the_clipboard_is_not_read(running):
    script = "navigator.clipboard.readText().then(() => 'allowed', error => error.name)"
    assert running.server.evaluate(script) == "NotAllowedError"


def test_full_screen_is_not_the_pages_to_enter(running):
    assert running.server.evaluate("document.fullscreenEnabled ?? false") is False


# Downloads


@pytest.fixture
def beating(shell, browser):
    """A shell whose page sends a request again and again for as long as it is there."""
    shell.start()
    shell.server.wait_for_page()
    shell.server.answer("/file.bin", body="x" * 100, headers={"Content-Type": "application/octet-stream"})
    attached = {"Content-Disposition": 'attachment; filename="report.html"'}
    shell.server.answer("/report", body=page(agent=False), headers=attached)
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
    "link, path",
    [("href=/file.bin", "/file.bin"), ("href=/report", "/report"), ("href=/page download", "/page")],
    ids=["type", "attachment", "attribute"],
)
def test_a_download_goes_to_the_browser(beating, browser, link, path):
    click(beating, link)
    browser.wait_for(f"http://localhost:{beating.server.port}{path}")
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


def test_the_token_is_on_no_command_line_in_no_file_and_in_no_address(running):
    token = running.server.evaluate("window.__FC_TOKEN")
    running.server.wait_for_request("/api/state")
    for process in running.processes():
        assert token not in process.command
    for request in running.server.requests():
        assert token not in request["path"]
    running.quit()
    for path in [one for one in running.home.rglob("*") if one.is_file()]:
        assert token.encode() not in path.read_bytes(), path
    assert token not in running.output


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
    wait_until("the last one has arrived", lambda: running.window().title == "After \N{REPLACEMENT CHARACTER}")
    assert running.program.poll() is None


# The context menu

SENSIBLE = {
    "Cut",
    "Copy",
    "Paste",
    "Paste As Plain Text",
    "Delete",
    "Select All",
    "Copy Link Location",
    "Reload",
    "Inspect Element",
}


def menu_items(shell, x, y):
    """The items of the menu that a right click on the page brings up."""
    tree = shell.desktop.accessibility()
    shell.desktop.screen.click(*shell.in_window(x, y), button=3)

    def items():
        roles = {"menu item", "check menu item"}
        return {node.name for node in tree.walk(shell.pid) if node.role in roles and node.name}

    return wait_until("there is a menu", items)


@pytest.mark.parametrize(
    "body, expected",
    [
        ("<p>text", "Reload"),
        ("<a href=/other style='display:block; font-size:300px'>link</a>", "Copy Link Location"),
        ("<textarea style='position:fixed; inset:0; font-size:200px'>text</textarea>", "Paste"),
    ],
    ids=["page", "link", "field"],
)
def test_the_context_menu_has_only_what_makes_sense(running, body, expected):
    running.server.evaluate(f"void (document.body.innerHTML = `{body}`)")
    items = menu_items(running, 400, 300)
    assert expected in items
    assert items <= SENSIBLE
