"""What may happen on the session bus, and what others may do to the item on it."""

from gi.repository import GLib
from harness.tray import ITEM, ITEM_PATH, MENU

from matrix import fault
from peers import Caller, SilentWatcher
from polls import STATE, Polls, in_panel, polled_plan, refresh, snapshot

PROPERTIES = "org.freedesktop.DBus.Properties"


def with_projects(trial):
    """A shell and the panel that its menu is in, with several projects in the menu."""
    shell, server, panel = in_panel(trial)
    server.answer(STATE, **snapshot(6))
    refresh(server)
    panel.wait_for_count(6)
    return shell, panel


@fault("the session bus is lost", quick=1, whole=20)
def bus_lost(trial):
    for _ in trial.rounds():
        shell, server, _ = in_panel(trial, trial.shell(polled_plan(), trial.desktop()))
        polls = Polls(server)
        with trial.keeping(shell), trial.answering(shell):
            shell.desktop.end_bus()
            refresh(server)
            polls.times(1)
            trial.expect(server.evaluate("1 + 1") == 2, "the page does not answer")
        trial.quit(shell)


@fault("the panel is lost and comes back", quick=10, whole=100)
def panel_lost(trial):
    shell, _, panel = in_panel(trial)
    watcher = panel.watcher
    with trial.keeping(shell), trial.answering(shell):
        for _ in trial.rounds():
            expected = len(watcher.registrations)
            watcher.leave()
            watcher.arrive()
            item = watcher.item(expected)
            trial.expect(item.property("Id") == "Harbrook", "the item is not there")
            trial.expect(item.menu.outline(), "its menu is empty")
    trial.expect(len(watcher.registrations) == trial.planned + 1, f"registered {len(watcher.registrations)} times")
    panel.close()
    trial.quit(shell)


@fault("the panel never answers", quick=5, whole=50)
def panel_silent(trial):
    """Each round is another panel that takes the registration and says nothing more."""
    shell, server, panel = in_panel(trial)
    panel.close()
    silent = SilentWatcher(shell.desktop)
    silent.take()
    polls = Polls(server)
    with trial.keeping(shell), trial.answering(shell):
        for _ in trial.rounds():
            silent.take()
        refresh(server)
        polls.times(1)
    trial.quit(shell)
    silent.close()


def malformed(rows):
    """Calls of the item and its menu that nobody should make; `rows` are the ids that there are."""
    nested = plain = GLib.Variant("v", GLib.Variant("i", 0))
    for _ in range(20):
        nested = GLib.Variant("v", nested)
    some = rows[0]
    many, names = list(range(-100_000, 100_000)), [f"name-{number}" for number in range(20_000)]
    yield from (
        (MENU, "GetLayout", None),
        (MENU, "GetLayout", GLib.Variant("(s)", ("x" * 1_000_000,))),
        (MENU, "GetLayout", GLib.Variant("(iias)", (-1, -1, []))),
        (MENU, "GetLayout", GLib.Variant("(iias)", (2**31 - 1, -(2**31), [""]))),
        (MENU, "GetLayout", GLib.Variant("(iias)", (0, 2**31 - 1, names))),
        (MENU, "GetGroupProperties", GLib.Variant("(aias)", (many, []))),
        (MENU, "GetGroupProperties", GLib.Variant("(aias)", ([some] * 100_000, []))),
        (MENU, "GetGroupProperties", GLib.Variant("(aias)", (rows, names))),
        (MENU, "GetGroupProperties", GLib.Variant("(as)", (names,))),
        (MENU, "GetProperty", GLib.Variant("(is)", (some, ""))),
        (MENU, "GetProperty", GLib.Variant("(is)", (-(2**31), "label"))),
        (MENU, "GetProperty", GLib.Variant("(ss)", ("0", "label"))),
        (MENU, "Event", GLib.Variant("(isvu)", (2**31 - 1, "clicked", nested, 2**32 - 1))),
        (MENU, "Event", GLib.Variant("(isvu)", (some, "no-such-event", nested, 0))),
        (MENU, "Event", GLib.Variant("(isvu)", (0, "", nested, 0))),
        (MENU, "Event", GLib.Variant("(is)", (some, "clicked"))),
        (MENU, "EventGroup", GLib.Variant("(a(isvu))", ([(number, "clicked", plain, 0) for number in many[:20_000]],))),
        (MENU, "EventGroup", GLib.Variant("(a(isvu))", ([(some, "hovered", plain, 0)] * 20_000,))),
        (MENU, "EventGroup", GLib.Variant("(a(isvu))", ([],))),
        (MENU, "AboutToShow", GLib.Variant("(i)", (-5,))),
        (MENU, "AboutToShow", GLib.Variant("(u)", (0,))),
        (MENU, "AboutToShowGroup", GLib.Variant("(ai)", (many,))),
        (MENU, "AboutToShowGroup", GLib.Variant("(as)", (names,))),
        (MENU, "NoSuchMethod", GLib.Variant("(v)", (nested,))),
        ("no.such.Interface", "GetLayout", None),
        (PROPERTIES, "Get", GLib.Variant("(ss)", (MENU, "NoSuchProperty"))),
        (PROPERTIES, "Get", GLib.Variant("(s)", (MENU,))),
        (PROPERTIES, "GetAll", GLib.Variant("(s)", ("no.such.Interface",))),
        (PROPERTIES, "Set", GLib.Variant("(ssv)", (MENU, "Version", GLib.Variant("s", "four")))),
    )


# The allocator of each thread keeps room for the largest calls that it has met, and for the most that it had at a time
# (KiB). Were the calls themselves kept, that would be five thousand a round of those below.
ROOM_FOR_CALLS = 12 * 1024


@fault("malformed calls of the menu", quick=1, whole=50)
def menu_malformed(trial):
    shell, panel = with_projects(trial)
    item = panel.item
    caller = Caller(shell.desktop, item.name)
    layout = item.menu.layout()
    calls = list(malformed([row.number for row in layout.children]))

    def call_all():
        for interface, method, arguments in calls:
            caller.call(item.menu.path, interface, method, arguments)
        caller.call(ITEM_PATH, ITEM, "Activate", GLib.Variant("(ss)", ("here", "there")))
        caller.wait_for_answers()

    call_all()
    with trial.keeping(shell, ROOM_FOR_CALLS), trial.answering(shell):
        for _ in trial.rounds():
            call_all()
    trial.expect(item.menu.layout() == layout, "the menu is another one")
    caller.close()
    panel.close()
    trial.quit(shell)


@fault("a thousand panels open the menu at once", quick=1, whole=20)
def menu_flooded(trial):
    """A round is a thousand times what a panel asks when its user opens the menu."""
    shell, panel = with_projects(trial)
    item = panel.item
    caller = Caller(shell.desktop, item.name)

    def flood():
        for _ in range(1000):
            caller.call(item.menu.path, MENU, "AboutToShow", GLib.Variant("(i)", (0,)))
            caller.call(item.menu.path, MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
            caller.call(item.menu.path, MENU, "Event", GLib.Variant("(isvu)", (0, "opened", GLib.Variant("i", 0), 0)))
        trial.expect(caller.wait_for_answers() == 0, "a call was refused")

    flood()
    with trial.keeping(shell, ROOM_FOR_CALLS), trial.answering(shell):
        for _ in trial.rounds():
            flood()
    caller.close()
    panel.close()
    trial.quit(shell)
