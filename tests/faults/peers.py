"""Programs on the session bus that behave badly."""

import threading

from gi.repository import Gio
from harness.bus import Bus
from harness.tray import WATCHER, WATCHER_DESCRIPTION
from harness.waiting import PATIENCE, wait_until


class Caller:
    """Sends any calls, without waiting for the answers of those before."""

    def __init__(self, desktop, name):
        self._bus = Bus(desktop.bus.address)
        self._name = name
        self._changed = threading.Condition()
        self._open = 0
        self._refused = 0

    def call(self, path, interface, method, arguments=None):
        message = Gio.DBusMessage.new_method_call(self._name, path, interface, method)
        if arguments is not None:
            message.set_body(arguments)
        with self._changed:
            self._open += 1
        self._bus.connection.send_message_with_reply(
            message, Gio.DBusSendMessageFlags.NONE, int(PATIENCE * 1000), None, self._answered
        )

    def _answered(self, connection, result, *_):
        answer = connection.send_message_with_reply_finish(result)
        with self._changed:
            self._open -= 1
            self._refused += answer.get_message_type() == Gio.DBusMessageType.ERROR
            self._changed.notify_all()

    def wait_for_answers(self):
        """Waits until each call has been answered; how many of them with an error, since the last time."""
        with self._changed:
            assert self._changed.wait_for(lambda: not self._open, PATIENCE), f"{self._open} calls were not answered"
            refused, self._refused = self._refused, 0
            return refused

    def close(self):
        self._bus.close()


class SilentWatcher:
    """Takes registrations and never answers."""

    def __init__(self, desktop):
        self._bus = Bus(desktop.bus.address)
        self._calls = []
        interface = Gio.DBusNodeInfo.new_for_xml(WATCHER_DESCRIPTION).interfaces[0]
        self._bus.connection.register_object("/StatusNotifierWatcher", interface, self._called, None, None)

    def _called(self, _connection, _sender, _path, _interface, _method, _arguments, invocation):
        # Kept, so that nothing answers it.
        self._calls.append(invocation)

    def take(self):
        """Goes, comes again, and waits for the registration."""
        before = len(self._calls)
        self._bus.drop_name(WATCHER)
        self._bus.take_name(WATCHER)
        wait_until("a registration", lambda: len(self._calls) > before)

    def close(self):
        self._bus.close()
