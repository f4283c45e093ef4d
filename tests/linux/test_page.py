"""What the page finds, keeps, and outlives."""

import os
import re
import signal
import time

from harness.page import page
from harness.server import Plan, announce, serve

FRAMES = '<iframe src="/frame"></iframe><iframe srcdoc="{}"></iframe>'
FINDINGS = "[...document.querySelectorAll('iframe')].map(frame => frame.contentWindow.first)"


def test_the_page_has_token_and_class_before_its_first_script(running):
    first = running.server.evaluate("window.first")
    assert first["native"] is True
    assert re.fullmatch("[0-9a-f]{64}", first["token"])
    assert first["token"] == running.server.start["environment"]["HARBROOK_TOKEN"]


def test_frames_of_the_page_have_neither_token_nor_class(make_shell):
    inner = page(agent=False)
    quoted = inner.replace("&", "&amp;").replace('"', "&quot;")
    plan = Plan(answers={"/": {"body": page(FRAMES.format(quoted))}, "/frame": {"body": inner}})
    shell = make_shell(plan)
    shell.start()
    shell.server.wait_for_page()
    loaded = "new Promise(done => document.readyState == 'complete' ? done() : addEventListener('load', () => done()))"
    shell.server.evaluate(loaded)
    nothing = {"token": None, "native": False}
    assert shell.server.evaluate(FINDINGS) == [nothing, nothing]


def test_a_document_that_is_no_page_of_the_servers_has_neither_token_nor_class(running):
    found = "typeof window.__FC_TOKEN + '/' + document.documentElement.className"
    document = f"<script>fetch('http://localhost:{running.server.port}/found/' + {found})</script>"
    running.server.run(f"location = URL.createObjectURL(new Blob([{document!r}], {{type: 'text/html'}}))")
    running.server.wait_for_request("/found/undefined/")


def test_a_reloaded_page_has_the_same_token(running):
    token = running.server.evaluate("window.first.token")
    running.server.run("location.reload()")
    running.server.wait_for_page(2)
    assert running.server.evaluate("window.first.token") == token


def test_storage_and_cookies_of_the_page_survive_a_restart(shell):
    shell.start()
    first = shell.server
    first.wait_for_page()
    first.evaluate("localStorage.setItem('kept', 'as it was')")
    first.evaluate("void (document.cookie = 'biscuit=crisp; max-age=86400; path=/')")
    shell.quit()

    # What a page stores belongs to its port.
    shell.put_interpreter(Plan([serve(first.port), announce()]))
    shell.start()
    second = shell.switchboard.server(1)
    second.wait_for_page()
    assert second.evaluate("localStorage.getItem('kept')") == "as it was"
    assert second.evaluate("document.cookie") == "biscuit=crisp"


def test_a_page_whose_process_is_killed_comes_back(running):
    running.server.evaluate("window.before = 1")
    [renderer] = [one for one in running.web_processes() if one.name.startswith("WebKitWeb")]
    killed = time.monotonic()
    os.kill(renderer.pid, signal.SIGKILL)
    running.server.wait_for_page(2)
    assert time.monotonic() - killed > 1.4
    assert running.server.evaluate("[window.before ?? null, window.first.native]") == [None, True]
