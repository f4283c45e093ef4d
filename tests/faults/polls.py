"""The program's polls of its server, and a panel that shows what they brought."""

from harness.server import READY, Plan
from harness.tray import Watcher, answered, project

STATE = "/api/state"
# Seconds between two polls.
INTERVAL = 3.0


def snapshot(number):
    """The snapshot with that number; each differs from the one before, in one row or in many."""
    names = [f"project-{one}" for one in range(number % 7)]
    return answered(*(project(name, [3000 + number % 50]) for name in names), postgres=number)


def polled_plan(steps=READY):
    return Plan(steps, answers={STATE: snapshot(0)})


def refresh(server):
    """Has the program poll now, as its page may."""
    server.evaluate("void window.webkit.messageHandlers.fc.postMessage('state')")


class Polls:
    """The polls that reach a server from now on, one after the other."""

    def __init__(self, server):
        self._server = server
        self._place = len(server.events)

    def next(self, within=4 * INTERVAL):
        """When the next one arrived, by the monotonic clock."""
        event = self._server.wait_for_request(STATE, after=self._place, within=within)
        self._place = self._server.events.index(event, self._place) + 1
        return event["at"]

    def times(self, count):
        return [self.next() for _ in range(count)]

    def skip(self):
        """Those that have arrived so far count no more; how many there were."""
        events = self._server.events
        place, self._place = self._place, len(events)
        return sum(event["event"] == "request" and event["path"] == STATE for event in events[place : self._place])


def in_panel(trial, shell=None):
    """A shell whose polls are answered and whose menu is in a panel: shell, server and panel."""
    shell = shell or trial.shell(polled_plan())
    panel = Panel(shell.desktop)
    server = trial.start(shell)
    server.wait_for_page()
    shell.wait_until_drawn()
    refresh(server)
    panel.wait_for_count(0)
    return shell, server, panel


class Panel:
    """A panel with the item in it."""

    def __init__(self, desktop):
        self.watcher = Watcher(desktop).arrive()

    @property
    def item(self):
        """The item that registered last."""
        return self.watcher.item(max(0, len(self.watcher.registrations) - 1))

    def wait_for_count(self, count):
        """Waits until the menu shows that many PostgreSQL servers."""
        text = f"(PostgreSQL: {count}   Redis: 0   Containers: 0)"
        self.item.menu.wait_for_outline(lambda rows: text in rows)

    def close(self):
        self.watcher.close()


def gaps(times):
    return [later - earlier for earlier, later in zip(times, times[1:])]
