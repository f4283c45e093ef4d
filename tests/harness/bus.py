"""A connection to a message bus, and the main loop that its signals and calls arrive on."""

import threading

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_loop = None


def _run_main_loop():
    """One thread serves the default main context of the test process, from its first use on."""
    global _loop
    if _loop is None:
        _loop = GLib.MainLoop()
        threading.Thread(target=_loop.run, name="main loop", daemon=True).start()


class Bus:
    def __init__(self, address):
        _run_main_loop()
        flags = (
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        )
        self.address = address
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def close(self):
        if not self.connection.is_closed():
            self.connection.close_sync(None)

    def call(self, name, path, interface, method, arguments=None, reply=None, timeout=10.0):
        """Calls and waits; the answer comes as plain Python values. Raises GLib.Error."""
        answer = self.connection.call_sync(
            name,
            path,
            interface,
            method,
            arguments,
            GLib.VariantType(reply) if reply else None,
            Gio.DBusCallFlags.NONE,
            int(timeout * 1000),
            None,
        )
        return answer.unpack()

    def property(self, name, path, interface, which):
        arguments = GLib.Variant("(ss)", (interface, which))
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", arguments)[0]

    def owner(self, name):
        """The unique name that holds a well-known one, or None."""
        try:
            return self.call(
                "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetNameOwner", GLib.Variant("(s)", (name,))
            )[0]
        except GLib.Error:
            return None

    def names_of(self, pid):
        """The unique names of a process."""
        bus = "org.freedesktop.DBus"
        names = [name for name in self.call(bus, "/", bus, "ListNames")[0] if name.startswith(":")]

        def owner(name):
            return self.call(bus, "/", bus, "GetConnectionUnixProcessID", GLib.Variant("(s)", (name,)))[0]

        return [name for name in names if owner(name) == pid]

    def emit(self, path, interface, member, arguments=None, destination=None):
        self.connection.emit_signal(destination, path, interface, member, arguments)
        self.connection.flush_sync(None)

    def signals(self, interface=None, member=None, path=None, sender=None):
        """A list that grows by (member, path, arguments) with each signal that fits."""
        heard = []

        def note(_connection, _sender, where, _interface, which, arguments):
            heard.append((which, where, arguments.unpack()))

        self.connection.signal_subscribe(
            sender, interface, member, path, None, Gio.DBusSignalFlags.NONE, note
        )
        return heard

    def take_name(self, name):
        """Becomes the owner of a well-known name, in the place of whoever has it."""
        do_not_queue_and_replace = 4 | 2
        answer = self.call(
            "org.freedesktop.DBus",
            "/",
            "org.freedesktop.DBus",
            "RequestName",
            GLib.Variant("(su)", (name, do_not_queue_and_replace)),
        )[0]
        assert answer in (1, 4), f"{name} is taken"

    def drop_name(self, name):
        self.call(
            "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ReleaseName", GLib.Variant("(s)", (name,))
        )

    def export(self, path, description, answer, properties=None):
        """Serves the first interface of an introspection text.

        `answer(method, arguments)` gives a GLib.Variant tuple, or None for an empty reply;
        `properties` maps names to GLib.Variants.
        """
        interface = Gio.DBusNodeInfo.new_for_xml(description).interfaces[0]

        def called(_connection, _sender, _path, _interface, method, arguments, invocation):
            try:
                invocation.return_value(answer(method, arguments.unpack()))
            except Exception as failure:
                invocation.return_dbus_error("org.freedesktop.DBus.Error.Failed", str(failure))

        def read(_connection, _sender, _path, _interface, which):
            return (properties or {})[which]

        return self.connection.register_object(path, interface, called, read, None)
