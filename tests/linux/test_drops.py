"""Files and addresses that are dragged from other programs and dropped on the window."""

import itertools

import pytest

from harness.server import Plan
from harness.waiting import stays, wait_until

# Another program's window with something to drag.
SOURCE = r"""
import sys
import gi
gi.require_version("Gtk", "4.0")
gi.require_version("Gdk", "4.0")
from gi.repository import Gdk, GLib, Gtk

def show(application):
    window = Gtk.ApplicationWindow(application=application, title="Source", default_width=200, default_height=120)
    window.set_decorated(False)
    label = Gtk.Label(label="drag me", hexpand=True, vexpand=True)
    source = Gtk.DragSource()
    data = GLib.Bytes.new((sys.argv[1] + "\r\n").encode())
    source.connect("prepare", lambda *_: Gdk.ContentProvider.new_for_bytes("text/uri-list", data))
    source.connect("drag-begin", lambda *_: print("begun", flush=True))
    source.connect("drag-end", lambda *_: print("over", flush=True))
    source.connect("drag-cancel", lambda *_: print("over", flush=True))
    label.add_controller(source)
    window.set_child(label)
    window.present()

application = Gtk.Application()
application.connect("activate", show)
application.run()
"""

STOLEN = "<script>document.title = 'token ' + window.__FC_TOKEN</script><h1>Not the dashboard</h1>"


@pytest.fixture
def drop(make_shell, make_desktop, tmp_path):
    """Drags an address from another program's window and drops it on the page; gives the shell."""
    desktop = make_desktop(size=(1700, 1100))

    def drop(address):
        shell = make_shell(Plan(), desktop=desktop)
        shell.start()
        shell.server.wait_for_page()
        shell.place(330, 20, 1320, 860)
        shell.server.evaluate("addEventListener('dragenter', () => void fetch('/entered')); true")
        noted = tmp_path / "source"
        with noted.open("wb") as output:
            source = desktop.spawn(["/usr/bin/python3", "-c", SOURCE, address], stdout=output)
        window = wait_until(
            "the source is shown", lambda: [one for one in desktop.screen.windows() if one.pid == source.pid]
        )[0]
        window.move_and_resize(20, 900, 200, 120)
        wait_until("the source is in its place", lambda: window.area.y > 880)
        pointer = desktop.screen.tool
        pointer("mousemove", 100, 960, "mousedown", 1)
        for x, y in [(115, 950), (140, 930)]:
            pointer("mousemove", x, y)
        wait_until("the drag has begun", lambda: "begun" in noted.read_text())
        steps = itertools.cycle(range(20))

        def hover():
            # Whoever takes drags says so at once or never, but hears of them only by movements.
            pointer("mousemove", 800 + next(steps), 500)
            return not shell.server.requests("/entered")

        stays("the page hears nothing of the drag", hover, 1.5)
        pointer("mouseup", 1)
        wait_until("the drag is over", lambda: "over" in noted.read_text())
        return shell

    return drop


def assert_dashboard_stays(shell):
    address = f"http://localhost:{shell.server.port}/"
    stays("the dashboard is shown", lambda: shell.server.evaluate("location.href").startswith(address), 1.5)
    shell.quit()
    assert shell.output == ""


def test_a_dropped_file_does_not_take_the_dashboards_place(drop, tmp_path):
    page = tmp_path / "stolen.html"
    page.write_text(STOLEN)
    assert_dashboard_stays(drop(page.as_uri()))


def test_a_dropped_address_does_not_take_the_dashboards_place(drop):
    assert_dashboard_stays(drop("data:text/html," + STOLEN))
